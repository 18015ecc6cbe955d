// The wizard: which catalogue components its engine lets a pipe class have,
// what solving a template class makes, and the panel the user searches and
// drags from.

#include "qtplatform/Wizard.h"
#include "qtplatform/QtGrid.h"
#include "qtplatform/WizardEngine.h"
#include "support/Creation.h"

#include <QApplication>
#include <QLineEdit>
#include <QTest>
#include <QVBoxLayout>

#include <gmock/gmock.h>

namespace pipespec::testing {
namespace {

using qtplatform::QtGrid;
using qtplatform::Wizard;
using qtplatform::WizardEngine;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

// A template class offering DN 15 to 100 at PN 16, with the element check on
// and one placeholder for elbows DN 15 to 80; a catalogue of elbows and
// flanges around it.
class WizardTest : public support::CreationTest {
protected:
    WizardTest()
    {
        world.setFolder(folder);
        world.attribute(pipeClass, "GD.ECHECK", "1");
        world.attribute(pipeClass, "SEL.PN", "16");
        world.list(pipeClass, "NR.DNLIST", {"15", "25", "50", "80", "100"});
        world.setCreateOption(placeholder, 1);
        world.setCreateOption(structureElbow, 1);
    }

    DeviceRef component(const std::string& name, const std::string& code, const std::string& diameter,
                        const std::string& description, const std::string& pressure = {}) const
    {
        auto made = world.device(folder, name, {{"GD.VFCD", code}, {"CONN.DN1", diameter}});
        made->SetDescription(description);
        if (!pressure.empty()) world.attribute(made, "SEL.PN", pressure);
        return made;
    }
    // The class's elements by what they stand on; the placeholder by its own name.
    std::string elements() const
    {
        std::vector<std::string> names;
        const auto devices = pipeClass->Devices();
        for (int i = 1; i <= devices->Count(); ++i) {
            const auto element = asDevice(devices->Item(i));
            names.push_back((element->CDevice() ? element->CDevice() : element)->Name());
        }
        return support::join(names);
    }

    DeviceRef folder = world.device(catalog, "CAT");
    DeviceRef elbow25 = component("EL-DN25", "10200", "25", "Bogen DN 25");
    DeviceRef elbow80 = component("EL-DN80", "10200", "80", "Bogen DN 80");
    DeviceRef elbow100 = component("EL-DN100", "10200", "100", "Bogen DN 100");
    DeviceRef elbow400 = component("EL-DN400", "10200", "400", "Bogen DN 400");
    DeviceRef flange16 = component("FL-PN16-DN50", "10100", "50", "Flansch DN 50", "16");
    DeviceRef flange40 = component("FL-PN40-DN50", "10100", "50", "Flansch DN 50", "40");
    DeviceRef structureElbow = component("ST-EL-DN50", "10200", "50", "Strukturbogen");
    DeviceRef pipeClass = world.pipeClass(world.root(world.plant(), "@20"), "PC-T", "10003");
    DeviceRef placeholder = world.device(pipeClass, "S01", {{"GD.VFCD", "10200"}, {"GD.DNRANGE", "DN15-DN80"}});
};

TEST_F(WizardTest, CheckAcceptsWhatFitsTheClassAndSaysWhyNot)
{
    WizardEngine engine;
    Variant result("stale");
    EXPECT_TRUE(engine.CheckElement(pipeClass, elbow25, result));
    EXPECT_TRUE(result.IsEmpty());
    EXPECT_FALSE(engine.CheckElement(pipeClass, elbow400, result));
    EXPECT_EQ(result, Variant("Nennweite DN 400 wird von der Rohrklasse nicht angeboten"));
    EXPECT_FALSE(engine.CheckElement(pipeClass, flange40, result));
    EXPECT_EQ(result, Variant("Nenndruck PN 40 passt nicht zu PN 16 der Rohrklasse"));
    EXPECT_FALSE(engine.CheckElement(pipeClass, placeholder, result)) << "it stands for components, is none";
    EXPECT_EQ(result, Variant("Strukturelement: erst das Auflösen macht Komponenten daraus"));

    // Without a list the bounds decide; a class without a pressure takes any.
    const auto open = world.pipeClass(world.root(world.plant(), "@20"), "PC-OPEN", "10000");
    EXPECT_TRUE(engine.CheckElement(open, elbow400, result));
    EXPECT_TRUE(engine.CheckElement(open, flange40, result));
    world.attribute(open, "NR.DNTO", "300");
    EXPECT_FALSE(engine.CheckElement(open, elbow400, result));

    EXPECT_THAT(world.traceTexts("CheckElement"), IsEmpty()) << "no trace unless switched on";
    engine.SetTrace(true);
    EXPECT_FALSE(engine.CheckElement(pipeClass, flange40, result));
    EXPECT_THAT(world.traceTexts("CheckElement"),
                ElementsAre("BASE:@40|CAT|FL-PN40-DN50 refused: PN 40 is not the class's PN 16"));
    EXPECT_EQ(world.reported(), "");
}

TEST_F(WizardTest, SolvingMakesTheFittingComponentsOnceAsOneUndoStep)
{
    const auto undo = world.workset()->NewUndoState();
    world.workset()->SetCurrentUndoState(undo);
    // A change outside any action, which the solve would join if it were none.
    world.attribute(pipeClass, "GD.TEXT", "kept");
    WizardEngine engine;
    bool solved = false;
    engine.SolveCDevice(placeholder, solved);
    EXPECT_TRUE(solved);
    EXPECT_EQ(elements(), "S01 EL-DN25 EL-DN80") << "in the range, of its code, fitting, no structure element";
    EXPECT_EQ(undo->undoSteps(), 2u);

    engine.SolveCDevice(placeholder, solved);
    EXPECT_FALSE(solved) << "what the class has is not made again";
    Variant made;
    engine.SolveTemplate(pipeClass, made);
    EXPECT_EQ(made, Variant(0));
    EXPECT_THAT(world.host().messageBoxes(), IsEmpty()) << "no question about duplicates";

    undo->Undo();
    EXPECT_EQ(elements(), "S01");
    EXPECT_EQ(world.value(pipeClass, "GD.TEXT"), "kept");
    // A row of the class stands for its class; a class that is no template has nothing to solve.
    engine.SolveTemplate(placeholder, made);
    EXPECT_EQ(made, Variant(2));
    world.attribute(pipeClass, "GD.VFCD", "10000");
    engine.SolveTemplate(pipeClass, made);
    EXPECT_EQ(made, Variant(0));
    EXPECT_EQ(world.reported(), "");
}

TEST_F(WizardTest, PanelOffersTheFittingComponentsToSearchAndDragAndShowsTheValuesOfSolving)
{
    auto window = std::make_unique<QWidget>();
    window->resize(800, 400);
    Wizard wizard(window.get());
    (new QVBoxLayout(window.get()))->addWidget(wizard.panel());  // Owned by the window.
    wizard.SetPipeClass(pipeClass);
    wizard.Init();
    wizard.SetVisible(true);
    window->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window.get()));
    auto& grid = *wizard.panel()->findChild<QtGrid*>();
    auto& search = *wizard.panel()->findChild<QLineEdit*>();
    const auto rows = [&] {
        std::vector<std::string> names;
        for (int row = 0; row < grid.tableModel().rowCount(); ++row)
            names.push_back(grid.tableModel().rowObject(row)->Name());
        return support::join(names);
    };
    EXPECT_EQ(rows(), "EL-DN25 EL-DN80 EL-DN100 FL-PN16-DN50");
    world.attribute(pipeClass, "GD.ECHECK", "0");
    wizard.Init();
    EXPECT_EQ(rows(), "EL-DN25 EL-DN80 EL-DN100 EL-DN400 FL-PN16-DN50 FL-PN40-DN50 ST-EL-DN50")
        << "the class's switch decides whether the engine is asked";
    world.attribute(pipeClass, "GD.ECHECK", "1");
    wizard.Init();

