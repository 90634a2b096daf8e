// What a file tells of itself through the modern face: origin, states, definitions, results, mesh. Values are in
// values_test.cpp.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "modern/modern_files.h"
#include "orvio/orv.hpp"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

std::vector<std::string> Names(const std::vector<orv::Component>& components) {
  std::vector<std::string> names;
  for (const orv::Component& c : components) names.push_back(c.name + "[" + c.unit + "]");
  return names;
}

class ModernFile : public OrvTest, public testing::WithParamInterface<ForgedModel::Layout> {};

INSTANTIATE_TEST_SUITE_P(Layouts, ModernFile, testing::Values(ForgedModel::kSingle, ForgedModel::kSplit), LayoutName);

TEST_P(ModernFile, IsMovedAndNotCopied) {
  static_assert(std::is_nothrow_move_constructible_v<orv::File>);
  static_assert(!std::is_copy_constructible_v<orv::File>);
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, SpeedOf({1}, {1, 2}));
  orv::File file(model.path());
  orv::File moved = std::move(file);
  EXPECT_THAT(moved.values("Speed"), SizeIs(1));
}

TEST_P(ModernFile, TellsItsOriginAndVersion) {
  ForgedModel model = SpeedModel(GetParam());
  model.system().in_state(1, SpeedOf({1}, {1, 2}));
  orv::File file(model.path());
  EXPECT_EQ(file.version(), GetParam() == ForgedModel::kSingle ? "2.2.0" : "1.1.0");
  EXPECT_EQ(file.title(), "A plate");
  EXPECT_EQ(file.solver(), "forge");
  EXPECT_EQ(file.solver_version(), "1.2");
  EXPECT_EQ(file.unit_system(), "mm-t-s");
  EXPECT_EQ(file.path(), model.path());
}

TEST_P(ModernFile, WithoutResultsTellsItsOriginTheSame) {
  ForgedModel model(GetParam());
  model.system();
  orv::File file(model.path());
  EXPECT_EQ(file.title(), "A plate");
  EXPECT_EQ(file.state_count(), 0);
  EXPECT_EQ(file.last_state(), 0);
  EXPECT_THAT(file.states(), IsEmpty());
  EXPECT_THAT(file.variables(), IsEmpty());
  EXPECT_THAT(file.results(), IsEmpty());
  EXPECT_THAT(file.elements(), IsEmpty());
  EXPECT_THAT(file.parts(), IsEmpty());
  EXPECT_THAT(file.index_columns(), IsEmpty());
}

TEST_P(ModernFile, WithoutOriginHasEmptyTexts) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, SpeedOf({1}, {1, 2}));
  orv::File file(model.path());
  EXPECT_EQ(file.title() + file.solver() + file.solver_version() + file.unit_system(), "");
}

TEST_P(ModernFile, ListsStatesWithTheirIndex) {
  ForgedModel model = SpeedModel(GetParam());
  ForgedValues speed = SpeedOf({1}, {1, 2});
  for (const int state : {1, 2, 3}) {
    speed.index = {0.5F * static_cast<float>(state), 7};
    model.in_state(state, speed);
  }
  orv::File file(model.path());
  const std::vector<orv::State> states = file.states();
  ASSERT_THAT(states, SizeIs(3));
  EXPECT_EQ(states[2].number, 3);
  EXPECT_THAT(states[2].index, ElementsAre(1.5, 7));
  EXPECT_EQ(states[1].time(), 1.0);
  EXPECT_THAT(file.state(1).index, ElementsAre(0.5, 7));
}

TEST_P(ModernFile, NamesTheColumnsOfTheIndex) {
  ForgedModel model = SpeedModel(GetParam());
  ForgedValues speed = SpeedOf({1}, {1, 2});
  speed.index = {0.5, 7};
  model.in_state(1, speed);
  if (GetParam() == ForgedModel::kSplit) model.index_types({"TIME", "STEP"});
  orv::File file(model.path());
  const std::vector<std::string> named = {"TIME[]", "STEP[]"}, numbered = {"index 1[]", "index 2[]"};
  EXPECT_EQ(Names(file.index_columns()), GetParam() == ForgedModel::kSplit ? named : numbered);
}

TEST_P(ModernFile, GivesColumnsTheirUnits) {
  ForgedModel model(GetParam());
  model.system().variable({.name = "TIME", .key = "TIME"}).units("TIME", {.mbunit = {1}, .ubid = {2}, .ubexp = {1}});
  model.variable({.name = "Speed", .key = "Speed", .ncoo = 2});
  if (GetParam() == ForgedModel::kSingle) {
    model.group("INDEX", 1, {{"TIME", 1, 0}}).group("Speed", 2, {{"Speed", 2, 0}}).index_types_of_group("INDEX", 1);
  } else {
    model.index_types({"TIME"});
  }
  model.in_state(1, SpeedOf({1}, {1, 2}));
  orv::File file(model.path());
  EXPECT_THAT(Names(file.index_columns()), ElementsAre("TIME[s]"));
}

