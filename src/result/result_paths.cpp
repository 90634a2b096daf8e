// Where a result block stands in a file: below its section or state group, in a path made of its series, type group,
// entity type, variable and group name.

#include <algorithm>
#include <cstring>
#include <initializer_list>
#include <string>

#include "block/block_keys.h"
#include "block/file_in_use_by.h"
#include "block/reader_lease.h"
#include "block/walk.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/oh5_io.h"
#include "result/result_kinds.h"

using namespace orvio;

namespace {

/// Joins what is not empty.
std::string Joined(std::string_view root, std::initializer_list<std::string_view> parts) {
  std::string path(root);
  for (const std::string_view part : parts) {
    if (part.empty()) continue;
    if (!path.empty()) path += '/';
    path += part;
  }
  return path;
}

/// The group in which a walk starts, relative to the section or state group; empty for that group itself.
std::string StartOfWalk(const ORVResult& block, const ResultKind& kind) {
  const char* type_group = FindBlockKey(kind.key)->name;
  const std::string_view type = Content(block.m_etyp);
  const std::string_view variable = Content(block.m_etypvar);
  // QUIRK: the walk for one entity type of a multi-state kind starts without the type group and the series, where
  // writers of this format put no blocks. It finds those of writers that leave the type group out. Pinned by
  // ResultDiscovery.OfOneTypeOfAMultistateKindLooksBelowTheSectionItself.
  if (kind.IsMultistate()) return type.empty() ? std::string() : Joined({}, {type, variable});
  if (!type.empty()) return Joined({}, {type_group, type, variable});
  return kind.IsSinglestate() ? type_group : "";
}

}  // namespace

int ORVResult::GetResultPath(const _OH5BlockKeyMap* key, char* path) {
  if (!key || !path) return kFail;
  return h5::Entry(kFail, [&] {
    const std::string_view variable = Content(m_etypvar);
    const std::string_view name = Content(m_subBlockName);
    const std::string joined = Joined(
        ".", {Content(m_series), key->name, Content(m_etyp), variable, name == variable ? std::string_view() : name});
    std::memcpy(path, joined.c_str(), joined.size() + 1);
    return kOk;
  });
}

void ORVResult::CreateStatePath(int state, char* path) { OH5BuildStateName(state, path); }

hid_t ORVResult::GetResultGrp(int state) {
  if (!FindResultKind(m_BlkKey)) return H5I_INVALID_HID;
  // Kinds of one state have no place among the multi-state blocks, whatever a negative state means elsewhere.
  return ORVBlockPathResolver(this).OpenStateGroup(std::max(state, 0));
}

hid_t ORVResult::GetResultBlkGrp(const _OH5BlockKeyMap* key, hid_t place) {
  const auto by_stored_path = [&] { return GetBlkGrpUsingSchemaPath(GetH5Reader()->GetFileId(), place); };
  const bool named = *m_etypvar || *m_subBlockName;
  if (GetBlkVersion() == ORV_BLK_VERSION_SINGLE || !named) return by_stored_path();
  char path[disk::kPathWidth] = {};
  if (GetResultPath(key, path) != kOk) return H5I_INVALID_HID;
  h5::Group group = h5::OpenGroup(place, path);
  // Names in a header need not be those of the groups that another writer made; the path of a found block is.
  return group ? group.release() : by_stored_path();
}

namespace {

/// All that the place of a block of the library follows from.
std::string PlaceQuestion(ORVResult& block, int state) {
  std::string question = std::to_string(state) + '\n' + std::to_string(block.GetKey()) + '\n' + block.GetBlkPath();
  for (const char* name : {block.m_series, block.m_etyp, block.m_etypvar, block.m_subBlockName}) {
    question.append("\n").append(Content(name));
  }
  return question;
}

}  // namespace

hid_t ORVResult::OpenBlockGroup(int state) {
  if (!GetH5Reader()) return H5I_INVALID_HID;
  return h5::Entry<hid_t>(H5I_INVALID_HID, [&]() -> hid_t {
    const hid_t file = GetH5Reader()->GetFileId();
    const std::string question = IsOwnBlock(*this) ? PlaceQuestion(*this, state) : std::string();
    const hid_t known = question.empty() ? H5I_INVALID_HID : h5::FileInUse::FindGroup(file, question);
    if (known > 0) return known;
    const h5::Group place(GetResultGrp(state));
    h5::Group found(place ? GetResultBlkGrp(FindBlockKey(m_BlkKey), place.get()) : H5I_INVALID_HID);
    if (!question.empty()) h5::FileInUse::RememberGroup(file, question, found.get());
    return found.release();
  });
}

int ORVResult::DiscoverBlock(const char* file, int state, int flags, ORVIterationCallBack action) {
  const ResultKind* kind = FindResultKind(m_BlkKey);
  if (!file || !action || !kind) return kFail;
  return h5::Entry(kFail, [&] {
    const ReaderLease reader(*this, file);
    if (!reader) return kFail;
    h5::Group start(GetResultGrp(state));
    const std::string path = StartOfWalk(*this, *kind);
    if (start && !path.empty()) start = h5::OpenGroup(start.get(), path.c_str());
    if (!start) return kFail;
    WalkGroup(*this, start.get(), action, flags);
    return kOk;
  });
}
