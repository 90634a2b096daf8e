// The ids of the frames that entities of results have of their own.

#include <malloc.h>

#include <climits>

#include "filer/model_file.h"

namespace orv_test {
namespace {

/// Nodes with frames and shells without, in two states.
class ModelFrames : public ModelTest {
 protected:
  ModelFrames() {
    model_.variable({.name = "SPEED", .key = "SPEED"});
    model_.variable({.name = "HEAT", .key = "HEAT"});
    for (const int state : {1, 2}) {
      const Ints frames = state == 1 ? Ints{5, 6} : Ints{5, 6, -7};
      model_.in_state(state, {.variable = "SPEED", .nent = static_cast<int>(frames.size())});
      Frames(state, "entityresults/NODE/SPEED", frames);
      model_.in_state(state, {.kind = 1100, .etyp = "SHELL", .variable = "HEAT", .nent = 1000, .numl = 1});
    }
  }

  ForgedFile& Frames(int state, const char* block, const Ints& frames) {
    return Data(ForgedModel::StateGroup(state), block).dataset<std::int32_t>("fid", {frames.size()}, frames);
  }

  Ints FrameIds(Results& blocks, int state) {
    HandedOut<int> ids;
    return ids.first(filer_->GetResultFrameIds(blocks, state, &ids.array));
  }
  Ints FrameIds(int state) { return FrameIds(all(), state); }
};
INSTANTIATE_TEST_SUITE_P(Layouts, ModelFrames, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle),
                         NameOfModelLayout);

TEST_P(ModelFrames, AreThoseOfTheBlocksThatHaveThem) {
  Open();
  EXPECT_EQ(FrameIds(1), (Ints{5, 6}));
  EXPECT_EQ(FrameIds(2), (Ints{5, 6, -7}));
}

TEST_P(ModelFrames, StandBlockBehindBlock) {
  Frames(2, "elementresults/SHELL/HEAT", Ints(1000, 3));
  Open();
  Results turned = {all()[1], all()[0]};
  Ints expected(1000, 3);
  expected.insert(expected.end(), {5, 6, -7});
  EXPECT_EQ(FrameIds(turned, 2), expected);
}

TEST_P(ModelFrames, OfFewerThanAllEntitiesStandInAShrunkArray) {
  Open();
  HandedOut<int> ids;
  EXPECT_EQ(filer_->GetEntityCount(all(), 2), 1003);
  EXPECT_EQ(filer_->GetResultFrameIds(all(), 2, &ids.array), 3);
  EXPECT_LT(malloc_usable_size(ids.array), 100U);
}

TEST_P(ModelFrames, OfNoBlockLeaveANullPointer) {
  Open();
  Results shells = {all()[1]};
  int stale = 0;
  int* ids = &stale;
  EXPECT_EQ(filer_->GetResultFrameIds(shells, 2, &ids), 0);
  EXPECT_EQ(ids, nullptr);
}

TEST_P(ModelFrames, WithoutEntitiesLeaveThePointerAlone) {
  ModelFiler& filer = Open();
  ORVFiler missing(TempPath("missing.orv").c_str());
  Results none, list = all();
  int stale = 0;
  int* ids = &stale;
  EXPECT_EQ(filer.GetResultFrameIds(none, 2, &ids), 0);
  EXPECT_EQ(filer.GetResultFrameIds(list, 3, &ids), 0);
  EXPECT_EQ(missing.GetResultFrameIds(list, 2, &ids), 0);
  const WithoutData without(filer);
  EXPECT_EQ(filer.GetResultFrameIds(list, 2, &ids), 0);
  EXPECT_EQ(ids, &stale);
}

TEST_P(ModelFrames, WithCountsBeyondAnIntLeaveThePointerAlone) {
  Header(ForgedModel::StateGroup(2), "elementresults/SHELL/HEAT").integer("nele", INT_MAX);
  Open();
  int stale = 0;
  int* ids = &stale;
  EXPECT_EQ(filer_->GetResultFrameIds(all(), 2, &ids), 0);
  EXPECT_EQ(ids, &stale);
}

TEST_P(ModelFrames, WithoutAPlaceForThemAre0) {
  Open();
  EXPECT_EQ(filer_->GetResultFrameIds(all(), 2, nullptr), 0);
}

TEST_P(ModelFrames, LeaveTheBlocksAsTheyWereButForTheCount) {
  Open();
  ORVResult& block = *all()[0];
  int own = 0;
  block.m_fid = &own;
  block.m_fidType = ORV_LONG;
  EXPECT_EQ(FrameIds(2), (Ints{5, 6, -7}));
  EXPECT_EQ(block.m_fid, &own);
  EXPECT_EQ(block.m_fidType, ORV_LONG);
  EXPECT_EQ(own, 0);
  EXPECT_EQ(block.m_nent, 3);
  EXPECT_EQ(all()[1]->m_fid, nullptr);
}

TEST_P(ModelFrames, PassOverBlocksThatCannotBeCountedOrAreEmpty) {
  Open();
  Results list = {nullptr, all()[0], all()[0]};
  EXPECT_EQ(FrameIds(list, 2), (Ints{5, 6, -7, 5, 6, -7}));
  all()[0]->m_nent = 0;
  EXPECT_EQ(FrameIds(list, 2), Ints());
}

TEST_P(ModelFrames, PassOverThoseOfAnotherNumberOrKind) {
  Frames(2, "entityresults/NODE/SPEED", {5, 6});
  Open();
  EXPECT_EQ(FrameIds(2), Ints());
  Frames(2, "entityresults/NODE/SPEED", {5, 6, -7}).retype("fid");
  Open();
  EXPECT_EQ(FrameIds(2), Ints());
}

TEST_P(ModelFrames, ThatNothingInTheFileStandsBehindAreRefused) {
  constexpr hsize_t kClaimed = 100'000'000;
  Data(ForgedModel::StateGroup(2), "elementresults/SHELL/HEAT").raw([=](hid_t here) {
    const Id space(H5Screate_simple(1, &kClaimed, nullptr), "space");
    const Id made(H5Dcreate2(here, "fid", H5T_STD_I32LE, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), "fid");
  });
  Header(ForgedModel::StateGroup(2), "elementresults/SHELL/HEAT").integer("nele", kClaimed);
  Open();
  EXPECT_EQ(FrameIds(2), (Ints{5, 6, -7}));
}

}  // namespace
}  // namespace orv_test
