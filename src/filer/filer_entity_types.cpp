// Entity types of a filer's file: CheckCreateGenericEntityTypes and UpdateGenericTypes find generic names and number
// them; GetGenericTypes, GetGenericAppTypeFrmBaseAppType, GetAppTypesFrmGeneric and GetORVTypesFrmGeneric ask for them;
// GetUnknowEntTyps looks for types without a row; UpdateEntityType renews the numbers of results; UpdateFrameEntity,
// IsFrameEntityName and GetFrameEntityNames serve the frame types. ORVCheckAppendToEntityMap is with the table.

#include "entity/entity_type_results.h"
#include "entity/generic_types.h"
#include "filer/container.h"
#include "filer/file_facts.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/orv_filer.h"

using namespace orvio;

int ORVFiler::CheckCreateGenericEntityTypes(int firstAppType, int lastAppType, int state) {
  if (!m_pData || lastAppType < firstAppType) return 0;
  return h5::Entry(0, [&] {
    UpdateGenericTypes(state);
    return CreateGenericRows(*m_pData, {firstAppType, lastAppType});
  });
}

void ORVFiler::UpdateGenericTypes(int state) {
  if (m_pData) h5::EntryVoid([&] { orvio::UpdateGenericTypes(*m_pData, state); });
}

const std::vector<ORVGenericEntityNameMap*>& ORVFiler::GetGenericTypes() { return DataOf(m_pData).m_genericTypes; }

int ORVFiler::GetGenericAppTypeFrmBaseAppType(int baseAppType, _ORVEntityType /*ignored*/, std::string& genericName,
                                              int& genericAppType, _ORVEntityType& genericType) {
  constexpr int kNone = -1;
  genericAppType = kNone;
  genericType = static_cast<_ORVEntityType>(kNone);
  if (!m_pData) return kFail;
  return h5::Entry(kFail, [&] {
    const GenericRow found = FindGenericRowOfBase(*m_pData, baseAppType);
    if (!found.row) return kFail;
    genericName = found.generic->m_genericName;
    genericAppType = found.row->m_appType;
    genericType = static_cast<_ORVEntityType>(found.row->m_orvType);
    return kOk;
  });
}

void ORVFiler::GetAppTypesFrmGeneric(const char* generic, std::vector<int>& appTypes) {
  if (!generic || !m_pData) return;
  h5::EntryVoid([&] {
    for (const ORVEntityTypeMap* row : RowsOfBaseNames(*m_pData, generic)) appTypes.push_back(row->m_appType);
  });
}

void ORVFiler::GetORVTypesFrmGeneric(const char* generic, std::vector<_ORVEntityType>& types) {
  if (!generic || !m_pData) return;
  h5::EntryVoid([&] {
    for (const ORVEntityTypeMap* row : RowsOfBaseNames(*m_pData, generic)) {
      types.push_back(static_cast<_ORVEntityType>(row->m_orvType));
    }
  });
}

void ORVFiler::GetUnknowEntTyps(int state, std::vector<ORVEntityTypeMap*> types) {
  if (!m_pData) return;
  h5::EntryVoid([&] {
    // QUIRK: what is found reaches nobody, as the vector is the caller's copy. The signature is fixed, and a host that
    // gave its own rows away must find them as they were. Pinned by
    // FilerEntityTypes.UnknownTypesReachNeitherTheCallerNorTheTable.
    const std::vector<EntityTypeRow> unknown = FindUnknownElementTypes(m_pData->path.c_str(), state);
    for (const EntityTypeRow& row : unknown) types.push_back(row.get());
  });
}

void ORVFiler::UpdateEntityType(std::vector<ORVResult*>& results) {
  h5::EntryVoid([&] { UpdateEntityTypes(results); });
}

// ---- Frame types

void ORVFiler::UpdateFrameEntity() {
  if (m_pData) h5::EntryVoid([&] { UpdateFrameNames(*m_pData); });
}

bool ORVFiler::IsFrameEntityName(std::string& name) { return IsFrameName(DataOf(m_pData).m_frameEntityNames, name); }

void ORVFiler::GetFrameEntityNames(std::vector<const char*>& names) {
  h5::EntryVoid([&] {
    for (const std::string& name : DataOf(m_pData).m_frameEntityNames) names.push_back(name.c_str());
  });
}

void ORVFiler::GetFrameEntityNames(std::vector<std::string>& names) {
  const std::vector<std::string>& frames = DataOf(m_pData).m_frameEntityNames;
  h5::EntryVoid([&] { names.insert(names.end(), frames.begin(), frames.end()); });
}
