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
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Not;

class CatalogOwner : public ::testing::Test {
protected:
    // The norm-dimension object is module state that outlives every test.

    support::World world;
    DeviceRef catalog = world.catalog();
    DeviceRef pipeClass = world.pipeClass(world.root(world.plant(), "@20"), "PC-A1", "10000");

    // An element of the pipe class made from a new catalogue component.
    DeviceRef element(support::Attributes attributes) const
    {
        const auto component = world.device(catalog, "C" + std::to_string(catalog->Devices()->Count()), attributes);
        return world.device(pipeClass, pipeClass->Devices()->ItemName("001"), {}, component);
    }
    // The names of the catalogue owners of the elements: "PCOM -".
    std::string ownersOf(std::initializer_list<DeviceRef> elements) const
    {
        std::vector<std::string> names;
        for (const auto& one : elements) {
            DeviceRef owner;
            addtopipeclass::InitCatalogOwner(owner, one, pipeClass);
            names.push_back(owner ? owner->Name() : "-");
        }
        return support::join(names);
    }
};

TEST_F(CatalogOwner, OnlyACodeChoosesBoltingBesideThePipeClassRootWhileTheBasePathAlsoTakesVstd)
{
    world.path(world.base(), "@40|@PCOM|PCOM");
    world.path(world.base(), "@40|@PCOM|BOLTING");
    world.setPipeClassRoot(world.path(world.base(), "@40|PIPECLASSES"));
    const auto flange = element({{"GD.VFCD", "10100"}});
    const auto bolt = element({{"GD.VFCD", "91500"}});
    const auto lastBolt = element({{"GD.VFCD", "91999"}});
    const auto pastBolts = element({{"GD.VFCD", "92000"}});
    const auto boltByVstd = element({{"PIPE.VSTD", "BOLT"}});
    const auto emptyCodeBoltByVstd = element({{"GD.VFCD", ""}, {"PIPE.VSTD", "BOLT"}});
    // Kept on purpose: bolting by VSTD alone takes the ordinary node here...
    EXPECT_EQ(ownersOf({flange, bolt, lastBolt, pastBolts, boltByVstd, emptyCodeBoltByVstd}),
              "PCOM BOLTING BOLTING PCOM PCOM PCOM");
    // ...but the bolting path in the base database.
    world.setBaseDatabase(true);
    world.path(world.base(), "@40|A20|Y00|A10|A30|Y00T00062|A02|B01");
    world.path(world.base(), "@40|A20|Y00|A10|A30|Y00T00062|A02|B02");
    EXPECT_EQ(ownersOf({flange, bolt, boltByVstd, emptyCodeBoltByVstd, element({{"PIPE.VSTD", "Bolt"}})}),
              "B01 B02 B02 B02 B01");
    world.tracer().clear();
    ownersOf({bolt});
    EXPECT_THAT(world.trace("InitCatalogOwner"), ElementsAre("enter", "VFCDVal = 91500", "leave"));
    EXPECT_EQ(world.reported(), "");
}

TEST_F(CatalogOwner, PipeClassStaysOwnerWhereNoCatalogueNodeIsFound)
{
    const auto flange = element({{"GD.VFCD", "10100"}});
    EXPECT_EQ(ownersOf({flange}), "PC-A1");
    // A pipe-class root without "@PCOM" beside it; its base object is where the node is looked for.
    const auto plantRoot = world.path(world.plant(), "@40|PIPECLASSES");
    world.setPipeClassRoot(plantRoot);
    EXPECT_EQ(ownersOf({flange}), "PC-A1");
    world.path(world.base(), "@40|@PCOM|PCOM");
    plantRoot->SetCDevice(world.path(world.base(), "@40|PIPECLASSES"));
    EXPECT_EQ(ownersOf({flange}), "PCOM");
    // The base database without the path: nobody.
    world.setBaseDatabase(true);
    EXPECT_EQ(ownersOf({flange}), "-");
    EXPECT_EQ(world.reported(), "");
    // A code that is no number ends in the error tail, without the leave line.
    world.setBaseDatabase(false);
    world.tracer().clear();
    EXPECT_EQ(ownersOf({element({{"GD.VFCD", "F100"}})}), "PC-A1");
    EXPECT_EQ(world.reported(), "Sub InitCatalogOwner");
    EXPECT_EQ(world.host().errors()[0].cls, "QuorlPipeSpecComp.AddToPipeClass");
    EXPECT_THAT(world.trace("InitCatalogOwner"), ElementsAre("enter", "VFCDVal = F100"));
}

