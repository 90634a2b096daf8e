// Reading of hyperslabs into flat buffers.

#include <cstdint>
#include <optional>
#include <vector>

#include "h5/h5_test.h"

namespace {

using namespace orv_test;
using Dims = std::vector<hsize_t>;

constexpr char kBlock[] = "/post/constant/b";

ForgedFile Forge() {
  ForgedFile file("part");
  file.at(kBlock)
      .dataset<std::int32_t>("ints", {3, 4}, {0, 1, 2, 3, 10, 11, 12, 13, 20, 21, 22, 23})
      .dataset<double>("doubles", {5}, {0.5, 1.5, 2.5, 3.5, 4.5})
      .texts("words", 4, {2}, {"ab", "cd"})
      .scalar<std::int32_t>("one", 42);
  return file;
}

class SelectiveRead : public H5Test {
 protected:
  /// The block, opened at the first call.
  hid_t Place() {
    if (!place_) place_.emplace(file_.path(), kBlock);
    return place_->id();
  }
  /// Reads into a buffer that is -1 at first. Null extents are those left empty.
  template <class T>
  int Read(const char* name, _ORVDataType type, std::vector<T>& values, const Dims& start, const Dims& count,
           const Dims& stride = {}, const Dims& block = {}) {
    values.assign(12, T(-1));
    return OH5Read_SELECTIVE(Place(), name, static_cast<int>(count.size()), start.data(), count.data(),
                             stride.empty() ? nullptr : stride.data(), block.empty() ? nullptr : block.data(), type,
                             values.data());
  }
  int Status(const char* name, _ORVDataType type, const Dims& start, const Dims& count, const Dims& stride = {},
             const Dims& block = {}) {
    std::vector<double> values;
    return Read(name, type, values, start, count, stride, block);
  }

