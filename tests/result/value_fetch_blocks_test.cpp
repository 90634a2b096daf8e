// The value fetch over a list of blocks: states, counts, ids, types, and blocks that give nothing. What is selected of a
// block is in value_fetch_selection_test, arrays and bounds are in value_fetch_arrays_test.

#include "orvio/orv_buffer.h"
#include "result/value_fetch_test.h"

namespace {

using namespace orv_test;

class ValueFetchBlocks : public ValueFetchTest {};
INSTANTIATE_TEST_SUITE_P(Layouts, ValueFetchBlocks, ::testing::Values(Layout::kSplit, Layout::kSingle), NameOfLayout);

TEST_P(ValueFetchBlocks, PacksTheBlocksOneBehindTheOther) {
  file_.Add(kState1, Nodes(2)).Add(kState1, Nodes(3, "Mass", 5));
  ORVResult nodes = Listed();
  ORVResult masses = Listed("Mass");
  EXPECT_EQ(Fetch({&nodes, &masses}, {.ext_id = kSecond}), 0);
  EXPECT_EQ(values_.values(), (Floats{12, 22, 52, 62, 72}));
  EXPECT_EQ(values_.ids(), (Ints{100, 200, 500, 600, 700}));
  EXPECT_TRUE(messages_.all().empty());
}

TEST_P(ValueFetchBlocks, TakesTheEntityCountOfTheAskedState) {
  file_.Add(kState1, Nodes(1)).Add(kState2, Nodes(3, "Node", 7));
  ORVResult nodes = Listed("Node", 1);
  values_.m_state = 2;
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.values(), (Floats{71, 81, 91}));
  EXPECT_EQ(values_.ids(), (Ints{700, 800, 900}));
  EXPECT_EQ(nodes.m_nent, 3);
}

TEST_P(ValueFetchBlocks, ReadsConstantBlocksOfTheListAmongTheConstants) {
  file_.Add(kConstant, Nodes(1, "Fixed", 4)).Add(kState1, Nodes(1, "Fixed", 9)).Add(kState2, Nodes(1));
  ORVResult fixed = Listed("Fixed");
  fixed.SetConstantBlk(true);
  ORVResult nodes = Listed();
  values_.m_state = 2;
  EXPECT_EQ(Fetch({&fixed, &nodes}, {.ext_id = kThird}), 0);
  EXPECT_EQ(values_.values(), (Floats{43, 13}));
}

TEST_P(ValueFetchBlocks, TakesTheEntityCountOfAConstantBlockFromTheConstants) {
  file_.Add(kConstant, Nodes(3, "Fixed", 4)).Add(kState1, Nodes(2, "Fixed", 8));
  ORVResult fixed = Listed("Fixed", 1);
  fixed.SetConstantBlk(true);
  EXPECT_EQ(Fetch({&fixed}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.values(), (Floats{41, 51, 61}));
  EXPECT_EQ(values_.ids(), (Ints{400, 500, 600}));
  EXPECT_EQ(fixed.m_nent, 3);
}

TEST_P(ValueFetchBlocks, LeavesOutABlockWithoutEntitiesInTheAskedState) {
  file_.Add(kState1, Nodes(2)).Add(kState2, StoredBlock<float>{.nent = 0}).Add(kState2, Nodes(1, "Mass", 6));
  ORVResult nodes = Listed("Node", 2);
  ORVResult masses = Listed("Mass");
  values_.m_state = 2;
  EXPECT_EQ(Fetch({&nodes, &masses}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.values(), (Floats{61}));
  EXPECT_EQ(values_.ids(), (Ints{600}));
  EXPECT_EQ(nodes.m_nent, 0);
  EXPECT_EQ(nodes.m_fetchSkip, 1);
  values_.DeleteAllocation(true);
  EXPECT_EQ(Fetch({&nodes, &masses}, {.variable = "SPEED"}), 0);
  EXPECT_EQ(values_.values(), (Floats{61, 62, 63}));
  EXPECT_EQ(values_.ids(), (Ints{600}));
  values_.DeleteAllocation(true);
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 1);
  EXPECT_EQ(Fetch({&nodes}, {.variable = "SPEED"}), 1);
  ExpectNoAnswer();
  EXPECT_TRUE(messages_.all().empty());
}

TEST_P(ValueFetchBlocks, BelowTheFirstStateReadsAllBlocksAmongTheConstants) {
  file_.Add(kConstant, Nodes(2, "Node", 4)).Add(kState1, Nodes(1));
  ORVResult nodes = Listed();
  for (const int state : {0, -1}) {
    values_.m_state = state;
    EXPECT_EQ(Fetch({&nodes}, {.ext_id = kThird}), 0);
    EXPECT_EQ(values_.values(), (Floats{43, 53})) << state;
    values_.DeleteAllocation(true);
  }
}

TEST_P(ValueFetchBlocks, LeavesIdsAloneUnlessTheyAreWanted) {
  file_.Add(kState1, Nodes(2));
  ORVResult nodes = Listed();
  int of_the_host = 5;
  nodes.m_entid = &of_the_host;
  values_.m_wantIds = 0;
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 21}));
  EXPECT_EQ(values_.m_ids, nullptr);
  EXPECT_EQ(values_.m_idCount, 2);
  EXPECT_EQ(nodes.m_entid, &of_the_host);
  EXPECT_EQ(of_the_host, 5);
}

