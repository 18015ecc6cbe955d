// The pipe-spec helper: generic types by function-code pattern, components by
// function code and nominal diameter.

#include "objectmodel/ExpectError.h"
#include "platform/PipeSpecHelper.h"
#include "support/World.h"

#include <gtest/gtest.h>

namespace pipespec {
namespace {

TEST(PipeSpecHelper, GenericTypeComesFromTheFirstMenuPatternThatFitsTheCode)
{
    support::World world;
    const auto menu = world.path(world.base(), "@3D|@Menu");
    world.device(menu, "101XX")->SetDescription("FLAN");
    world.device(menu, "91XXX")->SetDescription("BOLT");
    world.device(menu, "911XX")->SetDescription("never reached");
    const auto pipeClass = world.pipeClass(world.path(world.plant(), "@20|PIPECLASSES"), "PC", "10000");
    platform::PipeSpecHelper helper(world.tracer().Names());
    helper.SetPipeClass(pipeClass);

    DeviceRef root;
    EXPECT_EQ(helper.GenericTypeOfFunctionCode(root, 10110), "FLAN");
    EXPECT_EQ(root, menu) << "an empty menu root is filled from the pipe class's project";
    EXPECT_EQ(helper.GenericTypeOfFunctionCode(root, 91100), "BOLT");
    EXPECT_EQ(helper.GenericTypeOfFunctionCode(root, 1010), "") << "the pattern must have the code's length";
    EXPECT_EQ(helper.GenericTypeOfFunctionCode(root, 20000), "");
}

TEST(PipeSpecHelper, FindComponentsMatchesCodeAndFirstDiameter)
{
    support::World world;
    const auto pipeClass = world.pipeClass(world.path(world.plant(), "@20|PIPECLASSES"), "PC", "10000");
    const auto small = world.device(pipeClass, "E1", {{"GD.VFCD", "10100"}, {"CONN.DN1", "50"}});
    const auto large = world.device(pipeClass, "E2", {{"GD.VFCD", "10100"}, {"CONN.DN1", "100"}});
    world.device(pipeClass, "E3", {{"GD.VFCD", "10200"}, {"CONN.DN1", "100"}});
    platform::PipeSpecHelper helper(world.tracer().Names());
    helper.SetSearchRoot(pipeClass);

    const auto found = helper.FindComponents(0, "10100", "100");
    ASSERT_EQ(found->Count(), 1);
    EXPECT_EQ(found->Item(1), large);
    EXPECT_EQ(helper.FindComponents(0, "10100", "")->Count(), 2);
    EXPECT_EQ(helper.FindComponents(0, "10100", "50")->Item(1), small);
    EXPECT_EQ(checks::errorNumber([&] { helper.FindComponents(1, "10100", ""); }), err::InvalidCall);
}

}  // namespace
}  // namespace pipespec
