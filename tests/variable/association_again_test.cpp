// Results whose definitions have handles already: those of another list or group, and those that are bound once more. The
// first binding is in association_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "orvio/orv_filer.h"
#include "support/forged_model.h"
#include "support/one_node_results.h"
#include "support/orv_test.h"

namespace {

using orv_test::ForgedModel;
using orv_test::NamesOf;
using orv_test::OneNodeHistory;
using orv_test::OneNodeResult;
using testing::ElementsAre;

/// A filer after its start-up.
struct Opened {
  explicit Opened(ForgedModel& model) : filer(model.path().c_str()) { EXPECT_EQ(filer.InitReader(next_id), 0); }

  ORVFiler filer;
  int next_id = 1;
};

class AssociationAgain : public orv_test::OrvTest {};

TEST_F(AssociationAgain, MarksAllHandlesOfAGroup) {
  ForgedModel model;
  model.variable({.name = "A", .key = "A"}).variable({.name = "B", .key = "B"}).variable({.name = "C", .key = "C"});
  model.group("G", 2, {{"A", 1, 0}, {"B", 1, 1}}).group("H", 2, {{"A", 1, 0}, {"C", 1, 1}});
  model.in_state(1, OneNodeResult("G", 2)).in_multistate(OneNodeHistory("H", 2));
  Opened opened(model);
  ASSERT_THAT(NamesOf(opened.filer.GetExtVariables()), ElementsAre("A", "B", "C"));
  const auto serves = [&](const char* name, int list) { return opened.filer.GetExtVariable(name)->IsApplicable(list); };
  EXPECT_TRUE(serves("A", 1));
  EXPECT_TRUE(serves("A", 2));
  EXPECT_TRUE(serves("B", 1));
  EXPECT_FALSE(serves("B", 2));
  EXPECT_FALSE(serves("C", 1));
  EXPECT_TRUE(serves("C", 2));
}

TEST_F(AssociationAgain, MarksAllHandlesOfAVariable) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}});
  model.in_state(1, OneNodeResult("Speed", 3)).in_multistate(OneNodeHistory("Speed", 3));
  Opened opened(model);
  ASSERT_EQ(opened.filer.GetNumExtVariables(), 4U);
  for (const ORVExtVar* handle : opened.filer.GetExtVariables()) {
    EXPECT_TRUE(handle->IsApplicable(1)) << handle->GetName();
    EXPECT_TRUE(handle->IsApplicable(2)) << handle->GetName();
  }
}

TEST_F(AssociationAgain, OfANameThatNothingHasTakesTheFormerDefinitionAway) {
  for (const bool grouped : {false, true}) {
    ForgedModel model;
    model.variable({.name = "Speed", .key = "S"}).in_state(1, OneNodeResult("Speed", 1));
    if (grouped) model.group("Speed", 1, {{"S", 1, 0}});
    Opened opened(model);
    ORVResult& result = *opened.filer.GetResultList(1).at(0);
    ASSERT_EQ(result.m_variable != nullptr, !grouped);
    ASSERT_EQ(result.m_variableGrp != nullptr, grouped);
    std::strcpy(result.m_etypvar, "Gone");
    std::vector<ORVResult*> results = {&result};
    EXPECT_EQ(opened.filer.AssociateVariables(results, opened.next_id, 1), 0);
    EXPECT_EQ(result.m_variable, nullptr);
    EXPECT_EQ(result.m_variableGrp, nullptr);
    EXPECT_EQ(opened.filer.GetNumExtVariables(), 1U);
  }
}

TEST_F(AssociationAgain, OfAGroupWithoutCountsOrOffsetsMakesNoHandles) {
  for (int* ORVVariableGrp::*array : {&ORVVariableGrp::m_pCnt, &ORVVariableGrp::m_pOffs}) {
    ForgedModel model;
    model.variable({.name = "A", .key = "A"}).group("G", 1, {{"A", 1, 0}}).in_state(1, OneNodeResult("G", 1));
    Opened opened(model);
    ORVVariableGrp& group = *opened.filer.GetVariableGroup("G");
    ORVVariable& variable = *opened.filer.GetVariable("A");
    variable.ClearExtVariables();
    int* const kept = std::exchange(group.*array, nullptr);
    std::vector<ORVResult*> results = opened.filer.GetResultList(1);
    EXPECT_EQ(opened.filer.AssociateVariables(results, opened.next_id, 1), 0);
    EXPECT_EQ(results.at(0)->m_variableGrp, &group);
    EXPECT_EQ(variable.GetNumExtVar(), 0U);
    group.*array = kept;
  }
}

