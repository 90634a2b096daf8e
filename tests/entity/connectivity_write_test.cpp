// Writing of element connectivity blocks, looked at with HDF5 alone, for every writer version. The last tests read
// back what was written.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "filer/process_state.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_ele_connectivity.h"
#include "orvio/orv_switches.h"
#include "orvio/orv_types.h"
#include "support/forged_file.h"
#include "support/orv_test.h"
#include "support/raw_file.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kHeaderAndData = ORV_WRITE_HEADER | ORV_WRITE_DATA;
constexpr int kAll = kHeaderAndData | ORV_WRITE_INDEX;
constexpr char kMeshes[] = "/post/constant/connectivities";
constexpr char kState1[] = "/post/singlestate/state000000000001";
constexpr char kState2[] = "/post/singlestate/state000000000002";

std::string Padded(std::string text) {
  text.resize(256, ' ');
  return text;
}

/// A block of two quads with parameters and an index, and a file with two states, of which the second has no
/// "connectivities".
class ConnectivityWrite : public OrvTest {
 protected:
  ConnectivityWrite() {
    file_.group(kMeshes).group(std::string(kState1) + "/connectivities").group(kState2);
    path_ = file_.path();
    std::strcpy(block_.m_etypelem, "SHELL");
    std::strcpy(block_.m_etyppart, "PART");
    std::strcpy(block_.m_etypnode, "NODE");
    block_.m_nele = 2;
    block_.m_npele = 4;
    block_.m_ndim = 2;
    block_.m_idele = idele_;
    block_.m_pid = pid_;
    block_.m_ic = ic_;
    block_.m_indexident = ident_;
    block_.m_indexval = values_;
  }
  ~ConnectivityWrite() override { ORVSetCurrentWriterVersion(1); }

  void AddParameters() {
    block_.m_nbint = 3;
    block_.m_iparam = iparam_;
    block_.m_nbfloat = 1;
    block_.m_fparamType = ORV_DOUBLE;
    block_.m_fparam = fparam_;
  }

  int Write(int state, int what) { return block_.WriteBlock(path_.c_str(), state, what); }

  ForgedFile file_;
  std::string path_;
  ORVEleConnectivity block_;
  int idele_[2] = {11, 12};
  int pid_[2] = {7, 8};
  int ic_[8] = {1, 2, 3, 4, 2, 5, 6, 3};
  int iparam_[6] = {1, 2, 3, 4, 5, 6};
  double fparam_[2] = {0.5, 1.25};
  int ident_[1] = {1};
  float values_[1] = {2.5F};
};

class ConnectivityWriteVersion : public ConnectivityWrite, public ::testing::WithParamInterface<int> {
 protected:
  ConnectivityWriteVersion() { ORVSetCurrentWriterVersion(GetParam()); }

  static bool IsSplit() { return GetParam() < 3; }
  static std::string Part(const std::string& block, const char* split) {
    return block + "/" + (IsSplit() ? split : "orvblock");
  }
};

INSTANTIATE_TEST_SUITE_P(Versions, ConnectivityWriteVersion, ::testing::Values(0, 1, 2, 3, 4, 5),
                         [](const auto& version) { return std::to_string(version.param); });

TEST_P(ConnectivityWriteVersion, StoresTheHeaderInOrder) {
  block_.m_nbint = 0;
  block_.m_nindex = 1;
  std::strcpy(block_.m_etyp, "2D-ELEMENT");
  ASSERT_EQ(Write(0, ORV_WRITE_HEADER), 0);
  const RawFile raw(path_);
  const std::string header = Part("/post/constant/connectivities/SHELL", "header");
  std::vector<std::string> names = {"block", "blocktype", "etypelem", "etyppart", "etypnode", "nele",
                                    "npele", "ndim",      "nbint",    "nbfloat",  "nindex"};
  if (!IsSplit()) names.emplace_back("etyp");
  EXPECT_EQ(raw.attributes(header), names);
  EXPECT_EQ(raw.attribute_int(header, "block"), 300);
  EXPECT_EQ(raw.attribute_text(header, "blocktype"), Padded("connectivities"));
  EXPECT_EQ(raw.attribute_text(header, "etypelem"), Padded("SHELL"));
  EXPECT_EQ(raw.attribute_text(header, "etyppart"), Padded("PART"));
  EXPECT_EQ(raw.attribute_text(header, "etypnode"), Padded("NODE"));
  EXPECT_EQ(raw.attribute_int(header, "nele"), 2);
  EXPECT_EQ(raw.attribute_int(header, "npele"), 4);
  EXPECT_EQ(raw.attribute_int(header, "ndim"), 2);
  EXPECT_EQ(raw.attribute_int(header, "nbint"), 0);
  EXPECT_EQ(raw.attribute_int(header, "nbfloat"), 0);
  EXPECT_EQ(raw.attribute_int(header, "nindex"), 1);
  if (!IsSplit()) {
    EXPECT_EQ(raw.attribute_text(header, "etyp"), Padded("2D-ELEMENT"));
  }
  for (const char* name : {"block", "nele", "npele", "ndim", "nbint", "nbfloat", "nindex"}) {
    EXPECT_EQ(raw.attribute_size(header, name), 8U) << name;
    EXPECT_EQ(raw.attribute_class(header, name), H5T_INTEGER) << name;
    EXPECT_EQ(raw.attribute_rank(header, name), 0) << name;
  }
}

