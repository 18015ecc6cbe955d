#include "platform/query/HeadlessGrid.h"

#include "objectmodel/Text.h"
#include "platform/store/Collections.h"
#include "platform/query/QueryCells.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace pipespec::platform {

// ---- GridSettings ------------------------------------------------------

void GridSettings::Load(const ObjectSetNodeRef& node) { values_ = must(node).values; }

int GridSettings::columnWidth(const IQueryColumn& column) const
{
    const auto found = values_.find("Width." + column.Key());
    if (found == values_.end() || !text::IsNumeric(found->second)) return column.Width();
    return text::CLng(found->second);
}

// ---- HeadlessGrid: what it shows ---------------------------------------

HeadlessGrid::HeadlessGrid(std::string settingsName) : settings_(std::make_shared<GridSettings>(std::move(settingsName))) {}

IQuery& HeadlessGrid::query() const { return must(query_); }

QueryColumnRef HeadlessGrid::column(std::string_view key) const
{
    auto found = query().Top()->Columns()->Item(key);
    if (!found) throw PlatformError(err::SubscriptOutOfRange, "the grid has no column " + std::string(key));
    return found;
}

int HeadlessGrid::rowCount() const { return query_ ? query_->RowCount() : 0; }
ObjectRef HeadlessGrid::rowObject(int row) const { return query().RowObject(row); }
std::string HeadlessGrid::cellText(int row, std::string_view key) const { return query().CellText(row, column(key)); }
int HeadlessGrid::columnWidth(std::string_view key) const { return settings_->columnWidth(*column(key)); }

std::vector<std::string> HeadlessGrid::shownColumns() const
{
    std::vector<std::string> keys;
    const auto columns = query().Top()->Columns();
    for (int i = 1; i <= columns->Count(); ++i)
        if (const auto shown = columns->Item(i); shown->Visible()) keys.push_back(shown->Key());
    return keys;
}

int HeadlessGrid::rowOf(const ObjectRef& object) const
{
    for (int row = 1; row <= rowCount(); ++row)
        if (same(query_->RowObject(row), object)) return row;
    return 0;
}

ObjectRef HeadlessGrid::CurrentSpecification() const
{
    const int row = currentColumn_ ? rowOf(currentObject_) : 0;
    if (row == 0) return nullptr;
    auto shown = query().CellObject(row, currentColumn_);
    return asSpec(shown) ? shown : nullptr;
}

CollectionRef HeadlessGrid::SelectedObjects() const
{
    auto selected = std::make_shared<FreeCollection>();
    for (const auto& object : selection_) selected->Add(object);
    return selected;
}

void HeadlessGrid::SetQuery(const QueryRef& query)
{
    query_ = query;
    selection_.clear();
    currentObject_ = nullptr;
    currentColumn_ = nullptr;
    Redraw();
}

void HeadlessGrid::Refresh()
{
    std::unordered_set<const IBaseObject*> shown;
    for (int row = 1; row <= rowCount(); ++row) shown.insert(query_->RowObject(row).get());
    std::erase_if(selection_, [&](const ObjectRef& object) { return !shown.count(object.get()); });
    if (!shown.count(currentObject_.get())) currentObject_ = nullptr;
    Redraw();
}

void HeadlessGrid::ShutDown()
{
    query_ = nullptr;
    sink_.reset();
    selection_.clear();
    currentObject_ = nullptr;
    currentColumn_ = nullptr;
    menu_ = nullptr;
    menuColumn_ = nullptr;
}

void HeadlessGrid::SetEventSink(const std::shared_ptr<IQGridEvents>& sink)
{
    sink_ = sink;
    sinkVersion_ = sink ? sink->Version() : 0;
}

void HeadlessGrid::RemoveEventSink(const std::shared_ptr<IQGridEvents>& sink)
{
    if (sink_.lock() == sink) sink_.reset();
}

std::vector<ObjectRef> HeadlessGrid::rowObjects() const
{
    std::vector<ObjectRef> objects;
    if (const auto all = query().Top()->Objects())
        for (int i = 1; i <= all->Count(); ++i) objects.push_back(all->Item(i));
    return objects;
}

