// Lookups by load case and by series.

#include <algorithm>
#include <cstring>

#include "h5/entry.h"
#include "result/block_file.h"
#include "result/result_lookup.h"
#include "result/variable_with_handles.h"

namespace {

using namespace orv_test;
using namespace orvio;

class ResultLoadCase : public OrvTest, public ::testing::WithParamInterface<Layout> {
 protected:
  /// A multi-state block with index rows of two columns.
  ORVResult Multi(const char* etyp, const std::vector<float>& rows) {
    const hsize_t states = rows.size() / 2;
    file_.file().at(file_.Part(kMultistate, 1050, etyp, "SPEED", "header")).integer("block", 1050);
    file_.file()
        .at(file_.Part(kMultistate, 1050, etyp, "SPEED", "index"))
        .dataset<float>("indexval", {states, 2}, rows);
    ORVResult block = ListedBlock(1050, etyp, "SPEED", 1, 1, nullptr);
    block.m_nstate = static_cast<std::int64_t>(states);
    block.m_nindex = 2;
    return block;
  }

  ResultList Find(int column, int load_case, const ResultList& in) {
    const h5::QuietHdf5 quiet;  // as every exported operation is
    ResultList found;
    FindResultsOfLoadCase(file_.path().c_str(), in, column, load_case, found);
    return found;
  }

