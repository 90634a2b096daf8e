// The choice of values: ids, parts, layers, components, entity types.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <numeric>
#include <string>
#include <vector>

#include "modern/modern_files.h"
#include "orvio/orv.hpp"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::SizeIs;

class ModernSelection : public OrvTest {
 protected:
  /// Two quads of two parts in the constant section, values at nodes, and those of the quads in two layers.
  ModernSelection() : model_(SpeedModel()) {
    model_.variable({.name = "Heat", .key = "Heat"});
    PutElements(model_.file(), "/post/constant", "QUAD4", {11, 12}, {1, 2, 3, 4, 2, 5, 6, 3}, {0, 2}, "SHELL");
    model_.in_state(1, SpeedOf({1, 2, 3, 4, 5, 6}, {1, 1, 2, 2, 3, 3, 4, 4, 5, 5, 6, 6}));
    ForgedValues heat{.kind = 1100, .etyp = "QUAD4", .variable = "Heat", .nent = 2, .numl = 2, .values = {1, 2, 3, 4}};
    heat.ids = {11, 12};
    model_.in_state(1, heat);
    heat.kind = 1000;
    heat.etyp = "NODE";
    heat.values = {5, 6};
    heat.ids = {1, 5};
    model_.in_state(1, heat);
  }

  ForgedModel model_;
};

TEST_F(ModernSelection, OfIdsGivesThemInTheirOrderAndLeavesOutTheOthers) {
  orv::File file(model_.path());
  orv::Selection some;
  some.ids = {5, 99, 2, 5};
  const orv::Values<> values = std::move(file.values("Speed", some).at(0));
  EXPECT_THAT(values.ids, ElementsAre(5, 2, 5));
  EXPECT_THAT(values.data.vector(), ElementsAre(5, 5, 2, 2, 5, 5));
  some.ids = {99};
  EXPECT_THAT(ErrorOf([&] { (void)file.values("Speed", some); }), HasSubstr("at the ids that are asked for"));
}

TEST_F(ModernSelection, OfIdsTakesTheFirstOfRowsThatShareOne) {
  model_.in_state(2, SpeedOf({7, 7}, {1, 2, 3, 4}));
  orv::File file(model_.path());
  EXPECT_THAT(file.values("Speed", {2, {}, {7}}).at(0).data.vector(), ElementsAre(1, 2));
}

TEST_F(ModernSelection, OfAPartGivesItsElementsAndTheirNodes) {
  orv::File file(model_.path());
  orv::Selection part;
  part.part = 2;
  EXPECT_THAT(file.values("Speed", part).at(0).ids, ElementsAre(2, 3, 5, 6));
  const std::vector<orv::Values<>> heat = file.values("Heat", part);
  ASSERT_THAT(heat, SizeIs(2));
  EXPECT_THAT(heat[0].ids, ElementsAre(5));
  EXPECT_THAT(heat[1].ids, ElementsAre(12));
  EXPECT_THAT(heat[1].data.vector(), ElementsAre(3, 4));
  part.ids = {6, 1, 2};
  EXPECT_THAT(file.values("Speed", part).at(0).ids, ElementsAre(6, 2));
  part.part = 9;
  EXPECT_THAT(ErrorOf([&] { (void)file.values("Speed", part); }), HasSubstr("on part 9"));
}

TEST_F(ModernSelection, OfAPartMayBeThatWithTheIdZero) {
  orv::File file(model_.path());
  orv::Selection part;
  part.part = 0;
  EXPECT_THAT(file.values("Speed", part).at(0).ids, ElementsAre(1, 2, 3, 4));
}

TEST_F(ModernSelection, OfAPartFindsValuesUnderTheGenericElementType) {
  ForgedValues heat{.kind = 1100, .etyp = "SHELL", .variable = "Heat", .nent = 2, .numl = 1, .values = {7, 8}};
  heat.ids = {11, 12};
  model_.in_state(2, heat);
  orv::File file(model_.path());
  orv::Selection part;
  part.part = 2;
  EXPECT_THAT(file.values("Heat", part).at(0).ids, ElementsAre(12));
}

