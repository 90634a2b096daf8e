// Reading of whole datasets and of their types. Parts of datasets: selective_read_test; attributes: attribute_test;
// datasets that reach out of their file: hostile_file_test.

#include <cstdint>
#include <cstring>
#include <limits>
#include <optional>
#include <vector>

#include "h5/h5_test.h"

namespace {

using namespace orv_test;
using Dims = std::vector<hsize_t>;

constexpr char kBlock[] = "/post/constant/b";

ForgedFile Forge() {
  ForgedFile file("read");
  file.at(kBlock)
      .dataset<std::int32_t>("ints", {2, 3}, {1, 2, 3, 4, 5, 6})
      .dataset<std::int64_t>("longs", {3}, {7, -8, 9000000000})
      .dataset<float>("floats", {2}, {1.5F, -2.25F})
      .dataset<double>("doubles", {2}, {0.5, 1e10})
      .dataset<std::int32_t>("column", {3, 1}, {10, 20, 30})
      .dataset<std::int32_t>("row", {1, 3}, {10, 20, 30})
      .scalar<double>("one", 4.5)
      .texts("words", 4, {2}, {"ab", "cdef"})
      .texts("word", 8, {}, {"single"});
  return file;
}

class DatasetRead : public H5Test {
 protected:
  /// The block, opened at the first call.
  hid_t Place() {
    if (!place_) place_.emplace(file_.path(), kBlock);
    return place_->id();
  }
  /// Reads into a buffer of T. Elements past the dataset keep the value -1.
  template <class T>
  int Read(const char* name, const Dims& dims, _ORVDataType type, std::vector<T>& values) {
    values.assign(8, T(-1));
    return OH5Read_DATASET(Place(), name, static_cast<int>(dims.size()), dims.data(), type, values.data());
  }
  int Status(const char* name, const Dims& dims, _ORVDataType type) {
    std::vector<double> values;
    return Read(name, dims, type, values);
  }

