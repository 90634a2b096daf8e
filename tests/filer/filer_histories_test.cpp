// Histories as a host asks a filer for them, the index table of one block, and both in a file that grows. Which blocks
// are taken and what is read of them is in tests/result/multi_state_values_test.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "orvio/orv_filer.h"
#include "support/forged_model.h"
#include "support/orv_test.h"

namespace orv_test {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

/// Answers of GetMultistateResultValues.
struct Answer {
  int status = -1;
  std::vector<int> ids = {77};
  std::vector<std::uint64_t> shape = {77};
  std::vector<float> values = {77};
  std::uint64_t states = 77;
  std::vector<int> index_ids = {77};
  std::vector<float> index_values = {77};
};

Answer Ask(ORVFiler& filer, const char* type = "NODE", const char* variable = "Speed", int zone = -1) {
  Answer answer;
  answer.status = filer.GetMultistateResultValues(type, variable, answer.ids, answer.shape, answer.values,
                                                  answer.states, answer.index_ids, answer.index_values, zone);
  return answer;
}

void ExpectNothing(const Answer& answer) {
  EXPECT_EQ(answer.status, 1);
  EXPECT_THAT(answer.ids, IsEmpty());
  EXPECT_THAT(answer.values, IsEmpty());
  EXPECT_EQ(answer.states, 0U);
  EXPECT_THAT(answer.index_ids, IsEmpty());
  EXPECT_THAT(answer.index_values, IsEmpty());
}

std::string LayoutName(const ::testing::TestParamInfo<ForgedModel::Layout>& layout) {
  return layout.param == ForgedModel::kSplit ? "Split" : "Single";
}

class FilerHistories : public OrvTest, public ::testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  FilerHistories() { model_.variable({.name = "Speed", .key = "Speed"}); }

  static ForgedValues Block(std::vector<float> index = {.5F, 7, 1, 8}) {
    return {.kind = 1050,
            .variable = "Speed",
            .nent = 2,
            .nstate = 2,
            .values = {101, 102, 201, 202},
            .ids = {5, 9},
            .index = std::move(index)};
  }

  std::string Part(const char* part) const {
    return model_.Part("/post/multistate/multientityresults/NODE/Speed", part);
  }

  ORVFiler& filer() {
    const std::string path = model_.path();  // closed, with what was added
    if (!filer_) {
      filer_ = std::make_unique<ORVFiler>(path.c_str());
      int next_id = 1;
      EXPECT_EQ(filer_->InitReader(next_id), 0);
    }
    return *filer_;
  }
  ORVResult* First() { return filer().GetResultList(0).at(0); }

  ForgedModel model_{GetParam()};
  std::unique_ptr<ORVFiler> filer_;
};

INSTANTIATE_TEST_SUITE_P(Layouts, FilerHistories, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle),
                         LayoutName);

TEST_P(FilerHistories, AreDeliveredInPlaceOfWhatTheOutputsHeld) {
  model_.in_multistate(Block());
  const Answer answer = Ask(filer());
  EXPECT_EQ(answer.status, 0);
  EXPECT_THAT(answer.values, ElementsAre(101, 102, 201, 202));
  EXPECT_THAT(answer.shape, ElementsAre(2, 2, 1));
  EXPECT_THAT(answer.ids, ElementsAre(5, 9));
  EXPECT_EQ(answer.states, 2U);
  EXPECT_THAT(answer.index_values, ElementsAre(.5F, 7, 1, 8));
  EXPECT_THAT(answer.index_ids, ElementsAre(7, 7, 7, 7));
}

TEST_P(FilerHistories, WithoutAnAnswerLeaveTheOutputsEmpty) {
  model_.in_multistate(Block());
  for (const Answer& answer : {Ask(filer(), "", "Speed"), Ask(filer(), "NODE", ""), Ask(filer(), "NODE", "Heat"),
                               Ask(filer(), "NODE", "Speed", 3)}) {
    ExpectNothing(answer);
    EXPECT_THAT(answer.shape, IsEmpty());
  }
}

