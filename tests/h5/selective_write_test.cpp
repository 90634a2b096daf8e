// The growing write: hyperslabs into datasets without limit.

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <vector>

#include "h5/h5_test.h"

namespace {

using namespace orv_test;
using Dims = std::vector<hsize_t>;

constexpr char kBlock[] = "/post/constant/b";
constexpr hsize_t kNoLimit = H5S_UNLIMITED;

/// What a call hands in besides name and type. Extents left empty are null.
struct Slab {
  Dims start;
  Dims count;
  Dims extent = {};
  Dims stride = {};
  Dims block = {};
};

class SelectiveWrite : public H5Test {
 protected:
  ~SelectiveWrite() override { OH5SetCompression(0, -1); }

  static const hsize_t* Pointer(const Dims& dims) { return dims.empty() ? nullptr : dims.data(); }

  template <class T>
  int Write(_ORVDataType type, const Slab& slab, const std::vector<T>& values, const char* name = "x") {
    const Location place(file_.path(), kBlock, H5F_ACC_RDWR);
    return OH5Write_SELECTIVE(place.id(), name, static_cast<int>(slab.count.size()), slab.start.data(),
                              slab.count.data(), Pointer(slab.stride), Pointer(slab.block), type, Pointer(slab.extent),
                              values.data());
  }
  int WriteTexts(_ORVDataType type, const Slab& slab, const std::string& bytes) {
    return Write(type, slab, std::vector<char>(bytes.begin(), bytes.end()));
  }
  static std::string At(const char* name = "x") { return std::string(kBlock) + "/" + name; }
  RawFile Look() { return RawFile(file_.path()); }

  /// Makes "x" with HDF5 alone: chunked, without limit.
  template <class T>
  void Forge(const Dims& dims, const std::vector<T>& values, const Dims& most = {}) {
    file_.raw([&](hid_t here) {
      const int rank = static_cast<int>(dims.size());
      const Dims unlimited(dims.size(), kNoLimit);
      const Id space(H5Screate_simple(rank, dims.data(), most.empty() ? unlimited.data() : most.data()), "space");
      const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
      Check(H5Pset_chunk(list.get(), rank, dims.data()), "chunk");
      const Id made(H5Dcreate2(here, "x", NativeType<T>(), space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "x");
      Check(H5Dwrite(made.get(), NativeType<T>(), H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), "x");
    });
  }

  ForgedFile file_ = std::move(ForgedFile("grow").at(kBlock));
};

TEST_F(SelectiveWrite, MakesADatasetWithoutLimitAndWithOneChunk) {
  EXPECT_EQ(Write<float>(ORV_FLOAT, {{0, 0}, {2, 3}}, {1, 2, 3, 4, 5, 6}), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.values<float>(At()), (std::vector<float>{1, 2, 3, 4, 5, 6}));
  EXPECT_EQ(file.shape(At()), (Dims{2, 3}));
  EXPECT_EQ(file.max_shape(At()), (Dims{kNoLimit, kNoLimit}));
  EXPECT_EQ(file.layout(At()), H5D_CHUNKED);
  EXPECT_EQ(file.chunk(At()), (Dims{2, 3}));
  EXPECT_TRUE(file.filters(At()).empty());
  EXPECT_EQ(LastText(), kUntouched);
}

TEST_F(SelectiveWrite, StoresEachNumberInItsNativeType) {
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0}, {2}}, {1, -2}, "i"), 0);
  EXPECT_EQ(Write<std::int64_t>(ORV_LONG, {{0}, {2}}, {9000000000, -2}, "l"), 0);
  EXPECT_EQ(Write<double>(ORV_DOUBLE, {{0}, {2}}, {1e300, 0.1}, "d"), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.type_size(At("i")), 4u);
  EXPECT_EQ(file.values<std::int32_t>(At("i")), (std::vector<std::int32_t>{1, -2}));
  EXPECT_EQ(file.type_size(At("l")), 8u);
  EXPECT_EQ(file.values<std::int64_t>(At("l")), (std::vector<std::int64_t>{9000000000, -2}));
  EXPECT_EQ(file.type_size(At("d")), 8u);
  EXPECT_EQ(file.values<double>(At("d")), (std::vector<double>{1e300, 0.1}));
}

