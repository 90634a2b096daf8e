// The datasets of an element connectivity block as they are read: values, parameters, units, index and types, and what
// damaged files do to them. The header is in connectivity_header_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "entity/connectivity_forge.h"
#include "orvio/orv_ele_connectivity.h"
#include "orvio/orv_types.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;

/// Room for the mesh of the forged file, four times what it needs, filled with -1.
struct Buffers {
  std::vector<std::int64_t> idele = Fresh(), pid = Fresh(), ic = Fresh(), iparam = Fresh(), fparam = Fresh();
  std::vector<std::int64_t> mbunit = Fresh(), ubid = Fresh(), ubexp = Fresh();
  std::vector<std::int64_t> mdunit = Fresh(), udid = Fresh(), udexp = Fresh();
  std::vector<std::int64_t> ident = Fresh(), values = Fresh();

  static std::vector<std::int64_t> Fresh() { return std::vector<std::int64_t>(32, -1); }
};

std::vector<int> Ints(const std::vector<std::int64_t>& buffer, size_t count) {
  std::vector<int> values(count);
  std::memcpy(values.data(), buffer.data(), count * sizeof(int));
  return values;
}

std::vector<float> Floats(const std::vector<std::int64_t>& buffer, size_t count) {
  std::vector<float> values(count);
  std::memcpy(values.data(), buffer.data(), count * sizeof(float));
  return values;
}

std::vector<std::int64_t> Longs(const std::vector<std::int64_t>& buffer, size_t count) {
  std::vector<std::int64_t> values(count);
  std::memcpy(values.data(), buffer.data(), count * sizeof(std::int64_t));
  return values;
}

std::vector<double> Doubles(const std::vector<std::int64_t>& buffer, size_t count) {
  std::vector<double> values(count);
  std::memcpy(values.data(), buffer.data(), count * sizeof(double));
  return values;
}

/// Reaches what the block protocol calls.
class OpenConnectivity : public ORVEleConnectivity {
 public:
  using ORVEleConnectivity::ReadAtt;
  using ORVEleConnectivity::ReadData;
  using ORVEleConnectivity::ReadHeader;
  using ORVEleConnectivity::ReadIndex;
};

class ConnectivityData : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  ConnectivityData() : parts_(kShell, GetParam()) {
    AddMesh(file_, kShell, GetParam());
    std::strcpy(block_.m_etypelem, "SHELL");
    block_.m_nele = 2;
    block_.m_npele = 4;
    block_.m_idele = room_.idele.data();
    block_.m_pid = room_.pid.data();
    block_.m_ic = room_.ic.data();
  }

  void AddFloatParameters() {
    file_.at(parts_.data)
        .dataset<float>("fparam", {2, 2}, {0.5F, 1.5F, 2.5F, 3.5F})
        .dataset<std::int32_t>("mbunit", {2}, {2, 1})
        .dataset<std::int32_t>("ubid", {3}, {1, 2, 3})
        .dataset<float>("ubexp", {3}, {1.F, -2.F, 0.5F})
        .dataset<std::int32_t>("mdunit", {2}, {0, 2})
        .dataset<std::int32_t>("udid", {2}, {21, 22})
        .dataset<float>("udexp", {2}, {3.F, 4.F});
    block_.m_nbfloat = 2;
    block_.m_fparam = room_.fparam.data();
    block_.m_mbunit = room_.mbunit.data();
    block_.m_ubid = room_.ubid.data();
    block_.m_ubexp = room_.ubexp.data();
    block_.m_mdunit = room_.mdunit.data();
    block_.m_udid = room_.udid.data();
    block_.m_udexp = room_.udexp.data();
  }

  void AddIndex() {
    file_.at(parts_.index).dataset<std::int32_t>("indexident", {2}, {1, 4}).dataset<float>("indexval", {2}, {.5F, 8.F});
    block_.m_nindex = 2;
    block_.m_indexident = room_.ident.data();
    block_.m_indexval = room_.values.data();
  }

  int Read(int stages = ORV_READ_DATA) { return block_.ReadBlock(file_.path().c_str(), 0, stages); }

  int ReadOne(int att) {
    return block_.ReadAttribute(file_.path().c_str(), 0, ORV_READ_DATA, static_cast<_ORVBlockAtt>(att));
  }

  ForgedFile file_;
  PartPaths parts_;
  Buffers room_;
  OpenConnectivity block_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, ConnectivityData, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

