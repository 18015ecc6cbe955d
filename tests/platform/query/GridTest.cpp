// The headless grid, driven as a user drives a grid: each action raises its
// events on the sink, in order, and leaves the grid and the query as a user
// would see them.

#include "objectmodel/ExpectError.h"
#include "platform/query/HeadlessGrid.h"
#include "platform/query/QueryFixture.h"

#include <gmock/gmock.h>

namespace pipespec::testing {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class GridTest : public QueryFixture {
protected:
    GridTest()
    {
        column("Name", valuekind::Name)->SetEditable(true);
        column("Description", valuekind::Description)->SetEditable(true);
        const auto code = column("FunctionCode", valuekind::Value, sourcekind::Attribute, "GD.VFCD");
        code->SetNumeric(true);
        code->SetSortable(false);
        extended("BranchComponents", extendedkind::CheckBox)->SetEditable(true);
        query->Top()->SetObjects(rows({e2, e1, e3}));
        query->Refresh();
        grid.SetQuery(query);
        grid.SetEventSink(sink);
        sink->take();
    }

    // The row objects the grid shows, and the selected ones after a colon: "E2 E1 E3: E1".
    std::string shownRows() const
    {
        std::vector<std::string> shown, selected;
        for (int row = 1; row <= grid.rowCount(); ++row) shown.push_back(grid.rowObject(row)->Name());
        const auto selection = grid.SelectedObjects();
        for (int i = 1; i <= selection->Count(); ++i) selected.push_back(selection->Item(i)->Name());
        return support::join(shown) + ": " + support::join(selected);
    }

