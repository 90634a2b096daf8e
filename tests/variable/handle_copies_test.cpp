// New names for components that have a handle already, and the searches over the handles of a filer.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "orvio/orv_filer.h"
#include "orvio/orv_unit.h"
#include "support/forged_model.h"
#include "support/orv_test.h"

namespace {

using orv_test::ForgedModel;
using orv_test::ForgedValues;

using Names = std::vector<const char*>;
using Ints = std::vector<int>;

/// A file with a vector, ids 1 to 3 and its magnitude 4, and a scalar with id 5, each in a state.
class HandleCopies : public orv_test::OrvTest {
 protected:
  HandleCopies() {
    ForgedValues speed, temperature;
    speed.variable = "Speed";
    speed.nent = 1;
    speed.ncoo = 3;
    temperature.variable = "Temperature";
    temperature.nent = 1;
    model_.variable({.name = "Speed", .key = "S", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}});
    model_.variable({.name = "Temperature", .key = "Temperature"});
    model_.in_state(1, speed).in_state(1, temperature);
    filer_ = std::make_unique<ORVFiler>(model_.path().c_str());
    int next_id = 1;
    EXPECT_EQ(filer_->InitReader(next_id), 0);
    EXPECT_EQ(filer_->GetNumExtVariables(), 5U);
  }

  int Copy(Ints iids, std::uint64_t start, std::uint64_t count, Names names, Ints types, int which = 1,
           bool unit = false) {
    return filer_->CopyCreateExtendedVariables(iids, start, count, names, types, which, unit);
  }
  const ORVExtVar& Last() { return *filer_->GetExtVariables().back(); }

  ForgedModel model_;
  std::unique_ptr<ORVFiler> filer_;
};

TEST_F(HandleCopies, AreMadeWithTheNextIdUnderTheNewNameAndType) {
  filer_->GetExtVariable(2, true)->SetEID(77);
  EXPECT_EQ(Copy({2}, 0, 1, {"Sideways"}, {50}), 0);
  ASSERT_EQ(filer_->GetNumExtVariables(), 6U);
  EXPECT_EQ(Last().GetName(), "Sideways");
  EXPECT_EQ(Last().GetIID(), 6);
  EXPECT_EQ(Last().GetEID(), 0);
  EXPECT_EQ(Last().GetType(), 50);
  EXPECT_EQ(Last().GeIndex(), 1);
  EXPECT_EQ(filer_->GetVariable("Speed")->GetExtVariables().back(), &Last());
}

TEST_F(HandleCopies, OfAComputedHandleKeepItsInputs) {
  EXPECT_EQ(Copy({4}, 0, 1, {"Length of speed"}, {50}), 0);
  EXPECT_EQ(Last().GeIndex(), -1);
  ASSERT_EQ(Last().GetDependent().size(), 1U);
  EXPECT_EQ(Last().GetDependent()[0]->m_iids, (Ints{1, 2, 3}));
  EXPECT_NE(Last().GetDependent()[0], filer_->GetExtVariable(4, true)->GetDependent()[0]);
}

TEST_F(HandleCopies, TakeTheUnitAlongWhenAsked) {
  ORVUnit unit;
  filer_->GetExtVariable(1, true)->SetUnit(&unit);
  EXPECT_EQ(Copy({1}, 0, 1, {"A"}, {0}), 0);
  EXPECT_EQ(Last().GetUnit(), nullptr);
  EXPECT_EQ(Copy({1}, 0, 1, {"B"}, {0}, 1, true), 0);
  EXPECT_EQ(Last().GetUnit(), &unit);
}

TEST_F(HandleCopies, AreAsManyAsTheShortestOfCountNamesAndTypes) {
  EXPECT_EQ(Copy({1, 2, 3}, 0, 3, {"A", "B", "C"}, {0, 0}), 0);
  EXPECT_EQ(filer_->GetNumExtVariables(), 7U);
  EXPECT_EQ(Copy({1, 2, 3}, 0, 1, {"D", "E", "F"}, {0, 0}), 0);
  EXPECT_EQ(filer_->GetNumExtVariables(), 8U);
  EXPECT_EQ(Copy({1, 2, 3}, 0, 3, {"G", "H"}, {0, 0, 0}), 0);
  EXPECT_EQ(filer_->GetNumExtVariables(), 10U);
}

