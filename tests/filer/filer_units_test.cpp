// The units that a filer answers: those of its file, and those of one component. The units that handles show are in
// tests/unit.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "filer/container.h"
#include "orvio/orv_filer.h"
#include "support/forged_model.h"
#include "support/orv_test.h"

namespace {

using orv_test::ForgedModel;
using orv_test::ForgedUnits;
using orv_test::ForgedValues;
using testing::ElementsAre;
using testing::IsEmpty;

using Powers = std::vector<std::pair<std::string, float>>;

Powers BaseOf(ORVVariableUnit& unit) {
  std::vector<float> exponents;
  const auto& units = unit.GetBaseUnitInfo(exponents);
  EXPECT_EQ(units.size(), exponents.size());
  Powers powers;
  for (std::size_t i = 0; i < units.size(); ++i) powers.emplace_back(units[i]->GetUnitCStr(), exponents.at(i));
  return powers;
}

Powers DerivedOf(ORVVariableUnit& unit) {
  std::vector<float> exponents;
  const auto& units = unit.GetDeriveUnitInfo(exponents);
  EXPECT_EQ(units.size(), exponents.size());
  Powers powers;
  for (std::size_t i = 0; i < units.size(); ++i) powers.emplace_back(units[i]->GetUnitCStr(), exponents.at(i));
  return powers;
}

/// Whether nothing was done to it.
bool IsUntouched(ORVVariableUnit& unit) {
  return BaseOf(unit).empty() && DerivedOf(unit).empty() && !unit.IsDimensionLess();
}

/// mm s^-2, then nothing, then s (mm/s)^2.
const ForgedUnits kUnits = {
    .mbunit = {2, 0, 1}, .ubid = {1, 2, 2}, .ubexp = {1, -2, 1}, .mdunit = {0, 0, 1}, .udid = {11}, .udexp = {2}};

/// A filer on a file with the units mm (1), s (2) and mm/s (11) and a vector "Speed" with the handles 1 to 3 and its
/// magnitude, 4.
class FilerUnits : public orv_test::OrvTest {
 protected:
  struct OpenFiler : ORVFiler {
    using ORVFiler::ORVFiler;
    ORVContainer& data() { return *m_pData; }
  };

  FilerUnits() {
    model_.system().units("S", kUnits);
    ForgedValues result;
    result.variable = "Speed";
    result.nent = 1;
    result.ncoo = 3;
    model_.in_state(1, result);
  }

  OpenFiler& filer() {
    if (!filer_) filer_ = Open(true);
    return *filer_;
  }
  std::unique_ptr<OpenFiler> Open(bool with_units) {
    auto filer = std::make_unique<OpenFiler>(model_.path().c_str());
    if (with_units) filer->SetConfig(ORV_CONFIG_ASSIGN_UNITS);
    int next_id = 1;
    EXPECT_EQ(filer->InitReader(next_id), 0);
    return filer;
  }
  ORVVariable& speed() { return *filer().GetVariables().at(0); }

  ForgedModel model_ = std::move(ForgedModel().variable(
      {.name = "Speed", .key = "S", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}}));
  std::unique_ptr<OpenFiler> filer_;
};

TEST_F(FilerUnits, OfTheFileReplaceWhatTheVectorsHold) {
  ORVUnit other;
  std::vector<ORVUnit*> base = {&other}, derived = {&other, &other};
  filer().GetUnitList(base, derived);
  ASSERT_EQ(base.size(), 2U);
  EXPECT_STREQ(base[0]->GetUnitCStr(), "mm");
  EXPECT_STREQ(base[1]->GetUnitCStr(), "s");
  ASSERT_EQ(derived.size(), 1U);
  EXPECT_STREQ(derived[0]->GetUnitCStr(), "mm/s");
}

TEST_F(FilerUnits, OfAHandleAreThoseOfItsComponent) {
  for (const bool flag : {false, true}) {
    ORVVariableUnit first, third;
    filer().GetComponentUnit(1, first, flag);
    EXPECT_THAT(BaseOf(first), ElementsAre(std::pair("mm", 1.0F), std::pair("s", -2.0F)));
    EXPECT_THAT(DerivedOf(first), IsEmpty());
    EXPECT_FALSE(first.IsDimensionLess());
    filer().GetComponentUnit(3, third, flag);
    EXPECT_THAT(BaseOf(third), ElementsAre(std::pair("s", 1.0F)));
    EXPECT_THAT(DerivedOf(third), ElementsAre(std::pair("mm/s", 2.0F)));
    EXPECT_FALSE(third.IsDimensionLess());
  }
}

TEST_F(FilerUnits, PointIntoTheTablesOfTheFile) {
  std::vector<ORVUnit*> base, derived;
  filer().GetUnitList(base, derived);
  ORVVariableUnit unit;
  filer().GetComponentUnit(3, unit, false);
  std::vector<float> exponents;
  EXPECT_THAT(unit.GetBaseUnitInfo(exponents), ElementsAre(base.at(1)));
  EXPECT_THAT(unit.GetDeriveUnitInfo(exponents), ElementsAre(derived.at(0)));
}

