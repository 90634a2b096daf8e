// The units of components. A variable lists them in two sets of tables, one for base units and one for derived units:
//
//     m_pMbunit, m_pMdunit   number of units of each component
//     m_pUbid, m_pUdid       their ids in the unit system, component after component
//     m_pUbexp, m_pUdexp     their exponents

#include "unit/component_units.h"

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "filer/container.h"
#include "orvio/orv_unit.h"
#include "orvio/orv_variable_grp.h"
#include "unit/unit_tables.h"
#include "unit/unit_text.h"
#include "variable/ext_var_search.h"
#include "variable/variable_tables.h"

namespace orvio {
namespace {

/// The units of a file by their ids.
struct KnownUnits {
  explicit KnownUnits(const ORVContainer& data) : base(ById(data.base_units)), derived(ById(data.derived_units)) {}
  UnitsById base, derived;
};

/// One set of tables of a variable, and where its ids are known.
struct UnitLists {
  const int* counts;
  const int* ids;
  const float* exponents;
  const UnitsById& known;
  void (*append)(ORVVariableUnit& out, ORVUnit* unit, float exponent);

  bool IsComplete() const { return counts && ids && exponents && !known.empty(); }
  int CountAt(std::size_t component) const { return counts ? counts[component] : 0; }
};

UnitLists BaseLists(const ORVVariable& variable, const KnownUnits& known) {
  return {variable.m_pMbunit, variable.m_pUbid, variable.m_pUbexp, known.base,
          [](ORVVariableUnit& out, ORVUnit* unit, float exponent) { out.AppendBaseUnit(unit, exponent); }};
}

UnitLists DerivedLists(const ORVVariable& variable, const KnownUnits& known) {
  return {variable.m_pMdunit, variable.m_pUdid, variable.m_pUdexp, known.derived,
          [](ORVVariableUnit& out, ORVUnit* unit, float exponent) {
            out.AppendDeriveUnit(dynamic_cast<ORVDUnit*>(unit), exponent);  // null is ignored
          }};
}

/// Components that the variable has counts of units for.
std::uint64_t CountedComponents(const ORVVariable& variable) {
  return std::min(variable.m_originalCount, ComponentsOf(variable));
}

/// Appends the units of a component, whose entries begin at `start`. Entries beyond the room of the tables are none.
void AppendListed(const ORVVariable& variable, const UnitLists& lists, std::size_t component, std::uint64_t start,
                  ORVVariableUnit& out) {
  const std::uint64_t room = kUnitsPerComponent * ComponentsOf(variable);
  const auto count = static_cast<std::uint64_t>(std::max(lists.CountAt(component), 0));
  if (!lists.ids || !lists.exponents || start > room || count > room - start) return;
  for (std::uint64_t entry = start; entry < start + count; ++entry) {
    const auto unit = lists.known.find(lists.ids[entry]);
    if (unit != lists.known.end()) lists.append(out, unit->second, lists.exponents[entry]);
  }
}

}  // namespace

/// QUIRK: a component is marked as dimensionless only where both kinds could be looked up, so never in a file without
/// derived units. Hosts take a component without units and without the mark for one whose unit is not known, and let the
/// user choose. Pinned by FilerUnits.OfAFileWithoutDerivedUnitsNeverMarkAComponentAsDimensionless.
void AppendComponentUnits(const ORVContainer& data, const ORVVariable& variable, int component, ORVVariableUnit& out) {
  if (component < 0 || static_cast<std::uint64_t>(component) >= CountedComponents(variable)) return;
  const auto place = static_cast<std::size_t>(component);
  const KnownUnits known(data);
  bool dimensionless = true;
  for (const UnitLists& lists : {BaseLists(variable, known), DerivedLists(variable, known)}) {
    dimensionless = dimensionless && lists.IsComplete() && lists.CountAt(place) == 0;
    if (lists.IsComplete()) AppendListed(variable, lists, place, SumOfCounts(lists.counts, place), out);
  }
  if (dimensionless) out.SetDimensionLess(true);
}

// ---- Units of handles

namespace {

/// Positions of the first component of each variable in results.
using Places = std::map<const ORVVariable*, std::vector<int>>;

/// QUIRK: a variable of a group is taken to stand where the key of the same position does, be it its own key or not. All
/// questions about a group's variables are answered so, and behind a key that no variable has the unit of a handle has to
/// fit those answers. Pinned by ComponentUnits.BehindAKeyWithoutVariableAreThoseOfThePositionBefore.
Places PlacesOf(const ORVContainer& data) {
  Places places;
  if (data.variable_groups.empty()) {
    for (const ORVVariable* variable : data.variables) places[variable] = {0};
  }
  for (const ORVVariableGrp* group : data.variable_groups) {
    for (std::size_t i = 0; i < group->m_variables.size(); ++i) {
      const bool listed = group->m_pOffs && static_cast<std::int64_t>(i) < group->m_nvar;
      places[group->m_variables[i]].push_back(listed ? group->m_pOffs[i] : 0);
    }
  }
  return places;
}

/// The component whose unit each handle shows. Of several places the last one counts.
///
/// QUIRK: positions without a handle are left out, and the handles found take the components from the first on. Hosts have
/// stored values under these units, and would show them in others. Pinned by
/// ComponentUnits.GoToTheHandlesThatAreThereFromTheFirstComponentOn.
std::map<const ORVExtVar*, std::size_t> ShownComponents(const ORVVariable& variable, const std::vector<int>& places) {
  std::map<const ORVExtVar*, std::size_t> shown;
  const auto components = static_cast<std::int64_t>(CountedComponents(variable));
  for (const int place : places) {
    const std::vector<ORVExtVar*> handles = StoredHandles(variable.m_extVars, place, components);
    for (std::size_t c = 0; c < handles.size(); ++c) {
      const bool has_units = (variable.m_pMbunit && variable.m_pMbunit[c] != 0) ||  //
                             (variable.m_pMdunit && variable.m_pMdunit[c] != 0);
      if (has_units) shown[handles[c]] = c;
    }
  }
  return shown;
}

/// Where the entries of each component begin. A negative count is none.
std::vector<std::uint64_t> StartsOf(const UnitLists& lists, std::size_t components) {
  std::vector<std::uint64_t> starts(components, 0);
  for (std::size_t c = 1; c < components; ++c) {
    starts[c] = starts[c - 1] + static_cast<std::uint64_t>(std::max(lists.CountAt(c - 1), 0));
  }
  return starts;
}

/// Texts of the units of a variable's components.
class ComponentTexts {
 public:
  ComponentTexts(const ORVVariable& variable, const KnownUnits& known)
      : variable_(variable),
        base_(BaseLists(variable, known)),
        derived_(DerivedLists(variable, known)),
        base_starts_(StartsOf(base_, CountedComponents(variable))),
        derived_starts_(StartsOf(derived_, CountedComponents(variable))) {}

