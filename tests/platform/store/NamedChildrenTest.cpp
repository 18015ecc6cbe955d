// The member lists of the store and the compact texts its objects keep:
// both trade a little code for memory, and a slip in either would lose or
// confuse members without any other test noticing at once.

#include "platform/store/NamedChildren.h"
#include "platform/store/CompactText.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace {

using pipespec::platform::CompactText;
using pipespec::platform::NamedChildren;

struct Member {
    std::string name;
    std::string_view nameView() const { return name; }
};

// Checks every look-up against the plain list it should equal.
void expectMatches(const NamedChildren<Member>& members, const std::vector<std::string>& expected)
{
    ASSERT_EQ(members.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const auto& item = members.items()[i];
        ASSERT_EQ(item->name, expected[i]);
        ASSERT_EQ(members.find(expected[i]), item) << expected[i];
        ASSERT_EQ(members.position(*item), i);
    }
    EXPECT_FALSE(members.contains("absent"));
    EXPECT_EQ(members.position(Member{"stranger"}), members.size());
}

TEST(NamedChildren, LookUpsFollowEveryInsertEraseAndRenameAcrossTheIndexThreshold)
{
    std::mt19937 random(7);
    NamedChildren<Member> members;
    std::vector<std::string> expected;
    int next = 0;
    // Grows to a few hundred members, then shrinks below the threshold again.
    for (int round = 0; round < 1500; ++round) {
        const bool growing = round < 900;
        const auto size = expected.size();
        const auto pick = [&](std::size_t bound) {
            return std::uniform_int_distribution<std::size_t>(0, bound)(random);
        };
        const auto action = pick(9);
        if (size == 0 || (growing && action < 6)) {
            const auto at = pick(size);
            auto name = "M" + std::to_string(next++);
            members.insert(at, std::make_shared<Member>(Member{name}));
            expected.insert(expected.begin() + static_cast<std::ptrdiff_t>(at), name);
        } else if (action < 8) {
            const auto at = pick(size - 1);
            EXPECT_EQ(members.erase(at)->name, expected[at]);
            expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(at));
        } else {
            const auto at = pick(size - 1);
            auto to = "R" + std::to_string(next++);
            const auto& member = members.items()[at];
            members.rename(member->name, to);
            member->name = to;
            expected[at] = to;
        }
        expectMatches(members, expected);
    }
    EXPECT_LT(expected.size(), 200u);
}

TEST(NamedChildren, AppendingAndTakingTheLastOutKeepPositions)
{
    NamedChildren<Member> members;
    std::vector<std::string> expected;
    for (int i = 0; i < 100; ++i) {
        members.append(std::make_shared<Member>(Member{"A" + std::to_string(i)}));
        expected.push_back("A" + std::to_string(i));
    }
    expectMatches(members, expected);
    while (!expected.empty()) {
        members.erase(members.size() - 1);
        expected.pop_back();
    }
    expectMatches(members, expected);
}

TEST(CompactText, KeepsShortAndLongTextsThroughCopiesAndMoves)
{
    for (const auto& text :
         std::vector<std::string>{"", "A", "VFCD", "fifteen chars!!", "sixteen chars!!!", std::string(300, 'x')}) {
        const CompactText kept(text);
        EXPECT_EQ(kept.view(), text);
        EXPECT_TRUE(kept == text);
        EXPECT_EQ(kept.empty(), text.empty());

        CompactText copy = kept;
        EXPECT_EQ(copy.view(), text);
        CompactText moved = std::move(copy);
        EXPECT_EQ(moved.view(), text);

        CompactText assigned("something else that is long enough for the heap");
        assigned = kept;
        EXPECT_EQ(assigned.view(), text);
        const auto& same = assigned;
        assigned = same;
        EXPECT_EQ(assigned.view(), text);
        EXPECT_EQ(std::string("in front: ") + kept, "in front: " + text);
    }
    static_assert(sizeof(CompactText) == 16);
}

}  // namespace
