// The index datasets that blocks of many kinds share: identifiers and values, in a row or in rows by state.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include "block/recording_block.h"
#include "support/forged_file.h"
#include "support/orv_test.h"
#include "support/raw_file.h"
#include "support/raw_hdf5.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class BlockIndex : public OrvTest {
 protected:
  BlockIndex() {
    file_.at("/row").dataset<std::int32_t>("indexident", {2}, {1, 2}).dataset<float>("indexval", {2}, {.5F, 1.5F});
    file_.at("/rows")
        .dataset<std::int64_t>("indexident", {3, 2}, {1, 2, 3, 4, 5, 6})
        .dataset<double>("indexval", {3, 2}, {.5, 1.5, 2.5, 3.5, 4.5, 5.5});
    block_.OpenH5Reader(file_.path().c_str(), 0);
  }
  ~BlockIndex() override { block_.CloseH5Reader(); }

  int ReadAt(const char* group, hsize_t rows, hsize_t columns, int stages) {
    const Id opened(H5Gopen2(block_.GetH5Reader()->GetFileId(), group, H5P_DEFAULT), group);
    return block_.ReadIndexComm(opened.get(), rows, columns, stages, &ident_type_, ident_, &value_type_, values_);
  }

  ForgedFile file_;
  RecordingBlock block_;
  _ORVDataType ident_type_ = ORV_INT;
  _ORVDataType value_type_ = ORV_FLOAT;
  int ident_[8] = {-1, -1, -1, -1, -1, -1, -1, -1};
  float values_[8] = {-1, -1, -1, -1, -1, -1, -1, -1};
};

TEST_F(BlockIndex, IsReadAsARowWithoutColumns) {
  EXPECT_EQ(ReadAt("/row", 2, 0, 4), 0);
  EXPECT_THAT(ident_, ElementsAre(1, 2, -1, -1, -1, -1, -1, -1));
  EXPECT_THAT(values_, ElementsAre(.5F, 1.5F, -1, -1, -1, -1, -1, -1));
}

TEST_F(BlockIndex, IsReadInRowsWithColumns) {
  EXPECT_EQ(ReadAt("/rows", 2, 3, 4), 0);
  EXPECT_THAT(ident_, ElementsAre(1, 2, 3, 4, 5, 6, -1, -1));
  EXPECT_THAT(values_, ElementsAre(.5F, 1.5F, 2.5F, 3.5F, 4.5F, 5.5F, -1, -1));
}

TEST_F(BlockIndex, IsReadInTheTypesHandedIn) {
  std::int64_t ident[2] = {};
  double values[2] = {};
  ident_type_ = ORV_LONG;
  value_type_ = ORV_DOUBLE;
  const Id group(H5Gopen2(block_.GetH5Reader()->GetFileId(), "/row", H5P_DEFAULT), "/row");
  EXPECT_EQ(block_.ReadIndexComm(group.get(), 2, 0, 4, &ident_type_, ident, &value_type_, values), 0);
  EXPECT_THAT(ident, ElementsAre(1, 2));
  EXPECT_THAT(values, ElementsAre(.5, 1.5));
}

TEST_F(BlockIndex, IsReadBeforeItsStoredTypesAreTold) {
  EXPECT_EQ(ReadAt("/rows", 2, 3, 20), 0);
  EXPECT_THAT(ident_, ElementsAre(1, 2, 3, 4, 5, 6, -1, -1));
  EXPECT_THAT(values_, ElementsAre(.5F, 1.5F, 2.5F, 3.5F, 4.5F, 5.5F, -1, -1));
  EXPECT_EQ(ident_type_, ORV_LONG);
  EXPECT_EQ(value_type_, ORV_DOUBLE);
}

TEST_F(BlockIndex, ReadsNoValuesAfterIdentifiersThatFailed) {
  EXPECT_EQ(ReadAt("/row", 3, 0, 4), 1);
  EXPECT_EQ(ReadAt("/rows", 3, 2, 4), 1);
  EXPECT_EQ(ReadAt("/rows", 2, 0, 4), 1);
  ident_type_ = ORV_FLOAT;
  EXPECT_EQ(ReadAt("/row", 2, 0, 4), 1);
  EXPECT_EQ(ident_[0], -1);
  EXPECT_EQ(values_[0], -1.F);
}

TEST_F(BlockIndex, FailsWithoutItsValues) {
  block_.CloseH5Reader();
  file_.at("/row").drop("indexval");
  ASSERT_EQ(block_.OpenH5Reader(file_.path().c_str(), 0), 0);
  EXPECT_EQ(ReadAt("/row", 2, 0, 4), 1);
  EXPECT_THAT(ident_, ElementsAre(1, 2, -1, -1, -1, -1, -1, -1));
  EXPECT_EQ(values_[0], -1.F);
  EXPECT_EQ(ReadAt("/row", 2, 0, 16), 0);
  EXPECT_EQ(ident_type_, ORV_INT);
  EXPECT_EQ(value_type_, ORV_NO_DATASET);
}

TEST_F(BlockIndex, NeedsItsTypes) {
  const Id group(H5Gopen2(block_.GetH5Reader()->GetFileId(), "/row", H5P_DEFAULT), "/row");
  for (const int stages : {4, 16}) {
    EXPECT_EQ(block_.ReadIndexComm(group.get(), 2, 0, stages, nullptr, ident_, &value_type_, values_), 1);
    EXPECT_EQ(block_.ReadIndexComm(group.get(), 2, 0, stages, &ident_type_, ident_, nullptr, values_), 1);
  }
  EXPECT_EQ(ident_[0], -1);
}

