// Writing of entity attribute and identifiers blocks, looked at with HDF5 alone, for every writer version. The last tests
// of each version read back what was written.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "entity/entity_list_forge.h"
#include "orvio/orv_ent_attribute.h"
#include "orvio/orv_switches.h"
#include "support/orv_test.h"
#include "support/raw_file.h"

namespace orv_test {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Not;

constexpr int kHeaderAndData = ORV_WRITE_HEADER | ORV_WRITE_DATA;
constexpr int kAll = kHeaderAndData | ORV_WRITE_INDEX;
constexpr char kNode[] = "/post/constant/attributes/NODE";

std::string Padded(std::string text, size_t width = 256) {
  text.resize(width, ' ');
  return text;
}

/// A block of two nodes with titles and an index, and a file with two states, of which the second has no "attributes".
class AttributeWrite : public OrvTest {
 protected:
  AttributeWrite() {
    file_.group(kAttributes)
        .group(kIdentifiers)
        .group(InState(1, "attributes"))
        .group("/post/singlestate/state000000000002");
    path_ = file_.path();
    Fill(block_);
    Fill(identifiers_);
    SetTitles(256);
  }
  ~AttributeWrite() override { ORVSetCurrentWriterVersion(1); }

  void Fill(ORVEntAttribute& block) {
    std::strcpy(block.m_etyp, "NODE");
    block.m_nent = 2;
    block.m_entid = entid_;
    block.m_nindex = 1;
    block.m_indexident = ident_;
    block.m_indexval = values_;
  }

  /// "one" and "two" in slots of a width.
  void SetTitles(size_t width) {
    titles_ = Padded("one", width) + Padded("two", width);
    for (ORVEntAttribute* block : {&block_, static_cast<ORVEntAttribute*>(&identifiers_)}) {
      block->m_length = static_cast<int>(width);
      block->m_title = titles_.data();
    }
  }

  void AddIntegers() {
    block_.m_nuid = 3;
    block_.m_uid = uid_;
  }

  int Write(int state, int what) { return block_.WriteBlock(path_.c_str(), state, what); }

  ForgedFile file_;
  std::string path_;
  ORVEntAttribute block_;
  ORVIdentifiers identifiers_;
  std::string titles_;
  int entid_[3] = {11, 12, 13};
  int uid_[6] = {1, 2, 3, 4, 5, 6};
  int ident_[1] = {1};
  float values_[1] = {2.5F};
};

class AttributeWriteVersion : public AttributeWrite, public ::testing::WithParamInterface<int> {
 protected:
  AttributeWriteVersion() { ORVSetCurrentWriterVersion(GetParam()); }

