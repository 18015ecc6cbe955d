// The walk of a component down its selector chain and back up: the top
// selector found or made, answers by key, the engineer's choice, the link to
// the leaf, and the question attributes collected on the way up.

#include "selectors/ChooseSelector.h"
#include "selectors/SciptCallLib.h"
#include "selectors/Selectors.h"
#include "support/Creation.h"
#include "support/SelectorTrees.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pipespec {
namespace {

using namespace addtopipeclass;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class QuestionWalk : public support::CreationTest {
protected:
    struct Outcome {
        CollectionRef questionSpecs;
        SpecMap boreSpecs;
        DeviceRef top;
        SpecRef shop;
        DeviceRef leaf;
        // The nested names of the question attributes, leaf first.
        std::string questions() const
        {
            std::vector<std::string> names;
            for (int i = 1; i <= questionSpecs->Count(); ++i)
                names.push_back(asSpec(questionSpecs->Item(i))->NestedName());
            return support::join(names);
        }
    };
    Outcome walk(const DeviceRef& pipe, const DeviceRef& component, bool deleteOnCancel = false) const
    {
        Outcome out;
        SetQuestion(pipe, component, out.questionSpecs, out.boreSpecs, out.top, out.shop, out.leaf, deleteOnCancel);
        return out;
    }
    // A flange element of the class answering with VSTD FLAN and the attributes given.
    DeviceRef flange(support::Attributes answers = {}, const std::string& name = "E1") const
    {
        const auto made = world.device(pipeClass, name, {{"PIPE.VSTD", "FLAN"}, {"PDMS.Selector", ""}});
        for (const auto& [attribute, value] : answers) world.attribute(made, attribute, value);
        return made;
    }

    DeviceRef classes = world.path(world.plant(), "@20|PIPECLASSES");
    DeviceRef pipeClass = world.pipeClass(classes, "PC", "10000", true);
    DeviceRef base = support::selectorBase(world);
    DeviceRef root = support::selectorRoot(world, pipeClass, base);
    // FLAN asks the flange type; WN then one diameter selector, BL nothing more.
    DeviceRef flan = support::selector(world, root, "FLAN", "FLAN", "PIPE.FTYPE", base);
    DeviceRef wn = support::selector(world, flan, "FTYPE:WN", "WN", "CONN.DN1", base);
    DeviceRef bl = support::selector(world, flan, "FTYPE:BL", "BL", "", base);
    DeviceRef dn1 = support::selector(world, wn, "DN1", "", "", base);
    std::shared_ptr<ScriptedChooseSelector> view = chooser();
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
    EXPECT_THAT(world.trace("SetQuestion"),
                ElementsAre("enter", "leave: CDevPC Is Nothing", "enter", "leave: CDevPipeClass Is Nothing", "enter",
                            "leave: VFCDValue = vbNullString"));
    EXPECT_EQ(world.tracer().lines().back().cls, "QuorlPipeSpecComp.AddToPipeClass");
    script.EditSelectorTree(component);
    EXPECT_EQ(world.reported(), "");
}

TEST_F(QuestionWalk, ComponentFollowsItsAnswersToTheLeafAndCollectsItsQuestionsLeafFirst)
{
    const auto component = flange({{"PIPE.FTYPE", "WN"}, {"CONN.DN1", "100"}});
    const auto out = walk(pipeClass, component);
    EXPECT_EQ(out.top, flan);
    EXPECT_EQ(out.leaf, dn1);
    EXPECT_EQ(component->Spec("PDMS.Selector")->LinkObject(), dn1);
    EXPECT_EQ(out.questions(), "CONN.DN1 PIPE.FTYPE");
    EXPECT_EQ(component->Spec("PIPE.FTYPE")->Description(), " (in spec)");
    EXPECT_EQ(component->Spec("CONN.DN1")->AnswerMode(), -9999);
    EXPECT_THAT(view->shown(), IsEmpty());
    EXPECT_EQ(world.reported(), "");
    // The marker is added once, whatever its case.
    component->Spec("PIPE.FTYPE")->SetDescription("Flange IN SPEC type");
    walk(pipeClass, component);
    EXPECT_EQ(component->Spec("PIPE.FTYPE")->Description(), "Flange IN SPEC type");
    // A single child is followed without a test, and a wrong name is renamed.
    const auto other = support::selector(world, root, "TUBE", "TUBE", "PIPE.KIND", base);
    const auto only = support::selector(world, other, "SOMETHING", "", "", base);
    const auto tube =
        world.device(pipeClass, "E2", {{"PIPE.VSTD", "TUBE"}, {"PIPE.KIND", "other"}, {"PDMS.Selector", ""}});
    EXPECT_EQ(walk(pipeClass, tube).leaf, only);
    EXPECT_EQ(only->Name() + " " + only->Description(), "KIND KIND");
}

TEST_F(QuestionWalk, UnansweredQuestionIsPutToTheEngineerAndTheChoiceIsTakenOver)
{
    const auto component = flange();
    view->choose("BL");
    EXPECT_EQ(walk(pipeClass, component).leaf, bl);
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
    EXPECT_THAT(world.trace("SetQuestion"), Contains("leave: (1) TopSelector Is Nothing"));
    // Cancelled when the component cannot answer: deleted even without DeleteOnCancel.
    const auto valve = support::selector(world, root, "VALV", "VALV", "GD.KIND", base);
    support::selector(world, valve, "KIND:A", "", "", base);
    support::selector(world, valve, "KIND:B", "", "", base);
    const auto mute = world.device(pipeClass, "E2", {{"PIPE.VSTD", "VALV"}});
    view->cancel();
    walk(pipeClass, mute, false);
    EXPECT_TRUE(mute->IsDeleted());
    EXPECT_THAT(world.trace("SetQuestion"), Contains("leave: (2) TopSelector Is Nothing"));
}

TEST_F(QuestionWalk, AChosenAnswerAnInheritedAttributeCannotTakeIsLostQuietly)
{
    // The element's answer comes from its catalogue component, where no write of the walk belongs.
    const auto cataloged = world.device(catalog, "FL-XX", {{"PIPE.VSTD", "FLAN"}, {"PIPE.FTYPE", "XX"}});
    const auto component = world.device(pipeClass, "E1", {{"PDMS.Selector", ""}}, cataloged);
    ASSERT_TRUE(component->Spec("PIPE.FTYPE")->SystemTemporary());
    view->choose("BL");
    EXPECT_EQ(walk(pipeClass, component).leaf, bl);
    EXPECT_EQ(component->Spec("PDMS.Selector")->LinkObject(), bl);
    EXPECT_EQ(world.value(component, "PIPE.FTYPE") + " " + world.value(cataloged, "PIPE.FTYPE"), "XX XX");
    EXPECT_EQ(world.reported(), "");
}

TEST_F(QuestionWalk, RangeQuestionTakesTheValueAsBothEndsOnlyOnTheChange)
{
    world.attribute(dn1, "Sele.Type", "0");
    const auto component = flange({{"PIPE.FTYPE", "WN"}, {"CONN.DN1", "100"}});
    const auto dn = component->Spec("CONN.DN1");
    dn->SetValueType("C");
    walk(pipeClass, component);
    EXPECT_EQ(dn->AnswerMode(), 2);
    EXPECT_EQ(world.listed(component, "CONN.DN1") + " " + dn->ValueType(), "100 100 A");
    dn->SetValue("150");
    walk(pipeClass, component);
    EXPECT_EQ(world.listed(component, "CONN.DN1"), "100 100") << "a later value leaves the range as it is";
    // Leaving the range: back to a single answer, the X values stay behind.
    world.attribute(dn1, "Sele.Type", "1");
    walk(pipeClass, component);
    EXPECT_EQ(dn->AnswerMode(), -9999);
    EXPECT_EQ(world.listed(component, "CONN.DN1"), "100 100");
    // A stored range pair counts only with the doubled max name.
    world.attribute(dn1, "Sele.Type", "0");
    EXPECT_EQ(walk(pipeClass, flange({{"PIPE.FTYPE", "WN"}, {"CONN.MINDN1", "50"}, {"CONN.MAXDN1", "100"}}, "E2"))
                  .questions(),
              "PIPE.FTYPE");
    EXPECT_EQ(walk(pipeClass, flange({{"PIPE.FTYPE", "WN"}, {"CONN.MINDN1", "50"}, {"CONN.MAXMINDN1", "100"}}, "E3"))
                  .questions(),
              "CONN.MINDN1 PIPE.FTYPE");
}

TEST_F(QuestionWalk, BoreQuestionsAnswerByConnectorAndKeepTheLastAttributeWhenNotNumeric)
{
    world.attribute(wn, "Sele.Question", "PBOR2");
    world.attribute(dn1, "Sele.Question", "PBOR");
    const auto table = world.table(world.base(), "DN", {"50", "100"});
    const auto component = flange({{"PIPE.FTYPE", "WN"}, {"CONN.DN1", "100"}, {"CONN.OUTLET", "50"}});
    component->Spec("CONN.DN1")->SetStandardTable(table);
    component->Spec("CONN.OUTLET")->SetStandardTable(table);
    const auto out = walk(pipeClass, component);
    // "PBOR" ends in a letter: the attribute of the selector before is added once more.
    EXPECT_EQ(out.questions(), "CONN.OUTLET PIPE.FTYPE");
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
    EXPECT_EQ(world.value(out.top, "Sele.Answer") + " " + world.value(out.top, "Sele.Question") + " " +
                  world.value(out.top, "Sele.Type"),
              "FLAN GD.GTYPE 2");
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
    EXPECT_EQ(walk(plain, world.device(plain, "E2", {{"GD.VFCD", "ABC"}})).top->Name(), "ABC");
    EXPECT_EQ(world.reported(), "Sub SetQuestion");
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
    const auto component =
        world.device(pipeClass, "E1", {{"PIPE.VSTD", "BEND"}, {"CONN.DN1", "100"}, {"PDMS.Selector", ""}});
    const auto out = walk(pipeClass, component);
    EXPECT_EQ(out.leaf, only);
    EXPECT_EQ(out.questions(), "CONN.DN1 CONN.DN1");
    EXPECT_THAT(out.boreSpecs.Keys(), ElementsAre("PBOR1"));
    EXPECT_EQ(world.reported(), "Sub SetQuestion; Sub SetQuestion");
}

// ---- the choice of the next selector: what is offered and proposed, and how
// the answer that comes back finds the child.

class ChooseSelectorTest : public QuestionWalk {
protected:
    ChooseSelectorTest() { flan->SetName("FLAN%s2"); }
    DeviceRef choose(std::string& answer) const { return ChooseSelector(flan, component, "FTYPE", answer, flan); }

