// The units of a file: GetUnitList for all of them, GetComponentUnit for those of one component.

#include <algorithm>

#include "filer/container.h"
#include "h5/entry.h"
#include "orvio/orv_filer.h"
#include "unit/component_units.h"

using namespace orvio;

void ORVFiler::GetUnitList(std::vector<ORVUnit*>& base, std::vector<ORVUnit*>& derived) {
  if (!m_pData) return;
  h5::EntryVoid([&] {
    base = m_pData->base_units;
    derived = m_pData->derived_units;
  });
}

/// QUIRK: a computed handle stands at no position, and has the units of component 0. It is derived from its variable's
/// components, which have one unit in common. Pinned by FilerUnits.OfAComputedHandleAreThoseOfTheFirstComponent.
void ORVFiler::GetComponentUnit(int iid, ORVVariableUnit& out, bool /*flag*/) {
  ORVVariable* variable = GetVariableFrmID(iid, true);
  if (!variable) return;
  bool found = false;
  const int position = variable->GetVariableIndex(variable->GetExtVarFrmId(iid, true), found);
  GetComponentUnit(variable, std::max(position, 0), out);
}

/// QUIRK: `out` keeps the units and the mark that it has. Hosts gather those of several components in one object. Pinned
/// by FilerUnits.AreAppendedToWhatIsThere.
void ORVFiler::GetComponentUnit(ORVVariable* variable, int component, ORVVariableUnit& out) {
  if (!m_pData || !variable) return;
  h5::EntryVoid([&] { AppendComponentUnits(*m_pData, *variable, component, out); });
}
