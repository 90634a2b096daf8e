// Values that are read without HDF5: conversions are those of HDF5, bit by bit, and slabs are cut as it cuts them.

#include "h5/plain_numbers.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>

#include "structure/memory_bytes.h"
#include "support/raw_hdf5.h"

namespace {

using namespace orvio::h5;
using orvio::structure::ArrayShape;
using orvio::structure::Catalogue;
using orvio::structure::ElementKind;

ArrayShape ShapeOf(ElementKind kind, std::uint32_t size, const std::vector<std::uint64_t>& extents) {
  ArrayShape shape;
  shape.kind = kind;
  shape.element_size = size;
  shape.rank = static_cast<std::uint32_t>(extents.size());
  std::copy(extents.begin(), extents.end(), shape.extents.begin());
  shape.points = std::accumulate(extents.begin(), extents.end(), std::uint64_t{1}, std::multiplies<>());
  return shape;
}

/// Converted here and by HDF5.
template <class To, class From>
void ExpectAsHdf5(ElementKind kind, int type, hid_t from_type, hid_t to_type, std::vector<From> numbers) {
  const TypeRow& row = *FindNumericType(type);
  const ArrayShape shape = ShapeOf(kind, sizeof(From), {numbers.size()});
  ASSERT_TRUE(IsPlain(shape, row));
  std::vector<To> here(numbers.size());
  ConvertPlain(shape, row, reinterpret_cast<const std::uint8_t*>(numbers.data()), here.data(), numbers.size());
  std::vector<std::uint64_t> there(numbers.size());
  std::memcpy(there.data(), numbers.data(), numbers.size() * sizeof(From));
  ASSERT_GE(H5Tconvert(from_type, to_type, numbers.size(), there.data(), nullptr, H5P_DEFAULT), 0);
  for (size_t i = 0; i < numbers.size(); ++i) {
    EXPECT_EQ(std::memcmp(&here[i], reinterpret_cast<const char*>(there.data()) + i * sizeof(To), sizeof(To)), 0)
        << "number " << i << ": " << numbers[i] << " became " << here[i];
  }
}

std::vector<double> StrangeDoubles() {
  constexpr double kMost = std::numeric_limits<float>::max();
  std::vector<double> numbers = {0.,
                                 -0.,
                                 1.,
                                 -1.5,
                                 .1,
                                 1e-50,
                                 -1e-50,
                                 1e-40,
                                 1e300,
                                 -1e300,
                                 kMost,
                                 -kMost,
                                 std::nextafter(kMost, 2 * kMost),
                                 -std::nextafter(kMost, 2 * kMost),
                                 kMost * 1.00000001,
                                 HUGE_VAL,
                                 -HUGE_VAL,
                                 std::nan(""),
                                 -std::nan("7"),
                                 5e-324};
  for (std::uint64_t bits = 1; bits != 0; bits = bits * 6364136223846793005ULL + (bits % 3 == 0 ? 0 : 12345)) {
    numbers.push_back(std::bit_cast<double>(bits));
    if (numbers.size() > 5000) break;
  }
  return numbers;
}

TEST(PlainNumbers, DoublesBecomeFloatsAsByHdf5) {
  ExpectAsHdf5<float>(ElementKind::kFloat, ORV_FLOAT, H5T_NATIVE_DOUBLE, H5T_NATIVE_FLOAT, StrangeDoubles());
}

TEST(PlainNumbers, DoublesThatAreNoLargerThanFloatsBecomeFloatsAsByHdf5) {
  std::vector<double> numbers = StrangeDoubles();
  std::erase_if(numbers, [](double number) { return !(std::abs(number) <= std::numeric_limits<float>::max()); });
  ASSERT_GT(numbers.size(), 1024U) << "numbers are converted in blocks";
  ExpectAsHdf5<float>(ElementKind::kFloat, ORV_FLOAT, H5T_NATIVE_DOUBLE, H5T_NATIVE_FLOAT, numbers);
}

TEST(PlainNumbers, FloatsBecomeDoublesAsByHdf5) {
  std::vector<float> numbers = {0.F, -0.F, .1F, 3e38F, 1e-45F, HUGE_VALF, -HUGE_VALF, std::nanf("")};
  for (std::uint32_t bits = 1; numbers.size() < 5000; bits = bits * 1664525U + 1013904223U) {
    numbers.push_back(std::bit_cast<float>(bits));
  }
  ExpectAsHdf5<double>(ElementKind::kFloat, ORV_DOUBLE, H5T_NATIVE_FLOAT, H5T_NATIVE_DOUBLE, numbers);
}

TEST(PlainNumbers, IntegersBecomeWiderAndNarrowerAsByHdf5) {
  const std::vector<std::int64_t> wide = {0,         -1,        7,         INT32_MAX,       INT32_MIN,
                                          INT64_MAX, INT64_MIN, 1LL << 32, -(1LL << 31) - 1};
  ExpectAsHdf5<std::int32_t>(ElementKind::kSigned, ORV_INT, H5T_NATIVE_INT64, H5T_NATIVE_INT, wide);
  ExpectAsHdf5<std::int64_t>(ElementKind::kSigned, ORV_LONG, H5T_NATIVE_INT32, H5T_NATIVE_INT64,
                             std::vector<std::int32_t>{0, -1, INT32_MAX, INT32_MIN, 12345});
}

TEST(PlainNumbers, OfOtherSizesAndKindsAreLeftToHdf5) {
  const TypeRow& integer = *FindNumericType(ORV_INT);
  const TypeRow& real = *FindNumericType(ORV_FLOAT);
  EXPECT_FALSE(IsPlain(ShapeOf(ElementKind::kSigned, 2, {1}), integer));
  EXPECT_FALSE(IsPlain(ShapeOf(ElementKind::kSigned, 4, {1}), real));
  EXPECT_FALSE(IsPlain(ShapeOf(ElementKind::kFloat, 4, {1}), integer));
  EXPECT_FALSE(IsPlain(ShapeOf(ElementKind::kText, 4, {1}), integer));
  EXPECT_FALSE(IsPlain(ShapeOf(ElementKind::kOther, 4, {1}), integer));
}

/// An array whose elements are their own numbers, behind 100 bytes of something else.
template <class Stored>
class Counted {
 public:
  explicit Counted(const std::vector<std::uint64_t>& extents)
      : shape_(
            ShapeOf(std::is_integral_v<Stored> ? ElementKind::kSigned : ElementKind::kFloat, sizeof(Stored), extents)) {
    bytes_.assign(100, 'x');
    for (std::uint64_t i = 0; i < shape_.points; ++i) {
      const auto number = static_cast<Stored>(i);
      bytes_.append(reinterpret_cast<const char*>(&number), sizeof number);
    }
  }

