// Attributes and identifiers as a filer reads, allocates and frees them. The reading of one block is tested in
// tests/entity/attribute_*_test. Leaks are the sanitizers' to find.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <numeric>
#include <string>
#include <vector>

#include "entity/entity_list_forge.h"
#include "orvio/orv_filer.h"
#include "support/messages.h"
#include "support/orv_test.h"
#include "support/packed_dataset.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kBoth = 3;

std::vector<int> Ints(const void* array, int count) {
  const int* first = static_cast<const int*>(array);
  return {first, first + count};
}

class FilerAttributes : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  FilerAttributes() { std::strcpy(block_.m_etyp, "NODE"); }
  ~FilerAttributes() override { Filer().CleanUpEntAttribute(&block_); }

  ForgedFile& Add(const std::string& etyp, const std::string& group = kAttributes) {
    return AddEntities(file_, group, etyp, GetParam());
  }
  /// Chooses the datasets of a block.
  ForgedFile& DataOf(const std::string& etyp) {
    return file_.at(PartPaths(std::string(kAttributes) + "/" + etyp, GetParam()).data);
  }
  /// On the file as it stands.
  ORVFiler Filer() { return ORVFiler(file_.path().c_str()); }
  int Read(int mode, int state = 0) { return Filer().ReadEntAttribute(&block_, mode, state); }

  void ExpectNoArrays() {
    EXPECT_EQ(block_.m_entid, nullptr);
    EXPECT_EQ(block_.m_uid, nullptr);
    EXPECT_EQ(block_.m_title, nullptr);
  }

  std::vector<std::string> NamesOfAll(int mode, int state = 0) {
    std::vector<ORVEntAttribute*> blocks;
    Filer().GetEntityAttributes(state, mode, blocks);
    std::vector<std::string> names;
    for (ORVEntAttribute* block : blocks) {
      names.push_back(block->m_etyp);
      Filer().CleanUpEntAttribute(block);
      delete block;
    }
    return names;
  }

  ForgedFile file_;
  ORVEntAttribute block_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, FilerAttributes, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

// ---- One block

