// The objects made of the unit system block.

#include "unit/unit_tables.h"

#include <algorithm>
#include <iterator>
#include <memory>
#include <string>

#include "h5/text_field.h"
#include "orvio/orv_system.h"
#include "orvio/orv_unit.h"

namespace orvio {
namespace {

/// The words of `ubtyp`. They are not those of ORVUnit::GetUnitInfo, which are for people.
struct DimensionWord {
  const char* word;
  _ORVUnitType type;
};

constexpr DimensionWord kDimensionWords[] = {
    {"Length", ORV_UNIT_LENGTH},
    {"Mass", ORV_UNIT_MASS},
    {"Time", ORV_UNIT_TIME},
    {"Electric current", ORV_UNIT_ELECTRIC_CURRENT},
    {"Thermodynamic temperature", ORV_UNIT_TEMPERATURE},
    {"Amount of substance", ORV_UNIT_AMOUNT_OF_SUBSTANCE},
    {"Luminous intensity", ORV_UNIT_LUMINOUS_INTENSITY},
};

_ORVUnitType TypeOfWord(std::string_view word) {
  const auto* row = std::ranges::find_if(
      kDimensionWords, [&](const DimensionWord& dimension) { return EqualIgnoringCase(dimension.word, word); });
  return row == std::end(kDimensionWords) ? ORV_UNIT_UNKNOWN : row->type;
}

std::string_view TextAt(const char* texts, std::int64_t index) {
  return Content(texts + static_cast<std::size_t>(index) * disk::kTextWidth);
}

template <class Unit>
Unit& Append(std::vector<ORVUnit*>& units) {
  auto unit = std::make_unique<Unit>();
  units.push_back(unit.get());
  return *unit.release();  // the list has it now
}

void AddBaseUnits(const ORVSystem& system, std::vector<ORVUnit*>& base) {
  if (!system.m_pUbtyp || !system.m_pUbnam) return;
  for (std::int64_t i = 0; i < system.m_nbunit; ++i) {
    auto& unit = Append<ORVUnit>(base);
    if (system.m_pUbid) unit.SetUnitId(system.m_pUbid[i]);
    unit.SetUnitType(TypeOfWord(TextAt(system.m_pUbtyp, i)));
    unit.SetUnitString(std::string(TextAt(system.m_pUbnam, i)));
    if (system.m_pUbcon) unit.SetScaleFactor(system.m_pUbcon[i]);
    if (system.m_pUbshift) unit.SetShiftFactor(system.m_pUbshift[i]);
  }
}

void AddDerivedUnits(const ORVSystem& system, std::vector<ORVUnit*>& derived) {
  if (!system.m_pUdid || !system.m_pUdscal || !system.m_pUdnam) return;
  for (std::int64_t i = 0; i < system.m_ndunit; ++i) {
    auto& unit = Append<ORVDUnit>(derived);
    unit.SetUnitId(system.m_pUdid[i]);
    unit.SetScaleFactor(system.m_pUdscal[i]);
    unit.SetUnitString(std::string(TextAt(system.m_pUdnam, i)));
  }
}

/// Ids that no base unit has are left out.
void AddProducts(const ORVSystem& system, const std::vector<ORVUnit*>& base, const std::vector<ORVUnit*>& derived) {
  if (!system.m_pNdbunit || !system.m_pUdbid || !system.m_pUdbexp) return;
  const auto by_id = ById(base);
  std::int64_t entry = 0;
  for (std::size_t i = 0; i < derived.size(); ++i) {
    auto& unit = static_cast<ORVDUnit&>(*derived[i]);
    for (int k = 0; k < system.m_pNdbunit[i]; ++k, ++entry) {
      const auto found = by_id.find(system.m_pUdbid[entry]);
      if (found != by_id.end()) unit.AppendBaseUnitInfo(found->second, system.m_pUdbexp[entry]);
    }
  }
}

}  // namespace

void FillUnitTables(const ORVSystem& system, std::vector<ORVUnit*>& base, std::vector<ORVUnit*>& derived) {
  ClearUnitTable(base);
  ClearUnitTable(derived);
  AddBaseUnits(system, base);
  AddDerivedUnits(system, derived);
  AddProducts(system, base, derived);
}

UnitsById ById(const std::vector<ORVUnit*>& units) {
  UnitsById by_id;
  for (ORVUnit* unit : units) by_id.try_emplace(unit->GetUnitId(), unit);
  return by_id;
}

void ClearUnitTable(std::vector<ORVUnit*>& units) {
  for (const ORVUnit* unit : units) delete unit;
  units.clear();
}

}  // namespace orvio
