// A variable's questions about the handles of its components. The handles themselves are in ext_var_test.

#include <gtest/gtest.h>

#include <climits>
#include <vector>

#include "orvio/orv_ext_var.h"
#include "orvio/orv_unit.h"
#include "variable/ext_var_search.h"
#include "variable/forged_variable.h"

namespace {

using orv_test::SetText;

/// A variable of three stored components and one computed measure.
class VariableHandles : public orv_test::OrvTest {
 protected:
  VariableHandles() {
    SetText(variable_.m_varnam, "Velocity");
    SetText(variable_.m_varkey, "KEY");
    variable_.m_ncoo = 3;
    Set(handles_[0], 10, 110, 0, 0, "Velocity_X");
    Set(handles_[1], 11, 111, 1, 0, "Velocity_Y");
    Set(handles_[2], 12, 0, 2, 0, "Velocity_Z");
    Set(handles_[3], 13, 113, -1, 50, "Velocity_Magnitude");
    for (ORVExtVar& handle : handles_) variable_.AppendExtVar(&handle);
  }

  static void Set(ORVExtVar& handle, int iid, int eid, int index, int type, const char* name) {
    handle.SetIID(iid);
    handle.SetEID(eid);
    handle.m_index = index;
    handle.SetType(type);
    handle.SetName(name);
  }

