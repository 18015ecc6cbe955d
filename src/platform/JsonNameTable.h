#pragma once

// The name table of a database: the texts of its attribute and chapter names,
// read from JSON. Objects are sub-trees, strings are leaves, and the root may
// say "IsBaseDatabase". The shipped default is nametable.json of the data directory; a
// project file may override any leaf.

#include "objectmodel/NameTableInterface.h"

#include <nlohmann/json_fwd.hpp>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace pipespec::platform {

class JsonNameTable final : public INameTable {
public:
    // A missing or malformed table, a node that is neither text nor object,
    // or sub-trees nested deeper than 32 levels: error Configuration naming
    // `origin` and the node.
    static std::shared_ptr<JsonNameTable> parse(const nlohmann::json& document, std::string_view origin);
    static std::shared_ptr<JsonNameTable> load(const std::filesystem::path& file);
    // nametable.json in the data directory (diagnostics/DataDirectory.h).
    static std::filesystem::path shippedPath();

    // A copy of this table with the leaves and sub-trees of `overrides` laid
    // over it; what `overrides` does not name stays as it was.
    std::shared_ptr<JsonNameTable> overlaid(const nlohmann::json& overrides, std::string_view origin) const;

    // A sub-tree or leaf the table lacks: error Configuration naming its path.
    std::shared_ptr<const INameTable> SubTree(std::string_view name) const override;
    const std::string& Leaf(std::string_view name) const override;
    bool IsBaseDatabase() const override { return baseDatabase_; }

    void setBaseDatabase(bool base) { baseDatabase_ = base; }

private:
    JsonNameTable(std::string path, int depth) : path_(std::move(path)), depth_(depth) {}
    void merge(const nlohmann::json& node, std::string_view origin);
    std::shared_ptr<JsonNameTable> clone() const;

    std::string path_;  // "Names" or "Names.Pipe.TextSource", for errors
    int depth_;         // 0 for the root, 1 for its sub-trees, ...
    bool baseDatabase_ = false;
    std::map<std::string, std::string, std::less<>> leaves_;
    std::map<std::string, std::shared_ptr<JsonNameTable>, std::less<>> subTrees_;
};

}  // namespace pipespec::platform
