// Writing of collector blocks, looked at with HDF5 alone, for every writer version.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <hdf5.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "entity/entity_list_forge.h"
#include "orvio/orv_collector.h"
#include "orvio/orv_switches.h"
#include "support/orv_test.h"
#include "support/raw_file.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kHeaderAndData = ORV_WRITE_HEADER | ORV_WRITE_DATA;
constexpr int kAll = kHeaderAndData | ORV_WRITE_INDEX;
constexpr char kPairs[] = "/post/constant/collector/PAIRS";

std::string Padded(std::string text) {
  text.resize(256, ' ');
  return text;
}

/// A block of two collectors with an index, and a file with two states, of which the second has no "collector".
class CollectorWrite : public OrvTest {
 protected:
  CollectorWrite() {
    file_.group(kCollectors).group(InState(1, "collector")).group("/post/singlestate/state000000000002");
    path_ = file_.path();
    std::strcpy(block_.m_etypcoll, "PAIRS");
    block_.m_ncoll = block_.m_ntyp = 2;
    block_.m_nenttot = 5;
    block_.m_idcoll = idcoll_;
    block_.m_etyp = etyp_.data();
    block_.m_nent = nent_;
    block_.m_entid = entid_;
    block_.m_nindex = 1;
    block_.m_indexident = ident_;
    block_.m_indexval = values_;
  }
  ~CollectorWrite() override { ORVSetCurrentWriterVersion(1); }

  int Write(int state, int what) { return block_.WriteBlock(path_.c_str(), state, what); }

  ForgedFile file_;
  std::string path_;
  ORVCollector block_;
  std::string etyp_ = Padded("NODE") + Padded("SHELL");
  int idcoll_[2] = {1, 2};
  int nent_[4] = {1, 2, 1, 1};
  int entid_[5] = {101, 102, 103, 104, 105};
  int ident_[1] = {1};
  float values_[1] = {2.5F};
};

class CollectorWriteVersion : public CollectorWrite, public ::testing::WithParamInterface<int> {
 protected:
  CollectorWriteVersion() { ORVSetCurrentWriterVersion(GetParam()); }

  static bool IsSplit() { return GetParam() < 3; }
  static std::string Part(const std::string& block, const char* split) {
    return block + "/" + (IsSplit() ? split : "orvblock");
  }
};

INSTANTIATE_TEST_SUITE_P(Versions, CollectorWriteVersion, ::testing::Values(0, 1, 2, 3, 4, 5),
                         [](const auto& version) { return std::to_string(version.param); });

TEST_P(CollectorWriteVersion, StoresTheHeaderInOrder) {
  ASSERT_EQ(Write(0, ORV_WRITE_HEADER), 0);
  const RawFile raw(path_);
  const std::string header = Part(kPairs, "header");
  EXPECT_THAT(raw.attributes(header),
              ElementsAre("block", "blocktype", "etypcoll", "ncoll", "ntyp", "nenttot", "nindex"));
  EXPECT_EQ(raw.attribute_int(header, "block"), 400);
  EXPECT_EQ(raw.attribute_text(header, "blocktype"), Padded("collector"));
  EXPECT_EQ(raw.attribute_text(header, "etypcoll"), Padded("PAIRS"));
  EXPECT_EQ(raw.attribute_int(header, "ncoll"), 2);
  EXPECT_EQ(raw.attribute_int(header, "ntyp"), 2);
  EXPECT_EQ(raw.attribute_int(header, "nenttot"), 5);
  EXPECT_EQ(raw.attribute_int(header, "nindex"), 1);
  for (const char* name : {"block", "ncoll", "ntyp", "nenttot", "nindex"}) {
    EXPECT_EQ(raw.attribute_size(header, name), 8U) << name;
    EXPECT_EQ(raw.attribute_class(header, name), H5T_INTEGER) << name;
    EXPECT_EQ(raw.attribute_rank(header, name), 0) << name;
  }
}

TEST_P(CollectorWriteVersion, StoresDatasetsAndIndexOfAState) {
  ASSERT_EQ(Write(1, kAll), 0);
  const RawFile raw(path_);
  const std::string block = InState(1, "collector/PAIRS");
  const std::string data = Part(block, "data");
  const std::string index = Part(block, "index");
  if (IsSplit()) {
    EXPECT_THAT(raw.children(block), ElementsAre("data", "header", "index"));
    EXPECT_THAT(raw.children(data), ElementsAre("entid", "etyp", "idcoll", "nent"));
    EXPECT_THAT(raw.children(index), ElementsAre("indexident", "indexval"));
  } else {
    EXPECT_THAT(raw.children(block), ElementsAre("orvblock"));
    EXPECT_THAT(raw.children(data), ElementsAre("entid", "etyp", "idcoll", "indexident", "indexval", "nent"));
  }
  EXPECT_THAT(raw.shape(data + "/idcoll"), ElementsAre(2));
  EXPECT_THAT(raw.values<std::int32_t>(data + "/idcoll"), ElementsAre(1, 2));
  EXPECT_THAT(raw.shape(data + "/etyp"), ElementsAre(2));
  EXPECT_THAT(raw.texts(data + "/etyp"), ElementsAre(Padded("NODE"), Padded("SHELL")));
  EXPECT_THAT(raw.shape(data + "/nent"), ElementsAre(2, 2));
  EXPECT_THAT(raw.values<std::int32_t>(data + "/nent"), ElementsAre(1, 2, 1, 1));
  EXPECT_THAT(raw.shape(data + "/entid"), ElementsAre(5));
  EXPECT_THAT(raw.values<std::int32_t>(data + "/entid"), ElementsAre(101, 102, 103, 104, 105));
  EXPECT_EQ(raw.type_size(data + "/entid"), 4U);
  EXPECT_THAT(raw.values<float>(index + "/indexval"), ElementsAre(2.5F));
  EXPECT_THAT(raw.values<std::int32_t>(index + "/indexident"), ElementsAre(1));
}