TEST_P(ValueFetchBlocks, FillsZerosForIdsThatAreNotStored) {
  StoredBlock<float> bare = Nodes(2);
  bare.ids.clear();
  file_.Add(kState1, bare).Add(kState1, Nodes(1, "Mass", 5));
  ORVResult nodes = Listed();
  ORVResult masses = Listed("Mass");
  values_.m_ids = CCopy<int>({-1, -1, -1});
  values_.m_values = CCopy<float>({-1, -1, -1});
  values_.m_capacity = 3;
  EXPECT_EQ(Fetch({&nodes, &masses}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 21, 51}));
  EXPECT_EQ(values_.ids(), (Ints{0, 0, 500}));
}

TEST_P(ValueFetchBlocks, LeavesOutABlockThatTheStateLacks) {
  file_.Add(kState2, Nodes(1)).Add(kState2, Nodes(1, "Mass", 5)).Add(kState1, Nodes(2, "Gone", 8));
  ORVResult nodes = Listed();
  ORVResult gone = Listed("Gone", 2);
  ORVResult masses = Listed("Mass");
  values_.m_state = 2;
  EXPECT_EQ(Fetch({&nodes, &gone, &masses}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 51}));
  EXPECT_EQ(values_.ids(), (Ints{100, 500}));
  EXPECT_EQ(gone.m_nent, 2);
  EXPECT_EQ(nodes.m_fetchSkip, 0);
  EXPECT_EQ(gone.m_fetchSkip, 1);
}

TEST_P(ValueFetchBlocks, LeavesOutABlockWhoseValuesHaveAnotherRank) {
  StoredBlock<float> flat = Nodes(2, "Flat", 8);
  flat.shape = {6};
  file_.Add(kState1, flat).Add(kState1, Nodes(1));
  ORVResult first = Listed("Flat");
  ORVResult nodes = Listed();
  EXPECT_EQ(Fetch({&first, &nodes}, {.ext_id = kSecond}), 0);
  EXPECT_EQ(values_.values(), (Floats{12}));
  EXPECT_EQ(values_.ids(), (Ints{100}));
}

TEST_P(ValueFetchBlocks, LeavesOutABlockWhoseIdsHaveAnotherCount) {
  StoredBlock<float> odd = Nodes(2, "Odd", 8);
  odd.ids = {1, 2, 3};
  file_.Add(kState1, odd).Add(kState1, Nodes(1));
  ORVResult first = Listed("Odd");
  ORVResult nodes = Listed();
  EXPECT_EQ(Fetch({&first, &nodes}, {.ext_id = kSecond}), 0);
  EXPECT_EQ(values_.values(), (Floats{12}));
  EXPECT_EQ(values_.ids(), (Ints{100}));
}

