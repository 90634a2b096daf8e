// The history of a block: the index allocated and read for it, and the records of what each state builds upon.

#include "entity/incr_states.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <numeric>
#include <optional>
#include <utility>

#include "entity/incr_chain.h"
#include "entity/incr_forge.h"
#include "h5/entry.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using orvio::IncrStateMap;
using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

// ---- The index

class IncrFill : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  IncrFill() { block_.SetBlkPath(KnownPath(Heat(1), GetParam())); }

  static std::string Heat(int state) { return StateGroup(state) + "/entityresults/Node/Heat"; }
  ForgedFile& AddHeat(int state, const std::vector<std::int32_t>& ids, int flag = kNoFlag) {
    return AddIncr(file_, Heat(state), GetParam(), ids, flag);
  }
  int Fill(int state) {
    index_.ClearAll();
    return FillFrom(file_.path().c_str(), state);
  }
  int FillFrom(const char* file, int state) {
    const orvio::h5::QuietHdf5 quiet;  // as in the operations that use it
    return orvio::FillIncrIndex(file, block_, index_, state);
  }
  void ExpectEmpty() {
    EXPECT_EQ(index_.m_pIndexId, nullptr);
    EXPECT_EQ(index_.m_pIndexVal, nullptr);
    EXPECT_EQ(index_.m_pStateIds, nullptr);
    EXPECT_EQ(index_.m_pIncrFlags, nullptr);
    EXPECT_EQ(index_.GetNumState(), 0);
    EXPECT_EQ(index_.GetNumIndex(), 0);
  }

  ForgedFile file_;
  ORVBlockHelper block_;
  OpenIncrIndex index_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, IncrFill, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(IncrFill, MakesOneAllocationForAllStates) {
  AddHeat(1, {10, 11}, 0);
  file_.group(StateGroup(2));
  AddHeat(3, {30, 31}, 1);
  EXPECT_EQ(Fill(1), 0);
  EXPECT_THAT(index_.States(), ElementsAre(1, 3));
  EXPECT_THAT(index_.Flags(), ElementsAre(0, 1));
  EXPECT_THAT(index_.Ids(), ElementsAre(10, 11, 30, 31));
  EXPECT_THAT(index_.Values(), ElementsAre(5, 5.5F, 15, 15.5F));
  const int* first = index_.m_pIndexId;  // two columns, three states
  EXPECT_EQ(static_cast<void*>(index_.m_pIndexVal), static_cast<const void*>(first + 6));
  EXPECT_EQ(index_.m_pStateIds, first + 12);
  EXPECT_EQ(index_.m_pIncrFlags, first + 15);
}

TEST_P(IncrFill, TakesTheColumnsFromAnotherStateWhereTheOneAskedForHasNone) {
  file_.group(StateGroup(1));
  AddHeat(2, {20}, 1);
  for (const int state : {1, 2, 3, 0, -1}) {
    EXPECT_EQ(Fill(state), 0) << state;
    EXPECT_THAT(index_.States(), ElementsAre(2)) << state;
  }
}

TEST_P(IncrFill, OfADamagedStateTakesTheColumnsFromAnother) {
  AddHeat(1, {10});
  for (const std::int64_t columns : {std::int64_t{0}, std::int64_t{-2}, std::int64_t{1} << 40}) {
    AddHeat(2, {20}).integer("nindex", columns);  // no row but the first is asked for it
    EXPECT_EQ(Fill(2), 0) << columns;
    EXPECT_THAT(index_.States(), ElementsAre(1, 2)) << columns;
  }
}

TEST_P(IncrFill, WhoseFirstRowIsWiderThanTheAllocationFails) {
  AddHeat(1, {10, 11, 12});
  AddHeat(2, {20});
  EXPECT_EQ(Fill(2), 1);
  ExpectEmpty();
  EXPECT_EQ(Fill(1), 1);  // the second row has one column
  ExpectEmpty();
}

TEST_P(IncrFill, WithANarrowerFirstRowFills) {
  AddHeat(1, {10});
  AddHeat(2, {20, 21});
  IndexOf(file_, Heat(2), GetParam()).dataset<std::int32_t>("indexident", {1}, {20});
  file_.dataset<float>("indexval", {1}, {10});
  EXPECT_EQ(Fill(2), 0);
  EXPECT_THAT(index_.Ids(), ElementsAre(10, 20));
}

