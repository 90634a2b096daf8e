// The whole road of a value request: a filer is opened, blocks are picked, values come back. What the fetch does block by
// block is in tests/result.

#include <gtest/gtest.h>

#include "orvio/orv_filer.h"
#include "orvio/orv_variable_grp.h"
#include "result/fetched_values.h"
#include "support/forged_model.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;

using Floats = std::vector<float>;
using Ints = std::vector<int>;
using Results = std::vector<ORVResult*>;

/// Nodes of two zones with a vector in two states, and a constant scalar.
class FilerFetch : public OrvTest, public ::testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  FilerFetch() {
    model_.variable({.name = "SPEED", .key = "SPEED", .ncoo = 3, .rank = 1, .tensor = 1});
    model_.variable({.name = "MASS", .key = "MASS"});
    model_.in_constant({.variable = "MASS", .nent = 2, .values = {5, 6}, .ids = {10, 20}});
    model_.in_state(1, {.variable = "SPEED", .nent = 1, .ncoo = 3, .zoneid = 4, .values = {1, 2, 3}, .ids = {10}});
    model_.in_state(2, Later("NODE", 4, {1, 2, 3, 4, 5, 6}, {10, 20}));
    model_.in_state(1, {.etyp = "POINT", .variable = "SPEED", .nent = 1, .ncoo = 3, .zoneid = 7});
    model_.in_state(2, Later("POINT", 7, {7, 8, 9}, {30}));
    filer_ = std::make_unique<ORVFiler>(model_.path().c_str());
    int next_id = 1;
    EXPECT_EQ(filer_->InitReader(next_id), 0);
  }

  static ForgedValues Later(const char* etyp, int zone, const Floats& values, const Ints& ids) {
    const int nodes = static_cast<int>(ids.size());
    return {.etyp = etyp, .variable = "SPEED", .nent = nodes, .ncoo = 3, .zoneid = zone, .values = values, .ids = ids};
  }

  /// The handle of a variable at a position of its list: stored components first, then measures.
  ORVExtVar& Handle(const char* variable, std::size_t position) {
    return *filer_->GetVariable(variable)->GetExtVariables().at(position);
  }

  ForgedModel model_{GetParam()};
  std::unique_ptr<ORVFiler> filer_;
  FetchedValues<float> values_;
};
INSTANTIATE_TEST_SUITE_P(Layouts, FilerFetch, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle));

TEST_P(FilerFetch, DeliversAHandleForTheBlocksOfALookup) {
  Results blocks;
  std::vector<const char*> names = {"SPEED"};
  filer_->GetResultBlks(names, blocks, -1, 1, true);
  ASSERT_EQ(blocks.size(), 2U);
  values_.m_state = 2;
  values_.m_wantIds = 1;
  EXPECT_EQ(filer_->GetValues(values_, blocks, Handle("SPEED", 1).GetIID(), -1, nullptr), 0);
  EXPECT_EQ(values_.values(), (Floats{2, 5, 8}));
  EXPECT_EQ(values_.ids(), (Ints{10, 20, 30}));
  EXPECT_EQ(blocks[0]->m_nent, 2);
}

TEST_P(FilerFetch, DeliversTheInputsOfAMeasureOrAVariableByName) {
  Results blocks = filer_->GetResultList(1);
  values_.m_state = 1;
  EXPECT_EQ(Handle("SPEED", 3).GetType(), 50);
  EXPECT_EQ(filer_->GetValues(values_, blocks, Handle("SPEED", 3).GetIID(), -1, nullptr), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 2, 3}));
  values_.DeleteAllocation(true);
  EXPECT_EQ(filer_->GetValues(values_, blocks, -1, -1, "SPEED"), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 2, 3}));
}

TEST_P(FilerFetch, DeliversDoublesAndConstants) {
  Results blocks = filer_->GetResultList(1);
  FetchedValues<double> values;
  values.m_state = 2;
  Handle("MASS", 0).SetEID(77);
  EXPECT_EQ(filer_->GetValues(values, blocks, -1, 77, nullptr), 0);
  EXPECT_EQ(values.values(), (std::vector<double>{5, 6}));
}

TEST_P(FilerFetch, TakesEachOfItsThreeNamesForAQuantityInBothPrecisions) {
  Results blocks = filer_->GetResultList(1);
  ORVExtVar& handle = Handle("SPEED", 1);
  handle.SetEID(300);
  FetchedValues<double> doubles;
  doubles.m_state = values_.m_state = 2;
  const auto floats_of = [&](int ext_id, int result_type, const char* variable) {
    EXPECT_EQ(filer_->GetValues(values_, blocks, ext_id, result_type, variable), 0);
    const Floats found = values_.values();
    values_.DeleteAllocation(true);
    return found;
  };
  const auto doubles_of = [&](int ext_id, int result_type, const char* variable) {
    EXPECT_EQ(filer_->GetValues(doubles, blocks, ext_id, result_type, variable), 0);
    const std::vector<double> found = doubles.values();
    doubles.DeleteAllocation(true);
    return found;
  };
  EXPECT_EQ(floats_of(handle.GetIID(), -1, nullptr), (Floats{2, 5, 8}));
  EXPECT_EQ(floats_of(-1, 300, nullptr), (Floats{2, 5, 8}));
  EXPECT_EQ(floats_of(-1, -1, "MASS"), (Floats{5, 6}));
  EXPECT_EQ(doubles_of(handle.GetIID(), -1, nullptr), (std::vector<double>{2, 5, 8}));
  EXPECT_EQ(doubles_of(-1, 300, nullptr), (std::vector<double>{2, 5, 8}));
  EXPECT_EQ(doubles_of(-1, -1, "MASS"), (std::vector<double>{5, 6}));
}

