#pragma once

// The query engine as the list controls see it: a query's top level holds the
// row objects and the columns; filters and sorts pick and order the rows;
// Refresh evaluates. Cells of extended columns are served by an IExtended
// object that the control registers. Query containers keep a stored query
// and the grid settings on a device of the database.
//
// Collections are counted from 1; the sort list is the exception, counted
// from 0 (level 0 is the primary sort). "Nothing found" answers nullptr;
// failures throw PlatformError.

#include "objectmodel/ObjectModel.h"

#include <list>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace pipespec {

class IQueryColumn;
class IQueryColumns;
class IQueryFilter;
class IQueryFilters;
class IQuerySort;
class IQuerySorts;
class IQueryTop;
class IQuery;
class IExtended;
class IQGrid;

using QueryColumnRef = std::shared_ptr<IQueryColumn>;
using QueryColumnsRef = std::shared_ptr<IQueryColumns>;
using QueryFilterRef = std::shared_ptr<IQueryFilter>;
using QueryFiltersRef = std::shared_ptr<IQueryFilters>;
using QuerySortRef = std::shared_ptr<IQuerySort>;
using QuerySortsRef = std::shared_ptr<IQuerySorts>;
using QueryTopRef = std::shared_ptr<IQueryTop>;
using QueryRef = std::shared_ptr<IQuery>;
using ExtendedRef = std::shared_ptr<IExtended>;

// Which property of the cell's source object a column shows.
namespace valuekind {
inline constexpr int None = 0;           // nothing: the column is a placeholder or extended
inline constexpr int Description = 1;    // the object's Description
inline constexpr int Name = 2;           // the object's Name
inline constexpr int Component = 20;     // a component as users know it: name and description
inline constexpr int DisplayValue = 30;  // an attribute's value as shown (value-list description)
inline constexpr int RangeBound = 31;    // one bound of a range answer; parameter "0" lower, "1" upper
inline constexpr int Value = 32;         // an attribute's stored value
}  // namespace valuekind

// Where a cell's source object comes from, starting at the row object (or at
// the base column's source object).
namespace sourcekind {
inline constexpr int None = -1;        // the starting object itself
inline constexpr int Owner = 0;        // its owner
inline constexpr int BaseObject = 13;  // its base object (CDevice)
inline constexpr int Attribute = 19;   // its attribute of the given name
}  // namespace sourcekind

// Columns whose cells the registered IExtended serves, and how.
namespace extendedkind {
inline constexpr int None = 0;
inline constexpr int Value = 2;      // the cell shows IExtended::CellValue
inline constexpr int Object = 3;     // the cell shows IExtended::CellObject, else CellValue
inline constexpr int CheckBox = 18;  // a two-state cell; CellValue is read as a flag
}  // namespace extendedkind

namespace filteroperator {
inline constexpr int None = 0;  // the filter takes no part
inline constexpr int Equal = 1;
inline constexpr int NotEqual = 2;
inline constexpr int Greater = 3;
inline constexpr int AtLeast = 4;
inline constexpr int Less = 5;
inline constexpr int AtMost = 6;
inline constexpr int Contains = 7;
}  // namespace filteroperator

// How a filter joins the one behind it. None and And both join with "and";
// And also says that the chain goes on (see IQueryFilters::Add).
namespace filterlink {
inline constexpr int None = 0;
inline constexpr int And = 1;
inline constexpr int Or = 2;
}  // namespace filterlink

namespace sortdirection {
inline constexpr int None = 0;
inline constexpr int Ascending = 1;
inline constexpr int Descending = 2;
}  // namespace sortdirection

// The item list an extended cell offers its editor.
namespace cellitems {
inline constexpr int Text = 0;
inline constexpr int TwoState = 3;
}  // namespace cellitems

class ICellItems {
public:
    virtual ~ICellItems() = default;
    virtual void SetKind(int kind) = 0;
    virtual int Kind() const = 0;
};

