// The header that a write of a result block leaves, looked at with HDF5 alone.

#include <cstring>
#include <optional>
#include <utility>

#include "result/written_result.h"

namespace {

using namespace orv_test;

class ResultWriteHeader : public OrvTest {
 protected:
  /// Writes the header of a block of some kind with everything set and answers where it is.
  std::string Write(int kind, int version, ORVResult* filled = nullptr) {
    const Writer writer(version);
    ORVResult block = filled ? *filled : Full(kind);
    const bool multi = block.IsMultistateBlk();
    EXPECT_EQ(block.WriteBlock(file_->path().c_str(), 0, 1), 0);
    const char* type = !block.IsElementResult() ? (multi ? "multientityresults" : "entityresults") : "elementresults";
    return std::string(multi ? "/post/multistate/" : "/post/constant/") + type + "/Node/VELOCITY/" +
           (version < 3 ? "header" : "orvblock");
  }

  static ORVResult Full(int kind) {
    ORVResult block = NodeBlock(kind);
    block.m_nent = 2;
    block.m_ncoo = 3;
    block.m_zoneid = 4;
    block.m_nstate = 5;
    block.m_numl = 6;
    block.m_ndim = 7;
    block.m_nindex = 8;
    block.m_fidglob = 5'000'000'000;
    block.m_dmpswitch = 10;
    return block;
  }

