// The binding of results to variables and groups, and the handles that their components get. Which measures a shape has
// is in computed_measures_test; the order of the start-up in tests/filer.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "orvio/orv_filer.h"
#include "support/forged_model.h"
#include "support/messages.h"
#include "support/one_node_results.h"
#include "support/orv_test.h"

namespace {

using orv_test::ForgedModel;
using orv_test::ForgedValues;
using orv_test::Message;
using orv_test::Messages;
using orv_test::NamesOf;
using orv_test::OneNodeHistory;
using orv_test::OneNodeResult;
using testing::ElementsAre;

std::vector<int> IndexesOf(const std::vector<ORVExtVar*>& handles) {
  std::vector<int> indexes;
  for (const ORVExtVar* handle : handles) indexes.push_back(handle->GeIndex());
  return indexes;
}

/// A filer after its start-up, and what it told on the way.
struct Opened {
  explicit Opened(ForgedModel& model) : filer(model.path().c_str()) {
    Messages received;
    status = filer.InitReader(next_id);
    messages = received.all();
  }

  ORVFiler filer;
  int next_id = 1;
  int status = -1;
  std::vector<Message> messages;
};

class Association : public orv_test::OrvTest {};

TEST_F(Association, BindsAResultToTheFirstVariableOfItsNameWhateverTheCase) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "A"}).variable({.name = "SPEED", .key = "B"});
  model.in_state(1, OneNodeResult("speed", 1));
  Opened opened(model);
  ASSERT_EQ(opened.status, 0);
  const ORVResult* result = opened.filer.GetResultList(1).at(0);
  EXPECT_EQ(result->m_variable, opened.filer.GetVariables().at(0));
  EXPECT_EQ(result->m_variableGrp, nullptr);
}

TEST_F(Association, BindsAResultToTheFirstGroupOfItsNameWhateverTheCase) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S"});
  model.group("LOADS", 1, {{"S", 1, 0}}).group("Loads", 1, {{"S", 1, 0}}).in_state(1, OneNodeResult("loads", 1));
  Opened opened(model);
  ASSERT_EQ(opened.status, 0);
  ASSERT_EQ(opened.filer.GetVariableGroups().size(), 2U);
  const ORVResult* result = opened.filer.GetResultList(1).at(0);
  EXPECT_EQ(result->m_variableGrp, opened.filer.GetVariableGroups()[0]);
  EXPECT_EQ(result->m_variable, nullptr);
}

TEST_F(Association, ToldOfAMissingVariableLeavesTheResultWithoutHandles) {
  ForgedModel model;
  model.variable({.name = "Speed"}).variable({.name = "Other", .key = "O"}).in_state(1, OneNodeResult("Force", 1));
  Opened opened(model);
  ASSERT_EQ(opened.status, 0);
  EXPECT_EQ(opened.filer.GetResultList(1).at(0)->m_variable, nullptr);
  EXPECT_EQ(opened.filer.GetNumExtVariables(), 0U);
  EXPECT_THAT(opened.messages,
              testing::Contains(Message(1, "Missing Variable definition \"Force\" for \"NODE\" type")));
}

TEST_F(Association, WithGroupsInTheFileDoesNotSearchTheVariables) {
  ForgedModel model;
  for (int i = 0; i < 20; ++i) model.variable({.name = "V" + std::to_string(i), .key = "K" + std::to_string(i)});
  model.group("G", 1, {{"K0", 1, 0}}).in_state(1, OneNodeResult("V3", 1));
  Opened opened(model);
  ASSERT_EQ(opened.status, 0);
  const ORVResult* result = opened.filer.GetResultList(1).at(0);
  EXPECT_EQ(result->m_variable, nullptr);
  EXPECT_EQ(result->m_variableGrp, nullptr);
  EXPECT_EQ(opened.filer.GetNumExtVariables(), 0U);
  EXPECT_THAT(opened.messages,
              testing::Contains(Message(1, "Missing Variable group definition \"V3\" for \"NODE\" type")));
}

TEST_F(Association, TellsOfOtherCountsInResultAndGroupAndGoesByTheGroup) {
  ForgedModel model;
  model.variable({.name = "Stress", .key = "S", .ncoo = 6, .labels = {"a", "b", "c", "d", "e", "f"}});
  model.group("G", 6, {{"S", 6, 0}}).in_state(1, OneNodeResult("G", 5));
  Opened opened(model);
  ASSERT_EQ(opened.status, 0);
  const Message mismatch(1,
                         "Mis-match between result and variable group block component count for \"G\" \n\t Result "
                         "component count : 5, Variable Group component count : 6");
  EXPECT_THAT(opened.messages, testing::Contains(mismatch).Times(1));
  EXPECT_EQ(opened.filer.GetNumExtVariables(), 6U);
}

