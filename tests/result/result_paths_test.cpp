// Where a result block is looked for in a file, and the walk over all blocks of a place. Walks over states are in
// result_read_test.

#include <cstring>
#include <string>
#include <vector>

#include "block/block_keys.h"
#include "result/forged_result.h"
#include "result/result_access.h"

namespace {

using namespace orv_test;

class ResultPath : public OrvTest {};

struct PathRow {
  const char* type;
  const char* series;
  const char* name;
  const char* path;
};

constexpr PathRow kPaths[] = {
    {"T", "S", "B", "./S/entityresults/T/V/B"}, {"T", "", "B", "./entityresults/T/V/B"},
    {"", "S", "B", "./S/entityresults/V/B"},    {"", "", "B", "./entityresults/V/B"},
    {"T", "S", "", "./S/entityresults/T/V"},    {"T", "", "", "./entityresults/T/V"},
    {"", "S", "", "./S/entityresults/V"},       {"", "", "", "./entityresults/V"},
    {"T", "S", "V", "./S/entityresults/T/V"},   {"T", "", "V", "./entityresults/T/V"},
    {"T", "", "v", "./entityresults/T/V/v"},
};

std::string PathOf(ORVResult& block, std::int64_t key) {
  char path[3000] = "before";
  EXPECT_EQ(ORVResultAccess::Path(block, orvio::FindBlockKey(key), path), 0);
  return path;
}

TEST_F(ResultPath, IsMadeOfTheNamesThatAreSet) {
  for (const PathRow& row : kPaths) {
    ORVResult block(1000);
    block.SetEntityAndVarName(row.type, "V");
    std::strcpy(block.m_series, row.series);
    std::strcpy(block.m_subBlockName, row.name);
    EXPECT_EQ(PathOf(block, 1000), row.path);
  }
}

TEST_F(ResultPath, LeavesEmptyPartsOut) {
  ORVResult block(500);
  EXPECT_EQ(PathOf(block, 500), ".");
  EXPECT_EQ(PathOf(block, 1000), "./entityresults");
  block.SetEntityAndVarName("T", "V");
  EXPECT_EQ(PathOf(block, 500), "./T/V");
  block.SetEntityAndVarName("T", "");
  std::strcpy(block.m_subBlockName, "B");
  EXPECT_EQ(PathOf(block, 500), "./T/B");
}

TEST_F(ResultPath, HasTheTypeGroupOfTheKind) {
  ORVResult block(1150);
  block.SetEntityAndVarName("T", "V");
  for (const int key : {1000, 1001}) EXPECT_EQ(PathOf(block, key), "./entityresults/T/V");
  for (const int key : {1050, 1051}) EXPECT_EQ(PathOf(block, key), "./multientityresults/T/V");
  for (const int key : {1100, 1101, 1150, 1151}) EXPECT_EQ(PathOf(block, key), "./elementresults/T/V");
}

TEST_F(ResultPath, ComparesTheGroupNameWithTheVariableOver256Characters) {
  ORVResult block(1000);
  std::memset(block.m_etypvar, 'v', sizeof block.m_etypvar);
  std::memset(block.m_subBlockName, 'v', sizeof block.m_subBlockName);
  block.m_subBlockName[256] = 'w';
  EXPECT_EQ(PathOf(block, 1000), "./entityresults/" + std::string(256, 'v'));
}

TEST_F(ResultPath, OfTheLongestNamesFitsThePathBuffer) {
  ORVResult block(1050);
  for (char* name : {block.m_series, block.m_etyp, block.m_etypvar, block.m_subBlockName}) {
    std::memset(name, name == block.m_subBlockName ? 'b' : 'n', 257);
  }
  const std::string n(256, 'n');
  EXPECT_EQ(PathOf(block, 1050), "./" + n + "/multientityresults/" + n + "/" + n + "/" + std::string(256, 'b'));
}

TEST_F(ResultPath, NeedsAKeyAndABuffer) {
  ORVResult block(1000);
  char path[3000] = "before";
  EXPECT_EQ(ORVResultAccess::Path(block, nullptr, path), 1);
  EXPECT_STREQ(path, "before");
  EXPECT_EQ(ORVResultAccess::Path(block, orvio::FindBlockKey(1000), nullptr), 1);
}

TEST_F(ResultPath, OfAStateHasTwelveDigits) {
  char name[64] = {};
  ORVResultAccess::StatePath(5, name);
  EXPECT_STREQ(name, "state000000000005");
  ORVResultAccess::StatePath(2147483647, name);
  EXPECT_STREQ(name, "state002147483647");
}

// ---- The group of a block

std::string PartOf(Layout layout) { return layout == Layout::kSplit ? "/header" : "/orvblock"; }

/// A file with many light blocks, told apart by their counts.
class ForgedPlaces {
 public:
  explicit ForgedPlaces(Layout layout) : layout_(layout) {}

