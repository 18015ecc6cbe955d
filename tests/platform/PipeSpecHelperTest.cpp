// The pipe-spec helper: generic types by function-code pattern, components by
// function code and nominal diameter.

#include "platform/PipeSpecHelper.h"
#include "objectmodel/ExpectError.h"
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

TEST(PipeSpecHelper, FindComponentsTakesTheElementsOfTheCodeWhoseNameRangeHoldsTheDiameter)
{
    support::World world;
    const auto pipeClass = world.pipeClass(world.path(world.plant(), "@20|PIPECLASSES"), "PC", "10000");
    const auto element = [&](const char* name, const char* code, const char* lower, const char* upper) {
        world.device(pipeClass, name, {{"GD.VFCD", code}, {"NR.DNFROM", lower}, {"NR.DNTO", upper}});
    };
    element("E1", "10100", "15", "50");
    element("E2", "10100", "65", "200");  // "100" < "65" as texts: numbers are compared
    element("E3", "10100", "100", "");    // a bound not set leaves that side open
    element("E4", "10200", "15", "600");
    platform::PipeSpecHelper helper(world.tracer().Names());
    helper.SetSearchRoot(pipeClass);
    const auto found = [&](std::string_view code, std::string_view diameter) {
        std::string names;
        const auto list = helper.FindComponents(0, code, diameter);
        for (int i = 1; i <= list->Count(); ++i) names += list->Item(i)->Name() + " ";
        return names;
    };

    EXPECT_EQ(found("10100", "100"), "E2 E3 ");
    EXPECT_EQ(found("10100", "50"), "E1 ") << "both bounds belong to the range";
    EXPECT_EQ(found("10100", "65"), "E2 ");
    EXPECT_EQ(found("10100", "900"), "E3 ");
    EXPECT_EQ(found("10100", ""), "E1 E2 E3 ");
    EXPECT_EQ(found("", "100"), "E2 E3 E4 ");
    // An element that stands for a sub-class brings the sub-class's elements,
    // unless the sub-class is one at which collecting stops; cycles end.
    const auto sub = world.pipeClass(world.path(world.plant(), "@20|PIPECLASSES"), "SUB", "10001");
    element("E5", "10001", "", "");
    asDevice(pipeClass->Devices()->Item("E5"))->SetCDevice(sub);
    world.device(sub, "S1", {{"GD.VFCD", "10100"}, {"NR.DNFROM", "15"}, {"NR.DNTO", "200"}});
    world.device(sub, "S2", {{"GD.VFCD", "10001"}})->SetCDevice(pipeClass);
    EXPECT_EQ(found("10100", "100"), "E2 E3 S1 ");
    sub->Spec("GD.VFCD")->SetValue("10002");
    EXPECT_EQ(found("10100", "100"), "E2 E3 ");
    EXPECT_EQ(checks::errorNumber([&] { found("10100", "DN 100"); }), err::InvalidCall);
    EXPECT_EQ(checks::errorNumber([&] { helper.FindComponents(1, "10100", ""); }), err::InvalidCall);
}

}  // namespace
}  // namespace pipespec
