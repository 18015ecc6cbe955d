#pragma once

// The column layout a grid keeps under its name in a query container's
// object set.

#include "objectmodel/Grid.h"

#include <functional>
#include <map>
#include <optional>
#include <string>
#include <utility>

namespace pipespec::platform {

// The layout loaded from a settings node: per column key, its width in the
// grid's units under "Width.<key>" and its 1-based place under "Position.<key>".
class GridSettings final : public IGridSettings {
public:
    explicit GridSettings(std::string name) : name_(std::move(name)) {}
    // Keeps the node's values and tells the handler, if one is set.
    void Load(const ObjectSetNodeRef& node) override;
    std::string Name() const override { return name_; }
    // A grid that shows the layout applies it when a new one is loaded.
    void setLoadedHandler(std::function<void()> handler) { loaded_ = std::move(handler); }

    // The loaded width where there is one, else the column's own.
    int columnWidth(const IQueryColumn& column) const;
    // The loaded place, if there is one.
    std::optional<int> columnPosition(const IQueryColumn& column) const;
    // Writes one column's layout into a settings node, as Load reads it.
    static void store(ObjectSetNode& node, const IQueryColumn& column, int width, int position);

private:
    std::string name_;
    std::map<std::string, std::string> values_;
    std::function<void()> loaded_;
};

}  // namespace pipespec::platform