class IColumnSource {
public:
    virtual ~IColumnSource() = default;
    // kind: one of sourcekind; the name is that of the attribute for kind 19.
    virtual void Set(int kind, std::string_view name) = 0;
    virtual int Kind() const = 0;
    virtual std::string Name() const = 0;
};

class IQueryColumn {
public:
    virtual ~IQueryColumn() = default;

    // The stable identity of the column; code compares keys, never titles.
    virtual std::string Key() const = 0;
    virtual std::string Title() const = 0;
    virtual void SetTitle(std::string_view title) = 0;
    // In the grid's units; 0 takes no room.
    virtual int Width() const = 0;
    virtual void SetWidth(int width) = 0;
    virtual bool Visible() const = 0;
    virtual void SetVisible(bool visible) = 0;
    // The cell stands for an object (name-like columns).
    virtual bool ObjectColumn() const = 0;
    virtual void SetObjectColumn(bool objectColumn) = 0;
    // The column whose source object this one starts from; empty for the row object.
    virtual QueryColumnRef BaseColumn() const = 0;
    virtual void SetBaseColumn(const QueryColumnRef& column) = 0;
    virtual int ValueKind() const = 0;
    virtual void SetValueKind(int kind) = 0;
    virtual std::string ValueParameter() const = 0;
    virtual void SetValueParameter(std::string_view parameter) = 0;
    virtual std::shared_ptr<IColumnSource> Source() const = 0;
    // Values order and compare as numbers.
    virtual bool Numeric() const = 0;
    virtual void SetNumeric(bool numeric) = 0;
    // 0: a value counts as a number when it is one as a whole; 1: the first
    // number within the text counts ("DN 100" orders as 100).
    virtual int NumericMode() const = 0;
    virtual void SetNumericMode(int mode) = 0;
    virtual bool SizeToContent() const = 0;
    virtual void SetSizeToContent(bool on) = 0;
    virtual bool Refreshed() const = 0;
    virtual void SetRefreshed(bool on) = 0;
    virtual int ExtendedKind() const = 0;
    virtual void SetExtendedKind(int kind) = 0;
    virtual bool Editable() const = 0;
    virtual void SetEditable(bool editable) = 0;
    // A head click sorts by the column.
    virtual bool Sortable() const = 0;
    virtual void SetSortable(bool sortable) = 0;
    virtual int Grouping() const = 0;
    virtual void SetGrouping(int grouping) = 0;
};

class IQueryColumns {
public:
    virtual ~IQueryColumns() = default;

    virtual int Count() const = 0;
    // By key; empty when there is none.
    virtual QueryColumnRef Item(std::string_view key) const = 0;
    // 1-based; a number out of range is an error (9).
    virtual QueryColumnRef Item(int index) const = 0;
    QueryColumnRef Item(const char* key) const { return Item(std::string_view(key)); }
    QueryColumnRef Item(const std::string& key) const { return Item(std::string_view(key)); }
    // A new column at a 1-based position; -1 appends. A key in use is an error (457).
    virtual QueryColumnRef Add(std::string_view key, int position) = 0;
    // Puts a column (one taken out by Remove) at a 1-based position, -1 or a
    // position behind the last appending; placedAt receives where it landed.
    virtual void Insert(const QueryColumnRef& column, int position, int& placedAt) = 0;
    // Takes the column out and gives it back: by 1-based position (out of
    // range is an error, 9) or by key (empty when there is none).
    virtual QueryColumnRef Remove(int index) = 0;
    virtual QueryColumnRef Remove(std::string_view key) = 0;
    QueryColumnRef Remove(const char* key) { return Remove(std::string_view(key)); }
    QueryColumnRef Remove(const std::string& key) { return Remove(std::string_view(key)); }
    virtual void Clear() = 0;
};

class IQueryFilter {
public:
    virtual ~IQueryFilter() = default;
    virtual QueryColumnRef Column() const = 0;
    virtual void SetColumn(const QueryColumnRef& column) = 0;
    virtual int Operator() const = 0;
    virtual void SetOperator(int op) = 0;
    virtual Variant Value() const = 0;
    virtual void SetValue(const Variant& value) = 0;
    virtual int Link() const = 0;
    virtual void SetLink(int link) = 0;
};

