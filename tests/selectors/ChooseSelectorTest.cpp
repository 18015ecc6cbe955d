// The choice of the next selector: what is offered and proposed, and how the
// answer that comes back finds the child.

#include "selectors/ChooseSelector.h"
#include "support/SelectorTrees.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace pipespec {
namespace {

using namespace addtopipeclass;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

class ChooseSelectorTest : public ::testing::Test {
protected:
    std::shared_ptr<ScriptedChooseSelector> view = std::make_shared<ScriptedChooseSelector>();
    diagnostics::ScopedService<IChooseSelectorView> viewInstalled{setChooseSelectorView, view};
    support::World world;
    DeviceRef pipeClass = world.pipeClass(world.path(world.plant(), "@20|PIPECLASSES"), "PC", "10000", true);
    DeviceRef base = support::selectorBase(world);
    DeviceRef root = support::selectorRoot(world, pipeClass, base);
    DeviceRef offered = support::selector(world, root, "FLAN%s2", "FLAN", "PIPE.FTYPE", base);
    DeviceRef wn = support::selector(world, offered, "FTYPE:WN", "WN", "", base);
    DeviceRef bl = support::selector(world, offered, "FTYPE:BL", "BL", "", base);
    DeviceRef bare = support::selector(world, offered, "FTYPE", "", "", base);
    DeviceRef component = world.device(pipeClass, "E1");

    DeviceRef choose(std::string& answer) { return ChooseSelector(offered, component, "FTYPE", answer, offered); }
};

TEST_F(ChooseSelectorTest, OffersAnswersWithTheQuestionCutOutAndProposesTheDefault)
{
    world.attribute(offered, "Sele.DefaultAnswer", "FTYPE:BL");
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
    world.attribute(offered, "Sele.DefaultAnswer", "XX");
    choose(answer);
    EXPECT_EQ(view->shown().back().proposedChild, wn);
    EXPECT_EQ(answer, "WN");
    EXPECT_THAT(world.host().errors(), IsEmpty());
}

TEST_F(ChooseSelectorTest, WithoutDefaultAnswerTheAnswerTakenLastInTheSameDatabaseIsProposed)
{
    // Selectors made from no base object have no default answer.
    const auto plainSelector = [](const support::World& in, const DeviceRef& owner) {
        const auto made = in.device(owner, "PLAIN");
        in.device(made, "FTYPE:WN");
        in.device(made, "FTYPE:BL");
        return made;
    };
    const auto plain = plainSelector(world, root);
    std::string answer;
    view->choose("BL");
    ChooseSelector(plain, component, "FTYPE", answer, root);
    ChooseSelector(plain, component, "FTYPE", answer, root);
    EXPECT_EQ(view->shown().back().proposal, "BL");

    const support::World other;
    const auto elsewhere = plainSelector(other, other.root(other.plant(), "@20"));
    ChooseSelector(elsewhere, nullptr, "FTYPE", answer, elsewhere);
    EXPECT_EQ(view->shown().back().proposal, "WN") << "another database proposes its first child";
}

TEST_F(ChooseSelectorTest, SelectorWithoutChildrenEndsInTheErrorTail)
{
    std::string answer = "kept";
    EXPECT_EQ(ChooseSelector(wn, component, "FTYPE", answer, offered), nullptr);
    EXPECT_EQ(answer, "kept");
    EXPECT_THAT(view->shown(), IsEmpty());
    ASSERT_EQ(world.host().errors().size(), 1u);
    EXPECT_EQ(world.host().errors()[0].cls, "QuorlPipeSpecComp.frmChooseSelector");
    EXPECT_EQ(world.host().errors()[0].function, "Function Init");
}

TEST_F(ChooseSelectorTest, TreeShowsSelectorsOfTheKindAndOnlyADirectChildCanBeConfirmed)
{
    EXPECT_TRUE(ShownInSelectorTree(wn, offered));
    EXPECT_FALSE(ShownInSelectorTree(world.device(pipeClass, "OTHER"), offered));
    EXPECT_FALSE(ShownInSelectorTree(offered->Spec("Sele"), offered));
    EXPECT_EQ(AnswerOfTreeSelection(wn, offered), "WN");
    EXPECT_EQ(AnswerOfTreeSelection(bare, offered), "FTYPE");
    EXPECT_EQ(AnswerOfTreeSelection(root, offered), std::nullopt);
}

}  // namespace
}  // namespace pipespec