TEST_F(Association, OfASecondResultAddsItsApplicabilityOnly) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S"}).in_state(1, OneNodeResult("Speed", 1));
  model.in_multistate(OneNodeHistory("Speed", 1));
  Opened opened(model);
  ASSERT_EQ(opened.filer.GetNumExtVariables(), 1U);
  EXPECT_TRUE(opened.filer.GetExtVariables()[0]->IsApplicable(1));
  EXPECT_TRUE(opened.filer.GetExtVariables()[0]->IsApplicable(2));
}

TEST_F(Association, MarksHandlesWithTheListThatTheyServe) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S"}).variable({.name = "Force", .key = "F"});
  model.in_state(1, OneNodeResult("Speed", 1));
  model.in_multistate(OneNodeHistory("Force", 1));
  Opened opened(model);
  ASSERT_EQ(opened.filer.GetNumExtVariables(), 2U);
  EXPECT_FALSE(opened.filer.GetExtVariable("Speed")->IsApplicable(2));
  EXPECT_FALSE(opened.filer.GetExtVariable("Force")->IsApplicable(1));
}

TEST_F(Association, CountsInternalIdsFromTheCallersCounter) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}});
  model.in_state(1, OneNodeResult("Speed", 3));
  ORVFiler filer(model.path().c_str());
  int next_id = 40;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_EQ(next_id, 44);
  EXPECT_EQ(filer.GetExtVariables().at(0)->GetIID(), 40);
  EXPECT_EQ(filer.GetExtVariables().at(3)->GetIID(), 43);
  EXPECT_EQ(filer.GetExtVariables().at(0)->GetEID(), 0);
  EXPECT_EQ(filer.GetExtVariables().at(0)->GetType(), 0);
}

TEST_F(Association, StopsMakingHandlesWhereTheIdsEnd) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S", .ncoo = 3, .labels = {"X", "Y", "Z"}})
      .in_state(1, OneNodeResult("Speed", 3));
  ORVFiler filer(model.path().c_str());
  int next_id = INT_MAX - 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_EQ(next_id, INT_MAX);
  EXPECT_EQ(filer.GetNumExtVariables(), 1U);
}

TEST_F(Association, PassesOverNullResults) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S"}).in_state(1, OneNodeResult("Speed", 1));
  Opened opened(model);
  std::vector<ORVResult*> results = {nullptr, opened.filer.GetResultList(1).at(0)};
  int next_id = 9;
  EXPECT_EQ(opened.filer.AssociateVariables(results, next_id, 2), 0);
  EXPECT_EQ(next_id, 9);
  EXPECT_TRUE(opened.filer.GetExtVariables()[0]->IsApplicable(2));
}

TEST_F(Association, OfNothingMakesNothing) {
  ORVFiler filer("a.orv");
  std::vector<ORVResult*> none;
  int next_id = 5;
  EXPECT_EQ(filer.AssociateVariables(none, next_id, 1), 0);
  EXPECT_EQ(next_id, 5);
}

// ---- Names

TEST_F(Association, NamesComponentsByVariableAndLabel) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Zed"}});
  model.in_state(1, OneNodeResult("Speed", 3));
  Opened opened(model);
  EXPECT_THAT(NamesOf(opened.filer.GetExtVariables()),
              ElementsAre("Speed_X", "Speed_Y", "Speed_Zed", "Speed_Magnitude"));
  EXPECT_THAT(IndexesOf(opened.filer.GetExtVariables()), ElementsAre(0, 1, 2, -1));
}

TEST_F(Association, NamesComponentsWithoutLabelsByTheirInternalIds) {
  ForgedModel model;
  model.variable({.name = "Other", .key = "O"}).variable({.name = "Speed", .key = "S", .ncoo = 3});
  model.in_state(1, OneNodeResult("Other", 1)).in_state(1, OneNodeResult("Speed", 3));
  Opened opened(model);
  EXPECT_THAT(NamesOf(opened.filer.GetExtVariables()), ElementsAre("Other", "Speed_2", "Speed_3", "Speed_4"));
}