TEST_P(FilerHistories, OfAFileWithoutIndexAreNothing) {
  model_.in_multistate(Block({}));
  ExpectNothing(Ask(filer()));
}

TEST_P(FilerHistories, OfAFilerThatWasNotStartedAreNothing) {
  model_.in_multistate(Block());
  ORVFiler filer(model_.path().c_str());
  ExpectNothing(Ask(filer));
  ORVFiler nowhere(nullptr);
  ExpectNothing(Ask(nowhere));
}

TEST_P(FilerHistories, AreInTheMultiStateSectionAlone) {
  model_.in_state(1, {.variable = "Speed", .nent = 2, .values = {1, 2}, .ids = {5, 9}, .index = {.5F}});
  ExpectNothing(Ask(filer()));
}

// ---- The index table of one block

/// The table that ReadMultistateIndexValues makes.
class IndexTable {
 public:
  IndexTable(ORVFiler& filer, ORVResult* block)
      : columns(filer.ReadMultistateIndexValues(block, states, ids_, vals_)) {}
  ~IndexTable() {
    std::free(ids_);
    std::free(vals_);
  }
  IndexTable(const IndexTable&) = delete;
  IndexTable& operator=(const IndexTable&) = delete;

  std::vector<int> ids() const { return {ids_, ids_ + std::ptrdiff_t{states} * columns}; }
  std::vector<float> values() const { return {vals_, vals_ + std::ptrdiff_t{states} * columns}; }
  bool empty() const { return columns == 0 && states == 0 && !ids_ && !vals_; }

  int states = 77;

 private:
  int stack_ = 0;
  float stack_value_ = 0;
  int* ids_ = &stack_;  // to be cleared first: free would end the test
  float* vals_ = &stack_value_;

 public:
  int columns;
};

TEST_P(FilerHistories, HaveAnIndexTableForEachBlock) {
  model_.in_multistate(Block());
  const IndexTable table(filer(), First());
  EXPECT_EQ(table.columns, 2);
  EXPECT_EQ(table.states, 2);
  EXPECT_THAT(table.values(), ElementsAre(.5F, 7, 1, 8));
  EXPECT_THAT(table.ids(), ElementsAre(7, 7, 7, 7));
}

TEST_P(FilerHistories, HaveNoIndexTableWithoutABlockOfManyStates) {
  model_.in_multistate(Block()).in_state(1, {.variable = "Speed", .nent = 1, .index = {.5F}});
  EXPECT_TRUE(IndexTable(filer(), nullptr).empty());
  EXPECT_TRUE(IndexTable(filer(), filer().GetResultList(1).at(0)).empty());
  ORVResult without_path(1050);
  EXPECT_TRUE(IndexTable(filer(), &without_path).empty());
  ORVFiler nowhere(nullptr);
  EXPECT_TRUE(IndexTable(nowhere, First()).empty());
}

TEST_P(FilerHistories, HaveNoIndexTableThatIsNotWholeInTheFile) {
  model_.in_multistate(Block());
  ORVResult* block = First();
  const auto expect_none_after = [&](const char* part, const std::function<void(ForgedFile&)>& damage) {
    damage(model_.file().at(Part(part)));
    EXPECT_TRUE(IndexTable(filer(), block).empty());
    model_.in_multistate(Block());
    EXPECT_EQ(IndexTable(filer(), block).columns, 2);
  };
  expect_none_after("header", [](ForgedFile& at) { at.drop("nindex"); });
  expect_none_after("header", [](ForgedFile& at) { at.drop("nstate"); });
  expect_none_after("header", [](ForgedFile& at) { at.integer("nindex", 0); });
  expect_none_after("header", [](ForgedFile& at) { at.integer("nstate", 0); });
  expect_none_after("header", [](ForgedFile& at) { at.integer("nstate", 3); });
  expect_none_after("index", [](ForgedFile& at) { at.drop("indexval"); });
  expect_none_after("index", [](ForgedFile& at) { at.drop("indexident"); });
  expect_none_after("index", [](ForgedFile& at) { at.retype("indexval"); });
}

