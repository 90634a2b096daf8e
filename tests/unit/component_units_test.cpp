// The units that handles show after a start-up with units. Their texts are in unit_text_test, the units of a component
// on demand in tests/filer.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

#include "filer/container.h"
#include "orvio/orv_filer.h"
#include "support/forged_model.h"
#include "support/messages.h"
#include "support/one_node_results.h"
#include "support/orv_test.h"

namespace {

using orv_test::ForgedModel;
using orv_test::ForgedUnits;
using orv_test::OneNodeHistory;
using orv_test::OneNodeResult;
using testing::Each;
using testing::ElementsAre;

constexpr char kNone[] = "(none)";

struct OpenFiler : ORVFiler {
  explicit OpenFiler(ForgedModel& model, bool with_units = true) : ORVFiler(model.path().c_str()) {
    const orv_test::Messages dropped;
    if (with_units) SetConfig(ORV_CONFIG_ASSIGN_UNITS);
    int next_id = 5;
    EXPECT_EQ(InitReader(next_id), 0);
  }
  using ORVFiler::ClearAll;
  ORVContainer& data() { return *m_pData; }

  /// Of all handles, in the order of their making.
  std::vector<std::string> Units() {
    std::vector<std::string> texts;
    for (const ORVExtVar* handle : GetExtVariables()) {
      texts.emplace_back(handle->GetUnit() ? handle->GetUnit()->GetUnitCStr() : kNone);
    }
    return texts;
  }
};

/// mm, s^2 and mm/s.
const ForgedUnits kThreeUnits = {.mbunit = {1, 1, 2}, .ubid = {1, 2, 1, 2}, .ubexp = {1, 2, 1, -1}};

/// A file with the units mm (1), s (2) and mm/s (11), and a variable "Speed" of three scalars.
ForgedModel ForgeSpeed(ForgedModel::Layout layout = ForgedModel::kSingle) {
  ForgedModel model(layout);
  model.system().variable({.name = "Speed", .key = "S", .ncoo = 3, .labels = {"a", "b", "c"}});
  return model;
}

class ComponentUnits : public orv_test::OrvTest {};

TEST_F(ComponentUnits, AreThoseThatTheVariableLists) {
  ForgedModel model = ForgeSpeed();
  model.units("S", kThreeUnits).in_state(1, OneNodeResult("Speed", 3));
  OpenFiler filer(model);
  EXPECT_THAT(filer.Units(), ElementsAre("mm", "s^2", "mm/s"));
}

TEST_F(ComponentUnits, AreListedInTheSplitLayoutToo) {
  ForgedModel model = ForgeSpeed(ForgedModel::kSplit);
  model.units("Speed", kThreeUnits).in_state(1, OneNodeResult("Speed", 3));
  OpenFiler filer(model);
  EXPECT_THAT(filer.Units(), ElementsAre("mm", "s^2", "mm/s"));
}

TEST_F(ComponentUnits, AreObjectsOfTheirOwnWithTheIdOfTheHandle) {
  ForgedModel model = ForgeSpeed();
  model.units("S", kThreeUnits).in_state(1, OneNodeResult("Speed", 3));
  OpenFiler filer(model);
  ASSERT_EQ(filer.data().component_units.size(), 3U);
  for (int i = 0; i < 3; ++i) {
    const ORVUnit* unit = filer.GetExtVariables().at(static_cast<std::size_t>(i))->GetUnit();
    EXPECT_EQ(unit, filer.data().component_units[static_cast<std::size_t>(i)]);
    EXPECT_EQ(unit->GetUnitId(), 5 + i);
    EXPECT_EQ(unit->GetUnitType(), ORV_UNIT_DERIVED);
    float shift = 9;
    EXPECT_EQ(unit->GetConversionFactors(shift), 1.0F);
    EXPECT_EQ(shift, 0.0F);
  }
}

TEST_F(ComponentUnits, AreNotMadeWhereTheConfigurationDoesNotAskForThem) {
  ForgedModel model = ForgeSpeed();
  model.units("S", kThreeUnits).in_state(1, OneNodeResult("Speed", 3));
  OpenFiler filer(model, false);
  EXPECT_THAT(filer.Units(), ElementsAre(kNone, kNone, kNone));
  EXPECT_TRUE(filer.data().component_units.empty());
}

TEST_F(ComponentUnits, AreNotMadeWithoutAUnitSystem) {
  ForgedModel model;
  model.variable({.name = "Speed", .key = "S", .ncoo = 3})
      .units("S", kThreeUnits)
      .in_state(1, OneNodeResult("Speed", 3));
  OpenFiler filer(model);
  EXPECT_THAT(filer.Units(), ElementsAre(kNone, kNone, kNone));
}

TEST_F(ComponentUnits, AreNotMadeForComponentsWithoutUnits) {
  ForgedModel model = ForgeSpeed();
  model.units("S", {.mbunit = {1, 0, 1}, .ubid = {1, 2}, .ubexp = {1, 1}, .mdunit = {0, 0, 0}});
  model.in_state(1, OneNodeResult("Speed", 3));
  OpenFiler filer(model);
  EXPECT_THAT(filer.Units(), ElementsAre("mm", kNone, "s"));
  EXPECT_EQ(filer.data().component_units.size(), 2U);
}

TEST_F(ComponentUnits, AreNotMadeForAVariableWithoutTables) {
  ForgedModel model = ForgeSpeed();
  model.in_state(1, OneNodeResult("Speed", 3));
  OpenFiler filer(model);
  EXPECT_THAT(filer.Units(), ElementsAre(kNone, kNone, kNone));
}

TEST_F(ComponentUnits, HaveTheBaseUnitsAndTheDerivedOnesOfTheComponent) {
  ForgedModel model = ForgeSpeed();
  model.units("S", {.mbunit = {1, 0, 1},
                    .ubid = {1, 2},
                    .ubexp = {1, -1},
                    .mdunit = {0, 1, 2},
                    .udid = {11, 11, 11},
                    .udexp = {2, 1, -1}});
  model.in_state(1, OneNodeResult("Speed", 3));
  OpenFiler filer(model);
  EXPECT_THAT(filer.Units(), ElementsAre("mm", "mm/s^2", "mm/s/(s mm/s)"));
}

TEST_F(ComponentUnits, HaveNoUnitsThatTheFileDoesNotKnow) {
  ForgedModel model = ForgeSpeed();
  model.units("S", {.mbunit = {2, 1, 0},
                    .ubid = {77, 1, 11},  // the last is a derived unit
                    .ubexp = {1, 1, 1},
                    .mdunit = {0, 0, 1},
                    .udid = {1},
                    .udexp = {1}});
  model.in_state(1, OneNodeResult("Speed", 3));
  OpenFiler filer(model);
  EXPECT_THAT(filer.Units(), ElementsAre("mm", "", ""));
}

TEST_F(ComponentUnits, HaveTheFirstUnitOfAnId) {
  ForgedModel model = ForgeSpeed();
  model.units("S", {.mbunit = {1, 1, 1}, .ubid = {2, 2, 1}, .ubexp = {1, 2, 1}}).in_state(1, OneNodeResult("Speed", 3));
  model.file().at("/post/constant/system/orvblock").dataset<std::int32_t>("ubid", {2}, {2, 2});
  OpenFiler filer(model);
  EXPECT_THAT(filer.Units(), ElementsAre("mm", "mm^2", ""));
}

TEST_F(ComponentUnits, OfComputedComponentsAreThoseOfTheirFirstInput) {
  ForgedModel model;
  model.system().variable({.name = "Speed", .key = "S", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}});
  model.units("S", kThreeUnits).in_state(1, OneNodeResult("Speed", 3));
  OpenFiler filer(model);
  EXPECT_THAT(filer.Units(), ElementsAre("mm", "s^2", "mm/s", "mm"));
  ASSERT_EQ(filer.GetExtVariables().back()->GetName(), "Speed_Magnitude");
  EXPECT_EQ(filer.GetExtVariables().back()->GetUnit(), filer.GetExtVariables().front()->GetUnit());
  EXPECT_EQ(filer.data().component_units.size(), 3U);
}

