// The incremental indexes that a filer keeps by name: when they are read, the merge of zones, and whose they are. Leaks
// are the sanitizers' to find.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "entity/incr_forge.h"
#include "filer/listed_results.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class OpenFiler : public FilerWithResults {
 public:
  using FilerWithResults::FilerWithResults;
  using ORVFiler::ClearAll;

  std::vector<ORVTagIncrIndex*>& list() { return data().m_tagIncrIndexes; }
  std::vector<std::string> Tags() {
    std::vector<std::string> tags;
    for (const ORVTagIncrIndex* index : list()) tags.push_back(index->m_tag);
    return tags;
  }
};

using States = std::vector<std::pair<int, int>>;  ///< number and flag of each row

class IncrTags : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  static std::string Heat(const std::string& zone = "A") { return "/entityresults/Node/Heat/" + zone; }

  void AddHeat(int state, int flag, const std::vector<std::int32_t>& ids, const std::string& zone = "A") {
    AddIncr(file_, StateGroup(state) + Heat(zone), GetParam(), ids, flag);
  }
  OpenFiler& filer() {
    file_.path();  // closed, with what was added
    if (!filer_) filer_ = std::make_unique<OpenFiler>(file_.path().c_str());
    return *filer_;
  }
  /// A block of the filer's list; of no state if `state` is 0.
  ORVResult& ListHeat(int zone, const std::string& group = "A", int state = 1) {
    ORVResult* block = filer().Add("Heat");
    block->m_zoneid = zone;
    block->SetBlkPath(KnownPath((state == 0 ? "/post/constant" : StateGroup(state)) + Heat(group), GetParam()));
    return *block;
  }
  static States StatesOf(ORVTagIncrIndex* index) {
    std::vector<int> numbers, flags;
    if (!index || index->GetStateIncrFlagInfo(numbers, flags) != 0) return {};
    States states;
    for (std::size_t i = 0; i < numbers.size(); ++i) states.emplace_back(numbers[i], flags[i]);
    return states;
  }
  static std::vector<int> IdsOf(const ORVTagIncrIndex& index) {
    return {index.GetIndexIds(), index.GetIndexIds() + index.GetNumState() * index.GetNumIndex()};
  }
  static std::vector<float> ValuesOf(const ORVTagIncrIndex& index) {
    return {index.GetIndexVals(), index.GetIndexVals() + index.GetNumState() * index.GetNumIndex()};
  }

  ForgedFile file_;
  std::unique_ptr<OpenFiler> filer_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, IncrTags, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

// ---- Names

TEST_P(IncrTags, AreNamedByTypeVariableAndZone) {
  std::string name = "before";
  ORVResult& heat = ListHeat(12);
  filer().GetTagIncrIndexName(heat, name, true);
  EXPECT_EQ(name, "Node_Heat_12");
  filer().GetTagIncrIndexName(heat, name, false);
  EXPECT_EQ(name, "Node_Heat");
  heat.m_zoneid = -5'000'000'000;
  filer().GetTagIncrIndexName(heat, name, true);
  EXPECT_EQ(name, "Node_Heat_-5000000000");
}

TEST_P(IncrTags, OfFullWidthNamesKeepThemWhole) {
  ORVResult& heat = ListHeat(1);
  std::memset(heat.m_etyp, 'e', 256);
  std::memset(heat.m_etypvar, 'v', 256);
  std::string name;
  filer().GetTagIncrIndexName(heat, name, true);
  EXPECT_EQ(name, std::string(256, 'e') + "_" + std::string(256, 'v') + "_1");
}

// ---- Reading

TEST_P(IncrTags, OfAResultAreReadOnce) {
  AddHeat(1, 0, {1});
  AddHeat(2, 1, {2});
  ORVResult& heat = ListHeat(7);
  ORVTagIncrIndex* index = filer().GetTagIncrIndex(heat, true);
  EXPECT_EQ(StatesOf(index), (States{{1, 0}, {2, 1}}));
  AddHeat(3, 1, {3});
  EXPECT_EQ(filer().GetTagIncrIndex(heat, true), index);
  EXPECT_EQ(StatesOf(index), (States{{1, 0}, {2, 1}}));
  EXPECT_THAT(filer().Tags(), ElementsAre("Node_Heat_7"));
}

TEST_P(IncrTags, ThatCannotBeReadAreNotKept) {
  AddHeat(1, 0, {1});
  AddHeat(2, 1, {2});
  IndexOf(file_, StateGroup(2) + Heat(), GetParam()).drop("indexident");
  ORVResult& heat = ListHeat(7);
  std::string name = "mine";
  EXPECT_EQ(filer().GetTagIncrIndex(heat, true), nullptr);
  EXPECT_EQ(filer().GetTagIncrIndex(heat, false), nullptr);
  EXPECT_EQ(filer().GetTagIncrIndex(heat, name, 1, true), nullptr);
  EXPECT_THAT(filer().Tags(), IsEmpty());
}

