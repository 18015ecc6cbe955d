// The selector tree as the selector grid sees it: which selector a column
// stands for, how the column order is written back into the tree, and how a
// torn range pair of columns is put together again.

#include "objectmodel/Text.h"
#include "selectors/ColumnKeys.h"
#include "selectors/Selectors.h"
#include "support/SelectorTrees.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pipespec {
namespace {

using namespace addtopipeclass;
using support::columnKeys;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class SelectorTree : public ::testing::Test {
protected:
    support::World world;
    DeviceRef pipeClass = world.pipeClass(world.path(world.plant(), "@20|PIPECLASSES"), "PC", "10000", true);
    DeviceRef base = support::selectorBase(world);
    DeviceRef root = support::selectorRoot(world, pipeClass, base);
    DeviceRef top = support::selector(world, root, "FLAN", "FLAN", "", base);

    // The tree below a selector, each with its question: "FTYPE(CONN.DN1)[DN1()]".
    std::string tree(const DeviceRef& selector) const
    {
        std::string out;
        const auto children = selector->OwnElements();
        for (int i = 1; i <= children->Count(); ++i) {
            const auto child = asDevice(children->Item(i));
            out += child->Name() + "(" + world.value(child, "Sele.Question") + ")";
            if (const auto below = tree(child); !below.empty()) out += "[" + below + "]";
        }
        return out;
    }
    static ColumnOrders ordersOf(const IQGrid& grid)
    {
        ColumnOrder order;
        const auto columns = grid.Query()->Top()->Columns();
        for (int i = 1; i <= columns->Count(); ++i) order.Add(columns->Item(i)->Key(), columns->Item(i));
        ColumnOrders orders;
        orders.Add("0K", order);
        return orders;
    }
};

TEST_F(SelectorTree, ColumnKeysSeparateQuestionAnswerAndRangeMark)
{
    namespace key = columnkey;
    EXPECT_TRUE(key::isQuestion("@Selector_PIPE.FTYPE"));
    EXPECT_FALSE(key::isQuestion("@selector_PIPE.FTYPE")) << "the prefix is case-sensitive";
    EXPECT_EQ(key::attributeName("@Selector_PIPE.FTYPE"), "FTYPE");
    EXPECT_EQ(key::attributeName("@Selector_PBOR1"), "PBOR1") << "no point: everything from character 11";
    EXPECT_EQ(key::nestedName("@Selector_CONN.MINDN1"), "CONN.MINDN1");
    EXPECT_EQ(key::rangeMarkOfKey("@Selector_CONN.MAXDN1"), "MAX");
    EXPECT_EQ(key::rangeMarkOfKey("MINUS"), "MIN") << "without a point the first three characters count";
    EXPECT_EQ(key::partnerKey("@Selector_CONN.MAXDN1"), "@Selector_CONN.MINDN1");
    EXPECT_EQ(key::questionPart("FTYPE:WN:X"), "FTYPE");
    EXPECT_EQ(key::tabKey(12), "12K");
    EXPECT_TRUE(key::isBoreText("xPBOR"));
    EXPECT_FALSE(key::isBoreText("bdia"));
}

TEST_F(SelectorTree, BaseObjectComesFromRootLinkThenPipeClassLinkThenOption)
{
    EXPECT_EQ(GetSelectorBaseCDev(nullptr), nullptr);
    EXPECT_EQ(GetSelectorBaseCDev(root), base) << "option 368";
    const auto classBase = world.device(world.catalog(), "CLASSBASE");
    world.attribute(pipeClass, "GD.Selector", "")->SetLinkObject(classBase);
    EXPECT_EQ(GetSelectorBaseCDev(root), classBase);
    const auto rootBase = world.device(world.catalog(), "ROOTBASE");
    world.attribute(root, "Sele.SeleCDev", "")->SetLinkObject(rootBase);
    EXPECT_EQ(GetSelectorBaseCDev(root), rootBase);
    EXPECT_EQ(world.reported(), "");
}

TEST_F(SelectorTree, ColumnFindsItsSelectorOnTheLeafChain)
{
    const auto wn = support::selector(world, top, "FTYPE:WN", "WN", "CONN.DN1", base);
    const auto dn1 = support::selector(world, wn, "DN1", "", "PBOR1", base);
    const auto bore = support::selector(world, dn1, "PBOR1", "", "PIPE.FTYPE", base);
    const auto leaf = support::selector(world, bore, "FTYPE:BL", "BL", "", base);
    SelectorMap tops;
    tops.Add("0K", top);
    SelectorMap leaves;
    leaves.Add("0K", leaf);
    const auto grid = support::selectorGrid(world, {},
                                            {{"Name", "Name"},
                                             {"@Selector_PIPE.FTYPE", "Type"},
                                             {"@Selector_PIPE.FTYPE:WN", "Type"},
                                             {"@Selector_CONN.MAXDN1", "Max"},
                                             {"@Selector_XYZ", "PBOR1"},
                                             {"@Selector_PIPE.NONE", "None"}});
    const auto columns = grid->Query()->Top()->Columns();
    const auto find = [&](const char* key) {
        return SelectorCDeviceFromColumnDef(columns->Item(key), 0, tops, leaves);
    };
    EXPECT_EQ(find("Name"), top) << "a column that is no question stands for the top selector";
    EXPECT_EQ(find("@Selector_PIPE.FTYPE"), leaf) << "the short name is taken by the first met from the leaf";
    EXPECT_EQ(find("@Selector_PIPE.FTYPE:WN"), wn) << "a second short name is entered under the whole name";
    EXPECT_EQ(find("@Selector_CONN.MAXDN1"), dn1) << "the range mark is cut";
    EXPECT_EQ(find("@Selector_XYZ"), bore) << "a bore title is the question";
    EXPECT_EQ(find("@Selector_PIPE.NONE"), nullptr);
    EXPECT_EQ(SelectorCDeviceFromColumnDef(nullptr, 0, tops, leaves), nullptr);
    EXPECT_EQ(world.reported(), "");
    // Two chain selectors with the same whole name fail in the keyed map.
    const auto twin = support::selector(world, leaf, "DN1", "", "", base);
    leaves.Remove("0K");
    leaves.Add("0K", support::selector(world, twin, "DN1", "", "", base));
    EXPECT_EQ(find("@Selector_CONN.MAXDN1"), nullptr);
    EXPECT_EQ(world.reported(), "Function SelectorCDeviceFromColumnDef");
    EXPECT_EQ(world.host().errors()[0].number, err::DuplicateKey);
}

TEST_F(SelectorTree, WriteSelectorsBuildsTheChainInColumnOrderAndReusesSelectorsWhenItChanges)
{
    const auto component = world.device(pipeClass, "E1", {{"PIPE.VSTD", "FLAN"}});
    const auto grid = support::selectorGrid(world, {component},
                                            {{"Name", "Name"},
                                             {"@Selector_PIPE.FTYPE", "Type"},
                                             {"@Selector_CONN.MINDN1", "DN"},
                                             {"@Selector_CONN.MAXDN1", "whatever the second is called"},
                                             {"@Selector_PDMS.PBOR1@1", "PBOR1"}});
    auto orders = ordersOf(*grid);
    DeviceRef leaf;
    WriteSelectors(0, *grid, leaf, top, pipeClass, orders);
    // A range pair gives one selector, and a bore title is the question.
    EXPECT_EQ(world.value(top, "Sele.Question"), "PIPE.FTYPE");
    EXPECT_EQ(tree(top), "FTYPE(CONN.DN1)[DN1(PBOR1)[PBOR1()]]");
    const auto ftype = asDevice(top->OwnElements()->Item("FTYPE"));
    const auto dn1 = asDevice(ftype->OwnElements()->Item("DN1"));
    const auto bore = asDevice(dn1->OwnElements()->Item("PBOR1"));
    EXPECT_EQ(world.value(bore, "Sele.Type"), "2");
    EXPECT_EQ(ftype->CDevice(), base);
    EXPECT_FALSE(world.trace("SetQuestion").empty()) << "a changed tree walks every row again";
    // Nothing to change: no walk.
    world.tracer().clear();
    WriteSelectors(0, *grid, leaf, top, pipeClass, orders);
    EXPECT_THAT(world.trace("SetQuestion"), IsEmpty());
    // The bore column moved to the front: the same selectors, in the new order;
    // a range pair in last place is cleared all the same.
    grid->moveColumn("@Selector_PDMS.PBOR1@1", 2);
    WriteSelectors(0, *grid, leaf, top, pipeClass, orders);
    EXPECT_EQ(world.value(top, "Sele.Question"), "PBOR1");
    EXPECT_EQ(tree(top), "PBOR1(PIPE.FTYPE)[FTYPE(CONN.DN1)[DN1()]]");
    EXPECT_EQ(top->OwnElements()->Item("PBOR1"), bore);
    EXPECT_EQ(bore->OwnElements()->Item("FTYPE"), ftype);
    EXPECT_EQ(ftype->OwnElements()->Item("DN1"), dn1);
    EXPECT_EQ(world.reported(), "");
    // All question columns gone: the children of the top selector are deleted.
    grid->deleteColumns(
        {"@Selector_PDMS.PBOR1@1", "@Selector_PIPE.FTYPE", "@Selector_CONN.MINDN1", "@Selector_CONN.MAXDN1"});
    WriteSelectors(0, *grid, leaf, top, pipeClass, orders);
    EXPECT_TRUE(bore->IsDeleted());
    EXPECT_TRUE(dn1->IsDeleted());
    EXPECT_EQ(world.value(top, "Sele.Question"), "");
    // A read-only base changes nothing, but the order is recorded.
    world.setReadOnly(base);
    grid->Query()->Top()->Columns()->Add("@Selector_PIPE.NEW", -1);
    WriteSelectors(0, *grid, leaf, top, pipeClass, orders);
    EXPECT_EQ(tree(top), "");
    EXPECT_THAT(orders.Item("0K").Keys(), ElementsAre("Name", "@Selector_PIPE.NEW"));
}

TEST_F(SelectorTree, TornRangePairIsRepairedAndALoneRangeColumnTakenOut)
{
    const auto grid = support::selectorGrid(
        world, {}, {{"Name", ""}, {"@Selector_C.MINA", ""}, {"@Selector_C.MAXA", ""}, {"@Selector_C.X", ""}});
    auto orders = ordersOf(*grid);
    const auto repaired = [&](std::int16_t tab = 0) {
        CheckMinMaxMoved(tab, orders, *grid);
        return support::join(columnKeys(*grid));
    };
    // The moved column stays where it was put; its partner follows.
    grid->moveColumn("@Selector_C.MAXA", 4);
    EXPECT_EQ(repaired(), "Name @Selector_C.X @Selector_C.MINA @Selector_C.MAXA");
    EXPECT_EQ(support::join(orders.Item("0K").Keys()), "Name @Selector_C.X @Selector_C.MINA @Selector_C.MAXA");
    // A pair side by side stays as it is, MAX before MIN included.
    grid->moveColumn("@Selector_C.MAXA", 3);
    EXPECT_EQ(repaired(), "Name @Selector_C.X @Selector_C.MAXA @Selector_C.MINA");
    // A column whose partner is gone is taken out, also when its name really begins with MIN.
    grid->deleteColumns({"@Selector_C.MINA"});
    grid->Query()->Top()->Columns()->Add("@Selector_C.MINIMUM", -1);
    EXPECT_EQ(repaired(), "Name @Selector_C.X");
    EXPECT_EQ(world.reported(), "");
    // Without a record of the tab the routine ends in its error tail.
    repaired(1);
    EXPECT_EQ(world.reported(), "Sub CheckMinMaxMoved");
}

TEST_F(SelectorTree, DeepCopyListsSelectorsDepthFirstAndTheFirstKeepsAName)
{
    const auto a = support::selector(world, top, "A", "", "", base);
    const auto aDn = support::selector(world, a, "DN1", "", "", base);
    support::selector(world, top, "DN1", "", "", base);
    SelectorMap map;
    DeppCopyElements(top, map);
    EXPECT_THAT(map.Keys(), ElementsAre("A", "DN1"));
    EXPECT_EQ(map.Item("DN1"), aDn);
    DeppCopyElements(aDn, map);
    EXPECT_EQ(map.Count(), 2);
}

}  // namespace
}  // namespace pipespec
