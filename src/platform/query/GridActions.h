#pragma once

// What every grid does for a user's action, whatever draws it: the events it
// raises on its sink, in order, and what it changes in the query. The
// headless grid and the Qt grid both run these, so that a control sees the
// same grid behind either.

#include "objectmodel/Grid.h"
#include "platform/query/PopUpMenu.h"

#include <memory>
#include <string_view>
#include <vector>

namespace pipespec::platform {

// The one event sink of a grid. The grid does not keep it alive: a sink that
// is gone hears nothing.
class GridSink {
public:
    // Asks the sink's Version once.
    void set(const std::shared_ptr<IQGridEvents>& sink);
    // Removing a sink that is not the one set changes nothing.
    void remove(const std::shared_ptr<IQGridEvents>& sink);
    void reset() { sink_.reset(); }
    // What the sink answered when it was set; 0 for none.
    int version() const { return version_; }

    template <class Event>
    void raise(Event&& event) const
    {
        if (const auto sink = sink_.lock()) event(*sink);
    }

private:
    std::weak_ptr<IQGridEvents> sink_;
    int version_ = 0;
};

// HeadClick; then a sortable column becomes the first sort, ascending, or
// turns its direction if it is that already, and the query is refreshed.
// True when the rows were sorted anew.
bool clickHead(IQuery& query, const QueryColumnRef& column, const GridSink& sink);

// BeforeCellEdit, if the column is editable at all. True when the edit may go on.
bool beginCellEdit(const ObjectRef& row, const QueryColumnRef& column, const GridSink& sink);

// The write of what the user gave, then AfterCellEdit. A two-state cell takes
// the value as a flag. A numeric column refuses a text that does not read as
// a number: the host's message box says so, and nothing is written. True when
// written; a failing write throws, as the query does.
bool finishCellEdit(IQuery& query, int row, const QueryColumnRef& column, const Variant& value, const GridSink& sink);

// BeforeColumnsDelete, then the columns leave the query, AfterColumnsDelete.
// False when the sink cancelled.
bool deleteColumns(IQuery& query, const std::vector<QueryColumnRef>& columns, const GridSink& sink);

// The column to the 1-based position among the query's columns, ColumnsChanged.
void moveColumn(IQuery& query, const QueryColumnRef& column, int position, const GridSink& sink);

// A new menu, filled by the sink: the cell menu (BeforeCreateStdPopUp, PopUp)
// or, with a column, the head menu of that column (TitlePopUp).
std::shared_ptr<PopUpMenu> openMenu(const QueryColumnRef& headColumn, const GridSink& sink);

// PopUpSubMenu or TitlePopUpSubMenu for a sub-menu entry (">Solve"); false
// for any other entry.
bool openSubMenu(const std::shared_ptr<PopUpMenu>& menu, std::string_view key, const QueryColumnRef& headColumn,
                 const GridSink& sink);

// An entry's own command, if it has one, then PopUpCmd or TitlePopUpCmd,
// for an enabled command entry; false for a disabled, missing, separator or
// sub-menu entry.
bool chooseMenuEntry(const std::shared_ptr<PopUpMenu>& menu, std::string_view key, const QueryColumnRef& headColumn,
                     const GridSink& sink);

// OLEStartDrag with what is dragged: the effects the sink allows (dropeffect
// bits), starting from copy, move and link together.
int startDrag(const Variant& data, const GridSink& sink);

// OLEDragOver, or OLETitleDragOver over a column head: the effect the sink answers.
int dragOver(const Variant& data, const QueryColumnRef& headColumn, const GridSink& sink);

// OLEDragDrop, or OLETitleDragDrop, starting from the last drag-over's effect:
// the effect of the drop.
int drop(const Variant& data, int effect, const QueryColumnRef& headColumn, const GridSink& sink);

}  // namespace pipespec::platform
