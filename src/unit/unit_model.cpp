// Units: their fields, and the factors to SI. Resolving into base units is in unit_model_resolve.cpp, reports for people
// in unit_model_report.cpp.

#include <algorithm>
#include <cmath>
#include <iterator>

#include "h5/entry.h"
#include "orvio/orv_unit.h"
#include "unit/unit_model_resolve.h"

using namespace orvio;

namespace {

/// Words of GetUnitInfo, by _ORVUnitType. The words in files differ.
constexpr const char* kUnitWords[] = {
    "",
    "Length",
    "Mass",
    "Time",
    "Electric Current",
    "Thermodynamic_Temprature",
    "Amount of Substance",
    "Luminous Intensity",
    "Derived Unit",
};

constexpr int kNoDataType = -99999;

/// A factor to SI, and whether it is exact without a shift.
struct Factor {
  double scale = 1.0;
  bool exact = false;
};

/// QUIRK: an exponent of exactly 0 leaves the base as it is, so a unit with that exponent contributes its scale and
/// not 1. Values converted once must not change when they are converted again. Pinned by
/// DerivedUnit.AnExponentOfZeroLeavesTheScaleInTheFactor.
double Power(double base, float exponent) {
  return std::fpclassify(exponent) == FP_ZERO ? base : std::pow(base, static_cast<double>(exponent));
}

Factor TermOf(const ORVUnit* unit, float exponent) {
  Factor term;
  if (unit) {
    float shift = 0;
    term.scale = static_cast<double>(unit->GetConversionFactors(shift));
    term.exact = std::fpclassify(shift) == FP_ZERO;
  }
  term.scale = Power(term.scale, exponent);
  return term;
}

/// QUIRK: whether the factor is exact is told by the last term alone. Hosts refuse units that answer false, and would
/// refuse more of them. Pinned by DerivedUnit.IsExactIfItsLastBaseUnitIs.
Factor ProductOf(const std::vector<ORVUnit*>& units, const std::vector<float>& exponents) {
  Factor product;
  for (std::size_t i = 0; i < PairsOf(units, exponents); ++i) {
    const Factor term = TermOf(units[i], exponents[i]);
    product.scale *= term.scale;
    product.exact = term.exact;
  }
  return product;
}

/// QUIRK: a derived unit without base units counts as 1, whatever its scale, and is not exact. Such units come from
/// tables whose entries could not be found, and their scales mean nothing. Pinned by
/// DerivedUnit.WithoutBaseUnitsHasTheFactorOne and VariableUnit.IsNotExactIfItsLastDerivedUnitHasNoBaseUnits.
Factor FactorOf(const ORVDUnit& unit) {
  if (PairsOf(unit.GetBaseUnits(), unit.GetBaseUnitExponent()) == 0) return Factor();
  Factor factor = ProductOf(unit.GetBaseUnits(), unit.GetBaseUnitExponent());
  float shift = 0;
  factor.scale *= static_cast<double>(unit.GetConversionFactors(shift));
  return factor;
}

template <class Unit>
void AppendPair(std::vector<Unit*>& units, std::vector<float>& exponents, Unit* unit, float exponent) {
  if (!unit) return;
  h5::EntryVoid([&] {
    units.reserve(units.size() + 1);  // nothing fails between the two lists
    exponents.push_back(exponent);
    units.push_back(unit);
  });
}

}  // namespace

// ---- ORVUnit

ORVUnit::ORVUnit() { Init(); }

ORVUnit::~ORVUnit() = default;

void ORVUnit::Init() {
  m_unitId = 0;
  m_unitType = ORV_UNIT_UNKNOWN;
  m_unitStr.clear();
  m_scale = 1.0F;
  m_shift = 0.0F;
  m_vdbDataType = kNoDataType;
}

void ORVUnit::SetUnitString(const char* text) {
  if (text) h5::EntryVoid([&] { m_unitStr = text; });
}

void ORVUnit::SetUnitString(const std::string& text) {
  h5::EntryVoid([&] { m_unitStr = text; });
}

void ORVUnit::SetConversionFactors(float scale, float shift) {
  m_scale = scale;
  m_shift = shift;
}

float ORVUnit::GetConversionFactors(float& shift) const {
  shift = m_shift;
  return m_scale;
}