TEST_F(ModernSelection, OfAPartGoesByTheMeshOfTheStateWhereItHasOne) {
  model_.in_state(2, SpeedOf({1, 2, 3, 4, 5, 6}, std::vector<float>(12, 1)));
  model_.in_state(3, SpeedOf({1, 2, 3, 4, 5, 6}, std::vector<float>(12, 1)));
  PutElements(model_.file(), ForgedModel::StateGroup(2), "TRIA3", {31}, {1, 4, 6}, {2});
  orv::File file(model_.path());
  orv::Selection part;
  part.part = 2;
  part.state = 2;
  EXPECT_THAT(file.values("Speed", part).at(0).ids, ElementsAre(1, 4, 6));
  part.state = 3;
  EXPECT_THAT(file.values("Speed", part).at(0).ids, ElementsAre(2, 3, 5, 6));
}

TEST_F(ModernSelection, OfALayerGivesThatOfElementsAlone) {
  orv::File file(model_.path());
  orv::Selection layer;
  layer.layer = 2;
  const std::vector<orv::Values<>> heat = file.values("Heat", layer);
  ASSERT_THAT(heat, SizeIs(1));
  EXPECT_EQ(heat[0].layers, 1U);
  EXPECT_THAT(heat[0].data.vector(), ElementsAre(2, 4));
  layer.layer = -1;
  EXPECT_THAT(ErrorOf([&] { (void)file.values("Heat", layer); }), HasSubstr("no layers below 1"));
}

TEST_F(ModernSelection, OfAComponentGivesItByItsName) {
  orv::File file(model_.path());
  orv::Selection component;
  component.component = "w";
  const orv::Values<> values = std::move(file.values("Speed", component).at(0));
  ASSERT_THAT(values.components, SizeIs(1));
  EXPECT_EQ(values.components[0].name, "W");
  EXPECT_THAT(values.data.vector(), ElementsAre(1, 2, 3, 4, 5, 6));
  component.component = "Q";
  EXPECT_THAT(ErrorOf([&] { (void)file.values("Speed", component); }),
              HasSubstr("has no component \"Q\"; its components are U, W"));
}

TEST_F(ModernSelection, OfAComponentGivesItByItsNumber) {
  orv::File file(model_.path());
  orv::Selection component;
  component.component = "2";
  EXPECT_EQ(file.values("Speed", component).at(0).components.at(0).name, "W");
  for (const char* none : {"0", "3", "-1", "1 ", "4294967297"}) {
    component.component = none;
    EXPECT_THAT(ErrorOf([&] { (void)file.values("Speed", component); }), HasSubstr("its components are U, W")) << none;
  }
}

TEST_F(ModernSelection, OfWhatIsNotThereIsFoundNowhere) {
  orv::File file(model_.path());
  orv::Selection none;
  EXPECT_THAT(file.find_values("Speed", none), SizeIs(1));
  EXPECT_THAT(file.find_values("Nothing", none), SizeIs(0));
  none.ids = {99};
  EXPECT_THAT(file.find_values("Speed", none), SizeIs(0));
  none.state = 2;
  EXPECT_THAT(ErrorOf([&] { (void)file.find_values("Speed", none); }), HasSubstr("has no state 2"));
}

TEST_F(ModernSelection, OfAnEntityTypeGivesItsValuesAlone) {
  orv::File file(model_.path());
  orv::Selection entity;
  entity.entity = "quad4";
  const std::vector<orv::Values<>> heat = file.values("Heat", entity);
  ASSERT_THAT(heat, SizeIs(1));
  EXPECT_EQ(heat[0].entity, "QUAD4");
  entity.entity = "HEX8";
  EXPECT_THAT(ErrorOf([&] { (void)file.values("Heat", entity); }), HasSubstr("of \"HEX8\""));
}

