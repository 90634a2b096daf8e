// The state indexes that a filer holds: when they are read, what they hold after files of all kinds, and what damaged
// files make of them. The columns of an index are in state_index_columns_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/inotify.h>
#include <unistd.h>

#include <memory>
#include <string>
#include <vector>

#include "entity/state_index_fill.h"
#include "entity/state_index_forge.h"
#include "filer/container.h"
#include "orvio/orv_filer.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;

class OpenFiler : public ORVFiler {
 public:
  using ORVFiler::ClearAll;
  using ORVFiler::ORVFiler;
  using ORVFiler::ReadMultiStateIndex;
  using ORVFiler::ReadStateIndex;
  ORVContainer& data() { return *m_pData; }
};

template <class V>
std::vector<V> ValuesOf(const ORVIndexBase<int, V>& index) {
  const V* values = index.GetIndexVals();
  return values ? std::vector<V>(values, values + index.GetNumState() * index.GetNumIndex()) : std::vector<V>();
}

template <class V>
void ExpectEmpty(const ORVIndexBase<int, V>* index) {
  ASSERT_NE(index, nullptr);
  EXPECT_EQ(index->GetNumState(), 0);
  EXPECT_EQ(index->GetIndexVals(), nullptr);
  EXPECT_EQ(index->GetIndexIds(), nullptr);
}

class FilerIndex : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  static std::string Heat(int state) { return StateGroup(state) + "/entityresults/Node/Heat"; }
  ForgedFile& AddHeat(int state, const std::vector<double>& values) {
    return AddIndexed(file_, Heat(state), GetParam(), values);
  }

  OpenFiler& filer() {
    file_.path();  // closed, with what was added
    if (!filer_) filer_ = std::make_unique<OpenFiler>(file_.path().c_str());
    return *filer_;
  }

  ForgedFile file_;
  std::unique_ptr<OpenFiler> filer_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, FilerIndex, ::testing::Values(Layout::kSplit, Layout::kSingle),
                         [](const auto& layout) { return NameOf(layout.param); });

TEST_P(FilerIndex, HoldsARowForEachState) {
  AddHeat(1, {0.5, 1});
  AddHeat(2, {0.75, 2});
  const auto* index = filer().GetStateIndex(false);
  ASSERT_NE(index, nullptr);
  EXPECT_EQ(index->GetNumState(), 2);
  EXPECT_EQ(index->GetNumIndex(), 2);
  EXPECT_EQ(index->GetKey(), -1);
  EXPECT_THAT(ValuesOf(*index), ElementsAre(0.5F, 1, 0.75F, 2));
  EXPECT_THAT(std::vector<int>(index->GetIndexIds(), index->GetIndexIds() + 4), ElementsAre(50, 100, 75, 200));
}

TEST_P(FilerIndex, HoldsDoublesBesideFloats) {
  AddHeat(1, {0.1});
  AddHeat(2, {0.2});
  const auto* index = filer().GetStateIndexDP(false);
  ASSERT_NE(index, nullptr);
  EXPECT_THAT(ValuesOf(*index), ElementsAre(0.1, 0.2));
  EXPECT_EQ(index->GetKey(), -1);
  EXPECT_EQ(filer().data().m_pStateIndex, nullptr);
  EXPECT_THAT(ValuesOf(*filer().GetStateIndex(false)), ElementsAre(0.1F, 0.2F));
}

TEST_P(FilerIndex, HoldsIdentifiersBesideDoubles) {
  AddHeat(1, {0.5, 1});
  AddHeat(2, {0.75, 2});
  const auto* index = filer().GetStateIndexDP(false);
  ASSERT_NE(index, nullptr);
  EXPECT_EQ(index->GetNumIndex(), 2);
  ASSERT_EQ(index->GetNumState(), 2);
  EXPECT_THAT(std::vector<int>(index->GetIndexIds(), index->GetIndexIds() + 4), ElementsAre(50, 100, 75, 200));
}

