// What a group answers about its variables, and for the handles of their components. The block is in
// variable_group_block_test; what result blocks make of it in tests/result.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "orvio/orv_ext_var.h"
#include "orvio/orv_unit.h"
#include "orvio/orv_variable_grp.h"
#include "support/orv_test.h"
#include "variable/forged_variable.h"

namespace {

using orv_test::SetText;
using testing::ElementsAre;

using Ints = std::vector<int>;

/// Three keys, the second of which no variable has.
class VariableGroupQuery : public orv_test::OrvTest {
 protected:
  VariableGroupQuery() {
    Define(speed_, "Speed", "ZPS:V", 3, 1);
    Define(stress_, "Stress", "S", 6, 2);
    SetText(stress_.m_varclass, "CLASS_STRESS");
    std::strcpy(group_.m_grpName, "ALL");
    group_.m_nvar = 3;
    group_.m_ncoo = 13;
    group_.m_pCnt = counts_;
    group_.m_pOffs = offsets_;
    SetKey(0, "ZPS:V");
    SetKey(1, "GONE");
    SetKey(2, "S");
    group_.m_pKeys = keys_;
    group_.AppendVariable(&speed_);
    group_.AppendVariable(&stress_);
    Handle(10, 100, 0, 0, "Speed_X", speed_);
    Handle(11, 101, 1, 0, "Speed_Y", speed_);
    Handle(12, 102, -1, 50, "Speed_Magnitude", speed_);
    Handle(20, 200, 3, 0, "Stress_XX", stress_);
    Handle(21, 201, -1, 56, "Stress_Von Mises", stress_);
  }

  static void Define(ORVVariable& variable, const char* name, const char* key, int ncoo, int rank) {
    SetText(variable.m_varnam, name);
    SetText(variable.m_varkey, key);
    variable.m_ncoo = ncoo;
    variable.SetOriginalCount(static_cast<std::uint64_t>(ncoo));
    variable.m_rank = rank;
    variable.m_tensor = 1;
  }
  void SetKey(std::size_t position, const char* key) { std::strcpy(keys_ + 256 * position, key); }
  void Handle(int iid, int eid, int index, int type, const char* name, ORVVariable& variable) {
    auto handle = std::make_unique<ORVExtVar>();
    handle->SetIID(iid);
    handle->SetEID(eid);
    handle->m_index = index;
    handle->SetType(type);
    handle->SetName(name);
    variable.AppendExtVar(handle.get());
    handles_.push_back(std::move(handle));
  }
  std::vector<int> Iids(const std::vector<ORVExtVar*>& handles) {
    std::vector<int> iids;
    for (const ORVExtVar* handle : handles) iids.push_back(handle->GetIID());
    return iids;
  }

