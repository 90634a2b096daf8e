// Histories of a variable from the multi-state blocks of a file: which blocks are taken, what is read of them, and what
// becomes of blocks that cannot be read. The operations of the filer are in tests/filer/filer_histories_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "filer/container.h"
#include "orvio/orv_filer.h"
#include "result/multi_state_values.h"
#include "support/forged_model.h"
#include "support/messages.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class OpenFiler : public ORVFiler {
 public:
  using ORVFiler::ORVFiler;
  ORVContainer& data() { return *m_pData; }
};

/// Numbers from `first` on.
std::vector<float> Counted(int count, float first = 1) {
  std::vector<float> values;
  for (int i = 0; i < count; ++i) values.push_back(first + static_cast<float>(i));
  return values;
}

class MultiStateValues : public OrvTest, public ::testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  /// Two states of a block with the ids given.
  static ForgedValues Block(const std::vector<int>& ids, const std::vector<float>& values, const char* name = "") {
    const int nodes = static_cast<int>(ids.size());
    ForgedValues block{.kind = 1050, .variable = "Speed", .nent = nodes, .nstate = 2, .values = values, .ids = ids};
    block.ncoo = static_cast<int>(values.size()) / nodes / 2;
    block.index = {.5F, 1};
    block.group_name = name;
    return block;
  }

  void Add(const ForgedValues& block) { model_.in_multistate(block); }
  void Define(int ncoo) { model_.variable({.name = "Speed", .key = "Speed", .ncoo = ncoo}); }

  std::string PartOf(const char* name, const char* part) const {
    const std::string block = "/post/multistate/multientityresults/NODE/Speed";
    return model_.Part(*name ? block + "/" + name : block, part);
  }

  OpenFiler& Open() {
    filer_ = std::make_unique<OpenFiler>(model_.path().c_str());
    const Messages messages;
    int next_id = 1;
    (void)filer_->InitReader(next_id);  // a file with a damaged block opens as well
    return *filer_;
  }
  OpenFiler& filer() { return filer_ ? *filer_ : Open(); }
  ORVResult& Listed(std::size_t i) { return *filer().data().multi_results.at(i); }

  int Read(int zone = -1, const std::string& type = "NODE", const std::string& variable = "Speed") {
    (void)filer();
    (void)model_.path();  // closed, with what was changed since
    all_ = {};
    return orvio::ReadHistories(filer().data(), {type, variable, zone}, all_);
  }

  void ExpectNothing() const {
    EXPECT_THAT(all_.ids, IsEmpty());
    EXPECT_THAT(all_.shape, IsEmpty());
    EXPECT_THAT(all_.values, IsEmpty());
    EXPECT_EQ(all_.state_count, 0U);
    EXPECT_THAT(all_.index_ids, IsEmpty());
    EXPECT_THAT(all_.index_values, IsEmpty());
  }

  ForgedModel model_{GetParam()};
  std::unique_ptr<OpenFiler> filer_;
  orvio::Histories all_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, MultiStateValues, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle),
                         [](const auto& layout) { return layout.param == ForgedModel::kSplit ? "Split" : "Single"; });

TEST_P(MultiStateValues, AreAllStatesWithIdsShapeAndIndex) {
  Define(2);
  ForgedValues block = Block({10, 20, 30}, Counted(12));
  block.index = {.5F, 7, 1, 8};
  Add(block);
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(all_.values, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12));
  EXPECT_THAT(all_.shape, ElementsAre(2, 3, 2));
  EXPECT_THAT(all_.ids, ElementsAre(10, 20, 30));
  EXPECT_EQ(all_.state_count, 2U);
  EXPECT_THAT(all_.index_values, ElementsAre(.5F, 7, 1, 8));
  EXPECT_THAT(all_.index_ids, ElementsAre(7, 7, 7, 7));
}

TEST_P(MultiStateValues, WithoutAZoneAreThoseOfTheZoneOfTheFirstBlock) {
  Define(1);
  ForgedValues first = Block({10}, {1, 2}, "a");
  first.zoneid = 4;
  ForgedValues second = Block({20}, {3, 4}, "b");
  second.zoneid = 7;
  Add(first);
  Add(second);
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(all_.values, ElementsAre(1, 2));
  EXPECT_THAT(all_.ids, ElementsAre(10));
  ASSERT_EQ(Read(7), 0);
  EXPECT_THAT(all_.values, ElementsAre(3, 4));
  EXPECT_THAT(all_.ids, ElementsAre(20));
  EXPECT_EQ(Read(5), 1);
  ExpectNothing();
}

