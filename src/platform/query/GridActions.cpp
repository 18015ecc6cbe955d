#include "platform/query/GridActions.h"

#include "diagnostics/ServiceRegistry.h"
#include "platform/query/QueryCells.h"

namespace pipespec::platform {

void GridSink::set(const std::shared_ptr<IQGridEvents>& sink)
{
    sink_ = sink;
    version_ = sink ? sink->Version() : 0;
}

void GridSink::remove(const std::shared_ptr<IQGridEvents>& sink)
{
    if (sink_.lock() == sink) sink_.reset();
}

bool clickHead(IQuery& query, const QueryColumnRef& column, const GridSink& sink)
{
    sink.raise([&](IQGridEvents& events) { events.HeadClick(column); });
    if (!column->Sortable()) return false;
    const auto sort = query.Sorts()->Item(0);
    const bool turn = sort->Column() == column && sort->Direction() == sortdirection::Ascending;
    sort->SetColumn(column);
    sort->SetDirection(turn ? sortdirection::Descending : sortdirection::Ascending);
    query.Refresh();
    return true;
}

bool beginCellEdit(const ObjectRef& row, const QueryColumnRef& column, const GridSink& sink)
{
    if (!column->Editable()) return false;
    bool cancel = false;
    sink.raise([&](IQGridEvents& events) { events.BeforeCellEdit(row, column, cancel); });
    return !cancel;
}

namespace {
// A numeric column takes numbers, and the empty text that clears the cell.
bool refusedAsNoNumber(const IQueryColumn& column, const Variant& value)
{
    if (!column.Numeric()) return false;
    const auto typed = cells::text(value);
    if (typed.empty() || cells::number(value, column.NumericMode())) return false;
    auto& host = diagnostics::utilities();
    host.MessageBox("'" + typed + "' is not a number. The cell keeps its value.", mb::Exclamation,
                    host.Translate(column.Title()));
    return true;
}
}  // namespace

bool finishCellEdit(IQuery& query, int row, const QueryColumnRef& column, const Variant& value, const GridSink& sink)
{
    const bool twoState = query.CellItemsKind(row, column) == cellitems::TwoState;
    if (!twoState && refusedAsNoNumber(*column, value)) return false;
    const auto object = query.RowObject(row);
    query.SetCellValue(row, column, twoState ? Variant(cells::flag(value)) : value);
    sink.raise([&](IQGridEvents& events) { events.AfterCellEdit(object, column); });
    return true;
}

bool deleteColumns(IQuery& query, const std::vector<QueryColumnRef>& columns, const GridSink& sink)
{
    bool cancel = false;
    sink.raise([&](IQGridEvents& events) { events.BeforeColumnsDelete(columns, cancel); });
    if (cancel) return false;
    const auto all = query.Top()->Columns();
    for (const auto& column : columns) all->Remove(column->Key());
    sink.raise([](IQGridEvents& events) { events.AfterColumnsDelete(); });
    return true;
}

void moveColumn(IQuery& query, const QueryColumnRef& column, int position, const GridSink& sink)
{
    const auto columns = query.Top()->Columns();
    columns->Remove(column->Key());
    int placedAt = 0;
    columns->Insert(column, position, placedAt);
    sink.raise([](IQGridEvents& events) { events.ColumnsChanged(); });
}

std::shared_ptr<PopUpMenu> openMenu(const QueryColumnRef& headColumn, const GridSink& sink)
{
    auto menu = std::make_shared<PopUpMenu>();
    if (headColumn) {
        sink.raise([&](IQGridEvents& events) { events.TitlePopUp(menu, headColumn); });
        return menu;
    }
    sink.raise([&](IQGridEvents& events) { events.BeforeCreateStdPopUp(menu); });
    sink.raise([&](IQGridEvents& events) { events.PopUp(menu); });
    return menu;
}

bool openSubMenu(const std::shared_ptr<PopUpMenu>& menu, std::string_view key, const QueryColumnRef& headColumn,
                 const GridSink& sink)
{
    const auto* entry = menu->find(key);
    if (!entry || !entry->subMenu()) return false;
    if (headColumn)
        sink.raise([&](IQGridEvents& events) { events.TitlePopUpSubMenu(menu, key, headColumn); });
    else
        sink.raise([&](IQGridEvents& events) { events.PopUpSubMenu(menu, key); });
    return true;
}

bool chooseMenuEntry(const std::shared_ptr<PopUpMenu>& menu, std::string_view key, const QueryColumnRef& headColumn,
                     const GridSink& sink)
{
    const auto* entry = menu->find(key);
    if (!entry || !entry->enabled || entry->separator() || entry->subMenu()) return false;
    if (entry->command) {
        // The menu may be refilled by the command; the sink still hears the key.
        const auto command = entry->command;
        command();
    }
    if (headColumn)
        sink.raise([&](IQGridEvents& events) { events.TitlePopUpCmd(menu, key, headColumn); });
    else
        sink.raise([&](IQGridEvents& events) { events.PopUpCmd(menu, key); });
    return true;
}

int startDrag(const Variant& data, const GridSink& sink)
{
    int allowed = dropeffect::Copy | dropeffect::Move | dropeffect::Link;
    sink.raise([&](IQGridEvents& events) { events.OLEStartDrag(data, allowed); });
    return allowed;
}

int dragOver(const Variant& data, const QueryColumnRef& headColumn, const GridSink& sink)
{
    int effect = dropeffect::None;
    if (headColumn)
        sink.raise([&](IQGridEvents& events) { events.OLETitleDragOver(data, effect, headColumn); });
    else
        sink.raise([&](IQGridEvents& events) { events.OLEDragOver(data, effect); });
    return effect;
}

int drop(const Variant& data, int effect, const QueryColumnRef& headColumn, const GridSink& sink)
{
    if (headColumn)
        sink.raise([&](IQGridEvents& events) { events.OLETitleDragDrop(data, effect, headColumn); });
    else
        sink.raise([&](IQGridEvents& events) { events.OLEDragDrop(data, effect); });
    return effect;
}

}  // namespace pipespec::platform