class IQueryFilters {
public:
    virtual ~IQueryFilters() = default;
    virtual int Count() const = 0;
    // 1-based; out of range is an error (9).
    virtual QueryFilterRef Item(int index) const = 0;
    // index -1 gives the open end of the chain: the last filter while it is
    // not linked onward, otherwise a new filter behind it. So a caller links
    // the last filter and then asks again for the new one. Other indexes are
    // an error (5).
    virtual QueryFilterRef Add(int index) = 0;
};

class IQuerySort {
public:
    virtual ~IQuerySort() = default;
    virtual QueryColumnRef Column() const = 0;
    virtual void SetColumn(const QueryColumnRef& column) = 0;
    virtual int Direction() const = 0;
    virtual void SetDirection(int direction) = 0;
};

class IQuerySorts {
public:
    virtual ~IQuerySorts() = default;
    virtual int Count() const = 0;
    // The sort of that level, counted from 0; levels up to it are made on
    // first use, without a column. A negative level is an error (9).
    virtual QuerySortRef Item(int level) = 0;
};

class IQueryTop {
public:
    virtual ~IQueryTop() = default;
    // The row objects as given; empty until set.
    virtual CollectionRef Objects() const = 0;
    virtual void SetObjects(const CollectionRef& objects) = 0;
    virtual QueryColumnsRef Columns() const = 0;
    // Cells of extended columns come from this object. The query does not keep
    // it alive: the control that serves the cells owns the query, not the
    // other way round.
    virtual void RegisterExtended(std::string_view className, const ExtendedRef& extended) = 0;
};

class IQuery {
public:
    virtual ~IQuery() = default;

    virtual QueryTopRef Top() const = 0;
    virtual QueryFiltersRef Filters() const = 0;
    virtual QuerySortsRef Sorts() const = 0;
    // Picks and orders the rows. Only what the filters and sorts need is
    // read; every other cell is read when asked for.
    virtual void Refresh() = 0;
    // Columns, filters, sorts, registrations and row objects; the copy has
    // no rows until its own Refresh.
    virtual QueryRef Copy() const = 0;
    // Lets go of the row objects and the registered servers.
    virtual void ShutDown() = 0;

    // The rows of the last Refresh, counted from 1, and their cells.
    virtual int RowCount() const = 0;
    virtual ObjectRef RowObject(int row) const = 0;
    // The object the column resolves for the row, before any value is taken
    // from it: the attribute, the owner, the base object or the row itself.
    virtual ObjectRef CellObject(int row, const QueryColumnRef& column) const = 0;
    virtual Variant CellValue(int row, const QueryColumnRef& column) const = 0;
    virtual std::string CellText(int row, const QueryColumnRef& column) const = 0;
    // The item list the cell's editor offers (cellitems).
    virtual int CellItemsKind(int row, const QueryColumnRef& column) const = 0;
    // Writes through an editable column; any other is an error (1001).
    virtual void SetCellValue(int row, const QueryColumnRef& column, const Variant& value) = 0;
};

// The callback that serves the cells of extended columns. Cell members get
// the row object, the column, the row's 1-based place among the row objects
// and the cell object: the source object the engine resolved for the cell
// (for a column with a base column, the base column's), possibly nothing.
// A server overrides what it serves; the rest answers nothing.
class IExtended {
public:
    virtual ~IExtended() = default;

