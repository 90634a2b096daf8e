// Curves over all states, from the states one by one and from blocks that hold all of them.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <numeric>
#include <optional>
#include <string>
#include <vector>

#include "modern/modern_files.h"
#include "orvio/orv.hpp"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Optional;
using testing::SizeIs;

class ModernHistory : public OrvTest, public testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  /// One component at nodes over all states.
  static ForgedValues Over(std::vector<int> ids, int states, std::vector<float> values) {
    ForgedValues over{.kind = 1050, .variable = "Heat", .nent = static_cast<int>(ids.size()), .nstate = states};
    over.values = std::move(values);
    over.ids = std::move(ids);
    for (int state = 1; state <= states; ++state) over.index.push_back(0.25F * static_cast<float>(state));
    return over;
  }
  static ForgedValues Heat(std::vector<int> ids, std::vector<float> values, const std::string& etyp = "NODE") {
    ForgedValues heat{.etyp = etyp, .variable = "Heat", .nent = static_cast<int>(ids.size())};
    heat.values = std::move(values);
    heat.ids = std::move(ids);
    heat.index = {1};
    return heat;
  }
  ForgedModel HeatModel() const {
    ForgedModel model(GetParam());
    model.variable({.name = "Heat", .key = "Heat", .labels = {"T"}});
    return model;
  }
};

INSTANTIATE_TEST_SUITE_P(Layouts, ModernHistory, testing::Values(ForgedModel::kSingle, ForgedModel::kSplit),
                         LayoutName);

TEST_P(ModernHistory, StateByStateLeavesGaps) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, SpeedOf({1, 2}, {1, 2, 3, 4}));
  model.file().at(ForgedModel::StateGroup(2));
  model.in_state(3, SpeedOf({2, 9}, {5, 6, 7, 8}));
  orv::File file(model.path());
  const orv::History history = file.history("Speed", {2, 1, 77});
  EXPECT_EQ(history.variable, "Speed");
  EXPECT_THAT(history.states, SizeIs(3));
  ASSERT_THAT(history.curves, SizeIs(4));
  EXPECT_EQ(history.curves[0].id, 2);
  EXPECT_EQ(history.curves[0].entity, "NODE");
  EXPECT_EQ(history.curves[0].component, "U");
  EXPECT_EQ(history.curves[0].layer, 1);
  EXPECT_THAT(history.curves[0].values, ElementsAre(3.0, std::nullopt, 5.0));
  EXPECT_EQ(history.curves[1].component, "W");
  EXPECT_THAT(history.curves[3].values, ElementsAre(2.0, std::nullopt, std::nullopt));
}

TEST_P(ModernHistory, TellsUnitsAndWhatTheCurvesAreOf) {
  ForgedModel model = SpeedModel(GetParam());
  model.system().units("Speed", {.mbunit = {1, 1}, .ubid = {1, 2}, .ubexp = {1, 1}});
  model.in_state(1, SpeedOf({1}, {1, 2}));
  orv::File file(model.path());
  const orv::History history = file.history("SPEED", {1});
  ASSERT_THAT(history.curves, SizeIs(2));
  EXPECT_EQ(history.variable, "Speed");
  EXPECT_FALSE(history.is_double);
  EXPECT_EQ(history.curves[0].unit, "mm");
  EXPECT_EQ(history.curves[1].unit, "s");
  EXPECT_FALSE(history.curves[0].on_elements);
}

TEST_P(ModernHistory, OfNoIdsHasAllEntities) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, SpeedOf({1, 2}, {1, 2, 3, 4})).in_state(2, SpeedOf({3}, {5, 6}));
  orv::File file(model.path());
  const orv::History history = file.history("Speed", {}, "W");
  ASSERT_THAT(history.curves, SizeIs(3));
  EXPECT_THAT(history.curves[2].values, ElementsAre(std::nullopt, 6.0));
}

TEST_P(ModernHistory, HasCurvesForLayersAndComplexParts) {
  ForgedModel model = SpeedModel(GetParam());
  ForgedValues wave = SpeedOf({}, {1, 2, 3, 4, 5, 6, 7, 8});
  wave.kind = 1101;
  wave.etyp = "QUAD4";
  wave.nent = 1;
  wave.numl = 2;
  wave.ids = {4};
  model.in_state(1, wave);
  orv::File file(model.path());
  std::vector<std::string> names;
  for (const orv::Curve& curve : file.history("Speed", {4}).curves) {
    names.push_back(curve.component + "@" + std::to_string(curve.layer) + "=" +
                    std::to_string(static_cast<int>(*curve.values[0])));
  }
  EXPECT_THAT(names, ElementsAre("U.re@1=1", "U.im@1=2", "W.re@1=3", "W.im@1=4", "U.re@2=5", "U.im@2=6", "W.re@2=7",
                                 "W.im@2=8"));
  const orv::History one = file.history("Speed", {4}, "W", 2);
  ASSERT_THAT(one.curves, SizeIs(2));
  EXPECT_TRUE(one.curves[1].on_elements);
  EXPECT_THAT(one.curves[1].values, ElementsAre(8.0));
}

TEST_P(ModernHistory, IsReadFromABlockOverAllStates) {
  ForgedModel model = HeatModel();
  model.in_state(1, Heat({1, 2}, {10, 20})).in_state(2, Heat({1, 2}, {11, 21}));
  model.in_multistate(Over({2, 1}, 2, {200, 100, 210, 110}));
  orv::File file(model.path());
  const orv::History history = file.history("Heat", {1});
  ASSERT_THAT(history.curves, SizeIs(1));
  EXPECT_THAT(history.curves[0].values, ElementsAre(100.0, 110.0));
  EXPECT_THAT(history.states[1].index, ElementsAre(0.5));
}

