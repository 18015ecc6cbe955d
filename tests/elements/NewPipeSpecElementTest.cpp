// The one road by which elements come into being: validity, the cascade
// guard, the duplicate question, the device, its name-range chapter, bounds
// and range, and the cache entry of the pipe class.

#include "diagnostics/Translate.h"
#include "objectmodel/Options.h"
#include "support/Creation.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pipespec {
namespace {

using addtopipeclass::NewPipeClassElement;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Pair;

class RecordingRangeControl final : public addtopipeclass::IRangeControl {
public:
    std::vector<std::pair<DeviceRef, DeviceRef>> calls;
    void InitNDRange(const DeviceRef& element, const DeviceRef& pipeClass) override
    {
        calls.emplace_back(element, pipeClass);
    }
};

class NewElement : public support::CreationTest {
protected:
    DeviceRef pipeClass = world.pipeClass(world.root(world.plant(), "@20"), "PC-A1", "10000");
    DeviceRef flange = world.device(catalog, "FL-WN", {{"GD.VFCD", "10100"}});
    DeviceRef flangePN16 = world.device(catalog, "FL-WN-PN16", {}, flange);

    DeviceRef create(const DeviceRef& source, bool recursive, bool reset, const DeviceRef& preset = nullptr) const
    {
        std::string groupId;
        return addtopipeclass::NewPipeSpecElement(source, pipeClass, recursive, reset, groupId, false, preset);
    }
    std::shared_ptr<RecordingRangeControl> recordRanges() const
    {
        auto recorder = std::make_shared<RecordingRangeControl>();
        addtopipeclass::setSharedPCOMRange(recorder);
        return recorder;
    }
    void inEnglish() const
    {
        world.host().setLanguage(diagnostics::LanguageTable::load(diagnostics::LanguageTable::shippedPath("en")));
    }
    std::vector<std::string> trace() const { return world.trace("XAddToPipeClass"); }
    VariantMap& cache() const { return must(world.workset()->Globals()->getOption(option::PipeClassCache).map()); }
    int elementCount() const { return pipeClass->Devices()->Count(); }
};

TEST_F(NewElement, ElementStandsOnTheRootOfItsSourceWithChapterRangeAndNoCachedEntry)
{
    world.list(pipeClass, "NR.DNLIST", {"10", "15", "50", "600", "800"});
    cache().Add("PC-A1", Variant("stale"));
    cache().Add("PC-B2", Variant("kept"));
    const auto element = NewPipeClassElement(flangePN16, pipeClass, false);
    ASSERT_NE(element, nullptr);
    EXPECT_EQ(element->Name(), "001");
    EXPECT_EQ(element->Owner(), pipeClass);
    EXPECT_EQ(element->CDevice(), flange);
    EXPECT_THAT(created(), ElementsAre("PLANT:@20|PC-A1|001"));
    // Without a catalogue owner the chapter follows the pipe class's.
    const auto chapter = element->Spec("NR");
    EXPECT_FALSE(chapter->SystemTemporary());
    EXPECT_EQ(chapter->InheritedChapter(), pipeClass->Spec("NR"));
    EXPECT_EQ(world.value(element, "NR.DNFROM"), "15");
    EXPECT_THAT(world.traceTexts("CalcMinMaxSpec"), ElementsAre("SpecName = DNFROM", "SpecName = DNTO"));
    EXPECT_EQ(world.listed(element, "NR.DNLIST"), "15 50 600");
    EXPECT_FALSE(element->Spec("NR.DNLIST")->SystemTemporary());
    EXPECT_THAT(cache().Keys(), ElementsAre("PC-B2"));
    EXPECT_THAT(trace(),
                ElementsAre("enter", "CDevObject = BASE:@40|FL-WN-PN16", "mPipeClass = PLANT:@20|PC-A1",
                            "NewPipeSpecElement = Nothing", "RecursiveCall = False", "ResetCreated = True",
                            "InteractiveImportObject = False", "resetting m_CreatedObjects",
                            "resetting m_CreatedPipeSpecElem", "adding BASE:@40|FL-WN-PN16 to m_CreatedObjects",
                            "adding PLANT:@20|PC-A1|001 to m_CreatedPipeSpecElem", "CatalogOwner = PLANT:@20|PC-A1",
                            "CatalogNameRangeChapter = PLANT:@20|PC-A1#NR", "NameRangeChapter = PLANT:@20|PC-A1|001#NR",
                            "NameRangeChapter.SystemTemporary = False", "leave"));
    EXPECT_EQ(NewPipeClassElement(flange, pipeClass, false)->Name(), "002");
    EXPECT_EQ(world.reported(), "");
}

TEST_F(NewElement, TheRangeControlOffersTheClassDiametersWithinTheBoundsAndKeepsARangeOnceMade)
{
    addtopipeclass::PCOMRangeControl control;
    const auto element = world.device(pipeClass, "001", {{"NR.DNFROM", "20"}, {"NR.DNTO", ""}});
    control.InitNDRange(element, pipeClass);
    EXPECT_EQ(world.listed(element, "NR.DNLIST"), "") << "nothing to offer yet";
    world.list(pipeClass, "NR.DNLIST", {"10", "15", "25", "n/a", "600", "800"});
    control.InitNDRange(element, pipeClass);
    EXPECT_EQ(world.listed(element, "NR.DNLIST"), "25 600 800") << "an empty upper bound leaves that side open";
    world.attribute(element, "NR.DNTO", "100");
    control.InitNDRange(element, pipeClass);
    EXPECT_EQ(world.listed(element, "NR.DNLIST"), "25 600 800");
    // Without a name-range chapter there is nowhere to keep a range.
    const auto bare = world.device(pipeClass, "002");
    control.InitNDRange(bare, pipeClass);
    EXPECT_EQ(bare->Spec("NR"), nullptr);
}

TEST_F(NewElement, OneCascadeTurnsEachSourceIntoOneElement)
{
    // The maps are made even by a call that does not ask for a new cascade.
    ASSERT_NE(create(flange, false, false), nullptr);
    EXPECT_THAT(trace(), Contains("resetting m_CreatedObjects"));
    EXPECT_EQ(create(flange, false, false), nullptr);
    EXPECT_EQ(trace().back(), "leave: already added");
    ASSERT_NE(create(world.device(catalog, "GASKET", {{"GD.VFCD", "10500"}}), false, false), nullptr);
    EXPECT_THAT(created(), ElementsAre("PLANT:@20|PC-A1|001", "PLANT:@20|PC-A1|002"));
    // A new cascade forgets both maps.
    ASSERT_NE(create(flange, false, true), nullptr);
    EXPECT_THAT(created(), ElementsAre("PLANT:@20|PC-A1|003"));
    EXPECT_EQ(elementCount(), 3);
}

TEST_F(NewElement, AnExistingElementOfTheSameRootIsQuestioned)
{
    ASSERT_NE(NewPipeClassElement(flange, pipeClass, false), nullptr);
    ASSERT_NE(NewPipeClassElement(flangePN16, pipeClass, false), nullptr);  // yes, by default
    world.host().clear();
    const auto refused = world.device(catalog, "FL-WN-PN40", {}, flange);
    world.host().scriptAnswer(mb::AnswerNo);
    EXPECT_EQ(NewPipeClassElement(refused, pipeClass, false), nullptr);
    EXPECT_EQ(elementCount(), 2);
    EXPECT_EQ(trace().back(), "leave: no");
    // Only the first element of that root is named.
    EXPECT_THAT(world.host().messageBoxes(),
                ElementsAre(diagnostics::MessageBoxRecord{
                    "Mindestens ein Rohrklassenelement mit ausgewähltem Stammobject existiert bereits.\r\n"
                    "\tPLANT:@20|PC-A1|001\r\n\r\n"
                    "Wollen Sie das Objekt trozdem hinzufügen?",
                    52, "Neue Rohrklassenelement", mb::AnswerNo}));
    // The refused source stays guarded until the next cascade.
    EXPECT_EQ(create(refused, false, false), nullptr);
    EXPECT_EQ(trace().back(), "leave: already added");
    // Interactive imports and recursive calls do not ask.
    world.host().clear();
    world.host().setYesNoDefault(mb::AnswerNo);
    EXPECT_NE(NewPipeClassElement(world.device(catalog, "FL-WN-PN63", {}, flange), pipeClass, true), nullptr);
    EXPECT_NE(create(world.device(catalog, "FL-WN-PN100", {}, flange), true, false), nullptr);
    EXPECT_THAT(world.host().messageBoxes(), IsEmpty());
    EXPECT_EQ(elementCount(), 4);
}

TEST_F(NewElement, RefusalIsShownOnlyToAnInteractiveImport)
{
    world.setFolder(flange);
    EXPECT_EQ(NewPipeClassElement(flange, pipeClass, false), nullptr);
    EXPECT_EQ(trace().back(), "leave: not valid");
    EXPECT_THAT(world.host().messageBoxes(), IsEmpty());
    inEnglish();
    EXPECT_EQ(NewPipeClassElement(flange, pipeClass, true), nullptr);
    EXPECT_THAT(world.host().messageBoxes(), ElementsAre(diagnostics::MessageBoxRecord{
                                                 "Object may not be used as a pipe-spec element BASE:@40|FL-WN", 48,
                                                 "Tubrix Designer", mb::AnswerOk}));
    // Nothing at all to add: refused before the cascade is touched.
    EXPECT_EQ(create(nullptr, false, true), nullptr);
    EXPECT_EQ(trace().back(), "leave: not valid");
    EXPECT_EQ(addtopipeclass::CreatedObjects(*world.workset()), nullptr);
    EXPECT_EQ(elementCount(), 0);
    EXPECT_EQ(world.reported(), "");
}

TEST_F(NewElement, ClassWithoutNameRangeChapterIsToldAndStillGetsElementAndRange)
{
    const auto bare = world.pipeClass(world.root(world.plant(), "@20"), "PC-BARE", "10000", false, false);
    const auto ranges = recordRanges();
    inEnglish();
    const auto element = NewPipeClassElement(flange, bare, false);
    ASSERT_NE(element, nullptr);
    EXPECT_EQ(element->Spec("NR"), nullptr);
    EXPECT_THAT(world.host().messageBoxes(),
                ElementsAre(diagnostics::MessageBoxRecord{"Spec-Chapter NR not found", 0, "Error in pipe-class object",
                                                          mb::AnswerOk}));
    EXPECT_THAT(ranges->calls, ElementsAre(Pair(element, bare)));
    EXPECT_EQ(trace().back(), "leave");
}

TEST_F(NewElement, PresetElementKeepsItsPlaceAndItsBaseObjectCountsAsSource)
{
    ASSERT_NE(NewPipeClassElement(flange, pipeClass, false), nullptr);
    world.host().setYesNoDefault(mb::AnswerNo);
    // What the platform placed under the class, passed as source and as preset.
    const auto pasted = world.device(pipeClass, "PASTED", {}, flangePN16);
    EXPECT_EQ(create(pasted, false, true, pasted), pasted);
    EXPECT_EQ(elementCount(), 2);
    EXPECT_THAT(world.host().messageBoxes(), IsEmpty());
    EXPECT_EQ(pasted->CDevice(), flangePN16);
    EXPECT_FALSE(pasted->Spec("NR")->SystemTemporary());
    EXPECT_THAT(trace(), Contains("adding BASE:@40|FL-WN-PN16 to m_CreatedObjects"));
    EXPECT_THAT(created(), ElementsAre("PLANT:@20|PC-A1|PASTED"));
    // Without a source the preset element still gets its chapter...
    const auto placed = world.device(pipeClass, "PLACED");
    EXPECT_EQ(create(nullptr, false, true, placed), placed);
    EXPECT_FALSE(placed->Spec("NR")->SystemTemporary());
    // ...but not without a class.
    std::string groupId;
    EXPECT_EQ(addtopipeclass::NewPipeSpecElement(nullptr, nullptr, false, true, groupId, false, placed), nullptr);
    EXPECT_EQ(trace().back(), "leave: mPipeClass empty");
    EXPECT_EQ(world.reported(), "");
}

TEST_F(NewElement, PipeClassAsSourceBecomesAnElementWithoutChapterOrRange)
{
    const auto other = world.pipeClass(world.root(world.plant(), "@20"), "PC-B2", "10001");
    world.device(other, "001", {}, flange);
    const auto ranges = recordRanges();
    const auto element = NewPipeClassElement(other, pipeClass, false);
    ASSERT_NE(element, nullptr);
    EXPECT_EQ(element->CDevice(), other);
    EXPECT_EQ(trace().back(), "leave: cDevObject is a pipe class");
    EXPECT_TRUE(element->Spec("NR")->SystemTemporary());
    EXPECT_THAT(ranges->calls, IsEmpty());
    EXPECT_THAT(created(), ElementsAre(element->SystemFullName()));
    // Such an element counts by its own base object, not by the top of its chain.
    const auto templ = world.pipeClass(catalog, "PC-TEMPLATE", "10001");
    world.device(templ, "001", {}, flange);
    other->SetCDevice(templ);
    world.host().setYesNoDefault(mb::AnswerNo);
    EXPECT_NE(NewPipeClassElement(templ, pipeClass, false), nullptr);
    EXPECT_THAT(world.host().messageBoxes(), IsEmpty());
    EXPECT_EQ(NewPipeClassElement(other, pipeClass, false), nullptr);
    EXPECT_EQ(world.host().messageBoxes().size(), 1u);
}

TEST_F(NewElement, ChapterIsCopiedFromACatalogueOwnerInAnotherProjectAndInheritedWithinOne)
{
    const auto pcom = world.path(world.base(), "@40|@PCOM|PCOM");
    for (const auto& name : {"NR.DNFROM", "NR.DNTO"}) world.attribute(pcom, name, "");
    world.attribute(pcom, "NR.REMARK", "catalogue");
    world.setPipeClassRoot(world.path(world.base(), "@40|PIPECLASSES"));
    const auto copied = NewPipeClassElement(flange, pipeClass, false);
    ASSERT_NE(copied, nullptr);
    EXPECT_EQ(copied->Spec("NR")->InheritedChapter(), nullptr);
    EXPECT_EQ(copied->Spec("NR")->InheritMode(), "@C");
    EXPECT_EQ(world.value(copied, "NR.REMARK") + " " + world.value(copied, "NR.DNFROM") + ".." +
                  world.value(copied, "NR.DNTO"),
              "catalogue 15..600");
    EXPECT_THAT(trace(), Contains("CatalogOwner = BASE:@40|@PCOM|PCOM"));
    const auto plantOwner = world.path(world.plant(), "@40|@PCOM|PCOM");
    for (const auto& name : {"NR.DNFROM", "NR.DNTO"}) world.attribute(plantOwner, name, "");
    world.setPipeClassRoot(world.path(world.plant(), "@40|PIPECLASSES"));
    const auto gasket = world.device(catalog, "GASKET", {{"GD.VFCD", "10500"}});
    const auto inherited = NewPipeClassElement(gasket, pipeClass, false);
    ASSERT_NE(inherited, nullptr);
    EXPECT_EQ(inherited->Spec("NR")->InheritedChapter(), plantOwner->Spec("NR"));
    EXPECT_FALSE(inherited->Spec("NR.DNFROM")->SystemTemporary());
    EXPECT_EQ(world.value(inherited, "NR.DNFROM") + "/" + world.value(plantOwner, "NR.DNFROM"), "15/");
    // A chapter the element inherits from its component is stored as it is.
    world.attribute(gasket, "NR.DNFROM", "50");
    const auto own = NewPipeClassElement(world.device(catalog, "GASKET-2", {}, gasket), pipeClass, false);
    ASSERT_NE(own, nullptr);
    EXPECT_EQ(own->Spec("NR")->InheritedChapter(), nullptr);
    EXPECT_EQ(world.value(own, "NR.DNFROM"), "50");
    EXPECT_EQ(world.reported(), "");
}

TEST_F(NewElement, FailureAfterTheDeviceLeavesTheElementInPlaceAndInTheMaps)
{
    // A catalogue owner without the chapter: the element has no source to follow.
    world.path(world.base(), "@40|@PCOM|PCOM");
    world.setPipeClassRoot(world.path(world.base(), "@40|PIPECLASSES"));
    cache().Add("PC-A1", Variant("stale"));
    EXPECT_EQ(NewPipeClassElement(flange, pipeClass, false), nullptr);
    EXPECT_EQ(elementCount(), 1);
    EXPECT_THAT(created(), ElementsAre("PLANT:@20|PC-A1|001"));
    EXPECT_THAT(cache().Keys(), ElementsAre("PC-A1"));
    EXPECT_EQ(world.reported(), "AddToPipeClass");
    EXPECT_EQ(world.host().errors()[0].cls, "QuorlPipeSpecComp.AddToPipeClass");
    EXPECT_NE(trace().back(), "leave");
}

}  // namespace
}  // namespace pipespec
