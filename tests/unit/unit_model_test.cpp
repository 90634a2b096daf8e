// Units: their fields, the factors to SI, and resolving into base units.

#include <gtest/gtest.h>

#include <memory>
#include <vector>

#include "orvio/orv_unit.h"
#include "support/orv_test.h"

namespace {

class BaseUnit : public orv_test::OrvTest {};
class DerivedUnit : public orv_test::OrvTest {};
class VariableUnit : public orv_test::OrvTest {};

struct Factors {
  bool exact = false;
  double scale = -7;
  double shift = -7;
};

template <class Unit>
Factors FactorsOf(Unit& unit) {
  Factors factors;
  factors.exact = unit.GetSIConversionFactors(factors.scale, factors.shift);
  return factors;
}

struct Scaled : ORVUnit {
  explicit Scaled(float scale, float shift = 0, _ORVUnitType type = ORV_UNIT_UNKNOWN) {
    SetConversionFactors(scale, shift);
    SetUnitType(type);
  }
};

Scaled Dimension(_ORVUnitType type) { return Scaled(1, 0, type); }

TEST_F(BaseUnit, StartsWithoutDimension) {
  ORVUnit unit;
  float shift = -7;
  EXPECT_EQ(unit.GetUnitId(), 0);
  EXPECT_EQ(unit.GetUnitType(), ORV_UNIT_UNKNOWN);
  EXPECT_STREQ(unit.GetUnitCStr(), "");
  EXPECT_EQ(unit.GetUnitStrLength(), 0U);
  EXPECT_EQ(unit.GetConversionFactors(shift), 1.0F);
  EXPECT_EQ(shift, 0.0F);
  EXPECT_EQ(unit.GetVDBDataType(), -99999);
}

TEST_F(BaseUnit, InitRestoresTheDefaults) {
  ORVUnit unit;
  unit.SetUnitId(5);
  unit.SetUnitType(ORV_UNIT_MASS);
  unit.SetUnitString("kg");
  unit.SetScaleFactor(2);
  unit.SetShiftFactor(3);
  unit.SetVDBDataType(4);
  EXPECT_EQ(unit.GetUnitStrLength(), 2U);
  unit.Init();
  float shift = -7;
  EXPECT_EQ(unit.GetUnitId(), 0);
  EXPECT_EQ(unit.GetUnitType(), ORV_UNIT_UNKNOWN);
  EXPECT_STREQ(unit.GetUnitCStr(), "");
  EXPECT_EQ(unit.GetConversionFactors(shift), 1.0F);
  EXPECT_EQ(shift, 0.0F);
  EXPECT_EQ(unit.GetVDBDataType(), -99999);
}

TEST_F(BaseUnit, KeepsItsTextForANullOne) {
  ORVUnit unit;
  unit.SetUnitString(std::string("mm"));
  unit.SetUnitString(static_cast<const char*>(nullptr));
  EXPECT_STREQ(unit.GetUnitCStr(), "mm");
}

TEST_F(BaseUnit, TellsTheWordOfItsDimension) {
  const char* const words[] = {"",
                               "Length",
                               "Mass",
                               "Time",
                               "Electric Current",
                               "Thermodynamic_Temprature",
                               "Amount of Substance",
                               "Luminous Intensity",
                               "Derived Unit"};
  for (int type = 0; type <= 8; ++type) {
    ORVUnit unit;
    unit.SetUnitString("u");
    unit.SetConversionFactors(2, 3);
    unit.SetUnitType(static_cast<_ORVUnitType>(type));
    std::string text;
    float scale = 0, shift = 0;
    EXPECT_EQ(unit.GetUnitInfo(text, scale, shift), words[type]);
    EXPECT_EQ(text, "u");
    EXPECT_EQ(scale, 2.0F);
    EXPECT_EQ(shift, 3.0F);
  }
}

TEST_F(BaseUnit, OfAnUnknownNumberHasNoWord) {
  ORVUnit unit;
  std::string text;
  float scale = 0, shift = 0;
  for (const int type : {-1, 9, 1000000}) {
    unit.SetUnitType(static_cast<_ORVUnitType>(type));
    EXPECT_EQ(unit.GetUnitInfo(text, scale, shift), "");
  }
}

TEST_F(BaseUnit, WithAShiftIsNotExactAndNeverGivesIt) {
  Scaled unit(1000, 273.15F);
  const Factors factors = FactorsOf(unit);
  EXPECT_EQ(factors.scale, 1000.0);
  EXPECT_EQ(factors.shift, 0.0);
  EXPECT_FALSE(factors.exact);
}

TEST_F(BaseUnit, WithoutAShiftIsExact) {
  Scaled unit(0.001F);
  EXPECT_TRUE(FactorsOf(unit).exact);
  EXPECT_EQ(FactorsOf(unit).scale, static_cast<double>(0.001F));
}

TEST_F(BaseUnit, AnswersThroughTheBaseClass) {
  const std::unique_ptr<ORVUnit> unit = std::make_unique<ORVDUnit>();
  unit->SetScaleFactor(5);
  EXPECT_FALSE(FactorsOf(*unit).exact);
  EXPECT_EQ(FactorsOf(*unit).scale, 1.0);
}

// ---- Derived units

TEST_F(DerivedUnit, IsOfItsOwnDimension) { EXPECT_EQ(ORVDUnit().GetUnitType(), ORV_UNIT_DERIVED); }

TEST_F(DerivedUnit, IsItsScaleTimesItsBaseUnits) {
  Scaled length(0.001F), time(1);
  ORVDUnit unit;
  unit.SetScaleFactor(2);
  unit.AppendBaseUnitInfo(&length, 1);
  unit.AppendBaseUnitInfo(&time, -2);
  const Factors factors = FactorsOf(unit);
  EXPECT_EQ(factors.scale, 2.0 * static_cast<double>(0.001F));
  EXPECT_EQ(factors.shift, 0.0);
  EXPECT_TRUE(factors.exact);
}

TEST_F(DerivedUnit, RaisesInDoublePrecision) {
  Scaled length(1000);
  ORVDUnit unit;
  unit.AppendBaseUnitInfo(&length, -2);
  EXPECT_EQ(FactorsOf(unit).scale, 1e-6);
}

TEST_F(DerivedUnit, AnExponentOfZeroLeavesTheScaleInTheFactor) {
  Scaled length(0.001F);
  ORVDUnit unit;
  unit.SetScaleFactor(2);
  unit.AppendBaseUnitInfo(&length, 0);
  EXPECT_EQ(FactorsOf(unit).scale, 2.0 * static_cast<double>(0.001F));
}

TEST_F(DerivedUnit, WithoutBaseUnitsHasTheFactorOne) {
  ORVDUnit unit;
  unit.SetScaleFactor(7);
  const Factors factors = FactorsOf(unit);
  EXPECT_EQ(factors.scale, 1.0);
  EXPECT_EQ(factors.shift, 0.0);
  EXPECT_FALSE(factors.exact);
}

TEST_F(DerivedUnit, IsExactIfItsLastBaseUnitIs) {
  Scaled shifted(1, 5), plain(1);
  ORVDUnit ends_exact, ends_shifted;
  ends_exact.AppendBaseUnitInfo(&shifted, 1);
  ends_exact.AppendBaseUnitInfo(&plain, 1);
  ends_shifted.AppendBaseUnitInfo(&plain, 1);
  ends_shifted.AppendBaseUnitInfo(&shifted, 1);
  EXPECT_TRUE(FactorsOf(ends_exact).exact);
  EXPECT_FALSE(FactorsOf(ends_shifted).exact);
}

TEST_F(DerivedUnit, ItsOwnShiftPlaysNoPart) {
  Scaled plain(3);
  ORVDUnit unit;
  unit.SetConversionFactors(2, 5);
  unit.AppendBaseUnitInfo(&plain, 1);
  EXPECT_TRUE(FactorsOf(unit).exact);
  EXPECT_EQ(FactorsOf(unit).scale, 6.0);
}

TEST_F(DerivedUnit, IgnoresANullUnitAppended) {
  ORVDUnit unit;
  unit.AppendBaseUnitInfo(nullptr, 1);
  EXPECT_TRUE(unit.GetBaseUnits().empty());
  EXPECT_TRUE(unit.GetBaseUnitExponent().empty());
}

TEST_F(DerivedUnit, ANullUnitInTheListCountsAsOneAndIsNotExact) {
  Scaled plain(3);
  ORVDUnit unit;
  unit.SetBaseUnits({&plain, nullptr});
  const float exponents[] = {1, 2};
  unit.SetBaseExponent(2, exponents);
  EXPECT_EQ(FactorsOf(unit).scale, 3.0);
  EXPECT_FALSE(FactorsOf(unit).exact);
}

TEST_F(DerivedUnit, AppendsPairsUnitsAndExponents) {
  Scaled first(1), second(2), third(3);
  std::vector<ORVUnit*> units = {&first, &second, &third};
  const float exponents[] = {1, 2, 3};
  ORVDUnit unit;
  unit.SetBaseUnitInfo(2, exponents, units);
  EXPECT_EQ(unit.GetBaseUnits(), (std::vector<ORVUnit*>{&first, &second}));
  EXPECT_EQ(unit.GetBaseUnitExponent(), (std::vector<float>{1, 2}));
  unit.SetBaseUnits(units);
  unit.SetBaseExponent(1, exponents + 2);
  EXPECT_EQ(unit.GetBaseUnits(), (std::vector<ORVUnit*>{&first, &second, &first, &second, &third}));
  EXPECT_EQ(unit.GetBaseUnitExponent(), (std::vector<float>{1, 2, 3}));
}

TEST_F(DerivedUnit, AppendsItsOwnUnitsToThemselves) {
  Scaled first(1), second(2);
  ORVDUnit unit;
  unit.SetBaseUnits({&first, &second});
  unit.SetBaseUnits(unit.GetBaseUnits());
  EXPECT_EQ(unit.GetBaseUnits(), (std::vector<ORVUnit*>{&first, &second, &first, &second}));
}

TEST_F(DerivedUnit, AppendsNoMorePairsThanThereAreUnits) {
  Scaled first(1);
  const float exponents[] = {1, 2};
  ORVDUnit unit;
  unit.SetBaseUnitInfo(2, exponents, {&first});
  EXPECT_EQ(unit.GetBaseUnits().size(), 1U);
  EXPECT_EQ(unit.GetBaseUnitExponent().size(), 1U);
  unit.SetBaseUnitInfo(1, nullptr, {&first});
  unit.SetBaseExponent(1, nullptr);
  EXPECT_EQ(unit.GetBaseUnits().size(), 1U);
}

TEST_F(DerivedUnit, OfListsOfDifferentLengthTakesTheShorter) {
  Scaled first(2), second(3);
  ORVDUnit unit;
  unit.SetBaseUnits({&first, &second});
  const float exponent = 1;
  unit.SetBaseExponent(1, &exponent);
  EXPECT_EQ(FactorsOf(unit).scale, 2.0);
}

TEST_F(DerivedUnit, ReportsItsUnitsAndFactors) {
  Scaled length(0.5F);
  length.SetUnitString("half");
  ORVDUnit unit;
  unit.SetUnitString("dd");
  std::string report = "before";
  unit.GetDebugInf(report);
  EXPECT_EQ(report,
            "before\nNumber of Base Units : 0\nConversion factor : From (dd) to (SI std)[Failed API] => 1\n"
            "Conversion factor : from (std SI) to (dd) => 1");
  unit.AppendBaseUnitInfo(&length, 1);
  report.clear();
  unit.GetDebugInf(report);
  EXPECT_EQ(report,
            "\nNumber of Base Units : 1\n\thalf ^ 1, scale 0.5, shift 0\n"
            "Conversion factor : From (dd) to (SI std) => 0.5\nConversion factor : from (std SI) to (dd) => 2");
}

// ---- Units of components

TEST_F(VariableUnit, WithoutUnitsHasTheFactorOneAndIsNotExact) {
  ORVVariableUnit unit;
  const Factors factors = FactorsOf(unit);
  EXPECT_EQ(factors.scale, 1.0);
  EXPECT_EQ(factors.shift, 0.0);
  EXPECT_FALSE(factors.exact);
}

TEST_F(VariableUnit, OfBaseUnitsIsTheirProduct) {
  Scaled length(1000), time(60);
  ORVVariableUnit unit;
  unit.AppendBaseUnit(&length, 2);
  unit.AppendBaseUnit(&time, 0);
  EXPECT_EQ(FactorsOf(unit).scale, 60e6);
  EXPECT_TRUE(FactorsOf(unit).exact);
}

TEST_F(VariableUnit, OfBaseUnitsIsExactIfTheLastIs) {
  Scaled shifted(1, 5), plain(1);
  ORVVariableUnit unit;
  unit.AppendBaseUnit(&shifted, 1);
  EXPECT_FALSE(FactorsOf(unit).exact);
  unit.AppendBaseUnit(&plain, 1);
  EXPECT_TRUE(FactorsOf(unit).exact);
}

TEST_F(VariableUnit, RaisesTheWholeDerivedUnit) {
  Scaled length(10), plain(3);
  ORVDUnit derived;
  derived.SetScaleFactor(2);
  derived.AppendBaseUnitInfo(&length, 1);
  ORVVariableUnit unit;
  unit.AppendBaseUnit(&plain, 1);
  unit.AppendDeriveUnit(&derived, 2);
  EXPECT_EQ(FactorsOf(unit).scale, 1200.0);
  EXPECT_TRUE(FactorsOf(unit).exact);
}

TEST_F(VariableUnit, AnExponentOfZeroLeavesTheDerivedUnitInTheFactor) {
  Scaled length(10);
  ORVDUnit derived;
  derived.SetScaleFactor(2);
  derived.AppendBaseUnitInfo(&length, 1);
  ORVVariableUnit unit;
  unit.AppendDeriveUnit(&derived, 0);
  EXPECT_EQ(FactorsOf(unit).scale, 20.0);
}

TEST_F(VariableUnit, IsNotExactIfItsLastDerivedUnitHasNoBaseUnits) {
  Scaled plain(3);
  ORVDUnit full, empty;
  full.AppendBaseUnitInfo(&plain, 1);
  empty.SetScaleFactor(9);
  ORVVariableUnit unit;
  unit.AppendBaseUnit(&plain, 1);
  unit.AppendDeriveUnit(&full, 1);
  unit.AppendDeriveUnit(&empty, 2);
  EXPECT_EQ(FactorsOf(unit).scale, 9.0);
  EXPECT_FALSE(FactorsOf(unit).exact);
  unit.AppendDeriveUnit(&full, 1);
  EXPECT_TRUE(FactorsOf(unit).exact);
}

TEST_F(VariableUnit, IsExactIfItsLastDerivedUnitIsWhateverItsBaseUnitsAre) {
  Scaled shifted(3, 1), plain(3);
  ORVDUnit derived;
  derived.AppendBaseUnitInfo(&plain, 1);
  ORVVariableUnit unit;
  unit.AppendBaseUnit(&shifted, 1);
  unit.AppendDeriveUnit(&derived, 1);
  EXPECT_TRUE(FactorsOf(unit).exact);
}

TEST_F(VariableUnit, NeverGivesTheShiftOfAUnitInIt) {
  Scaled shifted(2, 5);
  ORVDUnit derived;
  derived.SetShiftFactor(7);
  derived.AppendBaseUnitInfo(&shifted, 1);
  EXPECT_EQ(FactorsOf(derived).shift, 0.0);
  ORVVariableUnit unit;
  unit.AppendBaseUnit(&shifted, 1);
  EXPECT_EQ(FactorsOf(unit).shift, 0.0);
  unit.AppendDeriveUnit(&derived, 1);
  EXPECT_EQ(FactorsOf(unit).shift, 0.0);
  EXPECT_FALSE(FactorsOf(unit).exact);
}

TEST_F(VariableUnit, GivesItsUnitsAndIgnoresNull) {
  Scaled plain(3);
  ORVDUnit derived;
  ORVVariableUnit unit;
  unit.AppendBaseUnit(nullptr, 1);
  unit.AppendDeriveUnit(nullptr, 1);
  unit.AppendBaseUnit(&plain, 2);
  unit.AppendDeriveUnit(&derived, 3);
  std::vector<float> exponents = {9, 9};
  EXPECT_EQ(unit.GetBaseUnitInfo(exponents), std::vector<ORVUnit*>{&plain});
  EXPECT_EQ(exponents, std::vector<float>{2});
  EXPECT_EQ(unit.GetDeriveUnitInfo(exponents), std::vector<ORVDUnit*>{&derived});
  EXPECT_EQ(exponents, std::vector<float>{3});
}

TEST_F(VariableUnit, RemembersThatItHasNoDimension) {
  ORVVariableUnit unit;
  EXPECT_FALSE(unit.IsDimensionLess());
  unit.SetDimensionLess(true);
  EXPECT_TRUE(unit.IsDimensionLess());
}

TEST_F(VariableUnit, ResolvesDerivedUnitsBehindBaseUnits) {
  Scaled length = Dimension(ORV_UNIT_LENGTH), time = Dimension(ORV_UNIT_TIME), mass = Dimension(ORV_UNIT_MASS);
  ORVDUnit derived;
  derived.SetScaleFactor(1000);
  derived.AppendBaseUnitInfo(&time, -1.5F);
  derived.AppendBaseUnitInfo(&mass, 1);
  ORVVariableUnit unit;
  unit.AppendDeriveUnit(&derived, 2);
  unit.AppendBaseUnit(&length, 4);
  std::vector<ORVUnit*> units = {nullptr};
  std::vector<float> exponents = {9};
  unit.ResolveToBaseUnits(units, exponents);
  EXPECT_EQ(units, (std::vector<ORVUnit*>{nullptr, &length, &time, &mass}));
  EXPECT_EQ(exponents, (std::vector<float>{9, 4, -3, 2}));
}

struct Unique {
  std::vector<ORVUnit*> units;
  std::vector<float> exponents;
};

Unique UniqueOf(const std::vector<ORVUnit*>& units, const std::vector<float>& exponents) {
  Unique unique;
  ORVVariableUnit().ResolveToUniqueBaseUnits(units, exponents, unique.units, unique.exponents);
  return unique;
}

TEST_F(VariableUnit, MergesByDimensionAndKeepsAnExponentOfZero) {
  Scaled length = Dimension(ORV_UNIT_LENGTH), time = Dimension(ORV_UNIT_TIME);
  const Unique unique = UniqueOf({&length, &time, &length}, {1, -1, -1});
  EXPECT_EQ(unique.units, (std::vector<ORVUnit*>{&length, &time}));
  EXPECT_EQ(unique.exponents, (std::vector<float>{0, -1}));
}

TEST_F(VariableUnit, MergesInAscendingOrderOfTheDimension) {
  Scaled length = Dimension(ORV_UNIT_LENGTH), time = Dimension(ORV_UNIT_TIME), mass = Dimension(ORV_UNIT_MASS);
  const Unique unique = UniqueOf({&time, &mass, &length}, {3, 2, 1});
  EXPECT_EQ(unique.units, (std::vector<ORVUnit*>{&length, &mass, &time}));
  EXPECT_EQ(unique.exponents, (std::vector<float>{1, 2, 3}));
}

TEST_F(VariableUnit, MergesUnitsOfDifferentScaleWithoutCorrection) {
  Scaled metre(1, 0, ORV_UNIT_LENGTH), inch(0.0254F, 0, ORV_UNIT_LENGTH);
  const Unique unique = UniqueOf({&metre, &inch}, {1, 2});
  ASSERT_EQ(unique.units.size(), 1U);
  EXPECT_TRUE(unique.units[0] == &metre || unique.units[0] == &inch);
  EXPECT_EQ(unique.exponents, std::vector<float>{3});
}

TEST_F(VariableUnit, MergesShortLists) {
  Scaled length = Dimension(ORV_UNIT_LENGTH);
  EXPECT_TRUE(UniqueOf({}, {}).units.empty());
  EXPECT_EQ(UniqueOf({&length}, {5}).units, std::vector<ORVUnit*>{&length});
  EXPECT_EQ(UniqueOf({&length}, {5}).exponents, std::vector<float>{5});
  EXPECT_EQ(UniqueOf({nullptr, &length}, {1, 2}).units, (std::vector<ORVUnit*>{nullptr, &length}));
}

TEST_F(VariableUnit, AppendsMergedUnitsEvenToTheirOwnLists) {
  Scaled length = Dimension(ORV_UNIT_LENGTH);
  std::vector<ORVUnit*> units = {&length, &length};
  std::vector<float> exponents = {1, 2};
  ORVVariableUnit().ResolveToUniqueBaseUnits(units, exponents, units, exponents);
  EXPECT_EQ(units, (std::vector<ORVUnit*>{&length, &length, &length}));
  EXPECT_EQ(exponents, (std::vector<float>{1, 2, 3}));
}

TEST_F(VariableUnit, ReportsItsUnitsDimensionsAndFactors) {
  Scaled length(2, 0, ORV_UNIT_LENGTH);
  length.SetUnitString("L");
  ORVDUnit derived;
  derived.SetUnitString("D");
  derived.AppendBaseUnitInfo(&length, 2);
  ORVVariableUnit unit;
  unit.AppendBaseUnit(&length, 1);
  unit.AppendDeriveUnit(&derived, 1);
  std::string report, details;
  unit.GetDebugInf(report, false);
  EXPECT_EQ(
      report,
      "\nNumber of Base Units : 1\n\tL ^ 1, scale 2, shift 0\nNumber of Derive Units : 1\n\tD ^ 1, scale 1, shift 0"
      "\nUnique Dimension: 1\n\tL ^ 3, scale 2, shift 0\nConversion factor : From (L^3) to (SI std) => 8"
      "\nConversion factor : from (std SI) to (L^3) => 0.125");
  unit.GetDebugInf(details, true);
  EXPECT_GT(details.size(), report.size());
}

}  // namespace
