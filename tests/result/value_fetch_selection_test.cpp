// What the value fetch selects of each block: handles, computed handles, variables by name. Layers and complex values
// are in value_fetch_layers_test.

#include "orvio/orv_properties.h"
#include "orvio/orv_variable_grp.h"
#include "result/value_fetch_test.h"

namespace {

using namespace orv_test;

class ValueFetch : public ValueFetchTest {};
INSTANTIATE_TEST_SUITE_P(Layouts, ValueFetch, ::testing::Values(Layout::kSplit, Layout::kSingle), NameOfLayout);

TEST_P(ValueFetch, DeliversTheInputsOfAMeasureEntityByEntity) {
  file_.Add(kState1, Nodes(2));
  ORVResult nodes = Listed();
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kAll}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 12, 13, 21, 22, 23}));
  EXPECT_EQ(values_.ids(), (Ints{100, 200}));
}

TEST_P(ValueFetch, DeliversThemComponentByComponentInTheOtherMode) {
  file_.Add(kState1, Nodes(2)).Add(kState1, Nodes(1, "Mass", 5));
  ORVResult nodes = Listed();
  ORVResult masses = Listed("Mass");
  values_.m_fetchMode = 1;
  EXPECT_EQ(Fetch({&nodes, &masses}, {.ext_id = kAll}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 21, 12, 22, 13, 23, 51, 52, 53}));
  EXPECT_EQ(values_.ids(), (Ints{100, 200, 500}));
  EXPECT_EQ(nodes.m_fetchSkip, 0);
  EXPECT_EQ(masses.m_res, values_.m_values + 6);
}

TEST_P(ValueFetch, EndsAtABlockWhoseComponentsLieApart) {
  file_.Add(kState1, Nodes(2)).Add(kState1, Nodes(1, "Mass", 5)).Add(kState1, Nodes(1, "Late", 8));
  ORVResult nodes = Listed();
  ORVResult masses = Listed("Mass");
  ORVResult late = Listed("Late");
  // In the masses and behind them handle 8 means the first and the last component, in the nodes the first two.
  VariableWithHandles other("SPEED", 3);
  other.Add(kFirst, 0);
  other.Add(kSecond, 1);
  other.AddComputed(kApart, 50, {{kFirst, kSecond}});
  nodes.m_variable = other.get();
  late.m_variable = other.get();
  EXPECT_EQ(Fetch({&nodes, &masses, &late}, {.ext_id = kApart}), 0);
  // Its three values are read: they fit in place of its two and one of the two behind it.
  EXPECT_EQ(values_.values(), (Floats{11, 12, 21, 22, 51, 52, 53}));
  EXPECT_EQ(values_.ids(), (Ints{100, 200, 500}));
  EXPECT_EQ(masses.m_fetchSkip, 0);
  EXPECT_EQ(late.m_fetchSkip, 1);
  EXPECT_EQ(late.m_res, nullptr);

  values_.DeleteAllocation(true);
  EXPECT_EQ(Fetch({&masses}, {.ext_id = kApart}), 1);
  ExpectNoAnswer();

  // Nothing of a block whose values have no room, and nothing of those behind it although they would fit.
  file_.Add(kState1, Nodes(3, "Mass", 5));
  EXPECT_EQ(Fetch({&nodes, &masses, &late}, {.ext_id = kApart}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 12, 21, 22}));
  EXPECT_EQ(values_.ids(), (Ints{100, 200}));
  EXPECT_TRUE(messages_.all().empty());
}

TEST_P(ValueFetch, DeliversComponentsThatLieApartOneByOne) {
  file_.Add(kState1, Nodes(2));
  ORVResult nodes = Listed();
  values_.m_fetchMode = 1;
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kApart}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 21, 13, 23}));
  EXPECT_EQ(values_.ids(), (Ints{100, 200}));
}

TEST_P(ValueFetch, KeepsTheComponentsInFrontOfOneThatCannotBeRead) {
  StoredBlock<float> narrow{.nent = 2, .shape = {2, 2}, .values = {11, 12, 21, 22}, .ids = {100, 200}};
  file_.Add(kState1, narrow).Add(kState1, Nodes(1, "Mass", 5));
  ORVResult nodes = Listed();
  ORVResult masses = Listed("Mass");
  speed_.AddComputed(30, 50, {{kFirst, kThird, kSecond}});  // the second could be read, but comes too late
  values_.m_fetchMode = 1;
  EXPECT_EQ(Fetch({&nodes, &masses}, {.ext_id = 30}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 21, 51, 53, 52}));
  EXPECT_EQ(values_.ids(), (Ints{100, 200, 500}));
}

