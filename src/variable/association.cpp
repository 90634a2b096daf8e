// Results name their variable by a text. Here each gets its variable, or its group of variables where a file has
// groups, and each component of a variable in use gets a handle: first those that are stored, then the measures that a
// host can compute from them.

#include "variable/association.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>

#include "filer/container.h"
#include "filer/messages.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_filer.h"
#include "unit/component_units.h"
#include "variable/computed_measures.h"
#include "variable/ext_var_search.h"
#include "variable/variable_buffers.h"
#include "variable/variable_identity.h"
#include "variable/variable_tables.h"

namespace orvio {
namespace {

constexpr std::size_t kLabelBytes = 511;  // of a component; a longer one is cut

/// Components of all copies for one list of results. Only a damaged file has so many variables in several groups, or so
/// large ones; they stay shared then.
constexpr std::uint64_t kMostCopiedComponents = std::uint64_t{1} << 20;

std::string LowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return std::tolower(c); });
  return lower;
}

}  // namespace

Association::Association(ORVFiler& filer, ORVContainer& data, int& next_iid)
    : filer_(filer), data_(data), next_iid_(next_iid) {
  for (ORVVariable* variable : data_.variables) {
    variables_.try_emplace(LowerCase(Content(variable->m_varnam)), variable);
  }
  for (ORVVariableGrp* group : data_.variable_groups) {
    groups_.try_emplace(LowerCase(Content(group->m_grpName, sizeof group->m_grpName)), group);
  }
}

// ---- Binding

void Association::Bind(ORVResult& result) {
  const std::string name = LowerCase(Content(result.m_etypvar));
  const auto variable = variables_.find(name);
  const auto group = groups_.find(name);
  // A file with groups has one for every result: its variables are not searched.
  const bool grouped = !data_.variable_groups.empty();
  result.m_variable = grouped || variable == variables_.end() ? nullptr : variable->second;
  result.m_variableGrp = grouped && group != groups_.end() ? group->second : nullptr;
  if (result.m_variable || result.m_variableGrp) return;
  SendMessage(ORV_MESG_WARNING,
              grouped ? "Missing Variable group definition \"%.256s\" for \"%.256s\" type"
                      : "Missing Variable definition \"%.256s\" for \"%.256s\" type",
              result.m_etypvar, result.m_etyp);
}

namespace {

void WarnOfCounts(const ORVResult& result, const ORVVariableGrp& group) {
  if (result.m_ncoo == group.m_ncoo) return;
  SendMessage(ORV_MESG_WARNING,
              "Mis-match between result and variable group block component count for \"%.256s\" \n\t Result component "
              "count : %lld, Variable Group component count : %lld",
              result.m_etypvar, static_cast<long long>(result.m_ncoo), static_cast<long long>(group.m_ncoo));
}

void MarkApplicable(const std::vector<ORVExtVar*>& handles, int applicable, std::size_t first = 0) {
  for (std::size_t i = first; i < handles.size(); ++i) handles[i]->SetApplicable(applicable);
}

}  // namespace

void Association::Associate(ORVResult& result, int applicable) {
  Bind(result);
  const std::size_t before = data_.ext_vars.size();
  if (ORVVariableGrp* group = result.m_variableGrp) {
    WarnOfCounts(result, *group);
    CreateExtendedVariables(result, *group);
    for (const ORVVariable* variable : group->m_variables) {
      if (variable) MarkApplicable(variable->m_extVars, applicable);
    }
  } else if (ORVVariable* variable = result.m_variable) {
    if (variable->m_extVars.empty()) {
      CreateExtendedVariables(result, *variable, 0);
    } else {
      MarkApplicable(variable->m_extVars, applicable);
    }
  }
  MarkApplicable(data_.ext_vars, applicable, before);
}

// ---- Stored components

