// Results that only later states have.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstdio>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "orvio/orv_filer.h"
#include "support/forged_model.h"
#include "support/orv_test.h"

namespace {

using orv_test::ForgedModel;
using orv_test::ForgedValues;
using testing::ElementsAre;

ForgedValues Result(const std::string& variable, int kind = 1000) {
  ForgedValues result;
  result.variable = variable;
  result.kind = kind;
  result.nent = 2;
  result.numl = 1;
  return result;
}

ForgedValues Deeper(const std::string& variable) {
  ForgedValues deeper = Result(variable);
  deeper.group_name = "Deeper";
  return deeper;
}

/// Heat in all states, Speed from the second, Force in the third alone.
class LaterStates : public orv_test::OrvTest {
 protected:
  LaterStates() {
    for (const char* name : {"Heat", "Speed", "Force"}) model_.variable({.name = name, .key = name});
    for (const int state : {1, 2, 3}) model_.in_state(state, Result("Heat"));
    model_.in_state(2, Result("Speed")).in_state(3, Result("Speed")).in_state(3, Result("Force", 1100));
  }

  ORVFiler& filer() {
    if (!filer_) {
      filer_ = std::make_unique<ORVFiler>(model_.path().c_str());
      int next_id = 1;
      EXPECT_EQ(filer_->InitReader(next_id), 0);
    }
    return *filer_;
  }
  std::vector<std::string> Names() {
    std::vector<std::string> names;
    for (const ORVResult* result : filer().GetResultList(1)) names.emplace_back(result->m_etypvar);
    return names;
  }
  std::vector<std::string> Paths() {
    std::vector<std::string> paths;
    for (const ORVResult* result : filer().GetResultList(1)) paths.push_back(result->GetBlkPath());
    return paths;
  }
  /// Of the file as it is now.
  int Added(int state, int mode = 0) {
    int added = -1;
    EXPECT_EQ(filer().UpdateContainer(state, added, -1, mode), 0);
    return added;
  }

