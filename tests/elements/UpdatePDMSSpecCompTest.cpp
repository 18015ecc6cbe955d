// Elements of a class for the outside design system: chapter cards, state
// column, questions, the shop and field pair of a tube, the group id, the
// attribute copies and the companion component, through the whole creation road.

#include "elements/AddToPipeClass.h"
#include "elements/RangeControl.h"
#include "platform/store/Database.h"
#include "selectors/ChooseSelector.h"
#include "support/SelectorTrees.h"
#include "support/World.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

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

constexpr std::string_view kLayout = "Cols:1;ColHorizontal:0;ColsTitles:VC11|;RowType:0;ColsSizes:0|800|;RowTitles:";

class PdmsUpdate : public ::testing::Test {
protected:
    void SetUp() override
    {
        world.tableAt(world.base(), "@3D|00|PDMS");
        // Tubes are asked whether they are made in the shop.
        tubes = support::shopSelector(world, root, "TUBE", base);
        support::selector(world, root, "FLAN", "FLAN", "", base);
        support::selector(world, root, "GASK", "GASK", "", base);
        // The class is the catalogue owner here; its card names a companion
        // that no element may take over.
        world.attribute(pipeClass, "E3D.PCOMPlus9", "");
        for (const auto& component : {tube, gasket, flange}) withLayout(component);
    }

    diagnostics::ScopedService<IRangeControl> noRange{setSharedPCOMRange, std::make_shared<NoRange>()};
    // The choice of a selector, as the engineer would answer it.
    std::shared_ptr<ScriptedChooseSelector> chooser = std::make_shared<ScriptedChooseSelector>();
    diagnostics::ScopedService<IChooseSelectorView> chooserInstalled{setChooseSelectorView, chooser};
    support::World world;
    DeviceRef catalog = world.root(world.base(), "@40");
    DeviceRef classes = world.path(world.plant(), "@20|PIPECLASSES");
    DeviceRef pipeClass = world.pipeClass(classes, "PC-E3D", "10001", true);
    DeviceRef base = support::selectorBase(world);
    DeviceRef root = support::selectorRoot(world, pipeClass, base);
    DeviceRef tubes;
    DeviceRef tube = world.device(catalog, "TUBE-1",
                                  {{"GD.VFCD", "10600"}, {"PIPE.VSTD", "TUBE"}, {"PDMS.SHOP", ""},
                                   {"PDMS.Selector", ""}, {"E3D.X", ""}});
    DeviceRef gasket = world.device(catalog, "GA-1",
                                    {{"GD.VFCD", "10700"}, {"PIPE.VSTD", "GASK"}, {"PDMS.Selector", ""}, {"E3D.X", ""}});
    DeviceRef flange = world.device(catalog, "FL-1",
                                    {{"GD.VFCD", "10100"}, {"PIPE.VSTD", "FLAN"}, {"PDMS.Selector", ""},
                                     {"E3D.X", ""}});

    // The layout text of the PDMS chapter, which the state column extends.
    void withLayout(const DeviceRef& component) const
    {
        component->Spec("PDMS")->SetControlProperties(std::string(kLayout));
    }
    // What the design system texts and material need: a linked source text
    // and a material link, with the attributes they are copied to.
    DeviceRef withTextsAndMaterial(const DeviceRef& component) const
    {
        world.attribute(component, "PDMS.TEXT", "");
        world.setLinkedCount(world.attribute(component, "GD.TEXT", "Rohr nahtlos"), 1);
        world.attribute(component, "E3D.SOURCE", "");
        world.attribute(component, "MATERIAL.TEXTLINK", "");
        const auto material = world.device(catalog, "P235GH");
        world.attribute(component, "E3D.MATXT", "")->SetLinkObject(material);
        return material;
    }
    void withCompanion(const DeviceRef& component, const DeviceRef& companion) const
    {
        world.attribute(component, "E3D.PCOMPlus1", "")->SetLinkObject(companion);
    }
    std::vector<std::string> created() const { return must(CreatedObjects(*world.workset())).Keys(); }
    std::vector<std::string> elementNames() const { return support::childNames(pipeClass); }
    DeviceRef element(const std::string& name) const { return asDevice(pipeClass->Devices()->Item(name)); }
    std::string shopOf(const std::string& name) const { return world.value(element(name), "PDMS.SHOP"); }
    std::string groupOf(const std::string& name) const { return element(name)->Spec("E3D")->XmlText(); }
    std::vector<std::string> leaveTexts(std::string_view function) const
    {
        std::vector<std::string> texts;
        for (const auto& line : world.tracer().lines())
            if (line.function == function && line.kind == diagnostics::TraceKind::LeaveText) texts.push_back(line.text);
        return texts;
    }
};

