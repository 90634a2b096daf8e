// What a result block answers when it holds the quantities of a group of variables: names, selections, types. The
// answers of the group itself are in tests/variable.

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <vector>

#include "orvio/orv_ext_var.h"
#include "orvio/orv_result.h"
#include "orvio/orv_variable_grp.h"
#include "result/hyper_slab.h"
#include "result/variable_with_handles.h"
#include "support/orv_test.h"

namespace {

using orv_test::VariableWithHandles;
using Ints = std::vector<int>;
using Extents = std::vector<std::uint64_t>;

/// Nine components at two nodes: a speed in the first three, a stress in the others.
class ResultOfAGroup : public orv_test::OrvTest {
 protected:
  ResultOfAGroup() {
    std::strcpy(speed_->m_varkey, "V");
    for (int i = 0; i < 3; ++i) speed_.Add(10 + i, i);
    speed_.AddComputed(13, 50, {{10, 11, 12}});
    for (int i = 0; i < 6; ++i) stress_.Add(20 + i, 3 + i);
    stress_.AddComputed(26, 56, {{20, 21, 22, 23, 24, 25}});
    std::strcpy(group_.m_grpName, "ALL");
    group_.m_nvar = 2;
    group_.m_ncoo = 9;
    group_.m_pCnt = counts_;
    group_.m_pOffs = offsets_;
    group_.m_pKeys = keys_;
    group_.AppendVariable(speed_.get());
    group_.AppendVariable(stress_.get());
    result_.m_nent = 2;
    result_.m_ncoo = 9;
    result_.m_variableGrp = &group_;
  }

