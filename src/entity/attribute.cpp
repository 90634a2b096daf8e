// The fields of entity attribute and identifiers blocks, and their reading. A block stands in
// "post/constant/attributes/<etyp>", an identifiers block in "identifiers", or in the same groups of a state. Writing is
// in attribute_write.cpp; what a filer reads and allocates is in entity_lists.cpp.

#include <algorithm>
#include <string>
#include <string_view>

#include "block/block_keys.h"
#include "entity/stored_types.h"
#include "entity/titles.h"
#include "h5/dataset_reader.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/header_io.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_ent_attribute.h"

using namespace orvio;

ORVEntAttribute::ORVEntAttribute() : m_userData(nullptr), m_duplicateName(true) {
  m_BlkKey = kAttributeKey;
  InitializeBlock(ORV_READ_HEADER | ORV_READ_DATA | ORV_READ_INDEX);
}

ORVEntAttribute::~ORVEntAttribute() = default;

ORVIdentifiers::ORVIdentifiers() { m_BlkKey = kIdentifierKey; }

ORVIdentifiers::~ORVIdentifiers() = default;

void ORVEntAttribute::InitializeBlock(int mask) {
  if (mask & ORV_READ_HEADER) {
    Assign(m_etyp, "");
    m_nent = m_nuid = m_nindex = 0;
    m_length = static_cast<int>(disk::kTextWidth);
  }
  if (mask & ORV_READ_DATA) {
    m_entidType = m_uidType = ORV_INT;
    m_entid = m_uid = nullptr;
    m_title = nullptr;
  }
  if (mask & ORV_READ_INDEX) {
    m_indexidentType = ORV_INT;
    m_indexvalType = ORV_FLOAT;
    m_indexident = m_indexval = nullptr;
  }
}

bool ORVEntAttribute::IsEntityTypeName(const char* name) {
  return name && *name && EqualIgnoringCase(Content(m_etyp), name);
}

void ORVEntAttribute::GetGroupName(char* out) {
  if (!out) return;
  const _OH5BlockKeyMap* row = FindBlockKey(m_BlkKey);
  const std::string_view name = row && *row->name ? row->name : disk::attributes;
  *std::copy(name.begin(), name.end(), out) = '\0';
}

int ORVEntAttribute::AppendBlockSchema(std::string& path) {
  return h5::Entry(kFail, [&] {
    if (!path.empty()) path += "/";
    path += Content(m_etyp);
    return kOk;
  });
}

int ORVEntAttribute::ReadHeader(hid_t header, int mode) {
  if (!(mode & ORV_READ_HEADER)) return kFail;
  h5::HeaderReader in(GetH5Reader(), header);
  in.required(disk::block, m_BlkKey);
  in.defaulted(disk::indexic, m_nIncremental);
  in.required(disk::etyp, m_etyp);
  in.required(disk::nent, m_nent);
  in.strip(m_etyp);  // only now: a header that ends above keeps the blanks
  in.defaulted(disk::nuid, m_nuid);
  in.defaulted(disk::nindex, m_nindex);
  in.tolerated(disk::length, m_length, disk::kTextWidth);
  return in.status();
}

namespace {

[[nodiscard]] int ReadLists(ORVEntAttribute& block, h5::DatasetReader in) {
  if (block.m_entid) in.integers(disk::entid, block.m_entidType, block.m_entid, {block.m_nent});
  if (block.m_length != 0 && block.m_title) {
    in.texts(disk::title, block.m_length, block.m_title, block.m_nent);
    if (in.ok()) StripTitles(block.m_title, block.m_nent, block.m_length);
  }
  if (block.m_nuid != 0 && in.wants(disk::uid, block.m_uid)) {
    in.integers(disk::uid, block.m_uidType, block.m_uid, {block.m_nent, block.m_nuid});
  }
  return in.status();
}

}  // namespace

int ORVEntAttribute::ReadData(hid_t data, int mode) {
  IOH5Reader* reader = GetH5Reader();
  if (!reader) return kFail;
  return h5::Entry(kFail, [&] {
    int status = kFail;
    if (mode & ORV_READ_DATA) {
      status = ReadLists(*this, h5::DatasetReader(reader, data));
      if (status != kOk) return status;
    }
    if (!(mode & ORV_READ_DATA_INFO)) return status;
    return QueryTypes(*reader, data, {{disk::entid, &m_entidType}, {disk::uid, &m_uidType}});
  });
}

int ORVEntAttribute::ReadIndex(hid_t index, int mode) {
  if (m_nindex < 1) return kFail;
  return ReadIndexComm(index, static_cast<hsize_t>(m_nindex), 0, mode, &m_indexidentType, m_indexident, &m_indexvalType,
                       m_indexval);
}

// ---- Walks over the states

int ORVEntAttribute::ReadBlockOver(const char* path, int stages, ORVIterationCallBack action, int first, int last,
                                   int step, const char* /*name*/) {
  if (!path || !action || Content(m_etyp).empty()) return kFail;
  return h5::Entry(kFail, [&] {
    char group[disk::kTextWidth];
    GetGroupName(group);
    const std::string own = std::string("./") + group + "/" + std::string(Content(m_etyp));
    return ORVBlock::IterateBlockOver(path, stages, action, first, last, step, own.c_str(), 0);
  });
}

int ORVEntAttribute::IterateBlockOver(const char* path, int stages, ORVIterationCallBack action, int first, int last,
                                      int step, const char* /*name*/, int reverse) {
  if (!path || !action) return kFail;
  return h5::Entry(kFail, [&] {
    char group[disk::kTextWidth];
    GetGroupName(group);
    const std::string all = std::string("./") + group;
    return ORVBlock::IterateBlockOver(path, stages, action, first, last, step, all.c_str(), reverse);
  });
}
