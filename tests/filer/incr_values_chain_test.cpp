// Values are made whole from the states of their chain. What becomes of the holder and the blocks is in
// incr_values_holder_test, damage in incr_values_damage_test.

#include "filer/incr_values_forge.h"

namespace orv_test {
namespace {

class IncrValues : public IncrValuesTest {};

INSTANTIATE_TEST_SUITE_P(Layouts, IncrValues, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle),
                         NameOfLayout);

TEST_P(IncrValues, OfAFullStateAreThoseOfTheState) {
  Add(1, {.ids = {10, 20}, .values = {1, 2}, .flag = 0});
  Add(2, {.ids = {30}, .values = {3}, .flag = 0});
  Open();
  ASSERT_EQ(Fetch(2), 0);
  EXPECT_EQ(values_.values(), (Floats{3}));
  EXPECT_EQ(values_.ids(), (Ints{30}));
  ASSERT_EQ(Fetch(1), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 2}));
}

TEST_P(IncrValues, TakeTheChangesUpToTheStateInTheirOrder) {
  Add(1, {.ids = {10, 20, 30}, .values = {1, 2, 3}, .flag = 0});
  Add(2, {.ids = {30, 20}, .values = {32, 22}});
  Add(3, {.ids = {20}, .values = {23}});
  Open();
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 23, 32}));
  EXPECT_EQ(values_.ids(), (Ints{10, 20, 30}));
  ASSERT_EQ(Fetch(2), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 22, 32}));
}

TEST_P(IncrValues, StartAnewAtEachFullState) {
  Add(1, {.ids = {10, 20}, .values = {1, 2}, .flag = 0});
  Add(2, {.ids = {10}, .values = {12}});
  Add(3, {.ids = {50, 20, 10}, .values = {53, 23, 13}, .flag = 0});
  Add(4, {.ids = {20}, .values = {24}});
  Add(5, {.ids = {50}, .values = {55}});
  Add(6, {.ids = {60}, .values = {66}, .flag = 0});
  Open();
  ASSERT_EQ(Fetch(5), 0);
  EXPECT_EQ(values_.ids(), (Ints{50, 20, 10}));
  EXPECT_EQ(values_.values(), (Floats{55, 24, 13}));
  ASSERT_EQ(Fetch(2), 0);
  EXPECT_EQ(values_.values(), (Floats{12, 2}));
  ASSERT_EQ(Fetch(6), 0);
  EXPECT_EQ(values_.values(), (Floats{66}));
}

TEST_P(IncrValues, GainNoEntities) {
  Add(1, {.ids = {10, 20}, .values = {1, 2}, .flag = 0});
  Add(2, {.ids = {30, 20, 40, -10}, .values = {32, 22, 42, 12}});
  Open();
  ASSERT_EQ(Fetch(2), 0);
  EXPECT_EQ(values_.ids(), (Ints{10, 20}));
  EXPECT_EQ(values_.values(), (Floats{1, 22}));
}

TEST_P(IncrValues, GoByIdsThatAreFarApartOrNegative) {
  Add(1, {.ids = {-5, 5, 300000, INT32_MIN, INT32_MAX}, .values = {1, 2, 3, 4, 5}, .flag = 0});
  Add(2, {.ids = {INT32_MAX, 300000, -5}, .values = {52, 32, 12}});
  Add(3, {.ids = {INT32_MIN}, .values = {43}});
  Open();
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(values_.values(), (Floats{12, 2, 32, 43, 52}));
}

TEST_P(IncrValues, MayBeAskedForByVariableOrByExternalId) {
  Add(1, {.ids = {10, 20}, .values = {1, 2}, .flag = 0});
  Add(2, {.ids = {20}, .values = {22}});
  Open();
  values_.m_state = 2;
  EXPECT_EQ(filer_->GetIncrValues(values_, blocks_, -1, -1, "MASS"), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 22}));
  values_.DeleteAllocation(true);
  filer_->GetVariable("MASS")->GetExtVariables().at(0)->SetEID(77);
  EXPECT_EQ(filer_->GetIncrValues(values_, blocks_, -1, 77, nullptr), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 22}));
  values_.DeleteAllocation(true);
  EXPECT_EQ(filer_->GetIncrValues(values_, blocks_, -1, -1, nullptr), 1);
  ExpectNoAnswer();
}