TEST_P(IncrFill, HasRoomForTheColumnsOfTheStateAskedForElseOfTheFirstThatHasAny) {
  file_.group(StateGroup(1));
  AddHeat(2, {20});
  AddHeat(3, {30, 31});  // it stores one of them, as the first row has one
  IndexOf(file_, Heat(3), GetParam()).dataset<std::int32_t>("indexident", {1}, {30});
  file_.dataset<float>("indexval", {1}, {15});
  const auto room = [this](int state) {
    EXPECT_EQ(Fill(state), 0) << state;
    return index_.m_pStateIds - index_.m_pIndexId;  // behind the identifiers and values of three states
  };
  EXPECT_EQ(room(3), 12);
  EXPECT_EQ(room(2), 6);
  for (const int state : {1, 4, 0, -1}) EXPECT_EQ(room(state), 6) << state;
}

TEST_P(IncrFill, WithoutColumnsInAnyStateFails) {
  for (const std::int64_t columns : {std::int64_t{0}, std::int64_t{-3}, std::int64_t{1} << 40}) {
    for (const int state : {1, 2}) AddHeat(state, {10}).integer("nindex", columns);
    EXPECT_EQ(Fill(1), 1) << columns;
  }
}

TEST_P(IncrFill, ThatFailsInOneRowIsLeftEmpty) {
  for (const int state : {1, 2, 3}) AddHeat(state, {10 * state});
  IndexOf(file_, Heat(2), GetParam()).drop("indexident");
  EXPECT_EQ(Fill(1), 1);
  ExpectEmpty();
  AddHeat(2, {20}, 1).retype("indexic");
  EXPECT_EQ(Fill(1), 1);
  ExpectEmpty();
}

TEST_P(IncrFill, OfColumnsThatAreClaimedButNotStoredFails) {
  static constexpr hsize_t kClaimed = 12'000'000;  // 96 MB of index
  AddHeat(1, {10}).integer("nindex", kClaimed);
  IndexOf(file_, Heat(1), GetParam()).drop("indexident").drop("indexval").raw([](hid_t here) {
    const auto claim = [&](const char* name, hid_t type) {
      const Id space(H5Screate_simple(1, &kClaimed, nullptr), "space");
      const Id dataset(H5Dcreate2(here, name, type, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), name);
    };
    claim("indexident", H5T_NATIVE_INT);
    claim("indexval", H5T_NATIVE_FLOAT);
  });
  EXPECT_EQ(Fill(1), 1);
  ExpectEmpty();
}

TEST_P(IncrFill, OfMoreStatesThanTheFileCanHoldFails) {
  constexpr int kStates = 1000, kColumns = 20'000;  // 160 MB of index, and one state
  AddHeat(1, std::vector<std::int32_t>(kColumns, 3));
  for (int state = 2; state <= kStates; ++state) {
    file_.at("/post/singlestate").hard_link(("twin" + std::to_string(state)).c_str(), StateGroup(1));
  }
  EXPECT_EQ(Fill(1), 1);
  ExpectEmpty();
  ASSERT_LT(std::filesystem::file_size(file_.path()), 40'000'000U);
}

TEST_P(IncrFill, NeedsAFileAndABlockOfAState) {
  AddHeat(1, {10});
  EXPECT_EQ(FillFrom(nullptr, 1), 1);
  EXPECT_EQ(FillFrom(TempPath("none").c_str(), 1), 1);
  block_.SetBlkPath("/post/constant/entityresults/Node/Heat");
  EXPECT_EQ(Fill(1), 1);
}

TEST_P(IncrFill, OfAFileWithoutStatesFails) { EXPECT_EQ(Fill(1), 1); }

TEST_P(IncrFill, GivesTheRecordsOfABlock) {
  AddHeat(1, {10}, 0);
  AddHeat(2, {20}, 1);
  const orvio::h5::QuietHdf5 quiet;
  IncrStateMap map;
  EXPECT_EQ(orvio::ReadStateRecords(file_.path().c_str(), block_, 1, map), 0);
  ASSERT_EQ(map.size(), 2U);
  EXPECT_EQ(map[1].state, 2);
  EXPECT_EQ(map[1].flag, 1);
  EXPECT_EQ(map[1].chain, 0U);
  block_.SetBlkPath(KnownPath(StateGroup(1) + "/entityresults/Node/Speed", GetParam()));
  EXPECT_EQ(orvio::ReadStateRecords(file_.path().c_str(), block_, 1, map), 1);
  EXPECT_EQ(map.size(), 2U);
}

