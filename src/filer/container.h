#pragma once

// What a filer holds of its file.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "entity/incr_states.h"
#include "h5/file_access.h"
#include "h5/kept_files.h"
#include "orvio/orv_buffer.h"
#include "orvio/orv_definitions.h"
#include "orvio/orv_ext_var.h"
#include "orvio/orv_incr_index.h"
#include "orvio/orv_index.h"
#include "orvio/orv_system.h"
#include "orvio/orv_types.h"

class ORVProperties;
class ORVResult;
class ORVUnit;
class ORVVariable;
class ORVVariableGrp;
struct ORVGenericEntityNameMap;

/// Everything read from a file, or the name and version of a file made for writing. Filers share a container by
/// assignment; the last of them frees it.
struct ORVContainer {
  explicit ORVContainer(const char* file) : path(file ? file : "") {}

  int sharers = 1;
  std::unique_ptr<ORVFileVersion> version;               ///< read on first demand
  std::unique_ptr<orvio::h5::WriteFile> change;          ///< between BeginState and EndState
  std::unique_ptr<orvio::h5::KeepingOpen> keeping_open;  ///< see ORVFiler::KeepFileOpen
  std::string path;
  std::unique_ptr<ORVSystem> system;               ///< with its arrays; none until read
  std::unique_ptr<ORVSimulationType> index_types;  ///< with its names; none until read
  std::vector<ORVVariable*> variables;             ///< owned, with their arrays
  std::vector<ORVVariableGrp*> variable_groups;    ///< owned, with their arrays
  std::vector<ORVExtVar*> ext_vars;                ///< owned; in the order of their making
  std::vector<ORVResult*> multi_results;           ///< of the multi-state section, owned
  std::vector<ORVResult*> single_results;          ///< of the first state and the constant section, owned
  std::vector<ORVProperties*> properties;          ///< owned
  bool has_secured_node = false;                   ///< a properties block is of the type "SECURED_NODE"

  std::unique_ptr<ORVIndexBase<int, float>> m_pStateIndex;       ///< with its arrays; none until asked for
  std::unique_ptr<ORVIndexBase<int, double>> m_pStateIndexDP;    ///< likewise
  std::unique_ptr<ORVIndexBase<int, float>> m_pMultiStateIndex;  ///< likewise

  /// Tables that the next demand reads again.
  struct StaleIndexes {
    bool state = false, state_dp = false, multi_state = false;
  } stale_indexes;

  std::vector<ORVTagIncrIndex*> m_tagIncrIndexes;        ///< in the order of first use; owned, with their arrays
  std::unique_ptr<orvio::IncrStateMap> m_globalIncrMap;  ///< none until built

  std::vector<ORVUnit*> base_units;       ///< owned
  std::vector<ORVUnit*> derived_units;    ///< owned, each an ORVDUnit
  std::vector<ORVUnit*> component_units;  ///< owned; of handles, by their internal id

  using CacheMap = std::map<std::string, ORVBuffer*>;
  std::unique_ptr<ORVBufferManager> buffers;        ///< none until something is cached
  std::vector<std::weak_ptr<CacheMap>> cache_maps;  ///< of the blocks that hold buffers, listed ones or not

  std::vector<ORVGenericEntityNameMap*> m_genericTypes;  ///< owned, with their names
  std::vector<std::string> m_frameEntityNames;
  std::map<int, int> filter_memo;  ///< by HDF5 filter: -1 not asked, 0 no, 1 yes

  ORVExtendComputedTypeCallBack computed_types = nullptr;  ///< of the host; null for the built-in tables
  void* callback_client = nullptr;
};
