#pragma once

// The grid on screen: the IQGrid of the designer's controls, a QTableView
// over a QueryTableModel. It shows the rows of its query's last Refresh with
// the query's columns in the query's order, and raises on its one event sink
// what the user does, through the grid actions the headless grid runs too:
//   - a click, a drag over rows or a key that moves the current cell or the
//     selection: Change, once per action; a double click: Change, DblClick;
//   - a right click on a cell: Change where the selection moves,
//     BeforeCreateStdPopUp and PopUp; the menu the sink filled opens,
//     PopUpSubMenu as a sub-menu opens, PopUpCmd for the chosen entry;
//   - a right click on a column head: TitlePopUp, TitlePopUpSubMenu,
//     TitlePopUpCmd, each with the column;
//   - a click on a column head: HeadClick; a sortable column then sorts the
//     query, a second click turns the direction;
//   - a column head dragged to another place: the column moves in the
//     query, ColumnsChanged. It comes as the button is let go, so that
//     QGuiApplication::mouseButtons() then reads no button;
//   - Ctrl+Delete, where column deletion is on: BeforeColumnsDelete for the
//     current column, which the sink may cancel, then AfterColumnsDelete;
//   - an edit (F2, a double click or typing): BeforeCellEdit before the
//     editor opens, which the sink may cancel, and AfterCellEdit once the
//     query wrote the value. A numeric column refuses a text that is no
//     number with a message box and writes nothing. A check-box cell (an
//     extended cell whose item list is two-state) toggles on a click or
//     Space and raises both at once;
//   - a drag out of the rows: OLEStartDrag with the selected objects, which
//     the workset then carries as its DragObject, and OLECompleteDrag with
//     the effect of the drop;
//   - a drag of objects over the rows: OLEDragOver at each move and
//     OLEDragDrop on the drop, with the workset's DragObject as data; over a
//     column head OLETitleDragOver and OLETitleDragDrop;
//   - F1 and the keys the grid has no use for go on to the widget holding it.
// Whole rows are selected; SelectedObjects gives their objects in row order.
//
// Widths are given in the grid's units (SetWidth, or a loaded layout). One
// unit is four average characters of the grid's font: the narrowest columns
// the lists define (2 units) then hold a diameter such as "DN 100", and the
// widest (15 units) a description of some 60 characters. A column is never
// narrower than its title; one of width 0 takes no room, as an invisible one.
// A width the user drags stays with its column until the column leaves the
// query.
//
// Not supported: deleting or moving rows by the user (the row events are
// never raised), the column flags SizeToContent, Refreshed and Grouping (the
// query keeps them; they change nothing here), more than one sink.

#include "objectmodel/Grid.h"
#include "platform/query/GridActions.h"
#include "platform/query/GridSettings.h"
#include "qtplatform/QueryTableModel.h"

#include <QTableView>

#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pipespec::platform {
class StoreWorkset;
}

namespace pipespec::qtplatform {

class QtGrid final : public QTableView, public IQGrid {
    Q_OBJECT

public:
    // settingsName: the name the grid's layout is stored under ("QGrid").
    explicit QtGrid(std::string settingsName, QWidget* parent = nullptr);

    QueryRef Query() const override { return model_->query(); }
    // A new query starts with no selection and no current cell, its columns
    // placed and sized as the loaded layout says.
    void SetQuery(const QueryRef& query) override;
    // Shows the rows of the query's last Refresh; the rows still shown stay
    // selected, and the current cell stays if its row does.
    void Refresh() override;
    void Redraw() override { model_->valuesChanged(); }
    QueryColumnRef CurrentColumn() const override { return currentColumn_; }
    ObjectRef CurrentSpecification() const override;
    CollectionRef SelectedObjects() const override;
    ObjectRef CurrentObject() const override { return currentObject_; }
    void ShutDown() override;
    void SetEventSink(const std::shared_ptr<IQGridEvents>& sink) override { events_.set(sink); }
    void RemoveEventSink(const std::shared_ptr<IQGridEvents>& sink) override { events_.remove(sink); }
    // Loading a layout places and sizes the columns of the query on show.
    std::shared_ptr<IGridSettings> Settings() const override { return settings_; }

    // The workset whose DragObject carries the objects of a drag.
    void setWorkset(std::shared_ptr<platform::StoreWorkset> workset) { workset_ = std::move(workset); }
    // Whether the user may delete columns (off at first) and move them (on).
    void setColumnsDeletable(bool on) { columnsDeletable_ = on; }
    void setColumnsMovable(bool on);
    // Writes the place and width of every column into a settings node, as
    // Settings()->Load reads it; widths in whole units.
    void saveSettings(ObjectSetNode& node) const;
    // The pixels of one width unit.
    int pixelsPerUnit() const;
    const QueryTableModel& tableModel() const { return *model_; }
    QueryTableModel& tableModel() { return *model_; }

protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void mouseDoubleClickEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void startDrag(Qt::DropActions supportedActions) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dragMoveEvent(QDragMoveEvent* event) override;
    void dropEvent(QDropEvent* event) override;
    // Drags over the column heads.
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    // Pixel widths of the shown columns, by column.
    using Widths = std::vector<std::pair<QueryColumnRef, int>>;

    void setUpRows();
    void setUpHeads();
    // Runs a user's action and raises Change once if it moved the current
    // cell or the selection.
    template <class Action>
    void watchingChange(Action&& action);
    void showMenu(const QPoint& at, const QueryColumnRef& headColumn);
    void clickHead(int section);
    void columnMoved(int section, int newVisual);
    void deleteCurrentColumn();
    bool mayOpenEditor(const QModelIndex& index);
    bool writeCell(const QueryTableModel::CellEdit& edit);
    QueryColumnRef headAt(const QPointF& position) const;
    void dragOver(QDragMoveEvent& event, const QueryColumnRef& headColumn, bool entering);
    void drop(QDropEvent& event, const QueryColumnRef& headColumn);

    // Shows the query anew: columns laid out (a column in `kept` keeps its
    // width), the selection and the current cell kept where their rows stay.
    void reload(const Widths& kept);
    // Selects the rows of those objects that are still shown, and makes the
    // current one current again in that column.
    void chooseAgain(const std::vector<ObjectRef>& selected, const ObjectRef& current, const QueryColumnRef& column);
    // Keeps the objects of the selected rows, which stay what they are
    // while the query's rows change under them until the next Refresh.
    void noteSelection();
    Widths shownWidths() const;
    void layOutColumns(const Widths& kept);
    // Puts the columns of the query where the loaded layout places them.
    void placeColumnsAsLoaded(IQuery& query) const;
    void applyLoadedLayout();
    void showSortIndicator();

    QueryTableModel* model_;  // Owned by this view, its Qt parent.
    std::shared_ptr<platform::GridSettings> settings_;
    platform::GridSink events_;
    std::vector<ObjectRef> selection_;  // in row order
    ObjectRef currentObject_;
    QueryColumnRef currentColumn_;
    std::shared_ptr<platform::StoreWorkset> workset_;
    bool columnsDeletable_ = false;
    int dragEffect_ = dropeffect::None;
};

}  // namespace pipespec::qtplatform
