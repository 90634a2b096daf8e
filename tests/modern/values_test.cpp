// Values through the modern face, for every kind of block. The choice of some of them is in selection_test.cpp.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "modern/modern_files.h"
#include "orvio/orv.hpp"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

std::vector<std::string> Names(const std::vector<orv::Component>& components) {
  std::vector<std::string> names;
  for (const orv::Component& component : components) names.push_back(component.name);
  return names;
}

class ModernValues : public OrvTest, public testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  /// Elements with the given number of layers and two components, the values 1, 2 and so on.
  static ForgedValues Elements(int kind, std::vector<int> ids, int layers) {
    ForgedValues values{.kind = kind, .etyp = "QUAD4", .variable = "Speed", .ncoo = 2, .numl = layers};
    values.nent = static_cast<int>(ids.size());
    const int count = values.nent * layers * 2 * (kind == 1101 ? 2 : 1);
    for (int i = 1; i <= count; ++i) values.values.push_back(static_cast<float>(i));
    values.ids = std::move(ids);
    values.index = {1};
    return values;
  }
};

INSTANTIATE_TEST_SUITE_P(Layouts, ModernValues, testing::Values(ForgedModel::kSingle, ForgedModel::kSplit), LayoutName);

TEST_P(ModernValues, OfEntitiesComeWithWhatTheyAre) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, SpeedOf({5, 3}, {1, 2, 3, 4}));
  orv::File file(model.path());
  const std::vector<orv::Values<>> all = file.values("speed");
  ASSERT_THAT(all, SizeIs(1));
  const orv::Values<>& speed = all[0];
  EXPECT_EQ(speed.variable, "Speed");
  EXPECT_EQ(speed.entity, "NODE");
  EXPECT_EQ(speed.zone, "");
  EXPECT_EQ(speed.state, 1);
  EXPECT_FALSE(speed.is_complex);
  EXPECT_FALSE(speed.on_elements);
  EXPECT_EQ(speed.layers, 1U);
  EXPECT_EQ(speed.size(), 2U);
  EXPECT_EQ(speed.row_size(), 2U);
  EXPECT_THAT(Names(speed.components), ElementsAre("U", "W"));
  EXPECT_THAT(speed.ids, ElementsAre(5, 3));
  EXPECT_THAT(speed.data.vector(), ElementsAre(1, 2, 3, 4));
  EXPECT_EQ(speed.at(1, 1), 4);
  EXPECT_EQ(speed.row(1)[0], 3);
  EXPECT_THROW((void)speed.at(2), std::out_of_range);
  EXPECT_THROW((void)speed.at(0, 2), std::out_of_range);
  EXPECT_THROW((void)speed.at(0, 0, 1), std::out_of_range);
  EXPECT_THROW((void)speed.at(0, 0, 0, 1), std::out_of_range);
}

TEST_P(ModernValues, AreFloatsOrDoublesWhateverTheFileHas) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, SpeedOf({1}, {1, 2}));
  const std::string block = ForgedModel::StateGroup(1) + "/entityresults/NODE/Speed";
  model.file().at(model.Part(block, "data")).dataset<double>("res", {1, 2}, {0.1, 1e300});
  orv::File file(model.path());
  EXPECT_THAT(file.values("Speed").at(0).data.vector(), ElementsAre(0.1, 1e300));
  EXPECT_EQ(file.values<float>("Speed").at(0).data[0], 0.1F);
}

TEST_P(ModernValues, OfElementsHaveTheirLayers) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, Elements(1100, {11, 12}, 3));
  orv::File file(model.path());
  const orv::Values<float> values = std::move(file.values<float>("Speed").at(0));
  EXPECT_TRUE(values.on_elements);
  EXPECT_EQ(values.layers, 3U);
  EXPECT_THAT(values.ids, ElementsAre(11, 12));
  EXPECT_THAT(values.data.vector(), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12));
  EXPECT_EQ(values.at(1, 0, 2), 11);
}

