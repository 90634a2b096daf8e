#pragma once

/// What a writer knows of its file: which variables values can be written of, and where there are some already.

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <utility>

#include "orvio/orv/detail/definitions.hpp"
#include "orvio/orv/detail/text.hpp"
#include "orvio/orv_definitions.h"
#include "orvio/orv_filer.h"

namespace orv::detail {

template <class Set, class Key>
bool holds(const Set& set, const Key& key) {
  return set.find(key) != set.end();  // NOLINT(readability-container-contains): that is not C++17
}

/// Places of results in one section. The library leaves a result alone that is there, and says nothing.
class Places {
 public:
  /// False where values stand already: in the same zone, or in no zone while these are of one, or the reverse.
  bool add(const std::string& entity, const std::string& variable, const std::string& zone) {
    Zones& zones = zones_[{entity, variable}];
    const bool is_free = zones.empty() || (!zone.empty() && !holds(zones, "") && !holds(zones, zone));
    if (is_free) zones.insert(zone);
    return is_free;
  }
  void remove(const std::string& entity, const std::string& variable, const std::string& zone) {
    zones_[{entity, variable}].erase(zone);
  }
  bool empty() const { return zones_.empty(); }

 private:
  using Zones = std::set<std::string>;
  std::map<std::pair<std::string, std::string>, Zones> zones_;
};

/// Names of variables compare without regard to case.
struct KnownNames {
  /// The name under which results of a variable are bound to it, and their components.
  struct Defined {
    std::string stored_name;
    std::size_t components = 0;
  };

  std::map<std::string, Defined, BeforeIgnoringCase> variables;
  std::set<std::string, BeforeIgnoringCase> taken;  ///< not to be defined
  Places constant;                                  ///< results of the constant section
};

/// Columns of the state index that a file has; one where it does not tell yet.
inline std::size_t index_width(ORVFiler& filer) {
  const ORVIndexBase<int, double>* index = filer.GetStateIndexDP(false);
  if (index && index->GetNumState() > 0) return static_cast<std::size_t>(index->GetNumIndex());
  ORVSimulationType types;
  const bool has_types = filer.ReadBlock(&types, 0, ORV_READ_HEADER) == 0 && types.m_nindex > 0;
  return has_types ? static_cast<std::size_t>(types.m_nindex) : 1;
}

/// Results are bound to groups alone where a file has any, else to variables.
inline KnownNames known_names(ORVFiler& filer) {
  KnownNames known;
  const bool has_groups = !filer.GetVariableGroups().empty();
  for (const ORVVariable* variable : filer.GetVariables()) {
    const std::string name = text_of(variable->m_varnam);
    known.taken.insert(name);
    if (!has_groups && variable->m_ncoo > 0) {
      known.variables.insert({name, {name, static_cast<std::size_t>(variable->m_ncoo)}});
    }
  }
  for (const ORVVariableGrp* group : filer.GetVariableGroups()) {
    const std::string name = text_of(group->m_grpName);
    known.taken.insert(name);
    if (group->m_ncoo < 1) continue;
    const KnownNames::Defined defined{name, static_cast<std::size_t>(group->m_ncoo)};
    known.variables.insert_or_assign(name, defined);
    if (group->m_variables.size() == 1) {
      known.variables.insert({text_of(group->m_variables.front()->m_varnam), defined});
    }
  }
  for (const ORVResult* result : filer.GetResultList(1)) {
    if (!result->IsConstantBlk()) continue;
    (void)known.constant.add(text_of(result->m_etyp), text_of(result->m_etypvar), zone_of(*result));  // once each
  }
  return known;
}

}  // namespace orv::detail