TEST_P(FilerIndex, HoldsARowForEachStateWhateverTheHeadersSayOfTheirNumber) {
  for (const int state : {1, 2}) AddHeat(state, {0.5 * state}).integer("nstate", 7);
  EXPECT_EQ(filer().GetStateIndex(false)->GetNumState(), 2);
  EXPECT_THAT(ValuesOf(*filer().GetStateIndex(false)), ElementsAre(0.5F, 1));
  EXPECT_THAT(ValuesOf(*filer().GetStateIndexDP(false)), ElementsAre(0.5, 1));
}

TEST_P(FilerIndex, IsReadOnce) {
  AddHeat(1, {0.5});
  const auto* index = filer().GetStateIndex(false);
  const auto* index_dp = filer().GetStateIndexDP(false);
  AddHeat(2, {0.75});
  EXPECT_EQ(filer().GetStateIndex(false), index);
  EXPECT_EQ(index->GetNumState(), 1);
  EXPECT_EQ(filer().GetStateIndexDP(false), index_dp);
  EXPECT_EQ(index_dp->GetNumState(), 1);
}

TEST_P(FilerIndex, IsNotReadAgainUnaskedThoughItIsEmpty) {
  ExpectEmpty(filer().GetStateIndex(false));
  ExpectEmpty(filer().GetStateIndexDP(false));
  AddHeat(1, {0.5});
  ExpectEmpty(filer().GetStateIndex(false));
  ExpectEmpty(filer().GetStateIndexDP(false));
  EXPECT_EQ(filer().GetStateIndex(true)->GetNumState(), 1);
}

TEST_P(FilerIndex, IsReadAgainIntoTheSameHolderOnDemand) {
  AddHeat(1, {0.5});
  const auto* index = filer().GetStateIndex(false);
  const auto* index_dp = filer().GetStateIndexDP(false);
  AddHeat(2, {0.75});
  EXPECT_EQ(filer().GetStateIndex(true), index);
  EXPECT_THAT(ValuesOf(*index), ElementsAre(0.5F, 0.75F));
  EXPECT_EQ(index_dp->GetNumState(), 1);
  EXPECT_EQ(filer().GetStateIndexDP(true), index_dp);
  EXPECT_THAT(ValuesOf(*index_dp), ElementsAre(0.5, 0.75));
}

TEST_P(FilerIndex, IsReadAgainOnceAfterAReload) {
  AddHeat(1, {0.5});
  AddMultiState(file_, "/post/multistate/multientityresults/Node/Heat", GetParam(), 1, {1});
  const auto* index = filer().GetStateIndex(false);
  const auto* index_dp = filer().GetStateIndexDP(false);
  const auto* multi = filer().GetMultiStateIndex(false);
  AddHeat(2, {0.75});
  AddMultiState(file_, "/post/multistate/multientityresults/Node/Heat", GetParam(), 2, {1, 2});
  filer().InitForReload();
  EXPECT_EQ(index->GetNumState(), 1);
  EXPECT_EQ(filer().GetStateIndex(false), index);
  EXPECT_EQ(index->GetNumState(), 2);
  EXPECT_EQ(index_dp->GetNumState(), 1);
  EXPECT_EQ(filer().GetStateIndexDP(false), index_dp);
  EXPECT_EQ(index_dp->GetNumState(), 2);
  EXPECT_EQ(filer().GetMultiStateIndex(false), multi);
  EXPECT_EQ(multi->GetNumState(), 2);
  AddHeat(3, {1});
  EXPECT_EQ(filer().GetStateIndex(false)->GetNumState(), 2);
}

TEST_P(FilerIndex, OfAFileWithoutStatesIsEmpty) {
  ExpectEmpty(filer().GetStateIndex(false));
  ExpectEmpty(filer().GetStateIndexDP(false));
  file_.at("/post").drop("singlestate");
  ExpectEmpty(filer().GetStateIndex(true));
}

TEST_P(FilerIndex, OfAFileThatIsNotThereIsEmpty) {
  OpenFiler filer(TempPath("none").c_str());
  ExpectEmpty(filer.GetStateIndex(false));
  ExpectEmpty(filer.GetStateIndexDP(false));
  ExpectEmpty(filer.GetMultiStateIndex(false));
}