std::string ORVUnit::GetUnitInfo(std::string& unitStr, float& scale, float& shift) const {
  scale = m_scale;
  shift = m_shift;
  return h5::Entry(std::string(), [&] {
    unitStr = m_unitStr;
    const bool known = m_unitType >= 0 && m_unitType < static_cast<int>(std::size(kUnitWords));
    return std::string(known ? kUnitWords[m_unitType] : "");
  });
}

/// QUIRK: the shift is never handed out, here and in the forms below: it shows in the answer alone. Hosts add what they
/// get to every value, and do the shift of a temperature themselves when they are told that the factor is not exact.
/// Pinned by BaseUnit.WithAShiftIsNotExactAndNeverGivesIt.
bool ORVUnit::GetSIConversionFactors(double& scale, double& shift) {
  scale = static_cast<double>(m_scale);
  shift = 0.0;
  return std::fpclassify(m_shift) == FP_ZERO;
}

// ---- ORVDUnit

ORVDUnit::ORVDUnit() { m_unitType = ORV_UNIT_DERIVED; }

ORVDUnit::~ORVDUnit() = default;

void ORVDUnit::AppendBaseUnitInfo(ORVUnit* unit, float exponent) {
  AppendPair(m_baseUnits, m_baseExponents, unit, exponent);
}

void ORVDUnit::SetBaseUnitInfo(unsigned n, const float* exponents, const std::vector<ORVUnit*>& units) {
  if (!exponents) return;
  h5::EntryVoid([&] {
    const std::vector<ORVUnit*> added(units.begin(), units.begin() + std::min<std::ptrdiff_t>(n, std::ssize(units)));
    m_baseUnits.reserve(m_baseUnits.size() + added.size());
    m_baseExponents.insert(m_baseExponents.end(), exponents, exponents + added.size());
    m_baseUnits.insert(m_baseUnits.end(), added.begin(), added.end());
  });
}

void ORVDUnit::SetBaseUnits(const std::vector<ORVUnit*>& units) {
  h5::EntryVoid([&] {
    const std::size_t count = units.size();  // they may be this unit's own
    m_baseUnits.reserve(m_baseUnits.size() + count);
    for (std::size_t i = 0; i < count; ++i) m_baseUnits.push_back(units[i]);
  });
}

void ORVDUnit::SetBaseExponent(unsigned n, const float* exponents) {
  if (exponents) h5::EntryVoid([&] { m_baseExponents.insert(m_baseExponents.end(), exponents, exponents + n); });
}

bool ORVDUnit::GetSIConversionFactors(double& scale, double& shift) {
  const Factor factor = FactorOf(*this);
  scale = factor.scale;
  shift = 0.0;
  return factor.exact;
}

// ---- ORVVariableUnit

ORVVariableUnit::ORVVariableUnit() : m_dimensionLess(false) {}

ORVVariableUnit::~ORVVariableUnit() = default;

void ORVVariableUnit::AppendBaseUnit(ORVUnit* unit, float exponent) {
  AppendPair(m_baseUnits, m_baseExp, unit, exponent);
}

void ORVVariableUnit::AppendDeriveUnit(ORVDUnit* unit, float exponent) {
  AppendPair(m_deriveUnits, m_deriveExp, unit, exponent);
}

std::vector<ORVUnit*>& ORVVariableUnit::GetBaseUnitInfo(std::vector<float>& exponents) {
  h5::EntryVoid([&] { exponents = m_baseExp; });
  return m_baseUnits;
}

std::vector<ORVDUnit*>& ORVVariableUnit::GetDeriveUnitInfo(std::vector<float>& exponents) {
  h5::EntryVoid([&] { exponents = m_deriveExp; });
  return m_deriveUnits;
}

bool ORVVariableUnit::GetSIConversionFactors(double& scale, double& shift) {
  shift = 0.0;
  const Factor base = ProductOf(m_baseUnits, m_baseExp);
  Factor derived;
  derived.exact = base.exact;  // false without base units; the derived ones have the last word
  for (std::size_t i = 0; i < PairsOf(m_deriveUnits, m_deriveExp); ++i) {
    const Factor factor = m_deriveUnits[i] ? FactorOf(*m_deriveUnits[i]) : Factor();
    derived.scale *= Power(factor.scale, m_deriveExp[i]);
    derived.exact = factor.exact;
  }
  scale = derived.scale * base.scale;
  return derived.exact;
}
