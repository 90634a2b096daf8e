// Code that HDF5 would load because a file names a filter.

#include <cstdlib>

#include "h5/entry.h"
#include "h5/h5_test.h"
#include "orvio/oh5_reader.h"

namespace {

using namespace orv_test;

constexpr char kBlock[] = "/post/constant/b";
constexpr H5Z_filter_t kTrap = 32101;

size_t PassThrough(unsigned, size_t, const unsigned[], size_t bytes, size_t*, void**) { return bytes; }

class Plugin : public H5Test {
 protected:
  Plugin() {
    unsetenv("ORVIO_TRAP");
    const H5Z_class2_t filter = {H5Z_CLASS_T_VERS, kTrap, 1, 1, "trap", nullptr, nullptr, PassThrough};
    Check(H5Zregister(&filter), "register");
    file_.at(kBlock).raw([](hid_t here) {
      const hsize_t two = 2;
      const std::int32_t values[] = {7, 8};
      const Id space(H5Screate_simple(1, &two, nullptr), "space");
      const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
      Check(H5Pset_chunk(list.get(), 1, &two), "chunk");
      Check(H5Pset_filter(list.get(), kTrap, 0, 0, nullptr), "filter");
      const Id made(H5Dcreate2(here, "d", H5T_NATIVE_INT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "d");
      Check(H5Dwrite(made.get(), H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values), "values");
    });
    path_ = file_.path();
    Check(H5Zunregister(kTrap), "unregister");
    Check(H5PLprepend(ORVIO_TRAP_FOLDER), "plugin folder");
  }
  ~Plugin() override { H5PLremove(0); }

  bool PlainHdf5Reads() const {
    const Location place(path_, kBlock);
    std::int32_t values[2] = {};
    const Id dataset(H5Dopen2(place.id(), "d", H5P_DEFAULT), "d");
    return H5Dread(dataset.get(), H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values) >= 0;
  }

  ForgedFile file_{"plugin"};
  std::string path_;
};

TEST_F(Plugin, IsNotLoadedByWhatTheLibraryDoesInHdf5) {
  orvio::h5::EntryVoid([&] { EXPECT_FALSE(PlainHdf5Reads()); });
  EXPECT_EQ(std::getenv("ORVIO_TRAP"), nullptr);
  // Outside the trap springs, so it was set.
  EXPECT_TRUE(PlainHdf5Reads());
  EXPECT_STREQ(std::getenv("ORVIO_TRAP"), "sprung");
}

TEST_F(Plugin, IsNotLoadedByAReadOfValues) {
  const Location place(path_, kBlock);
  const hsize_t zero[] = {0}, two[] = {2};
  std::int32_t values[2] = {-1, -1};
  EXPECT_EQ(OH5Read_DATASET(place.id(), "d", 1, two, ORV_INT, values), 1);
  EXPECT_EQ(OH5Read_SELECTIVE(place.id(), "d", 1, zero, two, nullptr, nullptr, ORV_INT, values), 1);
  EXPECT_EQ(values[0], -1);
  EXPECT_EQ(std::getenv("ORVIO_TRAP"), nullptr);
}

TEST_F(Plugin, IsNotLoadedByADescription) {
  const Location place(path_, kBlock);
  auto type = ORV_UNKNOWN_TYPE;
  EXPECT_EQ(OH5Read_DATATYPE(place.id(), "d", &type), 0);
  EXPECT_EQ(type, ORV_INT);
  OH5Reader reader;
  int rank = 0;
  hsize_t dims[H5S_MAX_RANK] = {}, total = 0;
  std::vector<int> filters;
  EXPECT_EQ(reader.GetDatasetInfo(place.id(), "d", rank, dims, total, type, &filters), 0);
  EXPECT_EQ(filters, std::vector<int>{kTrap});
  EXPECT_EQ(std::getenv("ORVIO_TRAP"), nullptr);
}

TEST_F(Plugin, MayBeLoadedAgainAfterTheOutermostOperation) {
  unsigned before = 0, inside = 9, deeper = 9, back = 9, after = 0;
  Check(H5PLget_loading_state(&before), "state");
  ASSERT_NE(before, 0U);
  orvio::h5::EntryVoid([&] {
    H5PLget_loading_state(&inside);
    orvio::h5::EntryVoid([&] { H5PLget_loading_state(&deeper); });
    H5PLget_loading_state(&back);
  });
  Check(H5PLget_loading_state(&after), "state");
  EXPECT_EQ(inside, 0U);
  EXPECT_EQ(deeper, 0U);
  EXPECT_EQ(back, 0U);
  EXPECT_EQ(after, before);
}

TEST_F(Plugin, StaysOffWhereTheHostHasItOff) {
  unsigned before = 0, after = 9;
  Check(H5PLget_loading_state(&before), "state");
  Check(H5PLset_loading_state(0), "state");
  orvio::h5::EntryVoid([] {});
  H5PLget_loading_state(&after);
  EXPECT_EQ(after, 0U);
  Check(H5PLset_loading_state(before), "state");
}

}  // namespace
