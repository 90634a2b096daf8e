// Products of units as a text to show. The base units and the derived ones are each a fraction; the text joins the two.

#include "unit/unit_text.h"

#include <cmath>
#include <compare>
#include <string_view>
#include <utility>

#include "h5/entry.h"
#include "orvio/orv_unit.h"
#include "unit/unit_model_resolve.h"

namespace orvio {
namespace {

constexpr std::size_t kTextBytes = 511;
constexpr char kOne[] = "1";

std::string Cut(std::string text) {
  if (text.size() > kTextBytes) text.resize(kTextBytes);
  return text;
}

struct Fraction {
  std::string numerator, denominator;
};

/// A unit with its power. A power of 1 is not written; one of 0 is, since the unit is named all the same.
///
/// QUIRK: a unit whose own text has a power is put in brackets where it stands first; behind another unit the caret is
/// put in them instead. Hosts compare these texts with those that they have stored. Pinned by
/// UnitText.OfAUnitWithAPowerOfItsOwnBehindAnotherHasTheCaretInBrackets.
std::string Factor(const std::string& unit, float exponent, bool first) {
  const double power = std::fabs(static_cast<double>(exponent));
  if (std::is_eq(power <=> 1.0)) return unit;
  const bool has_own_power = unit.find('^') != std::string::npos;
  if (!has_own_power) return unit + "^" + Number(power);
  return first ? "(" + unit + ")^" + Number(power) : unit + "(^)" + Number(power);
}

/// QUIRK: an exponent of 0 counts as one of the numerator, where the unit stands with the power 0. Hosts show it so that
/// the user sees what the file says. Pinned by UnitText.OfAnExponentOfZeroStandsInTheNumerator.
bool IsAbove(float exponent) { return exponent >= 0; }

template <class Unit>
Fraction ProductOf(const std::vector<Unit*>& units, const std::vector<float>& exponents) {
  Fraction product;
  for (std::size_t i = 0; i < PairsOf(units, exponents); ++i) {
    if (!units[i] || units[i]->GetUnitStrLength() == 0) continue;
    std::string& text = IsAbove(exponents[i]) ? product.numerator : product.denominator;
    const std::string factor = Factor(units[i]->GetUnitCStr(), exponents[i], text.empty());
    if (!text.empty()) text += ' ';
    text += factor;
    text = Cut(std::move(text));
  }
  if (product.numerator.empty() && !product.denominator.empty()) product.numerator = kOne;
  return product;
}

std::string Joined(const Fraction& product) {
  return product.denominator.empty() ? product.numerator : Cut(product.numerator + "/" + product.denominator);
}

/// Two texts with a blank between them, where there are two; `both` tells.
std::string Beside(const std::string& left, const std::string& right, bool& both) {
  both = !left.empty() && !right.empty();
  return both ? left + " " + right : left + right;
}

/// QUIRK: the 1 of the derived units is left out even where the base units have no numerator at all, so a text can begin
/// with its stroke. Base units without texts come from files that name none, and hosts take the text as it is. Pinned
/// by UnitText.WithoutAnyNumeratorButTheOneOfTheDerivedUnitsBeginsWithTheStroke.
void LeaveOutOnes(Fraction& base, Fraction& derived) {
  if (derived.numerator == kOne) {
    derived.numerator.clear();
  } else if (base.numerator == kOne && !derived.numerator.empty()) {
    base.numerator.clear();
  }
}

std::string Joined(Fraction base, Fraction derived) {
  LeaveOutOnes(base, derived);
  bool two_above = false;
  bool two_below = false;
  const std::string above = Beside(base.numerator, derived.numerator, two_above);
  const std::string below = Beside(base.denominator, derived.denominator, two_below);
  if (below.empty()) return Cut(above);
  return Cut((two_above ? "(" + above + ")" : above) + "/" + (two_below ? "(" + below + ")" : below));
}

}  // namespace

std::string UnitText(const std::vector<ORVUnit*>& base, const std::vector<float>& base_exponents,
                     const std::vector<ORVDUnit*>& derived, const std::vector<float>& derived_exponents) {
  if (derived.empty()) return Joined(ProductOf(base, base_exponents));
  if (base.empty()) return Joined(ProductOf(derived, derived_exponents));
  return Joined(ProductOf(base, base_exponents), ProductOf(derived, derived_exponents));
}

}  // namespace orvio

using namespace orvio;

bool ORVVariableUnit::ConstructUnitString(std::string& out) {
  out.clear();
  return h5::Entry(false, [&] {
    out = UnitText(m_baseUnits, m_baseExp, m_deriveUnits, m_deriveExp);
    return !out.empty();
  });
}