TEST_P(FilerHistories, HaveNoIndexTableOfCountsThatNothingStandsBehind) {
  model_.in_multistate(Block());
  ORVResult* block = First();
  for (const std::int64_t count : {std::int64_t{1} << 20, std::int64_t{1} << 33, INT64_MAX, std::int64_t{-5}}) {
    model_.file().at(Part("header")).integer("nindex", count).integer("nstate", count);
    EXPECT_TRUE(IndexTable(filer(), block).empty()) << count;
  }
}

/// A block of many states whose rows are spread over the states of the file.
TEST_P(FilerHistories, HaveAnIndexTableOfABlockInStates) {
  model_.in_multistate(Block());
  for (const int state : {1, 2, 3}) {
    const std::string block = ForgedModel::StateGroup(state) + "/multientityresults/NODE/Speed";
    if (state == 2) {
      model_.file().group(block);  // a state without it is passed over
      continue;
    }
    model_.file().at(model_.Part(block, "data"));
    model_.file().at(model_.Part(block, "header")).integer("block", 1050).integer("nindex", 2).integer("nstate", 2);
    const float time = .5F * static_cast<float>(state);
    model_.file().at(model_.Part(block, "index")).dataset<float>("indexval", {2}, {time, 4});
    model_.file().dataset<std::int32_t>("indexident", {2}, {state, 6});
  }
  ORVResult block(1050);
  const std::string path = ForgedModel::StateGroup(1) + "/multientityresults/NODE/Speed";
  block.SetBlkPath(GetParam() == ForgedModel::kSingle ? path + "/orvblock" : path);
  const IndexTable table(filer(), &block);
  EXPECT_EQ(table.columns, 2);
  EXPECT_EQ(table.states, 2);
  EXPECT_THAT(table.values(), ElementsAre(.5F, 4, 1.5F, 4));
  EXPECT_THAT(table.ids(), ElementsAre(1, 6, 3, 6));
}

TEST_P(FilerHistories, HaveAnIndexTableWithZerosForStatesWithoutTheBlock) {
  model_.in_multistate(Block());
  const std::string path = ForgedModel::StateGroup(1) + "/multientityresults/NODE/Speed";
  model_.file().at(model_.Part(path, "data"));
  model_.file().at(model_.Part(path, "header")).integer("block", 1050).integer("nindex", 1).integer("nstate", 3);
  model_.file().at(model_.Part(path, "index")).dataset<float>("indexval", {1}, {.5F});
  model_.file().dataset<std::int32_t>("indexident", {1}, {4});
  ORVResult block(1050);
  block.SetBlkPath(GetParam() == ForgedModel::kSingle ? path + "/orvblock" : path);
  const IndexTable table(filer(), &block);
  EXPECT_EQ(table.states, 3);
  EXPECT_THAT(table.values(), ElementsAre(.5F, 0, 0));
}

// ---- A file that grows, by HDF5 alone. The parts of a block grow one after the other.

void ExpectOneState(const Answer& answer) {
  EXPECT_EQ(answer.status, 0);
  EXPECT_THAT(answer.shape, ElementsAre(1, 2, 1));
  EXPECT_THAT(answer.values, ElementsAre(101, 102));
  EXPECT_EQ(answer.states, 1U);
  EXPECT_THAT(answer.index_values, ElementsAre(.5F));
  EXPECT_THAT(answer.index_ids, ElementsAre(10));
}

void ExpectTwoStates(const Answer& answer) {
  EXPECT_EQ(answer.status, 0);
  EXPECT_THAT(answer.shape, ElementsAre(2, 2, 1));
  EXPECT_THAT(answer.values, ElementsAre(101, 102, 201, 202));
  EXPECT_EQ(answer.states, 2U);
  EXPECT_THAT(answer.index_values, ElementsAre(.5F, 1));
  EXPECT_THAT(answer.index_ids, ElementsAre(10, 20));
}

