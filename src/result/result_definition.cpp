// The way from a result block to the definition of its values.

#include "result/result_definition.h"

#include <map>

#include "h5/status.h"

namespace orvio {

std::optional<ComponentRun> ResultDefinition::FindRun(const char* name) const {
  ComponentRun run = {};
  if (!name || !variable_ || variable_->GetVariableCompAndOffset(name, run.count, run.offset) != kOk) return {};
  return run;
}

ORVExtVar* ResultDefinition::FindHandle(int id, bool by_iid) const {
  return variable_ ? variable_->GetExtVarFrmId(id, by_iid) : nullptr;
}

void ResultDefinition::AppendTypes(std::vector<int>& eids, std::vector<int>& types) const {
  if (variable_) variable_->GetExtVarTypesOrCompTypes(eids, types);
}

bool ResultDefinition::FillDependent(const char* name, ORVDependentVar& dependent) const {
  const auto run = FindRun(name);
  if (!run) return false;
  std::map<int, int> first_iids;  // by component, in order
  for (const ORVExtVar* handle : variable_->GetExtVariables()) {
    const int component = handle ? handle->GeIndex() : -1;
    if (component >= 0 && component < run->count) first_iids.try_emplace(component, handle->GetIID());
  }
  for (const auto& [component, iid] : first_iids) dependent.m_iids.push_back(iid);
  if (!first_iids.empty()) dependent.m_pVariable = variable_;
  return !first_iids.empty();
}

ORVVariable* ResultDefinition::VariableWithTables() const {
  return variable_ && variable_->m_pCompEid && variable_->m_pCompType ? variable_ : nullptr;
}

}  // namespace orvio
