// The fields of a collector block and its reading. A block stands in "post/constant/collector/<etypcoll>" or in the
// "collector" of a state. Writing is in collector_write.cpp; what a filer reads and allocates is in entity_lists.cpp.

#include <string>

#include "block/block_keys.h"
#include "entity/stored_types.h"
#include "h5/dataset_reader.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_collector.h"

using namespace orvio;

ORVCollector::ORVCollector() {
  m_BlkKey = kCollectorKey;
  InitializeBlock(ORV_READ_HEADER | ORV_READ_DATA | ORV_READ_INDEX);
}

ORVCollector::~ORVCollector() = default;

void ORVCollector::InitializeBlock(int mask) {
  if (mask & ORV_READ_HEADER) {
    Assign(m_etypcoll, "");
    m_ncoll = m_ntyp = m_nenttot = m_nindex = 0;
  }
  if (mask & ORV_READ_DATA) {
    m_idcollType = m_nentType = m_entidType = ORV_INT;
    m_idcoll = m_nent = m_entid = nullptr;
    m_etyp = nullptr;
  }
  if (mask & ORV_READ_INDEX) {
    m_indexidentType = ORV_INT;
    m_indexvalType = ORV_FLOAT;
    m_indexident = m_indexval = nullptr;
  }
}

int ORVCollector::AppendBlockSchema(std::string& path) {
  return h5::Entry(kFail, [&] {
    if (!path.empty()) path += "/";
    path += Content(m_etypcoll);
    return kOk;
  });
}

int ORVCollector::ReadHeader(hid_t header, int mode) {
  if (!(mode & ORV_READ_HEADER)) return kFail;
  h5::HeaderReader in(GetH5Reader(), header);
  in.required(disk::block, m_BlkKey);
  in.required(disk::etypcoll, m_etypcoll);
  in.strip(m_etypcoll);
  in.required(disk::ncoll, m_ncoll);
  in.required(disk::ntyp, m_ntyp);
  in.required(disk::nenttot, m_nenttot);
  in.required(disk::nindex, m_nindex);
  in.tolerated(disk::indexic, m_nIncremental);  // other writers store it, this one never does
  return in.status();
}

namespace {

/// A dataset is not there where one of its extents is 0: HDF5 writers store none without elements.
[[nodiscard]] int ReadLists(ORVCollector& block, h5::DatasetReader in) {
  const bool has_types = block.m_ntyp != 0;
  if (block.m_ncoll != 0) in.integers(disk::idcoll, block.m_idcollType, block.m_idcoll, {block.m_ncoll});
  if (has_types) in.texts(disk::etyp, disk::kTextWidth, block.m_etyp, block.m_ntyp);
  if (has_types && block.m_ncoll != 0) {
    in.integers(disk::nent, block.m_nentType, block.m_nent, {block.m_ncoll, block.m_ntyp});
  }
  if (block.m_nenttot != 0) in.integers(disk::entid, block.m_entidType, block.m_entid, {block.m_nenttot});
  if (has_types && in.ok()) StripEach(block.m_etyp, static_cast<std::uint64_t>(block.m_ntyp));
  return in.status();
}

}  // namespace

int ORVCollector::ReadData(hid_t data, int mode) {
  IOH5Reader* reader = GetH5Reader();
  if (!reader) return kFail;
  return h5::Entry(kFail, [&] {
    int status = kFail;
    if (mode & ORV_READ_DATA) {
      status = ReadLists(*this, h5::DatasetReader(reader, data));
      if (status != kOk) return status;
    }
    if (!(mode & ORV_READ_DATA_INFO)) return status;
    return QueryTypes(*reader, data,
                      {{disk::entid, &m_entidType}, {disk::nent, &m_nentType}, {disk::idcoll, &m_idcollType}});
  });
}

int ORVCollector::ReadIndex(hid_t index, int mode) {
  if (m_nindex < 1) return kFail;
  return ReadIndexComm(index, static_cast<hsize_t>(m_nindex), 0, mode, &m_indexidentType, m_indexident, &m_indexvalType,
                       m_indexval);
}

// QUIRK: collectors are not walked over the states, whatever is asked. Files have them in few states, and hosts take the
// answer for the sign to ask state by state. Pinned by CollectorData.IsNotWalkedOverTheStates.
int ORVCollector::IterateBlockOver(const char* /*path*/, int /*stages*/, ORVIterationCallBack /*action*/, int /*first*/,
                                   int /*last*/, int /*step*/, const char* /*name*/, int /*reverse*/) {
  return kFail;
}