TEST_F(Association, NamesComponentsOfTheSplitLayoutByTheirStoredNames) {
  ForgedModel model(ForgedModel::kSplit);
  model.variable({.name = "SPEED", .ncoo = 2, .labels = {"along x", "along y"}}).in_state(1, OneNodeResult("SPEED", 2));
  Opened opened(model);
  EXPECT_THAT(NamesOf(opened.filer.GetExtVariables()), ElementsAre("along x", "along y"));
}

TEST_F(Association, OfALabelWithoutLengthGivesANameThatEndsInAnUnderscore) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S", .ncoo = 2, .labels = {"X", ""}}).in_state(1, OneNodeResult("Speed", 2));
  Opened opened(model);
  EXPECT_THAT(NamesOf(opened.filer.GetExtVariables()), ElementsAre("Speed_X", "Speed_"));
}

TEST_F(Association, ReportsANegativeLabelLengthOnceAndGoesOnWithoutLabels) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S", .ncoo = 2}).file().integer32("subslen", -4);
  model.in_state(1, OneNodeResult("Speed", 2));
  Opened opened(model);
  EXPECT_THAT(NamesOf(opened.filer.GetExtVariables()), ElementsAre("Speed_1", "Speed_2"));
  EXPECT_THAT(opened.messages,
              testing::Contains(Message(0, "Invalid substring count(-4) \"Speed\" variable type at index 0")).Times(1));
  EXPECT_EQ(opened.filer.GetVariables()[0]->m_subslen, 0);
}

struct LabelPlace {
  int offset, length;
};
class LabelOutside : public orv_test::OrvTest, public testing::WithParamInterface<LabelPlace> {};

TEST_P(LabelOutside, IsReportedAndReplacedByTheNumberOfTheComponent) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S", .ncoo = 2, .labels = {"X", "Y"}})
      .file()
      .dataset<std::int32_t>("subsoffs", {2}, {0, GetParam().offset});
  model.file().dataset<std::int32_t>("subscnt", {2}, {1, GetParam().length});
  model.in_state(1, OneNodeResult("Speed", 2));
  Opened opened(model);
  EXPECT_THAT(NamesOf(opened.filer.GetExtVariables()), ElementsAre("Speed_X", "Speed_2"));
  EXPECT_THAT(opened.messages,
              testing::Contains(
                  Message(1, "The count for substring exceed total length for \"Speed\" variable type at index 1")));
}

INSTANTIATE_TEST_SUITE_P(Places, LabelOutside,
                         testing::Values(LabelPlace{1, 2}, LabelPlace{2, 1}, LabelPlace{-1, 1}, LabelPlace{1, -1},
                                         LabelPlace{INT_MAX, INT_MAX}));

TEST_F(Association, CutsALabelAt511Bytes) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S", .labels = {std::string(600, 'x')}})
      .in_state(1, OneNodeResult("Speed", 1));
  Opened opened(model);
  EXPECT_THAT(NamesOf(opened.filer.GetExtVariables()), ElementsAre("Speed_" + std::string(511, 'x')));
}

// ---- Groups

/// Two variables of three components, and groups that hold them in one order and in the other.
ForgedModel TwoVectors() {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}});
  model.variable({.name = "Force", .key = "F", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}});
  model.group("G", 6, {{"S", 3, 0}, {"F", 3, 3}});
  return model;
}

TEST_F(Association, OfAGroupPlacesTheComponentsOfItsVariablesAtTheirOffsets) {
  ForgedModel model = TwoVectors();
  model.in_state(1, OneNodeResult("G", 6));
  Opened opened(model);
  ASSERT_EQ(opened.status, 0);
  const ORVResult* result = opened.filer.GetResultList(1).at(0);
  EXPECT_EQ(result->m_variable, nullptr);
  ASSERT_EQ(result->m_variableGrp, opened.filer.GetVariableGroup("g"));
  EXPECT_THAT(NamesOf(opened.filer.GetExtVariables()), ElementsAre("Speed_X", "Speed_Y", "Speed_Z", "Speed_Magnitude",
                                                                   "Force_X", "Force_Y", "Force_Z", "Force_Magnitude"));
  EXPECT_THAT(IndexesOf(opened.filer.GetExtVariables()), ElementsAre(0, 1, 2, -1, 3, 4, 5, -1));
  for (const ORVExtVar* handle : opened.filer.GetExtVariables()) EXPECT_TRUE(handle->IsApplicable(1));
}