TEST_P(CollectorWriteVersion, StoresNothingOfAnIndexInTheConstantSection) {
  ASSERT_EQ(Write(0, kAll), 0);
  ASSERT_EQ(Write(-1, kAll), 0);
  const RawFile raw(path_);
  EXPECT_THAT(raw.children(Part(kPairs, "data")), ElementsAre("entid", "etyp", "idcoll", "nent"));
  if (IsSplit()) {
    EXPECT_THAT(raw.children(kPairs), ElementsAre("data", "header", "index"));
    EXPECT_THAT(raw.children(std::string(kPairs) + "/index"), IsEmpty());
  } else {
    EXPECT_FALSE(raw.exists(std::string(kPairs) + "/index"));
  }
}

TEST_P(CollectorWriteVersion, WithoutCollectorsStoresTheHeaderAlone) {
  block_.m_ncoll = 0;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  const RawFile raw(path_);
  EXPECT_EQ(raw.attribute_int(Part(kPairs, "header"), "ncoll"), 0);
  EXPECT_THAT(raw.children(Part(kPairs, "data")), IsEmpty());
}

TEST_P(CollectorWriteVersion, WritesIntoABlockOfTheSameExtents) {
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  entid_[0] = 201;
  EXPECT_EQ(Write(0, kHeaderAndData), 0);
  EXPECT_EQ(RawFile(path_).values<std::int32_t>(Part(kPairs, "data") + "/entid")[0], 201);
}

