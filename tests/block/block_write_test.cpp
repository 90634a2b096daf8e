// What the writes of all blocks share: the order of the steps, the groups they go to, and the switches around them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

#include "block/block_write.h"
#include "block/recording_block.h"
#include "filer/process_state.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_switches.h"
#include "support/forged_file.h"
#include "support/orv_test.h"
#include "support/raw_file.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::pair<int, int> Compression() {
  std::pair<int, int> switches;
  OH5GetCompression(&switches.first, &switches.second);
  return switches;
}

constexpr std::pair<int, int> kOff{0, -1};

class BlockWrite : public OrvTest {
 protected:
  ~BlockWrite() override {
    ORVSetCurrentWriterVersion(1);
    OH5SetCompression(0, -1);
  }

  int Write(int what, const std::string& path = "/a/b") {
    return block_.WriteBlkGivenPath(file_.path().c_str(), path, what);
  }
  std::vector<std::string> Calls() { return std::exchange(block_.calls, {}); }

  ForgedFile file_;
  RecordingBlock block_;
};

TEST_F(BlockWrite, LeavesTheAccessOfReadsAsItWas) {
  for (const unsigned before : {H5F_ACC_RDONLY, H5F_ACC_RDWR}) {
    const orvio::Swapped access(orvio::process().g_nReadAccess, before);
    EXPECT_EQ(Write(7), 0);
    EXPECT_EQ(orvio::process().g_nReadAccess, before);
    EXPECT_EQ(block_.WriteBlkGivenPath("/nowhere/file.orv", "/a/b", 7), 1);
    EXPECT_EQ(orvio::process().g_nReadAccess, before);
  }
}

class BlockWriteVersion : public BlockWrite, public ::testing::WithParamInterface<int> {};

INSTANTIATE_TEST_SUITE_P(Versions, BlockWriteVersion, ::testing::Values(0, 1, 2, 3, 4, 5),
                         [](const auto& version) { return std::to_string(version.param); });

TEST_P(BlockWriteVersion, WritesEachPartIntoItsGroup) {
  ORVSetCurrentWriterVersion(GetParam());
  EXPECT_EQ(Write(7), 0);
  const RawFile raw(file_.path());
  if (GetParam() < 3) {
    EXPECT_THAT(Calls(), ElementsAre("write header /a/b/header", "write data /a/b/data", "write index /a/b/index"));
    EXPECT_THAT(raw.children("/a/b"), ElementsAre("data", "header", "index"));
  } else {
    EXPECT_THAT(Calls(),
                ElementsAre("write header /a/b/orvblock", "write data /a/b/orvblock", "write index /a/b/orvblock"));
    EXPECT_THAT(raw.children("/a/b"), ElementsAre("orvblock"));
  }
}

TEST_P(BlockWriteVersion, WritesOnlyWhatIsSelected) {
  ORVSetCurrentWriterVersion(GetParam());
  const bool split = GetParam() < 3;
  EXPECT_EQ(Write(2), 0);
  EXPECT_THAT(Calls(), ElementsAre(split ? "write data /a/b/data" : "write data /a/b/orvblock"));
  EXPECT_THAT(RawFile(file_.path()).children("/a/b"), ElementsAre(split ? "data" : "orvblock"));
}

TEST_F(BlockWrite, OpensThePathThatIsThere) {
  file_.at("/a/b/data").integer("kept", 1);
  EXPECT_EQ(Write(3, "a//b/"), 0);
  EXPECT_THAT(Calls(), ElementsAre("write header /a/b/header", "write data /a/b/data"));
  const RawFile raw(file_.path());
  EXPECT_EQ(raw.attribute_int("/a/b/data", "kept"), 1);
  EXPECT_THAT(raw.children("/a/b"), ElementsAre("data", "header"));
}

TEST_F(BlockWrite, StopsAfterAPartThatFailed) {
  block_.header_status = 3;
  EXPECT_EQ(Write(7), 3);
  EXPECT_THAT(Calls(), ElementsAre("write header /a/b/header"));
  block_.header_status = 0;
  block_.data_status = 4;
  EXPECT_EQ(Write(7, "/c"), 4);
  EXPECT_THAT(Calls(), ElementsAre("write header /c/header", "write data /c/data"));
  block_.data_status = 0;
  block_.index_status = 5;
  EXPECT_EQ(Write(7, "/d"), 5);
}

TEST_F(BlockWrite, FailsWithoutFileOrPath) {
  EXPECT_EQ(block_.WriteBlkGivenPath(nullptr, "/a", 7), 1);
  EXPECT_EQ(Write(7, ""), 1);
  EXPECT_EQ(Write(7, "/"), 1);
  const std::string missing = TempPath("missing.orv");
  EXPECT_EQ(block_.WriteBlkGivenPath(missing.c_str(), "/a", 7), 1);
  EXPECT_FALSE(std::filesystem::exists(missing));
  EXPECT_THAT(Calls(), IsEmpty());
}

TEST_F(BlockWrite, FailsWhereThePathIsNoGroup) {
  file_.at("/").dataset<std::int32_t>("a", {1}, {1}).soft_link("s", "/nowhere");
  const std::string before = BytesOf(file_.path());
  EXPECT_EQ(Write(7, "/a/b"), 1);
  EXPECT_EQ(Write(7, "/s"), 1);
  EXPECT_THAT(Calls(), IsEmpty());
  EXPECT_EQ(BytesOf(file_.path()), before);
}

