// A filer makes files and writes blocks in the version it was told. What a block writes is tested with the block.

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "filer/process_state.h"
#include "orvio/orvio.h"
#include "support/forged_file.h"
#include "support/orv_test.h"
#include "support/raw_file.h"

namespace {

using orv_test::BytesOf;
using orv_test::RawFile;
using orvio::process;

class FilerWriting : public orv_test::OrvTest {
 protected:
  FilerWriting() { MaySilenceHdf5(); }

  std::string Make(_ORVVersion version) {
    const std::string path = TempPath("made.orv");
    ORVFiler filer(nullptr);
    EXPECT_EQ(filer.InitForWriting(path.c_str(), version, ORV_FILE_CREATE, false), 0);
    return path;
  }
};

/// Notes the writer version that is in force while it is written.
class NotingBlock : public ORVBlock {
 public:
  int WriteBlock(const char* file, int state, int what) override {
    version = process().g_nWriterVersion;
    path = file;
    arguments = {state, what};
    return answer;
  }

  int version = -7;
  int answer = 0;
  std::string path;
  std::vector<int> arguments;
};

TEST_F(FilerWriting, MakesAFileWithItsTree) {
  const RawFile file(Make(ORV_VERSION_2_2));
  EXPECT_TRUE(file.exists("/post/constant/identifiers"));
  EXPECT_TRUE(file.exists("/post/singlestate"));
  EXPECT_EQ(file.texts("/post/orvheader/orvheader")[0].substr(8, 6), std::string("2 2 0\0", 6));
}

TEST_F(FilerWriting, SwitchesHdf5PrintingOffForGood) {
  H5E_auto2_t handler = nullptr;
  void* data = nullptr;
  (void)Make(ORV_VERSION_1_1);
  ASSERT_GE(H5Eget_auto2(H5E_DEFAULT, &handler, &data), 0);
  EXPECT_EQ(handler, nullptr);
}

TEST_F(FilerWriting, PutsTheWriterVersionBackAfterMakingAFile) {
  (void)Make(ORV_VERSION_2_2);
  EXPECT_EQ(ORVGetCurrentWriterVersion(), 1);
}

TEST_F(FilerWriting, AnswersFourForAFileThatCannotBeMade) {
  ORVFiler filer(nullptr);
  EXPECT_EQ(filer.InitForWriting(TempPath("no/folder/a.orv").c_str(), ORV_VERSION_2_2, ORV_FILE_CREATE, false), 4);
  EXPECT_EQ(filer.InitForWriting(nullptr, ORV_VERSION_2_2, ORV_FILE_CREATE, false), 1);
  NotingBlock block;
  EXPECT_EQ(filer.WriteBlock(&block, 0, ORV_WRITE_HEADER), 1);
}

TEST_F(FilerWriting, AppendWithTheTreeKeptLeavesAnExistingFileAsItWas) {
  const std::string path = Make(ORV_VERSION_2_0);
  const std::string before = BytesOf(path);
  ORVFiler filer(nullptr);
  EXPECT_EQ(filer.InitForWriting(path.c_str(), ORV_VERSION_2_2, ORV_FILE_APPEND, true), 0);
  EXPECT_EQ(BytesOf(path), before);
}

TEST_F(FilerWriting, AppendWithoutTheTreeKeptFailsOnAFileThatHasOne) {
  const std::string path = Make(ORV_VERSION_2_0);
  ORVFiler filer(nullptr);
  EXPECT_EQ(filer.InitForWriting(path.c_str(), ORV_VERSION_2_0, ORV_FILE_APPEND, false), 1);
  EXPECT_TRUE(RawFile(path).exists("/post/constant/variable"));
}

TEST_F(FilerWriting, AppendNeverTruncatesWhatItCannotOpen) {
  const std::string path = TempPath("text.orv");
  std::ofstream(path) << "some text";
  ORVFiler filer(nullptr);
  EXPECT_EQ(filer.InitForWriting(path.c_str(), ORV_VERSION_2_2, ORV_FILE_APPEND, true), 4);
  EXPECT_EQ(BytesOf(path), "some text");
}

TEST_F(FilerWriting, AppendMakesAMissingFile) {
  const std::string path = TempPath("new.orv");
  ORVFiler filer(nullptr);
  EXPECT_EQ(filer.InitForWriting(path.c_str(), ORV_VERSION_2_2, ORV_FILE_APPEND, false), 0);
  EXPECT_TRUE(RawFile(path).exists("/post/singlestate"));
}

TEST_F(FilerWriting, AppendWithTheTreeKeptMakesAMissingFileWithoutOne) {
  const std::string path = TempPath("new.orv");
  ORVFiler filer(nullptr);
  EXPECT_EQ(filer.InitForWriting(path.c_str(), ORV_VERSION_2_2, ORV_FILE_APPEND, true), 0);
  EXPECT_TRUE(RawFile(path).tree().empty());
}

TEST_F(FilerWriting, CreateMakesTheTreeWhetherItIsToBeKeptOrNot) {
  const std::string path = Make(ORV_VERSION_1_1);
  ORVFiler filer(nullptr);
  EXPECT_EQ(filer.InitForWriting(path.c_str(), ORV_VERSION_2_2, ORV_FILE_CREATE, true), 0);
  EXPECT_TRUE(RawFile(path).exists("/post/constant/identifiers"));
  EXPECT_FALSE(RawFile(path).exists("/post/constant/variables"));
}

TEST_F(FilerWriting, AFileWhoseTreeCouldNotBeMadeIsWrittenToAllTheSame) {
  const std::string path = Make(ORV_VERSION_2_0);
  ORVFiler filer(nullptr);
  ASSERT_EQ(filer.InitForWriting(path.c_str(), ORV_VERSION_2_1, ORV_FILE_APPEND, false), 1);
  NotingBlock block;
  EXPECT_EQ(filer.WriteBlock(&block, 0, ORV_WRITE_HEADER), 0);
  EXPECT_EQ(block.path, path);
  EXPECT_EQ(block.version, 4);
}

TEST_F(FilerWriting, AFileThatCannotBeOpenedLeavesTheOneBefore) {
  ORVFiler filer(nullptr);
  ASSERT_EQ(filer.InitForWriting(TempPath("a.orv").c_str(), ORV_VERSION_2_1, ORV_FILE_CREATE, false), 0);
  ASSERT_EQ(filer.InitForWriting(TempPath("no/b.orv").c_str(), ORV_VERSION_1_0, ORV_FILE_CREATE, false), 4);
  NotingBlock block;
  EXPECT_EQ(filer.WriteBlock(&block, 0, ORV_WRITE_HEADER), 0);
  EXPECT_EQ(block.path, TempPath("a.orv"));
}

TEST_F(FilerWriting, AssignedFilersWriteToTheSameFile) {
  ORVFiler second(nullptr);
  {
    ORVFiler first(nullptr);
    ASSERT_EQ(first.InitForWriting(TempPath("a.orv").c_str(), ORV_VERSION_2_1, ORV_FILE_CREATE, false), 0);
    second = first;
  }
  NotingBlock block;
  EXPECT_EQ(second.GetMajorWriteVersion(), 2);
  EXPECT_EQ(second.WriteBlock(&block, 0, ORV_WRITE_HEADER), 0);
  EXPECT_EQ(block.path, TempPath("a.orv"));
}

TEST_F(FilerWriting, WritesBlocksInTheVersionItWasToldAndPutsTheOldOneBack) {
  ORVSetCurrentWriterVersion(2);
  const std::string path = TempPath("made.orv");
  ORVFiler filer(nullptr);
  ASSERT_EQ(filer.InitForWriting(path.c_str(), ORV_VERSION_2_1, ORV_FILE_CREATE, false), 0);
  NotingBlock block;
  EXPECT_EQ(filer.WriteBlock(&block, 3, ORV_WRITE_HEADER | ORV_WRITE_INDEX), 0);
  EXPECT_EQ(block.version, 4);
  EXPECT_EQ(block.path, path);
  EXPECT_EQ(block.arguments, (std::vector<int>{3, 5}));
  EXPECT_EQ(ORVGetCurrentWriterVersion(), 2);
  ORVSetCurrentWriterVersion(1);
}

TEST_F(FilerWriting, TakesAVersionOutsideTheTableForOnePointOne) {
  ORVFiler filer(nullptr);
  ASSERT_EQ(filer.InitForWriting(TempPath("made.orv").c_str(), static_cast<_ORVVersion>(100), ORV_FILE_CREATE, false),
            0);
  NotingBlock block;
  EXPECT_EQ(filer.WriteBlock(&block, 0, ORV_WRITE_HEADER), 0);
  EXPECT_EQ(block.version, 1);
  EXPECT_EQ(filer.GetMajorWriteVersion(), 1);
}

TEST_F(FilerWriting, AnswersWhatTheBlockAnswers) {
  const std::string path = TempPath("made.orv");
  ORVFiler filer(nullptr);
  ASSERT_EQ(filer.InitForWriting(path.c_str(), ORV_VERSION_2_1, ORV_FILE_CREATE, false), 0);
  NotingBlock block;
  block.answer = 9;
  EXPECT_EQ(filer.WriteBlock(&block, 0, ORV_WRITE_HEADER), 9);
  EXPECT_EQ(filer.WriteBlock(nullptr, 0, ORV_WRITE_HEADER), 1);
}

TEST_F(FilerWriting, AnAppendedFileIsWrittenInTheVersionOfTheCall) {
  const std::string path = Make(ORV_VERSION_2_2);
  ORVFiler filer(nullptr);
  ASSERT_EQ(filer.InitForWriting(path.c_str(), ORV_VERSION_1_2, ORV_FILE_APPEND, true), 0);
  NotingBlock block;
  EXPECT_EQ(filer.WriteBlock(&block, 0, ORV_WRITE_HEADER), 0);
  EXPECT_EQ(block.version, 2);
}

TEST_F(FilerWriting, MajorWriteVersionIsThatOfTheFileBeingWritten) {
  ORVFiler filer(nullptr);
  EXPECT_EQ(filer.GetMajorWriteVersion(), 1);
  ASSERT_EQ(filer.InitForWriting(TempPath("a.orv").c_str(), ORV_VERSION_2_1, ORV_FILE_CREATE, false), 0);
  EXPECT_EQ(filer.GetMajorWriteVersion(), 2);
}

TEST_F(FilerWriting, ASecondFileTakesThePlaceOfTheFirst) {
  ORVFiler filer(nullptr);
  ASSERT_EQ(filer.InitForWriting(TempPath("a.orv").c_str(), ORV_VERSION_2_1, ORV_FILE_CREATE, false), 0);
  ASSERT_EQ(filer.InitForWriting(TempPath("b.orv").c_str(), ORV_VERSION_1_0, ORV_FILE_CREATE, false), 0);
  NotingBlock block;
  EXPECT_EQ(filer.WriteBlock(&block, 0, ORV_WRITE_HEADER), 0);
  EXPECT_EQ(block.path, TempPath("b.orv"));
  EXPECT_EQ(block.version, 0);
}

ORVResult TemperatureBlock(std::vector<float>& values) {
  ORVResult result(ORV_RESULT_ENTITY);
  result.SetEntityAndVarName("NODE", "TEMP");
  result.m_nent = static_cast<std::int64_t>(values.size());
  result.m_ncoo = 1;
  result.m_res = values.data();
  return result;
}

TEST_F(FilerWriting, WritesABlockAtAPathThatItMakes) {
  const std::string path = TempPath("made.orv");
  ORVFiler filer(nullptr);
  ASSERT_EQ(filer.InitForWriting(path.c_str(), ORV_VERSION_2_2, ORV_FILE_CREATE, false), 0);
  std::vector<float> values = {1.5F, 2.5F};
  ORVResult result = TemperatureBlock(values);
  EXPECT_EQ(filer.WriteBlkGivenPath(&result, "/extra/place", ORV_WRITE_HEADER | ORV_WRITE_DATA), 0);
  EXPECT_EQ(ORVGetCurrentWriterVersion(), 1);
  const RawFile file(path);
  EXPECT_EQ(file.values<float>("/extra/place/orvblock/res"), (std::vector<float>{1.5F, 2.5F}));
  EXPECT_EQ(filer.WriteBlkGivenPath(nullptr, "/extra/place", ORV_WRITE_HEADER), 1);
}

TEST_F(FilerWriting, CompressesABlockAtAPathByTheBlocksOwnDigitsOnly) {
  const std::string path = TempPath("made.orv");
  ORVFiler filer(nullptr);
  ASSERT_EQ(filer.InitForWriting(path.c_str(), ORV_VERSION_2_2, ORV_FILE_CREATE, false), 0);
  std::vector<float> values = {1.5F, 2.5F};
  ORVResult result = TemperatureBlock(values);
  ORVFiler::SetGlobalCompressionParameters(1, 3);
  EXPECT_EQ(filer.WriteBlkGivenPath(&result, "/plain", ORV_WRITE_HEADER | ORV_WRITE_DATA), 0);
  int on = 9, digits = 9;
  OH5GetCompression(&on, &digits);
  ORVFiler::SetGlobalCompressionParameters(0, -1);
  EXPECT_EQ(on, 1);
  EXPECT_EQ(digits, 3);
  result.m_nCompressionFactor = 2;
  EXPECT_EQ(filer.WriteBlkGivenPath(&result, "/packed", ORV_WRITE_HEADER | ORV_WRITE_DATA), 0);
  const RawFile file(path);
  EXPECT_TRUE(file.filters("/plain/orvblock/res").empty());
  EXPECT_EQ(file.layout("/plain/orvblock/res"), H5D_CONTIGUOUS);
  EXPECT_EQ(file.filters("/packed/orvblock/res"), std::vector<int>{H5Z_FILTER_SCALEOFFSET});
}

TEST_F(FilerWriting, DeletesLinksBelowThePathOfTheBlock) {
  const std::string path = TempPath("made.orv");
  ORVFiler filer(nullptr);
  ASSERT_EQ(filer.InitForWriting(path.c_str(), ORV_VERSION_2_2, ORV_FILE_CREATE, false), 0);
  std::vector<float> values = {1.5F, 2.5F};
  ORVResult result = TemperatureBlock(values);
  ASSERT_EQ(filer.WriteBlock(&result, 1, ORV_WRITE_HEADER | ORV_WRITE_DATA), 0);
  const std::string block = "/post/singlestate/state000000000001/entityresults/NODE/TEMP/orvblock";
  ASSERT_TRUE(RawFile(path).exists(block + "/res"));
  result.SetBlkPath(block);
  std::vector<std::string> names = {"res", "not there"};
  EXPECT_EQ(filer.DeleteLinks(&result, names), 0);
  EXPECT_FALSE(RawFile(path).exists(block + "/res"));
  EXPECT_TRUE(RawFile(path).exists(block));
  EXPECT_EQ(filer.DeleteLinks(nullptr, names), 1);
}

/// Notes what it is told to delete, and the writer version that is in force then.
class NotingDeletions : public NotingBlock {
 public:
  int DeleteLinks(const char* file, std::vector<std::string>& names) override {
    version = process().g_nWriterVersion;
    path = file;
    deleted = names;
    return answer;
  }