TEST_P(IncrValues, OfElementsTakeTheLayerAskedFor) {
  Add(1, {.ids = {10, 20}, .values = {1, 2, 3, 4}, .flag = 0, .etyp = "SHELL", .kind = 1100, .numl = 2});
  Add(2, {.ids = {20}, .values = {32, 42}, .etyp = "SHELL", .kind = 1100, .numl = 2});
  Open();
  values_.m_layer = 1;
  ASSERT_EQ(Fetch(2), 0);
  EXPECT_EQ(values_.ids(), (Ints{10, 20}));
  EXPECT_EQ(values_.values(), (Floats{2, 42}));
  values_.m_layer = 0;
  ASSERT_EQ(Fetch(2), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 32}));
}

TEST_P(IncrValues, OfSeveralComponentsAreMergedAsIfThereWereOne) {
  Add(1, {.ids = {10, 20}, .values = {1, 2, 3, 4}, .flag = 0, .variable = "FLOW"});
  Add(2, {.ids = {20}, .values = {8, 9}, .variable = "FLOW"});
  Open();
  values_.m_state = 2;
  ASSERT_EQ(filer_->GetIncrValues(values_, blocks_, -1, -1, "FLOW"), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 8, 3, 4}));
  values_.DeleteAllocation(true);
  ASSERT_EQ(filer_->GetIncrValues(values_, blocks_, Handle("FLOW"), -1, nullptr), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 8}));  // a component alone
}

// ---- The order of the states

TEST_P(IncrValues, FollowTheIdentifiersAndNotTheNumbersOfTheStates) {
  Add(1, {.ids = {10, 20}, .values = {1, 2}, .flag = 0, .identifier = 10});
  Add(2, {.ids = {10}, .values = {12}, .identifier = 30});
  Add(3, {.ids = {10, 20}, .values = {13, 23}, .identifier = 20});
  Add(4, {.ids = {50}, .values = {54}, .identifier = 40});
  Open();
  ASSERT_EQ(Fetch(4), 0);
  EXPECT_EQ(values_.values(), (Floats{12, 23}));  // 3 before 2
  ASSERT_EQ(Fetch(2), 0);
  EXPECT_EQ(values_.values(), (Floats{12, 2}));  // 3 is above 2
}

TEST_P(IncrValues, OfAStateBelowItsFullOneAreNotThere) {
  Add(1, {.ids = {10}, .values = {1}, .identifier = 20});
  Add(2, {.ids = {10}, .values = {2}, .flag = 0, .identifier = 10});
  Open();
  EXPECT_EQ(Fetch(1), 1);
  ExpectNoAnswer();
  EXPECT_EQ(Fetch(2), 0);
}

TEST_P(IncrValues, WithoutAFullStateStartAtTheFirstOne) {
  Add(1, {.ids = {10, 20}, .values = {1, 2}});
  Add(2, {.ids = {20}, .values = {22}});
  Add(3, {.ids = {10}, .values = {13}});
  Open();
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(values_.values(), (Floats{13, 22}));
  ASSERT_EQ(Fetch(1), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 2}));
}

// ---- States without the block, or without a record

TEST_P(IncrValues, WhereAStateLacksTheBlockAreThoseOfTheClosestEarlierOne) {
  Add(1, {.ids = {10, 20}, .values = {1, 2}, .flag = 0});
  AddState(2);
  Add(3, {.ids = {20}, .values = {23}});
  AddState(4);
  Add(5, {.ids = {10}, .values = {15}});
  AddState(6);
  Open();
  ASSERT_EQ(Fetch(2), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 2}));
  ASSERT_EQ(Fetch(4), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 23}));
  ASSERT_EQ(Fetch(6), 0);
  EXPECT_EQ(values_.values(), (Floats{15, 23}));
  EXPECT_EQ(values_.m_state, 6);
}

TEST_P(IncrValues, OfAStateWithoutARecordTakeItsChangesAfterThoseOfTheRecord) {
  Add(1, {.ids = {10, 20, 30}, .values = {1, 2, 3}, .flag = 0});
  Add(2, {.ids = {10, 20}, .values = {12, 22}});
  Add(3, {.ids = {20}, .values = {23}, .identifier = 2});  // the first state of an identifier counts
  Open();
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(values_.values(), (Floats{12, 23, 3}));
}

TEST_P(IncrValues, OfAStateWithoutARecordAreThoseOfAnEarlierOneThatStandsAlone) {
  for (const int flag : {0, 1}) {
    Add(1, {.ids = {10}, .values = {1}, .flag = flag});
    Add(2, {.ids = {10}, .values = {2}, .identifier = 1});
    Open();
    ASSERT_EQ(Fetch(2), 0);
    EXPECT_EQ(values_.values(), (Floats{1})) << flag;
    EXPECT_EQ(values_.m_state, 2);
  }
}

