// The lists by which groups and datasets are opened. What they keep out: hostile_file_test.

#include "h5/file_access.h"

#include <cstdint>

#include "h5/entry.h"
#include "h5/h5_test.h"

namespace {

using namespace orv_test;
using orvio::process;
using orvio::Swapped;

/// A host that closes HDF5 makes its ids begin anew: the number of a list of the library may then be another list.
class AccessLists : public H5Test {
 protected:
  AccessLists() {
    other_.group("/x/y");
    file_.at("/post/constant/b").dataset<std::int32_t>("d", {1}, {7}).external_link("out", other_.path(), "/x");
    path_ = file_.path();
  }

  /// Expects that a dataset is read and that a link into another file is not followed.
  void ExpectOpensAsEver() {
    const Location place(path_, "/post/constant/b");
    const hsize_t dims[] = {1};
    std::int32_t value = 0;
    EXPECT_EQ(OH5Read_DATASET(place.id(), "d", 1, dims, ORV_INT, &value), 0);
    EXPECT_EQ(value, 7);
    EXPECT_TRUE(static_cast<bool>(orvio::h5::OpenGroup(place.file(), "/post/constant")));
    const orvio::h5::QuietHdf5 quiet;
    EXPECT_FALSE(orvio::h5::LinkExists(place.id(), "out/y"));
    EXPECT_FALSE(static_cast<bool>(orvio::h5::OpenGroup(place.id(), "out")));
  }

  ForgedFile other_{"other"};
  ForgedFile file_{"access"};
  std::string path_;
};

TEST_F(AccessLists, AreMadeAnewWhereTheirIdsAreListsOfAnotherKind) {
  const Id list(H5Pcreate(H5P_FILE_ACCESS), "list");
  const Swapped groups(process().group_access, list.get());
  const Swapped datasets(process().dataset_access, list.get());
  ExpectOpensAsEver();
  EXPECT_GT(H5Iis_valid(list.get()), 0);
}

TEST_F(AccessLists, AreMadeAnewWhereTheirIdsAreListsOfAHost) {
  const Id of_groups(H5Pcreate(H5P_GROUP_ACCESS), "list");
  const Id of_datasets(H5Pcreate(H5P_DATASET_ACCESS), "list");
  const Swapped groups(process().group_access, of_groups.get());
  const Swapped datasets(process().dataset_access, of_datasets.get());
  ExpectOpensAsEver();
}

TEST_F(AccessLists, AreMadeAnewWhereTheirIdsAreExchanged) {
  ExpectOpensAsEver();
  const Swapped groups(process().group_access, process().dataset_access);
  ExpectOpensAsEver();
}

TEST_F(AccessLists, AreMadeAnewWhereTheirIdsAreGone) {
  const Swapped groups(process().group_access, hid_t{12345});
  const Swapped datasets(process().dataset_access, hid_t{-1});
  ExpectOpensAsEver();
}

}  // namespace