TEST_P(ModernValues, OfElementsWithOneLayerOrNoneAreOneForEach) {
  for (const bool has_axis : {true, false}) {
    ForgedModel model = SpeedModel(GetParam());
    ForgedValues elements = Elements(1100, {11, 12}, 1);
    if (!has_axis) elements.shape = {2, 2};
    elements.numl = has_axis ? 1 : 0;
    model.in_state(1, elements);
    orv::File file(model.path());
    EXPECT_THAT(file.values("Speed").at(0).data.vector(), ElementsAre(1, 2, 3, 4));
    EXPECT_EQ(file.values("Speed").at(0).layers, 1U);
  }
}

TEST_P(ModernValues, OfElementsThatAnnounceNoLayersMayHaveTheAxisAllTheSame) {
  ForgedModel model = SpeedModel(GetParam());
  ForgedValues elements = Elements(1100, {11, 12}, 1);
  elements.shape = {2, 1, 2};
  elements.numl = 0;
  model.in_state(1, elements);
  orv::File file(model.path());
  EXPECT_THAT(file.values("Speed", {1, {}, {}, 0, "W"}).at(0).data.vector(), ElementsAre(2, 4));
}

TEST_P(ModernValues, TellWhetherTheFileStoresDoubles) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, SpeedOf({1}, {1, 2})).in_state(2, SpeedOf({1}, {1, 2}));
  const bool is_single = GetParam() == ForgedModel::kSingle;
  model.file()
      .at(ForgedModel::StateGroup(2) + "/entityresults/NODE/Speed/" + (is_single ? "orvblock" : "data"))
      .drop("res")
      .dataset<double>("res", {1, 2}, {0.1, 2});
  orv::File file(model.path());
  EXPECT_FALSE(file.values("Speed", {1}).at(0).is_double);
  EXPECT_TRUE(file.values<float>("Speed", {2}).at(0).is_double);
  EXPECT_EQ(file.values("Speed", {2}).at(0).at(0), 0.1);
  EXPECT_TRUE(file.history("Speed", {1}).is_double);
}

TEST_P(ModernValues, ThatAreComplexArePairs) {
  ForgedModel model = SpeedModel(GetParam());
  ForgedValues wave = SpeedOf({1, 2}, {1, 2, 3, 4, 5, 6, 7, 8});
  wave.kind = 1001;
  wave.nent = 2;
  model.in_state(1, wave);
  orv::File file(model.path());
  const orv::Values<> values = std::move(file.values("Speed").at(0));
  EXPECT_TRUE(values.is_complex);
  EXPECT_EQ(values.row_size(), 4U);
  EXPECT_THAT(values.data.vector(), ElementsAre(1, 2, 3, 4, 5, 6, 7, 8));
  EXPECT_EQ(values.at(1, 1, 0, 1), 8);
  EXPECT_THAT(file.values("Speed", {1, {}, {}, 0, "W"}).at(0).data.vector(), ElementsAre(3, 4, 7, 8));
}

TEST_P(ModernValues, OfComplexElementsHaveLayersAndPairs) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, Elements(1101, {11, 12}, 2));
  orv::File file(model.path());
  EXPECT_THAT(file.values("Speed").at(0).data.vector(),
              ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16));
  EXPECT_THAT(file.values("Speed", {1, {}, {}, 2}).at(0).data.vector(), ElementsAre(5, 6, 7, 8, 13, 14, 15, 16));
  EXPECT_THAT(file.values("Speed", {1, {}, {}, 2, "U"}).at(0).data.vector(), ElementsAre(5, 6, 13, 14));
}

