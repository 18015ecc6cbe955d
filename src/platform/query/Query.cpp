#include "platform/query/Query.h"

#include "platform/query/ExtendedServers.h"
#include "platform/query/QueryCells.h"

#include <algorithm>
#include <initializer_list>

namespace pipespec::platform {

namespace {
void requireOneOf(int value, std::initializer_list<int> allowed, std::string_view what)
{
    if (std::find(allowed.begin(), allowed.end(), value) == allowed.end())
        throw PlatformError(err::InvalidCall, std::to_string(value) + " is no " + std::string(what));
}

PlatformError outOfRange(std::string_view what, int index, int count)
{
    return PlatformError(err::SubscriptOutOfRange, std::string(what) + " " + std::to_string(index) +
                                                       " is out of range (" + std::to_string(count) + ")");
}

// The place of a 1-based index in a list of `count` items.
std::size_t slot(int index, std::size_t count, std::string_view what)
{
    if (index < 1 || static_cast<std::size_t>(index) > count) throw outOfRange(what, index, static_cast<int>(count));
    return static_cast<std::size_t>(index - 1);
}

template <class T>
const T& itemAt(const std::vector<T>& items, int index, std::string_view what)
{
    return items[slot(index, items.size(), what)];
}

std::string keyOf(const ColumnPtr& column) { return column ? column->Key() : std::string(); }

// An object that only keeps the kind of item list an extended server sets.
class CellItems final : public ICellItems {
public:
    void SetKind(int kind) override { kind_ = kind; }
    int Kind() const override { return kind_; }

private:
    int kind_ = cellitems::Text;
};
}  // namespace

// ---- Columns -----------------------------------------------------------

void ColumnSource::Set(int kind, std::string_view name)
{
    requireOneOf(kind, {sourcekind::None, sourcekind::Owner, sourcekind::BaseObject, sourcekind::Attribute},
                 "column source");
    settings_.sourceKind = kind;
    settings_.sourceName = name;
}

QueryColumn::QueryColumn(ColumnSettings settings) : settings_(std::move(settings)) {}

void QueryColumn::SetWidth(int width)
{
    if (width < 0) throw PlatformError(err::InvalidCall, "column " + settings_.key + " cannot be narrower than 0");
    settings_.width = width;
}

void QueryColumn::SetBaseColumn(const QueryColumnRef& column)
{
    auto base = ownColumn(column);
    for (auto step = base; step; step = step->base_)
        if (step.get() == this)
            throw PlatformError(err::CycleRefused, "column " + settings_.key + " cannot start from itself");
    base_ = std::move(base);
}

void QueryColumn::SetValueKind(int kind)
{
    requireOneOf(kind,
                 {valuekind::None, valuekind::Description, valuekind::Name, valuekind::Component,
                  valuekind::DisplayValue, valuekind::RangeBound, valuekind::Value},
                 "value kind");
    settings_.valueKind = kind;
}

void QueryColumn::SetValueParameter(std::string_view parameter)
{
    if (parameter != "" && parameter != "0" && parameter != "1")
        throw PlatformError(err::InvalidCall,
                            "'" + std::string(parameter) + "' is no bound of a range: \"0\" or \"1\"");
    settings_.valueParameter = parameter;
}

std::shared_ptr<IColumnSource> QueryColumn::Source() const { return {shared_from_this(), &source_}; }

void QueryColumn::SetNumericMode(int mode)
{
    requireOneOf(mode, {0, 1}, "numeric mode");
    settings_.numericMode = mode;
}

void QueryColumn::SetExtendedKind(int kind)
{
    requireOneOf(kind, {extendedkind::None, extendedkind::Value, extendedkind::Object, extendedkind::CheckBox},
                 "extended kind");
    settings_.extendedKind = kind;
}

ColumnPtr ownColumn(const QueryColumnRef& column)
{
    auto own = std::dynamic_pointer_cast<QueryColumn>(column);
    if (column && !own)
        throw PlatformError(err::TypeMismatch, "the column " + column->Key() + " belongs to another query engine");
    return own;
}

QueryColumnRef QueryColumns::Item(int index) const { return itemAt(items_, index, "column"); }

ColumnPtr QueryColumns::find(std::string_view key) const
{
    const auto found = byKey_.find(key);
    return found == byKey_.end() ? nullptr : found->second;
}

int QueryColumns::place(ColumnPtr column, int position)
{
    if (position != -1 && position < 1)
        throw PlatformError(err::InvalidCall, "column position " + std::to_string(position));
    const auto key = column->Key();
    if (byKey_.count(key) != 0)
        throw PlatformError(err::DuplicateKey, "the query already has a column with the key " + key);
    const auto at = position == -1 ? items_.size() : std::min(items_.size(), static_cast<std::size_t>(position - 1));
    byKey_.emplace(key, column);
    items_.insert(items_.begin() + static_cast<std::ptrdiff_t>(at), std::move(column));
    return static_cast<int>(at) + 1;
}

QueryColumnRef QueryColumns::Add(std::string_view key, int position)
{
    ColumnSettings settings;
    settings.key = key;
    auto column = std::make_shared<QueryColumn>(std::move(settings));
    place(column, position);
    return column;
}

void QueryColumns::Insert(const QueryColumnRef& column, int position, int& placedAt)
{
    if (!column) throw PlatformError(err::ObjectNotSet, "there is no column to insert");
    placedAt = place(ownColumn(column), position);
}

ColumnPtr QueryColumns::takeOut(std::size_t at)
{
    auto column = items_[at];
    byKey_.erase(column->Key());
    items_.erase(items_.begin() + static_cast<std::ptrdiff_t>(at));
    return column;
}

QueryColumnRef QueryColumns::Remove(int index) { return takeOut(slot(index, items_.size(), "column")); }

QueryColumnRef QueryColumns::Remove(std::string_view key)
{
    const auto column = find(key);
    if (!column) return nullptr;
    return takeOut(static_cast<std::size_t>(std::find(items_.begin(), items_.end(), column) - items_.begin()));
}

void QueryColumns::Clear()
{
    items_.clear();
    byKey_.clear();
}

// ---- Filters and sorts -------------------------------------------------

void QueryFilter::SetOperator(int op)
{
    requireOneOf(op,
                 {filteroperator::None, filteroperator::Equal, filteroperator::NotEqual, filteroperator::Greater,
                  filteroperator::AtLeast, filteroperator::Less, filteroperator::AtMost, filteroperator::Contains},
                 "filter operator");
    op_ = op;
}

void QueryFilter::SetLink(int link)
{
    requireOneOf(link, {filterlink::None, filterlink::And, filterlink::Or}, "filter link");
    link_ = link;
}

QueryFilterRef QueryFilters::Item(int index) const { return itemAt(items_, index, "filter"); }

std::shared_ptr<QueryFilter> QueryFilters::append() { return items_.emplace_back(std::make_shared<QueryFilter>()); }

QueryFilterRef QueryFilters::Add(int index)
{
    if (index != -1)
        throw PlatformError(err::InvalidCall,
                            "filters are added at the end only (-1), not at " + std::to_string(index));
    if (!items_.empty() && items_.back()->Link() == filterlink::None) return items_.back();
    return append();
}

void QuerySort::SetDirection(int direction)
{
    requireOneOf(direction, {sortdirection::None, sortdirection::Ascending, sortdirection::Descending},
                 "sort direction");
    direction_ = direction;
}

std::shared_ptr<QuerySort> QuerySorts::at(int level)
{
    if (level < 0) throw outOfRange("sort level", level, Count());
    while (items_.size() <= static_cast<std::size_t>(level)) items_.push_back(std::make_shared<QuerySort>());
    return items_[static_cast<std::size_t>(level)];
}

// ---- Top level ---------------------------------------------------------

void QueryTop::RegisterExtended(std::string_view className, const ExtendedRef& extended)
{
    std::erase_if(registrations_, [&](const Registration& r) { return r.className == className; });
    registrations_.push_back({std::string(className), extended});
}

ExtendedRef QueryTop::server(const ObjectRef& row)
{
    bindNamed(row);
    for (auto it = registrations_.rbegin(); it != registrations_.rend(); ++it)
        if (auto alive = it->server.lock()) return alive;
    return nullptr;
}

void QueryTop::bindNamed(const ObjectRef& row)
{
    for (auto& registration : registrations_) {
        if (registration.bound || !row) continue;
        const auto workset = row->Workset();
        if (!workset) return;
        registration.server = publishedExtendedServer(*workset, registration.className);
        registration.bound = !registration.server.expired();
    }
}

std::vector<std::string> QueryTop::classNames() const
{
    std::vector<std::string> names;
    for (const auto& registration : registrations_) names.push_back(registration.className);
    return names;
}

void QueryTop::nameServers(const std::vector<std::string>& classNames)
{
    registrations_.clear();
    for (const auto& className : classNames) registrations_.push_back({className, {}, false});
}

std::vector<ExtendedRef> QueryTop::releaseServers()
{
    std::vector<ExtendedRef> alive;
    for (const auto& registration : registrations_)
        if (auto server = registration.server.lock()) alive.push_back(std::move(server));
    registrations_.clear();
    return alive;
}

// ---- Query -------------------------------------------------------------

Query::Query()
    : top_(std::make_shared<QueryTop>()),
      filters_(std::make_shared<QueryFilters>()),
      sorts_(std::make_shared<QuerySorts>())
{
}

QueryDefinition Query::definition() const
{
    QueryDefinition definition;
    for (const auto& column : top_->columns().items())
        definition.columns.push_back({column->settings(), keyOf(column->base())});
    for (const auto& filter : filters_->items())
        definition.filters.push_back({keyOf(filter->column()), filter->Operator(), filter->Link(), filter->Value()});
    for (const auto& sort : sorts_->items()) definition.sorts.push_back({keyOf(sort->column()), sort->Direction()});
    definition.servers = top_->classNames();
    return definition;
}

std::shared_ptr<Query> Query::fromDefinition(const QueryDefinition& definition)
{
    auto query = std::make_shared<Query>();
    auto& columns = query->top_->columns();
    for (const auto& column : definition.columns) {
        int placedAt = 0;
        columns.Insert(std::make_shared<QueryColumn>(column.settings), -1, placedAt);
    }
    for (const auto& column : definition.columns)
        if (!column.baseColumn.empty())
            columns.find(column.settings.key)->SetBaseColumn(columns.find(column.baseColumn));
    for (const auto& stored : definition.filters) {
        const auto filter = query->filters_->append();
        filter->SetColumn(columns.find(stored.column));
        filter->SetOperator(stored.op);
        filter->SetLink(stored.link);
        filter->SetValue(stored.value);
    }
    for (std::size_t level = 0; level < definition.sorts.size(); ++level) {
        const auto sort = query->sorts_->at(static_cast<int>(level));
        sort->SetColumn(columns.find(definition.sorts[level].column));
        sort->SetDirection(definition.sorts[level].direction);
    }
    query->top_->nameServers(definition.servers);
    return query;
}

QueryRef Query::Copy() const
{
    auto copy = fromDefinition(definition());
    copy->top_->copyRegistrationsFrom(*top_);
    copy->top_->SetObjects(top_->Objects());
    return copy;
}

void Query::ShutDown()
{
    rows_.clear();
    top_->SetObjects(nullptr);
    for (const auto& server : top_->releaseServers()) server->ShutDown();
}

const Query::Row& Query::rowAt(int row) const { return itemAt(rows_, row, "row"); }

ExtendedRef Query::serverFor(const QueryColumn& column, const Row& row) const
{
    return column.ExtendedKind() == extendedkind::None ? nullptr : top_->server(row.object);
}

Variant Query::valueOf(const Row& row, const QueryColumn& column) const
{
    const auto source = cells::sourceObject(row.object, column);
    if (column.ExtendedKind() == extendedkind::None) return cells::read(source, column.settings());
    const auto server = serverFor(column, row);
    if (!server) return {};
    const auto self = std::const_pointer_cast<QueryColumn>(column.shared_from_this());
    if (column.ExtendedKind() == extendedkind::Object)
        if (auto shown = server->CellObject(row.object, self, row.position, source)) return shown;
    const auto value = server->CellValue(row.object, self, row.position, source);
    return column.ExtendedKind() == extendedkind::CheckBox ? Variant(cells::flag(value)) : value;
}

ObjectRef Query::CellObject(int row, const QueryColumnRef& column) const
{
    return cells::sourceObject(rowAt(row).object, must(ownColumn(column)));
}

Variant Query::CellValue(int row, const QueryColumnRef& column) const
{
    return valueOf(rowAt(row), must(ownColumn(column)));
}

std::string Query::CellText(int row, const QueryColumnRef& column) const { return cells::text(CellValue(row, column)); }

int Query::CellItemsKind(int row, const QueryColumnRef& column) const
{
    const auto& own = must(ownColumn(column));
    const auto& cell = rowAt(row);
    const auto server = serverFor(own, cell);
    CellItems items;
    if (server) {
        server->CellValueItems(cell.object, column, cell.position, cells::sourceObject(cell.object, own), items);
    }
    return items.Kind();
}

void Query::SetCellValue(int row, const QueryColumnRef& column, const Variant& value)
{
    const auto& own = must(ownColumn(column));
    if (!own.Editable()) throw PlatformError(err::ReadOnly, "column " + own.Key() + " is not editable");
    const auto& cell = rowAt(row);
    const auto source = cells::sourceObject(cell.object, own);
    if (own.ExtendedKind() == extendedkind::None) return cells::write(source, own.settings(), value);
    const auto server = serverFor(own, cell);
    if (!server) throw PlatformError(err::ObjectNotSet, "no object serves the cells of column " + own.Key());
    server->SetCellValue(cell.object, column, cell.position, source, value);
}

}  // namespace pipespec::platform
