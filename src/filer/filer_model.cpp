// Questions about the model: GetEntityCount, GetMaxEntityCountOverStates, GetEntityIds, GetResultFrameIds and
// GetNodeCoordinateIds for the entities of results, GetEntityTypesHavingConnectivity for those of the mesh, GetZoneId for
// zones and layers; the operations of fluid particles; IsComposite, IsModularData, IsCATCSMOutput and HasFPM for the kind
// of the file. HasRootGroup is in filer_lifecycle.cpp, HasSecureNode... in filer_properties.cpp.

#include <climits>
#include <string_view>
#include <utility>

#include "entity/connectivity_types.h"
#include "entity/entity_lists.h"
#include "filer/container.h"
#include "filer/solver_name.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_filer.h"
#include "result/entity_ids.h"
#include "result/fluid_particles.h"

using namespace orvio;

// ---- Entities of results

int ORVFiler::GetEntityCount(std::vector<ORVResult*>& results, int state) {
  if (!m_pData) return 0;
  return h5::Entry(0, [&] { return CountEntities(m_pData->path.c_str(), results, state); });
}

int ORVFiler::GetMaxEntityCountOverStates(std::vector<ORVResult*>& results) {
  if (!m_pData || results.empty()) return 0;
  ReadStateIndex(false);
  return h5::Entry(0, [&] { return LargestEntityCount(*m_pData, results); });
}

int ORVFiler::GetEntityIds(std::vector<ORVResult*>& results, int state, int** ids, int** second) {
  if (!ids && !second) return GetEntityCount(results, state);
  for (int** array : {ids, second}) {
    if (array) *array = nullptr;
  }
  if (!m_pData) return 0;
  return h5::Entry(0, [&] {
    auto found = ReadEntityIds(m_pData->path.c_str(), results, state);
    if (!found) return 0;
    if (ids) *ids = found->numbers.release();
    return found->count;
  });
}

int ORVFiler::GetNodeCoordinateIds(int** ids, int state, int** second) {
  std::vector<ORVResult*> blocks;
  GetNodeCoordinateBlocks(blocks);
  return GetEntityIds(blocks, state, ids, second);
}

int ORVFiler::GetResultFrameIds(std::vector<ORVResult*>& results, int state, int** ids) {
  if (!m_pData || !ids) return 0;
  return h5::Entry(0, [&] {
    auto found = ReadFrameIds(m_pData->path.c_str(), results, state);
    if (!found) return 0;  // and what `ids` leads to is left alone
    *ids = found->numbers.release();
    return found->count;
  });
}

// ---- Elements and zones

int ORVFiler::GetEntityTypesHavingConnectivity(int state, std::vector<std::string>& types,
                                               std::vector<std::string>& elementTypes) {
  types.clear();
  elementTypes.clear();
  if (!m_pData) return 0;
  return h5::Entry(0, [&] {
    ConnectivityTypes found = ReadConnectivityTypes(m_pData->path.c_str(), state);
    types = std::move(found.types);
    elementTypes = std::move(found.element_types);
    return static_cast<int>(types.size());
  });
}

int ORVFiler::GetZoneId(int& largest) {
  constexpr std::int64_t kFirstZone = 1;
  largest = 0;
  if (!m_pData) return 0;
  const ResultList& singles = m_pData->single_results;
  std::int64_t zone = 0;
  for (const ORVResult* block : singles.empty() ? m_pData->multi_results : singles) {
    if (!block) continue;
    // No int holds what only a damaged header claims.
    if (block->m_numl > largest && block->m_numl <= INT_MAX) largest = static_cast<int>(block->m_numl);
    if (zone != kFirstZone) zone = block->m_zoneid;
  }
  return std::in_range<int>(zone) ? static_cast<int>(zone) : 0;
}

// ---- Fluid particles

void ORVFiler::GetFluidParticleCoordinateRes(std::vector<ORVResult*>& results) {
  if (!m_pData) return;
  h5::EntryVoid([&] {
    ResultList found;
    FindFluidParticles(m_pData->single_results, kParticleCoordinate, found);
    AppendThose(
        found, [](const ORVResult& block) { return block.m_nent != 0; }, results);
  });
}

int ORVFiler::GetFluidParticleCountFromConstant() {
  std::vector<ORVResult*> blocks;
  GetFluidParticleCoordinateRes(blocks);
  // QUIRK: blocks of the states are looked for in the constant section too. In files of the split layout a block of the
  // same name stands for them there, and counts once for each. Hosts make room by this count, for both. Pinned by
  // ModelFluidParticles.OfTheConstantSectionCountForABlockOfTheStatesToo.
  return GetEntityCount(blocks, 0);
}

int ORVFiler::GetMaxFluidParticleCount() {
  std::vector<ORVResult*> blocks;
  GetFluidParticleCoordinateRes(blocks);
  return GetMaxEntityCountOverStates(blocks);
}

int ORVFiler::ReadFluidParticleSize(int state, const char* variable, int** ids, float** values) {
  if (ids) *ids = nullptr;
  if (values) *values = nullptr;
  if (!m_pData || !variable) return 0;
  return h5::Entry(0, [&] {
    auto found = ReadFluidParticles(m_pData->path.c_str(), m_pData->single_results, state, variable);
    if (ids) *ids = found.ids.release();
    if (values) *values = found.values.release();
    return found.count;
  });
}

int ORVFiler::ReadFluidParticleCoordinate(int state, int** ids, float** values) {
  return ReadFluidParticleSize(state, kParticleCoordinate, ids, values);
}

// ---- Kinds of files

namespace {

/// Answers of IsCATCSMOutput, as they are remembered.
enum SolverOutput : int { kUnknown = 0, kNo = 1, kYes = 2 };

/// Whether the constant section has a block of that kind and name.
bool HasBlock(const ORVContainer* data, ORVEntAttribute& block, std::string_view name) {
  if (!data) return false;
  return h5::Entry(false, [&] {
    Assign(block.m_etyp, name);
    return ReadEntityList(block, data->path.c_str(), 0, ORV_READ_HEADER) == kOk;
  });
}

}  // namespace

bool ORVFiler::IsComposite() {
  ORVEntAttribute block;
  return HasBlock(m_pData, block, "COMPLAYER");
}

bool ORVFiler::IsModularData() {
  ORVIdentifiers block;
  return HasBlock(m_pData, block, "MODULE_HIERARCHY");
}

bool ORVFiler::IsCATCSMOutput() {
  if (m_nSolverOutputKind == kUnknown) m_nSolverOutputKind = HasRootGroup("CATCSM") ? kYes : kNo;
  return m_nSolverOutputKind == kYes;
}

bool ORVFiler::HasFPM() {
  constexpr std::size_t kPart = 2;
  const char* name = GetSolverName();
  if (!name) return false;
  return h5::Entry(false, [&] {
    const auto parts = SolverNameParts(Content(name));
    return parts.size() > kPart && EqualIgnoringCase(parts[kPart], "FPM");
  });
}
