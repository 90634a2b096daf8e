// What the value fetch selects of the axes that only some kinds have: layers of elements, parts of complex values.

#include "result/value_fetch_test.h"

namespace {

using namespace orv_test;

/// Two shells with three layers and two components: 100 x shell + 10 x layer + component, from 1 on.
class ValueFetchLayers : public ValueFetchTest {
 protected:
  ValueFetchLayers() {
    StoredBlock<float> stored{.kind = 1100, .etyp = "SHELL", .nent = 2, .shape = {2, 3, 2}, .ids = {70, 80}};
    stored.values = {111, 112, 121, 122, 131, 132, 211, 212, 221, 222, 231, 232};
    file_.Add(kState1, stored);
    shells_.m_numl = 3;
  }

  ORVResult shells_ = ListedBlock(1100, "SHELL", "SPEED", 2, 2, speed_.get());
};
INSTANTIATE_TEST_SUITE_P(Layouts, ValueFetchLayers, ::testing::Values(Layout::kSplit, Layout::kSingle), NameOfLayout);

TEST_P(ValueFetchLayers, SelectOneLayer) {
  values_.m_layer = 2;
  EXPECT_EQ(Fetch({&shells_}, {.ext_id = kSecond}), 0);
  EXPECT_EQ(values_.values(), (Floats{132, 232}));
  EXPECT_EQ(values_.ids(), (Ints{70, 80}));
}

TEST_P(ValueFetchLayers, SelectAllLayers) {
  values_.m_layer = -101;
  EXPECT_EQ(Fetch({&shells_}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.values(), (Floats{111, 121, 131, 211, 221, 231}));
  EXPECT_EQ(values_.ids(), (Ints{70, 80}));
}

TEST_P(ValueFetchLayers, ByNameSelectOneLayerAndForAllTheFirst) {
  VariableWithHandles pair("SPEED", 2);
  shells_.m_variable = pair.get();
  values_.m_layer = 1;
  EXPECT_EQ(Fetch({&shells_}, {.variable = "SPEED"}), 0);
  EXPECT_EQ(values_.values(), (Floats{121, 122, 221, 222}));
  values_.DeleteAllocation(true);
  values_.m_layer = -101;
  EXPECT_EQ(Fetch({&shells_}, {.variable = "SPEED"}), 0);
  EXPECT_EQ(values_.values(), (Floats{111, 112, 211, 212}));
}

TEST_P(ValueFetchLayers, ByNameNeedNoLocationsForElementsOfOneLayer) {
  StoredBlock<float> stored{.kind = 1100, .etyp = "BEAM", .nent = 2, .shape = {2, 1, 2}, .values = {1, 2, 3, 4}};
  file_.Add(kState1, stored);
  VariableWithHandles pair("SPEED", 2);
  ORVResult beams = ListedBlock(1100, "BEAM", "SPEED", 2, 2, pair.get());
  values_.m_wantIds = 0;
  for (const int layers : {0, 1}) {
    beams.m_numl = layers;
    EXPECT_EQ(Fetch({&beams}, {.variable = "SPEED"}), 0);
    EXPECT_EQ(values_.values(), (Floats{1, 2, 3, 4}));
    values_.DeleteAllocation(true);
  }
}

TEST_P(ValueFetchLayers, ByNameReadElementsWithoutLayersThatAreStoredWithoutThatAxis) {
  StoredBlock<float> beams{.kind = 1100, .etyp = "BEAM", .nent = 2, .shape = {2, 2}, .values = {1, 2, 3, 4}};
  beams.ids = {7, 8};
  StoredBlock<float> pairs{.kind = 1101, .etyp = "BAR", .nent = 1, .shape = {1, 2, 2}, .values = {5, 6, 7, 8}};
  pairs.ids = {9};
  file_.Add(kState1, beams).Add(kState1, pairs);
  VariableWithHandles pair("SPEED", 2);
  ORVResult first = ListedBlock(1100, "BEAM", "SPEED", 2, 2, pair.get());
  ORVResult second = ListedBlock(1101, "BAR", "SPEED", 1, 2, pair.get());
  EXPECT_EQ(Fetch({&first, &second}, {.variable = "SPEED"}), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 2, 3, 4, 5, 6, 7, 8}));
  EXPECT_EQ(values_.ids(), (Ints{7, 8, 9}));
  EXPECT_EQ(second.m_res, values_.m_values + 4);
}