TEST_P(ConnectivityWriteVersion, RepeatsTheElementTypeForAnEmptyGenericOne) {
  ASSERT_EQ(Write(0, ORV_WRITE_HEADER), 0);
  const RawFile raw(path_);
  const std::string header = Part("/post/constant/connectivities/SHELL", "header");
  EXPECT_EQ(raw.has_attribute(header, "etyp"), !IsSplit());
  if (!IsSplit()) {
    EXPECT_EQ(raw.attribute_text(header, "etyp"), Padded("SHELL"));
  }
}

TEST_P(ConnectivityWriteVersion, StoresDatasetsAndIndexOfAState) {
  AddParameters();
  block_.m_nindex = 1;
  ASSERT_EQ(Write(1, kAll), 0);
  const RawFile raw(path_);
  const std::string block = "/post/singlestate/state000000000001/connectivities/SHELL";
  const std::string data = Part(block, "data");
  const std::string index = Part(block, "index");
  if (IsSplit()) {
    EXPECT_THAT(raw.children(block), ElementsAre("data", "header", "index"));
    EXPECT_THAT(raw.children(data), ElementsAre("fparam", "ic", "idele", "iparam", "pid"));
    EXPECT_THAT(raw.children(index), ElementsAre("indexident", "indexval"));
  } else {
    EXPECT_THAT(raw.children(block), ElementsAre("orvblock"));
    EXPECT_THAT(raw.children(data), ElementsAre("fparam", "ic", "idele", "indexident", "indexval", "iparam", "pid"));
  }
  EXPECT_THAT(raw.values<std::int32_t>(data + "/idele"), ElementsAre(11, 12));
  EXPECT_THAT(raw.values<std::int32_t>(data + "/pid"), ElementsAre(7, 8));
  EXPECT_THAT(raw.shape(data + "/ic"), ElementsAre(2, 4));
  EXPECT_THAT(raw.values<std::int32_t>(data + "/ic"), ElementsAre(1, 2, 3, 4, 2, 5, 6, 3));
  EXPECT_THAT(raw.shape(data + "/iparam"), ElementsAre(2, 3));
  EXPECT_THAT(raw.values<std::int32_t>(data + "/iparam"), ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_THAT(raw.shape(data + "/fparam"), ElementsAre(2, 1));
  EXPECT_THAT(raw.values<double>(data + "/fparam"), ElementsAre(0.5, 1.25));
  EXPECT_EQ(raw.type_size(data + "/idele"), 4U);
  EXPECT_EQ(raw.type_size(data + "/fparam"), 8U);
  EXPECT_THAT(raw.shape(index + "/indexval"), ElementsAre(1));
  EXPECT_THAT(raw.values<float>(index + "/indexval"), ElementsAre(2.5F));
  EXPECT_THAT(raw.values<std::int32_t>(index + "/indexident"), ElementsAre(1));
}

TEST_P(ConnectivityWriteVersion, LeavesABlockThatExistsAlone) {
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const std::string before = BytesOf(path_);
  block_.m_npele = 2;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_EQ(Write(0, ORV_WRITE_HEADER), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_P(ConnectivityWriteVersion, WithoutElementsStoresTheHeaderAlone) {
  block_.m_nele = 0;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  const RawFile raw(path_);
  EXPECT_EQ(raw.attribute_int(Part("/post/constant/connectivities/SHELL", "header"), "nele"), 0);
  EXPECT_THAT(raw.children(Part("/post/constant/connectivities/SHELL", "data")), IsEmpty());
}

TEST_P(ConnectivityWriteVersion, IsReadBackAsItWas) {
  AddParameters();
  block_.m_nindex = 1;
  ASSERT_EQ(Write(1, kAll), 0);
  ORVEleConnectivity read;
  std::strcpy(read.m_etypelem, "SHELL");
  ASSERT_EQ(read.ReadBlock(path_.c_str(), 1, ORV_READ_HEADER), 0);
  EXPECT_STREQ(read.m_etyp, IsSplit() ? "" : "SHELL");
  EXPECT_STREQ(read.m_etypnode, "NODE");
  EXPECT_EQ(read.m_nbint, 3);
  EXPECT_FALSE(read.IsIncremental());
  std::vector<int> idele(2), pid(2), ic(8), iparam(6), ident(1);
  std::vector<float> fparam(2), value(1);
  read.m_idele = idele.data();
  read.m_pid = pid.data();
  read.m_ic = ic.data();
  read.m_iparam = iparam.data();
  read.m_fparam = fparam.data();
  read.m_indexident = ident.data();
  read.m_indexval = value.data();
  ASSERT_EQ(read.ReadBlock(path_.c_str(), 1, ORV_READ_DATA | ORV_READ_INDEX), 0);
  EXPECT_THAT(idele, ElementsAre(11, 12));
  EXPECT_THAT(pid, ElementsAre(7, 8));
  EXPECT_THAT(ic, ElementsAre(1, 2, 3, 4, 2, 5, 6, 3));
  EXPECT_THAT(iparam, ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_THAT(fparam, ElementsAre(0.5F, 1.25F));
  EXPECT_THAT(ident, ElementsAre(1));
  EXPECT_THAT(value, ElementsAre(2.5F));
}

// ---- Where it goes

TEST_F(ConnectivityWrite, MakesTheMissingGroupOfAState) {
  ASSERT_EQ(Write(2, kHeaderAndData), 0);
  EXPECT_TRUE(RawFile(path_).exists("/post/singlestate/state000000000002/connectivities/SHELL/data/ic"));
}

TEST_F(ConnectivityWrite, GoesToAStateByPosition) {
  file_.group("/post/singlestate/state000000000007");
  path_ = file_.path();
  ASSERT_EQ(Write(3, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_TRUE(raw.exists("/post/singlestate/state000000000007/connectivities/SHELL/data/ic"));
  EXPECT_THAT(raw.children("/post/singlestate"),
              ElementsAre("state000000000001", "state000000000002", "state000000000007"));
}

TEST_F(ConnectivityWrite, NeverMakesAState) {
  const std::string before = BytesOf(path_);
  EXPECT_EQ(Write(3, kHeaderAndData), 1);
  EXPECT_EQ(Write(2000000000, kHeaderAndData), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(ConnectivityWrite, NeverMakesTheGroupOfTheConstantSection) {
  file_.at("/post/constant").drop("connectivities");
  path_ = file_.path();
  const std::string before = BytesOf(path_);
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(ConnectivityWrite, TakesANegativeStateForTheConstantSection) {
  block_.m_nindex = 1;
  ASSERT_EQ(Write(-1, kAll), 0);
  EXPECT_TRUE(RawFile(path_).exists("/post/constant/connectivities/SHELL/index/indexval"));
}

TEST_F(ConnectivityWrite, StoresNoIndexInState0) {
  block_.m_nindex = 1;
  ASSERT_EQ(Write(0, kAll), 0);
  const RawFile raw(path_);
  EXPECT_TRUE(raw.exists("/post/constant/connectivities/SHELL/data/ic"));
  EXPECT_THAT(raw.children("/post/constant/connectivities/SHELL/index"), IsEmpty());
}

TEST_F(ConnectivityWrite, ToTheConstantSectionRemembersNoFileAsOpenedLast) {
  const orvio::Swapped last(orvio::process().g_hLastFile, hid_t{0});
  EXPECT_EQ(Write(0, kHeaderAndData), 0);
  EXPECT_EQ(orvio::process().g_hLastFile, -1);
}

TEST_F(ConnectivityWrite, MakesOnlyThePartsThatItWrites) {
  ASSERT_EQ(Write(0, ORV_WRITE_HEADER), 0);
  EXPECT_THAT(RawFile(path_).children("/post/constant/connectivities/SHELL"), ElementsAre("header"));
  std::strcpy(block_.m_etypelem, "QUAD");
  ASSERT_EQ(Write(0, ORV_WRITE_DATA), 0);
  EXPECT_THAT(RawFile(path_).children("/post/constant/connectivities/QUAD"), ElementsAre("data"));
}

TEST_F(ConnectivityWrite, RefusesAMissingPathOrFile) {
  EXPECT_EQ(block_.WriteBlock(nullptr, 0, kHeaderAndData), 1);
  EXPECT_EQ(block_.WriteBlock(nullptr, 1, kHeaderAndData), 1);
  const std::string missing = TempPath("missing.orv");
  EXPECT_EQ(block_.WriteBlock(missing.c_str(), 0, kHeaderAndData), 1);
  EXPECT_EQ(block_.WriteBlock(missing.c_str(), 1, kHeaderAndData), 1);
  EXPECT_FALSE(std::filesystem::exists(missing));
}

TEST_F(ConnectivityWrite, LeavesAFileOfAnotherFormatAlone) {
  const std::string other = TempPath("notes.txt");
  std::ofstream(other) << "not a result file";
  EXPECT_EQ(block_.WriteBlock(other.c_str(), 0, kHeaderAndData), 1);
  EXPECT_EQ(block_.WriteBlock(other.c_str(), 1, kHeaderAndData), 1);
  EXPECT_EQ(BytesOf(other), "not a result file");
}

TEST_F(ConnectivityWrite, RefusesAnEmptyName) {
  block_.m_etypelem[0] = '\0';
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_THAT(RawFile(path_).children(kMeshes), IsEmpty());
}

TEST_F(ConnectivityWrite, CutsANameWithoutATerminator) {
  std::memset(block_.m_etypelem, 'E', sizeof block_.m_etypelem);
  ASSERT_EQ(Write(0, ORV_WRITE_HEADER), 0);
  const RawFile raw(path_);
  const std::string name(256, 'E');
  EXPECT_THAT(raw.children(kMeshes), ElementsAre(name));
  EXPECT_EQ(raw.attribute_text(std::string(kMeshes) + "/" + name + "/header", "etypelem"), name);
}

// ---- Header

TEST_F(ConnectivityWrite, LeavesAnUnknownDimensionOut) {
  block_.m_ndim = -1;
  ASSERT_EQ(Write(0, ORV_WRITE_HEADER), 0);
  EXPECT_FALSE(RawFile(path_).has_attribute("/post/constant/connectivities/SHELL/header", "ndim"));
}

class ConnectivityWriteHeader : public ConnectivityWrite {
 protected:
  /// Writes the header into the group at which the file stands.
  int WriteInto(ForgedFile& file) {
    int status = -1;
    file.raw([&](hid_t group) { status = block_.WriteHeader(group); });
    return status;
  }
};

TEST_F(ConnectivityWriteHeader, WritesOverWhatIsThere) {
  file_.at("/x").integer32("nele", 99).integer("block", 1).text("blocktype", "old", 3).text("etypelem", "OLD");
  EXPECT_EQ(WriteInto(file_), 0);
  const RawFile raw(file_.path());
  EXPECT_EQ(raw.attribute_int("/x", "nele"), 2);
  EXPECT_EQ(raw.attribute_size("/x", "nele"), 4U);
  EXPECT_EQ(raw.attribute_int("/x", "block"), 300);
  EXPECT_EQ(raw.attribute_text("/x", "blocktype"), Padded("connectivities"));
  EXPECT_EQ(raw.attribute_text("/x", "etypelem"), Padded("SHELL"));
}

TEST_F(ConnectivityWriteHeader, StopsAtAnAttributeOfAnotherClass) {
  file_.at("/x").real("npele", 4.);
  EXPECT_EQ(WriteInto(file_), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5write_ATTRIBUTE::\n\t \"npele\" data type mismatch for attribute");
  const RawFile raw(file_.path());
  EXPECT_EQ(raw.attribute_int("/x", "nele"), 2);
  EXPECT_FALSE(raw.has_attribute("/x", "ndim"));
  EXPECT_FALSE(raw.has_attribute("/x", "nindex"));
}

TEST_F(ConnectivityWriteHeader, StopsAtAWriteThatFails) {
  const Id file(H5Fopen(path_.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), path_);
  const Id group(H5Gopen2(file.get(), "/post", H5P_DEFAULT), "/post");
  EXPECT_EQ(block_.WriteHeader(group.get()), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5write_ATTRIBUTE::\n\t \"block\" fail to write");
}

// ---- Data and index

TEST_F(ConnectivityWrite, StoresLongIds) {
  std::int64_t ids[2] = {5000000000, 1};
  block_.m_ideleType = ORV_LONG;
  block_.m_idele = ids;
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_EQ(raw.type_size("/post/constant/connectivities/SHELL/data/idele"), 8U);
  EXPECT_THAT(raw.values<std::int64_t>("/post/constant/connectivities/SHELL/data/idele"), ElementsAre(5000000000, 1));
}

TEST_F(ConnectivityWrite, StoresEachDatasetInItsOwnType) {
  std::int64_t pid[2] = {5000000000, 8};
  std::int64_t ic[8] = {1, 2, 3, 4, 2, 5, 6, 6000000000};
  std::int64_t iparam[2] = {7000000000, 1};
  float fparam[2] = {0.5F, 1.25F};
  block_.m_pidType = block_.m_icType = block_.m_iparamType = ORV_LONG;
  block_.m_pid = pid;
  block_.m_ic = ic;
  block_.m_nbint = block_.m_nbfloat = 1;
  block_.m_iparam = iparam;
  block_.m_fparam = fparam;
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const RawFile raw(path_);
  const std::string data = std::string(kMeshes) + "/SHELL/data";
  EXPECT_EQ(raw.type_size(data + "/idele"), 4U);
  EXPECT_EQ(raw.type_size(data + "/fparam"), 4U);
  EXPECT_THAT(raw.values<float>(data + "/fparam"), ElementsAre(0.5F, 1.25F));
  for (const char* name : {"/pid", "/ic", "/iparam"}) EXPECT_EQ(raw.type_size(data + name), 8U) << name;
  EXPECT_THAT(raw.values<std::int64_t>(data + "/pid"), ElementsAre(5000000000, 8));
  EXPECT_THAT(raw.values<std::int64_t>(data + "/ic"), ElementsAre(1, 2, 3, 4, 2, 5, 6, 6000000000));
  EXPECT_THAT(raw.values<std::int64_t>(data + "/iparam"), ElementsAre(7000000000, 1));
}

TEST_F(ConnectivityWrite, StoresTheIndexInItsOwnTypes) {
  std::int64_t ident[1] = {5000000000};
  double values[1] = {0.1};
  block_.m_nindex = 1;
  block_.m_indexidentType = ORV_LONG;
  block_.m_indexvalType = ORV_DOUBLE;
  block_.m_indexident = ident;
  block_.m_indexval = values;
  ASSERT_EQ(Write(1, kAll), 0);
  const RawFile raw(path_);
  const std::string index = std::string(kState1) + "/connectivities/SHELL/index";
  EXPECT_THAT(raw.values<std::int64_t>(index + "/indexident"), ElementsAre(5000000000));
  EXPECT_EQ(raw.type_size(index + "/indexval"), 8U);
  EXPECT_THAT(raw.values<double>(index + "/indexval"), ElementsAre(0.1));
}

TEST_F(ConnectivityWrite, ReportsOnlyTheLastDataset) {
  block_.m_idele = nullptr;
  block_.m_pid = nullptr;
  EXPECT_EQ(Write(0, kHeaderAndData), 0);
  EXPECT_THAT(RawFile(path_).children("/post/constant/connectivities/SHELL/data"), ElementsAre("ic"));
}

TEST_F(ConnectivityWrite, ReportsParametersInPlaceOfTheRows) {
  AddParameters();
  block_.m_ic = nullptr;
  EXPECT_EQ(Write(0, kHeaderAndData), 0);
  std::strcpy(block_.m_etypelem, "QUAD");
  block_.m_fparam = nullptr;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_THAT(RawFile(path_).children("/post/constant/connectivities/QUAD/data"),
              ElementsAre("idele", "iparam", "pid"));
}

TEST_F(ConnectivityWrite, FailsWithoutRows) {
  block_.m_ic = nullptr;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
}

TEST_F(ConnectivityWrite, StoresNoDataForCountsThatAreNotPositive) {
  const auto data_of = [&](const char* name) {
    std::strcpy(block_.m_etypelem, name);
    EXPECT_EQ(Write(0, ORV_WRITE_DATA), 1) << name;
    return RawFile(path_).children(std::string(kMeshes) + "/" + name + "/data");
  };
  block_.m_npele = 0;
  EXPECT_THAT(data_of("A"), IsEmpty());
  block_.m_npele = -4;
  EXPECT_THAT(data_of("B"), IsEmpty());
  block_.m_npele = 4;
  block_.m_nele = INT64_MIN;
  EXPECT_THAT(data_of("C"), IsEmpty());
  block_.m_nele = 2;
  block_.m_nbint = -1;
  EXPECT_THAT(data_of("D"), IsEmpty());
}

TEST_F(ConnectivityWrite, StoresNoIndexAfterDataThatFailed) {
  block_.m_nele = 0;
  block_.m_nindex = 1;
  EXPECT_EQ(Write(1, kAll), 1);
  EXPECT_THAT(RawFile(path_).children(std::string(kState1) + "/connectivities/SHELL/index"), IsEmpty());
}

TEST_F(ConnectivityWrite, AnswersOneForAnIndexWithoutACount) {
  EXPECT_EQ(Write(1, kAll), 1);
  const RawFile raw(path_);
  EXPECT_TRUE(raw.exists(std::string(kState1) + "/connectivities/SHELL/data/ic"));
  EXPECT_THAT(raw.children(std::string(kState1) + "/connectivities/SHELL/index"), IsEmpty());
  block_.m_nindex = -1;
  EXPECT_EQ(block_.WriteIndex(H5I_INVALID_HID), 1);
  block_.m_nindex = 1;
  EXPECT_EQ(block_.WriteIndex(H5I_INVALID_HID), 1);
}

TEST_F(ConnectivityWrite, CompressesDataByTheBlocksOwnDigitsAndNeverTheIndex) {
  AddParameters();
  block_.m_nindex = 1;
  block_.m_nCompressionFactor = 3;
  ASSERT_EQ(Write(1, kAll), 0);
  const RawFile raw(path_);
  const std::string block = std::string(kState1) + "/connectivities/SHELL";
  EXPECT_THAT(raw.filters(block + "/data/ic"), ElementsAre(H5Z_FILTER_SCALEOFFSET));
  EXPECT_THAT(raw.values<std::int32_t>(block + "/data/ic"), ElementsAre(1, 2, 3, 4, 2, 5, 6, 3));
  EXPECT_THAT(raw.filters(block + "/data/fparam"), ElementsAre(H5Z_FILTER_SCALEOFFSET));
  EXPECT_THAT(raw.values<double>(block + "/data/fparam"), ElementsAre(0.5, 1.25));
  EXPECT_THAT(raw.filters(block + "/index/indexval"), IsEmpty());
}

TEST_F(ConnectivityWrite, NeverStoresUnitsOrTheIncrementalFlag) {
  file_.at("/post/constant/connectivities/OLD/orvblock")
      .integer("block", 300)
      .text("etypelem", "OLD")
      .integer("nele", 2)
      .integer("npele", 4)
      .text("etyppart", "PART")
      .text("etypnode", "NODE")
      .integer32("indexic", 1);
  path_ = file_.path();
  int mbunit[1] = {1};
  int ubid[1] = {4};
  float ubexp[1] = {1.F};
  std::strcpy(block_.m_etypelem, "OLD");
  ASSERT_EQ(block_.ReadBlock(path_.c_str(), 0, ORV_READ_HEADER), 0);
  ASSERT_TRUE(block_.IsIncremental());
  AddParameters();
  block_.m_mbunit = block_.m_mdunit = mbunit;
  block_.m_ubid = block_.m_udid = ubid;
  block_.m_ubexp = block_.m_udexp = ubexp;
  std::strcpy(block_.m_etypelem, "SHELL");
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_FALSE(raw.has_attribute("/post/constant/connectivities/SHELL/header", "indexic"));
  EXPECT_THAT(raw.children("/post/constant/connectivities/SHELL/data"),
              ElementsAre("fparam", "ic", "idele", "iparam", "pid"));
}

}  // namespace
}  // namespace orv_test