  ForgedFile file_ = Forge();
  std::optional<Location> place_;
};

TEST_F(DatasetRead, GivesIntegersInTheirStoredOrder) {
  std::vector<std::int32_t> values;
  EXPECT_EQ(Read("ints", {2, 3}, ORV_INT, values), 0);
  EXPECT_EQ(values, (std::vector<std::int32_t>{1, 2, 3, 4, 5, 6, -1, -1}));
  EXPECT_EQ(LastText(), kUntouched);
}

TEST_F(DatasetRead, ConvertsIntegersToTheWidthAskedFor) {
  std::vector<std::int64_t> longs;
  EXPECT_EQ(Read("ints", {2, 3}, ORV_LONG, longs), 0);
  EXPECT_EQ(longs, (std::vector<std::int64_t>{1, 2, 3, 4, 5, 6, -1, -1}));
  std::vector<std::int32_t> ints;
  EXPECT_EQ(Read("longs", {3}, ORV_INT, ints), 0);
  EXPECT_EQ(ints, (std::vector<std::int32_t>{7, -8, 2147483647, -1, -1, -1, -1, -1}));
}

TEST_F(DatasetRead, ConvertsFloatsToTheWidthAskedFor) {
  std::vector<float> floats;
  EXPECT_EQ(Read("doubles", {2}, ORV_FLOAT, floats), 0);
  EXPECT_EQ(floats, (std::vector<float>{0.5F, 1e10F, -1, -1, -1, -1, -1, -1}));
  std::vector<double> doubles;
  EXPECT_EQ(Read("floats", {2}, ORV_DOUBLE, doubles), 0);
  EXPECT_EQ(doubles, (std::vector<double>{1.5, -2.25, -1, -1, -1, -1, -1, -1}));
}

TEST_F(DatasetRead, TakesRankZeroAndNoExtentsForASingleElement) {
  double value = 0;
  EXPECT_EQ(OH5Read_DATASET(Place(), "one", 0, nullptr, ORV_DOUBLE, &value), 0);
  EXPECT_EQ(value, 4.5);
}

TEST_F(DatasetRead, TakesRankOneWithOneElementForARankZeroDataset) {
  std::vector<double> values;
  EXPECT_EQ(Read("one", {1}, ORV_DOUBLE, values), 0);
  EXPECT_EQ(values[0], 4.5);
  EXPECT_EQ(Read("one", {2}, ORV_DOUBLE, values), 1);
  EXPECT_EQ(LastText(), "DatasetIO::\n\t \"one\" dimension mismatch");
}

TEST_F(DatasetRead, RefusesRankZeroForMoreThanOneElement) {
  EXPECT_EQ(Status("ints", {}, ORV_INT), 1);
  EXPECT_EQ(LastText(), "DatasetIO::\n\t \"ints\" dimension mismatch");
}

TEST_F(DatasetRead, RefusesANegativeRankForMoreThanOneElement) {
  std::int32_t values[6] = {};
  EXPECT_EQ(OH5Read_DATASET(Place(), "ints", -1, nullptr, ORV_INT, values), 1);
  EXPECT_EQ(values[0], 0);
}

TEST_F(DatasetRead, FailsSilentlyForAnExtentOfZero) {
  EXPECT_EQ(Status("ints", {2, 0}, ORV_INT), 1);
  EXPECT_EQ(LastText(), kUntouched);
}

TEST_F(DatasetRead, FailsSilentlyForAMissingDataset) {
  EXPECT_EQ(Status("nowhere", {2}, ORV_INT), 1);
  EXPECT_EQ(LastText(), kUntouched);
}

TEST_F(DatasetRead, RefusesATypeThatItDoesNotKnow) {
  for (const int type : {0, 1, 5, 8, -1}) {
    ForgetText();
    EXPECT_EQ(Status("ints", {2, 3}, static_cast<_ORVDataType>(type)), 1) << type;
    EXPECT_EQ(LastText(), "DatasetIO::\n\t \"ints\" Unable to get HDF5 datatype for given ORV datatype") << type;
  }
}

TEST_F(DatasetRead, RefusesAnUnknownTypeBeforeItLooksForTheDataset) {
  EXPECT_EQ(Status("nowhere", {2}, ORV_CHAR_FIXED), 1);
  EXPECT_EQ(LastText(), "DatasetIO::\n\t \"nowhere\" Unable to get HDF5 datatype for given ORV datatype");
}

TEST_F(DatasetRead, RefusesAnotherClass) {
  EXPECT_EQ(Status("floats", {2}, ORV_INT), 1);
  EXPECT_EQ(LastText(), "DatasetIO::\n\t \"floats\" datatype expected (H5T_class_t=0). Got (H5T_class_t=1) type");
  EXPECT_EQ(Status("longs", {3}, ORV_DOUBLE), 1);
  EXPECT_EQ(LastText(), "DatasetIO::\n\t \"longs\" datatype expected (H5T_class_t=1). Got (H5T_class_t=0) type");
  EXPECT_EQ(Status("words", {2}, ORV_FLOAT), 1);
  EXPECT_EQ(LastText(), "DatasetIO::\n\t \"words\" datatype expected (H5T_class_t=1). Got (H5T_class_t=3) type");
}

TEST_F(DatasetRead, RefusesAnotherRank) {
  EXPECT_EQ(Status("longs", {3, 1}, ORV_LONG), 1);
  EXPECT_EQ(LastText(), "DatasetIO::\n\t \"longs\" dimension mismatch");
}

TEST_F(DatasetRead, RefusesOtherExtents) {
  for (const Dims& dims : {Dims{2, 2}, Dims{3, 3}, Dims{3, 2}, Dims{2, 4}}) {
    ForgetText();
    EXPECT_EQ(Status("ints", dims, ORV_INT), 1);
    EXPECT_EQ(LastText(), "DatasetIO::\n\t \"ints\" dimension mismatch");
  }
}

TEST_F(DatasetRead, RefusesAFlatReadWhoseFirstExtentDiffers) {
  EXPECT_EQ(Status("ints", {6}, ORV_INT), 1);
  EXPECT_EQ(LastText(), "DatasetIO::\n\t \"ints\" dimension mismatch");
  EXPECT_EQ(Status("row", {3}, ORV_INT), 1);
}

TEST_F(DatasetRead, TakesAFlatReadWhoseFirstExtentIsTheElementCount) {
  std::vector<std::int32_t> values;
  EXPECT_EQ(Read("column", {3}, ORV_INT, values), 0);
  EXPECT_EQ(values, (std::vector<std::int32_t>{10, 20, 30, -1, -1, -1, -1, -1}));
}

TEST_F(DatasetRead, LeavesTheBufferAloneWhenItFails) {
  std::vector<std::int32_t> values;
  EXPECT_EQ(Read("ints", {6}, ORV_INT, values), 1);
  EXPECT_EQ(values, std::vector<std::int32_t>(8, -1));
}

TEST_F(DatasetRead, RefusesNullArguments) {
  const hsize_t dims[] = {2};
  int value = 0;
  EXPECT_EQ(OH5Read_DATASET(Place(), nullptr, 1, dims, ORV_INT, &value), 1);
  EXPECT_EQ(OH5Read_DATASET(Place(), "ints", 1, nullptr, ORV_INT, &value), 1);
  EXPECT_EQ(OH5Read_DATASET(Place(), "ints", 1, dims, ORV_INT, nullptr), 1);
  EXPECT_EQ(OH5Read_DATASET(-1, "ints", 1, dims, ORV_INT, &value), 1);
}

TEST_F(DatasetRead, TellsOfAGroupInPlaceOfADataset) {
  file_.group("inner");
  const hsize_t dims[] = {2};
  std::int32_t values[2] = {};
  EXPECT_EQ(OH5Read_DATASET(Place(), "inner", 1, dims, ORV_INT, values), 1);
  EXPECT_EQ(LastText(), "DatasetIO::\n\t Read Failed ::\"inner\"");
}

TEST_F(DatasetRead, CutsTheTextOfAFailureAt511Bytes) {
  const std::string name(600, 'n');
  file_.dataset<float>(name.c_str(), {1}, {1});
  const hsize_t dims[] = {1};
  std::int32_t value = 0;
  EXPECT_EQ(OH5Read_DATASET(Place(), name.c_str(), 1, dims, ORV_INT, &value), 1);
  EXPECT_EQ(LastText(), "DatasetIO::\n\t \"" + std::string(511 - 15, 'n'));
}

TEST_F(DatasetRead, TakesTheTextSizeFromTheLastExtent) {
  char text[9] = "--------";
  const hsize_t dims[] = {2, 4};
  EXPECT_EQ(OH5Read_DATASET(Place(), "words", 2, dims, ORV_CHAR, text), 0);
  EXPECT_STREQ(text, "ab  cdef");
}

TEST_F(DatasetRead, TakesRankOneTextsAsOneTextOfThatSize) {
  char text[9] = "--------";
  const hsize_t dims[] = {8};
  EXPECT_EQ(OH5Read_DATASET(Place(), "word", 1, dims, ORV_CHAR, text), 0);
  EXPECT_STREQ(text, "single  ");
}

TEST_F(DatasetRead, RefusesTextsOfRankZeroOrLess) {
  char text[8] = {};
  EXPECT_EQ(OH5Read_DATASET(Place(), "word", 0, nullptr, ORV_CHAR, text), 1);
  EXPECT_EQ(OH5Read_DATASET(Place(), "word", -2, nullptr, ORV_CHAR, text), 1);
  EXPECT_EQ(LastText(), kUntouched);
}

class TextRead : public DatasetRead {
 protected:
  int ReadTexts(const char* name, const Dims& dims, int size) {
    std::memset(text_, '-', sizeof text_);
    return OH5Read_CHAR(Place(), name, static_cast<int>(dims.size()), dims.data(), size, text_);
  }
  char text_[17];
};

TEST_F(TextRead, GivesTheStoredBytesOfEachText) {
  EXPECT_EQ(ReadTexts("words", {2}, 4), 0);
  EXPECT_EQ(std::string(text_, 10), "ab  cdef--");
}

TEST_F(TextRead, TakesRankZeroForASingleText) {
  EXPECT_EQ(ReadTexts("word", {}, 8), 0);
  EXPECT_EQ(std::string(text_, 9), "single  -");
}

TEST_F(TextRead, FailsSilentlyForAnExtentOfZeroOrAMissingDataset) {
  EXPECT_EQ(ReadTexts("words", {0}, 4), 1);
  EXPECT_EQ(ReadTexts("nowhere", {2}, 4), 1);
  EXPECT_EQ(LastText(), kUntouched);
}

TEST_F(TextRead, RefusesNumbers) {
  EXPECT_EQ(ReadTexts("longs", {3}, 4), 1);
  EXPECT_EQ(LastText(),
            "OH5Read_CHAR::\n\t \"longs\" datatype ORV_CHAR expected (H5T_class_t=3). Got (H5T_class_t=0) type");
}

TEST_F(TextRead, RefusesAnotherTextSize) {
  for (const int size : {3, 5, 0, -4}) {
    ForgetText();
    EXPECT_EQ(ReadTexts("words", {2}, size), 1) << size;
    EXPECT_EQ(LastText(), "OH5Read_CHAR::\n\t \"words\" dimension mismatch") << size;
  }
}

TEST_F(TextRead, RefusesAnotherRankOrOtherExtents) {
  for (const Dims& dims : {Dims{3}, Dims{1}, Dims{2, 1}, Dims{}}) {
    ForgetText();
    EXPECT_EQ(ReadTexts("words", dims, 4), 1);
    EXPECT_EQ(LastText(), "OH5Read_CHAR::\n\t \"words\" dimension mismatch");
  }
}

TEST_F(TextRead, RefusesTextsOfVariableLength) {
  file_.raw([](hid_t here) {
    const Id type(H5Tcopy(H5T_C_S1), "type");
    Check(H5Tset_size(type.get(), H5T_VARIABLE), "size");
    const Id space(H5Screate(H5S_SCALAR), "space");
    const Id made(H5Dcreate2(here, "long", type.get(), space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "long");
    const char* text = "text";
    Check(H5Dwrite(made.get(), type.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT, &text), "long");
  });
  char text[17] = {};
  for (const int size : {4, static_cast<int>(sizeof(char*)), 16}) {
    EXPECT_EQ(OH5Read_CHAR(Place(), "long", 0, nullptr, size, text), 1);
    EXPECT_EQ(LastText(), "OH5Read_CHAR::\n\t \"long\" dimension mismatch");
  }
}

TEST_F(TextRead, TellsOfAGroupInPlaceOfADataset) {
  file_.group("inner");
  EXPECT_EQ(OH5Read_CHAR(Place(), "inner", 0, nullptr, 8, text_), 1);
  EXPECT_EQ(LastText(), "OH5Read_CHAR::\n\t Read Failed ::\"inner\" ");
}

class DatasetType : public DatasetRead {
 protected:
  _ORVDataType TypeOf(const char* name, int status) {
    auto type = static_cast<_ORVDataType>(99);
    EXPECT_EQ(OH5Read_DATATYPE(Place(), name, &type), status) << name;
    return type;
  }
};

TEST_F(DatasetType, FollowsClassAndSizeOfTheStoredValues) {
  EXPECT_EQ(TypeOf("ints", 0), ORV_INT);
  EXPECT_EQ(TypeOf("longs", 0), ORV_LONG);
  EXPECT_EQ(TypeOf("floats", 0), ORV_FLOAT);
  EXPECT_EQ(TypeOf("doubles", 0), ORV_DOUBLE);
  EXPECT_EQ(TypeOf("words", 0), ORV_CHAR);
}

TEST_F(DatasetType, OfAMissingDatasetIsNoDatasetWithSuccess) {
  EXPECT_EQ(TypeOf("nowhere", 0), ORV_NO_DATASET);
  EXPECT_EQ(TypeOf("nowhere/deeper", 0), ORV_NO_DATASET);
  EXPECT_EQ(LastText(), kUntouched);
}

TEST_F(DatasetType, OfANullNameIsAFailure) {
  EXPECT_EQ(TypeOf(nullptr, 1), ORV_UNKNOWN_TYPE);
  EXPECT_EQ(OH5Read_DATATYPE(Place(), "ints", nullptr), 1);
}

TEST_F(DatasetType, OfAGroupIsAFailure) {
  file_.group("inner");
  auto type = static_cast<_ORVDataType>(99);
  EXPECT_EQ(OH5Read_DATATYPE(Place(), "inner", &type), 1);
  EXPECT_EQ(type, ORV_UNKNOWN_TYPE);
}

TEST_F(DatasetType, OfOtherSizesAndClassesIsUnknown) {
  file_.raw([](hid_t here) {
    const Id space(H5Screate(H5S_SCALAR), "space");
    const auto make = [&](const char* name, hid_t type) {
      const Id made(H5Dcreate2(here, name, type, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name);
    };
    make("short", H5T_STD_I16LE);
    make("byte", H5T_STD_I8LE);
    make("bits", H5T_STD_B32LE);
    make("unsigned", H5T_STD_U32BE);
  });
  for (const char* name : {"short", "byte", "bits"}) {
    auto type = static_cast<_ORVDataType>(99);
    EXPECT_EQ(OH5Read_DATATYPE(Place(), name, &type), 1) << name;
    EXPECT_EQ(type, ORV_UNKNOWN_TYPE) << name;
  }
  auto type = static_cast<_ORVDataType>(99);
  EXPECT_EQ(OH5Read_DATATYPE(Place(), "unsigned", &type), 0);
  EXPECT_EQ(type, ORV_INT);
}

TEST_F(DatasetType, OfAnIdThatIsNoDatasetIsAFailure) {
  auto type = static_cast<_ORVDataType>(99);
  EXPECT_EQ(OH5DatasetType(Place(), &type), 1);
  EXPECT_EQ(type, ORV_UNKNOWN_TYPE);
  type = static_cast<_ORVDataType>(99);
  EXPECT_EQ(OH5DatasetType(-1, &type), 1);
  EXPECT_EQ(type, ORV_UNKNOWN_TYPE);
  EXPECT_EQ(OH5DatasetType(-1, nullptr), 1);
}

/// Makes "packed": chunked numbers that go through the scale-offset filter with three digits.
void AddPacked(ForgedFile& file, const std::vector<float>& values) {
  file.raw([&](hid_t here) {
    const hsize_t count = values.size();
    const Id space(H5Screate_simple(1, &count, nullptr), "space");
    const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
    Check(H5Pset_chunk(list.get(), 1, &count), "chunk");
    Check(H5Pset_scaleoffset(list.get(), H5Z_SO_FLOAT_DSCALE, 3), "filter");
    const Id made(H5Dcreate2(here, "packed", H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "d");
    Check(H5Dwrite(made.get(), H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), "values");
  });
}

TEST_F(DatasetRead, RecoversValuesThatTheFilterWroteAndHdf5CannotRead) {
  AddPacked(file_, {-1e7F, 2.5F, 1e7F});
  const hsize_t three[] = {3}, one[] = {1}, last[] = {2};
  float values[3] = {};
  EXPECT_EQ(OH5Read_DATASET(Place(), "packed", 1, three, ORV_FLOAT, values), 0);
  EXPECT_EQ(values[0], -1e7F);
  EXPECT_EQ(values[1], 2.5F);
  EXPECT_EQ(values[2], 1e7F);
  double wide = 0;
  EXPECT_EQ(OH5Read_SELECTIVE(Place(), "packed", 1, last, one, nullptr, nullptr, ORV_DOUBLE, &wide), 0);
  EXPECT_EQ(wide, 1e7);
}

TEST_F(DatasetRead, FailsForValuesThatTheFilterLost) {
  AddPacked(file_, {std::numeric_limits<float>::quiet_NaN(), 1, 2});
  const hsize_t three[] = {3}, zero[] = {0};
  float values[3] = {};
  EXPECT_EQ(OH5Read_DATASET(Place(), "packed", 1, three, ORV_FLOAT, values), 1);
  EXPECT_EQ(LastText(), "DatasetIO::\n\t Read Failed ::\"packed\"");
  EXPECT_EQ(OH5Read_SELECTIVE(Place(), "packed", 1, zero, three, nullptr, nullptr, ORV_FLOAT, values), 1);
  EXPECT_EQ(LastText(), "OH5Read_SELECTINE::\n\t Read Failed ::\"packed\"");
}

}  // namespace
