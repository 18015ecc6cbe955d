// The component list as the host and a user drive it: the query it builds or
// loads, the cells it serves, its menu and commands, drops and the shutdown.

#include "componentlist/PipeSpecComp.h"
#include "elements/AddToPipeClass.h"
#include "objectmodel/Options.h"
#include "platform/query/QueryContainer.h"
#include "platform/store/ObjectFactory.h"
#include "qtplatform/GridMenu.h"
#include "qtplatform/ObjectCommands.h"
#include "qtplatform/ObjectDrag.h"
#include "qtplatform/QtGrid.h"
#include "support/World.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QDir>
#include <QFile>
#include <QGuiApplication>
#include <QMenu>
#include <QMimeData>
#include <QSignalSpy>
#include <QTest>
#include <QTimer>
#include <QVBoxLayout>

#include <gmock/gmock.h>

namespace pipespec::testing {
namespace {

using componentlist::PipeSpecComp;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

constexpr const char* kContainerPath = "@20|A70|Y10|M23|A20|A10";

// Records what the list asks of its wizard; at ShutDown, whether the grid
// and the query were already let go.
class RecordingWizard final : public IWizard {
public:
    explicit RecordingWizard(std::vector<std::string>& log, const PipeSpecComp*& control) : log_(log), control_(control)
    {
    }
    void SetPipeClass(const DeviceRef& pipeClass) override
    {
        log_.push_back("SetPipeClass " + (pipeClass ? pipeClass->Name() : "Nothing"));
    }
    void SetVisible(bool visible) override { log_.push_back(visible ? "shown" : "hidden"); }
    void Init() override { log_.push_back("Init"); }
    void ShutDown() override
    {
        if (!control_) return;
        log_.push_back(std::string("ShutDown") + (control_->grid().Query() ? " grid" : "") +
                       (control_->query() ? " query" : ""));
    }
    void ShowPPFValues(const DeviceRef&) override {}
    std::shared_ptr<IWizardEngine> Engine() const override { return nullptr; }

private:
    std::vector<std::string>& log_;
    const PipeSpecComp*& control_;
};

class PipeSpecCompTest : public ::testing::Test {
protected:
    PipeSpecCompTest()
    {
        world.root(world.base(), "@20");
        for (const auto& source : {flange, tee}) addtopipeclass::NewPipeClassElement(source, pipeClass, false);
        window.resize(900, 400);
        (new QVBoxLayout(&window))->addWidget(control);  // Owned by the window.
        window.show();
        EXPECT_TRUE(QTest::qWaitForWindowExposed(&window));
    }