TEST_F(Association, OfAVectorAtAnOffsetOfAGroupMakesItsMagnitudeDependOnThePlacesThere) {
  ForgedModel model = TwoVectors();
  model.in_state(1, OneNodeResult("G", 6));
  Opened opened(model);
  const ORVExtVar* magnitude = opened.filer.GetExtVariable("Force_Magnitude");
  ASSERT_NE(magnitude, nullptr);
  ASSERT_EQ(magnitude->GetDependent().size(), 1U);
  EXPECT_EQ(magnitude->GetDependent()[0]->GetVariable(), opened.filer.GetVariable("Force"));
  EXPECT_THAT(magnitude->GetDependent()[0]->m_iids, ElementsAre(5, 6, 7));  // at 3, 4, 5; 4 is the other magnitude
}

TEST_F(Association, ClonesAVariableThatASecondGroupHoldsElsewhere) {
  ForgedModel model = TwoVectors();
  model.group("H", 6, {{"F", 3, 0}, {"S", 3, 3}});
  model.in_state(1, OneNodeResult("G", 6)).in_state(1, OneNodeResult("H", 6));
  Opened opened(model);
  ORVVariableGrp* first = opened.filer.GetVariableGroup("G");
  ORVVariableGrp* second = opened.filer.GetVariableGroup("H");
  ASSERT_EQ(opened.filer.GetVariables().size(), 4U);
  EXPECT_EQ(first->GetVariables()[0], opened.filer.GetVariable("Speed"));
  ASSERT_EQ(second->GetVariables().size(), 2U);
  EXPECT_EQ(second->GetVariables()[0], opened.filer.GetVariables()[2]);
  EXPECT_EQ(second->GetVariables()[1], opened.filer.GetVariables()[3]);
  EXPECT_STREQ(second->GetVariables()[1]->m_varkey, "S");
  EXPECT_THAT(IndexesOf(second->GetVariables()[1]->GetExtVariables()), ElementsAre(3, 4, 5, -1));
  EXPECT_THAT(NamesOf(second->GetVariables()[1]->GetExtVariables()),
              ElementsAre("Speed_X", "Speed_Y", "Speed_Z", "Speed_Magnitude"));
}

TEST_F(Association, DoesNotCloneForASecondResultOfTheSameGroup) {
  ForgedModel model = TwoVectors();
  model.in_state(1, OneNodeResult("G", 6));
  ForgedValues shells = OneNodeResult("G", 6);
  shells.etyp = "SHELL";
  model.in_state(1, shells);
  Opened opened(model);
  EXPECT_EQ(opened.filer.GetVariables().size(), 2U);
  EXPECT_EQ(opened.filer.GetNumExtVariables(), 8U);
}

TEST_F(Association, DoesNotCloneForAResultTooNarrowForTheVariable) {
  ForgedModel model = TwoVectors();
  model.group("H", 6, {{"F", 3, 0}, {"S", 3, 3}});
  model.in_state(1, OneNodeResult("G", 6)).in_state(1, OneNodeResult("H", 5));
  Opened opened(model);
  EXPECT_EQ(opened.filer.GetVariables().size(), 3U);  // Speed would end at 6; Force has room
}

TEST_F(Association, OfAGroupWithANegativeOffsetMakesNoHandlesForThatVariable) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S"}).variable({.name = "Force", .key = "F"});
  model.group("G", 2, {{"S", 1, -1}, {"F", 1, 1}}).in_state(1, OneNodeResult("G", 2));
  Opened opened(model);
  EXPECT_THAT(NamesOf(opened.filer.GetExtVariables()), ElementsAre("Force"));
}

// ---- Computed components

TEST_F(Association, MakesNoMeasureOfScalars) {
  ForgedModel model;
  model.variable({.name = "State", .key = "S", .ncoo = 6, .tensor = 0, .labels = {"a", "b", "c", "d", "e", "f"}});
  model.in_state(1, OneNodeResult("State", 6));
  Opened opened(model);
  EXPECT_EQ(opened.filer.GetNumExtVariables(), 6U);
}