/// So many entities that few of them are read by their rows.
class ModernFewOfMany : public OrvTest {
 protected:
  static constexpr int kEntities = 3000;

  static ForgedValues Many(int first_id, int step, float first_value) {
    std::vector<int> ids(kEntities);
    std::vector<float> values(std::size_t{2} * kEntities);
    for (int i = 0; i < kEntities; ++i) ids[static_cast<std::size_t>(i)] = first_id + step * i;
    std::iota(values.begin(), values.end(), first_value);
    return SpeedOf(ids, values);
  }
  static std::vector<double> At(orv::File& file, int state, std::vector<std::int64_t> ids) {
    orv::Selection some;
    some.state = state;
    some.ids = std::move(ids);
    return file.values("Speed", some).at(0).data.vector();
  }
};

TEST_F(ModernFewOfMany, AreFoundWhereverTheyStandInEachState) {
  ForgedModel model = SpeedModel();
  model.in_state(1, Many(1, 1, 0)).in_state(2, Many(1, 1, 10000));
  model.in_state(3, Many(kEntities, -1, 0)).in_state(4, Many(2, 1, 0));
  orv::File file(model.path());
  EXPECT_THAT(At(file, 1, {10, 3, 10}), ElementsAre(18, 19, 4, 5, 18, 19));
  EXPECT_THAT(At(file, 2, {10, 3, 10}), ElementsAre(10018, 10019, 10004, 10005, 10018, 10019));
  EXPECT_THAT(At(file, 3, {10, 3, 10}), ElementsAre(5980, 5981, 5994, 5995, 5980, 5981));
  EXPECT_THAT(At(file, 4, {10, 3, 10}), ElementsAre(16, 17, 2, 3, 16, 17));
  EXPECT_THAT(At(file, 4, {1, 3}), ElementsAre(2, 3));
  EXPECT_THAT(At(file, 1, {1, 3}), ElementsAre(0, 1, 4, 5));
}

TEST_F(ModernFewOfMany, AreFoundWithoutStoredIds) {
  ForgedModel model = SpeedModel();
  ForgedValues many = Many(1, 1, 0);
  many.ids.clear();
  model.in_state(1, many).in_state(2, Many(2, 1, 0));
  orv::File file(model.path());
  EXPECT_THAT(At(file, 1, {2}), ElementsAre(2, 3));
  EXPECT_THAT(At(file, 2, {2}), ElementsAre(0, 1));
  EXPECT_THAT(At(file, 1, {2}), ElementsAre(2, 3));
}

TEST_F(ModernFewOfMany, AreReadWithOneLayerOfOneComponent) {
  ForgedModel model = SpeedModel();
  ForgedValues many = Many(1, 1, 0);
  many.kind = 1100;
  many.etyp = "QUAD4";
  many.nent = kEntities / 2;
  many.numl = 2;
  many.ids.resize(kEntities / 2);
  model.in_state(1, many);
  orv::File file(model.path());
  const orv::Values<> values = std::move(file.values("Speed", {1, {}, {7, 1}, 2, "W"}).at(0));
  EXPECT_THAT(values.ids, ElementsAre(7, 1));
  EXPECT_THAT(values.data.vector(), ElementsAre(27, 3));
}

TEST_F(ModernFewOfMany, OfADamagedBlockAreAnError) {
  ForgedModel model = SpeedModel();
  model.in_state(1, Many(1, 1, 0)).in_state(2, Many(1, 1, 0));
  model.file().at(SpeedBlock(2)).dataset<float>("res", {2, 2}, {1, 2, 3, 4});
  orv::File file(model.path());
  EXPECT_THAT(At(file, 1, {2500}), ElementsAre(4998, 4999));
  EXPECT_FALSE(ErrorOf([&] { (void)At(file, 2, {2500}); }).empty());
}

}  // namespace
