// Elements of a class for the outside design system: chapter cards, state
// column, questions, the shop and field pair of a tube, the group id, the
// attribute copies and the companion component, through the whole creation road.

#include "elements/AddToPipeClass.h"
#include "elements/RangeControl.h"
#include "platform/store/Database.h"
#include "support/Creation.h"
#include "support/SelectorTrees.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

namespace pipespec {
namespace {

using namespace addtopipeclass;
using ::testing::Contains;
using ::testing::ElementsAre;

class NoRange final : public IRangeControl {
public:
    void InitNDRange(const DeviceRef&, const DeviceRef&) override {}
};

// A class for the design system whose tubes are asked whether they are made
// in the shop; flanges and gaskets have a top selector without questions.
// The class is the catalogue owner here; its card names a companion that no
// element may take over.
class PdmsUpdate : public support::CreationTest {
protected:
    PdmsUpdate()
    {
        setSharedPCOMRange(std::make_shared<NoRange>());
        world.tableAt(world.base(), "@3D|00|PDMS");
        support::selector(world, root, "FLAN", "FLAN", "", base);
        support::selector(world, root, "GASK", "GASK", "", base);
        world.attribute(pipeClass, "E3D.PCOMPlus9", "");
    }

    DeviceRef classes = world.path(world.plant(), "@20|PIPECLASSES");
    DeviceRef pipeClass = world.pipeClass(classes, "PC-E3D", "10001", true);
    DeviceRef base = support::selectorBase(world);
    DeviceRef root = support::selectorRoot(world, pipeClass, base);
    DeviceRef tubes = support::shopSelector(world, root, "TUBE", base);
    DeviceRef tube = component("TUBE-1", "10600", "TUBE", {{"PDMS.SHOP", ""}});
    DeviceRef gasket = component("GA-1", "10700", "GASK");
    DeviceRef flange = component("FL-1", "10100", "FLAN");

    // A catalogue component with its code, VSTD and the chapters of the design
    // system, whose layout text the state column extends.
    DeviceRef component(const std::string& name, const std::string& code, const std::string& vstd,
                        support::Attributes more = {}) const
    {
        const auto made =
            world.device(catalog, name, {{"GD.VFCD", code}, {"PIPE.VSTD", vstd}, {"PDMS.Selector", ""}, {"E3D.X", ""}});
        for (const auto& [attribute, value] : more) world.attribute(made, attribute, value);
        made->Spec("PDMS")->SetControlProperties(
            "Cols:1;ColHorizontal:0;ColsTitles:VC11|;RowType:0;ColsSizes:0|800|;RowTitles:");
        return made;
    }
    // What the design system texts and material need: a linked source text
    // and a material link, with the attributes they are copied to.
    DeviceRef withTextsAndMaterial(const DeviceRef& of) const
    {
        world.attribute(of, "PDMS.TEXT", "");
        world.setLinkedCount(world.attribute(of, "GD.TEXT", "Rohr nahtlos"), 1);
        world.attribute(of, "E3D.SOURCE", "");
        world.attribute(of, "MATERIAL.TEXTLINK", "");
        const auto material = world.device(catalog, "P235GH");
        world.attribute(of, "E3D.MATXT", "")->SetLinkObject(material);
        return material;
    }
    void withCompanion(const DeviceRef& of, const DeviceRef& companion, const char* which = "E3D.PCOMPlus1") const
    {
        world.attribute(of, which, "")->SetLinkObject(companion);
    }

