// The steps of a filer's start-up.

#include "filer/start_up.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <map>
#include <string>

#include "entity/generic_types.h"
#include "filer/messages.h"
#include "filer/tag_indexes.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_properties.h"
#include "orvio/orv_variable_grp.h"
#include "result/result_discovery.h"

namespace orvio {
namespace {

constexpr int kConstant = 0, kMultiState = -1, kFirstState = 1;  // state arguments

struct IgnoringCase {
  using is_transparent = void;
  bool operator()(std::string_view a, std::string_view b) const {
    return std::ranges::lexicographical_compare(
        a, b, {}, [](unsigned char c) { return std::tolower(c); }, [](unsigned char c) { return std::tolower(c); });
  }
};

/// Variables by key, the first of each.
std::map<std::string_view, ORVVariable*, IgnoringCase> ByKey(const std::vector<ORVVariable*>& variables) {
  std::map<std::string_view, ORVVariable*, IgnoringCase> by_key;
  for (ORVVariable* variable : variables) {
    by_key.try_emplace(Content(variable->m_varkey), variable);
  }
  return by_key;
}

}  // namespace

void ResolveGroupKeys(ORVContainer& data) {
  const auto by_key = ByKey(data.variables);
  for (ORVVariableGrp* group : data.variable_groups) {
    for (std::int64_t k = 0; k < group->m_nvar; ++k) {
      const std::string_view key = Content(group->m_pKeys + static_cast<std::size_t>(k) * disk::kTextWidth);
      const auto found = by_key.find(key);
      if (found != by_key.end()) {
        group->AppendVariable(found->second);
      } else {
        SendMessage(ORV_MESG_WARNING, "Unable to locate variable key \"%s\" in the \"%.255s\" variable group",
                    std::string(key).c_str(), group->m_grpName);
      }
    }
  }
}

int DiscoverAllResults(ORVContainer& data, const StartUpScope& scope) {
  int status = kOk;
  const auto discover = [&](int state, int kind, std::vector<ORVResult*>& list) {
    if (DiscoverResults(data.path.c_str(), state, kind, list) != kOk) status = kFail;
  };
  if (scope.multi_state) discover(kMultiState, ORV_RESULT_MULTI_ENTITY, data.multi_results);
  if (scope.constant) {
    discover(kConstant, ORV_RESULT_ENTITY, data.single_results);
    discover(kConstant, ORV_RESULT_ELEMENT, data.single_results);
    for (ORVResult* result : data.single_results) result->SetConstantBlk(true);
  }
  if (scope.states) {  // those of the first state stand for all states
    discover(kFirstState, ORV_RESULT_ENTITY, data.single_results);
    discover(kFirstState, ORV_RESULT_ELEMENT, data.single_results);
  }
  return status;
}

bool HasSecuredNode(const std::vector<ORVProperties*>& properties) {
  return std::ranges::any_of(properties, [](auto* p) { return EqualIgnoringCase(Content(p->m_etyp), kSecuredNode); });
}

int NextHandleId(const std::vector<ORVExtVar*>& handles) {
  int largest = 0;
  for (const ORVExtVar* handle : handles) largest = std::max(largest, handle->GetIID());
  return largest < INT_MAX ? largest + 1 : INT_MAX;
}

void PrepareReload(ORVContainer& data) {
  ClearGenericTypes(data);
  for (ORVResult* result : data.multi_results) {  // these lie in their own section whatever the state
    (void)result->ReadAttribute(data.path.c_str(), kConstant, ORV_READ_HEADER,
                                ORV_ATT_NSTATE);  // unreadable: as it was
  }
  data.stale_indexes = {true, true, true};
  ClearIncrIndexes(data);
}

}  // namespace orvio
