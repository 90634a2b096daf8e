// Handles of components, their dependents, and the search for them.

#include "orvio/orv_ext_var.h"

#include <algorithm>
#include <iterator>
#include <map>
#include <memory>

#include "h5/entry.h"
#include "h5/text_field.h"
#include "orvio/orv_variable.h"
#include "variable/ext_var_search.h"

namespace orvio {
namespace {

template <class Matches>
ORVExtVar* FirstThat(const std::vector<ORVExtVar*>& handles, Matches matches) {
  const auto found = std::ranges::find_if(handles, [&](const ORVExtVar* handle) { return handle && matches(*handle); });
  return found == handles.end() ? nullptr : *found;
}

}  // namespace

int KeyOf(const ORVExtVar& handle, ExtVarKey key) {
  switch (key) {
    case ExtVarKey::kIid:
      return handle.GetIID();
    case ExtVarKey::kEid:
      return handle.GetEID();
    case ExtVarKey::kIndex:
      return handle.GeIndex();
    default:
      return handle.GetType();
  }
}

ORVExtVar* FindExtVar(const std::vector<ORVExtVar*>& handles, ExtVarKey key, int value) {
  return FirstThat(handles, [&](const ORVExtVar& handle) { return KeyOf(handle, key) == value; });
}

ORVExtVar* FindExtVar(const std::vector<ORVExtVar*>& handles, std::string_view name) {
  return FirstThat(handles, [&](const ORVExtVar& handle) { return EqualIgnoringCase(handle.GetName(), name); });
}

ORVExtVar* AddHandle(std::unique_ptr<ORVExtVar> handle, std::vector<ORVExtVar*>& owner, ORVVariable& variable) {
  std::vector<ORVExtVar*>& handles = variable.m_extVars;
  if (handles.size() == handles.capacity()) handles.reserve(2 * handles.size() + 1);
  owner.push_back(handle.get());
  handles.push_back(handle.get());  // cannot fail: there is room
  return handle.release();
}

/// The handles are walked and not the positions: only a damaged file has millions of those.
std::vector<ORVExtVar*> StoredHandles(const std::vector<ORVExtVar*>& handles, int first, std::int64_t count) {
  std::map<int, ORVExtVar*> handle_at;
  for (ORVExtVar* handle : handles) {
    const bool placed = handle && handle->GeIndex() != -1 && handle->GeIndex() >= first &&
                        handle->GeIndex() < std::int64_t{first} + count;
    if (placed) handle_at.emplace(handle->GeIndex(), handle);
  }
  std::vector<ORVExtVar*> stored;
  std::ranges::transform(handle_at, std::back_inserter(stored), [](const auto& entry) { return entry.second; });
  return stored;
}

std::vector<int> StoredIids(const std::vector<ORVExtVar*>& handles, int first, std::int64_t count) {
  const std::vector<ORVExtVar*> stored = StoredHandles(handles, first, count);
  std::vector<int> iids;
  std::ranges::transform(stored, std::back_inserter(iids), &ORVExtVar::GetIID);
  return iids;
}

}  // namespace orvio

using namespace orvio;

// ---- ORVDependentVar

void ORVDependentVar::GetEID(std::vector<int>& eids) const {
  if (!m_pVariable) return;
  h5::EntryVoid([&] {
    for (const int iid : m_iids) {
      const ORVExtVar* input = FindExtVar(m_pVariable->m_extVars, ExtVarKey::kIid, iid);
      if (input && input->GetEID() != 0) eids.push_back(input->GetEID());
    }
  });
}

bool ORVDependentVar::HasDependentVarKeyOrName(const char* identity) const {
  return m_pVariable && m_pVariable->IsVariableKeyAvailable(identity, true);
}

// ---- ORVExtVar

ORVExtVar::ORVExtVar() : m_IID(0), m_EID(0), m_index(-1), m_type(0), m_applicable(0), m_pUnit(nullptr) {}

ORVExtVar::~ORVExtVar() {
  for (const ORVDependentVar* dependent : m_dependents) delete dependent;
}

int ORVExtVar::GetID(int& eid) const {
  eid = m_EID;
  return m_IID;
}

void ORVExtVar::SetName(const char* name) {
  if (name) h5::EntryVoid([&] { m_name = name; });
}

void ORVExtVar::SetName(const std::string& name) {
  h5::EntryVoid([&] { m_name = name; });
}

void ORVExtVar::Append(ORVDependentVar* dependent) {
  if (dependent) h5::EntryVoid([&] { m_dependents.push_back(dependent); });
}

void ORVExtVar::CopyObject(ORVExtVar& dest) const {
  if (&dest == this) return;
  // The copies are complete before anything changes: memory may run out between them.
  h5::EntryVoid([&] {
    std::vector<std::unique_ptr<ORVDependentVar>> copies;
    for (const ORVDependentVar* dependent : m_dependents)
      copies.push_back(std::make_unique<ORVDependentVar>(*dependent));
    std::vector<ORVDependentVar*> dependents(copies.size());
    std::string name = m_name;

    std::ranges::transform(copies, dependents.begin(), [](auto& copy) { return copy.release(); });
    dest.m_dependents.swap(dependents);
    for (const ORVDependentVar* former : dependents) delete former;
    dest.m_name.swap(name);
    dest.m_IID = m_IID;
    dest.m_EID = m_EID;
    dest.m_index = m_index;
    dest.m_type = m_type;
    dest.m_applicable = m_applicable;
  });
}

void ORVExtVar::GetDependentEID(std::vector<int>& eids) const {
  for (const ORVDependentVar* dependent : m_dependents) dependent->GetEID(eids);
}

bool ORVExtVar::HasDependentVarKeyOrName(const char* identity) const {
  return std::ranges::any_of(
      m_dependents, [&](const ORVDependentVar* dependent) { return dependent->HasDependentVarKeyOrName(identity); });
}
