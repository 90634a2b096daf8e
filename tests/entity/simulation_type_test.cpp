// The block of the index types: its header, its names, its writing. Where the names come from in the end is in
// index_types_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

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

constexpr char kBlock[] = "/post/constant/indices";
constexpr char kSingle[] = "/post/constant/indices/orvblock";
constexpr int kBoth = ORV_WRITE_HEADER | ORV_WRITE_DATA;

class SimulationType : public orv_test::OrvTest {};

/// Two names as files of version 1 have them. at() is the header.
ForgedFile ForgeSplit() {
  ForgedFile file("indices");
  file.at("/post/constant/indices/data").texts("etypindex", 256, {2}, {"TIME", " Load case"});
  file.at("/post/constant/indices/header").integer("block", 20).text("blocktype", "indices").integer("nindex", 2);
  return file;
}

/// The name of a group as files of version 2 have it.
ForgedFile ForgeSingle() {
  ForgedFile file("indices");
  file.at(kSingle).integer("block", 20).text("blocktype", "indices").integer("nindex", 3).text("etypvar", "STEPS");
  return file;
}

struct TestTypes : ORVSimulationType {
  using ORVSimulationType::AppendBlockSchema;

  int Header(ForgedFile& file) { return ReadBlock(file.path().c_str(), 0, ORV_READ_HEADER); }
  /// Reads header and names, with room for the names.
  int Read(ForgedFile& file, std::size_t room) {
    EXPECT_EQ(Header(file), 0);
    names.assign(room * 256, '?');
    m_pEtypindex = names.data();
    return ReadBlock(file.path().c_str(), 0, ORV_READ_DATA);
  }

  std::string names;
};

TEST_F(SimulationType, StartsWithoutNames) {
  const ORVSimulationType types;
  EXPECT_EQ(types.GetKey(), 20);
  EXPECT_EQ(types.m_nindex, 0);
  EXPECT_STREQ(types.m_etypvar, "");
  EXPECT_EQ(types.m_pEtypindex, nullptr);
  EXPECT_EQ(types.m_reserved, -1);
}

TEST_F(SimulationType, OfASplitLayoutHoldsTheNames) {
  ForgedFile file = ForgeSplit();
  TestTypes types;
  ASSERT_EQ(types.Read(file, 2), 0);
  EXPECT_EQ(types.m_nindex, 2);
  EXPECT_STREQ(types.m_etypvar, "");
  EXPECT_STREQ(types.m_pEtypindex, "TIME");
  EXPECT_STREQ(types.m_pEtypindex + 256, " Load case");
}

TEST_F(SimulationType, OfASingleLayoutNamesAGroup) {
  ForgedFile file = ForgeSingle();
  TestTypes types;
  ASSERT_EQ(types.Read(file, 3), 0);
  EXPECT_EQ(types.m_nindex, 3);
  EXPECT_STREQ(types.m_etypvar, "STEPS");
  EXPECT_EQ(types.names, std::string(3 * 256, '?'));  // no names are stored
}

TEST_F(SimulationType, StandsInTheConstantSectionWhateverTheState) {
  ForgedFile file = ForgeSingle();
  ORVSimulationType types;
  EXPECT_EQ(types.ReadBlock(file.path().c_str(), 2, ORV_READ_HEADER), 0);
  EXPECT_EQ(types.m_nindex, 3);
}

struct Row {
  const char* name;
  int when_absent;
  int when_retyped;
};

TEST_F(SimulationType, HeaderRowsAbsentOrRetyped) {
  constexpr Row kRows[] = {{"block", 1, 1}, {"nindex", 1, 1}, {"etypvar", 0, 1}, {"blocktype", 0, 0}};
  for (const Row& row : kRows) {
    ForgedFile absent = ForgeSingle(), retyped = ForgeSingle();
    absent.drop(row.name);
    retyped.retype(row.name);
    TestTypes types;
    EXPECT_EQ(types.Header(absent), row.when_absent) << row.name;
    EXPECT_EQ(types.Header(retyped), row.when_retyped) << row.name;
  }
}

TEST_F(SimulationType, AGroupNameOf256CharactersIsCut) {
  ForgedFile file = ForgeSingle();
  file.text("etypvar", std::string(256, 'g'));
  TestTypes types;
  ASSERT_EQ(types.Header(file), 0);
  EXPECT_EQ(std::string(types.m_etypvar), std::string(255, 'g'));
}

TEST_F(SimulationType, ReadsNothingWithoutTheBitOfTheStage) {
  TestTypes types;
  EXPECT_EQ(types.ReadHeader(-1, ORV_READ_DATA), 1);
  EXPECT_EQ(types.ReadData(-1, ORV_READ_HEADER), 1);
  EXPECT_EQ(types.ReadHeader(-1, ORV_READ_HEADER), 1);  // without a reader
  EXPECT_EQ(types.ReadData(-1, ORV_READ_DATA), 1);
}

TEST_F(SimulationType, NamesThatAreNotAsTheHeaderSaysFail) {
  for (const std::int64_t nindex : {std::int64_t{1}, std::int64_t{3}, std::int64_t{-2}, INT64_MAX}) {
    ForgedFile file = ForgeSplit();
    file.integer("nindex", nindex);
    TestTypes types;
    EXPECT_EQ(types.Read(file, 2), 1) << nindex;
  }
  ForgedFile narrow = ForgeSplit(), numbers = ForgeSplit();
  narrow.at("/post/constant/indices/data").texts("etypindex", 8, {2}, {"TIME", "STEP"});
  numbers.at("/post/constant/indices/data").retype("etypindex");
  TestTypes types;
  EXPECT_EQ(types.Read(narrow, 2), 1);
  EXPECT_EQ(types.Read(numbers, 2), 1);
}

