// Writing of whole datasets, new and over existing ones. Growing writes: selective_write_test; when data are too wide
// for the compression: scale_offset_test.

#include <cstdint>
#include <string>
#include <vector>

#include "h5/h5_test.h"

namespace {

using namespace orv_test;
using Dims = std::vector<hsize_t>;

constexpr char kBlock[] = "/post/constant/b";

class DatasetWrite : public H5Test {
 protected:
  ~DatasetWrite() override { OH5SetCompression(0, -1); }

  template <class T>
  int WriteInt(const char* name, const Dims& dims, _ORVDataType type, const std::vector<T>& values) {
    const Location place(file_.path(), kBlock, H5F_ACC_RDWR);
    return OH5Write_INT(place.id(), name, static_cast<int>(dims.size()), dims.data(), type, values.data());
  }
  template <class T>
  int WriteFloat(const char* name, const Dims& dims, _ORVDataType type, const std::vector<T>& values) {
    const Location place(file_.path(), kBlock, H5F_ACC_RDWR);
    return OH5Write_FLOAT(place.id(), name, static_cast<int>(dims.size()), dims.data(), type, values.data());
  }
  int WriteChar(const char* name, const Dims& dims, int size, const std::string& bytes) {
    const Location place(file_.path(), kBlock, H5F_ACC_RDWR);
    return OH5Write_CHAR(place.id(), name, static_cast<int>(dims.size()), dims.data(), size, bytes.data());
  }
  static std::string At(const char* name) { return std::string(kBlock) + "/" + name; }
  RawFile Look() { return RawFile(file_.path()); }

