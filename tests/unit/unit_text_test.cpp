// The texts that show products of units. Units of components are in component_units_test.

#include <gtest/gtest.h>

#include <initializer_list>
#include <limits>
#include <list>
#include <string>

#include "orvio/orv_unit.h"
#include "support/orv_test.h"

namespace {

struct Power {
  std::string unit;
  float exponent;
};

// The base has no virtual destructor; none of these is destroyed through it.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"

/// A unit of a component that shows its text, with the units that it points to.
class ShownUnit : public ORVVariableUnit {
 public:
  ShownUnit(std::initializer_list<Power> base, std::initializer_list<Power> derived) {
    for (const Power& power : base) {
      base_.emplace_back().SetUnitString(power.unit);
      AppendBaseUnit(&base_.back(), power.exponent);
    }
    for (const Power& power : derived) {
      derived_.emplace_back().SetUnitString(power.unit);
      AppendDeriveUnit(&derived_.back(), power.exponent);
    }
  }
  void AppendNull() {
    m_baseUnits.insert(m_baseUnits.begin(), nullptr);
    m_baseExp.insert(m_baseExp.begin(), 1.0F);
  }
  bool Construct(std::string& out) { return ConstructUnitString(out); }

 private:
  std::list<ORVUnit> base_;
  std::list<ORVDUnit> derived_;
};

#pragma GCC diagnostic pop

std::string TextOf(std::initializer_list<Power> base, std::initializer_list<Power> derived = {}) {
  std::string text = "before";
  ShownUnit unit(base, derived);
  const bool has_text = unit.Construct(text);
  EXPECT_EQ(has_text, !text.empty());
  return text;
}

class UnitText : public orv_test::OrvTest {};

// ---- One product

TEST_F(UnitText, OfNoUnitsIsEmptyAndToldToBe) {
  std::string text = "before";
  EXPECT_FALSE(ShownUnit({}, {}).Construct(text));
  EXPECT_EQ(text, "");
}

TEST_F(UnitText, OfUnitsIsToldToBeThere) {
  std::string text = "before";
  EXPECT_TRUE(ShownUnit({{"m", 1}}, {}).Construct(text));
  EXPECT_EQ(text, "m");
}

TEST_F(UnitText, OfOneUnitHasItsPower) {
  EXPECT_EQ(TextOf({{"m", 1}}), "m");
  EXPECT_EQ(TextOf({{"kg", 0.5F}}), "kg^0.5");
  EXPECT_EQ(TextOf({{"m", 2}}), "m^2");
}

TEST_F(UnitText, OfOneUnitBelowTheStrokeHasAOneAbove) {
  EXPECT_EQ(TextOf({{"s", -1}}), "1/s");
  EXPECT_EQ(TextOf({{"s", -2}}), "1/s^2");
}

TEST_F(UnitText, HasAllUnitsOfOneKindOnBothSidesOfTheStroke) {
  EXPECT_EQ(TextOf({{"m", 1}, {"s", -2}}), "m/s^2");
  EXPECT_EQ(TextOf({{"s", -2}, {"kg", 1}, {"K", -1}, {"m", 3}}), "kg m^3/s^2 K");
  EXPECT_EQ(TextOf({}, {{"N", 1}, {"Pa", -2}}), "N/Pa^2");
}

TEST_F(UnitText, WritesPowersWithUpToSixDigits) {
  EXPECT_EQ(TextOf({{"m", 1.0F / 3.0F}}), "m^0.333333");
  EXPECT_EQ(TextOf({{"m", 1e6F}}), "m^1e+06");
  EXPECT_EQ(TextOf({{"m", 0.1F}}), "m^0.1");
  EXPECT_EQ(TextOf({{"m", -0.25F}, {"s", 1}}), "s/m^0.25");
}

TEST_F(UnitText, WritesPowersThatAreNoNumbers) {
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  EXPECT_EQ(TextOf({{"m", kInfinity}}), "m^inf");
  EXPECT_EQ(TextOf({{"m", -kInfinity}}), "1/m^inf");
  EXPECT_EQ(TextOf({{"m", std::numeric_limits<float>::quiet_NaN()}}), "1/m^nan");
}

TEST_F(UnitText, OfAnExponentOfZeroStandsInTheNumerator) {
  EXPECT_EQ(TextOf({{"m", 0}}), "m^0");
  EXPECT_EQ(TextOf({{"m", -0.0F}}), "m^0");
  EXPECT_EQ(TextOf({{"kg", 1}, {"m", 0}, {"s", -1}}), "kg m^0/s");
}

TEST_F(UnitText, OfAUnitWithAPowerOfItsOwnIsInBracketsWhereItStandsFirst) {
  EXPECT_EQ(TextOf({{"m^2", 3}}), "(m^2)^3");
  EXPECT_EQ(TextOf({{"m^2", -3}}), "1/(m^2)^3");
  EXPECT_EQ(TextOf({{"m^2", 1}}), "m^2");
  EXPECT_EQ(TextOf({{"m^2", -1}}), "1/m^2");
}

TEST_F(UnitText, OfAUnitWithAPowerOfItsOwnBehindAnotherHasTheCaretInBrackets) {
  EXPECT_EQ(TextOf({{"kg", 1}, {"m^2", 3}}), "kg m^2(^)3");
  EXPECT_EQ(TextOf({{"s", -1}, {"m^2", -0.5F}}), "1/s m^2(^)0.5");
  EXPECT_EQ(TextOf({{"kg", 1}, {"m^2", 1}}), "kg m^2");
  EXPECT_EQ(TextOf({{"kg", 1}, {"m^2", -3}}), "kg/(m^2)^3");  // the first one below the stroke
}

TEST_F(UnitText, LeavesOutUnitsWithoutATextAndDoesNotCountThem) {
  EXPECT_EQ(TextOf({{"", 1}, {"m^2", 3}}), "(m^2)^3");
  EXPECT_EQ(TextOf({{"m", 1}, {"", -1}}), "m");
  EXPECT_EQ(TextOf({{"", 1}, {"", -1}}), "");
}

TEST_F(UnitText, LeavesOutNullUnits) {
  ShownUnit unit({{"m", 1}}, {});
  unit.AppendNull();
  std::string text;
  EXPECT_TRUE(unit.Construct(text));
  EXPECT_EQ(text, "m");
}

// ---- Base units and derived units

TEST_F(UnitText, OfBothKindsHasBracketsAroundTwoParts) {
  EXPECT_EQ(TextOf({{"m", 1}}, {{"N", 1}}), "m N");
  EXPECT_EQ(TextOf({{"m", 1}, {"s", -1}}, {{"N", 1}}), "(m N)/s");
  EXPECT_EQ(TextOf({{"m", 1}}, {{"N", 1}, {"Pa", -2}}), "(m N)/Pa^2");
  EXPECT_EQ(TextOf({{"m", 1}, {"s", -1}}, {{"N", 1}, {"Pa", -2}}), "(m N)/(s Pa^2)");
}

TEST_F(UnitText, OfBothKindsHasNoOneBesideAnotherNumerator) {
  EXPECT_EQ(TextOf({{"m", 1}}, {{"s", -1}}), "m/s");
  EXPECT_EQ(TextOf({{"m", 1}, {"K", -1}}, {{"s", -1}}), "m/(K s)");
  EXPECT_EQ(TextOf({{"s", -1}}, {{"N", 1}}), "N/s");
  EXPECT_EQ(TextOf({{"s", -1}}, {{"N", 1}, {"Pa", -1}}), "N/(s Pa)");
}

TEST_F(UnitText, OfBothKindsBelowTheStrokeHasTheOneOfTheBaseUnits) {
  EXPECT_EQ(TextOf({{"s", -1}}, {{"N", -1}}), "1/(s N)");
}

TEST_F(UnitText, OfBothKindsHasThePartsThatHaveTexts) {
  EXPECT_EQ(TextOf({{"", 1}}, {{"N", 1}}), "N");
  EXPECT_EQ(TextOf({{"", 1}}, {{"N", 1}, {"Pa", -1}}), "N/Pa");
  EXPECT_EQ(TextOf({{"m", 1}}, {{"", 1}}), "m");
  EXPECT_EQ(TextOf({{"m", 1}, {"s", -1}}, {{"", 1}}), "m/s");
  EXPECT_EQ(TextOf({{"s", -1}}, {{"", 1}}), "1/s");
  EXPECT_EQ(TextOf({{"", 1}}, {{"", -1}}), "");
}

TEST_F(UnitText, WithoutAnyNumeratorButTheOneOfTheDerivedUnitsBeginsWithTheStroke) {
  EXPECT_EQ(TextOf({{"", 1}}, {{"N", -1}}), "/N");
}

TEST_F(UnitText, OfAUnitNamedOneIsTreatedAsAOne) {
  EXPECT_EQ(TextOf({{"m", 1}}, {{"1", 1}}), "m");
  EXPECT_EQ(TextOf({{"1", 1}}, {{"N", 1}}), "N");
}

// ---- Long ones

TEST_F(UnitText, IsCutAt511Bytes) {
  const std::string long_name(300, 'x');
  const std::string longer_name(600, 'y');
  EXPECT_EQ(TextOf({{longer_name, 1}}), std::string(511, 'y'));
  EXPECT_EQ(TextOf({{longer_name, 2}}), std::string(511, 'y'));
  EXPECT_EQ(TextOf({{std::string(510, 'z'), 25}}), std::string(510, 'z') + "^");
  EXPECT_EQ(TextOf({{std::string(511, 'z'), 1}}), std::string(511, 'z'));
  EXPECT_EQ(TextOf({{long_name, 1}, {long_name, 1}}), long_name + " " + std::string(210, 'x'));
  EXPECT_EQ(TextOf({{long_name, 1}, {long_name, -1}}), long_name + "/" + std::string(210, 'x'));
  EXPECT_EQ(TextOf({{longer_name, -1}}), "1/" + std::string(509, 'y'));
}

TEST_F(UnitText, OfBothKindsIsCutAt511Bytes) {
  const std::string name(300, 'x');
  EXPECT_EQ(TextOf({{name, 1}}, {{name, 1}}), name + " " + std::string(210, 'x'));
  EXPECT_EQ(TextOf({{name, 1}, {"s", -1}}, {{name, 1}}), "(" + name + " " + std::string(209, 'x'));
}

}  // namespace
