// Resolving the unit of a component into base units.

#include "unit/unit_model_resolve.h"

#include <algorithm>
#include <numeric>

#include "h5/entry.h"

namespace orvio {
namespace {

struct UnitList {
  std::vector<ORVUnit*> units;
  std::vector<float> exponents;

  void Append(ORVUnit* unit, float exponent) {
    units.push_back(unit);
    exponents.push_back(exponent);
  }

  /// Behind what is there already; memory may run out before the first list changes, not between the two.
  void AppendTo(std::vector<ORVUnit*>& to_units, std::vector<float>& to_exponents) const {
    to_units.reserve(to_units.size() + units.size());
    to_exponents.reserve(to_exponents.size() + exponents.size());
    to_units.insert(to_units.end(), units.begin(), units.end());
    to_exponents.insert(to_exponents.end(), exponents.begin(), exponents.end());
  }
};

_ORVUnitType DimensionOf(const ORVUnit* unit) { return unit ? unit->GetUnitType() : ORV_UNIT_UNKNOWN; }

/// Positions of a list in ascending order of the dimension.
std::vector<std::size_t> ByDimension(const std::vector<ORVUnit*>& units, std::size_t count) {
  std::vector<std::size_t> order(count);
  std::iota(order.begin(), order.end(), std::size_t{0});
  std::ranges::stable_sort(order, {}, [&](std::size_t place) { return DimensionOf(units[place]); });
  return order;
}

/// QUIRK: units of one dimension are merged whatever their scales, without a correction. The list tells hosts the
/// dimension of a quantity, and its factor is asked for elsewhere. Pinned by
/// VariableUnit.MergesUnitsOfDifferentScaleWithoutCorrection.
UnitList MergeByDimension(const std::vector<ORVUnit*>& units, const std::vector<float>& exponents) {
  UnitList merged;
  for (const std::size_t place : ByDimension(units, PairsOf(units, exponents))) {
    const bool same = !merged.units.empty() && DimensionOf(merged.units.back()) == DimensionOf(units[place]);
    if (!same) {
      merged.Append(units[place], exponents[place]);
      continue;
    }
    merged.units.back() = units[place];
    merged.exponents.back() += exponents[place];
  }
  return merged;
}

}  // namespace
}  // namespace orvio

using namespace orvio;

void ORVVariableUnit::ResolveToBaseUnits(std::vector<ORVUnit*>& units, std::vector<float>& exps) const {
  h5::EntryVoid([&] {
    UnitList resolved;
    for (std::size_t i = 0; i < PairsOf(m_baseUnits, m_baseExp); ++i) resolved.Append(m_baseUnits[i], m_baseExp[i]);
    for (std::size_t i = 0; i < PairsOf(m_deriveUnits, m_deriveExp); ++i) {
      if (!m_deriveUnits[i]) continue;
      const auto& base = m_deriveUnits[i]->GetBaseUnits();
      const auto& exponents = m_deriveUnits[i]->GetBaseUnitExponent();
      for (std::size_t k = 0; k < PairsOf(base, exponents); ++k)
        resolved.Append(base[k], exponents[k] * m_deriveExp[i]);
    }
    resolved.AppendTo(units, exps);
  });
}

void ORVVariableUnit::ResolveToUniqueBaseUnits(const std::vector<ORVUnit*>& units, const std::vector<float>& exps,
                                               std::vector<ORVUnit*>& outUnits, std::vector<float>& outExps) const {
  h5::EntryVoid([&] { MergeByDimension(units, exps).AppendTo(outUnits, outExps); });
}
