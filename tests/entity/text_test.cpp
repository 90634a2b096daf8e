// Free texts: header, lines, the walk over the states, and both ways of writing them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <cstring>

#include "orvio/orv_definitions.h"
#include "orvio/orv_switches.h"
#include "support/forged_file.h"
#include "support/orv_test.h"
#include "support/raw_file.h"

namespace {

using orv_test::ForgedFile;
using orv_test::RawFile;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char kNotes[] = "/post/constant/text/notes";
constexpr char kState1[] = "/post/singlestate/state000000000001";
constexpr char kState2[] = "/post/singlestate/state000000000002";
constexpr int kBoth = ORV_WRITE_HEADER | ORV_WRITE_DATA;

class TextBlock : public orv_test::OrvTest {};

/// Two lines of five bytes in the split layout. at() is the header.
ForgedFile& AddNotes(ForgedFile& file, const std::string& block, const char* first_line) {
  file.at(block + "/data").texts("line", 5, {2}, {first_line, "b"});
  return file.at(block + "/header")
      .integer("block", 40)
      .text("blocktype", "text")
      .text("etyptext", "notes")
      .integer("nlines", 2)
      .integer("length", 5);
}

ForgedFile ForgeNotes() {
  ForgedFile file("text");
  AddNotes(file, kNotes, "hello");
  return file;
}

struct TestText : ORVText {
  TestText() { std::strcpy(m_etyptext, "notes"); }
  using ORVText::AppendBlockSchema;
  using ORVText::m_nIncremental;

  int Header(ForgedFile& file, int state = 0) { return ReadBlock(file.path().c_str(), state, ORV_READ_HEADER); }
  /// Reads header and lines, with room for so many bytes of lines.
  int Read(ForgedFile& file, std::size_t room, int state = 0) {
    EXPECT_EQ(Header(file, state), 0);
    lines.assign(room, '?');
    m_pLines = lines.data();
    return ReadBlock(file.path().c_str(), state, ORV_READ_DATA);
  }

