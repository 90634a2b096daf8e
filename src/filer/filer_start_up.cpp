// Reading what a filer must know of its file before it can answer: InitReader and its steps, ReadMultiStateBlocks and
// ReadSystemBlock for what was left out, InitForReload for a file that has grown.

#include <algorithm>
#include <memory>

#include "entity/index_types.h"
#include "filer/container.h"
#include "filer/file_facts.h"
#include "filer/messages.h"
#include "filer/start_up.h"
#include "filer/versions.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/orv_filer.h"
#include "result/properties_discovery.h"
#include "result/result_discovery.h"
#include "unit/component_units.h"
#include "unit/system_read.h"
#include "unit/unit_tables.h"
#include "variable/association.h"
#include "variable/variable_discovery.h"
#include "variable/variable_group_discovery.h"

using namespace orvio;

int ORVFiler::InitReader(int& nextId) {
  nextId = std::max(nextId, 1);
  if (!m_pData) return kFail;
  return h5::WholeEntry(kFail, [&] {
    ClearAll();
    (void)ReadVariableBlks(m_pData->variable_groups, m_pData->variables);  // what could be read counts
    if (m_pData->variables.empty()) {
      SendMessage(ORV_MESG_ERROR, "Unable to read variable blocks(/post/constant/variable)");
      return kFail;
    }
    ResolveGroupKeys(*m_pData);
    return ReadResults(nextId);
  });
}

/// The start-up from the results on.
int ORVFiler::ReadResults(int& nextId) {
  StartUpScope scope;
  scope.multi_state = !IsConfigToSkipMultiStateData();
  scope.constant = CheckConfig(ORV_CONFIG_SKIP_CONSTANT) == 0;
  scope.states = !IsConfigToSkipSingleStateData();
  if (DiscoverAllResults(*m_pData, scope) != kOk) return kFail;
  if (m_pData->single_results.empty() && m_pData->multi_results.empty()) {
    if (!scope.states) return kNoResultsWithSkipping;
    InitProperityBlockReading(nextId, false);
    return m_pData->has_secured_node ? kOk : kFail;
  }
  (void)ReadSystemBlock();  // a file without units is of use all the same
  auto types = std::make_unique<ORVSimulationType>();
  if (ReadIndicesBlk(*types) == kOk) m_pData->index_types = std::move(types);
  // Always 0: results without a definition have been reported, and want of memory ends the start-up.
  (void)AssociateVariables(m_pData->single_results, nextId, kServesSingleState);
  (void)AssociateVariables(m_pData->multi_results, nextId, kServesMultiState);
  if (CheckConfig(ORV_CONFIG_ASSIGN_UNITS) != 0 && m_pData->system) {
    FillUnitTables(*m_pData->system, m_pData->base_units, m_pData->derived_units);
    AssignComponentUnits(*m_pData, 0);
  }
  InitProperityBlockReading(nextId, false);
  return kOk;
}

int ORVFiler::ReadMultiStateBlocks(bool force) {
  if (!m_pData || !(m_pData->multi_results.empty() || force)) return kFail;
  return h5::WholeEntry(kFail, [&] {
    ClearConfig(ORV_CONFIG_SKIP_MULTISTATE);
    ClearResultBlk(m_pData->multi_results);
    ReadResultBlks(-1, m_pData->multi_results);
    if (m_pData->multi_results.empty()) return kFail;
    int next_id = NextHandleId(m_pData->ext_vars);
    return AssociateVariables(m_pData->multi_results, next_id, kServesMultiState);
  });
}

void ORVFiler::InitForReload() {
  if (m_pData) h5::EntryVoid([&] { PrepareReload(*m_pData); });
}

// ---- Steps

int ORVFiler::ReadVariableBlks(std::vector<ORVVariableGrp*>& groups, std::vector<ORVVariable*>& variables) {
  if (!m_pData || m_pData->path.empty()) return kFail;
  const int status = ReadVariables(m_pData->path.c_str(), variables);
  (void)ReadVariableGroups(m_pData->path.c_str(), groups);  // most files have none
  return status;
}

void ORVFiler::ReadResultBlks(int state, std::vector<ORVResult*>& results) {
  const int kind = state == -1 ? ORV_RESULT_MULTI_ENTITY : ORV_RESULT_ENTITY;
  if (!m_pData) return;
  // The operation has no way to tell of a lack of memory.
  h5::EntryVoid([&] { (void)DiscoverResults(m_pData->path.c_str(), state, kind, results); });
}

int ORVFiler::ReadSystemBlock() {
  if (!m_pData) return kFail;
  if (m_pData->system) return kOk;
  return h5::Entry(kFail, [&] {
    auto system = std::make_unique<ORVSystem>();
    const int status = ReadSystemBlk(*system);
    if (status == kOk) m_pData->system = std::move(system);
    return status;
  });
}

int ORVFiler::ReadSystemBlk(ORVSystem& system) {
  return m_pData && !m_pData->path.empty() ? ReadSystem(m_pData->path.c_str(), system) : kFail;
}

int ORVFiler::ReadIndicesBlk(ORVSimulationType& types) {
  return m_pData ? ReadIndexTypes(m_pData->path.c_str(), m_pData->variable_groups, types) : kFail;
}

void ORVFiler::ReadPropertiesBlks(int state, std::vector<ORVProperties*>& properties) {
  if (m_pData) ReadProperties(m_pData->path.c_str(), state, properties);
}

void ORVFiler::InitProperityBlockReading(int& nextId, bool force) {
  const ORVFileVersion* version = GetFileVersion();
  if (!m_pData || !version || !(NumberOfVersion(*version) >= kFirstVersionWithProperties || force)) return;
  h5::EntryVoid([&] {
    const SilencedMessages silence;
    ReadPropertiesBlks(0, m_pData->properties);
    ReadPropertiesBlks(1, m_pData->properties);
    if (m_pData->properties.empty()) return;
    std::vector<ORVResult*> results(m_pData->properties.begin(), m_pData->properties.end());
    (void)AssociateVariables(results, nextId, kServesSingleState);  // always 0
    m_pData->has_secured_node = HasSecuredNode(m_pData->properties);
  });
}