TEST_F(Association, NamesMeasuresByTheNameOfTheVariableAndNotByItsKey) {
  ForgedModel model;
  model.variable({.name = "Stress",
                  .key = "ZPS:S",
                  .class_word = "CLASS_STRESS",
                  .ncoo = 6,
                  .rank = 2,
                  .tensor = 1,
                  .labels = {"XX", "YY", "ZZ", "XY", "YZ", "ZX"}});
  model.in_state(1, OneNodeResult("Stress", 6));
  Opened opened(model);
  const auto names = NamesOf(opened.filer.GetExtVariables());
  EXPECT_THAT(std::vector<std::string>(names.begin() + 6, names.end()),
              ElementsAre("Stress_Von Mises", "Stress_Tresca", "Stress_Pressure", "Stress_Mean", "Stress_First Princ.",
                          "Stress_Second Princ.", "Stress_Third Princ.", "Stress_Determinant"));
  const ORVExtVar* mises = opened.filer.GetExtVariable("stress_von mises");
  ASSERT_NE(mises, nullptr);
  EXPECT_EQ(mises->GetType(), 56);
  EXPECT_EQ(mises->GeIndex(), -1);
  EXPECT_THAT(mises->GetDependent().at(0)->m_iids, ElementsAre(1, 2, 3, 4, 5, 6));
}

ORVExtVarType* NoMeasures(void*, ORVFilerExtendComputedTypeCallBackData&) { return nullptr; }

TEST_F(Association, WithAHandlerThatAnswersNullMakesStoredHandlesOnly) {
  ForgedModel model = TwoVectors();
  model.in_state(1, OneNodeResult("G", 6));
  ORVFiler filer(model.path().c_str());
  filer.SetExtedComputedTypeCallBackHandler(NoMeasures);
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_EQ(filer.GetNumExtVariables(), 6U);
}

struct AskedFor {
  std::vector<std::string> variables;
  ORVFiler* filer = nullptr;
  ORVResult* result = nullptr;
  int reason = 0;
};

ORVExtVarType* OwnMeasures(void* client, ORVFilerExtendComputedTypeCallBackData& data) {
  static constexpr ORVExtVarEntry kEntries[] = {{900, 2, "Own"}, {901, 4, "Too many"}};
  static ORVExtVarType row = {ORV_VARTYPE_VECTOR, 2, kEntries};
  auto& asked = *static_cast<AskedFor*>(client);
  asked.variables.emplace_back(data.m_pVariable->m_varnam);
  asked.filer = data.m_pFiler;
  asked.result = data.m_pResult;
  asked.reason = data.m_reason;
  return &row;
}

TEST_F(Association, TakesTheMeasuresThatAHandlerAnswersAsFarAsTheComponentsSuffice) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}});
  model.variable({.name = "Heat", .key = "H"});
  model.in_state(1, OneNodeResult("Speed", 3)).in_state(1, OneNodeResult("Heat", 1));
  ORVFiler filer(model.path().c_str());
  AskedFor asked;
  EXPECT_EQ(filer.SetFilerCallBackClient(&asked), nullptr);
  filer.SetExtedComputedTypeCallBackHandler(OwnMeasures);
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(asked.variables, ElementsAre("Speed"));  // a scalar is not asked for
  EXPECT_EQ(asked.filer, &filer);
  EXPECT_EQ(asked.result, filer.GetResultList(1).at(1));
  EXPECT_EQ(asked.reason, 1);
  const ORVExtVar* own = filer.GetExtVariable("Speed_Own");
  ASSERT_NE(own, nullptr);
  EXPECT_EQ(own->GetType(), 900);
  EXPECT_EQ(own->GetDependent().at(0)->m_iids.size(), 2U);  // the fewest that suffice
  EXPECT_EQ(filer.GetExtVariable("Speed_Too many"), nullptr);
  EXPECT_EQ(filer.SetFilerCallBackClient(nullptr), &asked);
}

/// The last position that an index can have lies behind the second component.
TEST_F(Association, OfAVectorWithTwoStoredHandlesInReachMakesNoMagnitude) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}});
  model.group("G", 3, {{"S", 3, INT_MAX - 1}}).in_state(1, OneNodeResult("G", 3));
  Opened opened(model);
  EXPECT_THAT(NamesOf(opened.filer.GetExtVariables()), ElementsAre("Speed_X", "Speed_Y"));
  EXPECT_THAT(IndexesOf(opened.filer.GetExtVariables()), ElementsAre(INT_MAX - 1, INT_MAX));
}