TEST_F(SelectiveWrite, WithoutExtentGrowsNumbersByOneAlongTheSecondAxis) {
  Forge<std::int32_t>({4, 3}, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0, 3}, {4, 1}}, {-1, -2, -3, -4}), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.shape(At()), (Dims{4, 4}));
  EXPECT_EQ(file.values<std::int32_t>(At()),
            (std::vector<std::int32_t>{1, 2, 3, -1, 4, 5, 6, -2, 7, 8, 9, -3, 10, 11, 12, -4}));
}

TEST_F(SelectiveWrite, WithoutExtentGrowsTheSecondOfThreeAxes) {
  Forge<std::int32_t>({2, 1, 2}, {1, 2, 3, 4});
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0, 1, 0}, {2, 1, 2}}, {5, 6, 7, 8}), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.shape(At()), (Dims{2, 2, 2}));
  EXPECT_EQ(file.values<std::int32_t>(At()), (std::vector<std::int32_t>{1, 2, 5, 6, 3, 4, 7, 8}));
}

TEST_F(SelectiveWrite, WithoutExtentLeavesTheSizeOfRankOne) {
  Forge<double>({3}, {1, 2, 3});
  EXPECT_EQ(Write<double>(ORV_DOUBLE, {{1}, {2}}, {8, 9}), 0);
  EXPECT_EQ(Look().values<double>(At()), (std::vector<double>{1, 8, 9}));
  EXPECT_EQ(Write<double>(ORV_DOUBLE, {{3}, {1}}, {7}), 1);
  EXPECT_EQ(LastText(), "OH5Write_SELECTIVE::\n\t Failed to write ::\"x\"");
  EXPECT_EQ(Look().shape(At()), Dims{3});
}

TEST_F(SelectiveWrite, WithExtentGrowsNumbersByItAlongEachAxis) {
  Forge<std::int32_t>({1, 2}, {1, 2});
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{1, 0}, {1, 2}, {1, 0}}, {3, 4}), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.shape(At()), (Dims{2, 2}));
  EXPECT_EQ(file.values<std::int32_t>(At()), (std::vector<std::int32_t>{1, 2, 3, 4}));
}

TEST_F(SelectiveWrite, WithExtentGrowsNumbersAlongAllAxesAtOnce) {
  Forge<std::int32_t>({1, 1}, {1});
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{1, 2}, {1, 1}, {1, 2}}, {9}), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.shape(At()), (Dims{2, 3}));
  EXPECT_EQ(file.values<std::int32_t>(At()), (std::vector<std::int32_t>{1, 0, 0, 0, 0, 9}));
}

TEST_F(SelectiveWrite, WithAnExtentOfZeroWritesInPlace) {
  Forge<std::int32_t>({3}, {1, 2, 3});
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0}, {2}, {0}}, {8, 9}), 0);
  EXPECT_EQ(Look().values<std::int32_t>(At()), (std::vector<std::int32_t>{8, 9, 3}));
}

TEST_F(SelectiveWrite, RefusesAnExtentThatWouldWrapAround) {
  Forge<std::int32_t>({3}, {1, 2, 3});
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0}, {1}, {std::numeric_limits<hsize_t>::max()}}, {9}), 1);
  EXPECT_EQ(Look().values<std::int32_t>(At()), (std::vector<std::int32_t>{1, 2, 3}));
}

TEST_F(SelectiveWrite, ConvertsIntoTheTypeThatIsThere) {
  Forge<double>({2}, {1, 2});
  EXPECT_EQ(Write<float>(ORV_FLOAT, {{0}, {1}}, {0.5F}), 0);
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{1}, {1}}, {7}), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.type_size(At()), 8u);
  EXPECT_EQ(file.values<double>(At()), (std::vector<double>{0.5, 7}));
}

TEST_F(SelectiveWrite, StoresTextsOf256BytesPaddedByBlanks) {
  const std::string word = "word" + std::string(252, ' ');
  EXPECT_EQ(WriteTexts(ORV_CHAR, {{0}, {1}}, word), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.texts(At()), std::vector<std::string>{word});
  EXPECT_EQ(file.text_padding(At()), H5T_STR_SPACEPAD);
  EXPECT_EQ(file.max_shape(At()), Dims{kNoLimit});
}