// ---- Elements

TEST_P(ConnectivityData, GivesIdsPartsAndRows) {
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(Ints(room_.idele, 3), ElementsAre(11, 12, -1));
  EXPECT_THAT(Ints(room_.pid, 3), ElementsAre(7, 7, -1));
  EXPECT_THAT(Ints(room_.ic, 9), ElementsAre(1, 2, 3, 4, 2, 5, 6, 3, -1));
}

TEST_P(ConnectivityData, GivesLongIdsWhenAskedFor) {
  block_.m_ideleType = ORV_LONG;
  ASSERT_EQ(Read(), 0);
  EXPECT_EQ(room_.idele[0], 11);
  EXPECT_EQ(room_.idele[1], 12);
  EXPECT_EQ(room_.idele[2], -1);
}

TEST_P(ConnectivityData, GivesPartsRowsAndParametersEachInTheTypeAskedFor) {
  AddFloatParameters();
  file_.at(parts_.data).dataset<std::int32_t>("iparam", {2, 1}, {81, 82});
  block_.m_nbint = 1;
  block_.m_iparam = room_.iparam.data();
  block_.m_pidType = block_.m_icType = block_.m_iparamType = ORV_LONG;
  block_.m_fparamType = ORV_DOUBLE;
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(Ints(room_.idele, 3), ElementsAre(11, 12, -1));
  EXPECT_THAT(Longs(room_.pid, 3), ElementsAre(7, 7, -1));
  EXPECT_THAT(Longs(room_.ic, 9), ElementsAre(1, 2, 3, 4, 2, 5, 6, 3, -1));
  EXPECT_THAT(Longs(room_.iparam, 3), ElementsAre(81, 82, -1));
  EXPECT_THAT(Doubles(room_.fparam, 4), ElementsAre(0.5, 1.5, 2.5, 3.5));
}

TEST_P(ConnectivityData, ReadsHeaderAndDataInOneCall) {
  block_.m_nele = block_.m_npele = 0;
  ASSERT_EQ(Read(ORV_READ_HEADER | ORV_READ_DATA), 0);
  EXPECT_THAT(Ints(room_.ic, 4), ElementsAre(1, 2, 3, 4));
}

TEST_P(ConnectivityData, EndsAtTheFirstRequiredDatasetThatIsMissing) {
  file_.at(parts_.data).drop("pid");
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(Ints(room_.idele, 2), ElementsAre(11, 12));
  EXPECT_THAT(Ints(room_.ic, 1), ElementsAre(-1));
}

TEST_P(ConnectivityData, NeedsIdsAndRows) {
  file_.at(parts_.data).drop("ic");
  EXPECT_EQ(Read(), 1);
  AddMesh(file_, kShell, GetParam());
  file_.at(parts_.data).drop("idele");
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(Ints(room_.ic, 1), ElementsAre(-1));
}

TEST_P(ConnectivityData, RefusesExtentsOtherThanTheCounts) {
  block_.m_nele = 3;
  EXPECT_EQ(Read(), 1);
  block_.m_nele = 1;
  EXPECT_EQ(Read(), 1);
  block_.m_nele = 2;
  block_.m_npele = 2;
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(Ints(room_.ic, 1), ElementsAre(-1));
}