    virtual int Version() const = 0;
    virtual ObjectRef CellObjectOld(const ObjectRef&, const QueryColumnRef&, int, const ObjectRef&) { return nullptr; }
    virtual Variant CellPicture(const ObjectRef&, const QueryColumnRef&, int, const ObjectRef&) { return {}; }
    virtual void Definitions(const QueryRef&) {}
    virtual void TQGridDefinitions(const std::shared_ptr<IQGrid>&) {}
    // The query lets go of the server.
    virtual void ShutDown() {}
    virtual bool Reasonable(const ObjectRef&, const QueryColumnRef&, int, const ObjectRef&) { return false; }
    virtual void CellStyle(const ObjectRef&, const QueryColumnRef&, int, const ObjectRef&, Variant&) {}
    virtual CollectionRef GetOrigCollection() { return nullptr; }
    virtual Variant CellValue(const ObjectRef&, const QueryColumnRef&, int, const ObjectRef&) { return {}; }
    virtual void SetCellValue(const ObjectRef&, const QueryColumnRef&, int, const ObjectRef&, const Variant&) {}
    virtual bool OrgCollectionByExtendedOnly() { return false; }
    // The editor of the cell: cellitems::TwoState makes it a check box.
    virtual void CellValueItems(const ObjectRef&, const QueryColumnRef&, int, const ObjectRef&, ICellItems&) {}
    virtual bool CheckSetCellObject(const ObjectRef&, const QueryColumnRef&, int, const ObjectRef&) { return false; }
    virtual ObjectRef CellObject(const ObjectRef&, const QueryColumnRef&, int, const ObjectRef&) { return nullptr; }
    virtual void SetCellObject(const ObjectRef&, const QueryColumnRef&, int, const ObjectRef&, const ObjectRef&) {}
    virtual ObjectRef NewMainRowObject() { return nullptr; }
    virtual ObjectRef CellObjectByValue(const ObjectRef&, const QueryColumnRef&, int, const ObjectRef&, const Variant&)
    {
        return nullptr;
    }
    virtual Variant Dispatch() { return {}; }
    virtual void SUIQueryDefinitions(const QueryRef&) {}
};

// ---- Query containers ---------------------------------------------------

// A named node of the object set a query container carries: values by name
// and sub-nodes, in order. Plain data; a stored copy is a deep copy. Nodes
// never move once made, so a reference to one stays good while its root lives.
struct ObjectSetNode {
    std::string name;
    std::string kind;
    std::map<std::string, std::string> values;
    std::list<ObjectSetNode> children;

    // The sub-node of that name, made at the end when missing.
    ObjectSetNode& child(std::string_view childName);

    bool operator==(const ObjectSetNode&) const = default;
};
using ObjectSetNodeRef = std::shared_ptr<ObjectSetNode>;

inline ObjectSetNode& ObjectSetNode::child(std::string_view childName)
{
    for (auto& existing : children)
        if (existing.name == childName) return existing;
    auto& made = children.emplace_back();
    made.name = childName;
    return made;
}

// The top-level holder of an attached query object.
class ITopQuery {
public:
    virtual ~ITopQuery() = default;
    // The stored query, as a query of its own: changing it changes nothing stored.
    virtual QueryRef QueryOrg() const = 0;
    // Stores what the query is now; later changes to it are not stored.
    virtual void SetQueryOrg(const QueryRef& query) = 0;
};

// What a container device carries: the stored query and the object set.
class IQueryXObj {
public:
    virtual ~IQueryXObj() = default;
    virtual std::shared_ptr<ITopQuery> TopQuery() const = 0;
    virtual ObjectSetNodeRef ObjectSet() const = 0;
};

// The container side of a device: its attached object is taken out with
// XObj, kept by Save and given up with ReleaseXObj; what was not saved is lost.
class IQueryContainer {
public:
    virtual ~IQueryContainer() = default;
    virtual bool HasXObj() const = 0;
    // Empty when the container has no attached object.
    virtual std::shared_ptr<IQueryXObj> XObj() = 0;
    virtual void ReleaseXObj() = 0;
    virtual void Save() = 0;
};

// Makes container devices.
class IQueryCreator {
public:
    virtual ~IQueryCreator() = default;
    // A new container device below owner, under a free name. Option 1 gives it
    // an attached object with an empty query, option 0 none.
    virtual DeviceRef Create(const DeviceRef& owner, int option) = 0;
};

class IPathResolver {
public:
    virtual ~IPathResolver() = default;
    // The path to use of a pair: the system path where the database has the
    // system tree, else the fallback path.
    virtual std::string Resolve(std::string_view systemPath, std::string_view fallbackPath) const = 0;
};

}  // namespace pipespec