TEST_P(ValueFetch, ForgetsTheDataOfABlockThatGaveNoComponent) {
  StoredBlock<float> flat{.nent = 2, .shape = {6}, .values = {1, 2, 3, 4, 5, 6}};
  file_.Add(kState1, flat).Add(kState1, Nodes(1, "Mass", 5));
  ORVResult nodes = Listed();
  float locations = 0;
  nodes.m_eloc = &locations;
  nodes.m_fidglob = 4;
  nodes.m_resType = ORV_DOUBLE;
  ORVResult masses = Listed("Mass");
  values_.m_fetchMode = 1;
  EXPECT_EQ(Fetch({&nodes, &masses}, {.ext_id = kFirst}), 0);
  EXPECT_EQ(values_.values(), (Floats{51}));
  EXPECT_EQ(nodes.m_eloc, nullptr);
  EXPECT_EQ(nodes.m_fidglob, 0);
  EXPECT_EQ(nodes.m_res, nullptr);
  EXPECT_EQ(nodes.m_resType, ORV_DOUBLE);
  EXPECT_EQ(nodes.m_fetchSkip, 1);
}

TEST_P(ValueFetch, ComponentByComponentForgetsTheDataOfABlockWithoutTheQuantity) {
  file_.Add(kState1, Nodes(1)).Add(kState1, Nodes(1, "Mass", 5));
  VariableWithHandles other("OTHER", 3);
  ORVResult masses = Listed("Mass");
  float locations = 0;
  for (const int mode : {0, 1}) {
    ORVResult nodes = Listed();
    nodes.m_variable = other.get();
    nodes.m_eloc = &locations;
    nodes.m_fidglob = 4;
    nodes.m_resType = ORV_DOUBLE;
    nodes.m_entidType = ORV_LONG;
    values_.m_fetchMode = mode;
    EXPECT_EQ(Fetch({&nodes, &masses}, {.ext_id = kFirst}), 0);
    EXPECT_EQ(values_.values(), (Floats{51}));
    EXPECT_EQ(nodes.m_eloc, mode == 1 ? nullptr : &locations);
    EXPECT_EQ(nodes.m_fidglob, mode == 1 ? 0 : 4);
    EXPECT_EQ(nodes.m_resType, ORV_DOUBLE);
    EXPECT_EQ(nodes.m_entidType, ORV_LONG);
    EXPECT_EQ(nodes.m_fetchSkip, 1);
    values_.DeleteAllocation(true);
  }
}

TEST_P(ValueFetch, TakesAnyOtherModeForTheFirst) {
  file_.Add(kState1, Nodes(2));
  ORVResult nodes = Listed();
  values_.m_fetchMode = 2;
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kAll}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 12, 13, 21, 22, 23}));
}

TEST_P(ValueFetch, PassesOverComponentsThatABlockIsTooNarrowFor) {
  file_.Add(kState1, Nodes(2)).Add(kState1, Nodes(1, "Mass", 5));
  // The selection of a component that is not there has no axes, so that there are no bounds of all of them.
  VariableWithHandles wide("SPEED", 3);
  wide.Add(kFirst, 0);
  wide.Add(4, 3);
  wide.AddComputed(kAll, 50, {{kFirst, 4}});
  ORVResult nodes = Listed();
  nodes.m_variable = wide.get();
  ORVResult masses = Listed("Mass");
  EXPECT_EQ(Fetch({&nodes, &masses}, {.ext_id = kAll}), 0);
  EXPECT_EQ(values_.values(), (Floats{51, 52, 53}));
  EXPECT_EQ(nodes.m_fetchSkip, 1);
  values_.DeleteAllocation(true);
  values_.m_fetchMode = 1;
  EXPECT_EQ(Fetch({&nodes, &masses}, {.ext_id = kAll}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 21, 51, 52, 53}));
  EXPECT_EQ(values_.ids(), (Ints{100, 200, 500}));
}

TEST_P(ValueFetch, FindsTheQuantityOfAResultTypeInTheFirstBlockThatHasIt) {
  file_.Add(kState1, Nodes(1)).Add(kState1, Nodes(1, "Mass", 5));
  ORVResult nodes = Listed();
  ORVResult masses = Listed("Mass");
  VariableWithHandles other("SPEED", 3);
  other.Add(kThird, 2).SetEID(1);
  nodes.m_variable = other.get();
  // External id 103 is that of handle 3, which both blocks have, though only the second under this external id.
  EXPECT_EQ(Fetch({&nodes, &masses}, {.ext_id = kFirst, .result_type = 103}), 0);
  EXPECT_EQ(values_.values(), (Floats{13, 53}));
}

