#include "platform/query/HeadlessGrid.h"

#include "platform/store/Collections.h"

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace pipespec::platform {

// ---- HeadlessGrid: what it shows ---------------------------------------

HeadlessGrid::HeadlessGrid(std::string settingsName)
    : settings_(std::make_shared<GridSettings>(std::move(settingsName)))
{
}

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
    events_.reset();
    selection_.clear();
    currentObject_ = nullptr;
    currentColumn_ = nullptr;
    menu_ = nullptr;
    menuColumn_ = nullptr;
}

void HeadlessGrid::SetEventSink(const std::shared_ptr<IQGridEvents>& sink) { events_.set(sink); }

void HeadlessGrid::RemoveEventSink(const std::shared_ptr<IQGridEvents>& sink) { events_.remove(sink); }

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
    currentColumn_ = column(key);
    if (platform::clickHead(query(), currentColumn_, events_)) Refresh();
}

std::shared_ptr<const PopUpMenu> HeadlessGrid::openMenu(QueryColumnRef headColumn)
{
    menuColumn_ = std::move(headColumn);
    menu_ = platform::openMenu(menuColumn_, events_);
    return menu_;
}

std::shared_ptr<const PopUpMenu> HeadlessGrid::openCellMenu() { return openMenu(nullptr); }

std::shared_ptr<const PopUpMenu> HeadlessGrid::openHeadMenu(std::string_view key) { return openMenu(column(key)); }

bool HeadlessGrid::openSubMenu(std::string_view key)
{
    return menu_ && platform::openSubMenu(menu_, key, menuColumn_, events_);
}

bool HeadlessGrid::chooseMenuEntry(std::string_view key)
{
    if (!menu_) return false;
    // The menu closes before the command runs; the command may open another.
    const auto menu = std::exchange(menu_, nullptr);
    const auto head = std::exchange(menuColumn_, nullptr);
    if (platform::chooseMenuEntry(menu, key, head, events_)) return true;
    menu_ = menu;
    menuColumn_ = head;
    return false;
}

bool HeadlessGrid::editCell(int row, std::string_view key, const Variant& value)
{
    const auto edited = column(key);
    return beginCellEdit(rowObject(row), edited, events_) && finishCellEdit(query(), row, edited, value, events_);
}

bool HeadlessGrid::deleteColumns(const std::vector<std::string>& keys)
{
    std::vector<QueryColumnRef> doomed;
    for (const auto& key : keys) doomed.push_back(column(key));
    if (!platform::deleteColumns(query(), doomed, events_)) return false;
    if (std::find(doomed.begin(), doomed.end(), currentColumn_) != doomed.end()) currentColumn_ = nullptr;
    return true;
}

void HeadlessGrid::moveColumn(std::string_view key, int position)
{
    platform::moveColumn(query(), column(key), position, events_);
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
    return platform::startDrag(data, events_) == dropeffect::None ? Variant() : data;
}

int HeadlessGrid::dragOver(const Variant& data) { return dragEffect_ = platform::dragOver(data, nullptr, events_); }

int HeadlessGrid::dragOverHead(const Variant& data, std::string_view key)
{
    return dragEffect_ = platform::dragOver(data, column(key), events_);
}

int HeadlessGrid::drop(const Variant& data)
{
    return platform::drop(data, std::exchange(dragEffect_, dropeffect::None), nullptr, events_);
}

int HeadlessGrid::dropOnHead(const Variant& data, std::string_view key)
{
    const auto target = column(key);
    return platform::drop(data, std::exchange(dragEffect_, dropeffect::None), target, events_);
}

void HeadlessGrid::completeDrag(int effect)
{
    raise([&](IQGridEvents& sink) { sink.OLECompleteDrag(effect); });
}

}  // namespace pipespec::platform
