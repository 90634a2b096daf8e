// The header of a result block, in both layouts: every row dropped and retyped, the light read, damaged values. Single
// items are in result_attribute_test, what is written in result_write_test.

#include <cstring>
#include <string>

#include "orvio/orv_types.h"
#include "result/forged_result.h"
#include "support/messages.h"

namespace {

using namespace orv_test;

/// An attribute of the header, with the answers of the full and of the light read when it is absent or of another type.
struct HeaderRow {
  const char* name;
  int absent, retyped;
  int light_absent, light_retyped;
};

constexpr HeaderRow kCommonRows[] = {
    {"block", 1, 1, 1, 1},     {"indexic", 0, 1, 0, 1}, {"etypvar", 1, 1, 0, 0},   {"ncoo", 1, 1, 0, 0},
    {"nstate", 0, 1, 0, 0},    {"series", 0, 1, 0, 0},  {"etypzone", 0, 1, 0, 0},  {"zoneid", 0, 1, 0, 0},
    {"nindex", 0, 0, 0, 0},    {"fswitch", 0, 0, 0, 0}, {"etypframe", 0, 0, 0, 0}, {"blocktype", 0, 0, 0, 0},
    {"dmpswitch", 0, 0, 0, 0}, {"fidglob", 0, 0, 0, 0},
};
constexpr HeaderRow kEntityRows[] = {{"etyp", 1, 1, 0, 0}, {"nent", 1, 1, 0, 0}};
constexpr HeaderRow kElementRows[] = {
    {"etypelem", 1, 1, 0, 0}, {"nele", 1, 1, 0, 0}, {"numl", 1, 1, 1, 1}, {"ndim", 1, 1, 1, 1}};

constexpr int kLight = ORV_READ_HEADER_INFO;

/// A kind, the place of its blocks and a state that leads there.
struct Place {
  int key;
  const char* group;
  int state;
  bool element;
};

constexpr Place kPlaces[] = {
    {1000, kNodePath, 1, false},      {1001, kNodePath, 1, false}, {1050, kMultiNodePath, 0, false},
    {1051, kMultiNodePath, 0, false}, {1100, kShellPath, 1, true}, {1101, kShellPath, 1, true},
};

ORVResult BlockFor(const Place& place) { return place.element ? ShellBlock(place.key) : NodeBlock(place.key); }

void FillHeader(ForgedFile& header, const Place& place) {
  header.integer("block", place.key).text("blocktype", "a word").integer32("indexic", 3);
  header.text("etypvar", place.element ? "STRESS" : "VELOCITY").integer("ncoo", 6);
  header.text(place.element ? "etypelem" : "etyp", place.element ? "SHELL" : "Node");
  header.integer(place.element ? "nele" : "nent", 11);
  if (place.element) header.integer("numl", 4).integer("ndim", 2);
  header.integer("nstate", 5).text("series", "TIMESERIES1").text("etypzone", "ZONE").integer("zoneid", 9);
  header.integer("nindex", 7).integer("fswitch", 1).text("etypframe", "FRAME").integer("dmpswitch", 8);
  header.integer("fidglob", 12);
}

class ResultHeader : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  ForgedResult Forged(const Place& place) const {
    ForgedResult forged(GetParam(), place.group);
    FillHeader(forged.header(), place);
    return forged;
  }
};
INSTANTIATE_TEST_SUITE_P(Layouts, ResultHeader, ::testing::Values(Layout::kSplit, Layout::kSingle), NameOfLayout);

int ReadHeaderOf(ORVResult& block, ForgedResult& forged, const Place& place, int stages = ORV_READ_HEADER) {
  return block.ReadBlock(forged.path().c_str(), place.state, stages);
}