  ForgedFile file_ = std::move(ForgedFile("write").at(kBlock));
};

TEST_F(DatasetWrite, StoresIntegersInTheirNativeType) {
  EXPECT_EQ(WriteInt<std::int32_t>("i", {2, 3}, ORV_INT, {1, 2, 3, 4, 5, -6}), 0);
  EXPECT_EQ(WriteInt<std::int64_t>("l", {2}, ORV_LONG, {9000000000, -1}), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.values<std::int32_t>(At("i")), (std::vector<std::int32_t>{1, 2, 3, 4, 5, -6}));
  EXPECT_EQ(file.shape(At("i")), (Dims{2, 3}));
  EXPECT_EQ(file.type_class(At("i")), H5T_INTEGER);
  EXPECT_EQ(file.type_size(At("i")), 4u);
  EXPECT_EQ(file.layout(At("i")), H5D_CONTIGUOUS);
  EXPECT_EQ(file.max_shape(At("i")), (Dims{2, 3}));
  EXPECT_EQ(file.values<std::int64_t>(At("l")), (std::vector<std::int64_t>{9000000000, -1}));
  EXPECT_EQ(file.type_size(At("l")), 8u);
  EXPECT_EQ(LastText(), kUntouched);
}

TEST_F(DatasetWrite, StoresFloatsInTheirNativeType) {
  EXPECT_EQ(WriteFloat<float>("f", {2}, ORV_FLOAT, {1.5F, -2}), 0);
  EXPECT_EQ(WriteFloat<double>("d", {1, 2}, ORV_DOUBLE, {1e300, 0.1}), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.values<float>(At("f")), (std::vector<float>{1.5F, -2}));
  EXPECT_EQ(file.type_class(At("f")), H5T_FLOAT);
  EXPECT_EQ(file.type_size(At("f")), 4u);
  EXPECT_EQ(file.values<double>(At("d")), (std::vector<double>{1e300, 0.1}));
  EXPECT_EQ(file.shape(At("d")), (Dims{1, 2}));
  EXPECT_EQ(file.type_size(At("d")), 8u);
  EXPECT_EQ(file.layout(At("d")), H5D_CONTIGUOUS);
}

TEST_F(DatasetWrite, StoresTextsOfTheSizeHandedIn) {
  EXPECT_EQ(WriteChar("t", {2}, 4, "ab  cdef"), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.texts(At("t")), (std::vector<std::string>{"ab  ", "cdef"}));
  EXPECT_EQ(file.shape(At("t")), Dims{2});
  EXPECT_EQ(file.text_padding(At("t")), H5T_STR_NULLTERM);
}

TEST_F(DatasetWrite, StoresRankZeroAsAScalar) {
  EXPECT_EQ(WriteInt<std::int32_t>("i", {}, ORV_INT, {5}), 0);
  EXPECT_EQ(WriteFloat<double>("d", {}, ORV_DOUBLE, {0.5}), 0);
  EXPECT_EQ(WriteChar("t", {}, 4, "word"), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.shape(At("i")), Dims{});
  EXPECT_EQ(file.values<std::int32_t>(At("i")), std::vector<std::int32_t>{5});
  EXPECT_EQ(file.shape(At("d")), Dims{});
  EXPECT_EQ(file.values<double>(At("d")), std::vector<double>{0.5});
  EXPECT_EQ(file.shape(At("t")), Dims{});
  EXPECT_EQ(file.texts(At("t")), std::vector<std::string>{"word"});
}

TEST_F(DatasetWrite, RefusesAnExtentOfZero) {
  EXPECT_EQ(WriteInt<std::int32_t>("x", {2, 0}, ORV_INT, {1}), 1);
  EXPECT_EQ(LastText(), "OH5Write_INT::\n\t \"x\" size cannot be zero");
  EXPECT_EQ(WriteFloat<float>("x", {0}, ORV_FLOAT, {1}), 1);
  EXPECT_EQ(LastText(), "OH5Write_FLOAT::\n\t \"x\" size cannot be zero");
  EXPECT_EQ(WriteChar("x", {0}, 4, "ab"), 1);
  EXPECT_EQ(LastText(), "OH5Write_CHAR::\n\t \"x\" size cannot be zero");
  EXPECT_FALSE(Look().exists(At("x")));
}

TEST_F(DatasetWrite, FailsSilentlyForATypeOfTheOtherFunction) {
  for (const int type : {0, 1, 3, 4, 5, 7, 8}) {
    EXPECT_EQ(WriteInt<std::int64_t>("x", {1}, static_cast<_ORVDataType>(type), {1}), 1) << type;
  }
  for (const int type : {0, 1, 2, 4, 5, 6, 8}) {
    EXPECT_EQ(WriteFloat<double>("x", {1}, static_cast<_ORVDataType>(type), {1}), 1) << type;
  }
  EXPECT_EQ(LastText(), kUntouched);
  EXPECT_FALSE(Look().exists(At("x")));
}

TEST_F(DatasetWrite, WritesIntoTheDatasetThatIsThereAndConverts) {
  file_.dataset<double>("d", {2}, {1, 2}).dataset<std::int64_t>("l", {2}, {1, 2}).texts("t", 4, {2}, {"ab", "cd"});
  EXPECT_EQ(WriteFloat<float>("d", {2}, ORV_FLOAT, {3.5F, 4.5F}), 0);
  EXPECT_EQ(WriteInt<std::int32_t>("l", {2}, ORV_INT, {7, 8}), 0);
  EXPECT_EQ(WriteChar("t", {2}, 4, "wxyzuvst"), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.values<double>(At("d")), (std::vector<double>{3.5, 4.5}));
  EXPECT_EQ(file.type_size(At("d")), 8u);
  EXPECT_EQ(file.values<std::int64_t>(At("l")), (std::vector<std::int64_t>{7, 8}));
  EXPECT_EQ(file.type_size(At("l")), 8u);
  EXPECT_EQ(file.texts(At("t")), (std::vector<std::string>{"wxyz", "uvst"}));
}

TEST_F(DatasetWrite, RefusesAnotherClass) {
  file_.dataset<double>("d", {1}, {1}).dataset<std::int32_t>("i", {1}, {2}).texts("t", 4, {1}, {"ab"});
  EXPECT_EQ(WriteInt<std::int32_t>("d", {1}, ORV_INT, {9}), 1);
  EXPECT_EQ(LastText(), "OH5Write_INT::\n\t \"d\" datatype ORV_INT expected (H5T_class_t=0). Got (H5T_class_t=1) type");
  EXPECT_EQ(WriteInt<std::int64_t>("t", {1}, ORV_LONG, {9}), 1);
  EXPECT_EQ(LastText(), "OH5Write_INT::\n\t \"t\" datatype ORV_INT expected (H5T_class_t=0). Got (H5T_class_t=3) type");
  EXPECT_EQ(WriteFloat<float>("i", {1}, ORV_FLOAT, {9}), 1);
  EXPECT_EQ(LastText(),
            "OH5Write_FLOAT::\n\t \"i\"datatype ORV_FLOAT expected (H5T_class_t=1). Got (H5T_class_t=0) type");
  EXPECT_EQ(WriteChar("i", {1}, 4, "abcd"), 1);
  EXPECT_EQ(LastText(), "OH5Write_CHAR::\n\t existing \"i\" dataset is not ORV_CHAR type");
  const RawFile file = Look();
  EXPECT_EQ(file.values<double>(At("d")), std::vector<double>{1});
  EXPECT_EQ(file.values<std::int32_t>(At("i")), std::vector<std::int32_t>{2});
  EXPECT_EQ(file.texts(At("t")), std::vector<std::string>{"ab  "});
}

TEST_F(DatasetWrite, RefusesALowerRankThanTheStoredOne) {
  file_.dataset<std::int32_t>("i", {2, 1}, {1, 2}).dataset<double>("d", {2, 1}, {1, 2});
  file_.texts("t", 2, {2, 1}, {"ab", "cd"}).dataset<std::int32_t>("one", {1}, {3});
  EXPECT_EQ(WriteInt<std::int32_t>("i", {2}, ORV_INT, {8, 9}), 1);
  EXPECT_EQ(LastText(), "OH5Write_INT::\n\t \"i\" can not reduce original size");
  EXPECT_EQ(WriteFloat<double>("d", {2}, ORV_DOUBLE, {8, 9}), 1);
  EXPECT_EQ(LastText(), "OH5Write_FLOAT::\n\t \"d\" can not reduce original size");
  EXPECT_EQ(WriteChar("t", {2}, 2, "wxyz"), 1);
  EXPECT_EQ(LastText(), "OH5Write_CHAR::\n\t existing \"t\" dataspace rank is not same as that of ovewrite requested");
  EXPECT_EQ(WriteInt<std::int32_t>("one", {}, ORV_INT, {8}), 1);
  const RawFile file = Look();
  EXPECT_EQ(file.values<std::int32_t>(At("i")), (std::vector<std::int32_t>{1, 2}));
  EXPECT_EQ(file.values<double>(At("d")), (std::vector<double>{1, 2}));
  EXPECT_EQ(file.texts(At("t")), (std::vector<std::string>{"ab", "cd"}));
}

TEST_F(DatasetWrite, TakesAHigherRankOfAsManyElements) {
  file_.dataset<std::int32_t>("i", {4}, {1, 2, 3, 4});
  EXPECT_EQ(WriteInt<std::int32_t>("i", {2, 2}, ORV_INT, {5, 6, 7, 8}), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.values<std::int32_t>(At("i")), (std::vector<std::int32_t>{5, 6, 7, 8}));
  EXPECT_EQ(file.shape(At("i")), Dims{4});
}

TEST_F(DatasetWrite, RefusesABufferSmallerThanTheDatasetThatIsThere) {
  file_.dataset<std::int32_t>("i", {4}, {1, 2, 3, 4}).dataset<double>("d", {3}, {1, 2, 3});
  file_.texts("t", 2, {3}, {"ab", "cd", "ef"});
  EXPECT_EQ(WriteInt<std::int32_t>("i", {3}, ORV_INT, {7, 8, 9}), 1);
  EXPECT_EQ(WriteFloat<double>("d", {2}, ORV_DOUBLE, {7, 8}), 1);
  EXPECT_EQ(WriteChar("t", {2}, 2, "wxyz"), 1);
  const RawFile file = Look();
  EXPECT_EQ(file.values<std::int32_t>(At("i")), (std::vector<std::int32_t>{1, 2, 3, 4}));
  EXPECT_EQ(file.values<double>(At("d")), (std::vector<double>{1, 2, 3}));
  EXPECT_EQ(file.texts(At("t")), (std::vector<std::string>{"ab", "cd", "ef"}));
}

TEST_F(DatasetWrite, WritesOverASmallerDatasetFromTheFrontOfTheBuffer) {
  file_.dataset<std::int32_t>("i", {2}, {1, 2});
  EXPECT_EQ(WriteInt<std::int32_t>("i", {3}, ORV_INT, {7, 8, 9}), 0);
  EXPECT_EQ(Look().values<std::int32_t>(At("i")), (std::vector<std::int32_t>{7, 8}));
}

TEST_F(DatasetWrite, FailsWhereAGroupHasTheName) {
  file_.group("g");
  EXPECT_EQ(WriteInt<std::int32_t>("g", {1}, ORV_INT, {1}), 1);
  EXPECT_EQ(LastText(), "OH5Write_INT::\n\t Failed to write ::\"g\"");
  EXPECT_EQ(WriteFloat<float>("g", {1}, ORV_FLOAT, {1}), 1);
  EXPECT_EQ(LastText(), "OH5Write_FLOAT::\n\t Failed to write ::\"g\"");
  EXPECT_EQ(WriteChar("g", {1}, 1, "x"), 1);
  EXPECT_EQ(LastText(), "OH5Write_CHAR::\n\t Failed to write ::\"g\"");
}

TEST_F(DatasetWrite, FailsInAFileOpenForReading) {
  const Location place(file_.path(), kBlock);
  const hsize_t dims[] = {1};
  const std::int32_t value = 1;
  EXPECT_EQ(OH5Write_INT(place.id(), "i", 1, dims, ORV_INT, &value), 1);
  EXPECT_EQ(LastText(), "OH5Write_INT::\n\t Failed to write ::\"i\"");
}

TEST_F(DatasetWrite, RefusesNullArgumentsRanksThatHdf5HasNotAndTextsWithoutASize) {
  const Location place(file_.path(), kBlock, H5F_ACC_RDWR);
  const std::vector<hsize_t> dims(40, 1);
  const std::int32_t value = 1;
  EXPECT_EQ(OH5Write_INT(place.id(), nullptr, 1, dims.data(), ORV_INT, &value), 1);
  EXPECT_EQ(OH5Write_INT(place.id(), "i", 1, nullptr, ORV_INT, &value), 1);
  EXPECT_EQ(OH5Write_INT(place.id(), "i", 1, dims.data(), ORV_INT, nullptr), 1);
  EXPECT_EQ(OH5Write_INT(place.id(), "i", 33, dims.data(), ORV_INT, &value), 1);
  EXPECT_EQ(OH5Write_FLOAT(place.id(), "i", 33, dims.data(), ORV_FLOAT, &value), 1);
  EXPECT_EQ(OH5Write_CHAR(place.id(), "i", 33, dims.data(), 1, "x"), 1);
  EXPECT_EQ(OH5Write_INT(place.id(), "i", -1, dims.data(), ORV_INT, &value), 1);
  EXPECT_EQ(OH5Write_FLOAT(place.id(), "i", -1, dims.data(), ORV_FLOAT, &value), 1);
  EXPECT_EQ(OH5Write_CHAR(place.id(), "i", -1, dims.data(), 1, "x"), 1);
  EXPECT_EQ(OH5Write_CHAR(place.id(), "i", 1, dims.data(), 0, "x"), 1);
}

class CompressedWrite : public DatasetWrite {};

TEST_F(CompressedWrite, KeepsTheDigitsOfFloatsInOneFullChunk) {
  OH5SetCompression(1, 2);
  EXPECT_EQ(WriteFloat<double>("d", {2, 3}, ORV_DOUBLE, {1.234, 2.5, 3.999, -4, 0, 100.126}), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.layout(At("d")), H5D_CHUNKED);
  EXPECT_EQ(file.chunk(At("d")), (Dims{2, 3}));
  EXPECT_EQ(file.filters(At("d")), std::vector<int>{H5Z_FILTER_SCALEOFFSET});
  EXPECT_EQ(file.filter_values(At("d"))[0], 0u);  // decimal digits of floats
  EXPECT_EQ(file.filter_values(At("d"))[1], 2u);
  const std::vector<double> values = file.values<double>(At("d"));
  const std::vector<double> kept = {1.23, 2.5, 4, -4, 0, 100.13};
  ASSERT_EQ(values.size(), kept.size());
  for (size_t i = 0; i < kept.size(); ++i) EXPECT_NEAR(values[i], kept[i], 1e-9) << i;
}

TEST_F(CompressedWrite, MakesChunksOfAsManyEntitiesAsAreAskedFor) {
  OH5SetCompression(1, 2);
  EXPECT_EQ(ORVSetChunkEntities(2), 0);
  const std::vector<double> values = {1.23, 2.5, 4, -4, 0, 100.13, 7, 8, 9, 10};
  EXPECT_EQ(WriteFloat<double>("d", {5, 2}, ORV_DOUBLE, values), 0);
  EXPECT_EQ(WriteInt<std::int32_t>("i", {5}, ORV_INT, {1, 2, 3, 4, 5}), 0);
  EXPECT_EQ(WriteInt<std::int32_t>("short", {1}, ORV_INT, {1}), 0);
  EXPECT_EQ(ORVSetChunkEntities(-1), 2) << "no number of entities";
  EXPECT_EQ(ORVSetChunkEntities(0), 2);
  const RawFile file = Look();
  EXPECT_EQ(file.chunk(At("d")), (Dims{2, 2}));
  EXPECT_EQ(file.chunk(At("i")), Dims{2});
  EXPECT_EQ(file.chunk(At("short")), Dims{1});
  EXPECT_EQ(file.filters(At("d")), std::vector<int>{H5Z_FILTER_SCALEOFFSET});
  EXPECT_EQ(file.values<std::int32_t>(At("i")), (std::vector<std::int32_t>{1, 2, 3, 4, 5}));
  const std::vector<double> kept = file.values<double>(At("d"));
  ASSERT_EQ(kept.size(), values.size());
  for (size_t i = 0; i < kept.size(); ++i) EXPECT_NEAR(kept[i], values[i], 1e-9) << i;
}

TEST_F(CompressedWrite, StoresPlainDataInOnePieceHoweverManyEntitiesAChunkMayHave) {
  EXPECT_EQ(ORVSetChunkEntities(2), 0);
  EXPECT_EQ(WriteFloat<double>("d", {3}, ORV_DOUBLE, {1, 2, 3}), 0);
  EXPECT_EQ(ORVSetChunkEntities(0), 2);
  EXPECT_EQ(Look().layout(At("d")), H5D_CONTIGUOUS);
}

TEST_F(CompressedWrite, GivesIntegersTheIntegerFormOfTheFilter) {
  OH5SetCompression(1, 2);
  EXPECT_EQ(WriteInt<std::int32_t>("i", {4}, ORV_INT, {1000001, 1000002, 1000003, 999999}), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.layout(At("i")), H5D_CHUNKED);
  EXPECT_EQ(file.chunk(At("i")), Dims{4});
  EXPECT_EQ(file.filters(At("i")), std::vector<int>{H5Z_FILTER_SCALEOFFSET});
  EXPECT_EQ(file.filter_values(At("i"))[0], 2u);  // integers
  EXPECT_EQ(file.filter_values(At("i"))[1], 0u);  // as many bits as are needed
  EXPECT_EQ(file.values<std::int32_t>(At("i")), (std::vector<std::int32_t>{1000001, 1000002, 1000003, 999999}));
}

TEST_F(CompressedWrite, NeverTouchesTexts) {
  OH5SetCompression(1, 2);
  EXPECT_EQ(WriteChar("t", {2}, 2, "abcd"), 0);
  EXPECT_EQ(Look().layout(At("t")), H5D_CONTIGUOUS);
}

TEST_F(CompressedWrite, StoresSingleValuesPlain) {
  OH5SetCompression(1, 2);
  EXPECT_EQ(WriteInt<std::int32_t>("i", {}, ORV_INT, {5}), 0);
  EXPECT_EQ(WriteFloat<double>("d", {}, ORV_DOUBLE, {0.123456}), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.layout(At("i")), H5D_CONTIGUOUS);
  EXPECT_EQ(file.layout(At("d")), H5D_CONTIGUOUS);
  EXPECT_EQ(file.values<double>(At("d")), std::vector<double>{0.123456});
}

TEST_F(CompressedWrite, StoresPlainDataWhenTheDigitsAreNegative) {
  OH5SetCompression(1, -1);
  EXPECT_EQ(WriteInt<std::int32_t>("i", {2}, ORV_INT, {5, 6}), 0);
  EXPECT_EQ(WriteFloat<double>("d", {2}, ORV_DOUBLE, {0.123456, 1}), 0);
  const RawFile file = Look();
  EXPECT_TRUE(file.filters(At("i")).empty());
  EXPECT_TRUE(file.filters(At("d")).empty());
  EXPECT_EQ(file.values<double>(At("d")), (std::vector<double>{0.123456, 1}));
}

TEST_F(CompressedWrite, KeepsTheFilterOfADatasetThatIsThereWithoutTheSwitch) {
  OH5SetCompression(1, 2);
  EXPECT_EQ(WriteFloat<double>("d", {2}, ORV_DOUBLE, {1, 2}), 0);
  OH5SetCompression(0, -1);
  EXPECT_EQ(WriteFloat<double>("d", {2}, ORV_DOUBLE, {3.25, 4}), 0);
  const RawFile file = Look();
  EXPECT_EQ(file.filters(At("d")), std::vector<int>{H5Z_FILTER_SCALEOFFSET});
  EXPECT_EQ(file.values<double>(At("d")), (std::vector<double>{3.25, 4}));
}

class CheckDataSet : public DatasetWrite {
 protected:
  int Checked(const char* name, hsize_t count, _ORVDataType type) {
    const Location place(file_.path(), kBlock);
    return OH5CheckDataSet(place.id(), name, &count, type);
  }
};

TEST_F(CheckDataSet, PassesNumbersOfRankOneAndThatSize) {
  file_.dataset<std::int32_t>("i", {3}, {1, 2, 3}).dataset<float>("f", {3}, {1, 2, 3});
  EXPECT_EQ(Checked("i", 3, ORV_INT), 0);
  EXPECT_EQ(Checked("i", 3, ORV_LONG), 0);
  EXPECT_EQ(Checked("f", 3, ORV_INT), 0);
  EXPECT_EQ(LastText(), kUntouched);
}

TEST_F(CheckDataSet, PassesAnyOtherTypeWithoutALook) {
  for (const int type : {0, 1, 3, 4, 5, 7, 8}) {
    EXPECT_EQ(Checked("nowhere", 3, static_cast<_ORVDataType>(type)), 0) << type;
  }
  EXPECT_EQ(OH5CheckDataSet(-1, nullptr, nullptr, ORV_FLOAT), 0);
}

TEST_F(CheckDataSet, RefusesACountOfZero) {
  file_.dataset<std::int32_t>("i", {3}, {1, 2, 3});
  EXPECT_EQ(Checked("i", 0, ORV_INT), 1);
}

TEST_F(CheckDataSet, TellsOfADatasetThatDoesNotOpen) {
  file_.group("g");
  EXPECT_EQ(Checked("nowhere", 3, ORV_INT), 1);
  EXPECT_EQ(LastText(), "OH5CheckDataSet::\n\t \"nowhere\"  dataset open failed");
  EXPECT_EQ(Checked("g", 3, ORV_LONG), 1);
  EXPECT_EQ(LastText(), "OH5CheckDataSet::\n\t \"g\"  dataset open failed");
}

TEST_F(CheckDataSet, RefusesTexts) {
  file_.texts("t", 2, {3}, {"a", "b", "c"});
  EXPECT_EQ(Checked("t", 3, ORV_INT), 1);
  EXPECT_EQ(LastText(), "OH5CheckDataSet::\n\t \"t\"  datatype ORV_INT/ORV_FLOAT expected");
}

TEST_F(CheckDataSet, RefusesAnotherRankOrSize) {
  file_.dataset<std::int32_t>("i", {3}, {1, 2, 3}).dataset<std::int32_t>("grid", {3, 1}, {1, 2, 3});
  EXPECT_EQ(Checked("i", 2, ORV_INT), 1);
  EXPECT_EQ(LastText(), "OH5CheckDataSet::\n\t \"i\" dimension mismatch");
  EXPECT_EQ(Checked("grid", 3, ORV_INT), 1);
  EXPECT_EQ(LastText(), "OH5CheckDataSet::\n\t \"grid\" dimension mismatch");
}

struct TypeRow {
  _ORVDataType type;
  int type_class;
  hid_t (*native)();
  size_t size;
};

class TypeInfo : public H5Test, public testing::WithParamInterface<TypeRow> {};

TEST_P(TypeInfo, GivesClassNativeTypeAndSizeInBothForms) {
  for (const bool write_form : {true, false}) {
    int type_class = -5;
    hid_t native = -5;
    size_t size = 99;
    EXPECT_EQ(OH5TypeInfo(GetParam().type, type_class, native, size, write_form), 0);
    EXPECT_EQ(type_class, GetParam().type_class);
    EXPECT_GT(H5Tequal(native, GetParam().native()), 0);
    EXPECT_EQ(size, GetParam().size);
  }
}

INSTANTIATE_TEST_SUITE_P(Numbers, TypeInfo,
                         testing::Values(TypeRow{ORV_INT, 0, [] { return H5T_NATIVE_INT; }, 4},
                                         TypeRow{ORV_FLOAT, 1, [] { return H5T_NATIVE_FLOAT; }, 4},
                                         TypeRow{ORV_LONG, 0, [] { return H5T_NATIVE_LLONG; }, 8},
                                         TypeRow{ORV_DOUBLE, 1, [] { return H5T_NATIVE_DOUBLE; }, 8}));

using TypeInfoOfOthers = H5Test;

TEST_F(TypeInfoOfOthers, CountsTextsAs256BytesForWritesAndOneForReads) {
  int type_class = -5;
  hid_t native = -5;
  size_t size = 0;
  EXPECT_EQ(OH5TypeInfo(ORV_CHAR, type_class, native, size, true), 0);
  EXPECT_EQ(type_class, 3);
  EXPECT_EQ(native, H5T_C_S1);
  EXPECT_EQ(size, 256u);
  EXPECT_EQ(OH5TypeInfo(ORV_CHAR, type_class, native, size, false), 0);
  EXPECT_EQ(type_class, 3);
  EXPECT_EQ(native, H5T_C_S1);
  EXPECT_EQ(size, 1u);
}

TEST_F(TypeInfoOfOthers, AnswersOneAndInTheReadFormEmptyOutputsForAnUnknownType) {
  for (const int type : {0, 1, 5, 8}) {
    int type_class = 7;
    hid_t native = 8;
    size_t size = 9;
    EXPECT_EQ(OH5TypeInfo(static_cast<_ORVDataType>(type), type_class, native, size, true), 1);
    EXPECT_EQ(type_class, 7);
    EXPECT_EQ(native, 8);
    EXPECT_EQ(size, 9u);
    EXPECT_EQ(OH5TypeInfo(static_cast<_ORVDataType>(type), type_class, native, size, false), 1);
    EXPECT_EQ(type_class, -1);
    EXPECT_EQ(native, 0);
    EXPECT_EQ(size, 0u);
  }
}

}  // namespace