namespace {

/// Reports a negative length of the packed labels and takes it for 0 from then on.
void MendLabelLength(ORVVariable& variable, int component) {
  if (variable.m_subslen >= 0) return;
  SendVariableMessage(ORV_MESG_ERROR, "Invalid substring count(%lld) \"%.256s\" variable type at index %d",
                      static_cast<long long>(variable.m_subslen), variable.m_varnam, component);
  variable.m_subslen = 0;
}

/// The stored label of a component; nothing when its place lies outside of the packed labels.
std::optional<std::string_view> StoredLabel(const ORVVariable& variable, int component) {
  const bool has_tables = variable.m_pSubscr && variable.m_pSubscnt && variable.m_pSubsoffs;
  if (!has_tables || component >= variable.m_ncoo) return std::nullopt;
  const std::int64_t offset = variable.m_pSubsoffs[component];
  const std::int64_t length = variable.m_pSubscnt[component];
  if (offset < 0 || length < 0 || offset + length > variable.m_subslen) return std::nullopt;
  return Content(variable.m_pSubscr + offset, std::min(static_cast<std::size_t>(length), kLabelBytes));
}

std::string Label(const ORVVariable& variable, int component) {
  if (const auto stored = StoredLabel(variable, component)) return std::string(*stored);
  SendVariableMessage(ORV_MESG_WARNING,
                      "The count for substring exceed total length for \"%.256s\" variable type at index %d",
                      variable.m_varnam, component);
  return std::to_string(component + 1);
}

/// The name of a component's handle. Without labels the components of the single layout are told apart by the id of the
/// handle, so their names depend on the order of association.
std::string StoredName(ORVVariable& variable, int component, int iid) {
  const bool single = variable.GetBlkVersion() == ORV_BLK_VERSION_SINGLE;
  std::string name;
  if (single) {
    name = Content(variable.m_varnam);
  } else if (variable.m_pCname && component < variable.m_ncoo) {
    name = Content(variable.m_pCname + static_cast<std::size_t>(component) * disk::kTextWidth);
  }
  MendLabelLength(variable, component);
  if (variable.m_subslen > 0) {
    name += "_" + Label(variable, component);
  } else if (single && static_cast<std::uint32_t>(variable.m_originalCount) > 1) {
    name += "_" + std::to_string(iid);
  }
  return name;
}

}  // namespace

/// A handle that is in the lists of the filer and of the variable. Null when the ids are used up.
ORVExtVar* Association::NewHandle(ORVVariable& variable, const std::string& name, int index, int type,
                                  std::unique_ptr<ORVDependentVar> dependent) {
  if (next_iid_ == INT_MAX) return nullptr;
  auto handle = std::make_unique<ORVExtVar>();
  handle->SetIID(next_iid_);
  handle->SetName(name);
  handle->SetType(type);
  handle->m_index = index;
  if (dependent) {
    handle->GetDependent().push_back(dependent.get());
    dependent.release();  // NOLINT(bugprone-unused-return-value): the handle has it now
  }
  ++next_iid_;
  return AddHandle(std::move(handle), data_.ext_vars, variable);
}

void Association::CreateStored(ORVVariable& variable, int offset) {
  const auto components = static_cast<std::uint32_t>(variable.m_originalCount);
  for (std::uint32_t i = 0; i < components; ++i) {
    const std::int64_t index = std::int64_t{offset} + i;
    if (index > INT_MAX) return;
    const std::string name = StoredName(variable, static_cast<int>(i), next_iid_);
    if (!NewHandle(variable, name, static_cast<int>(index), ORV_COMPUTE_NONE)) return;
  }
}

void Association::CreateExtendedVariables(ORVResult& result, ORVVariable& variable, int offset) {
  if (variable.m_extVars.empty()) CreateStored(variable, offset);
  ExtendVariable(result, variable, offset);
}

// ---- Computed measures

void Association::CreateComputed(ORVVariable& variable, const ORVExtVarEntry& entry, const std::vector<int>& inputs) {
  const auto wanted = static_cast<std::size_t>(std::max(entry.m_minComponents, 0));
  if (inputs.size() < wanted) return;
  auto dependent = std::make_unique<ORVDependentVar>();
  dependent->m_pVariable = &variable;
  dependent->m_iids.assign(inputs.begin(), inputs.begin() + static_cast<std::ptrdiff_t>(wanted));
  const std::string name = std::string(Content(variable.m_varnam)) + "_" + (entry.m_name ? entry.m_name : "");
  (void)NewHandle(variable, name, -1, entry.m_computeType, std::move(dependent));  // without ids left there is none
}

