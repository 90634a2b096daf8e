// Construction and end of a filer, its configuration, and the facts of its file:
// GetFilePath, GetFileVersion and the versions that follow from it, HasRootGroup, what data there are, ReadBlock.

#include <hdf5.h>

#include <new>

#include "filer/container.h"
#include "filer/file_facts.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/orv_filer.h"
#include "variable/variable_buffers.h"

using namespace orvio;

ORVFiler::ORVFiler(const char* path)
    : m_pData(nullptr), m_pWriteData(nullptr), m_nSolverOutputKind(0), m_nReserved{0, 0}, m_nConfig(0) {
  // Out of memory leaves a filer without a container; every operation checks for it.
  m_pData = h5::Entry<ORVContainer*>(nullptr, [&] { return new ORVContainer(path); });
}

ORVFiler::ORVFiler(const ORVFiler& other)
    : m_pData(Share(other.m_pData)),
      m_pWriteData(Share(other.m_pWriteData)),
      m_nSolverOutputKind(other.m_nSolverOutputKind),
      m_nReserved{other.m_nReserved[0], other.m_nReserved[1]},
      m_nConfig(other.m_nConfig) {}

ORVFiler& ORVFiler::operator=(const ORVFiler& other) {
  if (this == &other) return *this;
  ORVContainer* data = Share(other.m_pData);  // first, as both may hold the same one
  ORVContainer* write_data = Share(other.m_pWriteData);
  Release(m_pData);
  Release(m_pWriteData);
  m_pData = data;
  m_pWriteData = write_data;
  m_nSolverOutputKind = other.m_nSolverOutputKind;
  m_nReserved[0] = other.m_nReserved[0];
  m_nReserved[1] = other.m_nReserved[1];
  m_nConfig = other.m_nConfig;
  return *this;
}

ORVFiler::~ORVFiler() {
  Release(m_pData);
  Release(m_pWriteData);
}

void ORVFiler::ClearAll() {
  if (m_pData) ClearContainer(*m_pData);
}

void ORVFiler::SetConfig(_ORVFilerConfig config) { m_nConfig |= ConfigBit(config); }

void ORVFiler::ClearConfig(_ORVFilerConfig config) { m_nConfig &= ~ConfigBit(config); }

int ORVFiler::CheckConfig(_ORVFilerConfig config) { return static_cast<int>(m_nConfig & ConfigBit(config)); }

bool ORVFiler::IsConfigToSkipMultiStateData() { return CheckConfig(ORV_CONFIG_SKIP_MULTISTATE) != 0; }

bool ORVFiler::IsConfigToSkipSingleStateData() {
  return CheckConfig(ORV_CONFIG_SKIP_SINGLESTATE) != 0 || CheckConfig(ORV_CONFIG_SKIP_CONSTANT) != 0;
}

int ORVFiler::KeepFileOpen(bool keep) {
  if (!m_pData || m_pData->path.empty()) return kFail;
  return h5::Entry(kFail, [&] {
    m_pData->keeping_open = keep ? std::make_unique<h5::KeepingOpen>(m_pData->path.c_str()) : nullptr;
    return kOk;
  });
}

const char* ORVFiler::GetFilePath() { return m_pData ? m_pData->path.c_str() : nullptr; }

ORVFileVersion* ORVFiler::GetFileVersion() {
  return m_pData ? h5::Entry<ORVFileVersion*>(nullptr, [&] { return VersionOnDemand(*m_pData); }) : nullptr;
}

int ORVFiler::GetMajorVersion() {
  const ORVFileVersion* version = GetFileVersion();
  return version ? version->m_major : 1;
}

bool ORVFiler::IsMajorVersion(int major) { return GetMajorVersion() == major; }

int ORVFiler::GetMajorWriteVersion() {
  return m_pWriteData && m_pWriteData->version ? m_pWriteData->version->m_major : 1;
}

const char* ORVFiler::GetTitle() { return GetSystem() ? GetSystem()->m_title : nullptr; }

const char* ORVFiler::GetSolverName() { return GetSystem() ? GetSystem()->m_solverName : nullptr; }

const char* ORVFiler::GetSolverVersion() { return GetSystem() ? GetSystem()->m_solverVers : nullptr; }

int ORVFiler::GetAvailableDataset() { return m_pData ? AvailableDatasets(*m_pData) : 0; }

bool ORVFiler::IsDatasetAvailable(int mask) { return (mask & (kSinglestateData | kMultistateData)) != 0; }

bool ORVFiler::HasRootGroup(const char* name) {
  if (!m_pData || !name) return false;
  return h5::Entry(false, [&] { return FileHasRootGroup(m_pData->path.c_str(), name); });
}

int ORVFiler::ReadBlock(ORVBlock* block, int state, int stages) {
  if (!block || !m_pData) return kFail;
  return block->ReadBlock(m_pData->path.c_str(), state, stages);
}
