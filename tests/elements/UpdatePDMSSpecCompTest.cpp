// Elements of a class for the outside design system: chapter cards, state
// column, questions, the shop and field pair of a tube, the group id, the
// attribute copies and the companion component, through the whole creation road.

#include "elements/AddToPipeClass.h"
#include "elements/RangeControl.h"
#include "support/SelectorTrees.h"
#include "support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pipespec {
namespace {

using namespace addtopipeclass;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class NoRange final : public IRangeControl {
public:
    void InitNDRange(const DeviceRef&, const DeviceRef&) override {}
};

class PdmsUpdate : public ::testing::Test {
protected:
    void SetUp() override
    {
        moduleState() = {};
        setSharedPCOMRange(std::make_shared<NoRange>());
        world.tableAt(world.base(), "@3D|00|PDMS");
        // Tubes are asked whether they are made in the shop.
        const auto tubes = support::selector(world, root, "TUBE", "TUBE", "PDMS.SHOP", base);
        support::selector(world, tubes, "SHOP", "", "", base);
        support::selector(world, root, "FLAN", "FLAN", "", base);
        support::selector(world, root, "GASK", "GASK", "", base);
        world.attribute(pipeClass, "E3D.PCOMPlus9", "");
        for (const auto& component : {tube, gasket, flange})
            component->Spec("PDMS")->SetControlProperties(
                "Cols:1;ColHorizontal:0;ColsTitles:VC11|;RowType:0;ColsSizes:0|800|;RowTitles:");
    }
    void TearDown() override { setSharedPCOMRange(nullptr); }

    support::World world;
    DeviceRef catalog = world.root(world.base(), "@40");
    DeviceRef pipeClass = world.pipeClass(world.path(world.plant(), "@20|PIPECLASSES"), "PC-E3D", "10001", true);
    DeviceRef base = support::selectorBase(world);
    DeviceRef root = support::selectorRoot(world, pipeClass, base);
    DeviceRef tube = world.device(catalog, "TUBE-1",
                                  {{"GD.VFCD", "10600"}, {"PIPE.VSTD", "TUBE"}, {"PDMS.SHOP", ""},
                                   {"PDMS.Selector", ""}, {"E3D.X", ""}});
    DeviceRef gasket = world.device(catalog, "GA-1",
                                    {{"GD.VFCD", "10700"}, {"PIPE.VSTD", "GASK"}, {"PDMS.Selector", ""}, {"E3D.X", ""}});
    DeviceRef flange = world.device(catalog, "FL-1",
                                    {{"GD.VFCD", "10100"}, {"PIPE.VSTD", "FLAN"}, {"PDMS.Selector", ""},
                                     {"E3D.X", ""}});

    std::vector<std::string> created() const { return must(CreatedObjects()).Keys(); }
    std::vector<std::string> elementNames() const { return support::childNames(pipeClass); }
    std::string shopOf(const std::string& element) const
    {
        return world.value(pipeClass->Devices()->Item(element), "PDMS.SHOP");
    }
};

TEST_F(PdmsUpdate, ATubeIsDoubledIntoAShopAndAFieldElementOfOneGroup)
{
    const auto element = NewPipeClassElement(tube, pipeClass, false);
    ASSERT_NE(element, nullptr);
    EXPECT_THAT(world.host().errors(), IsEmpty());
    EXPECT_THAT(elementNames(), ElementsAre("SelectorRoot", "001", "002"));
    EXPECT_EQ(shopOf("001"), "TRUE");
    EXPECT_EQ(shopOf("002"), "FALS");
    EXPECT_EQ(element->Spec("E3D")->XmlText(), element->UniqueId());
    EXPECT_EQ(pipeClass->Devices()->Item("002")->Spec("E3D")->XmlText(), element->UniqueId());
    EXPECT_EQ(created().size(), 2u);
    EXPECT_TRUE(same(must(CreatedObjects()).Item(created()[0]), element));
}

TEST_F(PdmsUpdate, OnlyTheFirstCompanionBecomesAnElementAndTheAttributeNamesIt)
{
    world.attribute(flange, "E3D.PCOMPlus1", "")->SetLinkObject(gasket);
    const auto unread = world.device(catalog, "GA-2", {{"GD.VFCD", "10700"}, {"PIPE.VSTD", "GASK"}});
    world.attribute(flange, "E3D.PCOMPlus2", "")->SetLinkObject(unread);

    const auto element = NewPipeClassElement(flange, pipeClass, false);
    ASSERT_NE(element, nullptr);
    EXPECT_THAT(world.host().errors(), IsEmpty());
    EXPECT_THAT(elementNames(), ElementsAre("SelectorRoot", "001", "002"));
    const auto companion = asDevice(pipeClass->Devices()->Item("002"));
    EXPECT_TRUE(same(companion->CDevice(), gasket));
    EXPECT_TRUE(same(element->Spec("E3D.PCOMPlus1")->LinkObject(), companion));
    EXPECT_TRUE(same(element->Spec("E3D.PCOMPlus2")->LinkObject(), unread));
    EXPECT_EQ(created().size(), 2u);
}

}  // namespace
}  // namespace pipespec
