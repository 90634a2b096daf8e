// Values that are read without HDF5 from datasets that it has opened: which, and that they are the same.

#include "h5/plain_dataset.h"

#include <cmath>
#include <numeric>

#include "h5/data_type.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/h5_test.h"

namespace {

using namespace orv_test;
using orvio::h5::PlainDataset;
using orvio::h5::PlainSlab;
using orvio::h5::StoredDataset;

constexpr char kBlock[] = "/post/constant/b";
constexpr std::size_t kRows = 700, kColumns = 3, kCount = kRows * kColumns;

const orvio::h5::TypeRow& RowOf(_ORVDataType type) { return *orvio::h5::FindNumericType(type); }

class PlainDatasets : public H5Test {
 protected:
  PlainDatasets() {
    std::iota(numbers_.begin(), numbers_.end(), -100.25);
    file_.at(kBlock).dataset<double>("d", {kRows, kColumns}, numbers_);
  }

  /// Makes "d" anew, with `fill` changing how it is stored.
  void Forge(hid_t type, const std::function<void(hid_t list)>& fill, bool written = true) {
    file_.drop("d").raw([&](hid_t here) {
      const hsize_t dims[] = {kRows, kColumns};
      const Id space(H5Screate_simple(2, dims, nullptr), "space");
      const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
      fill(list.get());
      const Id made(H5Dcreate2(here, "d", type, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "d");
      if (!written) return;
      Check(H5Dwrite(made.get(), H5T_NATIVE_DOUBLE, H5S_ALL, H5S_ALL, H5P_DEFAULT, numbers_.data()), "values");
    });
  }
  /// Hands the dataset to `look` as an operation of the library has it.
  template <class Look>
  void InOperation(const char* name, Look look, unsigned flags = H5F_ACC_RDONLY) {
    const std::string path = file_.path();
    orvio::h5::EntryVoid([&] {
      orvio::h5::File file = orvio::h5::OpenFile(path.c_str(), flags);
      const orvio::h5::Group block = orvio::h5::OpenGroup(file.get(), kBlock);
      StoredDataset dataset(block.get(), name);
      ASSERT_TRUE(dataset);
      look(dataset);
    });
  }
  bool IsPlain(_ORVDataType wanted, const char* name = "d", unsigned flags = H5F_ACC_RDONLY) {
    bool plain = false;
    InOperation(
        name, [&](StoredDataset& dataset) { plain = static_cast<bool>(PlainDataset(dataset, RowOf(wanted))); }, flags);
    return plain;
  }

  std::vector<double> numbers_ = std::vector<double>(kCount);
  ForgedFile file_;
};

TEST_F(PlainDatasets, AreReadWholeInTheirTypeAndInAnother) {
  std::vector<double> doubles(kCount);
  std::vector<float> floats(kCount);
  InOperation("d", [&](StoredDataset& dataset) {
    EXPECT_TRUE(PlainDataset(dataset, RowOf(ORV_DOUBLE)).Read(RowOf(ORV_DOUBLE), nullptr, doubles.data()));
    EXPECT_TRUE(PlainDataset(dataset, RowOf(ORV_FLOAT)).Read(RowOf(ORV_FLOAT), nullptr, floats.data()));
  });
  EXPECT_EQ(doubles, numbers_);
  EXPECT_EQ(floats, std::vector<float>(numbers_.begin(), numbers_.end()));
}

TEST_F(PlainDatasets, AreReadInPart) {
  const hsize_t start[] = {10, 1}, count[] = {2, 2};
  std::vector<double> some(4);
  InOperation("d", [&](StoredDataset& dataset) {
    const PlainSlab slab{start, count};
    EXPECT_TRUE(PlainDataset(dataset, RowOf(ORV_DOUBLE)).Read(RowOf(ORV_DOUBLE), &slab, some.data()));
  });
  EXPECT_EQ(some, (std::vector<double>{-69.25, -68.25, -66.25, -65.25}));
}

TEST_F(PlainDatasets, AreLeftToHdf5WhenTheyAreSmall) {
  file_.dataset<double>("small", {512}, std::vector<double>(512, 1));
  file_.dataset<double>("larger", {513}, std::vector<double>(513, 1));
  EXPECT_FALSE(IsPlain(ORV_DOUBLE, "small"));
  EXPECT_TRUE(IsPlain(ORV_DOUBLE, "larger"));
}

TEST_F(PlainDatasets, AreLeftToHdf5WhereNothingWasWritten) {
  Forge(
      H5T_NATIVE_DOUBLE, [](hid_t) {}, false);
  EXPECT_FALSE(IsPlain(ORV_DOUBLE));
}

TEST_F(PlainDatasets, AreLeftToHdf5InOtherLayouts) {
  Forge(H5T_NATIVE_DOUBLE, [](hid_t list) { H5Pset_layout(list, H5D_COMPACT); });
  EXPECT_FALSE(IsPlain(ORV_DOUBLE));
  Forge(H5T_NATIVE_DOUBLE, [](hid_t list) {
    const hsize_t chunk[] = {kRows, kColumns};
    H5Pset_chunk(list, 2, chunk);
  });
  EXPECT_FALSE(IsPlain(ORV_DOUBLE));
}

TEST_F(PlainDatasets, AreLeftToHdf5InNumbersThatTheMachineDoesNotHave) {
  for (const hid_t type : {H5T_IEEE_F64BE, H5T_IEEE_F32BE}) {
    Forge(type, [](hid_t) {});
    EXPECT_FALSE(IsPlain(ORV_DOUBLE));
  }
  Forge(H5T_STD_U32LE, [](hid_t) {});
  EXPECT_FALSE(IsPlain(ORV_INT));
  Forge(H5T_STD_I32LE, [](hid_t) {});
  EXPECT_TRUE(IsPlain(ORV_INT));
}

TEST_F(PlainDatasets, AreLeftToHdf5InAFileThatIsWritten) {
  EXPECT_TRUE(IsPlain(ORV_DOUBLE));
  EXPECT_FALSE(IsPlain(ORV_DOUBLE, "d", H5F_ACC_RDWR));
}

TEST_F(PlainDatasets, AreLeftToHdf5InAFileOfAHost) {
  const Location place(file_.path(), kBlock);
  StoredDataset dataset(place.id(), "d");
  ASSERT_TRUE(dataset);
  EXPECT_FALSE(PlainDataset(dataset, RowOf(ORV_DOUBLE)));
}

}  // namespace