  BlockFile file_{GetParam()};
};
INSTANTIATE_TEST_SUITE_P(Layouts, ResultLoadCase, ::testing::Values(Layout::kSplit, Layout::kSingle), NameOfLayout);

TEST_P(ResultLoadCase, IsFoundInAnyStateOfItsColumn) {
  ORVResult first = Multi("A", {1, 10, 2, 20, 3, 30});
  ORVResult second = Multi("B", {4, 20});
  EXPECT_EQ(Find(1, 20, {&first, &second}), (ResultList{&first, &second}));
  EXPECT_EQ(Find(1, 30, {&first, &second}), (ResultList{&first}));
  EXPECT_EQ(Find(0, 4, {&first, &second}), (ResultList{&second}));
  EXPECT_EQ(Find(0, 20, {&first, &second}), ResultList());
}

TEST_P(ResultLoadCase, DoesNotLingerFromALongerBlock) {
  ORVResult first = Multi("A", {1, 10, 2, 20, 3, 30});
  ORVResult second = Multi("B", {4, 40});
  EXPECT_EQ(Find(1, 30, {&first, &second, &first}), (ResultList{&first, &first}));
}

TEST_P(ResultLoadCase, IsCutToAnInteger) {
  ORVResult block = Multi("A", {0, 3.9F, 0, -2.5F, 0, 1e20F});
  EXPECT_EQ(Find(1, 3, {&block}), (ResultList{&block}));
  EXPECT_EQ(Find(1, -2, {&block}), (ResultList{&block}));
  EXPECT_EQ(Find(1, 4, {&block}), ResultList());
  EXPECT_EQ(Find(1, INT32_MAX, {&block}), ResultList());
}

TEST_P(ResultLoadCase, IsReadFromTheOnlyRowOfABlockOfOneState) {
  file_.Add(kState1, StoredBlock<float>{.nent = 1}).Add(kConstant, StoredBlock<float>{.nent = 1});
  file_.file().at(file_.Part(kState1, 1000, "Node", "SPEED", "index")).dataset<float>("indexval", {2}, {5, 6});
  file_.file().at(file_.Part(kConstant, 1000, "Node", "SPEED", "index")).dataset<float>("indexval", {2}, {7, 8});
  ORVResult state = ListedBlock(1000, "Node", "SPEED", 1, 1, nullptr);
  state.m_nindex = 2;
  state.m_nstate = 1;
  ORVResult constant = state;
  constant.SetConstantBlk(true);
  EXPECT_EQ(Find(0, 5, {&state, &constant}), (ResultList{&state}));
  EXPECT_EQ(Find(1, 6, {&state, &constant}), (ResultList{&state}));
  EXPECT_EQ(Find(1, 8, {&state, &constant}), (ResultList{&constant}));
  EXPECT_EQ(Find(0, 6, {&state}), ResultList());
  EXPECT_EQ(Find(2, 5, {&state}), ResultList());  // a column that is not there
  ORVResult longer = Multi("A", {1, 10, 2, 20, 3, 30, 4, 40});
  state.m_nstate = 4;  // more than its row holds
  EXPECT_EQ(Find(1, 30, {&longer, &state}), (ResultList{&longer}));
  state.m_nstate = 0;
  EXPECT_EQ(Find(0, 5, {&state}), ResultList());
}

TEST_P(ResultLoadCase, PassesOverBlocksThatCannotBeRead) {
  ORVResult gone = ListedBlock(1050, "Gone", "SPEED", 1, 1, nullptr);
  gone.m_nstate = 1;
  ORVResult liar = Multi("A", {0, 5});
  liar.m_nstate = 2;
  ORVResult hoarder = Multi("B", {0, 5});
  hoarder.m_nstate = std::int64_t{1} << 40;  // four terabytes
  ORVResult good = Multi("C", {0, 5});
  EXPECT_EQ(Find(1, 5, {&gone, nullptr, &liar, &hoarder, &good}), (ResultList{&good}));
  EXPECT_EQ(Find(7, 5, {&good}), ResultList());
}

TEST_P(ResultLoadCase, LeavesTheIndexOfABlockAsItWasWhereItCannotBeRead) {
  ORVResult gone = ListedBlock(1050, "Gone", "SPEED", 1, 1, nullptr);
  gone.m_nstate = 1;
  ORVResult liar = Multi("A", {0, 5});
  liar.m_nstate = 2;
  double of_the_host = 3;
  liar.m_indexval = &of_the_host;
  liar.m_indexvalType = ORV_DOUBLE;
  EXPECT_EQ(Find(1, 5, {&gone, &liar}), ResultList());
  EXPECT_EQ(gone.m_indexval, nullptr);
  EXPECT_EQ(liar.m_indexval, &of_the_host);
  EXPECT_EQ(liar.m_indexvalType, ORV_DOUBLE);
  EXPECT_EQ(of_the_host, 3);
}

TEST_P(ResultLoadCase, LeavesTheIndexOfABlockAsItWas) {
  ORVResult block = Multi("A", {0, 5});
  double of_the_host = 3;
  block.m_indexval = &of_the_host;
  block.m_indexvalType = ORV_DOUBLE;
  EXPECT_EQ(Find(1, 5, {&block}), (ResultList{&block}));
  EXPECT_EQ(block.m_indexval, &of_the_host);
  EXPECT_EQ(block.m_indexvalType, ORV_DOUBLE);
  EXPECT_EQ(of_the_host, 3);
}

class ResultSeries : public OrvTest {
 protected:
  static ORVResult OfSeries(const char* series) {
    ORVResult block(1050);
    std::strcpy(block.m_series, series);
    return block;
  }
};

ResultList Unique(const ResultList& list) {
  ResultList found;
  FindUniqueSeries(list, found);
  return found;
}

TEST_F(ResultSeries, IsRepresentedByItsFirstBlock) {
  ORVResult a = OfSeries("TIME"), b = OfSeries("time"), c = OfSeries("LOADCASE_1"), d = OfSeries("Loadcase_1");
  EXPECT_EQ(Unique({&a, &b, &c, &d}), (ResultList{&a, &c}));
  EXPECT_EQ(Unique({}), ResultList());
}

TEST_F(ResultSeries, MayBeEmptyInTheFirstBlockOnly) {
  ORVResult a = OfSeries(""), b = OfSeries(""), c = OfSeries("TIME");
  EXPECT_EQ(Unique({&a, &b, &c}), (ResultList{&a, &c}));
  EXPECT_EQ(Unique({&c, &a, &b}), (ResultList{&c}));
}

}  // namespace
