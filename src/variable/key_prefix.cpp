// The prefix of variable keys.

#include "variable/key_prefix.h"

#include <algorithm>

#include "h5/status.h"
#include "orvio/orv_result.h"
#include "orvio/orv_variable_grp.h"

namespace orvio {
namespace {

constexpr const char* kPassedOver[] = {"DISPLACEMENTS_NOD", "Translational_Displacement", "COORDINATE"};

bool IsPassedOver(ORVResult& result) {
  return std::ranges::any_of(kPassedOver, [&](const char* name) { return result.IsKeyOrVariableAvailable(name); });
}

int KeyPrefixOf(const ORVResult& result, std::string& out) {
  if (result.m_variable) return result.m_variable->GetVariableKeyPrefix(out);
  return result.m_variableGrp ? result.m_variableGrp->GetVariableKeyPrefix(out) : kFail;
}

}  // namespace

int FindVariableKeyPrefix(const std::vector<ORVResult*>& results, std::string& out) {
  for (ORVResult* result : results) {
    if (KeyPrefixOf(*result, out) == kOk) return kOk;
    if (!IsPassedOver(*result)) return kFail;
  }
  return kFail;
}

}  // namespace orvio
