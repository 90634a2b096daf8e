// Which datasets may be used at all, and what is said of the others. The file is open by HDF5 alone, so that nothing was
// looked at before.

#include "h5/stored_dataset.h"

#include <algorithm>
#include <cstring>
#include <fstream>
#include <functional>

#include "h5/entry.h"
#include "h5/h5_test.h"
#include "orvio/orv_filer.h"

namespace {

using namespace orv_test;
using orvio::h5::StoredDataset;

constexpr char kBlock[] = "/post/constant/b";

/// Replaces a run of 32-bit numbers that is in the file once.
void PatchNumbers(const std::string& path, const std::vector<std::uint32_t>& from,
                  const std::vector<std::uint32_t>& to) {
  std::string bytes = BytesOf(path);
  std::string old(from.size() * 4, '\0'), now(to.size() * 4, '\0');
  std::memcpy(old.data(), from.data(), old.size());
  std::memcpy(now.data(), to.data(), now.size());
  const size_t place = bytes.find(old);
  ASSERT_NE(place, std::string::npos);
  ASSERT_EQ(bytes.find(old, place + 1), std::string::npos);
  bytes.replace(place, now.size(), now);
  std::ofstream(path, std::ios::binary) << bytes;
}

size_t PassThrough(unsigned, size_t, const unsigned[], size_t bytes, size_t*, void**) { return bytes; }

class StoredDatasetDoor : public H5Test {
 protected:
  using Fill = std::function<void(hid_t list)>;

  StoredDatasetDoor() { file_.at(kBlock); }

