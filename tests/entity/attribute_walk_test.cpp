// Walks of entity attribute and identifiers blocks over the states. The walks themselves are tested with the block base.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "entity/entity_list_forge.h"
#include "orvio/orv_ent_attribute.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> visited;  // "<etyp> <nent>" of each call; emptied by the fixture

_ORVAction Record(int status, int /*stage*/, void* /*where*/, void* block) {
  const auto* entities = static_cast<ORVEntAttribute*>(static_cast<ORVBlock*>(block));
  visited.push_back(std::string(entities->m_etyp) + " " + std::to_string(entities->m_nent) +
                    (status == 0 ? "" : " failed"));
  return ORV_ACTION_CONTINUE;
}

class AttributeWalk : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  AttributeWalk() {
    visited.clear();
    for (int state = 1; state <= 3; ++state) {
      AddEntities(file_, InState(state, "attributes"), "NODE", GetParam()).integer("nent", 10 + state);
      if (state != 2) AddEntities(file_, InState(state, "attributes"), "SHELL", GetParam()).integer("nent", 20 + state);
      AddEntities(file_, InState(state, "identifiers"), "NODE", GetParam()).integer("nent", 50 + state);
    }
    path_ = file_.path();
    std::strcpy(block_.m_etyp, "SHELL");
    std::strcpy(identifiers_.m_etyp, "NODE");
  }

  ForgedFile file_;
  std::string path_;
  ORVEntAttribute block_;
  ORVIdentifiers identifiers_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, AttributeWalk, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(AttributeWalk, ReadBlockOverGoesThroughTheStatesOfOneBlock) {
  EXPECT_EQ(block_.ReadBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 1, 0, 1, nullptr), 0);
  EXPECT_THAT(visited, ElementsAre("SHELL 21", "SHELL 23"));
}

TEST_P(AttributeWalk, ReadBlockOverDoesNotUseTheName) {
  EXPECT_EQ(block_.ReadBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 2, 3, 1, "./attributes/NODE"), 0);
  EXPECT_THAT(visited, ElementsAre("SHELL 23"));
}

TEST_P(AttributeWalk, ReadBlockOverNeedsAnEntityType) {
  block_.m_etyp[0] = '\0';
  EXPECT_EQ(block_.ReadBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 1, 0, 1, "SHELL"), 1);
  EXPECT_THAT(visited, IsEmpty());
}

TEST_P(AttributeWalk, IterateBlockOverFindsAllBlocksOfEachState) {
  EXPECT_EQ(block_.IterateBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 1, 0, 1, "ignored", 0), 0);
  EXPECT_THAT(visited, ElementsAre("NODE 11", "SHELL 21", "NODE 12", "NODE 13", "SHELL 23"));
}

TEST_P(AttributeWalk, IterateBlockOverGoesBackwards) {
  EXPECT_EQ(block_.IterateBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 1, 0, 2, nullptr, 1), 0);
  EXPECT_THAT(visited, ElementsAre("NODE 13", "SHELL 23", "NODE 11", "SHELL 21"));
}

TEST_P(AttributeWalk, OfIdentifiersGoesThroughTheirGroups) {
  EXPECT_EQ(identifiers_.ReadBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 1, 2, 1, nullptr), 0);
  EXPECT_THAT(visited, ElementsAre("NODE 51", "NODE 52"));
  EXPECT_EQ(identifiers_.IterateBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 3, 0, 1, nullptr, 0), 0);
  EXPECT_THAT(visited, ElementsAre("NODE 51", "NODE 52", "NODE 53"));
}

TEST_P(AttributeWalk, NeedsAFileAndACallback) {
  EXPECT_EQ(block_.ReadBlockOver(nullptr, ORV_READ_HEADER, Record, 1, 0, 1, nullptr), 1);
  EXPECT_EQ(block_.ReadBlockOver(path_.c_str(), ORV_READ_HEADER, nullptr, 1, 0, 1, nullptr), 1);
  EXPECT_EQ(block_.IterateBlockOver(nullptr, ORV_READ_HEADER, Record, 1, 0, 1, nullptr, 0), 1);
  EXPECT_EQ(block_.IterateBlockOver(path_.c_str(), ORV_READ_HEADER, nullptr, 1, 0, 1, nullptr, 0), 1);
  EXPECT_EQ(block_.IterateBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 0, 0, 1, nullptr, 0), 1);
  EXPECT_THAT(visited, IsEmpty());
}

}  // namespace
}  // namespace orv_test
