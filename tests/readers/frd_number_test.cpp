// Numbers in the fields of a .frd line. Where the fields stand is tested with the blocks.
#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "frd/field.h"

namespace {

using namespace orvio::frd;

/// Bits of the parsed float; all ones (no number that is printed) if the field was refused.
uint32_t ParsedBits(std::string_view field) {
  const auto value = ParseFloat(field);
  return value ? std::bit_cast<uint32_t>(*value) : 0xFFFFFFFFu;
}

TEST(FrdNumber, IsReadWithBlanksAroundItOrNone) {
  EXPECT_EQ(ParseFloat(" 1.50000E+00"), 1.5f);
  EXPECT_EQ(ParseFloat("-1.50000E+00"), -1.5f);
  EXPECT_EQ(ParseFloat("1.5         "), 1.5f);
  EXPECT_EQ(ParseFloat("+1.5"), 1.5f);
  EXPECT_EQ(ParseDouble(" 396.5944823"), 396.5944823);
  EXPECT_EQ(ParseDouble("13095.86835"), 13095.86835);
}

TEST(FrdNumber, KeepsTheSignOfZero) { EXPECT_EQ(ParsedBits("-0.00000E+00"), 0x80000000u); }

TEST(FrdNumber, KeepsDenormalFloats) {
  EXPECT_EQ(ParsedBits(" 1.40130E-45"), 1u);
  EXPECT_EQ(ParsedBits(" 1.68156E-44"), 12u);
  EXPECT_EQ(ParsedBits("-1.68156E-44"), 0x8000000Cu);
  EXPECT_EQ(ParsedBits(" 1.17549E-38"), 0x007FFFE1u);
}

TEST(FrdNumber, IsRoundedOnceFromTheText) {
  // Just above the middle between two floats, and exactly the middle once it has been a double.
  EXPECT_EQ(ParsedBits("1.000000059604644775390626"), 0x3F800001u);
  EXPECT_EQ(ParsedBits("1.000000059604644775390625"), 0x3F800000u);
}

TEST(FrdNumber, TakesAnExponentWithoutItsLetter) {
  EXPECT_EQ(ParseDouble(" 1.00000-100"), 1e-100);
  EXPECT_EQ(ParseDouble(" 1.00000+100"), 1e100);
  EXPECT_EQ(ParseDouble("-2.50000-005"), -2.5e-5);
  EXPECT_EQ(ParseDouble("1.-5"), 1e-5);
}

TEST(FrdNumber, TakesTheLetterOfADoublePrecisionExponent) {
  EXPECT_EQ(ParseDouble(" 1.25000D-03"), 1.25e-3);
  EXPECT_EQ(ParseDouble(" 1.25000d+03"), 1250.0);
  EXPECT_EQ(ParseDouble(" 1.25000D-103"), 1.25e-103);
}

TEST(FrdNumber, BecomesInfinityOrZeroBeyondTheRangeOfTheType) {
  const float infinity = std::numeric_limits<float>::infinity();
  EXPECT_EQ(ParseFloat(" 1.00000+100"), infinity);
  EXPECT_EQ(ParseFloat("-1.00000E+39"), -infinity);
  EXPECT_EQ(ParsedBits(" 1.00000-100"), 0u);
  EXPECT_EQ(ParsedBits("-1.00000E-46"), 0x80000000u);
  EXPECT_EQ(ParseDouble("-1.0E+400"), -std::numeric_limits<double>::infinity());
  EXPECT_EQ(ParseDouble("1.0E-400"), 0.0);
  EXPECT_EQ(ParseDouble("1e-99999999999999999999"), 0.0);
  EXPECT_EQ(ParseFloat("3.40282E+38"), 3.40282e38f);
}

TEST(FrdNumber, TakesNotANumberAndInfinityInAnySpelling) {
  for (const char* text : {"         nan", "         NaN", "        -nan", "         NAN"})
    EXPECT_TRUE(std::isnan(ParseFloat(text).value_or(0))) << text;
  const float infinity = std::numeric_limits<float>::infinity();
  for (const char* text : {"         inf", "    Infinity", "   +Infinity", "         INF"})
    EXPECT_EQ(ParseFloat(text), infinity) << text;
  for (const char* text : {"        -inf", "   -Infinity"}) EXPECT_EQ(ParseFloat(text), -infinity) << text;
}

TEST(FrdNumber, IsRefusedWhenBlankOrAnythingElse) {
  for (const char* text : {"", "            ", "abc", "************", "1.0E", "1.0E+", "1.0-", "-", "+", "+-1", "1,5",
                           "1 5", "0x10", "1.0E-5-3", "1-2-3", "E+05", "1.0EE5", "1.0\n", "1.00000E+00-1.00000E+00"})
    EXPECT_EQ(ParseFloat(text), std::nullopt) << text;
  EXPECT_EQ(ParseFloat(std::string(5000, '1')), std::nullopt);
}

TEST(FrdInteger, IsReadWholeOrRefused) {
  EXPECT_EQ(ParseInt32("        17"), 17);
  EXPECT_EQ(ParseInt32("2147483647"), 2147483647);
  EXPECT_EQ(ParseInt32("-1"), -1);
  EXPECT_EQ(ParseInt64("999999999999"), 999999999999);
  for (const char* text : {"", "    ", "2147483648", "1.0", "1 2", "x"})
    EXPECT_EQ(ParseInt32(text), std::nullopt) << text;
}

TEST(FrdColumns, CountFromOneAndEndWithTheLine) {
  EXPECT_EQ(Columns("abcdef", 1, 3), "abc");
  EXPECT_EQ(Columns("abcdef", 5, 9), "ef");
  EXPECT_EQ(Columns("abcdef", 7, 9), "");
  EXPECT_EQ(Columns("", 1, 1), "");
}

TEST(FrdQuote, ShowsNoControlCharacterAndNoLongText) {
  EXPECT_EQ(Quote("a\x1b[1mb\n"), "\"a?[1mb?\"");
  EXPECT_EQ(Quote(std::string(41, 'x')), '"' + std::string(40, 'x') + "...\"");
}

}  // namespace
