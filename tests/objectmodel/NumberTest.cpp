// The number rules: what reads as a number, how it rounds to 32 and 16 bits
// (half to even, overflow past the bounds) and how it is written back.

#include "objectmodel/ExpectError.h"
#include "objectmodel/Text.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>

namespace pipespec::text {
namespace {

using checks::errorNumber;

TEST(Numbers, ReadSignedDecimalsWithExponentAndBlanksWithinTheRangeOfADouble)
{
    for (const char* s : {"0", "007", "-12", "+12", " 12 ", "\t12\t", "1.5", ".5", "5.", "-.5", "1e5", "1E+5", "1e-5",
                          "1.5E3", "1.e5", "1e-400", "1.7e308", "0.001e310"})
        EXPECT_TRUE(IsNumeric(s)) << '"' << s << '"';
    for (const char* s :
         {"",    "   ", ".",   "+",   "-",    "1e",    "1e+",   "e5",  ".e5", "abc",   "12a",    "1.2.3",
          "1 2", "- 1", "++1", "1,5", "0x10", "1e5.5", "1e5e5", "inf", "nan", "1e400", "-1e309", "0.0000001e316"})
        EXPECT_FALSE(IsNumeric(s)) << '"' << s << '"';

    for (const auto& [s, value] : {std::pair{" -1.5e2 ", -150.0},
                                   {"+5.", 5.0},
                                   {".25", 0.25},
                                   {"0e999999", 0.0},
                                   {"1e-400", 0.0},
                                   {"100000e-400", 0.0}})
        EXPECT_EQ(CDbl(s), value) << s;
    for (const char* s : {"", "12a"}) EXPECT_EQ(errorNumber([&] { (void)CDbl(s); }), err::TypeMismatch) << s;
    for (const char* s : {"1e400", "-1e400", "1e99999999999999999999", "0.0000001e316"})
        EXPECT_EQ(errorNumber([&] { (void)CDbl(s); }), err::Overflow) << s;
}

TEST(Numbers, RoundHalfToEvenAndOverflowPastThirtyTwoAndSixteenBits)
{
    for (const auto& [value, whole] : {std::pair{0.5, 0},
                                       {1.5, 2},
                                       {2.5, 2},
                                       {3.5, 4},
                                       {-0.5, 0},
                                       {-1.5, -2},
                                       {-2.5, -2},
                                       {2.4999999, 2},
                                       {2.5000001, 3},
                                       {-2.6, -3},
                                       {2147483647.49, 2147483647},
                                       {-2147483648.5, std::numeric_limits<int>::min()}})
        EXPECT_EQ(CLng(value), whole) << value;
    for (const double value : {2147483647.5, 2147483648.0, -2147483648.51, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(errorNumber([&] { (void)CLng(value); }), err::Overflow) << value;
    EXPECT_EQ(CLng(" 10003 "), 10003);
    EXPECT_EQ(CLng("2.5"), 2);
    EXPECT_EQ(CLng("-3.5"), -4);
    EXPECT_EQ(errorNumber([] { (void)CLng("3000000000"); }), err::Overflow);
    EXPECT_EQ(errorNumber([] { (void)CLng("10003a"); }), err::TypeMismatch);

    EXPECT_EQ(CInt(32766.5), 32766);
    EXPECT_EQ(CInt(32767.0), 32767);
    EXPECT_EQ(CInt(-32768.5), -32768);
    EXPECT_EQ(CInt("-7.5"), -8);
    for (const double value : {32767.5, -32769.0}) EXPECT_EQ(errorNumber([&] { (void)CInt(value); }), err::Overflow);
    EXPECT_EQ(errorNumber([] { (void)CInt("32768"); }), err::Overflow);

    // The 16-bit counter of the selector walks stops at its last value.
    EXPECT_EQ(Inc16(-32768), -32767);
    EXPECT_EQ(Inc16(-1), 0);
    EXPECT_EQ(Inc16(32766), 32767);
    EXPECT_EQ(errorNumber([] { (void)Inc16(32767); }), err::Overflow);
}

TEST(Numbers, WriteFifteenDigitsWithPointNoTrailingZerosAndExponentsAtTheExtremes)
{
    for (const auto& [value, written] : {std::pair{10003.0, "10003"},
                                         {-42.0, "-42"},
                                         {0.0, "0"},
                                         {-0.0, "0"},
                                         {1e14, "100000000000000"},
                                         {-2.5, "-2.5"},
                                         {123.45, "123.45"},
                                         {0.1 + 0.2, "0.3"},
                                         {1.0 / 3.0, "0.333333333333333"},
                                         {0.0001, "0.0001"},
                                         {1e15, "1E+15"},
                                         {0.00001, "1E-05"},
                                         {-1.25e-300, "-1.25E-300"}})
        EXPECT_EQ(Str(value), written);
    for (const double value : {10003.0, -2.5, 0.0001, 1e15, -1.25e-300})
        EXPECT_EQ(CDbl(Str(value)), value) << "reads back: " << Str(value);
}

}  // namespace
}  // namespace pipespec::text