// ---- tubes ---------------------------------------------------------------

TEST_F(PdmsUpdate, ATubeIsDoubledIntoAShopAndAFieldElementOfOneGroup)
{
    const auto made = NewPipeClassElement(tube, pipeClass, false);
    ASSERT_NE(made, nullptr);
    EXPECT_THAT(world.host().errors(), IsEmpty());
    EXPECT_THAT(elementNames(), ElementsAre("SelectorRoot", "001", "002"));
    EXPECT_EQ(shopOf("001"), "TRUE");
    EXPECT_EQ(shopOf("002"), "FALS");
    EXPECT_EQ(groupOf("001"), made->UniqueId());
    EXPECT_EQ(groupOf("002"), made->UniqueId());
    // The field element is made from the shop element, and tells of its own
    // way out; the caller keeps the shop element.
    EXPECT_TRUE(same(element("002")->CDevice(), tube));
    EXPECT_THAT(leaveTexts("XAddToPipeClass"), Contains("recursive call"));
    EXPECT_EQ(created().size(), 2u);
    EXPECT_TRUE(same(must(CreatedObjects(*world.workset())).Item(created()[0]), made));
    // Both walked to the leaf of the shop question and carry the state column.
    const auto leaf = tubes->Elements()->Item("SHOP");
    for (const auto* name : {"001", "002"}) {
        EXPECT_TRUE(same(element(name)->Spec("PDMS.Selector")->LinkObject(), leaf)) << name;
        EXPECT_NE(element(name)->Spec("PDMS.State"), nullptr) << name;
    }
}

TEST_F(PdmsUpdate, TheWordTubeCountsInAnyCase)
{
    // The selector answer is compared exactly, so the lower-case word needs
    // a selector of its own; the tube rule compares upper case.
    support::shopSelector(world, root, "tube", base);
    const auto lower = world.device(catalog, "TUBE-LC",
                                    {{"GD.VFCD", "10600"}, {"PIPE.VSTD", "tube"}, {"PDMS.SHOP", ""},
                                     {"PDMS.Selector", ""}, {"E3D.X", ""}});
    withLayout(lower);

    ASSERT_NE(NewPipeClassElement(lower, pipeClass, false), nullptr);
    EXPECT_THAT(elementNames(), ElementsAre("SelectorRoot", "001", "002"));
    EXPECT_EQ(shopOf("001"), "TRUE");
    EXPECT_EQ(shopOf("002"), "FALS");
}

TEST_F(PdmsUpdate, AnInteractiveImportMakesNoFieldElementButCopiesAndTakesTheCompanion)
{
    const auto material = withTextsAndMaterial(tube);
    withCompanion(tube, gasket);

    const auto made = NewPipeClassElement(tube, pipeClass, true);
    ASSERT_NE(made, nullptr);
    EXPECT_THAT(world.host().errors(), IsEmpty());
    EXPECT_THAT(elementNames(), ElementsAre("SelectorRoot", "001", "002"));
    EXPECT_EQ(shopOf("001"), "");
    EXPECT_EQ(world.value(made, "PDMS.TEXT"), "=TValue(\"GD.TEXT\",\"\",0)");
    EXPECT_TRUE(same(made->Spec("E3D.SOURCE")->LinkObject(), tube));
    EXPECT_TRUE(same(made->Spec("MATERIAL.TEXTLINK")->LinkObject(), material));
    const auto companion = element("002");
    EXPECT_TRUE(same(companion->CDevice(), gasket));
    EXPECT_TRUE(same(made->Spec("E3D.PCOMPlus1")->LinkObject(), companion));
    // The companion's own creation is not an import: it takes the group of the tube.
    EXPECT_EQ(groupOf("002"), made->UniqueId());
}

// ---- the companion -------------------------------------------------------

TEST_F(PdmsUpdate, OnlyTheFirstCompanionBecomesAnElementAndTheAttributeNamesIt)
{
    withCompanion(flange, gasket);
    const auto unread = world.device(catalog, "GA-2", {{"GD.VFCD", "10700"}, {"PIPE.VSTD", "GASK"}});
    world.attribute(flange, "E3D.PCOMPlus2", "")->SetLinkObject(unread);

    const auto made = NewPipeClassElement(flange, pipeClass, false);
    ASSERT_NE(made, nullptr);
    EXPECT_THAT(world.host().errors(), IsEmpty());
    EXPECT_THAT(elementNames(), ElementsAre("SelectorRoot", "001", "002"));
    const auto companion = element("002");
    EXPECT_TRUE(same(companion->CDevice(), gasket));
    EXPECT_TRUE(same(made->Spec("E3D.PCOMPlus1")->LinkObject(), companion));
    EXPECT_TRUE(same(made->Spec("E3D.PCOMPlus2")->LinkObject(), unread));
    EXPECT_EQ(groupOf("002"), made->UniqueId());
    EXPECT_EQ(created().size(), 2u);
}

