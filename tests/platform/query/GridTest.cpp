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
        const auto branch = column("BranchComponents", valuekind::None);
        branch->SetExtendedKind(extendedkind::CheckBox);
        branch->SetEditable(true);
        query->Top()->RegisterExtended("QuorlPipeSpecComp.PipeSpecComp", served);
        query->Top()->SetObjects(rows({e2, e1, e3}));
        query->Refresh();
        grid.SetQuery(query);
        grid.SetEventSink(sink);
        sink->take();
    }

    std::vector<std::string> names() const
    {
        std::vector<std::string> shown;
        for (int row = 1; row <= grid.rowCount(); ++row) shown.push_back(grid.rowObject(row)->Name());
        return shown;
    }

    std::shared_ptr<ServedCells> served = std::make_shared<ServedCells>();
    std::shared_ptr<RecordingSink> sink = std::make_shared<RecordingSink>();
    platform::HeadlessGrid grid{"QGrid"};
};

TEST_F(GridTest, SinkIsAskedItsVersionOnceAndMayBeRemoved)
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
}

TEST_F(GridTest, SelectionAndCurrentCellFollowTheUser)
{
    EXPECT_THAT(names(), ElementsAre("E2", "E1", "E3"));
    EXPECT_EQ(grid.SelectedObjects()->Count(), 0);
    EXPECT_EQ(grid.CurrentObject(), nullptr);

    grid.selectRows({3, 1});
    const auto selected = grid.SelectedObjects();
    ASSERT_EQ(selected->Count(), 2);
    EXPECT_EQ(selected->Item(1), e2) << "in row order";
    EXPECT_EQ(selected->Item(2), e3);
    EXPECT_EQ(grid.CurrentObject(), e2);

    grid.clickCell(2, "FunctionCode");
    EXPECT_EQ(grid.CurrentObject(), e1);
    EXPECT_EQ(grid.SelectedObjects()->Count(), 1);
    EXPECT_EQ(grid.CurrentColumn()->Key(), "FunctionCode");
    EXPECT_EQ(grid.CurrentSpecification(), e1->Spec("GD.VFCD"));

    grid.doubleClickCell(3, "Name");
    EXPECT_EQ(grid.CurrentObject(), e3);
    EXPECT_EQ(grid.CurrentSpecification(), nullptr) << "a name is no attribute";
    EXPECT_THAT(sink->take(), ElementsAre("Change", "Change", "Change", "DblClick"));
}

TEST_F(GridTest, RefreshKeepsTheSelectionOfRowsStillShown)
{
    grid.selectRows({1, 2});
    const auto filter = query->Filters()->Add(-1);
    filter->SetColumn(query->Top()->Columns()->Item("Name"));
    filter->SetOperator(filteroperator::NotEqual);
    filter->SetValue("E2");
    query->Refresh();
    const int redraws = grid.redrawCount();
    grid.Refresh();
    EXPECT_EQ(grid.redrawCount(), redraws + 1);
    ASSERT_EQ(grid.SelectedObjects()->Count(), 1);
    EXPECT_EQ(grid.SelectedObjects()->Item(1), e1);
    EXPECT_EQ(grid.CurrentObject(), nullptr) << "the current row is gone";
    EXPECT_THAT(grid.shownColumns(), ElementsAre("Name", "Description", "FunctionCode", "BranchComponents"));
    query->Top()->Columns()->Item("Description")->SetVisible(false);
    EXPECT_THAT(grid.shownColumns(), ElementsAre("Name", "FunctionCode", "BranchComponents"));
}

TEST_F(GridTest, HeadClickSortsASortableColumnAndTurnsItsDirection)
{
    grid.clickHead("Name");
    EXPECT_THAT(names(), ElementsAre("E1", "E2", "E3"));
    grid.clickHead("Name");
    EXPECT_THAT(names(), ElementsAre("E3", "E2", "E1"));
    grid.clickHead("FunctionCode");
    EXPECT_THAT(names(), ElementsAre("E3", "E2", "E1")) << "not sortable";
    EXPECT_EQ(grid.CurrentColumn()->Key(), "FunctionCode");
    EXPECT_THAT(sink->take(), ElementsAre("HeadClick Name", "HeadClick Name", "HeadClick FunctionCode"));
}

TEST_F(GridTest, CellMenuHoldsTheSinksEntriesAndRunsTheChosenOne)
{
    sink->fillMenu = [](IPopUpMenu& menu) {
        menu.Add("Dummy", "---");
        menu.Add("Refresh", "~0056e Aktualisieren");
        menu.Add("Dummy", "---");
        menu.Add(">Solve", "~05156 Solve template pipe spec");
        menu.Add("Solve|SolveTemplate", "~057a8 ohne Ablaufverfolgung");
        menu.Add("Paste", "~00161 Einfügen");
        menu.SetImage("Paste", "std_Paste");
        menu.Disable("Paste");
        menu.Disable("PROPERTIES");
    };
    grid.clickCell(1, "Name");
    sink->take();
    const auto menu = grid.openCellMenu();
    EXPECT_THAT(sink->take(), ElementsAre("BeforeCreateStdPopUp", "PopUp"));
    EXPECT_THAT(menu->keys(), ElementsAre("Dummy", "Refresh", "Dummy", ">Solve", "Solve|SolveTemplate", "Paste"));
    EXPECT_TRUE(menu->find("Dummy")->separator());
    EXPECT_EQ(menu->find("Paste")->image, "std_Paste");
    EXPECT_FALSE(menu->find("Paste")->enabled);
    EXPECT_EQ(menu->entries()[3].entries.size(), 1U) << "the entry stands in its sub-menu";

    EXPECT_TRUE(grid.openSubMenu(">Solve"));
    EXPECT_FALSE(grid.openSubMenu("Refresh"));
    EXPECT_FALSE(grid.chooseMenuEntry("Paste"));
    EXPECT_FALSE(grid.chooseMenuEntry("Dummy"));
    EXPECT_FALSE(grid.chooseMenuEntry(">Solve"));
    EXPECT_FALSE(grid.chooseMenuEntry("PROPERTIES"));
    EXPECT_TRUE(grid.chooseMenuEntry("Solve|SolveTemplate"));
    EXPECT_FALSE(grid.chooseMenuEntry("Refresh")) << "the menu closed with the command";
    EXPECT_THAT(sink->take(), ElementsAre("PopUpSubMenu >Solve", "PopUpCmd Solve|SolveTemplate"));
}