TEST_F(HandleCopies, TakeNamesAndTypesFromTheFirstOnWhereverTheIdsStart) {
  EXPECT_EQ(Copy({9, 9, 2, 3}, 2, 2, {"A", "B", "C", "D"}, {71, 72, 73, 74}), 0);
  ASSERT_EQ(filer_->GetNumExtVariables(), 7U);
  const ORVExtVar& first = *filer_->GetExtVariables()[5];
  EXPECT_EQ(first.GetName(), "A");
  EXPECT_EQ(first.GetType(), 71);
  EXPECT_EQ(first.GeIndex(), 1);
  EXPECT_EQ(Last().GetName(), "B");
  EXPECT_EQ(Last().GetType(), 72);
  EXPECT_EQ(Last().GeIndex(), 2);
}

TEST_F(HandleCopies, OfEmptyListsOrARangeBeyondThemAreRefused) {
  EXPECT_EQ(Copy({}, 0, 0, {"A"}, {0}), 1);
  EXPECT_EQ(Copy({1}, 0, 1, {}, {0}), 1);
  EXPECT_EQ(Copy({1}, 0, 1, {"A"}, {}), 1);
  EXPECT_EQ(Copy({1}, 1, 1, {"A"}, {0}), 1);
  EXPECT_EQ(Copy({1}, 1, UINT64_MAX, {"A"}, {0}), 1);
  EXPECT_EQ(filer_->GetNumExtVariables(), 5U);
}

TEST_F(HandleCopies, PassOverUnknownIdsAndNullNames) {
  EXPECT_EQ(Copy({99, 1}, 0, 2, {"A", "B"}, {0, 0}), 0);
  EXPECT_EQ(Last().GetName(), "B");
  EXPECT_EQ(Last().GetIID(), 6);
  EXPECT_EQ(Copy({1}, 0, 1, {nullptr}, {0}), 1);
}

TEST_F(HandleCopies, ArePassedOverWhereAResultGoesByTheName) {
  EXPECT_EQ(Copy({1}, 0, 1, {"temperature"}, {0}, 1), 1);  // a handle and a result of the list have it
  EXPECT_EQ(Copy({1}, 0, 1, {"temperature"}, {0}, 2), 0);  // no multi-state result has
  EXPECT_EQ(Copy({1}, 0, 1, {"speed_x"}, {0}, 1), 0);      // a handle has it, but no result
}

TEST_F(HandleCopies, ArePassedOverWhereAResultOverAllStatesGoesByTheName) {
  ForgedValues temperature;
  temperature.kind = 1050;
  temperature.variable = "Temperature";
  temperature.nent = 1;
  temperature.nstate = 1;
  ForgedModel model;
  model.variable({.name = "Temperature", .key = "Temperature"}).in_multistate(temperature);
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  EXPECT_EQ(filer.InitReader(next_id), 0);
  Ints iids = {filer.GetExtVariables().at(0)->GetIID()}, types = {0};
  Names names = {"temperature"};
  EXPECT_EQ(filer.CopyCreateExtendedVariables(iids, 0, 1, names, types, 2, false), 1);
  EXPECT_EQ(filer.CopyCreateExtendedVariables(iids, 0, 1, names, types, 1, false), 0);
}

TEST_F(HandleCopies, LookForNoClashWithoutAListAndInTheSingleStateListOfBoth) {
  EXPECT_EQ(Copy({1}, 0, 1, {"Temperature"}, {0}, 0), 0);
  EXPECT_EQ(Copy({1}, 0, 1, {"Temperature"}, {0}, 3), 1);
}

TEST_F(HandleCopies, OfResultsWithoutComponentsKnowNoClash) {
  for (ORVResult* result : filer_->GetResultList(1)) result->m_ncoo = 0;
  EXPECT_EQ(Copy({1}, 0, 1, {"Temperature"}, {0}, 1), 0);
}

