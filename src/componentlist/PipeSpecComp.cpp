// The life cycle of the component list: its parts and their layout, the
// pipe class and the designer's run marker, the wizard, the reaction to a
// deletion, the orderly shutdown, and the entries that make elements.

#include "componentlist/PipeSpecComp.h"

#include "diagnostics/Messages.h"
#include "diagnostics/ServiceRegistry.h"
#include "elements/AddToPipeClass.h"
#include "objectmodel/Text.h"
#include "qtplatform/DividerBar.h"
#include "qtplatform/ObjectCommands.h"
#include "qtplatform/QtGrid.h"
#include "qtplatform/Wizard.h"
#include "ranges/frmPCOMRange.h"

#include <QCheckBox>
#include <QItemSelectionModel>
#include <QVBoxLayout>

namespace pipespec::componentlist {

namespace {

QString translated(std::string_view text) { return QString::fromStdString(diagnostics::utilities().Translate(text)); }

}  // namespace

PipeSpecComp::PipeSpecComp(QWidget* parent, WizardFactory makeWizard)
    : ControlFrame(cls::PipeSpecComp, parent),
      CheckRecursive(new QCheckBox(this)),
      chk_Wizard(new QCheckBox(this)),
      DividerBar1(new qtplatform::DividerBar(Qt::Vertical, this)),
      m_WpfHost(new QWidget(DividerBar1)),
      QGrid(new qtplatform::QtGrid("QGrid", DividerBar1))
{
    handle("Private Sub 'UserControl_Initialize'", [&] {
        DividerBar1->addWidget(m_WpfHost);
        DividerBar1->addWidget(QGrid);
        createWizard(makeWizard);
        const int half = height() / 2;
        DividerBar1->setSizes({half, half});
        m_WpfHost->hide();
        retranslate();
    });
    connectHandler(CheckRecursive, &QCheckBox::clicked, "Private Sub 'CheckRecursive_Click'",
                   [this](bool) { CheckRecursive_Click(); });
    connectHandler(chk_Wizard, &QCheckBox::clicked, "Private Sub 'chk_Wizard_Click'",
                   [this](bool) { chk_Wizard_Click(); });
    connect(DividerBar1, &qtplatform::DividerBar::SplitterMoveStop, this, [this] { DoResize(); });
}

// Unlike the other controls, the list shuts itself down as it goes: the
// panel goes first, then Shutdown, which may already have run.
PipeSpecComp::~PipeSpecComp()
{
    handle("Private Sub 'UserControl_Terminate'", [&] {
        m_WpfHost->hide();
        Shutdown();
    });
}

// The wizard is made once; its panel starts hidden and the box decides.
void PipeSpecComp::createWizard(const WizardFactory& makeWizard)
{
    const diagnostics::Trace trace(classString(), "InitializeWpfControls");
    handle("Sub InitializeWpfControls", [&] {
        if (m_Wizard) return;
        trace.text("creating wizard...");
        m_Wizard = makeWizard ? makeWizard(*m_WpfHost) : std::make_unique<qtplatform::Wizard>(m_WpfHost);
        // The panel the wizard made in its host fills the host.
        auto* fill = new QVBoxLayout(m_WpfHost);  // Owned by the host.
        fill->setContentsMargins(0, 0, 0, 0);
        for (auto* panel : m_WpfHost->findChildren<QWidget*>(Qt::FindDirectChildrenOnly)) fill->addWidget(panel);
        trace.text("creating wizard done");
        m_Wizard->Init();
        trace.text("init wizard done");
        m_Wizard->SetVisible(false);
    });
}

void PipeSpecComp::retranslate()
{
    CheckRecursive->setText(translated(msg::RecursiveForPipeClasses));
    chk_Wizard->setText(translated(msg::ShowFilteredObjectQuery));
    setWindowTitle(translated(msg::PipeClasses));
}

void PipeSpecComp::SetPipeClass(const DeviceRef& value)
{
    handle("Property Set 'PipeClass'", [&] {
        m_PipeClassSet = value;
        if (value) must(must(value->Workset()).AppGlobals()).SetTubrixDesignerRunClass(text::UCase(value->Name()));
        if (!value && mPipeClass) must(must(mPipeClass->Workset()).AppGlobals()).SetTubrixDesignerRunClass("");
        if (same(value, mPipeClass)) return;
        mPipeClass = value;
        gQueryI = nullptr;
        Refresh();
    });
}

bool PipeSpecComp::ValidChapter(const DeviceRef& vNewValue, std::int32_t& ErrorID, std::string& strSelectChapter)
{
    const diagnostics::Trace trace(classString(), "ValidChapter");
    bool result = false;
    handle("Function ValidChapter", [&] {
        const auto& names = diagnostics::names();
        ErrorID = 1;
        strSelectChapter = names.NameRange();
        const auto Speci = must(vNewValue).Spec(names.NameRangeListAttr());
        trace.object("Speci", Speci);
        if (!Speci) return;
        // The most linked values the list holds: its rows.
        trace.text("Speci.MaxLinkedXValueCount = " + std::to_string(Speci->RowCount()));
        if (Speci->RowCount() <= 0) return;
        strSelectChapter = "COMPONENT";
        result = true;
    });
    return result;
}

int PipeSpecComp::TabBackGround()
{
    ControlFrame::TabBackGround();
    return kTabBackGround;
}

bool PipeSpecComp::recursive() const { return CheckRecursive->isChecked(); }

bool PipeSpecComp::pdmsMode() const { return mPipeClass && mPipeClass->Spec(diagnostics::names().PDMS()); }

std::shared_ptr<IWizardEngine> PipeSpecComp::wizardEngine() const { return m_Wizard ? m_Wizard->Engine() : nullptr; }

void PipeSpecComp::CheckRecursive_Click() { Reread(); }

void PipeSpecComp::chk_Wizard_Click()
{
    if (!m_Wizard) return;
    const bool on = chk_Wizard->isChecked();
    m_Wizard->SetVisible(on);
    if (on) {
        m_Wizard->SetPipeClass(mPipeClass);
        m_Wizard->Init();
    }
    m_WpfHost->setVisible(on);
    DoResize();
}

void PipeSpecComp::resizeEvent(QResizeEvent* event)
{
    ControlFrame::resizeEvent(event);
    DoResize();
}

// The check boxes stand in a row at the top; below them the divider holds
// the wizard's panel (while the box shows it) and the grid, which takes the
// rest down to the bottom edge, kGridGap below the divider's handle.
void PipeSpecComp::DoResize()
{
    handle("Sub DoResize", [&] {
        const int row = std::max(CheckRecursive->sizeHint().height(), chk_Wizard->sizeHint().height());
        CheckRecursive->move(kRecursiveLeft, 0);
        CheckRecursive->resize(CheckRecursive->sizeHint());
        chk_Wizard->move(kWizardBoxLeft, 0);
        chk_Wizard->resize(chk_Wizard->sizeHint());
        DividerBar1->setGeometry(0, row, width(), std::max(0, height() - row));
        DividerBar1->setHandleWidth(m_WpfHost->isVisible() ? kGridGap : 0);
    });
}

void PipeSpecComp::gPPDelete_AfterExecute()
{
    handle("Private Sub 'gPPDelete_AfterExecute'", [&] {
        if (!mPipeClass || !gWorkset) return;
        addtopipeclass::DropCachedEntry(must(gWorkset->Globals()), mPipeClass);
        const auto selected = QGrid->SelectedObjects();
        if (!selected) return;
        for (int i = 1; i <= selected->Count(); ++i) {
            const auto item = selected->Item(i);
            if (item && !item->IsDeleted()) continue;
            Reread();
            emit DataChanged();
            return;
        }
    });
}

// Each step on its own, so that a failing part does not keep the others alive.
void PipeSpecComp::shutdownParts()
{
    const auto step = [this](auto&& statement) { handle("Public Sub 'ShutDown'", statement); };
    step([&] {
        if (mPipeClass) must(must(mPipeClass->Workset()).AppGlobals()).SetTubrixDesignerRunClass("");
    });
    m_DragObjects = nullptr;
    step([&] { QGrid->ShutDown(); });
    step([&] {
        if (gQueryI) gQueryI->ShutDown();
    });
    gQueryI = nullptr;
    step([&] {
        if (m_Wizard) m_Wizard->ShutDown();
    });
    m_Wizard.reset();
    step([&] {
        if (m_PropertiesCommand) m_PropertiesCommand->ShutDown();
    });
    m_PropertiesCommand.reset();
    step([&] {
        if (m_ListCommand) m_ListCommand->ShutDown();
    });
    m_ListCommand.reset();
    step([&] {
        if (gPPDelete) gPPDelete->ShutDown();
    });
    gPPDelete.reset();
    mPipeClass = nullptr;
    gWorkset = nullptr;
}

// ---- Entries that make elements -----------------------------------------

DeviceRef PipeSpecComp::NewPipeClassElement(const DeviceRef& CDevObject, const DeviceRef& PipeClass,
                                            bool InteractiveImportObject)
{
    DeviceRef result;
    handle("Function NewPipeClassElement",
           [&] { result = addtopipeclass::NewPipeClassElement(CDevObject, PipeClass, InteractiveImportObject); });
    return result;
}

DeviceRef PipeSpecComp::AddToPipeClassAfterDrag(const DeviceRef& CDevObject)
{
    DeviceRef result;
    handle("Function AddToPipeClassAfterDrag", [&] {
        if (!same(CDevObject, mPipeClass)) result = NewPipeClassElement(CDevObject, mPipeClass, false);
    });
    return result;
}

DeviceRef PipeSpecComp::AddToPipeClass(const DeviceRef& CDevObject)
{
    DeviceRef result;
    handle("AddToPipeClass", [&] {
        result = AddToPipeClassAfterDrag(CDevObject);
        Reread();
        emit DataChanged();
    });
    return result;
}

CollectionRef PipeSpecComp::AfterAddToPipeSpec(const DeviceRef& CDevObject)
{
    CollectionRef result;
    handle("AddToPipeClass", [&] {
        if (!CDevObject || same(CDevObject, mPipeClass)) return;
        auto& state = addtopipeclass::moduleState(*CDevObject);
        state.AfterAddRunning = true;
        std::string groupId;
        addtopipeclass::NewPipeSpecElement(CDevObject, mPipeClass, false, true, groupId, false, CDevObject);
        state.AfterAddRunning = false;
        const auto made = addtopipeclass::CreatedObjects(must(CDevObject->Workset()));
        result = must(gWorkset).NewCollection();
        if (made)
            for (const auto& element : made->Items()) result->Add(element);
        Reread();
        emit DataChanged();
    });
    return result;
}

// The whole drop is one undo step; the user may stop it between two sources,
// and what was made before stays.
void PipeSpecComp::AddCDevicesToPipeClass(const CollectionRef& sources)
{
    handle("Private Sub 'AddCDevicesToPipeClass'", [&] {
        if (!sources || !mPipeClass || sources->Count() <= 0) return;
        auto& utilities = diagnostics::utilities();
        if (mPipeClass->Project() != must(gWorkset).CurrentProject()) {
            utilities.MessageBox(utilities.Translate(msg::PipeClassNotInProject) + "\n" +
                                     utilities.Translate(msg::ActionCancelled),
                                 mb::Exclamation, windowTitle().toStdString());
            return;
        }
        addtopipeclass::DropCachedEntry(must(gWorkset->Globals()), mPipeClass);
        const auto made = gWorkset->NewCollection();
        {
            const ActionScope action(*gWorkset);
            const auto progress =
                utilities.BeginProgress(utilities.Translate(msg::window::AddingElements), sources->Count());
            for (int i = 1; i <= sources->Count(); ++i) {
                const auto source = sources->Item(i);
                if (!progress->Step(i - 1, source ? source->Name() : std::string())) break;
                if (const auto element = AddToPipeClassAfterDrag(asDevice(source))) made->Add(element);
            }
        }
        if (made->Count() < 1) return;
        Reread();
        emit DataChanged();
        SelectPipeClassObjects(made);
    });
}

void PipeSpecComp::SelectPipeClassObjects(const CollectionRef& objects)
{
    handle("Sub SelectPipeClassObjects", [&] {
        if (!objects || !gQueryI) return;
        auto& model = QGrid->tableModel();
        QItemSelection selection;
        for (int row = 1; row <= gQueryI->RowCount(); ++row) {
            if (objects->IndexOf(gQueryI->RowObject(row)) < 1) continue;
            selection.select(model.index(row - 1, 0), model.index(row - 1, model.columnCount() - 1));
        }
        QGrid->selectionModel()->select(selection, QItemSelectionModel::ClearAndSelect | QItemSelectionModel::Rows);
    });
}

}  // namespace pipespec::componentlist
