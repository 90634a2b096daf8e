// The fields of a block, their accessors, and the forwards from a block to its reader. How a block is found and
// read stands in block_read.cpp, its paths in block_schema.cpp.

#include "orvio/orv_block.h"

#include <hdf5.h>

#include <algorithm>
#include <vector>

#include "filer/process_state.h"
#include "h5/data_type.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/reader_pool.h"
#include "h5/status.h"
#include "h5/stored_dataset.h"

using namespace orvio;

ORVBlock::ORVBlock() { Initialize(); }

/// Everything is copied but the reader, which belongs to the read that is running.
ORVBlock::ORVBlock(const ORVBlock& other)
    : m_nCompressionFactor(other.m_nCompressionFactor),
      m_pH5Reader(nullptr),
      m_nReserved(other.m_nReserved),
      m_BlkKey(other.m_BlkKey),
      m_nIncremental(other.m_nIncremental),
      m_pfnAction(other.m_pfnAction),
      m_pfnCallBackImp(other.m_pfnCallBackImp),
      m_pfnCallBackImp2(other.m_pfnCallBackImp2),
      m_nIterFlags(other.m_nIterFlags),
      m_nActionResult(other.m_nActionResult),
      m_pUserData(other.m_pUserData),
      m_indexIdentType(other.m_indexIdentType),
      m_indexValueType(other.m_indexValueType),
      m_pCacheMap(other.m_pCacheMap),
      m_BlkPath(other.m_BlkPath) {}

ORVBlock& ORVBlock::operator=(const ORVBlock& other) {
  if (this == &other) return *this;
  m_nCompressionFactor = other.m_nCompressionFactor;
  m_nReserved = other.m_nReserved;
  m_BlkKey = other.m_BlkKey;
  m_nIncremental = other.m_nIncremental;
  m_pfnAction = other.m_pfnAction;
  m_pfnCallBackImp = other.m_pfnCallBackImp;
  m_pfnCallBackImp2 = other.m_pfnCallBackImp2;
  m_nIterFlags = other.m_nIterFlags;
  m_nActionResult = other.m_nActionResult;
  m_pUserData = other.m_pUserData;
  m_indexIdentType = other.m_indexIdentType;
  m_indexValueType = other.m_indexValueType;
  m_pCacheMap = other.m_pCacheMap;
  m_BlkPath = other.m_BlkPath;
  return *this;
}

ORVBlock::~ORVBlock() {
  // A visitor that a host runs later must not find a block that is gone.
  if (process().g_pCurrentBlock == this) process().g_pCurrentBlock = nullptr;
}

void ORVBlock::Initialize() {
  m_pH5Reader = nullptr;
  m_nReserved = -1;
  m_nCompressionFactor = -1;
  m_BlkKey = -1;
  m_nIncremental = 0;
  m_pfnAction = nullptr;
  m_pfnCallBackImp = BlockCallBackImp;
  m_pfnCallBackImp2 = BlockCallBackImp2;
  m_nIterFlags = 0;
  m_nActionResult = ORV_ACTION_CONTINUE;
  m_pUserData = nullptr;
  m_indexIdentType = ORV_INT;
  m_indexValueType = ORV_FLOAT;
  m_BlkPath.clear();
}

void ORVBlock::SetBlkPath(const char* path) {
  if (path) m_BlkPath = path;
}

_ORVBlkVersion ORVBlock::GetBlkVersion() const {
  const std::string part = std::string("/") + disk::orvblock;
  return m_BlkPath.rfind(part) == std::string::npos ? ORV_BLK_VERSION_SPLIT : ORV_BLK_VERSION_SINGLE;
}

// QUIRK: the words are looked for in the text of the path, so a block named "multistate" in the constant section is in
// both. Paths of a host's own tree have the words elsewhere than in second place. Pinned by
// BlockPath.TellsTheSectionByItsText.
bool ORVBlock::IsConstatntPath() const { return HasSubstringInPath(disk::constant); }

bool ORVBlock::IsMultiStatePath() const { return HasSubstringInPath(disk::multistate); }

bool ORVBlock::IsSingleStatePath() const { return HasSubstringInPath(disk::singlestate); }

bool ORVBlock::HasSubstringInPath(const char* text) const { return text && m_BlkPath.find(text) != std::string::npos; }

bool ORVBlock::IsORVIntType(_ORVDataType type) { return type == ORV_INT || type == ORV_LONG; }

int ORVBlock::ReadHeader(hid_t, int) { return kFail; }