TEST_P(ResultHeader, FillsTheMembersOfEveryKind) {
  for (const Place& place : kPlaces) {
    SCOPED_TRACE(place.key);
    ForgedResult forged = Forged(place);
    ORVResult block = BlockFor(place);
    ASSERT_EQ(ReadHeaderOf(block, forged, place), 0);
    EXPECT_EQ(block.GetKey(), place.key);
    EXPECT_TRUE(block.IsIncremental());
    EXPECT_STREQ(block.m_etyp, place.element ? "SHELL" : "Node");
    EXPECT_STREQ(block.m_etypvar, place.element ? "STRESS" : "VELOCITY");
    EXPECT_EQ(block.m_nent, 11);
    EXPECT_EQ(block.m_ncoo, 6);
    EXPECT_EQ(block.m_numl, place.element ? 4 : 0);
    EXPECT_EQ(block.m_ndim, place.element ? 2 : 0);
    EXPECT_EQ(block.m_nstate, 5);
    EXPECT_STREQ(block.m_series, "TIMESERIES1");
    EXPECT_STREQ(block.m_etypzone, "ZONE");
    EXPECT_EQ(block.m_zoneid, 9);
    EXPECT_EQ(block.m_nindex, 7);
    EXPECT_EQ(block.m_fswitch, 1);
    EXPECT_STREQ(block.m_etypframe, "FRAME");
    EXPECT_EQ(block.m_dmpswitch, 0);
    EXPECT_EQ(block.m_fidglob, 0);
  }
}

TEST_P(ResultHeader, SurvivesAnAbsentRowAsTheFormatSays) {
  const auto run = [&](const Place& place, const HeaderRow& row) {
    SCOPED_TRACE(std::to_string(place.key) + " " + row.name);
    ForgedResult forged = Forged(place);
    forged.header().drop(row.name);
    ORVResult full = BlockFor(place);
    EXPECT_EQ(ReadHeaderOf(full, forged, place), row.absent);
    ORVResult light = BlockFor(place);
    EXPECT_EQ(ReadHeaderOf(light, forged, place, kLight), row.light_absent);
  };
  for (const Place& place : kPlaces) {
    for (const HeaderRow& row : kCommonRows) run(place, row);
    for (const HeaderRow& row : kEntityRows) {
      if (!place.element) run(place, row);
    }
    for (const HeaderRow& row : kElementRows) {
      if (place.element) run(place, row);
    }
  }
}

TEST_P(ResultHeader, SurvivesARowOfAnotherTypeAsTheFormatSays) {
  const auto run = [&](const Place& place, const HeaderRow& row) {
    SCOPED_TRACE(std::to_string(place.key) + " " + row.name);
    ForgedResult forged = Forged(place);
    forged.header().retype(row.name);
    ORVResult full = BlockFor(place);
    EXPECT_EQ(ReadHeaderOf(full, forged, place), row.retyped);
    ORVResult light = BlockFor(place);
    EXPECT_EQ(ReadHeaderOf(light, forged, place, kLight), row.light_retyped);
  };
  for (const Place& place : kPlaces) {
    for (const HeaderRow& row : kCommonRows) run(place, row);
    for (const HeaderRow& row : kEntityRows) {
      if (!place.element) run(place, row);
    }
    for (const HeaderRow& row : kElementRows) {
      if (place.element) run(place, row);
    }
  }
}

/// Values that no file holds, to see which members a read leaves alone. The series is a part of the path made of names,
/// so that the block needs its path from now on.
void FillWithOthers(ORVResult& block, Layout layout, const char* path) {
  block.SetBlkPath(std::string(path) + (layout == Layout::kSplit ? "" : "/orvblock"));
  block.m_nstate = block.m_zoneid = block.m_nindex = block.m_fswitch = 99;
  for (char* name : {block.m_series, block.m_etypzone, block.m_etypframe}) std::strcpy(name, "other");
}

TEST_P(ResultHeader, GivesAbsentOptionalRowsTheirDefaults) {
  ForgedResult forged = Forged(kPlaces[0]);
  for (const char* name : {"indexic", "nstate", "series", "etypzone", "zoneid", "etypframe"}) {
    forged.header().drop(name);
  }
  ORVResult block = NodeBlock(1000);
  FillWithOthers(block, GetParam(), kNodePath);
  ASSERT_EQ(ReadHeaderOf(block, forged, kPlaces[0]), 0);
  EXPECT_EQ(block.m_nstate, 0);
  EXPECT_EQ(block.m_zoneid, 0);
  EXPECT_STREQ(block.m_series, "");
  EXPECT_STREQ(block.m_etypzone, "");
  EXPECT_STREQ(block.m_etypframe, "");
  EXPECT_EQ(block.m_nindex, 7);
  EXPECT_EQ(block.m_fswitch, 1);
}

