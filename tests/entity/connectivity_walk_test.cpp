// Walks of an element connectivity block over the states. The walks themselves are tested with the block base.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "entity/connectivity_forge.h"
#include "orvio/orv_ele_connectivity.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> visited;  // "<name at the call> <etypelem> <nele>" of each call; emptied by the fixture

_ORVAction Record(int status, int stage, void* where, void* block) {
  const auto* mesh = static_cast<ORVEleConnectivity*>(static_cast<ORVBlock*>(block));
  if (stage == -1) {
    visited.push_back("not there " + std::to_string(*static_cast<int*>(where)) + " " + std::to_string(status));
  } else {
    visited.push_back(std::string(static_cast<const char*>(where)) + " " + mesh->m_etypelem + " " +
                      std::to_string(mesh->m_nele) + (status == 0 ? "" : " failed"));
  }
  return ORV_ACTION_CONTINUE;
}

class ConnectivityWalk : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  ConnectivityWalk() {
    visited.clear();
    for (int state = 1; state <= 3; ++state) {
      const std::string group = "/post/singlestate/state00000000000" + std::to_string(state) + "/connectivities/";
      AddMesh(file_, group + "BEAM", GetParam()).text("etypelem", "BEAM").integer("nele", 10 + state);
      if (state != 2) AddMesh(file_, group + "SHELL", GetParam()).integer("nele", 20 + state);
    }
    path_ = file_.path();
  }

  ForgedFile file_;
  std::string path_;
  ORVEleConnectivity block_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, ConnectivityWalk, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(ConnectivityWalk, ReadBlockOverGoesThroughTheStatesOfOneBlock) {
  std::strcpy(block_.m_etypelem, "SHELL");
  EXPECT_EQ(block_.ReadBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 1, 0, 1, nullptr), 0);
  // The walk starts inside the block, so the only name it passes is that of the split layout's first part.
  EXPECT_THAT(visited, ElementsAre(" SHELL 21", GetParam() == Layout::kSplit ? "header SHELL 23" : " SHELL 23"));
}

TEST_P(ConnectivityWalk, ReadBlockOverDoesNotUseTheName) {
  std::strcpy(block_.m_etypelem, "SHELL");
  EXPECT_EQ(block_.ReadBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 2, 3, 1, "./connectivities/BEAM"), 0);
  EXPECT_THAT(visited, ElementsAre(" SHELL 23"));
}

TEST_P(ConnectivityWalk, ReadBlockOverNeedsAnElementType) {
  EXPECT_EQ(block_.ReadBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 1, 0, 1, "SHELL"), 1);
  EXPECT_THAT(visited, IsEmpty());
}

TEST_P(ConnectivityWalk, IterateBlockOverFindsAllBlocksOfEachState) {
  EXPECT_EQ(block_.IterateBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 1, 0, 1, "ignored", 0), 0);
  EXPECT_THAT(visited, ElementsAre("BEAM BEAM 11", "SHELL SHELL 21", "BEAM BEAM 12", "BEAM BEAM 13", "SHELL SHELL 23"));
}

TEST_P(ConnectivityWalk, IterateBlockOverGoesBackwards) {
  EXPECT_EQ(block_.IterateBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 1, 0, 2, nullptr, 1), 0);
  EXPECT_THAT(visited, ElementsAre("BEAM BEAM 13", "SHELL SHELL 23", "BEAM BEAM 11", "SHELL SHELL 21"));
}

TEST_P(ConnectivityWalk, NeedsAFileAndACallback) {
  std::strcpy(block_.m_etypelem, "SHELL");
  EXPECT_EQ(block_.ReadBlockOver(nullptr, ORV_READ_HEADER, Record, 1, 0, 1, nullptr), 1);
  EXPECT_EQ(block_.ReadBlockOver(path_.c_str(), ORV_READ_HEADER, nullptr, 1, 0, 1, nullptr), 1);
  EXPECT_EQ(block_.IterateBlockOver(nullptr, ORV_READ_HEADER, Record, 1, 0, 1, nullptr, 0), 1);
  EXPECT_EQ(block_.IterateBlockOver(path_.c_str(), ORV_READ_HEADER, nullptr, 1, 0, 1, nullptr, 0), 1);
  EXPECT_EQ(block_.IterateBlockOver(path_.c_str(), ORV_READ_HEADER, Record, 0, 0, 1, nullptr, 0), 1);
  EXPECT_THAT(visited, IsEmpty());
}

TEST_P(ConnectivityWalk, IterateBlockFindsTheBlocksOfOneState) {
  EXPECT_EQ(block_.IterateBlock(path_.c_str(), 3, ORV_READ_HEADER, Record), 0);
  EXPECT_THAT(visited, ElementsAre("BEAM BEAM 13", "SHELL SHELL 23"));
}

}  // namespace
}  // namespace orv_test