int ORVBlock::ReadData(hid_t, int) { return kFail; }

int ORVBlock::ReadIndex(hid_t, int) { return kFail; }

int ORVBlock::WriteHeader(hid_t) { return kFail; }

int ORVBlock::WriteData(hid_t) { return kFail; }

int ORVBlock::WriteIndex(hid_t) { return kFail; }

int ORVBlock::CacheData(IORVBufferManager&, const char*, int) { return kFail; }

int ORVBlock::AppendBlockSchema(std::string&) { return kFail; }

// ---- The reader

int ORVBlock::CreateH5Reader(const char* file, unsigned flags) {
  if (!file) return kFail;
  return h5::Entry(kFail, [&] {
    (void)H5check_version(H5_VERS_MAJOR, H5_VERS_MINOR, H5_VERS_RELEASE);  // ends the process on a mismatch
    if (H5open() < 0) return kFail;
    m_pH5Reader = OH5ReaderPool::Get().Request(file, flags);
    return kOk;
  });
}

int ORVBlock::DeleteH5Reader() {
  return h5::Entry(kFail, [&] { return OH5ReaderPool::Get().Release(m_pH5Reader); });
}

int ORVBlock::OpenH5Reader(const char* file, unsigned flags) {
  (void)CloseH5Reader();  // one reader at a time
  return CreateH5Reader(file, flags);
}

int ORVBlock::CloseH5Reader() { return DeleteH5Reader(); }

int ORVBlock::ReadDataset(hid_t loc, const char* name, int rank, hsize_t* dims, _ORVDataType type, void* buffer) {
  return m_pH5Reader ? m_pH5Reader->ReadDatasetAll(loc, name, rank, dims, type, buffer) : kFail;
}

int ORVBlock::OH5Read_INT(hid_t loc, const char* name, int rank, hsize_t* dims, _ORVDataType type, void* buffer) {
  return ReadDataset(loc, name, rank, dims, type, buffer);
}

int ORVBlock::OH5Read_FLOAT(hid_t loc, const char* name, int rank, hsize_t* dims, _ORVDataType type, void* buffer) {
  return ReadDataset(loc, name, rank, dims, type, buffer);
}

int ORVBlock::OH5Read_CHAR(hid_t loc, const char* name, int rank, hsize_t* dims, int size, char* buffer) {
  if (rank < 0 || rank >= H5S_MAX_RANK || size < 1 || (rank > 0 && !dims)) return kFail;
  hsize_t with_size[H5S_MAX_RANK] = {};
  if (rank > 0) std::copy_n(dims, rank, with_size);
  with_size[rank] = static_cast<hsize_t>(size);
  return ReadDataset(loc, name, rank + 1, with_size, ORV_CHAR, buffer);
}

int ORVBlock::OH5Read_SELECTIVE(hid_t loc, const char* name, int rank, hsize_t* start, hsize_t* count, hsize_t* stride,
                                hsize_t* block, _ORVDataType type, void* buffer) {
  return m_pH5Reader ? m_pH5Reader->ReadDatasetSelective(loc, name, rank, start, count, stride, block, type, buffer)
                     : kFail;
}

int ORVBlock::OH5Read_ATTRIBUTE(hid_t loc, const char* name, int rank, hsize_t* dims, _ORVDataType type, void* buffer) {
  return m_pH5Reader ? m_pH5Reader->ReadAttributeValue(loc, name, rank, dims, type, buffer) : kFail;
}

int ORVBlock::OH5Read_DATATYPE(hid_t loc, const char* name, _ORVDataType* type) {
  return m_pH5Reader ? m_pH5Reader->ReadDatasetType(loc, name, type) : kFail;
}

// ---- Stored types of datasets, by room and not by exact size

int ORVBlock::GetORVDataTypeForDataSet(hid_t loc, const char* name, _ORVDataType& type) {
  type = ORV_UNKNOWN_TYPE;
  return h5::Entry(kFail, [&] {
    h5::StoredDataset dataset(loc, name);
    if (dataset) type = h5::RoomyType(dataset.type());
    return type == ORV_UNKNOWN_TYPE ? kFail : kOk;
  });
}

int ORVBlock::GetORVDataTypeForBlockDataSet(hid_t loc, const char* name, _ORVDataType& type) {
  type = ORV_UNKNOWN_TYPE;
  return h5::Entry(kFail, [&] {
    const h5::Group group = h5::OpenGroup(loc, m_BlkPath.c_str());
    return group ? GetORVDataTypeForDataSet(group.get(), name, type) : kFail;
  });
}
