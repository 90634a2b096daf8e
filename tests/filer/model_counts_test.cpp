// How many entities results have at a state, and at most over all states. Their ids are in model_ids_test.

#include <climits>

#include "filer/model_file.h"
#include "result/entity_ids.h"

namespace orv_test {
namespace {

using State = std::string (*)(int);
constexpr State kState = ForgedModel::StateGroup;
constexpr char kNodes[] = "entityresults/NODE/SPEED";
constexpr char kShells[] = "elementresults/SHELL/HEAT";

/// Nodes and shells in two states, and three constant nodes.
class ModelCounts : public ModelTest {
 protected:
  ModelCounts() {
    model_.variable({.name = "SPEED", .key = "SPEED"});
    model_.variable({.name = "HEAT", .key = "HEAT"});
    model_.variable({.name = "MASS", .key = "MASS"});
    model_.in_state(1, {.variable = "SPEED", .nent = 2, .index = {0.5F}});
    model_.in_state(1, {.kind = 1100, .etyp = "SHELL", .variable = "HEAT", .nent = 3, .numl = 1});
    model_.in_state(2, {.variable = "SPEED", .nent = 4, .index = {1.5F}});
    model_.in_state(2, {.kind = 1100, .etyp = "SHELL", .variable = "HEAT", .nent = 5, .numl = 1});
  }