TEST_F(SelectiveWrite, TakesTheTextSizeFromTheFirstExtent) {
  EXPECT_EQ(WriteTexts(ORV_CHAR_FIXED, {{0}, {2}, {4}}, "ab  cdef"), 0);
  EXPECT_EQ(Look().texts(At()), (std::vector<std::string>{"ab  ", "cdef"}));
}

TEST_F(SelectiveWrite, GrowsTextsByWhatIsWritten) {
  EXPECT_EQ(WriteTexts(ORV_CHAR, {{0}, {1}, {4}}, "ab  "), 0);
  EXPECT_EQ(WriteTexts(ORV_CHAR, {{1}, {2}, {4}}, "cdefghij"), 0);
  EXPECT_EQ(Look().texts(At()), (std::vector<std::string>{"ab  ", "cdef", "ghij"}));
}

TEST_F(SelectiveWrite, GrowsTextsByWhatIsWrittenWithoutExtentToo) {
  const std::string word = "word" + std::string(252, ' ');
  EXPECT_EQ(WriteTexts(ORV_CHAR, {{0}, {1}}, word), 0);
  EXPECT_EQ(WriteTexts(ORV_CHAR, {{1}, {1}}, word), 0);
  EXPECT_EQ(Look().texts(At()), (std::vector<std::string>{word, word}));
}

TEST_F(SelectiveWrite, GrowsTextsByWhatIsWrittenAlongEachAxis) {
  EXPECT_EQ(WriteTexts(ORV_CHAR, {{0, 0}, {1, 1}, {4, 9}}, "ab  "), 0);
  EXPECT_EQ(WriteTexts(ORV_CHAR, {{1, 1}, {1, 2}, {4, 9}}, "cdefghij"), 0);
  const RawFile file = Look();
  ASSERT_EQ(file.shape(At()), (Dims{2, 3}));
  EXPECT_EQ(file.texts(At())[0], "ab  ");
  EXPECT_EQ(file.texts(At())[4], "cdef");
  EXPECT_EQ(file.texts(At())[5], "ghij");
}

TEST_F(SelectiveWrite, RefusesARankBelowOne) {
  const Location place(file_.path(), kBlock, H5F_ACC_RDWR);
  const std::int32_t value = 1;
  EXPECT_EQ(OH5Write_SELECTIVE(place.id(), "x", 0, nullptr, nullptr, nullptr, nullptr, ORV_INT, nullptr, &value), 1);
  EXPECT_EQ(LastText(), "OH5Write_SELECTIVE::\n\t \"x\" dimension cannot be zero");
}

TEST_F(SelectiveWrite, RefusesACountOfZero) {
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0, 0}, {2, 0}}, {1}), 1);
  EXPECT_EQ(LastText(), "OH5Write_SELECTIVE::\n\t \"x\" location or size cannot be zero");
  EXPECT_FALSE(Look().exists(At()));
  ForgetText();
  EXPECT_EQ(Write<std::int32_t>(ORV_NO_DATASET, {{0}, {0}}, {1}), 1);
  EXPECT_EQ(LastText(), "OH5Write_SELECTIVE::\n\t \"x\" location or size cannot be zero");
}

TEST_F(SelectiveWrite, FailsSilentlyForATypeThatItDoesNotKnow) {
  for (const int type : {0, 1, 8, -1}) {
    EXPECT_EQ(Write<std::int64_t>(static_cast<_ORVDataType>(type), {{0}, {1}}, {1}), 1) << type;
  }
  EXPECT_EQ(LastText(), kUntouched);
  EXPECT_FALSE(Look().exists(At()));
}

TEST_F(SelectiveWrite, RefusesADatasetThatIsNeitherNumbersNorTexts) {
  file_.raw([](hid_t here) {
    const hsize_t dims[] = {2};
    const Id space(H5Screate_simple(1, dims, nullptr), "space");
    const Id made(H5Dcreate2(here, "x", H5T_STD_B32LE, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "x");
  });
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0}, {1}}, {1}), 1);
  EXPECT_EQ(LastText(), "OH5Write_SELECTIVE::\n\t \"x\" datatype ORV_FLOAT or ORV_INT expected");
}

