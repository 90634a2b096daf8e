// The lookups of a filer: which list each of them searches, and what it passes on. What the filters mean in detail is in
// tests/result, queries of fixed names are in filer_result_queries_test.

#include <gtest/gtest.h>

#include <cstring>

#include "filer/listed_results.h"
#include "filer/process_state.h"
#include "support/forged_model.h"
#include "support/orv_test.h"

namespace {

using namespace orv_test;

using Results = std::vector<ORVResult*>;
using Names = std::vector<const char*>;
using Entities = std::vector<_ORVEntityType>;

_ORVEntityType Entity(int number) { return static_cast<_ORVEntityType>(number); }

/// Two blocks in the state list and two in the multi-state list.
class FilerResults : public OrvTest {
 protected:
  FilerResults() {
    filer_.AddHandle(speed_, 1, "Speed_X");
    filer_.AddHandle(shells_, 2, "Stress_XX");
    std::strcpy(shells_->m_variable->m_varkey, "S");
    std::strcpy(shells_->m_etyp, "SHELL");
  }

  template <class Lookup>
  Results Found(Lookup lookup) {
    Results found;
    lookup(found);
    return found;
  }

  FilerWithResults filer_;
  ORVResult* speed_ = filer_.Add("SPEED", 1000, 50, 1);
  ORVResult* shells_ = filer_.Add("STRESS", 1100, 103, 2);
  ORVResult* history_ = filer_.Add("SPEED", 1050, 50, 1);
  ORVResult* cplx_ = filer_.Add("STRESS", 1051, 103, 2);
  const Results states_ = {speed_, shells_};
  const Results multi_ = {history_, cplx_};
};

TEST_F(FilerResults, StandInTwoLists) {
  EXPECT_EQ(filer_.GetResultList(1), states_);
  EXPECT_EQ(filer_.GetResultList(-5), states_);
  EXPECT_EQ(filer_.GetResultList(0), multi_);
}

TEST_F(FilerResults, AreTakenFromTheStateListWhereBothAreNamed) {
  const auto all = [&](int flags) { return Found([&](Results& out) { filer_.GetResultBlks(out, -1, flags); }); };
  EXPECT_EQ(all(1), states_);
  EXPECT_EQ(all(2), multi_);
  EXPECT_EQ(all(3), states_);
  EXPECT_EQ(all(0), Results());
  EXPECT_EQ(all(4), Results());
}

TEST_F(FilerResults, AreAppendedToTheCallersVector) {
  Results out = {cplx_};
  filer_.GetResultBlks(out, 1100, 1);
  EXPECT_EQ(out, (Results{cplx_, shells_}));
}

TEST_F(FilerResults, StandBehindWhatTheVectorHeldAfterEveryLookup) {
  Entities nodes = {Entity(50)};
  std::vector<int> base_types = {1}, handles = {1};
  Names names = {"SPEED"}, types = {"NODE"}, components = {"Speed_X"};
  const auto expect_appended = [&](auto lookup) {
    Results out = {cplx_};
    lookup(out);
    EXPECT_EQ(out, (Results{cplx_, speed_}));
  };
  expect_appended([&](Results& out) { filer_.GetResultBlks(nodes, names, out, -1, 1); });
  expect_appended([&](Results& out) { filer_.GetResultBlks(base_types, names, out, -1, 1); });
  expect_appended([&](Results& out) { filer_.GetResultBlks(names, out, -1, 1, true); });
  expect_appended([&](Results& out) { filer_.GetResultBlksByName(types, names, out, -1, 1); });
  expect_appended([&](Results& out) { filer_.GetResultBlksByVariableNameFlag(base_types, names, out, -1, 1, true); });
  expect_appended([&](Results& out) { filer_.GetResultBlksFrmCmp(base_types, components, out, -1, 1); });
  expect_appended([&](Results& out) { filer_.GetResultBlksFrmCmp(nodes, components, out, -1, 1); });
  expect_appended([&](Results& out) { filer_.GetResultBlksFrmCmp(nodes, base_types, handles, out, -1, 1); });
  expect_appended([&](Results& out) { filer_.GetResultBlksFrmResBlk(*speed_, out, true); });
  Results out = {speed_};
  filer_.GetUniqueSeriesMultistateBlocks(out);
  EXPECT_EQ(out, (Results{speed_, history_}));
}

TEST_F(FilerResults, ByEntityTypeAndName) {
  Entities nodes = {Entity(50)}, no_types;
  Names names = {"SPEED"}, none;
  const auto find = [&](Entities& types, Names& wanted, int type, int flags) {
    return Found([&](Results& out) { filer_.GetResultBlks(types, wanted, out, type, flags); });
  };
  EXPECT_EQ(find(nodes, none, -1, 1), (Results{speed_}));
  EXPECT_EQ(find(nodes, names, 1050, 2), (Results{history_}));
  EXPECT_EQ(find(nodes, names, 1000, 2), Results());
  EXPECT_EQ(find(no_types, names, -1, 1), (Results{speed_}));
  EXPECT_EQ(find(no_types, none, -1, 1), Results());
}

TEST_F(FilerResults, ByBaseTypeAndName) {
  std::vector<int> shells = {2}, no_types;
  Names names = {"S"}, none;
  const auto find = [&](std::vector<int>& types, Names& wanted, int flags) {
    return Found([&](Results& out) { filer_.GetResultBlks(types, wanted, out, -1, flags); });
  };
  EXPECT_EQ(find(shells, none, 2), (Results{cplx_}));
  EXPECT_EQ(find(shells, names, 1), (Results{shells_}));
  EXPECT_EQ(find(shells, names, 2), Results());
  EXPECT_EQ(find(no_types, none, 1), Results());
}

TEST_F(FilerResults, ByNameAloneExactOrNot) {
  Names key = {"S"}, name = {"STRESS"}, none;
  const auto find = [&](Names& names, bool exact) {
    return Found([&](Results& out) { filer_.GetResultBlks(names, out, -1, 1, exact); });
  };
  EXPECT_EQ(find(key, false), (Results{shells_}));
  EXPECT_EQ(find(key, true), Results());
  EXPECT_EQ(find(name, false), Results());
  EXPECT_EQ(find(name, true), (Results{shells_}));
  EXPECT_EQ(find(none, true), Results());
}

TEST_F(FilerResults, ByBaseTypeAndNameExactOrNot) {
  std::vector<int> shells = {2};
  Names name = {"STRESS"}, none;
  const auto find = [&](Names& names, bool exact) {
    return Found([&](Results& out) { filer_.GetResultBlksByVariableNameFlag(shells, names, out, 1100, 1, exact); });
  };
  EXPECT_EQ(find(name, true), (Results{shells_}));
  EXPECT_EQ(find(name, false), Results());
  EXPECT_EQ(find(none, true), (Results{shells_}));
}

TEST_F(FilerResults, ByBaseTypeAndNameOfEitherList) {
  std::vector<int> shells = {2}, no_types;
  Names name = {"STRESS"}, key = {"S"}, none;
  const auto find = [&](std::vector<int>& types, Names& names, int flags, bool exact) {
    return Found([&](Results& out) { filer_.GetResultBlksByVariableNameFlag(types, names, out, -1, flags, exact); });
  };
  EXPECT_EQ(find(shells, name, 2, true), (Results{cplx_}));
  EXPECT_EQ(find(shells, name, 3, true), (Results{shells_}));
  EXPECT_EQ(find(shells, key, 3, false), (Results{shells_}));
  EXPECT_EQ(find(shells, key, 2, false), Results());
  EXPECT_EQ(find(no_types, name, 1, true), (Results{shells_}));
  EXPECT_EQ(find(no_types, name, 2, true), (Results{cplx_}));
  for (const bool exact : {true, false}) EXPECT_EQ(find(no_types, none, 1, exact), Results());
}

TEST_F(FilerResults, ByTheNameOfTheirTypeAndAKindOfEitherList) {
  Names node = {"NODE"}, none;
  const auto find = [&](int type, int flags) {
    return Found([&](Results& out) { filer_.GetResultBlksByName(node, none, out, type, flags); });
  };
  EXPECT_EQ(find(1000, 1), (Results{speed_}));
  EXPECT_EQ(find(1100, 1), Results());  // that one is of shells
  EXPECT_EQ(find(1051, 2), (Results{cplx_}));
  EXPECT_EQ(find(1000, 2), Results());
  EXPECT_EQ(find(1000, 3), (Results{speed_}));
  EXPECT_EQ(find(1051, 3), Results());
  EXPECT_EQ(find(-1, 0), Results());
}

TEST_F(FilerResults, ByTheNameOfTheirTypeAlsoWithoutComponents) {
  Names types = {"shell"}, names = {"S"}, none;
  shells_->m_ncoo = 0;
  const auto find = [&](Names& wanted_types, Names& wanted) {
    return Found([&](Results& out) { filer_.GetResultBlksByName(wanted_types, wanted, out, -1, 1); });
  };
  EXPECT_EQ(find(types, none), (Results{shells_}));
  EXPECT_EQ(find(types, names), (Results{shells_}));
  EXPECT_EQ(find(none, names), (Results{shells_}));
  EXPECT_EQ(find(none, none), Results());
}

TEST_F(FilerResults, ByTheNameOfAHandle) {
  std::vector<int> base_types = {1, 2};
  Entities entities = {Entity(103)};
  Names components = {"speed_x", "stress_xx"};
  EXPECT_EQ(Found([&](Results& out) { filer_.GetResultBlksFrmCmp(base_types, components, out, -1, 1); }), states_);
  EXPECT_EQ(Found([&](Results& out) { filer_.GetResultBlksFrmCmp(base_types, components, out, 1000, 1); }),
            (Results{speed_}));
  EXPECT_EQ(Found([&](Results& out) { filer_.GetResultBlksFrmCmp(entities, components, out, -1, 1); }),
            (Results{shells_}));
  EXPECT_EQ(Found([&](Results& out) { filer_.GetResultBlksFrmCmp(entities, components, out, -1, 2); }), Results());
}

TEST_F(FilerResults, ByTheNameOfAHandleNeedNamesOrTypes) {
  std::vector<int> no_base_types;
  Entities no_entities;
  Names none, components = {"speed_x"};
  EXPECT_EQ(Found([&](Results& out) { filer_.GetResultBlksFrmCmp(no_base_types, none, out, -1, 1); }), Results());
  EXPECT_EQ(Found([&](Results& out) { filer_.GetResultBlksFrmCmp(no_entities, none, out, -1, 1); }), Results());
  EXPECT_EQ(Found([&](Results& out) { filer_.GetResultBlksFrmCmp(no_base_types, components, out, -1, 1); }),
            (Results{speed_}));
  EXPECT_EQ(Found([&](Results& out) { filer_.GetResultBlksFrmCmp(no_entities, components, out, -1, 1); }),
            (Results{speed_}));
}

TEST_F(FilerResults, ByTheInternalIdOfAHandle) {
  std::vector<int> base_types = {1}, no_base, handles = {1, 2}, no_handles;
  Entities entities = {Entity(103)}, no_entities;
  const auto find = [&](Entities& types, std::vector<int>& base, std::vector<int>& ids, int flags) {
    return Found([&](Results& out) { filer_.GetResultBlksFrmCmp(types, base, ids, out, 7, flags); });
  };
  EXPECT_EQ(find(no_entities, no_base, handles, 1), states_);  // the kind is not looked at
  EXPECT_EQ(find(no_entities, no_base, no_handles, 1), Results());
  EXPECT_EQ(find(no_entities, no_base, handles, 0), Results());
  EXPECT_EQ(find(entities, no_base, handles, 1), Results());
  EXPECT_EQ(Found([&](Results& out) { filer_.GetResultBlksFrmCmp(entities, base_types, handles, out, -1, 1); }),
            (Results{shells_}));
  EXPECT_EQ(Found([&](Results& out) { filer_.GetResultBlksFrmCmp(no_entities, base_types, handles, out, -1, 1); }),
            (Results{speed_}));
}

TEST_F(FilerResults, AreOfTheKindAndTheListThatEachLookupIsGiven) {
  Entities entities = {Entity(50), Entity(103)};
  std::vector<int> base_types = {1, 2};
  Names names = {"SPEED", "STRESS", "S"}, components = {"Speed_X", "Stress_XX", "History_X"};
  filer_.AddHandle(history_, 3, "History_X");
  const auto with_each = [&](int type, int flags) {
    return std::vector<Results>{
        Found([&](Results& out) { filer_.GetResultBlks(entities, names, out, type, flags); }),
        Found([&](Results& out) { filer_.GetResultBlks(base_types, names, out, type, flags); }),
        Found([&](Results& out) { filer_.GetResultBlks(names, out, type, flags, false); }),
        Found(
            [&](Results& out) { filer_.GetResultBlksByVariableNameFlag(base_types, names, out, type, flags, false); }),
        Found([&](Results& out) { filer_.GetResultBlksFrmCmp(base_types, components, out, type, flags); }),
        Found([&](Results& out) { filer_.GetResultBlksFrmCmp(entities, components, out, type, flags); }),
    };
  };
  for (const Results& found : with_each(1000, 1)) EXPECT_EQ(found, (Results{speed_}));
  for (const Results& found : with_each(1100, 3)) EXPECT_EQ(found, (Results{shells_}));
  for (const Results& found : with_each(1050, 2)) EXPECT_EQ(found, (Results{history_}));
  for (const Results& found : with_each(1050, 1)) EXPECT_EQ(found, Results());
  for (const Results& found : with_each(1000, 2)) EXPECT_EQ(found, Results());
  for (const Results& found : with_each(1000, 0)) EXPECT_EQ(found, Results());
}

TEST_F(FilerResults, OfTheSameQuantityStandInTheListOfTheSample) {
  EXPECT_EQ(Found([&](Results& out) { filer_.GetResultBlksFrmResBlk(*speed_, out, true); }), (Results{speed_}));
  EXPECT_EQ(Found([&](Results& out) { filer_.GetResultBlksFrmResBlk(*history_, out, false); }), (Results{history_}));
  EXPECT_EQ(Found([&](Results& out) { filer_.GetResultBlksFrmResBlk(*shells_, out, true); }), (Results{shells_}));
}

TEST_F(FilerResults, OfTheSameQuantityIncludeASampleWithoutComponents) {
  speed_->m_ncoo = 0;
  for (const bool by_entity_type : {true, false}) {
    EXPECT_EQ(Found([&](Results& out) { filer_.GetResultBlksFrmResBlk(*speed_, out, by_entity_type); }),
              (Results{speed_}));
    EXPECT_EQ(Found([&](Results& out) { filer_.GetResultBlksFrmResBlkGivenZoneId(*speed_, out, 0, by_entity_type); }),
              (Results{speed_}));
  }
}

TEST_F(FilerResults, OfTheSameQuantityMayBeOfAnotherKind) {
  ORVResult* cplx = filer_.Add("SPEED", 1001, 50, 1);
  ORVResult* elements = filer_.Add("SPEED", 1100, 50, 1);
  EXPECT_EQ(Found([&](Results& out) { filer_.GetResultBlksFrmResBlk(*speed_, out, true); }),
            (Results{speed_, cplx, elements}));
}

TEST_F(FilerResults, OfTheSameQuantityAndAZone) {
  ORVResult* other = filer_.Add("SPEED");
  other->m_zoneid = 4;
  Results out = {shells_};
  filer_.GetResultBlksFrmResBlkGivenZoneId(*speed_, out, 4, true);
  EXPECT_EQ(out, (Results{shells_, other}));
  filer_.GetResultBlksFrmResBlkGivenZoneId(*speed_, out, 0, false);
  EXPECT_EQ(out, (Results{shells_, other, speed_}));
  filer_.GetResultBlksFrmResBlkGivenZoneId(*speed_, out, 9, false);
  EXPECT_EQ(out.size(), 3U);
}

TEST_F(FilerResults, OfASeries) {
  std::strcpy(history_->m_series, "LOADCASE_1");
  std::strcpy(cplx_->m_series, "Time");
  std::string series = "time";
  Results in = multi_;
  EXPECT_EQ(Found([&](Results& out) { filer_.GetBlocksGivenSeriesName(series, in, out); }), (Results{cplx_}));
  filer_.GetBlocksGivenSeriesName(series, in, in);
  EXPECT_EQ(in, (Results{history_, cplx_, cplx_}));
  EXPECT_EQ(Found([&](Results& out) { filer_.GetUniqueSeriesMultistateBlocks(out); }), multi_);
  std::strcpy(cplx_->m_series, "loadcase_1");
  EXPECT_EQ(Found([&](Results& out) { filer_.GetUniqueSeriesMultistateBlocks(out); }), (Results{history_}));
}

TEST_F(FilerResults, AreDeletedByTheirOwner) {
  struct Counted : ORVResult {
    explicit Counted(int& deleted) : deleted_(deleted) {}
    ~Counted() override { ++deleted_; }
    int& deleted_;
  };
  int deleted = 0;
  Results blocks = {new Counted(deleted), nullptr, new Counted(deleted)};
  filer_.ClearResultBlk(blocks);
  EXPECT_EQ(deleted, 2);
  EXPECT_TRUE(blocks.empty());
}

class FilerResultsOfFile : public OrvTest, public ::testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  ForgedModel model_{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Layouts, FilerResultsOfFile, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle));

