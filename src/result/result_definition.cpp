// The way from a result block to the definition of its values.

#include "result/result_definition.h"

#include "h5/status.h"
#include "h5/text_field.h"
#include "variable/ext_var_search.h"

namespace orvio {

bool ResultDefinition::HasIdentity(const char* identity) const {
  if (!identity) return false;
  if (variable_) return variable_->IsVariableKeyAvailable(identity, true);
  if (!group_) return false;
  return group_->IsKeyOrVariableAvailable(identity) ||
         EqualIgnoringCase(Content(group_->m_grpName, sizeof group_->m_grpName), identity);
}

std::optional<ComponentRun> ResultDefinition::FindRun(const char* name) const {
  ComponentRun run = {};
  int status = kFail;
  if (name && variable_) status = variable_->GetVariableCompAndOffset(name, run.count, run.offset);
  if (name && group_) status = group_->GetVariableInfoFromKeyOrVar(name, run.count, run.offset);
  return status == kOk ? std::optional(run) : std::nullopt;
}

ORVExtVar* ResultDefinition::FindHandle(int id, bool by_iid) const {
  if (variable_) return variable_->GetExtVarFrmId(id, by_iid);
  return group_ ? group_->GetExtVarFrmId(id, by_iid) : nullptr;
}

ORVExtVar* ResultDefinition::FindHandle(const char* name) const {
  if (variable_) return variable_->GetExtVariableFrmCmp(name);
  return group_ ? group_->GetExtVariableFrmCmp(name) : nullptr;
}

void ResultDefinition::AppendTypes(std::vector<int>& eids, std::vector<int>& types) const {
  if (variable_) return variable_->GetExtVarTypesOrCompTypes(eids, types);
  if (group_) group_->GetExtVarTypesOrCompTypes(eids, types);
}

bool ResultDefinition::FillDependent(const char* name, ORVDependentVar& dependent) const {
  if (group_) return group_->FillDependentForVarGrp(name, dependent) == kOk;
  const auto run = FindRun(name);
  if (!run) return false;
  const std::vector<int> iids = StoredIids(variable_->m_extVars, 0, run->count);
  dependent.m_iids.insert(dependent.m_iids.end(), iids.begin(), iids.end());
  if (!iids.empty()) dependent.m_pVariable = variable_;
  return !iids.empty();
}

ORVVariable* ResultDefinition::VariableWithTables() const {
  return variable_ && variable_->m_pCompEid && variable_->m_pCompType ? variable_ : nullptr;
}

}  // namespace orvio

using namespace orvio;

bool ORVResult::IsKeyOrVariableAvailable(const char* identity) { return ResultDefinition(*this).HasIdentity(identity); }

ORVExtVar* ORVResult::GetExtVariableFrmCmp(const char* name) { return ResultDefinition(*this).FindHandle(name); }