TEST_P(ResultHeader, WithoutIndexicIsThatOfAFullBlock) {
  ForgedResult incremental = Forged(kPlaces[0]);
  ForgedResult full = Forged(kPlaces[0]);
  full.header().drop("indexic");
  ORVResult block = NodeBlock(1000);
  ASSERT_EQ(ReadHeaderOf(block, incremental, kPlaces[0]), 0);
  EXPECT_TRUE(block.IsIncremental());
  ASSERT_EQ(ReadHeaderOf(block, full, kPlaces[0]), 0);
  EXPECT_FALSE(block.IsIncremental());
}

TEST_P(ResultHeader, LeavesUnreadableTailMembersAlone) {
  ForgedResult forged = Forged(kPlaces[0]);
  forged.header().retype("nindex").drop("fswitch").retype("etypframe");
  ORVResult block = NodeBlock(1000);
  FillWithOthers(block, GetParam(), kNodePath);
  ASSERT_EQ(ReadHeaderOf(block, forged, kPlaces[0]), 0);
  EXPECT_EQ(block.m_nindex, 99);
  EXPECT_EQ(block.m_fswitch, 99);
  EXPECT_STREQ(block.m_etypframe, "other");
}

TEST_P(ResultHeader, KeepsTheFieldsReadBeforeAFailure) {
  ForgedResult forged = Forged(kPlaces[0]);
  forged.header().retype("nent");
  ORVResult block = NodeBlock(1000);
  block.m_nent = 99;
  FillWithOthers(block, GetParam(), kNodePath);
  EXPECT_EQ(ReadHeaderOf(block, forged, kPlaces[0]), 1);
  EXPECT_EQ(block.m_ncoo, 6);
  EXPECT_EQ(block.m_nent, 99);
  EXPECT_EQ(block.m_zoneid, 99);
  // The names lose their blanks only once the count was read.
  EXPECT_EQ(block.m_etyp, "Node" + std::string(252, ' '));
  EXPECT_EQ(block.m_etypvar, "VELOCITY" + std::string(248, ' '));
}

TEST_P(ResultHeader, ReadsTheLightPartOfAnElementBlockWithoutItsNames) {
  const Place& place = kPlaces[4];
  ForgedResult forged = Forged(place);
  ORVResult block = ShellBlock(1000);
  block.SetBlockType(1100);
  FillWithOthers(block, GetParam(), kShellPath);
  ASSERT_EQ(ReadHeaderOf(block, forged, place, kLight), 0);
  EXPECT_EQ(block.GetKey(), 1100);
  EXPECT_EQ(block.m_numl, 4);
  EXPECT_EQ(block.m_ndim, 2);
  EXPECT_EQ(block.m_nent, 0);
  EXPECT_EQ(block.m_ncoo, 0);
  EXPECT_EQ(block.m_zoneid, 99);
}

TEST_P(ResultHeader, OfAMultiElementKindFailsWithTheKeyRead) {
  for (const int key : {1150, 1151}) {
    const Place place = {key, kMultiShellPath, 0, true};
    ForgedResult forged = Forged(place);
    ORVResult block = ShellBlock(1150);
    block.SetBlockType(key == 1150 ? 1151 : 1150);
    EXPECT_EQ(ReadHeaderOf(block, forged, place), 1);
    EXPECT_EQ(block.GetKey(), key);
    EXPECT_TRUE(block.IsIncremental());
    EXPECT_EQ(block.m_numl, 0);
    EXPECT_EQ(block.m_nent, 0);
    EXPECT_EQ(ReadHeaderOf(block, forged, place, kLight), 1);
  }
}

TEST_P(ResultHeader, OfAnotherKindFailsWithTheKeyRead) {
  for (const int key : {500, 300, 1002, -1, 0}) {
    SCOPED_TRACE(key);
    ForgedResult forged = Forged(kPlaces[0]);
    forged.header().integer("block", key);
    ORVResult block = NodeBlock(1000);
    EXPECT_EQ(ReadHeaderOf(block, forged, kPlaces[0]), 1);
    EXPECT_EQ(block.GetKey(), key);
    EXPECT_EQ(block.m_ncoo, 0);
  }
}

TEST_P(ResultHeader, KeepsAllBitsOfAKey) {
  ForgedResult forged = Forged(kPlaces[0]);
  forged.header().integer("block", (std::int64_t{1} << 32) + 1000);
  ORVResult block = NodeBlock(1000);
  EXPECT_EQ(ReadHeaderOf(block, forged, kPlaces[0]), 1);
  EXPECT_EQ(block.GetKey(), 4294968296);
  EXPECT_EQ(block.SetBlockType(1050), 1000);
}