TEST_P(ModernFile, DescribesVariables) {
  ForgedModel model(GetParam());
  model.system().variable({.name = "Stress",
                           .key = "S",
                           .class_word = "CLASS_STRESS",
                           .ncoo = 6,
                           .rank = 2,
                           .tensor = 1,
                           .labels = {"XX", "YY", "ZZ", "XY", "YZ", "ZX"}});
  model.units(GetParam() == ForgedModel::kSingle ? "S" : "Stress",
              {.mbunit = {1, 1, 1, 1, 1, 1}, .ubid = {1, 1, 1, 1, 1, 1}, .ubexp = {-1, -1, -1, -1, -1, -1}});
  ForgedValues stress{.variable = "Stress", .nent = 1, .ncoo = 6, .values = {1, 2, 3, 4, 5, 6}, .ids = {1}};
  model.in_state(1, stress);
  orv::File file(model.path());
  const std::vector<orv::Variable> variables = file.variables();
  ASSERT_THAT(variables, SizeIs(1));
  EXPECT_EQ(variables[0].name, "Stress");
  EXPECT_EQ(variables[0].key, GetParam() == ForgedModel::kSingle ? "S" : "");
  EXPECT_EQ(variables[0].quantity_class, GetParam() == ForgedModel::kSingle ? "CLASS_STRESS" : "");
  EXPECT_EQ(variables[0].shape, orv::Shape::tensor);
  EXPECT_THAT(Names(variables[0].components),
              ElementsAre("XX[1/mm]", "YY[1/mm]", "ZZ[1/mm]", "XY[1/mm]", "YZ[1/mm]", "ZX[1/mm]"));
  EXPECT_THAT(variables[0].computed, testing::Contains(testing::HasSubstr("Von Mises")));
}

TEST_P(ModernFile, ListsResultsOfAllPlaces) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_constant({.variable = "Speed", .nent = 1, .ncoo = 2, .values = {1, 2}, .ids = {1}});
  model.in_state(1, SpeedOf({1}, {1, 2}));
  ForgedValues later{.kind = 1101, .etyp = "HEX8", .variable = "Speed", .nent = 1, .ncoo = 2, .numl = 2};
  later.values = {1, 2, 3, 4, 5, 6, 7, 8};
  model.in_state(2, later);
  model.in_multistate({.kind = 1050, .variable = "Speed", .nent = 1, .ncoo = 2, .nstate = 1, .values = {1, 2}});
  orv::File file(model.path());
  std::vector<std::string> list;
  for (const orv::Result& r : file.results()) {
    list.push_back(r.variable + " " + r.entity + " " + std::to_string(static_cast<int>(r.place)) + " " +
                   std::to_string(r.components) + "x" + std::to_string(r.layers) + (r.on_elements ? " elements" : "") +
                   (r.is_complex ? " complex" : ""));
  }
  EXPECT_THAT(list, testing::UnorderedElementsAre("Speed NODE 0 2x1", "Speed NODE 1 2x1",
                                                  "Speed HEX8 1 2x2 elements complex", "Speed NODE 2 2x1"));
}

TEST_F(ModernFile, ReadsTheMeshOfAStateThatHasOne) {
  ForgedModel model = SpeedModel();
  PutElements(model.file(), "/post/constant", "QUAD4", {11, 12}, {1, 2, 3, 4, 2, 5, 6, 3}, {1, 2}, "SHELL");
  PutElements(model.file(), ForgedModel::StateGroup(2), "TRIA3", {21}, {1, 2, 3}, {7});
  model.in_state(1, SpeedOf({1}, {1, 2}));
  orv::File file(model.path());
  const std::vector<orv::Elements> constant = file.elements();
  ASSERT_THAT(constant, SizeIs(1));
  EXPECT_EQ(constant[0].type, "QUAD4");
  EXPECT_EQ(constant[0].family, "SHELL");
  EXPECT_EQ(constant[0].dimension, 2);
  EXPECT_EQ(constant[0].nodes_per_element, 4U);
  EXPECT_THAT(constant[0].ids, ElementsAre(11, 12));
  EXPECT_THAT(constant[0].nodes, ElementsAre(1, 2, 3, 4, 2, 5, 6, 3));
  EXPECT_THAT(constant[0].parts, ElementsAre(1, 2));
  EXPECT_THAT(file.elements(1), IsEmpty());
  ASSERT_THAT(file.elements(2), SizeIs(1));
  EXPECT_THAT(file.elements(2)[0].ids, ElementsAre(21));
}

TEST_F(ModernFile, ReadsElementsOfOneTypeAlone) {
  ForgedModel model = SpeedModel();
  PutElements(model.file(), "/post/constant", "QUAD4", {11}, {1, 2, 3, 4}, {1});
  PutElements(model.file(), "/post/constant", "TRIA3", {21}, {1, 2, 3}, {7});
  orv::File file(model.path());
  const std::vector<orv::Elements> some = file.elements(0, "tria3");
  ASSERT_THAT(some, SizeIs(1));
  EXPECT_THAT(some[0].ids, ElementsAre(21));
  EXPECT_THAT(file.elements(0, "HEX8"), IsEmpty());
}