  int Count(int state) { return filer_->GetEntityCount(all(), state); }
  int Largest() { return filer_->GetMaxEntityCountOverStates(all()); }
};
INSTANTIATE_TEST_SUITE_P(Layouts, ModelCounts, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle),
                         NameOfModelLayout);

TEST_P(ModelCounts, AreThoseOfAllBlocksAtTheState) {
  Open();
  ASSERT_EQ(all().size(), 2U);
  EXPECT_EQ(Count(1), 5);
  EXPECT_EQ(Count(2), 9);
}

TEST_P(ModelCounts, AreRenewedInTheBlocks) {
  Open();
  EXPECT_EQ(Count(2), 9);
  EXPECT_EQ(all()[0]->m_nent, 4);
  EXPECT_EQ(all()[1]->m_nent, 5);
}

TEST_P(ModelCounts, OfNoBlocksAre0) {
  Open();
  Results none;
  EXPECT_EQ(filer_->GetEntityCount(none, 1), 0);
  EXPECT_EQ(filer_->GetMaxEntityCountOverStates(none), 0);
}

TEST_P(ModelCounts, PassOverMissingEntriesOfAList) {
  Open();
  Results list = {nullptr, all()[1], nullptr};
  EXPECT_EQ(filer_->GetEntityCount(list, 2), 5);
  EXPECT_EQ(filer_->GetMaxEntityCountOverStates(list), 5);
}

TEST_P(ModelCounts, LeaveOutABlockThatTheStateLacks) {
  model_.in_state(3, {.variable = "SPEED", .nent = 6});
  Open();
  EXPECT_EQ(Count(3), 6);
  EXPECT_EQ(all()[1]->m_nent, 3) << "as it was";
}

TEST_P(ModelCounts, OfAStateThatIsNotThereAre0) {
  Open();
  EXPECT_EQ(Count(3), 0);
  EXPECT_EQ(all()[0]->m_nent, 2);
}

TEST_P(ModelCounts, LeaveOutACountThatCannotBeRead) {
  Header(kState(2), kNodes).retype("nent");
  Open();
  EXPECT_EQ(Count(2), 5);
  EXPECT_EQ(all()[0]->m_nent, 2);
}

TEST_P(ModelCounts, LeaveOutANegativeCount) {
  Header(kState(2), kNodes).integer("nent", -1);
  Open();
  EXPECT_EQ(Count(2), 5);
}

TEST_P(ModelCounts, ABlockWithoutEntitiesStaysOut) {
  Header(kState(2), kNodes).integer("nent", 0);
  Open();
  EXPECT_EQ(Count(2), 5);
  EXPECT_EQ(Count(1), 3);  // the nodes are there, and not looked at any more
  all()[1]->m_nent = 0;
  EXPECT_EQ(Count(1), 0);
  EXPECT_EQ(all()[1]->m_nent, 0);
}

TEST_P(ModelCounts, OfConstantBlocksComeFromTheConstantSection) {
  model_.in_constant({.variable = "MASS", .nent = 30});
  model_.in_state(2, {.variable = "MASS", .nent = 70});
  Open();
  ASSERT_EQ(all().size(), 3U);
  EXPECT_EQ(Count(1), 35);
  EXPECT_EQ(Count(2), 39);
  EXPECT_EQ(Count(9), 30);
}

TEST_P(ModelCounts, OfMultiStateBlocksAreTheSameAtEachState) {
  model_.in_multistate({.kind = 1050, .variable = "SPEED", .nent = 7, .nstate = 2});
  Open();
  Results& histories = filer_->GetResultList(0);
  ASSERT_EQ(histories.size(), 1U);
  EXPECT_EQ(filer_->GetEntityCount(histories, 1), 7);
  EXPECT_EQ(filer_->GetEntityCount(histories, 9), 7);
}

TEST_P(ModelCounts, AreBoundedByWhatAnIntHolds) {
  Header(kState(1), kNodes).integer("nent", INT_MAX - 3);
  Header(kState(2), kNodes).integer("nent", INT_MAX);
  Open();
  EXPECT_EQ(Count(1), INT_MAX);
  EXPECT_EQ(Count(2), 0);
  EXPECT_EQ(all()[0]->m_nent, INT_MAX);
  EXPECT_EQ(all()[1]->m_nent, 5) << "renewed all the same";
  EXPECT_EQ(Largest(), INT_MAX);
}

TEST_P(ModelCounts, BeyondEveryNumberAre0) {
  Header(kState(2), kNodes).integer("nent", INT64_MAX);
  Header(kState(2), kShells).integer("nele", INT64_MAX);
  Open();
  EXPECT_EQ(Count(2), 0);
}

TEST_P(ModelCounts, OfAFileThatIsNotThereAre0) {
  ORVFiler missing(TempPath("missing.orv").c_str());
  Open();
  EXPECT_EQ(missing.GetEntityCount(all(), 1), 0);
  EXPECT_EQ(missing.GetMaxEntityCountOverStates(all()), 0);
  ORVFiler nameless(nullptr);
  EXPECT_EQ(nameless.GetEntityCount(all(), 1), 0);
  EXPECT_EQ(all()[0]->m_nent, 2);
}

TEST_P(ModelCounts, OfAFilerWithoutDataAre0) {
  ModelFiler& filer = Open();
  Results list = all();
  const WithoutData without(filer);
  EXPECT_EQ(filer.GetEntityCount(list, 1), 0);
  EXPECT_EQ(filer.GetMaxEntityCountOverStates(list), 0);
}

// ---- Over all states

TEST_P(ModelCounts, OverAllStatesAreTheLargest) {
  model_.in_state(3, {.variable = "SPEED", .nent = 1, .index = {2.5F}});
  Open();
  EXPECT_EQ(Largest(), 9);
  EXPECT_EQ(all()[0]->m_nent, 1) << "as the last state has it";
}

TEST_P(ModelCounts, OverAllStatesHaveConstantBlocksInEach) {
  model_.in_constant({.variable = "MASS", .nent = 30});
  Open();
  EXPECT_EQ(Largest(), 39);
}

TEST_P(ModelCounts, OverAllStatesAreThoseOfTheStateIndex) {
  model_.in_state(3, {.variable = "SPEED", .nent = 80});  // without an index
  Open();
  ASSERT_EQ(filer_->GetStateIndex(false)->GetNumState(), 2);
  EXPECT_EQ(Largest(), 9);
}

TEST_P(ModelCounts, OverAllStatesReadTheStateIndexAtFirstDemand) {
  Open();
  EXPECT_EQ(filer_->data()->m_pStateIndex, nullptr);
  EXPECT_EQ(Largest(), 9);
  EXPECT_NE(filer_->data()->m_pStateIndex, nullptr);
}

TEST_P(ModelCounts, OverAllStatesWithoutAnIndexAreThoseOfTheFile) {
  model_.in_state(3, {.variable = "SPEED", .nent = 80});
  Open();
  const ORVContainer data(model_.path().c_str());
  EXPECT_EQ(orvio::LargestEntityCount(data, all()), 80);
  const ORVContainer missing(TempPath("missing.orv").c_str());
  EXPECT_EQ(orvio::LargestEntityCount(missing, all()), 0);
}

TEST_P(ModelCounts, TellNothing) {
  Header(kState(2), kNodes).retype("nent");
  Open();
  const auto before = messages_.all();
  EXPECT_EQ(Largest(), 5);
  EXPECT_EQ(messages_.all(), before);
}

}  // namespace
}  // namespace orv_test