  int counts_[3] = {3, 4, 6}, offsets_[3] = {0, 3, 7};
  char keys_[3 * 256 + 1] = {};
  ORVVariable speed_, stress_;
  ORVVariableGrp group_;
  std::vector<std::unique_ptr<ORVExtVar>> handles_;
};

TEST_F(VariableGroupQuery, FindsVariablesByNameKeyAndIdentity) {
  EXPECT_EQ(group_.GetVariableFromVarName("SPEED"), &speed_);
  EXPECT_EQ(group_.GetVariableFromVarName("ZPS:V"), nullptr);
  EXPECT_EQ(group_.GetVariableFromVarKey("zps:v"), &speed_);
  EXPECT_EQ(group_.GetVariableFromVarKey("Speed"), nullptr);
  EXPECT_EQ(group_.GetVariableObjFrmKeyOrVar("s"), &stress_);
  EXPECT_EQ(group_.GetVariableObjFrmKeyOrVar("Stress"), nullptr);
  SetText(stress_.m_varkey, "");
  EXPECT_EQ(group_.GetVariableObjFrmKeyOrVar("Stress"), &stress_);
  EXPECT_TRUE(group_.IsKeyOrVariableAvailable("Stress"));
  EXPECT_FALSE(group_.IsKeyOrVariableAvailable("Speed"));
}

TEST_F(VariableGroupQuery, OfNullFindsNothing) {
  EXPECT_EQ(group_.GetVariableFromVarName(nullptr), nullptr);
  EXPECT_EQ(group_.GetVariableFromVarKey(nullptr), nullptr);
  EXPECT_EQ(group_.GetVariableObjFrmKeyOrVar(nullptr), nullptr);
  EXPECT_FALSE(group_.IsVariableAvailable(nullptr));
  int index = 5;
  EXPECT_FALSE(group_.IsVariableKeyAvailable(nullptr, index));
  EXPECT_EQ(index, -1);
  group_.AppendVariable(nullptr);
  EXPECT_EQ(group_.GetNumberOfVariables(), 2U);
}

TEST_F(VariableGroupQuery, OfTwoVariablesOfOneNameTakesTheLastByNameAndTheFirstByIdentity) {
  ORVVariable twin;
  Define(twin, "Speed", "", 3, 1);
  ORVVariable other_twin;
  Define(other_twin, "Speed", "", 3, 1);
  group_.AppendVariable(&twin);
  group_.AppendVariable(&other_twin);
  EXPECT_EQ(group_.GetVariableFromVarName("Speed"), &other_twin);
  EXPECT_EQ(group_.GetVariableObjFrmKeyOrVar("Speed"), &twin);
}

TEST_F(VariableGroupQuery, KnowsANameOnlyWithCountsAndOffsets) {
  EXPECT_TRUE(group_.IsVariableAvailable("speed"));
  EXPECT_FALSE(group_.IsVariableAvailable("S"));
  for (int* ORVVariableGrp::*array : {&ORVVariableGrp::m_pOffs, &ORVVariableGrp::m_pCnt}) {
    ORVVariableGrp group = group_;
    group.*array = nullptr;
    EXPECT_FALSE(group.IsVariableAvailable("speed"));
  }
}

TEST_F(VariableGroupQuery, KnowsEveryKeyThatIsListed) {
  int index = 5;
  EXPECT_TRUE(group_.IsVariableKeyAvailable("gone", index));
  EXPECT_EQ(index, 1);
  EXPECT_FALSE(group_.IsVariableKeyAvailable("Speed", index));
  EXPECT_EQ(index, -1);
  char* keys = nullptr;
  EXPECT_EQ(group_.GetKeys(&keys), 3U);
  EXPECT_EQ(keys, keys_);
}

TEST_F(VariableGroupQuery, ListsItsVariables) {
  std::vector<std::string> names = {"before"};
  group_.GetVariableNames(names);
  EXPECT_THAT(names, ElementsAre("Speed", "Stress"));
  EXPECT_THAT(group_.GetVariables(), ElementsAre(&speed_, &stress_));
  EXPECT_EQ(group_.GetNumOrgCmpCnt(), 9U);
}

TEST_F(VariableGroupQuery, TakesThePrefixOfTheFirstKeyThatHasOne) {
  std::string prefix = "before";
  EXPECT_EQ(group_.GetVariableKeyPrefix(prefix), 0);
  EXPECT_EQ(prefix, "ZPS");
  SetText(stress_.m_varkey, "ABC:S");
  EXPECT_EQ(group_.GetVariableKeyPrefix(prefix), 0);
  EXPECT_EQ(prefix, "ZPS");  // that of the first variable, still
  SetText(stress_.m_varkey, "S");
  SetText(speed_.m_varkey, "V");
  prefix = "before";
  EXPECT_EQ(group_.GetVariableKeyPrefix(prefix), 1);
  EXPECT_EQ(prefix, "before");
}

TEST_F(VariableGroupQuery, TakesThePrefixOfALaterKeyWhereTheFirstHasNone) {
  SetText(speed_.m_varkey, "V");
  SetText(stress_.m_varkey, "ABC:S");
  std::string prefix;
  EXPECT_EQ(group_.GetVariableKeyPrefix(prefix), 0);
  EXPECT_EQ(prefix, "ABC");
}

TEST_F(VariableGroupQuery, AddsUpOriginalCountsWhateverTheCountsOfComponentsAre) {
  speed_.SetOriginalCount(2);
  group_.m_ncoo = 1;
  EXPECT_EQ(group_.GetNumOrgCmpCnt(), 8U);
}

TEST_F(VariableGroupQuery, OfAKeyThatIsListedTwiceTellsTheFirstPosition) {
  SetKey(1, "S");
  int index = 5;
  EXPECT_TRUE(group_.IsVariableKeyAvailable("S", index));
  EXPECT_EQ(index, 1);
}

TEST_F(VariableGroupQuery, ForgettingTheHeaderKeepsTheArrays) {
  group_.ReSetBlock(ORV_READ_HEADER);
  EXPECT_EQ(group_.m_pCnt, counts_);
  EXPECT_EQ(group_.m_pOffs, offsets_);
  EXPECT_EQ(group_.m_pKeys, keys_);
}

TEST_F(VariableGroupQuery, ForgetsByParts) {
  group_.ReSetBlock(ORV_READ_DATA);
  EXPECT_EQ(group_.m_pCnt, nullptr);
  EXPECT_EQ(group_.m_pOffs, nullptr);
  EXPECT_EQ(group_.m_pKeys, nullptr);
  EXPECT_EQ(group_.m_nvar, 3);
  group_.ReSetBlock(ORV_READ_HEADER);
  EXPECT_STREQ(group_.m_grpName, "");
  EXPECT_EQ(group_.m_nvar, 0);
  EXPECT_EQ(group_.m_ncoo, 0);
}

TEST_F(VariableGroupQuery, MakesOriginalUnitTextsOfItsVariables) {
  group_.UpdateOrgUnitStr();  // without unit objects there is nothing to make
  EXPECT_EQ(speed_.m_ppOrgUnitStr, nullptr);
  auto unit = std::make_unique<ORVUnit>();
  unit->SetUnitString("mm/s");
  stress_.m_units.push_back(unit.release());
  group_.UpdateOrgUnitStr();
  EXPECT_EQ(speed_.m_ppOrgUnitStr, nullptr);
  ASSERT_EQ(stress_.m_orgUnitCount, 1);
  EXPECT_STREQ(stress_.m_ppOrgUnitStr[0], "mm/s");
  std::free(stress_.m_ppOrgUnitStr[0]);
  std::free(stress_.m_ppOrgUnitStr);
  stress_.m_ppOrgUnitStr = nullptr;
}

// ---- Shape, class, count, offset

struct Info {
  _ORVVarType shape = static_cast<_ORVVarType>(77);
  _ORVVarClassType var_class = static_cast<_ORVVarClassType>(88);
  int count = 55, offset = 66;
};

TEST_F(VariableGroupQuery, TellsShapeAndClassByPositionWithTheGroupsCountAndOffset) {
  Info info;
  EXPECT_EQ(group_.GetVariableInfo(info.shape, info.var_class, info.count, info.offset, 0), 0);
  EXPECT_EQ(info.shape, ORV_VARTYPE_VECTOR);
  EXPECT_EQ(info.var_class, 0);
  EXPECT_EQ(info.count, 3);
  EXPECT_EQ(info.offset, 0);
}

TEST_F(VariableGroupQuery, TakesANegativePositionForTheFirst) {
  Info info;
  EXPECT_EQ(group_.GetVariableInfo(info.shape, info.var_class, info.count, info.offset, -5), 0);
  EXPECT_EQ(info.shape, ORV_VARTYPE_VECTOR);
  EXPECT_EQ(info.count, 3);
}

TEST_F(VariableGroupQuery, BehindAMissingKeyAnswersWithTheCountsOfTheKeyBefore) {
  Info info;
  EXPECT_EQ(group_.GetVariableInfo(info.shape, info.var_class, info.count, info.offset, 1), 0);
  EXPECT_EQ(info.shape, ORV_VARTYPE_TENSOR);  // that of the second variable found,
  EXPECT_EQ(info.var_class, ORV_VARCLASS_STRESS);
  EXPECT_EQ(info.count, 4);  // with the place of the second key
  EXPECT_EQ(info.offset, 3);
  EXPECT_EQ(group_.GetVariableInfo("stress", info.shape, info.var_class, info.count, info.offset), 0);
  EXPECT_EQ(info.count, 4);
  EXPECT_EQ(info.offset, 3);
}

TEST_F(VariableGroupQuery, BehindTheLastVariableIsAScalarOfNoClass) {
  Info info;
  EXPECT_EQ(group_.GetVariableInfo(info.shape, info.var_class, info.count, info.offset, 2), 0);
  EXPECT_EQ(info.shape, ORV_VARTYPE_SCALAR);
  EXPECT_EQ(info.var_class, 0);
  EXPECT_EQ(info.count, 6);
  EXPECT_EQ(info.offset, 7);
}

TEST_F(VariableGroupQuery, OfAMissingVariableTellsAScalarAtItsPlace) {
  group_.m_variables[1] = nullptr;
  Info info;
  EXPECT_EQ(group_.GetVariableInfo(info.shape, info.var_class, info.count, info.offset, 1), 0);
  EXPECT_EQ(info.shape, ORV_VARTYPE_SCALAR);
  EXPECT_EQ(info.var_class, 0);
  EXPECT_EQ(info.count, 4);
  EXPECT_EQ(info.offset, 3);
}

TEST_F(VariableGroupQuery, RefusesAPositionThatIsNotListed) {
  Info info;
  EXPECT_EQ(group_.GetVariableInfo(info.shape, info.var_class, info.count, info.offset, 3), 1);
  EXPECT_EQ(info.shape, 77);
  EXPECT_EQ(info.var_class, 0);
  EXPECT_EQ(info.count, 0);
  EXPECT_EQ(info.offset, -1);
}

TEST_F(VariableGroupQuery, WithoutCountsWritesNothing) {
  for (std::int64_t ORVVariableGrp::*count : {&ORVVariableGrp::m_nvar, &ORVVariableGrp::m_ncoo}) {
    ORVVariableGrp group = group_;
    group.*count = 0;
    Info info;
    EXPECT_EQ(group.GetVariableInfo(info.shape, info.var_class, info.count, info.offset, 0), 1);
    EXPECT_EQ(info.var_class, 88);
    EXPECT_EQ(info.count, 55);
    EXPECT_EQ(info.offset, 66);
  }
}

TEST_F(VariableGroupQuery, PassesOverMissingVariables) {
  group_.m_variables.insert(group_.m_variables.begin(), nullptr);
  std::vector<std::string> names;
  group_.GetVariableNames(names);
  EXPECT_THAT(names, ElementsAre("Speed", "Stress"));
  EXPECT_EQ(group_.GetVariableFromVarKey("S"), &stress_);
  EXPECT_EQ(group_.GetNumOrgCmpCnt(), 9U);
  EXPECT_EQ(group_.GetNumExtVar(), 5U);
  std::string prefix;
  EXPECT_EQ(group_.GetVariableKeyPrefix(prefix), 0);
  EXPECT_TRUE(group_.IsExtCompTypeAvailable(56));
}

TEST_F(VariableGroupQuery, HasNoKeysForANegativeNumberOfThem) {
  group_.m_nvar = -1;
  EXPECT_EQ(group_.GetKeys(nullptr), 0U);
}

TEST_F(VariableGroupQuery, OfTwoVariablesOfOneKeyTakesTheFirst) {
  ORVVariable twin;
  Define(twin, "Twin", "S", 1, 0);
  group_.AppendVariable(&twin);
  EXPECT_EQ(group_.GetVariableFromVarKey("S"), &stress_);
}

TEST_F(VariableGroupQuery, WithoutAnArrayRefuses) {
  for (int missing = 0; missing < 3; ++missing) {
    ORVVariableGrp group = group_;
    if (missing == 0) group.m_pCnt = nullptr;
    if (missing == 1) group.m_pOffs = nullptr;
    if (missing == 2) group.m_pKeys = nullptr;
    Info info;
    EXPECT_EQ(group.GetVariableInfo(info.shape, info.var_class, info.count, info.offset, 0), 1) << missing;
    EXPECT_EQ(info.count, 0);
    EXPECT_EQ(info.offset, -1);
  }
}

TEST_F(VariableGroupQuery, ByNameLeavesShapeAndClassAlone) {
  Info info;
  EXPECT_EQ(group_.GetVariableInfo("speed", info.shape, info.var_class, info.count, info.offset), 0);
  EXPECT_EQ(info.shape, 77);
  EXPECT_EQ(info.var_class, 88);
  EXPECT_EQ(info.count, 3);
  EXPECT_EQ(info.offset, 0);
  EXPECT_EQ(group_.GetVariableInfo("ZPS:V", info.shape, info.var_class, info.count, info.offset), 1);
  EXPECT_EQ(info.count, 0);
}

TEST_F(VariableGroupQuery, TellsCountAndOffsetByIdentity) {
  int count = 5, offset = 6;
  EXPECT_EQ(group_.GetVariableInfoFromKeyOrVar("zps:v", count, offset), 0);
  EXPECT_EQ(count, 3);
  EXPECT_EQ(offset, 0);
  EXPECT_EQ(group_.GetVariableInfoFromKeyOrVar("Speed", count, offset), 1);
  EXPECT_EQ(count, 0);
}

TEST_F(VariableGroupQuery, OfMoreVariablesThanKeysDoesNotLookBehindItsArrays) {
  ORVVariable extra[3];
  for (ORVVariable& variable : extra) {
    Define(variable, "Extra", "", 1, 0);
    group_.AppendVariable(&variable);
  }
  SetText(extra[2].m_varnam, "Last");
  int count = 5, offset = 6;
  EXPECT_EQ(group_.GetVariableInfoFromKeyOrVar("Last", count, offset), 1);
  EXPECT_EQ(count, 0);
}

// ---- Handles

using VariableGroupHandles = VariableGroupQuery;

TEST_F(VariableGroupHandles, AreFoundByEitherId) {
  EXPECT_EQ(group_.GetExtVarFrmId(20, true), handles_[3].get());
  EXPECT_EQ(group_.GetExtVarFrmId(101, false), handles_[1].get());
  EXPECT_EQ(group_.GetExtVarFrmId(101, true), nullptr);
  EXPECT_TRUE(group_.IsExtVarAvailable(21, true));
  EXPECT_FALSE(group_.IsExtVarAvailable(22, true));
  EXPECT_EQ(group_.GetExtVarId(20, true), 200);
  EXPECT_EQ(group_.GetExtVarId(200, false), 20);
  EXPECT_EQ(group_.GetExtVarId(5, true), -1);
}

TEST_F(VariableGroupHandles, OfOneIdOrNameInTwoVariablesAreThoseOfTheFirst) {
  handles_[3]->SetIID(10);
  handles_[3]->SetName("Speed_X");
  EXPECT_EQ(group_.GetExtVarFrmId(10, true), handles_[0].get());
  EXPECT_EQ(group_.GetExtVarId(10, true), 100);
  EXPECT_EQ(group_.GetExtVariableFrmCmp("speed_x"), handles_[0].get());
}

TEST_F(VariableGroupHandles, LeadToTheLastVariableThatHasThem) {
  EXPECT_EQ(group_.GetVariableFrmId(10, true), &speed_);
  stress_.AppendExtVar(handles_[0].get());
  EXPECT_EQ(group_.GetVariableFrmId(10, true), &stress_);
  EXPECT_EQ(group_.GetVariableFrmId(99, true), nullptr);
}

TEST_F(VariableGroupHandles, AreListedInOrderOfTheVariables) {
  Ints eids, types;
  group_.GetExtVarTypesOrCompTypes(eids, types);
  EXPECT_EQ(eids, (Ints{100, 101, 102, 200, 201}));
  EXPECT_EQ(types, (Ints{0, 0, 50, 0, 56}));
  std::vector<ORVExtVar*> all;
  group_.GetExtVariables(all);
  EXPECT_EQ(Iids(all), (Ints{10, 11, 12, 20, 21}));
  EXPECT_EQ(group_.GetNumExtVar(), 5U);
}

TEST_F(VariableGroupHandles, AreFoundByTypeAndName) {
  EXPECT_TRUE(group_.IsExtCompTypeAvailable(56));
  EXPECT_FALSE(group_.IsExtCompTypeAvailable(57));
  std::vector<ORVExtVar*> stored;
  group_.GetExtVarFrmExtendedType(0, stored);
  EXPECT_EQ(Iids(stored), (Ints{10, 11, 20}));
  EXPECT_EQ(group_.GetExtVariableFrmCmp("stress_xx"), handles_[3].get());
  EXPECT_EQ(group_.GetExtVariableFrmCmp("none"), nullptr);
  EXPECT_EQ(group_.GetExtVariableFrmCmp(nullptr), nullptr);
}

TEST_F(VariableGroupHandles, ByIdentityNeedTheTextToBeTheNameToo) {
  Ints iids;
  EXPECT_EQ(group_.GetExtVarFrmKeyOrVariable("Speed", 50), nullptr);  // its identity is its key,
  EXPECT_EQ(group_.GetExtVarFrmKeyOrVariable("ZPS:V", 50), nullptr);  // by which it is not found
  EXPECT_EQ(group_.GetIIDFromKeyOrVariable("ZPS:V", iids, true), 1);
  SetText(speed_.m_varkey, "SPEED");
  EXPECT_EQ(group_.GetExtVarFrmKeyOrVariable("Speed", 50), handles_[2].get());
  EXPECT_EQ(group_.GetIIDFromKeyOrVariable("Speed", iids, true), 0);
  EXPECT_EQ(iids, (Ints{10, 11, 12}));
  EXPECT_EQ(group_.GetIIDFromKeyOrVariable("Speed", iids, false), 0);
  EXPECT_EQ(iids, (Ints{10, 11, 12, 100, 101, 102}));
  SetText(speed_.m_varkey, "");
  EXPECT_EQ(group_.GetExtVarFrmKeyOrVariable("Speed", 50), handles_[2].get());
}

TEST_F(VariableGroupHandles, GiveTheFirstUnitThatThereIs) {
  ORVUnit unit;
  handles_[3]->SetUnit(&unit);
  EXPECT_EQ(group_.GetUnitPtr(200), &unit);
  EXPECT_EQ(group_.GetUnitPtr(100), nullptr);
}

TEST_F(VariableGroupHandles, OfOneIdInTwoVariablesGiveTheFirstUnitThatThereIs) {
  ORVUnit first, second;
  handles_[3]->SetEID(100);
  handles_[3]->SetUnit(&second);
  EXPECT_EQ(group_.GetUnitPtr(100), &second);  // the first variable has the handle, but no unit for it
  handles_[0]->SetUnit(&first);
  EXPECT_EQ(group_.GetUnitPtr(100), &first);
}

TEST_F(VariableGroupHandles, OfAVariableAtOffsetZeroBecomeInputs) {
  ORVDependentVar dependent;
  EXPECT_EQ(group_.FillDependentForVarGrp("Speed", dependent), 0);
  EXPECT_EQ(dependent.m_pVariable, &speed_);
  EXPECT_EQ(dependent.m_iids, (Ints{10, 11}));
  ORVDependentVar other;
  EXPECT_EQ(group_.FillDependentForVarGrp("none", other), 1);
  EXPECT_EQ(group_.FillDependentForVarGrp("Stress", other), 0);  // its handle at 3 is inside of its six components
  EXPECT_EQ(other.m_iids, Ints{20});
}

TEST_F(VariableGroupHandles, AreForgottenAndNotDeleted) {
  group_.ClearExtVariables();
  EXPECT_EQ(group_.GetNumExtVar(), 0U);
  EXPECT_EQ(handles_[0]->GetIID(), 10);
}

}  // namespace