  std::optional<ForgedFile> file_{std::in_place, "write"};
};

TEST_F(ResultWriteHeader, OfAnEntityKindHasTheseAttributesInThisOrder) {
  const std::string at = Write(1000, 1);
  const RawFile raw(file_->path());
  EXPECT_EQ(raw.attributes(at), (Names{"block", "blocktype", "etypvar", "ncoo", "etypzone", "etypframe", "zoneid",
                                       "etyp", "nent", "nindex", "fswitch", "dmpswitch"}));
  EXPECT_EQ(raw.attribute_int(at, "block"), 1000);
  EXPECT_EQ(raw.attribute_int(at, "ncoo"), 3);
  EXPECT_EQ(raw.attribute_int(at, "zoneid"), 4);
  EXPECT_EQ(raw.attribute_int(at, "nent"), 2);
  EXPECT_EQ(raw.attribute_int(at, "nindex"), 8);
  EXPECT_EQ(raw.attribute_int(at, "fswitch"), 0);
  EXPECT_EQ(raw.attribute_int(at, "dmpswitch"), 10);
  EXPECT_EQ(raw.attribute_text(at, "blocktype"), "entityresults" + std::string(243, ' '));
  EXPECT_EQ(raw.attribute_text(at, "etypvar"), "VELOCITY" + std::string(248, ' '));
  EXPECT_EQ(raw.attribute_text(at, "etyp"), "Node" + std::string(252, ' '));
}

TEST_F(ResultWriteHeader, StoresNumbersWith64BitsAndScalars) {
  const std::string at = Write(1100, 1);
  const RawFile raw(file_->path());
  for (const char* name : {"block", "ncoo", "zoneid", "nele", "numl", "ndim", "nindex", "fswitch", "dmpswitch"}) {
    EXPECT_EQ(raw.attribute_class(at, name), H5T_INTEGER) << name;
    EXPECT_EQ(raw.attribute_size(at, name), 8U) << name;
    EXPECT_EQ(raw.attribute_rank(at, name), 0) << name;
  }
}

TEST_F(ResultWriteHeader, OfAnElementKindHasLayersAndElementNames) {
  const std::string at = Write(1101, 2);
  const RawFile raw(file_->path());
  EXPECT_EQ(raw.attributes(at), (Names{"block", "blocktype", "etypvar", "ncoo", "etypzone", "etypframe", "zoneid",
                                       "etypelem", "nele", "numl", "ndim", "nindex", "fswitch", "dmpswitch"}));
  EXPECT_EQ(raw.attribute_int(at, "nele"), 2);
  EXPECT_EQ(raw.attribute_int(at, "numl"), 6);
  EXPECT_EQ(raw.attribute_int(at, "ndim"), 7);
  EXPECT_EQ(raw.attribute_text(at, "etypelem"), "Node" + std::string(252, ' '));
}

TEST_F(ResultWriteHeader, OfAMultiEntityKindHasStates) {
  const std::string at = Write(1051, 0);
  const RawFile raw(file_->path());
  EXPECT_EQ(raw.attributes(at), (Names{"block", "blocktype", "etypvar", "ncoo", "etypzone", "etypframe", "zoneid",
                                       "etyp", "nent", "nstate", "nindex", "fswitch", "dmpswitch"}));
  EXPECT_EQ(raw.attribute_int(at, "nstate"), 5);
}

TEST_F(ResultWriteHeader, OfAMultiElementKindHasNeitherStatesNorLayers) {
  const std::string at = Write(1150, 1);
  EXPECT_EQ(RawFile(file_->path()).attributes(at),
            (Names{"block", "blocktype", "etypvar", "ncoo", "etypzone", "etypframe", "zoneid", "etypelem", "nele",
                   "nindex", "fswitch", "dmpswitch"}));
}

TEST_F(ResultWriteHeader, OfLaterVersionsHasFrameIdAndIncrement) {
  for (const int version : {3, 4, 5}) {
    file_.emplace("write");
    const std::string at = Write(1000, version);
    const RawFile raw(file_->path());
    EXPECT_EQ(raw.attributes(at), (Names{"block", "blocktype", "etypvar", "ncoo", "etypzone", "etypframe", "zoneid",
                                         "etyp", "nent", "nindex", "fswitch", "fidglob", "dmpswitch", "indexic"}));
    EXPECT_EQ(raw.attribute_int(at, "fidglob"), 5'000'000'000);
    EXPECT_EQ(raw.attribute_size(at, "indexic"), 4U);
    EXPECT_EQ(raw.attribute_int(at, "indexic"), 0);
  }
}

/// A block as the writer of changes makes it.
struct IncrementalBlock : ORVResult {
  explicit IncrementalBlock(const ORVResult& block) : ORVResult(block) { m_nIncremental = 1; }
};

TEST_F(ResultWriteHeader, OfLaterVersionsTellsAnIncrementalBlock) {
  ORVResult block = static_cast<const ORVResult&>(IncrementalBlock(Full(1000)));
  const std::string at = Write(1000, 3, &block);
  EXPECT_EQ(RawFile(file_->path()).attribute_int(at, "indexic"), 1);
}

TEST_F(ResultWriteHeader, OfLaterVersionsHasTheSeriesOfMultiStateKindsBeforeTheIncrement) {
  const std::string entities = Write(1051, 3);
  EXPECT_EQ(RawFile(file_->path()).attributes(entities),
            (Names{"block", "blocktype", "etypvar", "ncoo", "etypzone", "etypframe", "zoneid", "etyp", "nent", "nstate",
                   "nindex", "fswitch", "fidglob", "dmpswitch", "series", "indexic"}));
  const std::string elements = Write(1151, 3);
  EXPECT_EQ(RawFile(file_->path()).attributes(elements),
            (Names{"block", "blocktype", "etypvar", "ncoo", "etypzone", "etypframe", "zoneid", "etypelem", "nele",
                   "nindex", "fswitch", "fidglob", "dmpswitch", "series", "indexic"}));
}

TEST_F(ResultWriteHeader, OfLaterVersionsNamesTheSeriesOfMultiStateKinds) {
  for (const int kind : {1050, 1150}) {
    file_.emplace("write");
    ORVResult block = Full(kind);
    std::strcpy(block.m_series, "LOADCASE_3");
    const std::string at = Write(kind, 3, &block);
    EXPECT_EQ(RawFile(file_->path()).attribute_text(at, "series"), "LOADCASE_3" + std::string(246, ' '));
  }
}

TEST_F(ResultWriteHeader, WithAFrameSwitchHasNoFrameIdOfTheBlock) {
  ORVResult block = Full(1000);
  block.m_fswitch = 1;
  const std::string at = Write(1000, 3, &block);
  EXPECT_FALSE(RawFile(file_->path()).has_attribute(at, "fidglob"));
  EXPECT_EQ(RawFile(file_->path()).attribute_int(at, "fswitch"), 1);
}

TEST_F(ResultWriteHeader, PutsWordsInPlaceOfEmptyNames) {
  const std::string at = Write(1050, 3);
  const RawFile raw(file_->path());
  EXPECT_EQ(raw.attribute_text(at, "etypzone"), "ZONE" + std::string(252, ' '));
  EXPECT_EQ(raw.attribute_text(at, "etypframe"), "FRAME" + std::string(251, ' '));
  EXPECT_EQ(raw.attribute_text(at, "series"), "TIMESERIES1" + std::string(245, ' '));
  ORVResult block = NodeBlock(1050);
  ASSERT_EQ(block.ReadBlock(file_->path().c_str(), 0, ORV_READ_HEADER), 0);
  EXPECT_STREQ(block.m_etypzone, "ZONE");
  EXPECT_STREQ(block.m_etypframe, "FRAME");
  EXPECT_STREQ(block.m_series, "TIMESERIES1");
}

TEST_F(ResultWriteHeader, KeepsNamesThatAreSet) {
  ORVResult block = Full(1000);
  std::strcpy(block.m_etypzone, "LAYER");
  std::strcpy(block.m_etypframe, "LOCAL");
  const std::string at = Write(1000, 1, &block);
  EXPECT_EQ(RawFile(file_->path()).attribute_text(at, "etypzone"), "LAYER" + std::string(251, ' '));
  EXPECT_EQ(RawFile(file_->path()).attribute_text(at, "etypframe"), "LOCAL" + std::string(251, ' '));
}

TEST_F(ResultWriteHeader, NamesTheTypeOfBlockByKind) {
  const std::pair<int, const char*> rows[] = {
      {1000, "entityresults"},  {1001, "entityresults"},  {1050, "multientityresults"},  {1051, "multientityresults"},
      {1100, "elementresults"}, {1101, "elementresults"}, {1150, "multielementresults"}, {1151, "multielementresults"},
  };
  for (const auto& [kind, word] : rows) {
    file_.emplace("write");
    const std::string at = Write(kind, 1);
    const std::string stored = RawFile(file_->path()).attribute_text(at, "blocktype");
    EXPECT_EQ(stored.substr(0, stored.find(' ')), word) << kind;
    EXPECT_EQ(RawFile(file_->path()).attribute_int(at, "block"), kind);
  }
}

TEST_F(ResultWriteHeader, EndsAtAnAttributeOfAnotherClassAndTells) {
  const std::string at = Write(1000, 1);
  file_->at(at).retype("zoneid").integer("nent", 99);
  const Writer writer(1, 1);
  ORVResult block = Full(1000);
  block.m_ncoo = 9;
  EXPECT_EQ(block.WriteBlock(file_->path().c_str(), 0, 3), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5write_ATTRIBUTE::\n\t \"zoneid\" data type mismatch for attribute");
  const RawFile raw(file_->path());
  EXPECT_EQ(raw.attribute_int(at, "ncoo"), 9);
  EXPECT_EQ(raw.attribute_int(at, "nent"), 99);
  EXPECT_FALSE(raw.exists("/post/constant/entityresults/Node/VELOCITY/data/res"));
}

TEST_F(ResultWriteHeader, GoesOnAfterADumpSwitchOfAnotherClass) {
  const std::string at = Write(1000, 3);
  file_->at(at).retype("dmpswitch").drop("indexic");
  const Writer writer(3, 1);
  EXPECT_EQ(Full(1000).WriteBlock(file_->path().c_str(), 0, 1), 0);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5write_ATTRIBUTE::\n\t \"dmpswitch\" data type mismatch for attribute");
  EXPECT_TRUE(RawFile(file_->path()).has_attribute(at, "indexic"));
}

TEST_F(ResultWriteHeader, EndsAtAWriteThatFailsAndTells) {
  const std::string path = file_->path();
  const Id file(H5Fopen(path.c_str(), H5F_ACC_RDONLY, H5P_DEFAULT), path);
  const Id group(H5Gopen2(file.get(), "/post", H5P_DEFAULT), "/post");
  EXPECT_EQ(Full(1000).WriteHeader(group.get()), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "OH5write_ATTRIBUTE::\n\t \"block\" fail to write");
}

TEST_F(ResultWriteHeader, OfAnUnknownKindFails) {
  for (const int kind : {-1, 10, 500, 1002}) EXPECT_EQ(ORVResult(kind).WriteHeader(1), 1) << kind;
}

}  // namespace