TEST_P(ConnectivityData, RefusesRowsStoredTheOtherWayRound) {
  file_.at(parts_.data).dataset<std::int32_t>("ic", {4, 2}, {1, 2, 3, 4, 2, 5, 6, 3});
  EXPECT_EQ(Read(), 1);
  file_.at(parts_.data).dataset<std::int32_t>("ic", {8}, {1, 2, 3, 4, 2, 5, 6, 3});
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(Ints(room_.ic, 1), ElementsAre(-1));
}

TEST_P(ConnectivityData, RefusesCountsThatAreNotPositive) {
  for (const std::int64_t count : {std::int64_t{0}, std::int64_t{-1}, std::int64_t{-2}, INT64_MIN, INT64_MAX}) {
    block_.m_nele = count;
    EXPECT_EQ(Read(), 1) << count;
  }
  block_.m_nele = 2;
  block_.m_npele = -4;
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(Ints(room_.ic, 1), ElementsAre(-1));
}

TEST_P(ConnectivityData, RefusesMissingBuffers) {
  for (void** buffer : {&block_.m_idele, &block_.m_pid, &block_.m_ic}) {
    void* const before = std::exchange(*buffer, nullptr);
    EXPECT_EQ(Read(), 1);
    *buffer = before;
  }
  EXPECT_EQ(Read(), 0);
}

TEST_P(ConnectivityData, RefusesDatasetsOfAnotherClass) {
  file_.at(parts_.data).dataset<double>("idele", {2}, {1., 2.});
  EXPECT_EQ(Read(), 1);
  block_.m_ideleType = ORV_DOUBLE;  // as a type query of such a file answers; the buffer is sized for integers
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(Ints(room_.idele, 1), ElementsAre(-1));
  file_.at(parts_.data).texts("idele", 2, {}, {"ab"});
  block_.m_ideleType = ORV_CHAR;
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(Ints(room_.idele, 1), ElementsAre(-1));
}

TEST_P(ConnectivityData, TellsOfATypeThatNothingCanBeReadAs) {
  const std::string path = file_.path();
  for (const _ORVDataType type : {ORV_UNKNOWN_TYPE, ORV_NO_DATASET}) {
    block_.m_ideleType = ORV_INT;
    block_.m_pidType = type;
    EXPECT_EQ(block_.ReadBlock(path.c_str(), 0, ORV_READ_DATA), 1);
    EXPECT_STREQ(ORVGetLastErrorText(), "DatasetIO::\n\t \"pid\" Unable to get HDF5 datatype for given ORV datatype");
    block_.m_ideleType = type;
    EXPECT_EQ(block_.ReadBlock(path.c_str(), 0, ORV_READ_DATA), 1);
    EXPECT_STREQ(ORVGetLastErrorText(), "DatasetIO::\n\t \"idele\" Unable to get HDF5 datatype for given ORV datatype");
  }
}

TEST_P(ConnectivityData, NeedsAReader) {
  EXPECT_EQ(block_.ReadHeader(H5I_INVALID_HID, ORV_READ_HEADER), 1);
  EXPECT_EQ(block_.ReadData(H5I_INVALID_HID, ORV_READ_DATA), 1);
  EXPECT_EQ(block_.ReadData(H5I_INVALID_HID, ORV_READ_DATA_INFO), 1);
  EXPECT_EQ(block_.ReadIndex(H5I_INVALID_HID, ORV_READ_INDEX), 1);
  EXPECT_EQ(block_.ReadAtt(H5I_INVALID_HID, ORV_READ_DATA, ORV_ATT_IDS), 1);
}

// ---- Parameters

TEST_P(ConnectivityData, GivesIntegerAndFloatParameters) {
  AddFloatParameters();
  file_.at(parts_.data).dataset<std::int64_t>("iparam", {2, 3}, {1, 2, 3, 4, 5, 6});
  block_.m_nbint = 3;
  block_.m_iparam = room_.iparam.data();
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(Ints(room_.iparam, 7), ElementsAre(1, 2, 3, 4, 5, 6, -1));
  EXPECT_THAT(Floats(room_.fparam, 4), ElementsAre(0.5F, 1.5F, 2.5F, 3.5F));
}