  std::vector<std::string> deleted;
};

TEST_F(FilerWriting, DeletesLinksInTheVersionItWasToldAndPutsTheOldOneBack) {
  const std::string path = TempPath("made.orv");
  ORVFiler filer(nullptr);
  ASSERT_EQ(filer.InitForWriting(path.c_str(), ORV_VERSION_2_1, ORV_FILE_CREATE, false), 0);
  NotingDeletions block;
  block.SetBlkPath("/a/b");
  block.answer = 9;
  std::vector<std::string> names = {"res", "c/d"};
  EXPECT_EQ(filer.DeleteLinks(&block, names), 9);
  EXPECT_EQ(block.version, 4);
  EXPECT_EQ(block.path, path);
  EXPECT_EQ(block.deleted, (std::vector<std::string>{"/a/b/res", "/a/b/c/d"}));
  EXPECT_EQ(ORVGetCurrentWriterVersion(), 1);
}

/// Two values of one component, into state 1.
int WriteBothValues(ORVFiler& filer, ORVResult* result) {
  std::uint64_t start[] = {0, 0};
  std::uint64_t count[] = {2, 1};
  return filer.WriteSelectiveResultAttribute(result, 1, ORV_WRITE_DATA, ORV_ATT_RES, 2, start, count, nullptr, nullptr,
                                             nullptr);
}

TEST_F(FilerWriting, ASelectiveWriteFollowsTheVersionOfTheFileThatIsRead) {
  const std::string path = Make(ORV_VERSION_1_2);
  ORVFiler filer(path.c_str());
  std::vector<float> values = {1.5F, 2.5F};
  ORVResult result = TemperatureBlock(values);
  EXPECT_EQ(WriteBothValues(filer, &result), 0);
  EXPECT_EQ(ORVGetCurrentWriterVersion(), 1);
  const RawFile file(path);
  EXPECT_EQ(file.values<float>("/post/singlestate/state000000000001/entityresults/NODE/TEMP/data/res"),
            (std::vector<float>{1.5F, 2.5F}));
  EXPECT_EQ(WriteBothValues(filer, nullptr), 1);
}

TEST_F(FilerWriting, ASelectiveWriteIntoAFileOfTheSingleLayoutMakesItsOneGroup) {
  const std::string path = Make(ORV_VERSION_2_2);
  ORVFiler filer(path.c_str());
  std::vector<float> values = {1.5F, 2.5F};
  ORVResult result = TemperatureBlock(values);
  EXPECT_EQ(WriteBothValues(filer, &result), 0);
  EXPECT_EQ(ORVGetCurrentWriterVersion(), 1);
  const std::string block = "/post/singlestate/state000000000001/entityresults/NODE/TEMP";
  EXPECT_EQ(RawFile(path).children(block), (std::vector<std::string>{"orvblock"}));
  EXPECT_EQ(RawFile(path).values<float>(block + "/orvblock/res"), (std::vector<float>{1.5F, 2.5F}));
}

TEST_F(FilerWriting, ASelectiveWriteNeedsAFileToReadAndMakesNone) {
  std::vector<float> values = {1.5F, 2.5F};
  ORVResult result = TemperatureBlock(values);
  ORVFiler none(nullptr);
  EXPECT_EQ(WriteBothValues(none, &result), 1);
  const std::string path = TempPath("missing.orv");
  ORVFiler missing(path.c_str());
  EXPECT_EQ(WriteBothValues(missing, &result), 1);
  EXPECT_FALSE(std::ifstream(path).is_open());
  EXPECT_EQ(ORVGetCurrentWriterVersion(), 1);
}

TEST_F(FilerWriting, WithoutAFileMadeForWritingNothingIsWritten) {
  const std::string path = Make(ORV_VERSION_2_2);
  const std::string before = BytesOf(path);
  ORVFiler filer(path.c_str());
  NotingBlock block;
  std::vector<std::string> names = {"res"};
  EXPECT_EQ(filer.WriteBlock(&block, 0, ORV_WRITE_HEADER), 1);
  EXPECT_EQ(filer.WriteBlkGivenPath(&block, "/a", ORV_WRITE_HEADER), 1);
  EXPECT_EQ(filer.DeleteLinks(&block, names), 1);
  EXPECT_EQ(block.version, -7);
  EXPECT_EQ(BytesOf(path), before);
}

}  // namespace