TEST_P(IncrValues, OfAStateBeforeAllRecordsAreThoseOfTheState) {
  Add(1, {.ids = {10, 20}, .values = {1, 2}, .etyp = "POINT"});
  Add(2, {.ids = {10}, .values = {12}});
  Open();
  ORVResult later(1000);
  later.SetEntityAndVarName("NODE", "MASS");
  later.SetBlkPath(BlockOf(2, ForgedChange{}) + (GetParam() == ForgedModel::kSingle ? "/orvblock" : ""));
  ASSERT_EQ(filer_->BuildGlobalIncrMap(later, 2, false), 0);
  ASSERT_EQ(Fetch(1), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 2}));
  EXPECT_EQ(Fetch(0), 1);
  EXPECT_EQ(Fetch(-1), 1);
  ExpectNoAnswer();
}

// ---- Zones

TEST_P(IncrValues, OfSeveralZonesAreMergedTogetherOrByThemselves) {
  Add(1, {.ids = {10, 20}, .values = {1, 2}, .flag = 0, .zone = 4});
  Add(1, {.ids = {30, 40}, .values = {3, 4}, .flag = 0, .etyp = "POINT", .zone = 7});
  Add(2, {.ids = {20}, .values = {22}, .zone = 4});
  Add(2, {.ids = {30}, .values = {32}, .etyp = "POINT", .zone = 7});
  Open();
  ASSERT_EQ(blocks_.size(), 2U);
  ASSERT_EQ(Fetch(2), 0);
  EXPECT_EQ(values_.ids(), (Ints{10, 20, 30, 40}));
  EXPECT_EQ(values_.values(), (Floats{1, 22, 32, 4}));
  blocks_ = {blocks_[1]};
  ASSERT_EQ(blocks_[0]->m_zoneid, 7);
  ASSERT_EQ(Fetch(2), 0);
  EXPECT_EQ(values_.ids(), (Ints{30, 40}));
  EXPECT_EQ(values_.values(), (Floats{32, 4}));
}

TEST_P(IncrValues, OfAZoneThatLacksAStateKeepWhatTheyWere) {
  Add(1, {.ids = {10, 20}, .values = {1, 2}, .flag = 0, .zone = 4});
  Add(1, {.ids = {30, 40}, .values = {3, 4}, .flag = 0, .etyp = "POINT", .zone = 7});
  Add(2, {.ids = {20}, .values = {22}, .zone = 4});
  Add(3, {.ids = {10}, .values = {13}, .zone = 4});
  Add(3, {.ids = {40, 30}, .values = {43, 33}, .etyp = "POINT", .zone = 7});
  Open();
  ASSERT_EQ(Fetch(2), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 22, 3, 4}));
  ASSERT_EQ(Fetch(3), 0);
  EXPECT_EQ(values_.values(), (Floats{13, 22, 33, 43}));
}

TEST_P(IncrValues, OfBlocksThatShareIdsChangeInTheLastOne) {
  Add(1, {.ids = {10, 20}, .values = {1, 2}, .flag = 0});
  Add(1, {.ids = {20, 30}, .values = {3, 4}, .flag = 0, .etyp = "POINT"});
  Add(2, {.ids = {20}, .values = {22}});
  Open();
  ASSERT_EQ(Fetch(2), 0);
  EXPECT_EQ(values_.ids(), (Ints{10, 20, 20, 30}));
  EXPECT_EQ(values_.values(), (Floats{1, 2, 22, 4}));
  blocks_ = {blocks_[0]};
  ASSERT_EQ(Fetch(2), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 22}));
}

TEST_P(IncrValues, FollowTheChainsOfTheFirstBlockAskedAbout) {
  Add(1, {.ids = {10}, .values = {1}, .flag = 0});
  Add(1, {.ids = {30, 40}, .values = {3, 4}, .flag = 0, .etyp = "POINT"});
  Add(2, {.ids = {10}, .values = {12}});
  Add(2, {.ids = {40}, .values = {42}, .flag = 0, .etyp = "POINT"});  // full, but the map says otherwise
  Open();
  ASSERT_EQ(Fetch(2), 0);
  EXPECT_EQ(values_.values(), (Floats{12, 3, 42}));
  blocks_ = {blocks_[1]};
  ASSERT_EQ(Fetch(2), 0);
  EXPECT_EQ(values_.values(), (Floats{3, 42}));
}

}  // namespace
}  // namespace orv_test