TEST_P(ValueFetchBlocks, LeavesOutBlocksThatDoNotHoldTheQuantity) {
  file_.Add(kState1, Nodes(1)).Add(kState1, Nodes(1, "Mass", 5));
  ORVResult nodes = Listed();
  ORVResult masses = Listed("Mass");
  VariableWithHandles other("OTHER", 3);
  nodes.m_variable = other.get();
  nodes.m_fetchSkip = 0;
  EXPECT_EQ(Fetch({nullptr, &nodes, &masses}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.values(), (Floats{51}));
  EXPECT_EQ(values_.ids(), (Ints{500}));
  EXPECT_EQ(nodes.m_fetchSkip, 1);
}

TEST_P(ValueFetchBlocks, HasNoAnswerAndNoMessageWhereNoBlockHoldsTheQuantity) {
  file_.Add(kState1, Nodes(1));
  ORVResult nodes = Listed();
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = 77}), 1);
  ExpectNoAnswer();
  EXPECT_EQ(Fetch({}, {.ext_id = kFirst}), 1);
  EXPECT_EQ(Fetch({nullptr}, {.ext_id = kFirst}), 1);
  ExpectNoAnswer();
  EXPECT_TRUE(messages_.all().empty());
}

TEST_P(ValueFetchBlocks, HasNoAnswerWithoutAQuantity) {
  file_.Add(kState1, Nodes(1));
  ORVResult nodes = Listed();
  EXPECT_EQ(Fetch({&nodes}, {}), 1);
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst, .result_type = 7777}), 1);  // the latter goes first
  ExpectNoAnswer();
}

TEST_P(ValueFetchBlocks, HasNoAnswerWithoutAFile) {
  ORVResult nodes = Listed();
  EXPECT_EQ(orvio::FetchValues(nullptr, values_, {&nodes}, {.ext_id = kFirst}), 1);
  EXPECT_EQ(orvio::FetchValues("/not/there", values_, {&nodes}, {.ext_id = kFirst}), 1);
  ExpectNoAnswer();
}

TEST_P(ValueFetchBlocks, LeavesAFormerAnswerAloneWhereThereIsNone) {
  ORVResult nodes = Listed();
  values_.m_values = CCopy<float>({3});
  values_.m_valueCount = 1;
  values_.m_ids = CCopy<int>({4});
  values_.m_idCount = 1;
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 1);  // the file has no such block
  EXPECT_EQ(values_.values(), (Floats{3}));
  EXPECT_EQ(values_.ids(), (Ints{4}));
  EXPECT_EQ(nodes.m_res, nullptr);
  EXPECT_EQ(nodes.m_entid, nullptr);
}

TEST_P(ValueFetchBlocks, PutsANewAnswerInPlaceOfTheFormerOneWithoutFreeingThat) {
  file_.Add(kState1, Nodes(2)).Add(kState2, Nodes(2, "Node", 5));
  ORVResult nodes = Listed();
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
  float* const former_values = values_.m_values;
  int* const former_ids = values_.m_ids;
  ASSERT_TRUE(former_values && former_ids);
  values_.m_state = 2;
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
  EXPECT_NE(values_.m_values, former_values);
  EXPECT_NE(values_.m_ids, former_ids);
  EXPECT_EQ(values_.values(), (Floats{51, 61}));
  EXPECT_EQ(Floats(former_values, former_values + 2), (Floats{11, 21}));
  EXPECT_EQ(Ints(former_ids, former_ids + 2), (Ints{100, 200}));
  std::free(former_values);
  std::free(former_ids);
}

TEST_P(ValueFetchBlocks, ReadsStoredDoublesAsFloats) {
  StoredBlock<double> block{.nent = 2, .shape = {2, 3}, .values = {1.5, 0, 0, 2.5, 0, 0}};
  file_.Add(kState1, block);
  ORVResult nodes = Listed();
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.values(), (Floats{1.5F, 2.5F}));
}

