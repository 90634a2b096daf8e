// What states build upon, as a filer tells it of a block and keeps it for a file. How records follow from rows is in
// tests/entity/incr_states_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <numeric>
#include <string>
#include <vector>

#include "entity/incr_forge.h"
#include "filer/container.h"
#include "orvio/orv_filer.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::IsEmpty;
using ::testing::SizeIs;

class OpenFiler : public ORVFiler {
 public:
  using ORVFiler::ORVFiler;
  orvio::IncrStateMap* global() { return m_pData->m_globalIncrMap.get(); }
};

/// A list of a host, which deletes its records.
struct Records {
  Records() = default;
  Records(const Records&) = delete;
  Records& operator=(const Records&) = delete;
  ~Records() {
    for (const ORVIncrStateMap* record : list) delete record;
  }
  std::vector<ORVIncrStateMap*> list;
};

using Rows = std::vector<std::vector<int>>;  ///< state, flag and the states that it builds upon

Rows RowsOf(const std::vector<ORVIncrStateMap*>& list) {
  Rows rows;
  for (const ORVIncrStateMap* record : list) {
    rows.push_back({record->m_state, record->m_incrFlag});
    for (const ORVIncrStateMap* earlier : record->m_dependsOn) rows.back().push_back(earlier->m_state);
  }
  return rows;
}

Rows RowsOf(const orvio::IncrStateMap& map) {
  Rows rows;
  for (std::size_t i = 0; i < map.size(); ++i) {
    rows.push_back({map[i].state, map[i].flag});
    for (std::size_t earlier = map[i].chain; earlier < i; ++earlier) rows.back().push_back(map[earlier].state);
  }
  return rows;
}

class IncrMaps : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  /// A block with a row for each flag, in states from the first on.
  ORVResult Add(const std::string& variable, const std::vector<int>& flags, std::size_t columns = 1) {
    int state = 0;
    for (const int flag : flags) {
      ++state;
      AddIncr(file_, Place(state, variable), GetParam(), std::vector<std::int32_t>(columns, state), flag);
    }
    ORVResult result(1000);
    result.SetEntityAndVarName("Node", variable);
    result.SetBlkPath(KnownPath(Place(1, variable), GetParam()));
    return result;
  }
  static std::string Place(int state, const std::string& variable) {
    return StateGroup(state) + "/entityresults/Node/" + variable;
  }
  OpenFiler Filer() { return OpenFiler(file_.path().c_str()); }

  ForgedFile file_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, IncrMaps, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

// ---- Of a block

TEST_P(IncrMaps, OfABlockTellWhatEachStateBuildsUpon) {
  ORVResult heat = Add("Heat", {0, 1, 1, 0, 1});
  OpenFiler filer = Filer();
  Records records;
  EXPECT_EQ(filer.GetIncrStateMap(heat, records.list, 1), 0);
  EXPECT_EQ(RowsOf(records.list), (Rows{{1, 0}, {2, 1, 1}, {3, 1, 1, 2}, {4, 0}, {5, 1, 4}}));
  EXPECT_EQ(records.list[2]->m_dependsOn[0], records.list[0]);
  EXPECT_EQ(filer.GetIncrStateMap(heat, records.list, 3), 0);  // appended
  EXPECT_THAT(records.list, SizeIs(10));
  EXPECT_EQ(filer.global(), nullptr);
}

TEST_P(IncrMaps, OfAnIndexInHandTouchNoFile) {
  OpenIncrIndex index;
  index.Fill({1, 2}, {0, 1}, {10, 20});
  Records records;
  EXPECT_EQ(OpenFiler(TempPath("none").c_str()).GetIncrStateMap(index, records.list), 0);
  EXPECT_EQ(RowsOf(records.list), (Rows{{1, 0}, {2, 1, 1}}));
}

TEST_P(IncrMaps, OfSeveralColumnsAreNone) {
  ORVResult heat = Add("Heat", {0, 1}, 2);
  OpenFiler filer = Filer();
  Records records;
  EXPECT_EQ(filer.GetIncrStateMap(heat, records.list, 1), 1);
  OpenIncrIndex index;
  index.Allocate(1, 2);
  index.m_nState = 1;
  index.m_nIndex = 2;
  EXPECT_EQ(filer.GetIncrStateMap(index, records.list), 1);
  EXPECT_THAT(records.list, IsEmpty());
}

