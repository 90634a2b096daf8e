// When data are written without the scale-offset filter because it would damage them.

#include <cmath>
#include <cstdint>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "h5/entry.h"
#include "h5/h5_test.h"
#include "h5/scale_offset.h"

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

  /// Makes "x" with HDF5 alone: integers of four bits each.
  void ForgeFourBits(const std::vector<std::int32_t>& values, const std::function<void(hid_t list)>& set) {
    file_.raw([&](hid_t here) {
      const hsize_t dims[] = {values.size()};
      const hsize_t unlimited[] = {H5S_UNLIMITED};
      const Id space(H5Screate_simple(1, dims, unlimited), "space");
      const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
      Check(H5Pset_chunk(list.get(), 1, dims), "chunk");
      Check(H5Pset_scaleoffset(list.get(), H5Z_SO_INT, 4), "scale-offset");
      set(list.get());
      const Id made(H5Dcreate2(here, "x", H5T_NATIVE_INT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "x");
      Check(H5Dwrite(made.get(), H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), "x");
    });
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

TEST_F(ScaleOffset, OfIntegersWithFixedBitsRefusesWhatNeedsMore) {
  ForgeFourBits({1, 2, 3, 4}, [](hid_t) {});
  EXPECT_EQ(Write<std::int32_t>({1, 16, 3, 2}), 1);
  EXPECT_EQ(LastText(), "OH5Write_INT::\n\t Failed to write ::\"x\"");
  EXPECT_EQ(Write<std::int64_t>({1, 100, 1000, 5}), 1);
  EXPECT_EQ(Stored<std::int32_t>(), (std::vector<std::int32_t>{1, 2, 3, 4}));
  EXPECT_EQ(Write<std::int32_t>({1000001, 1000015, 1000003, 1000002}), 0);
  EXPECT_EQ(Stored<std::int32_t>(), (std::vector<std::int32_t>{1000001, 1000015, 1000003, 1000002}));
}

TEST_F(ScaleOffset, OfIntegersWithFixedBitsTakesTheFillValueBesideAnyOther) {
  ForgeFourBits({1, 2, 3, 4}, [](hid_t) {});
  EXPECT_EQ(Write<std::int32_t>({0, 1000, 1014, 0}), 0);
  EXPECT_EQ(Stored<std::int32_t>(), (std::vector<std::int32_t>{0, 1000, 1014, 0}));
  EXPECT_EQ(Write<std::int32_t>({0, 0, 0, 0}), 0);
  EXPECT_EQ(Stored<std::int32_t>(), (std::vector<std::int32_t>{0, 0, 0, 0}));
}

TEST_F(ScaleOffset, OfIntegersWithFixedBitsTakesTheDatasetsOwnFillValue) {
  ForgeFourBits({1, 2, 3, 4}, [](hid_t list) {
    const int fill = -7;
    Check(H5Pset_fill_value(list, H5T_NATIVE_INT, &fill), "fill value");
  });
  EXPECT_EQ(Write<std::int32_t>({-7, 1000, 1014, 1001}), 0);
  EXPECT_EQ(Stored<std::int32_t>(), (std::vector<std::int32_t>{-7, 1000, 1014, 1001}));
  EXPECT_EQ(Write<std::int32_t>({0, 1000, 1014, 1001}), 1);
}

TEST_F(ScaleOffset, OfIntegersWithFixedBitsUsesAllOfThemWithoutAFillValue) {
  ForgeFourBits({1, 2, 3, 4}, [](hid_t list) { Check(H5Pset_fill_value(list, H5T_NATIVE_INT, nullptr), "no fill"); });
  EXPECT_EQ(Write<std::int32_t>({1000, 1015, 1001, 1002}), 0);
  EXPECT_EQ(Stored<std::int32_t>(), (std::vector<std::int32_t>{1000, 1015, 1001, 1002}));
  EXPECT_EQ(Write<std::int32_t>({1000, 1016, 1001, 1002}), 1);
  EXPECT_EQ(Stored<std::int32_t>(), (std::vector<std::int32_t>{1000, 1015, 1001, 1002}));
}

TEST_F(ScaleOffset, OfIntegersWithFixedBitsRefusesGrowthThatNeedsMore) {
  ForgeFourBits({1, 2, 3, 4}, [](hid_t) {});
  const Location place(file_.path(), kBlock, H5F_ACC_RDWR);
  const hsize_t start[] = {4}, count[] = {4}, extent[] = {4};
  const std::int32_t wide[] = {1, 2, 3, 16};
  EXPECT_EQ(OH5Write_SELECTIVE(place.id(), "x", 1, start, count, nullptr, nullptr, ORV_INT, extent, wide), 1);
  const std::int32_t narrow[] = {1, 2, 3, 15};
  EXPECT_EQ(OH5Write_SELECTIVE(place.id(), "x", 1, start, count, nullptr, nullptr, ORV_INT, extent, narrow), 0);
}

// --- the boundaries, told apart by what HDF5 can read

/// Writes values with HDF5 alone, all of one chunk, and tells whether HDF5 reads the same.
template <class T>
bool Hdf5Keeps(ForgedFile& file, hid_t type, H5Z_SO_scale_type_t form, int factor, const std::vector<T>& values) {
  bool kept = false;
  file.raw([&](hid_t here) {
    const orvio::h5::QuietHdf5 quiet;
    const hsize_t dims[] = {values.size()};
    const Id space(H5Screate_simple(1, dims, nullptr), "space"), list(H5Pcreate(H5P_DATASET_CREATE), "list");
    Check(H5Pset_chunk(list.get(), 1, dims), "chunk");
    Check(H5Pset_scaleoffset(list.get(), form, factor), "scale-offset");
    Id made(H5Dcreate2(here, "y", type, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "y");
    Check(H5Dwrite(made.get(), type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), "y");
    made = Id();  // only what was closed goes through the filter on its way back
    made = Id(H5Dopen2(here, "y", H5P_DEFAULT), "y");
    std::vector<T> read(values.size());
    kept = H5Dread(made.get(), type, H5S_ALL, H5S_ALL, H5P_DEFAULT, read.data()) >= 0 && read == values;
    Check(H5Ldelete(here, "y", H5P_DEFAULT), "y");
  });
  return kept;
}

TEST_F(ScaleOffset, KeepsTheWidestRangeOfIntegersThatHdf5Reads) {
  const orvio::h5::TypeRow& row = *orvio::h5::FindNumericType(ORV_INT);
  for (const std::int32_t low : {-2147483647, -1073741824, 1}) {
    const auto high = static_cast<std::int32_t>(low + std::int64_t{2147483646});
    const std::vector<std::int32_t> values = {low, high};
    EXPECT_TRUE(orvio::h5::ScaleOffsetKeeps(row, values.data(), 2, 0)) << low;
    EXPECT_TRUE(Hdf5Keeps(file_, H5T_NATIVE_INT, H5Z_SO_INT, 0, values)) << low;
    const std::vector<std::int32_t> wide = {low - 1, high};
    EXPECT_EQ(orvio::h5::ScaleOffsetKeeps(row, wide.data(), 2, 0), low == 1) << low;  // 0 has a code of its own
    EXPECT_EQ(Hdf5Keeps(file_, H5T_NATIVE_INT, H5Z_SO_INT, 0, wide), low == 1) << low;
  }
}

TEST_F(ScaleOffset, KeepsTheWidestRangeOfLongIntegersThatHdf5Reads) {
  const orvio::h5::TypeRow& row = *orvio::h5::FindNumericType(ORV_LONG);
  const std::vector<std::int64_t> values = {-4611686018427387904, 4611686018427387902};
  EXPECT_TRUE(orvio::h5::ScaleOffsetKeeps(row, values.data(), 2, 0));
  EXPECT_TRUE(Hdf5Keeps(file_, H5T_NATIVE_LLONG, H5Z_SO_INT, 0, values));
  const std::vector<std::int64_t> wide = {-4611686018427387904, 4611686018427387903};
  EXPECT_FALSE(orvio::h5::ScaleOffsetKeeps(row, wide.data(), 2, 0));
  EXPECT_FALSE(Hdf5Keeps(file_, H5T_NATIVE_LLONG, H5Z_SO_INT, 0, wide));
}

TEST_F(ScaleOffset, IsLeftOutForDigitsBeyondTheNumbersOfTheType) {
  const std::vector<float> zeros = {0, 0};
  const orvio::h5::TypeRow& row = *orvio::h5::FindNumericType(ORV_FLOAT);
  EXPECT_TRUE(orvio::h5::ScaleOffsetKeeps(row, zeros.data(), 2, 38));
  EXPECT_TRUE(Hdf5Keeps(file_, H5T_NATIVE_FLOAT, H5Z_SO_FLOAT_DSCALE, 38, zeros));
  EXPECT_FALSE(orvio::h5::ScaleOffsetKeeps(row, zeros.data(), 2, 39));
  EXPECT_FALSE(Hdf5Keeps(file_, H5T_NATIVE_FLOAT, H5Z_SO_FLOAT_DSCALE, 39, zeros));
  const std::vector<double> doubles = {0, 0};
  EXPECT_TRUE(orvio::h5::ScaleOffsetKeeps(*orvio::h5::FindNumericType(ORV_DOUBLE), doubles.data(), 2, 39));
}

TEST_F(ScaleOffset, KeepsFloatsWellInsideWhatHdf5Reads) {
  const orvio::h5::TypeRow& row = *orvio::h5::FindNumericType(ORV_FLOAT);
  const std::vector<float> values = {536870880, -536870880};  // 2 to the 29th is the first that is refused
  EXPECT_TRUE(orvio::h5::ScaleOffsetKeeps(row, values.data(), 2, 0));
  EXPECT_TRUE(Hdf5Keeps(file_, H5T_NATIVE_FLOAT, H5Z_SO_FLOAT_DSCALE, 0, values));
  const std::vector<float> more = {536870912, 0};
  EXPECT_FALSE(orvio::h5::ScaleOffsetKeeps(row, more.data(), 2, 0));
}

// --- beside values that stay

TEST_F(ScaleOffset, OfIntegersWithFixedBitsRefusesWhatNeedsMoreBesideTheOthers) {
  ForgeFourBits({1000, 1002, 1003, 1004}, [](hid_t) {});
  const Location place(file_.path(), kValues);
  const orvio::h5::TypeRow& row = *orvio::h5::FindNumericType(ORV_INT);
  const auto keeps = [&](std::int32_t value) { return orvio::h5::StoredFilterKeepsBeside(place.id(), row, &value, 1); };
  EXPECT_TRUE(keeps(1014));  // with the fill value, fourteen above the least
  EXPECT_FALSE(keeps(1015));
  EXPECT_TRUE(keeps(990));
  EXPECT_FALSE(keeps(989));
  EXPECT_TRUE(keeps(0));  // the fill value
  const std::int32_t one = 5;
  EXPECT_TRUE(orvio::h5::StoredFilterKeeps(place.id(), row, &one, 1));  // in place of all
}

TEST_F(ScaleOffset, OfIntegersRefusesTheFullRangeBesideTheOthers) {
  EXPECT_TRUE(IsFiltered<std::int32_t>(0, {2000000000, 2000000001}));
  const Location place(file_.path(), kValues);
  const orvio::h5::TypeRow& row = *orvio::h5::FindNumericType(ORV_INT);
  const std::int32_t near = -1, far = -2000000000;
  EXPECT_TRUE(orvio::h5::StoredFilterKeepsBeside(place.id(), row, &near, 1));
  EXPECT_FALSE(orvio::h5::StoredFilterKeepsBeside(place.id(), row, &far, 1));
}

}  // namespace
