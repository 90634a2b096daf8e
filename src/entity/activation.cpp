// The fields of an element activation block and its reading. A block stands in
// "post/singlestate/<state>/activflags/<etyp>"; it has no place in the constant section. Writing is in
// activation_write.cpp.

#include <string>

#include "block/block_keys.h"
#include "entity/stored_types.h"
#include "h5/dataset_reader.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_ele_activation.h"

using namespace orvio;

ORVEleActivation::ORVEleActivation() : ORVEleActivation(static_cast<int>(kActivationKey)) {}

ORVEleActivation::ORVEleActivation(int blockType)
    : m_etyp{},
      m_nent(0),
      m_nindex(0),
      m_nstate(0),
      m_entidType(ORV_INT),
      m_statusType(ORV_INT),
      m_entid(nullptr),
      m_status(nullptr),
      m_indexidentType(ORV_INT),
      m_indexvalType(ORV_FLOAT),
      m_indexident(nullptr),
      m_indexval(nullptr) {
  m_BlkKey = blockType;
}

ORVEleActivation::~ORVEleActivation() = default;

int ORVEleActivation::AppendBlockSchema(std::string& path) {
  return h5::Entry(kFail, [&] {
    if (!path.empty()) path += "/";
    path += Content(m_etyp);
    return kOk;
  });
}

int ORVEleActivation::ReadHeader(hid_t header, int mode) {
  if (!(mode & ORV_READ_HEADER)) return kFail;
  h5::HeaderReader in(GetH5Reader(), header);
  in.required(disk::block, m_BlkKey);
  in.required(disk::etyp, m_etyp);
  in.strip(m_etyp);
  in.required(disk::nent, m_nent);
  in.required(disk::nindex, m_nindex);
  in.tolerated(disk::indexic, m_nIncremental);
  return in.status();
}

int ORVEleActivation::ReadData(hid_t data, int mode) {
  IOH5Reader* reader = GetH5Reader();
  if (!reader) return kFail;
  return h5::Entry(kFail, [&] {
    int status = kFail;
    if (mode & ORV_READ_DATA) {
      h5::DatasetReader in(reader, data);
      in.integers(disk::entid, m_entidType, m_entid, {m_nent});
      in.integers(disk::status, m_statusType, m_status, {m_nent});
      status = in.status();
      if (status != kOk) return status;
    }
    if (!(mode & ORV_READ_DATA_INFO)) return status;
    return QueryTypes(*reader, data, {{disk::entid, &m_entidType}, {disk::status, &m_statusType}});
  });
}

int ORVEleActivation::ReadIndex(hid_t index, int mode) {
  if (m_nindex < 1 || m_nstate < 0) return kFail;
  return ReadIndexComm(index, static_cast<hsize_t>(m_nindex), static_cast<hsize_t>(m_nstate), mode, &m_indexidentType,
                       m_indexident, &m_indexvalType, m_indexval);
}

// ---- Walks over the states

int ORVEleActivation::ReadBlockOver(const char* path, int stages, ORVIterationCallBack action, int first, int last,
                                    int step, const char* /*name*/) {
  if (!path || !action || Content(m_etyp).empty()) return kFail;
  return h5::Entry(kFail, [&] {
    const std::string own = std::string("./") + disk::activflags + "/" + std::string(Content(m_etyp));
    return ORVBlock::IterateBlockOver(path, stages, action, first, last, step, own.c_str(), 0);
  });
}

int ORVEleActivation::IterateBlockOver(const char* path, int stages, ORVIterationCallBack action, int first, int last,
                                       int step, const char* /*name*/, int reverse) {
  if (!path || !action) return kFail;
  return h5::Entry(kFail, [&] {
    const std::string all = std::string("./") + disk::activflags;
    return ORVBlock::IterateBlockOver(path, stages, action, first, last, step, all.c_str(), reverse);
  });
}
