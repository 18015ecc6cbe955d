#pragma once

// The grid without a window: it shows a query's rows as data and is driven by
// calls that stand for what a user does (click, select, open a menu, edit,
// move or delete columns, drag and drop). Each call raises the events a real
// grid raises for that action, in the same order, on the one event sink.
// Rows are counted from 1 in the order the query shows them; columns are
// named by key.

#include "objectmodel/Grid.h"
#include "platform/query/GridActions.h"
#include "platform/query/GridSettings.h"
#include "platform/query/PopUpMenu.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace pipespec::platform {

class HeadlessGrid final : public IQGrid {
public:
    // The name under which the grid's settings are stored ("QGrid").
    explicit HeadlessGrid(std::string settingsName);

    QueryRef Query() const override { return query_; }
    // A new query starts with no selection and no current cell.
    void SetQuery(const QueryRef& query) override;
    // Drops from the selection what the query no longer shows.
    void Refresh() override;
    void Redraw() override { ++redraws_; }
    QueryColumnRef CurrentColumn() const override { return currentColumn_; }
    ObjectRef CurrentSpecification() const override;
    CollectionRef SelectedObjects() const override;
    ObjectRef CurrentObject() const override { return currentObject_; }
    void ShutDown() override;
    // Asks the sink's Version once.
    void SetEventSink(const std::shared_ptr<IQGridEvents>& sink) override;
    void RemoveEventSink(const std::shared_ptr<IQGridEvents>& sink) override;
    std::shared_ptr<IGridSettings> Settings() const override { return settings_; }

    // What the grid shows.
    int rowCount() const;
    ObjectRef rowObject(int row) const;
    std::string cellText(int row, std::string_view key) const;
    int columnWidth(std::string_view key) const;
    // The keys of the visible columns, left to right.
    std::vector<std::string> shownColumns() const;
    int redrawCount() const { return redraws_; }
    int sinkVersion() const { return events_.version(); }

    // What a user does. Rows and columns that are not there are an error (9).
    // Change.
    void selectRows(std::vector<int> rows);
    // Change: the row becomes the selection, the cell the current one.
    void clickCell(int row, std::string_view key);
    // Change, DblClick.
    void doubleClickCell(int row, std::string_view key);
    // HeadClick; then a sortable column becomes the first sort, ascending, or
    // turns its direction if it is that already, and the rows are sorted anew.
    void clickHead(std::string_view key);
    // BeforeCreateStdPopUp, PopUp: the menu of the current selection.
    std::shared_ptr<const PopUpMenu> openCellMenu();
    // TitlePopUp.
    std::shared_ptr<const PopUpMenu> openHeadMenu(std::string_view key);
    // PopUpSubMenu or TitlePopUpSubMenu for a sub-menu (">Solve") of the open
    // menu; false if there is none.
    bool openSubMenu(std::string_view key);
    // PopUpCmd or TitlePopUpCmd for an enabled entry of the open menu, which
    // closes; false for a disabled, missing, separator or sub-menu entry.
    bool chooseMenuEntry(std::string_view key);
    // BeforeCellEdit, the write, AfterCellEdit. Not editable or cancelled:
    // false and nothing written. A two-state cell takes the value as a flag.
    bool editCell(int row, std::string_view key, const Variant& value);
    // BeforeColumnsDelete, AfterColumnsDelete; false if cancelled.
    bool deleteColumns(const std::vector<std::string>& keys);
    // ColumnsChanged, with the column at the 1-based position.
    void moveColumn(std::string_view key, int position);
    // BeforeRowsDelete, AfterRowsDelete: the rows leave the query's row
    // objects (the database objects stay). False if cancelled or nothing selected.
    bool deleteSelectedRows();
    // AfterRowsMove: the row's object is put before the object shown at
    // `to` (behind the last for a row past the end) among the row objects.
    void moveRow(int from, int to);
    // OLEStartDrag with the selected objects; what is dragged, or nothing
    // when the sink allowed no effect.
    Variant startDrag();
    // OLEDragOver, OLETitleDragOver: the effect the sink answered.
    int dragOver(const Variant& data);
    int dragOverHead(const Variant& data, std::string_view key);
    // OLEDragDrop, OLETitleDragDrop, starting from the last drag-over's effect.
    int drop(const Variant& data);
    int dropOnHead(const Variant& data, std::string_view key);
    // OLECompleteDrag: the drag started here has ended.
    void completeDrag(int effect);

private:
    template <class Event>
    void raise(Event&& event) const
    {
        events_.raise(std::forward<Event>(event));
    }
    IQuery& query() const;
    QueryColumnRef column(std::string_view key) const;
    // 1-based row of the object, 0 if it is not shown.
    int rowOf(const ObjectRef& object) const;
    std::vector<ObjectRef> rowObjects() const;
    void setRowObjects(const std::vector<ObjectRef>& objects);
    void setCurrentCell(int row, std::string_view key);
    std::shared_ptr<const PopUpMenu> openMenu(QueryColumnRef headColumn);

    QueryRef query_;
    GridSink events_;
    std::shared_ptr<GridSettings> settings_;
    std::vector<ObjectRef> selection_;
    ObjectRef currentObject_;
    QueryColumnRef currentColumn_;
    std::shared_ptr<PopUpMenu> menu_;
    QueryColumnRef menuColumn_;  // of an open head menu; empty for the cell menu
    int dragEffect_ = dropeffect::None;
    int redraws_ = 0;
};

}  // namespace pipespec::platform
