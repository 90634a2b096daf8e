// The judge: that it finds what is wrong with a file, and nothing where all is right.

#include <gtest/gtest.h>
#include <hdf5.h>
#include <unistd.h>

#include "faults/judge.h"
#include "faults/snapshot.h"
#include "support/raw_hdf5.h"

namespace {

using namespace orvio::faults;
using orv_test::Check;
using orv_test::Id;
using Said = std::array<int, kBlockCount>;

/// A file of two states and a third, which is the new one; in either layout, read by the library or by HDF5.
class FilesJudged : public testing::TestWithParam<std::pair<bool, bool>> {
 protected:
  FilesJudged() {
    example_.form.split = GetParam().first;
    example_.writer.plain = GetParam().second;
    example_.writer.durability = 0;
    Change([&] { MakeBase(path_, example_.form, 3); });
  }

  template <class Work>
  void Change(Work work) {
    EXPECT_TRUE(RunApart([&] {
                  work();
                  return 0;
                }).Answered(0));
  }
  template <class Work>
  void ChangeWithHdf5(Work work) {
    Change([&] {
      const Id file(H5Fopen(path_.c_str(), H5F_ACC_RDWR, H5P_DEFAULT), path_);
      work(file.get());
    });
  }
  std::string Block(int state, int block) const {
    return "/post/singlestate/" + StateGroup(state) + "/" + BlockGroup(block);
  }
  std::string Res(int state, int block) const { return PartOf(Block(state, block), "data", example_.form) + "/res"; }
  void Drop(const std::string& name) {
    ChangeWithHdf5([&](hid_t file) { Check(H5Ldelete(file, name.c_str(), H5P_DEFAULT), name); });
  }
  Verdict Judged(const Said& said = {1, 1}) {
    Judge judge;
    return judge.Of(path_, example_, said);
  }

  WorkFolder folder_;
  std::string path_ = folder_.path() + "/model.orv";
  Case example_{{}, {}, 2};
};

INSTANTIATE_TEST_SUITE_P(Both, FilesJudged,
                         testing::Values(std::pair(false, false), std::pair(true, false), std::pair(false, true),
                                         std::pair(true, true)),
                         [](const auto& kind) {
                           return std::string(kind.param.first ? "Split" : "Single") +
                                  (kind.param.second ? "WithHdf5" : "WithTheLibrary");
                         });

TEST_P(FilesJudged, AWholeNewStateIsSound) { EXPECT_EQ(Judged(), Verdict::kSound); }

TEST_P(FilesJudged, ANewStateThatIsAbsentIsSound) {
  Drop("/post/singlestate/" + StateGroup(3));
  EXPECT_EQ(Judged({0, 0}), Verdict::kSound);
}

TEST_P(FilesJudged, ANewStateOfOneBlockIsSoundUnlessItIsWrittenAsAWhole) {
  Drop(Block(3, 1));
  const Snapshot file = Snapshot::Of(path_);
  EXPECT_EQ(Judged({1, 0}), Verdict::kSound);
  file.Restore(path_);
  example_.writer.whole = true;
  EXPECT_EQ(Judged({0, 0}), Verdict::kTorn);
}

TEST_P(FilesJudged, ABlockThatWasSaidAndIsNotThereIsMissing) {
  Drop(Block(3, 1));
  EXPECT_EQ(Judged(), Verdict::kMissing);
}

TEST_P(FilesJudged, AnEarlierStateThatIsGoneIsLost) {
  Drop("/post/singlestate/" + StateGroup(2));
  EXPECT_EQ(Judged(), Verdict::kLost);
}

TEST_P(FilesJudged, AnEarlierStateWithAnotherValueIsLost) {
  ChangeWithHdf5([&](hid_t file) {
    const Id data(H5Dopen2(file, Res(1, 1).c_str(), H5P_DEFAULT), "res");
    std::vector<float> values = ValuesOf(1, 0, 1);
    values[2999] += .125F;
    Check(H5Dwrite(data.get(), H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data()), "res");
  });
  EXPECT_EQ(Judged(), Verdict::kLost);
}

TEST_P(FilesJudged, AMeshThatIsGoneIsLost) {
  Drop("/post/constant/connectivities/QUAD4");
  EXPECT_EQ(Judged(), Verdict::kLost);
}

TEST_P(FilesJudged, ABlockWithoutItsValuesIsTorn) {
  Drop(Res(3, 0));
  EXPECT_EQ(Judged(), Verdict::kTorn);
}

TEST_P(FilesJudged, AStateWithoutBlocksIsAGhost) {
  Drop("/post/singlestate/" + StateGroup(3) + "/entityresults");
  EXPECT_EQ(Judged({0, 0}), Verdict::kTorn);
}

TEST_P(FilesJudged, AStateThatNobodyWroteIsAGhost) {
  ChangeWithHdf5([](hid_t file) {
    const Id group(
        H5Gcreate2(file, ("/post/singlestate/" + StateGroup(4)).c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
        "state");
  });
  EXPECT_EQ(Judged(), Verdict::kTorn);
}

TEST_P(FilesJudged, AreLookedAtAgainUnlessNothingIsDifferent) {
  Judge judge;
  const Bytes sound = BytesOf(path_);
  ASSERT_EQ(judge.Of(path_, example_, {0, 0}), Verdict::kSound);
  ASSERT_NE(BytesOf(path_), sound);  // it was appended to
  PutBytes(path_, sound);
  EXPECT_EQ(judge.Of(path_, example_, {0, 0}), Verdict::kSound);
  EXPECT_EQ(BytesOf(path_), sound);  // nobody looked
  Drop(Res(3, 0));
  EXPECT_EQ(judge.Of(path_, example_, {0, 0}), Verdict::kTorn);
  EXPECT_EQ(judge.Of(path_, example_, {0, 0}), Verdict::kTorn);
}

TEST_P(FilesJudged, AFileThatIsGoneDoesNotOpen) {
  unlink(path_.c_str());
  EXPECT_EQ(Judged(), Verdict::kNotOpen);
}

TEST_P(FilesJudged, BytesThatAreNoFileDoNotOpen) {
  PutBytes(path_, Bytes(5000, 'x'));
  EXPECT_EQ(Judged(), Verdict::kNotOpen);
}

}  // namespace