  ForgedModel model_;
  std::unique_ptr<ORVFiler> filer_;
};

TEST_F(LaterStates, BelowOneAreAllFromTheSecond) {
  int added = -1;
  EXPECT_EQ(filer().UpdateContainer(0, added, -1, 0), 0);
  EXPECT_EQ(added, 2);
  EXPECT_THAT(Names(), ElementsAre("Heat", "Speed", "Force"));
  EXPECT_EQ(filer().GetResultList(1)[2]->m_variable, filer().GetVariable("Force"));
  ASSERT_NE(filer().GetExtVariable("Force"), nullptr);
  EXPECT_EQ(filer().GetExtVariable("Force")->GetIID(), 3);
  EXPECT_TRUE(filer().GetExtVariable("Force")->IsApplicable(1));
}

TEST_F(LaterStates, OfTheFirstStateAddNothing) {
  int added = -1;
  EXPECT_EQ(filer().UpdateContainer(1, added, -1, 0), 0);
  EXPECT_EQ(added, 0);
  EXPECT_THAT(Names(), ElementsAre("Heat"));
}

TEST_F(LaterStates, BelowOneLeaveOutWhatTheFirstHasGainedSince) {
  ASSERT_THAT(Names(), ElementsAre("Heat"));
  model_.in_state(1, Deeper("Heat"));
  EXPECT_EQ(Added(0), 2);
  EXPECT_THAT(Names(), ElementsAre("Heat", "Speed", "Force"));
}

TEST_F(LaterStates, OfOneStateAreItsOwn) {
  int added = -1;
  EXPECT_EQ(filer().UpdateContainer(2, added, -1, 0), 0);
  EXPECT_EQ(added, 1);
  EXPECT_THAT(Names(), ElementsAre("Heat", "Speed"));
}

TEST_F(LaterStates, WithModeOneGoOnToTheEnd) {
  int added = -1;
  EXPECT_EQ(filer().UpdateContainer(2, added, -1, 1), 0);
  EXPECT_EQ(added, 2);
  EXPECT_THAT(Names(), ElementsAre("Heat", "Speed", "Force"));
}

TEST_F(LaterStates, AreFoundOnce) {
  int added = -1;
  ASSERT_EQ(filer().UpdateContainer(-1, added, -1, 0), 0);
  EXPECT_EQ(filer().UpdateContainer(-1, added, -1, 0), 0);
  EXPECT_EQ(added, 0);
  EXPECT_EQ(Names().size(), 3U);
}

TEST_F(LaterStates, TakeIdsFromAGivenCounter) {
  int added = -1;
  ASSERT_EQ(filer().UpdateContainer(2, added, 90, 0), 0);
  EXPECT_EQ(filer().GetExtVariable("Speed")->GetIID(), 90);
}

TEST_F(LaterStates, TakeIdsFromOneWhereThereIsNoHandle) {
  ForgedModel model;
  model.variable({.name = "Heat", .key = "Heat"});
  model.in_state(1, Result("Undefined")).in_state(2, Result("Heat"));
  ORVFiler late(model.path().c_str());
  int next_id = 50;
  ASSERT_EQ(late.InitReader(next_id), 0);
  ASSERT_THAT(late.GetExtVariables(), testing::IsEmpty());
  int added = -1;
  ASSERT_EQ(late.UpdateContainer(0, added, -1, 0), 0);
  EXPECT_EQ(added, 1);
  ASSERT_NE(late.GetExtVariable("Heat"), nullptr);
  EXPECT_EQ(late.GetExtVariable("Heat")->GetIID(), 1);
}

TEST_F(LaterStates, TakeIdsFromOneWhereAllHandlesHaveNegativeOnes) {
  filer().GetExtVariable("Heat")->SetIID(-7);
  ASSERT_EQ(Added(2), 1);
  EXPECT_EQ(filer().GetExtVariable("Speed")->GetIID(), 1);
}

TEST_F(LaterStates, BeyondTheLastAddNothing) {
  for (const int mode : {0, 1}) {
    for (const int state : {4, INT_MAX}) EXPECT_EQ(Added(state, mode), 0) << state << ", mode " << mode;
  }
  EXPECT_THAT(Names(), ElementsAre("Heat"));
}

TEST_F(LaterStates, OfAMissingFileAddNothing) {
  ASSERT_THAT(Names(), ElementsAre("Heat"));
  ASSERT_EQ(std::remove(model_.path().c_str()), 0);
  for (const int state : {0, 2}) {
    for (const int mode : {0, 1}) EXPECT_EQ(Added(state, mode), 0) << state << ", mode " << mode;
  }
  EXPECT_THAT(Names(), ElementsAre("Heat"));
}

TEST_F(LaterStates, ThatLeadNowhereAddNothingAndKeepTheirPosition) {
  model_.file().at("/post/singlestate").soft_link("state000000000001b", "/not/there");
  EXPECT_EQ(Added(2), 0);
  EXPECT_EQ(Added(3), 1);  // the one with the number 2
  EXPECT_THAT(Names(), ElementsAre("Heat", "Speed"));
}

// ---- What they are added with

TEST_F(LaterStates, GiveThePathsTheirResultsAreReadUnder) {
  ASSERT_EQ(Added(3), 2);
  EXPECT_THAT(Paths(), ElementsAre("/post/singlestate/state000000000001/entityresults/NODE/Heat/orvblock",
                                   "/post/singlestate/state000000000003/entityresults/NODE/Speed/orvblock",
                                   "/post/singlestate/state000000000003/elementresults/NODE/Force/orvblock"));
  EXPECT_EQ(filer().GetResultList(1)[2]->m_nent, 2);
}

TEST_F(LaterStates, BehindALinkGiveThePathOfTheLink) {
  model_.in_state(2, Result("Force"));
  model_.file().at("/post/singlestate").soft_link("state000000000004", ForgedModel::StateGroup(2));
  ASSERT_EQ(Added(4), 2);
  EXPECT_THAT(Paths(), ElementsAre("/post/singlestate/state000000000001/entityresults/NODE/Heat/orvblock",
                                   "/post/singlestate/state000000000004/entityresults/NODE/Force/orvblock",
                                   "/post/singlestate/state000000000004/entityresults/NODE/Speed/orvblock"));
}

class LaterStatesOfASplitFile : public orv_test::OrvTest {};

TEST_F(LaterStatesOfASplitFile, GiveThePathsTheirResultsAreReadUnder) {
  ForgedModel model(ForgedModel::kSplit);
  model.variable({.name = "Heat"}).variable({.name = "Speed"});
  model.in_state(1, Result("Heat")).in_state(2, Result("Speed"));
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  int added = -1;
  ASSERT_EQ(filer.UpdateContainer(0, added, -1, 0), 0);
  ASSERT_EQ(added, 1);
  EXPECT_EQ(filer.GetResultList(1)[1]->GetBlkPath(), "/post/singlestate/state000000000002/entityresults/NODE/Speed");
}

// ---- Twins

std::string HeatInState2() { return ForgedModel::StateGroup(2) + "/entityresults/NODE/Heat"; }

TEST_F(LaterStates, WithATwinUnderAnotherPathKeepTheBlockWithoutCountingIt) {
  model_.in_state(2, Deeper("Heat"));
  EXPECT_EQ(Added(2), 1);
  EXPECT_THAT(Names(), ElementsAre("Heat", "Heat", "Speed"));
  const ORVResult* kept = filer().GetResultList(1)[1];
  EXPECT_EQ(kept->GetBlkPath(), HeatInState2() + "/Deeper/orvblock");
  EXPECT_NE(kept->m_variable, nullptr);
  EXPECT_EQ(kept->m_variable, filer().GetVariable("Heat"));
}

TEST_F(LaterStates, UnderAPathThatAnotherOfThemHasAreNotKeptAgain) {
  model_.in_state(2, Deeper("Heat")).in_state(3, Deeper("Heat"));
  EXPECT_EQ(Added(0), 2);
  EXPECT_THAT(Names(), ElementsAre("Heat", "Heat", "Speed", "Force"));
}

TEST_F(LaterStates, WithOneTwinUnderTheirPathAndOneUnderAnotherAddNothing) {
  model_.in_state(1, Deeper("Heat")).in_state(2, Deeper("Heat"));
  EXPECT_EQ(Added(2), 1);
  EXPECT_THAT(Names(), ElementsAre("Heat", "Heat", "Speed"));
}

TEST_F(LaterStates, OfOneIdentityInOneStateAreBothCounted) {
  model_.in_state(2, Deeper("Speed"));
  EXPECT_EQ(Added(2), 2);
  EXPECT_THAT(Names(), ElementsAre("Heat", "Speed", "Speed"));
}

TEST_F(LaterStates, AreHiddenByAConstantResultOfTheirIdentityAndPath) {
  model_.in_constant(Result("Speed"));
  EXPECT_EQ(Added(2), 0);
  EXPECT_THAT(Names(), ElementsAre("Speed", "Heat"));
  EXPECT_TRUE(filer().GetResultList(1)[0]->IsConstantBlk());
}

TEST_F(LaterStates, ThatDifferFromATwinInCaseAloneAddNothing) {
  model_.file().at(HeatInState2() + "/orvblock").text("etypvar", "HEAT").text("etyp", "node");
  EXPECT_EQ(Added(2), 1);
  EXPECT_THAT(Names(), ElementsAre("Heat", "Speed"));
}

TEST_F(LaterStates, OfAnotherZoneAreNoTwins) {
  model_.file().at(HeatInState2() + "/orvblock").integer("zoneid", 4);
  EXPECT_EQ(Added(2), 2);
  EXPECT_THAT(Names(), ElementsAre("Heat", "Heat", "Speed"));
}

TEST_F(LaterStates, OfAnotherKindAreNoTwins) {
  model_.file().at(HeatInState2() + "/orvblock").integer("block", 1001);
  EXPECT_EQ(Added(2), 2);
  EXPECT_THAT(Names(), ElementsAre("Heat", "Heat", "Speed"));
}

TEST_F(LaterStates, OfAnotherEntityTypeAreNoTwins) {
  model_.file().at(HeatInState2() + "/orvblock").text("etyp", "PART");
  EXPECT_EQ(Added(2), 2);
  EXPECT_THAT(Names(), ElementsAre("Heat", "Heat", "Speed"));
}

TEST_F(LaterStates, AreComparedWithinTheWidthOfTheirFields) {
  ForgedValues wide = Result("Heat");
  wide.etyp = std::string(256, 'e');
  model_.in_state(1, wide).in_state(2, wide);
  ASSERT_THAT(Names(), ElementsAre("Heat", "Heat"));
  for (ORVResult* listed : filer().GetResultList(1)) {
    if (*listed->m_etyp == 'e') std::memset(listed->m_etyp, 'e', sizeof listed->m_etyp);  // no room for an end
  }
  EXPECT_EQ(Added(2), 1);
  EXPECT_THAT(Names(), ElementsAre("Heat", "Heat", "Speed"));
}

}  // namespace