TEST_P(ModernValues, GoByTheCountsOfTheirState) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, Elements(1100, {11, 12}, 1))
      .in_state(2, Elements(1100, {11}, 3))
      .in_state(3, Elements(1100, {11, 12, 13}, 2));
  orv::File file(model.path());
  EXPECT_THAT(file.values("Speed", {2}).at(0).data.vector(), ElementsAre(1, 2, 3, 4, 5, 6));
  EXPECT_EQ(file.values("Speed", {3}).at(0).layers, 2U);
  EXPECT_THAT(file.values("Speed", {3}).at(0).ids, ElementsAre(11, 12, 13));
  EXPECT_THAT(file.values("Speed", {2, {}, {}, 3}).at(0).data.vector(), ElementsAre(5, 6));
  EXPECT_THAT(ErrorOf([&] { (void)file.values("Speed", {3, {}, {}, 3}); }), HasSubstr("on layer 3"));
}

TEST_P(ModernValues, MayBeComplexInSomeStatesOnly) {
  ForgedModel model = SpeedModel(GetParam());
  ForgedValues wave = SpeedOf({1}, {1, 2, 3, 4});
  wave.kind = 1001;
  wave.nent = 1;
  model.in_state(1, SpeedOf({1}, {1, 2})).in_state(2, wave);
  orv::File file(model.path());
  EXPECT_FALSE(file.values("Speed", {1}).at(0).is_complex);
  EXPECT_TRUE(file.values("Speed", {2}).at(0).is_complex);
  EXPECT_THAT(file.values("Speed", {2}).at(0).data.vector(), ElementsAre(1, 2, 3, 4));
}

TEST_P(ModernValues, ThatAreConstantAnswerForStatesWithoutOthers) {
  ForgedModel model = SpeedModel(GetParam());
  model.variable({.name = "Heat", .key = "Heat"});
  model.in_constant({.variable = "Heat", .nent = 1, .values = {9}, .ids = {4}});
  model.in_state(1, SpeedOf({1}, {1, 2}));
  orv::File file(model.path());
  for (const int state : {0, 1}) {
    const orv::Values<> heat = std::move(file.values("Heat", {state}).at(0));
    EXPECT_EQ(heat.state, 0);
    EXPECT_THAT(heat.ids, ElementsAre(4));
    EXPECT_THAT(heat.data.vector(), ElementsAre(9));
  }
  EXPECT_THAT(ErrorOf([&] { (void)file.values("Speed", {0}); }), HasSubstr("has no values of \"Speed\""));
}

TEST_P(ModernValues, OfZonesComeOneByOne) {
  ForgedModel model = SpeedModel(GetParam());
  const auto block = [&](const std::string& zone) {
    return model.Part(ForgedModel::StateGroup(1) + "/entityresults/NODE/Speed/" + zone, "header");
  };
  for (const char* zone : {"inner", "outer"}) {
    ForgedValues speed = SpeedOf({1}, {1, zone[0] == 'i' ? 2.0F : 3.0F});
    speed.group_name = zone;
    model.in_state(1, speed);
    model.file().at(block(zone)).text("etypzone", zone);
  }
  orv::File file(model.path());
  const std::vector<orv::Values<>> all = file.values("Speed");
  ASSERT_THAT(all, SizeIs(2));
  EXPECT_EQ(all[0].zone, "inner");
  EXPECT_EQ(all[1].zone, "outer");
  EXPECT_EQ(all[1].at(0, 1), 3);
}

TEST_P(ModernValues, ThatOnlyLaterStatesHaveAreFoundThere) {
  ForgedModel model = SpeedModel(GetParam());
  model.variable({.name = "Heat", .key = "Heat"});
  model.in_state(1, SpeedOf({1}, {1, 2})).in_state(2, SpeedOf({1}, {3, 4}));
  model.in_state(3, {.variable = "Heat", .nent = 1, .values = {9}, .ids = {4}, .index = {1}});
  orv::File file(model.path());
  EXPECT_THAT(file.values("Heat", {3}).at(0).data.vector(), ElementsAre(9));
  EXPECT_THAT(ErrorOf([&] { (void)file.values("Heat", {2}); }), HasSubstr("has no values of \"Heat\" (state 2)"));
  EXPECT_THAT(ErrorOf([&] { (void)file.values("Speed", {3}); }), HasSubstr("has no values of \"Speed\" (state 3)"));
}

