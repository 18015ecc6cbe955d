#include "platform/query/GridSettings.h"

#include "objectmodel/Text.h"

namespace pipespec::platform {

namespace {
constexpr std::string_view kWidth = "Width.";
constexpr std::string_view kPosition = "Position.";

std::string valueName(std::string_view prefix, const IQueryColumn& column)
{
    return std::string(prefix).append(column.Key());
}
}  // namespace

void GridSettings::Load(const ObjectSetNodeRef& node)
{
    values_ = must(node).values;
    if (loaded_) loaded_();
}

int GridSettings::columnWidth(const IQueryColumn& column) const
{
    const auto found = values_.find(valueName(kWidth, column));
    if (found == values_.end() || !text::IsNumeric(found->second)) return column.Width();
    return text::CLng(found->second);
}

std::optional<int> GridSettings::columnPosition(const IQueryColumn& column) const
{
    const auto found = values_.find(valueName(kPosition, column));
    if (found == values_.end() || !text::IsNumeric(found->second)) return std::nullopt;
    return text::CLng(found->second);
}

void GridSettings::store(ObjectSetNode& node, const IQueryColumn& column, int width, int position)
{
    node.values[valueName(kWidth, column)] = std::to_string(width);
    node.values[valueName(kPosition, column)] = std::to_string(position);
}

}  // namespace pipespec::platform