  ForgedFile file_ = Forge();
  std::optional<Location> place_;
};

TEST_F(SelectiveRead, GivesTheSlabRowByRow) {
  std::vector<std::int32_t> values;
  EXPECT_EQ(Read("ints", ORV_INT, values, {1, 2}, {2, 2}), 0);
  EXPECT_EQ(values, (std::vector<std::int32_t>{12, 13, 22, 23, -1, -1, -1, -1, -1, -1, -1, -1}));
  EXPECT_EQ(LastText(), kUntouched);
}

TEST_F(SelectiveRead, ConvertsWithinAClass) {
  std::vector<float> floats;
  EXPECT_EQ(Read("doubles", ORV_FLOAT, floats, {3}, {2}), 0);
  EXPECT_EQ(floats[0], 3.5F);
  EXPECT_EQ(floats[1], 4.5F);
  EXPECT_EQ(floats[2], -1);
  std::vector<std::int64_t> longs;
  EXPECT_EQ(Read("ints", ORV_LONG, longs, {2, 0}, {1, 1}), 0);
  EXPECT_EQ(longs[0], 20);
}

TEST_F(SelectiveRead, IgnoresAStrideWithoutABlock) {
  std::vector<double> values;
  EXPECT_EQ(Read("doubles", ORV_DOUBLE, values, {0}, {3}, {2}), 0);
  EXPECT_EQ(values[0], 0.5);
  EXPECT_EQ(values[1], 1.5);
  EXPECT_EQ(values[2], 2.5);
}

TEST_F(SelectiveRead, HeedsAStrideTogetherWithABlock) {
  std::vector<double> values;
  EXPECT_EQ(Read("doubles", ORV_DOUBLE, values, {0}, {3}, {2}, {1}), 0);
  EXPECT_EQ(values[0], 0.5);
  EXPECT_EQ(values[1], 2.5);
  EXPECT_EQ(values[2], 4.5);
}

TEST_F(SelectiveRead, CountsTheElementsOfEachBlock) {
  std::vector<std::int32_t> values;
  EXPECT_EQ(Read("ints", ORV_INT, values, {0, 0}, {1, 2}, {1, 2}, {2, 2}), 0);
  EXPECT_EQ(values, (std::vector<std::int32_t>{0, 1, 2, 3, 10, 11, 12, 13, -1, -1, -1, -1}));
}

TEST_F(SelectiveRead, TakesABlockWithoutAStrideOneAfterTheOther) {
  std::vector<double> values;
  EXPECT_EQ(Read("doubles", ORV_DOUBLE, values, {1}, {1}, {}, {3}), 0);
  EXPECT_EQ(values[0], 1.5);
  EXPECT_EQ(values[2], 3.5);
  EXPECT_EQ(values[3], -1);
}

TEST_F(SelectiveRead, FailsSilentlyForACountOfZeroAMissingDatasetOrAnUnknownType) {
  EXPECT_EQ(Status("ints", ORV_INT, {0, 0}, {2, 0}), 1);
  EXPECT_EQ(Status("nowhere", ORV_INT, {0}, {1}), 1);
  for (const int type : {0, 1, 4, 5, 8}) {
    EXPECT_EQ(Status("ints", static_cast<_ORVDataType>(type), {0, 0}, {1, 1}), 1) << type;
  }
  EXPECT_EQ(LastText(), kUntouched);
}

TEST_F(SelectiveRead, NamesTheClassThatItExpects) {
  EXPECT_EQ(Status("ints", ORV_FLOAT, {0, 0}, {1, 1}), 1);
  EXPECT_EQ(LastText(),
            "OH5Read_SELECTIVE::\n\t \"ints\" datatype ORV_FLOAT expected (H5T_class_t = 1). Got H5T_class_t=0 type");
  EXPECT_EQ(Status("ints", ORV_DOUBLE, {0, 0}, {1, 1}), 1);
  EXPECT_EQ(Status("words", ORV_INT, {0}, {1}), 1);
  EXPECT_EQ(LastText(),
            "OH5Read_SELECTIVE::\n\t \"words\" datatype ORV_INT expected (H5T_class_t = 0). Got H5T_class_t=3 type");
  EXPECT_EQ(Status("doubles", ORV_LONG, {0}, {1}), 1);
  EXPECT_EQ(LastText(),
            "OH5Read_SELECTIVE::\n\t \"doubles\" datatype ORV_INT expected (H5T_class_t = 0). Got H5T_class_t=1 type");
}

TEST_F(SelectiveRead, RefusesAnotherRank) {
  EXPECT_EQ(Status("ints", ORV_INT, {0}, {1}), 1);
  EXPECT_EQ(LastText(), "OH5Read_SELECTINE::\n\t \"ints\" dimension mismatch");
  EXPECT_EQ(Status("doubles", ORV_DOUBLE, {0, 0}, {1, 1}), 1);
  EXPECT_EQ(LastText(), "OH5Read_SELECTINE::\n\t \"doubles\" dimension mismatch");
}

TEST_F(SelectiveRead, RefusesACountAboveTheExtent) {
  EXPECT_EQ(Status("ints", ORV_INT, {0, 0}, {3, 5}), 1);
  EXPECT_EQ(LastText(), "OH5Read_SELECTINE::\n\t \"ints\" block size more than dimension");
}

TEST_F(SelectiveRead, RefusesABlockOfZero) {
  EXPECT_EQ(Status("ints", ORV_INT, {0, 0}, {1, 1}, {1, 1}, {1, 0}), 1);
  EXPECT_EQ(LastText(), "OH5Read_SELECTINE::\n\t \"ints\" count cannot be less than zero");
}

TEST_F(SelectiveRead, FailsForASlabThatLeavesTheDataset) {
  std::vector<std::int32_t> values;
  EXPECT_EQ(Read("ints", ORV_INT, values, {2, 0}, {2, 1}), 1);
  EXPECT_EQ(LastText(), "OH5Read_SELECTINE::\n\t Read Failed ::\"ints\"");
  EXPECT_EQ(values, std::vector<std::int32_t>(12, -1));
}

TEST_F(SelectiveRead, FailsForBlocksThatOverlap) {
  EXPECT_EQ(Status("doubles", ORV_DOUBLE, {0}, {2}, {1}, {2}), 1);
  EXPECT_EQ(LastText(), "OH5Read_SELECTINE::\n\t Read Failed ::\"doubles\"");
}

TEST_F(SelectiveRead, FailsWhenTheProductOfTheBlocksDoesNotFit) {
  EXPECT_EQ(Status("ints", ORV_INT, {0, 0}, {2, 2}, {1, 1}, {hsize_t{1} << 62, 4}), 1);
}

TEST_F(SelectiveRead, TakesRankZeroForASingleElement) {
  std::int32_t value = 0;
  EXPECT_EQ(OH5Read_SELECTIVE(Place(), "one", 0, nullptr, nullptr, nullptr, nullptr, ORV_INT, &value), 0);
  EXPECT_EQ(value, 42);
}

TEST_F(SelectiveRead, RefusesRankZeroForMoreElements) {
  std::int32_t value = 0;
  EXPECT_EQ(OH5Read_SELECTIVE(Place(), "ints", 0, nullptr, nullptr, nullptr, nullptr, ORV_INT, &value), 1);
  EXPECT_EQ(LastText(), "OH5Read_SELECTINE::\n\t \"ints\" dimension mismatch");
  EXPECT_EQ(value, 0);
}

TEST_F(SelectiveRead, RefusesNullArguments) {
  const hsize_t one[] = {1};
  double value = 0;
  EXPECT_EQ(OH5Read_SELECTIVE(Place(), nullptr, 1, one, one, nullptr, nullptr, ORV_DOUBLE, &value), 1);
  EXPECT_EQ(OH5Read_SELECTIVE(Place(), "doubles", 1, nullptr, one, nullptr, nullptr, ORV_DOUBLE, &value), 1);
  EXPECT_EQ(OH5Read_SELECTIVE(Place(), "doubles", 1, one, nullptr, nullptr, nullptr, ORV_DOUBLE, &value), 1);
  EXPECT_EQ(OH5Read_SELECTIVE(Place(), "doubles", 1, one, one, nullptr, nullptr, ORV_DOUBLE, nullptr), 1);
}

TEST_F(SelectiveRead, TellsOfAGroupInPlaceOfADataset) {
  file_.group("inner");
  const hsize_t zero[] = {0}, one[] = {1};
  std::int32_t value = 0;
  EXPECT_EQ(OH5Read_SELECTIVE(Place(), "inner", 1, zero, one, nullptr, nullptr, ORV_INT, &value), 1);
  EXPECT_EQ(LastText(), "OH5Read_SELECTINE::\n\t Read Failed ::\"inner\"");
}

}  // namespace