TEST_P(MultiStateValues, OfSeveralBlocksStandBlockBehindBlock) {
  Define(1);
  Add(Block({10, 20}, {1, 2, 3, 4}, "a"));
  Add(Block({30}, {5, 6}, "b"));
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(all_.values, ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_THAT(all_.ids, ElementsAre(10, 20, 30));
  EXPECT_THAT(all_.shape, ElementsAre(2, 3, 1));
  EXPECT_EQ(all_.state_count, 2U);
}

TEST_P(MultiStateValues, AreFoundByNamesWithoutRegardToCase) {
  Define(1);
  Add(Block({10}, {1, 2}));
  EXPECT_EQ(Read(-1, "node", "SPEED"), 0);
  EXPECT_THAT(all_.values, ElementsAre(1, 2));
  EXPECT_EQ(Read(-1, "SHELL", "Speed"), 1);
  EXPECT_EQ(Read(-1, "NOD", "Speed"), 1);
  EXPECT_EQ(Read(-1, "NODE", "Spee"), 1);
  ExpectNothing();
}

TEST_P(MultiStateValues, NeedBothNames) {
  Define(1);
  Add(Block({10}, {1, 2}));
  EXPECT_EQ(Read(-1, "", "Speed"), 1);
  EXPECT_EQ(Read(-1, "NODE", ""), 1);
  ExpectNothing();
}

TEST_P(MultiStateValues, WithoutIndexTellTheShapeAlone) {
  Define(1);
  ForgedValues block = Block({10}, {1, 2});
  block.index.clear();
  Add(block);
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(all_.shape, ElementsAre(2, 1, 1));
  all_.shape.clear();
  ExpectNothing();
}

TEST_P(MultiStateValues, WithADamagedIndexAreNotDelivered) {
  Define(1);
  Add(Block({10}, {1, 2}));
  model_.file().at(PartOf("", "index")).dataset<float>("indexval", {3, 1}, {1, 2, 3});
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(all_.values, IsEmpty());
  EXPECT_EQ(all_.state_count, 0U);
}

TEST_P(MultiStateValues, TakeTheIndexOfTheFirstBlockOfTheZone) {
  Define(1);
  ForgedValues second = Block({30}, {5, 6}, "b");
  second.index = {8, 9};
  Add(Block({10}, {1, 2}, "a"));
  Add(second);
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(all_.index_values, ElementsAre(.5F, 1));
}

TEST_P(MultiStateValues, OfBlocksWithoutIdsHaveZerosInTheirPlace) {
  Define(1);
  Add(Block({10}, {1, 2}, "a"));
  Add(Block({20}, {3, 4}, "b"));
  model_.file().at(PartOf("a", "data")).drop("entid");
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(all_.ids, ElementsAre(0, 20));
  EXPECT_THAT(all_.values, ElementsAre(1, 2, 3, 4));
}

TEST_P(MultiStateValues, LackABlockThatCannotBeRead) {
  Define(1);
  Add(Block({10, 20}, {1, 2, 3, 4}, "a"));
  Add(Block({30}, {5, 6}, "b"));
  model_.file().at(PartOf("a", "data")).drop("res");
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(all_.values, ElementsAre(5, 6));
  EXPECT_THAT(all_.ids, ElementsAre(30));
  EXPECT_THAT(all_.shape, ElementsAre(2, 1, 1));
  EXPECT_THAT(all_.index_values, ElementsAre(.5F, 1));
}

TEST_P(MultiStateValues, KeepNothingOfABlockWhoseIdsCannotBeRead) {
  Define(1);
  Add(Block({10, 20}, {1, 2, 3, 4}, "a"));
  Add(Block({30}, {5, 6}, "b"));
  model_.file().at(PartOf("a", "data")).dataset<std::int32_t>("entid", {3}, {1, 2, 3});
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(all_.values, ElementsAre(5, 6));
  EXPECT_THAT(all_.ids, ElementsAre(30));
}

TEST_P(MultiStateValues, OfBlocksThatCannotBeReadAtAllAreNothing) {
  Define(1);
  Add(Block({10}, {1, 2}));
  model_.file().at(PartOf("", "data")).retype("res");
  EXPECT_EQ(Read(), 1);
  ExpectNothing();
}

TEST_P(MultiStateValues, OfOtherExtentsThanTheHeaderSaysAreNothing) {
  Define(1);
  Add(Block({10}, {1, 2}));
  model_.file().at(PartOf("", "data")).dataset<float>("res", {3, 1, 1}, {1, 2, 3});
  EXPECT_EQ(Read(), 1);
  ExpectNothing();
}

TEST_P(MultiStateValues, OfBlocksWithUnequalStatesHaveNoShape) {
  Define(1);
  ForgedValues longer = Block({30}, {5, 6}, "b");
  longer.nstate = 3;
  longer.values = {5, 6, 7};
  longer.index = {1, 2, 3};
  Add(Block({10}, {1, 2}, "a"));
  Add(longer);
  EXPECT_EQ(Read(), 1);
  ExpectNothing();
}

TEST_P(MultiStateValues, OfBlocksWithUnequalRanksHaveNoShape) {
  Define(1);
  ForgedValues pairs = Block({30}, {5, 6, 7, 8}, "b");
  pairs.kind = 1051;
  pairs.ncoo = 1;
  Add(Block({10}, {1, 2}, "a"));
  Add(pairs);
  EXPECT_EQ(Read(), 1);
  ExpectNothing();
}

TEST_P(MultiStateValues, LeaveTheBlocksAsTheyWere) {
  Define(1);
  Add(Block({10}, {1, 2}, "a"));
  Add(Block({20}, {3, 4}, "b"));
  model_.file().at(PartOf("b", "data")).drop("res");
  int frame = 0;
  for (const std::size_t i : {0U, 1U}) {
    ORVResult& block = Listed(i);
    block.m_resType = ORV_DOUBLE;
    block.m_entidType = ORV_LONG;
    block.m_readIds = 5;
    block.m_res = block.m_entid = block.m_fid = &frame;
    block.m_fswitch = 1;
  }
  model_.file().at(PartOf("a", "data")).dataset<std::int32_t>("fid", {1}, {77});
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(all_.values, ElementsAre(1, 2));
  EXPECT_THAT(all_.ids, ElementsAre(10));
  for (const std::size_t i : {0U, 1U}) {
    const ORVResult& block = Listed(i);
    EXPECT_EQ(block.m_resType, ORV_DOUBLE);
    EXPECT_EQ(block.m_entidType, ORV_LONG);
    EXPECT_EQ(block.m_readIds, 5);
    EXPECT_EQ(block.m_res, nullptr);
    EXPECT_EQ(block.m_entid, nullptr);
    EXPECT_EQ(block.m_fid, &frame);
  }
  EXPECT_EQ(frame, 0);
}

TEST_P(MultiStateValues, OfDoublesBecomeFloats) {
  Define(1);
  Add(Block({10}, {1, 2}));
  model_.file().at(PartOf("", "data")).dataset<double>("res", {2, 1, 1}, {.25, 8});
  model_.file().dataset<std::int64_t>("entid", {1}, {10});
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(all_.values, ElementsAre(.25F, 8));
  EXPECT_THAT(all_.ids, ElementsAre(10));
}

TEST_P(MultiStateValues, PassOverBlocksThatAreNotThere) {
  Define(1);
  Add(Block({10}, {1, 2}));
  filer().data().multi_results.insert(filer().data().multi_results.begin(), nullptr);
  EXPECT_EQ(Read(), 0);
  EXPECT_THAT(all_.values, ElementsAre(1, 2));
  filer().data().multi_results.erase(filer().data().multi_results.begin());
}

TEST_P(MultiStateValues, OfABlockOfOneStateAreNothing) {
  Define(1);
  ForgedValues block = Block({10}, {1, 2});
  block.kind = 1000;
  block.values = {1};
  Add(block);
  EXPECT_EQ(Read(), 1);
  EXPECT_THAT(all_.values, IsEmpty());
}

TEST_P(MultiStateValues, OfAFileThatIsGoneAreNothing) {
  Define(1);
  Add(Block({10}, {1, 2}));
  filer().data().path = TempPath("gone");
  EXPECT_EQ(Read(), 1);
  ExpectNothing();
}

// ---- Complex values

TEST_P(MultiStateValues, OfComplexBlocksArePairs) {
  Define(1);
  ForgedValues block = Block({10}, {3, 4, 6, 8});
  block.kind = 1051;
  block.ncoo = 1;
  Add(block);
  Listed(0).m_complexOutput = ORV_COMPLEX_MAGNITUDE;  // a selection from the first entity on is not converted
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(all_.values, ElementsAre(3, 4, 6, 8));
  EXPECT_THAT(all_.shape, ElementsAre(2, 1, 1, 2));
}

TEST_P(MultiStateValues, OfComplexBlocksAreConvertedWhereThatIsAlwaysWanted) {
  Define(1);
  ForgedValues block = Block({10}, {3, 4, 6, 8}, "a");
  block.kind = 1051;
  block.ncoo = 1;
  Add(block);
  block.group_name = "b";
  block.ids = {20};
  block.values = {5, 12, 8, 15};
  Add(block);
  for (const std::size_t i : {0U, 1U}) Listed(i).m_complexOutput = ORV_COMPLEX_MAGNITUDE | ORV_COMPLEX_ALWAYS;
  ASSERT_EQ(Read(), 0);
  EXPECT_THAT(all_.values, ElementsAre(5, 10, 13, 17));
  EXPECT_THAT(all_.shape, ElementsAre(2, 2, 1, 1));
  EXPECT_THAT(all_.ids, ElementsAre(10, 20));
}

TEST_P(MultiStateValues, OfPairsBesideConvertedOnesHaveNoShape) {
  Define(1);
  ForgedValues block = Block({10}, {3, 4, 6, 8}, "a");
  block.kind = 1051;
  block.ncoo = 1;
  Add(block);
  block.group_name = "b";
  Add(block);
  Listed(1).m_complexOutput = ORV_COMPLEX_REAL | ORV_COMPLEX_ALWAYS;
  EXPECT_EQ(Read(), 1);
  ExpectNothing();
}

// ---- Elements. Their headers are refused at the start-up, so a host lists such blocks itself.

class MultiStateElements : public MultiStateValues {
 protected:
  void AddToList(const ForgedValues& forged) {
    model_.variable({.name = "Speed", .key = "Speed", .ncoo = forged.ncoo});
    model_.in_constant({.variable = "Speed", .nent = 1, .ncoo = forged.ncoo});
    model_.in_multistate(forged);
    auto block = std::make_unique<ORVResult>(forged.kind);
    block->SetEntityAndVarName("SHELL", "Speed");
    block->SetBlkPath("/post/multistate/elementresults/SHELL/Speed" +
                      std::string(GetParam() == ForgedModel::kSingle ? "/orvblock" : ""));
    block->m_nent = forged.nent;
    block->m_ncoo = forged.ncoo;
    block->m_numl = forged.numl;
    block->m_nstate = forged.nstate;
    block->m_variable = filer().GetVariable("Speed");
    filer().data().multi_results.push_back(block.release());
  }
};

INSTANTIATE_TEST_SUITE_P(Layouts, MultiStateElements, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle),
                         [](const auto& layout) { return layout.param == ForgedModel::kSplit ? "Split" : "Single"; });