    // A stored query of the plain kind: name and description, filtered on
    // both, sorted by name, with a branch column that no one registered.
    void storeQuery() const
    {
        const auto query = platform::createQuery(platform::kQueryKind);
        const auto columns = query->Top()->Columns();
        columns->Add("Name", -1)->SetValueKind(valuekind::Name);
        columns->Add("Description", -1)->SetValueKind(valuekind::Description);
        columns->Add("BranchComponents", -1)->SetExtendedKind(extendedkind::CheckBox);
        for (const auto* key : {"Name", "Description"}) {
            const auto filter = query->Filters()->Add(-1);
            filter->SetColumn(columns->Item(key));
            filter->SetOperator(filteroperator::NotEqual);
            filter->SetValue(Variant("x"));
            filter->SetLink(filterlink::And);
        }
        query->Filters()->Item(2)->SetLink(filterlink::None);
        query->Sorts()->Item(0)->SetColumn(columns->Item("Name"));
        const auto owner = world.path(world.base(), "@20|A70|Y10|M23|A20");
        const auto made = platform::QueryCreator().Create(owner, 1);
        made->SetName("A10");
        const auto container = platform::queryContainerOf(made);
        container->XObj()->TopQuery()->SetQueryOrg(query);
        container->Save();
        container->ReleaseXObj();
    }
    std::vector<std::string> keys() const
    {
        std::vector<std::string> keys;
        const auto columns = control->query()->Top()->Columns();
        for (int i = 1; i <= columns->Count(); ++i) keys.push_back(columns->Item(i)->Key());
        return keys;
    }
    std::vector<std::string> rows() const
    {
        std::vector<std::string> names;
        for (int row = 1; row <= control->query()->RowCount(); ++row)
            names.push_back(control->query()->RowObject(row)->Name());
        return names;
    }
    QPoint cellAt(int row, const char* key) const
    {
        auto& grid = control->grid();
        const auto index =
            grid.tableModel().index(row, grid.tableModel().sectionOf(control->query()->Top()->Columns()->Item(key)));
        grid.scrollTo(index);
        return grid.visualRect(index).center();
    }
    void click(const QPoint& at, Qt::MouseButton button = Qt::LeftButton) const
    {
        QTest::mouseClick(window.windowHandle(), button, {}, control->grid().viewport()->mapTo(&window, at));
    }
    // Opens the menu on that point; its keys ("-" a separator, "(off)"
    // disabled, sub-menus in brackets); chooses `choice` if given.
    std::string menu(const QPoint& at, std::string choice = {}) const
    {
        std::string seen;
        QTimer::singleShot(0, [&] {
            auto* open = qobject_cast<QMenu*>(QApplication::activePopupWidget());
            if (!open) return;
            for (auto* action : open->actions()) {
                const auto key = qtplatform::menuKey(*action);
                seen += (seen.empty() ? "" : ",") + (key.empty() ? "-" : key) + (action->isEnabled() ? "" : "(off)");
                if (key == choice) open->setActiveAction(action);
            }
            QTest::keyClick(open, choice.empty() ? Qt::Key_Escape : Qt::Key_Return);
        });
        click(at, Qt::RightButton);
        return seen;
    }
    DeviceRef element(const std::string& name) const { return asDevice(pipeClass->Devices()->Item(name)); }
    std::string branchText(const std::string& name) const { return element(name)->Spec("NR")->XmlText(); }

