// The fields of an element connectivity block and its reading. A block stands in
// "post/constant/connectivities/<etypelem>" or in the "connectivities" of a state. Writing is in
// connectivity_write.cpp.

#include "entity/connectivity.h"

#include <cstdint>
#include <string>

#include "block/block_keys.h"
#include "block/reader_lease.h"
#include "entity/stored_types.h"
#include "h5/dataset_reader.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_ele_connectivity.h"

using namespace orvio;

ORVEleConnectivity::ORVEleConnectivity()
    : m_etyp{},
      m_etypelem{},
      m_etyppart{},
      m_etypnode{},
      m_nele(0),
      m_npele(0),
      m_ndim(0),
      m_nbint(0),
      m_nbfloat(0),
      m_nindex(0),
      m_ideleType(ORV_INT),
      m_pidType(ORV_INT),
      m_icType(ORV_INT),
      m_idele(nullptr),
      m_pid(nullptr),
      m_ic(nullptr),
      m_iparamType(ORV_INT),
      m_fparamType(ORV_FLOAT),
      m_iparam(nullptr),
      m_fparam(nullptr),
      m_ubidType(ORV_INT),
      m_mbunitType(ORV_INT),
      m_ubexpType(ORV_FLOAT),
      m_mbunit(nullptr),
      m_ubid(nullptr),
      m_ubexp(nullptr),
      m_udidType(ORV_INT),
      m_mdunitType(ORV_INT),
      m_udexpType(ORV_FLOAT),
      m_mdunit(nullptr),
      m_udid(nullptr),
      m_udexp(nullptr),
      m_indexidentType(ORV_INT),
      m_indexvalType(ORV_FLOAT),
      m_indexident(nullptr),
      m_indexval(nullptr) {
  m_BlkKey = kConnectivityKey;
}

ORVEleConnectivity::~ORVEleConnectivity() = default;

int ORVEleConnectivity::AppendBlockSchema(std::string& path) {
  return h5::Entry(kFail, [&] {
    if (!path.empty()) path += "/";
    path += Content(m_etypelem);
    return kOk;
  });
}

int ORVEleConnectivity::ReadHeader(hid_t header, int mode) {
  if (!(mode & ORV_READ_HEADER)) return kFail;
  h5::HeaderReader in(GetH5Reader(), header);
  in.required(disk::block, m_BlkKey);
  in.defaulted(disk::etyp, m_etyp);
  in.strip(m_etyp);
  in.required(disk::etypelem, m_etypelem);
  in.required(disk::nele, m_nele);
  in.required(disk::npele, m_npele);
  in.strip(m_etypelem);  // only now: a header that ends above keeps the blanks
  in.required(disk::etyppart, m_etyppart);
  in.strip(m_etyppart);
  in.required(disk::etypnode, m_etypnode);
  in.strip(m_etypnode);
  in.defaulted(disk::nbint, m_nbint);
  in.defaulted(disk::nbfloat, m_nbfloat);
  in.tolerated(disk::nindex, m_nindex);
  in.defaulted(disk::ndim, m_ndim, kUnknownDim);
  in.tolerated(disk::indexic, m_nIncremental);  // other writers store it, this one never does
  return in.status();
}

