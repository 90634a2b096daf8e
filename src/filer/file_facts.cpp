// Sharing of containers, and facts of a file that need it open for a moment.

#include "filer/file_facts.h"

#include <hdf5.h>

#include "entity/generic_types.h"
#include "entity/index_types.h"
#include "entity/state_index_fill.h"
#include "filer/cached_data.h"
#include "filer/container.h"
#include "filer/process_state.h"
#include "filer/tag_indexes.h"
#include "h5/handle.h"
#include "h5/reader_pool.h"
#include "h5/status.h"
#include "orvio/orv_properties.h"
#include "orvio/orv_result.h"
#include "orvio/orv_variable_grp.h"
#include "unit/system_read.h"
#include "unit/unit_tables.h"
#include "variable/variable_buffers.h"
#include "variable/variable_group_discovery.h"

namespace orvio {

ORVContainer* Share(ORVContainer* container) {
  if (container) ++container->sharers;
  return container;
}

void Release(ORVContainer* container) {
  if (!container || --container->sharers > 0) return;
  ClearContainer(*container);
  delete container;
}

ORVContainer& DataOf(ORVContainer* container) {
  if (container) return *container;
  ORVContainer*& nothing = process().no_data;
  if (!nothing) nothing = new ORVContainer(nullptr);
  return *nothing;
}

namespace {

template <class T>
void DeleteAll(std::vector<T*>& list) {
  for (T* item : list) delete item;
  list.clear();
}

template <class T>
void DeleteWithBuffers(std::vector<T*>& list) {
  for (T* item : list) FreeBuffers(*item);
  DeleteAll(list);
}

template <class T>
void DeleteWithBuffers(std::unique_ptr<T>& block) {
  if (block) FreeBuffers(*block);
  block.reset();
}

}  // namespace

void ClearContainer(ORVContainer& container) {
  DropCachedData(container);
  DeleteWithBuffers(container.system);
  DeleteWithBuffers(container.index_types);
  ClearStateIndexes(container);
  ClearIncrIndexes(container);
  DeleteAll(container.ext_vars);
  DeleteWithBuffers(container.variables);
  DeleteWithBuffers(container.variable_groups);
  DeleteAll(container.single_results);
  DeleteAll(container.multi_results);
  DeleteAll(container.properties);
  container.has_secured_node = false;
  ClearUnitTable(container.base_units);
  ClearUnitTable(container.derived_units);
  ClearUnitTable(container.component_units);
  ClearGenericTypes(container);
  container.m_frameEntityNames.clear();
  container.filter_memo.clear();
}

ORVFileVersion* VersionOnDemand(ORVContainer& container) {
  if (container.version) return container.version.get();
  container.version = std::make_unique<ORVFileVersion>();
  if (!container.path.empty()) {
    const h5::ShortLease reader(container.path.c_str());
    ORVFileVersion& version = *container.version;
    // A file that cannot be read has version 0.0.0 from now on: hosts ask often.
    (void)reader->ReadFileVersion(version.m_major, version.m_minor, version.m_patch);
  }
  return container.version.get();
}

int AvailableDatasets(const ORVContainer& container) {
  if (container.variables.empty()) return 0;
  const bool has_single = !container.single_results.empty() || !container.properties.empty();
  return (has_single ? kSinglestateData : 0) | (container.multi_results.empty() ? 0 : kMultistateData);
}

bool FileHasRootGroup(const char* file, const char* name) {
  const h5::ShortLease reader(file);
  const h5::Group group(reader->OpenGroup(reader->GetFileId(), name, H5P_DEFAULT));
  return static_cast<bool>(group);
}

}  // namespace orvio