  static bool IsSplit() { return GetParam() < 3; }
  static std::string Part(const std::string& block, const char* split) {
    return block + "/" + (IsSplit() ? split : "orvblock");
  }
};

INSTANTIATE_TEST_SUITE_P(Versions, AttributeWriteVersion, ::testing::Values(0, 1, 2, 3, 4, 5),
                         [](const auto& version) { return std::to_string(version.param); });

TEST_P(AttributeWriteVersion, StoresTheHeaderInOrder) {
  block_.m_nuid = 3;
  ASSERT_EQ(Write(0, ORV_WRITE_HEADER), 0);
  const RawFile raw(path_);
  const std::string header = Part(kNode, "header");
  std::vector<std::string> names = {"block", "blocktype", "etyp", "nent", "nuid", "nindex"};
  if (!IsSplit()) names.insert(names.end(), {"length", "indexic"});
  EXPECT_EQ(raw.attributes(header), names);
  EXPECT_EQ(raw.attribute_int(header, "block"), 200);
  EXPECT_EQ(raw.attribute_text(header, "blocktype"), Padded("attributes"));
  EXPECT_EQ(raw.attribute_text(header, "etyp"), Padded("NODE"));
  EXPECT_EQ(raw.attribute_int(header, "nent"), 2);
  EXPECT_EQ(raw.attribute_int(header, "nuid"), 3);
  EXPECT_EQ(raw.attribute_int(header, "nindex"), 1);
  for (const char* name : {"block", "nent", "nuid", "nindex"}) {
    EXPECT_EQ(raw.attribute_size(header, name), 8U) << name;
    EXPECT_EQ(raw.attribute_class(header, name), H5T_INTEGER) << name;
    EXPECT_EQ(raw.attribute_rank(header, name), 0) << name;
  }
  if (IsSplit()) return;
  EXPECT_EQ(raw.attribute_int(header, "length"), 256);
  EXPECT_EQ(raw.attribute_int(header, "indexic"), 0);
  EXPECT_EQ(raw.attribute_size(header, "length"), 4U);
  EXPECT_EQ(raw.attribute_size(header, "indexic"), 4U);
}

TEST_P(AttributeWriteVersion, IdentifiersHaveNoIncrementalFlag) {
  ASSERT_EQ(identifiers_.WriteBlock(path_.c_str(), 0, kHeaderAndData), 0);
  const RawFile raw(path_);
  const std::string header = Part("/post/constant/identifiers/NODE", "header");
  std::vector<std::string> names = {"block", "blocktype", "etyp", "nent", "nuid", "nindex"};
  if (!IsSplit()) names.emplace_back("length");
  EXPECT_EQ(raw.attributes(header), names);
  EXPECT_EQ(raw.attribute_int(header, "block"), 250);
  EXPECT_EQ(raw.attribute_text(header, "blocktype"), Padded("identifiers"));
  EXPECT_THAT(raw.children(kAttributes), IsEmpty());
}

TEST_P(AttributeWriteVersion, StoresTheDatasets) {
  AddIntegers();
  ASSERT_EQ(Write(1, kHeaderAndData), 0);
  const RawFile raw(path_);
  const std::string block = InState(1, "attributes/NODE");
  const std::string data = Part(block, "data");
  if (IsSplit()) {
    EXPECT_THAT(raw.children(block), ElementsAre("data", "header"));
  } else {
    EXPECT_THAT(raw.children(block), ElementsAre("orvblock"));
  }
  EXPECT_THAT(raw.children(data), ElementsAre("entid", "title", "uid"));
  EXPECT_THAT(raw.shape(data + "/entid"), ElementsAre(2));
  EXPECT_THAT(raw.values<std::int32_t>(data + "/entid"), ElementsAre(11, 12));
  EXPECT_EQ(raw.type_size(data + "/entid"), 4U);
  EXPECT_THAT(raw.shape(data + "/uid"), ElementsAre(2, 3));
  EXPECT_THAT(raw.values<std::int32_t>(data + "/uid"), ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_THAT(raw.shape(data + "/title"), ElementsAre(2));
  EXPECT_THAT(raw.texts(data + "/title"), ElementsAre(Padded("one"), Padded("two")));
}

TEST_P(AttributeWriteVersion, WithEveryPartAskedForStoresHeaderAndDataOnly) {
  ASSERT_EQ(Write(1, kAll), 0);
  const RawFile raw(path_);
  const std::string block = InState(1, "attributes/NODE");
  EXPECT_THAT(raw.children(Part(block, "data")), ElementsAre("entid", "title"));
  EXPECT_EQ(raw.attribute_int(Part(block, "header"), "nent"), 2);
  if (IsSplit()) {
    EXPECT_THAT(raw.children(block + "/index"), IsEmpty());
  }
}

TEST_P(AttributeWriteVersion, WithoutEntitiesStoresTheHeaderAlone) {
  block_.m_nent = 0;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  const RawFile raw(path_);
  EXPECT_EQ(raw.attribute_int(Part(kNode, "header"), "nent"), 0);
  EXPECT_THAT(raw.children(Part(kNode, "data")), IsEmpty());
}

TEST_P(AttributeWriteVersion, WritesIntoABlockOfTheSameExtents) {
  AddIntegers();
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  entid_[0] = 21;
  titles_.replace(0, 3, "uno");
  EXPECT_EQ(Write(0, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_THAT(raw.values<std::int32_t>(Part(kNode, "data") + "/entid"), ElementsAre(21, 12));
  EXPECT_EQ(raw.texts(Part(kNode, "data") + "/title")[0], Padded("uno"));
}

TEST_P(AttributeWriteVersion, LeavesTheFileAloneForOtherExtents) {
  AddIntegers();
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const std::string before = BytesOf(path_);
  block_.m_nent = 1;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_EQ(Write(0, ORV_WRITE_DATA), 1);
  block_.m_nent = 3;
  EXPECT_EQ(Write(0, kAll), 1);
  EXPECT_EQ(Write(0, ORV_WRITE_HEADER), 1);
  block_.m_nent = 2;
  block_.m_nuid = 2;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_P(AttributeWriteVersion, IsReadBackAsItWas) {
  AddIntegers();
  ASSERT_EQ(Write(1, kHeaderAndData), 0);
  ORVEntAttribute read;
  std::strcpy(read.m_etyp, "NODE");
  ASSERT_EQ(read.ReadBlock(path_.c_str(), 1, ORV_READ_HEADER), 0);
  EXPECT_EQ(read.m_nent, 2);
  EXPECT_EQ(read.m_nuid, 3);
  EXPECT_EQ(read.m_length, 256);
  EXPECT_FALSE(read.IsIncremental());
  std::vector<int> entid(2), uid(6);
  std::string titles(2 * 256 + 1, '\0');
  read.m_entid = entid.data();
  read.m_uid = uid.data();
  read.m_title = titles.data();
  ASSERT_EQ(read.ReadBlock(path_.c_str(), 1, ORV_READ_DATA), 0);
  EXPECT_THAT(entid, ElementsAre(11, 12));
  EXPECT_THAT(uid, ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_STREQ(titles.data(), "one");
  EXPECT_STREQ(titles.data() + 256, "two");
}

// ---- Titles

class AttributeWriteTitles : public AttributeWrite {
 protected:
  std::vector<std::string> WrittenBy(int version) {
    ORVSetCurrentWriterVersion(version);
    EXPECT_EQ(Write(0, kHeaderAndData), 0);
    return RawFile(path_).texts(std::string(kNode) + (version < 3 ? "/data/title" : "/orvblock/title"));
  }
};

TEST_F(AttributeWriteTitles, OfOldVersionsHave256BytesWhateverTheLength) {
  for (const int length : {0, 8, 400}) {
    for (const int version : {0, 1, 2}) {
      std::strcpy(block_.m_etyp, ("T" + std::to_string(length) + std::to_string(version)).c_str());
      block_.m_length = length;
      ORVSetCurrentWriterVersion(version);
      ASSERT_EQ(Write(0, kHeaderAndData), 0);
      const RawFile raw(path_);
      const std::string block = std::string(kAttributes) + "/" + block_.m_etyp;
      EXPECT_THAT(raw.texts(block + "/data/title"), ElementsAre(Padded("one"), Padded("two")));
      EXPECT_FALSE(raw.has_attribute(block + "/header", "length"));
    }
  }
}

TEST_F(AttributeWriteTitles, OfLaterVersionsHaveTheLengthOfTheBlock) {
  SetTitles(8);
  for (const int version : {3, 4, 5}) {
    EXPECT_THAT(WrittenBy(version), ElementsAre("one     ", "two     ")) << version;
    EXPECT_EQ(RawFile(path_).attribute_int(std::string(kNode) + "/orvblock", "length"), 8);
  }
}

TEST_F(AttributeWriteTitles, OfLaterVersionsAreLeftOutForALengthOf0) {
  ORVSetCurrentWriterVersion(5);
  block_.m_length = 0;
  block_.m_title = nullptr;
  EXPECT_EQ(Write(0, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_THAT(raw.children(std::string(kNode) + "/orvblock"), ElementsAre("entid"));
  EXPECT_EQ(raw.attribute_int(std::string(kNode) + "/orvblock", "length"), 0);
}

TEST_F(AttributeWriteTitles, OfANegativeLengthFail) {
  ORVSetCurrentWriterVersion(5);
  block_.m_length = -8;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_THAT(RawFile(path_).children(std::string(kNode) + "/orvblock"), ElementsAre("entid"));
}

TEST_F(AttributeWriteTitles, OfAnotherWidthLeaveTheFileAlone) {
  ASSERT_FALSE(WrittenBy(5).empty());
  const std::string before = BytesOf(path_);
  SetTitles(8);
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(AttributeWriteTitles, ThatAreMissingFailAfterTheIds) {
  block_.m_title = nullptr;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_THAT(RawFile(path_).children(std::string(kNode) + "/data"), ElementsAre("entid"));
}

// ---- Where it goes

TEST_F(AttributeWrite, MakesTheMissingGroupOfAState) {
  ASSERT_EQ(Write(2, kHeaderAndData), 0);
  EXPECT_TRUE(RawFile(path_).exists(InState(2, "attributes/NODE/data/entid")));
}

TEST_F(AttributeWrite, GoesToAStateByPosition) {
  file_.group(InState(7, "attributes"));
  path_ = file_.path();
  ASSERT_EQ(Write(3, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_TRUE(raw.exists(InState(7, "attributes/NODE/data/entid")));
  EXPECT_THAT(raw.children("/post/singlestate"),
              ElementsAre("state000000000001", "state000000000002", "state000000000007"));
}

TEST_F(AttributeWrite, MakesTheNextStateAndNoneBeyond) {
  const std::string before = BytesOf(path_);
  EXPECT_EQ(Write(4, kHeaderAndData), 1);
  EXPECT_EQ(Write(2000000000, kHeaderAndData), 1);
  EXPECT_EQ(BytesOf(path_), before);
  ASSERT_EQ(identifiers_.WriteBlock(path_.c_str(), 3, kHeaderAndData), 0);
  EXPECT_TRUE(RawFile(path_).exists(InState(3, "identifiers/NODE/data/entid")));
}

TEST_F(AttributeWrite, NeverMakesTheGroupOfTheConstantSection) {
  file_.at("/post/constant").drop("identifiers");
  path_ = file_.path();
  const std::string before = BytesOf(path_);
  EXPECT_EQ(identifiers_.WriteBlock(path_.c_str(), 0, kHeaderAndData), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(AttributeWrite, TakesANegativeStateForTheConstantSection) {
  ASSERT_EQ(Write(-1, kHeaderAndData), 0);
  EXPECT_TRUE(RawFile(path_).exists(std::string(kNode) + "/data/entid"));
}

TEST_F(AttributeWrite, MakesOnlyThePartsAskedFor) {
  ASSERT_EQ(Write(0, ORV_WRITE_HEADER), 0);
  EXPECT_THAT(RawFile(path_).children(kNode), ElementsAre("header"));
  ASSERT_EQ(Write(0, ORV_WRITE_DATA), 0);
  EXPECT_THAT(RawFile(path_).children(kNode), ElementsAre("data", "header"));
}

TEST_F(AttributeWrite, OfTheIndexAloneDoesNothing) {
  EXPECT_EQ(Write(1, ORV_WRITE_INDEX), 0);
  EXPECT_THAT(RawFile(path_).children(InState(1, "attributes/NODE/index")), IsEmpty());
}

TEST_F(AttributeWrite, RefusesAMissingPathOrFile) {
  EXPECT_EQ(block_.WriteBlock(nullptr, 0, kHeaderAndData), 1);
  const std::string missing = TempPath("missing.orv");
  EXPECT_EQ(block_.WriteBlock(missing.c_str(), 0, kHeaderAndData), 1);
  EXPECT_EQ(block_.WriteBlock(missing.c_str(), 1, kHeaderAndData), 1);
  EXPECT_FALSE(std::filesystem::exists(missing));
}

TEST_F(AttributeWrite, LeavesAFileOfAnotherFormatAlone) {
  const std::string other = TempPath("notes.txt");
  std::ofstream(other) << "not a result file";
  EXPECT_EQ(block_.WriteBlock(other.c_str(), 0, kHeaderAndData), 1);
  EXPECT_EQ(block_.WriteBlock(other.c_str(), 1, kHeaderAndData), 1);
  EXPECT_EQ(BytesOf(other), "not a result file");
}

TEST_F(AttributeWrite, RefusesAnEmptyName) {
  block_.m_etyp[0] = '\0';
  const std::string before = BytesOf(path_);
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_EQ(Write(3, kHeaderAndData), 1);  // no state is made for it either
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(AttributeWrite, CutsANameWithoutATerminator) {
  std::memset(block_.m_etyp, 'E', sizeof block_.m_etyp);
  ASSERT_EQ(Write(0, ORV_WRITE_HEADER), 0);
  const RawFile raw(path_);
  const std::string name(256, 'E');
  EXPECT_THAT(raw.children(kAttributes), ElementsAre(name));
  EXPECT_EQ(raw.attribute_text(std::string(kAttributes) + "/" + name + "/header", "etyp"), name);
}

// ---- Header, data and index

TEST_F(AttributeWrite, StoresTheIncrementalFlagAsItWasRead) {
  AddEntities(file_, InState(1, "attributes"), "OLD", Layout::kSplit).integer32("indexic", 3);
  path_ = file_.path();
  std::strcpy(block_.m_etyp, "OLD");
  ASSERT_EQ(block_.ReadBlock(path_.c_str(), 1, ORV_READ_HEADER), 0);
  block_.m_nent = 2;
  std::strcpy(block_.m_etyp, "NEW");
  ORVSetCurrentWriterVersion(5);
  ASSERT_EQ(Write(1, ORV_WRITE_HEADER), 0);
  EXPECT_EQ(RawFile(path_).attribute_int(InState(1, "attributes/NEW/orvblock"), "indexic"), 3);
}

TEST_F(AttributeWrite, ReplacesTheKindOfAnExistingHeader) {
  file_.at(std::string(kNode) + "/header").text("blocktype", "old", 3).integer32("nent", 9);
  path_ = file_.path();
  ASSERT_EQ(Write(0, ORV_WRITE_HEADER), 0);
  const RawFile raw(path_);
  EXPECT_EQ(raw.attribute_text(std::string(kNode) + "/header", "blocktype"), Padded("attributes"));
  EXPECT_EQ(raw.attribute_int(std::string(kNode) + "/header", "nent"), 2);
}

TEST_F(AttributeWrite, StopsAtAnAttributeOfAnotherClass) {
  file_.at(std::string(kNode) + "/header").real("nent", 4.);
  path_ = file_.path();
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5write_ATTRIBUTE::\n\t \"nent\" data type mismatch for attribute");
  const RawFile raw(path_);
  EXPECT_THAT(raw.attributes(std::string(kNode) + "/header"), Not(Contains("nuid")));
  EXPECT_THAT(raw.children(std::string(kNode) + "/data"), IsEmpty());
}

TEST_F(AttributeWrite, StopsAtAWriteThatFails) {
  const Location place(path_, kAttributes);
  EXPECT_EQ(block_.WriteHeader(place.id()), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5write_ATTRIBUTE::\n\t \"block\" fail to write");
}

TEST_F(AttributeWrite, StoresLongIds) {
  std::int64_t ids[2] = {5000000000, 1};
  block_.m_entidType = ORV_LONG;
  block_.m_entid = ids;
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_EQ(raw.type_size(std::string(kNode) + "/data/entid"), 8U);
  EXPECT_THAT(raw.values<std::int64_t>(std::string(kNode) + "/data/entid"), ElementsAre(5000000000, 1));
}

TEST_F(AttributeWrite, StoresLongIntegersBesideShortIds) {
  std::int64_t integers[2] = {5000000000, 1};
  block_.m_nuid = 1;
  block_.m_uidType = ORV_LONG;
  block_.m_uid = integers;
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_EQ(raw.type_size(std::string(kNode) + "/data/uid"), 8U);
  EXPECT_THAT(raw.values<std::int64_t>(std::string(kNode) + "/data/uid"), ElementsAre(5000000000, 1));
  EXPECT_EQ(raw.type_size(std::string(kNode) + "/data/entid"), 4U);
}

TEST_F(AttributeWrite, StopsAtTheFirstDatasetThatFails) {
  AddIntegers();
  block_.m_uid = nullptr;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_THAT(RawFile(path_).children(std::string(kNode) + "/data"), ElementsAre("entid"));
  std::strcpy(block_.m_etyp, "OTHER");
  block_.m_entid = nullptr;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_THAT(RawFile(path_).children(std::string(kAttributes) + "/OTHER/data"), IsEmpty());
}

TEST_F(AttributeWrite, StoresNoDataForNegativeCounts) {
  block_.m_nent = -2;
  EXPECT_EQ(Write(0, ORV_WRITE_DATA), 1);
  block_.m_nent = 2;
  block_.m_nuid = -1;
  EXPECT_EQ(Write(0, ORV_WRITE_DATA), 1);
  EXPECT_THAT(RawFile(path_).children(std::string(kNode) + "/data"), IsEmpty());
}

TEST_F(AttributeWrite, CompressesIdsByTheBlocksOwnDigitsAndNeverTitles) {
  block_.m_nCompressionFactor = 3;
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const RawFile raw(path_);
  EXPECT_THAT(raw.filters(std::string(kNode) + "/data/entid"), ElementsAre(H5Z_FILTER_SCALEOFFSET));
  EXPECT_THAT(raw.values<std::int32_t>(std::string(kNode) + "/data/entid"), ElementsAre(11, 12));
  EXPECT_THAT(raw.filters(std::string(kNode) + "/data/title"), IsEmpty());
}

TEST_F(AttributeWrite, StoresTheIndexWhereItIsTold) {
  file_.at("/x");
  int status = -1;
  file_.raw([&](hid_t group) { status = block_.WriteIndex(group); });
  EXPECT_EQ(status, 0);
  const RawFile raw(file_.path());
  EXPECT_THAT(raw.shape("/x/indexval"), ElementsAre(1));
  EXPECT_THAT(raw.values<float>("/x/indexval"), ElementsAre(2.5F));
  EXPECT_THAT(raw.values<std::int32_t>("/x/indexident"), ElementsAre(1));
}

TEST_F(AttributeWrite, StoresTheIndexInItsOwnTypes) {
  std::int64_t ident[1] = {5000000000};
  double values[1] = {0.1};
  block_.m_indexidentType = ORV_LONG;
  block_.m_indexvalType = ORV_DOUBLE;
  block_.m_indexident = ident;
  block_.m_indexval = values;
  file_.at("/x").raw([&](hid_t group) { EXPECT_EQ(block_.WriteIndex(group), 0); });
  const RawFile raw(file_.path());
  EXPECT_THAT(raw.values<std::int64_t>("/x/indexident"), ElementsAre(5000000000));
  EXPECT_EQ(raw.type_size("/x/indexval"), 8U);
  EXPECT_THAT(raw.values<double>("/x/indexval"), ElementsAre(0.1));
}

TEST_F(AttributeWrite, AnswersOneForAnIndexWithoutACountOrAGroup) {
  EXPECT_EQ(block_.WriteIndex(H5I_INVALID_HID), 1);
  const Location place(path_, kAttributes, H5F_ACC_RDWR);
  block_.m_nindex = 0;
  EXPECT_EQ(block_.WriteIndex(place.id()), 1);
  block_.m_nindex = -1;
  EXPECT_EQ(block_.WriteIndex(place.id()), 1);
}

}  // namespace
}  // namespace orv_test