TEST_P(FilerFetch, ByRequestAloneFiltersByOneExternalIdAndFetchesAnother) {
  Handle("SPEED", 0).SetEID(100);
  Handle("SPEED", 2).SetEID(300);
  values_.m_state = 2;
  values_.m_wantIds = 1;
  values_.m_resultType = 100;
  values_.m_extendedType = 300;
  EXPECT_EQ(filer_->GetValues(values_), 0);
  EXPECT_EQ(values_.values(), (Floats{3, 6, 9}));
  EXPECT_EQ(values_.ids(), (Ints{10, 20, 30}));
}

TEST_P(FilerFetch, ByRequestAloneKeepsToAZone) {
  Handle("SPEED", 0).SetEID(100);
  values_.m_state = 2;
  values_.m_resultType = 100;
  values_.m_extendedType = 100;
  values_.m_zoneId = 7;
  EXPECT_EQ(filer_->GetValues(values_), 0);
  EXPECT_EQ(values_.values(), (Floats{7}));
  values_.m_zoneId = 8;
  EXPECT_EQ(filer_->GetValues(values_), 1);
}

TEST_P(FilerFetch, ByRequestAloneHasNoAnswerForUnknownIds) {
  Handle("SPEED", 0).SetEID(100);
  values_.m_state = 2;
  values_.m_resultType = 100;
  values_.m_extendedType = 999;
  EXPECT_EQ(filer_->GetValues(values_), 1);
  values_.m_resultType = 999;
  values_.m_extendedType = 100;
  EXPECT_EQ(filer_->GetValues(values_), 1);
  EXPECT_EQ(values_.m_values, nullptr);
}

TEST_P(FilerFetch, ByRequestAloneLeavesTheRequestAloneWhereItHasNoAnswer) {
  Handle("SPEED", 0).SetEID(100);
  values_.m_state = 2;
  values_.m_resultType = 100;
  values_.m_layer = 3;
  values_.m_wantIds = 1;
  values_.m_zoneId = 8;
  values_.m_spare = 5;
  values_.m_fetchMode = 1;
  values_.m_capacity = 6;
  for (const int wanted : {999, 100}) {  // unknown, and of no block of the zone
    values_.m_extendedType = wanted;
    EXPECT_EQ(filer_->GetValues(values_), 1);
    EXPECT_EQ(values_.m_state, 2);
    EXPECT_EQ(values_.m_resultType, 100);
    EXPECT_EQ(values_.m_extendedType, wanted);
    EXPECT_EQ(values_.m_layer, 3);
    EXPECT_EQ(values_.m_wantIds, 1);
    EXPECT_EQ(values_.m_zoneId, 8);
    EXPECT_EQ(values_.m_spare, 5);
    EXPECT_EQ(values_.m_fetchMode, 1);
    EXPECT_EQ(values_.m_capacity, 6);
    EXPECT_EQ(values_.m_idCount, 0);
    EXPECT_EQ(values_.m_ids, nullptr);
    EXPECT_EQ(values_.m_valueCount, 0);
    EXPECT_EQ(values_.m_values, nullptr);
  }
}

/// Files that are made for one test.
class FilerFetchRequest : public OrvTest, public ::testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  void Open() {
    filer_ = std::make_unique<ORVFiler>(model_.path().c_str());
    int next_id = 1;
    EXPECT_EQ(filer_->InitReader(next_id), 0);
  }

  ForgedModel model_{GetParam()};
  std::unique_ptr<ORVFiler> filer_;
  FetchedValues<float> values_;
};
INSTANTIATE_TEST_SUITE_P(Layouts, FilerFetchRequest, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle));

TEST_P(FilerFetchRequest, LeavesMultiStateBlocksWithTheSameHandleOut) {
  model_.variable({.name = "SPEED", .key = "SPEED"});
  model_.in_state(1, {.variable = "SPEED", .nent = 1, .values = {5}, .ids = {10}});
  model_.in_multistate({.kind = 1050, .variable = "SPEED", .nent = 1, .nstate = 2, .values = {6, 7}, .ids = {10}});
  Open();
  ORVExtVar& handle = *filer_->GetVariable("SPEED")->GetExtVariables().at(0);
  EXPECT_TRUE(handle.IsApplicable(2));
  handle.SetEID(100);
  values_.m_state = 1;
  values_.m_resultType = 100;
  values_.m_extendedType = 100;
  EXPECT_EQ(filer_->GetValues(values_), 0);
  EXPECT_EQ(values_.values(), (Floats{5}));
}

using FilerFetchOfAGroup = OrvTest;