  template <class Wanted>
  std::vector<Wanted> Read(int type, std::vector<hsize_t> start, std::vector<hsize_t> count) {
    const std::uint64_t points = std::accumulate(count.begin(), count.end(), std::uint64_t{1}, std::multiplies<>());
    std::vector<Wanted> numbers(points + 1, Wanted{-1});
    orvio::structure::MemoryBytes source(bytes_.data(), bytes_.size());
    const PlainSlab slab{start.data(), count.data()};
    EXPECT_TRUE(ReadPlain(source, Catalogue::Values{shape_, 100}, *FindNumericType(type),
                          start.empty() ? nullptr : &slab, numbers.data()));
    EXPECT_EQ(numbers.back(), Wanted{-1}) << "written behind the end";
    numbers.pop_back();
    return numbers;
  }

 private:
  ArrayShape shape_;
  std::string bytes_;
};

/// What a slab of an array of own numbers holds, counted element by element.
std::vector<std::uint64_t> Expected(const std::vector<std::uint64_t>& extents, const std::vector<hsize_t>& start,
                                    const std::vector<hsize_t>& count) {
  std::vector<std::uint64_t> numbers = {0};
  for (size_t axis = 0; axis < extents.size(); ++axis) {
    std::vector<std::uint64_t> next;
    for (const std::uint64_t before : numbers) {
      for (hsize_t i = 0; i < count[axis]; ++i) next.push_back(before * extents[axis] + start[axis] + i);
    }
    numbers = std::move(next);
  }
  return numbers;
}

TEST(PlainRead, CutsEverySlabOfASmallArray) {
  const std::vector<std::uint64_t> extents = {3, 2, 4};
  Counted<float> same(extents);
  Counted<double> other(extents);
  for (hsize_t a = 0; a < 3; ++a) {
    for (hsize_t b = 0; b < 2; ++b) {
      for (hsize_t c = 0; c < 4; ++c) {
        for (int corner = 0; corner < 24; ++corner) {
          const std::vector<hsize_t> start = {a, b, c};
          const std::vector<hsize_t> count = {1 + static_cast<hsize_t>(corner) % (3 - a),
                                              1 + static_cast<hsize_t>(corner / 3) % (2 - b),
                                              1 + static_cast<hsize_t>(corner / 6) % (4 - c)};
          const auto expected = Expected(extents, start, count);
          EXPECT_EQ(same.Read<float>(ORV_FLOAT, start, count), std::vector<float>(expected.begin(), expected.end()));
          EXPECT_EQ(other.Read<float>(ORV_FLOAT, start, count), std::vector<float>(expected.begin(), expected.end()));
        }
      }
    }
  }
}

TEST(PlainRead, CutsSlabsThatTakeSeveralPieces) {
  const std::vector<std::uint64_t> extents = {60000, 6};
  Counted<std::int32_t> same(extents);
  Counted<std::int64_t> other(extents);
  for (const hsize_t column : {hsize_t{0}, hsize_t{5}}) {
    const std::vector<hsize_t> start = {1, column}, count = {59998, 1};
    const auto expected = Expected(extents, start, count);
    EXPECT_TRUE(same.Read<std::int32_t>(ORV_INT, start, count) ==
                std::vector<std::int32_t>(expected.begin(), expected.end()));
    EXPECT_TRUE(other.Read<std::int32_t>(ORV_INT, start, count) ==
                std::vector<std::int32_t>(expected.begin(), expected.end()));
  }
}

TEST(PlainRead, CutsRunsThatLieFarApart) {
  const std::vector<std::uint64_t> extents = {5, 3000, 3};
  Counted<float> array(extents);
  const std::vector<hsize_t> start = {1, 17, 0}, count = {4, 1, 3};
  const auto expected = Expected(extents, start, count);
  EXPECT_EQ(array.Read<float>(ORV_FLOAT, start, count), std::vector<float>(expected.begin(), expected.end()));
}

TEST(PlainRead, FailsWhereTheFileEnds) {
  const std::string bytes(50, 'x');
  orvio::structure::MemoryBytes source(bytes.data(), bytes.size());
  const ArrayShape shape = ShapeOf(ElementKind::kFloat, 4, {10});
  std::vector<float> numbers(10);
  EXPECT_FALSE(ReadPlain(source, Catalogue::Values{shape, 20}, *FindNumericType(ORV_FLOAT), nullptr, numbers.data()));
  EXPECT_TRUE(ReadPlain(source, Catalogue::Values{shape, 10}, *FindNumericType(ORV_FLOAT), nullptr, numbers.data()));
}

}  // namespace