TEST_F(FilerUnits, OfAComponentWithoutAnyMarkItAsDimensionless) {
  ORVVariableUnit unit;
  filer().GetComponentUnit(2, unit, false);
  EXPECT_THAT(BaseOf(unit), IsEmpty());
  EXPECT_THAT(DerivedOf(unit), IsEmpty());
  EXPECT_TRUE(unit.IsDimensionLess());
}

TEST_F(FilerUnits, OfAComponentAreThoseOfItsHandle) {
  ORVVariableUnit unit;
  filer().GetComponentUnit(&speed(), 2, unit);
  EXPECT_THAT(BaseOf(unit), ElementsAre(std::pair("s", 1.0F)));
  EXPECT_THAT(DerivedOf(unit), ElementsAre(std::pair("mm/s", 2.0F)));
}

TEST_F(FilerUnits, OfAComputedHandleAreThoseOfTheFirstComponent) {
  ORVVariableUnit unit;
  ASSERT_EQ(filer().GetExtVariable(4, true)->GeIndex(), -1);
  filer().GetComponentUnit(4, unit, false);
  EXPECT_THAT(BaseOf(unit), ElementsAre(std::pair("mm", 1.0F), std::pair("s", -2.0F)));
}

TEST_F(FilerUnits, OfAHandleBehindTheComponentsAreNone) {
  std::vector<int> iids = {1};
  std::vector<const char*> names = {"Copy"};
  std::vector<int> types = {0};
  ASSERT_EQ(filer().CopyCreateExtendedVariables(iids, 0, 1, names, types, 1, false), 0);
  ASSERT_NE(filer().GetExtVariable(5, true), nullptr);
  ORVVariableUnit unit;
  filer().GetComponentUnit(5, unit, false);
  EXPECT_TRUE(IsUntouched(unit));
}

TEST_F(FilerUnits, OfAnUnknownHandleAreNone) {
  ORVVariableUnit unit;
  for (const int iid : {0, 9, -1}) filer().GetComponentUnit(iid, unit, true);
  EXPECT_TRUE(IsUntouched(unit));
}

TEST_F(FilerUnits, OfAComponentOutsideOfTheVariableAreNone) {
  ORVVariableUnit unit;
  for (const int component : {-1, INT_MIN, 3, INT_MAX}) filer().GetComponentUnit(&speed(), component, unit);
  filer().GetComponentUnit(nullptr, 0, unit);
  EXPECT_TRUE(IsUntouched(unit));
}

TEST_F(FilerUnits, OfAComponentBeyondTheOriginalCountAreNone) {
  speed().SetOriginalCount(2);
  ORVVariableUnit unit;
  filer().GetComponentUnit(&speed(), 2, unit);
  EXPECT_TRUE(IsUntouched(unit));
  filer().GetComponentUnit(&speed(), 1, unit);
  EXPECT_TRUE(unit.IsDimensionLess());
}

TEST_F(FilerUnits, OfAComponentBeyondTheTablesAreNone) {
  speed().SetOriginalCount(1000);
  ORVVariableUnit unit;
  filer().GetComponentUnit(&speed(), 999, unit);
  EXPECT_TRUE(IsUntouched(unit));
}

TEST_F(FilerUnits, AreAppendedToWhatIsThere) {
  ORVVariableUnit unit;
  filer().GetComponentUnit(2, unit, false);
  filer().GetComponentUnit(3, unit, false);
  filer().GetComponentUnit(1, unit, false);
  EXPECT_THAT(BaseOf(unit), ElementsAre(std::pair("s", 1.0F), std::pair("mm", 1.0F), std::pair("s", -2.0F)));
  EXPECT_THAT(DerivedOf(unit), ElementsAre(std::pair("mm/s", 2.0F)));
  EXPECT_TRUE(unit.IsDimensionLess());  // since the first call
}

TEST_F(FilerUnits, ThatTheFileDoesNotKnowAreDropped) {
  model_.units("S", {.ubid = {1, 77, 2}, .udid = {2}});  // 2 is a base unit
  ORVVariableUnit unit;
  filer().GetComponentUnit(1, unit, false);
  filer().GetComponentUnit(3, unit, false);
  EXPECT_THAT(BaseOf(unit), ElementsAre(std::pair("mm", 1.0F), std::pair("s", 1.0F)));
  EXPECT_THAT(DerivedOf(unit), IsEmpty());
}

TEST_F(FilerUnits, AreTheFirstOfAnId) {
  model_.file().at("/post/constant/system/orvblock").dataset<std::int32_t>("ubid", {2}, {2, 2});
  ORVVariableUnit unit;
  filer().GetComponentUnit(3, unit, false);
  EXPECT_THAT(BaseOf(unit), ElementsAre(std::pair("mm", 1.0F)));
}