TEST_P(FilerIndex, OfBlocksWithoutColumnsIsEmpty) {
  AddUnindexed(file_, Heat(1), GetParam()).integer("nindex", 0);
  ExpectEmpty(filer().GetStateIndex(false));
  EXPECT_EQ(filer().GetStateIndex(false)->GetNumIndex(), 0);
}

TEST_P(FilerIndex, WhoseFirstRowCannotBeReadIsEmpty) {
  AddHeat(1, {0.5});
  AddHeat(2, {0.75});
  file_.at(PartPaths(Heat(1), GetParam()).index).drop("indexval");
  ExpectEmpty(filer().GetStateIndex(false));
}

TEST_P(FilerIndex, EndsBeforeAStateThatCannotBeRead) {
  for (const int state : {1, 2, 3}) AddHeat(state, {0.5 * state});
  file_.at(PartPaths(Heat(3), GetParam()).index).drop("indexval");
  EXPECT_THAT(ValuesOf(*filer().GetStateIndex(false)), ElementsAre(0.5F, 1));
}

TEST_P(FilerIndex, IsEmptyWhereStatesShallBeSkipped) {
  AddHeat(1, {0.5});
  for (const _ORVFilerConfig config : {ORV_CONFIG_SKIP_SINGLESTATE, ORV_CONFIG_SKIP_CONSTANT}) {
    filer().SetConfig(config);
    ExpectEmpty(filer().GetStateIndex(false));
    ExpectEmpty(filer().GetStateIndexDP(false));
    filer().ClearConfig(config);
    EXPECT_EQ(filer().GetStateIndex(true)->GetNumState(), 1);
    filer().SetConfig(config);
    ExpectEmpty(filer().GetStateIndex(true));
    EXPECT_EQ(filer().GetStateIndex(true)->GetNumIndex(), 0);
    filer().ClearConfig(config);
  }
}

/// Counts how often a file is opened, by whatever road.
class OpenCounter {
 public:
  explicit OpenCounter(const std::string& path) : notes_(inotify_init1(IN_NONBLOCK)) {
    EXPECT_GE(inotify_add_watch(notes_, path.c_str(), IN_OPEN), 0);
  }
  ~OpenCounter() { close(notes_); }
  OpenCounter(const OpenCounter&) = delete;
  OpenCounter& operator=(const OpenCounter&) = delete;

  bool WasOpened() {
    inotify_event event = {};
    return read(notes_, &event, sizeof event) > 0;
  }

 private:
  int notes_;
};

TEST_P(FilerIndex, TouchesNoFileWhereStatesShallBeSkipped) {
  AddHeat(1, {0.5});
  OpenFiler& skipping = filer();
  skipping.SetConfig(ORV_CONFIG_SKIP_SINGLESTATE);
  OpenCounter counter(file_.path());
  ExpectEmpty(skipping.GetStateIndex(false));
  ExpectEmpty(skipping.GetStateIndex(true));
  ExpectEmpty(skipping.GetStateIndexDP(false));
  EXPECT_FALSE(counter.WasOpened());
  skipping.ClearConfig(ORV_CONFIG_SKIP_SINGLESTATE);
  EXPECT_EQ(skipping.GetStateIndex(true)->GetNumState(), 1);
  EXPECT_TRUE(counter.WasOpened());
}

