#include "platform/JsonNameTable.h"

#include "diagnostics/DataDirectory.h"
#include "objectmodel/Errors.h"
#include "objectmodel/JsonInput.h"

#include <nlohmann/json.hpp>

#include <fstream>

namespace pipespec::platform {

namespace {
constexpr std::string_view kBaseDatabase = "IsBaseDatabase";
// Far beyond any real table; it keeps a hostile file from exhausting the
// stack, as merging recurses once per level.
constexpr int kMaxDepth = 32;

[[noreturn]] void configurationError(std::string_view origin, const std::string& what)
{
    throw PlatformError(err::Configuration, "Name table " + std::string(origin) + ": " + what);
}
}  // namespace

std::shared_ptr<JsonNameTable> JsonNameTable::parse(const nlohmann::json& document, std::string_view origin)
{
    auto table = std::shared_ptr<JsonNameTable>(new JsonNameTable("Names", 0));
    table->merge(document, origin);
    return table;
}

std::shared_ptr<JsonNameTable> JsonNameTable::load(const std::filesystem::path& file)
{
    std::ifstream in(file);
    if (!in) configurationError(file.string(), "cannot be read");
    return parse(parseJson(in, "Name table " + file.string()), file.string());
}

std::filesystem::path JsonNameTable::shippedPath() { return diagnostics::dataDirectory() / "nametable.json"; }

void JsonNameTable::merge(const nlohmann::json& node, std::string_view origin)
{
    if (!node.is_object()) configurationError(origin, path_ + " must be an object of leaves and sub-trees");
    for (const auto& [key, value] : node.items()) {
        const auto where = path_ + "." + key;
        if (path_ == "Names" && key == kBaseDatabase) {
            if (!value.is_boolean()) configurationError(origin, where + " must be true or false");
            baseDatabase_ = value.get<bool>();
        } else if (value.is_string()) {
            leaves_[key] = value.get<std::string>();
        } else if (value.is_object()) {
            if (depth_ == kMaxDepth)
                configurationError(origin, where + " lies deeper than " + std::to_string(kMaxDepth) + " levels");
            auto& sub = subTrees_[key];
            if (!sub) sub = std::shared_ptr<JsonNameTable>(new JsonNameTable(where, depth_ + 1));
            sub->merge(value, origin);
        } else {
            configurationError(origin, where + " must be a text or a sub-tree");
        }
    }
}

std::shared_ptr<JsonNameTable> JsonNameTable::clone() const
{
    auto copy = std::shared_ptr<JsonNameTable>(new JsonNameTable(path_, depth_));
    copy->baseDatabase_ = baseDatabase_;
    copy->leaves_ = leaves_;
    for (const auto& [key, sub] : subTrees_) copy->subTrees_[key] = sub->clone();
    return copy;
}

std::shared_ptr<JsonNameTable> JsonNameTable::overlaid(const nlohmann::json& overrides, std::string_view origin) const
{
    auto copy = clone();
    copy->merge(overrides, origin);
    return copy;
}

std::shared_ptr<const INameTable> JsonNameTable::SubTree(std::string_view name) const
{
    const auto found = subTrees_.find(name);
    if (found == subTrees_.end())
        throw PlatformError(err::Configuration, "The name table has no sub-tree " + path_ + "." + std::string(name));
    return found->second;
}

const std::string& JsonNameTable::Leaf(std::string_view name) const
{
    const auto found = leaves_.find(name);
    if (found == leaves_.end())
        throw PlatformError(err::Configuration, "The name table has no leaf " + path_ + "." + std::string(name));
    return found->second;
}

}  // namespace pipespec::platform