TEST_P(MultiStateElements, AreReadInAllLayers) {
  AddToList({.kind = 1150,
             .etyp = "SHELL",
             .variable = "Speed",
             .nent = 2,
             .ncoo = 1,
             .numl = 2,
             .nstate = 2,
             .values = Counted(8),
             .ids = {61, 62},
             .index = {3, 4}});
  ASSERT_EQ(Read(-1, "SHELL"), 0);
  EXPECT_THAT(all_.values, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
  EXPECT_THAT(all_.shape, ElementsAre(2, 2, 2, 1));
  EXPECT_THAT(all_.ids, ElementsAre(61, 62));
  EXPECT_THAT(all_.index_values, ElementsAre(3, 4));
}

TEST_P(MultiStateElements, WithoutLayersAreReadWithoutTheirAxis) {
  AddToList({.kind = 1150,
             .etyp = "SHELL",
             .variable = "Speed",
             .nent = 2,
             .ncoo = 2,
             .numl = 0,
             .nstate = 2,
             .values = Counted(8),
             .ids = {61, 62},
             .index = {3, 4},
             .shape = {2, 2, 2}});
  ASSERT_EQ(Read(-1, "SHELL"), 0);
  EXPECT_THAT(all_.values, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
  EXPECT_THAT(all_.shape, ElementsAre(2, 2, 2));
  EXPECT_THAT(all_.ids, ElementsAre(61, 62));
}

TEST_P(MultiStateElements, WithoutLayersOfWhichAPartIsWantedAreNothing) {
  AddToList({.kind = 1150,
             .etyp = "SHELL",
             .variable = "Speed",
             .nent = 2,
             .ncoo = 1,
             .numl = 0,
             .nstate = 2,
             .values = Counted(8),
             .ids = {61, 62},
             .index = {3, 4},
             .shape = {2, 2, 2}});
  Listed(0).m_ncoo = 2;  // the variable is the first of two components
  EXPECT_EQ(Read(-1, "SHELL"), 1);
  ExpectNothing();
}

TEST_P(MultiStateElements, OfComplexKindsArePairsInAllLayers) {
  AddToList({.kind = 1151,
             .etyp = "SHELL",
             .variable = "Speed",
             .nent = 1,
             .ncoo = 1,
             .numl = 2,
             .nstate = 2,
             .values = Counted(8),
             .ids = {61},
             .index = {3, 4}});
  ASSERT_EQ(Read(-1, "SHELL"), 0);
  EXPECT_THAT(all_.values, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
  EXPECT_THAT(all_.shape, ElementsAre(2, 1, 2, 1, 2));
}

// ---- Groups of variables

/// A block with three components of two variables, the second of which goes by a key.
class MultiStateGroup : public OrvTest {
 protected:
  MultiStateGroup() {
    model_.variable({.name = "Mass", .key = "M"}).variable({.name = "Speed", .key = "V", .ncoo = 2});
    model_.variable({.name = "Heat"});
  }

  void Add(const std::vector<ForgedGroupEntry>& entries, int ncoo) {
    model_.group("ALL", ncoo, entries);
    ForgedValues block{.kind = 1050, .variable = "ALL", .nent = 2, .ncoo = ncoo, .nstate = 2, .ids = {10, 20}};
    block.values = Counted(4 * ncoo);
    block.index = {.5F, 1};
    model_.in_multistate(block);
  }

  int Read(const std::string& variable) {
    if (!filer_) {
      filer_ = std::make_unique<OpenFiler>(model_.path().c_str());
      int next_id = 1;
      EXPECT_EQ(filer_->InitReader(next_id), 0);
    }
    all_ = {};
    return orvio::ReadHistories(filer_->data(), {"NODE", variable, -1}, all_);
  }

  ForgedModel model_;
  std::unique_ptr<OpenFiler> filer_;
  orvio::Histories all_;
};

TEST_F(MultiStateGroup, GivesTheComponentsOfTheVariableThatIsNamed) {
  Add({{"M", 1, 0}, {"V", 2, 1}}, 3);
  ASSERT_EQ(Read("Speed"), 0);
  EXPECT_THAT(all_.values, ElementsAre(2, 3, 5, 6, 8, 9, 11, 12));
  EXPECT_THAT(all_.shape, ElementsAre(2, 2, 2));
  EXPECT_THAT(all_.ids, ElementsAre(10, 20));
  ASSERT_EQ(Read("mass"), 0);
  EXPECT_THAT(all_.values, ElementsAre(1, 4, 7, 10));
  EXPECT_THAT(all_.shape, ElementsAre(2, 2, 1));
}

TEST_F(MultiStateGroup, IsFoundByTheNamesOfItsVariablesAlone) {
  Add({{"M", 1, 0}, {"V", 2, 1}}, 3);
  EXPECT_EQ(Read("V"), 1);
  EXPECT_EQ(Read("ALL"), 1);
  EXPECT_EQ(Read("Heat"), 1);
}

TEST_F(MultiStateGroup, OfOneVariableIsReadWhole) {
  Add({{"V", 2, 0}}, 2);
  ASSERT_EQ(Read("Speed"), 0);
  EXPECT_THAT(all_.values, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
}

TEST_F(MultiStateGroup, OfOneVariableIsNotReadWholeWhereItHoldsMore) {
  Add({{"V", 2, 1}}, 3);
  ASSERT_EQ(Read("Speed"), 0);
  EXPECT_THAT(all_.values, ElementsAre(2, 3, 5, 6, 8, 9, 11, 12));
  EXPECT_THAT(all_.shape, ElementsAre(2, 2, 2));
}

TEST_F(MultiStateGroup, WhoseComponentsLieBeyondTheBlockGivesNothing) {
  Add({{"M", 1, 0}, {"V", 2, 2}}, 3);
  EXPECT_EQ(Read("Speed"), 1);
  EXPECT_THAT(all_.shape, IsEmpty());
}

/// The same variables in a file without groups.
using MultiStateKeyedVariable = MultiStateGroup;

TEST_F(MultiStateKeyedVariable, IsFoundByItsNameAlone) {
  ForgedValues block{.kind = 1050, .variable = "Speed", .nent = 1, .ncoo = 2, .nstate = 2};
  block.values = Counted(4);
  block.ids = {10};
  block.index = {.5F, 1};
  model_.in_multistate(block);
  ASSERT_EQ(Read("speed"), 0);
  EXPECT_THAT(all_.values, ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(all_.shape, ElementsAre(2, 1, 2));
  EXPECT_THAT(all_.ids, ElementsAre(10));
  EXPECT_EQ(Read("V"), 1);
  EXPECT_THAT(all_.values, IsEmpty());
}

// ---- Damaged files. Without a bound each of these would ask for terabytes, which the sanitizer takes for a fault.

TEST_P(MultiStateValues, OfCountsThatNothingStandsBehindAreNothing) {
  Define(1);
  Add(Block({10}, {1, 2}));
  for (const std::int64_t count : {std::int64_t{1} << 40, std::int64_t{1} << 62, INT64_MAX, std::int64_t{-5}}) {
    Listed(0).m_nstate = count;
    EXPECT_EQ(Read(), 1) << count;
    Listed(0).m_nstate = 2;
    Listed(0).m_nent = count;
    EXPECT_EQ(Read(), 1) << count;
    Listed(0).m_nent = 1;
  }
  EXPECT_EQ(Read(), 0);
}

TEST_P(MultiStateValues, OfExtentsWithoutValuesAreNothing) {
  Define(1);
  ForgedValues block = Block({10}, {1, 2});
  block.values.clear();
  block.ncoo = 1;
  Add(block);
  constexpr hsize_t kStates = hsize_t{1} << 38;
  model_.file().at(PartOf("", "data")).raw([](hid_t here) {
    const hsize_t dims[] = {kStates, 1, 1};
    const hsize_t chunk[] = {1024, 1, 1};
    const Id space(H5Screate_simple(3, dims, nullptr), "space");
    const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
    Check(H5Pset_chunk(list.get(), 3, chunk), "chunk");  // chunks are made when they are written
    const Id values(H5Dcreate2(here, "res", H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT),
                    "res");
  });
  Listed(0).m_nstate = static_cast<std::int64_t>(kStates);
  EXPECT_EQ(Read(), 1);
  ExpectNothing();
}

TEST_P(MultiStateValues, ThatAreManyAndStoredAreRead) {
  Define(1);
  ForgedValues block = Block({10}, {1, 2});
  block.values.clear();
  block.ncoo = 1;
  block.nstate = 17'000'000;  // more than 64 MiB
  block.index.clear();
  Add(block);
  model_.file().at(PartOf("", "data")).raw([](hid_t here) {
    const hsize_t dims[] = {17'000'000, 1, 1};
    const Id space(H5Screate_simple(3, dims, nullptr), "space");
    const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
    // The room is taken in the file but not written, which costs nothing.
    Check(H5Pset_alloc_time(list.get(), H5D_ALLOC_TIME_EARLY), "alloc time");
    Check(H5Pset_fill_time(list.get(), H5D_FILL_TIME_NEVER), "fill time");
    const Id values(H5Dcreate2(here, "res", H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT),
                    "res");
  });
  EXPECT_EQ(Read(), 1);  // for the lack of an index
  EXPECT_THAT(all_.shape, ElementsAre(17'000'000, 1, 1));
}

}  // namespace
}  // namespace orv_test