TEST_P(ModernValues, WithoutIdsAreNumbered) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, SpeedOf({}, {1, 2, 3, 4, 5, 6}));
  orv::File file(model.path());
  EXPECT_THAT(file.values("Speed").at(0).ids, ElementsAre(1, 2, 3));
}

TEST_P(ModernValues, MayHaveIdsThatNo32BitsHold) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, SpeedOf({1, 2}, {1, 2, 3, 4}));
  const std::string block = ForgedModel::StateGroup(1) + "/entityresults/NODE/Speed";
  model.file().at(model.Part(block, "data")).dataset<std::int64_t>("entid", {2}, {1LL << 40, 7});
  orv::File file(model.path());
  EXPECT_THAT(file.values("Speed").at(0).ids, ElementsAre(1LL << 40, 7));
  EXPECT_THAT(file.values("Speed", {1, {}, {1LL << 40}}).at(0).data.vector(), ElementsAre(1, 2));
}

TEST_P(ModernValues, MayHaveIdsThatAreALink) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, SpeedOf({5, 6}, {1, 2, 3, 4})).in_state(2, SpeedOf({}, {5, 6, 7, 8}));
  const auto data = [&](int state) {
    return model.Part(ForgedModel::StateGroup(state) + "/entityresults/NODE/Speed", "data");
  };
  model.file().at(data(2)).soft_link("entid", data(1) + "/entid");
  orv::File file(model.path());
  EXPECT_THAT(file.values("Speed", {2}).at(0).ids, ElementsAre(5, 6));
}

TEST_P(ModernValues, OfAHandleAreItsComponent) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, SpeedOf({1, 2}, {1, 2, 3, 4}));
  orv::File file(model.path());
  const std::string name = GetParam() == ForgedModel::kSingle ? "Speed_W" : "W";
  const orv::Values<> values = std::move(file.values(name).at(0));
  EXPECT_EQ(values.variable, name);
  EXPECT_THAT(Names(values.components), ElementsAre(name));
  EXPECT_THAT(values.data.vector(), ElementsAre(2, 4));
}

