#pragma once

// Our query engine: "QuorlQuery.Query". A query holds its columns by key,
// its filters and sorts, and the rows of its last Refresh. Refresh reads only
// the cells that filters and sorts need, each once; all other cells are read
// when a grid asks for them. What a cell shows is told in QueryCells.h.

#include "objectmodel/QueryInterfaces.h"
#include "objectmodel/TextHash.h"
#include "platform/query/QueryDefinition.h"

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace pipespec::platform {

class QueryColumn;
using ColumnPtr = std::shared_ptr<QueryColumn>;

// The source of a column: writes straight into the column's settings.
class ColumnSource final : public IColumnSource {
public:
    explicit ColumnSource(ColumnSettings& settings) : settings_(settings) {}
    void Set(int kind, std::string_view name) override;
    int Kind() const override { return settings_.sourceKind; }
    std::string Name() const override { return settings_.sourceName; }

private:
    ColumnSettings& settings_;
};

class QueryColumn final : public IQueryColumn, public std::enable_shared_from_this<QueryColumn> {
public:
    explicit QueryColumn(ColumnSettings settings);
    QueryColumn(const QueryColumn&) = delete;
    QueryColumn& operator=(const QueryColumn&) = delete;

    std::string Key() const override { return settings_.key; }
    std::string Title() const override { return settings_.title; }
    void SetTitle(std::string_view title) override { settings_.title = title; }
    int Width() const override { return settings_.width; }
    void SetWidth(int width) override;
    bool Visible() const override { return settings_.visible; }
    void SetVisible(bool visible) override { settings_.visible = visible; }
    bool ObjectColumn() const override { return settings_.objectColumn; }
    void SetObjectColumn(bool objectColumn) override { settings_.objectColumn = objectColumn; }
    QueryColumnRef BaseColumn() const override { return base_; }
    // A base chain that leads back to this column is refused (1002).
    void SetBaseColumn(const QueryColumnRef& column) override;
    int ValueKind() const override { return settings_.valueKind; }
    void SetValueKind(int kind) override;
    std::string ValueParameter() const override { return settings_.valueParameter; }
    void SetValueParameter(std::string_view parameter) override;
    std::shared_ptr<IColumnSource> Source() const override;
    bool Numeric() const override { return settings_.numeric; }
    void SetNumeric(bool numeric) override { settings_.numeric = numeric; }
    int NumericMode() const override { return settings_.numericMode; }
    void SetNumericMode(int mode) override;
    bool SizeToContent() const override { return settings_.sizeToContent; }
    void SetSizeToContent(bool on) override { settings_.sizeToContent = on; }
    bool Refreshed() const override { return settings_.refreshed; }
    void SetRefreshed(bool on) override { settings_.refreshed = on; }
    int ExtendedKind() const override { return settings_.extendedKind; }
    void SetExtendedKind(int kind) override;
    bool Editable() const override { return settings_.editable; }
    void SetEditable(bool editable) override { settings_.editable = editable; }
    bool Sortable() const override { return settings_.sortable; }
    void SetSortable(bool sortable) override { settings_.sortable = sortable; }
    int Grouping() const override { return settings_.grouping; }
    void SetGrouping(int grouping) override { settings_.grouping = grouping; }

    const ColumnSettings& settings() const { return settings_; }
    const ColumnPtr& base() const { return base_; }

private:
    ColumnSettings settings_;
    // Handed out by Source(), also on a const column: setting the source is
    // what the handle is for.
    mutable ColumnSource source_{settings_};
    ColumnPtr base_;
};

// A column of this engine behind an interface reference: empty stays empty,
// a column of another engine is an error (13).
ColumnPtr ownColumn(const QueryColumnRef& column);

class QueryColumns final : public IQueryColumns {
public:
    int Count() const override { return static_cast<int>(items_.size()); }
    QueryColumnRef Item(std::string_view key) const override { return find(key); }
    QueryColumnRef Item(int index) const override;
    using IQueryColumns::Item;
    QueryColumnRef Add(std::string_view key, int position) override;
    void Insert(const QueryColumnRef& column, int position, int& placedAt) override;
    QueryColumnRef Remove(int index) override;
    QueryColumnRef Remove(std::string_view key) override;
    using IQueryColumns::Remove;
    void Clear() override;

    const std::vector<ColumnPtr>& items() const { return items_; }
    ColumnPtr find(std::string_view key) const;

private:
    // Puts the column at the 1-based position (-1: the end) and gives the place.
    int place(ColumnPtr column, int position);
    ColumnPtr takeOut(std::size_t at);

    std::vector<ColumnPtr> items_;
    TextMap<ColumnPtr> byKey_;
};

class QueryFilter final : public IQueryFilter {
public:
    QueryColumnRef Column() const override { return column_; }
    void SetColumn(const QueryColumnRef& column) override { column_ = ownColumn(column); }
    int Operator() const override { return op_; }
    void SetOperator(int op) override;
    Variant Value() const override { return value_; }
    void SetValue(const Variant& value) override { value_ = value; }
    int Link() const override { return link_; }
    void SetLink(int link) override;

    const ColumnPtr& column() const { return column_; }
    const Variant& value() const { return value_; }
    // Takes part in Refresh: it has a column and an operator.
    bool active() const { return column_ && op_ != filteroperator::None; }

private:
    ColumnPtr column_;
    int op_ = filteroperator::None;
    int link_ = filterlink::None;
    Variant value_;
};

class QueryFilters final : public IQueryFilters {
public:
    int Count() const override { return static_cast<int>(items_.size()); }
    QueryFilterRef Item(int index) const override;
    QueryFilterRef Add(int index) override;

    const std::vector<std::shared_ptr<QueryFilter>>& items() const { return items_; }
    std::shared_ptr<QueryFilter> append();

private:
    std::vector<std::shared_ptr<QueryFilter>> items_;
};

class QuerySort final : public IQuerySort {
public:
    QueryColumnRef Column() const override { return column_; }
    void SetColumn(const QueryColumnRef& column) override { column_ = ownColumn(column); }
    int Direction() const override { return direction_; }
    void SetDirection(int direction) override;

    const ColumnPtr& column() const { return column_; }
    bool active() const { return column_ && direction_ != sortdirection::None; }

private:
    ColumnPtr column_;
    int direction_ = sortdirection::None;
};

class QuerySorts final : public IQuerySorts {
public:
    int Count() const override { return static_cast<int>(items_.size()); }
    QuerySortRef Item(int level) override { return at(level); }

    const std::vector<std::shared_ptr<QuerySort>>& items() const { return items_; }
    std::shared_ptr<QuerySort> at(int level);

private:
    std::vector<std::shared_ptr<QuerySort>> items_;
};

class QueryTop final : public IQueryTop {
public:
    QueryTop() : columns_(std::make_shared<QueryColumns>()) {}

    CollectionRef Objects() const override { return objects_; }
    void SetObjects(const CollectionRef& objects) override { objects_ = objects; }
    QueryColumnsRef Columns() const override { return columns_; }
    void RegisterExtended(std::string_view className, const ExtendedRef& extended) override;

    QueryColumns& columns() const { return *columns_; }
    // The server of extended cells: the one registered last that still lives.
    // A class named by a stored definition is first bound to the server
    // published for it in the database of `row` (ExtendedServers.h).
    ExtendedRef server(const ObjectRef& row);
    void copyRegistrationsFrom(const QueryTop& other) { registrations_ = other.registrations_; }
    // The class names registered, in order: what a stored definition keeps.
    std::vector<std::string> classNames() const;
    // Registrations by class name only, as a stored definition brings them.
    void nameServers(const std::vector<std::string>& classNames);
    // Forgets every registration and gives back the servers still alive.
    std::vector<ExtendedRef> releaseServers();

private:
    struct Registration {
        std::string className;
        std::weak_ptr<IExtended> server;
        bool bound = true;  // false: named by a stored definition, not bound to a server yet
    };
    void bindNamed(const ObjectRef& row);

    std::shared_ptr<QueryColumns> columns_;
    CollectionRef objects_;
    std::vector<Registration> registrations_;
};

class Query final : public IQuery {
public:
    Query();
    // A query as the definition describes it, without rows and servers.
    static std::shared_ptr<Query> fromDefinition(const QueryDefinition& definition);
    QueryDefinition definition() const;

    QueryTopRef Top() const override { return top_; }
    QueryFiltersRef Filters() const override { return filters_; }
    QuerySortsRef Sorts() const override { return sorts_; }
    void Refresh() override;
    QueryRef Copy() const override;
    void ShutDown() override;

    int RowCount() const override { return static_cast<int>(rows_.size()); }
    ObjectRef RowObject(int row) const override { return rowAt(row).object; }
    ObjectRef CellObject(int row, const QueryColumnRef& column) const override;
    Variant CellValue(int row, const QueryColumnRef& column) const override;
    std::string CellText(int row, const QueryColumnRef& column) const override;
    int CellItemsKind(int row, const QueryColumnRef& column) const override;
    void SetCellValue(int row, const QueryColumnRef& column, const Variant& value) override;

private:
    struct Row {
        ObjectRef object;
        int position = 0;  // among the row objects, from 1
    };
    const Row& rowAt(int row) const;
    std::vector<Row> rowObjects() const;
    Variant valueOf(const Row& row, const QueryColumn& column) const;
    ExtendedRef serverFor(const QueryColumn& column, const Row& row) const;

    std::shared_ptr<QueryTop> top_;
    std::shared_ptr<QueryFilters> filters_;
    std::shared_ptr<QuerySorts> sorts_;
    std::vector<Row> rows_;
};

}  // namespace pipespec::platform
