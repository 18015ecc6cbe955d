#include "frame/QueryColumns.h"

#include "diagnostics/ServiceRegistry.h"

namespace pipespec::frame {

QueryColumnRef appendColumn(IQueryColumns& columns, std::string_view key, std::string_view title, int valueKind,
                            int width, bool editable)
{
    auto column = columns.Add(key, -1);
    column->SetTitle(diagnostics::utilities().Translate(title));
    column->SetValueKind(valueKind);
    column->SetWidth(width);
    column->SetEditable(editable);
    return column;
}

void showRangeBound(IQueryColumn& column, const std::string& attribute)
{
    column.Source()->Set(sourcekind::Attribute, attribute);
    column.SetNumeric(true);
    column.SetNumericMode(1);
}

}  // namespace pipespec::frame
