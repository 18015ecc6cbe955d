// The designer window on a database made from the sample project, driven
// offscreen as a user drives it: what the explorer, the properties, the undo
// state, the title and the menus show afterwards.

#include "componentlist/PipeSpecComp.h"
#include "designer/DesignerWindow.h"
#include "designer/PipeClassPages.h"
#include "designer/PropertiesPanel.h"
#include "elements/AddToPipeClass.h"
#include "platform/query/PopUpMenu.h"
#include "qtplatform/ObjectTreeView.h"
#include "qtplatform/QtGrid.h"
#include "support/TempDirectory.h"

#include <QApplication>
#include <QLabel>
#include <QLineEdit>
#include <QMenuBar>
#include <QSettings>
#include <QTest>
#include <QTreeView>

#include <gmock/gmock.h>

namespace pipespec::testing {
namespace {

using designer::DesignerWindow;
using ::testing::ElementsAre;

class DesignerTest : public ::testing::Test {
protected:
    DesignerTest()
    {
        // Settings of this test only; the database made from the sample in its folder.
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope,
                           QString::fromStdString((folder / "settings").string()));
        window.setLanguage("en");
        EXPECT_TRUE(window.open(folder / "sample.pspec"));
        window.resize(1200, 800);
        window.show();
        window.activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(&window));
    }

    platform::StoreWorkset& workset() const { return *window.document()->workset(); }
    DeviceRef byPath(const std::string& path) const
    {
        return asDevice(window.document()->database().objectByFullName(path, nullptr));
    }
    // The value cell of an attribute in the properties dock.
    QModelIndex valueCell(const std::string& chapter, const std::string& attribute) const
    {
        const auto& model = *window.properties().attributes().model();
        for (int row = 0; row < model.rowCount(); ++row) {
            const auto at = model.index(row, 0);
            if (at.data().toString().toStdString() != chapter) continue;
            for (int inner = 0; inner < model.rowCount(at); ++inner)
                if (model.index(inner, 0, at).data().toString().toStdString() == attribute)
                    return model.index(inner, 1, at);
        }
        return {};
    }

    support::TempDirectory folder;
    designer::DesignerHost host;
    DesignerWindow window{host};
};

TEST_F(DesignerTest, NavigatorRevealsAndPagesFollowThePipeClass)
{
    EXPECT_FALSE(window.pages().isTabEnabled(0)) << "no pipe class yet";
    const auto pipeClass = byPath("PLANT:@20|PIPECLASSES|PC-A1-DIN");
    ASSERT_TRUE(pipeClass);
    const auto app = workset().AppGlobals();
    ASSERT_TRUE(app->Exist("NAVIGATOR"));
    app->Navigator()->SetPLTObject(pipeClass);
    EXPECT_EQ(window.explorer().currentObject(), pipeClass);
    EXPECT_EQ(window.properties().object(), pipeClass);
    EXPECT_EQ(window.pages().pipeClass(), pipeClass);
    EXPECT_TRUE(window.pages().isTabEnabled(0));
    EXPECT_TRUE(window.pages().showPage("PipeSpecNDRange"));
    EXPECT_TRUE(window.showPipeClass("PC-B2-E3D"));
    EXPECT_EQ(window.pages().pipeClass()->Name(), "PC-B2-E3D");
}