TEST_P(ConnectivityData, PassesOverDeclaredParametersThatAreNotInTheFile) {
  block_.m_nbint = 3;
  block_.m_nbfloat = 2;
  block_.m_iparam = room_.iparam.data();
  block_.m_fparam = room_.fparam.data();
  EXPECT_EQ(Read(), 0);
  EXPECT_THAT(Ints(room_.iparam, 1), ElementsAre(-1));
  EXPECT_THAT(Ints(room_.fparam, 1), ElementsAre(-1));
}

TEST_P(ConnectivityData, PassesOverParametersWithoutABuffer) {
  AddFloatParameters();
  file_.at(parts_.data).dataset<std::int32_t>("iparam", {2, 3}, {1, 2, 3, 4, 5, 6});
  block_.m_nbint = 3;
  block_.m_fparam = nullptr;
  EXPECT_EQ(Read(), 0);
  EXPECT_THAT(Ints(room_.mbunit, 2), ElementsAre(2, 1));
}

TEST_P(ConnectivityData, PassesOverParametersThatTheHeaderDoesNotDeclare) {
  AddFloatParameters();
  file_.at(parts_.data).dataset<std::int32_t>("iparam", {2, 3}, {1, 2, 3, 4, 5, 6});
  block_.m_iparam = room_.iparam.data();
  block_.m_nbfloat = 0;
  EXPECT_EQ(Read(), 0);
  for (const auto* buffer : {&room_.iparam, &room_.fparam, &room_.mbunit, &room_.ubid, &room_.ubexp, &room_.mdunit,
                             &room_.udid, &room_.udexp}) {
    EXPECT_EQ((*buffer)[0], -1);
  }
}

TEST_P(ConnectivityData, FailsWithParametersOfOtherExtents) {
  file_.at(parts_.data).dataset<std::int32_t>("iparam", {2, 3}, {1, 2, 3, 4, 5, 6});
  block_.m_iparam = room_.iparam.data();
  for (const std::int64_t count : {std::int64_t{2}, std::int64_t{4}, std::int64_t{-3}}) {
    block_.m_nbint = count;
    EXPECT_EQ(Read(), 1) << count;
  }
  block_.m_nbint = 0;
  AddFloatParameters();
  for (const std::int64_t count : {std::int64_t{1}, std::int64_t{3}, std::int64_t{-2}}) {
    block_.m_nbfloat = count;
    EXPECT_EQ(Read(), 1) << count;
  }
  EXPECT_EQ(room_.iparam[0], -1);
  EXPECT_EQ(room_.fparam[0], -1);
}

// ---- Units of the float parameters

TEST_P(ConnectivityData, GivesUnitsSizedByTheSumsOfTheirCounts) {
  AddFloatParameters();
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(Ints(room_.mbunit, 3), ElementsAre(2, 1, -1));
  EXPECT_THAT(Ints(room_.ubid, 4), ElementsAre(1, 2, 3, -1));
  EXPECT_THAT(Floats(room_.ubexp, 3), ElementsAre(1.F, -2.F, 0.5F));
  EXPECT_THAT(Ints(room_.mdunit, 3), ElementsAre(0, 2, -1));
  EXPECT_THAT(Ints(room_.udid, 3), ElementsAre(21, 22, -1));
  EXPECT_THAT(Floats(room_.udexp, 2), ElementsAre(3.F, 4.F));
}

TEST_P(ConnectivityData, AddsUpLongUnitCounts) {
  AddFloatParameters();
  block_.m_mbunitType = ORV_LONG;
  ASSERT_EQ(Read(), 0);
  EXPECT_EQ(room_.mbunit[0], 2);
  EXPECT_EQ(room_.mbunit[1], 1);
  EXPECT_THAT(Ints(room_.ubid, 4), ElementsAre(1, 2, 3, -1));
}

