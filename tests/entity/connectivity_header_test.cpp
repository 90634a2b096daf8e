// The header of an element connectivity block as it is read: every attribute, present, absent and of another kind, in
// both layouts. Datasets are in connectivity_data_test, writing in connectivity_write_test.

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <tuple>
#include <vector>

#include "entity/connectivity_forge.h"
#include "orvio/orv_ele_connectivity.h"
#include "orvio/orv_types.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

int ReadHeaderOf(ORVEleConnectivity& block, ForgedFile& file) {
  std::strcpy(block.m_etypelem, "SHELL");
  return block.ReadBlock(file.path().c_str(), 0, ORV_READ_HEADER);
}

struct HeaderRow {
  const char* name;
  int when_absent;
  int when_retyped;
};

constexpr HeaderRow kRows[] = {
    {"block", 1, 1},  {"blocktype", 0, 0}, {"etyp", 0, 1},     {"etypelem", 1, 1}, {"nele", 1, 1},
    {"npele", 1, 1},  {"etyppart", 1, 1},  {"etypnode", 1, 1}, {"nbint", 0, 1},    {"nbfloat", 0, 1},
    {"nindex", 0, 0}, {"ndim", 0, 1},      {"indexic", 0, 0},
};

class ConnectivityHeaderRow : public OrvTest, public ::testing::WithParamInterface<std::tuple<HeaderRow, Layout>> {
 protected:
  ConnectivityHeaderRow() {
    AddMesh(file_, kShell, std::get<1>(GetParam()));
    AddOptionalAttributes(file_);
  }

  ForgedFile file_;
  ORVEleConnectivity block_;
};

TEST_P(ConnectivityHeaderRow, AnswersAsTheFormatSaysWhenAbsent) {
  const HeaderRow row = std::get<0>(GetParam());
  file_.drop(row.name);
  EXPECT_EQ(ReadHeaderOf(block_, file_), row.when_absent);
}

TEST_P(ConnectivityHeaderRow, AnswersAsTheFormatSaysWhenOfAnotherKind) {
  const HeaderRow row = std::get<0>(GetParam());
  file_.retype(row.name);
  EXPECT_EQ(ReadHeaderOf(block_, file_), row.when_retyped);
}

INSTANTIATE_TEST_SUITE_P(Rows, ConnectivityHeaderRow,
                         ::testing::Combine(::testing::ValuesIn(kRows),
                                            ::testing::Values(Layout::kSplit, Layout::kSingle)),
                         [](const auto& row) {
                           return std::string(std::get<0>(row.param).name) + NameOf(std::get<1>(row.param));
                         });

class ConnectivityHeader : public OrvTest {
 protected:
  ForgedFile& Mesh() { return AddMesh(file_, kShell, Layout::kSingle); }

  ForgedFile file_;
  ORVEleConnectivity block_;
};

class ConnectivityHeaderLayout : public ConnectivityHeader, public ::testing::WithParamInterface<Layout> {};

TEST_P(ConnectivityHeaderLayout, GivesEveryAttributeToItsMember) {
  AddOptionalAttributes(AddMesh(file_, kShell, GetParam())).integer("block", 301);
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_EQ(block_.GetKey(), 301);
  EXPECT_STREQ(block_.m_etyp, "2D-ELEMENT");
  EXPECT_STREQ(block_.m_etypelem, "SHELL");
  EXPECT_STREQ(block_.m_etyppart, "PART");
  EXPECT_STREQ(block_.m_etypnode, "NODE");
  EXPECT_EQ(block_.m_nele, 2);
  EXPECT_EQ(block_.m_npele, 4);
  EXPECT_EQ(block_.m_ndim, 2);
  EXPECT_EQ(block_.m_nbint, 3);
  EXPECT_EQ(block_.m_nbfloat, 2);
  EXPECT_EQ(block_.m_nindex, 1);
  EXPECT_TRUE(block_.IsIncremental());
}

TEST_P(ConnectivityHeaderLayout, ReadsWithoutAnyOptionalAttribute) {
  AddMesh(file_, kShell, GetParam());
  std::strcpy(block_.m_etyp, "OLD");
  block_.m_ndim = 3;
  block_.m_nbint = block_.m_nbfloat = block_.m_nindex = 5;
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_STREQ(block_.m_etyp, "");
  EXPECT_EQ(block_.m_ndim, -1);
  EXPECT_EQ(block_.m_nbint, 0);
  EXPECT_EQ(block_.m_nbfloat, 0);
  EXPECT_EQ(block_.m_nindex, 0);
  EXPECT_FALSE(block_.IsIncremental());
}