// ---- Records

/// A list of a host, which deletes its records.
struct HostRecords {
  HostRecords() = default;
  HostRecords(const HostRecords&) = delete;
  HostRecords& operator=(const HostRecords&) = delete;
  ~HostRecords() {
    for (const ORVIncrStateMap* record : list) delete record;
  }
  std::vector<ORVIncrStateMap*> list;
};

class IncrStates : public OrvTest {
 protected:
  int Append(const std::vector<int>& flags, const std::vector<int>& ids) {
    std::vector<int> states(flags.size());
    std::iota(states.begin(), states.end(), 1);
    index_.Fill(states, flags, ids);
    return orvio::AppendStateRecords(index_, map_);
  }
  /// States that all build upon those before.
  int AppendChain(std::size_t states) {
    std::vector<int> ids(states);
    std::iota(ids.begin(), ids.end(), 1);
    return Append(std::vector<int>(states, 1), ids);
  }
  /// State, flag and the states that it builds upon.
  std::vector<std::vector<int>> Records() const {
    std::vector<std::vector<int>> records;
    for (std::size_t i = 0; i < map_.size(); ++i) {
      records.push_back({map_[i].state, map_[i].flag});
      for (std::size_t earlier = map_[i].chain; earlier < i; ++earlier) records.back().push_back(map_[earlier].state);
    }
    return records;
  }
  int FoundFor(int state) const {
    const std::optional<std::size_t> place = orvio::FindStateRecord(map_, state);
    return place ? map_[*place].state : -1;
  }

  OpenIncrIndex index_;
  IncrStateMap map_;
};

using Rows = std::vector<std::vector<int>>;

TEST_F(IncrStates, BuildUponAllStatesSinceTheLastFullOne) {
  EXPECT_EQ(Append({0, 1, 1, 0, 1}, {1, 2, 3, 4, 5}), 0);
  EXPECT_EQ(Records(), (Rows{{1, 0}, {2, 1, 1}, {3, 1, 1, 2}, {4, 0}, {5, 1, 4}}));
}

TEST_F(IncrStates, KeepTheFlagAsItIsStored) {
  EXPECT_EQ(Append({0, 7, -1}, {1, 2, 3}), 0);
  EXPECT_EQ(Records(), (Rows{{1, 0}, {2, 7, 1}, {3, -1, 1, 2}}));
}

TEST_F(IncrStates, WithoutAFullOneBuildUponTheIncrementalOnesBefore) {
  EXPECT_EQ(Append({1, 1, 0, 1}, {1, 2, 3, 4}), 0);
  EXPECT_EQ(Records(), (Rows{{1, 1}, {2, 1, 1}, {3, 0}, {4, 1, 3}}));
}

TEST_F(IncrStates, StandInTheOrderOfTheirIdentifiers) {
  EXPECT_EQ(Append({0, 0, 1}, {30, -10, 20}), 0);
  EXPECT_EQ(Records(), (Rows{{2, 0}, {3, 1, 2}, {1, 0}}));
}

TEST_F(IncrStates, OfOneIdentifierAreThoseOfTheFirstRow) {
  EXPECT_EQ(Append({0, 1, 1, 0}, {10, 20, 10, 20}), 0);
  EXPECT_EQ(Records(), (Rows{{1, 0}, {2, 1, 1}}));
}

TEST_F(IncrStates, AreAppendedToWhatIsThere) {
  EXPECT_EQ(Append({0, 1}, {1, 2}), 0);
  EXPECT_EQ(Append({1}, {1}), 0);
  EXPECT_EQ(Records(), (Rows{{1, 0}, {2, 1, 1}, {1, 1}}));
}

TEST_F(IncrStates, OfSeveralColumnsAreNone) {
  index_.Allocate(1, 2);
  index_.m_nState = 1;
  index_.m_nIndex = 2;
  EXPECT_EQ(orvio::AppendStateRecords(index_, map_), 1);
  EXPECT_THAT(map_, IsEmpty());
}

