// Where an element inherits its chapters from, and how the bounds of its
// name-range chapter are filled.

#include "elements/AddToPipeClass.h"
#include "objectmodel/Options.h"
#include "support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>

namespace pipespec {
namespace {

using addtopipeclass::CalcMinMaxSpec;
using addtopipeclass::GetNormDimensionSpec;
using addtopipeclass::InitCatalogOwner;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr auto kClass = "QuorlPipeSpecComp.AddToPipeClass";

class CatalogOwner : public ::testing::Test {
protected:
    support::World world;
    DeviceRef catalog = world.root(world.base(), "@40");
    DeviceRef pipeClass = world.pipeClass(world.root(world.plant(), "@20"), "PC-A1", "10000");

    // An element of the pipe class made from a new catalogue component.
    DeviceRef element(support::Attributes attributes)
    {
        const auto component = world.device(catalog, "C" + std::to_string(catalog->Devices()->Count()), attributes);
        const auto made = world.device(pipeClass, pipeClass->Devices()->ItemName("001"));
        made->SetCDevice(component);
        return made;
    }
    DeviceRef ownerOf(const DeviceRef& forElement)
    {
        DeviceRef owner;
        InitCatalogOwner(owner, forElement, pipeClass);
        return owner;
    }
    void usePipeClassRoot(const DeviceRef& root) const { world.workset()->globals()->setPipeClassRootCDevice(root); }
};

TEST_F(CatalogOwner, OnlyACodeChoosesBoltingBesideThePipeClassRootWhileTheBasePathAlsoTakesVstd)
{
    const auto pcom = world.path(world.base(), "@40|@PCOM|PCOM");
    const auto boltingNode = world.path(world.base(), "@40|@PCOM|BOLTING");
    usePipeClassRoot(world.path(world.base(), "@40|PIPECLASSES"));
    const auto flange = element({{"GD.VFCD", "10100"}});
    const auto bolt = element({{"GD.VFCD", "91500"}});
    const auto lastBolt = element({{"GD.VFCD", "91999"}});
    const auto pastBolts = element({{"GD.VFCD", "92000"}});
    const auto boltByVstd = element({{"PIPE.VSTD", "BOLT"}});
    const auto emptyCodeBoltByVstd = element({{"GD.VFCD", ""}, {"PIPE.VSTD", "BOLT"}});

    EXPECT_EQ(ownerOf(flange), pcom);
    EXPECT_EQ(ownerOf(bolt), boltingNode);
    EXPECT_EQ(ownerOf(lastBolt), boltingNode);
    EXPECT_EQ(ownerOf(pastBolts), pcom);
    // Kept on purpose: bolting by VSTD alone takes the ordinary node here...
    EXPECT_EQ(ownerOf(boltByVstd), pcom);
    EXPECT_EQ(ownerOf(emptyCodeBoltByVstd), pcom);

    // ...but the bolting path in the base database.
    world.setBaseDatabase(true);
    const auto b01 = world.path(world.base(), "@40|A20|Y00|A10|A30|Y00T00062|A02|B01");
    const auto b02 = world.path(world.base(), "@40|A20|Y00|A10|A30|Y00T00062|A02|B02");
    EXPECT_EQ(ownerOf(flange), b01);
    EXPECT_EQ(ownerOf(bolt), b02);
    EXPECT_EQ(ownerOf(boltByVstd), b02);
    EXPECT_EQ(ownerOf(emptyCodeBoltByVstd), b02);
    EXPECT_EQ(ownerOf(element({{"PIPE.VSTD", "Bolt"}})), b01);

    world.tracer().clear();
    ownerOf(bolt);
    EXPECT_THAT(world.traceLines("InitCatalogOwner"),
                ElementsAre(std::string(kClass) + " InitCatalogOwner: enter",
                            std::string(kClass) + " InitCatalogOwner: VFCDVal = 91500",
                            std::string(kClass) + " InitCatalogOwner: leave"));
    EXPECT_THAT(world.host().errors(), IsEmpty());
}

TEST_F(CatalogOwner, PipeClassStaysOwnerWhereNoCatalogueNodeIsFound)
{
    const auto flange = element({{"GD.VFCD", "10100"}});
    EXPECT_EQ(ownerOf(flange), pipeClass);

    // A pipe-class root without "@PCOM" beside it.
    usePipeClassRoot(world.path(world.plant(), "@40|PIPECLASSES"));
    EXPECT_EQ(ownerOf(flange), pipeClass);

    // The root's base object is where the node is looked for.
    const auto pcom = world.path(world.base(), "@40|@PCOM|PCOM");
    world.path(world.plant(), "@40|PIPECLASSES")->SetCDevice(world.path(world.base(), "@40|PIPECLASSES"));
    EXPECT_EQ(ownerOf(flange), pcom);

    // The base database without the path: nobody.
    world.setBaseDatabase(true);
    EXPECT_EQ(ownerOf(flange), nullptr);
    EXPECT_THAT(world.host().errors(), IsEmpty());

    // A code that is no number ends in the error tail, without the leave line.
    world.setBaseDatabase(false);
    world.tracer().clear();
    EXPECT_EQ(ownerOf(element({{"GD.VFCD", "F100"}})), pipeClass);
    ASSERT_EQ(world.host().errors().size(), 1u);
    EXPECT_EQ(world.host().errors()[0].function, "Sub InitCatalogOwner");
    EXPECT_EQ(world.host().errors()[0].cls, kClass);
    EXPECT_THAT(world.traceLines("InitCatalogOwner"),
                ElementsAre(std::string(kClass) + " InitCatalogOwner: enter",
                            std::string(kClass) + " InitCatalogOwner: VFCDVal = F100"));
}

// The name-range chapter of an element whose bounds are still empty, against
// a pipe class whose bounds are 15 and 600.
class MinMax : public CatalogOwner {
protected:
    // An element with a chapter of its own whose bounds are empty.
    DeviceRef withEmptyBounds(support::Attributes attributes = {})
    {
        const auto made = element({{"GD.VFCD", "10100"}});
        for (const auto& name : {"NR.DNFROM", "NR.DNTO"}) world.attribute(made, name, "");
        for (const auto& [name, value] : attributes) world.attribute(made, name, value);
        return made;
    }

