#include "objectmodel/ExpectError.h"
#include "objectmodel/Text.h"

#include <gtest/gtest.h>

namespace pipespec::text {
namespace {

using checks::errorNumber;

TEST(Mid, CountsFromOneAndTakesTheRestByDefault)
{
    EXPECT_EQ(Mid("abcdef", 1), "abcdef");
    EXPECT_EQ(Mid("abcdef", 2, 3), "bcd");
    EXPECT_EQ(Mid("abcdef", 6, 1), "f");
    EXPECT_EQ(Mid("abcdef", 4, 100), "def");
    EXPECT_EQ(Mid("abcdef", 3, 0), "");
}

TEST(Mid, StartBeyondTheEndGivesEmptyText)
{
    EXPECT_EQ(Mid("abc", 4), "");
    EXPECT_EQ(Mid("abc", 4, 2), "");
    EXPECT_EQ(Mid("", 1), "");
}

TEST(Mid, RejectsStartBelowOneAndLengthBelowMinusOne)
{
    EXPECT_EQ(errorNumber([] { (void)Mid("abc", 0); }), err::InvalidCall);
    EXPECT_EQ(errorNumber([] { (void)Mid("abc", -1, 1); }), err::InvalidCall);
    EXPECT_EQ(errorNumber([] { (void)Mid("abc", 1, -2); }), err::InvalidCall);
}

TEST(Mid, PositionsCountBytesOfUtf8)
{
    // "ü" takes the two bytes at positions 5 and 6.
    EXPECT_EQ(Mid("Einfügen", 5, 2), "\xC3\xBC");
    EXPECT_EQ(Mid("Einfügen", 7), "gen");
}

TEST(LeftRight, TakeAtMostTheWholeText)
{
    EXPECT_EQ(Left("abc", 0), "");
    EXPECT_EQ(Left("abc", 2), "ab");
    EXPECT_EQ(Left("abc", 5), "abc");
    EXPECT_EQ(Right("abc", 0), "");
    EXPECT_EQ(Right("abc", 2), "bc");
    EXPECT_EQ(Right("abc", 3), "abc");
    EXPECT_EQ(Right("abc", 5), "abc");
}

TEST(LeftRight, RejectNegativeCounts)
{
    EXPECT_EQ(errorNumber([] { (void)Left("abc", -1); }), err::InvalidCall);
    EXPECT_EQ(errorNumber([] { (void)Right("abc", -1); }), err::InvalidCall);
}

TEST(InStr, GivesOneBasedPositionOrZero)
{
    EXPECT_EQ(InStr("abcabc", "a"), 1);
    EXPECT_EQ(InStr("abcabc", "c"), 3);
    EXPECT_EQ(InStr("abcabc", "x"), 0);
    EXPECT_EQ(InStr("abc", "abcd"), 0);
    EXPECT_EQ(InStr("ABC", "b"), 0) << "binary compare, no case folding";
}

TEST(InStr, SearchesFromStartInclusive)
{
    EXPECT_EQ(InStr(3, "abcabc", "c"), 3);
    EXPECT_EQ(InStr(4, "abcabc", "c"), 6);
    EXPECT_EQ(InStr(6, "abcabc", "c"), 6);
    EXPECT_EQ(InStr(7, "abcabc", "c"), 0);
    EXPECT_EQ(InStr(100, "abc", "c"), 0);
}

TEST(InStr, EmptyFindIsFoundAtStartUpToOnePastTheEnd)
{
    EXPECT_EQ(InStr("abc", ""), 1);
    EXPECT_EQ(InStr(3, "abc", ""), 3);
    EXPECT_EQ(InStr(4, "abc", ""), 4);
    EXPECT_EQ(InStr(5, "abc", ""), 0);
    EXPECT_EQ(InStr("", ""), 1);
}

TEST(InStr, RejectsStartBelowOne)
{
    EXPECT_EQ(errorNumber([] { (void)InStr(0, "abc", "a"); }), err::InvalidCall);
}

TEST(InStrRev, FindsLastMatchLyingWithinStart)
{
    EXPECT_EQ(InStrRev("abcabc", "bc"), 5);
    EXPECT_EQ(InStrRev("abcabc", "bc", 6), 5);
    EXPECT_EQ(InStrRev("abcabc", "bc", 5), 2) << "the match at 5 ends past position 5";
    EXPECT_EQ(InStrRev("abcabc", "a", 1), 1);
    EXPECT_EQ(InStrRev("abc", "x"), 0);
    EXPECT_EQ(InStrRev("abc", "abcd"), 0);
    EXPECT_EQ(InStrRev("abc", "a", 4), 0);
    EXPECT_EQ(InStrRev("abc", "", 2), 2);
    EXPECT_EQ(errorNumber([] { (void)InStrRev("abc", "a", 0); }), err::InvalidCall);
    EXPECT_EQ(errorNumber([] { (void)InStrRev("abc", "a", -2); }), err::InvalidCall);
}

TEST(Replace, ReplacesEveryOccurrenceLeftToRightWithoutOverlap)
{
    EXPECT_EQ(Replace("a-b-c", "-", "+"), "a+b+c");
    EXPECT_EQ(Replace("abab", "ab", "x"), "xx");
    EXPECT_EQ(Replace("aaa", "aa", "b"), "ba");
    EXPECT_EQ(Replace("aaaa", "aa", "b"), "bb");
    EXPECT_EQ(Replace("xaby", "ab", ""), "xy");
}

TEST(Replace, DoesNotRescanReplacedText)
{
    EXPECT_EQ(Replace("aa", "a", "aa"), "aaaa");
    EXPECT_EQ(Replace("%1%", "%1%", "%1%%1%"), "%1%%1%");
}

TEST(Replace, ComparesBinaryAndLeavesTextForEmptyFind)
{
    EXPECT_EQ(Replace("Abc abc", "abc", "x"), "Abc x");
    EXPECT_EQ(Replace("abc", "", "x"), "abc");
    EXPECT_EQ(Replace("", "a", "x"), "");
}

TEST(Case, ChangesOnlyAsciiLetters)
{
    EXPECT_EQ(UCase("`az{ äö 1"), "`AZ{ äö 1");
    EXPECT_EQ(LCase("@AZ[ ÄÖ 1"), "@az[ ÄÖ 1");
}

TEST(Trim, RemovesSpacesOnly)
{
    EXPECT_EQ(Trim("  a b  "), "a b");
    EXPECT_EQ(Trim("   "), "");
    EXPECT_EQ(Trim(""), "");
    EXPECT_EQ(Trim("\ta\t"), "\ta\t");
}

TEST(StrCompBinary, OrdersByUnsignedBytes)
{
    EXPECT_EQ(StrCompBinary("a", "b"), -1);
    EXPECT_EQ(StrCompBinary("b", "a"), 1);
    EXPECT_EQ(StrCompBinary("abc", "abc"), 0);
    EXPECT_EQ(StrCompBinary("a", "A"), 1);
    EXPECT_EQ(StrCompBinary("ab", "abc"), -1);
    EXPECT_EQ(StrCompBinary("ä", "z"), 1) << "bytes above 127 sort after ASCII";
    EXPECT_EQ(StrCompBinary("zzzzzz", "zzzzzzzzz"), -1) << "the result is clamped, not a length difference";
}

}  // namespace
}  // namespace pipespec::text