// The name-range chapter of an element whose bounds are still empty, against
// a pipe class whose bounds are 15 and 600.
class MinMax : public CatalogOwner {
protected:
    // An element with a chapter of its own whose bounds are empty, on that value list.
    DeviceRef withEmptyBounds(const ObjectRef& table = nullptr, support::Attributes attributes = {}) const
    {
        const auto made = element({{"GD.VFCD", "10100"}});
        for (const auto& name : {"NR.DNFROM", "NR.DNTO"}) world.attribute(made, name, "")->SetStandardTable(table);
        for (const auto& [name, value] : attributes) world.attribute(made, name, value);
        return made;
    }
    std::string bounds(const DeviceRef& device) const
    {
        return world.value(device, "NR.DNFROM") + ".." + world.value(device, "NR.DNTO");
    }
    std::string fill(const DeviceRef& device) const
    {
        CalcMinMaxSpec(device->Spec("NR"), "DNFROM", pipeClass);
        CalcMinMaxSpec(device->Spec("NR"), "DNTO", pipeClass);
        return bounds(device);
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
    std::vector<std::string> calcLines() const { return world.trace("CalcMinMaxSpec"); }
};

TEST_F(MinMax, EmptyBoundsTakeThePipeClassValuesAndShownValuesStay)
{
    const auto flange = withEmptyBounds();
    EXPECT_EQ(fill(flange), "15..600");
    world.attribute(pipeClass, "NR.DNFROM", "25");
    world.attribute(pipeClass, "NR.DNTO", "300");
    world.attribute(flange, "NR.DNTO", "");
    EXPECT_EQ(fill(flange), "15..300");
    // A bound the element only inherits is stored before it is written; a locked one is not written.
    const auto base = world.device(catalog, "FL-BASE", {{"GD.VFCD", "10100"}, {"NR.DNFROM", ""}, {"NR.DNTO", ""}});
    world.setValueLocked(base->Spec("NR.DNTO"));
    const auto variant = world.device(pipeClass, "VARIANT", {}, base);
    EXPECT_EQ(fill(variant), "25..");
    EXPECT_FALSE(variant->Spec("NR.DNFROM")->SystemTemporary());
    EXPECT_EQ(bounds(base), "..");
    EXPECT_THAT(calcLines(), Contains("SpecName = DNTO"));
    EXPECT_EQ(world.reported(), "");
}

TEST_F(MinMax, OnAnotherValueListTheFirstNormDimensionChosenServesEveryLaterChapter)
{
    const auto din = world.table(world.base(), "DN-DIN", {"15", "20", "400", "500", "600"});
    const auto ansi = world.table(world.base(), "DN-ANSI", {"0.5", "24"});
    for (const auto* name : {"NR.DNFROM", "NR.DNTO"}) pipeClass->Spec(name)->SetStandardTable(ansi);
    const auto flange = withEmptyBounds(din, {{"NR.NORM", "DIN"}});
    normDimensions(din, {{"DIN", "20", "400"}, {"EN", "15", "500"}});
    EXPECT_EQ(fill(flange), "20..400");
    // Kept on purpose: another reference still gets the object of the first.
    EXPECT_EQ(fill(withEmptyBounds(din, {{"NR.NORM", "EN"}})), "20..400");
    // Only the lower and the upper bound have a norm dimension.
    EXPECT_EQ(GetNormDimensionSpec(flange->Spec("NR"), "DNLIST"), nullptr);
    EXPECT_EQ(GetNormDimensionSpec(flange->Spec("NR"), "DNTO")->Value(), "400");
    // A norm dimension on yet another list is of no use either.
    const auto third = withEmptyBounds(world.table(world.base(), "DN-JIS", {"20"}));
    world.tracer().clear();
    CalcMinMaxSpec(third->Spec("NR"), "DNFROM", pipeClass);
    EXPECT_EQ(bounds(third), "..");
    EXPECT_EQ(calcLines().back(), "leave");
    EXPECT_EQ(world.reported(), "");
}

TEST_F(MinMax, WithoutNormDimensionsAnotherValueListLeavesTheBoundEmpty)
{
    const auto flange = withEmptyBounds(world.table(world.base(), "DN-DIN", {"15"}), {{"NR.NORM", "DIN"}});
    CalcMinMaxSpec(flange->Spec("NR"), "DNFROM", pipeClass);
    EXPECT_EQ(bounds(flange), "..");
    EXPECT_EQ(addtopipeclass::moduleState(*world.workset()).NormDimensionObject, nullptr);
    EXPECT_EQ(calcLines().back(), "leave: QSpec Is Nothing");
    EXPECT_THAT(calcLines(), Not(Contains("leave")));
    EXPECT_EQ(world.reported(), "");
}

}  // namespace
}  // namespace pipespec