void HeadlessGrid::setRowObjects(const std::vector<ObjectRef>& objects)
{
    auto collection = std::make_shared<FreeCollection>();
    for (const auto& object : objects) collection->Add(object);
    query().Top()->SetObjects(collection);
    query().Refresh();
    Refresh();
}

// ---- HeadlessGrid: what a user does ------------------------------------

void HeadlessGrid::selectRows(std::vector<int> rows)
{
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    selection_.clear();
    for (const int row : rows) selection_.push_back(rowObject(row));
    currentObject_ = selection_.empty() ? nullptr : selection_.front();
    raise([](IQGridEvents& sink) { sink.Change(); });
}

void HeadlessGrid::setCurrentCell(int row, std::string_view key)
{
    currentColumn_ = column(key);
    currentObject_ = rowObject(row);
    selection_ = {currentObject_};
}

void HeadlessGrid::clickCell(int row, std::string_view key)
{
    setCurrentCell(row, key);
    raise([](IQGridEvents& sink) { sink.Change(); });
}

void HeadlessGrid::doubleClickCell(int row, std::string_view key)
{
    clickCell(row, key);
    raise([](IQGridEvents& sink) { sink.DblClick(); });
}

void HeadlessGrid::clickHead(std::string_view key)
{
    const auto clicked = column(key);
    currentColumn_ = clicked;
    raise([&](IQGridEvents& sink) { sink.HeadClick(clicked); });
    if (!clicked->Sortable()) return;
    const auto sort = query().Sorts()->Item(0);
    const bool turn = sort->Column() == clicked && sort->Direction() == sortdirection::Ascending;
    sort->SetColumn(clicked);
    sort->SetDirection(turn ? sortdirection::Descending : sortdirection::Ascending);
    query().Refresh();
    Refresh();
}

std::shared_ptr<const PopUpMenu> HeadlessGrid::openMenu(QueryColumnRef headColumn)
{
    menu_ = std::make_shared<PopUpMenu>();
    menuColumn_ = std::move(headColumn);
    return menu_;
}

std::shared_ptr<const PopUpMenu> HeadlessGrid::openCellMenu()
{
    auto menu = openMenu(nullptr);
    raise([&](IQGridEvents& sink) { sink.BeforeCreateStdPopUp(menu_); });
    raise([&](IQGridEvents& sink) { sink.PopUp(menu_); });
    return menu;
}

std::shared_ptr<const PopUpMenu> HeadlessGrid::openHeadMenu(std::string_view key)
{
    auto menu = openMenu(column(key));
    raise([&](IQGridEvents& sink) { sink.TitlePopUp(menu_, menuColumn_); });
    return menu;
}

bool HeadlessGrid::openSubMenu(std::string_view key)
{
    const auto* entry = menu_ ? menu_->find(key) : nullptr;
    if (!entry || !entry->subMenu()) return false;
    if (menuColumn_)
        raise([&](IQGridEvents& sink) { sink.TitlePopUpSubMenu(menu_, key, menuColumn_); });
    else
        raise([&](IQGridEvents& sink) { sink.PopUpSubMenu(menu_, key); });
    return true;
}

bool HeadlessGrid::chooseMenuEntry(std::string_view key)
{
    const auto* entry = menu_ ? menu_->find(key) : nullptr;
    if (!entry || !entry->enabled || entry->separator() || entry->subMenu()) return false;
    // The menu closes before the command runs; the command may open another.
    const auto menu = std::exchange(menu_, nullptr);
    const auto head = std::exchange(menuColumn_, nullptr);
    if (head)
        raise([&](IQGridEvents& sink) { sink.TitlePopUpCmd(menu, key, head); });
    else
        raise([&](IQGridEvents& sink) { sink.PopUpCmd(menu, key); });
    return true;
}

