// The state of an element of a PDMS class: the state table of a project
// family, the state attribute, and the column of the chapter's table view.

#include "selectors/StateTable.h"
#include "support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pipespec {
namespace {

using namespace addtopipeclass;
using ::testing::ElementsAre;

constexpr auto kFixed = "VC11|VC21|Name|State|CATREF|Cate|BLTREF|CMPREF|MATXT|DETREF|OtherCatRef|RefNo|Error|";

std::string rows(const StandardTableRef& table)
{
    std::vector<std::string> out;
    const auto values = table->Values();
    for (int i = 1; i <= values->Count(); ++i) {
        const auto row = std::dynamic_pointer_cast<IStandardValue>(values->Item(i));
        out.push_back(row->Name() + "=" + row->Value() + ":" + row->Description());
    }
    return support::join(out, ",");
}

class StateTables : public ::testing::Test {
protected:
    support::World world;
    DeviceRef element = world.device(world.root(world.plant(), "@20"), "001",
                                     {{"PDMS.Bore", "50"}, {"PDMS.HIDDEN", "x"}, {"PDMS.Extra", ""}, {"PDMS.Col", ""}});
    SpecRef chapter = element->Spec("PDMS");

    std::string hideColumns(const std::string& layout, const ColumnChoice& choice) const
    {
        chapter->SetControlProperties(layout);
        HideColumns(chapter, choice, false);
        return chapter->ControlProperties();
    }
};

TEST_F(StateTables, TheFamilyTableIsTheBaseProjectsAndIsMadeOnceWhereMissing)
{
    // Only the plant has a table: the base project's empty answer stands,
    // and the look-up climbs from the plant to the base for the path.
    EXPECT_EQ(GetStandardTable(kStateTablePath, world.plant()), nullptr);
    EXPECT_EQ(StateTable(world.plant()), nullptr);  // no PDMS folder anywhere
    const auto folder = world.tableAt(world.plant(), "@3D|00|PDMS");
    // The reference database makes no table and says so.
    world.setBaseDatabase(true);
    EXPECT_EQ(StateTable(world.plant()), nullptr);
    EXPECT_THAT(world.traceTexts("StateTable"), ElementsAre("ERROR: @3D|00|PDMS not found. Should be there in refDB!"));
    world.setBaseDatabase(false);
    const auto made = StateTable(world.plant());
    ASSERT_NE(made, nullptr);
    EXPECT_TRUE(same(made, folder->child("STATE")));
    EXPECT_EQ(rows(made), "01=0:,02=1:invalid,03=2:disabled,04=3:Catref disabled");
    EXPECT_EQ(world.reported(), "");
    // That table is the plant's alone, so the next call ignores it and tries
    // to make it again: the family has no state table until the base has one.
    EXPECT_EQ(StateTable(world.plant()), nullptr);
    EXPECT_EQ(world.reported(), "Function StateTable");
    // A base project's table replaces the project's own, and the path look-up
    // of a project that lacks a table finds it in the base.
    const auto baseTable = world.tableAt(world.base(), "@3D|00|PDMS|STATE");
    EXPECT_TRUE(same(StateTable(world.plant()), baseTable));
    EXPECT_TRUE(same(GetStandardTable("@3D|00|PDMS|STATE", world.plant()), made));
    EXPECT_TRUE(same(GetStandardTable("@3D|00|PDMS|STATE", world.base()), baseTable));
    EXPECT_EQ(world.reported(), "Function StateTable");
}

TEST_F(StateTables, TheFixedColumnsComeFirstThenTheShownAttributesAndTheOldWidthsStay)
{
    ColumnChoice choice;
    choice.Add("Hidden", false);  // found by the chapter's upper-case name
    choice.Add("Error", false);
    // "Col" stands in "ColHorizontal" in front of the titles: no column of its own.
    const std::string expected =
        std::string("Cols:15;ColHorizontal:0;ColsTitles:") + kFixed +
        "Bore|Extra|;RowType:0;ColsSizes:0|800|1500|1500|1500|1500|1500|1500|1500|1500|1500|1500|1500|0|900|1500|;"
        "RowTitles:x";
    EXPECT_EQ(
        hideColumns("Cols:2;ColHorizontal:0;ColsTitles:VC11|Bore|;RowType:0;ColsSizes:0|800|900|;RowTitles:x", choice),
        expected);
    // Idempotent: a second run over the text it wrote changes nothing; an empty choice leaves it alone.
    EXPECT_EQ(hideColumns(expected, choice), expected);
    EXPECT_EQ(hideColumns(expected, ColumnChoice()), expected);
    EXPECT_EQ(world.reported(), "");
}

TEST_F(StateTables, ABrokenLayoutTextEndsTheRebuildAndKeepsWhatWasWritten)
{
    ColumnChoice choice;
    choice.Add("Bore", true);
    // No "ColHorizontal": titles and widths are written, the count is not.
    const auto written = hideColumns("Cols:1;ColsTitles:VC11|;RowType:0;ColsSizes:0|800|;RowTitles:x", choice);
    EXPECT_EQ(written.substr(0, 18), "Cols:1;ColsTitles:");
    EXPECT_NE(written.find("Bore|HIDDEN|Extra|;RowType"), std::string::npos);
    EXPECT_EQ(world.reported(), "sub HideColumns");
    // A title twice: nothing is written at all.
    const std::string doubled = "Cols:2;ColHorizontal:0;ColsTitles:VC11|VC11|;RowType:0;ColsSizes:0|1|2|;RowTitles:x";
    EXPECT_EQ(hideColumns(doubled, choice), doubled);
    EXPECT_EQ(world.reported(), "sub HideColumns; sub HideColumns");
}

TEST_F(StateTables, TheStateAttributeIsMadeOnceWithItsColumnAndKeepsItsTableLink)
{
    chapter->SetControlProperties("Cols:1;ColHorizontal:0;ColsTitles:VC11|;RowType:0;ColsSizes:0|800|;RowTitles:x");
    world.tableAt(world.base(), "@3D|00|PDMS");
    AddStateColumn(element);
    const auto state = element->Spec("PDMS.State");
    ASSERT_NE(state, nullptr);
    const auto table = StateTable(world.plant());
    EXPECT_TRUE(same(state->StandardTable(), table));
    EXPECT_EQ(state->Description() + " " + state->ValueType(), "State A");
    EXPECT_NE(chapter->ControlProperties().find(std::string("ColsTitles:") + kFixed + "Bore|HIDDEN|Extra|;"),
              std::string::npos);
    // Later calls repair the link only.
    state->SetStandardTable(world.table(world.plant(), "OTHER", {"x"}));
    AddStateColumn(element);
    EXPECT_TRUE(same(element->Spec("PDMS.State")->StandardTable(), table));
    EXPECT_EQ(chapter->OwnSpecifications()->Count(), 5);
    EXPECT_EQ(world.reported(), "");
    // A base-project component inheriting its chapter is outside the current
    // project: a chapter that cannot be stored gets no state attribute.
    const auto model = world.device(world.catalog(), "MODEL", {{"PDMS.Bore", "50"}});
    const auto inherited = world.device(world.catalog(), "VARIANT", {}, model)->Spec("PDMS");
    ASSERT_TRUE(inherited->SystemTemporary());
    EXPECT_EQ(StateSpecification(inherited, "State", nullptr), nullptr);
    EXPECT_EQ(model->Spec("PDMS.State"), nullptr);
    EXPECT_EQ(StateSpecification(nullptr, "State", nullptr), nullptr);
    EXPECT_EQ(StateSpecification(chapter, "", nullptr), nullptr);
}

}  // namespace
}  // namespace pipespec