  std::string lines;
};

TEST_F(TextBlock, StartsEmpty) {
  const ORVText text;
  EXPECT_EQ(text.GetKey(), 40);
  EXPECT_STREQ(text.m_etyptext, "");
  EXPECT_EQ(text.m_nlines, 0);
  EXPECT_EQ(text.m_length, 0);
  EXPECT_EQ(text.m_pLines, nullptr);
}

TEST_F(TextBlock, IsEmptyAgainWhenInitialized) {
  ForgedFile file = ForgeNotes();
  TestText text;
  ASSERT_EQ(text.Read(file, 10), 0);
  text.InitializeBlock();
  EXPECT_STREQ(text.m_etyptext, "");
  EXPECT_EQ(text.m_nlines, 0);
  EXPECT_EQ(text.m_length, 0);
  EXPECT_EQ(text.m_pLines, nullptr);
  EXPECT_EQ(text.GetKey(), 40);
}

TEST_F(TextBlock, IsReadFromTheSplitLayout) {
  ForgedFile file = ForgeNotes();
  file.integer32("indexic", 1);
  TestText text;
  ASSERT_EQ(text.Read(file, 10), 0);
  EXPECT_STREQ(text.m_etyptext, "notes");
  EXPECT_EQ(text.m_nlines, 2);
  EXPECT_EQ(text.m_length, 5);
  EXPECT_TRUE(text.IsIncremental());
  EXPECT_EQ(text.lines, "hellob    ");
}

TEST_F(TextBlock, IsReadFromTheSingleLayout) {
  ForgedFile file("text");
  file.at(std::string(kNotes) + "/orvblock").texts("line", 3, {1}, {"abc"});
  file.integer("block", 40).text("etyptext", "notes").integer("nlines", 1).integer("length", 3);
  TestText text;
  ASSERT_EQ(text.Read(file, 3), 0);
  EXPECT_EQ(text.lines, "abc");
  EXPECT_FALSE(text.IsIncremental());
}

TEST_F(TextBlock, IsReadFromAState) {
  ForgedFile file = ForgeNotes();
  AddNotes(file, std::string(kState1) + "/text/notes", "state");
  TestText text;
  ASSERT_EQ(text.Read(file, 10, 1), 0);
  EXPECT_EQ(text.lines, "stateb    ");
}

TEST_F(TextBlock, ThatIsNotThereFails) {
  ForgedFile file = ForgeNotes();
  TestText text;
  std::strcpy(text.m_etyptext, "other");
  EXPECT_EQ(text.Header(file), 1);
  EXPECT_EQ(text.ReadBlock("/no/such/file", 0, ORV_READ_HEADER), 1);
}

struct Row {
  const char* name;
  int when_absent;
  int when_retyped;
};

TEST_F(TextBlock, HeaderRowsAbsentOrRetyped) {
  constexpr Row kRows[] = {{"block", 1, 1},  {"etyptext", 1, 1}, {"nlines", 1, 1},
                           {"length", 1, 1}, {"indexic", 0, 0},  {"blocktype", 0, 0}};
  for (const Row& row : kRows) {
    ForgedFile absent = ForgeNotes(), retyped = ForgeNotes();
    absent.integer32("indexic", 1).drop(row.name);
    retyped.integer32("indexic", 1).retype(row.name);
    TestText text;
    EXPECT_EQ(text.Header(absent), row.when_absent) << row.name;
    EXPECT_EQ(text.Header(retyped), row.when_retyped) << row.name;
  }
}

TEST_F(TextBlock, ANameOf256CharactersIsCut) {
  ForgedFile file = ForgeNotes();
  file.text("etyptext", std::string(256, 'n'));
  TestText text;
  ASSERT_EQ(text.Header(file), 0);
  EXPECT_EQ(std::string(text.m_etyptext), std::string(255, 'n'));
}

TEST_F(TextBlock, IsIncrementalAsItsHeaderSays) {
  ForgedFile file = ForgeNotes();
  TestText text;
  ASSERT_EQ(text.Header(file), 0);
  EXPECT_FALSE(text.IsIncremental());
  file.integer32("indexic", 1);
  ASSERT_EQ(text.Header(file), 0);
  EXPECT_TRUE(text.IsIncremental());
  file.retype("indexic");
  ASSERT_EQ(text.Header(file), 0);
  EXPECT_TRUE(text.IsIncremental());  // what cannot be read changes nothing
  file.drop("indexic");
  ASSERT_EQ(text.Header(file), 0);
  EXPECT_FALSE(text.IsIncremental());
  file.integer32("indexic", 1);
  ASSERT_EQ(text.Header(file), 0);
  EXPECT_TRUE(text.IsIncremental());
  file.integer32("indexic", 0);
  ASSERT_EQ(text.Header(file), 0);
  EXPECT_FALSE(text.IsIncremental());
}

TEST_F(TextBlock, ReadsNothingWithoutTheBitOfTheStage) {
  TestText text;
  text.m_nlines = text.m_length = 1;
  EXPECT_EQ(text.ReadHeader(-1, ORV_READ_DATA), 1);
  EXPECT_EQ(text.ReadData(-1, ORV_READ_HEADER), 1);
  EXPECT_EQ(text.ReadHeader(-1, ORV_READ_HEADER), 1);  // without a reader
  EXPECT_EQ(text.ReadData(-1, ORV_READ_DATA), 1);
}

TEST_F(TextBlock, LinesThatAreNotAsTheHeaderSaysFail) {
  struct Counts {
    std::int64_t nlines;
    std::int64_t length;
  };
  for (const Counts& counts : {Counts{0, 5}, Counts{2, 0}, Counts{1, 5}, Counts{3, 5}, Counts{2, 4}, Counts{2, 6},
                               Counts{-2, 5}, Counts{2, -5}, Counts{INT64_MAX, 5}, Counts{2, INT64_MAX}}) {
    ForgedFile file = ForgeNotes();
    file.integer("nlines", counts.nlines).integer("length", counts.length);
    TestText text;
    EXPECT_EQ(text.Read(file, 10), 1) << counts.nlines << ", " << counts.length;
    EXPECT_EQ(text.lines, "??????????");
  }
}

TEST_F(TextBlock, LinesWithoutABufferFail) {
  ForgedFile file = ForgeNotes();
  TestText text;
  ASSERT_EQ(text.Header(file), 0);
  EXPECT_EQ(text.ReadBlock(file.path().c_str(), 0, ORV_READ_DATA), 1);
}

TEST_F(TextBlock, SchemaIsItsName) {
  TestText text;
  std::string path;
  EXPECT_EQ(text.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, "notes");
  path = "/post/constant/text";
  EXPECT_EQ(text.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, kNotes);
}

// ---- The walk over the states

struct Walk : TestText {
  std::vector<std::string> titles;
};

_ORVAction TakeLines(int status, int stage, void* /*where*/, void* block) {
  auto& walk = *static_cast<Walk*>(static_cast<ORVBlock*>(block));
  EXPECT_EQ(status, 0);
  if (stage == ORV_READ_DATA) walk.titles.push_back(walk.lines.substr(0, 5));
  return ORV_ACTION_CONTINUE;
}

TEST_F(TextBlock, IsReadInEachState) {
  ForgedFile file = ForgeNotes();
  AddNotes(file, std::string(kState1) + "/text/notes", "first");
  AddNotes(file, std::string(kState1) + "/text/other", "other");
  AddNotes(file, std::string(kState2) + "/text/notes", "secon");
  Walk walk;
  walk.lines.assign(10, '?');
  walk.m_pLines = walk.lines.data();
  EXPECT_EQ(walk.ReadBlockOver(file.path().c_str(), ORV_READ_HEADER | ORV_READ_DATA, TakeLines, 1, 0, 1, nullptr), 0);
  EXPECT_THAT(walk.titles, ElementsAre("first", "secon"));
}

TEST_F(TextBlock, WithoutANameOrAnActionIsReadInNoState) {
  ForgedFile file = ForgeNotes();
  TestText text;
  const std::string path = file.path();
  EXPECT_EQ(text.ReadBlockOver(path.c_str(), ORV_READ_HEADER, nullptr, 1, 0, 1, nullptr), 1);
  EXPECT_EQ(text.ReadBlockOver(nullptr, ORV_READ_HEADER, TakeLines, 1, 0, 1, nullptr), 1);
  text.InitializeBlock();
  EXPECT_EQ(text.ReadBlockOver(path.c_str(), ORV_READ_HEADER, TakeLines, 1, 0, 1, nullptr), 1);
}

// ---- Writing

std::string Padded(std::string text) {
  text.resize(256, ' ');
  return text;
}

/// Two lines, and a file of two states to write them into, the second of which has no "text".
class TextWrite : public orv_test::OrvTest {
 protected:
  TextWrite() {
    file_.group("/post/constant/text").group(std::string(kState1) + "/text").group(kState2);
    text_.m_nlines = 2;
    text_.m_length = 5;
    text_.m_pLines = lines_.data();
  }
  ~TextWrite() override { ORVSetCurrentWriterVersion(1); }