    DeviceRef bare = support::selector(world, flan, "FTYPE", "", "", base);
    DeviceRef component = world.device(pipeClass, "E1");
};

TEST_F(ChooseSelectorTest, OffersAnswersWithTheQuestionCutOutAndProposesTheDefault)
{
    world.attribute(flan, "Sele.DefaultAnswer", "FTYPE:BL");
    std::string answer = "untouched";
    view->close();
    EXPECT_EQ(choose(answer), bl) << "closing the dialog takes the proposal";
    EXPECT_EQ(answer, "BL");
    ASSERT_EQ(view->shown().size(), 1u);
    const auto& shown = view->shown()[0];
    EXPECT_THAT(shown.answers, ElementsAre("WN", "BL", "FTYPE")) << "a bare attribute name is listed whole";
    EXPECT_EQ(shown.proposal, "BL");
    EXPECT_EQ(shown.proposedChild, bl);
    EXPECT_EQ(shown.component, component);
    // Plain replacement, "%s1" first: the selector's own "%s2" is replaced as well.
    EXPECT_EQ(shown.sentence, "Selectors chain after selector FLANFTYPE with question FTYPE is ambiguous.");
}

TEST_F(ChooseSelectorTest, AnswerFindsTheChildByWholeNameThenByQuestionAndAnswer)
{
    std::string answer;
    view->choose("FTYPE");
    EXPECT_EQ(choose(answer), bare);
    view->choose("WN");
    EXPECT_EQ(choose(answer), wn);
    EXPECT_EQ(answer, "WN");
    view->cancel();
    EXPECT_EQ(choose(answer), nullptr);
    EXPECT_EQ(answer, "");
    // A default answer that is no child's answer: the first child is proposed.
    world.attribute(flan, "Sele.DefaultAnswer", "XX");
    choose(answer);
    EXPECT_EQ(view->shown().back().proposedChild, wn);
    EXPECT_EQ(answer, "WN");
    EXPECT_EQ(world.reported(), "");
    // A selector without children ends in the error tail.
    answer = "kept";
    EXPECT_EQ(ChooseSelector(bl, component, "FTYPE", answer, flan), nullptr);
    EXPECT_EQ(answer, "kept");
    EXPECT_EQ(view->shown().size(), 4u);
    EXPECT_EQ(world.reported(), "Function Init");
    EXPECT_EQ(world.host().errors()[0].cls, "QuorlPipeSpecComp.frmChooseSelector");
}

TEST_F(ChooseSelectorTest, TreeShowsSelectorsOfTheKindAndOnlyADirectChildCanBeConfirmed)
{
    EXPECT_TRUE(ShownInSelectorTree(wn, flan));
    EXPECT_FALSE(ShownInSelectorTree(world.device(pipeClass, "OTHER"), flan));
    EXPECT_FALSE(ShownInSelectorTree(flan->Spec("Sele"), flan));
    EXPECT_EQ(AnswerOfTreeSelection(wn, flan), "WN");
    EXPECT_EQ(AnswerOfTreeSelection(bare, flan), "FTYPE");
    EXPECT_EQ(AnswerOfTreeSelection(root, flan), std::nullopt);
}

}  // namespace
}  // namespace pipespec
