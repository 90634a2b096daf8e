// Carrying a block's path over to another state: the leading parts of a real group replace those of the stored
// path, and the tail, which is the block's own naming, stays.

#include <string>
#include <string_view>
#include <vector>

#include "block/block_schema.h"
#include "block/reader_lease.h"
#include "filer/process_state.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"

using namespace orvio;

namespace {

/// Takes the first part off a path; empty when there is none. Empty parts, such as the one in front of a leading slash, are
/// dropped.
std::string_view TakePart(std::string_view& path) {
  path.remove_prefix(std::min(path.find_first_not_of('/'), path.size()));
  const std::string_view part = path.substr(0, path.find('/'));
  path.remove_prefix(part.size());
  return part;
}

std::vector<std::string_view> Split(std::string_view path) {
  std::vector<std::string_view> parts;
  for (std::string_view part = TakePart(path); !part.empty(); part = TakePart(path)) parts.push_back(part);
  return parts;
}

/// What a stored path has behind the parts that a real one takes the place of; empty when that is nothing.
std::string_view BehindReal(std::string_view stored, std::string_view real) {
  if (TakePart(real).empty()) return {};
  do {
    (void)TakePart(stored);
  } while (!TakePart(real).empty());
  stored.remove_prefix(std::min(stored.find_first_not_of('/'), stored.size()));
  return stored;
}

}  // namespace

int ORVBlock::MergeSchemaPath(const std::string& schema, const std::string& actual, std::string& out) {
  return h5::Entry(kFail, [&] {
    const std::vector<std::string_view> stored = Split(schema);
    const std::vector<std::string_view> real = Split(actual);
    if (real.empty()) return kOk;
    std::string merged;  // `out` may be one of the inputs
    for (size_t i = 0; i < stored.size(); ++i) merged.append("/").append(i < real.size() ? real[i] : stored[i]);
    out = std::move(merged);
    return kOk;
  });
}

int ORVBlock::ConstructSchemaPath(hid_t group, std::string& out) {
  if (group < 0) return kFail;
  return h5::Entry(kFail, [&] {
    const std::string name = h5::NameOf(group);
    return name.empty() ? kFail : MergeSchemaPath(m_BlkPath, name, out);
  });
}

hid_t ORVBlock::GetBlkGrpUsingSchemaPath(hid_t file, hid_t group) {
  return h5::Entry<hid_t>(H5I_INVALID_HID, [&]() -> hid_t {
    const bool is_there = group >= 0 && h5::IsOpenIn(file, group);
    const std::string_view rest = is_there ? BehindReal(m_BlkPath, h5::NameOf(group)) : std::string_view();
    // The path leads through the group: there is no need to find it again.
    if (!rest.empty()) return h5::OpenGroup(group, std::string(rest).c_str()).release();
    std::string path;
    if (ConstructSchemaPath(group, path) != kOk || path.empty()) return H5I_INVALID_HID;
    return h5::OpenGroup(file, path.c_str()).release();
  });
}

namespace orvio {

h5::Group OpenBySchemaPath(ORVBlock& block, hid_t file, int state) {
  const h5::Group type_group(ORVBlockPathResolver(&block).OpenTypeGroup(state));
  return type_group ? h5::Group(ORVBlockAccess::OpenBySchemaPath(block, file, type_group.get())) : h5::Group();
}

}  // namespace orvio

hid_t ORVBlock::GetBlkGrpUsingSchemaPathFromState(hid_t file, int state) {
  // QUIRK: failure is 1, a value that looks like an id. Hosts compare with it; the library's own code asks
  // OpenBySchemaPath, which tells. Pinned by BlockSchema.FailureAnswersOne.
  constexpr hid_t kFailedId = 1;
  if (!m_pH5Reader) return kFailedId;
  return h5::Entry(kFailedId, [&] {
    const hid_t group = OpenBySchemaPath(*this, file, state).release();
    return group > 0 ? group : kFailedId;
  });
}

bool ORVBlock::IsSchemaPathExist(const char* file, const std::string& path, int state) {
  hid_t id = H5I_INVALID_HID;
  const h5::Group group(GetBlkGrpUsingSchemaPath(file, path, &id, state));
  const h5::File opened(id);
  return static_cast<bool>(group);
}

hid_t ORVBlock::GetBlkGrpUsingSchemaPath(const char* file, const std::string& path, hid_t* fileId, int state) {
  *fileId = H5I_INVALID_HID;
  if (state < 1) return H5I_INVALID_HID;
  return h5::Entry<hid_t>(H5I_INVALID_HID, [&]() -> hid_t {
    hid_t ids[3];
    if (OH5OpenStateGroup(file, state - 1, &ids[0], &ids[1], &ids[2], false) != kOk) return H5I_INVALID_HID;
    h5::File opened(ids[0]);
    const h5::Group section(ids[1]);
    const h5::Group state_group(ids[2]);
    std::string merged;
    if (MergeSchemaPath(path, h5::NameOf(state_group.get()), merged) != kOk) return H5I_INVALID_HID;
    h5::Group group = h5::OpenGroup(opened.get(), merged.c_str());
    if (!group) return H5I_INVALID_HID;
    *fileId = opened.release();
    return group.release();
  });
}

hid_t ORVBlock::GetBlkGrpUsingBlkPath(const char* file, hid_t& fileId) {
  return GetBlkGrpUsingAbsloutePath(file, fileId, m_BlkPath);
}

hid_t ORVBlock::GetBlkGrpUsingAbsloutePath(const char* file, hid_t& fileId, const std::string& path) {
  fileId = H5I_INVALID_HID;
  if (!file || path.empty()) return H5I_INVALID_HID;
  return h5::Entry<hid_t>(H5I_INVALID_HID, [&]() -> hid_t {
    h5::File opened = h5::OpenFile(file, process().g_nReadAccess);
    process().g_hLastFile = opened.get();
    h5::Group group = opened ? h5::OpenGroup(opened.get(), path.c_str()) : h5::Group();
    if (!group) return H5I_INVALID_HID;
    fileId = opened.release();
    return group.release();
  });
}

int ORVBlock::ReadNumIndex(const char* file, int state, int& count) {
  count = 0;
  return h5::Entry(kFail, [&] {
    const ReaderLease reader(*this, file);
    if (!reader) return kFail;
    const h5::Group group = OpenBySchemaPath(*this, reader->GetFileId(), state);
    if (!group) return kFail;
    const bool split = GetBlkVersion() == ORV_BLK_VERSION_SPLIT;
    const h5::Group header = split ? h5::OpenGroup(group.get(), disk::header) : h5::Group();
    std::int64_t stored = 0;
    const hid_t place = split ? header.get() : group.get();
    if (OH5Read_ATTRIBUTE(place, disk::nindex, 0, nullptr, ORV_LONG, &stored) != kOk) return kFail;
    count = static_cast<int>(stored);  // the low 32 bits
    return kOk;
  });
}