TEST_P(IncrMaps, OfABlockThatCannotBeReadAreNone) {
  ORVResult heat = Add("Heat", {0, 1});
  IndexOf(file_, Place(2, "Heat"), GetParam()).drop("indexident");
  OpenFiler filer = Filer();
  Records records;
  EXPECT_EQ(filer.GetIncrStateMap(heat, records.list, 1), 1);
  EXPECT_EQ(filer.BuildGlobalIncrMap(heat, 1, false), 1);
  EXPECT_THAT(records.list, IsEmpty());
  EXPECT_EQ(filer.global(), nullptr);
}

TEST_P(IncrMaps, OfStatesThatBuildUponTooManyAreNoneForAHost) {
  OpenIncrIndex index;
  std::vector<int> numbers(5000);
  std::iota(numbers.begin(), numbers.end(), 1);
  index.Fill(numbers, std::vector<int>(numbers.size(), 1), numbers);
  Records records;
  EXPECT_EQ(OpenFiler(TempPath("none").c_str()).GetIncrStateMap(index, records.list), 1);
  EXPECT_THAT(records.list, IsEmpty());
}

// ---- Of the file

TEST_P(IncrMaps, OfTheFileIsThatOfTheFirstBlockForAllOthers) {
  ORVResult heat = Add("Heat", {0, 1});
  ORVResult speed = Add("Speed", {0, 0, 1});
  OpenFiler filer = Filer();
  EXPECT_EQ(filer.BuildGlobalIncrMap(heat, 1, false), 0);
  ASSERT_NE(filer.global(), nullptr);
  EXPECT_EQ(RowsOf(*filer.global()), (Rows{{1, 0}, {2, 1, 1}}));
  EXPECT_EQ(filer.BuildGlobalIncrMap(speed, 1, false), 0);
  EXPECT_EQ(RowsOf(*filer.global()), (Rows{{1, 0}, {2, 1, 1}}));
}

TEST_P(IncrMaps, OfTheFileIsMadeAnewByForce) {
  ORVResult heat = Add("Heat", {0, 1});
  ORVResult speed = Add("Speed", {0, 0, 1});
  OpenFiler filer = Filer();
  ASSERT_EQ(filer.BuildGlobalIncrMap(heat, 1, false), 0);
  EXPECT_EQ(filer.BuildGlobalIncrMap(speed, 1, true), 0);
  EXPECT_EQ(RowsOf(*filer.global()), (Rows{{1, 0}, {2, 0}, {3, 1, 2}}));
}

TEST_P(IncrMaps, OfTheFileStaysWhereAnotherCannotBeMade) {
  ORVResult heat = Add("Heat", {0, 1});
  ORVResult wide = Add("Wide", {0, 1}, 2);
  OpenFiler filer = Filer();
  ASSERT_EQ(filer.BuildGlobalIncrMap(heat, 1, false), 0);
  EXPECT_EQ(filer.BuildGlobalIncrMap(wide, 1, true), 1);
  heat.SetBlkPath("/post/constant/entityresults/Node/Heat");
  EXPECT_EQ(filer.BuildGlobalIncrMap(heat, 1, true), 1);
  EXPECT_EQ(RowsOf(*filer.global()), (Rows{{1, 0}, {2, 1, 1}}));
}

TEST_P(IncrMaps, OfTheFileNeedsABlockOfAStateWithOneColumn) {
  ORVResult wide = Add("Wide", {0, 1}, 2);
  ORVResult constant = Add("Heat", {0, 1});
  constant.SetBlkPath("/post/constant/entityresults/Node/Heat");
  OpenFiler filer = Filer();
  EXPECT_EQ(filer.BuildGlobalIncrMap(wide, 1, false), 1);
  EXPECT_EQ(filer.BuildGlobalIncrMap(constant, 1, false), 1);
  EXPECT_EQ(filer.global(), nullptr);
}

}  // namespace
}  // namespace orv_test