TEST_F(FilerUnits, WithoutTheConfigurationAreNotKnown) {
  filer_ = Open(false);
  ORVVariableUnit unit;
  for (const int iid : {1, 2, 3, 4}) filer().GetComponentUnit(iid, unit, false);
  EXPECT_TRUE(IsUntouched(unit));
}

TEST_F(FilerUnits, OfAFileWithoutDerivedUnitsNeverMarkAComponentAsDimensionless) {
  model_.file().at("/post/constant/system/orvblock").integer("ndunit", 0);
  ORVVariableUnit unit;
  filer().GetComponentUnit(2, unit, false);
  EXPECT_FALSE(unit.IsDimensionLess());
  filer().GetComponentUnit(3, unit, false);
  EXPECT_THAT(BaseOf(unit), ElementsAre(std::pair("s", 1.0F)));
}

TEST_F(FilerUnits, WithoutOneOfTheTablesAreThoseOfTheOtherKind) {
  ORVVariable& variable = speed();
  const auto without = [&](auto*& table) {
    auto* const before = std::exchange(table, nullptr);
    ORVVariableUnit third, second;
    filer().GetComponentUnit(&variable, 2, third);
    filer().GetComponentUnit(&variable, 1, second);
    EXPECT_FALSE(second.IsDimensionLess());
    table = before;
    return std::pair(BaseOf(third).size(), DerivedOf(third).size());
  };
  const std::pair<std::size_t, std::size_t> derived_alone = {0, 1}, base_alone = {1, 0};
  EXPECT_EQ(without(variable.m_pUbid), derived_alone);
  EXPECT_EQ(without(variable.m_pUbexp), derived_alone);
  EXPECT_EQ(without(variable.m_pUdid), base_alone);
  EXPECT_EQ(without(variable.m_pUdexp), base_alone);
  EXPECT_EQ(without(variable.m_pMdunit), base_alone);
  int* const counts = std::exchange(variable.m_pMbunit, nullptr);
  ORVVariableUnit unit;
  filer().GetComponentUnit(&variable, 2, unit);
  EXPECT_THAT(BaseOf(unit), IsEmpty());
  EXPECT_EQ(DerivedOf(unit).size(), 1U);
  variable.m_pMbunit = counts;
}

TEST_F(FilerUnits, WhoseCountsLeadOutOfTheTablesAreNone) {
  ORVVariable& variable = speed();
  const auto with_counts = [&](int first, int second, int third, int component) {
    ORVVariableUnit unit;
    int* const counts = variable.m_pMbunit;
    counts[0] = first;
    counts[1] = second;
    counts[2] = third;
    filer().GetComponentUnit(&variable, component, unit);
    return BaseOf(unit).size();
  };
  EXPECT_EQ(with_counts(20, 0, 1, 2), 0U);  // the last place of 21 has the id 0
  EXPECT_EQ(with_counts(21, 0, 1, 2), 0U);  // one past it
  EXPECT_EQ(with_counts(0, 0, 22, 2), 0U);  // one more than there are
  EXPECT_EQ(with_counts(0, 0, 21, 2), 3U);  // all of them: three are set
  EXPECT_EQ(with_counts(INT_MAX, INT_MAX, INT_MAX, 2), 0U);
  EXPECT_EQ(with_counts(-5, 0, 1, 2), 1U);  // a negative count is none
  EXPECT_EQ(with_counts(-5, 0, 1, 0), 0U);
  EXPECT_EQ(with_counts(INT_MIN, INT_MIN, 3, 2), 3U);
}

TEST_F(FilerUnits, OfAHandleAtAnOffsetAreThoseOfItsPlaceInTheVariable) {
  model_.variable({.name = "Heat", .key = "H"}).group("G", 4, {{"H", 1, 0}, {"S", 3, 1}});
  ForgedValues result;
  result.variable = "G";
  result.nent = 1;
  result.ncoo = 4;
  model_.in_state(1, result);
  ORVVariableUnit unit;
  const ORVExtVar* handle = filer().GetExtVariable("Speed_Z");
  ASSERT_NE(handle, nullptr);
  ASSERT_EQ(handle->GeIndex(), 3);
  filer().GetComponentUnit(handle->GetIID(), unit, false);
  EXPECT_THAT(BaseOf(unit), ElementsAre(std::pair("s", 1.0F)));
}

TEST_F(FilerUnits, OfAFilerThatHasReadNothingAreNone) {
  OpenFiler unread(model_.path().c_str());
  ORVVariable variable;
  variable.m_ncoo = 1;
  variable.SetOriginalCount(1);
  ORVVariableUnit unit;
  unread.GetComponentUnit(1, unit, false);
  unread.GetComponentUnit(&variable, 0, unit);
  std::vector<ORVUnit*> base, derived;
  unread.GetUnitList(base, derived);
  EXPECT_TRUE(IsUntouched(unit));
  EXPECT_THAT(base, IsEmpty());
  EXPECT_THAT(derived, IsEmpty());
}

}  // namespace
