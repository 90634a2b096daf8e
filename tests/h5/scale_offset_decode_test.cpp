// Values out of the bytes of scale-offset chunks. The bytes are those that HDF5 1.14.5 wrote; whole datasets are in
// scale_offset_read_test.

#include "h5/scale_offset_decode.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>
#include <string_view>
#include <vector>

namespace {

using orvio::h5::ScaleOffset;
using orvio::h5::ScaleOffsetChunk;
using orvio::h5::ScaleOffsetFrom;
using testing::ElementsAre;

using Bytes = std::vector<unsigned char>;

/// Bytes from hexadecimal digits; blanks are for the eye.
Bytes Hex(std::string_view digits) {
  const auto digit = [](char c) { return c <= '9' ? c - '0' : c - 'a' + 10; };
  Bytes bytes;
  std::string_view::size_type i = 0;
  while (i < digits.size()) {
    if (digits[i] == ' ') {
      ++i;
      continue;
    }
    bytes.push_back(static_cast<unsigned char>(digit(digits[i]) * 16 + digit(digits[i + 1])));
    i += 2;
  }
  return bytes;
}

ScaleOffset Floats(size_t width, int digits) {
  ScaleOffset filter;
  filter.floats = true;
  filter.applies = true;
  filter.width = width;
  filter.factor = digits;
  return filter;
}

ScaleOffset Integers(size_t width, int bits = 0) {
  ScaleOffset filter;
  filter.applies = true;
  filter.is_signed = true;
  filter.width = width;
  filter.factor = bits;
  return filter;
}

ScaleOffset WithFill(ScaleOffset filter, uint64_t fill) {
  filter.fill = fill;
  return filter;
}

ScaleOffset BigEndian(ScaleOffset filter) {
  filter.big_endian = true;
  return filter;
}

/// What `count` values of a chunk of `elements` are, from the first asked for on; empty when the chunk is refused.
template <class T>
std::vector<T> Decoded(const ScaleOffset& filter, const Bytes& bytes, uint64_t elements, uint64_t first = 0,
                       uint64_t count = UINT64_MAX, bool filtered = true) {
  const auto chunk = ScaleOffsetChunk::Open(filter, bytes.data(), bytes.size(), elements, filtered);
  if (!chunk) return {};
  std::vector<T> values(count == UINT64_MAX ? elements - first : count);
  chunk->Decode(first, values.size(), values.data());
  return values;
}

bool IsSound(const ScaleOffset& filter, const Bytes& bytes, uint64_t elements, bool filtered = true) {
  return ScaleOffsetChunk::Open(filter, bytes.data(), bytes.size(), elements, filtered).has_value();
}

constexpr char kFourFloats[] = "11000000 08 000050c000000000 0000000000000000 084d059d8000193520";

TEST(ScaleOffsetDecode, GivesFloatsFromTheLeastOneOn) {
  EXPECT_THAT(Decoded<float>(Floats(4, 3), Hex(kFourFloats), 4), ElementsAre(1, 2.5F, -3.25F, 100));
}

TEST(ScaleOffsetDecode, GivesAnyPartOfAChunk) {
  EXPECT_THAT(Decoded<float>(Floats(4, 3), Hex(kFourFloats), 4, 1, 2), ElementsAre(2.5F, -3.25F));
  EXPECT_THAT(Decoded<float>(Floats(4, 3), Hex(kFourFloats), 4, 3, 1), ElementsAre(100));
}

TEST(ScaleOffsetDecode, GivesDoublesFromTheLeastOneOn) {
  const Bytes bytes = Hex("11000000 08 0000000000000ac0 0000000000000000 084d059d8000193520");
  EXPECT_THAT(Decoded<double>(Floats(8, 3), bytes, 4), ElementsAre(1, 2.5, -3.25, 100));
}

TEST(ScaleOffsetDecode, GivesTheFillValueWhereAllBitsAreSet) {
  const Bytes floats = Hex("11000000 08 0000803f00000000 0000000000000000 000001773ffff82b80");
  EXPECT_THAT(Decoded<float>(WithFill(Floats(4, 3), 0x40e00000), floats, 4), ElementsAre(1, 2.5F, 7, 100));
  const Bytes doubles = Hex("11000000 08 0000000000000ac0 0000000000000000 084d7fffc000193520");
  EXPECT_THAT(Decoded<double>(WithFill(Floats(8, 3), 0x401c000000000000), doubles, 4), ElementsAre(1, 7, -3.25, 100));
  const Bytes integers = Hex("07000000 08 0100000000000000 0000000000000000 01fc1630");
  EXPECT_THAT(Decoded<int32_t>(WithFill(Integers(4), 7), integers, 4), ElementsAre(1, 7, 3, 100));
  const Bytes only = Hex("01000000 08 0000000000000000 0000000000000000 f0");
  EXPECT_THAT(Decoded<int32_t>(WithFill(Integers(4), 7), only, 4), ElementsAre(7, 7, 7, 7));
}

TEST(ScaleOffsetDecode, GivesTheValueWithAllBitsSetWithoutAFillValue) {
  const Bytes bytes = Hex("04000000 08 0100000000000000 0000000000000000 012f00");
  EXPECT_THAT(Decoded<int32_t>(Integers(4, 4), bytes, 4), ElementsAre(1, 2, 3, 16));
  EXPECT_THAT(Decoded<int32_t>(WithFill(Integers(4, 4), 0), bytes, 4), ElementsAre(1, 2, 3, 0));
}

TEST(ScaleOffsetDecode, GivesTheLeastValueWithoutAnyBits) {
  const Bytes bytes = Hex("00000000 08 0000a04000000000 0000000000000000 00");
  EXPECT_THAT(Decoded<float>(Floats(4, 3), bytes, 3), ElementsAre(5, 5, 5));
  EXPECT_THAT(Decoded<float>(Floats(4, 3), Hex("00000000 08 0000a04000000000 0000000000000000"), 2), ElementsAre(5, 5));
  EXPECT_THAT(Decoded<float>(WithFill(Floats(4, 3), 0x40e00000), bytes, 2), ElementsAre(7, 7));
}

TEST(ScaleOffsetDecode, GivesIntegersOfAllSizes) {
  const Bytes bytes = Hex("04000000 08 9cffffffffffffff 0000000000000000 0a5000");
  EXPECT_THAT(Decoded<int8_t>(Integers(1), bytes, 4), ElementsAre(-100, -90, -95, -100));
  EXPECT_THAT(Decoded<int16_t>(BigEndian(Integers(2)), bytes, 4), ElementsAre(-100, -90, -95, -100));
  EXPECT_THAT(Decoded<int32_t>(Integers(4), bytes, 4), ElementsAre(-100, -90, -95, -100));
  EXPECT_THAT(Decoded<int64_t>(Integers(8), bytes, 4), ElementsAre(-100, -90, -95, -100));
  const Bytes upper = Hex("04000000 08 0000000000000080 0000000000000000 093000");
  EXPECT_THAT(Decoded<uint64_t>(Integers(8), upper, 4),
              ElementsAre(9223372036854775808U, 9223372036854775817U, 9223372036854775811U, 9223372036854775808U));
}

TEST(ScaleOffsetDecode, GivesValuesThatNeedNineBytesAtOnce) {
  const Bytes doubles =
      Hex("3f000000 08 0000000000000000 0000000000000000 "
          "0000000000000001fffffffffffff000000000000000002800000000000000 10 00");
  EXPECT_THAT(Decoded<double>(Floats(8, 0), doubles, 4), ElementsAre(0, 9223372036854774784.0, 5, 1));
  // 57 bits each: the values begin at bit 0, 57, 114 and so on, so that the fifth begins at the fourth bit of a byte.
  Bytes bytes = Hex("39000000 08 0000000000000000 0000000000000000");
  bytes.resize(bytes.size() + 57 * 16 / 8 + 1);
  const auto set = [&](unsigned bit) { bytes[21 + bit / 8] |= static_cast<unsigned char>(0x80 >> bit % 8); };
  for (unsigned i = 0; i < 16; ++i) {
    set(57 * i);       // the upper bit
    set(57 * i + 56);  // and the lower one
  }
  EXPECT_EQ(Decoded<int64_t>(Integers(8), bytes, 16), std::vector<int64_t>(16, (int64_t{1} << 56) + 1));
}

TEST(ScaleOffsetDecode, RecoversWhatTookAllBitsOfTheType) {
  const Bytes floats = Hex("20000000 08 0000000000000000 0000000000000000 8096184b809618cb0000003f0000807f");
  EXPECT_THAT(Decoded<float>(Floats(4, 3), floats, 4),
              ElementsAre(1e7F, -1e7F, 0.5F, std::numeric_limits<float>::infinity()));
  EXPECT_THAT(Decoded<float>(BigEndian(Floats(4, 3)), floats, 4, 1, 2), ElementsAre(-1e7F, 0.5F));
  const Bytes integers = Hex("20000000 08 0000000000000000 0000000000000000 00000080ffffff7f0000000005000000");
  EXPECT_THAT(Decoded<int32_t>(WithFill(Integers(4), 5), integers, 4), ElementsAre(-2147483648, 2147483647, 0, 5));
  EXPECT_THAT(Decoded<int8_t>(Integers(1), Hex("08000000 08 ffffffffffffffff 0000000000000000 ff7e0005"), 4),
              ElementsAre(-1, 126, 0, 5));
}

TEST(ScaleOffsetDecode, RecoversDoublesThatAreNoNumbers) {
  const Bytes bytes = Hex("40000000 08 000000000000f87f 0000000000000000 000000000000f87f000000000000f03f");
  const std::vector<double> values = Decoded<double>(Floats(8, 3), bytes, 2);
  ASSERT_EQ(values.size(), 2U);
  EXPECT_TRUE(std::isnan(values[0]));
  EXPECT_EQ(values[1], 1);
}

TEST(ScaleOffsetDecode, RecoversDoublesWhoseScaleIsBeyondAllNumbers) {
  const Bytes bytes = Hex("40000000 08 0000000000000000 0000000000000000 0000000000000000000000000000f03f");
  EXPECT_THAT(Decoded<double>(Floats(8, 400), bytes, 2), ElementsAre(0, 1));
}

TEST(ScaleOffsetDecode, RefusesFloatsThatAreLost) {
  Bytes bytes = Hex("40000000 08 0000c07f00000000 0000000000000000");
  bytes.resize(54);
  EXPECT_FALSE(IsSound(Floats(4, 3), bytes, 4));  // what HDF5 makes of floats that are no numbers
}

TEST(ScaleOffsetDecode, RefusesAScaleThatIsNoNumber) {
  const Bytes bytes = Hex(kFourFloats);
  EXPECT_TRUE(IsSound(Floats(4, 38), bytes, 4));
  EXPECT_FALSE(IsSound(Floats(4, 39), bytes, 4));
  EXPECT_TRUE(IsSound(Floats(8, 39), bytes, 4));
  EXPECT_FALSE(IsSound(Floats(8, 309), bytes, 4));
  EXPECT_FALSE(IsSound(Floats(4, -60), bytes, 4));
  EXPECT_TRUE(IsSound(Floats(4, -2), bytes, 4));
}

TEST(ScaleOffsetDecode, RefusesBytesThatDoNotSuffice) {
  Bytes bytes = Hex(kFourFloats);  // 68 bits: the last byte has four of them
  EXPECT_TRUE(IsSound(Floats(4, 3), bytes, 4));
  EXPECT_FALSE(IsSound(Floats(4, 3), bytes, 5));
  bytes.pop_back();
  EXPECT_FALSE(IsSound(Floats(4, 3), bytes, 4));
  Bytes whole = Hex("08000000 08 0100000000000000 0000000000000000 01020304 00");
  EXPECT_TRUE(IsSound(Integers(4), whole, 4));
  whole.pop_back();
  EXPECT_THAT(Decoded<int32_t>(Integers(4), whole, 4), ElementsAre(2, 3, 4, 5));
  whole.pop_back();
  EXPECT_FALSE(IsSound(Integers(4), whole, 4));
  Bytes full = Hex("20000000 08 0000000000000000 0000000000000000 00000080ffffff7f");
  EXPECT_TRUE(IsSound(Integers(4), full, 2));
  full.pop_back();
  EXPECT_FALSE(IsSound(Integers(4), full, 2));
}

TEST(ScaleOffsetDecode, RefusesAHeaderThatHdf5DoesNotWrite) {
  const Bytes good = Hex("08000000 08 0100000000000000 0000000000000000 0102030400");
  EXPECT_TRUE(IsSound(Integers(4), good, 4));
  Bytes bytes = good;
  bytes[0] = 33;  // bits, of a type with 32
  EXPECT_FALSE(IsSound(Integers(4), bytes, 4));
  bytes = good;
  bytes[3] = 0x80;
  EXPECT_FALSE(IsSound(Integers(4), bytes, 4));
  for (const unsigned char size : {0, 4, 7, 9, 16, 255}) {
    bytes = good;
    bytes[4] = size;
    EXPECT_FALSE(IsSound(Integers(4), bytes, 4)) << int{size};
  }
  bytes = good;
  bytes.resize(20);
  EXPECT_FALSE(IsSound(Integers(4), bytes, 0));
  bytes = good;
  bytes.resize(21 + 16 + 1);
  EXPECT_TRUE(IsSound(Integers(4), bytes, 4));
  bytes.resize(21 + 16 + 2);
  EXPECT_FALSE(IsSound(Integers(4), bytes, 4));
  EXPECT_FALSE(IsSound(Integers(4, 33), good, 4));
  EXPECT_FALSE(IsSound(Integers(4, -1), good, 4));
}

TEST(ScaleOffsetDecode, TakesAChunkWithoutTheFilterAsItIs) {
  const Bytes bytes = Hex("01000000 02000000");
  EXPECT_THAT(Decoded<int32_t>(Integers(4), bytes, 2, 0, 2, false), ElementsAre(1, 2));
  EXPECT_THAT(Decoded<int32_t>(Integers(4), bytes, 2, 1, 1, false), ElementsAre(2));
  EXPECT_THAT(Decoded<int32_t>(BigEndian(Integers(4)), Hex("00000001 00000002"), 2, 0, 2, false), ElementsAre(1, 2));
  EXPECT_THAT(Decoded<double>(BigEndian(Floats(8, 3)), Hex("3ff0000000000000"), 1, 0, 1, false), ElementsAre(1));
  EXPECT_FALSE(IsSound(Integers(4), bytes, 1, false));
  EXPECT_FALSE(IsSound(Integers(4), bytes, 3, false));
}

TEST(ScaleOffsetDecode, TakesIntegersThatAreToHaveAllBitsAsTheyAre) {
  EXPECT_THAT(Decoded<int32_t>(Integers(4, 32), Hex("01000000 02000000"), 2), ElementsAre(1, 2));
  EXPECT_THAT(Decoded<int32_t>(BigEndian(Integers(4, 32)), Hex("00000001 00000002"), 2), ElementsAre(1, 2));
  EXPECT_THAT(Decoded<float>(Floats(4, 32), Hex("08000000 08 0000803f00000000 0000000000000000 000000"), 2),
              ElementsAre(1, 1));  // digits are no bits
}

TEST(ScaleOffsetDecode, RefusesAPackedChunkOfAFormThatNeverPacks) {
  ScaleOffset filter = Floats(4, 3);
  filter.applies = false;
  EXPECT_FALSE(IsSound(filter, Hex(kFourFloats), 4));
}

struct ParameterRow {
  const char* what;
  size_t index;
  unsigned value;
};

TEST(ScaleOffsetDecode, KnowsTheParametersOfTheFilter) {
  unsigned parameters[20] = {0, 3, 100, 1, 8, 0, 1, 1, 0x55667788, 0x11223344};
  const auto floats = ScaleOffsetFrom(parameters, 100);
  ASSERT_TRUE(floats);
  EXPECT_TRUE(floats->floats && floats->applies && floats->big_endian && !floats->is_signed);
  EXPECT_EQ(floats->width, 8U);
  EXPECT_EQ(floats->factor, 3);
  EXPECT_EQ(floats->fill, 0x1122334455667788U);
  unsigned others[20] = {2, 0xffffffff, 7, 0, 2, 1, 0, 0};
  const auto integers = ScaleOffsetFrom(others, 7);
  ASSERT_TRUE(integers);
  EXPECT_TRUE(!integers->floats && integers->applies && !integers->big_endian && integers->is_signed);
  EXPECT_EQ(integers->width, 2U);
  EXPECT_EQ(integers->factor, -1);
  EXPECT_FALSE(integers->fill);
  others[0] = 0;
  EXPECT_FALSE(ScaleOffsetFrom(others, 7)->applies);
}

TEST(ScaleOffsetDecode, RefusesParametersThatHdf5DoesNotWrite) {
  constexpr ParameterRow kRows[] = {{"form", 0, 3}, {"elements", 2, 99}, {"elements", 2, 101}, {"class", 3, 2},
                                    {"size", 4, 2}, {"size", 4, 16},     {"size", 4, 0},       {"size", 4, 3},
                                    {"sign", 5, 2}, {"order", 6, 2},     {"has fill", 7, 2}};
  for (const ParameterRow& row : kRows) {
    unsigned parameters[20] = {0, 3, 100, 1, 4, 0, 0, 1};
    ASSERT_TRUE(ScaleOffsetFrom(parameters, 100));
    parameters[row.index] = row.value;
    EXPECT_FALSE(ScaleOffsetFrom(parameters, 100)) << row.what << ' ' << row.value;
  }
  unsigned none[20] = {0, 3, 0, 1, 4, 0, 0, 1};
  EXPECT_FALSE(ScaleOffsetFrom(none, 0));
  unsigned large[20] = {2, 0, 0x20000000, 0, 8, 1, 0, 0};  // a chunk of 4 GiB
  EXPECT_FALSE(ScaleOffsetFrom(large, 0x20000000));
}

}  // namespace
