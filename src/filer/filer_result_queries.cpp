// Questions about the results of a filer that have fixed names: coordinates and displacements of nodes; and those with
// yes or no for an answer: constants, complex data, load cases, double precision, filters.

#include <algorithm>
#include <iterator>

#include "filer/container.h"
#include "filer/file_facts.h"
#include "h5/entry.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_variable_grp.h"
#include "result/result_lookup.h"
#include "result/result_precision.h"

using namespace orvio;

namespace {

/// The kinds of nodes.
constexpr _ORVEntityType kNodeTypes[] = {static_cast<_ORVEntityType>(50), static_cast<_ORVEntityType>(1009),
                                         static_cast<_ORVEntityType>(1010)};

constexpr const char* kNodeCoordinate[] = {"COORDINATE"};
constexpr const char* kCoordinates[] = {"COORDINATE", "Structural Coordinates"};
constexpr const char* kStatics[] = {"COORDINATE", "BASIS3X3"};
constexpr const char* kDisplacements[] = {
    "Translational_Displacement",          "DISPLACEMENTS_NOD",       "Complex_Translational_Displacement",
    "Complex Translational Displacements", "DISPLACEMENTS_NOD_CMPLX",
};
constexpr char kAcceleration[] = "Complex_Translational_Acceleration";
constexpr char kDisplacementVector[] = "ZPS:TranslationalDisplacementVector";

/// The names of displacements, and one more where it is asked for.
std::vector<const char*> DisplacementsAnd(const char* name, bool asked_for) {
  std::vector<const char*> names(std::begin(kDisplacements), std::end(kDisplacements));
  if (asked_for) names.push_back(name);
  return names;
}

/// What a lookup finds in a list.
ResultList Found(const ResultList& list, const ResultQuery& query) {
  ResultList found;
  FindResults(list, query, found);
  return found;
}

bool IsStatic(ORVResult& block) {
  return std::ranges::any_of(kStatics, [&](const char* name) {
    if (block.IsKeyOrVariableAvailable(name)) return true;
    return block.m_variableGrp && block.m_variableGrp->GetVariableFromVarName(name);
  });
}

bool AnyComplex(const ResultList& list) {
  return std::ranges::any_of(list, [](const ORVResult* block) { return block && block->IsComplexBlk(); });
}

}  // namespace

// ---- Coordinates and displacements

void ORVFiler::GetNodeCoordinateBlocks(std::vector<ORVResult*>& out) {
  if (!m_pData) return;
  h5::EntryVoid([&] { FindResults(m_pData->single_results, {.entities = kNodeTypes, .names = kNodeCoordinate}, out); });
}

void ORVFiler::GetNodeDisplacementBlocks(std::vector<ORVResult*>& out, bool withAcceleration) {
  if (!m_pData) return;
  h5::EntryVoid([&] {
    const auto names = DisplacementsAnd(kAcceleration, withAcceleration);
    FindResults(m_pData->single_results, {.entities = kNodeTypes, .names = names}, out);
  });
}

bool ORVFiler::HasConstantCoordinate(std::vector<_ORVEntityType>& entities, std::vector<int>& baseTypes,
                                     bool stateList) {
  if (!m_pData) return false;
  return h5::Entry(false, [&] {
    const ResultQuery query{.entities = entities, .base_types = baseTypes, .names = kCoordinates};
    return std::ranges::any_of(Found(GetResultList(stateList), query),
                               [](const ORVResult* block) { return block->IsConstantBlk(); });
  });
}

bool ORVFiler::HasStateCoordinate(std::vector<_ORVEntityType>& entities, std::vector<int>& baseTypes, bool stateList) {
  if (!m_pData) return false;
  return h5::Entry(false, [&] {
    const ResultQuery query{.entities = entities, .base_types = baseTypes, .names = kCoordinates};
    return std::ranges::any_of(Found(GetResultList(stateList), query),
                               [](const ORVResult* block) { return !block->IsConstantBlk(); });
  });
}

bool ORVFiler::IsDisplacementAvailable(std::vector<_ORVEntityType>& entities, std::vector<int>& baseTypes,
                                       bool withVector, int flags) {
  if (!m_pData || !(flags & (kSinglestateData | kMultistateData))) return false;
  return h5::Entry(false, [&] {
    const auto names = DisplacementsAnd(kDisplacementVector, withVector);
    const ResultQuery query{.entities = entities, .base_types = baseTypes, .names = names};
    return !Found(GetResultList(flags & kSinglestateData), query).empty();
  });
}

bool ORVFiler::IsOnlyStaticCoordinate() {
  if (!m_pData || m_pData->single_results.empty()) return false;
  return h5::Entry(false, [&] {
    return std::ranges::all_of(m_pData->single_results,
                               [](ORVResult* block) { return block && block->IsConstantBlk() && IsStatic(*block); });
  });
}

// ---- Yes or no

bool ORVFiler::IsAllResultBlockConstant() {
  if (!m_pData || m_pData->single_results.empty()) return false;
  return std::ranges::all_of(m_pData->single_results,
                             [](const ORVResult* block) { return block && block->IsConstantBlk(); });
}

bool ORVFiler::IsLoadCaseSeriesMultiustateData() {
  if (!m_pData || m_pData->multi_results.empty()) return false;
  ORVResult* first = m_pData->multi_results.front();
  int load_case = 0;
  return first && first->IsLoadCaseSeriesName(load_case);
}

bool ORVFiler::IsComplexData(int flags) {
  if (!m_pData) return false;
  return (flags & kSinglestateData && AnyComplex(m_pData->single_results)) ||
         (flags & kMultistateData && AnyComplex(m_pData->multi_results));
}

// ---- How values are stored

bool ORVFiler::IsAnyDoublePrecisionResult(int flags, int state) {
  if (!m_pData || !(flags & (kSinglestateData | kMultistateData))) return false;
  return IsResultValueInDoublePrecision(GetResultList(flags & kSinglestateData), state);
}

bool ORVFiler::IsResultValueInDoublePrecision(std::vector<ORVResult*>& results, int state) {
  if (!m_pData) return false;
  return h5::Entry(false, [&] { return HasDoublePrecision(m_pData->path.c_str(), results, state); });
}

bool ORVFiler::HasDoublePrecisionNodeCoordinates() {
  std::vector<ORVResult*> blocks;
  GetNodeCoordinateBlocks(blocks);
  GetNodeDisplacementBlocks(blocks, false);
  return IsResultValueInDoublePrecision(blocks, 1);
}

/// QUIRK: an answer holds until all is read anew, whatever becomes of the file: it takes the opening of every block, and
/// hosts ask before each fetch. Pinned by FilerPrecision.HasAnAnswerAboutAFilterThatIsRememberedAlthoughTheFileChanged.
bool ORVFiler::IsAnyResultDatasetHasH5Filter(int filterId) {
  if (!m_pData) return false;
  return h5::Entry(false, [&] {
    int& memo = m_pData->filter_memo.try_emplace(filterId, -1).first->second;
    if (memo == -1) {
      const char* file = m_pData->path.c_str();
      const bool found = IsDatasetHasFilterId(file, m_pData->single_results, 1, filterId) ||
                         IsDatasetHasFilterId(file, m_pData->multi_results, 0, filterId);
      memo = found ? 1 : 0;
    }
    return memo == 1;
  });
}
