#pragma once

// The component list: one row per element of a pipe class, in the query
// grid, with the commands a user runs on them. The rows come from a query
// (gQueryI) that is loaded once per pipe class from the stored query
// container of its kind, or built and stored there; QueryCreate only adds
// the columns a query lacks, so that a user's stored layout survives.
//
// Two inner objects face the query engine and the grid, which hold them
// weakly: Cells serves the extended cells (IExtended), Events hears the
// grid (IQGridEvents). Both forward to the control and live as long as it.
//
// The files: PipeSpecComp.cpp the life cycle and the public entries,
// ComponentQuery.cpp the columns, the container and the refresh levels,
// ComponentCells.cpp the extended cells and the branch flag,
// ComponentCommands.cpp the menu, its commands, drag and drop and paste.

#include "frame/ControlFrame.h"
#include "objectmodel/Grid.h"
#include "objectmodel/Wizard.h"

#include <QPointer>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

class QCheckBox;

namespace pipespec::qtplatform {
class DeleteCommand;
class DividerBar;
class ListCommand;
class PropertiesCommand;
class QtGrid;
}  // namespace pipespec::qtplatform

namespace pipespec::ranges {
class frmPCOMRange;
}

namespace pipespec::componentlist {

class PipeSpecComp final : public frame::ControlFrame {
    Q_OBJECT

public:
    // Makes the wizard into the panel it is given; the designer's wizard by default.
    using WizardFactory = std::function<std::unique_ptr<IWizard>(QWidget& panel)>;

    // What TabBackGround answers for this control.
    static constexpr int kTabBackGround = 15;
    // Where the check boxes stand in their row.
    static constexpr int kRecursiveLeft = 96;
    static constexpr int kWizardBoxLeft = 384;
    // The room between the divider and the grid below it.
    static constexpr int kGridGap = 20;

    explicit PipeSpecComp(QWidget* parent = nullptr, WizardFactory makeWizard = {});
    ~PipeSpecComp() override;
    PipeSpecComp(const PipeSpecComp&) = delete;
    PipeSpecComp& operator=(const PipeSpecComp&) = delete;

    // Marks the class as the one open in the designer; only another class
    // than the one on show throws the query away and refreshes.
    void SetPipeClass(const DeviceRef& value) override;
    // True when the object's name-range list holds values: the host then
    // selects "COMPONENT"; otherwise the name-range chapter (ErrorID 1).
    [[nodiscard]] bool ValidChapter(const DeviceRef& vNewValue, std::int32_t& ErrorID,
                                    std::string& strSelectChapter) override;
    int TabBackGround() override;

    // Re-evaluates the query on the same objects.
    void QueryRefresh();
    // Fetches the elements again, then QueryRefresh.
    void Reread();

    // Entries by which hosts, drops and paste make elements.
    DeviceRef NewPipeClassElement(const DeviceRef& CDevObject, const DeviceRef& PipeClass,
                                  bool InteractiveImportObject = false);
    DeviceRef AddToPipeClass(const DeviceRef& CDevObject);
    // For an object the platform already placed under the pipe class: every
    // element the creation made.
    CollectionRef AfterAddToPipeSpec(const DeviceRef& CDevObject);
    DeviceRef AddToPipeClassAfterDrag(const DeviceRef& CDevObject);
    // One undo step with progress; what was made before a cancel stays.
    void AddCDevicesToPipeClass(const CollectionRef& sources);
    // Whether the workset's clipboard can be pasted onto the pipe class, in
    // its own project; Paste makes elements of what it holds, as the menu's
    // entry does.
    [[nodiscard]] bool IsPasteEnabled() const;
    void Paste();
    // Selects the rows of those objects in the grid.
    void SelectPipeClassObjects(const CollectionRef& objects);

    // The branch flag: 2/-2 stored "+"/"-", 1/-1 the default rule, 0 a
    // structure element, else the element's branch value. Set: -1 ticks.
    [[nodiscard]] std::int32_t BranchComponent(const DeviceRef& element);
    void SetBranchComponent(const DeviceRef& element, std::int32_t value);
    // Sets every row's stored flag back to "no decision".
    void ResetBranchDefinition();
    // The attribute that classifies an element: its generic type in PDMS
    // mode, else its function code.
    [[nodiscard]] SpecRef VFCDSpec(const ObjectRef& object) const;

