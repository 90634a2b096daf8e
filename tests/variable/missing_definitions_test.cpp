// Definitions that are made for what a file lacks, and the prefix that variable keys have in common.

#include "variable/missing_definitions.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "orvio/orv_result.h"
#include "support/messages.h"
#include "support/orv_test.h"
#include "variable/forged_variable.h"
#include "variable/key_prefix.h"
#include "variable/variable_buffers.h"
#include "variable/variable_group_discovery.h"

namespace {

using orv_test::Message;
using orv_test::Messages;
using orv_test::SetText;

class MissingDefinitions : public orv_test::OrvTest {};

TEST_F(MissingDefinitions, OfAResultAreAVariableOfItsNameToWhichItIsBound) {
  Messages messages;
  ORVResult result(ORV_RESULT_ENTITY);
  result.SetEntityAndVarName("NODE", "Speed");
  result.m_ncoo = 2;
  const auto variable = orvio::CreateVariableForResult(result);
  ASSERT_NE(variable, nullptr);
  EXPECT_EQ(result.m_variable, variable.get());
  EXPECT_STREQ(variable->m_varnam, "Speed");
  EXPECT_STREQ(variable->m_varkey, "Speed");
  EXPECT_EQ(variable->m_ncoo, 2);
  EXPECT_EQ(variable->GetOriginalCount(), 2U);
  EXPECT_STREQ(variable->m_pCname, "Speed (1)");
  EXPECT_STREQ(variable->m_pCname + 256, "Speed (2)");
  EXPECT_EQ(variable->m_pCid[0], 1);
  EXPECT_EQ(variable->m_pCid[1], 2);
  EXPECT_THAT(messages.all(),
              testing::ElementsAre(Message(1, "New variable type \"Speed\" created for entity type \"NODE\"")));
  orvio::FreeBuffers(*variable);
}

TEST_F(MissingDefinitions, OfAResultOfOneComponentNameItAsTheVariable) {
  ORVResult result(ORV_RESULT_ENTITY);
  result.SetEntityAndVarName("NODE", "Heat");
  result.m_ncoo = 1;
  const auto variable = orvio::CreateVariableForResult(result);
  ASSERT_NE(variable, nullptr);
  EXPECT_STREQ(variable->m_pCname, "Heat");
  orvio::FreeBuffers(*variable);
}

TEST_F(MissingDefinitions, OfAResultOfALongNameCutItForTheNumberOnly) {
  for (const std::size_t length : {251, 252, 256}) {
    ORVResult result(ORV_RESULT_ENTITY);
    result.SetEntityAndVarName("NODE", std::string(length, 'n'));
    result.m_ncoo = 2;
    const auto variable = orvio::CreateVariableForResult(result);
    ASSERT_NE(variable, nullptr);
    EXPECT_EQ(std::string(variable->m_pCname + 256), std::string(251, 'n') + " (2)") << length;
    orvio::FreeBuffers(*variable);
  }
}

TEST_F(MissingDefinitions, OfWhatHasNoComponentsAreNone) {
  ORVResult result(ORV_RESULT_ENTITY);
  EXPECT_EQ(orvio::CreateVariableForResult(result), nullptr);
  result.m_ncoo = -1;
  EXPECT_EQ(orvio::CreateVariableForResult(result), nullptr);
  EXPECT_EQ(result.m_variable, nullptr);
  ORVVariable variable;
  EXPECT_EQ(orvio::CreateGroupForVariable(variable), nullptr);
}

TEST_F(MissingDefinitions, OfAVariableAreAGroupThatHoldsIt) {
  Messages messages;
  ORVVariable variable;
  SetText(variable.m_varnam, "Speed");
  SetText(variable.m_varkey, "ZPS:S");
  variable.m_ncoo = 3;
  variable.SetOriginalCount(3);
  const auto group = orvio::CreateGroupForVariable(variable);
  ASSERT_NE(group, nullptr);
  EXPECT_STREQ(group->m_grpName, "ZPS:S");
  EXPECT_EQ(group->m_nvar, 1);
  EXPECT_EQ(group->m_ncoo, 3);
  EXPECT_EQ(group->m_pCnt[0], 3);
  EXPECT_EQ(group->m_pOffs[0], 0);
  EXPECT_STREQ(group->m_pKeys, "ZPS:S");
  EXPECT_THAT(group->m_variables, testing::ElementsAre(&variable));
  EXPECT_THAT(messages.all(), testing::ElementsAre(Message(1, "New variable Group \"ZPS:S\" created")));
  orvio::FreeBuffers(*group);
}

TEST_F(MissingDefinitions, OfAVariableWithoutAKeyAreAGroupOfItsNameAndItsOriginalCount) {
  ORVVariable variable;
  SetText(variable.m_varnam, "Speed");
  variable.m_ncoo = 3;
  variable.SetOriginalCount(2);
  const auto group = orvio::CreateGroupForVariable(variable);
  ASSERT_NE(group, nullptr);
  EXPECT_STREQ(group->m_grpName, "Speed");
  EXPECT_STREQ(group->m_pKeys, "Speed");
  EXPECT_EQ(group->m_ncoo, 2);
  EXPECT_EQ(group->m_pCnt[0], 2);
  orvio::FreeBuffers(*group);
}

// ---- Prefix

class KeyPrefix : public orv_test::OrvTest {
 protected:
  /// A result of a variable.
  void Add(const char* name, const char* key) {
    auto variable = std::make_unique<ORVVariable>();
    SetText(variable->m_varnam, name);
    SetText(variable->m_varkey, key);
    auto result = std::make_unique<ORVResult>(ORV_RESULT_ENTITY);
    result->m_variable = variable.get();
    list_.push_back(result.get());
    variables_.push_back(std::move(variable));
    results_.push_back(std::move(result));
  }

