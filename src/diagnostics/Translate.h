#pragma once

// Texts for users: message literals ("~0017a Funktion") looked up in a
// language table, and the three placeholder notations the literals use.
// Translate never fills a placeholder; callers translate first, then fill,
// so that a translated text carries the placeholder to the right place.

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace pipespec::diagnostics {

// Line break inside joined texts shown to users.
inline constexpr std::string_view CrLf = "\r\n";

// "~" + five hex digits + " " + default text, taken apart.
struct MessageLiteral {
    std::string_view key;  // the five hex digits, as written
    std::string_view defaultText;
};
// Empty when the text does not have the literal's form.
[[nodiscard]] std::optional<MessageLiteral> parseMessage(std::string_view text) noexcept;

// The texts of one language by key. Keys are compared without regard to the
// case of their hex digits. An empty table is the default language.
class LanguageTable {
public:
    // A JSON object of key -> text. Anything else is error Configuration,
    // naming `origin` (the file) and what is wrong.
    [[nodiscard]] static LanguageTable parse(std::string_view json, std::string_view origin);
    // A language file; a missing file is a language without texts of its own.
    [[nodiscard]] static LanguageTable load(const std::filesystem::path& file);
    // Where the table of a language shipped with the program lives ("en" ->
    // <data>/lang/en.json). A name that is no plain word: error Configuration.
    [[nodiscard]] static std::filesystem::path shippedPath(std::string_view language);

    // Adds or replaces; a key that is not five hex digits: error Configuration.
    void set(std::string_view key, std::string text);
    // Nullptr when the table has no text for the key.
    [[nodiscard]] const std::string* find(std::string_view key) const;
    // In lower case, sorted.
    [[nodiscard]] std::vector<std::string> keys() const;

private:
    std::map<std::string, std::string, std::less<>> texts_;
};

// A literal becomes the table's text for its key, or its default text when
// the table lacks the key. Any other text comes back unchanged.
[[nodiscard]] std::string Translate(std::string_view text, const LanguageTable& table);

// Each replaces every occurrence of its own notation, from position 1, with
// binary comparison.
[[nodiscard]] std::string FillPercent1(std::string_view text, std::string_view value);  // "%1%"
[[nodiscard]] std::string FillBrace0(std::string_view text, std::string_view value);    // "{0}"
// "%s1" first, then "%s2".
[[nodiscard]] std::string FillS1S2(std::string_view text, std::string_view s1, std::string_view s2);

}  // namespace pipespec::diagnostics