TEST_P(IncrTags, OfAnyBlockAreReadUnderAGivenNameIfToldTo) {
  AddHeat(1, 0, {1});
  AddHeat(2, 1, {2});
  ORVBlockHelper block;
  block.SetBlkPath(KnownPath(StateGroup(1) + Heat(), GetParam()));
  std::string name = "mine", other = "MINE";
  EXPECT_EQ(filer().GetTagIncrIndex(block, name, 1, false), nullptr);
  EXPECT_THAT(filer().Tags(), IsEmpty());
  ORVTagIncrIndex* index = filer().GetTagIncrIndex(block, name, 2, true);
  EXPECT_EQ(StatesOf(index), (States{{1, 0}, {2, 1}}));
  EXPECT_EQ(filer().GetTagIncrIndex(block, name, 1, false), index);
  EXPECT_EQ(filer().GetTagIncrIndex(block, name, 1, true), index);
  EXPECT_EQ(filer().GetTagIncrIndex(block, other, 1, false), nullptr);
  EXPECT_THAT(filer().Tags(), ElementsAre("mine"));
}

// ---- Zones

TEST_P(IncrTags, OfAllZonesHaveARowForEachState) {
  AddHeat(1, 0, {10}, "A");
  AddHeat(3, 1, {30}, "A");
  AddHeat(2, 1, {20, 21}, "B");
  AddHeat(3, 0, {31, 32}, "B");
  AddHeat(4, 1, {40, 41}, "B");
  ORVResult& first = ListHeat(1, "A");
  ListHeat(2, "B");
  ORVTagIncrIndex* index = filer().GetTagIncrIndex(first, false);
  ASSERT_NE(index, nullptr);
  EXPECT_EQ(StatesOf(index), (States{{1, 0}, {2, 1}, {3, 1}, {4, 1}}));  // the third is that of the first block
  EXPECT_EQ(index->GetNumIndex(), 2);
  EXPECT_THAT(IdsOf(*index), ElementsAre(10, 0, 20, 21, 30, 0, 40, 41));
  EXPECT_THAT(ValuesOf(*index), ElementsAre(5, 0, 10, 10.5F, 15, 0, 20, 20.5F));
  EXPECT_TRUE(index->IsIncrementalState(3));
  EXPECT_THAT(filer().Tags(), ElementsAre("Node_Heat_1", "Node_Heat_2", "Node_Heat"));
  EXPECT_EQ(filer().GetTagIncrIndex(first, false), index);
}

TEST_P(IncrTags, OfAllZonesAreAsWideAsTheWidestWhateverItsRows) {
  AddHeat(1, 0, {10}, "A");
  AddHeat(1, 1, {10, 11, 12}, "B");  // its only state is that of the first block
  ORVResult& first = ListHeat(1, "A");
  ListHeat(2, "B");
  ORVTagIncrIndex* index = filer().GetTagIncrIndex(first, false);
  ASSERT_NE(index, nullptr);
  EXPECT_EQ(index->GetNumIndex(), 3);
  EXPECT_THAT(IdsOf(*index), ElementsAre(10, 0, 0));
}

TEST_P(IncrTags, OfAllZonesLeaveOutThoseThatCannotBeRead) {
  AddHeat(1, 0, {10}, "A");
  ORVResult& unreadable = ListHeat(2, "B");
  ListHeat(3, "A", 0);  // of the constant section
  ListHeat(1, "A");
  ORVTagIncrIndex* index = filer().GetTagIncrIndex(unreadable, false);
  EXPECT_EQ(StatesOf(index), (States{{1, 0}}));
  EXPECT_THAT(filer().Tags(), ElementsAre("Node_Heat_1", "Node_Heat"));
}

TEST_P(IncrTags, OfAllZonesOfOneBlockAreItsOwnUnderTheNameOfAll) {
  AddHeat(1, 0, {10}, "A");
  ORVResult& only = ListHeat(1, "A");
  EXPECT_EQ(StatesOf(filer().GetTagIncrIndex(only, false)), (States{{1, 0}}));
  EXPECT_THAT(filer().Tags(), ElementsAre("Node_Heat"));
}

TEST_P(IncrTags, OfAllZonesAreNoneWhereNoneCanBeRead) {
  file_.group(StateGroup(1));
  ORVResult& first = ListHeat(1, "A");
  ListHeat(2, "B");
  EXPECT_EQ(filer().GetTagIncrIndex(first, false), nullptr);
  EXPECT_THAT(filer().Tags(), IsEmpty());
}

// ---- The list

