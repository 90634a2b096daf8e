// The whole read of a result block: values, ids, locations, frames, and the query of stored types. Single items are in
// result_attribute_test, hyperslabs in result_selective_read_test, headers in result_header_test.

#include <cstdint>
#include <string>
#include <vector>

#include "result/forged_result.h"

namespace {

using namespace orv_test;
using Floats = std::vector<float>;
using Ints = std::vector<int>;

class ResultRead : public OrvTest, public ::testing::WithParamInterface<Layout> {};
INSTANTIATE_TEST_SUITE_P(Layouts, ResultRead, ::testing::Values(Layout::kSplit, Layout::kSingle), NameOfLayout);

TEST_P(ResultRead, TakesEntityValuesForEntitiesAndComponents) {
  ForgedResult forged(GetParam(), kNodePath);
  forged.data().dataset<float>("res", {2, 3}, {1, 2, 3, 4, 5, 6});
  ORVResult block = NodeBlock(1000);
  block.m_nent = 2;
  block.m_ncoo = 3;
  Floats values(6);
  block.m_res = values.data();
  EXPECT_EQ(block.ReadBlock(forged.path().c_str(), 1, ORV_READ_DATA), 0);
  EXPECT_EQ(values, (Floats{1, 2, 3, 4, 5, 6}));
}

TEST_P(ResultRead, TakesComplexEntityValuesForPairs) {
  ForgedResult forged(GetParam(), kNodePath);
  forged.data().dataset<float>("res", {2, 1, 2}, {1, 2, 3, 4});
  ORVResult block = NodeBlock(1001);
  block.m_nent = 2;
  block.m_ncoo = 1;
  Floats values(4);
  block.m_res = values.data();
  EXPECT_EQ(block.ReadBlock(forged.path().c_str(), 1, ORV_READ_DATA), 0);
  EXPECT_EQ(values, (Floats{1, 2, 3, 4}));
}

TEST_P(ResultRead, TakesMultiStateEntityValuesForStatesFirst) {
  ForgedResult forged(GetParam(), kMultiNodePath);
  forged.data().dataset<float>("res", {3, 2, 1}, {1, 2, 3, 4, 5, 6});
  ORVResult block = NodeBlock(1050);
  block.m_nstate = 3;
  block.m_nent = 2;
  block.m_ncoo = 1;
  Floats values(6);
  block.m_res = values.data();
  EXPECT_EQ(block.ReadBlock(forged.path().c_str(), 0, ORV_READ_DATA), 0);
  EXPECT_EQ(values, (Floats{1, 2, 3, 4, 5, 6}));
}

TEST_P(ResultRead, TakesMultiStateComplexEntityValuesForFourAxes) {
  ForgedResult forged(GetParam(), kMultiNodePath);
  forged.data().dataset<double>("res", {2, 1, 1, 2}, {1, 2, 3, 4});
  ORVResult block = NodeBlock(1051);
  block.m_nstate = 2;
  block.m_nent = 1;
  block.m_ncoo = 1;
  block.m_resType = ORV_DOUBLE;
  std::vector<double> values(4);
  block.m_res = values.data();
  EXPECT_EQ(block.ReadBlock(forged.path().c_str(), 0, ORV_READ_DATA), 0);
  EXPECT_EQ(values, (std::vector<double>{1, 2, 3, 4}));
}

TEST_P(ResultRead, ConvertsStoredDoublesToTheTypeOfTheBuffer) {
  ForgedResult forged(GetParam(), kNodePath);
  forged.data().dataset<double>("res", {1, 2}, {0.5, -2});
  ORVResult block = NodeBlock(1000);
  block.m_nent = 1;
  block.m_ncoo = 2;
  Floats values(2);
  block.m_res = values.data();
  EXPECT_EQ(block.ReadBlock(forged.path().c_str(), 1, ORV_READ_DATA), 0);
  EXPECT_EQ(values, (Floats{0.5F, -2}));
}

/// A block of two shells with two layers and one component, with everything that may stand beside the values.
ForgedResult ForgeShells(Layout layout) {
  ForgedResult forged(layout, kShellPath);
  forged.data().dataset<float>("res", {2, 2, 1}, {1, 2, 3, 4}).dataset<int>("idele", {2}, {70, 80});
  forged.data().dataset<float>("eloc", {2, 3}, {.1F, .2F, .3F, .4F, .5F, .6F});
  return forged;
}

/// Reads such a block.
struct Shells {
  explicit Shells(int kind = 1100) : block(ShellBlock(kind)) {
    block.m_nent = 2;
    block.m_numl = 2;
    block.m_ncoo = 1;
    block.m_ndim = 3;
    block.m_readIds = 1;
    block.m_res = values.data();
    block.m_entid = ids.data();
    block.m_eloc = locations.data();
  }
  int Read(const std::string& file, int stages = ORV_READ_DATA) { return block.ReadBlock(file.c_str(), 1, stages); }