TEST_F(Association, OfAStrainMakesNineMeasuresAndTheHandlerOfOneFamilySix) {
  for (const bool handler : {false, true}) {
    ForgedModel model;
    model.variable({.name = "Strain",
                    .key = "E",
                    .class_word = "CLASS_STRAIN",
                    .ncoo = 6,
                    .rank = 2,
                    .tensor = 1,
                    .labels = {"XX", "YY", "ZZ", "XY", "YZ", "ZX"}});
    model.in_state(1, OneNodeResult("Strain", 6));
    ORVFiler filer(model.path().c_str());
    if (handler) ORVSetCMXStressComputedType(&filer);
    int next_id = 1;
    ASSERT_EQ(filer.InitReader(next_id), 0);
    EXPECT_EQ(filer.GetNumExtVariables(), handler ? 12U : 15U);
    EXPECT_EQ(filer.GetExtVariables().back()->GetName(), handler ? "Strain_Tresca" : "Strain_Equivalent");
  }
}

// ---- Further odd definitions

TEST_F(Association, BehindAMissingKeyMakesHandlesAtTheOwnOffsetAndNoCopies) {
  ForgedModel model;
  model.variable({.name = "A", .key = "A"}).variable({.name = "C", .key = "C"});
  model.group("G", 3, {{"A", 1, 0}, {"GONE", 1, 1}, {"C", 1, 2}});
  for (const char* type : {"NODE", "SHELL", "SOLID", "BEAM"}) {
    ForgedValues result = OneNodeResult("G", 3);
    result.etyp = type;
    model.in_state(1, result);
  }
  Opened opened(model);
  EXPECT_EQ(opened.filer.GetVariables().size(), 2U);
  EXPECT_THAT(IndexesOf(opened.filer.GetExtVariables()), ElementsAre(0, 2));
}

TEST_F(Association, OfAGroupThatListsAKeyTwiceMakesHandlesAtTheFirstOffsetOnly) {
  ForgedModel model;
  model.variable({.name = "A", .key = "A"}).group("G", 2, {{"A", 1, 0}, {"A", 1, 1}});
  model.in_state(1, OneNodeResult("G", 2));
  ForgedValues shells = OneNodeResult("G", 2);
  shells.etyp = "SHELL";
  model.in_state(1, shells);
  Opened opened(model);
  EXPECT_EQ(opened.filer.GetVariables().size(), 1U);
  EXPECT_THAT(IndexesOf(opened.filer.GetExtVariables()), ElementsAre(0));
}

TEST_F(Association, InTheSplitLayoutAppendsALabelToTheStoredName) {
  ForgedModel model(ForgedModel::kSplit);
  model.variable({.name = "SPEED", .ncoo = 2, .labels = {"u", "v"}}).file().integer32("subslen", 3);
  model.file().at(model.Part("/post/constant/variables/SPEED", "data")).texts("subscr", 1, {3}, {"X", "Y", "Z"});
  model.file().dataset<std::int32_t>("subscnt", {2}, {1, 2}).dataset<std::int32_t>("subsoffs", {2}, {0, 1});
  model.in_state(1, OneNodeResult("SPEED", 2));
  Opened opened(model);
  EXPECT_THAT(NamesOf(opened.filer.GetExtVariables()), ElementsAre("u_X", "v_YZ"));
}

TEST_F(Association, InTheSplitLayoutWithANegativeLabelLengthAppendsNoId) {
  ForgedModel model(ForgedModel::kSplit);
  model.variable({.name = "SPEED", .ncoo = 2, .labels = {"u", "v"}});
  model.file().dataset<std::int32_t>("mbunit", {2}, {0, 0}).integer32("subslen", -4);
  model.in_state(1, OneNodeResult("SPEED", 2));
  Opened opened(model);
  EXPECT_THAT(NamesOf(opened.filer.GetExtVariables()), ElementsAre("u", "v"));
}

TEST_F(Association, WithoutAReceiverIsSilentAndTheSame) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S", .ncoo = 2, .labels = {"X", "Y"}});
  model.file().dataset<std::int32_t>("subsoffs", {2}, {0, 9});
  model.group("G", 2, {{"S", 2, 0}}).in_state(1, OneNodeResult("G", 5)).in_state(1, OneNodeResult("Unknown", 1));
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);  // the fixture looks for output
  EXPECT_THAT(NamesOf(filer.GetExtVariables()), ElementsAre("Speed_X", "Speed_2"));
}

}  // namespace
