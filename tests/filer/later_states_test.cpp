// Results that only later states have.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
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

TEST_F(LaterStates, BeyondTheLastAddNothing) {
  for (const int state : {4, INT_MAX}) {
    int added = -1;
    EXPECT_EQ(filer().UpdateContainer(state, added, -1, 0), 0);
    EXPECT_EQ(added, 0);
  }
}

TEST_F(LaterStates, WithATwinUnderAnotherPathKeepTheBlockWithoutCountingIt) {
  ForgedValues deeper = Result("Heat");
  deeper.group_name = "Deeper";
  model_.in_state(2, deeper);
  int added = -1;
  EXPECT_EQ(filer().UpdateContainer(2, added, -1, 0), 0);
  EXPECT_EQ(added, 1);
  EXPECT_THAT(Names(), testing::UnorderedElementsAre("Heat", "Heat", "Speed"));
}

TEST_F(LaterStates, OfAnotherZoneAreNoTwins) {
  ForgedValues zoned = Result("Heat");
  zoned.zoneid = 4;
  model_.in_state(2, zoned);  // in place of the block of zone 0
  int added = -1;
  EXPECT_EQ(filer().UpdateContainer(2, added, -1, 0), 0);
  EXPECT_EQ(added, 2);
}

}  // namespace
