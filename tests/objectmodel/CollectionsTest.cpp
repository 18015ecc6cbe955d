#include "objectmodel/ExpectError.h"
#include "objectmodel/KeyedMap.h"
#include "objectmodel/Text.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace pipespec {
namespace {

using checks::errorNumber;

TEST(OneBased, ItemsCountFromOneToCount)
{
    text::OneBased<std::string> list;
    list.Add("first");
    list.Add("second");
    list.Add("third");
    EXPECT_EQ(list.Count(), 3);
    EXPECT_EQ(list.Item(1), "first");
    EXPECT_EQ(list.Item(3), "third");
    list.Item(2) = "changed";
    EXPECT_EQ(std::vector<std::string>(list.begin(), list.end()), (std::vector<std::string>{"first", "changed", "third"}));
}

TEST(OneBased, IndexOutsideIsSubscriptOutOfRange)
{
    text::OneBased<int> list;
    EXPECT_EQ(errorNumber([&] { (void)list.Item(1); }), err::SubscriptOutOfRange);
    list.Add(7);
    const auto& constList = list;
    EXPECT_EQ(errorNumber([&] { (void)constList.Item(0); }), err::SubscriptOutOfRange);
    EXPECT_EQ(errorNumber([&] { (void)constList.Item(2); }), err::SubscriptOutOfRange);
}

KeyedMap<int> threeItems()
{
    KeyedMap<int> map;
    map.Add("b", 1);
    map.Add("a", 2);
    map.Add("c", 3);
    return map;
}

TEST(KeyedMap, KeepsTheOrderOfAdding)
{
    const auto map = threeItems();
    EXPECT_EQ(map.Keys(), (std::vector<std::string>{"b", "a", "c"}));
    EXPECT_EQ(map.Items(), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(map.Item("a"), 2);
}

TEST(KeyedMap, AddingAKeyTwiceFailsAndChangesNothing)
{
    auto map = threeItems();
    EXPECT_EQ(errorNumber([&] { map.Add("a", 9); }), err::DuplicateKey);
    EXPECT_EQ(map.Count(), 3);
    EXPECT_EQ(map.Item("a"), 2);
}

TEST(KeyedMap, KeysCompareBinary)
{
    auto map = threeItems();
    map.Add("A", 4);
    EXPECT_EQ(map.Item("A"), 4);
    EXPECT_EQ(map.Item("a"), 2);
}

TEST(KeyedMap, RemoveKeepsTheOrderOfTheRestAndReAddingGoesLast)
{
    auto map = threeItems();
    map.Remove("a");
    EXPECT_FALSE(map.Exists("a"));
    EXPECT_EQ(map.Keys(), (std::vector<std::string>{"b", "c"}));
    map.Add("a", 5);
    EXPECT_EQ(map.Keys(), (std::vector<std::string>{"b", "c", "a"}));
}

TEST(KeyedMap, MissingKeyIsSubscriptOutOfRange)
{
    auto map = threeItems();
    EXPECT_EQ(errorNumber([&] { map.Remove("x"); }), err::SubscriptOutOfRange);
    EXPECT_EQ(errorNumber([&] { (void)map.Item("x"); }), err::SubscriptOutOfRange);
}

TEST(KeyedMap, CopiesAndMovesLookUpInTheirOwnEntries)
{
    KeyedMap<int> copy;
    {
        const auto original = threeItems();
        copy = original;
    }
    EXPECT_EQ(copy.Keys(), (std::vector<std::string>{"b", "a", "c"}));
    EXPECT_EQ(copy.Item("c"), 3);
    copy.Remove("b");

    const auto moved = std::move(copy);
    EXPECT_EQ(moved.Item("a"), 2);
    EXPECT_EQ(moved.Keys(), (std::vector<std::string>{"a", "c"}));
}

}  // namespace
}  // namespace pipespec
