// Datasets and attributes of the right type and shape whose values cannot be had.

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "h5/h5_test.h"

namespace {

using namespace orv_test;

constexpr char kBlock[] = "/post/constant/b";

class DamagedData : public H5Test {
 protected:
  /// Makes "d" with two elements in a chunk whose checksum is wrong.
  void ForgeWrongChecksum(hid_t type) {
    file_.raw([type](hid_t here) {
      const hsize_t dims[] = {2}, first[] = {0};
      const Id space(H5Screate_simple(1, dims, nullptr), "space");
      const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
      Check(H5Pset_chunk(list.get(), 1, dims), "chunk");
      Check(H5Pset_fletcher32(list.get()), "checksum");
      const Id made(H5Dcreate2(here, "d", type, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "d");
      const std::vector<char> bytes(2 * H5Tget_size(type) + 4, 'x');
      Check(H5Dwrite_chunk(made.get(), H5P_DEFAULT, 0, first, bytes.size(), bytes.data()), "chunk");
    });
  }

  ForgedFile file_ = std::move(ForgedFile("damaged").at(kBlock));
};

TEST_F(DamagedData, OfAWholeDatasetAreTold) {
  ForgeWrongChecksum(H5T_NATIVE_INT);
  const Location place(file_.path(), kBlock);
  const hsize_t dims[] = {2};
  std::int32_t values[2] = {};
  EXPECT_EQ(OH5Read_DATASET(place.id(), "d", 1, dims, ORV_INT, values), 1);
  EXPECT_EQ(LastText(), "DatasetIO::\n\t Read Failed ::\"d\"");
}

TEST_F(DamagedData, OfAPartAreTold) {
  ForgeWrongChecksum(H5T_NATIVE_DOUBLE);
  const Location place(file_.path(), kBlock);
  const hsize_t start[] = {1}, count[] = {1};
  double value = 0;
  EXPECT_EQ(OH5Read_SELECTIVE(place.id(), "d", 1, start, count, nullptr, nullptr, ORV_DOUBLE, &value), 1);
  EXPECT_EQ(LastText(), "OH5Read_SELECTINE::\n\t Read Failed ::\"d\"");
}

TEST_F(DamagedData, OfTextsAreTold) {
  const Id type(H5Tcopy(H5T_C_S1), "type");
  Check(H5Tset_size(type.get(), 8), "size");
  ForgeWrongChecksum(type.get());
  const Location place(file_.path(), kBlock);
  const hsize_t dims[] = {2};
  char texts[16] = {};
  EXPECT_EQ(OH5Read_CHAR(place.id(), "d", 1, dims, 8, texts), 1);
  EXPECT_EQ(LastText(), "OH5Read_CHAR::\n\t Read Failed ::\"d\" ");
}

TEST_F(DamagedData, LeaveTypeAndExtentsReadable) {
  ForgeWrongChecksum(H5T_NATIVE_INT);
  const Location place(file_.path(), kBlock);
  auto type = ORV_UNKNOWN_TYPE;
  const hsize_t dims[] = {2};
  EXPECT_EQ(OH5Read_DATATYPE(place.id(), "d", &type), 0);
  EXPECT_EQ(type, ORV_INT);
  EXPECT_EQ(OH5CheckDataSet(place.id(), "d", dims, ORV_INT), 0);
}

class AttributeOfTexts : public DamagedData {
 protected:
  /// Makes the attribute "a" of two texts; `size` may be H5T_VARIABLE.
  void ForgeTwo(size_t size, const void* values) {
    file_.raw([&](hid_t here) {
      const hsize_t dims[] = {2};
      const Id type(H5Tcopy(H5T_C_S1), "type");
      Check(H5Tset_size(type.get(), size), "size");
      const Id space(H5Screate_simple(1, dims, nullptr), "space");
      const Id made(H5Acreate2(here, "a", type.get(), space.get(), H5P_DEFAULT, H5P_DEFAULT), "a");
      Check(H5Awrite(made.get(), type.get(), values), "a");
    });
  }
  int Read(int rank, char* buffer) {
    const Location place(file_.path(), kBlock);
    const hsize_t dims[] = {2};
    return OH5Read_ATTRIBUTE(place.id(), "a", rank, dims, ORV_CHAR, buffer);
  }
};

TEST_F(AttributeOfTexts, GivesThemOneBehindTheOther) {
  ForgeTwo(4, "ab  cdef");
  char texts[10] = "---------";
  EXPECT_EQ(Read(1, texts), 0);
  EXPECT_STREQ(texts, "ab  cdef-");
}

TEST_F(AttributeOfTexts, DoesNotReadAsASingleText) {
  ForgeTwo(4, "ab  cdef");
  char text[256] = "-";
  EXPECT_EQ(Read(0, text), 1);
  EXPECT_EQ(LastText(), "OH5Read_ATTRIBUTE::\n\t \"a\" dimension mismatch");
  EXPECT_STREQ(text, "-");
}

TEST_F(AttributeOfTexts, OfVariableLengthDoesNotReadAtAll) {
  const char* values[] = {"one", "two"};
  ForgeTwo(H5T_VARIABLE, values);
  char text[256] = "-";
  EXPECT_EQ(Read(1, text), 1);
  EXPECT_EQ(LastText(), "OH5Read_ATTRIBUTE::\n\t \"a\" failed to read");
  EXPECT_STREQ(text, "-");
}

}  // namespace