TEST_F(ModernFile, ReadsIdsOfElementsThatNo32BitsHold) {
  ForgedModel model = SpeedModel();
  PutElements(model.file(), "/post/constant", "LINE2", {1}, {1, 2}, {1});
  model.file().dataset<std::int64_t>("idele", {1}, {1LL << 40}).dataset<std::int64_t>("ic", {1, 2}, {1LL << 41, 3});
  orv::File file(model.path());
  EXPECT_THAT(file.elements()[0].ids, ElementsAre(1LL << 40));
  EXPECT_THAT(file.elements()[0].nodes, ElementsAre(1LL << 41, 3));
}

TEST_F(ModernFile, TakesADimensionThatIsNoneForUnknown) {
  ForgedModel model = SpeedModel();
  PutElements(model.file(), "/post/constant", "LINE2", {1}, {1, 2}, {1});
  model.file().integer("ndim", (1LL << 32) + 3);
  orv::File file(model.path());
  EXPECT_EQ(file.elements()[0].dimension, -1);
}

TEST_F(ModernFile, ReadsPartsWithTheirTitles) {
  ForgedModel model = SpeedModel();
  PutParts(model.file(), "/post/constant", {3, 4}, {"seventh", "x"});  // one byte short of its slot, and more
  model.file().dataset<std::int32_t>("mid", {2}, {30, 40});
  PutParts(model.file(), ForgedModel::StateGroup(1), {5}, {"moved"});
  orv::File file(model.path());
  const std::vector<orv::Part> parts = file.parts();
  ASSERT_THAT(parts, SizeIs(2));
  EXPECT_EQ(parts[0].id, 3);
  EXPECT_EQ(parts[0].title, "seventh");
  EXPECT_EQ(parts[0].type, "PART");
  EXPECT_EQ(parts[1].material, 40);
  EXPECT_EQ(parts[1].material_type, std::nullopt);
  ASSERT_THAT(file.parts(1), SizeIs(1));
  EXPECT_EQ(file.parts(1)[0].title, "moved");
}

TEST_F(ModernFile, ReadsCoordinatesOfSeveralZonesOneBehindTheOther) {
  ForgedModel model;
  model.variable(
      {.name = "COORDINATE", .key = "COORDINATE", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}});
  ForgedValues zone{.variable = "COORDINATE", .nent = 1, .ncoo = 3, .values = {1, 2, 3}, .ids = {7}, .group_name = "a"};
  model.in_constant(zone);
  zone.values = {4, 5, 6};
  zone.ids = {8};
  zone.group_name = "b";
  model.in_constant(zone);
  orv::File file(model.path());
  const orv::Values<float> nodes = file.coordinates<float>();
  EXPECT_THAT(nodes.ids, ElementsAre(7, 8));
  EXPECT_THAT(nodes.data.vector(), ElementsAre(1, 2, 3, 4, 5, 6));
}

TEST_P(ModernFile, SeesWhatHasGrownAfterARefresh) {
  ForgedModel model(GetParam());
  model.file().at(ForgedModel::StateGroup(1)).at("/post/singlestate").drop("state000000000001");
  orv::File file(model.path());
  ASSERT_EQ(file.state_count(), 0);
  model.variable({.name = "Speed", .key = "Speed", .ncoo = 2, .labels = {"U", "W"}});
  model.in_state(1, SpeedOf({1}, {1, 2})).in_state(2, SpeedOf({1, 2}, {1, 2, 3, 4}));
  (void)model.path();
  EXPECT_EQ(file.state_count(), 0);
  file.refresh();
  EXPECT_EQ(file.state_count(), 2);
  EXPECT_THAT(file.values("Speed").at(0).ids, ElementsAre(1, 2));
  EXPECT_THAT(file.states(), SizeIs(2));
}

TEST_P(ModernFile, ReadsTheSameWhileItIsKeptOpen) {
  ForgedModel model = SpeedModel(GetParam());
  model.in_state(1, SpeedOf({1, 2}, {1, 2, 3, 4}));
  orv::File file(model.path());
  file.keep_open();
  EXPECT_THAT(file.values("Speed").at(0).data.vector(), ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(file.history("Speed", {2}, "W").curves.at(0).values, ElementsAre(4.0));
  file.keep_open(false);
  EXPECT_THAT(file.values("Speed").at(0).data.vector(), ElementsAre(1, 2, 3, 4));
}

TEST_F(ModernFile, ReadsVersionsThatAreNotWritten) {
  for (const int minor : {3, 4, 5}) {
    ForgedModel model = SpeedModel();
    model.file().header(2, minor, 0);
    model.in_state(1, SpeedOf({1}, {1, 2}));
    orv::File file(model.path());
    EXPECT_EQ(file.version(), "2." + std::to_string(minor) + ".0");
    EXPECT_THAT(file.values("Speed").at(0).data.vector(), ElementsAre(1, 2));
  }
}

}  // namespace