  ForgedPlaces& Add(const std::string& group, std::int64_t count, int key = 1000) {
    const bool element = key >= 1100;
    file_.at(group + PartOf(layout_)).integer("block", key).text("etypvar", "V").integer("ncoo", 1);
    file_.text(element ? "etypelem" : "etyp", "T").integer(element ? "nele" : "nent", count);
    if (element) file_.integer("numl", 1).integer("ndim", 1);
    if (layout_ == Layout::kSplit) file_.group(group + "/data");
    return *this;
  }
  ForgedFile& file() { return file_; }
  std::string path() { return file_.path(); }

 private:
  Layout layout_;
  ForgedFile file_{"places"};
};

class ResultPlaces : public OrvTest, public ::testing::WithParamInterface<Layout> {};
INSTANTIATE_TEST_SUITE_P(Layouts, ResultPlaces, ::testing::Values(Layout::kSplit, Layout::kSingle), NameOfLayout);

/// Count of the block found at a state; -1 where none was.
std::int64_t Found(ForgedPlaces& places, int key, int state, const char* series = "", const char* name = "") {
  ORVResult block(key);
  block.SetEntityAndVarName("T", "V");
  std::strcpy(block.m_series, series);
  std::strcpy(block.m_subBlockName, name);
  return block.ReadBlock(places.path().c_str(), state, ORV_READ_HEADER) == 0 ? block.m_nent : -1;
}

TEST_P(ResultPlaces, OfOneStateAreFoundByItsPosition) {
  ForgedPlaces places(GetParam());
  places.Add("/post/constant/entityresults/T/V", 10).Add("/post/singlestate/b/entityresults/T/V", 2);
  places.Add("/post/singlestate/a/entityresults/T/V", 1).Add("/post/singlestate/c/elementresults/T/V", 3, 1100);
  places.Add("/post/multistate/entityresults/T/V", 99).Add("/post/constant/elementresults/T/V", 11, 1101);
  EXPECT_EQ(Found(places, 1000, 0), 10);
  EXPECT_EQ(Found(places, 1001, -1), 10);
  EXPECT_EQ(Found(places, 1100, -1), 11);
  EXPECT_EQ(Found(places, 1000, 1), 1);
  EXPECT_EQ(Found(places, 1001, 2), 2);
  EXPECT_EQ(Found(places, 1000, 3), -1);
  EXPECT_EQ(Found(places, 1100, 3), 3);
  EXPECT_EQ(Found(places, 1101, 3), 3);
  EXPECT_EQ(Found(places, 1000, 4), -1);
  EXPECT_EQ(Found(places, 1000, 2147483647), -1);
}

TEST_P(ResultPlaces, OfMultistateKindsAreInOneSectionWhateverTheState) {
  ForgedPlaces places(GetParam());
  places.Add("/post/multistate/multientityresults/T/V", 20, 1050);
  places.Add("/post/singlestate/a/multientityresults/T/V", 1, 1050);
  for (const int key : {1050, 1051}) {
    for (const int state : {-1, 0, 1, 7}) EXPECT_EQ(Found(places, key, state), 20);
  }
}

TEST_P(ResultPlaces, HaveAGroupOfTheSeriesAndOfTheName) {
  ForgedPlaces places(GetParam());
  places.Add("/post/multistate/S1/multientityresults/T/V", 21, 1050);
  places.Add("/post/multistate/multientityresults/T/V/B", 22, 1050);
  places.Add("/post/multistate/S1/multientityresults/T/V/B", 23, 1050);
  EXPECT_EQ(Found(places, 1050, 0, "S1"), 21);
  EXPECT_EQ(Found(places, 1050, 0, "", "B"), 22);
  EXPECT_EQ(Found(places, 1050, 0, "S1", "B"), 23);
  EXPECT_EQ(Found(places, 1050, 0, "S2"), -1);
}

TEST_P(ResultPlaces, OfKeysThatAreNoResultAreNotFound) {
  ForgedPlaces places(GetParam());
  places.Add("/post/constant/connectivities/T/V", 5).Add("/post/constant/entityresults/T/V", 6);
  for (const int key : {300, 1002, -1, 2150}) EXPECT_EQ(Found(places, key, 0), -1) << key;
}

TEST_P(ResultPlaces, AreKeptAsPathsOfTheSchema) {
  ForgedPlaces places(GetParam());
  const std::string tail = GetParam() == Layout::kSplit ? "" : "/orvblock";
  places.Add("/post/singlestate/a/entityresults/any/name", 1).Add("/post/singlestate/b/entityresults/any/name", 2);
  ORVResult block(1000);
  block.SetBlkPath("/post/singlestate/a/entityresults/any/name" + tail);
  ASSERT_EQ(block.ReadBlock(places.path().c_str(), 2, ORV_READ_HEADER), 0);
  EXPECT_EQ(block.m_nent, 2);
  EXPECT_EQ(block.GetBlkPath(), "/post/singlestate/a/entityresults/any/name" + tail);
  EXPECT_EQ(block.ReadBlock(places.path().c_str(), 3, ORV_READ_HEADER), 1);
}

TEST_F(ResultPath, ThatWasLearnedIsNotThatOfABlockWithOtherNames) {
  ForgedPlaces places(Layout::kSplit);
  places.Add("/post/constant/entityresults/T/V", 5).Add("/post/constant/entityresults/T/W", 6);
  ORVResult block(1000);
  const auto count = [&](const char* type, const char* variable) {
    block.SetEntityAndVarName(type, variable);
    return block.ReadBlock(places.path().c_str(), 0, ORV_READ_HEADER) == 0 ? block.m_nent : -1;
  };
  EXPECT_EQ(count("T", "V"), 5);
  EXPECT_EQ(count("T", "NONE"), -1);
  EXPECT_EQ(count("T", "W"), 6);
  EXPECT_EQ(count("NONE", "W"), -1);
  EXPECT_EQ(count("T", "V"), 5);
}

TEST_F(ResultPath, StaysWhereTheNamesDoAndWhereABlockGetsItsFirst) {
  ORVResult block(1000);
  block.SetBlkPath("/post/constant/entityresults/T/V");
  block.SetEntityAndVarName("X", "Y");
  EXPECT_EQ(block.GetBlkPath(), "/post/constant/entityresults/T/V");
  block.SetEntityAndVarName("X", "Y");
  EXPECT_EQ(block.GetBlkPath(), "/post/constant/entityresults/T/V");
  block.SetEntityAndVarName("X", "Z");
  EXPECT_EQ(block.GetBlkPath(), "");
}

TEST_F(ResultPath, OfTheSingleLayoutStaysWhateverTheNames) {
  ORVResult block(1000);
  block.SetEntityAndVarName("T", "V");
  block.SetBlkPath("/post/constant/entityresults/T/V/orvblock");
  block.SetEntityAndVarName("T", "W");
  EXPECT_EQ(block.GetBlkPath(), "/post/constant/entityresults/T/V/orvblock");
}

TEST_F(ResultPath, OfANameThatIsCutStaysWithTheSameName) {
  ORVResult block(1000);
  block.SetEntityAndVarName("T", std::string(300, 'v'));
  block.SetBlkPath("/post/constant/entityresults/T/V");
  block.SetEntityAndVarName("T", std::string(300, 'v'));
  EXPECT_EQ(block.GetBlkPath(), "/post/constant/entityresults/T/V");
}

TEST_P(ResultPlaces, AreLearnedByABlockThatIsReadByState) {
  ForgedPlaces places(GetParam());
  places.Add("/post/singlestate/a/entityresults/T/V", 1);
  ORVResult block(1000);
  block.SetEntityAndVarName("T", "V");
  ASSERT_EQ(block.ReadBlock(places.path().c_str(), 1, ORV_READ_HEADER), 0);
  EXPECT_EQ(block.GetBlkPath(),
            std::string("/post/singlestate/a/entityresults/T/V") + (GetParam() == Layout::kSplit ? "" : "/orvblock"));
}

TEST_F(ResultPath, WithoutAReaderLeadsNowhere) {
  ORVResult block(1000);
  block.SetEntityAndVarName("T", "V");
  EXPECT_EQ(ORVResultAccess::OpenGroup(block, 0), -1);
}

TEST_F(ResultPath, InTheSplitLayoutPrefersTheNamesToThePathThatWasFound) {
  ForgedPlaces places(Layout::kSplit);
  places.Add("/post/constant/entityresults/T/V", 1).Add("/post/constant/entityresults/T/W", 2);
  ORVResult block(1000);
  block.SetEntityAndVarName("T", "V");
  block.SetBlkPath("/post/constant/entityresults/T/W");
  ASSERT_EQ(block.ReadBlock(places.path().c_str(), 0, ORV_READ_HEADER), 0);
  EXPECT_EQ(block.m_nent, 1);
}

TEST_F(ResultPath, InTheSplitLayoutIsThePathThatWasFoundWhereTheNamesLeadNowhere) {
  ForgedPlaces places(Layout::kSplit);
  places.Add("/post/singlestate/a/entityresults/any/name", 1).Add("/post/singlestate/b/entityresults/any/name", 2);
  ORVResult block(1000);
  block.SetEntityAndVarName("T", "V");
  block.SetBlkPath("/post/singlestate/a/entityresults/any/name");
  ASSERT_EQ(block.ReadBlock(places.path().c_str(), 2, ORV_READ_HEADER), 0);
  EXPECT_EQ(block.m_nent, 2);
}

TEST_F(ResultPath, InTheSingleLayoutIsThePathThatWasFound) {
  ForgedPlaces places(Layout::kSingle);
  places.Add("/post/constant/entityresults/T/V", 1).Add("/post/constant/entityresults/T/W", 2);
  ORVResult block(1000);
  block.SetEntityAndVarName("T", "V");
  block.SetBlkPath("/post/constant/entityresults/T/W/orvblock");
  ASSERT_EQ(block.ReadBlock(places.path().c_str(), 0, ORV_READ_HEADER), 0);
  EXPECT_EQ(block.m_nent, 2);
  block.SetBlkPath("/post/constant/entityresults/T/none/orvblock");
  EXPECT_EQ(block.ReadBlock(places.path().c_str(), 0, ORV_READ_HEADER), 1);
}

TEST_P(ResultPlaces, InOtherFilesAreNotFound) {
  ForgedPlaces other(GetParam());
  other.Add("/post/constant/entityresults/T/V", 1);
  ForgedPlaces places(GetParam());
  places.file()
      .at("/post/constant/entityresults/T")
      .external_link("V", other.path(), "/post/constant/entityresults/T/V");
  EXPECT_EQ(Found(places, 1000, 0), -1);
}

TEST_P(ResultPlaces, OfAFileThatIsNoneAreNotFound) {
  ORVResult block(1000);
  EXPECT_EQ(block.ReadBlock(TempPath("missing").c_str(), 0, ORV_READ_HEADER), 1);
  EXPECT_EQ(block.ReadBlock(nullptr, 0, ORV_READ_HEADER), 1);
}

// ---- The walk

/// What a walk gave, in order: "<status>/<stage> <key> <count> <name>".
std::vector<std::string>* g_seen = nullptr;

_ORVAction Record(int status, int stage, void* where, void* block) {
  const auto* result = static_cast<ORVResult*>(static_cast<ORVBlock*>(block));
  g_seen->push_back(std::to_string(status) + "/" + std::to_string(stage) + " " + std::to_string(result->GetKey()) +
                    " " + std::to_string(result->m_nent) + " " + static_cast<const char*>(where));
  return ORV_ACTION_CONTINUE;
}

_ORVAction RecordOne(int status, int stage, void* where, void* block) {
  (void)Record(status, stage, where, block);
  return ORV_ACTION_STOP;
}

using Seen = std::vector<std::string>;

class ResultDiscovery : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  ResultDiscovery() { g_seen = &seen_; }
  ~ResultDiscovery() override { g_seen = nullptr; }