TEST_P(CollectorWriteVersion, LeavesTheFileAloneForOtherExtents) {
  ASSERT_EQ(Write(0, kHeaderAndData), 0);
  const std::string before = BytesOf(path_);
  block_.m_nenttot = 4;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  block_.m_nenttot = 5;
  block_.m_ncoll = 1;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  block_.m_ncoll = 2;
  block_.m_ntyp = 1;
  EXPECT_EQ(Write(0, ORV_WRITE_DATA), 1);
  EXPECT_EQ(Write(0, ORV_WRITE_HEADER), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_P(CollectorWriteVersion, IsReadBackAsItWas) {
  ASSERT_EQ(Write(1, kAll), 0);
  ORVCollector read;
  std::strcpy(read.m_etypcoll, "PAIRS");
  ASSERT_EQ(read.ReadBlock(path_.c_str(), 1, ORV_READ_HEADER), 0);
  std::vector<int> idcoll(2), nent(4), entid(5), ident(1);
  std::vector<float> value(1);
  std::string etyp(2 * 256 + 1, '\0');
  read.m_idcoll = idcoll.data();
  read.m_etyp = etyp.data();
  read.m_nent = nent.data();
  read.m_entid = entid.data();
  read.m_indexident = ident.data();
  read.m_indexval = value.data();
  ASSERT_EQ(read.ReadBlock(path_.c_str(), 1, ORV_READ_DATA | ORV_READ_INDEX), 0);
  EXPECT_THAT(idcoll, ElementsAre(1, 2));
  EXPECT_STREQ(etyp.data() + 256, "SHELL");
  EXPECT_THAT(nent, ElementsAre(1, 2, 1, 1));
  EXPECT_THAT(entid, ElementsAre(101, 102, 103, 104, 105));
  EXPECT_THAT(ident, ElementsAre(1));
  EXPECT_THAT(value, ElementsAre(2.5F));
}

// ---- Where it goes

TEST_F(CollectorWrite, MakesTheMissingGroupOfAState) {
  ASSERT_EQ(Write(2, kHeaderAndData), 0);
  EXPECT_TRUE(RawFile(path_).exists(InState(2, "collector/PAIRS/data/entid")));
}

TEST_F(CollectorWrite, NeverMakesAStateOrTheGroupOfTheConstantSection) {
  file_.at("/post/constant").drop("collector");
  path_ = file_.path();
  const std::string before = BytesOf(path_);
  EXPECT_EQ(Write(3, kHeaderAndData), 1);
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_EQ(BytesOf(path_), before);
}

TEST_F(CollectorWrite, MakesOnlyThePartsThatItWrites) {
  ASSERT_EQ(Write(0, ORV_WRITE_HEADER), 0);
  EXPECT_THAT(RawFile(path_).children(kPairs), ElementsAre("header"));
}

TEST_F(CollectorWrite, RefusesAMissingPathFileOrName) {
  EXPECT_EQ(block_.WriteBlock(nullptr, 0, kHeaderAndData), 1);
  const std::string missing = TempPath("missing.orv");
  EXPECT_EQ(block_.WriteBlock(missing.c_str(), 0, kHeaderAndData), 1);
  EXPECT_EQ(block_.WriteBlock(missing.c_str(), 1, kHeaderAndData), 1);
  EXPECT_FALSE(std::filesystem::exists(missing));
  block_.m_etypcoll[0] = '\0';
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_THAT(RawFile(path_).children(kCollectors), IsEmpty());
}

// ---- Header, data and index

TEST_F(CollectorWrite, ReplacesTheKindOfAnExistingHeader) {
  file_.at(std::string(kPairs) + "/header").text("blocktype", "old", 3).integer32("ncoll", 9);
  path_ = file_.path();
  ASSERT_EQ(Write(0, ORV_WRITE_HEADER), 0);
  const RawFile raw(path_);
  EXPECT_EQ(raw.attribute_text(std::string(kPairs) + "/header", "blocktype"), Padded("collector"));
  EXPECT_EQ(raw.attribute_int(std::string(kPairs) + "/header", "ncoll"), 2);
}

TEST_F(CollectorWrite, StopsAtAnAttributeOfAnotherClass) {
  file_.at(std::string(kPairs) + "/header").real("ntyp", 4.);
  path_ = file_.path();
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5write_ATTRIBUTE::\n\t \"ntyp\" data type mismatch for attribute");
  const RawFile raw(path_);
  EXPECT_FALSE(raw.has_attribute(std::string(kPairs) + "/header", "nenttot"));
  EXPECT_THAT(raw.children(std::string(kPairs) + "/data"), IsEmpty());
}

TEST_F(CollectorWrite, NeverStoresTheIncrementalFlag) {
  AddCollectors(file_, InState(1, "collector"), "OLD", Layout::kSplit).integer32("indexic", 1);
  path_ = file_.path();
  std::strcpy(block_.m_etypcoll, "OLD");
  ASSERT_EQ(block_.ReadBlock(path_.c_str(), 1, ORV_READ_HEADER), 0);
  ASSERT_TRUE(block_.IsIncremental());
  std::strcpy(block_.m_etypcoll, "NEW");
  ORVSetCurrentWriterVersion(5);
  ASSERT_EQ(Write(1, ORV_WRITE_HEADER), 0);
  EXPECT_FALSE(RawFile(path_).has_attribute(InState(1, "collector/NEW/orvblock"), "indexic"));
}

TEST_F(CollectorWrite, StopsAtTheFirstDatasetThatFails) {
  block_.m_nent = nullptr;
  EXPECT_EQ(Write(1, kAll), 1);
  const RawFile raw(path_);
  EXPECT_THAT(raw.children(InState(1, "collector/PAIRS/data")), ElementsAre("etyp", "idcoll"));
  EXPECT_THAT(raw.children(InState(1, "collector/PAIRS/index")), IsEmpty());
}

TEST_F(CollectorWrite, WithoutIdsStoresAllButThemAndAnswersOne) {
  block_.m_nenttot = 0;
  EXPECT_EQ(Write(0, kHeaderAndData), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5Write_INT::\n\t \"entid\" size cannot be zero");
  EXPECT_THAT(RawFile(path_).children(std::string(kPairs) + "/data"), ElementsAre("etyp", "idcoll", "nent"));
}

TEST_F(CollectorWrite, StoresNoDataForNegativeCounts) {
  for (std::int64_t ORVCollector::*count : {&ORVCollector::m_ncoll, &ORVCollector::m_ntyp, &ORVCollector::m_nenttot}) {
    const std::int64_t before = block_.*count;
    block_.*count = -1;
    EXPECT_EQ(Write(0, ORV_WRITE_DATA), 1);
    block_.*count = before;
  }
  EXPECT_THAT(RawFile(path_).children(std::string(kPairs) + "/data"), IsEmpty());
}

TEST_F(CollectorWrite, CompressesDataByTheBlocksOwnDigitsAndNeverTheIndex) {
  block_.m_nCompressionFactor = 3;
  ASSERT_EQ(Write(1, kAll), 0);
  const RawFile raw(path_);
  const std::string block = InState(1, "collector/PAIRS");
  EXPECT_THAT(raw.filters(block + "/data/entid"), ElementsAre(H5Z_FILTER_SCALEOFFSET));
  EXPECT_THAT(raw.filters(block + "/data/etyp"), IsEmpty());
  EXPECT_THAT(raw.filters(block + "/index/indexval"), IsEmpty());
}

TEST_F(CollectorWrite, AnswersOneForAnIndexWithoutACountOrAGroup) {
  EXPECT_EQ(block_.WriteIndex(H5I_INVALID_HID), 1);
  block_.m_nindex = 0;
  EXPECT_EQ(Write(1, kAll), 1);
  EXPECT_TRUE(RawFile(path_).exists(InState(1, "collector/PAIRS/data/entid")));
}

}  // namespace
}  // namespace orv_test