TEST_F(BlockIndex, TellsItsTypes) {
  EXPECT_EQ(ReadAt("/rows", 2, 3, 16), 0);
  EXPECT_EQ(ident_type_, ORV_LONG);
  EXPECT_EQ(value_type_, ORV_DOUBLE);
  EXPECT_EQ(ReadAt("/row", 2, 0, 32), 0);
  EXPECT_EQ(ident_type_, ORV_INT);
  EXPECT_EQ(value_type_, ORV_FLOAT);
  EXPECT_EQ(ReadAt("/post", 2, 0, 16), 0);
  EXPECT_EQ(ident_type_, ORV_NO_DATASET);
  EXPECT_EQ(value_type_, ORV_NO_DATASET);
  EXPECT_EQ(ident_[0], -1);
}

TEST_F(BlockIndex, TellsTheTypeOfItsValuesWhereThatOfTheIdentifiersCannotBeRead) {
  block_.CloseH5Reader();
  file_.at("/row").drop("indexident").group("/row/indexident");
  ASSERT_EQ(block_.OpenH5Reader(file_.path().c_str(), 0), 0);
  value_type_ = ORV_DOUBLE;
  EXPECT_EQ(ReadAt("/row", 2, 0, 16), 1);
  EXPECT_EQ(value_type_, ORV_FLOAT);
}

TEST_F(BlockIndex, IsNotTouchedWithoutGroupRowsOrStage) {
  EXPECT_EQ(ReadAt("/row", 0, 0, 4), 1);
  EXPECT_EQ(ReadAt("/row", static_cast<hsize_t>(-2), 0, 4), 1);
  EXPECT_EQ(ReadAt("/row", 2, 0, 3), 1);
  EXPECT_EQ(block_.ReadIndexComm(-1, 2, 0, 4, &ident_type_, ident_, &value_type_, values_), 1);
  EXPECT_EQ(ident_[0], -1);
}

class BlockIndexWrite : public OrvTest {
 protected:
  int WriteAt(const char* group, hsize_t rows, hsize_t columns, int rank) {
    int status = -1;
    file_.at(group).raw([&](hid_t here) {
      status = block_.WriteIndexComm(here, rows, columns, rank, ORV_INT, ident_, ORV_FLOAT, values_);
    });
    return status;
  }

  ForgedFile file_;
  RecordingBlock block_;
  int ident_[6] = {1, 2, 3, 4, 5, 6};
  float values_[6] = {.5F, 1.5F, 2.5F, 3.5F, 4.5F, 5.5F};
};

TEST_F(BlockIndexWrite, StoresARowOrRows) {
  EXPECT_EQ(WriteAt("/row", 2, 3, 1), 0);
  EXPECT_EQ(WriteAt("/rows", 2, 3, 2), 0);
  const RawFile raw(file_.path());
  EXPECT_THAT(raw.shape("/row/indexval"), ElementsAre(2));
  EXPECT_THAT(raw.values<float>("/row/indexval"), ElementsAre(.5F, 1.5F));
  EXPECT_THAT(raw.values<std::int32_t>("/row/indexident"), ElementsAre(1, 2));
  EXPECT_THAT(raw.shape("/rows/indexval"), ElementsAre(3, 2));
  EXPECT_THAT(raw.shape("/rows/indexident"), ElementsAre(3, 2));
  EXPECT_THAT(raw.values<std::int32_t>("/rows/indexident"), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(BlockIndexWrite, StoresTheTypesHandedIn) {
  std::int64_t ident[] = {5000000000, 2};
  double values[] = {.5, 1e300};
  file_.at("/row").raw(
      [&](hid_t here) { EXPECT_EQ(block_.WriteIndexComm(here, 2, 0, 1, ORV_LONG, ident, ORV_DOUBLE, values), 0); });
  const RawFile raw(file_.path());
  EXPECT_EQ(raw.type_size("/row/indexident"), 8U);
  EXPECT_THAT(raw.values<std::int64_t>("/row/indexident"), ElementsAre(5000000000, 2));
  EXPECT_EQ(raw.type_size("/row/indexval"), 8U);
  EXPECT_THAT(raw.values<double>("/row/indexval"), ElementsAre(.5, 1e300));
}

TEST_F(BlockIndexWrite, StoresNoIdentifiersAfterValuesThatFailed) {
  file_.at("/row").dataset<std::int32_t>("indexval", {2}, {1, 2});
  EXPECT_EQ(WriteAt("/row", 2, 0, 1), 1);
  EXPECT_FALSE(RawFile(file_.path()).exists("/row/indexident"));
}

TEST_F(BlockIndexWrite, StoresNothingOfAnotherRank) {
  for (const int rank : {-1, 0, 3, 32}) EXPECT_EQ(WriteAt("/row", 2, 3, rank), 1) << rank;
  EXPECT_THAT(RawFile(file_.path()).children("/row"), IsEmpty());
}

TEST_F(BlockIndexWrite, StoresNothingWithoutGroupOrRows) {
  EXPECT_EQ(WriteAt("/row", 0, 3, 1), 1);
  EXPECT_EQ(WriteAt("/row", static_cast<hsize_t>(-1), 3, 1), 1);
  EXPECT_EQ(block_.WriteIndexComm(-1, 2, 0, 1, ORV_INT, ident_, ORV_FLOAT, values_), 1);
  EXPECT_THAT(RawFile(file_.path()).children("/row"), IsEmpty());
}

}  // namespace
}  // namespace orv_test