  int Discover(ForgedPlaces& places, int key, int state, const char* type = "", const char* variable = "") {
    seen_.clear();
    ORVResult block(key);
    block.SetEntityAndVarName(type, variable);
    return block.DiscoverBlock(places.path().c_str(), state, ORV_READ_HEADER, Record);
  }

  Seen seen_;
};
INSTANTIATE_TEST_SUITE_P(Layouts, ResultDiscovery, ::testing::Values(Layout::kSplit, Layout::kSingle), NameOfLayout);

ForgedPlaces ManyPlaces(Layout layout) {
  ForgedPlaces places(layout);
  places.Add("/post/constant/entityresults/T/V", 1).Add("/post/constant/elementresults/T/V", 2, 1100);
  places.Add("/post/singlestate/a/entityresults/T/V", 3).Add("/post/singlestate/a/entityresults/T/W", 4);
  places.Add("/post/singlestate/a/entityresults/U/V", 5).Add("/post/singlestate/b/elementresults/T/V/B", 6, 1101);
  places.Add("/post/multistate/multientityresults/T/V", 7, 1050);
  places.Add("/post/multistate/S1/multientityresults/T/V", 8, 1051).Add("/post/multistate/T/V", 9, 1050);
  places.Add("/post/multistate/elementresults/T/V", 10, 1150);
  return places;
}

