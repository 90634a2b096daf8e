// What a variable answers about itself. Its handles are in variable_handles.cpp.

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <memory>

#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/orv_unit.h"
#include "orvio/orv_variable.h"
#include "variable/variable_identity.h"
#include "variable/variable_tables.h"

using namespace orvio;

namespace {

struct ClassRow {
  const char* word;
  _ORVVarClassType value;
};

constexpr ClassRow kClasses[] = {
    {disk::CLASS_STRESS, ORV_VARCLASS_STRESS},
    {disk::CLASS_STRAIN, ORV_VARCLASS_STRAIN},
    {disk::CLASS_LENGTH, ORV_VARCLASS_LENGTH},
    {disk::CLASS_ANGLE, ORV_VARCLASS_ANGLE},
};

_ORVVarClassType ClassOf(std::string_view word) {
  const auto* row = std::ranges::find_if(kClasses, [&](const ClassRow& r) { return EqualIgnoringCase(r.word, word); });
  return row == std::end(kClasses) ? ORV_VARCLASS_UNKNOWN : row->value;
}

/// QUIRK: the two kinds of variables are judged by different counts and rules: one with a key by `tensor` and the
/// stored count, six components being a tensor at any rank; one without by rank and the original count. Which
/// measures hosts offer for a quantity hangs on the answer. Pinned by
/// VariableInfo.AKeyedVariableOfSixComponentsIsATensorAtAnyRank and
/// VariableInfo.DecidesOnTheOriginalCountWithoutAKeyAndOnTheStoredCountWithOne.
_ORVVarType TypeOfKeyed(const ORVVariable& variable) {
  if (variable.m_tensor == 0) return ORV_VARTYPE_SCALAR;
  if (variable.m_ncoo == 3) return variable.m_rank == 2 ? ORV_VARTYPE_PLANE_TENSOR : ORV_VARTYPE_VECTOR;
  return variable.m_ncoo == 6 ? ORV_VARTYPE_TENSOR : ORV_VARTYPE_SCALAR;
}

_ORVVarType TypeOfUnkeyed(const ORVVariable& variable) {
  const std::uint64_t count = variable.m_originalCount;
  if (variable.m_rank == 1) return count == 3 ? ORV_VARTYPE_VECTOR : ORV_VARTYPE_SCALAR;
  if (variable.m_rank != 2) return ORV_VARTYPE_SCALAR;
  if (count == 3) return ORV_VARTYPE_PLANE_TENSOR;
  return count == 6 ? ORV_VARTYPE_TENSOR : ORV_VARTYPE_SCALAR;
}

}  // namespace

int ORVVariable::GetVariableInfo(_ORVVarType& varType, _ORVVarClassType& varClass, int& count, int& offset) {
  if (m_ncoo <= 0) return kFail;
  varType = HasKey(*this) ? TypeOfKeyed(*this) : TypeOfUnkeyed(*this);
  varClass = ClassOf(Content(m_varclass));
  const std::uint64_t components = m_originalCount != 0 ? m_originalCount : ComponentsOf(*this);
  count = static_cast<int>(std::min<std::uint64_t>(components, INT_MAX));
  offset = 0;
  return kOk;
}

int ORVVariable::GetVariableCompAndOffset(const char* name, int& count, int& offset) {
  count = 0;
  offset = -1;
  if (!IsVariableAvailable(name)) return kFail;
  _ORVVarType type = ORV_VARTYPE_SCALAR;
  _ORVVarClassType variable_class = ORV_VARCLASS_UNKNOWN;
  if (GetVariableInfo(type, variable_class, count, offset) != kOk) return kFail;
  return count != 0 ? kOk : kFail;
}

int ORVVariable::GetVariableKey(std::string& out, bool orName) {
  out.clear();
  if (!HasKey(*this) && !orName) return kFail;
  return h5::Entry(kFail, [&] {
    out = IdentityOf(*this);
    return kOk;
  });
}

int ORVVariable::GetVariableKeyPrefix(std::string& out) {
  const std::string_view key = Content(m_varkey);
  const std::size_t colon = key.find(':');
  if (colon == std::string_view::npos) return kFail;
  return h5::Entry(kFail, [&] {
    out = key.substr(0, colon);
    return kOk;
  });
}

void ORVVariable::GetVariableName(std::string& out) {
  h5::EntryVoid([&] { out = Content(m_varnam); });
}

int ORVVariable::HasUnits() {
  const std::uint64_t looked_at = std::min(ComponentsOf(*this), m_originalCount);
  return SumOfCounts(m_pMbunit, looked_at) > 0 || SumOfCounts(m_pMdunit, looked_at) > 0 ? 1 : 0;
}

bool ORVVariable::IsVariableAvailable(const char* name) { return name && EqualIgnoringCase(name, Content(m_varnam)); }

bool ORVVariable::IsVariableKeyAvailable(const char* key, bool orName) {
  return key && EqualIgnoringCase(key, orName ? IdentityOf(*this) : Content(m_varkey));
}

namespace {

constexpr std::size_t kUnitTextWidth = 512;

void FreeTexts(char** texts, int count) {
  for (int i = 0; texts && i < count; ++i) std::free(texts[i]);
  std::free(texts);
}

/// A copy for the C allocator, cut at 511 bytes; null when memory runs out.
char* CopyOfUnitText(const ORVUnit* unit) { return strndup(unit ? unit->GetUnitCStr() : "", kUnitTextWidth - 1); }

}  // namespace

void ORVVariable::UpdateOrgUnitStr() {
  if (m_units.empty() || m_units.size() > INT_MAX) return;
  FreeTexts(m_ppOrgUnitStr, m_orgUnitCount);
  m_orgUnitCount = 0;
  m_ppOrgUnitStr = static_cast<char**>(std::calloc(m_units.size(), sizeof(char*)));
  if (!m_ppOrgUnitStr) return;
  m_orgUnitCount = static_cast<int>(m_units.size());
  std::ranges::transform(m_units, m_ppOrgUnitStr, CopyOfUnitText);
}