TEST_P(FilerAttributes, AreReadWithArraysOfTheirOwn) {
  Add("NODE");
  AddUserIntegers(file_, std::string(kAttributes) + "/NODE", GetParam());
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_EQ(block_.m_nent, 3);
  EXPECT_THAT(Ints(block_.m_entid, 3), ElementsAre(11, 12, 13));
  EXPECT_THAT(Ints(block_.m_uid, 6), ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_STREQ(block_.m_title, "one");
  EXPECT_STREQ(block_.m_title + 512, "three");
}

TEST_P(FilerAttributes, EndTheirLastTitleWithAByteOfTheArray) {
  Add("NODE").integer32("length", 4);
  DataOf("NODE").texts("title", 4, {3}, {"full", "ab", "last"});
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_EQ(std::string(block_.m_title, 4), "full");
  EXPECT_STREQ(block_.m_title + 8, "last");
}

TEST_P(FilerAttributes, AreReadInTwoGoes) {
  Add("NODE");
  ASSERT_EQ(Read(1), 0);
  EXPECT_EQ(block_.m_nent, 3);
  ExpectNoArrays();
  ASSERT_EQ(Read(2), 0);
  EXPECT_THAT(Ints(block_.m_entid, 3), ElementsAre(11, 12, 13));
  EXPECT_EQ(block_.m_uid, nullptr);
}

TEST_P(FilerAttributes, OfAHeaderAloneKeepTheirArrays) {
  Add("NODE");
  int own[3] = {};
  block_.m_entid = own;
  block_.m_entidType = ORV_LONG;
  ASSERT_EQ(Read(1), 0);
  EXPECT_EQ(block_.m_entid, own);
  EXPECT_EQ(block_.m_entidType, ORV_LONG);
  block_.InitializeBlock(2);
}

TEST_P(FilerAttributes, AreIntegersOfFourBytesWhateverWasAskedForBefore) {
  Add("NODE");
  AddUserIntegers(file_, std::string(kAttributes) + "/NODE", GetParam());
  DataOf("NODE")
      .dataset<std::int64_t>("entid", {3}, {1, 2, 3})
      .dataset<std::int64_t>("uid", {3, 2}, {4, 5, 6, 7, 8, 9});
  ASSERT_EQ(block_.ReadBlock(file_.path().c_str(), 0, ORV_READ_HEADER | ORV_READ_DATA_INFO), 0);
  ASSERT_EQ(block_.m_entidType, ORV_LONG);
  for (const int mode : {2, kBoth}) {
    block_.m_entidType = block_.m_uidType = ORV_LONG;
    ASSERT_EQ(Read(mode), 0);
    EXPECT_EQ(block_.m_entidType, ORV_INT);
    EXPECT_EQ(block_.m_uidType, ORV_INT);
    EXPECT_THAT(Ints(block_.m_entid, 3), ElementsAre(1, 2, 3));
    EXPECT_THAT(Ints(block_.m_uid, 6), ElementsAre(4, 5, 6, 7, 8, 9));
    Filer().CleanUpEntAttribute(&block_);
  }
}

TEST_P(FilerAttributes, WithoutEntitiesHaveAHeaderButNoData) {
  Add("NODE").integer("nent", 0);
  EXPECT_EQ(Read(1), 0);
  EXPECT_EQ(Read(2), 1);
  EXPECT_EQ(Read(kBoth), 1);
  ExpectNoArrays();
}

TEST_P(FilerAttributes, WithoutTitlesInTheFileNeedALengthOf0) {
  Add("NODE");
  DataOf("NODE").drop("title");
  EXPECT_EQ(Read(kBoth), 1);
  ExpectNoArrays();
  file_.at(PartPaths(std::string(kAttributes) + "/NODE", GetParam()).header).integer32("length", 0);
  EXPECT_EQ(Read(kBoth), 0);
  EXPECT_EQ(block_.m_title, nullptr);
  EXPECT_THAT(Ints(block_.m_entid, 3), ElementsAre(11, 12, 13));
}

TEST_P(FilerAttributes, MissingIntegersAreZeros) {
  Add("NODE").integer("nuid", 2);
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_THAT(Ints(block_.m_uid, 6), ElementsAre(0, 0, 0, 0, 0, 0));
}

TEST_P(FilerAttributes, LeakNothingWhenTheirDataCannotBeRead) {
  Add("NODE");
  DataOf("NODE").drop("entid");
  EXPECT_EQ(Read(kBoth), 1);
  ExpectNoArrays();
  EXPECT_EQ(Read(2), 1);
  ExpectNoArrays();
}

TEST_P(FilerAttributes, OfAHeaderThatCannotBeReadLoseTheirArraysWhenBothAreAskedFor) {
  int own[3] = {};
  block_.m_entid = own;
  EXPECT_EQ(Read(kBoth), 1);  // there is no such block
  ExpectNoArrays();
}

TEST_P(FilerAttributes, AreNotReadWithoutBlockModeOrFile) {
  Add("NODE");
  EXPECT_EQ(Filer().ReadEntAttribute(nullptr, kBoth, 0), 1);
  EXPECT_EQ(Read(0), 1);
  EXPECT_EQ(Read(4), 1);
  EXPECT_EQ(ORVFiler(nullptr).ReadEntAttribute(&block_, kBoth, 0), 1);
  EXPECT_EQ(ORVFiler(TempPath("missing.orv").c_str()).ReadEntAttribute(&block_, kBoth, 0), 1);
  EXPECT_EQ(block_.m_nent, 0);
}

TEST_P(FilerAttributes, OfAStateAreReadThere) {
  Add("NODE", InState(1, "attributes"));
  DataOf("OTHER");
  Add("NODE", InState(2, "attributes"));
  file_.at(PartPaths(InState(2, "attributes/NODE"), GetParam()).data).dataset<std::int32_t>("entid", {3}, {7, 8, 9});
  ASSERT_EQ(Read(kBoth, 2), 0);
  EXPECT_THAT(Ints(block_.m_entid, 3), ElementsAre(7, 8, 9));
  Filer().CleanUpEntAttribute(&block_);
  EXPECT_EQ(Read(kBoth | 4, 3), 1);
}

TEST_P(FilerAttributes, OfIdentifiersAreReadFromTheirGroup) {
  Add("NODE", kIdentifiers);
  ORVIdentifiers identifiers;
  std::strcpy(identifiers.m_etyp, "NODE");
  EXPECT_EQ(Read(kBoth), 1);
  ASSERT_EQ(Filer().ReadEntIdentifiers(&identifiers, kBoth, 0), 0);
  EXPECT_THAT(Ints(identifiers.m_entid, 3), ElementsAre(11, 12, 13));
  Filer().CleanUpEntIdentifiers(&identifiers);
  EXPECT_EQ(identifiers.m_entid, nullptr);
  EXPECT_EQ(Filer().ReadEntIdentifiers(nullptr, kBoth, 0), 1);
}

TEST_P(FilerAttributes, OfIdentifiersOfAStateAreReadThere) {
  Add("NODE", kIdentifiers);
  Add("SHELL", InState(1, "identifiers"));
  ORVIdentifiers identifiers;
  std::strcpy(identifiers.m_etyp, "SHELL");
  EXPECT_EQ(Filer().ReadEntIdentifiers(&identifiers, kBoth, 0), 1);
  ASSERT_EQ(Filer().ReadEntIdentifiers(&identifiers, kBoth, 1), 0);
  EXPECT_THAT(Ints(identifiers.m_entid, 3), ElementsAre(11, 12, 13));
  Filer().CleanUpEntIdentifiers(&identifiers);
  std::vector<ORVIdentifiers*> blocks;
  Filer().GetEntityIdentifiers(1, 1, blocks);
  ASSERT_EQ(blocks.size(), 1U);
  EXPECT_STREQ(blocks[0]->m_etyp, "SHELL");
  EXPECT_EQ(blocks[0]->m_entid, nullptr);
  Filer().CleanUpEntityIdentifierList(blocks);
}

TEST_P(FilerAttributes, ThatCannotBeReadAreToldByTheAnswerAlone) {
  const Messages messages;
  Add("NODE");
  DataOf("NODE").drop("entid");
  EXPECT_EQ(Read(kBoth), 1);
  EXPECT_THAT(NamesOfAll(kBoth), IsEmpty());
  Add("NODE").drop("nent");
  EXPECT_EQ(Read(1), 1);
  EXPECT_EQ(Read(kBoth, 1), 1);
  EXPECT_THAT(messages.all(), IsEmpty());
}

// ---- Hostile counts

struct Counts {
  std::int64_t nent, nuid;
  int length;
};

TEST_P(FilerAttributes, WithCountsThatNothingInTheFileBacksAreRefused) {
  Add("NODE");
  for (const Counts& counts :
       {Counts{INT64_MAX, 0, 0}, Counts{INT64_MIN, 0, 0}, Counts{-3, 0, 0}, Counts{3, INT64_MAX, 0},
        Counts{std::int64_t{1} << 62, 4, 0}, Counts{3, std::int64_t{1} << 62, 0}, Counts{3, 0, INT32_MAX},
        Counts{std::int64_t{1} << 60, 0, 16}, Counts{10 << 20, 10 << 20, 1 << 20}, Counts{17 << 20, 0, 0}}) {
    file_.at(PartPaths(std::string(kAttributes) + "/NODE", GetParam()).header);
    file_.integer("nent", counts.nent).integer("nuid", counts.nuid).integer32("length", counts.length);
    EXPECT_EQ(Read(kBoth), 1) << counts.nent << " " << counts.nuid << " " << counts.length;
    ExpectNoArrays();
    EXPECT_THAT(NamesOfAll(kBoth), IsEmpty());
  }
}

TEST_P(FilerAttributes, WithNegativeTableSizesHaveNoTables) {
  Add("NODE").integer("nuid", -4).integer32("length", -8);
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_EQ(block_.m_uid, nullptr);
  EXPECT_EQ(block_.m_title, nullptr);
  EXPECT_THAT(Ints(block_.m_entid, 3), ElementsAre(11, 12, 13));
}

/// Extents without bytes: HDF5 reads zeros from such a dataset.
void ClaimExtents(hid_t here, const char* name, hsize_t count) {
  const Id space(H5Screate_simple(1, &count, nullptr), "space");
  const Id dataset(H5Dcreate2(here, name, H5T_NATIVE_INT, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name);
}

TEST_P(FilerAttributes, WithExtentsThatHaveNoBytesAreRefused) {
  constexpr std::int64_t kCount = std::int64_t{1} << 36;
  Add("NODE").integer("nent", kCount).integer32("length", 0);
  DataOf("NODE").drop("entid").raw([](hid_t here) { ClaimExtents(here, "entid", kCount); });
  EXPECT_EQ(Read(kBoth), 1);
  ExpectNoArrays();
  EXPECT_THAT(NamesOfAll(kBoth), IsEmpty());
}

TEST_P(FilerAttributes, OfMoreThan64MiBAreReadWhereTheFileHasThem) {
  constexpr int kCount = (16 << 20) + 1;  // 64 MiB and four bytes of ids
  Add("NODE").integer("nent", kCount).integer32("length", 0);
  DataOf("NODE").dataset<std::int32_t>("entid", {kCount}, std::vector<std::int32_t>(kCount, 5));
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_EQ(static_cast<int*>(block_.m_entid)[kCount - 1], 5);
  EXPECT_THAT(NamesOfAll(kBoth), ElementsAre("NODE"));
}

TEST_P(FilerAttributes, OfMoreThan64MiBAreReadHoweverLittleTheFileHasOfThem) {
  constexpr int kCount = 9000000;  // 36 MB of ids and as much of one number
  std::vector<int> numbers(kCount);
  std::iota(numbers.begin(), numbers.end(), 1);
  Add("NODE").integer("nent", kCount).integer("nuid", 1).integer32("length", 0);
  DataOf("NODE").dataset<std::int32_t>("entid", {kCount}, numbers);
  numbers.assign(kCount, 7);
  file_.raw([&](hid_t here) { AddPacked(here, "uid", H5T_NATIVE_INT, {kCount, 1}, numbers.data()); });
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_EQ(static_cast<int*>(block_.m_entid)[kCount - 1], kCount);
  EXPECT_EQ(static_cast<int*>(block_.m_uid)[kCount - 1], 7);
  EXPECT_THAT(NamesOfAll(kBoth), ElementsAre("NODE"));
}

TEST_P(FilerAttributes, WithMoreThan64MiBOfTitlesAreReadHoweverLittleTheFileHasOfThem) {
  constexpr int kCount = 300000;
  std::vector<int> ids(kCount);
  std::iota(ids.begin(), ids.end(), 1);
  Add("NODE").integer("nent", kCount);
  std::string titles(kCount * 256, ' ');
  titles.replace(titles.size() - 256, 4, "last");
  DataOf("NODE").dataset<std::int32_t>("entid", {kCount}, ids).drop("title").raw([&](hid_t here) {
    AddPacked(here, "title", TextType(256).get(), {kCount}, titles.data());
  });
  ASSERT_EQ(Read(kBoth), 0);
  EXPECT_STREQ(block_.m_title + (kCount - 1) * 256, "last");
}

TEST_P(FilerAttributes, OfMoreThanAFileOfItsSizeHoldsAreRefused) {
  constexpr std::int64_t kCount = std::int64_t{1} << 27;
  Add("NODE").integer("nent", kCount).integer32("length", 0);
  DataOf("NODE").drop("entid").raw([](hid_t here) { AddPackedFives(here, "entid", kCount); });
  EXPECT_EQ(Read(kBoth), 1);
  ExpectNoArrays();
  EXPECT_THAT(NamesOfAll(kBoth), IsEmpty());
}

// ---- All of a section

TEST_P(FilerAttributes, AllAreAppendedInTheOrderOfTheirNames) {
  Add("SHELL");
  Add("NODE");
  AddUserIntegers(file_, std::string(kAttributes) + "/NODE", GetParam());
  ORVEntAttribute before;
  std::vector<ORVEntAttribute*> blocks = {&before};
  Filer().GetEntityAttributes(0, kBoth, blocks);
  ASSERT_EQ(blocks.size(), 3U);
  EXPECT_EQ(blocks[0], &before);
  EXPECT_STREQ(blocks[1]->m_etyp, "NODE");
  EXPECT_THAT(Ints(blocks[1]->m_entid, 3), ElementsAre(11, 12, 13));
  EXPECT_THAT(Ints(blocks[1]->m_uid, 6), ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_STREQ(blocks[1]->m_title + 256, "two");
  EXPECT_STREQ(blocks[2]->m_etyp, "SHELL");
  EXPECT_NE(blocks[2]->m_entid, blocks[1]->m_entid);
  EXPECT_EQ(blocks[2]->m_nuid, 0);
  EXPECT_EQ(blocks[2]->m_uid, nullptr);
  for (size_t i : {1U, 2U}) {
    Filer().CleanUpEntAttribute(blocks[i]);
    delete blocks[i];
  }
}

TEST_P(FilerAttributes, AllHeadersAreReadWithoutArrays) {
  Add("NODE");
  Add("SHELL").integer("nent", 0);
  Add("BEAM");
  std::vector<ORVEntAttribute*> blocks;
  Filer().GetEntityAttributes(0, 1, blocks);
  ASSERT_EQ(blocks.size(), 2U);
  EXPECT_STREQ(blocks[0]->m_etyp, "BEAM");
  EXPECT_STREQ(blocks[1]->m_etyp, "NODE");
  for (ORVEntAttribute* block : blocks) {
    EXPECT_EQ(block->m_nent, 3);
    EXPECT_EQ(block->m_entid, nullptr);
    EXPECT_EQ(block->m_title, nullptr);
    delete block;
  }
}

TEST_P(FilerAttributes, ThatCannotBeReadAreLeftOut) {
  for (const char* etyp : {"A", "B", "C", "D", "E"}) Add(etyp);
  Add("B").integer("nent", 0);
  DataOf("C").drop("entid");
  Add("D").drop("etyp");
  EXPECT_THAT(NamesOfAll(kBoth), ElementsAre("A", "E"));
  EXPECT_THAT(NamesOfAll(1), ElementsAre("A", "C", "E"));
}

TEST_P(FilerAttributes, WithoutAHeaderAreNotTakenForTheBlockBeforeThem) {
  Add("A");
  Add("B");
  file_.at(std::string(kAttributes) + "/B").drop(GetParam() == Layout::kSplit ? "header" : "orvblock");
  EXPECT_THAT(NamesOfAll(kBoth), ElementsAre("A"));
  EXPECT_THAT(NamesOfAll(1), ElementsAre("A"));
}

TEST_P(FilerAttributes, WithoutDataAfterTheirHeaderLeakNothing) {
  Add("A");
  Add("B");
  file_.at(std::string(kAttributes) + "/A").drop(GetParam() == Layout::kSplit ? "data" : "orvblock");
  if (GetParam() == Layout::kSplit) file_.dataset<std::int32_t>("data", {1}, {1});  // no group, but met as one
  EXPECT_THAT(NamesOfAll(kBoth), ElementsAre("B"));
}

TEST_P(FilerAttributes, OfASectionMayShareAName) {
  Add("A").text("etyp", "NODE");
  Add("B").text("etyp", "NODE");
  EXPECT_THAT(NamesOfAll(kBoth), ElementsAre("NODE", "NODE"));
  EXPECT_THAT(NamesOfAll(1), ElementsAre("NODE", "NODE"));
}

TEST_P(FilerAttributes, OfASectionAreThoseOfAttributesAlone) {
  Add("NODE", kIdentifiers);
  Add("SHELL", InState(1, "attributes"));
  EXPECT_THAT(NamesOfAll(kBoth), IsEmpty());
  EXPECT_THAT(NamesOfAll(kBoth, 1), ElementsAre("SHELL"));
  EXPECT_THAT(NamesOfAll(kBoth, 2), IsEmpty());
}

TEST_P(FilerAttributes, OfASectionAreReadForModesWithTheHeaderOnly) {
  Add("NODE");
  EXPECT_THAT(NamesOfAll(0), IsEmpty());
  EXPECT_THAT(NamesOfAll(2), IsEmpty());
  EXPECT_THAT(NamesOfAll(4), IsEmpty());
  EXPECT_THAT(NamesOfAll(7), ElementsAre("NODE"));
  EXPECT_THAT(NamesOfAll(kBoth | ORV_READ_DATA_INFO), ElementsAre("NODE"));
  std::vector<ORVEntAttribute*> blocks;
  ORVFiler(nullptr).GetEntityAttributes(0, kBoth, blocks);
  EXPECT_THAT(blocks, IsEmpty());
}

TEST_P(FilerAttributes, OfASectionAreIntegersOfFourBytesWhateverIsAskedForBesides) {
  Add("NODE");
  DataOf("NODE").dataset<std::int64_t>("entid", {3}, {1, 2, 3});
  std::vector<ORVEntAttribute*> blocks;
  Filer().GetEntityAttributes(0, kBoth | ORV_READ_DATA_INFO, blocks);
  ASSERT_EQ(blocks.size(), 1U);
  EXPECT_EQ(blocks[0]->m_entidType, ORV_INT);
  EXPECT_THAT(Ints(blocks[0]->m_entid, 3), ElementsAre(1, 2, 3));
  Filer().CleanUpEntAttribute(blocks[0]);
  delete blocks[0];
}

TEST_P(FilerAttributes, AFlagOfOneBlockIsNotThatOfTheNext) {
  Add("A").integer32("indexic", 1).integer32("length", 256).integer("nindex", 3);
  Add("B");
  std::vector<ORVEntAttribute*> blocks;
  Filer().GetEntityAttributes(0, 1, blocks);
  ASSERT_EQ(blocks.size(), 2U);
  EXPECT_TRUE(blocks[0]->IsIncremental());
  EXPECT_FALSE(blocks[1]->IsIncremental());
  EXPECT_EQ(blocks[1]->m_nindex, 0);
  for (ORVEntAttribute* block : blocks) delete block;
}

TEST_P(FilerAttributes, OfIdentifiersComeAndGoAsAList) {
  Add("NODE");
  Add("NODE", kIdentifiers);
  Add("PART", kIdentifiers);
  std::vector<ORVIdentifiers*> blocks;
  Filer().GetEntityIdentifiers(0, kBoth, blocks);
  ASSERT_EQ(blocks.size(), 2U);
  EXPECT_STREQ(blocks[1]->m_etyp, "PART");
  EXPECT_EQ(blocks[1]->GetKey(), 250);
  EXPECT_THAT(Ints(blocks[1]->m_entid, 3), ElementsAre(11, 12, 13));
  blocks.push_back(nullptr);
  Filer().CleanUpEntityIdentifierList(blocks);
  EXPECT_THAT(blocks, IsEmpty());
}

TEST_P(FilerAttributes, OfIdentifiersOfASectionNeedAFileAndAModeWithTheHeader) {
  Add("NODE", kIdentifiers);
  std::vector<ORVIdentifiers*> blocks;
  for (const int mode : {0, 2, 4}) Filer().GetEntityIdentifiers(0, mode, blocks);
  ORVFiler(nullptr).GetEntityIdentifiers(0, kBoth, blocks);
  EXPECT_THAT(blocks, IsEmpty());
}

// ---- Freeing

TEST_P(FilerAttributes, CleanUpLeavesABlockWithoutArraysAndTypes) {
  Add("NODE");
  ASSERT_EQ(Read(kBoth), 0);
  block_.m_entidType = block_.m_uidType = ORV_LONG;
  Filer().CleanUpEntAttribute(&block_);
  ExpectNoArrays();
  EXPECT_EQ(block_.m_entidType, ORV_INT);
  EXPECT_EQ(block_.m_uidType, ORV_INT);
  EXPECT_EQ(block_.m_nent, 3);
  Filer().CleanUpEntAttribute(&block_);  // and again
  Filer().CleanUpEntAttribute(nullptr);
  Filer().CleanUpEntIdentifiers(nullptr);
}

class FilerAttributesCleanUp : public OrvTest {};

TEST_F(FilerAttributesCleanUp, OfABlockWithoutEntitiesFreesNothing) {
  int own[2] = {};
  char title[2] = {};
  ORVEntAttribute block;
  block.m_nuid = 1;
  block.m_entid = block.m_uid = own;
  block.m_title = title;
  ORVFiler filer(nullptr);
  filer.CleanUpEntAttribute(&block);
  EXPECT_EQ(block.m_entid, nullptr);
  EXPECT_EQ(block.m_uid, nullptr);
  EXPECT_EQ(block.m_title, nullptr);
}

TEST_F(FilerAttributesCleanUp, FreesNoTableThatTheCountsDoNotHave) {
  int own[2] = {};
  char title[2] = {};
  ORVEntAttribute block;
  block.m_nent = 2;
  block.m_length = 0;
  block.m_entid = std::calloc(2, sizeof(int));
  block.m_uid = own;
  block.m_title = title;
  ORVFiler filer(nullptr);
  filer.CleanUpEntAttribute(&block);
  EXPECT_EQ(block.m_entid, nullptr);
  EXPECT_EQ(block.m_uid, nullptr);
}

}  // namespace
}  // namespace orv_test
