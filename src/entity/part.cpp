// The fields of a part block and its reading. A block stands in "post/constant/parts/<etyppart>" or in the "parts" of a
// state. Writing is in part_write.cpp, the filer's query in part_info.cpp.

#include <string>

#include "block/block_keys.h"
#include "entity/stored_types.h"
#include "entity/titles.h"
#include "h5/dataset_reader.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_part.h"

using namespace orvio;

ORVPart::ORVPart()
    : m_etyppart{},
      m_npart(0),
      m_nindex(0),
      m_length(static_cast<int>(disk::kTextWidth)),
      m_pidType(ORV_INT),
      m_midType(ORV_INT),
      m_mtypType(ORV_INT),
      m_pcolType(ORV_INT),
      m_pvtypType(ORV_INT),
      m_pid(nullptr),
      m_title(nullptr),
      m_mid(nullptr),
      m_mtyp(nullptr),
      m_pcol(nullptr),
      m_pvtyp(nullptr),
      m_indexidentType(ORV_INT),
      m_indexvalType(ORV_FLOAT),
      m_indexval(nullptr) {
  m_BlkKey = kPartKey;
}

ORVPart::~ORVPart() = default;

int ORVPart::AppendBlockSchema(std::string& path) {
  return h5::Entry(kFail, [&] {
    if (!path.empty()) path += "/";
    path += Content(m_etyppart);
    return kOk;
  });
}

int ORVPart::ReadHeader(hid_t header, int mode) {
  if (!(mode & ORV_READ_HEADER)) return kFail;
  h5::HeaderReader in(GetH5Reader(), header);
  in.required(disk::block, m_BlkKey);
  in.required(disk::etyppart, m_etyppart);
  in.required(disk::npart, m_npart);
  in.required(disk::nindex, m_nindex);
  in.strip(m_etyppart);  // only now: a header that ends above keeps the blanks
  in.defaulted(disk::length, m_length, disk::kTextWidth);
  return in.status();
}

namespace {

/// Whether an array is to be read. One that the caller has made but the file lacks becomes null, which tells the caller.
template <class T>
bool Wants(const h5::DatasetReader& in, const char* name, T*& array) {
  if (!in.ok()) return false;
  if (!in.wants(name, array)) array = nullptr;
  return array;
}

[[nodiscard]] int ReadLists(ORVPart& block, h5::DatasetReader in) {
  const std::int64_t parts = block.m_npart;
  in.integers(disk::pid, block.m_pidType, block.m_pid, {parts});
  if (Wants(in, disk::mid, block.m_mid)) in.integers(disk::mid, block.m_midType, block.m_mid, {parts});
  if (Wants(in, disk::mtyp, block.m_mtyp)) in.integers(disk::mtyp, block.m_mtypType, block.m_mtyp, {parts});
  if (Wants(in, disk::pcol, block.m_pcol)) in.integers(disk::pcol, block.m_pcolType, block.m_pcol, {parts});
  if (Wants(in, disk::pvtyp, block.m_pvtyp)) in.integers(disk::pvtyp, block.m_pvtypType, block.m_pvtyp, {parts});
  if (block.m_length != 0 && Wants(in, disk::title, block.m_title)) {
    in.texts(disk::title, block.m_length, block.m_title, parts);
    if (in.ok()) StripTitles(block.m_title, parts, block.m_length);
  }
  return in.status();
}

/// Stored types. An optional dataset that is missing leaves the type of its member alone.
[[nodiscard]] int QueryPartTypes(ORVPart& block, IOH5Reader& reader, hid_t data) {
  int status = QueryTypes(reader, data, {{disk::pid, &block.m_pidType}});
  for (const TypeQuery& query :
       {TypeQuery{disk::mid, &block.m_midType}, TypeQuery{disk::mtyp, &block.m_mtypType},
        TypeQuery{disk::pcol, &block.m_pcolType}, TypeQuery{disk::pvtyp, &block.m_pvtypType}}) {
    if (h5::LinkExists(data, query.dataset) && QueryTypes(reader, data, {query}) != kOk) status = kFail;
  }
  return status;
}

}  // namespace

int ORVPart::ReadData(hid_t data, int mode) {
  IOH5Reader* reader = GetH5Reader();
  if (!reader) return kFail;
  return h5::Entry(kFail, [&] {
    int status = kFail;
    if (mode & ORV_READ_DATA) {
      status = ReadLists(*this, h5::DatasetReader(reader, data));  // fails without parts
      if (status != kOk) return status;
    }
    return mode & ORV_READ_DATA_INFO ? QueryPartTypes(*this, *reader, data) : status;
  });
}