TEST_F(ComponentUnits, OfAVonMisesStressAndOfADeterminantAreThatOfTheStress) {
  ForgedModel model;
  model.system().variable(
      {.name = "Stress", .key = "S", .class_word = "CLASS_STRESS", .ncoo = 6, .rank = 2, .tensor = 1});
  model.units("S", {.mdunit = {1, 1, 1, 1, 1, 1}, .udid = {11, 11, 11, 11, 11, 11}, .udexp = {1, 1, 1, 1, 1, 1}});
  model.in_state(1, OneNodeResult("Stress", 6));
  OpenFiler filer(model);
  EXPECT_EQ(filer.Units().size(), 14U);
  EXPECT_THAT(filer.Units(), Each("mm/s"));
  EXPECT_NE(filer.GetExtVariable("Stress_Von Mises"), nullptr);
  EXPECT_NE(filer.GetExtVariable("Stress_Determinant"), nullptr);
}

TEST_F(ComponentUnits, OfComputedComponentsWhoseFirstInputHasNoneAreNone) {
  ForgedModel model;
  model.system().variable({.name = "Speed", .key = "S", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}});
  model.units("S", {.mbunit = {0, 1, 1}, .ubid = {1, 1}, .ubexp = {1, 1}}).in_state(1, OneNodeResult("Speed", 3));
  OpenFiler filer(model);
  EXPECT_THAT(filer.Units(), ElementsAre(kNone, "mm", "mm", kNone));
}