TEST_F(GridTest, HeadMenuTellsItsColumn)
{
    sink->fillMenu = [](IPopUpMenu& menu) {
        menu.Add(">Selector", "~03168 Selector");
        menu.Add("Selector|NewSelector", "~03483 New");
        menu.Add("-", "-");
    };
    const auto menu = grid.openHeadMenu("Description");
    EXPECT_TRUE(menu->find("-")->separator());
    EXPECT_TRUE(grid.openSubMenu(">Selector"));
    EXPECT_TRUE(grid.chooseMenuEntry("Selector|NewSelector"));
    EXPECT_THAT(sink->take(), ElementsAre("TitlePopUp Description", "TitlePopUpSubMenu >Selector Description",
                                          "TitlePopUpCmd Selector|NewSelector Description"));
}

TEST_F(GridTest, CellEditsAreAskedForAndReported)
{
    EXPECT_TRUE(grid.editCell(2, "Description", "new text"));
    EXPECT_EQ(e1->Description(), "new text");
    EXPECT_THAT(sink->take(), ElementsAre("BeforeCellEdit E1 Description", "AfterCellEdit E1 Description"));

    sink->refuse = true;
    EXPECT_FALSE(grid.editCell(2, "Description", "refused"));
    EXPECT_EQ(e1->Description(), "new text");
    EXPECT_THAT(sink->take(), ElementsAre("BeforeCellEdit E1 Description"));

    EXPECT_FALSE(grid.editCell(2, "FunctionCode", "1")) << "not editable: no edit starts";
    EXPECT_THAT(sink->take(), IsEmpty());

    // A check box takes what is typed as a flag.
    sink->refuse = false;
    EXPECT_TRUE(grid.editCell(1, "BranchComponents", "1"));
    EXPECT_TRUE(grid.editCell(1, "BranchComponents", 0));
    ASSERT_EQ(served->written.size(), 2U);
    EXPECT_EQ(served->written[0].second, Variant(true));
    EXPECT_EQ(served->written[1].second, Variant(false));
}

TEST_F(GridTest, ColumnsAreDeletedUnlessTheSinkRefusesAndMayBeMoved)
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
    EXPECT_THAT(sink->take(), ElementsAre("Change", "BeforeColumnsDelete Description FunctionCode",
                                          "BeforeColumnsDelete Description FunctionCode", "AfterColumnsDelete",
                                          "ColumnsChanged"));
}

TEST_F(GridTest, RowsLeaveTheListNotTheDatabaseAndMayBeMoved)
{
    EXPECT_FALSE(grid.deleteSelectedRows()) << "nothing selected";
    grid.selectRows({1, 3});
    sink->refuse = true;
    EXPECT_FALSE(grid.deleteSelectedRows());
    EXPECT_EQ(grid.rowCount(), 3);
    sink->refuse = false;
    EXPECT_TRUE(grid.deleteSelectedRows());
    EXPECT_THAT(names(), ElementsAre("E1"));
    EXPECT_FALSE(e2->IsDeleted());
    EXPECT_EQ(grid.SelectedObjects()->Count(), 0);

    query->Top()->SetObjects(rows({e1, e2, e3}));
    query->Refresh();
    grid.Refresh();
    grid.moveRow(3, 1);
    EXPECT_THAT(names(), ElementsAre("E3", "E1", "E2"));
    grid.moveRow(1, 9);
    EXPECT_THAT(names(), ElementsAre("E1", "E2", "E3"));
    EXPECT_THAT(sink->take(), ElementsAre("Change", "BeforeRowsDelete 2", "BeforeRowsDelete 2", "AfterRowsDelete",
                                          "AfterRowsMove", "AfterRowsMove"));
}

TEST_F(GridTest, DragAndDropAsksTheSinkAtEveryStep)
{
    // A drag out of this grid carries the selection.
    grid.selectRows({1, 2});
    const auto dragged = grid.startDrag();
    EXPECT_EQ(dragged.collection()->Count(), 2);
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
    EXPECT_THAT(sink->take(), ElementsAre("Change", "OLEStartDrag 2", "OLECompleteDrag 1", "OLEDragOver", "OLEDragDrop 4",
                                          "OLETitleDragOver Name", "OLETitleDragDrop 0 Name", "OLEStartDrag 2"));
}

TEST_F(GridTest, ShutDownLetsGoOfQueryAndSink)
{
    grid.clickCell(1, "Name");
    sink->take();
    grid.ShutDown();
    EXPECT_EQ(grid.Query(), nullptr);
    EXPECT_EQ(grid.CurrentObject(), nullptr);
    EXPECT_EQ(grid.rowCount(), 0);
    EXPECT_EQ(checks::errorNumber([&] { grid.openCellMenu(); }), 0) << "a menu needs no query";
    EXPECT_THAT(sink->take(), IsEmpty()) << "no sink any more";
}

}  // namespace
}  // namespace pipespec::testing
