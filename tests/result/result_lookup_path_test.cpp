// Results below any group of a file.

#include "entity/entity_type_table.h"
#include "filer/process_state.h"
#include "result/block_file.h"
#include "result/result_lookup.h"

namespace {

using namespace orv_test;
using namespace orvio;

/// A block with a whole header.
void AddWhole(BlockFile& file, const char* section, int kind, const char* etyp, const char* variable, int ncoo = 3) {
  file.Add(section, StoredBlock<float>{.kind = kind, .etyp = etyp, .variable = variable, .nent = 2});
  const bool element = kind >= 1100;
  file.file().text("etypvar", variable).text(element ? "etypelem" : "etyp", etyp).integer("ncoo", ncoo);
  file.file().integer("nindex", 0).integer("fswitch", 0);
  if (element) file.file().integer("numl", 1).integer("ndim", 0);
  if (kind >= 1050 && kind < 1100) file.file().integer("nstate", 4);
}

class ResultBelowPath : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  ~ResultBelowPath() override {
    for (const ORVResult* block : found_) delete block;
  }

  std::vector<std::string> Find(const std::string& path) {
    FindResultsBelow(file_.path().c_str(), path, found_);
    std::vector<std::string> names;
    for (const ORVResult* block : found_) names.push_back(std::string(block->m_etyp) + "/" + block->m_etypvar);
    return names;
  }

  BlockFile file_{GetParam()};
  ResultList found_;
};
INSTANTIATE_TEST_SUITE_P(Layouts, ResultBelowPath, ::testing::Values(Layout::kSplit, Layout::kSingle), NameOfLayout);

using Names = std::vector<std::string>;

TEST_P(ResultBelowPath, AreTheRealEntityResultsOfOneAndOfManyStates) {
  AddWhole(file_, kState1, 1000, "Node", "SPEED");
  AddWhole(file_, kState1, 1001, "Node", "CPLX");
  AddWhole(file_, kState1, 1100, "SHELL", "STRESS");
  file_.file().at(file_.Part(kState1, 1000, "Node", "SPEED", "header")).drop("nindex");
  AddWhole(file_, kMultistate, 1050, "Node", "HISTORY");
  file_.file().integer("nindex", 5);
  AddWhole(file_, kMultistate, 1051, "Node", "CPLXHISTORY");
  EXPECT_EQ(Find("/post"), (Names{"Node/HISTORY", "Node/SPEED"}));
  EXPECT_EQ(found_[0]->GetKey(), 1050);
  EXPECT_EQ(found_[0]->m_nstate, 4);
  EXPECT_EQ(found_[1]->GetKey(), 1000);
  EXPECT_EQ(found_[0]->m_nindex, 5);
  EXPECT_EQ(found_[1]->m_nindex, 0);  // not that of the block before
  EXPECT_EQ(found_[1]->m_nent, 2);
  EXPECT_EQ(found_[1]->m_ncoo, 3);
}

TEST_P(ResultBelowPath, AreThoseOfThatGroupOnly) {
  AddWhole(file_, kState1, 1000, "Node", "SPEED");
  AddWhole(file_, kState2, 1000, "Node", "SPEED");
  EXPECT_EQ(Find(kState2), (Names{"Node/SPEED"}));
  const std::string own = std::string(kState2) + "/entityresults/Node/SPEED";
  EXPECT_EQ(found_[0]->GetBlkPath(), GetParam() == Layout::kSplit ? own : own + "/orvblock");
}

TEST_P(ResultBelowPath, KnowTheNameOfTheirGroup) {
  AddWhole(file_, kState1, 1000, "Node", "SPEED");
  AddWhole(file_, kState1, 1000, "Node", "HEAT/Zone 4");
  EXPECT_EQ(Find(kState1), (Names{"Node/HEAT/Zone 4", "Node/SPEED"}));
  EXPECT_STREQ(found_[0]->m_subBlockName, "Zone 4");
  EXPECT_STREQ(found_[1]->m_subBlockName, "SPEED");
}

TEST_P(ResultBelowPath, AreAppendedToWhatWasFoundBefore) {
  AddWhole(file_, kState1, 1000, "Node", "SPEED");
  AddWhole(file_, kState2, 1000, "Node", "HEAT");
  EXPECT_EQ(Find(kState2), (Names{"Node/HEAT"}));
  EXPECT_EQ(Find("/post/nowhere"), (Names{"Node/HEAT"}));
  EXPECT_EQ(Find(kState1), (Names{"Node/HEAT", "Node/SPEED"}));
}

TEST_P(ResultBelowPath, LeaveNoBlockOfAWalkBehind) {
  AddWhole(file_, kState1, 1000, "Node", "SPEED");
  EXPECT_EQ(Find(kState1), (Names{"Node/SPEED"}));
  EXPECT_EQ(process().g_pCurrentBlock, nullptr);
}

TEST_P(ResultBelowPath, LackNothingInAnyPartOfAFile) {
  AddWhole(file_, "/elsewhere", 1000, "Node", "SPEED");
  EXPECT_EQ(Find("/elsewhere"), (Names{"Node/SPEED"}));
}

TEST_P(ResultBelowPath, AreNoneWhereTheGroupOrTheFileIsNotThere) {
  AddWhole(file_, kState1, 1000, "Node", "SPEED");
  EXPECT_EQ(Find("/post/nowhere"), Names());
  EXPECT_EQ(Find(""), Names());
  FindResultsBelow("/not/there", "/post", found_);
  EXPECT_EQ(found_, ResultList());
}

TEST_P(ResultBelowPath, AreNoneOfThoseWithADamagedHeader) {
  AddWhole(file_, kState1, 1000, "Node", "SPEED");
  AddWhole(file_, kState1, 1000, "Node", "BROKEN");
  file_.file().drop("ncoo");
  EXPECT_EQ(Find("/post"), (Names{"Node/SPEED"}));
}

TEST_P(ResultBelowPath, HaveTheNumbersOfTheirEntityType) {
  ASSERT_NE(AppendEntityType(9123, 77, "PathLookupNode"), nullptr);
  AddWhole(file_, kState1, 1000, "PathLookupNode", "SPEED");
  AddWhole(file_, kState1, 1000, "PathLookupOther", "SPEED");
  EXPECT_EQ(Find("/post"), (Names{"PathLookupNode/SPEED", "PathLookupOther/SPEED"}));
  EXPECT_EQ(found_[0]->m_entityType, 9123);
  EXPECT_EQ(found_[0]->m_baseEntityType, 77);
  EXPECT_EQ(found_[1]->m_entityType, -1);
  EXPECT_EQ(found_[1]->m_baseEntityType, -1);
}

}  // namespace