/// Values 100 x state + node, times half the state.
class GrowingBlock : public FilerHistories {
 public:
  GrowingBlock() {
    ForgedValues block = Block();
    block.values.clear();
    block.index.clear();
    model_.in_multistate(block);
    model_.file().at(Part("header")).integer("nindex", 1).integer("nstate", 1);
    Make("data", "res", H5T_NATIVE_FLOAT, {1, 2, 1}, {H5S_UNLIMITED, 2, 1});
    Make("index", "indexval", H5T_NATIVE_FLOAT, {1, 1}, {H5S_UNLIMITED, 1});
    Make("index", "indexident", H5T_NATIVE_INT, {1, 1}, {H5S_UNLIMITED, 1});
    WriteValues(1);
    WriteTimes(1);
    WriteIdents(1);
  }

  void Make(const char* part, const char* name, hid_t type, const std::vector<hsize_t>& dims,
            const std::vector<hsize_t>& limits) {
    model_.file().at(Part(part)).raw([&](hid_t here) {
      const int rank = static_cast<int>(dims.size());
      const Id space(H5Screate_simple(rank, dims.data(), limits.data()), "space");
      const Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
      Check(H5Pset_chunk(list.get(), rank, dims.data()), "chunk");
      const Id made(H5Dcreate2(here, name, type, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), name);
    });
  }

  /// Makes room for the states up to this one and writes it.
  void Write(const char* part, const char* name, hid_t type, const std::vector<hsize_t>& row, const void* values) {
    model_.file().at(Part(part)).raw([&](hid_t here) {
      const int rank = static_cast<int>(row.size());
      std::vector<hsize_t> dims = row, start(row.size()), count = row;
      start[0] = row[0] - 1;
      count[0] = 1;
      const Id data(H5Dopen2(here, name, H5P_DEFAULT), name);
      Check(H5Dset_extent(data.get(), dims.data()), "extent");
      const Id in_file(H5Dget_space(data.get()), "space");
      const Id in_memory(H5Screate_simple(rank, count.data(), nullptr), "memory");
      Check(H5Sselect_hyperslab(in_file.get(), H5S_SELECT_SET, start.data(), nullptr, count.data(), nullptr), "select");
      Check(H5Dwrite(data.get(), type, in_memory.get(), in_file.get(), H5P_DEFAULT, values), "write");
    });
  }

  void WriteValues(int state) {
    const auto first = static_cast<float>(100 * state);
    const float values[] = {first + 1, first + 2};
    Write("data", "res", H5T_NATIVE_FLOAT, {static_cast<hsize_t>(state), 2, 1}, values);
  }
  void WriteTimes(int state) {
    const float time = .5F * static_cast<float>(state);
    Write("index", "indexval", H5T_NATIVE_FLOAT, {static_cast<hsize_t>(state), 1}, &time);
  }
  void WriteIdents(int state) {
    const int ident = 10 * state;
    Write("index", "indexident", H5T_NATIVE_INT, {static_cast<hsize_t>(state), 1}, &ident);
  }
  void WriteCount(int state) { model_.file().at(Part("header")).integer("nstate", state); }

  using Step = void (GrowingBlock::*)(int);
  /// At every step there are the old states, or the new ones, or nothing.
  void ExpectStepByStep(const std::vector<Step>& steps);
};

void GrowingBlock::ExpectStepByStep(const std::vector<Step>& steps) {
  ExpectOneState(Ask(filer()));
  for (const Step& step : steps) {
    (this->*step)(2);
    filer().InitForReload();
    const Answer answer = Ask(filer());
    const auto* index = filer().GetMultiStateIndex(false);
    if (&step == &steps.back()) {
      ExpectTwoStates(answer);
      EXPECT_EQ(index->GetNumState(), 2);
    } else {
      ExpectNothing(answer);
    }
    if (index->GetNumState() < 2) continue;  // its own datasets may have grown before the values
    EXPECT_EQ(index->GetIndexVals()[1], 1);
    EXPECT_EQ(index->GetIndexIds()[1], 20);
  }
}

