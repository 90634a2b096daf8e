// The whole road of a value request: a filer is opened, blocks are picked, values come back. What the fetch does block by
// block is in tests/result.

#include <gtest/gtest.h>

#include "orvio/orv_filer.h"
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