TEST_F(DesignerTest, AnEditIsOneUndoStepAndMarksTheTitle)
{
    const auto pipeClass = byPath("PLANT:@20|PIPECLASSES|PC-A1-DIN");
    ASSERT_TRUE(window.reveal(pipeClass));
    // The first showing of a class stores the list's standard query: a
    // change to save, but no step of the user's.
    EXPECT_TRUE(window.isWindowModified());
    EXPECT_EQ(window.document()->undoState()->undoSteps(), 0u);
    ASSERT_TRUE(window.save());
    EXPECT_FALSE(window.isWindowModified());

    // Typed into the value cell: the write gate's one step.
    auto& attributes = window.properties().attributes();
    const auto cell = valueCell("NR", "DNFROM");
    ASSERT_TRUE(cell.isValid());
    attributes.setCurrentIndex(cell);
    attributes.edit(cell);
    auto* editor = attributes.findChild<QLineEdit*>();
    ASSERT_TRUE(editor);
    editor->selectAll();
    QTest::keyClicks(editor, "25");
    QTest::keyClick(editor, Qt::Key_Return);
    QApplication::processEvents();  // the view commits an edit from its event loop
    EXPECT_EQ(pipeClass->Spec("NR.DNFROM")->Value(), "25");
    EXPECT_EQ(valueCell("NR", "DNFROM").data().toString(), "25");
    EXPECT_EQ(window.document()->undoState()->undoSteps(), 1u);
    EXPECT_TRUE(window.isWindowModified());
    EXPECT_TRUE(window.undoAction().isEnabled());

    // A second action is a second step, though nothing else came between.
    auto* description = window.properties().findChildren<QLineEdit*>().value(1);
    description->setText("Changed");
    emit description->editingFinished();
    EXPECT_EQ(window.document()->undoState()->undoSteps(), 2u);

    // Ctrl+Z takes back the newest, Ctrl+Y puts it back; the dock shows each.
    QTest::keyClick(&window, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(pipeClass->Spec("NR.DNFROM")->Value(), "25");
    EXPECT_EQ(description->text().toStdString(), "Rohrklasse A1, PN16, C-Stahl");
    QTest::keyClick(&window, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(pipeClass->Spec("NR.DNFROM")->Value(), "15");
    EXPECT_EQ(valueCell("NR", "DNFROM").data().toString(), "15");
    EXPECT_FALSE(window.undoAction().isEnabled());
    QTest::keyClick(&window, Qt::Key_Y, Qt::ControlModifier);
    EXPECT_EQ(pipeClass->Spec("NR.DNFROM")->Value(), "25");

    // Saved: the mark goes, and the file holds the change.
    EXPECT_TRUE(window.save());
    EXPECT_FALSE(window.isWindowModified());
    designer::Document reread(folder / "sample.pspec");
    EXPECT_EQ(asDevice(reread.database().objectByFullName("PLANT:@20|PIPECLASSES|PC-A1-DIN", nullptr))
                  ->Spec("NR.DNFROM")
                  ->Value(),
              "25");
}

TEST_F(DesignerTest, DeleteAndRenameFollowInTheExplorer)
{
    const auto pipeClass = byPath("PLANT:@20|PIPECLASSES|PC-A1-DIN");
    ASSERT_TRUE(window.reveal(pipeClass));
    const auto classes = pipeClass->Owner();
    const auto shownUnder = [&] {
        const auto& tree = window.explorer();
        const auto owner = tree.currentIndex().parent();
        std::vector<std::string> names;
        for (int row = 0; row < tree.model()->rowCount(owner); ++row)
            names.push_back(tree.model()->index(row, 0, owner).data().toString().toStdString());
        return names;
    };
    ASSERT_THAT(shownUnder(), ElementsAre("PC-A1-DIN", "PC-B2-E3D", "PC-S3-STRUCT"));

    // A rename in the properties dock: the explorer's row changes in place.
    auto* name = window.properties().findChild<QLineEdit*>();
    name->setText("PC-A1-NEW");
    emit name->editingFinished();
    EXPECT_EQ(pipeClass->Name(), "PC-A1-NEW");
    EXPECT_THAT(shownUnder(), ElementsAre("PC-A1-NEW", "PC-B2-E3D", "PC-S3-STRUCT"));

    // Delete (the answer is yes without a user), then undo: the row comes back.
    window.explorer().setFocus();
    QTest::keyClick(&window.explorer(), Qt::Key_Delete);
    EXPECT_TRUE(pipeClass->IsDeleted());
    window.explorer().setCurrentIndex(
        window.explorer().model()->index(0, 0, window.explorer().currentIndex().parent()));
    window.undoAction().trigger();
    EXPECT_FALSE(pipeClass->IsDeleted());
    EXPECT_EQ(window.document()->undoState()->undoSteps(), 1u) << "the rename is left";
    EXPECT_TRUE(window.reveal(pipeClass));
    EXPECT_EQ(classes, pipeClass->Owner());
}

TEST_F(DesignerTest, TheComponentPageTakesPastedComponentsAsOneStepAndExplainsAClassItCannotShow)
{
    const auto pipeClass = byPath("PLANT:@20|PIPECLASSES|PC-A1-DIN");
    const auto elements = [&] { return pipeClass->Devices()->Count(); };
    ASSERT_TRUE(window.reveal(byPath("BASE:@40|CAT|FLANGES|FL-WN-PN16")));
    window.explorer().setFocus();
    QTest::keyClick(&window.explorer(), Qt::Key_C, Qt::ControlModifier);
    ASSERT_EQ(workset().ClipboardObjects()->Count(), 1);
    ASSERT_TRUE(window.reveal(pipeClass));
    ASSERT_TRUE(window.pages().showPage("components"));
    auto* list = dynamic_cast<componentlist::PipeSpecComp*>(window.pages().currentControl());
    ASSERT_TRUE(list);

    const auto before = elements();
    const auto steps = window.document()->undoState()->undoSteps();
    QTest::keyClick(&window, Qt::Key_V, Qt::ControlModifier);
    EXPECT_EQ(elements(), before + 1);
    EXPECT_EQ(window.document()->undoState()->undoSteps(), steps + 1);
    EXPECT_EQ(list->grid().SelectedObjects()->Count(), 1) << "the new row is selected";
    // The list's properties command shows the element where the window keeps properties.
    const auto made = list->grid().SelectedObjects()->Item(1);
    window.showProperties(made);
    EXPECT_EQ(window.properties().object(), made);
    QTest::keyClick(&window, Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(elements(), before);

    // Without a diameter list the page says what the class lacks.
    pipeClass->Spec("NR.DNLIST")->Delete();
    ASSERT_TRUE(window.showPipeClass("PC-B2-E3D"));
    ASSERT_TRUE(window.reveal(pipeClass));
    EXPECT_EQ(window.pages().currentControl(), nullptr);
    QStringList said;
    for (const auto* label : window.pages().currentWidget()->findChildren<QLabel*>()) said << label->text();
    EXPECT_THAT(said.join(' ').toStdString(), ::testing::HasSubstr("needs the chapter NR"));
}

TEST_F(DesignerTest, ThePlaceholderOfTheStructureClassIsSolvedFromTheListMenu)
{
    const auto pipeClass = byPath("PLANT:@20|PIPECLASSES|PC-S3-STRUCT");
    ASSERT_TRUE(window.reveal(pipeClass));
    ASSERT_TRUE(window.pages().showPage("components"));
    auto* list = dynamic_cast<componentlist::PipeSpecComp*>(window.pages().currentControl());
    ASSERT_TRUE(list);
    list->grid().selectRow(0);
    const auto menu = std::make_shared<platform::PopUpMenu>();
    list->gridEvents()->PopUp(menu);
    ASSERT_TRUE(menu->find("Solve|SolveCDevice")) << "a placeholder the element check refuses offers solving";
    list->gridEvents()->PopUpCmd(menu, "Solve|SolveCDevice");
    EXPECT_GT(pipeClass->Devices()->Count(), 1);
    EXPECT_EQ(list->grid().tableModel().rowCount(), pipeClass->Devices()->Count()) << "the list shows what was made";
}

TEST_F(DesignerTest, LanguageSwitchesTheMenus)
{
    const auto menus = [&] {
        std::vector<std::string> titles;
        for (const auto* menu : window.menuBar()->actions()) titles.push_back(menu->text().toStdString());
        return titles;
    };
    EXPECT_THAT(menus(), ElementsAre("&File", "&Edit", "&View"));
    window.setLanguage("de");
    EXPECT_THAT(menus(), ElementsAre("&Datei", "&Bearbeiten", "&Ansicht"));
    EXPECT_EQ(window.pages().tabText(1).toStdString(), "Selektoren");
    window.setLanguage("en");
    EXPECT_EQ(window.pages().tabText(1).toStdString(), "Selectors");
    EXPECT_EQ(QSettings().value("language").toString(), "en");
}

}  // namespace
}  // namespace pipespec::testing