TEST_F(PdmsUpdate, TheCompanionOfATubeIsMadeOnceInTheCascade)
{
    withCompanion(tube, gasket);

    const auto made = NewPipeClassElement(tube, pipeClass, false);
    ASSERT_NE(made, nullptr);
    EXPECT_THAT(elementNames(), ElementsAre("SelectorRoot", "001", "002", "003"));
    EXPECT_EQ(created().size(), 3u);
    // The field element takes the companion first; when the shop element asks
    // for it again the cascade has it already, and the shop element's link is
    // set to that empty answer. Kept on purpose: the link names what the
    // creation gave back.
    const auto companion = element("003");
    EXPECT_TRUE(same(companion->CDevice(), gasket));
    EXPECT_TRUE(same(element("002")->Spec("E3D.PCOMPlus1")->LinkObject(), companion));
    EXPECT_EQ(made->Spec("E3D.PCOMPlus1")->LinkObject(), nullptr);
    const auto added = "adding " + gasket->SystemFullName() + " to m_CreatedObjects";
    EXPECT_EQ(std::ranges::count(world.traceTexts("XAddToPipeClass"), added), 1);
    EXPECT_THAT(leaveTexts("XAddToPipeClass"), Contains("already added"));
    for (const auto* name : {"001", "002", "003"}) EXPECT_EQ(groupOf(name), made->UniqueId()) << name;
}

// ---- ways out ------------------------------------------------------------

TEST_F(PdmsUpdate, AStructureElementOfAStructureClassStopsBeforeFieldElementAndCompanion)
{
    const auto structureClass = world.pipeClass(classes, "PC-STRUCT", "10003", true);
    world.attribute(structureClass, "E3D.PCOMPlus9", "");
    support::shopSelector(world, support::selectorRoot(world, structureClass, base), "TUBE", base);
    withTextsAndMaterial(tube);
    withCompanion(tube, gasket);
    // A structure element stands in the class already, made with a create option.
    const auto preset = world.device(structureClass, "001");
    preset->SetCDevice(tube);
    world.setCreateOption(preset, 1);

    std::string groupId;
    const auto made = NewPipeSpecElement(preset, structureClass, false, true, groupId, false, preset);
    EXPECT_TRUE(same(made, preset));
    EXPECT_THAT(support::childNames(structureClass), ElementsAre("SelectorRoot", "001"));
    EXPECT_EQ(world.value(preset, "PDMS.SHOP"), "TRUE");
    EXPECT_EQ(world.value(preset, "PDMS.TEXT"), "=TValue(\"GD.TEXT\",\"\",0)");
    EXPECT_TRUE(same(preset->Spec("E3D.PCOMPlus1")->LinkObject(), gasket));
    EXPECT_THAT(leaveTexts("UpdatePDMSSpecComp"),
                ElementsAre("mPipeClass.GD.VFCD=10003 And CDevPC.CreateOption <> 0"));
}

TEST_F(PdmsUpdate, ACancelledChoiceDeletesTheElement)
{
    // The tube answers the shop question with a value no selector carries.
    world.attribute(tube, "PDMS.SHOP", "SITE");
    support::selector(world, tubes, "SHOP:TRUE", "TRUE", "", base);
    chooser->cancel();

    EXPECT_EQ(NewPipeClassElement(tube, pipeClass, false), nullptr);
    EXPECT_THAT(leaveTexts("UpdatePDMSSpecComp"), ElementsAre("CDevPC deleted"));
    EXPECT_THAT(leaveTexts("XAddToPipeClass"), ElementsAre("NewPipeSpecElement is deleted"));
    EXPECT_THAT(elementNames(), ElementsAre("SelectorRoot"));
}

TEST_F(PdmsUpdate, WithoutCatalogueOwnerNothingIsDone)
{
    const auto bare = world.device(pipeClass, "001");
    bare->SetCDevice(tube);
    std::string groupId;
    UpdatePDMSSpecComp(bare, pipeClass, false, groupId, false, nullptr);

    EXPECT_THAT(leaveTexts("UpdatePDMSSpecComp"), ElementsAre("CatalogOwner Is Nothing"));
    EXPECT_THAT(elementNames(), ElementsAre("SelectorRoot", "001"));
    EXPECT_EQ(bare->Spec("PDMS.State"), nullptr);
    EXPECT_EQ(bare->Spec("PDMS.Selector")->LinkObject(), nullptr);
    EXPECT_EQ(world.value(bare, "PDMS.SHOP"), "");
    EXPECT_EQ(groupId, "");
}