void Association::ExtendVariable(ORVResult& result, ORVVariable& variable, int offset) {
  _ORVVarType shape = ORV_VARTYPE_SCALAR;
  _ORVVarClassType var_class = ORV_VARCLASS_UNKNOWN;
  int count = 0;
  int own_offset = 0;
  if (variable.GetVariableInfo(shape, var_class, count, own_offset) != kOk) return;
  if (count == 0 || shape == ORV_VARTYPE_SCALAR) return;
  const ORVExtVarType* row = GetExtendedInfo(filer_, data_, &result, variable, shape, var_class);
  if (!row || !row->m_pEntries) return;
  const std::vector<int> inputs = StoredIids(variable.m_extVars, offset, count);
  for (int i = 0; i < row->m_count; ++i) {
    if (row->m_pEntries[i].m_minComponents <= count) CreateComputed(variable, row->m_pEntries[i], inputs);
  }
}

// ---- Groups

void Association::CreateExtendedVariables(ORVResult& result, ORVVariableGrp& group) {
  if (!group.m_pCnt || !group.m_pOffs || !group.m_pKeys) return;
  if (group.GetNumExtVar() > 0) ValidateCreateNewVariable(result);
  for (std::int64_t k = 0; k < group.m_nvar; ++k) {
    const std::string key(Content(group.m_pKeys + static_cast<std::size_t>(k) * disk::kTextWidth));
    ORVVariable* variable = group.GetVariableFromVarKey(key.c_str());
    const bool is_new = variable && variable->m_extVars.empty();
    if (is_new && group.m_pOffs[k] >= 0) CreateExtendedVariables(result, *variable, group.m_pOffs[k]);
  }
}

namespace {

/// Where a result of a group has the components of a variable; nothing when it does not hold all of them.
std::optional<int> OffsetInResult(const ORVResult& result, const ORVVariable& variable) {
  const std::string identity(IdentityOf(variable));
  int count = 0;
  int offset = -1;
  const int status = result.m_variableGrp->GetVariableInfoFromKeyOrVar(identity.c_str(), count, offset);
  if (status != kOk || count < 0 || result.m_ncoo < std::int64_t{count} + offset) return std::nullopt;
  return offset;
}

/// Whether the handles of a variable were made for another place than `offset`. Behind a key that no variable has, a
/// variable answers with the place of the key before its own; its handles stand at that of its own, and a copy of it
/// would get the same ones, with every result anew.
bool StandsElsewhere(ORVVariableGrp& group, const ORVVariable& variable, int offset) {
  const int first = variable.m_extVars.front()->GeIndex();
  if (first == -1 || first == offset) return false;
  int position = -1;
  return !group.IsVariableKeyAvailable(variable.m_varkey, position) || first != group.m_pOffs[position];
}

}  // namespace

/// A variable has one list of handles, whose indexes are places in a result. Where a second group holds it at another
/// place, that group gets a copy of the variable, for which handles are then made.
void Association::ValidateCreateNewVariable(ORVResult& result) {
  for (ORVVariable*& place : result.m_variableGrp->m_variables) {
    if (!place || place->m_extVars.empty()) continue;
    const auto offset = OffsetInResult(result, *place);
    if (!offset || !StandsElsewhere(*result.m_variableGrp, *place, *offset)) continue;
    if (ComponentsOf(*place) > kMostCopiedComponents - copied_components_) continue;
    copied_components_ += ComponentsOf(*place);
    data_.variables.reserve(data_.variables.size() + 1);  // the copy's tables go with the list
    std::unique_ptr<ORVVariable> clone = CloneVariable(*place);
    if (!clone) continue;
    data_.variables.push_back(clone.get());
    place = clone.release();
  }
}

}  // namespace orvio

using namespace orvio;

int ORVFiler::AssociateVariables(std::vector<ORVResult*>& results, int& nextIID, int applicable) {
  if (!m_pData || results.empty()) return kOk;
  h5::EntryVoid([&] {
    const std::size_t before = m_pData->ext_vars.size();
    Association association(*this, *m_pData, nextIID);
    for (ORVResult* result : results) {
      if (result) association.Associate(*result, applicable);
    }
    // The start-up fills the tables of units behind its results; handles that are made later get their units here.
    const bool has_units = !m_pData->base_units.empty() || !m_pData->derived_units.empty();
    if (has_units && CheckConfig(ORV_CONFIG_ASSIGN_UNITS) != 0) AssignComponentUnits(*m_pData, before);
  });
  return kOk;
}
