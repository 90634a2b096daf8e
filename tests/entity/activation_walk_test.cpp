// Walks of an element activation block over the states. The walks themselves are tested with the block base.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "entity/activation_forge.h"
#include "orvio/orv_ele_activation.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> visited;  // "<etyp> <nent>" of each call; emptied by the fixture

_ORVAction Record(int status, int /*stage*/, void* /*where*/, void* block) {
  const auto* flags = static_cast<ORVEleActivation*>(static_cast<ORVBlock*>(block));
  visited.push_back(std::string(flags->m_etyp) + " " + std::to_string(flags->m_nent) + (status == 0 ? "" : " failed"));
  return ORV_ACTION_CONTINUE;
}

class ActivationWalk : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  ActivationWalk() {
    visited.clear();
    for (int state = 1; state <= 3; ++state) {
      const std::string group = "/post/singlestate/state00000000000" + std::to_string(state) + "/activflags/";
      AddActivation(file_, group + "BEAM", GetParam()).text("etyp", "BEAM").integer("nent", 10 + state);
      if (state != 2) AddActivation(file_, group + "SHELL", GetParam()).integer("nent", 20 + state);
    }
    path_ = file_.path();
  }

  ForgedFile file_;
  std::string path_;
  ORVEleActivation block_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, ActivationWalk, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(ActivationWalk, ReadBlockOverGoesThroughTheStatesOfOneBlock) {
  std::strcpy(block_.m_etyp, "SHELL");
  EXPECT_EQ(block_.ReadBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 1, 0, 1, nullptr), 0);
  EXPECT_THAT(visited, ElementsAre("SHELL 21", "SHELL 23"));
}

TEST_P(ActivationWalk, ReadBlockOverDoesNotUseTheName) {
  std::strcpy(block_.m_etyp, "SHELL");
  EXPECT_EQ(block_.ReadBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 2, 3, 1, "./activflags/BEAM"), 0);
  EXPECT_THAT(visited, ElementsAre("SHELL 23"));
}

TEST_P(ActivationWalk, ReadBlockOverNeedsAnEntityType) {
  EXPECT_EQ(block_.ReadBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 1, 0, 1, "SHELL"), 1);
  EXPECT_THAT(visited, IsEmpty());
}

TEST_P(ActivationWalk, IterateBlockOverFindsAllBlocksOfEachState) {
  EXPECT_EQ(block_.IterateBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 1, 0, 1, "ignored", 0), 0);
  EXPECT_THAT(visited, ElementsAre("BEAM 11", "SHELL 21", "BEAM 12", "BEAM 13", "SHELL 23"));
}

TEST_P(ActivationWalk, IterateBlockOverGoesBackwards) {
  EXPECT_EQ(block_.IterateBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 1, 0, 2, nullptr, 1), 0);
  EXPECT_THAT(visited, ElementsAre("BEAM 13", "SHELL 23", "BEAM 11", "SHELL 21"));
}

TEST_P(ActivationWalk, NeedsAFileAndACallback) {
  std::strcpy(block_.m_etyp, "SHELL");
  EXPECT_EQ(block_.ReadBlockOver(nullptr, ORV_READ_HEADER, Record, 1, 0, 1, nullptr), 1);
  EXPECT_EQ(block_.ReadBlockOver(path_.c_str(), ORV_READ_HEADER, nullptr, 1, 0, 1, nullptr), 1);
  EXPECT_EQ(block_.IterateBlockOver(nullptr, ORV_READ_HEADER, Record, 1, 0, 1, nullptr, 0), 1);
  EXPECT_EQ(block_.IterateBlockOver(path_.c_str(), ORV_READ_HEADER, nullptr, 1, 0, 1, nullptr, 0), 1);
  EXPECT_THAT(visited, IsEmpty());
}

TEST_P(ActivationWalk, IterateBlockFindsTheBlocksOfOneState) {
  EXPECT_EQ(block_.IterateBlock(path_.c_str(), 3, ORV_READ_HEADER, Record), 0);
  EXPECT_THAT(visited, ElementsAre("BEAM 13", "SHELL 23"));
}

}  // namespace
}  // namespace orv_test