TEST_F(SelectiveWrite, RefusesADatasetOfTimes) {
  file_.raw([](hid_t here) {
    const hsize_t dims[] = {2};
    const Id space(H5Screate_simple(1, dims, nullptr), "space");
    const Id made(H5Dcreate2(here, "x", H5T_UNIX_D32LE, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "x");
  });
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0}, {1}}, {1}), 1);
  EXPECT_EQ(LastText(), "OH5Write_SELECTIVE::\n\t \"x\" datatype ORV_FLOAT or ORV_INT expected");
}

TEST_F(SelectiveWrite, RefusesAHigherStoredRank) {
  Forge<std::int32_t>({2, 2}, {1, 2, 3, 4});
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0}, {1}}, {9}), 1);
  EXPECT_EQ(LastText(), "OH5Write_SELECTIVE::\n\t \"x\" can not reduce original size");
}

TEST_F(SelectiveWrite, FailsForALowerStoredRank) {
  Forge<std::int32_t>({2}, {1, 2});
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0, 0}, {1, 1}}, {9}), 1);
  EXPECT_EQ(LastText(), "OH5Write_SELECTIVE::\n\t Failed to write ::\"x\"");
  EXPECT_EQ(Look().values<std::int32_t>(At()), (std::vector<std::int32_t>{1, 2}));
}

TEST_F(SelectiveWrite, FailsForTextsOverNumbersAndNumbersOverTexts) {
  Forge<std::int32_t>({2}, {1, 2});
  EXPECT_EQ(WriteTexts(ORV_CHAR, {{0}, {1}, {4}}, "abcd"), 1);
  EXPECT_EQ(LastText(), "OH5Write_SELECTIVE::\n\t Failed to write ::\"x\"");
  EXPECT_EQ(WriteTexts(ORV_CHAR, {{0}, {1}, {4}}, "abcd"), 1);
  EXPECT_EQ(Look().shape(At()), Dims{2});
  file_.texts("x", 4, {2}, {"ab", "cd"});
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0}, {1}}, {9}), 1);
  EXPECT_EQ(Look().texts(At()), (std::vector<std::string>{"ab  ", "cd  "}));
}

TEST_F(SelectiveWrite, FailsWithoutATraceForADatasetThatCannotGrow) {
  file_.dataset<std::int32_t>("x", {2}, {1, 2});
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{2}, {1}, {1}}, {9}), 1);
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0}, {1}}, {9}), 1);
  EXPECT_EQ(Look().values<std::int32_t>(At()), (std::vector<std::int32_t>{1, 2}));
}

TEST_F(SelectiveWrite, FailsWithoutATraceAboveTheLimitOfADataset) {
  Forge<std::int32_t>({2}, {1, 2}, {3});
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{2}, {2}, {2}}, {8, 9}), 1);
  EXPECT_EQ(Look().values<std::int32_t>(At()), (std::vector<std::int32_t>{1, 2}));
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{2}, {1}, {1}}, {8}), 0);
  EXPECT_EQ(Look().values<std::int32_t>(At()), (std::vector<std::int32_t>{1, 2, 8}));
}

TEST_F(SelectiveWrite, FailsWithoutATraceForASlabBeyondTheNewSize) {
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{1}, {2}}, {8, 9}), 1);
  EXPECT_EQ(LastText(), "OH5Write_SELECTIVE::\n\t Failed to write ::\"x\"");
  EXPECT_FALSE(Look().exists(At()));
  Forge<std::int32_t>({2}, {1, 2});
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{2}, {2}, {1}}, {8, 9}), 1);
  EXPECT_EQ(Look().shape(At()), Dims{2});
}

TEST_F(SelectiveWrite, HandsTheStrideOn) {
  Forge<std::int32_t>({5}, {1, 2, 3, 4, 5});
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0}, {3}, {0}, {2}}, {-1, -3, -5}), 0);
  EXPECT_EQ(Look().values<std::int32_t>(At()), (std::vector<std::int32_t>{-1, 2, -3, 4, -5}));
}