  int counts_[2] = {3, 6}, offsets_[2] = {0, 3};
  char keys_[2 * 256 + 1] = {};
  VariableWithHandles speed_{"Speed", 3}, stress_{"Stress", 6};
  ORVVariableGrp group_;
  ORVResult result_{ORV_RESULT_ENTITY};
};

TEST_F(ResultOfAGroup, GoesByTheIdentitiesOfItsMembersAndByTheNameOfTheGroup) {
  EXPECT_TRUE(result_.IsKeyOrVariableAvailable("v"));
  EXPECT_FALSE(result_.IsKeyOrVariableAvailable("Speed"));  // it has a key
  EXPECT_TRUE(result_.IsKeyOrVariableAvailable("stress"));  // it has none
  EXPECT_TRUE(result_.IsKeyOrVariableAvailable("all"));
  EXPECT_FALSE(result_.IsKeyOrVariableAvailable("none"));
  EXPECT_FALSE(result_.IsKeyOrVariableAvailable(nullptr));
}

TEST_F(ResultOfAGroup, WithAVariableTooGoesByTheVariableAlone) {
  result_.m_variable = speed_.get();
  EXPECT_TRUE(result_.IsKeyOrVariableAvailable("V"));
  EXPECT_FALSE(result_.IsKeyOrVariableAvailable("Stress"));
  EXPECT_FALSE(result_.IsKeyOrVariableAvailable("ALL"));
}

TEST_F(ResultOfAGroup, WithoutADefinitionGoesByNothing) {
  result_.m_variableGrp = nullptr;
  std::strcpy(result_.m_etypvar, "ALL");
  EXPECT_FALSE(result_.IsKeyOrVariableAvailable("ALL"));
  EXPECT_EQ(result_.GetExtVariableFrmCmp("Speed"), nullptr);
  EXPECT_EQ(result_.GetResultTypeFromIndex(0), -1);
}

TEST_F(ResultOfAGroup, FindsHandlesOfItsMembersByName) {
  ORVExtVar* handle = stress_->GetExtVarFrmId(22, true);
  handle->SetName("Stress_ZZ");
  EXPECT_EQ(result_.GetExtVariableFrmCmp("STRESS_zz"), handle);
  EXPECT_EQ(result_.GetExtVariableFrmCmp("Stress_XX"), nullptr);
  EXPECT_EQ(result_.GetExtVariableFrmCmp(nullptr), nullptr);
}

TEST_F(ResultOfAGroup, SelectsTheRunOfAMember) {
  int rank = -1;
  std::uint64_t start[5] = {}, count[5] = {};
  EXPECT_EQ(result_.GetComponentSelectionByVariableName("Stress", &rank, start, count, 0, -1), 2);
  EXPECT_EQ(Extents(start, start + 2), (Extents{0, 3}));
  EXPECT_EQ(Extents(count, count + 2), (Extents{2, 6}));
  EXPECT_EQ(result_.GetComponentSelectionByVariableName("Speed", &rank, start, count, 0, -1), 0);  // its key is "V"
  EXPECT_EQ(result_.GetComponentSelectionByVariableName("V", &rank, start, count, 0, -1), 2);
  EXPECT_EQ(count[1], 3U);
}

TEST_F(ResultOfAGroup, FillsASlabWithTheRunOfAMember) {
  ORVHyperSlab slab;
  orvio::PointAtOwnArrays(slab);
  EXPECT_EQ(result_.FillDependentForVarGrp("Stress", slab, 0, 0, -1), 0);
  EXPECT_EQ(slab.m_start[1], 3U);
  EXPECT_EQ(slab.m_count[1], 6U);
  EXPECT_EQ(result_.FillDependentForVarGrp("none", slab, 0, 0, -1), 1);
}

TEST_F(ResultOfAGroup, RefusesARunThatEndsBehindItsComponents) {
  for (const auto& [count, offset] : {std::pair{7, 3}, {6, 4}, {6, -1}, {-6, 3}, {0, 3}, {INT32_MAX, INT32_MAX}}) {
    counts_[1] = count;
    offsets_[1] = offset;
    int rank = -1, number = 5, first = 6;
    std::uint64_t starts[5] = {}, counts[5] = {};
    EXPECT_EQ(result_.GetComponentSelectionByVariableName("Stress", &rank, starts, counts, 0, -1), 0);
    EXPECT_EQ(result_.GetVariableCompAndOffset("Stress", number, first), 1);
    EXPECT_EQ(number, 0);
    EXPECT_EQ(first, -1);
    ORVHyperSlab slab;
    orvio::PointAtOwnArrays(slab);
    EXPECT_EQ(result_.FillDependentForVarGrp("Stress", slab, 0, 0, -1), 1);
  }
}

TEST_F(ResultOfAGroup, TellsCountAndOffsetOfAMember) {
  int count = 0, offset = 0;
  EXPECT_EQ(result_.GetVariableCompAndOffset("Stress", count, offset), 0);
  EXPECT_EQ(count, 6);
  EXPECT_EQ(offset, 3);
}

TEST_F(ResultOfAGroup, SelectsTheComponentOfAHandleAndTheInputsOfAComputedOne) {
  std::vector<ORVHyperSlab*> slabs;
  result_.GetVarSelection(21, slabs, 0, -1);
  ASSERT_EQ(slabs.size(), 1U);
  EXPECT_EQ(slabs[0]->m_start[1], 4U);
  EXPECT_EQ(slabs[0]->m_count[1], 1U);
  result_.GetVarSelection(26, slabs, 0, -1);
  ASSERT_EQ(slabs.size(), 7U);
  EXPECT_EQ(slabs[1]->m_start[1], 3U);
  EXPECT_EQ(slabs[6]->m_start[1], 8U);
  for (const ORVHyperSlab* slab : slabs) delete slab;
  ORVHyperSlab merged;
  EXPECT_EQ(result_.GetHyperSelection(113, merged, false, 0, -1), 0);
  EXPECT_EQ(merged.m_start[1], 0U);
  EXPECT_EQ(merged.m_count[1], 3U);
}

TEST_F(ResultOfAGroup, LetsAMemberFillADependent) {
  ORVDependentVar dependent;
  EXPECT_EQ(result_.FillDependentForVarGrp("Speed", dependent), 0);
  EXPECT_EQ(dependent.m_pVariable, speed_.get());
  EXPECT_EQ(dependent.m_iids, (Ints{10, 11, 12}));
  ORVDependentVar none;
  EXPECT_EQ(result_.FillDependentForVarGrp("none", none), 1);
}

TEST_F(ResultOfAGroup, CountsTypesOverAllMembers) {
  EXPECT_EQ(result_.GetResultTypeFromIndex(0), 110);
  EXPECT_EQ(result_.GetResultTypeFromIndex(4), 120);
  EXPECT_EQ(result_.GetResultTypeFromIndex(11), -1);
  EXPECT_EQ(result_.GetComponentTypeFromIndex(3), 50);
  EXPECT_EQ(result_.GetComponentTypeFromIndex(10), 56);
  EXPECT_EQ(result_.GetComponentIndex(126), 10);
  EXPECT_EQ(result_.GetVariableComputeTypeFrmIId(26, true), 56);
  EXPECT_EQ(result_.GetVariableComputeTypeFrmIId(126, false), 56);
  int index = 5;
  EXPECT_EQ(result_.GetComponentType(121, &index), 0);
  EXPECT_EQ(index, 4);
  EXPECT_EQ(result_.GetComponentType(126, &index), 56);
  EXPECT_EQ(index, 0);
}

TEST_F(ResultOfAGroup, LetsAMemberBehindTheFirstFillADependentOnlyAsFarAsItsOwnCountReaches) {
  ORVDependentVar dependent;  // its six components stand at 3 to 8, and it looks at 0 to 5
  EXPECT_EQ(result_.FillDependentForVarGrp("Stress", dependent), 0);
  EXPECT_EQ(dependent.m_pVariable, stress_.get());
  EXPECT_EQ(dependent.m_iids, (Ints{20, 21, 22}));
}

TEST_F(ResultOfAGroup, MergesTheInputsOfAComputedHandleOfAMember) {
  int rank = -1;
  std::uint64_t start[5] = {}, count[5] = {};
  EXPECT_EQ(result_.GetComponentSelectionWrap(26, &rank, start, count, 0, 1, true), 2);
  EXPECT_EQ(rank, 2);
  EXPECT_EQ(Extents(start, start + 2), (Extents{1, 3}));
  EXPECT_EQ(Extents(count, count + 2), (Extents{1, 6}));
  EXPECT_EQ(result_.GetComponentSelectionWrap(99, &rank, start, count, 0, 1, true), 0);
  EXPECT_EQ(rank, 0);
  ORVHyperSlab merged;
  EXPECT_EQ(result_.GetHyperSelection(26, merged, true, 0, -1), 0);
  EXPECT_EQ(merged.m_start[1], 3U);
  EXPECT_EQ(result_.GetHyperSelection(99, merged, true, 0, -1), 1);
  EXPECT_EQ(result_.GetHyperSelection(99, merged, false, 0, -1), 1);
}

TEST_F(ResultOfAGroup, ReadsAWholeValueByTheNextMeasureInTheListOfAllMembers) {
  auto measure = static_cast<_ORVComputeType>(7);
  int count = 0, type = 0;
  EXPECT_EQ(result_.GetResultTypeToReadAllComponent(111, measure, count, type), 0);
  EXPECT_EQ(measure, 50);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(type, 111);
  EXPECT_EQ(result_.GetResultTypeToReadAllComponent(120, measure, count, type), 0);
  EXPECT_EQ(measure, 56);
  EXPECT_EQ(count, 6);
  EXPECT_EQ(result_.GetResultTypeToReadAllComponent(999, measure, count, type), 1);
  EXPECT_EQ(count, 1);
}

TEST_F(ResultOfAGroup, HasNoMeasureAsAWhole) { EXPECT_EQ(result_.GetBlockComponentType(0), -1); }

TEST_F(ResultOfAGroup, WithoutComponentsHasNoTypes) {
  result_.m_ncoo = 0;
  int index = 5;
  EXPECT_EQ(result_.GetComponentIndex(126), -1);
  EXPECT_EQ(result_.GetComponentType(126, &index), -1);
  EXPECT_EQ(index, -1);
}

}  // namespace
