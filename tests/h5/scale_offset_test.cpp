// When data are written without the scale-offset filter because it would damage them.

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

#include "h5/h5_test.h"

namespace {

using namespace orv_test;

constexpr char kBlock[] = "/post/constant/b";
const std::string kValues = std::string(kBlock) + "/x";

class ScaleOffset : public H5Test {
 protected:
  ~ScaleOffset() override { OH5SetCompression(0, -1); }

  static int Write(hid_t loc, const hsize_t* dims, const std::vector<float>& values) {
    return OH5Write_FLOAT(loc, "x", 1, dims, ORV_FLOAT, values.data());
  }
  static int Write(hid_t loc, const hsize_t* dims, const std::vector<double>& values) {
    return OH5Write_FLOAT(loc, "x", 1, dims, ORV_DOUBLE, values.data());
  }
  static int Write(hid_t loc, const hsize_t* dims, const std::vector<std::int32_t>& values) {
    return OH5Write_INT(loc, "x", 1, dims, ORV_INT, values.data());
  }
  static int Write(hid_t loc, const hsize_t* dims, const std::vector<std::int64_t>& values) {
    return OH5Write_INT(loc, "x", 1, dims, ORV_LONG, values.data());
  }
  template <class T>
  int Write(const std::vector<T>& values) {
    const Location place(file_.path(), kBlock, H5F_ACC_RDWR);
    const hsize_t dims[] = {values.size()};
    return Write(place.id(), dims, values);
  }
  /// Writes compressed, expects success and tells whether the filter is there.
  template <class T>
  bool IsFiltered(int digits, const std::vector<T>& values) {
    OH5SetCompression(1, digits);
    EXPECT_EQ(Write(values), 0);
    return !RawFile(file_.path()).filters(kValues).empty();
  }
  template <class T>
  std::vector<T> Stored() {
    return RawFile(file_.path()).values<T>(kValues);
  }

  ForgedFile file_ = std::move(ForgedFile("filter").at(kBlock));
};

TEST_F(ScaleOffset, IsLeftOutForFloatsTooWideForTheDigits) {
  const std::vector<float> wide = {1e7F, -1e7F, 0.5F};
  EXPECT_FALSE(IsFiltered(3, wide));
  EXPECT_EQ(Stored<float>(), wide);
}

TEST_F(ScaleOffset, IsUsedForTheSameFloatsWithFewerDigits) {
  EXPECT_TRUE(IsFiltered<float>(0, {1e7F, -1e7F, 4.0F}));
  EXPECT_EQ(Stored<float>(), (std::vector<float>{1e7F, -1e7F, 4.0F}));
}

TEST_F(ScaleOffset, IsLeftOutForDoublesTooWideForTheDigits) {
  const std::vector<double> wide = {1e16, -1e16, 0.5};
  EXPECT_FALSE(IsFiltered(3, wide));
  EXPECT_EQ(Stored<double>(), wide);
}

TEST_F(ScaleOffset, IsUsedForDoublesThatFloatsCouldNotHold) {
  EXPECT_TRUE(IsFiltered<double>(3, {1e9, -1e9, 0.5}));
  const std::vector<double> stored = Stored<double>();
  EXPECT_NEAR(stored[0], 1e9, 1e-3);
  EXPECT_NEAR(stored[1], -1e9, 1e-3);
  EXPECT_NEAR(stored[2], 0.5, 1e-3);
}

TEST_F(ScaleOffset, IsLeftOutForAnInfiniteValue) {
  const std::vector<float> values = {1, std::numeric_limits<float>::infinity(), 2};
  EXPECT_FALSE(IsFiltered(2, values));
  EXPECT_EQ(Stored<float>(), values);
}

TEST_F(ScaleOffset, IsLeftOutForAValueThatIsNoNumber) {
  EXPECT_FALSE(IsFiltered<double>(2, {1, std::nan(""), 2}));
  const std::vector<double> stored = Stored<double>();
  EXPECT_EQ(stored[0], 1);
  EXPECT_TRUE(std::isnan(stored[1]));
  EXPECT_EQ(stored[2], 2);
}

TEST_F(ScaleOffset, IsLeftOutForDigitsBeyondAllNumbers) {
  EXPECT_FALSE(IsFiltered<double>(400, {0, 0}));
  EXPECT_EQ(Stored<double>(), (std::vector<double>{0, 0}));
}

TEST_F(ScaleOffset, IsLeftOutForIntegersOfTheFullRange) {
  const std::vector<std::int32_t> wide = {std::numeric_limits<std::int32_t>::min(),
                                          std::numeric_limits<std::int32_t>::max(), 0};
  EXPECT_FALSE(IsFiltered(0, wide));
  EXPECT_EQ(Stored<std::int32_t>(), wide);
}

TEST_F(ScaleOffset, IsLeftOutForLongIntegersOfTheFullRange) {
  const std::vector<std::int64_t> wide = {std::numeric_limits<std::int64_t>::min(),
                                          std::numeric_limits<std::int64_t>::max(), 0};
  EXPECT_FALSE(IsFiltered(0, wide));
  EXPECT_EQ(Stored<std::int64_t>(), wide);
}

TEST_F(ScaleOffset, IsUsedForLargeIntegersOfASmallRange) {
  const std::vector<std::int32_t> narrow = {2147483647, 2147483600, 2147483601};
  EXPECT_TRUE(IsFiltered(0, narrow));
  EXPECT_EQ(Stored<std::int32_t>(), narrow);
}

TEST_F(ScaleOffset, OfADatasetThatIsThereRefusesWhatItWouldDamage) {
  EXPECT_TRUE(IsFiltered<float>(6, {1, 2}));
  for (const int digits : {-1, 0, 6}) {  // the switches of this call say nothing about the filter that is there
    OH5SetCompression(0, digits);
    ForgetText();
    EXPECT_EQ(Write<float>({1e6F, 2}), 1) << digits;
    EXPECT_EQ(LastText(), "OH5Write_FLOAT::\n\t Failed to write ::\"x\"");
  }
  EXPECT_EQ(Stored<float>(), (std::vector<float>{1, 2}));
}

TEST_F(ScaleOffset, OfFloatsThatAreThereRefusesDoublesTooWideForThem) {
  EXPECT_TRUE(IsFiltered<float>(3, {1, 2}));
  EXPECT_EQ(Write<double>({1e9, 2}), 1);
  EXPECT_EQ(Stored<float>(), (std::vector<float>{1, 2}));
  EXPECT_EQ(Write<double>({1000.5, 2}), 0);
  EXPECT_NEAR(Stored<float>()[0], 1000.5, 1e-3);
}

TEST_F(ScaleOffset, OfIntegersThatAreThereRefusesLongOnesTooWideForThem) {
  EXPECT_TRUE(IsFiltered<std::int32_t>(0, {1, 2}));
  EXPECT_EQ(Write<std::int64_t>({-9000000000, 9000000000}), 1);
  EXPECT_EQ(Stored<std::int32_t>(), (std::vector<std::int32_t>{1, 2}));
}

TEST_F(ScaleOffset, OfADatasetThatIsThereIsAsFineAsItWasMade) {
  EXPECT_TRUE(IsFiltered<double>(1, {1, 2}));
  OH5SetCompression(1, 9);
  EXPECT_EQ(Write<double>({1e12, 2}), 0);
  EXPECT_NEAR(Stored<double>()[0], 1e12, 0.1);
}

}  // namespace