TEST_P(FilerResultsOfFile, BelowAPathAreBoundToTheVariablesOfTheFiler) {
  model_.variable({.name = "SPEED", .key = "SPEED", .ncoo = 2}).variable({.name = "HEAT", .key = "HEAT"});
  model_.in_state(1, {.variable = "HEAT", .nent = 2}).in_state(2, {.variable = "SPEED", .nent = 3, .ncoo = 2});
  ORVFiler filer(model_.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  const std::uint64_t handles = filer.GetNumExtVariables();
  Results blocks;
  std::string path = ForgedModel::StateGroup(2);
  filer.GetResultBlkFromPath(path, blocks);
  ASSERT_EQ(blocks.size(), 1U);
  EXPECT_STREQ(blocks[0]->m_etypvar, "SPEED");
  EXPECT_EQ(blocks[0]->m_nent, 3);
  EXPECT_EQ(blocks[0]->m_variable, filer.GetVariable("SPEED"));
  ASSERT_EQ(filer.GetNumExtVariables(), handles + 2);
  const ORVExtVar* handle = filer.GetExtVariables().back();
  EXPECT_EQ(handle->GetIID(), static_cast<int>(handles) + 2);
  EXPECT_TRUE(handle->IsApplicable(1));
  EXPECT_FALSE(handle->IsApplicable(2));
  EXPECT_EQ(filer.GetResultList(1).size(), 1U);
  filer.ClearResultBlk(blocks);
  path = "/nowhere";
  filer.GetResultBlkFromPath(path, blocks);
  EXPECT_TRUE(blocks.empty());
}

TEST_P(FilerResultsOfFile, BelowAPathAreAppendedAndServeSingleStatesWhateverTheirKind) {
  model_.variable({.name = "SPEED", .key = "SPEED"}).variable({.name = "HEAT", .key = "HEAT"});
  model_.in_state(1, {.variable = "HEAT", .nent = 2});
  model_.in_multistate({.kind = 1050, .variable = "SPEED", .nent = 1, .nstate = 2});
  ORVFiler filer(model_.path().c_str());
  filer.SetConfig(ORV_CONFIG_SKIP_MULTISTATE);
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  Results blocks;
  for (std::string path : {ForgedModel::StateGroup(1), std::string("/post/multistate"), std::string("/post/nowhere")}) {
    filer.GetResultBlkFromPath(path, blocks);
    EXPECT_EQ(orvio::process().g_pCurrentBlock, nullptr);
  }
  ASSERT_EQ(blocks.size(), 2U);
  EXPECT_STREQ(blocks[0]->m_etypvar, "HEAT");
  EXPECT_EQ(blocks[1]->GetKey(), 1050);
  EXPECT_EQ(blocks[1]->m_variable, filer.GetVariable("SPEED"));
  const ORVExtVar* handle = filer.GetVariable("SPEED")->GetExtVariables().at(0);
  EXPECT_TRUE(handle->IsApplicable(1));
  EXPECT_FALSE(handle->IsApplicable(2));
  filer.ClearResultBlk(blocks);
}

TEST_P(FilerResultsOfFile, BelowAPathOfAFileThatCannotBeOpenedAreNone) {
  FilerWithResults filer("/not/there");
  ORVResult* before = filer.Add("SPEED");
  Results blocks = {before};
  std::string path = "/post";
  filer.GetResultBlkFromPath(path, blocks);
  EXPECT_EQ(blocks, (Results{before}));
}

TEST_P(FilerResultsOfFile, OfALoadCaseAreFoundByTheIndexColumnOfThatName) {
  model_.in_multistate({.kind = 1050, .variable = "A", .nent = 1, .nstate = 2, .index = {0.1F, 1, 0.2F, 2}});
  model_.in_multistate({.kind = 1050, .variable = "B", .nent = 1, .nstate = 1, .index = {0.1F, 3}});
  FilerWithResults filer(model_.path().c_str());
  for (const char* name : {"A", "B"}) {
    ORVResult* block = filer.Add(name, 1050);
    std::strcpy(block->m_etyp, "NODE");
    block->m_nindex = 2;
    block->m_nstate = *name == 'A' ? 2 : 1;
  }
  Results& in = filer.GetResultList(0);
  const auto find = [&](int load_case) {
    Results out;
    filer.GetBlocksGivenLoadCase(load_case, in, out);
    return out;
  };
  EXPECT_EQ(find(2), Results());  // without index types
  std::string names(512, '\0');
  filer.data().index_types = std::make_unique<ORVSimulationType>();
  filer.data().index_types->m_nindex = 2;
  filer.data().index_types->m_pEtypindex = names.data();
  std::strcpy(names.data(), "TIME");
  EXPECT_EQ(find(2), Results());
  std::strcpy(names.data() + 256, "Load Case");
  EXPECT_EQ(find(2), (Results{in[0]}));
  EXPECT_EQ(find(3), (Results{in[1]}));
  EXPECT_EQ(find(0), Results());
  Results nothing, out;
  filer.GetBlocksGivenLoadCase(2, nothing, out);
  EXPECT_EQ(out, Results());
  filer.data().index_types.reset();  // its names are those of this test
}

}  // namespace