TEST_P(ResultHeader, TakesTheKindFromTheFile) {
  ForgedResult forged = Forged(kPlaces[1]);
  ORVResult block = NodeBlock(1000);
  ASSERT_EQ(ReadHeaderOf(block, forged, kPlaces[1]), 0);
  EXPECT_EQ(block.GetKey(), 1001);
}

TEST_P(ResultHeader, TellsWhatIsMissingAndGoesOn) {
  ForgedResult forged = Forged(kPlaces[0]);
  forged.header().drop("fswitch");
  ORVResult block = NodeBlock(1000);
  EXPECT_EQ(ReadHeaderOf(block, forged, kPlaces[0]), 0);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5Read_ATTRIBUTE::\n\t \"fswitch\" attribute not exist");
  forged.header().integer("fswitch", 0).retype("nindex");
  EXPECT_EQ(ReadHeaderOf(block, forged, kPlaces[0]), 0);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5Read_ATTRIBUTE::\n\t \"nindex\" attribute data type mismatch");
  forged.header().drop("ncoo");
  EXPECT_EQ(ReadHeaderOf(block, forged, kPlaces[0]), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5Read_ATTRIBUTE::\n\t \"ncoo\" attribute not exist");
}

TEST_P(ResultHeader, TellsNoHandlerWhatIsMissing) {
  const Messages messages;
  ForgedResult forged = Forged(kPlaces[0]);
  forged.header().retype("nindex").drop("fswitch");
  ORVResult block = NodeBlock(1000);
  EXPECT_EQ(ReadHeaderOf(block, forged, kPlaces[0]), 0);
  forged.header().drop("ncoo");
  EXPECT_EQ(ReadHeaderOf(block, forged, kPlaces[0]), 1);
  EXPECT_EQ(block.ReadAttribute(forged.path().c_str(), 1, 1, ORV_ATT_NCOO), 1);
  EXPECT_TRUE(messages.all().empty());
}

TEST_P(ResultHeader, ReadsNumbersOfAnyWidth) {
  ForgedResult forged = Forged(kPlaces[0]);
  forged.header().integer32("block", 1000).integer32("nent", -4).integer32("ncoo", 3).integer("indexic", 1);
  ORVResult block = NodeBlock(1000);
  ASSERT_EQ(ReadHeaderOf(block, forged, kPlaces[0]), 0);
  EXPECT_EQ(block.m_nent, -4);  // as stored: whoever sizes something by it looks first
  EXPECT_EQ(block.m_ncoo, 3);
  EXPECT_TRUE(block.IsIncremental());
}

TEST_P(ResultHeader, RefusesATextInPlaceOfANumberWhateverItsLength) {
  ForgedResult forged = Forged(kPlaces[0]);
  forged.header().variable_text("ncoo", "7");
  ORVResult block = NodeBlock(1000);
  EXPECT_EQ(ReadHeaderOf(block, forged, kPlaces[0]), 1);
  EXPECT_EQ(block.m_ncoo, 0);
}

TEST_P(ResultHeader, RefusesAListInPlaceOfANumber) {
  ForgedResult forged = Forged(kPlaces[0]);
  forged.header().integers("nent", {1, 2, 3});
  ORVResult block = NodeBlock(1000);
  block.m_nent = 99;
  EXPECT_EQ(ReadHeaderOf(block, forged, kPlaces[0]), 1);
  EXPECT_EQ(block.m_nent, 99);
}

TEST_P(ResultHeader, TerminatesTextsOfEveryLength) {
  ForgedResult forged = Forged(kPlaces[0]);
  forged.header().text("etypzone", std::string(256, 'z')).text("series", "S1", 2).text("etypframe", "", 256);
  ORVResult block = NodeBlock(1000);
  ASSERT_EQ(ReadHeaderOf(block, forged, kPlaces[0]), 0);
  EXPECT_EQ(block.m_etypzone, std::string(256, 'z'));
  EXPECT_STREQ(block.m_series, "S1");
  EXPECT_STREQ(block.m_etypframe, "");
  forged.header().text("etypzone", std::string(257, 'z'), 257);
  EXPECT_EQ(ReadHeaderOf(block, forged, kPlaces[0]), 1);
  forged.header().variable_text("etypzone", "zone").variable_text("series", nullptr);
  ASSERT_EQ(ReadHeaderOf(block, forged, kPlaces[0]), 0);
  EXPECT_STREQ(block.m_etypzone, "zone");
  EXPECT_STREQ(block.m_series, "");
}