TEST_P(ResultDiscovery, OfAKindOfOneStateWalksItsTypeGroup) {
  ForgedPlaces places = ManyPlaces(GetParam());
  EXPECT_EQ(Discover(places, 1000, 0), 0);
  EXPECT_EQ(seen_, (Seen{"0/1 1000 1 V"}));
  EXPECT_EQ(Discover(places, 1000, 1), 0);
  EXPECT_EQ(seen_, (Seen{"0/1 1000 3 V", "0/1 1000 4 W", "0/1 1000 5 V"}));
  EXPECT_EQ(Discover(places, 1001, 1), 0);
  EXPECT_EQ(seen_.size(), 3U);
  EXPECT_EQ(Discover(places, 1101, 2), 0);
  EXPECT_EQ(seen_, (Seen{"0/1 1101 6 B"}));
  EXPECT_EQ(Discover(places, 1100, -1), 0);
  EXPECT_EQ(seen_, (Seen{"0/1 1100 2 V"}));
}

TEST_P(ResultDiscovery, OfOneTypeAndVariableStartsBelowTheTypeGroup) {
  ForgedPlaces places = ManyPlaces(GetParam());
  EXPECT_EQ(Discover(places, 1000, 1, "T"), 0);
  EXPECT_EQ(seen_, (Seen{"0/1 1000 3 V", "0/1 1000 4 W"}));
  EXPECT_EQ(Discover(places, 1100, 0, "T"), 0);
  EXPECT_EQ(seen_, (Seen{"0/1 1100 2 V"}));
  EXPECT_EQ(Discover(places, 1101, 2, "T", "V"), 0);
  EXPECT_EQ(seen_, (Seen{"0/1 1101 6 B"}));
}