    std::shared_ptr<ServedCells> served = serve();
    std::shared_ptr<RecordingSink> sink = std::make_shared<RecordingSink>();
    platform::HeadlessGrid grid{"QGrid"};
};

TEST_F(GridTest, SinkIsAskedItsVersionOnceAndLetGoOnRemovalAndShutDown)
{
    const auto other = std::make_shared<RecordingSink>();
    grid.SetEventSink(other);
    EXPECT_THAT(other->take(), ElementsAre("Version"));
    EXPECT_EQ(grid.sinkVersion(), 10);
    grid.RemoveEventSink(sink);
    grid.clickCell(1, "Name");
    EXPECT_THAT(other->take(), ElementsAre("Change")) << "removing a sink that is not set changes nothing";
    grid.RemoveEventSink(other);
    grid.clickCell(1, "Name");
    EXPECT_THAT(other->take(), IsEmpty());
    grid.SetEventSink(sink);
    grid.ShutDown();
    EXPECT_EQ(grid.Query(), nullptr);
    EXPECT_EQ(grid.CurrentObject(), nullptr);
    EXPECT_EQ(grid.rowCount(), 0);
    EXPECT_EQ(checks::errorNumber([&] { grid.openCellMenu(); }), 0) << "a menu needs no query";
    EXPECT_THAT(sink->take(), ElementsAre("Version")) << "no sink any more";
}

TEST_F(GridTest, SelectionCurrentCellAndSortFollowTheUserAndRefreshKeepsWhatIsStillShown)
{
    EXPECT_EQ(shownRows(), "E2 E1 E3: ");
    EXPECT_EQ(grid.CurrentObject(), nullptr);
    grid.selectRows({3, 1});
    EXPECT_EQ(shownRows(), "E2 E1 E3: E2 E3") << "in row order";
    EXPECT_EQ(grid.CurrentObject(), e2);
    grid.clickCell(2, "FunctionCode");
    EXPECT_EQ(shownRows(), "E2 E1 E3: E1");
    EXPECT_EQ(grid.CurrentColumn()->Key(), "FunctionCode");
    EXPECT_EQ(grid.CurrentSpecification(), e1->Spec("GD.VFCD"));
    grid.doubleClickCell(3, "Name");
    EXPECT_EQ(grid.CurrentObject(), e3);
    EXPECT_EQ(grid.CurrentSpecification(), nullptr) << "a name is no attribute";
    grid.clickHead("Name");
    EXPECT_EQ(shownRows(), "E1 E2 E3: E3");
    grid.clickHead("Name");
    EXPECT_EQ(shownRows(), "E3 E2 E1: E3");
    grid.clickHead("FunctionCode");
    EXPECT_EQ(shownRows(), "E3 E2 E1: E3") << "not sortable";
    EXPECT_EQ(grid.CurrentColumn()->Key(), "FunctionCode");
    EXPECT_THAT(sink->take(), ElementsAre("Change", "Change", "Change", "DblClick", "HeadClick Name", "HeadClick Name",
                                          "HeadClick FunctionCode"));
    grid.selectRows({1, 2});
    const auto filter = query->Filters()->Add(-1);
    filter->SetColumn(query->Top()->Columns()->Item("Name"));
    filter->SetOperator(filteroperator::NotEqual);
    filter->SetValue("E3");
    query->Refresh();
    const int redraws = grid.redrawCount();
    grid.Refresh();
    EXPECT_EQ(grid.redrawCount(), redraws + 1);
    EXPECT_EQ(shownRows(), "E2 E1: E2");
    EXPECT_EQ(grid.CurrentObject(), nullptr) << "the current row is gone";
    query->Top()->Columns()->Item("Description")->SetVisible(false);
    EXPECT_THAT(grid.shownColumns(), ElementsAre("Name", "FunctionCode", "BranchComponents"));
}

TEST_F(GridTest, MenusHoldTheSinksEntriesAndRunTheChosenOne)
{
    sink->fillMenu = [](IPopUpMenu& menu) {
        RecordingSink::fillSolveMenu(menu);
        menu.Disable("PROPERTIES");
        menu.Add("-", "-");
    };
    grid.clickCell(1, "Name");
    const auto menu = grid.openCellMenu();
    EXPECT_THAT(menu->keys(), ElementsAre("Dummy", "Refresh", ">Solve", "Solve|SolveTemplate", "Paste", "-"));
    EXPECT_TRUE(menu->find("Dummy")->separator());
    EXPECT_EQ(menu->find("Paste")->image, "std_Paste");
    EXPECT_FALSE(menu->find("Paste")->enabled);
    EXPECT_EQ(menu->entries()[2].entries.size(), 1U) << "the entry stands in its sub-menu";
    EXPECT_TRUE(grid.openSubMenu(">Solve"));
    EXPECT_FALSE(grid.openSubMenu("Refresh"));
    for (const auto* refused : {"Paste", "Dummy", ">Solve", "PROPERTIES"}) EXPECT_FALSE(grid.chooseMenuEntry(refused));
    EXPECT_TRUE(grid.chooseMenuEntry("Solve|SolveTemplate"));
    EXPECT_FALSE(grid.chooseMenuEntry("Refresh")) << "the menu closed with the command";
    // A head menu tells its column.
    EXPECT_TRUE(grid.openHeadMenu("Description")->find("-")->separator());
    EXPECT_TRUE(grid.openSubMenu(">Solve"));
    EXPECT_TRUE(grid.chooseMenuEntry("Solve|SolveTemplate"));
    EXPECT_THAT(sink->take(),
                ElementsAre("Change", "BeforeCreateStdPopUp", "PopUp", "PopUpSubMenu >Solve",
                            "PopUpCmd Solve|SolveTemplate", "TitlePopUp Description",
                            "TitlePopUpSubMenu >Solve Description", "TitlePopUpCmd Solve|SolveTemplate Description"));
}

TEST_F(GridTest, CellEditsAreAskedForAndReported)
{
    EXPECT_TRUE(grid.editCell(2, "Description", "new text"));
    sink->refuse = true;
    EXPECT_FALSE(grid.editCell(2, "Description", "refused"));
    EXPECT_EQ(e1->Description(), "new text");
    EXPECT_FALSE(grid.editCell(2, "FunctionCode", "1")) << "not editable: no edit starts";
    EXPECT_THAT(sink->take(), ElementsAre("BeforeCellEdit E1 Description", "AfterCellEdit E1 Description",
                                          "BeforeCellEdit E1 Description"));
    // A check box takes what is typed as a flag.
    sink->refuse = false;
    EXPECT_TRUE(grid.editCell(1, "BranchComponents", "1"));
    EXPECT_TRUE(grid.editCell(1, "BranchComponents", 0));
    EXPECT_THAT(served->written, ElementsAre("E2/BranchComponents=True", "E2/BranchComponents=False"));
}

TEST_F(GridTest, ColumnsAndRowsAreDeletedUnlessTheSinkRefusesAndMayBeMoved)
{
    grid.clickCell(1, "Description");
    sink->refuse = true;
    EXPECT_FALSE(grid.deleteColumns({"Description", "FunctionCode"}));
    EXPECT_TRUE(query->Top()->Columns()->Item("Description"));
    sink->refuse = false;
    EXPECT_TRUE(grid.deleteColumns({"Description", "FunctionCode"}));
    EXPECT_THAT(grid.shownColumns(), ElementsAre("Name", "BranchComponents"));
    EXPECT_EQ(grid.CurrentColumn(), nullptr) << "the current column went with them";
    grid.moveColumn("BranchComponents", 1);
    EXPECT_THAT(grid.shownColumns(), ElementsAre("BranchComponents", "Name"));
    EXPECT_THAT(sink->take(),
                ElementsAre("Change", "BeforeColumnsDelete Description FunctionCode",
                            "BeforeColumnsDelete Description FunctionCode", "AfterColumnsDelete", "ColumnsChanged"));
    // Rows leave the list, not the database.
    grid.selectRows({});
    EXPECT_FALSE(grid.deleteSelectedRows()) << "nothing selected";
    grid.selectRows({1, 3});
    sink->refuse = true;
    EXPECT_FALSE(grid.deleteSelectedRows());
    sink->refuse = false;
    EXPECT_TRUE(grid.deleteSelectedRows());
    EXPECT_EQ(shownRows(), "E1: ");
    EXPECT_FALSE(e2->IsDeleted());
    query->Top()->SetObjects(rows({e1, e2, e3}));
    query->Refresh();
    grid.Refresh();
    grid.moveRow(3, 1);
    EXPECT_EQ(shownRows(), "E3 E1 E2: ");
    grid.moveRow(1, 9);
    EXPECT_EQ(shownRows(), "E1 E2 E3: ");
    EXPECT_THAT(sink->take(), ElementsAre("Change", "Change", "BeforeRowsDelete 2", "BeforeRowsDelete 2",
                                          "AfterRowsDelete", "AfterRowsMove", "AfterRowsMove"));
}

TEST_F(GridTest, DragAndDropAsksTheSinkAtEveryStep)
{
    // A drag out of this grid carries the selection.
    grid.selectRows({1, 2});
    EXPECT_EQ(grid.startDrag().collection()->Count(), 2);
    grid.completeDrag(dropeffect::Copy);
    // A drop: the effect the sink gave while dragging over is the drop's.
    sink->dragEffect = dropeffect::Link;
    const Variant data(e1);
    EXPECT_EQ(grid.dragOver(data), dropeffect::Link);
    EXPECT_EQ(grid.drop(data), dropeffect::Link);
    EXPECT_EQ(sink->dropped, data);
    sink->dragEffect = dropeffect::None;
    EXPECT_EQ(grid.dragOverHead(data, "Name"), dropeffect::None);
    EXPECT_EQ(grid.dropOnHead(data, "Name"), dropeffect::None);
    sink->refuse = true;
    EXPECT_TRUE(grid.startDrag().IsEmpty()) << "the sink allowed no effect";
    EXPECT_THAT(sink->take(),
                ElementsAre("Change", "OLEStartDrag 2", "OLECompleteDrag 1", "OLEDragOver", "OLEDragDrop 4",
                            "OLETitleDragOver Name", "OLETitleDragDrop 0 Name", "OLEStartDrag 2"));
}

}  // namespace
}  // namespace pipespec::testing