  ORVResult block;
  Floats values = Floats(4, -1);
  Ints ids = Ints(2, -1);
  Floats locations = Floats(6, -1);
};

TEST_P(ResultRead, OfAnElementKindFillsLocationsValuesAndIds) {
  ForgedResult forged = ForgeShells(GetParam());
  Shells shells;
  EXPECT_EQ(shells.Read(forged.path()), 0);
  EXPECT_EQ(shells.values, (Floats{1, 2, 3, 4}));
  EXPECT_EQ(shells.ids, (Ints{70, 80}));
  EXPECT_EQ(shells.locations, (Floats{.1F, .2F, .3F, .4F, .5F, .6F}));
}

TEST_P(ResultRead, OfAnElementKindWithoutIdsReadsNothingAndSucceeds) {
  ForgedResult forged = ForgeShells(GetParam());
  forged.data().integer32("fidglob", 5);
  Shells shells;
  shells.block.m_readIds = 0;
  EXPECT_EQ(shells.Read(forged.path()), 0);
  EXPECT_EQ(shells.values, (Floats{-1, -1, -1, -1}));
  EXPECT_EQ(shells.ids, (Ints{-1, -1}));
  EXPECT_EQ(shells.locations, Floats(6, -1));
  EXPECT_EQ(shells.block.m_fidglob, 0);
}

TEST_P(ResultRead, TakesElementValuesForThreeAxesWhateverTheKind) {
  ForgedResult stored_as_such = ForgeShells(GetParam());
  stored_as_such.data().dataset<float>("res", {2, 2, 1, 2}, Floats(8, 9));
  Shells complex(1101);
  EXPECT_EQ(complex.Read(stored_as_such.path()), 1);
  EXPECT_EQ(complex.values, Floats(4, -1));

  ForgedResult three_axes = ForgeShells(GetParam());
  EXPECT_EQ(complex.Read(three_axes.path()), 0);
  EXPECT_EQ(complex.values, (Floats{1, 2, 3, 4}));
}

TEST_P(ResultRead, OfMultiStateElementsFailsOnTheStateAxis) {
  ForgedResult forged(GetParam(), kMultiShellPath);
  forged.data().dataset<float>("res", {3, 2, 2, 1}, Floats(12, 9));
  Shells shells(1150);
  shells.block.m_nstate = 3;
  EXPECT_EQ(shells.Read(forged.path()), 1);
  EXPECT_EQ(shells.values, Floats(4, -1));
}

TEST_P(ResultRead, WithoutLocationsInTheFileReadsOn) {
  ForgedResult forged = ForgeShells(GetParam());
  forged.data().drop("eloc");
  Shells shells;
  EXPECT_EQ(shells.Read(forged.path()), 0);
  EXPECT_EQ(shells.values, (Floats{1, 2, 3, 4}));
  EXPECT_EQ(shells.locations, Floats(6, -1));
}

TEST_P(ResultRead, WithoutABufferForLocationsReadsOn) {
  ForgedResult forged = ForgeShells(GetParam());
  Shells shells;
  shells.block.m_eloc = nullptr;
  EXPECT_EQ(shells.Read(forged.path()), 0);
  EXPECT_EQ(shells.values, (Floats{1, 2, 3, 4}));
}

TEST_P(ResultRead, WithoutCoordinatesOfLocationsReadsOn) {
  ForgedResult forged = ForgeShells(GetParam());
  Shells shells;
  shells.block.m_ndim = 0;
  EXPECT_EQ(shells.Read(forged.path()), 0);
  EXPECT_EQ(shells.values, (Floats{1, 2, 3, 4}));
  EXPECT_EQ(shells.locations, Floats(6, -1));
}

TEST_P(ResultRead, TakesLocationsInTheirType) {
  ForgedResult forged = ForgeShells(GetParam());
  Shells shells;
  std::vector<double> locations(6);
  shells.block.m_eloc = locations.data();
  shells.block.m_elocType = ORV_DOUBLE;
  EXPECT_EQ(shells.Read(forged.path()), 0);
  EXPECT_EQ(Floats(locations.begin(), locations.end()), (Floats{.1F, .2F, .3F, .4F, .5F, .6F}));
  EXPECT_EQ(shells.values, (Floats{1, 2, 3, 4}));
}

TEST_P(ResultRead, EndsAtLocationsOfAnotherShape) {
  ForgedResult forged = ForgeShells(GetParam());
  forged.data().dataset<float>("eloc", {2, 4}, Floats(8, 7));
  Shells shells;
  EXPECT_EQ(shells.Read(forged.path()), 1);
  EXPECT_EQ(shells.values, Floats(4, -1));
  EXPECT_EQ(shells.locations, Floats(6, -1));
}

TEST_P(ResultRead, EndsAtLocationsOfAnotherClass) {
  ForgedResult forged = ForgeShells(GetParam());
  forged.data().retype("eloc");
  Shells shells;
  EXPECT_EQ(shells.Read(forged.path()), 1);
  EXPECT_EQ(shells.values, Floats(4, -1));
}

TEST_P(ResultRead, WithoutIdsInTheFileForgetsThemAndSucceeds) {
  ForgedResult forged = ForgeShells(GetParam());
  forged.data().drop("idele");
  Shells shells;
  EXPECT_EQ(shells.Read(forged.path()), 0);
  EXPECT_EQ(shells.block.m_readIds, 0);
  EXPECT_EQ(shells.values, (Floats{1, 2, 3, 4}));
  EXPECT_EQ(shells.ids, (Ints{-1, -1}));
}

TEST_P(ResultRead, WithIdsOfAnotherCountFailsAfterTheValues) {
  ForgedResult forged = ForgeShells(GetParam());
  forged.data().dataset<int>("idele", {3}, {1, 2, 3});
  Shells shells;
  EXPECT_EQ(shells.Read(forged.path()), 1);
  EXPECT_EQ(shells.values, (Floats{1, 2, 3, 4}));
  EXPECT_EQ(shells.ids, (Ints{-1, -1}));
  EXPECT_EQ(shells.block.m_readIds, 1);
}

TEST_P(ResultRead, LeavesIdsAloneThatNobodyWants) {
  ForgedResult forged(GetParam(), kNodePath);
  forged.data().dataset<float>("res", {1, 1}, {4}).dataset<int>("entid", {1}, {11});
  ORVResult block = NodeBlock(1000);
  block.m_nent = block.m_ncoo = 1;
  float value = 0;
  int id = -1;
  block.m_res = &value;
  block.m_entid = &id;
  EXPECT_EQ(block.ReadBlock(forged.path().c_str(), 1, ORV_READ_DATA), 0);
  EXPECT_EQ(value, 4);
  EXPECT_EQ(id, -1);
}

/// One node with one component.
struct OneNode {
  OneNode() : block(NodeBlock(1000)) {
    block.m_nent = block.m_ncoo = 1;
    block.m_res = &value;
  }
  int Read(const std::string& file, int stages = ORV_READ_DATA) { return block.ReadBlock(file.c_str(), 1, stages); }