    std::string elements(const DeviceRef& of = nullptr) const
    {
        return support::join(support::childNames(of ? of : pipeClass));
    }
    DeviceRef element(const std::string& name) const { return asDevice(pipeClass->Devices()->Item(name)); }
    std::string shopOf(const std::string& name) const { return world.value(element(name), "PDMS.SHOP"); }
    std::string groupOf(const std::string& name) const { return element(name)->Spec("E3D")->XmlText(); }
    std::vector<std::string> leaveTexts(std::string_view function) const
    {
        return world.traceTexts(function, diagnostics::TraceKind::LeaveText);
    }
};

TEST_F(PdmsUpdate, ATubeIsDoubledIntoAShopAndAFieldElementOfOneGroup)
{
    const auto made = NewPipeClassElement(tube, pipeClass, false);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(world.reported(), "");
    EXPECT_EQ(elements(), "SelectorRoot 001 002");
    EXPECT_EQ(shopOf("001") + " " + shopOf("002"), "TRUE FALS");
    EXPECT_EQ(groupOf("001"), made->UniqueId());
    EXPECT_EQ(groupOf("002"), made->UniqueId());
    // The field element is made from the shop element, and tells of its own
    // way out; the caller keeps the shop element.
    EXPECT_TRUE(same(element("002")->CDevice(), tube));
    EXPECT_THAT(leaveTexts("XAddToPipeClass"), Contains("recursive call"));
    ASSERT_EQ(created().size(), 2u);
    EXPECT_TRUE(same(must(CreatedObjects(*world.workset())).Item(created()[0]), made));
    // Both walked to the leaf of the shop question and carry the state column.
    const auto leaf = tubes->Elements()->Item("SHOP");
    for (const auto* name : {"001", "002"}) {
        EXPECT_TRUE(same(element(name)->Spec("PDMS.Selector")->LinkObject(), leaf)) << name;
        EXPECT_NE(element(name)->Spec("PDMS.State"), nullptr) << name;
    }
    // The word tube counts in any case; the selector answer is compared
    // exactly, so the lower-case word needs a selector of its own.
    support::shopSelector(world, root, "tube", base);
    ASSERT_NE(NewPipeClassElement(component("TUBE-LC", "10600", "tube", {{"PDMS.SHOP", ""}}), pipeClass, false),
              nullptr);
    EXPECT_EQ(elements(), "SelectorRoot 001 002 003 004");
    EXPECT_EQ(shopOf("003") + " " + shopOf("004"), "TRUE FALS");
}

TEST_F(PdmsUpdate, AnInteractiveImportMakesNoFieldElementButCopiesAndTakesTheCompanion)
{
    const auto material = withTextsAndMaterial(tube);
    withCompanion(tube, gasket);
    const auto made = NewPipeClassElement(tube, pipeClass, true);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(world.reported(), "");
    EXPECT_EQ(elements(), "SelectorRoot 001 002");
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

TEST_F(PdmsUpdate, OnlyTheFirstCompanionBecomesAnElementAndTheAttributeNamesIt)
{
    withCompanion(flange, gasket);
    const auto unread = world.device(catalog, "GA-2", {{"GD.VFCD", "10700"}, {"PIPE.VSTD", "GASK"}});
    withCompanion(flange, unread, "E3D.PCOMPlus2");
    const auto made = NewPipeClassElement(flange, pipeClass, false);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(world.reported(), "");
    EXPECT_EQ(elements(), "SelectorRoot 001 002");
    EXPECT_TRUE(same(element("002")->CDevice(), gasket));
    EXPECT_TRUE(same(made->Spec("E3D.PCOMPlus1")->LinkObject(), element("002")));
    EXPECT_TRUE(same(made->Spec("E3D.PCOMPlus2")->LinkObject(), unread));
    EXPECT_EQ(groupOf("002"), made->UniqueId());
    EXPECT_EQ(created().size(), 2u);
}

TEST_F(PdmsUpdate, TheCompanionOfATubeIsMadeOnceInTheCascade)
{
    withCompanion(tube, gasket);
    const auto made = NewPipeClassElement(tube, pipeClass, false);
    ASSERT_NE(made, nullptr);
    EXPECT_EQ(elements(), "SelectorRoot 001 002 003");
    EXPECT_EQ(created().size(), 3u);
    // The field element takes the companion first; when the shop element asks
    // for it again the cascade has it already, and the shop element's link is
    // set to that empty answer. Kept on purpose: the link names what the
    // creation gave back.
    EXPECT_TRUE(same(element("003")->CDevice(), gasket));
    EXPECT_TRUE(same(element("002")->Spec("E3D.PCOMPlus1")->LinkObject(), element("003")));
    EXPECT_EQ(made->Spec("E3D.PCOMPlus1")->LinkObject(), nullptr);
    const auto added = "adding " + gasket->SystemFullName() + " to m_CreatedObjects";
    EXPECT_EQ(std::ranges::count(world.traceTexts("XAddToPipeClass"), added), 1);
    EXPECT_THAT(leaveTexts("XAddToPipeClass"), Contains("already added"));
    for (const auto* name : {"001", "002", "003"}) EXPECT_EQ(groupOf(name), made->UniqueId()) << name;
}

TEST_F(PdmsUpdate, AStructureElementOfAStructureClassStopsBeforeFieldElementAndCompanion)
{
    const auto structureClass = world.pipeClass(classes, "PC-STRUCT", "10003", true);
    world.attribute(structureClass, "E3D.PCOMPlus9", "");
    support::shopSelector(world, support::selectorRoot(world, structureClass, base), "TUBE", base);
    withTextsAndMaterial(tube);
    withCompanion(tube, gasket);
    // A structure element stands in the class already, made with a create option.
    const auto preset = world.device(structureClass, "001", {}, tube);
    world.setCreateOption(preset, 1);
    std::string groupId;
    EXPECT_TRUE(same(NewPipeSpecElement(preset, structureClass, false, true, groupId, false, preset), preset));
    EXPECT_EQ(elements(structureClass), "SelectorRoot 001");
    EXPECT_EQ(world.value(preset, "PDMS.SHOP"), "TRUE");
    EXPECT_EQ(world.value(preset, "PDMS.TEXT"), "=TValue(\"GD.TEXT\",\"\",0)");
    EXPECT_TRUE(same(preset->Spec("E3D.PCOMPlus1")->LinkObject(), gasket));
    EXPECT_THAT(leaveTexts("UpdatePDMSSpecComp"), ElementsAre("mPipeClass.GD.VFCD=10003 And CDevPC.CreateOption <> 0"));
}

TEST_F(PdmsUpdate, WithoutCatalogueOwnerNothingIsDoneAndACancelledChoiceDeletesTheElement)
{
    const auto bare = world.device(pipeClass, "001", {}, tube);
    std::string groupId;
    UpdatePDMSSpecComp(bare, pipeClass, false, groupId, false, nullptr);
    EXPECT_THAT(leaveTexts("UpdatePDMSSpecComp"), ElementsAre("CatalogOwner Is Nothing"));
    EXPECT_EQ(bare->Spec("PDMS.State"), nullptr);
    EXPECT_EQ(bare->Spec("PDMS.Selector")->LinkObject(), nullptr);
    EXPECT_EQ(world.value(bare, "PDMS.SHOP") + groupId, "");
    // The tube answers the shop question with a value no selector carries.
    world.attribute(tube, "PDMS.SHOP", "SITE");
    support::selector(world, tubes, "SHOP:TRUE", "TRUE", "", base);
    chooser()->cancel();
    world.tracer().clear();
    EXPECT_EQ(NewPipeClassElement(tube, pipeClass, false), nullptr);
    EXPECT_THAT(leaveTexts("UpdatePDMSSpecComp"), ElementsAre("CDevPC deleted"));
    EXPECT_THAT(leaveTexts("XAddToPipeClass"), ElementsAre("NewPipeSpecElement is deleted"));
    EXPECT_EQ(elements(), "SelectorRoot 001");
    // Generating the name writes nothing.
    const auto named = world.device(pipeClass, "002", {{"PDMS.GENNAME", "/PIPE-7"}});
    const auto before = platform::changeCount();
    GenerateName(named, "group");
    EXPECT_EQ(platform::changeCount(), before);
    EXPECT_EQ(named->Name() + " " + world.value(named, "PDMS.GENNAME"), "002 /PIPE-7");
    EXPECT_EQ(world.reported(), "");
}

TEST_F(PdmsUpdate, AMissingChapterCardIsLookedForOnceAndReportedAndTheRestRuns)
{
    // The base object of the pipe classes has no card, the object above it has.
    const auto above = world.device(catalog, "CARDS", {{"E3D.X", ""}});
    const auto classRoot = world.path(world.base(), "@40|PCLROOT|PIPECLASS");
    classRoot->SetCDevice(world.device(catalog, "PCBASE"));
    asDevice(classRoot->Owner())->SetCDevice(above);
    world.setPipeClassRoot(classRoot);
    const auto withoutCard = world.pipeClass(classes, "PC-NOCARD", "10001", true);
    support::shopSelector(world, support::selectorRoot(world, withoutCard, base), "TUBE", base);
    withCompanion(tube, gasket);
    const auto made = NewPipeClassElement(tube, withoutCard, false);
    ASSERT_NE(made, nullptr);
    const auto& boxes = world.host().messageBoxes();
    ASSERT_EQ(boxes.size(), 3u);  // one for each element: shop, field and companion
    EXPECT_EQ(boxes.front(),
              (diagnostics::MessageBoxRecord{"Kapitelkarte E3D nicht gefunden", 16,
                                             "TubrixDesigner: Add component to pipe spec", mb::AnswerOk}));
    EXPECT_THAT(world.traceTexts("UpdatePDMSSpecComp"), Contains("WARNING: E3D not found"));
    // The later steps still ran: state column, questions, the pair and the companion.
    EXPECT_NE(made->Spec("PDMS.State"), nullptr);
    EXPECT_NE(made->Spec("PDMS.Selector")->LinkObject(), nullptr);
    EXPECT_EQ(world.value(made, "PDMS.SHOP"), "TRUE");
    EXPECT_EQ(elements(withoutCard), "SelectorRoot 001 002 003");
}

TEST_F(PdmsUpdate, UndoTakesAWholeDropBackAndRedoMakesItAgain)
{
    // A valve finds no top selector: the walk makes one.
    const auto valve = component("VA-1", "10800", "VALV");
    const auto drop = world.workset()->NewUndoState();
    world.workset()->SetCurrentUndoState(drop);
    for (const auto& source : {tube, valve}) NewPipeClassElement(source, pipeClass, false);
    world.workset()->SetCurrentUndoState(nullptr);
    const auto afterDrop = [&] {
        EXPECT_EQ(elements(), "SelectorRoot 001 002 003");
        EXPECT_EQ(shopOf("001") + " " + shopOf("002"), "TRUE FALS");
        const auto valves = asDevice(root->Elements()->Item("VALV"));
        ASSERT_NE(valves, nullptr);
        EXPECT_TRUE(same(element("003")->Spec("PDMS.Selector")->LinkObject(), valves));
        EXPECT_NE(element("003")->Spec("PDMS.State"), nullptr);
    };
    afterDrop();
    const auto valves = root->Elements()->Item("VALV");
    drop->Undo();
    EXPECT_EQ(elements(), "SelectorRoot");
    EXPECT_EQ(root->Elements()->Item("VALV"), nullptr);
    EXPECT_TRUE(valves->IsDeleted());
    // The catalogue keeps what it had: the walk wrote to the elements only.
    EXPECT_EQ(world.value(tube, "PDMS.SHOP"), "");
    drop->Redo();
    afterDrop();
    EXPECT_TRUE(same(root->Elements()->Item("VALV"), valves));
    EXPECT_EQ(world.reported(), "");
}

}  // namespace
}  // namespace pipespec