TEST_P(ConnectivityHeaderLayout, ReadsABlockOfAState) {
  AddMesh(file_, "/post/singlestate/state000000000001/connectivities/BEAM", GetParam());
  AddMesh(file_, "/post/singlestate/state000000000002/connectivities/SHELL", GetParam()).integer("nele", 99);
  std::strcpy(block_.m_etypelem, "SHELL");
  const std::string path = file_.path();
  EXPECT_EQ(block_.ReadBlock(path.c_str(), 1, ORV_READ_HEADER), 1);
  EXPECT_EQ(block_.ReadBlock(path.c_str(), 2, ORV_READ_HEADER), 0);
  EXPECT_EQ(block_.m_nele, 99);
  EXPECT_EQ(block_.ReadBlock(path.c_str(), 3, ORV_READ_HEADER), 1);
}

TEST_P(ConnectivityHeaderLayout, ReadsABlockByItsPosition) {
  AddMesh(file_, "/post/constant/connectivities/A", GetParam()).integer("nele", 1);
  AddMesh(file_, "/post/constant/connectivities/B", GetParam()).integer("nele", 22);
  const std::string path = file_.path();
  int count = -1;
  EXPECT_EQ(block_.ReadNumBlock(path.c_str(), 0, &count), 0);
  EXPECT_EQ(count, 2);
  EXPECT_EQ(block_.ReadBlockAt(path.c_str(), 0, 1, ORV_READ_HEADER), 0);
  EXPECT_EQ(block_.m_nele, 22);
}

