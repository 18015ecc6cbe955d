#pragma once

// The grid that shows a query, and the events it sends to the control that
// owns it. Two grids implement IQGrid: the headless one (tests, command line)
// and the Qt grid widget.

#include "objectmodel/QueryInterfaces.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pipespec {

class IQGridEvents;

// What a drop may do, as a drag target answers it.
namespace dropeffect {
inline constexpr int None = 0;
inline constexpr int Copy = 1;
inline constexpr int Move = 2;
inline constexpr int Link = 4;
}  // namespace dropeffect

// The context menu a grid hands to its event sink. An entry whose text is
// dashes only ("---", "-") is a separator, whatever its key, and separators
// may share a key ("Dummy"). A key that begins with ">" makes a sub-menu
// named by the rest of the key; a key "Menu|Entry" puts an entry into the
// sub-menu "Menu". Entries are found by their full key.
class IPopUpMenu {
public:
    virtual ~IPopUpMenu() = default;
    virtual void Add(std::string_view key, std::string_view text) = 0;
    // An entry that runs its own command when chosen, before the sink hears
    // PopUpCmd: how the platform's command objects (delete, copy, properties)
    // bring their entries along.
    virtual void AddCommand(std::string_view key, std::string_view text, std::function<void()> command) = 0;
    // A key that is not in the menu is left alone by both.
    virtual void SetImage(std::string_view key, std::string_view image) = 0;
    virtual void Disable(std::string_view key) = 0;
    virtual void Clear() = 0;
};
using PopUpMenuRef = std::shared_ptr<IPopUpMenu>;

// The column layout a grid keeps under its name, loaded from a node of a
// query container's object set.
class IGridSettings {
public:
    virtual ~IGridSettings() = default;
    virtual void Load(const ObjectSetNodeRef& node) = 0;
    virtual std::string Name() const = 0;
};

// What a grid tells its event sink. A sink overrides what it reacts to; the
// rest does nothing. Flags passed by reference start false and effects 0
// unless said otherwise; the sink may change them.
class IQGridEvents {
public:
    virtual ~IQGridEvents() = default;

    // Asked once, when the sink is set.
    virtual int Version() = 0;
    // The selection or the current cell moved.
    virtual void Change() {}
    virtual void BeforeColumnsDelete(const std::vector<QueryColumnRef>&, bool& /*cancel*/) {}
    virtual void AfterColumnsDelete() {}
    virtual void BeforeRowsDelete(const CollectionRef&, bool& /*cancel*/) {}
    virtual void AfterRowsDelete() {}
    // A drag that started in this grid has ended with that effect.
    virtual void OLECompleteDrag(int /*effect*/) {}
    // effect: what the last drag-over answered.
    virtual void OLEDragDrop(const Variant& /*data*/, int& /*effect*/) {}
    virtual void OLEDragOver(const Variant& /*data*/, int& /*effect*/) {}
    // A drag starts in this grid with the selected objects; allowedEffects
    // starts as copy, move and link together.
    virtual void OLEStartDrag(const Variant& /*data*/, int& /*allowedEffects*/) {}
    virtual void OLETitleDragDrop(const Variant& /*data*/, int& /*effect*/, const QueryColumnRef&) {}
    virtual void OLETitleDragOver(const Variant& /*data*/, int& /*effect*/, const QueryColumnRef&) {}
    virtual void DblClick() {}
    // The cell menu, after the grid's standard entries.
    virtual void PopUp(const PopUpMenuRef&) {}
    virtual void PopUpSubMenu(const PopUpMenuRef&, std::string_view /*key*/) {}
    virtual void PopUpCmd(const PopUpMenuRef&, std::string_view /*key*/) {}
    // The head menu of a column; it has no standard entries.
    virtual void TitlePopUp(const PopUpMenuRef&, const QueryColumnRef&) {}
    virtual void TitlePopUpSubMenu(const PopUpMenuRef&, std::string_view /*key*/, const QueryColumnRef&) {}
    virtual void TitlePopUpCmd(const PopUpMenuRef&, std::string_view /*key*/, const QueryColumnRef&) {}
    // The query has written the cell.
    virtual void AfterCellEdit(const ObjectRef& /*row*/, const QueryColumnRef&) {}
    virtual void BeforeCellEdit(const ObjectRef& /*row*/, const QueryColumnRef&, bool& /*cancel*/) {}
    virtual void BeforeCreateStdPopUp(const PopUpMenuRef&) {}
    virtual void HeadClick(const QueryColumnRef&) {}
    virtual void AfterRowsMove() {}
    // A column was moved.
    virtual void ColumnsChanged() {}
};

class IQGrid {
public:
    virtual ~IQGrid() = default;

    virtual QueryRef Query() const = 0;
    virtual void SetQuery(const QueryRef& query) = 0;
    // Shows the rows of the query's last Refresh.
    virtual void Refresh() = 0;
    // Paints again what is shown.
    virtual void Redraw() = 0;
    virtual QueryColumnRef CurrentColumn() const = 0;
    // The attribute the current cell shows; empty when it shows no attribute.
    virtual ObjectRef CurrentSpecification() const = 0;
    // In row order; an empty collection when nothing is selected.
    virtual CollectionRef SelectedObjects() const = 0;
    virtual ObjectRef CurrentObject() const = 0;
    // Lets go of the query and the event sink.
    virtual void ShutDown() = 0;
    // One sink at a time; the grid does not keep it alive.
    virtual void SetEventSink(const std::shared_ptr<IQGridEvents>& sink) = 0;
    virtual void RemoveEventSink(const std::shared_ptr<IQGridEvents>& sink) = 0;
    virtual std::shared_ptr<IGridSettings> Settings() const = 0;
};

}  // namespace pipespec