TEST_F(BlockWrite, DoesNotFollowALinkIntoAnotherFile) {
  ForgedFile other;
  other.group("/x");
  const std::string there = other.path();
  const std::string before = BytesOf(there);
  file_.at("/").external_link("a", there, "/x");
  EXPECT_EQ(Write(7, "/a"), 1);
  EXPECT_EQ(BytesOf(there), before);
}

TEST_F(BlockWrite, LeavesAFileOfAnotherFormatAlone) {
  const std::string other = TempPath("notes.txt");
  std::ofstream(other) << "not a result file";
  EXPECT_EQ(block_.WriteBlkGivenPath(other.c_str(), "/a", 7), 1);
  EXPECT_EQ(BytesOf(other), "not a result file");
}

// ---- Compression

class BlockCompression : public BlockWrite {
 protected:
  BlockCompression() {
    block_.on_write = [this] { seen_.push_back(Compression()); };
  }

  std::vector<std::pair<int, int>> seen_;  // the switches inside the header, data and index writes
};

TEST_F(BlockCompression, IsThatOfTheBlockInsideItsDataWrite) {
  block_.m_nCompressionFactor = 4;
  EXPECT_EQ(Write(7), 0);
  EXPECT_THAT(seen_, ElementsAre(kOff, std::pair(1, 4), kOff));
  EXPECT_EQ(Compression(), kOff);
  block_.m_nCompressionFactor = 0;
  seen_.clear();
  EXPECT_EQ(Write(2, "/c"), 0);
  EXPECT_THAT(seen_, ElementsAre(std::pair(1, 0)));
}

TEST_F(BlockCompression, IsOffForABlockWithoutDigitsAndBackAfterwards) {
  OH5SetCompression(1, 3);
  EXPECT_EQ(Write(7), 0);
  EXPECT_THAT(seen_, ElementsAre(std::pair(1, 3), kOff, kOff));
  EXPECT_EQ(Compression(), std::pair(1, 3));
}

TEST_F(BlockCompression, IsBackAfterADataWriteThatFailed) {
  OH5SetCompression(1, 3);
  block_.data_status = 1;
  EXPECT_EQ(Write(2), 1);
  EXPECT_EQ(Compression(), std::pair(1, 3));
}

TEST_F(BlockCompression, IsBackAfterSwitchesThatWereOffWithDigits) {
  OH5SetCompression(0, 5);
  block_.m_nCompressionFactor = 2;
  EXPECT_EQ(Write(7), 0);
  EXPECT_THAT(seen_, ElementsAre(std::pair(0, 5), std::pair(1, 2), kOff));
  EXPECT_EQ(Compression(), std::pair(0, 5));
}

TEST_F(BlockCompression, StaysChangedAfterSwitchesThatWereOnWithoutDigits) {
  OH5SetCompression(1, -2);
  block_.m_nCompressionFactor = 2;
  EXPECT_EQ(Write(3), 0);
  EXPECT_THAT(seen_, ElementsAre(std::pair(1, -2), std::pair(1, 2)));
  EXPECT_EQ(Compression(), std::pair(1, 2));

  OH5SetCompression(1, -2);
  block_.m_nCompressionFactor = -1;
  EXPECT_EQ(Write(2, "/c"), 0);
  EXPECT_EQ(Compression(), kOff);
}

TEST_F(BlockCompression, IsAlwaysPutBackAfterTheIndex) {
  OH5SetCompression(1, -2);
  EXPECT_EQ(Write(4), 0);
  EXPECT_THAT(seen_, ElementsAre(kOff));
  EXPECT_EQ(Compression(), std::pair(1, -2));

  block_.m_nCompressionFactor = 2;
  seen_.clear();
  EXPECT_EQ(Write(6, "/c"), 0);
  EXPECT_THAT(seen_, ElementsAre(std::pair(1, 2), kOff));
  EXPECT_EQ(Compression(), std::pair(1, 2));
}

// ---- The parts

TEST_F(BlockWrite, ClosesItsPartsOnceInBothLayouts) {
  for (const int version : {2, 3}) {
    ORVSetCurrentWriterVersion(version);
    file_.at("/x").raw([](hid_t parent) {
      orvio::BlockParts parts(parent, "block", 7);
      ASSERT_TRUE(static_cast<bool>(parts));
      EXPECT_GT(parts.header(), 0);
      EXPECT_GT(parts.data(), 0);
      EXPECT_GT(parts.index(), 0);
      EXPECT_EQ(parts.Close(0), 0);
      EXPECT_LT(parts.header(), 0);
    });
  }
}

TEST_F(BlockWrite, KeepsAFailureWhenItsPartsAreClosed) {
  file_.at("/x").raw([](hid_t parent) {
    orvio::BlockParts parts(parent, nullptr, 7);
    EXPECT_EQ(parts.Close(4), 4);
  });
}

TEST_F(BlockWrite, HasNoPartsWhereThereIsNoGroup) {
  const orvio::BlockParts parts(-1, "block", 7);
  EXPECT_FALSE(static_cast<bool>(parts));
  EXPECT_LT(parts.header(), 0);
}

}  // namespace
}  // namespace orv_test