  ORVExtVar handles_[4];
  ORVVariable variable_;
};

using Ids = std::vector<int>;

TEST_F(VariableHandles, AreFoundByEitherId) {
  EXPECT_EQ(variable_.GetExtVarFrmId(11, true), &handles_[1]);
  EXPECT_EQ(variable_.GetExtVarFrmId(111, false), &handles_[1]);
  EXPECT_EQ(variable_.GetExtVarFrmId(11, false), nullptr);
  EXPECT_EQ(variable_.GetExtVarFrmId(111, true), nullptr);
  EXPECT_TRUE(variable_.IsExtVarAvailable(13, true));
  EXPECT_FALSE(variable_.IsExtVarAvailable(14, true));
}

TEST_F(VariableHandles, TranslateOneIdIntoTheOther) {
  EXPECT_EQ(variable_.GetExtVarId(10, true), 110);
  EXPECT_EQ(variable_.GetExtVarId(110, false), 10);
  EXPECT_EQ(variable_.GetExtVarId(12, true), 0);
  EXPECT_EQ(variable_.GetExtVarId(99, true), -1);
  EXPECT_EQ(variable_.GetExtVarId(99, false), -1);
}

TEST_F(VariableHandles, ListIdsAndTypesBehindWhatIsThere) {
  Ids eids = {1}, types = {2};
  variable_.GetExtVarTypesOrCompTypes(eids, types);
  EXPECT_EQ(eids, (Ids{1, 110, 111, 0, 113}));
  EXPECT_EQ(types, (Ids{2, 0, 0, 0, 50}));
}

TEST_F(VariableHandles, GiveWayToTheTablesOfAHost) {
  int eid[3] = {5, 6, 7}, type[3] = {72, 73, 74};
  variable_.m_pCompEid = eid;
  variable_.m_pCompType = type;
  Ids eids, types;
  variable_.GetExtVarTypesOrCompTypes(eids, types);
  EXPECT_EQ(eids, (Ids{5, 6, 7}));
  EXPECT_EQ(types, (Ids{72, 73, 74}));
}

TEST_F(VariableHandles, TellWhichIdsAndTypesThereAre) {
  EXPECT_TRUE(variable_.IsResultTypeAvailable(113));
  EXPECT_FALSE(variable_.IsResultTypeAvailable(13));
  EXPECT_TRUE(variable_.IsExtCompTypeAvailable(50));
  EXPECT_FALSE(variable_.IsExtCompTypeAvailable(51));
}

TEST_F(VariableHandles, WithoutAnyNoResultTypeIsAvailable) {
  variable_.ClearExtVariables();
  EXPECT_FALSE(variable_.IsResultTypeAvailable(0));
  EXPECT_FALSE(variable_.IsResultTypeAvailable(113));
}

TEST_F(VariableHandles, AreListedByType) {
  std::vector<ORVExtVar*> found = {nullptr};
  variable_.GetExtVarFrmExtendedType(0, found);
  EXPECT_EQ(found, (std::vector<ORVExtVar*>{nullptr, &handles_[0], &handles_[1], &handles_[2]}));
}

TEST_F(VariableHandles, AreFoundByIdentityAndType) {
  EXPECT_EQ(variable_.GetExtVarFrmKeyOrVariable("key", 50), &handles_[3]);
  EXPECT_EQ(variable_.GetExtVarFrmKeyOrVariable("key", 0), &handles_[0]);
  EXPECT_EQ(variable_.GetExtVarFrmKeyOrVariable("key", 51), nullptr);
  EXPECT_EQ(variable_.GetExtVarFrmKeyOrVariable("Velocity", 50), nullptr);
  EXPECT_EQ(variable_.GetExtVarFrmKeyOrVariable(nullptr, 50), nullptr);
}

TEST_F(VariableHandles, AreFoundByTheirNameInAnyCase) {
  EXPECT_EQ(variable_.GetExtVariableFrmCmp("VELOCITY_y"), &handles_[1]);
  EXPECT_EQ(variable_.GetExtVariableFrmCmp("Velocity"), nullptr);
  EXPECT_EQ(variable_.GetExtVariableFrmCmp(nullptr), nullptr);
}

TEST_F(VariableHandles, ListIdsByIdentity) {
  Ids ids = {1};
  EXPECT_EQ(variable_.GetIIDFromKeyOrVariable("KEY", ids, true), 0);
  EXPECT_EQ(ids, (Ids{1, 10, 11, 12, 13}));
  ids.clear();
  EXPECT_EQ(variable_.GetIIDFromKeyOrVariable("KEY", ids, false), 0);
  EXPECT_EQ(ids, (Ids{110, 111, 0, 113}));
  EXPECT_EQ(variable_.GetIIDFromKeyOrVariable("Velocity", ids, true), 1);
  variable_.ClearExtVariables();
  EXPECT_EQ(variable_.GetIIDFromKeyOrVariable("KEY", ids, true), 1);
  EXPECT_EQ(ids.size(), 4U);
}

TEST_F(VariableHandles, ListIdsByIndex) {
  Ids ids;
  variable_.GetIIDFromIndex({2, 5, 0, -1, 2}, ids);
  EXPECT_EQ(ids, (Ids{12, 10, 13, 12}));
}

TEST_F(VariableHandles, PositionIsThatOfAStoredComponent) {
  bool found = false;
  EXPECT_EQ(variable_.GetVariableIndex(&handles_[2], found), 2);
  EXPECT_TRUE(found);
  EXPECT_EQ(variable_.GetVariableIndex(&handles_[3], found), -1);
  EXPECT_TRUE(found);
  const ORVExtVar stranger;
  EXPECT_EQ(variable_.GetVariableIndex(&stranger, found), -1);
  EXPECT_FALSE(found);
  EXPECT_EQ(variable_.GetVariableIndex(nullptr, found), -1);
  EXPECT_FALSE(found);
}

TEST_F(VariableHandles, GiveTheUnitOfAComponent) {
  ORVUnit unit;
  handles_[1].SetUnit(&unit);
  EXPECT_EQ(variable_.GetUnitPtr(111), &unit);
  EXPECT_EQ(variable_.GetUnitPtr(110), nullptr);
  EXPECT_EQ(variable_.GetUnitPtr(99), nullptr);
}

TEST_F(VariableHandles, GiveWayToTheVariablesOwnUnits) {
  ORVUnit unit;
  handles_[1].SetUnit(&unit);
  auto* own = new ORVUnit;
  own->SetUnitId(110);
  variable_.m_units = {nullptr, own};
  EXPECT_EQ(variable_.GetUnitPtr(110), own);
  EXPECT_EQ(variable_.GetUnitPtr(111), nullptr);
}

TEST_F(VariableHandles, FillADependentInOrderOfThePositions) {
  handles_[0].m_index = 2;
  handles_[2].m_index = 0;
  ORVDependentVar dependent;
  EXPECT_EQ(variable_.FillDependentForVarGrp(dependent), 0);
  EXPECT_EQ(dependent.m_iids, (Ids{12, 11, 10}));
  EXPECT_EQ(dependent.GetVariable(), &variable_);
}

TEST_F(VariableHandles, FillADependentWithTheFirstHandleOfAPosition) {
  handles_[1].m_index = 0;
  ORVDependentVar dependent;
  EXPECT_EQ(variable_.FillDependentForVarGrp(dependent), 0);
  EXPECT_EQ(dependent.m_iids, (Ids{10, 12}));
}

TEST_F(VariableHandles, FillADependentFromPositionsBelowTheCountOnly) {
  variable_.m_ncoo = 1;
  ORVDependentVar dependent;
  EXPECT_EQ(variable_.FillDependentForVarGrp(dependent), 0);
  EXPECT_EQ(dependent.m_iids, Ids{10});
}

TEST_F(VariableHandles, FillNoDependentOfAVariableAtAnotherOffset) {
  for (int i = 0; i < 3; ++i) handles_[i].m_index = 3 + i;
  ORVDependentVar dependent;
  EXPECT_EQ(variable_.FillDependentForVarGrp(dependent), 1);
  EXPECT_TRUE(dependent.m_iids.empty());
  EXPECT_EQ(dependent.GetVariable(), nullptr);
}

TEST_F(VariableHandles, FillNoDependentWithoutComponents) {
  variable_.m_ncoo = 0;
  ORVDependentVar dependent;
  EXPECT_EQ(variable_.FillDependentForVarGrp(dependent), 1);
}

TEST_F(VariableHandles, FillADependentAtOnceWhateverTheCountIs) {
  variable_.m_ncoo = INT64_MAX;
  handles_[1].m_index = INT_MAX;
  ORVDependentVar dependent;
  EXPECT_EQ(variable_.FillDependentForVarGrp(dependent), 0);
  EXPECT_EQ(dependent.m_iids, (Ids{10, 12, 11}));
}

TEST_F(VariableHandles, AreListedAppendedAndForgotten) {
  std::vector<ORVExtVar*> list = {nullptr};
  variable_.GetExtVariables(list);
  EXPECT_EQ(list.size(), 5U);
  EXPECT_EQ(list[1], &handles_[0]);
  EXPECT_EQ(&variable_.GetExtVariables(), &variable_.m_extVars);
  variable_.AppendExtVar(nullptr);
  EXPECT_EQ(variable_.GetNumExtVar(), 4U);
  variable_.ClearExtVariables();
  EXPECT_EQ(variable_.GetNumExtVar(), 0U);
  EXPECT_EQ(handles_[0].GetIID(), 10);
}

TEST_F(VariableHandles, PassOverNullEntries) {
  variable_.m_extVars.insert(variable_.m_extVars.begin(), nullptr);
  Ids ids, types;
  ORVDependentVar dependent;
  std::vector<ORVExtVar*> found;
  EXPECT_EQ(variable_.GetExtVarFrmId(10, true), &handles_[0]);
  EXPECT_EQ(variable_.GetIIDFromKeyOrVariable("KEY", ids, true), 0);
  EXPECT_EQ(ids.size(), 4U);
  variable_.GetExtVarTypesOrCompTypes(ids, types);
  EXPECT_EQ(types.size(), 4U);
  EXPECT_EQ(variable_.FillDependentForVarGrp(dependent), 0);
  variable_.GetExtVarFrmExtendedType(50, found);
  EXPECT_EQ(found, std::vector<ORVExtVar*>{&handles_[3]});
}

TEST_F(VariableHandles, AreSearchedByFiveKeys) {
  using orvio::ExtVarKey;
  const auto& list = variable_.m_extVars;
  EXPECT_EQ(orvio::FindExtVar(list, ExtVarKey::kIid, 12), &handles_[2]);
  EXPECT_EQ(orvio::FindExtVar(list, ExtVarKey::kEid, 113), &handles_[3]);
  EXPECT_EQ(orvio::FindExtVar(list, ExtVarKey::kIndex, 1), &handles_[1]);
  EXPECT_EQ(orvio::FindExtVar(list, ExtVarKey::kType, 50), &handles_[3]);
  EXPECT_EQ(orvio::FindExtVar(list, "velocity_x"), &handles_[0]);
}

}  // namespace