    DeviceRef flange = withEmptyBounds();
    SpecRef chapter = flange->Spec("NR");

    std::string bounds(const DeviceRef& device) const
    {
        return world.value(device, "NR.DNFROM") + ".." + world.value(device, "NR.DNTO");
    }
    void fill(const SpecRef& of) const
    {
        CalcMinMaxSpec(of, "DNFROM", pipeClass);
        CalcMinMaxSpec(of, "DNTO", pipeClass);
    }
    static void onValueList(const DeviceRef& device, const ObjectRef& table)
    {
        device->Spec("NR.DNFROM")->SetStandardTable(table);
        device->Spec("NR.DNTO")->SetStandardTable(table);
    }
    // Norm dimensions known to the base project, by name: lower and upper bound on `table`.
    void normDimensions(const ObjectRef& table, std::initializer_list<std::array<std::string, 3>> norms) const
    {
        const auto root = world.path(world.base(), "@3D|NORMS");
        for (const auto& [name, dnMin, dnMax] : norms) {
            const auto norm = world.device(root, name, {{"NORM.DNMIN", dnMin}, {"NORM.DNMAX", dnMax}});
            norm->Spec("NORM.DNMIN")->SetStandardTable(table);
            norm->Spec("NORM.DNMAX")->SetStandardTable(table);
        }
        world.base()->setOption(option::NormDimensions, root);
    }
    std::vector<std::string> calcLines() const { return world.traceLines("CalcMinMaxSpec"); }
};

TEST_F(MinMax, EmptyBoundsTakeThePipeClassValuesAndShownValuesStay)
{
    fill(chapter);
    EXPECT_EQ(bounds(flange), "15..600");

    world.attribute(pipeClass, "NR.DNFROM", "25");
    world.attribute(pipeClass, "NR.DNTO", "300");
    world.attribute(flange, "NR.DNTO", "");
    fill(chapter);
    EXPECT_EQ(bounds(flange), "15..300");

    // A bound the element only inherits is stored before it is written; a locked one is not written.
    const auto base = world.device(catalog, "FL-BASE", {{"GD.VFCD", "10100"}, {"NR.DNFROM", ""}, {"NR.DNTO", ""}});
    world.setValueLocked(base->Spec("NR.DNTO"));
    const auto variant = world.device(pipeClass, "VARIANT");
    variant->SetCDevice(base);
    fill(variant->Spec("NR"));
    EXPECT_FALSE(variant->Spec("NR.DNFROM")->SystemTemporary());
    EXPECT_EQ(bounds(variant), "25..");
    EXPECT_EQ(bounds(base), "..");

    EXPECT_THAT(calcLines(), Contains(std::string(kClass) + " CalcMinMaxSpec: SpecName = DNTO"));
    EXPECT_THAT(world.host().errors(), IsEmpty());
}

TEST_F(MinMax, OnAnotherValueListTheFirstNormDimensionChosenServesEveryLaterChapter)
{
    const auto din = world.table(world.base(), "DN-DIN", {"15", "20", "400", "500", "600"});
    onValueList(flange, din);
    onValueList(pipeClass, world.table(world.base(), "DN-ANSI", {"0.5", "24"}));
    world.attribute(flange, "NR.NORM", "DIN");
    normDimensions(din, {{"DIN", "20", "400"}, {"EN", "15", "500"}});

    fill(chapter);
    EXPECT_EQ(bounds(flange), "20..400");

    // Kept on purpose: another reference still gets the object of the first.
    const auto second = withEmptyBounds({{"NR.NORM", "EN"}});
    onValueList(second, din);
    fill(second->Spec("NR"));
    EXPECT_EQ(bounds(second), "20..400");

    // Only the lower and the upper bound have a norm dimension.
    EXPECT_EQ(GetNormDimensionSpec(chapter, "DNLIST"), nullptr);
    EXPECT_EQ(GetNormDimensionSpec(chapter, "DNTO")->Value(), "400");

    // A norm dimension on yet another list is of no use either.
    const auto third = withEmptyBounds();
    onValueList(third, world.table(world.base(), "DN-JIS", {"20"}));
    world.tracer().clear();
    CalcMinMaxSpec(third->Spec("NR"), "DNFROM", pipeClass);
    EXPECT_EQ(bounds(third), "..");
    EXPECT_EQ(calcLines().back(), std::string(kClass) + " CalcMinMaxSpec: leave");
    EXPECT_THAT(world.host().errors(), IsEmpty());
}

TEST_F(MinMax, WithoutNormDimensionsAnotherValueListLeavesTheBoundEmpty)
{
    onValueList(flange, world.table(world.base(), "DN-DIN", {"15"}));
    world.attribute(flange, "NR.NORM", "DIN");
    CalcMinMaxSpec(chapter, "DNFROM", pipeClass);
    EXPECT_EQ(bounds(flange), "..");
    EXPECT_EQ(addtopipeclass::moduleState(*world.workset()).NormDimensionObject, nullptr);
    EXPECT_EQ(calcLines().back(), std::string(kClass) + " CalcMinMaxSpec: leave: QSpec Is Nothing");
    EXPECT_THAT(calcLines(), Not(Contains(std::string(kClass) + " CalcMinMaxSpec: leave")));
    EXPECT_THAT(world.host().errors(), IsEmpty());
}

}  // namespace
}  // namespace pipespec