  std::string Of(std::size_t component) const {
    ORVVariableUnit unit;
    AppendListed(variable_, base_, component, base_starts_[component], unit);
    AppendListed(variable_, derived_, component, derived_starts_[component], unit);
    std::vector<float> base_exponents, derived_exponents;
    const auto& base = unit.GetBaseUnitInfo(base_exponents);
    const auto& derived = unit.GetDeriveUnitInfo(derived_exponents);
    return UnitText(base, base_exponents, derived, derived_exponents);
  }

 private:
  const ORVVariable& variable_;
  UnitLists base_, derived_;
  std::vector<std::uint64_t> base_starts_, derived_starts_;
};

/// Makes the unit of a handle. The list owns it.
void MakeUnit(ORVExtVar& handle, const std::string& text, std::vector<ORVUnit*>& units) {
  auto unit = std::make_unique<ORVUnit>();
  unit->SetUnitId(handle.GetIID());
  unit->SetUnitType(ORV_UNIT_DERIVED);
  unit->SetUnitString(text);
  units.push_back(unit.get());
  handle.SetUnit(unit.release());
}

void AssignStored(ORVVariable& variable, const std::vector<int>& places, const KnownUnits& known,
                  std::vector<ORVUnit*>& units) {
  const auto shown = ShownComponents(variable, places);
  if (shown.empty()) return;
  const ComponentTexts texts(variable, known);
  for (ORVExtVar* handle : variable.m_extVars) {
    const auto component = shown.find(handle);
    if (component == shown.end() || handle->GetUnit()) continue;
    MakeUnit(*handle, texts.Of(component->second), units);
  }
}

/// The id of the component whose unit a handle without one of its own shows; its own where it has no inputs.
///
/// QUIRK: every computed measure shows the unit of its first input, the determinant of a tensor too, whose unit it is not.
/// Hosts convert it by that unit when they have computed it. Pinned by
/// ComponentUnits.OfAVonMisesStressAndOfADeterminantAreThatOfTheStress.
int FirstInput(const ORVExtVar& handle) {
  for (const ORVDependentVar* dependent : handle.GetDependent()) {
    if (dependent && !dependent->m_iids.empty()) return dependent->m_iids.front();
  }
  return handle.GetIID();
}

ORVUnit* Find(const UnitsById& units, int id) {
  const auto found = units.find(id);
  return found == units.end() ? nullptr : found->second;
}

}  // namespace

void AssignComponentUnits(ORVContainer& data, std::size_t first) {
  if (first >= data.ext_vars.size()) return;
  const KnownUnits known(data);
  const Places places = PlacesOf(data);
  for (ORVVariable* variable : data.variables) {
    const auto found = places.find(variable);
    if (found != places.end()) AssignStored(*variable, found->second, known, data.component_units);
  }
  const UnitsById by_handle = ById(data.component_units);
  for (std::size_t i = first; i < data.ext_vars.size(); ++i) {
    ORVExtVar& handle = *data.ext_vars[i];
    if (!handle.GetUnit()) handle.SetUnit(Find(by_handle, handle.GetIID()));
    if (!handle.GetUnit()) handle.SetUnit(Find(by_handle, FirstInput(handle)));
  }
}

}  // namespace orvio