namespace {

using h5::DatasetReader;

/// Sum of unit counts that were read. False for a negative count or a sum beyond `int`: no table has such a size.
bool Sum(_ORVDataType type, const void* counts, std::int64_t size, std::int64_t& sum) {
  sum = 0;
  for (std::int64_t i = 0; i < size; ++i) {
    const std::int64_t count =
        type == ORV_LONG ? static_cast<const std::int64_t*>(counts)[i] : static_cast<const int*>(counts)[i];
    if (count < 0 || count > INT32_MAX - sum) return false;
    sum += count;
  }
  return true;
}

/// Reads the unit counts of the float parameters and adds them up. The sum is 0 when they are not asked for or not
/// there.
[[nodiscard]] int ReadUnitCounts(DatasetReader& in, const char* name, _ORVDataType type, void* counts,
                                 std::int64_t size, std::int64_t& sum) {
  sum = 0;
  if (!in.wants(name, counts)) return in.status();
  in.integers(name, type, counts, {size});
  return in.status() == kOk && Sum(type, counts, size, sum) ? kOk : kFail;
}

/// Values and units of the float parameters. This library writes no units; other writers do.
[[nodiscard]] int ReadFloatParameters(ORVEleConnectivity& block, DatasetReader& in) {
  std::int64_t base = 0;
  std::int64_t derived = 0;
  if (in.wants(disk::fparam, block.m_fparam)) {
    in.floats(disk::fparam, block.m_fparamType, block.m_fparam, {block.m_nele, block.m_nbfloat});
  }
  if (ReadUnitCounts(in, disk::mbunit, block.m_mbunitType, block.m_mbunit, block.m_nbfloat, base) != kOk ||
      ReadUnitCounts(in, disk::mdunit, block.m_mdunitType, block.m_mdunit, block.m_nbfloat, derived) != kOk) {
    return kFail;
  }
  if (base != 0) {
    if (in.wants(disk::ubid, block.m_ubid)) in.integers(disk::ubid, block.m_ubidType, block.m_ubid, {base});
    if (in.wants(disk::ubexp, block.m_ubexp)) in.floats(disk::ubexp, block.m_ubexpType, block.m_ubexp, {base});
  }
  if (derived != 0) {
    if (in.wants(disk::udid, block.m_udid)) in.integers(disk::udid, block.m_udidType, block.m_udid, {derived});
    if (in.wants(disk::udexp, block.m_udexp)) in.floats(disk::udexp, block.m_udexpType, block.m_udexp, {derived});
  }
  return in.status();
}

[[nodiscard]] int ReadValues(ORVEleConnectivity& block, DatasetReader in) {
  in.integers(disk::idele, block.m_ideleType, block.m_idele, {block.m_nele});
  in.integers(disk::pid, block.m_pidType, block.m_pid, {block.m_nele});
  in.integers(disk::ic, block.m_icType, block.m_ic, {block.m_nele, block.m_npele});
  if (block.m_nbint != 0 && in.wants(disk::iparam, block.m_iparam)) {
    in.integers(disk::iparam, block.m_iparamType, block.m_iparam, {block.m_nele, block.m_nbint});
  }
  return block.m_nbfloat != 0 ? ReadFloatParameters(block, in) : in.status();
}

}  // namespace

int ORVEleConnectivity::ReadData(hid_t data, int mode) {
  IOH5Reader* reader = GetH5Reader();
  if (!reader) return kFail;
  return h5::Entry(kFail, [&] {
    int status = kFail;
    if (mode & ORV_READ_DATA) {
      status = ReadValues(*this, DatasetReader(reader, data));
      if (status != kOk) return status;
    }
    if (!(mode & ORV_READ_DATA_INFO)) return status;
    return QueryTypes(*reader, data, {{disk::idele, &m_ideleType}, {disk::pid, &m_pidType}, {disk::ic, &m_icType}});
  });
}

int ORVEleConnectivity::ReadIndex(hid_t index, int mode) {
  if (m_nindex < 1) return kFail;
  return ReadIndexComm(index, static_cast<hsize_t>(m_nindex), 0, mode, &m_indexidentType, m_indexident, &m_indexvalType,
                       m_indexval);
}

// ---- One item

int ORVEleConnectivity::ReadAttribute(const char* path, int state, int mode, _ORVBlockAtt att) {
  return h5::Entry(kFail, [&] {
    const ReaderLease reader(*this, path);
    if (!reader) return kFail;
    const h5::Group group(OpenBlockGroup(state));
    if (!group) return kFail;
    const h5::Group single = h5::OpenGroup(group.get(), disk::orvblock);
    return ReadAtt(single ? single.get() : group.get(), mode, att);
  });
}