TEST_P(ValueFetchLayers, ByNameReadElementsWithoutLayersThatAreStoredWithOne) {
  StoredBlock<float> beams{.kind = 1100, .etyp = "BEAM", .nent = 2, .shape = {2, 1, 2}, .values = {1, 2, 3, 4}};
  beams.ids = {7, 8};
  file_.Add(kState1, beams);
  VariableWithHandles pair("SPEED", 2);
  ORVResult block = ListedBlock(1100, "BEAM", "SPEED", 2, 2, pair.get());
  EXPECT_EQ(Fetch({&block}, {.variable = "SPEED"}), 0);
  EXPECT_EQ(values_.values(), (Floats{1, 2, 3, 4}));
  EXPECT_EQ(values_.ids(), (Ints{7, 8}));
}

/// Two nodes with one component of complex values, in one state.
class ValueFetchComplex : public ValueFetchTest {
 protected:
  ValueFetchComplex() {
    StoredBlock<float> stored{.kind = 1001, .nent = 2, .shape = {2, 1, 2}, .values = {3, 4, 6, 8}, .ids = {100, 200}};
    file_.Add(kState1, stored).Add(kState1, Nodes(1, "Mass", 5));
  }

  VariableWithHandles scalar_{"SPEED", 1};
  ORVResult nodes_ = ListedBlock(1001, "Node", "SPEED", 2, 1, speed_.get());
  ORVResult masses_ = Listed("Mass");
};
INSTANTIATE_TEST_SUITE_P(Layouts, ValueFetchComplex, ::testing::Values(Layout::kSplit, Layout::kSingle), NameOfLayout);

TEST_P(ValueFetchComplex, DeliversPairsAlthoughAnOutputIsSet) {
  nodes_.m_complexOutput = ORV_COMPLEX_MAGNITUDE;
  EXPECT_EQ(Fetch({&nodes_, &masses_}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.values(), (Floats{3, 4, 6, 8, 51}));
  EXPECT_EQ(values_.ids(), (Ints{100, 200, 500}));
}

TEST_P(ValueFetchComplex, DeliversOneNumberPerPairWhereThatIsAlwaysWanted) {
  nodes_.m_complexOutput = ORV_COMPLEX_MAGNITUDE | ORV_COMPLEX_ALWAYS;
  for (const int mode : {0, 1}) {
    values_.m_fetchMode = mode;
    EXPECT_EQ(Fetch({&nodes_, &masses_}, {.ext_id = kFirst}), 0);
    EXPECT_EQ(values_.values(), (Floats{5, 10, 51}));
    EXPECT_EQ(values_.ids(), (Ints{100, 200, 500}));
    values_.DeleteAllocation(true);
  }
}

TEST_P(ValueFetchComplex, ConvertsByNameToo) {
  nodes_.m_variable = scalar_.get();
  nodes_.m_complexOutput = ORV_COMPLEX_IMAGINARY | ORV_COMPLEX_ALWAYS;
  EXPECT_EQ(Fetch({&nodes_}, {.variable = "SPEED"}), 0);
  EXPECT_EQ(values_.values(), (Floats{4, 8}));
  values_.DeleteAllocation(true);
  nodes_.m_complexOutput = 0;
  EXPECT_EQ(Fetch({&nodes_}, {.variable = "SPEED"}), 0);
  EXPECT_EQ(values_.values(), (Floats{3, 4, 6, 8}));
}

}  // namespace