TEST_F(SimulationType, NamesWithoutABufferFail) {
  ForgedFile file = ForgeSplit();
  TestTypes types;
  ASSERT_EQ(types.Header(file), 0);
  EXPECT_EQ(types.ReadBlock(file.path().c_str(), 0, ORV_READ_DATA), 1);
}

TEST_F(SimulationType, HasNoLevelOfItsOwn) {
  TestTypes types;
  std::string path = kBlock;
  EXPECT_EQ(types.AppendBlockSchema(path), 0);
  EXPECT_EQ(path, kBlock);
}

// ---- Writing

std::string Padded(std::string text) {
  text.resize(256, ' ');
  return text;
}

/// Two names and a group, and a file to write them into.
class SimulationTypeWrite : public orv_test::OrvTest, public testing::WithParamInterface<int> {
 protected:
  SimulationTypeWrite() {
    ORVSetCurrentWriterVersion(GetParam());
    file_.group(kBlock);
    types_.m_nindex = 2;
    types_.m_pEtypindex = names_.data();
    std::strcpy(types_.m_etypvar, "STEPS");
  }
  ~SimulationTypeWrite() override { ORVSetCurrentWriterVersion(1); }

  int Write(int what = kBoth) { return types_.WriteBlock(file_.path().c_str(), 0, what); }
  static bool IsSplit() { return GetParam() < 3; }
  static std::string Part(const char* split) { return std::string(kBlock) + "/" + (IsSplit() ? split : "orvblock"); }

  ForgedFile file_{"write"};
  ORVSimulationType types_;
  std::string names_ = Padded("TIME") + Padded("Load case");
};

INSTANTIATE_TEST_SUITE_P(Versions, SimulationTypeWrite, testing::Values(0, 1, 2, 3, 4, 5),
                         [](const auto& version) { return std::to_string(version.param); });

TEST_P(SimulationTypeWrite, StoresTheNamesInOldFilesAndTheGroupInLaterOnes) {
  ASSERT_EQ(Write(), 0);
  const RawFile raw(file_.path());
  if (IsSplit()) {
    EXPECT_THAT(raw.attributes(Part("header")), ElementsAre("block", "blocktype", "nindex"));
    EXPECT_THAT(raw.texts(Part("data") + "/etypindex"), ElementsAre(Padded("TIME"), Padded("Load case")));
  } else {
    EXPECT_THAT(raw.attributes(Part("header")), ElementsAre("block", "blocktype", "nindex", "etypvar"));
    EXPECT_EQ(raw.attribute_text(Part("header"), "etypvar"), Padded("STEPS"));
    EXPECT_THAT(raw.children(Part("data")), IsEmpty());
  }
  EXPECT_EQ(raw.attribute_int(Part("header"), "block"), 20);
  EXPECT_EQ(raw.attribute_text(Part("header"), "blocktype"), Padded("indices"));
  EXPECT_EQ(raw.attribute_int(Part("header"), "nindex"), 2);
  EXPECT_EQ(raw.attribute_size(Part("header"), "nindex"), 8U);
}

TEST_P(SimulationTypeWrite, WithoutColumnsStoresTheHeaderAlone) {
  for (const int nindex : {0, -1}) {
    types_.m_nindex = nindex;
    EXPECT_EQ(Write(), 1);
    const RawFile raw(file_.path());
    EXPECT_EQ(raw.attribute_int(Part("header"), "nindex"), nindex);
    EXPECT_THAT(raw.children(Part("data")), IsEmpty());
  }
}

TEST_P(SimulationTypeWrite, IsReadBackAsItWas) {
  ASSERT_EQ(Write(), 0);
  TestTypes read;
  ASSERT_EQ(read.Read(file_, 2), 0);
  EXPECT_EQ(read.m_nindex, 2);
  EXPECT_STREQ(read.m_etypvar, IsSplit() ? "" : "STEPS");
  if (IsSplit()) {
    EXPECT_STREQ(read.m_pEtypindex + 256, "Load case");
  }
}

TEST_P(SimulationTypeWrite, OverMoreNamesFailsAndChangesNothingWhereTheNamesAreStored) {
  ASSERT_EQ(Write(), 0);
  const std::string before = orv_test::BytesOf(file_.path());
  names_ = Padded("STEP");
  types_.m_pEtypindex = names_.data();
  types_.m_nindex = 1;
  EXPECT_EQ(Write(), IsSplit() ? 1 : 0);
  EXPECT_EQ(orv_test::BytesOf(file_.path()) == before, IsSplit());
}

TEST_P(SimulationTypeWrite, WithoutAFileOrItsGroupFails) {
  EXPECT_EQ(types_.WriteBlock(nullptr, 0, kBoth), 1);
  EXPECT_EQ(types_.WriteBlock("/no/such/file", 0, kBoth), 1);
  ForgedFile empty("empty");
  EXPECT_EQ(types_.WriteBlock(empty.path().c_str(), 0, kBoth), 1);
  EXPECT_FALSE(RawFile(empty.path()).exists(kBlock));
}

TEST_P(SimulationTypeWrite, WithoutNamesFailsWhereTheNamesAreStored) {
  types_.m_pEtypindex = nullptr;
  EXPECT_EQ(Write(), IsSplit() ? 1 : 0);
  const RawFile raw(file_.path());
  EXPECT_EQ(raw.attribute_int(Part("header"), "nindex"), 2);
  EXPECT_THAT(raw.children(Part("data")), IsEmpty());
}

}  // namespace
