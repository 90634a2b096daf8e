// The write of whole result blocks, looked at with HDF5 alone: where a block goes and what becomes of one that is
// there. What stands in its parts is in result_write_header_test and result_write_data_test.

#include <gmock/gmock.h>

#include <cstring>

#include "filer/process_state.h"
#include "result/written_result.h"
#include "support/full_disk.h"
#include "support/messages.h"

namespace {

using namespace orv_test;

class ResultWrite : public OrvTest {};

TEST_F(ResultWrite, InTheSplitLayoutMakesAGroupForEachPart) {
  for (const int version : {0, 1, 2}) {
    const Writer writer(version);
    ForgedFile file("write");
    EXPECT_EQ(Nodes().Write(file.path(), 1), 0);
    const std::string block = std::string(kState1) + "/entityresults/Node/VELOCITY";
    EXPECT_EQ(RawFile(file.path()).tree(block),
              (Names{block + "/data", block + "/data/entid", block + "/data/fidglob", block + "/data/res",
                     block + "/header", block + "/index", block + "/index/indexident", block + "/index/indexval"}));
  }
}

TEST_F(ResultWrite, InTheSingleLayoutMakesOneGroupForAllParts) {
  for (const int version : {3, 4, 5}) {
    const Writer writer(version);
    ForgedFile file("write");
    EXPECT_EQ(Nodes().Write(file.path(), 1), 0);
    const std::string block = std::string(kState1) + "/entityresults/Node/VELOCITY";
    const std::string part = block + "/orvblock";
    EXPECT_EQ(RawFile(file.path()).tree(block),
              (Names{part, part + "/entid", part + "/indexident", part + "/indexval", part + "/res"}));
    EXPECT_TRUE(RawFile(file.path()).has_attribute(part, "ncoo"));
  }
}

TEST_F(ResultWrite, OfTheDataAloneInASplitFileMakesOnlyData) {
  const Writer writer(2);
  ForgedFile file("write");
  EXPECT_EQ(Nodes().Write(file.path(), 1, 2), 0);
  const RawFile raw(file.path());
  EXPECT_EQ(raw.children(std::string(kState1) + "/entityresults/Node/VELOCITY"), (Names{"data"}));
  EXPECT_EQ(raw.attributes(std::string(kState1) + "/entityresults/Node/VELOCITY/data"), Names{});
}

TEST_F(ResultWrite, BelowStateOneGoesToTheConstantSection) {
  ForgedFile file("write");
  EXPECT_EQ(Nodes().Write(file.path(), 0, 1), 0);
  EXPECT_TRUE(RawFile(file.path()).exists("/post/constant/entityresults/Node/VELOCITY/header"));
  Nodes elements(1100);
  EXPECT_EQ(elements.Write(file.path(), -4, 1), 0);
  EXPECT_TRUE(RawFile(file.path()).exists("/post/constant/elementresults/Node/VELOCITY/header"));
}

TEST_F(ResultWrite, LeavesTheAccessOfReadsAsItWas) {
  for (const unsigned before : {H5F_ACC_RDONLY, H5F_ACC_RDWR}) {
    const orvio::Swapped access(orvio::process().g_nReadAccess, before);
    ForgedFile file("write");
    EXPECT_EQ(Nodes().Write(file.path(), 1), 0);
    EXPECT_EQ(orvio::process().g_nReadAccess, before);
    EXPECT_EQ(Nodes().Write(file.path(), 3), 1);
    EXPECT_EQ(orvio::process().g_nReadAccess, before);
    EXPECT_EQ(Nodes().Write("/nowhere/file.orv", 1), 1);
    EXPECT_EQ(orvio::process().g_nReadAccess, before);
  }
}

TEST_F(ResultWrite, RemembersTheFileThatItOpenedLast) {
  const orvio::Swapped last(orvio::process().g_hLastFile, hid_t{0});
  ForgedFile file("write");
  EXPECT_EQ(Nodes().Write(file.path(), 1), 0);
  EXPECT_GT(orvio::process().g_hLastFile, 0);
  EXPECT_EQ(Nodes().Write("/nowhere/file.orv", 1), 1);
  EXPECT_EQ(orvio::process().g_hLastFile, -1);
}

TEST_F(ResultWrite, OfMultiStateKindsMakesTheirSection) {
  ForgedFile file("write");
  EXPECT_EQ(Nodes(1050).Write(file.path(), 0, 1), 0);
  EXPECT_EQ(Nodes(1150).Write(file.path(), -1, 1), 0);
  const RawFile raw(file.path());
  EXPECT_TRUE(raw.exists("/post/multistate/multientityresults/Node/VELOCITY/header"));
  EXPECT_TRUE(raw.exists("/post/multistate/elementresults/Node/VELOCITY/header"));
}

TEST_F(ResultWrite, OfMultiStateKindsNeedsTheConstantSectionToo) {
  ForgedFile file("write");
  file.at("/post").drop("constant");
  EXPECT_EQ(Nodes(1050).Write(file.path(), 0, 1), 1);
  EXPECT_FALSE(RawFile(file.path()).exists("/post/multistate"));
  file.group("/post/constant");
  EXPECT_EQ(Nodes(1050).Write(file.path(), 0, 1), 0);
  EXPECT_TRUE(RawFile(file.path()).exists("/post/multistate/multientityresults/Node/VELOCITY/header"));
}

TEST_F(ResultWrite, PutsAMultiStateBlockWithAPositiveStateBelowThatState) {
  ForgedFile file("write");
  EXPECT_EQ(Nodes(1050).Write(file.path(), 1, 1), 0);
  const RawFile raw(file.path());
  EXPECT_TRUE(raw.exists(std::string(kState1) + "/multientityresults/Node/VELOCITY/header"));
  EXPECT_FALSE(raw.exists("/post/multistate"));
}

TEST_F(ResultWrite, GoesToAStateByPosition) {
  ForgedFile file("write");
  file.group("/post/singlestate/first").group("/post/singlestate/second");
  EXPECT_EQ(Nodes().Write(file.path(), 2, 1), 0);
  const RawFile raw(file.path());
  EXPECT_TRUE(raw.exists("/post/singlestate/second/entityresults/Node/VELOCITY/header"));
  EXPECT_EQ(raw.children("/post/singlestate"), (Names{"first", "second"}));
}

TEST_F(ResultWrite, AddsTheNextStateOnly) {
  ForgedFile file("write");
  EXPECT_EQ(Nodes().Write(file.path(), 2, 1), 1);
  EXPECT_EQ(RawFile(file.path()).children("/post/singlestate"), Names{});
  EXPECT_EQ(Nodes().Write(file.path(), 1, 1), 0);
  EXPECT_EQ(Nodes().Write(file.path(), 3, 1), 1);
  EXPECT_EQ(Nodes().Write(file.path(), 2, 1), 0);
  EXPECT_EQ(RawFile(file.path()).children("/post/singlestate"), (Names{"state000000000001", "state000000000002"}));
}

TEST_F(ResultWrite, PutsASubBlockBelowTheVariableEvenOfTheSameName) {
  ForgedFile file("write");
  Nodes nodes;
  std::strcpy(nodes.block.m_subBlockName, "PART1");
  EXPECT_EQ(nodes.Write(file.path(), 1, 1), 0);
  std::strcpy(nodes.block.m_subBlockName, "VELOCITY");
  EXPECT_EQ(nodes.Write(file.path(), 1, 1), 0);
  const RawFile raw(file.path());
  EXPECT_EQ(raw.children(std::string(kState1) + "/entityresults/Node/VELOCITY"), (Names{"PART1", "VELOCITY"}));
  EXPECT_TRUE(raw.exists(std::string(kState1) + "/entityresults/Node/VELOCITY/PART1/header"));
}

TEST_F(ResultWrite, MakesNoGroupForASeries) {
  ForgedFile file("write");
  Nodes nodes;
  std::strcpy(nodes.block.m_series, "LOADCASE_1");
  EXPECT_EQ(nodes.Write(file.path(), 1), 0);
  EXPECT_EQ(RawFile(file.path()).children(kState1), (Names{"entityresults"}));
  EXPECT_EQ(nodes.block.ReadBlock(file.path().c_str(), 1, ORV_READ_HEADER), 1);
}

TEST_F(ResultWrite, LeavesAnEmptyTypeOut) {
  ForgedFile file("write");
  Nodes nodes;
  nodes.block.SetEntityAndVarName("", "VELOCITY");
  EXPECT_EQ(nodes.Write(file.path(), 1, 1), 0);
  EXPECT_TRUE(RawFile(file.path()).exists(std::string(kState1) + "/entityresults/VELOCITY/header"));
}

TEST_F(ResultWrite, WithoutAVariableNameMakesNothing) {
  ForgedFile file("write");
  Nodes nodes;
  nodes.block.SetEntityAndVarName("Node", "");
  const std::string before = BytesOf(file.path());
  EXPECT_EQ(nodes.Write(file.path(), 1), 1);
  EXPECT_EQ(BytesOf(file.path()), before);
}

TEST_F(ResultWrite, WithoutFileOrKindMakesNothing) {
  ForgedFile file("write");
  const std::string before = BytesOf(file.path());
  EXPECT_EQ(Nodes().block.WriteBlock(nullptr, 1, 7), 1);
  EXPECT_EQ(Nodes().Write(TempPath("none"), 1), 1);
  struct stat info = {};
  EXPECT_NE(stat(TempPath("none").c_str(), &info), 0);
  for (const int kind : {-1, 10, 500, 999, 1052}) EXPECT_EQ(Nodes(kind).Write(file.path(), 1), 1) << kind;
  EXPECT_EQ(BytesOf(file.path()), before);
}

TEST_F(ResultWrite, OfAFileWithoutSectionsFails) {
  ForgedFile file("write");
  file.drop("post");
  EXPECT_EQ(Nodes().Write(file.path(), 0), 1);
  EXPECT_EQ(Nodes().Write(file.path(), 1), 1);
  EXPECT_EQ(Nodes(1050).Write(file.path(), 0), 1);
  EXPECT_EQ(RawFile(file.path()).tree(), Names{});
}

TEST_F(ResultWrite, OfADatasetInTheWayFailsAndLeavesIt) {
  ForgedFile file("write");
  file.at("/post/constant/entityresults/Node").dataset<int>("VELOCITY", {1}, {7});
  Writer writer(1, 1);
  EXPECT_EQ(Nodes().Write(file.path(), 0), 1);
  EXPECT_EQ(RawFile(file.path()).values<int>("/post/constant/entityresults/Node/VELOCITY"), (Ints{7}));
}

// ---- A block that exists

TEST_F(ResultWrite, LeavesAnExistingBlockAloneInModeZero) {
  for (const int version : {1, 3}) {
    const Writer writer(version);
    ForgedFile file("write");
    ASSERT_EQ(Nodes().Write(file.path(), 1), 0);
    const std::string before = BytesOf(file.path());
    Nodes changed;
    changed.values = {9, 9, 9, 9};
    changed.block.m_res = changed.values.data();
    EXPECT_EQ(changed.Write(file.path(), 1), 0);
    EXPECT_EQ(BytesOf(file.path()), before);
    EXPECT_STREQ(ORVGetLastErrorText(),
                 "Overwriting existing result block :\"state000000000001\\entityresults\\Node\\VELOCITY\"");
  }
}

TEST_F(ResultWrite, TellsNoHandlerOfABlockThatItLeavesAlone) {
  const Messages messages;
  ForgedFile file("write");
  ASSERT_EQ(Nodes().Write(file.path(), 1, 1), 0);
  EXPECT_EQ(Nodes().Write(file.path(), 1, 1), 0);
  EXPECT_TRUE(messages.all().empty());
}

TEST_F(ResultWrite, TellsTheSubBlockThatItLeavesAlone) {
  ForgedFile file("write");
  Nodes nodes(1050);
  std::strcpy(nodes.block.m_subBlockName, "PART1");
  ASSERT_EQ(nodes.Write(file.path(), 0, 1), 0);
  EXPECT_EQ(nodes.Write(file.path(), 0, 1), 0);
  EXPECT_STREQ(ORVGetLastErrorText(),
               "Overwriting existing result block :\"multistate\\multientityresults\\Node\\VELOCITY\\PART1\"");
}

TEST_F(ResultWrite, TellsNamesNoFurtherThanTheyAreWide) {
  for (const bool in_type : {true, false}) {
    ForgedFile file("write");
    Nodes nodes;
    std::memset(in_type ? nodes.block.m_etyp : nodes.block.m_etypvar, 'N', 257);
    ASSERT_EQ(nodes.Write(file.path(), 0, 1), 0);
    EXPECT_EQ(nodes.Write(file.path(), 0, 1), 0);
    const std::string type = in_type ? std::string(256, 'N') : "Node";
    const std::string variable = in_type ? "VELOCITY" : std::string(256, 'N');
    EXPECT_EQ(ORVGetLastErrorText(),
              "Overwriting existing result block :\"constant\\entityresults\\" + type + "\\" + variable + "\"");
  }
}

TEST_F(ResultWrite, TellsTheNameOfASubBlockNoFurtherThanItIsWide) {
  ForgedFile file("write");
  Nodes nodes;
  std::memset(nodes.block.m_subBlockName, 'S', 257);
  ASSERT_EQ(nodes.Write(file.path(), 0, 1), 0);
  EXPECT_EQ(nodes.Write(file.path(), 0, 1), 0);
  EXPECT_EQ(ORVGetLastErrorText(), "Overwriting existing result block :\"constant\\entityresults\\Node\\VELOCITY\\" +
                                       std::string(256, 'S') + "\"");
}

TEST_F(ResultWrite, ReplacesAnExistingBlockInModeOne) {
  for (const int version : {1, 3}) {
    const Writer writer(version, 1);
    ForgedFile file("write");
    ASSERT_EQ(Nodes().Write(file.path(), 1), 0);
    Nodes changed;
    changed.values = {9, 8, 7, 6};
    changed.ids = {30, 40};
    changed.block.m_zoneid = 77;
    std::strcpy(changed.block.m_etypzone, "LAYER");
    // The split layout leads an existing index group to the data group, where index datasets are new.
    EXPECT_EQ(changed.Write(file.path(), 1), 0);
    const std::string block = std::string(kState1) + "/entityresults/Node/VELOCITY/";
    const std::string header = block + (version == 1 ? "header" : "orvblock");
    const std::string data = block + (version == 1 ? "data" : "orvblock");
    const RawFile raw(file.path());
    EXPECT_EQ(raw.attribute_int(header, "zoneid"), 77);
    EXPECT_EQ(raw.attribute_text(header, "etypzone"), "LAYER" + std::string(251, ' '));
    EXPECT_EQ(raw.values<float>(data + "/res"), (Floats{9, 8, 7, 6}));
    EXPECT_EQ(raw.values<int>(data + "/entid"), (Ints{30, 40}));
  }
}

TEST_F(ResultWrite, ReplacesAnExistingBlockInEveryModeButZero) {
  for (const int mode : {-1, 2}) {
    const Writer writer(3, mode);
    ForgedFile file("write");
    ASSERT_EQ(Nodes().Write(file.path(), 1, 3), 0);
    Nodes changed;
    changed.values = {9, 8, 7, 6};
    changed.block.m_zoneid = 77;
    EXPECT_EQ(changed.Write(file.path(), 1, 3), 0) << mode;
    const std::string block = std::string(kState1) + "/entityresults/Node/VELOCITY/orvblock";
    EXPECT_EQ(RawFile(file.path()).attribute_int(block, "zoneid"), 77) << mode;
    EXPECT_EQ(RawFile(file.path()).values<float>(block + "/res"), (Floats{9, 8, 7, 6})) << mode;
  }
}

TEST_F(ResultWrite, OverALargerBlockFailsAndLosesNothing) {
  const Writer writer(3, 1);
  ForgedFile file("write");
  ASSERT_EQ(Nodes().Write(file.path(), 1, 2), 0);
  Nodes smaller;
  smaller.values = {9, 9};
  smaller.block.m_nent = 1;
  EXPECT_EQ(smaller.Write(file.path(), 1, 2), 1);
  const RawFile raw(file.path());
  EXPECT_EQ(raw.values<float>(std::string(kState1) + "/entityresults/Node/VELOCITY/orvblock/res"),
            (Floats{1, 2, 3, 4}));
  EXPECT_EQ(raw.values<int>(std::string(kState1) + "/entityresults/Node/VELOCITY/orvblock/entid"), (Ints{10, 20}));
}

TEST_F(ResultWrite, OverABlockOfOtherExtentsFailsAndChangesNothing) {
  constexpr std::int64_t kCounts[][2] = {{1, 2}, {3, 2}, {2, 1}, {2, 3}, {4, 1}, {0, 2}, {-1, 2}};
  for (const int version : {1, 3}) {
    const Writer writer(version, 1);
    ForgedFile file("write");
    ASSERT_EQ(Nodes().Write(file.path(), 1, 3), 0);
    const std::string before = BytesOf(file.path());
    for (const auto& [nent, ncoo] : kCounts) {
      Nodes other;
      other.ids = {1, 2, 3, 4};
      other.block.m_entid = other.ids.data();
      other.block.m_nent = nent;
      other.block.m_ncoo = ncoo;
      EXPECT_EQ(other.Write(file.path(), 1, 3), 1) << version << ": " << nent << " x " << ncoo;
      EXPECT_STREQ(ORVGetLastErrorText(), "ORVResult::WriteBlock::\n\t \"res\" is stored with other extents");
      EXPECT_EQ(BytesOf(file.path()), before) << version << ": " << nent << " x " << ncoo;
    }
  }
}

TEST_F(ResultWrite, OverFewerStatesFailsAndChangesNothing) {
  const Writer writer(3, 1);
  ForgedFile file("write");
  Nodes history(1050);
  history.block.m_nstate = 1;
  ASSERT_EQ(history.Write(file.path(), 0), 0);
  const std::string before = BytesOf(file.path());
  history.block.m_nstate = 2;
  EXPECT_EQ(history.Write(file.path(), 0), 1);
  EXPECT_EQ(BytesOf(file.path()), before);
}

TEST_F(ResultWrite, OverIdsOfAnotherCountFailsAndChangesNothing) {
  const Writer writer(3, 1);
  ForgedFile file("write");
  ASSERT_EQ(Nodes().Write(file.path(), 1, 3), 0);
  file.at(std::string(kState1) + "/entityresults/Node/VELOCITY/orvblock").drop("entid");
  file.dataset<int>("entid", {1}, {10});
  const std::string before = BytesOf(file.path());
  EXPECT_EQ(Nodes().Write(file.path(), 1, 3), 1);
  EXPECT_STREQ(ORVGetLastErrorText(), "ORVResult::WriteBlock::\n\t \"entid\" is stored with other extents");
  EXPECT_EQ(BytesOf(file.path()), before);
  Nodes without_ids;
  without_ids.block.m_readIds = 0;
  EXPECT_EQ(without_ids.Write(file.path(), 1, 3), 0);
}

TEST_F(ResultWrite, TakesIdsOfItsOwnInPlaceOfALinkToOthers) {
  const Writer writer(3, 1);
  ForgedFile file("write");
  ASSERT_EQ(Nodes().Write(file.path(), 1, 3), 0);
  const std::string data = std::string(kState1) + "/entityresults/Node/VELOCITY/orvblock";
  file.at("/post/constant").dataset<int>("entid", {3}, {1, 2, 3});
  file.at(data).drop("entid").soft_link("entid", "/post/constant/entid");
  EXPECT_EQ(Nodes().Write(file.path(), 1, 3), 0);
  EXPECT_EQ(RawFile(file.path()).values<int>(data + "/entid"), (Ints{10, 20}));
  EXPECT_EQ(RawFile(file.path()).values<int>("/post/constant/entid"), (Ints{1, 2, 3}));
}

TEST_F(ResultWrite, OverLocationsOfOtherExtentsFailsAndChangesNothing) {
  const Writer writer(1, 1);
  ForgedFile file("write");
  Nodes shells(1100);
  Floats locations(4, 1);
  shells.block.m_numl = 1;
  shells.block.m_ndim = 3;
  shells.block.m_eloc = locations.data();
  ASSERT_EQ(shells.Write(file.path(), 0, 3), 0);
  const std::string before = BytesOf(file.path());
  for (const int ndim : {2, 4}) {
    shells.block.m_ndim = ndim;
    EXPECT_EQ(shells.Write(file.path(), 0, 3), 1);
    EXPECT_EQ(BytesOf(file.path()), before);
  }
  shells.block.m_eloc = nullptr;  // not written
  EXPECT_EQ(shells.Write(file.path(), 0, 3), 0);
}

TEST_F(ResultWrite, OfAHeaderAloneTellsWhatASelectiveWriteHasMadeOfTheData) {
  const Writer writer(3, 1);
  ForgedFile file("write");
  Nodes nodes;
  ASSERT_EQ(nodes.Write(file.path(), 1, 3), 0);
  nodes.block.m_nent = 9;
  EXPECT_EQ(nodes.Write(file.path(), 1, 1), 0);
  EXPECT_EQ(RawFile(file.path()).attribute_int(std::string(kState1) + "/entityresults/Node/VELOCITY/orvblock", "nent"),
            9);
}

TEST_F(ResultWrite, OfDataIntoABlockThatHasNoneYetTakesAnyExtents) {
  for (const int version : {1, 3}) {
    const Writer writer(version, 1);
    ForgedFile file("write");
    ASSERT_EQ(Nodes().Write(file.path(), 1, 1), 0);
    Nodes other;
    other.block.m_ncoo = 1;
    EXPECT_EQ(other.Write(file.path(), 1, 3), 0);
    const std::string block = std::string(kState1) + "/entityresults/Node/VELOCITY/";
    EXPECT_EQ(RawFile(file.path()).shape(block + (version == 1 ? "data/res" : "orvblock/res")), (Shape{2, 1}));
  }
}

TEST_F(ResultWrite, ThatTheDiskHasNoRoomForFailsAndWorksWhenItHas) {
  const Writer writer(3);
  ForgedFile file("write");
  Nodes large;
  large.values.assign(2'000'000, 1);
  large.block.m_res = large.values.data();
  large.block.m_nent = 1'000'000;
  large.block.m_readIds = 0;
  Nodes small;  // fails when HDF5 empties its buffers
  {
    const FullDisk full(file.path(), 0);
    EXPECT_EQ(large.Write(file.path(), 1, 2), 1);
    EXPECT_THAT(ORVGetLastErrorText(), ::testing::HasSubstr("cannot be written: File too large"));
    EXPECT_EQ(small.Write(file.path(), 1, 2), 1);
  }
  EXPECT_EQ(H5Fget_obj_count(H5F_OBJ_ALL, H5F_OBJ_ALL), 0);
  EXPECT_EQ(small.Write(file.path(), 1, 2), 0);
  EXPECT_EQ(RawFile(file.path()).values<float>(std::string(kState1) + "/entityresults/Node/VELOCITY/orvblock/res"),
            (Floats{1, 2, 3, 4}));
}

TEST_F(ResultWrite, ThatFailsLosesNothingOfOtherBlocks) {
  const Writer writer(3);
  ForgedFile file("write");
  ASSERT_EQ(Nodes().Write(file.path(), 1), 0);
  Nodes second;
  second.block.SetEntityAndVarName("Node", "DISPLACEMENT");
  second.block.m_res = nullptr;
  EXPECT_EQ(second.Write(file.path(), 1), 1);
  EXPECT_EQ(RawFile(file.path()).values<float>(std::string(kState1) + "/entityresults/Node/VELOCITY/orvblock/res"),
            (Floats{1, 2, 3, 4}));
}

}  // namespace
