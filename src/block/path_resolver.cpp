// Paths and groups of a block whose reader is open: section, state, type group, the block's own levels.

#include <string>
#include <string_view>
#include <typeinfo>

#include "block/block_keys.h"
#include "block/reader_lease.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/remembered_names.h"
#include "h5/status.h"

using namespace orvio;

namespace {

/// Null also without a block.
IOH5Reader* ReaderOf(const ORVBlock* block) { return block ? ORVBlockAccess::Reader(*block) : nullptr; }

bool IsInState(const ORVBlock& block, int state) { return state > 0 && !IsFixedToSection(block.GetKey()); }

/// Type group of a key in the file at hand; null when the key has none.
const char* TypeGroupName(IOH5Reader& reader, std::int64_t key) {
  if (key == kNoKey) return "";
  if (key == kVariableKey) return reader.IsFileMajorAtMost(1) ? disk::variables : disk::variable;
  const _OH5BlockKeyMap* row = FindBlockKey(key);
  return row ? row->name : nullptr;
}

hid_t OpenPath(IOH5Reader& reader, const std::string& path) {
  return reader.OpenGroup(reader.GetFileId(), path.c_str(), H5P_DEFAULT);
}

/// A host's reader has ways of its own.
bool IsOurs(IOH5Reader& reader) { return typeid(reader) == typeid(OH5Reader); }

/// The states of which names are remembered. Hosts may have roots of their own beside this one.
std::string OurStates() { return std::string("/") + disk::post + "/" + disk::singlestate; }

/// Name of the group of a state, which is found by position; empty when there is no such state. `path` leads to `group`.
std::string StateGroupName(IOH5Reader& reader, std::string_view path, const h5::Group& group, int state) {
  if (IsOurs(reader) && path == OurStates()) {
    return h5::LinkNameAt(reader.GetFileId(), group.get(), static_cast<hsize_t>(state - 1));
  }
  std::string name;
  (void)reader.GetChildByIndex(group.get(), state - 1, name, nullptr, H5P_DEFAULT);  // the name tells
  return name;
}

}  // namespace

int ORVBlockPathResolver::AppendSection(std::string& path, int state) {
  if (!m_pBlock) return kFail;
  return h5::Entry(kFail, [&] {
    if (!path.empty()) path += "/";
    path += SectionOf(m_pBlock->GetKey(), state);
    return kOk;
  });
}

int ORVBlockPathResolver::AppendTypeGroup(std::string& path, int state) {
  IOH5Reader* reader = ReaderOf(m_pBlock);
  if (!reader) return kFail;
  return h5::Entry(kFail, [&] {
    const char* type = TypeGroupName(*reader, m_pBlock->GetKey());
    if (!type) return kFail;
    std::string section;
    if (AppendSection(section, state) != kOk) return kFail;
    std::string found = path + "/" + section;
    if (IsInState(*m_pBlock, state)) {
      const h5::Group group(OpenPath(*reader, found));
      const std::string name = group ? StateGroupName(*reader, found, group, state) : std::string();
      if (name.empty()) return kFail;
      found += "/" + name;
    }
    if (*type) found.append("/").append(type);
    path = std::move(found);
    return kOk;
  });
}

hid_t ORVBlockPathResolver::OpenSectionGroup(int state) {
  IOH5Reader* reader = ReaderOf(m_pBlock);
  if (!reader) return H5I_INVALID_HID;
  return h5::Entry<hid_t>(H5I_INVALID_HID, [&]() -> hid_t {
    std::string path;
    std::string section;
    if (reader->GetPostPath(path) != kOk || AppendSection(section, state) != kOk) return H5I_INVALID_HID;
    return OpenPath(*reader, path + "/" + section);
  });
}

hid_t ORVBlockPathResolver::OpenTypeGroup(int state) {
  IOH5Reader* reader = ReaderOf(m_pBlock);
  if (!reader) return H5I_INVALID_HID;
  return h5::Entry<hid_t>(H5I_INVALID_HID, [&]() -> hid_t {
    std::string path;
    if (reader->GetPostPath(path) != kOk || AppendTypeGroup(path, state) != kOk) return H5I_INVALID_HID;
    return OpenPath(*reader, path);
  });
}

hid_t ORVBlockPathResolver::OpenBlockGroupFor(int state) {
  IOH5Reader* reader = ReaderOf(m_pBlock);
  if (!reader) return H5I_INVALID_HID;
  return h5::Entry<hid_t>(H5I_INVALID_HID, [&]() -> hid_t {
    std::string path;
    if (reader->GetPostPath(path) != kOk || AppendTypeGroup(path, state) != kOk) return H5I_INVALID_HID;
    if (m_pBlock->AppendBlockSchema(path) != kOk) return H5I_INVALID_HID;
    return OpenPath(*reader, path);
  });
}

hid_t ORVBlockPathResolver::OpenStateGroup(int state) {
  IOH5Reader* reader = ReaderOf(m_pBlock);
  if (!reader) return H5I_INVALID_HID;
  return h5::Entry<hid_t>(H5I_INVALID_HID, [&]() -> hid_t {
    h5::Group section(OpenSectionGroup(state));
    if (!section || !IsInState(*m_pBlock, state)) return section.release();
    std::string name;
    if (IsOurs(*reader)) {
      name = StateGroupName(*reader, OurStates(), section, state);
      return name.empty() ? H5I_INVALID_HID : reader->OpenGroup(section.get(), name.c_str(), H5P_DEFAULT);
    }
    hid_t child = H5I_INVALID_HID;
    const int status = reader->GetChildByIndex(section.get(), state - 1, name, &child, H5P_DEFAULT);
    return status == kOk ? child : H5I_INVALID_HID;
  });
}

int ORVBlockPathResolver::GetNumStates() {
  IOH5Reader* reader = ReaderOf(m_pBlock);
  if (!reader) return 0;
  return h5::Entry(0, [&] {
    std::string path;
    if (reader->GetPostPath(path) != kOk) return 0;
    const h5::Group section(OpenPath(*reader, path + "/" + disk::singlestate));
    return section ? reader->GetNumLinks(section.get()) : 0;
  });
}
