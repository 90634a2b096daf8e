// The filter of all lookups, and those that are more than a filter. Queries of fixed names are in
// filer/filer_result_queries.cpp.

#include "result/result_lookup.h"

#include <algorithm>

#include "h5/text_field.h"
#include "orvio/orv_variable_grp.h"
#include "result/result_definition.h"

namespace orvio {
namespace {

bool HasVariableOfName(const ORVResult& block, const char* name) {
  if (block.m_variable) return block.m_variable->IsVariableAvailable(name);
  return block.m_variableGrp && block.m_variableGrp->IsVariableAvailable(name);
}

bool HasName(ORVResult& block, const char* name, NameTest test) {
  if (!name) return false;
  switch (test) {
    case NameTest::kVariableName:
      return HasVariableOfName(block, name);
    case NameTest::kHandleName:
      return block.GetExtVariableFrmCmp(name) != nullptr;
    case NameTest::kIdentityOrOwnName:
      if (*name && EqualIgnoringCase(name, Content(block.m_etypvar))) return true;
      [[fallthrough]];
    default:
      return block.IsKeyOrVariableAvailable(name);
  }
}

template <class T>
bool PassesOne(std::span<const T> list, T value) {
  return list.empty() || std::ranges::find(list, value) != list.end();
}

bool IsOfType(const ORVResult& block, const ResultQuery& query) {
  const auto has_type_name = [&](const char* name) { return name && EqualIgnoringCase(name, Content(block.m_etyp)); };
  if (!query.type_names.empty() && std::ranges::none_of(query.type_names, has_type_name)) return false;
  if (!query.entities.empty()) return PassesOne(query.entities, block.m_entityType);
  return PassesOne(query.base_types, block.m_baseEntityType);
}

bool IsOfKind(const ORVResult& block, int kind) { return kind == kAnyKind || block.GetKey() == kind; }

bool HasType(const ResultQuery& query) {
  return !query.entities.empty() || !query.base_types.empty() || !query.type_names.empty();
}

bool Passes(ORVResult& block, const ResultQuery& query) {
  if (!IsOfKind(block, query.kind) || !IsOfType(block, query)) return false;
  if (query.needs_components && block.m_ncoo == 0 && &block != query.sample) return false;
  return query.names.empty() ||
         std::ranges::any_of(query.names, [&](const char* name) { return HasName(block, name, query.test); });
}

}  // namespace

/// QUIRK: a query without names and types finds nothing, though each empty list alone passes all. Hosts build their lists
/// from what a user has chosen, and nothing chosen means nothing. Pinned by
/// ResultLookup.FindsNothingWhenNothingIsAskedFor.
void FindResults(const ResultList& list, const ResultQuery& query, ResultList& out) {
  if (query.names.empty() && !HasType(query)) return;
  AppendThose(
      list, [&](ORVResult& block) { return Passes(block, query); }, out);
}

void FindResultsOfKind(const ResultList& list, int kind, ResultList& out) {
  AppendThose(
      list, [&](const ORVResult& block) { return IsOfKind(block, kind); }, out);
}

bool HasHandle(const ORVResult& block, int id, bool by_iid) {
  return ResultDefinition(block).FindHandle(id, by_iid) != nullptr;
}

/// QUIRK: without types neither the kind nor the components are looked at. Hosts ask so for all that a handle is part of,
/// with whatever kind they have at hand. Pinned by ResultLookup.ByHandleWithoutTypesLooksAtNothingElse.
void FindResultsByHandle(const ResultList& list, const ResultQuery& query, std::span<const int> iids, ResultList& out) {
  const bool any_type = !HasType(query);
  const auto has_one = [&](const ORVResult& block) {
    return std::ranges::any_of(iids, [&](int iid) { return HasHandle(block, iid, true); });
  };
  AppendThose(
      list, [&](ORVResult& block) { return (any_type || Passes(block, query)) && has_one(block); }, out);
}

void FindSameQuantity(const ResultList& list, const ORVResult& sample, bool by_entity_type, ResultList& out) {
  const std::string name(Content(sample.m_etypvar));
  const char* const names[] = {name.c_str()};
  const _ORVEntityType entities[] = {sample.m_entityType};
  const int base_types[] = {sample.m_baseEntityType};
  ResultQuery query{.names = names, .test = NameTest::kIdentityOrOwnName, .sample = &sample};
  if (by_entity_type) {
    query.entities = entities;
  } else {
    query.base_types = base_types;
  }
  FindResults(list, query, out);
}

}  // namespace orvio
