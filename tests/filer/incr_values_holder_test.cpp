// What a merge of values leaves behind: the request, the arrays of the host and the blocks. Leaks and dead pointers are the
// sanitizers' to find.

#include "filer/incr_values_forge.h"

namespace orv_test {
namespace {

/// State 1 is full, states 2 and 3 change the nodes 20 and 30.
class IncrValuesHolder : public IncrValuesTest {
 protected:
  IncrValuesHolder() {
    Add(1, {.ids = {10, 20, 30}, .values = {1, 2, 3}, .flag = 0});
    Add(2, {.ids = {20}, .values = {22}});
    Add(3, {.ids = {30, 40, 50, 60}, .values = {33, 43, 53, 63}});
  }

  void DamageTheFullState() { PartOf(1, "data").retype("res"); }

  const Floats merged_ = {1, 22, 33};
};

INSTANTIATE_TEST_SUITE_P(Layouts, IncrValuesHolder, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle),
                         NameOfLayout);

TEST_P(IncrValuesHolder, HasTheCountsOfTheFullState) {
  Open();
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(values_.m_valueCount, 3);
  EXPECT_EQ(values_.m_idCount, 3);
  EXPECT_EQ(values_.values(), merged_);
}

TEST_P(IncrValuesHolder, InDoublePrecisionHasAllDigits) {
  PartOf(1, "data").dataset<double>("res", {3, 1}, {0.1, 0.2, 0.3});
  PartOf(2, "data").dataset<double>("res", {1, 1}, {1.0 / 3.0});
  Open();
  FetchedValues<double> values;
  values.m_state = 2;
  values.m_wantIds = 1;
  ASSERT_EQ(filer_->GetIncrValues(values, blocks_, Handle(), -1, nullptr), 0);
  EXPECT_EQ(values.values(), (std::vector<double>{0.1, 1.0 / 3.0, 0.3}));
  EXPECT_EQ(values.ids(), (Ints{10, 20, 30}));
}

TEST_P(IncrValuesHolder, KeepsItsRequest) {
  Open();
  values_.m_zoneId = 9;
  values_.m_resultType = 8;
  values_.m_extendedType = 7;
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(values_.m_state, 3);
  EXPECT_EQ(values_.m_wantIds, 1);
  EXPECT_EQ(values_.m_capacity, 0);
  EXPECT_EQ(values_.m_zoneId, 9);
  EXPECT_EQ(values_.m_resultType, 8);
  EXPECT_EQ(values_.m_extendedType, 7);
  EXPECT_EQ(values_.m_spare, -1);
}

TEST_P(IncrValuesHolder, KeepsItsRequestWhereThereIsNoAnswer) {
  DamageTheFullState();
  Open();
  for (const int want_ids : {0, 1}) {
    values_.m_wantIds = want_ids;
    EXPECT_EQ(Fetch(3), 1);
    EXPECT_EQ(values_.m_state, 3);
    EXPECT_EQ(values_.m_wantIds, want_ids);
    EXPECT_EQ(values_.m_capacity, 0);
    ExpectNoAnswer();
  }
}

TEST_P(IncrValuesHolder, HasNoIdsThatWereNotWanted) {
  Open();
  values_.m_wantIds = 0;
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(values_.values(), merged_);
  EXPECT_EQ(values_.m_wantIds, 0);
  EXPECT_EQ(values_.m_ids, nullptr);
}

TEST_P(IncrValuesHolder, ReusesTheArraysOfTheHost) {
  Open();
  values_.m_capacity = 5;
  float* const values = values_.m_values = CCopy(Floats{0, 0, 0, 0, 9});
  int* const ids = values_.m_ids = CCopy(Ints{0, 0, 0, 0, 9});
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(values_.m_values, values);
  EXPECT_EQ(values_.m_ids, ids);
  EXPECT_EQ(values_.m_capacity, 5);
  EXPECT_EQ(values_.values(), merged_);
  EXPECT_EQ(values_.ids(), (Ints{10, 20, 30}));
  EXPECT_EQ(values[4], 9);
  EXPECT_EQ(ids[4], 9);
}

TEST_P(IncrValuesHolder, GrowsTheArraysOfTheHost) {
  Open();
  values_.m_capacity = 1;
  values_.m_values = CCopy(Floats{0});
  values_.m_ids = CCopy(Ints{0});
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(values_.m_capacity, 3);
  EXPECT_EQ(values_.values(), merged_);
  EXPECT_EQ(values_.ids(), (Ints{10, 20, 30}));
}

TEST_P(IncrValuesHolder, KeepsIdsOfTheHostThatWereNotWanted) {
  Open();
  for (const int capacity : {1, 5}) {
    SCOPED_TRACE(capacity);
    values_.m_wantIds = 0;
    values_.m_capacity = capacity;
    values_.m_values = CCopy(Floats(static_cast<std::size_t>(capacity), 0));
    int* const ids = values_.m_ids = CCopy(Ints(static_cast<std::size_t>(capacity), 55));
    ASSERT_EQ(Fetch(3), 0);
    EXPECT_EQ(values_.values(), merged_);
    EXPECT_EQ(values_.m_ids, ids);
    EXPECT_EQ(*ids, 55);
    values_.m_wantIds = 1;  // the array may be too short for the capacity now
    ASSERT_EQ(Fetch(3), 0);
    EXPECT_EQ(values_.ids(), (Ints{10, 20, 30}));
    values_.DeleteAllocation(true);
  }
}

TEST_P(IncrValuesHolder, KeepsArraysOfTheHostWhereThereIsNoAnswer) {
  DamageTheFullState();
  Open();
  values_.m_wantIds = 0;
  values_.m_capacity = 3;
  values_.m_values = CCopy(Floats{7, 7, 7});
  int* const ids = values_.m_ids = CCopy(Ints{55, 55, 55});
  EXPECT_EQ(Fetch(3), 1);
  EXPECT_EQ(values_.m_ids, ids);
  EXPECT_EQ(*ids, 55);
  EXPECT_EQ(values_.m_wantIds, 0);
  EXPECT_EQ(values_.m_capacity, 3);
}

TEST_P(IncrValuesHolder, KeepsAnArrayOfIdsThatIsNotOfTheAllocator) {
  Open();
  int own = 55;
  values_.m_wantIds = 0;
  values_.m_state = 3;
  values_.m_ids = &own;
  ASSERT_EQ(filer_->GetIncrValues(values_, blocks_, Handle(), -1, nullptr), 0);
  EXPECT_EQ(values_.m_ids, &own);
  EXPECT_EQ(own, 55);
  EXPECT_EQ(values_.values(), merged_);
  values_.m_ids = nullptr;
}

TEST_P(IncrValuesHolder, LeavesBlocksPointingAtTheAnswer) {
  Open();
  ASSERT_EQ(Fetch(3), 0);
  const ORVResult& block = *blocks_.at(0);
  EXPECT_EQ(block.m_res, values_.m_values);
  EXPECT_EQ(block.m_entid, values_.m_ids);
  EXPECT_EQ(block.m_nent, 3);
  EXPECT_EQ(block.m_fetchSkip, 0);
  EXPECT_EQ(block.m_readIds, 0);
}

TEST_P(IncrValuesHolder, LeavesBlocksTheirIdsWhereNoneWereWanted) {
  Open();
  int own = 55;
  blocks_.at(0)->m_entid = &own;
  values_.m_wantIds = 0;
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(blocks_[0]->m_entid, &own);
  EXPECT_EQ(blocks_[0]->m_res, values_.m_values);
}

TEST_P(IncrValuesHolder, MayFetchComponentByComponent) {
  Open();
  values_.m_fetchMode = 1;
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(values_.values(), merged_);
  EXPECT_EQ(values_.m_fetchMode, 1);
}

}  // namespace
}  // namespace orv_test