TEST_P(IncrTags, OfAHostBelongToTheFilerOnceAppended) {
  auto index = std::make_unique<ORVTagIncrIndex>();
  index->m_tag = "mine";
  ORVTagIncrIndex* const taken = index.release();
  EXPECT_TRUE(filer().AppendTagedIndex(taken));
  EXPECT_THAT(filer().list(), ElementsAre(taken));
  ORVTagIncrIndex second;
  second.m_tag = "mine";
  EXPECT_FALSE(filer().AppendTagedIndex(&second));
  EXPECT_FALSE(filer().AppendTagedIndex(nullptr));
  taken->m_tag = "renamed";
  EXPECT_FALSE(filer().AppendTagedIndex(taken));  // it would be deleted twice
  EXPECT_THAT(filer().list(), ElementsAre(taken));
}

TEST_P(IncrTags, ThatAreClearedStayAndAreMadeAnewUnderTheirName) {
  AddHeat(1, 1, {1});
  ORVResult& heat = ListHeat(7);
  ORVTagIncrIndex* const cleared = filer().GetTagIncrIndex(heat, true);
  ASSERT_NE(cleared, nullptr);
  filer().ClearIncrIndex(nullptr);
  for (int i = 0; i < 2; ++i) {  // twice is harmless
    filer().ClearIncrIndex(cleared);
    EXPECT_EQ(cleared->GetNumState(), 0);
    EXPECT_EQ(cleared->GetNumIndex(), 0);
    EXPECT_EQ(cleared->GetIndexIds(), nullptr);
    EXPECT_EQ(cleared->GetIndexVals(), nullptr);
    EXPECT_EQ(cleared->GetStateIds(), nullptr);
    EXPECT_FALSE(cleared->IsIncrementalState(1));
    EXPECT_THAT(filer().Tags(), ElementsAre(""));
  }
  ORVTagIncrIndex* const again = filer().GetTagIncrIndex(heat, true);
  EXPECT_NE(again, cleared);
  EXPECT_THAT(filer().list(), ElementsAre(cleared, again));
  EXPECT_THAT(filer().Tags(), ElementsAre("", "Node_Heat_7"));
  EXPECT_EQ(StatesOf(again), (States{{1, 1}}));
}

TEST_P(IncrTags, GoWithWhatTheFilerHasRead) {
  AddHeat(1, 1, {1});
  ORVResult& heat = ListHeat(7);
  ASSERT_EQ(filer().BuildGlobalIncrMap(heat, 1, false), 0);
  ASSERT_NE(filer().GetTagIncrIndex(heat, true), nullptr);
  filer().ClearAll();
  EXPECT_THAT(filer().list(), IsEmpty());
  EXPECT_EQ(filer().data().m_globalIncrMap, nullptr);
}

TEST_P(IncrTags, AreThoseOfAllCopiesOfAFiler) {
  AddHeat(1, 0, {1});
  AddHeat(2, 1, {2});
  ORVResult& heat = ListHeat(7);
  ORVTagIncrIndex* index = nullptr;
  {
    ORVFiler copied(filer());
    ASSERT_EQ(copied.BuildGlobalIncrMap(heat, 1, false), 0);
    index = copied.GetTagIncrIndex(heat, true);
    ORVFiler assigned("none");
    assigned = copied;
    EXPECT_EQ(assigned.GetTagIncrIndex(heat, true), index);
  }
  EXPECT_THAT(filer().list(), ElementsAre(index));
  EXPECT_EQ(filer().GetTagIncrIndex(heat, true), index);
  EXPECT_EQ(StatesOf(index), (States{{1, 0}, {2, 1}}));
  ASSERT_NE(filer().data().m_globalIncrMap, nullptr);
  EXPECT_THAT(*filer().data().m_globalIncrMap, SizeIs(2));
}

TEST_P(IncrTags, AreReadAnewAfterAReload) {
  AddHeat(1, 1, {1});
  ORVResult& heat = ListHeat(7);
  ASSERT_EQ(filer().BuildGlobalIncrMap(heat, 1, false), 0);
  ASSERT_NE(filer().GetTagIncrIndex(heat, true), nullptr);
  AddHeat(2, 0, {2});
  filer().InitForReload();
  EXPECT_THAT(filer().list(), IsEmpty());
  EXPECT_EQ(filer().data().m_globalIncrMap, nullptr);
  EXPECT_EQ(StatesOf(filer().GetTagIncrIndex(heat, true)), (States{{1, 1}, {2, 0}}));
  EXPECT_EQ(filer().BuildGlobalIncrMap(heat, 1, false), 0);
  EXPECT_THAT(*filer().data().m_globalIncrMap, SizeIs(2));
}

}  // namespace
}  // namespace orv_test