class ResultHeaderCall : public OrvTest {};

TEST_F(ResultHeaderCall, NeedsAReader) {
  ORVResult block(1000);
  EXPECT_EQ(block.ReadHeader(-1, ORV_READ_HEADER), 1);
  EXPECT_EQ(block.GetKey(), 1000);
}

class ResultIndex : public OrvTest, public ::testing::WithParamInterface<Layout> {};
INSTANTIATE_TEST_SUITE_P(Layouts, ResultIndex, ::testing::Values(Layout::kSplit, Layout::kSingle), NameOfLayout);

TEST_P(ResultIndex, IsOneRowWithoutStates) {
  ForgedResult forged(GetParam(), kNodePath);
  forged.index().dataset<std::int32_t>("indexident", {2}, {4, 5}).dataset<float>("indexval", {2}, {0.5, 1.5});
  ORVResult block = NodeBlock(1000);
  int ident[2] = {};
  float values[2] = {};
  block.m_nindex = 2;
  block.m_indexident = ident;
  block.m_indexval = values;
  ASSERT_EQ(block.ReadBlock(forged.path().c_str(), 1, ORV_READ_INDEX), 0);
  EXPECT_EQ(ident[1], 5);
  EXPECT_EQ(values[1], 1.5F);
}

TEST_P(ResultIndex, HasARowPerState) {
  ForgedResult forged(GetParam(), kMultiNodePath);
  forged.index().dataset<std::int64_t>("indexident", {3, 1}, {4, 5, 6}).dataset<double>("indexval", {3, 1}, {1, 2, 3});
  ORVResult block = NodeBlock(1050);
  std::int64_t ident[3] = {};
  double values[3] = {};
  block.m_nstate = 3;
  block.m_nindex = 1;
  ASSERT_EQ(block.ReadBlock(forged.path().c_str(), 0, ORV_READ_INDEX_INFO), 0);
  EXPECT_EQ(block.m_indexidentType, ORV_LONG);
  EXPECT_EQ(block.m_indexvalType, ORV_DOUBLE);
  block.m_indexident = ident;
  block.m_indexval = values;
  ASSERT_EQ(block.ReadBlock(forged.path().c_str(), 0, ORV_READ_INDEX), 0);
  EXPECT_EQ(ident[2], 6);
  EXPECT_EQ(values[2], 3.0);
}

TEST_P(ResultIndex, RefusesCountsThatTheFileDoesNotHave) {
  ForgedResult forged(GetParam(), kNodePath);
  forged.index().dataset<std::int32_t>("indexident", {2}, {4, 5}).dataset<float>("indexval", {2}, {0.5, 1.5});
  int ident[1] = {};
  float values[1] = {};
  for (const std::int64_t count : {std::int64_t{1}, std::int64_t{0}, std::int64_t{-1}, INT64_MAX, INT64_MIN}) {
    ORVResult block = NodeBlock(1000);
    block.m_nindex = count;
    block.m_indexident = ident;
    block.m_indexval = values;
    EXPECT_EQ(block.ReadBlock(forged.path().c_str(), 1, ORV_READ_INDEX), 1);
    EXPECT_EQ(ident[0], 0);
  }
}

TEST_P(ResultIndex, OfAKeyWithoutATypeGroupIsNotRead) {
  ForgedResult forged(GetParam(), kNodePath);
  forged.index().dataset<std::int32_t>("indexident", {1}, {4}).dataset<float>("indexval", {1}, {0.5});
  int ident = -1;
  float value = -1;
  for (const int key : {1002, 1000}) {
    ORVResult block(key);
    block.SetBlkPath(std::string(kNodePath) + (GetParam() == Layout::kSplit ? "" : "/orvblock"));
    block.m_nindex = 1;
    block.m_indexident = &ident;
    block.m_indexval = &value;
    EXPECT_EQ(block.ReadBlockByBlockPath(forged.path().c_str(), ORV_READ_INDEX), key == 1002 ? 1 : 0);
    EXPECT_EQ(ident, key == 1002 ? -1 : 4);
  }
}

}  // namespace