TEST_P(ResultDiscovery, WithAVariableAloneWalksTheWholeTypeGroup) {
  ForgedPlaces places = ManyPlaces(GetParam());
  EXPECT_EQ(Discover(places, 1000, 1, "", "V"), 0);
  EXPECT_EQ(seen_.size(), 3U);
}

TEST_P(ResultDiscovery, OfAMultistateKindWalksTheWholeSection) {
  ForgedPlaces places = ManyPlaces(GetParam());
  const Seen all = {"0/1 1051 8 V", "0/1 1050 9 V", "1/1 1150 9 V", "0/1 1050 7 V"};
  for (const int key : {1050, 1051, 1150, 1151}) {
    EXPECT_EQ(Discover(places, key, 0), 0);
    ASSERT_EQ(seen_.size(), 4U);
    EXPECT_EQ(seen_, all);
  }
}

TEST_P(ResultDiscovery, OfOneTypeOfAMultistateKindLooksBelowTheSectionItself) {
  ForgedPlaces places = ManyPlaces(GetParam());
  EXPECT_EQ(Discover(places, 1050, 0, "T"), 0);
  EXPECT_EQ(seen_, (Seen{"0/1 1050 9 V"}));
  EXPECT_EQ(Discover(places, 1151, 3, "multientityresults", "T"), 0);
  EXPECT_EQ(seen_, (Seen{"0/1 1050 7 V"}));
}