TEST_F(ModernValues, OfAComputedHandleAreWhatItIsComputedFrom) {
  ForgedModel model;
  model.variable({.name = "Force", .key = "Force", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}});
  model.in_state(1, {.variable = "Force", .nent = 2, .ncoo = 3, .values = {1, 2, 3, 4, 5, 6}, .ids = {1, 2}});
  orv::File file(model.path());
  const orv::Values<> values = std::move(file.values("Force_Magnitude").at(0));
  EXPECT_THAT(Names(values.components), ElementsAre("Force_X", "Force_Y", "Force_Z"));
  EXPECT_THAT(values.data.vector(), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(ModernValues, AreFoundByKeyAndByName) {
  ForgedModel model;
  model.variable({.name = "Stress", .key = "SIG", .ncoo = 2, .labels = {"1", "2"}});
  model.in_state(1, {.variable = "Stress", .nent = 1, .ncoo = 2, .values = {1, 2}, .ids = {1}});
  orv::File file(model.path());
  for (const char* name : {"Stress", "sig"}) {
    EXPECT_THAT(file.values(name).at(0).data.vector(), ElementsAre(1, 2));
    EXPECT_EQ(file.values(name).at(0).variable, "Stress");
  }
}

/// Stress and strain side by side in one result.
class ModernGroupValues : public OrvTest {
 protected:
  ModernGroupValues() {
    model_.variable({.name = "Stress", .key = "SIG", .ncoo = 2, .labels = {"S1", "S2"}});
    model_.variable({.name = "Strain", .key = "EPS", .ncoo = 1, .labels = {"E1"}});
    model_.group("BOTH", 3, {{"SIG", 2, 0}, {"EPS", 1, 2}}).group("ALONE", 2, {{"SIG", 2, 0}});
    model_.in_state(1, {.variable = "BOTH", .nent = 2, .ncoo = 3, .values = {1, 2, 3, 4, 5, 6}, .ids = {1, 2}});
  }
  ForgedModel model_;
};

TEST_F(ModernGroupValues, UnderItsNameAreThoseOfAllItsVariables) {
  orv::File file(model_.path());
  const orv::Values<> all = std::move(file.values("both").at(0));
  EXPECT_EQ(all.variable, "BOTH");
  EXPECT_THAT(Names(all.components), ElementsAre("S1", "S2", "E1"));
  EXPECT_THAT(all.data.vector(), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_F(ModernGroupValues, UnderTheNameOrKeyOfAVariableAreItsOwn) {
  orv::File file(model_.path());
  for (const char* name : {"Strain", "EPS"}) {
    const orv::Values<> strain = std::move(file.values(name).at(0));
    EXPECT_EQ(strain.variable, "Strain");
    EXPECT_THAT(Names(strain.components), ElementsAre("E1"));
    EXPECT_THAT(strain.data.vector(), ElementsAre(3, 6));
  }
  EXPECT_THAT(file.values("Stress").at(0).data.vector(), ElementsAre(1, 2, 4, 5));
  EXPECT_THAT(file.values("Stress", {1, {}, {}, 0, "S2"}).at(0).data.vector(), ElementsAre(2, 5));
}

TEST_F(ModernGroupValues, OfOneVariableAreReadWithAnyNameOfTheGroup) {
  model_.in_state(1, {.variable = "ALONE", .nent = 1, .ncoo = 2, .values = {7, 8}, .ids = {9}});
  orv::File file(model_.path());
  EXPECT_THAT(file.values("ALONE").at(0).data.vector(), ElementsAre(7, 8));
  EXPECT_EQ(file.values("ALONE").at(0).variable, "ALONE");
}

TEST_F(ModernGroupValues, WhoseVariablesAreMissingAreNotDefined) {
  model_.group("GONE", 1, {{"NONE", 1, 0}});
  model_.in_state(1, {.variable = "GONE", .nent = 1, .values = {7}, .ids = {9}});
  orv::File file(model_.path());
  EXPECT_THAT(ErrorOf([&] { (void)file.values("GONE"); }), HasSubstr("not defined"));
}

TEST_F(ModernValues, WithoutLabelsHaveNumberedComponents) {
  ForgedModel model;
  model.variable({.name = "Pair", .key = "Pair", .ncoo = 2});
  model.in_state(1, {.variable = "Pair", .nent = 1, .ncoo = 2, .values = {1, 2}, .ids = {1}});
  orv::File file(model.path());
  EXPECT_THAT(Names(file.values("Pair").at(0).components), ElementsAre("C1", "C2"));
}

TEST_F(ModernValues, ThatWereNeverWrittenAreZeroes) {
  ForgedModel model = SpeedModel();
  model.in_state(1, SpeedOf({1, 2}, {1, 2, 3, 4}));
  model.file().at(SpeedBlock(1)).drop("res").raw([](hid_t here) {
    const hsize_t extents[] = {2, 2};
    const Id space(H5Screate_simple(2, extents, nullptr), "space");
    const Id plist(H5Pcreate(H5P_DATASET_CREATE), "list");
    ASSERT_GE(H5Pset_fill_time(plist.get(), H5D_FILL_TIME_NEVER), 0);
    const Id set(H5Dcreate2(here, "res", H5T_IEEE_F32LE, space.get(), H5P_DEFAULT, plist.get(), H5P_DEFAULT), "res");
  });
  orv::File file(model.path());
  EXPECT_THAT(file.values<float>("Speed").at(0).data.vector(), ElementsAre(0, 0, 0, 0));
}

}  // namespace
