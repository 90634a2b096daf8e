// What a group answers about its variables. Variables stand in the order of the keys that were found, counts and offsets
// in that of all keys.
//
// QUIRK: both are indexed with the same number, so behind a key that no variable has, a variable answers with the count
// and offset of the key before its own. Results of such files are read at these places by every host. Pinned by
// VariableGroupQuery.BehindAMissingKeyAnswersWithTheCountsOfTheKeyBefore.

#include <algorithm>
#include <string>

#include "h5/entry.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_variable_grp.h"
#include "variable/variable_identity.h"

using namespace orvio;

namespace {

/// Position of the first variable that fits; -1 when none does.
template <class Fits>
std::int64_t PositionOf(const std::vector<ORVVariable*>& variables, Fits fits) {
  const auto found = std::ranges::find_if(variables, [&](const ORVVariable* v) { return v && fits(*v); });
  return found == variables.end() ? -1 : found - variables.begin();
}

template <class Fits>
ORVVariable* FirstThat(const std::vector<ORVVariable*>& variables, Fits fits) {
  const std::int64_t position = PositionOf(variables, fits);
  return position < 0 ? nullptr : variables[static_cast<std::size_t>(position)];
}

bool Named(const ORVVariable& variable, const char* name) {
  return EqualIgnoringCase(Content(variable.m_varnam), name);
}

/// Count and offset stored at a position. 1 where nothing is stored.
int PlaceAt(const ORVVariableGrp& group, std::int64_t position, int& count, int& offset) {
  if (position < 0 || position >= group.m_nvar || !group.m_pCnt || !group.m_pOffs) return kFail;
  count = group.m_pCnt[position];
  offset = group.m_pOffs[position];
  return kOk;
}

std::string_view KeyAt(const ORVVariableGrp& group, std::int64_t position) {
  return Content(group.m_pKeys + static_cast<std::size_t>(position) * disk::kTextWidth);
}

}  // namespace

void ORVVariableGrp::AppendVariable(ORVVariable* variable) {
  if (variable) h5::EntryVoid([&] { m_variables.push_back(variable); });
}

/// QUIRK: of two variables of one name this finds the last, where every other search finds the first. Hosts that append
/// a variable of their own put it in place of a stored one that way. Pinned by
/// VariableGroupQuery.OfTwoVariablesOfOneNameTakesTheLastByNameAndTheFirstByIdentity.
ORVVariable* ORVVariableGrp::GetVariableFromVarName(const char* name) {
  ORVVariable* last = nullptr;
  for (ORVVariable* variable : m_variables) {
    if (name && variable && Named(*variable, name)) last = variable;
  }
  return last;
}

ORVVariable* ORVVariableGrp::GetVariableFromVarKey(const char* key) {
  if (!key) return nullptr;
  return FirstThat(m_variables, [key](const ORVVariable& v) { return EqualIgnoringCase(Content(v.m_varkey), key); });
}

ORVVariable* ORVVariableGrp::GetVariableObjFrmKeyOrVar(const char* identity) {
  if (!identity) return nullptr;
  return FirstThat(m_variables, [=](const ORVVariable& v) { return EqualIgnoringCase(IdentityOf(v), identity); });
}

bool ORVVariableGrp::IsKeyOrVariableAvailable(const char* identity) {
  return GetVariableObjFrmKeyOrVar(identity) != nullptr;
}

bool ORVVariableGrp::IsVariableAvailable(const char* name) {
  if (!name || !m_pCnt || !m_pOffs) return false;
  return PositionOf(m_variables, [name](const ORVVariable& v) { return Named(v, name); }) >= 0;
}

bool ORVVariableGrp::IsVariableKeyAvailable(const char* key, int& index) {
  index = -1;
  for (std::int64_t i = 0; key && m_pKeys && i < m_nvar; ++i) {
    if (!EqualIgnoringCase(KeyAt(*this, i), key)) continue;
    index = static_cast<int>(i);
    return true;
  }
  return false;
}

std::uint64_t ORVVariableGrp::GetKeys(char** keys) {
  if (keys) *keys = m_pKeys;
  return m_nvar < 0 ? 0 : static_cast<std::uint64_t>(m_nvar);
}

void ORVVariableGrp::GetVariableNames(std::vector<std::string>& names) {
  h5::EntryVoid([&] {
    names.clear();
    for (const ORVVariable* variable : m_variables) {
      if (variable) names.emplace_back(Content(variable->m_varnam));
    }
  });
}

int ORVVariableGrp::GetVariableKeyPrefix(std::string& out) {
  const auto has_prefix = [&](ORVVariable* v) { return v && v->GetVariableKeyPrefix(out) == kOk; };
  return std::ranges::any_of(m_variables, has_prefix) ? kOk : kFail;
}

std::uint64_t ORVVariableGrp::GetNumOrgCmpCnt() {
  std::uint64_t sum = 0;
  for (const ORVVariable* variable : m_variables) sum += variable ? variable->m_originalCount : 0;
  return sum;
}

void ORVVariableGrp::UpdateOrgUnitStr() {
  for (ORVVariable* variable : m_variables) {
    if (variable) variable->UpdateOrgUnitStr();
  }
}

// ---- Shape, class, count and offset

int ORVVariableGrp::GetVariableInfo(_ORVVarType& varType, _ORVVarClassType& varClass, int& count, int& offset,
                                    int index) {
  if (m_ncoo == 0 || m_nvar == 0) return kFail;
  varClass = ORV_VARCLASS_UNKNOWN;
  count = 0;
  offset = -1;
  const std::int64_t position = std::max(index, 0);
  if (!m_pKeys || PlaceAt(*this, position, count, offset) != kOk) return kFail;
  varType = ORV_VARTYPE_SCALAR;
  const auto place = static_cast<std::size_t>(position);
  if (place < m_variables.size() && m_variables[place]) {
    int own_count = 0, own_offset = 0;                                                    // those of the group hold
    (void)m_variables[place]->GetVariableInfo(varType, varClass, own_count, own_offset);  // without components: scalar
  }
  return kOk;
}

/// QUIRK: shape and class are not written at all, unlike by position: a host that knows them hands them in and reads them
/// back. Pinned by VariableGroupQuery.ByNameLeavesShapeAndClassAlone.
int ORVVariableGrp::GetVariableInfo(const char* name, _ORVVarType& /*varType*/, _ORVVarClassType& /*varClass*/,
                                    int& count, int& offset) {
  count = 0;
  if (!name) return kFail;
  return PlaceAt(*this, PositionOf(m_variables, [=](const ORVVariable& v) { return Named(v, name); }), count, offset);
}

int ORVVariableGrp::GetVariableInfoFromKeyOrVar(const char* identity, int& count, int& offset) {
  count = 0;
  if (!identity) return kFail;
  const auto fits = [=](const ORVVariable& v) { return EqualIgnoringCase(IdentityOf(v), identity); };
  return PlaceAt(*this, PositionOf(m_variables, fits), count, offset);
}