bool HeadlessGrid::editCell(int row, std::string_view key, const Variant& value)
{
    const auto edited = column(key);
    if (!edited->Editable()) return false;
    const auto object = rowObject(row);
    bool cancel = false;
    raise([&](IQGridEvents& sink) { sink.BeforeCellEdit(object, edited, cancel); });
    if (cancel) return false;
    const bool twoState = query().CellItemsKind(row, edited) == cellitems::TwoState;
    query().SetCellValue(row, edited, twoState ? Variant(cells::flag(value)) : value);
    raise([&](IQGridEvents& sink) { sink.AfterCellEdit(object, edited); });
    return true;
}

bool HeadlessGrid::deleteColumns(const std::vector<std::string>& keys)
{
    std::vector<QueryColumnRef> doomed;
    for (const auto& key : keys) doomed.push_back(column(key));
    bool cancel = false;
    raise([&](IQGridEvents& sink) { sink.BeforeColumnsDelete(doomed, cancel); });
    if (cancel) return false;
    const auto columns = query().Top()->Columns();
    for (const auto& key : keys) columns->Remove(key);
    if (std::find(doomed.begin(), doomed.end(), currentColumn_) != doomed.end()) currentColumn_ = nullptr;
    raise([](IQGridEvents& sink) { sink.AfterColumnsDelete(); });
    return true;
}

void HeadlessGrid::moveColumn(std::string_view key, int position)
{
    const auto moved = column(key);
    const auto columns = query().Top()->Columns();
    columns->Remove(key);
    int placedAt = 0;
    columns->Insert(moved, position, placedAt);
    raise([](IQGridEvents& sink) { sink.ColumnsChanged(); });
}

bool HeadlessGrid::deleteSelectedRows()
{
    if (selection_.empty()) return false;
    bool cancel = false;
    const auto doomed = SelectedObjects();
    raise([&](IQGridEvents& sink) { sink.BeforeRowsDelete(doomed, cancel); });
    if (cancel) return false;
    std::unordered_set<const IBaseObject*> gone;
    for (const auto& object : selection_) gone.insert(object.get());
    auto objects = rowObjects();
    std::erase_if(objects, [&](const ObjectRef& object) { return gone.count(object.get()) != 0; });
    setRowObjects(objects);
    raise([](IQGridEvents& sink) { sink.AfterRowsDelete(); });
    return true;
}

void HeadlessGrid::moveRow(int from, int to)
{
    const auto moved = rowObject(from);
    const auto before = to <= rowCount() ? rowObject(to) : nullptr;
    auto objects = rowObjects();
    std::erase(objects, moved);
    objects.insert(before ? std::find(objects.begin(), objects.end(), before) : objects.end(), moved);
    setRowObjects(objects);
    raise([](IQGridEvents& sink) { sink.AfterRowsMove(); });
}

Variant HeadlessGrid::startDrag()
{
    const Variant data(SelectedObjects());
    int allowed = dropeffect::Copy | dropeffect::Move | dropeffect::Link;
    raise([&](IQGridEvents& sink) { sink.OLEStartDrag(data, allowed); });
    return allowed == dropeffect::None ? Variant() : data;
}

int HeadlessGrid::dragOver(const Variant& data)
{
    dragEffect_ = dropeffect::None;
    raise([&](IQGridEvents& sink) { sink.OLEDragOver(data, dragEffect_); });
    return dragEffect_;
}

int HeadlessGrid::dragOverHead(const Variant& data, std::string_view key)
{
    const auto target = column(key);
    dragEffect_ = dropeffect::None;
    raise([&](IQGridEvents& sink) { sink.OLETitleDragOver(data, dragEffect_, target); });
    return dragEffect_;
}

int HeadlessGrid::drop(const Variant& data)
{
    int effect = std::exchange(dragEffect_, dropeffect::None);
    raise([&](IQGridEvents& sink) { sink.OLEDragDrop(data, effect); });
    return effect;
}

int HeadlessGrid::dropOnHead(const Variant& data, std::string_view key)
{
    const auto target = column(key);
    int effect = std::exchange(dragEffect_, dropeffect::None);
    raise([&](IQGridEvents& sink) { sink.OLETitleDragDrop(data, effect, target); });
    return effect;
}

void HeadlessGrid::completeDrag(int effect)
{
    raise([&](IQGridEvents& sink) { sink.OLECompleteDrag(effect); });
}

}  // namespace pipespec::platform
