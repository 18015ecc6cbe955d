// What the user does on the component list: the context menu and its
// commands, drag and drop of catalogue objects onto the list (never of its
// own rows) and paste.

#include "componentlist/PipeSpecComp.h"

#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "elements/AddToPipeClass.h"
#include "objectmodel/Options.h"
#include "objectmodel/Text.h"
#include "qtplatform/ObjectCommands.h"
#include "qtplatform/QtGrid.h"
#include "ranges/frmPCOMRange.h"
#include "selectors/Chapters.h"

namespace pipespec::componentlist {

namespace {

constexpr std::string_view kSeparatorKey = "Dummy";
constexpr std::string_view kSeparator = "---";
constexpr std::string_view kNavigateImage = "std_Navigate";
constexpr std::string_view kPasteImage = "std_Paste";
// Codes of CanPaste that allow pasting onto the pipe class.
constexpr int kPasteAllowed = 0;
constexpr int kPasteAllowedLinked = 302;

std::string translated(std::string_view text) { return diagnostics::utilities().Translate(text); }

std::string filled(std::string_view literal, const std::string& value)
{
    return text::Replace(translated(literal), "%1%", value);
}

void separator(IPopUpMenu& popup) { popup.Add(kSeparatorKey, kSeparator); }

// The pipe class's function code as a number; 0 when it has none.
double functionCode(const DeviceRef& device)
{
    const auto spec = device ? device->Spec(diagnostics::names().GD().VFCD()) : nullptr;
    return spec ? text::NumberIn(spec->ValueText()).value_or(0) : 0;
}

bool isTemplateClass(const DeviceRef& pipeClass) { return functionCode(pipeClass) == functioncode::TemplatePipeClass; }

// A catalogue object that may be dropped: a device, not deleted, either an
// ordinary one or a pipe class.
bool droppable(const DeviceRef& device)
{
    return must(device).CreateOption() == 0 || addtopipeclass::IsPipeClass(device);
}

}  // namespace

// ---- Grid events --------------------------------------------------------

void PipeSpecComp::Events::OLECompleteDrag(int) { control_.m_InternalDrag = false; }

void PipeSpecComp::Events::OLEStartDrag(const Variant&, int&) { control_.m_InternalDrag = true; }

void PipeSpecComp::Events::OLEDragOver(const Variant&, int& effect) { control_.OLEDragOver(effect); }

void PipeSpecComp::Events::OLEDragDrop(const Variant&, int&) { control_.OLEDragDrop(); }

void PipeSpecComp::Events::PopUp(const PopUpMenuRef& popup) { control_.PopUp(must(popup)); }

void PipeSpecComp::Events::PopUpCmd(const PopUpMenuRef&, std::string_view key) { control_.PopUpCmd(key); }

void PipeSpecComp::Events::AfterCellEdit(const ObjectRef&, const QueryColumnRef&) { emit control_.DataChanged(); }

// ---- Menu ---------------------------------------------------------------

void PipeSpecComp::PopUp(IPopUpMenu& popup)
{
    diagnostics::Procedure procedure(classString(), "Private Sub 'IQGridEvents_PopUp'");
    const auto step = [&](auto&& statement) { procedure.step(statement); };
    CollectionRef sel;
    step([&] { sel = QGrid->SelectedObjects(); });
    const bool single = sel && sel->Count() == 1;
    step([&] {
        separator(popup);
        popup.Add("Refresh", msg::Refresh);
        separator(popup);
        popup.Add("FuncttionCodeVisible", m_PIDColumnVisible ? msg::HidePidMappingColumn : msg::ShowPidMappingColumn);
        if (m_HasNotPermitted)
            popup.Add("ErrorObjects", m_OnlyNotPermitted == 0 ? msg::ShowOnlyNotAllowedElements : msg::ShowAllElements);
    });
    if (single) step([&] { addElementEntries(popup, asDevice(sel->Item(1))); });
    step([&] {
        separator(popup);
        popup.Add("NavigateOriginal", msg::NavigateOriginal);
        popup.SetImage("NavigateOriginal", kNavigateImage);
        popup.Add("NavigatePipeClass", msg::NavigatePipeClass);
        popup.SetImage("NavigatePipeClass", kNavigateImage);
    });
    step([&] {
        if (!gPPDelete) {
            gPPDelete = std::make_unique<qtplatform::DeleteCommand>();
            connectHandler(gPPDelete.get(), &qtplatform::DeleteCommand::AfterExecute,
                           "Private Sub 'gPPDelete_AfterExecute'", [this] { gPPDelete_AfterExecute(); });
        }
        gPPDelete->AddToPopUp(popup, sel);
    });
    step([&] {
        if (!m_ListCommand) m_ListCommand = std::make_unique<qtplatform::ListCommand>(*QGrid);
        m_ListCommand->AddToPopUp(popup, sel);
    });
    step([&] {
        popup.Add("Paste", msg::Insert);
        popup.SetImage("Paste", kPasteImage);
        if (!IsPasteEnabled()) popup.Disable("Paste");
    });
    step([&] {
        if (!m_PropertiesCommand) m_PropertiesCommand = std::make_unique<qtplatform::PropertiesCommand>();
        m_PropertiesCommand->AddToPopUp(popup, QGrid->CurrentObject());
    });
    step([&] {
        if (single) {
            if (!must(asDevice(sel->Item(1))).CDevice()) popup.Disable("NavigateOriginal");
            return;
        }
        popup.Disable("NavigateOriginal");
        popup.Disable("NavigatePipeClass");
        popup.Disable(qtplatform::PropertiesCommand::Key);
    });
    step([&] {
        if (!must(mPipeClass).Elements()->Item(diagnostics::names().SelectorRoot()))
            popup.Add("CreateSelector", msg::InitiateSelectors);
    });
    step([&] {
        if (m_BranchDefined) popup.Add("ResetBranch", msg::ResetBranchItems);
    });
}

// The entries that depend on what the one selected row is: the range of a
// pipe class used as element, solving of template classes and of their
// structure elements, the values solving works from.
void PipeSpecComp::addElementEntries(IPopUpMenu& popup, const DeviceRef& cdev)
{
    const diagnostics::Trace trace(classString(), "IQGridEvents_PopUp");
    const auto addRange = [&](std::string_view text) {
        separator(popup);
        popup.Add("PCOMRange", text);
    };
    const auto addPpfValues = [&] {
        separator(popup);
        popup.Add("ShowPPFValues", msg::ShowPpfValues);
    };
    const auto addSolve = [&](std::string_view text, std::string_view plain, std::string_view traced) {
        popup.Add(">Solve", text);
        popup.Add(plain, msg::WithoutTrace);
        popup.Add(traced, msg::WithTrace);
    };
    Variant checkResult;
    const auto engine = wizardEngine();
    const auto& names = diagnostics::names();
    if (addtopipeclass::CheckValid(cdev, m_PipeClassSet, false, checkResult, engine.get())) {
        trace.text("CDev is valid");
        if (addtopipeclass::IsPipeClass(cdev)) {
            if (cdev->CreateOption() == 0)
                addRange(msg::NominalDiameterRange);
            else if (isTemplateClass(mPipeClass))
                addPpfValues();
            return;
        }
        const auto code = cdev->Spec(names.GD().VFCD());
        if (code && code->Value() == "10003") {
            separator(popup);
            addSolve(msg::SolveTemplatePipeSpec, "Solve|SolveTemplate", "Solve|XSolveTemplate");
        }
        return;
    }
    if (must(cdev).CreateOption() == 0) {
        trace.text("CDev is NOT valid and CDev.CreateOption = 0");
        return;
    }
    trace.text("CDev is NOT valid and CDev.CreateOption <> 0");
    const auto range = cdev->Spec(names.GD().ElementRangeAttr());
    if (range && !range->DisplayValue().empty()) {
        addRange(msg::ShowUnresolvedNominalDiameterRange);
        addSolve(msg::SolveElement, "Solve|SolveCDevice", "Solve|XSolveCDevice");
    } else if (isTemplateClass(mPipeClass)) {
        addPpfValues();
    }
}

// ---- Commands -----------------------------------------------------------

void PipeSpecComp::PopUpCmd(std::string_view fullKey)
{
    diagnostics::Procedure(classString(), "Private Sub 'IQGridEvents_PopUpCmd'").run([&] {
        const auto bar = fullKey.rfind('|');
        const auto key = bar == std::string_view::npos ? fullKey : fullKey.substr(bar + 1);
        if (key == "ErrorObjects") {
            m_OnlyNotPermitted = m_OnlyNotPermitted == 0 ? 1 : 0;
            CheckColumnErrorObjects();
            QueryRefresh();
        } else if (key == "FuncttionCodeVisible") {
            m_PIDColumnVisible = !m_PIDColumnVisible;
            CheckColumnPIDFunctionCode();
            QueryRefresh();
        } else if (key == "PCOMRange") {
            openRange();
        } else if (key == "Paste") {
            Paste();
        } else if (key == "NavigatePipeClass" || key == "NavigateOriginal") {
            navigateTo(QGrid->CurrentObject(), key == "NavigateOriginal");
        } else if (key == "Refresh") {
            QueryRefresh();
        } else if (key.ends_with("SolveTemplate") || key.ends_with("SolveCDevice")) {
            solve(key);
        } else if (key == "ShowPPFValues") {
            const auto target = asDevice(QGrid->CurrentObject());
            if (!m_Wizard) return;
            m_Wizard->Init();
            m_Wizard->ShowPPFValues(target);
        } else if (key == "CreateSelector") {
            CreateSelector();
        } else if (key == "ResetBranch") {
            ResetBranchDefinition();
            QueryRefresh();
        }
    });
}

// The range form of the current row, shown modal through the host; a
// change of the range repaints the list.
void PipeSpecComp::openRange()
{
    const auto target = asDevice(QGrid->CurrentObject());
    m_PCOMRange = std::make_unique<ranges::frmPCOMRange>(this);
    connect(m_PCOMRange.get(), &ranges::frmPCOMRange::PCOMRange_Changed, this, [this] { QGrid->Redraw(); });
    m_PCOMRange->Init(target);
    const auto mainWindow = diagnostics::utilities().MainWindow();
    if (const auto windows = mainWindow ? mainWindow->WindowService() : nullptr) windows->ShowForm(*m_PCOMRange);
}

// Solving is the wizard engine's; the list only reloads afterwards, after a
// structure element only when it was solved.
void PipeSpecComp::solve(std::string_view command)
{
    if (!m_Wizard) return;
    const auto target = asDevice(QGrid->CurrentObject());
    m_Wizard->Init();
    auto& engine = must(m_Wizard->Engine());
    engine.SetTrace(command.starts_with('X'));
    if (command.ends_with("SolveTemplate")) {
        Variant value;
        engine.SolveTemplate(target, value);
    } else {
        bool solved = false;
        engine.SolveCDevice(target, solved);
        if (!solved) return;
    }
    gQueryI->Top()->SetObjects(components());
    QueryRefresh();
}

// The selector linked by the pipe class's selector attribute; empty if none.
DeviceRef PipeSpecComp::linkedSelector() const
{
    const auto spec = must(mPipeClass).Spec(diagnostics::names().GD().Selector());
    return spec ? spec->LinkObject() : nullptr;
}

// Gives the pipe class its selector root: a copy of the predefined root of
// its kind (PDMS or not) beside the linked selector, else a new element on
// that selector. What is missing for it, as the user reads it; "" when done.
std::string PipeSpecComp::makeSelectorRoot()
{
    const auto& names = diagnostics::names();
    const auto link = linkedSelector();
    if (!link) return filled(msg::PipeClassAttributeNotFound, names.GD().Selector());
    auto& owner = must(asDevice(link->Owner()));
    const auto list = owner.CDevices();
    if (list->Count() == 0) return filled(msg::NoPredefinedSelectors, owner.SystemFullName());
    const double wanted = mPipeClass->Spec(names.PDMS()) ? 1 : 0;
    for (int i = 1; i <= list->Count(); ++i) {
        const auto device = asDevice(list->Item(i));
        const auto flag = device ? device->Spec(names.Sele().PDMSFlag()) : nullptr;
        if (!flag || text::NumberIn(flag->Value()) != wanted) continue;
        const auto copy = device->Copy();
        copy->SetName(names.SelectorRoot());
        copy->MakePersistent();
        mPipeClass->OwnElements()->AddObject(copy);
        return {};
    }
    auto& element = must(asDevice(mPipeClass->OwnElements()->CreateNewWithName(names.SelectorRoot())));
    element.SetCDevice(linkedSelector());
    element.MakePersistent();
    return {};
}

// The list is not refreshed: the user loads the class again.
void PipeSpecComp::CreateSelector()
{
    const auto error = makeSelectorRoot();
    auto& utilities = diagnostics::utilities();
    if (!error.empty()) {
        utilities.MessageBox(error, mb::Exclamation, translated(msg::ErrorInInitiateSelectors));
        return;
    }
    utilities.MessageBox(translated(msg::ReloadPipeClass), mb::Information, translated(msg::InitiateSelectors));
}

// ---- Drag and drop, paste -----------------------------------------------

void PipeSpecComp::OLEDragOver(int& effect)
{
    handle("Private Sub 'IQGridEvents_OLEDragOver'", [&] {
        m_DragObjects = nullptr;
        if (m_InternalDrag || !gWorkset || !mPipeClass) return;
        m_DragObjects = GetCDevicesColl(gWorkset->DragObject());
        if (m_DragObjects && m_DragObjects->Count() > 0) effect = dropeffect::Link;
    });
}

void PipeSpecComp::OLEDragDrop()
{
    handle("Private Sub 'IQGridEvents_OLEDragDrop'", [&] {
        AddCDevicesToPipeClass(m_DragObjects);
        m_DragObjects = nullptr;
    });
}

// The devices of a drag or of the clipboard that may become elements. In a
// list the kind test reads the list itself, which is no device: every live
// device of the list is taken, and element creation refuses what may not
// become an element.
void PipeSpecComp::Paste() { AddCDevicesToPipeClass(GetCDevicesColl(Variant(must(gWorkset).ClipboardObjects()))); }

CollectionRef PipeSpecComp::GetCDevicesColl(const Variant& source) const
{
    CollectionRef result;
    diagnostics::Procedure(classString(), "Private Function 'GetCDevicesColl'").run([&] {
        if (!gWorkset) return;
        result = gWorkset->NewCollection();
        if (const auto list = source.collection()) {
            for (int i = 1; i <= list->Count(); ++i) {
                const auto item = list->Item(i);
                if (item && !item->IsDeleted() && item->SystemType() == systemtype::Device) result->Add(item);
            }
            return;
        }
        const auto object = source.object();
        if (!object || object->GetDeleteFlag() || object->SystemType() != systemtype::Device) return;
        if (droppable(asDevice(object))) result->Add(object);
    });
    return result;
}

bool PipeSpecComp::IsPasteEnabled() const
{
    bool result = false;
    diagnostics::Procedure(classString(), "Private Function 'IsPasteEnabled'").run([&] {
        if (!mPipeClass) return;
        const int code = must(must(mPipeClass->Workset()).Clipboard()).CanPaste(mPipeClass);
        if (code != kPasteAllowed && code != kPasteAllowedLinked) return;
        result = must(gWorkset).CurrentProject() == mPipeClass->Project();
    });
    return result;
}

}  // namespace pipespec::componentlist
