#include "diagnostics/Translate.h"

#include "diagnostics/DataDirectory.h"
#include "objectmodel/Errors.h"
#include "objectmodel/JsonInput.h"
#include "objectmodel/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>
#include <sstream>

namespace pipespec::diagnostics {

namespace {

constexpr std::size_t kKeyLength = 5;

bool isHexDigit(char c) { return ('0' <= c && c <= '9') || ('a' <= c && c <= 'f') || ('A' <= c && c <= 'F'); }

bool isKey(std::string_view key) { return key.size() == kKeyLength && std::all_of(key.begin(), key.end(), isHexDigit); }

[[noreturn]] void configurationError(std::string_view origin, std::string_view what)
{
    throw PlatformError(err::Configuration, "Language table " + std::string(origin) + ": " + std::string(what));
}

}  // namespace

std::optional<MessageLiteral> parseMessage(std::string_view text) noexcept
{
    // "~" + key + " "
    constexpr std::size_t kPrefixLength = kKeyLength + 2;
    if (text.size() < kPrefixLength || text.front() != '~' || text[kPrefixLength - 1] != ' ') return std::nullopt;
    const auto key = text.substr(1, kKeyLength);
    if (!isKey(key)) return std::nullopt;
    return MessageLiteral{key, text.substr(kPrefixLength)};
}

LanguageTable LanguageTable::parse(std::string_view json, std::string_view origin)
{
    const auto document = parseJson(json, "Language table " + std::string(origin));
    if (!document.is_object()) configurationError(origin, "expected an object of key -> text");

    LanguageTable table;
    for (const auto& [key, value] : document.items()) {
        if (!isKey(key)) configurationError(origin, "\"" + key + "\" is not a key of five hex digits");
        if (!value.is_string()) configurationError(origin, "the text of \"" + key + "\" is not a string");
        table.set(key, value.get<std::string>());
    }
    return table;
}

LanguageTable LanguageTable::load(const std::filesystem::path& file)
{
    std::error_code ignored;
    if (!std::filesystem::exists(file, ignored)) return {};
    std::ifstream in(file, std::ios::binary);
    if (!in) configurationError(file.string(), "cannot be opened");
    std::ostringstream content;
    content << in.rdbuf();
    return parse(content.str(), file.string());
}

std::filesystem::path LanguageTable::shippedPath(std::string_view language)
{
    const bool plainWord = !language.empty() && std::all_of(language.begin(), language.end(), [](char c) {
        return ('a' <= c && c <= 'z') || ('A' <= c && c <= 'Z') || ('0' <= c && c <= '9') || c == '_' || c == '-';
    });
    if (!plainWord) configurationError(language, "not a language name");
    return dataDirectory() / "lang" / (std::string(language) + ".json");
}

void LanguageTable::set(std::string_view key, std::string text)
{
    if (!isKey(key)) configurationError("in memory", "\"" + std::string(key) + "\" is not a key of five hex digits");
    texts_.insert_or_assign(text::LCase(key), std::move(text));
}

const std::string* LanguageTable::find(std::string_view key) const
{
    const auto found = texts_.find(text::LCase(key));
    return found == texts_.end() ? nullptr : &found->second;
}

std::vector<std::string> LanguageTable::keys() const
{
    std::vector<std::string> out;
    out.reserve(texts_.size());
    for (const auto& entry : texts_) out.push_back(entry.first);
    return out;
}

std::string Translate(std::string_view text, const LanguageTable& table)
{
    const auto literal = parseMessage(text);
    if (!literal) return std::string(text);
    const auto* translated = table.find(literal->key);
    return translated ? *translated : std::string(literal->defaultText);
}

std::string FillPercent1(std::string_view text, std::string_view value) { return text::Replace(text, "%1%", value); }

std::string FillBrace0(std::string_view text, std::string_view value) { return text::Replace(text, "{0}", value); }

std::string FillS1S2(std::string_view text, std::string_view s1, std::string_view s2)
{
    return text::Replace(text::Replace(text, "%s1", s1), "%s2", s2);
}

}  // namespace pipespec::diagnostics
