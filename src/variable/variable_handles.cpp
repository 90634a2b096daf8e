// A variable's questions about the handles of its components.

#include <algorithm>
#include <iterator>

#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/orv_ext_var.h"
#include "orvio/orv_unit.h"
#include "orvio/orv_variable.h"
#include "variable/ext_var_search.h"
#include "variable/variable_tables.h"

using namespace orvio;

namespace {

ExtVarKey KeyFor(bool by_iid) { return by_iid ? ExtVarKey::kIid : ExtVarKey::kEid; }

}  // namespace

ORVExtVar* ORVVariable::GetExtVarFrmId(int id, bool byIID) { return FindExtVar(m_extVars, KeyFor(byIID), id); }

bool ORVVariable::IsExtVarAvailable(int id, bool byIID) { return GetExtVarFrmId(id, byIID) != nullptr; }

int ORVVariable::GetExtVarId(int id, bool byIID) {
  const ORVExtVar* handle = GetExtVarFrmId(id, byIID);
  return handle ? KeyOf(*handle, KeyFor(!byIID)) : -1;
}

void ORVVariable::GetExtVarTypesOrCompTypes(std::vector<int>& eids, std::vector<int>& types) {
  h5::EntryVoid([&] {
    if (m_pCompEid && m_pCompType) {  // a host's own tables come first
      eids.insert(eids.end(), m_pCompEid, m_pCompEid + ComponentsOf(*this));
      types.insert(types.end(), m_pCompType, m_pCompType + ComponentsOf(*this));
      return;
    }
    for (const ORVExtVar* handle : m_extVars) {
      if (!handle) continue;
      eids.push_back(handle->GetEID());
      types.push_back(handle->GetType());
    }
  });
}

bool ORVVariable::IsResultTypeAvailable(int eid) { return FindExtVar(m_extVars, ExtVarKey::kEid, eid) != nullptr; }

bool ORVVariable::IsExtCompTypeAvailable(int type) { return FindExtVar(m_extVars, ExtVarKey::kType, type) != nullptr; }

void ORVVariable::GetExtVarFrmExtendedType(int type, std::vector<ORVExtVar*>& out) {
  h5::EntryVoid([&] {
    std::ranges::copy_if(m_extVars, std::back_inserter(out),
                         [&](const ORVExtVar* handle) { return handle && handle->GetType() == type; });
  });
}

ORVExtVar* ORVVariable::GetExtVarFrmKeyOrVariable(const char* identity, int type) {
  return IsVariableKeyAvailable(identity, true) ? FindExtVar(m_extVars, ExtVarKey::kType, type) : nullptr;
}

ORVExtVar* ORVVariable::GetExtVariableFrmCmp(const char* name) { return name ? FindExtVar(m_extVars, name) : nullptr; }

int ORVVariable::GetIIDFromKeyOrVariable(const char* identity, std::vector<int>& out, bool wantIID) {
  if (m_extVars.empty() || !IsVariableKeyAvailable(identity, true)) return kFail;
  return h5::Entry(kFail, [&] {
    for (const ORVExtVar* handle : m_extVars) {
      if (handle) out.push_back(KeyOf(*handle, KeyFor(wantIID)));
    }
    return kOk;
  });
}

void ORVVariable::GetIIDFromIndex(const std::vector<int>& indexes, std::vector<int>& out) {
  h5::EntryVoid([&] {
    for (const int index : indexes) {
      if (const ORVExtVar* handle = FindExtVar(m_extVars, ExtVarKey::kIndex, index)) out.push_back(handle->GetIID());
    }
  });
}

int ORVVariable::GetVariableIndex(const ORVExtVar* extVar, bool& found) {
  const auto place = std::ranges::find(m_extVars, extVar);
  found = extVar && place != m_extVars.end();
  return found && extVar->GeIndex() != -1 ? static_cast<int>(place - m_extVars.begin()) : -1;
}

ORVUnit* ORVVariable::GetUnitPtr(int eid) {
  if (m_units.empty()) {
    const ORVExtVar* handle = FindExtVar(m_extVars, ExtVarKey::kEid, eid);
    return handle ? handle->GetUnit() : nullptr;
  }
  const auto unit = std::ranges::find_if(m_units, [&](const ORVUnit* u) { return u && u->GetUnitId() == eid; });
  return unit == m_units.end() ? nullptr : *unit;
}

int ORVVariable::FillDependentForVarGrp(ORVDependentVar& dependent) {
  return h5::Entry(kFail, [&] {
    const std::vector<int> iids = StoredIids(m_extVars, 0, m_ncoo);
    if (iids.empty()) return kFail;
    dependent.m_iids.insert(dependent.m_iids.end(), iids.begin(), iids.end());
    dependent.m_pVariable = this;
    return kOk;
  });
}

void ORVVariable::GetExtVariables(std::vector<ORVExtVar*>& out) {
  h5::EntryVoid([&] { out.insert(out.end(), m_extVars.begin(), m_extVars.end()); });
}

void ORVVariable::AppendExtVar(ORVExtVar* extVar) {
  if (extVar) h5::EntryVoid([&] { m_extVars.push_back(extVar); });
}
