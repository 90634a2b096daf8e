// What of a dataset is really in the file. Other helpers of dataspaces are tested with the reads and writes that use
// them.

#include "h5/extents.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <vector>

#include "h5/entry.h"
#include "support/forged_file.h"
#include "support/orv_test.h"
#include "support/packed_dataset.h"

namespace orv_test {
namespace {

class AllocatedElements : public OrvTest {
 protected:
  /// Makes a dataset of 10 x 4 floats, in chunks of 4 x 4 if asked for.
  void Make(const char* name, bool chunked, bool compressed = false, bool early = false) {
    file_.at("/").raw([=](hid_t here) {
      const hsize_t dims[] = {10, 4}, chunk[] = {4, 4};
      const Id space(H5Screate_simple(2, dims, nullptr), "space");
      const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
      if (chunked) Check(H5Pset_chunk(list.get(), 2, chunk), "chunk");
      if (compressed) Check(H5Pset_deflate(list.get(), 9), "deflate");
      if (early) Check(H5Pset_alloc_time(list.get(), H5D_ALLOC_TIME_EARLY), "alloc time");
      const Id made(H5Dcreate2(here, name, H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), name);
    });
  }

  /// Writes zeros into the first rows of a dataset.
  void WriteRows(const char* name, hsize_t rows) {
    file_.at("/").raw([=](hid_t here) {
      const hsize_t start[] = {0, 0}, count[] = {rows, 4};
      const std::vector<float> zeros(rows * 4);
      const Id data(H5Dopen2(here, name, H5P_DEFAULT), name);
      const Id in_file(H5Dget_space(data.get()), "space");
      const Id in_memory(H5Screate_simple(2, count, nullptr), "memory");
      Check(H5Sselect_hyperslab(in_file.get(), H5S_SELECT_SET, start, nullptr, count, nullptr), "select");
      Check(H5Dwrite(data.get(), H5T_NATIVE_FLOAT, in_memory.get(), in_file.get(), H5P_DEFAULT, zeros.data()), "write");
    });
  }

  std::uint64_t Of(const char* name) {
    const orvio::h5::QuietHdf5 quiet;
    std::uint64_t elements = 77;
    file_.at("/").raw([&](hid_t here) { elements = orvio::h5::AllocatedElements(here, name); });
    return elements;
  }

  ForgedFile file_;
};

TEST_F(AllocatedElements, AreNoneOfADatasetThatIsNotThere) { EXPECT_EQ(Of("none"), 0U); }

TEST_F(AllocatedElements, AreNoneBeforeTheFirstWrite) {
  Make("plain", false);
  Make("chunked", true);
  EXPECT_EQ(Of("plain"), 0U);
  EXPECT_EQ(Of("chunked"), 0U);
}

TEST_F(AllocatedElements, AreAllOfAContiguousDataset) {
  Make("plain", false, false, true);
  EXPECT_EQ(Of("plain"), 40U);
}

TEST_F(AllocatedElements, AreThoseOfTheChunksThatWereWritten) {
  Make("chunked", true);
  WriteRows("chunked", 3);
  EXPECT_EQ(Of("chunked"), 16U);
  WriteRows("chunked", 10);  // the last chunk reaches beyond the dataset
  EXPECT_EQ(Of("chunked"), 40U);
}

TEST_F(AllocatedElements, AreThoseOfTheChunksHoweverFewBytesTheyTake) {
  Make("compressed", true, true);
  WriteRows("compressed", 8);
  EXPECT_EQ(Of("compressed"), 32U);
}

TEST_F(AllocatedElements, OfAScalarAreOne) {
  file_.at("/").scalar<float>("one", 5);
  EXPECT_EQ(Of("one"), 1U);
}

class BackedElements : public OrvTest {
 protected:
  std::uint64_t Of(const char* name, std::uint64_t bytes_each) {
    const orvio::h5::QuietHdf5 quiet;
    std::uint64_t elements = 77;
    file_.at("/").raw([&](hid_t here) { elements = orvio::h5::BackedElements(here, name, bytes_each); });
    return elements;
  }

  ForgedFile file_;
};

TEST_F(BackedElements, AreThoseOfTheChunksWhereTheFileCanHoldThem) {
  file_.raw([](hid_t here) { AddPackedFives(here, "few", 1 << 20); });
  EXPECT_EQ(Of("few", 1), 1048576U);
  EXPECT_EQ(Of("none", 1), 0U);
}

TEST_F(BackedElements, AreNotMoreThanAFileOfItsSizeHolds) {
  file_.raw([](hid_t here) { AddPackedFives(here, "many", 1 << 29); });
  const std::uint64_t most = 2000 * std::filesystem::file_size(file_.path());  // of four bytes each
  EXPECT_EQ(Of("many", 1), most);
}

TEST_F(BackedElements, AreNoneThatAreSmallerThanTheyShouldBe) {
  file_.texts("titles", 8, {2}, {"one", "two"});
  EXPECT_EQ(Of("titles", 8), 2U);
  EXPECT_EQ(Of("titles", 9), 0U);
}

}  // namespace
}  // namespace orv_test