    [[nodiscard]] QueryRef query() const { return gQueryI; }
    [[nodiscard]] qtplatform::QtGrid& grid() const { return *QGrid; }
    [[nodiscard]] QCheckBox& recursiveBox() const { return *CheckRecursive; }
    [[nodiscard]] QCheckBox& wizardBox() const { return *chk_Wizard; }
    [[nodiscard]] QWidget& wizardPanel() const { return *m_WpfHost; }
    [[nodiscard]] IWizard* wizard() const { return m_Wizard.get(); }
    // What the grid tells the list, as the grid hears it.
    [[nodiscard]] std::shared_ptr<IQGridEvents> gridEvents() const { return events_; }

signals:
    // The elements or their cells changed.
    void DataChanged();

protected:
    void Refresh() override;
    void shutdownParts() override;
    void retranslate() override;
    void resizeEvent(QResizeEvent* event) override;

private:
    // Serves the extended cells; the query holds it weakly.
    class Cells final : public IExtended {
    public:
        explicit Cells(PipeSpecComp& control) : control_(control) {}
        int Version() const override { return 12; }
        Variant CellValue(const ObjectRef& row, const QueryColumnRef& column, int position,
                          const ObjectRef& cellObject) override;
        void SetCellValue(const ObjectRef& row, const QueryColumnRef& column, int position, const ObjectRef& cellObject,
                          const Variant& value) override;
        void CellValueItems(const ObjectRef& row, const QueryColumnRef& column, int position,
                            const ObjectRef& cellObject, ICellItems& items) override;
        ObjectRef CellObject(const ObjectRef& row, const QueryColumnRef& column, int position,
                             const ObjectRef& cellObject) override;

    private:
        PipeSpecComp& control_;
    };

    // Hears the grid; the grid holds it weakly.
    class Events final : public IQGridEvents {
    public:
        explicit Events(PipeSpecComp& control) : control_(control) {}
        int Version() override { return 10; }
        void OLECompleteDrag(int effect) override;
        void OLEDragDrop(const Variant& data, int& effect) override;
        void OLEDragOver(const Variant& data, int& effect) override;
        void OLEStartDrag(const Variant& data, int& allowedEffects) override;
        void PopUp(const PopUpMenuRef& popup) override;
        void PopUpCmd(const PopUpMenuRef& popup, std::string_view key) override;
        void AfterCellEdit(const ObjectRef& row, const QueryColumnRef& column) override;

    private:
        PipeSpecComp& control_;
    };

    // Life cycle.
    void createWizard(const WizardFactory& makeWizard);
    void chk_Wizard_Click();
    void CheckRecursive_Click();
    void DoResize();
    void gPPDelete_AfterExecute();
    [[nodiscard]] bool recursive() const;
    [[nodiscard]] bool pdmsMode() const;
    [[nodiscard]] std::shared_ptr<IWizardEngine> wizardEngine() const;

    // Columns, container and refresh.
    QueryRef QueryCreate(QueryRef query);
    void CheckColumnPipeClass(const QueryRef& query);
    void CheckColumnPIDFunctionCode();
    void CheckColumnErrorObjects();
    void QueryGridInit();
    void registerCells(const QueryRef& query);
    [[nodiscard]] bool LoadQueryByContainer();
    void CreateContainer();
    [[nodiscard]] CollectionRef components() const;

    // Cells.
    Variant cellValue(const ObjectRef& row, const QueryColumnRef& column, const ObjectRef& cellObject);
    void setCellValue(const ObjectRef& row, const QueryColumnRef& column, const Variant& value);
    ObjectRef cellObject(const ObjectRef& row, const QueryColumnRef& column, const ObjectRef& cellObject);

    // Menu, commands, drag and drop.
    void PopUp(IPopUpMenu& popup);
    void addElementEntries(IPopUpMenu& popup, const DeviceRef& cdev);
    void PopUpCmd(std::string_view key);
    void openRange();
    void solve(std::string_view command);
    void CreateSelector();
    [[nodiscard]] std::string makeSelectorRoot();
    [[nodiscard]] DeviceRef linkedSelector() const;
    void OLEDragOver(int& effect);
    void OLEDragDrop();
    [[nodiscard]] CollectionRef GetCDevicesColl(const Variant& source) const;

    QCheckBox* CheckRecursive;            // Owned by this control.
    QCheckBox* chk_Wizard;                // Owned by this control.
    qtplatform::DividerBar* DividerBar1;  // Owned by this control.
    QWidget* m_WpfHost;                   // Owned by DividerBar1: holds the wizard's panel.
    qtplatform::QtGrid* QGrid;            // Owned by DividerBar1.
    std::unique_ptr<IWizard> m_Wizard;

    QueryRef gQueryI;
    DeviceRef m_PipeClassSet;
    bool m_PIDColumnVisible = false;
    std::int32_t m_OnlyNotPermitted = 0;
    bool m_BranchDefined = false;
    bool m_HasNotPermitted = false;
    bool m_PDMS = false;
    CollectionRef m_DragObjects;
    bool m_InternalDrag = false;

    std::unique_ptr<qtplatform::DeleteCommand> gPPDelete;
    std::unique_ptr<qtplatform::ListCommand> m_ListCommand;
    std::unique_ptr<qtplatform::PropertiesCommand> m_PropertiesCommand;
    std::unique_ptr<ranges::frmPCOMRange> m_PCOMRange;

    std::shared_ptr<Cells> cells_ = std::make_shared<Cells>(*this);
    std::shared_ptr<Events> events_ = std::make_shared<Events>(*this);
};

}  // namespace pipespec::componentlist