TEST_P(FilerIndex, OfTheMultiStateSectionHoldsTheTableOfItsFirstBlock) {
  AddMultiState(file_, "/post/multistate/multientityresults/Node/Heat", GetParam(), 3, {1, 2, 3, 4, 5, 6});
  const auto* index = filer().GetMultiStateIndex(false);
  ASSERT_NE(index, nullptr);
  EXPECT_EQ(index->GetKey(), 1050);
  EXPECT_EQ(index->GetNumState(), 3);
  EXPECT_THAT(ValuesOf(*index), ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_EQ(index->GetIndexIds()[5], 9);
}

TEST_P(FilerIndex, OfTheMultiStateSectionIsReadThoughItShallBeSkipped) {
  AddMultiState(file_, "/post/multistate/multientityresults/Node/Heat", GetParam(), 1, {4});
  filer().SetConfig(ORV_CONFIG_SKIP_MULTISTATE);
  EXPECT_THAT(ValuesOf(*filer().GetMultiStateIndex(false)), ElementsAre(4));
}

TEST_P(FilerIndex, OfTheMultiStateSectionIsReadOnceAndAgainOnDemand) {
  ExpectEmpty(filer().GetMultiStateIndex(false));
  AddMultiState(file_, "/post/multistate/multientityresults/Node/Heat", GetParam(), 1, {4});
  const auto* index = filer().GetMultiStateIndex(false);
  ExpectEmpty(index);
  EXPECT_EQ(filer().GetMultiStateIndex(true), index);
  EXPECT_THAT(ValuesOf(*index), ElementsAre(4));
}

TEST_P(FilerIndex, OfTheMultiStateSectionIsEmptyWhereItsTableDoesNotFitItsHeader) {
  AddMultiState(file_, "/post/multistate/multientityresults/Node/Heat", GetParam(), 2, {4, 5}).integer("nstate", 3);
  ExpectEmpty(filer().GetMultiStateIndex(false));
}

TEST_P(FilerIndex, IsReadByTheStepsOfTheFilerToo) {
  AddHeat(1, {0.5});
  AddMultiState(file_, "/post/multistate/multientityresults/Node/Heat", GetParam(), 1, {4});
  filer().ReadStateIndex(false);
  filer().ReadMultiStateIndex(false);
  ASSERT_NE(filer().data().m_pStateIndex, nullptr);
  EXPECT_EQ(filer().data().m_pStateIndex->GetNumState(), 1);
  ASSERT_NE(filer().data().m_pMultiStateIndex, nullptr);
  EXPECT_EQ(filer().data().m_pMultiStateIndex->GetNumState(), 1);
}

TEST_P(FilerIndex, GoesWithAllElseThatWasRead) {
  AddHeat(1, {0.5});
  (void)filer().GetStateIndex(false);
  (void)filer().GetStateIndexDP(false);
  (void)filer().GetMultiStateIndex(false);
  filer().ClearAll();
  EXPECT_EQ(filer().data().m_pStateIndex, nullptr);
  EXPECT_EQ(filer().data().m_pStateIndexDP, nullptr);
  EXPECT_EQ(filer().data().m_pMultiStateIndex, nullptr);
  EXPECT_EQ(filer().GetStateIndex(false)->GetNumState(), 1);
}

// ---- Damaged files. Without a bound each of these would ask for terabytes, which the sanitizer takes for a fault.

TEST_P(FilerIndex, OfACountOfColumnsThatNothingStandsBehindIsEmpty) {
  for (const std::int64_t columns : {std::int64_t{1} << 42, INT64_MAX, std::int64_t{-5}}) {
    AddHeat(1, {0.5}).integer("nindex", columns);
    ExpectEmpty(filer().GetStateIndex(true));
    ExpectEmpty(filer().GetStateIndexDP(true));
  }
}

TEST_P(FilerIndex, OfCountsOfAMultiStateBlockThatNothingStandsBehindIsEmpty) {
  const char* block = "/post/multistate/multientityresults/Node/Heat";
  for (const std::int64_t count : {std::int64_t{1} << 21, INT64_MAX, std::int64_t{-5}}) {
    AddMultiState(file_, block, GetParam(), 1, {4}).integer("nindex", count).integer("nstate", count);
    ExpectEmpty(filer().GetMultiStateIndex(true));
  }
}

TEST_P(FilerIndex, OfManyLinksToOneStateIsEmptyWhereTheFileCannotHoldTheRows) {
  AddHeat(1, std::vector<double>(3000, 0.5));
  file_.at("/post/singlestate");
  for (int i = 0; i < 6000; ++i) file_.hard_link(("t" + std::to_string(i)).c_str(), StateGroup(1));
  ExpectEmpty(filer().GetStateIndex(false));
}

TEST_P(FilerIndex, OfManyLinksToOneStateHasARowForEach) {
  AddHeat(1, {0.5});
  file_.at("/post/singlestate").hard_link("t", StateGroup(1)).soft_link("u", StateGroup(1));
  EXPECT_THAT(ValuesOf(*filer().GetStateIndex(false)), ElementsAre(0.5F, 0.5F, 0.5F));
}

TEST_P(FilerIndex, OfALargeTableThatIsStoredIsRead) {
  constexpr hsize_t kStates = 4'200'000, kColumns = 4;  // more than 64 MiB
  const std::string block = "/post/multistate/multientityresults/Node/Heat";
  AddMultiState(file_, block, GetParam(), 1, {4}).integer("nindex", kColumns).integer("nstate", kStates);
  file_.at(PartPaths(block, GetParam()).index).drop("indexval").drop("indexident");
  file_.raw([](hid_t here) {
    const hsize_t dims[] = {kStates, kColumns};
    const Id space(H5Screate_simple(2, dims, nullptr), "space");
    const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
    // The room is taken in the file but not written, which costs nothing.
    Check(H5Pset_alloc_time(list.get(), H5D_ALLOC_TIME_EARLY), "alloc time");
    Check(H5Pset_fill_time(list.get(), H5D_FILL_TIME_NEVER), "fill time");
    const Id values(H5Dcreate2(here, "indexval", H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT),
                    "indexval");
    const Id ids(H5Dcreate2(here, "indexident", H5T_NATIVE_INT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT),
                 "ids");
  });
  EXPECT_EQ(filer().GetMultiStateIndex(false)->GetNumState(), 4'200'000);
}

// ---- Names of columns

class FilerIndexNames : public OrvTest {
 protected:
  FilerIndexNames() {
    for (const char* name : {"TIME", "LOAD CASE", "TIME"}) names_.append(name).resize(++count_ * 256);
    auto types = std::make_unique<ORVSimulationType>();
    types->m_nindex = static_cast<std::int64_t>(count_);
    types->m_pEtypindex = static_cast<char*>(std::calloc(names_.size() + 1, 1));
    names_.copy(types->m_pEtypindex, names_.size());
    filer_.data().index_types = std::move(types);  // the filer frees the names
  }

  std::string names_;
  std::size_t count_ = 0;
  OpenFiler filer_{"/not/there"};
  int column_ = 77;
};

TEST_F(FilerIndexNames, AreFoundWithoutRegardToCase) {
  EXPECT_TRUE(filer_.IsIndexExist("Load Case", column_));
  EXPECT_EQ(column_, 1);
}

TEST_F(FilerIndexNames, AreTheFirstOfTheirKind) {
  EXPECT_TRUE(filer_.IsIndexExist("time", column_));
  EXPECT_EQ(column_, 0);
}

TEST_F(FilerIndexNames, MustBeWhole) {
  EXPECT_FALSE(filer_.IsIndexExist("LOAD", column_));
  EXPECT_EQ(column_, -1);
}

TEST_F(FilerIndexNames, MustBeGiven) {
  EXPECT_FALSE(filer_.IsIndexExist(nullptr, column_));
  EXPECT_EQ(column_, -1);
}

TEST_F(FilerIndexNames, NeedIndexTypes) {
  ORVFiler filer("/not/there");
  EXPECT_FALSE(filer.IsIndexExist("TIME", column_));
  EXPECT_EQ(column_, -1);
}

TEST_F(FilerIndexNames, OfAWholeSlotEndThere) {
  std::fill_n(filer_.data().index_types->m_pEtypindex, 256, 'A');
  EXPECT_TRUE(filer_.IsIndexExist(std::string(256, 'a').c_str(), column_));
  EXPECT_EQ(column_, 0);
}

}  // namespace
}  // namespace orv_test
