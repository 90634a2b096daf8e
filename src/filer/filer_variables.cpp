// What a filer answers about its variables and the handles of their components: GetVariables, GetVariableGroups and the
// searches by name, GetIndexTypes, GetSystem; GetExtVariables and the searches by id; CopyCreateExtendedVariables; the
// handler that chooses computed measures. AssociateVariables is in variable/association.cpp.

#include <algorithm>
#include <utility>

#include "filer/container.h"
#include "filer/file_facts.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_filer.h"
#include "variable/ext_var_search.h"
#include "variable/handle_copies.h"
#include "variable/key_prefix.h"

using namespace orvio;

namespace {

/// The first of a list that fits; null when none does.
template <class T, class Fits>
T* FirstThat(const std::vector<T*>& list, Fits fits) {
  const auto found = std::ranges::find_if(list, fits);
  return found == list.end() ? nullptr : *found;
}

}  // namespace

// ---- Definitions

std::vector<ORVVariable*>& ORVFiler::GetVariables() { return DataOf(m_pData).variables; }

std::vector<ORVVariableGrp*>& ORVFiler::GetVariableGroups() { return DataOf(m_pData).variable_groups; }

ORVVariable* ORVFiler::GetVariable(const char* name) {
  if (!m_pData || !name) return nullptr;
  return FirstThat(m_pData->variables,
                   [name](const ORVVariable* v) { return EqualIgnoringCase(Content(v->m_varnam), name); });
}

ORVVariableGrp* ORVFiler::GetVariableGroup(const char* name) {
  if (!m_pData || !name) return nullptr;
  return FirstThat(m_pData->variable_groups, [name](const ORVVariableGrp* g) {
    return EqualIgnoringCase(Content(g->m_grpName, sizeof g->m_grpName), name);
  });
}

int ORVFiler::GetVariableBlocks(std::vector<const char*>& names, std::vector<ORVVariable*>& out, bool byKey) {
  if (!m_pData) return kFail;
  return h5::Entry(kFail, [&] {
    const std::size_t before = out.size();
    for (const char* name : names) {
      ORVVariable* found = !name ? nullptr : FirstThat(m_pData->variables, [&](const ORVVariable* v) {
        return EqualIgnoringCase(Content(byKey ? v->m_varkey : v->m_varnam), name);
      });
      if (found) out.push_back(found);
    }
    return out.size() > before ? kOk : kFail;
  });
}

int ORVFiler::GetVariableKeyPrefix(std::string& out, int which) {
  if (!m_pData || (which & 3) == 0) return kFail;
  return h5::Entry(
      kFail, [&] { return FindVariableKeyPrefix(which & 1 ? m_pData->single_results : m_pData->multi_results, out); });
}

ORVSimulationType* ORVFiler::GetIndexTypes() { return m_pData ? m_pData->index_types.get() : nullptr; }

ORVSystem* ORVFiler::GetSystem() { return m_pData ? m_pData->system.get() : nullptr; }

// ---- Handles

std::vector<ORVExtVar*>& ORVFiler::GetExtVariables() { return DataOf(m_pData).ext_vars; }

std::uint64_t ORVFiler::GetNumExtVariables() { return m_pData ? m_pData->ext_vars.size() : 0; }

ORVExtVar* ORVFiler::GetExtVariable(const char* name) {
  return m_pData && name ? FindExtVar(m_pData->ext_vars, name) : nullptr;
}

ORVExtVar* ORVFiler::GetExtVariable(int id, bool byIID) {
  return m_pData ? FindExtVar(m_pData->ext_vars, byIID ? ExtVarKey::kIid : ExtVarKey::kEid, id) : nullptr;
}

ORVVariable* ORVFiler::GetVariableFrmID(int id, bool byIID) {
  if (!m_pData) return nullptr;
  return FirstThat(m_pData->variables, [&](ORVVariable* v) { return v->IsExtVarAvailable(id, byIID); });
}

int ORVFiler::CopyCreateExtendedVariables(std::vector<int>& iids, std::uint64_t start, std::uint64_t count,
                                          std::vector<const char*>& names, std::vector<int>& types, int which,
                                          bool copyUnit) {
  if (!m_pData) return kFail;
  return h5::Entry(kFail, [&] {
    const auto* results = which & 1 ? &m_pData->single_results : which & 2 ? &m_pData->multi_results : nullptr;
    return orvio::CopyCreateExtendedVariables(*m_pData, {iids, start, count, names, types, results, copyUnit});
  });
}

void ORVFiler::SetExtedComputedTypeCallBackHandler(ORVExtendComputedTypeCallBack handler) {
  if (m_pData) m_pData->computed_types = handler;
}

void* ORVFiler::SetFilerCallBackClient(void* client) {
  return m_pData ? std::exchange(m_pData->callback_client, client) : nullptr;
}