namespace {

[[nodiscard]] int ReadHeaderItem(ORVEleConnectivity& block, h5::HeaderReader in, _ORVBlockAtt att) {
  switch (att) {
    case ORV_ATT_NENT:
      in.required(disk::nele, block.m_nele);
      break;
    case ORV_ATT_NPELE:
      in.required(disk::npele, block.m_npele);
      break;
    default:
      in.required(disk::etyppart, block.m_etyppart);
      in.strip(block.m_etyppart);
      break;
  }
  return in.status();
}

[[nodiscard]] int ReadDataItem(ORVEleConnectivity& block, DatasetReader in, _ORVBlockAtt att) {
  const std::int64_t rows = block.m_nele;
  switch (att) {
    case ORV_ATT_IDS:
      in.integers(disk::idele, block.m_ideleType, block.m_idele, {rows});
      break;
    case ORV_ATT_PID:
      in.integers(disk::pid, block.m_pidType, block.m_pid, {rows});
      break;
    case ORV_ATT_IC:
      in.integers(disk::ic, block.m_icType, block.m_ic, {rows, block.m_npele});
      break;
    case ORV_ATT_IPARAM:
      in.integers(disk::iparam, block.m_iparamType, block.m_iparam, {rows, block.m_nbint});
      break;
    default:
      in.floats(disk::fparam, block.m_fparamType, block.m_fparam, {rows, block.m_nbfloat});
      break;
  }
  return in.status();
}

[[nodiscard]] int ReadIndexItem(ORVEleConnectivity& block, DatasetReader in, _ORVBlockAtt att) {
  if (att == ORV_ATT_INDEXIDENT) {
    in.integers(disk::indexident, block.m_indexidentType, block.m_indexident, {block.m_nindex});
  } else {
    in.floats(disk::indexval, block.m_indexvalType, block.m_indexval, {block.m_nindex});
  }
  return in.status();
}

}  // namespace

int ORVEleConnectivity::ReadAtt(hid_t block, int /*mode*/, _ORVBlockAtt att) {
  return h5::Entry(kFail, [&] {
    const h5::Group header = h5::OpenGroup(block, disk::header);
    // In the single layout one group plays all three roles.
    const auto part = [&](const char* name) { return h5::OpenGroup(block, header ? name : "."); };
    switch (att) {
      case ORV_ATT_NENT:
      case ORV_ATT_NPELE:
      case ORV_ATT_ETYPPART:
        return ReadHeaderItem(*this, {GetH5Reader(), part(disk::header).get()}, att);
      case ORV_ATT_IDS:
      case ORV_ATT_PID:
      case ORV_ATT_IC:
      case ORV_ATT_IPARAM:
      case ORV_ATT_FPARAM:
        return ReadDataItem(*this, {GetH5Reader(), part(disk::data).get()}, att);
      case ORV_ATT_INDEXIDENT:
      case ORV_ATT_INDEXVAL:
        return ReadIndexItem(*this, {GetH5Reader(), part(disk::index).get()}, att);
      default:
        return kFail;
    }
  });
}

// ---- Walks over the states

int ORVEleConnectivity::ReadBlockOver(const char* path, int stages, ORVIterationCallBack action, int first, int last,
                                      int step, const char* /*name*/) {
  if (!path || !action || Content(m_etypelem).empty()) return kFail;
  return h5::Entry(kFail, [&] {
    const std::string own = std::string("./") + disk::connectivities + "/" + std::string(Content(m_etypelem));
    return ORVBlock::IterateBlockOver(path, stages, action, first, last, step, own.c_str(), 0);
  });
}

int ORVEleConnectivity::IterateBlockOver(const char* path, int stages, ORVIterationCallBack action, int first, int last,
                                         int step, const char* /*name*/, int reverse) {
  if (!path || !action) return kFail;
  return h5::Entry(kFail, [&] {
    const std::string all = std::string("./") + disk::connectivities;
    return ORVBlock::IterateBlockOver(path, stages, action, first, last, step, all.c_str(), reverse);
  });
}
