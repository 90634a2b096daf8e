// The unit objects that are made of a unit system.

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <utility>

#include "orvio/orv_unit.h"
#include "unit/forged_system.h"
#include "unit/unit_tables.h"

namespace {

using orv_test::ForgedFile;
using orv_test::ForgeSystem;
using orv_test::Layout;
using orv_test::SystemPart;
using orv_test::TestSystem;
using testing::ElementsAre;
using testing::IsEmpty;

class UnitTables : public orv_test::OrvTest {
 protected:
  ~UnitTables() override {
    orvio::ClearUnitTable(base_);
    orvio::ClearUnitTable(derived_);
  }

  void Fill(ForgedFile& file) {
    ASSERT_EQ(system_.Read(file), 0);
    orvio::FillUnitTables(system_, base_, derived_);
  }
  ORVDUnit& Derived(std::size_t i) const { return *dynamic_cast<ORVDUnit*>(derived_.at(i)); }

  TestSystem system_;
  std::vector<ORVUnit*> base_, derived_;
};

/// A system whose tables can be changed: at() is where they are.
ForgedFile ForgeTables() {
  ForgedFile file = ForgeSystem(Layout::kSplit);
  file.at(SystemPart(Layout::kSplit, "data"));
  return file;
}

TEST_F(UnitTables, HoldTheBaseUnitsInTheOrderOfTheFile) {
  ForgedFile file = ForgeTables();
  Fill(file);
  ASSERT_EQ(base_.size(), 2U);
  EXPECT_EQ(base_[0]->GetUnitId(), 1);
  EXPECT_EQ(base_[0]->GetUnitType(), ORV_UNIT_LENGTH);
  EXPECT_STREQ(base_[0]->GetUnitCStr(), "mm");
  float shift = 9;
  EXPECT_EQ(base_[0]->GetConversionFactors(shift), 0.001F);
  EXPECT_EQ(shift, 0.5F);
  EXPECT_EQ(base_[1]->GetUnitId(), 2);
  EXPECT_EQ(base_[1]->GetUnitType(), ORV_UNIT_TIME);
  EXPECT_STREQ(base_[1]->GetUnitCStr(), "s");
  EXPECT_EQ(base_[1]->GetConversionFactors(shift), 1.0F);
  EXPECT_EQ(shift, -1.0F);
}

TEST_F(UnitTables, HoldTheDerivedUnitsWithTheirProducts) {
  ForgedFile file = ForgeTables();
  Fill(file);
  ASSERT_EQ(derived_.size(), 2U);
  EXPECT_EQ(Derived(0).GetUnitId(), 11);
  EXPECT_EQ(Derived(0).GetUnitType(), ORV_UNIT_DERIVED);
  EXPECT_STREQ(Derived(0).GetUnitCStr(), "mm/s");
  float shift = 9;
  EXPECT_EQ(Derived(0).GetConversionFactors(shift), 3.0F);
  EXPECT_EQ(shift, 0.0F);
  EXPECT_THAT(Derived(0).GetBaseUnits(), ElementsAre(base_[0], base_[1]));
  EXPECT_THAT(Derived(0).GetBaseUnitExponent(), ElementsAre(1.0F, -1.0F));
  EXPECT_EQ(Derived(1).GetUnitId(), 12);
  EXPECT_THAT(Derived(1).GetBaseUnits(), ElementsAre(base_[0]));
  EXPECT_THAT(Derived(1).GetBaseUnitExponent(), ElementsAre(2.0F));
}

TEST_F(UnitTables, TakeAMissingShiftForZero) {
  ForgedFile file = ForgeTables();
  file.drop("ubshift");
  Fill(file);
  float shift = 9;
  (void)base_.at(0)->GetConversionFactors(shift);
  EXPECT_EQ(shift, 0.0F);
}

struct Word {
  const char* word;
  _ORVUnitType type;
};

TEST_F(UnitTables, KnowTheWordsOfTheDimensionsInAnyCase) {
  const Word words[] = {{"Length", ORV_UNIT_LENGTH},
                        {"length", ORV_UNIT_LENGTH},
                        {"Mass", ORV_UNIT_MASS},
                        {"Time", ORV_UNIT_TIME},
                        {"Electric current", ORV_UNIT_ELECTRIC_CURRENT},
                        {"Electric Current", ORV_UNIT_ELECTRIC_CURRENT},
                        {"Thermodynamic temperature", ORV_UNIT_TEMPERATURE},
                        {"Amount of substance", ORV_UNIT_AMOUNT_OF_SUBSTANCE},
                        {"LUMINOUS INTENSITY", ORV_UNIT_LUMINOUS_INTENSITY},
                        {"Thermodynamic_Temprature", ORV_UNIT_UNKNOWN},
                        {"Derived Unit", ORV_UNIT_UNKNOWN},
                        {"Lengths", ORV_UNIT_UNKNOWN},
                        {"", ORV_UNIT_UNKNOWN}};
  for (const Word& word : words) {
    ForgedFile file = ForgeTables();
    file.texts("ubtyp", 256, {2}, {word.word, "Mass"});
    TestSystem system;
    ASSERT_EQ(system.Read(file), 0);
    orvio::FillUnitTables(system, base_, derived_);
    ASSERT_EQ(base_.size(), 2U);
    EXPECT_EQ(base_[0]->GetUnitType(), word.type) << word.word;
    EXPECT_EQ(base_[0]->GetUnitId(), 1);
  }
}

TEST_F(UnitTables, DropAnIdThatNoBaseUnitHasAndKeepTheOthers) {
  ForgedFile file = ForgeTables();
  file.dataset<std::int32_t>("udbid", {3}, {77, 2, 1});
  Fill(file);
  EXPECT_THAT(Derived(0).GetBaseUnits(), ElementsAre(base_[1]));
  EXPECT_THAT(Derived(0).GetBaseUnitExponent(), ElementsAre(-1.0F));
  EXPECT_THAT(Derived(1).GetBaseUnits(), ElementsAre(base_[0]));
}

TEST_F(UnitTables, TakeTheFirstOfTwoBaseUnitsOfOneId) {
  ForgedFile file = ForgeTables();
  file.dataset<std::int32_t>("ubid", {2}, {1, 1});
  Fill(file);
  EXPECT_THAT(Derived(1).GetBaseUnits(), ElementsAre(base_[0]));
}

TEST_F(UnitTables, ADerivedUnitOfNoBaseUnitsHasTheFactorOneWhateverItsScale) {
  ForgedFile file = ForgeTables();
  file.dataset<std::int32_t>("ndbunit", {2}, {0, 3});
  Fill(file);
  EXPECT_THAT(Derived(0).GetBaseUnits(), IsEmpty());
  double scale = 9, shift = 9;
  EXPECT_FALSE(Derived(0).GetSIConversionFactors(scale, shift));
  EXPECT_EQ(scale, 1.0);
  EXPECT_THAT(Derived(1).GetBaseUnitExponent(), ElementsAre(1.0F, -1.0F, 2.0F));
}

TEST_F(UnitTables, WithoutBaseUnitsDerivedUnitsAreEmpty) {
  ForgedFile file = ForgeSystem(Layout::kSplit);
  file.integer("nbunit", 0);
  Fill(file);
  EXPECT_THAT(base_, IsEmpty());
  ASSERT_EQ(derived_.size(), 2U);
  EXPECT_EQ(Derived(0).GetUnitId(), 0);
  EXPECT_STREQ(Derived(0).GetUnitCStr(), "");
  EXPECT_THAT(Derived(0).GetBaseUnits(), IsEmpty());
}

TEST_F(UnitTables, AreMadeAnewByASecondFill) {
  ForgedFile file = ForgeTables();
  Fill(file);
  orvio::FillUnitTables(system_, base_, derived_);
  EXPECT_EQ(base_.size(), 2U);
  EXPECT_EQ(derived_.size(), 2U);
  EXPECT_THAT(Derived(0).GetBaseUnits(), ElementsAre(base_[0], base_[1]));
}

TEST_F(UnitTables, OfASystemWithoutTablesAreEmpty) {
  ORVSystem system;
  system.m_nbunit = system.m_ndunit = 2;
  orvio::FillUnitTables(system, base_, derived_);
  EXPECT_THAT(base_, IsEmpty());
  EXPECT_THAT(derived_, IsEmpty());
}

TEST_F(UnitTables, AreEmptyWhenCleared) {
  ForgedFile file = ForgeTables();
  Fill(file);
  orvio::ClearUnitTable(base_);
  orvio::ClearUnitTable(derived_);
  EXPECT_THAT(base_, IsEmpty());
  EXPECT_THAT(derived_, IsEmpty());
}

TEST_F(UnitTables, WithoutFactorsOrShiftsHoldUnitsOfScaleOneAndNoShift) {
  ForgedFile file = ForgeTables();
  ASSERT_EQ(system_.Read(file), 0);
  float* const factors = std::exchange(system_.m_pUbcon, nullptr);
  float* const shifts = std::exchange(system_.m_pUbshift, nullptr);
  orvio::FillUnitTables(system_, base_, derived_);
  ASSERT_EQ(base_.size(), 2U);
  for (const ORVUnit* unit : base_) {
    float shift = 9;
    EXPECT_EQ(unit->GetConversionFactors(shift), 1.0F);
    EXPECT_EQ(shift, 0.0F);
  }
  system_.m_pUbcon = factors;
  system_.m_pUbshift = shifts;
}

TEST_F(UnitTables, HoldDerivedUnitsWithoutProductsWhereOneOfTheirTablesIsMissing) {
  ForgedFile file = ForgeTables();
  ASSERT_EQ(system_.Read(file), 0);
  const auto fill_without = [&](auto*& table) {
    auto* const before = std::exchange(table, nullptr);
    orvio::FillUnitTables(system_, base_, derived_);
    ASSERT_EQ(derived_.size(), 2U);
    EXPECT_EQ(Derived(0).GetUnitId(), 11);
    EXPECT_STREQ(Derived(1).GetUnitCStr(), "mm*mm");
    float shift = 9;
    EXPECT_EQ(Derived(1).GetConversionFactors(shift), 4.0F);
    for (const std::size_t i : {0U, 1U}) EXPECT_THAT(Derived(i).GetBaseUnits(), IsEmpty());
    table = before;
  };
  fill_without(system_.m_pNdbunit);
  fill_without(system_.m_pUdbid);
  fill_without(system_.m_pUdbexp);
}

TEST_F(UnitTables, PassOverANegativeCountWithoutMovingOn) {
  ForgedFile file = ForgeTables();
  ASSERT_EQ(system_.Read(file), 0);
  system_.m_pNdbunit[0] = -3;
  system_.m_pNdbunit[1] = 2;
  orvio::FillUnitTables(system_, base_, derived_);
  EXPECT_THAT(Derived(0).GetBaseUnits(), IsEmpty());
  EXPECT_THAT(Derived(1).GetBaseUnits(), ElementsAre(base_[0], base_[1]));
  EXPECT_THAT(Derived(1).GetBaseUnitExponent(), ElementsAre(1.0F, -1.0F));
}

}  // namespace