// ---- Groups

/// Two variables for groups, with two components each: "Speed" in mm and s, "Heat" in s^2 and mm^2.
ForgedModel ForgeTwoVariables() {
  ForgedModel model;
  model.system().variable({.name = "Speed", .key = "S", .ncoo = 2}).variable({.name = "Heat", .key = "H", .ncoo = 2});
  model.units("S", {.mbunit = {1, 1}, .ubid = {1, 2}, .ubexp = {1, 1}});
  model.units("H", {.mbunit = {1, 1}, .ubid = {2, 1}, .ubexp = {2, 2}});
  return model;
}

TEST_F(ComponentUnits, OfGroupsFollowTheOffsetsOfTheVariables) {
  ForgedModel model = ForgeTwoVariables();
  model.group("G", 4, {{"S", 2, 2}, {"H", 2, 0}}).in_state(1, OneNodeResult("G", 4));
  OpenFiler filer(model);
  ASSERT_EQ(filer.GetExtVariables().at(0)->GeIndex(), 2);
  EXPECT_THAT(filer.Units(), ElementsAre("mm", "s", "s^2", "mm^2"));
}

TEST_F(ComponentUnits, OfAVariableAtTwoPlacesAreThoseOfItsCopyToo) {
  ForgedModel model = ForgeTwoVariables();
  model.group("G", 4, {{"S", 2, 0}, {"H", 2, 2}}).group("K", 4, {{"S", 2, 2}});
  model.in_state(1, OneNodeResult("G", 4)).in_state(1, OneNodeResult("K", 4));
  OpenFiler filer(model);
  ASSERT_EQ(filer.GetVariables().size(), 3U);
  EXPECT_THAT(filer.Units(), ElementsAre("mm", "s", "s^2", "mm^2", "mm", "s"));
}

TEST_F(ComponentUnits, OfAVariableThatAGroupListsTwiceAreMadeOnce) {
  ForgedModel model = ForgeTwoVariables();
  model.group("G", 4, {{"S", 2, 0}, {"S", 2, 0}, {"S", 2, 2}}).in_state(1, OneNodeResult("G", 4));
  OpenFiler filer(model);
  EXPECT_THAT(filer.Units(), ElementsAre("mm", "s"));
  EXPECT_EQ(filer.data().component_units.size(), 2U);
}

TEST_F(ComponentUnits, BehindAKeyWithoutVariableAreThoseOfThePositionBefore) {
  ForgedModel model = ForgeTwoVariables();
  model.group("G", 5, {{"S", 2, 0}, {"missing", 1, 2}, {"H", 2, 3}}).in_state(1, OneNodeResult("G", 5));
  OpenFiler filer(model);
  ASSERT_EQ(filer.GetExtVariables().at(2)->GeIndex(), 3);
  // "Heat" is looked for at 2 and 3: there is one handle, which takes the first component.
  EXPECT_THAT(filer.Units(), ElementsAre("mm", "s", "s^2", kNone));
}

TEST_F(ComponentUnits, GoToTheHandlesThatAreThereFromTheFirstComponentOn) {
  ForgedModel model = ForgeTwoVariables();
  model.group("G", 2, {{"S", 2, 1}}).group("K", 2, {{"S", 2, 0}}).in_state(1, OneNodeResult("G", 3));
  OpenFiler filer(model);
  ASSERT_EQ(filer.GetExtVariables().at(0)->GeIndex(), 1);
  EXPECT_THAT(filer.Units(), ElementsAre("mm", "s"));
  // The other way round, the group without results comes last and finds the second handle at its first position.
  ForgedModel other = ForgeTwoVariables();
  other.group("G", 2, {{"S", 2, 0}}).group("K", 2, {{"S", 2, 1}}).in_state(1, OneNodeResult("G", 2));
  OpenFiler other_filer(other);
  ASSERT_EQ(other_filer.GetExtVariables().at(1)->GeIndex(), 1);
  EXPECT_THAT(other_filer.Units(), ElementsAre("mm", "mm"));
}

TEST_F(ComponentUnits, OfVariablesAtPlacesOutsideOfAnyResultAreNone) {
  for (const int offset : {INT_MAX, INT_MIN, -1, INT_MAX - 1}) {
    ForgedModel model = ForgeTwoVariables();
    model.group("G", 2, {{"S", 2, 0}})
        .group("K", 2, {{"S", 2, offset}, {"H", 2, offset}})
        .in_state(1, OneNodeResult("G", 2));
    OpenFiler filer(model);
    ASSERT_EQ(filer.GetNumExtVariables(), 2U) << offset;
    // At -1 the first handle is the only one within reach.
    EXPECT_THAT(filer.Units(), ElementsAre("mm", "s")) << offset;
  }
}