INSTANTIATE_TEST_SUITE_P(Layouts, GrowingBlock, ::testing::Values(ForgedModel::kSplit, ForgedModel::kSingle),
                         LayoutName);

TEST_P(GrowingBlock, IsReadWithItsNewStatesAfterAReload) {
  ExpectOneState(Ask(filer()));
  const auto* index = filer().GetMultiStateIndex(false);
  EXPECT_EQ(index->GetNumState(), 1);
  WriteValues(2);
  WriteTimes(2);
  WriteIdents(2);
  WriteCount(2);
  filer().InitForReload();
  EXPECT_EQ(First()->m_nstate, 2);
  ExpectTwoStates(Ask(filer()));
  EXPECT_EQ(filer().GetMultiStateIndex(false), index);
  ASSERT_EQ(index->GetNumState(), 2);
  EXPECT_EQ(index->GetIndexVals()[1], 1);
  EXPECT_EQ(index->GetIndexIds()[1], 20);
}

TEST_P(GrowingBlock, IsNotReadHalfBeforeAReload) {
  ExpectOneState(Ask(filer()));
  WriteValues(2);
  WriteTimes(2);
  WriteIdents(2);
  WriteCount(2);
  ExpectNothing(Ask(filer()));
  filer().InitForReload();
  ExpectTwoStates(Ask(filer()));
}

TEST_P(GrowingBlock, IsNeverReadHalfWhereItsCountGrowsLast) {
  ExpectStepByStep(
      {&GrowingBlock::WriteValues, &GrowingBlock::WriteTimes, &GrowingBlock::WriteIdents, &GrowingBlock::WriteCount});
}

TEST_P(GrowingBlock, IsNeverReadHalfWhereItsCountGrowsFirst) {
  ExpectStepByStep(
      {&GrowingBlock::WriteCount, &GrowingBlock::WriteIdents, &GrowingBlock::WriteTimes, &GrowingBlock::WriteValues});
}

TEST_P(GrowingBlock, KeepsItsStatesWhereTheirNumberCannotBeReadAnew) {
  (void)filer();
  model_.file().at(Part("header")).drop("nstate");
  filer().InitForReload();
  EXPECT_EQ(First()->m_nstate, 1);
}

TEST_P(GrowingBlock, OfADamagedNumberOfStatesIsNothing) {
  for (const std::int64_t states : {std::int64_t{-1}, std::int64_t{1} << 40, INT64_MAX}) {
    (void)filer();
    model_.file().at(Part("header")).integer("nstate", states);
    filer().InitForReload();
    EXPECT_EQ(First()->m_nstate, states);
    ExpectNothing(Ask(filer()));
    EXPECT_EQ(filer().GetMultiStateIndex(false)->GetNumState(), 0);
  }
}

/// A variable that is one of several of a block is read by a selection, which takes the states that it knows of.
class GrowingGroup : public OrvTest {};

TEST_F(GrowingGroup, IsNotReadHalf) {
  ForgedModel model;
  model.variable({.name = "Mass", .key = "M"}).variable({.name = "Speed", .key = "V"});
  model.group("ALL", 2, {{"M", 1, 0}, {"V", 1, 1}});
  ForgedValues block{.kind = 1050, .variable = "ALL", .nent = 1, .ncoo = 2, .nstate = 1, .values = {1, 2}, .ids = {5}};
  block.index = {.5F};
  model.in_multistate(block);
  ORVFiler filer(model.path().c_str());
  int next_id = 1;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  EXPECT_THAT(Ask(filer).values, ElementsAre(2));
  block.nstate = 2;
  block.values = {1, 2, 3, 4};
  block.index = {.5F, 1};
  model.in_multistate(block);
  (void)model.path();
  ExpectNothing(Ask(filer));  // values of one state, an index of two
  filer.InitForReload();
  const Answer answer = Ask(filer);
  EXPECT_THAT(answer.values, ElementsAre(2, 4));
  EXPECT_EQ(answer.states, 2U);
}

}  // namespace
}  // namespace orv_test