TEST_F(FilerFetchOfAGroup, TakesItsBlocksByAHandleOfAMember) {
  ForgedModel model;
  model.variable({.name = "HEAT", .key = "HEAT"}).variable({.name = "FLOW", .key = "FLOW", .ncoo = 2});
  model.group("BOTH", 3, {{"HEAT", 1, 0}, {"FLOW", 2, 1}});
  model.in_state(1, {.variable = "BOTH", .nent = 2, .ncoo = 3, .values = {1, 2, 3, 4, 5, 6}, .ids = {10, 20}});
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  ASSERT_NE(filer.GetResultList(1).at(0)->m_variableGrp, nullptr);
  const std::vector<ORVExtVar*>& handles = filer.GetVariable("FLOW")->GetExtVariables();
  handles.at(0)->SetEID(100);
  handles.at(1)->SetEID(200);
  FetchedValues<float> values;
  values.m_state = 1;
  values.m_wantIds = 1;
  values.m_resultType = 100;
  values.m_extendedType = 200;
  EXPECT_EQ(filer.GetValues(values), 0);
  EXPECT_EQ(values.values(), (Floats{3, 6}));
  EXPECT_EQ(values.ids(), (Ints{10, 20}));
}

TEST_P(FilerFetchRequest, IsServedByTheZonesBelowAPath) {
  model_.variable({.name = "SPEED", .key = "SPEED"});
  for (const int zone : {4, 7}) {
    model_.in_state(1, {.variable = "SPEED",
                        .nent = 1,
                        .zoneid = zone,
                        .values = {10.0F * float(zone)},
                        .ids = {zone},
                        .group_name = "zone " + std::to_string(zone)});
  }
  Open();
  Results blocks;
  std::string path = ForgedModel::StateGroup(1) + "/entityresults";
  filer_->GetResultBlkFromPath(path, blocks);
  ASSERT_EQ(blocks.size(), 2U);
  EXPECT_EQ(blocks[0]->m_zoneid, 4);
  values_.m_state = 1;
  values_.m_wantIds = 1;
  const int handle = filer_->GetVariable("SPEED")->GetExtVariables().at(0)->GetIID();
  EXPECT_EQ(filer_->GetValues(values_, blocks, handle, -1, nullptr), 0);
  EXPECT_EQ(values_.values(), (Floats{40, 70}));
  EXPECT_EQ(values_.ids(), (Ints{4, 7}));
  filer_->ClearResultBlk(blocks);
}

TEST_P(FilerFetch, OfWholeBlocksWithAPathLeavesAllPointersAndCountsAlone) {
  Results blocks;
  std::string path = ForgedModel::StateGroup(2);
  filer_->GetResultBlkFromPath(path, blocks);
  ASSERT_FALSE(blocks.empty());
  float of_the_host = 0;
  int ident = 0;
  for (ORVResult* block : blocks) block->m_res = &of_the_host;
  ORVFetchValuesWithIndex values;
  values.m_wantIds = 1;
  values.m_idCount = 1;
  values.m_ids = &ident;
  values.m_valueCount = 2;
  values.m_values = &of_the_host;
  values.m_indexCount = 3;
  values.m_blockCount = 4;
  values.m_indexIdent = &ident;
  values.m_indexVal = &of_the_host;
  for (const char* given : {"", "/post", path.c_str()}) {
    EXPECT_EQ(filer_->ReadValuesByBlockPath(blocks, values, given), 1);
    EXPECT_EQ(values.m_idCount, 1);
    EXPECT_EQ(values.m_ids, &ident);
    EXPECT_EQ(values.m_valueCount, 2);
    EXPECT_EQ(values.m_values, &of_the_host);
    EXPECT_EQ(values.m_indexCount, 3);
    EXPECT_EQ(values.m_blockCount, 4);
    EXPECT_EQ(values.m_indexIdent, &ident);
    EXPECT_EQ(values.m_indexVal, &of_the_host);
    for (const ORVResult* block : blocks) EXPECT_EQ(block->m_res, &of_the_host);
  }
  filer_->ClearResultBlk(blocks);
}

TEST_P(FilerFetch, OfWholeBlocksBelowAPath) {
  Results blocks;
  std::string path = ForgedModel::StateGroup(2);
  filer_->GetResultBlkFromPath(path, blocks);
  ORVFetchValuesWithIndex values;
  values.m_wantIds = 1;
  EXPECT_EQ(filer_->ReadValuesByBlockPath(blocks, values, "/post"), 1);
  EXPECT_EQ(values.m_values, nullptr);
  EXPECT_EQ(filer_->ReadValuesByBlockPath(blocks, values, nullptr), 0);
  EXPECT_EQ(Floats(values.m_values, values.m_values + values.m_valueCount), (Floats{1, 2, 3, 4, 5, 6, 7, 8, 9}));
  EXPECT_EQ(Ints(values.m_ids, values.m_ids + values.m_idCount), (Ints{10, 20, 30}));
  EXPECT_EQ(values.m_blockCount, 2);
  values.DeleteAllocation(false);
  filer_->ClearResultBlk(blocks);
}

}  // namespace