TEST_F(ComponentUnits, OfVariablesOutsideOfAllGroupsAreNotMade) {
  ForgedModel model = ForgeTwoVariables();
  model.group("G", 2, {{"S", 2, 0}}).in_state(1, OneNodeResult("G", 2)).in_state(1, OneNodeResult("Heat", 2));
  OpenFiler filer(model);
  EXPECT_THAT(filer.Units(), ElementsAre("mm", "s"));
}

// ---- Handles that are made later

/// A filer after its start-up on "Speed" alone; "Heat" follows.
ForgedModel ForgeSpeedAndHeat() {
  ForgedModel model = ForgeTwoVariables();
  model.in_state(1, OneNodeResult("Speed", 2));
  return model;
}

TEST_F(ComponentUnits, OfLaterStatesAreMadeWithTheirHandles) {
  ForgedModel model = ForgeSpeedAndHeat();
  model.in_state(2, OneNodeResult("Heat", 2));
  OpenFiler filer(model);
  ASSERT_THAT(filer.Units(), ElementsAre("mm", "s"));
  const ORVUnit* const before = filer.GetExtVariables()[0]->GetUnit();
  int added = 0;
  ASSERT_EQ(filer.UpdateContainer(2, added, -1, 0), 0);
  EXPECT_THAT(filer.Units(), ElementsAre("mm", "s", "s^2", "mm^2"));
  EXPECT_EQ(filer.GetExtVariables()[0]->GetUnit(), before);
  EXPECT_EQ(filer.data().component_units.size(), 4U);
  ASSERT_EQ(filer.UpdateContainer(2, added, -1, 0), 0);
  EXPECT_EQ(filer.data().component_units.size(), 4U);
}

TEST_F(ComponentUnits, OfLaterMultiStateResultsAreMadeWithTheirHandles) {
  ForgedModel model = ForgeSpeedAndHeat();
  OpenFiler filer(model);
  model.in_multistate(OneNodeHistory("Heat", 2));
  (void)model.path();
  ASSERT_EQ(filer.ReadMultiStateBlocks(false), 0);
  EXPECT_THAT(filer.Units(), ElementsAre("mm", "s", "s^2", "mm^2"));
}

TEST_F(ComponentUnits, OfPropertiesAreMadeWithTheirHandles) {
  ForgedModel model = ForgeSpeedAndHeat();
  model.properties("/post/constant", "NODE", "Heat", 2);
  OpenFiler filer(model);
  EXPECT_THAT(filer.Units(), ElementsAre("mm", "s", "s^2", "mm^2"));
}

TEST_F(ComponentUnits, OfLaterHandlesAreNotMadeWhereTheConfigurationNoLongerAsksForThem) {
  ForgedModel model = ForgeSpeedAndHeat();
  model.in_state(2, OneNodeResult("Heat", 2));
  OpenFiler filer(model);
  filer.ClearConfig(ORV_CONFIG_ASSIGN_UNITS);
  int added = 0;
  ASSERT_EQ(filer.UpdateContainer(2, added, -1, 0), 0);
  EXPECT_THAT(filer.Units(), ElementsAre("mm", "s", kNone, kNone));
}

TEST_F(ComponentUnits, OfLaterHandlesLeaveThoseThatAHostHasGivenAway) {
  ForgedModel model = ForgeSpeedAndHeat();
  model.in_state(2, OneNodeResult("Heat", 2));
  OpenFiler filer(model);
  ORVUnit own;
  own.SetUnitString("furlong");
  filer.GetExtVariables()[0]->SetUnit(&own);
  std::vector<int> iids = {5};
  std::vector<const char*> names = {"Copy"};
  std::vector<int> types = {0};
  ASSERT_EQ(filer.CopyCreateExtendedVariables(iids, 0, 1, names, types, 1, false), 0);
  int added = 0;
  ASSERT_EQ(filer.UpdateContainer(2, added, -1, 0), 0);
  EXPECT_THAT(filer.Units(), ElementsAre("furlong", "s", kNone, "s^2", "mm^2"));
}

TEST_F(ComponentUnits, AreMadeAnewByASecondStartUpAndGoWithTheRest) {
  ForgedModel model = ForgeSpeedAndHeat();
  OpenFiler filer(model);
  int next_id = 40;
  ASSERT_EQ(filer.InitReader(next_id), 0);
  ASSERT_EQ(filer.data().component_units.size(), 2U);
  EXPECT_EQ(filer.data().component_units[0]->GetUnitId(), 40);
  filer.ClearAll();
  EXPECT_TRUE(filer.data().component_units.empty());
}

}  // namespace