INSTANTIATE_TEST_SUITE_P(Layouts, ConnectivityHeaderLayout, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_F(ConnectivityHeader, StartsWithZeroedMembersAndDefaultTypes) {
  const ORVEleConnectivity block;
  EXPECT_EQ(block.GetKey(), 300);
  for (const char* text : {block.m_etyp, block.m_etypelem, block.m_etyppart, block.m_etypnode}) {
    EXPECT_EQ(std::string(text, 257), std::string(257, '\0'));
  }
  for (const std::int64_t count :
       {block.m_nele, block.m_npele, block.m_ndim, block.m_nbint, block.m_nbfloat, block.m_nindex}) {
    EXPECT_EQ(count, 0);
  }
  for (const void* buffer :
       {block.m_idele, block.m_pid, block.m_ic, block.m_iparam, block.m_fparam, block.m_mbunit, block.m_ubid,
        block.m_ubexp, block.m_mdunit, block.m_udid, block.m_udexp, block.m_indexident, block.m_indexval}) {
    EXPECT_EQ(buffer, nullptr);
  }
  for (const _ORVDataType type :
       {block.m_ideleType, block.m_pidType, block.m_icType, block.m_iparamType, block.m_ubidType, block.m_mbunitType,
        block.m_udidType, block.m_mdunitType, block.m_indexidentType}) {
    EXPECT_EQ(type, ORV_INT);
  }
  for (const _ORVDataType type : {block.m_fparamType, block.m_ubexpType, block.m_udexpType, block.m_indexvalType}) {
    EXPECT_EQ(type, ORV_FLOAT);
  }
}

TEST_F(ConnectivityHeader, ACopySharesTheBuffers) {
  int ids[2] = {};
  float values[1] = {};
  std::strcpy(block_.m_etypelem, "SHELL");
  block_.m_nele = 2;
  block_.m_idele = ids;
  block_.m_indexval = values;
  block_.SetBlkPath("/somewhere");
  const ORVEleConnectivity made(block_);
  ORVEleConnectivity assigned;
  assigned = block_;
  for (const ORVEleConnectivity* copy : {&made, static_cast<const ORVEleConnectivity*>(&assigned)}) {
    EXPECT_STREQ(copy->m_etypelem, "SHELL");
    EXPECT_EQ(copy->m_nele, 2);
    EXPECT_EQ(copy->m_idele, ids);
    EXPECT_EQ(copy->m_indexval, values);
    EXPECT_EQ(copy->GetBlkPath(), "/somewhere");
    EXPECT_EQ(copy->GetKey(), 300);
  }
}

TEST_F(ConnectivityHeader, WithoutEtypnodeFailsAfterTheCountsWereStored) {
  Mesh().drop("etypnode").integer("nbint", 9);
  EXPECT_EQ(ReadHeaderOf(block_, file_), 1);
  EXPECT_EQ(block_.m_nele, 2);
  EXPECT_EQ(block_.m_npele, 4);
  EXPECT_STREQ(block_.m_etyppart, "PART");
  EXPECT_EQ(block_.m_nbint, 0);
}

TEST_F(ConnectivityHeader, ThatEndsAtNpeleKeepsTheBlanksOfEtypelem) {
  Mesh().drop("npele");
  EXPECT_EQ(ReadHeaderOf(block_, file_), 1);
  EXPECT_EQ(std::string(block_.m_etypelem), "SHELL" + std::string(251, ' '));
}

TEST_F(ConnectivityHeader, ThatEndsAtBlockLeavesEveryMemberAlone) {
  AddOptionalAttributes(Mesh()).drop("block");
  block_.m_nele = 77;
  block_.m_ndim = 5;
  EXPECT_EQ(ReadHeaderOf(block_, file_), 1);
  EXPECT_EQ(block_.m_nele, 77);
  EXPECT_EQ(block_.m_ndim, 5);
  EXPECT_STREQ(block_.m_etyp, "");
  EXPECT_EQ(block_.GetKey(), 300);
}

TEST_F(ConnectivityHeader, LeavesTheIndexCountAloneWhenItCannotBeRead) {
  AddOptionalAttributes(Mesh()).retype("nindex");
  block_.m_nindex = 6;
  EXPECT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_EQ(block_.m_nindex, 6);
  EXPECT_EQ(block_.m_ndim, 2);
}

TEST_F(ConnectivityHeader, IsNotIncrementalWithAnUnreadableFlag) {
  AddOptionalAttributes(Mesh()).retype("indexic");
  EXPECT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_FALSE(block_.IsIncremental());
}

TEST_F(ConnectivityHeader, WithoutAFlagIsNotIncrementalAfterOneThatIs) {
  AddOptionalAttributes(Mesh());
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  ASSERT_TRUE(block_.IsIncremental());
  Mesh().drop("indexic");
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_FALSE(block_.IsIncremental());
}

TEST_F(ConnectivityHeader, TakesTextsThatFillTheirField) {
  Mesh().text("etypelem", std::string(256, 'E')).text("etypnode", std::string(256, 'N'));
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_EQ(std::string(block_.m_etypelem), std::string(256, 'E'));
  EXPECT_EQ(std::string(block_.m_etypnode), std::string(256, 'N'));
}

TEST_F(ConnectivityHeader, TakesShortAndVariableTexts) {
  Mesh().text("etypelem", "SH  ", 4).text("etyppart", std::string("PA\0RT", 5), 5).drop("etypnode");
  file_.variable_text("etypnode", "NODE ");
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_STREQ(block_.m_etypelem, "SH");
  EXPECT_STREQ(block_.m_etyppart, "PA");
  EXPECT_STREQ(block_.m_etypnode, "NODE");
}

TEST_F(ConnectivityHeader, TurnsAllBlanksIntoAnEmptyText) {
  Mesh().text("etyppart", "");
  ASSERT_EQ(ReadHeaderOf(block_, file_), 0);
  EXPECT_STREQ(block_.m_etyppart, "");
}

TEST_F(ConnectivityHeader, RefusesATextWiderThanItsField) {
  Mesh().text("etypnode", "NODE", 257);
  EXPECT_EQ(ReadHeaderOf(block_, file_), 1);
}

TEST_F(ConnectivityHeader, RefusesACountOfSeveralValues) {
  Mesh().integers("nele", {2, 3});
  EXPECT_EQ(ReadHeaderOf(block_, file_), 1);
  EXPECT_EQ(block_.m_nele, 0);
}

/// Reaches what the block protocol calls.
class OpenConnectivity : public ORVEleConnectivity {
 public:
  using ORVEleConnectivity::AppendBlockSchema;
};

TEST_F(ConnectivityHeader, TheElementTypeIsTheLastLevelOfThePath) {
  OpenConnectivity block;
  std::strcpy(block.m_etyp, "2D-ELEMENT");
  std::strcpy(block.m_etypelem, "SHELL");
  std::string path;
  EXPECT_EQ(block.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, "SHELL");
  EXPECT_EQ(block.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, "SHELL/SHELL");
}

TEST_F(ConnectivityHeader, IsNotReadByTheInfoStage) {
  Mesh();
  std::strcpy(block_.m_etypelem, "SHELL");
  EXPECT_EQ(block_.ReadBlock(file_.path().c_str(), 0, ORV_READ_HEADER_INFO), 1);
  EXPECT_EQ(block_.m_nele, 0);
}

}  // namespace
}  // namespace orv_test
