#pragma once

// The table a QtGrid shows: the rows of a query's last Refresh and all its
// columns, in the query's order (the view hides the invisible ones). It holds
// no cell: each cell is asked of the query when the view asks for it, so a
// paint reads the cells it shows and no others. The query's own caches are
// the only ones.
//
// Rows count from 0 here and from 1 in the query. The row count and the
// column list are taken at reload(), because a view must be told before they
// change; the values are always read live.
//
// The model does not watch the database: the grid tells it what changed.
// reload() shows a new row set (the query's Refresh), valuesChanged() new
// values in rows that stay. An adapter of the store's change notices belongs
// beside valuesChanged(): it would find the rows of the changed objects
// (rowOf) and announce only those, and announce rows that a Refresh adds or
// drops with beginInsertRows/beginRemoveRows, instead of the reset of reload().
//
// Not supported: sorting through Qt (the grid sorts through the query's
// sorts) and hierarchical rows.

#include "objectmodel/QueryInterfaces.h"

#include <QAbstractTableModel>
#include <QIcon>

#include <functional>
#include <optional>
#include <vector>

namespace pipespec::qtplatform {

class QueryTableModel final : public QAbstractTableModel {
    Q_OBJECT

public:
    // What the user gave a cell: a typed value, or the new state of a check box.
    struct CellEdit {
        int row = 0;  // from 0
        QueryColumnRef column;
        Variant value;
        bool checkBox = false;
    };
    // Writes an edit; false when nothing was written.
    using CellWriter = std::function<bool(const CellEdit&)>;

    // How often the view asked and how many cells were read from the query.
    struct Reads {
        long dataCalls = 0;
        long cellReads = 0;
    };

    explicit QueryTableModel(QObject* parent = nullptr);

    const QueryRef& query() const { return query_; }
    // Shows the query's rows and columns; nothing for none.
    void setQuery(QueryRef query);
    void setCellWriter(CellWriter writer) { writer_ = std::move(writer); }

    // The query's rows or columns changed.
    void reload();
    // Values and titles may have changed; rows and columns stayed.
    void valuesChanged();

    QueryColumnRef column(int section) const;
    // -1 when the column is not shown.
    int sectionOf(const QueryColumnRef& column) const;
    ObjectRef rowObject(int row) const;
    // -1 when the object is not shown; looks at every row.
    int rowOf(const ObjectRef& object) const;
    // Whether the cell is a check box: its item list is two-state.
    bool isCheckBox(const QModelIndex& index) const;

    const Reads& reads() const { return reads_; }
    void resetReads() { reads_ = {}; }

    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    // Reads the cell at most once for all the roles asked.
    void multiData(const QModelIndex& index, QModelRoleDataSpan roleDataSpan) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;
    bool setData(const QModelIndex& index, const QVariant& value, int role) override;
    Qt::DropActions supportedDragActions() const override;

private:
    struct Cell {
        bool checkBox = false;
        Variant value;
    };
    Cell readCell(const QModelIndex& index) const;
    QVariant roleData(const QModelIndex& index, int role, std::optional<Cell>& cell) const;

    QueryRef query_;
    std::vector<QueryColumnRef> columns_;
    int rows_ = 0;
    CellWriter writer_;
    QIcon objectIcon_;
    mutable Reads reads_;
};

}  // namespace pipespec::qtplatform
