// The text routines of the logic, and its one-based and keyed collections.

#include "objectmodel/Text.h"
#include "objectmodel/ExpectError.h"
#include "objectmodel/KeyedMap.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace pipespec::text {
namespace {

using checks::errorNumber;
using Texts = std::vector<std::string>;
using Numbers = std::vector<int>;

TEST(Text, MidLeftAndRightCountBytesFromOne)
{
    EXPECT_EQ((Texts{Mid("abcdef", 1), Mid("abcdef", 2, 3), Mid("abcdef", 6, 1), Mid("abcdef", 4, 100),
                     Mid("abcdef", 3, 0), Mid("abc", 4), Mid("abc", 4, 2), Mid("", 1)}),
              (Texts{"abcdef", "bcd", "f", "def", "", "", "", ""}));
    // "ü" takes the two bytes at positions 5 and 6.
    EXPECT_EQ((Texts{Mid("Einfügen", 5, 2), Mid("Einfügen", 7)}), (Texts{"\xC3\xBC", "gen"}));
    EXPECT_EQ((Texts{Left("abc", 0), Left("abc", 2), Left("abc", 5), Right("abc", 0), Right("abc", 2), Right("abc", 3),
                     Right("abc", 5)}),
              (Texts{"", "ab", "abc", "", "bc", "abc", "abc"}));
}

TEST(Text, StartsBelowOneAndNegativeCountsAreInvalidCalls)
{
    const std::vector<std::function<void()>> calls{
        [] { (void)Mid("abc", 0); },           [] { (void)Mid("abc", -1, 1); },
        [] { (void)Mid("abc", 1, -2); },       [] { (void)Left("abc", -1); },
        [] { (void)Right("abc", -1); },        [] { (void)InStr(0, "abc", "a"); },
        [] { (void)InStrRev("abc", "a", 0); }, [] { (void)InStrRev("abc", "a", -2); }};
    for (std::size_t i = 0; i < calls.size(); ++i) EXPECT_EQ(errorNumber(calls[i]), err::InvalidCall) << "call " << i;
}

TEST(Text, InStrGivesOneBasedPositionsFromStartInclusiveAndInStrRevTheLastWithinStart)
{
    EXPECT_EQ((Numbers{InStr("abcabc", "a"), InStr("abcabc", "c"), InStr("abcabc", "x"), InStr("abc", "abcd"),
                       InStr("ABC", "b")}),
              (Numbers{1, 3, 0, 0, 0}))
        << "binary compare, no case folding";
    EXPECT_EQ((Numbers{InStr(3, "abcabc", "c"), InStr(4, "abcabc", "c"), InStr(6, "abcabc", "c"),
                       InStr(7, "abcabc", "c"), InStr(100, "abc", "c")}),
              (Numbers{3, 6, 6, 0, 0}));
    // An empty find is found at the start, up to one past the end.
    EXPECT_EQ((Numbers{InStr("abc", ""), InStr(3, "abc", ""), InStr(4, "abc", ""), InStr(5, "abc", ""), InStr("", "")}),
              (Numbers{1, 3, 4, 0, 1}));
    // The match at 5 ends past position 5.
    EXPECT_EQ((Numbers{InStrRev("abcabc", "bc"), InStrRev("abcabc", "bc", 6), InStrRev("abcabc", "bc", 5),
                       InStrRev("abcabc", "a", 1), InStrRev("abc", "x"), InStrRev("abc", "abcd"),
                       InStrRev("abc", "a", 4), InStrRev("abc", "", 2)}),
              (Numbers{5, 5, 2, 1, 0, 0, 0, 2}));
}

TEST(Text, ReplaceTakesEveryOccurrenceLeftToRightOnceAndBinary)
{
    EXPECT_EQ((Texts{Replace("a-b-c", "-", "+"), Replace("abab", "ab", "x"), Replace("aaa", "aa", "b"),
                     Replace("aaaa", "aa", "b"), Replace("xaby", "ab", ""), Replace("aa", "a", "aa"),
                     Replace("%1%", "%1%", "%1%%1%"), Replace("Abc abc", "abc", "x"), Replace("abc", "", "x"),
                     Replace("", "a", "x")}),
              (Texts{"a+b+c", "xx", "ba", "bb", "xy", "aaaa", "%1%%1%", "Abc x", "abc", ""}));
}

TEST(Text, CaseTrimAndCompareWorkOnAsciiAndBytes)
{
    EXPECT_EQ(UCase("`az{ äö 1"), "`AZ{ äö 1");
    EXPECT_EQ(LCase("@AZ[ ÄÖ 1"), "@az[ ÄÖ 1");
    EXPECT_EQ((Texts{Trim("  a b  "), Trim("   "), Trim(""), Trim("\ta\t")}), (Texts{"a b", "", "", "\ta\t"}));
    // Bytes above 127 sort after ASCII; the result is clamped, not a length difference.
    EXPECT_EQ(
        (Numbers{StrCompBinary("a", "b"), StrCompBinary("b", "a"), StrCompBinary("abc", "abc"), StrCompBinary("a", "A"),
                 StrCompBinary("ab", "abc"), StrCompBinary("ä", "z"), StrCompBinary("zzzzzz", "zzzzzzzzz")}),
        (Numbers{-1, 1, 0, 1, -1, 1, -1}));
}

TEST(OneBased, ItemsCountFromOneToCountAndOthersAreOutOfRange)
{
    OneBased<std::string> list;
    EXPECT_EQ(errorNumber([&] { (void)list.Item(1); }), err::SubscriptOutOfRange);
    for (const auto* item : {"first", "second", "third"}) list.Add(item);
    list.Item(2) = "changed";
    EXPECT_EQ(list.Count(), 3);
    EXPECT_EQ(Texts(list.begin(), list.end()), (Texts{"first", "changed", "third"}));
    EXPECT_EQ(list.Item(1), "first");
    const auto& constList = list;
    EXPECT_EQ(errorNumber([&] { (void)constList.Item(0); }), err::SubscriptOutOfRange);
    EXPECT_EQ(errorNumber([&] { (void)constList.Item(4); }), err::SubscriptOutOfRange);
}

KeyedMap<int> threeItems()
{
    KeyedMap<int> map;
    map.Add("b", 1);
    map.Add("a", 2);
    map.Add("c", 3);
    return map;
}

TEST(KeyedMap, KeepsTheOrderOfAddingAndComparesKeysBinary)
{
    auto map = threeItems();
    EXPECT_EQ(map.Keys(), (Texts{"b", "a", "c"}));
    EXPECT_EQ(map.Items(), (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(errorNumber([&] { map.Add("a", 9); }), err::DuplicateKey);
    map.Add("A", 4);
    EXPECT_EQ(map.Count(), 4);
    EXPECT_EQ(map.Item("A"), 4);
    EXPECT_EQ(map.Item("a"), 2) << "a refused Add changes nothing";
    // Remove keeps the order of the rest; added again, a key goes last.
    map.Remove("a");
    EXPECT_FALSE(map.Exists("a"));
    map.Add("a", 5);
    EXPECT_EQ(map.Keys(), (Texts{"b", "c", "A", "a"}));
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
    EXPECT_EQ(copy.Item("c"), 3);
    copy.Remove("b");
    const auto moved = std::move(copy);
    EXPECT_EQ(moved.Item("a"), 2);
    EXPECT_EQ(moved.Keys(), (Texts{"a", "c"}));
}

}  // namespace
}  // namespace pipespec::text