TEST_P(ModernHistory, IsReadFromTheStatesWhereTheBlockOverThemLacksSomething) {
  ForgedModel model = HeatModel();
  model.in_state(1, Heat({1, 2}, {10, 20})).in_state(2, Heat({1, 2}, {11, 21}));
  model.in_multistate(Over({1}, 2, {100, 110}));
  orv::File file(model.path());
  EXPECT_THAT(file.history("Heat", {1}).curves[0].values, ElementsAre(100.0, 110.0));
  EXPECT_THAT(file.history("Heat", {1, 2}).curves[0].values, ElementsAre(10.0, 11.0));
  model.in_state(3, Heat({1, 2}, {12, 22}));
  (void)model.path();
  file.refresh();
  EXPECT_THAT(file.history("Heat", {1}).curves[0].values, ElementsAre(10.0, 11.0, 12.0));
}

TEST_P(ModernHistory, IsReadFromTheStatesWhereTheBlockOverThemIsOfOtherEntities) {
  ForgedModel model = HeatModel();
  model.in_state(1, Heat({1}, {10}));
  ForgedValues global = Over({1}, 1, {100});
  global.etyp = "GLOBAL";
  model.in_multistate(global);
  orv::File file(model.path());
  EXPECT_EQ(file.history("Heat", {1}).curves[0].entity, "NODE");
  EXPECT_THAT(file.history("Heat", {1}, "", 0, "global").curves[0].values, ElementsAre(100.0));
}

TEST_P(ModernHistory, DoesNotMindConstantValues) {
  ForgedModel model = HeatModel();
  model.in_constant(Heat({1}, {10}));
  ForgedValues global = Over({1}, 2, {100, 110});
  global.etyp = "GLOBAL";
  model.in_multistate(global);
  orv::File file(model.path());
  EXPECT_THAT(file.history("Heat", {1}).curves[0].values, ElementsAre(100.0, 110.0));
  EXPECT_THAT(ErrorOf([&] { (void)file.history("Heat", {1}, "", 0, "NODE"); }), HasSubstr("has no values"));
}

TEST_P(ModernHistory, OfAFileWithoutStatesHasThoseOfTheBlock) {
  ForgedModel model = HeatModel();
  model.in_multistate(Over({1, 2}, 3, {1, 2, 3, 4, 5, 6}));
  orv::File file(model.path());
  EXPECT_EQ(file.state_count(), 0);
  const orv::History history = file.history("Heat", {2});
  ASSERT_THAT(history.states, SizeIs(3));
  EXPECT_EQ(history.states[2].number, 3);
  EXPECT_THAT(history.states[2].index, ElementsAre(0.75));
  ASSERT_THAT(history.curves, SizeIs(1));
  EXPECT_THAT(history.curves[0].values, ElementsAre(2.0, 4.0, 6.0));
  EXPECT_THAT(ErrorOf([&] { (void)file.history("Heat", {9}); }), HasSubstr("at the ids"));
}

TEST_P(ModernHistory, OfADamagedBlockOverAllStatesComesFromTheStates) {
  ForgedModel model = HeatModel();
  model.in_state(1, Heat({1}, {10}));
  model.in_multistate(Over({1}, 1, {100}));
  model.file().at(model.Part("/post/multistate/multientityresults/NODE/Heat", "header")).integer("nent", 1LL << 50);
  {
    orv::File file(model.path());
    EXPECT_THAT(file.history("Heat", {1}).curves[0].values, ElementsAre(10.0));
  }
  model.file().at("/post/singlestate").drop("state000000000001");
  orv::File file(model.path());
  EXPECT_THAT(ErrorOf([&] { (void)file.history("Heat", {1}); }), HasSubstr("values cannot be read"));
}

TEST_P(ModernHistory, OfComplexEntitiesOverAllStatesHasBothParts) {
  ForgedModel model = HeatModel();
  ForgedValues over = Over({7}, 2, {1, 2, 3, 4});
  over.kind = 1051;
  model.in_multistate(over);
  orv::File file(model.path());
  const orv::History history = file.history("Heat", {7});
  ASSERT_THAT(history.curves, SizeIs(2));
  EXPECT_THAT(history.curves[1].component, testing::EndsWith(".im"));
  EXPECT_THAT(history.curves[1].values, ElementsAre(2.0, 4.0));
}

TEST_P(ModernHistory, OfFewAmongManyReadsTheirRowsAlone) {
  constexpr int kEntities = 2000, kStates = 3;
  ForgedModel model = HeatModel();
  std::vector<int> ids(kEntities);
  std::iota(ids.begin(), ids.end(), 1);
  std::vector<float> values(std::size_t{kEntities} * kStates);
  std::iota(values.begin(), values.end(), 1.0F);
  model.in_multistate(Over(ids, kStates, values));
  orv::File file(model.path());
  const orv::History history = file.history("Heat", {1999, 5, 5});
  ASSERT_THAT(history.curves, SizeIs(2));
  EXPECT_THAT(history.curves[0].values, ElementsAre(1999.0, 3999.0, 5999.0));
  EXPECT_THAT(history.curves[1].values, ElementsAre(5.0, 2005.0, 4005.0));
}

TEST_P(ModernHistory, ThatOnlyLaterStatesHaveBeginsThere) {
  ForgedModel model = HeatModel();
  model.file().at(ForgedModel::StateGroup(1));
  model.in_state(2, Heat({1}, {10}));
  orv::File file(model.path());
  EXPECT_THAT(file.history("Heat", {1}).curves.at(0).values, ElementsAre(std::nullopt, Optional(10.0)));
}

}  // namespace
