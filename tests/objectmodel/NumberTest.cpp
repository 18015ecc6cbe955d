#include "objectmodel/ExpectError.h"
#include "objectmodel/Text.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace pipespec::text {
namespace {

using checks::errorNumber;

TEST(IsNumeric, AcceptsSignedDecimalsWithExponentAndBlanks)
{
    for (const char* s : {"0", "007", "-12", "+12", " 12 ", "\t12\t", "1.5", ".5", "5.", "-.5", "1e5", "1E+5", "1e-5",
                          "1.5E3", "1.e5", "1e-400", "1.7e308", "0.001e310"})
        EXPECT_TRUE(IsNumeric(s)) << '"' << s << '"';
}

TEST(IsNumeric, RejectsIncompleteOrForeignFormsAndValuesBeyondADouble)
{
    for (const char* s :
         {"",    "   ", ".",   "+",   "-",    "1e",    "1e+",   "e5",  ".e5", "abc",   "12a",    "1.2.3",
          "1 2", "- 1", "++1", "1,5", "0x10", "1e5.5", "1e5e5", "inf", "nan", "1e400", "-1e309", "0.0000001e316"})
        EXPECT_FALSE(IsNumeric(s)) << '"' << s << '"';
}

TEST(CDbl, ReadsWhatIsNumeric)
{
    EXPECT_DOUBLE_EQ(CDbl(" -1.5e2 "), -150.0);
    EXPECT_DOUBLE_EQ(CDbl("+5."), 5.0);
    EXPECT_DOUBLE_EQ(CDbl(".25"), 0.25);
    EXPECT_DOUBLE_EQ(CDbl("0e999999"), 0.0);
}

TEST(CDbl, TextThatIsNotNumericIsTypeMismatch)
{
    EXPECT_EQ(errorNumber([] { (void)CDbl(""); }), err::TypeMismatch);
    EXPECT_EQ(errorNumber([] { (void)CDbl("12a"); }), err::TypeMismatch);
}

TEST(CDbl, TooLargeOverflowsTooSmallIsZero)
{
    EXPECT_EQ(errorNumber([] { (void)CDbl("1e400"); }), err::Overflow);
    EXPECT_EQ(errorNumber([] { (void)CDbl("-1e400"); }), err::Overflow);
    EXPECT_EQ(errorNumber([] { (void)CDbl("1e99999999999999999999"); }), err::Overflow);
    EXPECT_EQ(errorNumber([] { (void)CDbl("0.0000001e316"); }), err::Overflow);
    EXPECT_EQ(CDbl("1e-400"), 0.0);
    EXPECT_EQ(CDbl("100000e-400"), 0.0);
}

TEST(CLng, RoundsHalfToEven)
{
    EXPECT_EQ(CLng(0.5), 0);
    EXPECT_EQ(CLng(1.5), 2);
    EXPECT_EQ(CLng(2.5), 2);
    EXPECT_EQ(CLng(3.5), 4);
    EXPECT_EQ(CLng(-0.5), 0);
    EXPECT_EQ(CLng(-1.5), -2);
    EXPECT_EQ(CLng(-2.5), -2);
    EXPECT_EQ(CLng(2.4999999), 2);
    EXPECT_EQ(CLng(2.5000001), 3);
    EXPECT_EQ(CLng(-2.6), -3);
}

TEST(CLng, OverflowsWhenTheRoundedValueLeaves32Bits)
{
    EXPECT_EQ(CLng(2147483647.49), 2147483647);
    EXPECT_EQ(CLng(-2147483648.5), std::numeric_limits<std::int32_t>::min()) << "tie rounds to the even bound";
    EXPECT_EQ(errorNumber([] { (void)CLng(2147483647.5); }), err::Overflow);
    EXPECT_EQ(errorNumber([] { (void)CLng(2147483648.0); }), err::Overflow);
    EXPECT_EQ(errorNumber([] { (void)CLng(-2147483648.51); }), err::Overflow);
    EXPECT_EQ(errorNumber([] { (void)CLng(std::numeric_limits<double>::quiet_NaN()); }), err::Overflow);
}

TEST(CLng, FromTextRoundsTheNumberRead)
{
    EXPECT_EQ(CLng(" 10003 "), 10003);
    EXPECT_EQ(CLng("2.5"), 2);
    EXPECT_EQ(CLng("-3.5"), -4);
    EXPECT_EQ(errorNumber([] { (void)CLng("3000000000"); }), err::Overflow);
    EXPECT_EQ(errorNumber([] { (void)CLng("10003a"); }), err::TypeMismatch);
}

TEST(CInt, OverflowsWhenTheRoundedValueLeaves16Bits)
{
    EXPECT_EQ(CInt(32766.5), 32766);
    EXPECT_EQ(CInt(32767.0), 32767);
    EXPECT_EQ(CInt(-32768.5), -32768);
    EXPECT_EQ(errorNumber([] { (void)CInt(32767.5); }), err::Overflow);
    EXPECT_EQ(errorNumber([] { (void)CInt(-32769.0); }), err::Overflow);
    EXPECT_EQ(errorNumber([] { (void)CInt("32768"); }), err::Overflow);
    EXPECT_EQ(CInt("-7.5"), -8);
}

TEST(Inc16, FailsPastTheLastSixteenBitValue)
{
    EXPECT_EQ(Inc16(-32768), -32767);
    EXPECT_EQ(Inc16(-1), 0);
    EXPECT_EQ(Inc16(32766), 32767);
    EXPECT_EQ(errorNumber([] { (void)Inc16(32767); }), err::Overflow);
}

TEST(Str, WholeNumbersHaveNoDecimals)
{
    EXPECT_EQ(Str(10003), "10003");
    EXPECT_EQ(Str(-42), "-42");
    EXPECT_EQ(Str(0.0), "0");
    EXPECT_EQ(Str(-0.0), "0");
    EXPECT_EQ(Str(100000000000000.0), "100000000000000");
}

TEST(Str, FractionsUsePointAndNoTrailingZeros)
{
    EXPECT_EQ(Str(-2.5), "-2.5");
    EXPECT_EQ(Str(123.45), "123.45");
    EXPECT_EQ(Str(0.1 + 0.2), "0.3") << "15 significant digits hide binary noise";
    EXPECT_EQ(Str(1.0 / 3.0), "0.333333333333333");
    EXPECT_EQ(Str(0.0001), "0.0001");
}

TEST(Str, ExtremeMagnitudesUseExponent)
{
    EXPECT_EQ(Str(1e15), "1E+15");
    EXPECT_EQ(Str(0.00001), "1E-05");
    EXPECT_EQ(Str(-1.25e-300), "-1.25E-300");
}

TEST(Str, ReadsBackAsTheSameNumber)
{
    for (const double value : {10003.0, -2.5, 0.0001, 1e15, 1.25e-300})
        EXPECT_EQ(CDbl(Str(value)), value) << Str(value);
}

}  // namespace
}  // namespace pipespec::text