  std::vector<ORVResult*> list_;
  std::vector<std::unique_ptr<ORVVariable>> variables_;
  std::vector<std::unique_ptr<ORVResult>> results_;
};

TEST_F(KeyPrefix, IsThatOfTheFirstResultWhoseKeyHasOne) {
  Add("COORDINATE", "");
  Add("Speed", "ZPS:S");
  std::string prefix = "before";
  EXPECT_EQ(orvio::FindVariableKeyPrefix(list_, prefix), 0);
  EXPECT_EQ(prefix, "ZPS");
}

TEST_F(KeyPrefix, IsLookedForPastDisplacementsAndCoordinatesOnly) {
  Add("DISPLACEMENTS_NOD", "");
  Add("Translational_Displacement", "");
  Add("COORDINATE", "");
  Add("Heat", "H");
  Add("Speed", "ZPS:S");
  std::string prefix = "before";
  EXPECT_EQ(orvio::FindVariableKeyPrefix(list_, prefix), 1);
  EXPECT_EQ(prefix, "before");
}

TEST_F(KeyPrefix, IsLookedForPastEachOfTheThreeNames) {
  for (const char* name : {"DISPLACEMENTS_NOD", "translational_displacement", "COORDINATE"}) {
    list_.clear();
    Add(name, "");
    Add("Speed", "ZPS:S");
    std::string prefix;
    EXPECT_EQ(orvio::FindVariableKeyPrefix(list_, prefix), 0) << name;
    EXPECT_EQ(prefix, "ZPS");
  }
}

TEST_F(KeyPrefix, OfAResultWithAGroupIsThatOfTheGroup) {
  Add("Speed", "ZPS:S");
  ORVVariableGrp group;
  group.AppendVariable(list_[0]->m_variable);
  ORVResult result(ORV_RESULT_ENTITY);
  result.m_variableGrp = &group;
  std::string prefix;
  EXPECT_EQ(orvio::FindVariableKeyPrefix({&result}, prefix), 0);
  EXPECT_EQ(prefix, "ZPS");
}

TEST_F(KeyPrefix, IsNotLookedForPastAResultWithoutADefinition) {
  ORVResult result(ORV_RESULT_ENTITY);
  result.SetEntityAndVarName("NODE", "COORDINATE");  // which is in no definition
  list_.push_back(&result);
  Add("Speed", "ZPS:S");
  std::string prefix = "before";
  EXPECT_EQ(orvio::FindVariableKeyPrefix(list_, prefix), 1);
  EXPECT_EQ(prefix, "before");
}

TEST_F(KeyPrefix, OfNoResultsIsNone) {
  std::string prefix = "before";
  EXPECT_EQ(orvio::FindVariableKeyPrefix({}, prefix), 1);
  EXPECT_EQ(prefix, "before");
}

}  // namespace