TEST_F(SelectiveWrite, RefusesABlockThatSelectsMoreThanTheCount) {
  Forge<std::int32_t>({5}, {1, 2, 3, 4, 5});
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0}, {2}, {0}, {2}, {2}}, {8, 9, 8, 9}), 1);
  EXPECT_EQ(Look().values<std::int32_t>(At()), (std::vector<std::int32_t>{1, 2, 3, 4, 5}));
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0}, {2}, {0}, {2}, {1}}, {8, 9}), 0);
  EXPECT_EQ(Look().values<std::int32_t>(At()), (std::vector<std::int32_t>{8, 2, 9, 4, 5}));
}

TEST_F(SelectiveWrite, RefusesNullArgumentsAndARankAboveHdf5s) {
  const Location place(file_.path(), kBlock, H5F_ACC_RDWR);
  const Dims dims(40, 1);
  const Dims start(40, 0);
  const std::int32_t value = 1;
  const auto write = [&](const char* name, int rank, const hsize_t* from, const hsize_t* count, const void* data) {
    return OH5Write_SELECTIVE(place.id(), name, rank, from, count, nullptr, nullptr, ORV_INT, nullptr, data);
  };
  EXPECT_EQ(write(nullptr, 1, start.data(), dims.data(), &value), 1);
  EXPECT_EQ(write("x", 1, nullptr, dims.data(), &value), 1);
  EXPECT_EQ(write("x", 1, start.data(), nullptr, &value), 1);
  EXPECT_EQ(write("x", 1, start.data(), dims.data(), nullptr), 1);
  EXPECT_EQ(write("x", 33, start.data(), dims.data(), &value), 1);
}

TEST_F(SelectiveWrite, CompressesFloatsByDigits) {
  OH5SetCompression(1, 1);
  EXPECT_EQ(Write<float>(ORV_FLOAT, {{0}, {3}}, {1.26F, -2.0F, 0.5F}), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.filters(At()), std::vector<int>{H5Z_FILTER_SCALEOFFSET});
  EXPECT_EQ(file.filter_values(At())[0], 0u);
  EXPECT_EQ(file.filter_values(At())[1], 1u);
  const std::vector<float> values = file.values<float>(At());
  EXPECT_NEAR(values[0], 1.3, 1e-6);
  EXPECT_NEAR(values[1], -2.0, 1e-6);
  EXPECT_NEAR(values[2], 0.5, 1e-6);
}

TEST_F(SelectiveWrite, GivesIntegersTheFloatFormOfTheFilter) {
  OH5SetCompression(1, 3);
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0}, {3}}, {1000001, -7, 1000003}), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.filters(At()), std::vector<int>{H5Z_FILTER_SCALEOFFSET});
  EXPECT_EQ(file.filter_values(At())[0], 0u);
  EXPECT_EQ(file.filter_values(At())[1], 3u);
  EXPECT_EQ(file.values<std::int32_t>(At()), (std::vector<std::int32_t>{1000001, -7, 1000003}));
}

TEST_F(SelectiveWrite, TakesWideIntegersWhereTheFilterCannotWork) {
  OH5SetCompression(1, 3);
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0}, {2}}, {1, 2}), 0);
  const std::int32_t least = std::numeric_limits<std::int32_t>::min();
  const std::int32_t most = std::numeric_limits<std::int32_t>::max();
  EXPECT_EQ(Write<std::int32_t>(ORV_INT, {{0}, {2}, {0}}, {least, most}), 0);
  EXPECT_EQ(Look().values<std::int32_t>(At()), (std::vector<std::int32_t>{least, most}));
}

TEST_F(SelectiveWrite, NeverCompressesTexts) {
  OH5SetCompression(1, 3);
  EXPECT_EQ(WriteTexts(ORV_CHAR, {{0}, {1}, {4}}, "abcd"), 0);
  EXPECT_TRUE(Look().filters(At()).empty());
}

TEST_F(SelectiveWrite, StoresPlainDataWhenTheDigitsAreNegative) {
  OH5SetCompression(1, -1);
  EXPECT_EQ(Write<float>(ORV_FLOAT, {{0}, {1}}, {1.26F}), 0);
  EXPECT_TRUE(Look().filters(At()).empty());
}

}  // namespace