TEST_P(ConnectivityData, GivesUnitsEachInTheTypeAskedFor) {
  AddFloatParameters();
  block_.m_ubidType = block_.m_mdunitType = block_.m_udidType = ORV_LONG;
  block_.m_ubexpType = block_.m_udexpType = ORV_DOUBLE;
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(Ints(room_.mbunit, 3), ElementsAre(2, 1, -1));
  EXPECT_THAT(Longs(room_.ubid, 4), ElementsAre(1, 2, 3, -1));
  EXPECT_THAT(Doubles(room_.ubexp, 3), ElementsAre(1., -2., 0.5));
  EXPECT_THAT(Longs(room_.mdunit, 3), ElementsAre(0, 2, -1));
  EXPECT_THAT(Longs(room_.udid, 3), ElementsAre(21, 22, -1));
  EXPECT_THAT(Doubles(room_.udexp, 2), ElementsAre(3., 4.));
}

TEST_P(ConnectivityData, PassesOverUnitsWithoutTheirCounts) {
  AddFloatParameters();
  block_.m_mbunit = nullptr;
  file_.at(parts_.data).drop("mdunit");
  EXPECT_EQ(Read(), 0);
  for (const auto* buffer : {&room_.ubid, &room_.ubexp, &room_.udid, &room_.udexp}) EXPECT_EQ((*buffer)[0], -1);
}

TEST_P(ConnectivityData, PassesOverUnitsWhoseCountsAreAllZero) {
  AddFloatParameters();
  file_.at(parts_.data).dataset<std::int32_t>("mbunit", {2}, {0, 0});
  EXPECT_EQ(Read(), 0);
  EXPECT_EQ(room_.ubid[0], -1);
  EXPECT_THAT(Ints(room_.udid, 2), ElementsAre(21, 22));
}

TEST_P(ConnectivityData, PassesOverUnitsWithoutABufferOrADataset) {
  AddFloatParameters();
  block_.m_ubid = nullptr;
  file_.at(parts_.data).drop("udexp");
  EXPECT_EQ(Read(), 0);
  EXPECT_THAT(Floats(room_.ubexp, 3), ElementsAre(1.F, -2.F, 0.5F));
  EXPECT_THAT(Ints(room_.udid, 2), ElementsAre(21, 22));
  EXPECT_EQ(room_.udexp[0], -1);
}

TEST_P(ConnectivityData, RefusesUnitCountsThatAreNegative) {
  AddFloatParameters();
  file_.at(parts_.data).dataset<std::int32_t>("mbunit", {2}, {5, -2});
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(room_.ubid[0], -1);
}

TEST_P(ConnectivityData, RefusesUnitCountsWhoseSumIsBeyondInt) {
  AddFloatParameters();
  file_.at(parts_.data).dataset<std::int32_t>("mdunit", {2}, {2147483647, 2});
  EXPECT_EQ(Read(), 1);
  file_.at(parts_.data).dataset<std::int64_t>("mdunit", {2}, {INT64_MAX, 3});
  block_.m_mdunitType = ORV_LONG;
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(room_.udid[0], -1);
}

TEST_P(ConnectivityData, RefusesUnitsOfAnotherNumberThanTheSum) {
  AddFloatParameters();
  file_.at(parts_.data).dataset<std::int32_t>("mbunit", {2}, {2, 2});
  EXPECT_EQ(Read(), 1);
  EXPECT_EQ(room_.ubid[0], -1);
  file_.at(parts_.data).dataset<std::int32_t>("mbunit", {3}, {1, 1, 1});
  EXPECT_EQ(Read(), 1);
}

// ---- Types