    QTest::keyClicks(&search, "DN8");
    EXPECT_EQ(rows(), "EL-DN80");
    search.clear();
    QTest::keyClicks(&search, "Flansch");
    EXPECT_EQ(rows(), "FL-PN16-DN50") << "the description counts too";

    const auto from = grid.viewport()->mapTo(window.get(), grid.visualRect(grid.tableModel().index(0, 0)).center());
    QTest::mousePress(window->windowHandle(), Qt::LeftButton, {}, from);
    QTest::mouseMove(window->windowHandle(), from + QPoint(0, 2));
    QTest::mouseMove(window->windowHandle(), from + QPoint(0, QApplication::startDragDistance() + 20));
    QTest::mouseRelease(window->windowHandle(), Qt::LeftButton, {}, from);
    const auto carried = world.workset()->DragObject().collection();
    ASSERT_TRUE(carried);
    ASSERT_EQ(carried->Count(), 1);
    EXPECT_EQ(carried->Item(1), flange16);

    wizard.SetPipeClass(folder);
    wizard.Init();
    EXPECT_EQ(rows(), "") << "no pipe class, no offer";

    placeholder->SetCDevice(elbow25);
    world.attribute(placeholder, "SEL.PN", "16");
    wizard.ShowPPFValues(placeholder);
    ASSERT_EQ(world.host().messageBoxes().size(), 1u);
    const auto& box = world.host().messageBoxes()[0];
    EXPECT_EQ(box.text, "PLANT:@20|PC-T|S01\r\nFunktionscode: 10200\r\nGenerischer Typ: (nicht gesetzt)\r\n"
                        "Elementbereich: DN15-DN80\r\nNenndruck: 16\r\nKatalogobjekt: BASE:@40|CAT|EL-DN25");
    EXPECT_EQ(box.flags, mb::Information);
    EXPECT_EQ(box.title, "Werte zum Auflösen");

    wizard.ShutDown();
    EXPECT_EQ(grid.Query(), nullptr);
    EXPECT_EQ(wizard.panel(), nullptr);
    wizard.ShutDown();
    wizard.Init();
    wizard.SetVisible(true);
    window.reset();
    EXPECT_EQ(world.reported(), "");
}

}  // namespace
}  // namespace pipespec::testing
