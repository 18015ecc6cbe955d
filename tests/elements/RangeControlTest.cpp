// The headless range control: which diameters a new element is offered in.

#include "elements/RangeControl.h"
#include "support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pipespec {
namespace {

using addtopipeclass::PCOMRangeControl;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class RangeControl : public ::testing::Test {
protected:
    support::World world;
    DeviceRef pipeClass = world.pipeClass(world.root(world.plant(), "@20"), "PC-A1", "10000");
    DeviceRef element = world.device(pipeClass, "001", {{"NR.DNFROM", "20"}, {"NR.DNTO", ""}});
    PCOMRangeControl control;

    std::vector<std::string> range() const
    {
        std::vector<std::string> values;
        if (const auto list = element->Spec("NR.DNLIST"))
            for (int i = 0; i < list->RowCount(); ++i) values.push_back(list->GetXValue(i));
        return values;
    }
};

TEST_F(RangeControl, OffersTheClassDiametersWithinTheBoundsAndKeepsARangeOnceMade)
{
    // Nothing to offer yet.
    control.InitNDRange(element, pipeClass);
    EXPECT_THAT(range(), IsEmpty());

    world.list(pipeClass, "NR.DNLIST", {"10", "15", "25", "n/a", "600", "800"});
    control.InitNDRange(element, pipeClass);
    // An empty upper bound leaves that side open.
    EXPECT_THAT(range(), ElementsAre("25", "600", "800"));

    world.attribute(element, "NR.DNTO", "100");
    control.InitNDRange(element, pipeClass);
    EXPECT_THAT(range(), ElementsAre("25", "600", "800"));

    // Without a name-range chapter there is nowhere to keep a range.
    const auto bare = world.device(pipeClass, "002");
    control.InitNDRange(bare, pipeClass);
    EXPECT_EQ(bare->Spec("NR"), nullptr);
}

}  // namespace
}  // namespace pipespec
