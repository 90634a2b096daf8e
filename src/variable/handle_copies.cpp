// New names and types for components that have a handle already.

#include "variable/handle_copies.h"

#include <algorithm>
#include <climits>
#include <memory>
#include <utility>

#include "filer/container.h"
#include "h5/status.h"
#include "orvio/orv_result.h"
#include "orvio/orv_variable.h"
#include "variable/ext_var_search.h"

namespace orvio {
namespace {

/// The id after the largest; 1 in an empty list and never below 2 in another.
std::int64_t NextIid(const std::vector<ORVExtVar*>& handles) {
  std::int64_t largest = handles.empty() ? 0 : 1;
  for (const ORVExtVar* handle : handles) largest = std::max<std::int64_t>(largest, handle->GetIID());
  return largest + 1;
}

ORVVariable* FindHolder(const std::vector<ORVVariable*>& variables, int iid) {
  const auto holder = std::ranges::find_if(variables, [iid](auto* v) { return v->IsExtVarAvailable(iid, true); });
  return holder == variables.end() ? nullptr : *holder;
}

/// Whether a name is in use: a handle bears it, and a result that is looked at goes by it.
bool IsTaken(const ORVContainer& data, const HandleCopies& request, const char* name) {
  if (!name || !FindExtVar(data.ext_vars, name) || !request.results) return false;
  return std::ranges::any_of(*request.results, [name](ORVResult* result) {
    return result && result->m_ncoo != 0 && result->IsKeyOrVariableAvailable(name);
  });
}

std::unique_ptr<ORVExtVar> CopyOf(const ORVExtVar& source, int iid, const char* name, int type, bool with_unit) {
  auto copy = std::make_unique<ORVExtVar>();
  source.CopyObject(*copy);
  copy->SetIID(iid);
  copy->SetEID(0);
  copy->SetType(type);
  copy->SetName(name);
  if (with_unit) copy->SetUnit(source.GetUnit());
  return copy;
}

}  // namespace

/// QUIRK: pass k looks for a clash of `names[start + k]` and makes `names[k]` with `types[k]`. Hosts pass whole lists
/// of ids with names for a part of them, and count on which names are passed over. Pinned by
/// HandleCopies.LookForAClashFurtherDownTheNamesThanTheyTakeThem.
int CopyCreateExtendedVariables(ORVContainer& data, const HandleCopies& request) {
  const auto& [iids, start, count, names, types, results, copy_unit] = request;
  if (iids.empty() || names.empty() || types.empty()) return kFail;
  if (start > iids.size() || count > iids.size() - start) return kFail;
  const std::size_t passes = std::min({static_cast<std::size_t>(count), names.size(), types.size()});
  std::int64_t next_iid = NextIid(data.ext_vars);
  int status = kFail;
  for (std::size_t k = 0; k < passes && next_iid <= INT_MAX; ++k) {
    const int iid = iids[start + k];
    ORVVariable* holder = names[k] ? FindHolder(data.variables, iid) : nullptr;
    if (!holder) continue;
    if (start + k < names.size() && IsTaken(data, request, names[start + k])) continue;
    const ORVExtVar* source = holder->GetExtVarFrmId(iid, true);
    auto copy = CopyOf(*source, static_cast<int>(next_iid++), names[k], types[k], copy_unit);
    (void)AddHandle(std::move(copy), data.ext_vars, *holder);  // it is in the lists now
    status = kOk;
  }
  return status;
}

}  // namespace orvio