TEST_P(ValueFetch, OfAVariableByNameDeliversTheWholeBlock) {
  file_.Add(kState1, Nodes(2)).Add(kState1, Nodes(1, "Mass", 5));
  ORVResult nodes = Listed();
  ORVResult masses = Listed("Mass");
  ORVResult other = Listed("Other");
  VariableWithHandles pressure("PRESSURE", 3);
  other.m_variable = pressure.get();
  other.m_fetchSkip = 0;
  EXPECT_EQ(Fetch({&nodes, &other, &masses}, {.variable = "speed"}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 12, 13, 21, 22, 23, 51, 52, 53}));
  EXPECT_EQ(values_.ids(), (Ints{100, 200, 500}));
  EXPECT_EQ(nodes.m_fetchSkip, 0);
  EXPECT_EQ(other.m_fetchSkip, 1);
  EXPECT_EQ(Fetch({&other}, {.variable = "speed"}), 1);
}

TEST_P(ValueFetch, OfAVariableByNameReadsTheFrameOfAWholeBlockToo) {
  file_.Add(kState1, Nodes(1));
  file_.file().at(file_.Part(kState1, 1000, "Node", "SPEED", "data")).dataset<int>("fidglob", {1}, {41});
  ORVResult nodes = Listed();
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kAll}), 0);
  EXPECT_EQ(nodes.m_fidglob, 0);
  values_.DeleteAllocation(true);
  EXPECT_EQ(Fetch({&nodes}, {.variable = "SPEED"}), 0);
  EXPECT_EQ(nodes.m_fidglob, 41);
}

TEST_P(ValueFetch, OfAVariableByNameDeliversItsComponentsOfAWiderBlock) {
  file_.Add(kState1, Nodes(2));
  ORVResult nodes = Listed();
  VariableWithHandles narrow("SPEED", 2);
  nodes.m_variable = narrow.get();
  EXPECT_EQ(Fetch({&nodes}, {.variable = "SPEED"}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 12, 21, 22}));
}

TEST_P(ValueFetch, ByNameIgnoresTheMode) {
  file_.Add(kState1, Nodes(2));
  ORVResult nodes = Listed();
  values_.m_fetchMode = 1;
  EXPECT_EQ(Fetch({&nodes}, {.variable = "SPEED"}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 12, 13, 21, 22, 23}));
}

TEST_P(ValueFetch, TurnsToTheNameWhereTheResultTypeIsNotThere) {
  file_.Add(kState1, Nodes(1));
  ORVResult nodes = Listed();
  EXPECT_EQ(Fetch({&nodes}, {.ext_id = kFirst, .result_type = 7777, .variable = "SPEED"}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 12, 13}));
}

/// A group of variables over the block of three components.
struct Grouped {
  Grouped(std::vector<ORVVariable*> variables, const Ints& counts, const Ints& offsets)
      : counts_(counts), offsets_(offsets) {
    group.m_nvar = static_cast<std::int64_t>(counts.size());
    group.m_ncoo = 3;
    group.m_pCnt = counts_.data();
    group.m_pOffs = offsets_.data();
    for (ORVVariable* variable : variables) group.AppendVariable(variable);
  }
  ORVVariableGrp group;

 private:
  Ints counts_;
  Ints offsets_;
};

TEST_P(ValueFetch, OfOneVariableOfAGroupDeliversItsOwnComponents) {
  file_.Add(kState1, Nodes(2));
  VariableWithHandles heat("HEAT", 1);
  VariableWithHandles flow("FLOW", 2);
  heat.Add(21, 0);
  flow.Add(22, 1);
  flow.Add(23, 2);
  flow.AddComputed(24, 50, {{22, 23}});
  Grouped both({heat.get(), flow.get()}, {1, 2}, {0, 1});
  ORVResult nodes = Listed();
  nodes.m_variable = nullptr;
  nodes.m_variableGrp = &both.group;
  const auto fetched = [&](const orvio::FetchQuantity& quantity) {
    values_.DeleteAllocation(true);
    EXPECT_EQ(Fetch({&nodes}, quantity), 0);
    EXPECT_EQ(values_.ids(), (Ints{100, 200}));
    return values_.values();
  };
  EXPECT_EQ(fetched({.variable = "FLOW"}), (Floats{12, 13, 22, 23}));
  EXPECT_EQ(fetched({.variable = "HEAT"}), (Floats{11, 21}));
  EXPECT_EQ(fetched({.ext_id = 23}), (Floats{13, 23}));
  EXPECT_EQ(fetched({.ext_id = 24}), (Floats{12, 13, 22, 23}));
  EXPECT_EQ(fetched({.result_type = 122}), (Floats{12, 22}));
}