TEST_F(IncrStates, NeedRowsIdentifiersNumbersAndFlags) {
  index_.Fill({1}, {0}, {1});
  const auto without = [&](auto& member) {
    const auto before = std::exchange(member, {});
    EXPECT_EQ(orvio::AppendStateRecords(index_, map_), 1);
    EXPECT_THAT(map_, IsEmpty());
    member = before;
  };
  without(index_.m_nState);
  without(index_.m_nIndex);
  without(index_.m_pStateIds);
  without(index_.m_pIncrFlags);
  without(index_.m_pIndexId);
  EXPECT_EQ(orvio::AppendStateRecords(index_, map_), 0);
}

TEST_F(IncrStates, MayAllBuildUponEachOtherByTensOfThousands) {
  ASSERT_EQ(AppendChain(50'000), 0);
  ASSERT_EQ(map_.size(), 50'000U);
  const orvio::IncrChain chain = orvio::ChainOf(map_, 49'999, 50'000, 50'000);
  EXPECT_EQ(chain.base, 1);
  ASSERT_EQ(chain.changes.size(), 49'999U);
  EXPECT_EQ(chain.changes.front(), 2);
  EXPECT_EQ(chain.changes.back(), 50'000);
}

// ---- Records of a host

TEST_F(IncrStates, OfAHostLeadToThoseThatTheyBuildUpon) {
  ASSERT_EQ(Append({0, 1, 7, 0, 1}, {1, 2, 3, 4, 5}), 0);
  HostRecords host;
  host.list.push_back(new ORVIncrStateMap);
  ASSERT_EQ(orvio::HandOverRecords(map_, host.list), 0);
  ASSERT_THAT(host.list, SizeIs(6));
  const std::vector<ORVIncrStateMap*> records(host.list.begin() + 1, host.list.end());
  EXPECT_EQ(records[2]->m_state, 3);
  EXPECT_EQ(records[2]->m_incrFlag, 7);
  EXPECT_THAT(records[0]->m_dependsOn, IsEmpty());
  EXPECT_THAT(records[1]->m_dependsOn, ElementsAre(records[0]));
  EXPECT_THAT(records[2]->m_dependsOn, ElementsAre(records[0], records[1]));
  EXPECT_THAT(records[3]->m_dependsOn, IsEmpty());
  EXPECT_THAT(records[4]->m_dependsOn, ElementsAre(records[3]));
}

TEST_F(IncrStates, OfAHostTake64MiBAtMost) {
  ASSERT_EQ(AppendChain(4096), 0);  // 4096 x 4095 / 2 pointers
  HostRecords host;
  EXPECT_EQ(orvio::HandOverRecords(map_, host.list), 0);
  EXPECT_THAT(host.list, SizeIs(4096));
  map_.clear();
  ASSERT_EQ(AppendChain(4097), 0);
  EXPECT_EQ(orvio::HandOverRecords(map_, host.list), 1);
  EXPECT_THAT(host.list, SizeIs(4096));
}

// ---- The record of a state

TEST_F(IncrStates, AreFoundByNumberOrAsTheClosestEarlierOne) {
  index_.Fill({2, 6, 4}, {0, 0, 1}, {1, 2, 3});
  ASSERT_EQ(orvio::AppendStateRecords(index_, map_), 0);
  EXPECT_EQ(FoundFor(2), 2);
  EXPECT_EQ(FoundFor(4), 4);
  EXPECT_EQ(FoundFor(3), 2);
  EXPECT_EQ(FoundFor(5), 4);
  EXPECT_EQ(FoundFor(1000), 6);
  EXPECT_EQ(FoundFor(1), -1);
}

TEST_F(IncrStates, BelowOneAreFoundByTheirNumberAlone) {
  index_.Fill({-3, 0, 1}, {0, 0, 0}, {1, 2, 3});  // no file has such states
  ASSERT_EQ(orvio::AppendStateRecords(index_, map_), 0);
  EXPECT_EQ(FoundFor(0), 0);
  EXPECT_EQ(FoundFor(-3), -3);
  EXPECT_EQ(FoundFor(-2), -1);
}

}  // namespace
}  // namespace orv_test