  int Write(int state = 0, int what = kBoth) { return text_.WriteBlock(file_.path().c_str(), state, what); }
  int WriteSelected(std::uint64_t start, std::uint64_t count, std::uint64_t* extent = nullptr) {
    return text_.WriteSelectiveAttribute(file_.path().c_str(), 0, ORV_WRITE_DATA, ORV_ATT_RES, 1, &start, &count,
                                         nullptr, nullptr, extent);
  }
  static std::string Part(const std::string& block, const char* split) {
    return block + "/" + (ORVGetCurrentWriterVersion() < 3 ? split : "orvblock");
  }

  ForgedFile file_{"write"};
  TestText text_;
  std::string lines_ = "hellob    ";
};

class TextWriteVersion : public TextWrite, public testing::WithParamInterface<int> {
 protected:
  TextWriteVersion() { ORVSetCurrentWriterVersion(GetParam()); }
};
INSTANTIATE_TEST_SUITE_P(Versions, TextWriteVersion, testing::Values(0, 1, 2, 3, 4, 5),
                         [](const auto& version) { return std::to_string(version.param); });

TEST_P(TextWriteVersion, StoresHeaderAndLines) {
  ASSERT_EQ(Write(), 0);
  const RawFile raw(file_.path());
  const std::string header = Part(kNotes, "header");
  EXPECT_THAT(raw.attributes(header), ElementsAre("block", "blocktype", "etyptext", "nlines", "length"));
  EXPECT_EQ(raw.attribute_int(header, "block"), 40);
  EXPECT_EQ(raw.attribute_text(header, "blocktype"), Padded("text"));
  EXPECT_EQ(raw.attribute_text(header, "etyptext"), Padded("notes"));
  EXPECT_EQ(raw.attribute_int(header, "nlines"), 2);
  EXPECT_EQ(raw.attribute_int(header, "length"), 5);
  EXPECT_EQ(raw.attribute_size(header, "length"), 8U);
  EXPECT_THAT(raw.shape(Part(kNotes, "data") + "/line"), ElementsAre(2));
  EXPECT_THAT(raw.texts(Part(kNotes, "data") + "/line"), ElementsAre("hello", "b    "));
}

TEST_P(TextWriteVersion, WithoutLinesStoresTheHeaderAlone) {
  struct Counts {
    std::int64_t nlines;
    std::int64_t length;
  };
  for (const Counts& counts : {Counts{0, 5}, Counts{2, 0}, Counts{-1, 5}, Counts{2, -1}, Counts{2, 4294967301}}) {
    text_.m_nlines = counts.nlines;
    text_.m_length = counts.length;
    EXPECT_EQ(Write(), 1);
    const RawFile raw(file_.path());
    EXPECT_EQ(raw.attribute_int(Part(kNotes, "header"), "nlines"), counts.nlines);
    EXPECT_THAT(raw.children(Part(kNotes, "data")), IsEmpty());
  }
}

TEST_P(TextWriteVersion, IsReadBackAsItWas) {
  ASSERT_EQ(Write(), 0);
  TestText read;
  ASSERT_EQ(read.Read(file_, 10), 0);
  EXPECT_EQ(read.lines, "hellob    ");
}

TEST_P(TextWriteVersion, OverOtherLinesThanThoseOfItsCountsFailsAndChangesNothing) {
  ASSERT_EQ(Write(), 0);
  const std::string before = orv_test::BytesOf(file_.path());
  text_.m_nlines = 1;
  EXPECT_EQ(Write(), 1);
  EXPECT_TRUE(orv_test::BytesOf(file_.path()) == before);
  lines_ = "one  two  three";
  text_.m_pLines = lines_.data();
  text_.m_nlines = 3;
  EXPECT_EQ(Write(), 1);
  EXPECT_TRUE(orv_test::BytesOf(file_.path()) == before);
}

TEST_F(TextWrite, DoesNotTellThatItIsIncremental) {
  text_.m_nIncremental = 1;
  ASSERT_EQ(Write(), 0);
  EXPECT_FALSE(RawFile(file_.path()).has_attribute(Part(kNotes, "header"), "indexic"));
}

TEST_F(TextWrite, GoesToAStateThatIsThere) {
  ASSERT_EQ(Write(1), 0);
  ASSERT_EQ(Write(2), 0);  // its "text" is made
  EXPECT_EQ(Write(3), 1);
  const RawFile raw(file_.path());
  EXPECT_THAT(raw.texts(std::string(kState1) + "/text/notes/data/line"), ElementsAre("hello", "b    "));
  EXPECT_TRUE(raw.exists(std::string(kState2) + "/text/notes/header"));
  EXPECT_THAT(raw.children("/post/singlestate"), testing::SizeIs(2));
  EXPECT_FALSE(raw.exists(kNotes));
}

TEST_F(TextWrite, BelowStateOneGoesToTheConstantSection) {
  ASSERT_EQ(Write(-1), 0);
  EXPECT_TRUE(RawFile(file_.path()).exists(std::string(kNotes) + "/data/line"));
}

TEST_F(TextWrite, WithoutANameAFileOrItsGroupFails) {
  EXPECT_EQ(text_.WriteBlock(nullptr, 0, kBoth), 1);
  EXPECT_EQ(text_.WriteBlock("/no/such/file", 0, kBoth), 1);
  ForgedFile empty("empty");
  EXPECT_EQ(text_.WriteBlock(empty.path().c_str(), 0, kBoth), 1);
  std::strcpy(text_.m_etyptext, "");
  EXPECT_EQ(Write(), 1);
  EXPECT_THAT(RawFile(file_.path()).children("/post/constant/text"), IsEmpty());
}

TEST_F(TextWrite, OfAHyperslabMakesTheLinesAndLetsThemGrow) {
  ASSERT_EQ(WriteSelected(0, 2), 0);
  lines_ = "third";
  text_.m_pLines = lines_.data();
  ASSERT_EQ(WriteSelected(2, 1), 0);
  const RawFile raw(file_.path());
  EXPECT_THAT(raw.texts(std::string(kNotes) + "/data/line"), ElementsAre("hello", "b    ", "third"));
  EXPECT_THAT(raw.max_shape(std::string(kNotes) + "/data/line"), ElementsAre(H5S_UNLIMITED));
}

TEST_F(TextWrite, OfAHyperslabTakesTheLengthOfALineFromTheExtentWhereThereIsOne) {
  std::uint64_t width = 10;
  ASSERT_EQ(WriteSelected(0, 1, &width), 0);
  EXPECT_THAT(RawFile(file_.path()).texts(std::string(kNotes) + "/data/line"), ElementsAre("hellob    "));
}

TEST_F(TextWrite, OfAHyperslabWritesTheLinesForAnyItem) {
  std::uint64_t start = 0, count = 2;
  for (const _ORVBlockAtt att : {ORV_ATT_BLOCK, ORV_ATT_ETYP, ORV_ATT_NSTATE}) {
    ForgedFile file("item");
    file.group("/post/constant/text");
    EXPECT_EQ(text_.WriteSelectiveAttribute(file.path().c_str(), 0, ORV_WRITE_DATA, att, 1, &start, &count, nullptr,
                                            nullptr, nullptr),
              0);
    EXPECT_THAT(RawFile(file.path()).texts(std::string(kNotes) + "/data/line"), ElementsAre("hello", "b    "));
  }
}

TEST_F(TextWrite, OfAHyperslabThatCannotBeFails) {
  std::uint64_t start = 0, count = 2;
  const std::string path = file_.path();
  EXPECT_EQ(text_.WriteSelectiveAttribute(nullptr, 0, ORV_WRITE_DATA, ORV_ATT_RES, 1, &start, &count, nullptr, nullptr,
                                          nullptr),
            1);
  EXPECT_EQ(text_.WriteSelectiveAttribute(path.c_str(), 0, ORV_WRITE_HEADER, ORV_ATT_RES, 1, &start, &count, nullptr,
                                          nullptr, nullptr),
            1);
  EXPECT_EQ(WriteSelected(0, 0), 1);
  text_.m_length = 0;
  EXPECT_EQ(WriteSelected(0, 2), 1);
  text_.m_length = 5;
  text_.m_pLines = nullptr;
  EXPECT_EQ(WriteSelected(0, 2), 1);
}

}  // namespace