    support::World world;
    DeviceRef catalog = world.catalog();
    DeviceRef pipeClass = world.pipeClass(world.root(world.plant(), "@20"), "Pc-a1", "10000");
    DeviceRef flange = world.device(catalog, "FL", {{"GD.VFCD", "13100"}});
    DeviceRef tee = world.device(catalog, "TEE", {{"GD.VFCD", "71100"}});
    std::vector<std::string> wizardLog;
    const PipeSpecComp* shown = nullptr;
    PipeSpecComp* control =
        new PipeSpecComp(nullptr, [this](QWidget&) { return std::make_unique<RecordingWizard>(wizardLog, shown); });
    QWidget window;
};

TEST_F(PipeSpecCompTest, BuildsTheStandardQueryOnceAndStoresItWhereTheUserMayWrite)
{
    control->SetPipeClass(pipeClass);
    EXPECT_THAT(keys(), ElementsAre("PipeClass", "FunctionCode", "FunctionCodeDesc", "Name", "Component", "Description",
                                    "NameRangeLower", "NameRangeUpper", "BranchComponents", "ErrorObjects"));
    const auto columns = control->query()->Top()->Columns();
    EXPECT_FALSE(columns->Item("PipeClass")->Visible()) << "the recursive box is off";
    EXPECT_FALSE(columns->Item("ErrorObjects")->Visible());
    EXPECT_EQ(control->query()->Sorts()->Item(0)->Column(), nullptr) << "no sort outside PDMS mode";
    EXPECT_THAT(rows(), ElementsAre("001", "002"));
    EXPECT_EQ(world.workset()->AppGlobals()->TubrixDesignerRunClass(), "PC-A1");
    ASSERT_EQ(world.host().messageBoxes().size(), 1U);
    EXPECT_EQ(world.host().messageBoxes()[0].text,
              "Die Abfrageeinstellungen wurden gespeichert.\n\nContainer der Abfrage:\nBASE:@20|A70|Y10|M23|A20|A10 "
              "(Standardabfrage für Rohrklassen)");
    EXPECT_NE(world.base()->ObjectByPath(kContainerPath, 0), nullptr);

    // The same class again: marked again, not reloaded; the recursive box re-reads.
    const auto query = control->query();
    control->SetPipeClass(pipeClass);
    EXPECT_EQ(control->query(), query);
    control->recursiveBox().click();
    EXPECT_TRUE(columns->Item("PipeClass")->Visible());
    EXPECT_EQ(world.host().messageBoxes().size(), 1U);

    // Another class of the same kind loads what was stored.
    control->SetPipeClass(world.pipeClass(world.root(world.plant(), "@20"), "PC-B", "10000"));
    EXPECT_NE(control->query(), query);
    EXPECT_EQ(world.host().messageBoxes().size(), 1U);

    // A PDMS class uses a container of its own, sorted by part type; without
    // write access to the base project nothing is stored and nothing said.
    world.base()->setAccessRights(0);
    const auto pdms = world.pipeClass(world.root(world.plant(), "@20"), "PC-P", "10000", true);
    control->SetPipeClass(pdms);
    EXPECT_THAT(keys(), ::testing::Contains("GroupColumn"));
    EXPECT_EQ(control->query()->Sorts()->Item(0)->Column()->Key(), "GroupColumn");
    EXPECT_EQ(columns->Item("FunctionCode")->Title(), "Funktionscode") << "the old query is gone";
    EXPECT_EQ(control->query()->Top()->Columns()->Item("FunctionCode")->Title(), "Generic type");
    EXPECT_EQ(world.host().messageBoxes().size(), 1U);
    EXPECT_EQ(world.base()->ObjectByPath("@20|A70|Y10|M23|A20|A20", 0), nullptr);

    control->SetPipeClass(nullptr);
    EXPECT_EQ(world.workset()->AppGlobals()->TubrixDesignerRunClass(), "");
    EXPECT_EQ(world.reported(), "");
}

TEST_F(PipeSpecCompTest, LoadsAStoredQueryJoinsItsFiltersAndServesItsCells)
{
    storeQuery();
    control->SetPipeClass(pipeClass);
    EXPECT_THAT(keys(),
                ElementsAre("PipeClass", "Name", "Description", "BranchComponents", "FunctionCode", "FunctionCodeDesc",
                            "Component", "NameRangeLower", "NameRangeUpper", "ErrorObjects"))
        << "missing columns are appended";
    EXPECT_EQ(control->query()->Sorts()->Item(0)->Column(), nullptr) << "the stored sort is dropped";
    const auto filters = control->query()->Filters();
    ASSERT_EQ(filters->Count(), 3);
    EXPECT_EQ(filters->Item(2)->Link(), filterlink::And);
    EXPECT_EQ(filters->Item(3)->Column()->Key(), "ErrorObjects");
    EXPECT_EQ(filters->Item(3)->Operator(), filteroperator::AtLeast);
    EXPECT_TRUE(world.host().messageBoxes().empty()) << "nothing stored";
    // The loaded branch column was never registered: its cells come from the published server.
    const auto& model = control->grid().tableModel();
    const auto branch = model.sectionOf(control->query()->Top()->Columns()->Item("BranchComponents"));
    EXPECT_EQ(model.index(1, branch).data(Qt::CheckStateRole).toInt(), Qt::Checked) << "the tee is a branch";
    EXPECT_EQ(model.index(0, branch).data(Qt::CheckStateRole).toInt(), Qt::Unchecked);
}

TEST_F(PipeSpecCompTest, BranchFlagFollowsTheRuleUntilTickedAndAChangeClearsTheStoredText)
{
    const auto coded = [&](const std::string& code) {
        const auto made = world.device(pipeClass, "C" + code, {{"GD.VFCD", code}, {"NR.DNFROM", "15"}});
        return control->BranchComponent(made);
    };
    for (const auto* code : {"71000", "71999", "10011", "11999"}) EXPECT_EQ(coded(code), 1) << code;
    for (const auto* code : {"10010", "12000", "70999"}) EXPECT_EQ(coded(code), -1) << code;
    world.attribute(element("C12000"), "GD.BRANCH", "7");
    EXPECT_EQ(control->BranchComponent(element("C12000")), 7);
    world.setCreateOption(element("C70999"), 1);
    EXPECT_EQ(control->BranchComponent(element("C70999")), 0) << "a structure element";
    control->SetBranchComponent(element("C70999"), -1);
    EXPECT_EQ(branchText("C70999"), "");

    // Ticking writes the canonical text, a change clears it, ticking writes it again.
    control->SetPipeClass(pipeClass);
    QSignalSpy changed(control, &PipeSpecComp::DataChanged);
    const std::string ticked = R"(<ElementDefinition><BranchDefinition BranchPart="+"/></ElementDefinition>)";
    click(cellAt(0, "BranchComponents"));
    QTest::keyClick(&control->grid(), Qt::Key_Space);
    EXPECT_EQ(branchText("001"), ticked);
    QTest::keyClick(&control->grid(), Qt::Key_Space);
    EXPECT_EQ(branchText("001"), "") << "unticking clears the text";
    QTest::keyClick(&control->grid(), Qt::Key_Space);
    EXPECT_EQ(branchText("001"), ticked);
    EXPECT_EQ(changed.count(), 3);
    EXPECT_EQ(control->BranchComponent(element("001")), 2);

    // A shown flag offers the reset, which clears the text of every row.
    EXPECT_THAT(menu(cellAt(0, "Name"), "ResetBranch"), HasSubstr("ResetBranch"));
    EXPECT_EQ(branchText("001"), "");
    EXPECT_EQ(control->BranchComponent(element("001")), -1);
}

TEST_F(PipeSpecCompTest, MenuFollowsTheSelectionAndItsCommandsReloadOnlyWhatChanged)
{
    world.device(pipeClass, "BAD", {{"GD.VFCD", ""}});
    control->SetPipeClass(pipeClass);
    QSignalSpy changed(control, &PipeSpecComp::DataChanged);
    EXPECT_EQ(menu(cellAt(0, "Name")),
              "-,Refresh,-,FuncttionCodeVisible,ErrorObjects,-,NavigateOriginal,NavigatePipeClass,DELETE,LIST_COPY,"
              "LIST_EXPORT,Paste(off),PROPERTIES,CreateSelector");
    const QPoint belowRows(5, control->grid().viewport()->height() - 5);
    click(belowRows);
    EXPECT_EQ(menu(belowRows),
              "-,Refresh,-,FuncttionCodeVisible,ErrorObjects,-,NavigateOriginal(off),NavigatePipeClass(off),"
              "DELETE(off),LIST_COPY(off),LIST_EXPORT,Paste(off),PROPERTIES(off),CreateSelector")
        << "nothing selected";
    EXPECT_THAT(menu(cellAt(2, "Name")), HasSubstr("NavigateOriginal(off)")) << "no base object";

    // The error filter shows only the refused row, then all again.
    menu(cellAt(0, "Name"), "ErrorObjects");
    EXPECT_THAT(rows(), ElementsAre("BAD"));
    menu(cellAt(0, "Name"), "ErrorObjects");
    EXPECT_THAT(rows(), ElementsAre("001", "002", "BAD"));

    // Paste follows the clipboard and selects what it made.
    world.workset()->ClipboardObjects()->Add(world.device(catalog, "EL", {{"GD.VFCD", "10200"}}));
    menu(cellAt(0, "Name"), "Paste");
    EXPECT_THAT(rows(), ElementsAre("001", "002", "BAD", "003"));
    ASSERT_EQ(control->grid().SelectedObjects()->Count(), 1);
    EXPECT_EQ(control->grid().SelectedObjects()->Item(1)->Name(), "003");
    EXPECT_EQ(changed.count(), 1);

    // The list as text: the selected rows copied, the whole list as CSV.
    element("001")->SetDescription("Flansch, \"WN\"");
    control->grid().Redraw();
    menu(cellAt(0, "Name"), "LIST_COPY");
    EXPECT_THAT(QGuiApplication::clipboard()->text().toStdString(),
                HasSubstr("Abzweigbauteile\n13100\t13100\t001\tFL\tFlansch, \"WN\"\t"));
    const auto csv = QDir::temp().filePath("componentlist-export.csv");
    qtplatform::ListCommand(control->grid()).Export(csv);
    QFile written(csv);
    ASSERT_TRUE(written.open(QIODevice::ReadOnly));
    EXPECT_THAT(written.readAll().toStdString(),
                HasSubstr("\r\n13100,13100,001,FL,\"Flansch, \"\"WN\"\"\",15,600,0\r\n71100,"));
    written.remove();

    // Delete: the cached entry goes either way; the list reloads only when a row went.
    const auto cache = world.workset()->Globals()->getOption(option::PipeClassCache).map();
    cache->Add("Pc-a1", Variant("cached"));
    world.host().scriptAnswer(mb::AnswerNo);
    const auto made = cellAt(control->grid().tableModel().rowOf(element("003")), "Name");
    menu(made, "DELETE");
    EXPECT_FALSE(cache->Exists("Pc-a1"));
    EXPECT_EQ(changed.count(), 1);
    menu(made, "DELETE");
    EXPECT_THAT(rows(), ElementsAre("001", "002", "BAD"));
    EXPECT_EQ(changed.count(), 2);
    EXPECT_EQ(world.reported(), "");
}

TEST_F(PipeSpecCompTest, CreateSelectorCopiesThePredefinedRootOrSaysWhatIsMissing)
{
    control->SetPipeClass(pipeClass);
    const auto boxes = [&] {
        const auto& box = world.host().messageBoxes().back();
        return box.title + ": " + box.text + " (" + std::to_string(box.flags) + ")";
    };
    menu(cellAt(0, "Name"), "CreateSelector");
    EXPECT_EQ(boxes(), "Fehler in 'Selektoren initiieren': Attribut GD.Selector der Rohrklasse nicht gefunden oder "
                       "LinkObject nicht gesetzt (48)");
    const auto selectors = world.device(catalog, "SELECTORS");
    const auto linked = world.device(selectors, "S-LINKED");
    world.attribute(pipeClass, "GD.Selector", "")->SetLinkObject(linked);
    world.attribute(linked, "Sele.PDMSFlag", "1");
    const auto plain = world.device(selectors, "S-PLAIN", {{"Sele.PDMSFlag", "0"}});
    menu(cellAt(0, "Name"), "CreateSelector");
    EXPECT_EQ(boxes(), "Selektoren initiieren: Laden Sie bitte die Rohrklasse in TubrixDesign erneut (64)");
    const auto root = asDevice(pipeClass->OwnElements()->Item("SelectorRoot"));
    ASSERT_NE(root, nullptr);
    EXPECT_EQ(world.value(root, "Sele.PDMSFlag"), "0") << "the copy of the plain root";
    EXPECT_THAT(menu(cellAt(0, "Name")), ::testing::Not(HasSubstr("CreateSelector")));

    // No predefined root of the class's kind: a new root on the linked selector.
    root->Delete();
    world.attribute(plain, "Sele.PDMSFlag", "1");
    menu(cellAt(0, "Name"), "CreateSelector");
    const auto made = asDevice(pipeClass->OwnElements()->Item("SelectorRoot"));
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(made->CDevice(), linked);
    EXPECT_EQ(boxes(), "Selektoren initiieren: Laden Sie bitte die Rohrklasse in TubrixDesign erneut (64)");
    EXPECT_EQ(world.reported(), "");
}

TEST_F(PipeSpecCompTest, DropsAddAsOneUndoStepAndTheListsOwnRowsAreRefused)
{
    control->SetPipeClass(pipeClass);
    const auto undo = world.workset()->NewUndoState();
    world.workset()->SetCurrentUndoState(undo);
    pipeClass->SetDescription("before the drop");
    QMimeData objects;
    objects.setData(qtplatform::kObjectsMimeType, {});
    const auto drop = [&] {
        auto* viewport = control->grid().viewport();
        const auto at = cellAt(0, "Name");
        QDragEnterEvent enter(at, Qt::LinkAction, &objects, Qt::LeftButton, {});
        QCoreApplication::sendEvent(viewport, &enter);
        QDropEvent dropped(at, Qt::LinkAction, &objects, Qt::LeftButton, {});
        QCoreApplication::sendEvent(viewport, &dropped);
        return dropped.isAccepted();
    };

    // Rows dragged out of the list and back onto it add nothing.
    world.workset()->setDragObject(Variant(control->query()->Top()->Objects()));
    int effect = dropeffect::Link;
    control->gridEvents()->OLEStartDrag(world.workset()->DragObject(), effect);
    EXPECT_FALSE(drop());
    control->gridEvents()->OLECompleteDrag(dropeffect::None);
    EXPECT_THAT(rows(), ElementsAre("001", "002"));

    // Five catalogue objects, cancelled before the third: two stay, as one undo step.
    const auto sources = world.workset()->NewCollection();
    for (const auto* name : {"A", "B", "C", "D", "E"})
        sources->Add(world.device(catalog, name, {{"GD.VFCD", "10300"}}));
    world.workset()->setDragObject(Variant(sources));
    world.host().cancelProgressAt(2);
    QSignalSpy changed(control, &PipeSpecComp::DataChanged);
    EXPECT_TRUE(drop());
    EXPECT_THAT(rows(), ElementsAre("001", "002", "003", "004"));
    EXPECT_THAT(world.host().progressSteps(),
                ElementsAre("Elemente werden hinzugefügt: 0/5 A", "Elemente werden hinzugefügt: 1/5 B",
                            "Elemente werden hinzugefügt: 2/5 C"));
    EXPECT_EQ(changed.count(), 1);
    EXPECT_EQ(control->grid().SelectedObjects()->Count(), 2);
    undo->Undo();
    EXPECT_EQ(pipeClass->Devices()->Count(), 2) << "one step took both back";
    EXPECT_EQ(pipeClass->Description(), "before the drop") << "and nothing before them";
}

TEST_F(PipeSpecCompTest, WizardBoxLayoutAndShutdownInOrder)
{
    shown = control;
    control->SetPipeClass(pipeClass);
    const int fullHeight = control->grid().height();
    control->wizardBox().click();
    EXPECT_TRUE(control->wizardPanel().isVisible());
    EXPECT_LT(control->grid().height(), fullHeight) << "the panel takes its room above the grid";
    control->wizardBox().click();
    EXPECT_EQ(control->grid().height(), fullHeight);
    EXPECT_EQ(control->TabBackGround(), 15);

    control->Shutdown();
    control->Shutdown();
    EXPECT_THAT(wizardLog, ElementsAre("Init", "hidden", "shown", "SetPipeClass Pc-a1", "Init", "hidden", "ShutDown"))
        << "grid and query were let go before the wizard";
    EXPECT_EQ(control->PipeClass(), nullptr);
    EXPECT_EQ(world.workset()->AppGlobals()->TubrixDesignerRunClass(), "");
    EXPECT_EQ(world.reported(), "");
}

}  // namespace
}  // namespace pipespec::testing