TEST_P(ConnectivityData, TellsStoredTypesWithoutReadingValues) {
  file_.at(parts_.data).dataset<std::int64_t>("idele", {2}, {11, 12}).drop("pid");
  EXPECT_EQ(Read(ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(block_.m_ideleType, ORV_LONG);
  EXPECT_EQ(block_.m_pidType, ORV_NO_DATASET);
  EXPECT_EQ(block_.m_icType, ORV_INT);
  EXPECT_EQ(room_.idele[0], -1);
}

TEST_P(ConnectivityData, TellsTheTypesOfTheOthersBesideOneItDoesNotKnow) {
  file_.at(parts_.data).drop("idele").group("idele").dataset<double>("pid", {2}, {1., 2.});
  EXPECT_EQ(Read(ORV_READ_DATA_INFO), 1);
  EXPECT_EQ(block_.m_ideleType, ORV_UNKNOWN_TYPE);
  EXPECT_EQ(block_.m_pidType, ORV_DOUBLE);
  EXPECT_EQ(block_.m_icType, ORV_INT);
}

TEST_P(ConnectivityData, TellsTypesAfterTheValuesWereRead) {
  file_.at(parts_.data).dataset<std::int64_t>("idele", {2}, {11, 12});
  EXPECT_EQ(Read(ORV_READ_DATA | ORV_READ_DATA_INFO), 0);
  EXPECT_THAT(Ints(room_.idele, 3), ElementsAre(11, 12, -1));
  EXPECT_EQ(block_.m_ideleType, ORV_LONG);
}

TEST_P(ConnectivityData, TellsNoTypesAfterAFailedRead) {
  file_.at(parts_.data).dataset<std::int64_t>("idele", {2}, {11, 12});
  block_.m_nele = 5;
  EXPECT_EQ(Read(ORV_READ_DATA | ORV_READ_DATA_INFO), 1);
  EXPECT_EQ(block_.m_ideleType, ORV_INT);
}

// ---- Index

TEST_P(ConnectivityData, GivesIndexIdentifiersAndValues) {
  AddIndex();
  ASSERT_EQ(Read(ORV_READ_INDEX), 0);
  EXPECT_THAT(Ints(room_.ident, 3), ElementsAre(1, 4, -1));
  EXPECT_THAT(Floats(room_.values, 2), ElementsAre(.5F, 8.F));
}

TEST_P(ConnectivityData, GivesTheIndexInTheTypesAskedFor) {
  AddIndex();
  block_.m_indexidentType = ORV_LONG;
  block_.m_indexvalType = ORV_DOUBLE;
  ASSERT_EQ(Read(ORV_READ_INDEX), 0);
  EXPECT_THAT(Longs(room_.ident, 3), ElementsAre(1, 4, -1));
  EXPECT_THAT(Doubles(room_.values, 2), ElementsAre(.5, 8.));
}

TEST_P(ConnectivityData, HasNoIndexWithoutACount) {
  AddIndex();
  for (const std::int64_t count : {std::int64_t{0}, std::int64_t{-1}, INT64_MIN}) {
    block_.m_nindex = count;
    EXPECT_EQ(Read(ORV_READ_INDEX), 1) << count;
  }
  EXPECT_EQ(room_.ident[0], -1);
}

TEST_P(ConnectivityData, RefusesAnIndexOfAnotherLength) {
  AddIndex();
  block_.m_nindex = 3;
  EXPECT_EQ(Read(ORV_READ_INDEX), 1);
  EXPECT_EQ(room_.ident[0], -1);
}

TEST_P(ConnectivityData, RefusesAnIndexWithoutBuffers) {
  AddIndex();
  block_.m_indexident = nullptr;
  EXPECT_EQ(Read(ORV_READ_INDEX), 1);
  EXPECT_EQ(room_.values[0], -1);
}

// ---- One item at a time

TEST_P(ConnectivityData, ReadsEachItemByItsCode) {
  AddFloatParameters();
  AddIndex();
  file_.at(parts_.data).dataset<std::int32_t>("iparam", {2, 1}, {81, 82});
  block_.m_iparam = room_.iparam.data();
  block_.m_nbint = 1;
  block_.m_nele = block_.m_npele = 0;
  EXPECT_EQ(ReadOne(5), 0);
  EXPECT_EQ(block_.m_nele, 2);
  EXPECT_EQ(ReadOne(23), 0);
  EXPECT_EQ(block_.m_npele, 4);
  EXPECT_EQ(ReadOne(24), 0);
  EXPECT_STREQ(block_.m_etyppart, "PART");
  EXPECT_EQ(ReadOne(13), 0);
  EXPECT_THAT(Ints(room_.idele, 3), ElementsAre(11, 12, -1));
  EXPECT_EQ(ReadOne(19), 0);
  EXPECT_THAT(Ints(room_.ident, 3), ElementsAre(1, 4, -1));
  EXPECT_EQ(ReadOne(20), 0);
  EXPECT_THAT(Floats(room_.values, 2), ElementsAre(.5F, 8.F));
  EXPECT_EQ(ReadOne(21), 0);
  EXPECT_THAT(Ints(room_.pid, 3), ElementsAre(7, 7, -1));
  EXPECT_EQ(ReadOne(22), 0);
  EXPECT_THAT(Ints(room_.ic, 9), ElementsAre(1, 2, 3, 4, 2, 5, 6, 3, -1));
  EXPECT_EQ(ReadOne(26), 0);
  EXPECT_THAT(Ints(room_.iparam, 3), ElementsAre(81, 82, -1));
  EXPECT_EQ(ReadOne(27), 0);
  EXPECT_THAT(Floats(room_.fparam, 4), ElementsAre(0.5F, 1.5F, 2.5F, 3.5F));
}

TEST_P(ConnectivityData, ReadsAnItemOfTheSingleLayoutWhereABlockHasBoth) {
  AddMesh(file_, kShell, Layout::kSplit).integer("nele", 98);
  AddMesh(file_, kShell, Layout::kSingle).integer("nele", 99);
  EXPECT_EQ(ReadOne(5), 0);
  EXPECT_EQ(block_.m_nele, 99);
}

TEST_P(ConnectivityData, ReadsNothingForOtherCodes) {
  AddFloatParameters();
  AddIndex();
  for (const int att : {-1, 0, 1, 2, 3, 4, 6, 7, 8, 9, 10, 11, 12, 14, 15, 16, 17, 18, 25, 28, 29, 30, 1000}) {
    EXPECT_EQ(ReadOne(att), 1) << att;
  }
  for (const auto* buffer : {&room_.idele, &room_.pid, &room_.ic, &room_.fparam, &room_.ident, &room_.values}) {
    EXPECT_EQ((*buffer)[0], -1);
  }
  EXPECT_STREQ(block_.m_etyppart, "");
}

TEST_P(ConnectivityData, FailsForAnItemThatIsNotThere) {
  for (const int att : {19, 20, 26, 27}) EXPECT_EQ(ReadOne(att), 1) << att;
  file_.at(parts_.header).drop("npele").drop("etyppart");
  EXPECT_EQ(ReadOne(23), 1);
  EXPECT_EQ(ReadOne(24), 1);
}

TEST_P(ConnectivityData, FailsForAnItemOfABlockThatIsNotThere) {
  std::strcpy(block_.m_etypelem, "BEAM");
  EXPECT_EQ(ReadOne(5), 1);
  std::strcpy(block_.m_etypelem, "SHELL");
  EXPECT_EQ(block_.ReadAttribute(file_.path().c_str(), 1, 0, ORV_ATT_NENT), 1);
  EXPECT_EQ(block_.ReadAttribute(TempPath("missing.orv").c_str(), 0, 0, ORV_ATT_NENT), 1);
  EXPECT_EQ(block_.ReadAttribute(nullptr, 0, 0, ORV_ATT_NENT), 1);
}

}  // namespace
}  // namespace orv_test