TEST_P(ResultDiscovery, OfPropertiesWalksTheStateItself) {
  ForgedPlaces places = ManyPlaces(GetParam());
  EXPECT_EQ(Discover(places, 500, 0), 0);
  EXPECT_EQ(seen_, (Seen{"0/1 1100 2 V", "0/1 1000 1 V"}));
  EXPECT_EQ(Discover(places, 500, 1, "entityresults", "T"), 0);
  EXPECT_EQ(seen_, (Seen{"0/1 1000 3 V", "0/1 1000 4 W"}));
}

TEST_P(ResultDiscovery, ReadsTheStagesThatAreAskedFor) {
  ForgedPlaces places = ManyPlaces(GetParam());
  ORVResult block(1000);
  EXPECT_EQ(block.DiscoverBlock(places.path().c_str(), 0, ORV_READ_HEADER_INFO, Record), 0);
  EXPECT_EQ(seen_, (Seen{"0/8 1000 0 V"}));  // the count is no part of the light read
}

TEST_P(ResultDiscovery, WithoutAPlaceToStartInFailsSilently) {
  ForgedPlaces places = ManyPlaces(GetParam());
  EXPECT_EQ(Discover(places, 1000, 3), 1);
  EXPECT_EQ(Discover(places, 1100, 1), 1);
  EXPECT_EQ(Discover(places, 1000, 1, "none"), 1);
  EXPECT_EQ(Discover(places, 1050, 1, "T", "none"), 1);
  EXPECT_EQ(Discover(places, 300, 0), 1);
  EXPECT_EQ(Discover(places, -1, 0), 1);
  EXPECT_EQ(seen_, Seen());
}

TEST_P(ResultDiscovery, NeedsAFileAndACallback) {
  ForgedPlaces places = ManyPlaces(GetParam());
  ORVResult block(1000);
  EXPECT_EQ(block.DiscoverBlock(nullptr, 0, 1, Record), 1);
  EXPECT_EQ(block.DiscoverBlock(places.path().c_str(), 0, 1, nullptr), 1);
  EXPECT_EQ(block.DiscoverBlock(TempPath("missing").c_str(), 0, 1, Record), 1);
}

TEST_P(ResultDiscovery, EndsWithSuccessWhenTheCallbackStopsIt) {
  ForgedPlaces places = ManyPlaces(GetParam());
  ORVResult block(1000);
  EXPECT_EQ(block.DiscoverBlock(places.path().c_str(), 1, ORV_READ_HEADER, RecordOne), 0);
  EXPECT_EQ(seen_, (Seen{"0/1 1000 3 V"}));
  EXPECT_EQ(block.DiscoverBlock(places.path().c_str(), 1, ORV_READ_HEADER, RecordOne), 0);
  EXPECT_EQ(seen_.size(), 2U);  // a new walk starts afresh
}

TEST_P(ResultDiscovery, TellsThePathOfEachBlock) {
  ForgedPlaces places = ManyPlaces(GetParam());
  ORVResult block(1101);
  ASSERT_EQ(block.DiscoverBlock(places.path().c_str(), 2, ORV_READ_HEADER, Record), 0);
  EXPECT_EQ(block.GetBlkPath(), std::string("/post/singlestate/b/elementresults/T/V/B") +
                                    (GetParam() == Layout::kSplit ? "" : "/orvblock"));
}

TEST_P(ResultDiscovery, StaysOutOfOtherFilesAndCycles) {
  ForgedPlaces other(GetParam());
  other.Add("/x/V", 1);
  ForgedPlaces places(GetParam());
  places.Add("/post/constant/entityresults/T/V", 1);
  places.file().at("/post/constant/entityresults/T").external_link("A", other.path(), "/x");
  places.file().hard_link("B", "/post/constant/entityresults").soft_link("C", "/nowhere");
  EXPECT_EQ(Discover(places, 1000, 0), 0);
  EXPECT_EQ(seen_, (Seen{"0/1 1000 1 V"}));
}

}  // namespace
