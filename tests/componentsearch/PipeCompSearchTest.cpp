// The component search on the sample, driven as a user drives it: the two
// lists, AutoFind and Find, and the result menu.

#include "componentsearch/PipeCompSearch.h"
#include "diagnostics/HeadlessHost.h"
#include "elements/AddToPipeClass.h"
#include "platform/JsonNameTable.h"
#include "platform/JsonProject.h"
#include "platform/store/Database.h"
#include "qtplatform/GridMenu.h"
#include "qtplatform/QtGrid.h"
#include "selectors/StateTable.h"

#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QLineEdit>
#include <QMenu>
#include <QTest>
#include <QTimer>

#include <gtest/gtest.h>

namespace pipespec {
namespace {

using componentsearch::PipeCompSearch;

class PipeCompSearchTest : public ::testing::Test {
protected:
    platform::LoadedDatabase sample = platform::loadJsonProject(
        platform::sampleProjectPath(), *platform::JsonNameTable::load(platform::JsonNameTable::shippedPath()));
    diagnostics::ScopedHeadlessHost host{sample.names};
    DeviceRef pipeClass = device("PLANT:@20|PIPECLASSES|PC-A1-DIN");
    PipeCompSearch search;

    DeviceRef device(const std::string& fullName) const
    {
        const auto workset = sample.database->workset();
        return asDevice(workset->CurrentProject()->ObjectByFullName(workset->CurrentProject(), fullName));
    }
    // Picks the entry of that text as a user does, with the keyboard.
    static void pick(QComboBox& combo, const QString& text)
    {
        const int at = combo.findText(text);
        ASSERT_GE(at, 0) << text.toStdString();
        combo.setCurrentIndex(at);
        emit combo.activated(at);
    }
    int rows() const { return search.grid().tableModel().rowCount(); }
    int searches() const
    {
        int count = 0;
        for (const auto& line : host.tools().lines())
            count += line.function == "QueryRefresh" && line.kind == diagnostics::TraceKind::Enter ? 1 : 0;
        return count;
    }
};

TEST_F(PipeCompSearchTest, ListsHoldNoValueFirstThenCodesByDescriptionAndDiametersInTableOrder)
{
    // Equal descriptions keep the table's order; upper case sorts first.
    const auto table = addtopipeclass::GetStandardTable("@3D|00|VFCD", pipeClass->Project());
    for (const auto& [name, description] : {std::pair{"X1", "zz flange"}, {"X2", "Zz flange"}, {"X3", "zz flange"}}) {
        const auto value = std::dynamic_pointer_cast<IStandardValue>(table->Values()->CreateNewWithName(name));
        value->SetDescription(description);
        value->SetValue("99999");
    }
    search.SetPipeClass(pipeClass);
    auto& codes = search.functionCodes();
    ASSERT_EQ(codes.count(), table->Values()->Count() + 1);
    EXPECT_EQ(codes.itemText(0), "*** ???");
    EXPECT_EQ(codes.itemData(0, Qt::UserRole + 1).toDouble(), -1);
    QStringList texts;
    for (int i = 1; i < codes.count(); ++i) texts << codes.itemText(i);
    EXPECT_TRUE(std::is_sorted(texts.begin(), texts.end(),
                               [](const QString& a, const QString& b) { return a.toStdString() < b.toStdString(); }));
    const int first = codes.findText("zz flange");
    EXPECT_EQ(codes.itemData(first - 1, Qt::UserRole).toString(), "KX2");
    EXPECT_EQ(codes.itemData(first, Qt::UserRole).toString(), "KX1");
    EXPECT_EQ(codes.itemData(first + 1, Qt::UserRole).toString(), "KX3");

    const auto diameters = addtopipeclass::GetStandardTable("@3D|01|DIN|05", pipeClass->Project())->Values();
    ASSERT_EQ(search.diameters().count(), diameters->Count() + 1);
    EXPECT_EQ(search.diameters().itemText(1).toStdString(), diameters->Item(1)->Description());
}

TEST_F(PipeCompSearchTest, SearchesWithBothCriteriaAtOnceOrOnFindAndOffersTheMenuForOneRow)
{
    host.utilities().setYesNoDefault(mb::AnswerYes);
    const auto tee = device("BASE:@40|CAT|FITTINGS|TE-EQ");
    ASSERT_TRUE(addtopipeclass::NewPipeClassElement(tee, pipeClass, false));
    ASSERT_TRUE(addtopipeclass::NewPipeClassElement(tee, pipeClass, false));
    search.SetPipeClass(pipeClass);
    auto& codes = search.functionCodes();
    const auto teeCode = codes.itemText(codes.findData(10300.0, Qt::UserRole + 1));

    EXPECT_TRUE(search.find().isEnabled());
    search.autoFind().trigger();
    EXPECT_FALSE(search.find().isEnabled()) << "Find is greyed while AutoFind is on";
    pick(codes, teeCode);
    EXPECT_EQ(rows(), 0) << "one criterion searches nothing";
    pick(search.diameters(), "DN 100");
    EXPECT_EQ(rows(), 2);
    const int before = searches();
    pick(search.diameters(), "DN 100");
    EXPECT_EQ(searches(), before) << "the same entry again does not search";

    // Without AutoFind the rows stay until Find; a diameter may be typed.
    search.autoFind().trigger();
    auto& typed = *search.diameters().lineEdit();
    typed.selectAll();
    QTest::keyClicks(&typed, "900");
    QTest::keyClick(&typed, Qt::Key_Return);
    EXPECT_EQ(rows(), 2);
    search.find().trigger();
    EXPECT_EQ(rows(), 0);

    // The menu of two rows: navigation and properties off.
    pick(search.diameters(), "DN 100");
    search.find().trigger();
    search.grid().selectAll();
    QString entries;
    QTimer::singleShot(0, [&] {
        auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
        for (const auto* action : menu->actions())
            if (!action->isSeparator())
                entries +=
                    QString::fromStdString(qtplatform::menuKey(*action)) + (action->isEnabled() ? " " : "(off) ");
        menu->close();
    });
    const auto cell = search.grid().visualRect(search.grid().model()->index(0, 2)).center();
    QContextMenuEvent menuEvent(QContextMenuEvent::Mouse, cell, search.grid().viewport()->mapToGlobal(cell));
    QApplication::sendEvent(search.grid().viewport(), &menuEvent);
    EXPECT_EQ(entries.toStdString(), "NavigateOriginal(off) NavigatePipeClass(off) PROPERTIES(off) ");
    search.Shutdown();
    search.Shutdown();
    EXPECT_EQ(search.grid().Query(), nullptr);
}

}  // namespace
}  // namespace pipespec