TEST_P(ValueFetch, OfAGroupOfOneVariableDeliversTheWholeBlock) {
  file_.Add(kState1, Nodes(2));
  Grouped one({speed_.get()}, {3}, {0});
  ORVResult nodes = Listed();
  nodes.m_variable = nullptr;
  nodes.m_variableGrp = &one.group;
  EXPECT_EQ(Fetch({&nodes}, {.variable = "SPEED"}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 12, 13, 21, 22, 23}));
  EXPECT_EQ(values_.ids(), (Ints{100, 200}));
}

TEST_P(ValueFetch, ReadsBlocksOfAGroupWholeWhereItHasExactlyOneVariable) {
  file_.Add(kState1, Nodes(1));
  file_.file().at(file_.Part(kState1, 1000, "Node", "SPEED", "data")).dataset<int>("fidglob", {1}, {41});
  VariableWithHandles other("OTHER", 3);
  Grouped one({speed_.get()}, {3}, {0});
  Grouped two({speed_.get(), other.get()}, {3, 3}, {0, 0});
  const auto frame = [&](Grouped& group) {
    ORVResult nodes = Listed();
    nodes.m_variable = nullptr;
    nodes.m_variableGrp = &group.group;
    EXPECT_EQ(Fetch({&nodes}, {.variable = "SPEED"}), 0);
    EXPECT_EQ(values_.values(), (Floats{11, 12, 13}));
    values_.DeleteAllocation(true);
    return nodes.m_fidglob;  // whole reads alone have it
  };
  EXPECT_EQ(frame(one), 41);
  EXPECT_EQ(frame(two), 0);
}

TEST_P(ValueFetch, ByNameLeavesOutABlockWithMoreStoredThanItsHeaderSays) {
  file_.Add(kState1, Nodes(3)).Add(kState1, Nodes(1, "Mass", 5));
  file_.file().at(file_.Part(kState1, 1000, "Node", "SPEED", "header")).integer("nent", 2);
  ORVResult nodes = Listed();
  ORVResult masses = Listed("Mass");
  values_.m_wantIds = 0;
  EXPECT_EQ(Fetch({&nodes, &masses}, {.variable = "SPEED"}), 0);
  EXPECT_EQ(values_.values(), (Floats{51, 52, 53}));
  values_.DeleteAllocation(true);
  EXPECT_EQ(Fetch({&nodes, &masses}, {.ext_id = kAll}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 12, 13, 21, 22, 23, 51, 52, 53}));
}

TEST_P(ValueFetch, ByNameDeliversAPropertiesBlock) {
  const std::string block = std::string(kState1) + "/Node/SPEED/";  // this kind has no type group
  const bool split = GetParam() == Layout::kSplit;
  file_.file().at(block + (split ? "data" : "orvblock")).dataset<float>("res", {2, 3}, {11, 12, 13, 21, 22, 23});
  file_.file().dataset<int>("entid", {2}, {100, 200});
  file_.file().at(block + (split ? "header" : "orvblock")).integer("block", 500).integer("nent", 2);
  ORVProperties properties;
  properties.SetEntityAndVarName("Node", "SPEED");
  properties.m_variable = speed_.get();
  EXPECT_EQ(Fetch({&properties}, {.variable = "SPEED"}), 0);
  EXPECT_EQ(values_.values(), (Floats{11, 12, 13, 21, 22, 23}));
  EXPECT_EQ(values_.ids(), (Ints{100, 200}));
}

/// Three nodes with frames.
void AddFrames(BlockFile& file) {
  file.file().at(file.Part(kState1, 1000, "Node", "SPEED", "data")).dataset<int>("fid", {3}, {7, 8, 9});
}

/// A block keeps the count of the state that was fetched last: a second fetch does not know for how many the host made
/// its array.
TEST_P(ValueFetch, LeavesFramesOfTheHostAlone) {
  file_.Add(kState1, Nodes(3));
  AddFrames(file_);
  ORVResult nodes = Listed();
  int frame = -1;  // for the one node of another state
  nodes.m_fid = &frame;
  nodes.m_fswitch = 1;
  for (int fetch = 0; fetch < 2; ++fetch) {
    EXPECT_EQ(Fetch({&nodes}, {.variable = "SPEED"}), 0);
    EXPECT_EQ(values_.m_valueCount, 9);
    EXPECT_EQ(frame, -1);
    EXPECT_EQ(nodes.m_fid, &frame);
    values_.DeleteAllocation(true);
  }
}

}  // namespace