  /// Makes "d" of the given type and extents, with chunks of twelve numbers where `fill` does not say otherwise. Twelve
  /// values are written where the type is of four bytes.
  void Forge(const Fill& fill, hid_t type = H5T_NATIVE_INT, const std::vector<hsize_t>& dims = {12},
             const std::vector<hsize_t>& chunk = {12}) {
    file_.raw([&](hid_t here) {
      const std::vector<hsize_t> most(dims.size(), H5S_UNLIMITED);
      const int rank = static_cast<int>(dims.size());
      const Id space(H5Screate_simple(rank, dims.data(), chunk.empty() ? nullptr : most.data()), "space");
      const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
      if (!chunk.empty()) Check(H5Pset_chunk(list.get(), rank, chunk.data()), "chunk");
      fill(list.get());
      const Id made(H5Dcreate2(here, "d", type, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "d");
      const std::vector<std::int32_t> values(12, 7);
      if (dims == std::vector<hsize_t>{12} && H5Tget_size(type) == 4) {
        Check(H5Dwrite(made.get(), H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), "values");
      }
    });
    path_ = file_.path();
  }

  static void Nothing(hid_t /*list*/) {}

  void ExpectTaken() {
    const Location place(path_, kBlock);
    const StoredDataset dataset(place.id(), "d");
    EXPECT_TRUE(static_cast<bool>(dataset));
    EXPECT_STREQ(dataset.refusal(), "");
  }

  void ExpectRefused(const char* why) {
    const Location place(path_, kBlock);
    const orvio::h5::QuietHdf5 quiet;
    const StoredDataset dataset(place.id(), "d");
    EXPECT_FALSE(static_cast<bool>(dataset));
    EXPECT_STREQ(dataset.refusal(), why);
    const hsize_t twelve[] = {12};
    std::int32_t values[12] = {};
    EXPECT_EQ(OH5Read_DATASET(place.id(), "d", 1, twelve, ORV_INT, values), 1);
    EXPECT_STREQ(ORVGetLastErrorText(), (std::string("DatasetIO::\n\t Read Failed ::\"d\"") + why).c_str());
  }

  static constexpr H5Z_filter_t kOwnFilter = 32100;

  ForgedFile file_{"door"};
  std::string path_;
};

constexpr char kBadFilters[] = "\n\t its filters are not those of the format";

TEST_F(StoredDatasetDoor, OpensForChunksWithTheFiltersOfTheFormat) {
  Forge([](hid_t list) {
    Check(H5Pset_scaleoffset(list, H5Z_SO_INT, 0), "scale-offset");
    Check(H5Pset_shuffle(list), "shuffle");
    Check(H5Pset_deflate(list, 9), "deflate");
    Check(H5Pset_fletcher32(list), "checksum");
  });
  ExpectTaken();
}

TEST_F(StoredDatasetDoor, OpensForWhatHasNoFilter) {
  Forge(Nothing);
  ExpectTaken();
}

TEST_F(StoredDatasetDoor, TellsThatValuesLieInOtherFiles) {
  Forge([&](hid_t list) { Check(H5Pset_external(list, TempPath("raw").c_str(), 0, 48), "external"); }, H5T_NATIVE_LLONG,
        {6}, {});
  ExpectRefused("\n\t its values lie in other files");
}

TEST_F(StoredDatasetDoor, TellsThatValuesAreThoseOfOtherFiles) {
  file_.raw([&](hid_t here) {
    const hsize_t twelve = 12;
    const Id space(H5Screate_simple(1, &twelve, nullptr), "space");
    const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
    Check(H5Pset_virtual(list.get(), space.get(), "other", "/d", space.get()), "virtual");
    const Id made(H5Dcreate2(here, "d", H5T_NATIVE_INT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "d");
  });
  path_ = file_.path();
  ExpectRefused("\n\t it shows values of other files");
}

TEST_F(StoredDatasetDoor, TellsThatADatasetLiesInAnotherFile) {
  file_.external_link("d", "other", "/d");
  path_ = file_.path();
  ExpectRefused("\n\t it lies in another file");
}

TEST_F(StoredDatasetDoor, StaysShutForAFilterThatHdf5HasAndTheFormatHasNot) {
  Forge([](hid_t list) { Check(H5Pset_nbit(list), "filter"); });
  ExpectRefused(kBadFilters);
}

TEST_F(StoredDatasetDoor, StaysShutForAFilterOfTheHost) {
  const H5Z_class2_t filter = {H5Z_CLASS_T_VERS, kOwnFilter, 1, 1, "own", nullptr, nullptr, PassThrough};
  Check(H5Zregister(&filter), "register");
  Forge([](hid_t list) { Check(H5Pset_filter(list, kOwnFilter, H5Z_FLAG_OPTIONAL, 0, nullptr), "filter"); });
  ExpectRefused(kBadFilters);
  Check(H5Zunregister(kOwnFilter), "unregister");
}

/// Numbers of the scale-offset filter over twelve integers of four bytes: type, bits, count, class, size, sign, order,
/// fill. Each row changes one.
using Row = std::pair<const char*, std::vector<std::uint32_t>>;

class ScaleOffsetNumbers : public StoredDatasetDoor, public ::testing::WithParamInterface<Row> {};

TEST_P(ScaleOffsetNumbers, ThatDoNotBelongToTheDatasetKeepItShut) {
  Forge([](hid_t list) { Check(H5Pset_scaleoffset(list, H5Z_SO_INT, 0), "filter"); });
  PatchNumbers(path_, {2, 0, 12, 0, 4, 1, 0, 1}, GetParam().second);
  ExpectRefused(kBadFilters);
}

INSTANTIATE_TEST_SUITE_P(
    Rows, ScaleOffsetNumbers,
    ::testing::Values(Row{"Type", {1, 0, 12, 0, 4, 1, 0, 1}}, Row{"Bits", {2, 33, 12, 0, 4, 1, 0, 1}},
                      Row{"Count", {2, 0, 13, 0, 4, 1, 0, 1}}, Row{"Class", {2, 0, 12, 1, 4, 1, 0, 1}},
                      Row{"Size", {2, 0, 12, 0, 8, 1, 0, 1}}, Row{"Sign", {2, 0, 12, 0, 4, 0, 0, 1}},
                      Row{"Order", {2, 0, 12, 0, 4, 1, 1, 1}}, Row{"Fill", {2, 0, 12, 0, 4, 1, 0, 2}}),
    [](const auto& row) { return std::string(row.param.first); });

TEST_F(StoredDatasetDoor, StaysShutForChunksThatAreMuchLargerThanTheDataset) {
  // One value, and a chunk of 160 MB that HDF5 would make room for.
  Forge(Nothing, H5T_NATIVE_INT, {1}, {40'000'000});
  ExpectRefused("\n\t its chunks are impossible");
}

TEST_F(StoredDatasetDoor, OpensForChunksOfModerateSizeThatAreHardlyUsed) {
  Forge(Nothing, H5T_NATIVE_INT, {1}, {1'000'000});
  ExpectTaken();
}

TEST_F(StoredDatasetDoor, StaysShutForExtentsWhoseProductWrapsAround) {
  Forge(Nothing, H5T_NATIVE_INT, {hsize_t{1} << 33, hsize_t{1} << 33}, {1, 1});
  ExpectRefused("\n\t it is damaged");
}

TEST_F(StoredDatasetDoor, StaysShutForBytesThatNoFileHolds) {
  Forge(Nothing, H5T_NATIVE_INT, {hsize_t{1} << 31, hsize_t{1} << 31}, {1, 1});
  ExpectRefused("\n\t its extents are impossible");
}

TEST_F(StoredDatasetDoor, StaysShutForNumbersThatAreTooWide) {
  const Id wide(H5Tcopy(H5T_NATIVE_INT), "type");
  Check(H5Tset_precision(wide.get(), 256), "precision");
  Forge(Nothing, wide.get(), {3}, {});
  ExpectRefused("\n\t its type is impossible");
}

TEST_F(StoredDatasetDoor, OpensForTypesThatTheLibraryDoesNotRead) {
  const Id pair(H5Tcreate(H5T_COMPOUND, 8), "type");
  Check(H5Tinsert(pair.get(), "a", 0, H5T_NATIVE_INT), "member");
  Forge(Nothing, pair.get(), {3}, {});
  ExpectTaken();
}

}  // namespace