TEST_F(PdmsUpdate, AMissingChapterCardIsLookedForOnceAndReportedAndTheRestRuns)
{
    // The base object of the pipe classes has no card, the object above it has.
    const auto above = world.device(catalog, "CARDS", {{"E3D.X", ""}});
    const auto rootBase = world.device(catalog, "PCBASE");
    const auto classRoot = world.path(world.base(), "@40|PCLROOT|PIPECLASS");
    classRoot->SetCDevice(rootBase);
    asDevice(classRoot->Owner())->SetCDevice(above);
    world.setPipeClassRoot(classRoot);
    const auto withoutCard = world.pipeClass(classes, "PC-NOCARD", "10001", true);
    support::shopSelector(world, support::selectorRoot(world, withoutCard, base), "TUBE", base);
    withCompanion(tube, gasket);

    const auto made = NewPipeClassElement(tube, withoutCard, false);
    ASSERT_NE(made, nullptr);
    const auto& boxes = world.host().messageBoxes();
    ASSERT_EQ(boxes.size(), 3u);  // one for each element: shop, field and companion
    EXPECT_EQ(boxes.front().text, "Kapitelkarte E3D nicht gefunden");
    EXPECT_EQ(boxes.front().flags, 16);
    EXPECT_EQ(boxes.front().title, "TubrixDesigner: Add component to pipe spec");
    EXPECT_THAT(world.traceTexts("UpdatePDMSSpecComp"), Contains("WARNING: E3D not found"));
    // The later steps still ran: state column, questions, the pair and the companion.
    EXPECT_NE(made->Spec("PDMS.State"), nullptr);
    EXPECT_NE(made->Spec("PDMS.Selector")->LinkObject(), nullptr);
    EXPECT_EQ(world.value(made, "PDMS.SHOP"), "TRUE");
    EXPECT_THAT(support::childNames(withoutCard), ElementsAre("SelectorRoot", "001", "002", "003"));
}

TEST_F(PdmsUpdate, GenerateNameWritesNothing)
{
    const auto made = world.device(pipeClass, "001", {{"PDMS.GENNAME", "/PIPE-7"}});
    const auto before = platform::changeCount();
    GenerateName(made, "group");
    EXPECT_EQ(platform::changeCount(), before);
    EXPECT_EQ(made->Name(), "001");
    EXPECT_EQ(world.value(made, "PDMS.GENNAME"), "/PIPE-7");
    EXPECT_THAT(world.host().errors(), IsEmpty());
}

// ---- undo ----------------------------------------------------------------

TEST_F(PdmsUpdate, UndoTakesAWholeDropBackAndRedoMakesItAgain)
{
    // A valve finds no top selector: the walk makes one.
    const auto valve = world.device(catalog, "VA-1",
                                    {{"GD.VFCD", "10800"}, {"PIPE.VSTD", "VALV"}, {"PDMS.Selector", ""}, {"E3D.X", ""}});
    withLayout(valve);
    const auto drop = world.workset()->NewUndoState();
    world.workset()->SetCurrentUndoState(drop);
    for (const auto& component : {tube, valve}) NewPipeClassElement(component, pipeClass, false);
    world.workset()->SetCurrentUndoState(nullptr);

    const auto afterDrop = [&] {
        EXPECT_THAT(elementNames(), ElementsAre("SelectorRoot", "001", "002", "003"));
        EXPECT_EQ(shopOf("001"), "TRUE");
        EXPECT_EQ(shopOf("002"), "FALS");
        const auto valves = asDevice(root->Elements()->Item("VALV"));
        ASSERT_NE(valves, nullptr);
        EXPECT_TRUE(same(element("003")->Spec("PDMS.Selector")->LinkObject(), valves));
        EXPECT_NE(element("003")->Spec("PDMS.State"), nullptr);
    };
    afterDrop();
    const auto valves = root->Elements()->Item("VALV");

    drop->Undo();
    EXPECT_THAT(elementNames(), ElementsAre("SelectorRoot"));
    EXPECT_EQ(root->Elements()->Item("VALV"), nullptr);
    EXPECT_TRUE(valves->IsDeleted());
    // The catalogue keeps what it had: the walk wrote to the elements only.
    EXPECT_EQ(world.value(tube, "PDMS.SHOP"), "");

    drop->Redo();
    afterDrop();
    EXPECT_TRUE(same(root->Elements()->Item("VALV"), valves));
    EXPECT_THAT(world.host().errors(), IsEmpty());
}

}  // namespace
}  // namespace pipespec