  ORVResult block;
  float value = -1;
};

ForgedResult ForgeOneNode(Layout layout) {
  ForgedResult forged(layout, kNodePath);
  forged.data().dataset<float>("res", {1, 1}, {4});
  return forged;
}

TEST_P(ResultRead, ReadsWideIdsIntoTheTypeOfTheirBuffer) {
  ForgedResult forged = ForgeOneNode(GetParam());
  forged.data().dataset<std::int64_t>("entid", {1}, {5'000'000'000});
  OneNode node;
  std::int64_t id = 0;
  node.block.m_readIds = 1;
  node.block.m_entid = &id;
  node.block.m_entidType = ORV_LONG;
  EXPECT_EQ(node.Read(forged.path()), 0);
  EXPECT_EQ(id, 5'000'000'000);
}

TEST_P(ResultRead, WithoutValuesInTheFileFails) {
  ForgedResult forged = ForgeOneNode(GetParam());
  forged.data().drop("res");
  OneNode node;
  EXPECT_EQ(node.Read(forged.path()), 1);
  EXPECT_EQ(node.value, -1);
}

TEST_P(ResultRead, WithoutABufferForValuesFails) {
  ForgedResult forged = ForgeOneNode(GetParam());
  OneNode node;
  node.block.m_res = nullptr;
  EXPECT_EQ(node.Read(forged.path()), 1);
}

TEST_P(ResultRead, WithMoreValuesInTheFileThanTheCountsSayFails) {
  ForgedResult forged(GetParam(), kNodePath);
  forged.data().dataset<float>("res", {1000, 1}, Floats(1000, 3));
  OneNode node;
  EXPECT_EQ(node.Read(forged.path()), 1);
  EXPECT_EQ(node.value, -1);
}

TEST_P(ResultRead, WithNegativeCountsFails) {
  ForgedResult forged = ForgeOneNode(GetParam());
  OneNode node;
  node.block.m_nent = -1;
  node.block.m_ncoo = -1;
  EXPECT_EQ(node.Read(forged.path()), 1);
  EXPECT_EQ(node.value, -1);
}

TEST_P(ResultRead, TakesTheFrameIdOfTheBlockFrom32BitsToo) {
  ForgedResult forged = ForgeOneNode(GetParam());
  forged.data().dataset<int>("fidglob", {1}, {-12});
  OneNode node;
  EXPECT_EQ(node.Read(forged.path()), 0);
  EXPECT_EQ(node.block.m_fidglob, -12);
}

TEST_P(ResultRead, TakesTheFrameIdOfTheBlockFrom64Bits) {
  ForgedResult forged = ForgeOneNode(GetParam());
  forged.data().scalar<std::int64_t>("fidglob", 5'000'000'000);
  OneNode node;
  EXPECT_EQ(node.Read(forged.path()), 0);
  EXPECT_EQ(node.block.m_fidglob, 5'000'000'000);
}

TEST_P(ResultRead, DoesNotTakeTheFrameIdOfTheBlockFromAnAttribute) {
  ForgedResult forged = ForgeOneNode(GetParam());
  forged.header().integer("fidglob", 8);
  OneNode node;
  EXPECT_EQ(node.Read(forged.path()), 0);
  EXPECT_EQ(node.block.m_fidglob, 0);
}

TEST_P(ResultRead, PassesOverMoreThanOneFrameIdOfTheBlock) {
  ForgedResult forged = ForgeOneNode(GetParam());
  forged.data().dataset<std::int64_t>("fidglob", {4}, {1, 2, 3, 4});
  OneNode node;
  EXPECT_EQ(node.Read(forged.path()), 0);
  EXPECT_EQ(node.value, 4);
  EXPECT_EQ(node.block.m_fidglob, 0);
}

TEST_P(ResultRead, TakesFrameIdsOfEntitiesInTheirType) {
  ForgedResult forged = ForgeOneNode(GetParam());
  forged.data().dataset<int>("fid", {1}, {31}).dataset<int>("fidglob", {1}, {9});
  OneNode node;
  std::int64_t frame = 0;
  node.block.m_fswitch = 1;
  node.block.m_fid = &frame;
  node.block.m_fidType = ORV_LONG;
  EXPECT_EQ(node.Read(forged.path()), 0);
  EXPECT_EQ(frame, 31);
  EXPECT_EQ(node.block.m_fidglob, 0);
}

TEST_P(ResultRead, PassesOverFrameIdsThatCannotBeRead) {
  ForgedResult forged = ForgeOneNode(GetParam());
  forged.data().dataset<int>("fid", {2}, {31, 32});
  OneNode node;
  int frame = -1;
  node.block.m_fswitch = 1;
  node.block.m_fid = &frame;
  EXPECT_EQ(node.Read(forged.path()), 0);
  EXPECT_EQ(frame, -1);
}

TEST_P(ResultRead, PassesOverFrameIdsWithoutABuffer) {
  ForgedResult forged = ForgeOneNode(GetParam());
  forged.data().dataset<int>("fid", {1}, {31});
  OneNode node;
  node.block.m_fswitch = 1;
  EXPECT_EQ(node.Read(forged.path()), 0);
  EXPECT_EQ(node.value, 4);
}

TEST_P(ResultRead, OfTypesAloneLeavesTheValuesAlone) {
  ForgedResult forged(GetParam(), kNodePath);
  forged.data().dataset<double>("res", {1, 1}, {4}).dataset<std::int64_t>("entid", {1}, {1});
  forged.data().dataset<std::int64_t>("fid", {1}, {1}).scalar<int>("fidglob", 3);
  OneNode node;
  node.block.m_readIds = 1;
  EXPECT_EQ(node.Read(forged.path(), ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(node.block.m_resType, ORV_DOUBLE);
  EXPECT_EQ(node.block.m_entidType, ORV_LONG);
  EXPECT_EQ(node.block.m_fidType, ORV_INT);  // asked for with a frame switch only
  EXPECT_EQ(node.block.m_fidglob, 0);
  EXPECT_EQ(node.value, -1);

  node.block.m_fswitch = 1;
  EXPECT_EQ(node.Read(forged.path(), ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(node.block.m_fidType, ORV_LONG);
}

TEST_P(ResultRead, OfTypesFindsFloatsIntegersAndTexts) {
  ForgedResult forged(GetParam(), kNodePath);
  forged.data().dataset<float>("res", {1, 1}, {4}).dataset<int>("entid", {1}, {1}).texts("fid", 8, {1}, {"x"});
  OneNode node;
  node.block.m_resType = ORV_DOUBLE;
  node.block.m_entidType = ORV_LONG;
  node.block.m_fswitch = 1;
  EXPECT_EQ(node.Read(forged.path(), ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(node.block.m_resType, ORV_FLOAT);
  EXPECT_EQ(node.block.m_entidType, ORV_INT);
  EXPECT_EQ(node.block.m_fidType, ORV_CHAR);
}

TEST_P(ResultRead, OfTypesTellsMissingDatasets) {
  ForgedResult forged(GetParam(), kNodePath);
  OneNode node;
  node.block.m_fswitch = 1;
  EXPECT_EQ(node.Read(forged.path(), ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(node.block.m_resType, ORV_NO_DATASET);
  EXPECT_EQ(node.block.m_entidType, ORV_NO_DATASET);
  EXPECT_EQ(node.block.m_fidType, ORV_NO_DATASET);
}

TEST_P(ResultRead, OfTypesFailsForOneThatTheLibraryDoesNotKnow) {
  ForgedResult forged(GetParam(), kNodePath);
  forged.data().raw([](hid_t here) {
    const hsize_t one = 1;
    const Id space(H5Screate_simple(1, &one, nullptr), "space");
    const Id dataset(H5Dcreate2(here, "res", H5T_NATIVE_SHORT, space.get(), 0, 0, 0), "res");
  });
  OneNode node;
  EXPECT_EQ(node.Read(forged.path(), ORV_READ_DATA_INFO), 1);
  EXPECT_EQ(node.block.m_resType, ORV_UNKNOWN_TYPE);
}

TEST_P(ResultRead, OfTypesOfAnElementKindNeedsNoIds) {
  ForgedResult forged = ForgeShells(GetParam());
  Shells shells;
  shells.block.m_readIds = 0;
  shells.block.m_entidType = ORV_LONG;
  EXPECT_EQ(shells.Read(forged.path(), ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(shells.block.m_resType, ORV_FLOAT);
  EXPECT_EQ(shells.block.m_entidType, ORV_INT);
}

TEST_P(ResultRead, OfValuesAndTypesDoesBoth) {
  ForgedResult forged(GetParam(), kNodePath);
  forged.data().dataset<double>("res", {1, 1}, {4});
  OneNode node;
  EXPECT_EQ(node.Read(forged.path(), ORV_READ_DATA | ORV_READ_DATA_INFO), 0);
  EXPECT_EQ(node.value, 4);
  EXPECT_EQ(node.block.m_resType, ORV_DOUBLE);
}

class ResultReadKinds : public OrvTest {};

TEST_F(ResultReadKinds, WithoutADatasetOfValuesFail) {
  for (const int kind : {-1, 10, 500, 999, 1052, 1152}) {
    ORVResult block(kind);
    EXPECT_EQ(block.ReadData(0, ORV_READ_DATA | ORV_READ_DATA_INFO), 1) << kind;
  }
}

TEST_F(ResultReadKinds, WithoutAReaderFail) {
  float value = 0;
  ORVResult block(1000);
  block.m_nent = block.m_ncoo = 1;
  block.m_res = &value;
  EXPECT_EQ(block.ReadData(1, ORV_READ_DATA), 1);
  EXPECT_EQ(block.ReadData(1, ORV_READ_DATA_INFO), 1);
}

// ---- Walks over states

/// What a walk told its callback.
struct Told {
  int status;
  int stage;
  int index;
  float value;
};
std::vector<Told>* told = nullptr;

_ORVAction TellIndex(int status, int stage, void* where, void* block) {
  const auto* values = static_cast<const float*>(static_cast<ORVResult*>(block)->m_res);
  told->push_back({status, stage, *static_cast<int*>(where), *values});
  return ORV_ACTION_CONTINUE;
}

_ORVAction TellCount(int status, int stage, void*, void* block) {
  told->push_back({status, stage, static_cast<int>(static_cast<ORVResult*>(block)->m_ncoo), 0});
  return ORV_ACTION_CONTINUE;
}

class ResultOverStates : public OrvTest {
 protected:
  ResultOverStates() { told = &told_; }
  ~ResultOverStates() override { told = nullptr; }

  std::vector<Told> told_;
};

TEST_F(ResultOverStates, ReadsTheBlockOfItsOwnNamesInEach) {
  ForgedFile forged("over");
  forged.at("/post/singlestate/state000000000001/entityresults/Node/VELOCITY/data").dataset<float>("res", {1, 1}, {1});
  forged.at("/post/singlestate/state000000000002/entityresults/Node/OTHER/data").dataset<float>("res", {1, 1}, {2});
  forged.at("/post/singlestate/state000000000003/entityresults/Node/VELOCITY/data").dataset<float>("res", {1, 1}, {3});
  OneNode node;
  EXPECT_EQ(node.block.ReadBlockOver(forged.path().c_str(), ORV_READ_DATA, TellIndex, 1, 0, 1, "not looked at"), 0);
  ASSERT_EQ(told_.size(), 3U);
  EXPECT_EQ(told_[0].status, 0);
  EXPECT_EQ(told_[0].stage, 2);
  EXPECT_EQ(told_[0].index, 0);
  EXPECT_EQ(told_[0].value, 1);
  EXPECT_EQ(told_[1].status, 1010);
  EXPECT_EQ(told_[1].stage, -1);
  EXPECT_EQ(told_[1].index, 1);
  EXPECT_EQ(told_[2].status, 0);
  EXPECT_EQ(told_[2].index, 2);
  EXPECT_EQ(told_[2].value, 3);
}

TEST_F(ResultOverStates, NeedsNoNameToRead) {
  ForgedFile forged("over");
  forged.at("/post/singlestate/state000000000001/entityresults/Node/VELOCITY/data").dataset<float>("res", {1, 1}, {1});
  OneNode node;
  EXPECT_EQ(node.block.ReadBlockOver(forged.path().c_str(), ORV_READ_DATA, TellIndex, 1, 0, 1, nullptr), 0);
  EXPECT_EQ(told_.size(), 1U);
}

TEST_F(ResultOverStates, ReadsTheStatesOfItsRangeInSteps) {
  ForgedFile forged("over");
  for (const int state : {1, 2, 3, 4, 5}) {
    forged.at("/post/singlestate/state00000000000" + std::to_string(state) + "/entityresults/Node/VELOCITY/data");
    forged.dataset<float>("res", {1, 1}, {static_cast<float>(state)});
  }
  OneNode node;
  EXPECT_EQ(node.block.ReadBlockOver(forged.path().c_str(), ORV_READ_DATA, TellIndex, 2, 4, 2, nullptr), 0);
  ASSERT_EQ(told_.size(), 2U);
  EXPECT_EQ(told_[0].index, 1);
  EXPECT_EQ(told_[0].value, 2);
  EXPECT_EQ(told_[1].index, 3);
  EXPECT_EQ(told_[1].value, 4);
}

TEST_F(ResultOverStates, ReadsNothingWithoutFileCallbackOrKey) {
  ForgedFile forged("over");
  OneNode node;
  const std::string path = forged.path();
  EXPECT_NE(node.block.ReadBlockOver(nullptr, ORV_READ_DATA, TellIndex, 1, 0, 1, ""), 0);
  EXPECT_NE(node.block.ReadBlockOver(path.c_str(), ORV_READ_DATA, nullptr, 1, 0, 1, ""), 0);
  EXPECT_NE(ORVResult(7).ReadBlockOver(path.c_str(), ORV_READ_DATA, TellIndex, 1, 0, 1, ""), 0);
  EXPECT_TRUE(told_.empty());
}

TEST_F(ResultOverStates, WalksAllBlocksOfItsTypeGroup) {
  ForgedFile forged("over");
  for (const char* name : {"A", "B"}) {
    const std::string block = std::string("/post/singlestate/state000000000001/entityresults/Node/") + name;
    forged.at(block + "/orvblock").integer("block", 1000).text("etypvar", name).text("etyp", "Node");
    forged.integer("ncoo", *name).integer("nent", 1).integer("nindex", 0).integer("fswitch", 0);
  }
  forged.at("/post/singlestate/state000000000001/elementresults/SHELL/C/orvblock").integer("block", 1100);
  ORVResult block(1000);
  EXPECT_EQ(block.IterateBlockOver(forged.path().c_str(), ORV_READ_HEADER, TellCount, 1, 0, 1, nullptr, 0), 0);
  ASSERT_EQ(told_.size(), 2U);
  EXPECT_EQ(told_[0].index, 'A');
  EXPECT_EQ(told_[1].index, 'B');
  EXPECT_EQ(told_[1].status, 0);
}

TEST_F(ResultOverStates, WalksBackwardsThroughItsRangeInSteps) {
  ForgedFile forged("over");
  for (const int state : {1, 2, 3, 4}) {
    forged.at("/post/singlestate/state00000000000" + std::to_string(state) + "/entityresults/Node/A/orvblock");
    forged.integer("block", 1000).text("etypvar", "A").text("etyp", "Node").integer("ncoo", state).integer("nent", 1);
  }
  ORVResult block(1000);
  EXPECT_EQ(block.IterateBlockOver(forged.path().c_str(), ORV_READ_HEADER, TellCount, 1, 3, 2, nullptr, 1), 0);
  ASSERT_EQ(told_.size(), 2U);
  EXPECT_EQ(told_[0].index, 3);
  EXPECT_EQ(told_[1].index, 1);
}

TEST_F(ResultOverStates, WalksNothingWithoutFileCallbackOrKey) {
  ForgedFile forged("over");
  const std::string path = forged.path();
  ORVResult block(1000);
  EXPECT_NE(block.IterateBlockOver(nullptr, ORV_READ_HEADER, TellCount, 1, 0, 1, "", 0), 0);
  EXPECT_NE(block.IterateBlockOver(path.c_str(), ORV_READ_HEADER, nullptr, 1, 0, 1, "", 0), 0);
  EXPECT_NE(ORVResult(7).IterateBlockOver(path.c_str(), ORV_READ_HEADER, TellCount, 1, 0, 1, "", 0), 0);
  EXPECT_TRUE(told_.empty());
}

TEST_F(ResultOverStates, ReadsAChildOfTheTypeGroupByPosition) {
  ForgedFile forged("at");
  forged.at("/post/singlestate/state000000000001/entityresults/A/orvblock").dataset<float>("res", {1, 1}, {1});
  forged.at("/post/singlestate/state000000000001/entityresults/B/orvblock").dataset<float>("res", {1, 1}, {2});
  OneNode node;
  EXPECT_EQ(node.block.ReadBlockAt(forged.path().c_str(), 1, 1, ORV_READ_DATA), 0);
  EXPECT_EQ(node.value, 2);
}

}  // namespace
