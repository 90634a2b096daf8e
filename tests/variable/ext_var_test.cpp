// Handles of components and their dependents. How a variable looks them up is in variable_handles_test.

#include <gtest/gtest.h>

#include <vector>

#include "orvio/orv_ext_var.h"
#include "orvio/orv_unit.h"
#include "variable/forged_variable.h"

namespace {

using orv_test::SetText;

class ExtVar : public orv_test::OrvTest {};

TEST_F(ExtVar, StartsAsAComputedOneWithoutIds) {
  ORVExtVar handle;
  EXPECT_EQ(handle.GetIID(), 0);
  EXPECT_EQ(handle.GetEID(), 0);
  EXPECT_EQ(handle.GeIndex(), -1);
  EXPECT_EQ(handle.GetType(), 0);
  EXPECT_FALSE(handle.IsApplicable(~0));
  EXPECT_EQ(handle.GetName(), "");
  EXPECT_TRUE(handle.GetDependent().empty());
  EXPECT_EQ(handle.GetUnit(), nullptr);
}

TEST_F(ExtVar, GivesBothIdsAtOnce) {
  ORVExtVar handle;
  handle.SetIID(4);
  handle.SetEID(9);
  int eid = 0;
  EXPECT_EQ(handle.GetID(eid), 4);
  EXPECT_EQ(eid, 9);
}

TEST_F(ExtVar, ApplicabilityOnlyGrows) {
  ORVExtVar handle;
  handle.SetApplicable(1);
  EXPECT_TRUE(handle.IsApplicable(1));
  EXPECT_FALSE(handle.IsApplicable(2));
  handle.SetApplicable(2);
  handle.SetApplicable(0);
  EXPECT_TRUE(handle.IsApplicable(1));
  EXPECT_TRUE(handle.IsApplicable(2));
  EXPECT_TRUE(handle.IsApplicable(3));
}

TEST_F(ExtVar, TakesNamesOfEitherKind) {
  ORVExtVar handle;
  handle.SetName("one");
  EXPECT_EQ(handle.GetName(), "one");
  handle.SetName(std::string("two"));
  EXPECT_EQ(handle.GetName(), "two");
  handle.SetName(static_cast<const char*>(nullptr));
  EXPECT_EQ(handle.GetName(), "two");
}

TEST_F(ExtVar, IgnoresANullDependent) {
  ORVExtVar handle;
  handle.Append(nullptr);
  EXPECT_TRUE(handle.GetDependent().empty());
}

TEST_F(ExtVar, CopiesAllButTheUnit) {
  ORVVariable variable;
  ORVUnit unit, other_unit;
  ORVExtVar source;
  source.SetIID(1);
  source.SetEID(2);
  source.m_index = 3;
  source.SetType(56);
  source.SetApplicable(2);
  source.SetName("name");
  source.SetUnit(&unit);
  source.Append(new ORVDependentVar{&variable, {5, 6}});
  ORVExtVar copy;
  copy.SetApplicable(1);
  copy.SetUnit(&other_unit);
  copy.Append(new ORVDependentVar{nullptr, {7}});
  copy.Append(new ORVDependentVar{nullptr, {8}});
  source.CopyObject(copy);
  EXPECT_EQ(copy.GetIID(), 1);
  EXPECT_EQ(copy.GetEID(), 2);
  EXPECT_EQ(copy.GeIndex(), 3);
  EXPECT_EQ(copy.GetType(), 56);
  EXPECT_TRUE(copy.IsApplicable(2));
  EXPECT_FALSE(copy.IsApplicable(1));
  EXPECT_EQ(copy.GetName(), "name");
  EXPECT_EQ(copy.GetUnit(), &other_unit);
  ASSERT_EQ(copy.GetDependent().size(), 1U);
  EXPECT_NE(copy.GetDependent()[0], source.GetDependent()[0]);
  EXPECT_EQ(copy.GetDependent()[0]->GetVariable(), &variable);
  EXPECT_EQ(copy.GetDependent()[0]->m_iids, (std::vector<int>{5, 6}));
}

TEST_F(ExtVar, CopiedOntoItselfStaysAsItIs) {
  ORVExtVar handle;
  auto* dependent = new ORVDependentVar{nullptr, {5}};
  handle.Append(dependent);
  handle.CopyObject(handle);
  EXPECT_EQ(handle.GetDependent(), std::vector<ORVDependentVar*>{dependent});
}

TEST_F(ExtVar, ListsTheExternalIdsOfItsInputs) {
  ORVExtVar first, second, third;
  first.SetIID(1);
  first.SetEID(101);
  second.SetIID(2);
  third.SetIID(3);
  third.SetEID(103);
  ORVVariable variable;
  for (ORVExtVar* handle : {&first, &second, &third}) variable.AppendExtVar(handle);
  ORVExtVar computed;
  computed.Append(new ORVDependentVar{&variable, {3, 2, 1, 99}});
  computed.Append(new ORVDependentVar{nullptr, {1}});
  computed.Append(new ORVDependentVar{&variable, {1}});
  std::vector<int> eids = {7};
  computed.GetDependentEID(eids);
  EXPECT_EQ(eids, (std::vector<int>{7, 103, 101, 101}));
}

TEST_F(ExtVar, KnowsTheIdentitiesOfItsInputs) {
  ORVVariable named, keyed;
  SetText(named.m_varnam, "Named");
  SetText(keyed.m_varnam, "Name");
  SetText(keyed.m_varkey, "Key");
  ORVExtVar handle;
  EXPECT_FALSE(handle.HasDependentVarKeyOrName("Named"));
  handle.Append(new ORVDependentVar);
  handle.Append(new ORVDependentVar{&named, {}});
  handle.Append(new ORVDependentVar{&keyed, {}});
  EXPECT_TRUE(handle.HasDependentVarKeyOrName("NAMED"));
  EXPECT_TRUE(handle.HasDependentVarKeyOrName("key"));
  EXPECT_FALSE(handle.HasDependentVarKeyOrName("Name"));
  EXPECT_FALSE(handle.HasDependentVarKeyOrName(nullptr));
}

}  // namespace
