// Collectors of a file: ReadCollector reads one block, GetCollector all of a section, CleanUpCollector and
// DeleteCollector free what these have made. ReadValidCollector, ReadShellFathers, ReadNodeFathers and WriteNodeFathers
// serve the fathers of adaptive meshes, IsAdaptiveCollectorEntity and IsAdaptive tell whether a file has such a mesh.

#include <algorithm>

#include "entity/adaptive.h"
#include "entity/entity_lists.h"
#include "filer/container.h"
#include "filer/write_file.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/orv_filer.h"

using namespace orvio;

int ORVFiler::ReadCollector(ORVCollector* block, int mode, int state) {
  if (!block || !m_pData) return kFail;
  return h5::Entry(kFail, [&] { return ReadEntityList(*block, m_pData->path.c_str(), state, mode); });
}

void ORVFiler::GetCollector(int state, int mode, std::vector<ORVCollector*>& blocks) {
  if (m_pData) h5::EntryVoid([&] { ReadEntityLists(m_pData->path.c_str(), state, mode, blocks); });
}

void ORVFiler::CleanUpCollector(ORVCollector* block) {
  if (block) FreeBuffers(*block);
}

void ORVFiler::DeleteCollector(std::vector<ORVCollector*>& blocks) { DeleteEntityLists(blocks); }

// ---- Adaptive meshes

int ORVFiler::ReadValidCollector(std::string& name, ORVCollector* block, int state, std::vector<char*>& types) {
  if (!block || !m_pData) return kFail;
  return h5::Entry(kFail, [&] {
    std::vector<std::string_view> wanted(types.size());
    std::ranges::transform(types, wanted.begin(), [](const char* type) { return type ? type : ""; });
    return orvio::ReadValidCollector(m_pData->path.c_str(), state, name, wanted, *block);
  });
}

int ORVFiler::ReadShellFathers(ORVCollector* block, int state) {
  if (!block || !m_pData) return kFail;
  return h5::Entry(kFail, [&] {
    return orvio::ReadValidCollector(m_pData->path.c_str(), state, kShellFathers, {kShellType, kShellType}, *block);
  });
}

int ORVFiler::ReadNodeFathers(ORVCollector* block, int state) {
  if (!block || !m_pData) return kFail;
  return h5::Entry(kFail, [&] {
    return orvio::ReadValidCollector(m_pData->path.c_str(), state, kNodeFathers, {kNodeType, kNodeType}, *block);
  });
}

int ORVFiler::WriteNodeFathers(ORVCollector* source, int state, int ncoll, int* idcoll, int ntyp, int* nent,
                               int nenttot, int* entid) {
  if (ntyp != 2 || !m_pWriteData) return kFail;
  const auto version = UseWriterVersion(*m_pWriteData);
  return h5::Entry(kFail, [&] {
    return orvio::WriteNodeFathers(m_pWriteData->path.c_str(), state, source, {ncoll, idcoll, nent, nenttot, entid});
  });
}

bool ORVFiler::IsAdaptiveCollectorEntity(std::string& name, bool& hasCollectors) {
  hasCollectors = false;
  if (!m_pData) return false;
  return h5::Entry(false, [&] { return HasCollectorInStates(m_pData->path.c_str(), name, hasCollectors); });
}

bool ORVFiler::IsAdaptive(bool skipFpm) {
  if (!m_pData) return false;
  return h5::Entry(false, [&] { return HasElementsInStates(m_pData->path.c_str(), skipFpm); });
}