TEST_F(HandleCopies, OfANameThatNoHandleBearsKnowNoClashWhateverResultGoesByIt) {
  ASSERT_TRUE(filer_->GetResultList(1).at(0)->IsKeyOrVariableAvailable("S"));
  ASSERT_EQ(filer_->GetExtVariable("S"), nullptr);
  EXPECT_EQ(Copy({1}, 0, 1, {"S"}, {0}, 1), 0);
  EXPECT_EQ(Copy({1}, 0, 1, {"S"}, {0}, 1), 1);  // the copy bears it
}

TEST_F(HandleCopies, OfAFilerWithoutHandlesHaveTheIdOne) {
  std::vector<ORVExtVar*> kept;
  kept.swap(filer_->GetExtVariables());
  EXPECT_EQ(Copy({2}, 0, 1, {"A"}, {0}), 0);  // the variable has its handles still
  std::vector<ORVExtVar*>& made = filer_->GetExtVariables();
  EXPECT_EQ(made.size(), 1U);
  for (const ORVExtVar* handle : made) EXPECT_EQ(handle->GetIID(), 1);
  made.insert(made.end(), kept.begin(), kept.end());
}

TEST_F(HandleCopies, NeverHaveAnIdBelowTwo) {
  for (ORVExtVar* handle : filer_->GetExtVariables()) handle->SetIID(handle->GetIID() - 100);
  EXPECT_EQ(Copy({-99}, 0, 1, {"A"}, {0}), 0);
  EXPECT_EQ(Last().GetIID(), 2);
}

TEST_F(HandleCopies, LookForAClashFurtherDownTheNamesThanTheyTakeThem) {
  // The pass takes "A"; the clash is looked for with the name at `start`.
  EXPECT_EQ(Copy({9, 1}, 1, 1, {"A", "Temperature"}, {0}), 1);
  EXPECT_EQ(Copy({9, 1}, 1, 1, {"Temperature", "A"}, {3}), 0);
  EXPECT_EQ(Last().GetName(), "Temperature");
  EXPECT_EQ(Copy({9, 1}, 1, 1, {"Temperature"}, {3}), 0);  // past the end of the names there is no clash
}

// ---- Searches

using FilerHandles = HandleCopies;

TEST_F(FilerHandles, AreFoundByNameWhateverTheCase) {
  ASSERT_NE(filer_->GetExtVariable("speed_y"), nullptr);
  EXPECT_EQ(filer_->GetExtVariable("speed_y")->GetIID(), 2);
  EXPECT_EQ(filer_->GetExtVariable("speed"), nullptr);
  EXPECT_EQ(filer_->GetExtVariable(nullptr), nullptr);
}

TEST_F(FilerHandles, AreFoundByEitherId) {
  filer_->GetExtVariable(3, true)->SetEID(50);
  EXPECT_EQ(filer_->GetExtVariable(50, false)->GetIID(), 3);
  EXPECT_EQ(filer_->GetExtVariable(50, true), nullptr);
  EXPECT_EQ(filer_->GetVariableFrmID(50, false), filer_->GetVariable("Speed"));
  EXPECT_EQ(filer_->GetVariableFrmID(5, true), filer_->GetVariable("Temperature"));
  EXPECT_EQ(filer_->GetVariableFrmID(6, true), nullptr);
}

TEST_F(FilerHandles, OfOneNameOrIdAreTheFirst) {
  EXPECT_EQ(Copy({1}, 0, 1, {"Speed_Y"}, {0}), 0);
  EXPECT_EQ(filer_->GetExtVariable("Speed_Y")->GetIID(), 2);
  for (const int iid : {4, 3}) filer_->GetExtVariable(iid, true)->SetEID(50);
  EXPECT_EQ(filer_->GetExtVariable(50, false)->GetIID(), 3);
}

TEST_F(FilerHandles, OfTwoVariablesBelongToTheFirst) {
  filer_->GetVariable("Speed")->AppendExtVar(filer_->GetExtVariable(5, true));
  EXPECT_EQ(filer_->GetVariableFrmID(5, true), filer_->GetVariable("Speed"));
}

}  // namespace