TEST_F(AssociationAgain, InTheSplitLayoutWithoutStoredNamesLeavesTheNamesEmpty) {
  ForgedModel model(ForgedModel::kSplit);
  model.variable({.name = "SPEED", .ncoo = 2, .labels = {"u", "v"}}).in_state(1, OneNodeResult("SPEED", 2));
  Opened opened(model);
  ORVVariable& speed = *opened.filer.GetVariable("SPEED");
  speed.ClearExtVariables();
  char* const kept = std::exchange(speed.m_pCname, nullptr);
  std::vector<ORVResult*> results = opened.filer.GetResultList(1);
  EXPECT_EQ(opened.filer.AssociateVariables(results, opened.next_id, 1), 0);
  EXPECT_THAT(NamesOf(speed.GetExtVariables()), ElementsAre("", ""));
  speed.m_pCname = kept;
}

/// Whether the handles of a variable fit another group is told by the first of them.
TEST_F(AssociationAgain, DoesNotCopyAVariableWhoseFirstHandleIsComputed) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}});
  model.group("G", 3, {{"S", 3, 0}}).group("H", 6, {{"S", 3, 3}}).in_state(1, OneNodeResult("G", 3));
  Opened opened(model);
  std::vector<ORVExtVar*>& handles = opened.filer.GetVariable("Speed")->GetExtVariables();
  ASSERT_EQ(handles.size(), 4U);
  std::swap(handles.front(), handles.back());
  ORVResult& result = *opened.filer.GetResultList(1).at(0);
  std::strcpy(result.m_etypvar, "H");
  result.m_ncoo = 6;
  std::vector<ORVResult*> results = {&result};
  EXPECT_EQ(opened.filer.AssociateVariables(results, opened.next_id, 1), 0);
  EXPECT_EQ(opened.filer.GetVariables().size(), 1U);
  std::swap(handles.front(), handles.back());
  EXPECT_EQ(opened.filer.AssociateVariables(results, opened.next_id, 1), 0);
  EXPECT_EQ(opened.filer.GetVariables().size(), 2U);
}

TEST_F(AssociationAgain, InAnotherOrderGivesOtherNamesToComponentsWithoutLabels) {
  ForgedModel model;
  model.variable({.name = "Other", .key = "O"}).variable({.name = "Speed", .key = "S", .ncoo = 2});
  model.in_state(1, OneNodeResult("Other", 1)).in_state(1, OneNodeResult("Speed", 2));
  Opened opened(model);
  ORVVariable& speed = *opened.filer.GetVariable("Speed");
  EXPECT_THAT(NamesOf(speed.GetExtVariables()), ElementsAre("Speed_2", "Speed_3"));
  for (ORVVariable* variable : opened.filer.GetVariables()) variable->ClearExtVariables();
  std::vector<ORVResult*> results(opened.filer.GetResultList(1).rbegin(), opened.filer.GetResultList(1).rend());
  int next_id = 1;
  EXPECT_EQ(opened.filer.AssociateVariables(results, next_id, 1), 0);
  EXPECT_THAT(NamesOf(speed.GetExtVariables()), ElementsAre("Speed_1", "Speed_2"));
}

TEST_F(AssociationAgain, MakesHandlesForTheLow32BitsOfTheOriginalCount) {
  ForgedModel model;
  model.variable({.name = "Other", .key = "O"});
  model.variable({.name = "Speed", .key = "S", .ncoo = 3, .labels = {"X", "Y", "Z"}})
      .in_state(1, OneNodeResult("Other", 1));
  Opened opened(model);
  ORVVariable& speed = *opened.filer.GetVariable("Speed");
  ORVResult& result = *opened.filer.GetResultList(1).at(0);
  speed.SetOriginalCount((std::uint64_t{1} << 32) + 2);
  std::strcpy(result.m_etypvar, "Speed");
  std::vector<ORVResult*> results = {&result};
  EXPECT_EQ(opened.filer.AssociateVariables(results, opened.next_id, 1), 0);
  EXPECT_EQ(result.m_variable, &speed);
  EXPECT_THAT(NamesOf(speed.GetExtVariables()), ElementsAre("Speed_X", "Speed_Y"));
}

/// A small file can list one large variable thousands of times. Each copy would have tables of its own.
TEST_F(AssociationAgain, CopiesNoMoreThanAMillionComponents) {
  constexpr int kMany = 262143;  // four times this are just below
  ForgedModel model;
  model.variable({.name = "Large", .key = "L", .ncoo = kMany});
  model.group("G", kMany, {{"L", kMany, 0}});
  model.group("H", kMany, {{"L", 1, 1}, {"L", 1, 1}, {"L", 1, 1}, {"L", 1, 1}, {"L", 1, 1}, {"L", 1, 1}});
  model.in_state(1, OneNodeResult("G", kMany)).in_state(1, OneNodeResult("H", kMany));
  Opened opened(model);
  EXPECT_EQ(opened.filer.GetVariables().size(), 5U);
  const std::vector<ORVVariable*>& members = opened.filer.GetVariableGroup("H")->GetVariables();
  ASSERT_EQ(members.size(), 6U);
  EXPECT_NE(members[3], opened.filer.GetVariables()[0]);
  EXPECT_EQ(members[4], opened.filer.GetVariables()[0]);  // this place shares the variable of the other group
}

}  // namespace