TEST_P(ValueFetchBlocks, ReadsDoublesInFullPrecision) {
  StoredBlock<double> block{.nent = 2, .shape = {2, 3}, .values = {0.1, 0, 0, 1e300, 0, 0}, .ids = {7, 8}};
  file_.Add(kState1, block).Add(kState1, Nodes(1, "Mass", 5));
  ORVResult nodes = Listed();
  ORVResult masses = Listed("Mass");
  FetchedValues<double> values;
  values.m_state = 1;
  values.m_wantIds = 1;
  EXPECT_EQ(Fetch(values, {&nodes, &masses}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values.values(), (std::vector<double>{0.1, 1e300, 51}));
  EXPECT_EQ(values.ids(), (Ints{7, 8, 500}));
}

TEST_P(ValueFetchBlocks, PutsTheStoredTypesOfABlockBack) {
  file_.Add(kState1, Nodes(2));
  for (const int mode : {0, 1}) {
    ORVResult nodes = Listed();
    nodes.m_resType = ORV_NO_DATASET;
    nodes.m_entidType = ORV_LONG;
    FetchedValues<double> values;
    values.m_state = 1;
    values.m_wantIds = 1;
    values.m_fetchMode = mode;
    EXPECT_EQ(Fetch(values, {&nodes}, {.ext_id = kFirst}), 0);
    EXPECT_EQ(values.ids(), (Ints{100, 200}));
    EXPECT_EQ(nodes.m_resType, ORV_NO_DATASET);
    EXPECT_EQ(nodes.m_entidType, ORV_LONG);
    EXPECT_EQ(nodes.m_readIds, 0);
  }
}

TEST_P(ValueFetchBlocks, LeavesTheBlocksPointingAtTheirPartOfTheAnswer) {
  file_.Add(kState1, Nodes(2)).Add(kState1, Nodes(1, "Mass", 5));
  ORVResult nodes = Listed();
  ORVResult gone = Listed("Gone", 2);
  ORVResult masses = Listed("Mass");
  EXPECT_EQ(Fetch({&nodes, &gone, &masses}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(nodes.m_res, values_.m_values);
  EXPECT_EQ(nodes.m_entid, values_.m_ids);
  EXPECT_EQ(gone.m_res, nullptr);
  EXPECT_EQ(gone.m_entid, nullptr);
  EXPECT_EQ(masses.m_res, values_.m_values + 2);
  EXPECT_EQ(masses.m_entid, values_.m_ids + 2);
}

TEST_P(ValueFetchBlocks, LeavesNoBlockPointingWhereItsNextReadGoesBeyondTheAnswer) {
  file_.Add(kState1, Nodes(2));
  ORVResult nodes = Listed();
  nodes.m_resType = ORV_DOUBLE;  // as a query of types finds it
  ASSERT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
  ASSERT_EQ(values_.m_valueCount, 2);
  EXPECT_EQ(nodes.m_resType, ORV_DOUBLE);
  EXPECT_EQ(nodes.m_res, nullptr);
  nodes.m_resType = ORV_FLOAT;
  nodes.m_entidType = ORV_LONG;
  values_.DeleteAllocation(true);
  values_.m_wantIds = 1;
  ASSERT_EQ(Fetch({&nodes}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(nodes.m_res, values_.m_values);
  EXPECT_EQ(nodes.m_entid, nullptr);
}

TEST_P(ValueFetchBlocks, LeavesNoBlockPointingAtTheAnswerBeforeIt) {
  file_.Add(kState1, Nodes(2)).Add(kState1, Nodes(1, "Mass", 5));
  VariableWithHandles other("OTHER", 3);
  other.Add(20, 0);
  ORVResult nodes = Listed();
  ORVResult masses = Listed("Mass");
  masses.m_variable = other.get();
  EXPECT_EQ(Fetch({&nodes, &masses}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(nodes.m_res, values_.m_values);
  EXPECT_EQ(nodes.m_entid, values_.m_ids);
  values_.DeleteAllocation(true);
  EXPECT_EQ(Fetch({&nodes, &masses}, {.ext_id = 20}), 0);
  EXPECT_EQ(values_.values(), (Floats{51}));
  EXPECT_EQ(nodes.m_res, nullptr);
  EXPECT_EQ(nodes.m_entid, nullptr);
  EXPECT_EQ(nodes.m_fetchSkip, 1);
  EXPECT_EQ(masses.m_res, values_.m_values);
}

TEST_P(ValueFetchBlocks, ReadsMultiStateElementsFromTheFileThoughTheyAreHeldInMemory) {
  StoredBlock<float> stored{.kind = 1150, .etyp = "SHELL", .nent = 2, .shape = {2, 2, 1, 1}, .values = {1, 2, 3, 4}};
  file_.Add(kMultistate, stored);
  ORVBufferManager manager;
  ORVResult shells = ListedBlock(1150, "SHELL", "SPEED", 2, 1, speed_.get());
  shells.m_numl = 1;
  shells.m_nstate = 2;
  std::vector<std::string> names = {"res"};
  ASSERT_EQ(shells.CacheData(manager, file_.path().c_str(), 1, false, &names), 0);
  stored.values = {5, 6, 7, 8};
  file_.Add(kMultistate, stored);
  values_.m_wantIds = 0;
  EXPECT_EQ(Fetch({&shells}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.values(), (Floats{5, 6, 7, 8}));
  Floats held(4, -1);
  shells.m_res = held.data();
  EXPECT_EQ(shells.FillFromCacheData(1, ORV_ATT_RES, 0, nullptr, nullptr), 0);
  EXPECT_EQ(held, (Floats{1, 2, 3, 4}));
}

/// One row per kind of result: what its first component delivers.
struct KindRow {
  int kind;
  std::vector<hsize_t> shape;
  Floats expected;
};

TEST_P(ValueFetchBlocks, ServeEveryKindOfResult) {
  // Two entities, two components, two layers, two states, two parts; values count up from 0.
  const KindRow rows[] = {
      {1000, {2, 2}, {0, 2}},
      {1001, {2, 2, 2}, {0, 1, 4, 5}},
      {1050, {2, 2, 2}, {0, 2, 4, 6}},
      {1051, {2, 2, 2, 2}, {0, 1, 4, 5, 8, 9, 12, 13}},
      {1100, {2, 2, 2}, {0, 2, 4, 6}},
      {1101, {2, 2, 2, 2}, {0, 1, 4, 5, 8, 9, 12, 13}},
      {1150, {2, 2, 2, 2}, {0, 2, 4, 6, 8, 10, 12, 14}},
      {1151, {2, 2, 2, 2, 2}, {0, 1, 4, 5, 8, 9, 12, 13, 16, 17, 20, 21, 24, 25, 28, 29}},
  };
  for (const KindRow& row : rows) {
    const bool multi = row.kind % 100 >= 50;
    const std::string etyp = "Kind" + std::to_string(row.kind);
    StoredBlock<float> stored{.kind = row.kind, .etyp = etyp, .nent = 2, .shape = row.shape, .ids = {71, 72}};
    for (int i = 0; i < 1 << row.shape.size(); ++i) stored.values.push_back(float(i));
    file_.Add(multi ? kMultistate : kState1, stored);
    ORVResult block = ListedBlock(row.kind, etyp.c_str(), "SPEED", 2, 2, speed_.get());
    block.m_numl = 2;
    block.m_nstate = 2;
    FetchedValues<float> values;
    values.m_state = 1;
    values.m_wantIds = 1;
    values.m_layer = -101;
    EXPECT_EQ(Fetch(values, {&block}, {.ext_id = kFirst}), 0) << row.kind;
    EXPECT_EQ(values.values(), row.expected) << row.kind;
    EXPECT_EQ(values.ids(), (Ints{71, 72})) << row.kind;
  }
}

}  // namespace
