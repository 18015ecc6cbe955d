// The walk of a component down its selector chain and back up: the top
// selector found or made, answers by key, the engineer's choice, the link to
// the leaf, and the question attributes collected on the way up.

#include "selectors/ChooseSelector.h"
#include "selectors/SciptCallLib.h"
#include "selectors/Selectors.h"
#include "support/SelectorTrees.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pipespec {
namespace {

using namespace addtopipeclass;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class QuestionWalk : public ::testing::Test {
protected:
    std::shared_ptr<ScriptedChooseSelector> view = std::make_shared<ScriptedChooseSelector>();
    diagnostics::ScopedService<IChooseSelectorView> viewInstalled{setChooseSelectorView, view};

    struct Outcome {
        CollectionRef questionSpecs;
        SpecMap boreSpecs;
        DeviceRef top;
        SpecRef shop;
        DeviceRef leaf;
    };
    Outcome walk(const DeviceRef& pipe, const DeviceRef& component, bool deleteOnCancel = false) const
    {
        Outcome out;
        SetQuestion(pipe, component, out.questionSpecs, out.boreSpecs, out.top, out.shop, out.leaf, deleteOnCancel);
        return out;
    }
    static std::vector<std::string> nestedNames(const CollectionRef& specs)
    {
        std::vector<std::string> names;
        for (int i = 1; i <= specs->Count(); ++i) names.push_back(asSpec(specs->Item(i))->NestedName());
        return names;
    }

    support::World world;
    DeviceRef classes = world.path(world.plant(), "@20|PIPECLASSES");
    DeviceRef pipeClass = world.pipeClass(classes, "PC", "10000", true);
    DeviceRef base = support::selectorBase(world);
    DeviceRef root = support::selectorRoot(world, pipeClass, base);
    // FLAN asks the flange type; WN then one diameter selector, BL nothing more.
    DeviceRef flan = support::selector(world, root, "FLAN", "FLAN", "PIPE.FTYPE", base);
    DeviceRef wn = support::selector(world, flan, "FTYPE:WN", "WN", "CONN.DN1", base);
    DeviceRef bl = support::selector(world, flan, "FTYPE:BL", "BL", "", base);
    DeviceRef dn1 = support::selector(world, wn, "DN1", "", "", base);
};

TEST_F(QuestionWalk, LeavesEarlyWithItsReasonInTheTrace)
{
    SciptCallLib script;
    const auto none = script.ReadQuestions(nullptr, pipeClass);
    ASSERT_NE(none, nullptr);
    EXPECT_EQ(none->Count(), 0);
    const auto component = world.device(pipeClass, "E1");
    walk(nullptr, component);
    walk(pipeClass, component);
    EXPECT_THAT(world.traceLines("SetQuestion"),
                ElementsAre("QuorlPipeSpecComp.AddToPipeClass SetQuestion: enter",
                            "QuorlPipeSpecComp.AddToPipeClass SetQuestion: leave: CDevPC Is Nothing",
                            "QuorlPipeSpecComp.AddToPipeClass SetQuestion: enter",
                            "QuorlPipeSpecComp.AddToPipeClass SetQuestion: leave: CDevPipeClass Is Nothing",
                            "QuorlPipeSpecComp.AddToPipeClass SetQuestion: enter",
                            "QuorlPipeSpecComp.AddToPipeClass SetQuestion: leave: VFCDValue = vbNullString"));
    script.EditSelectorTree(component);
    EXPECT_THAT(world.host().errors(), IsEmpty());
}

TEST_F(QuestionWalk, ComponentFollowsItsAnswersToTheLeafAndCollectsItsQuestionsLeafFirst)
{
    const auto component = world.device(pipeClass, "E1",
                                        {{"PIPE.VSTD", "FLAN"}, {"PIPE.FTYPE", "WN"}, {"CONN.DN1", "100"},
                                         {"PDMS.Selector", ""}});
    const auto out = walk(pipeClass, component);
    EXPECT_EQ(out.top, flan);
    EXPECT_EQ(out.leaf, dn1);
    EXPECT_EQ(component->Spec("PDMS.Selector")->LinkObject(), dn1);
    EXPECT_THAT(nestedNames(out.questionSpecs), ElementsAre("CONN.DN1", "PIPE.FTYPE"));
    EXPECT_EQ(component->Spec("PIPE.FTYPE")->Description(), " (in spec)");
    EXPECT_EQ(component->Spec("CONN.DN1")->AnswerMode(), -9999);
    EXPECT_THAT(view->shown(), IsEmpty());
    EXPECT_THAT(world.host().errors(), IsEmpty());

    // The marker is added once, whatever its case.
    component->Spec("PIPE.FTYPE")->SetDescription("Flange IN SPEC type");
    walk(pipeClass, component);
    EXPECT_EQ(component->Spec("PIPE.FTYPE")->Description(), "Flange IN SPEC type");
}

TEST_F(QuestionWalk, SingleChildIsFollowedWithoutTestAndAWrongNameIsRenamed)
{
    const auto other = support::selector(world, root, "TUBE", "TUBE", "PIPE.KIND", base);
    const auto only = support::selector(world, other, "SOMETHING", "", "", base);
    const auto component = world.device(pipeClass, "E1", {{"PIPE.VSTD", "TUBE"}, {"PIPE.KIND", "other"}, {"PDMS.Selector", ""}});
    const auto out = walk(pipeClass, component);
    EXPECT_EQ(out.leaf, only);
    EXPECT_EQ(only->Name(), "KIND");
    EXPECT_EQ(only->Description(), "KIND");
}

TEST_F(QuestionWalk, UnansweredQuestionIsPutToTheEngineerAndTheChoiceIsTakenOver)
{
    const auto component = world.device(pipeClass, "E1", {{"PIPE.VSTD", "FLAN"}, {"PDMS.Selector", ""}});
    view->choose("BL");
    const auto out = walk(pipeClass, component);
    EXPECT_EQ(out.leaf, bl);
    ASSERT_EQ(view->shown().size(), 1u);
    EXPECT_EQ(view->shown()[0].selector, flan);
    EXPECT_EQ(world.value(component, "PIPE.FTYPE"), "BL") << "made from the chapter's model, then answered";
    EXPECT_EQ(component->Spec("PIPE.FTYPE")->Description(), "FTYPE (in spec)");
    EXPECT_EQ(component->Spec("PIPE.FTYPE")->ControlType(), "QuorlSUIEdit.SUIEdit");

    // Cancelled after the answer led nowhere: the component is deleted only when asked to.
    world.attribute(component, "PIPE.FTYPE", "XX");
    view->cancel();
    walk(pipeClass, component);
    EXPECT_FALSE(component->IsDeleted());
    view->cancel();
    walk(pipeClass, component, true);
    EXPECT_TRUE(component->IsDeleted());
    EXPECT_THAT(world.traceLines("SetQuestion"),
                Contains("QuorlPipeSpecComp.AddToPipeClass SetQuestion: leave: (1) TopSelector Is Nothing"));
}

TEST_F(QuestionWalk, CancelWhenTheComponentCannotAnswerDeletesItEvenWithoutDeleteOnCancel)
{
    const auto valve = support::selector(world, root, "VALV", "VALV", "GD.KIND", base);
    support::selector(world, valve, "KIND:A", "", "", base);
    support::selector(world, valve, "KIND:B", "", "", base);
    const auto component = world.device(pipeClass, "E1", {{"PIPE.VSTD", "VALV"}});
    view->cancel();
    walk(pipeClass, component, false);
    EXPECT_TRUE(component->IsDeleted());
    EXPECT_THAT(world.traceLines("SetQuestion"),
                Contains("QuorlPipeSpecComp.AddToPipeClass SetQuestion: leave: (2) TopSelector Is Nothing"));
}

TEST_F(QuestionWalk, RangeQuestionTakesTheValueAsBothEndsOnlyOnTheChange)
{
    world.attribute(dn1, "Sele.Type", "0");
    const auto component = world.device(pipeClass, "E1",
                                        {{"PIPE.VSTD", "FLAN"}, {"PIPE.FTYPE", "WN"}, {"CONN.DN1", "100"},
                                         {"PDMS.Selector", ""}});
    component->Spec("CONN.DN1")->SetValueType("C");
    walk(pipeClass, component);
    const auto dn = component->Spec("CONN.DN1");
    EXPECT_EQ(dn->AnswerMode(), 2);
    EXPECT_EQ(dn->GetXValue(0), "100");
    EXPECT_EQ(dn->GetXValue(1), "100");
    EXPECT_EQ(dn->ValueType(), "A");

    dn->SetValue("150");
    walk(pipeClass, component);
    EXPECT_EQ(dn->GetXValue(1), "100") << "a later value leaves the range as it is";

    // Leaving the range: back to a single answer, the X values stay behind.
    world.attribute(dn1, "Sele.Type", "1");
    walk(pipeClass, component);
    EXPECT_EQ(dn->AnswerMode(), -9999);
    EXPECT_EQ(dn->GetXValue(0), "100");
}

TEST_F(QuestionWalk, StoredRangePairCountsOnlyWithTheDoubledMaxName)
{
    world.attribute(dn1, "Sele.Type", "0");
    const auto paired = world.device(pipeClass, "E1",
                                     {{"PIPE.VSTD", "FLAN"}, {"PIPE.FTYPE", "WN"}, {"CONN.MINDN1", "50"},
                                      {"CONN.MAXDN1", "100"}, {"PDMS.Selector", ""}});
    EXPECT_THAT(nestedNames(walk(pipeClass, paired).questionSpecs), ElementsAre("PIPE.FTYPE"));

    const auto doubled = world.device(pipeClass, "E2",
                                      {{"PIPE.VSTD", "FLAN"}, {"PIPE.FTYPE", "WN"}, {"CONN.MINDN1", "50"},
                                       {"CONN.MAXMINDN1", "100"}, {"PDMS.Selector", ""}});
    EXPECT_THAT(nestedNames(walk(pipeClass, doubled).questionSpecs), ElementsAre("CONN.MINDN1", "PIPE.FTYPE"));
}

TEST_F(QuestionWalk, BoreQuestionsAnswerByConnectorAndKeepTheLastAttributeWhenNotNumeric)
{
    world.attribute(wn, "Sele.Question", "PBOR2");
    world.attribute(dn1, "Sele.Question", "PBOR");
    const auto table = world.table(world.base(), "DN", {"50", "100"});
    const auto component = world.device(pipeClass, "E1",
                                        {{"PIPE.VSTD", "FLAN"}, {"PIPE.FTYPE", "WN"}, {"CONN.DN1", "100"},
                                         {"CONN.OUTLET", "50"}, {"PDMS.Selector", ""}});
    component->Spec("CONN.DN1")->SetStandardTable(table);
    component->Spec("CONN.OUTLET")->SetStandardTable(table);
    const auto out = walk(pipeClass, component);
    // "PBOR" ends in a letter: the attribute of the selector before is added once more.
    EXPECT_THAT(nestedNames(out.questionSpecs), ElementsAre("CONN.OUTLET", "PIPE.FTYPE"));
    EXPECT_THAT(out.boreSpecs.Keys(), ElementsAre("PBOR2"));
    EXPECT_EQ(out.boreSpecs.Item("PBOR2"), component->Spec("CONN.OUTLET"));
}

TEST_F(QuestionWalk, ClassWithoutPdmsChapterMakesTopSelectorFromTheGenericTypeOfTheCode)
{
    const auto plain = world.pipeClass(classes, "PLAIN", "10000", false);
    const auto plainRoot = support::selectorRoot(world, plain, base);
    const auto menu = world.path(world.base(), "@3D|@Menu");
    world.device(menu, "101XX")->SetDescription("FLAN");
    const auto component = world.device(plain, "E1", {{"GD.VFCD", "10100"}, {"SEL.X", ""}});

    const auto out = walk(plain, component);
    ASSERT_NE(out.top, nullptr);
    EXPECT_EQ(out.top->Name(), "FLAN");
    EXPECT_EQ(world.value(out.top, "Sele.Answer"), "FLAN");
    EXPECT_EQ(world.value(out.top, "Sele.Question"), "GD.GTYPE");
    EXPECT_EQ(world.value(out.top, "Sele.Type"), "2");
    EXPECT_EQ(moduleState(*world.workset()).m_MenuCDev, menu);
    // The second level, named like the question, is reached by the one-child rule and renamed.
    ASSERT_NE(out.leaf, nullptr);
    EXPECT_EQ(out.leaf->Name(), "GTYPE");
    EXPECT_EQ(component->Spec("SEL.Selector")->LinkObject(), out.leaf);
    EXPECT_THAT(world.traceTexts("SetQuestion"),
                ElementsAre("Selector with answer \"FLAN\" not found ",
                            "(1) creating new with name FLAN under " + plainRoot->SystemFullName(),
                            "(2) creating new with name GD.GTYPE under " + out.top->SystemFullName(),
                            "creating new spec with name Selector at " + component->Spec("SEL")->SystemFullName()));

    // A code that is no number is reported, and the walk goes on with the text.
    const auto odd = world.device(plain, "E2", {{"GD.VFCD", "ABC"}});
    EXPECT_EQ(walk(plain, odd).top->Name(), "ABC");
    ASSERT_EQ(world.host().errors().size(), 1u);
    EXPECT_EQ(world.host().errors()[0].function, "Sub SetQuestion");

    // The menu root found is kept for its database only: another reads its own menu.
    const support::World other;
    const auto otherClass = other.pipeClass(other.path(other.plant(), "@20|PIPECLASSES"), "PLAIN", "10000", false);
    support::selectorRoot(other, otherClass, support::selectorBase(other));
    other.device(other.path(other.base(), "@3D|@Menu"), "101XX")->SetDescription("BEND");
    const auto top = walk(otherClass, other.device(otherClass, "E1", {{"GD.VFCD", "10100"}})).top;
    ASSERT_NE(top, nullptr);
    EXPECT_EQ(top->Name(), "BEND");
}


// The walk up reads the root's question too. A root without one is an error
// that the walk resumes from with the question before: a bore question there
// is treated twice, standing twice among the questions, and its second entry
// into the bore map is refused with a second report.
TEST_F(QuestionWalk, RootWithoutQuestionTreatsTheBoreQuestionBeforeItTwice)
{
    root->SetCDevice(nullptr);
    const auto bend = support::selector(world, root, "BEND", "BEND", "PBOR1", base);
    const auto only = support::selector(world, bend, "ONLY", "", "", base);
    const auto component = world.device(pipeClass, "E1",
                                        {{"PIPE.VSTD", "BEND"}, {"CONN.DN1", "100"}, {"PDMS.Selector", ""}});
    const auto out = walk(pipeClass, component);
    EXPECT_EQ(out.leaf, only);
    EXPECT_THAT(nestedNames(out.questionSpecs), ElementsAre("CONN.DN1", "CONN.DN1"));
    EXPECT_THAT(out.boreSpecs.Keys(), ElementsAre("PBOR1"));
    ASSERT_EQ(world.host().errors().size(), 2u);
    for (const auto& report : world.host().errors()) EXPECT_EQ(report.function, "Sub SetQuestion");
}

}  // namespace
}  // namespace pipespec
