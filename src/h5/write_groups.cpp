// Groups that writes go to: states, the parts of a block and paths of any depth.

#include <string>
#include <string_view>

#include "filer/process_state.h"
#include "filer/versions.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/group_paths.h"
#include "h5/remembered_names.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"

namespace orvio::h5 {
namespace {

/// The state with a 0-based index; the next one is made when `create` is set.
Group OpenState(hid_t file, hid_t section, int index, bool create) {
  StatesOfWriter states(file, section);
  const hssize_t count = states.count();
  if (count < 0 || index < 0) return Group();
  if (index < count) {
    const std::string name = states.Name(static_cast<hsize_t>(index));
    return name.empty() ? Group() : OpenGroup(section, name.c_str());
  }
  // States are found by position, so a gap would give every later state the number of another.
  if (!create || count != index) return Group();
  return states.Make(StateName(index + 1));
}

int OpenStateIn(hid_t file, int index, hid_t* singlestate, hid_t* state, bool create) {
  Group section = OpenGroup(file, GroupPath(kSinglestate).c_str());
  Group found = section ? OpenState(file, section.get(), index, create) : Group();
  if (!found) return kFail;
  *singlestate = section.release();
  *state = found.release();
  return kOk;
}

/// QUIRK: an "index" group that exists is not opened; "data" is, and the index datasets go there. Readers of the
/// split layout find them because other writers of these versions did the same. Pinned by
/// BlockSubGroups.AnExistingIndexGroupLeadsToTheDataGroup.
Group OpenOrCreateIndex(hid_t base) {
  return LinkExists(base, disk::index) ? OpenGroup(base, disk::data) : CreateGroup(base, disk::index);
}

int OpenSplitGroups(hid_t base, int what, hid_t* header, hid_t* data, hid_t* index) {
  Group opened_header = what & ORV_WRITE_HEADER ? OpenOrCreateGroup(base, disk::header) : Group();
  if (what & ORV_WRITE_HEADER && !opened_header) return kFail;
  Group opened_data = what & ORV_WRITE_DATA ? OpenOrCreateGroup(base, disk::data) : Group();
  if (what & ORV_WRITE_DATA && !opened_data) return kFail;
  Group opened_index = what & ORV_WRITE_INDEX ? OpenOrCreateIndex(base) : Group();
  if (what & ORV_WRITE_INDEX && !opened_index) return kFail;
  *header = opened_header.release();
  *data = opened_data.release();
  *index = opened_index.release();
  return kOk;
}

int OpenParts(hid_t base, int what, hid_t* header, hid_t* data, hid_t* index) {
  if (process().g_nWriterVersion < kFirstSingleLayoutVersion) return OpenSplitGroups(base, what, header, data, index);
  Group block = OpenOrCreateGroup(base, disk::orvblock);
  if (!block) return kFail;
  *header = *data = *index = block.release();
  return kOk;
}

int OpenBlockSubGroups(hid_t parent, const char* name, int what, hid_t* base, hid_t* header, hid_t* data,
                       hid_t* index) {
  *base = *header = *data = *index = H5I_INVALID_HID;
  if (!name) {
    *base = parent;
    return OpenParts(parent, what, header, data, index);
  }
  Group group = OpenOrCreateGroup(parent, name);
  if (!group || OpenParts(group.get(), what, header, data, index) != kOk) return kFail;
  *base = group.release();
  return kOk;
}

/// Opens or makes each part of a path from the one before. Empty parts are passed over, and so is the "." that the paths
/// of the fixed groups begin with: no link has that name.
Group OpenChain(hid_t file, std::string_view path) {
  Group last;
  while (!path.empty()) {
    const std::string part(path.substr(0, path.find('/')));
    path.remove_prefix(std::min(part.size() + 1, path.size()));
    if (part.empty() || part == ".") continue;
    last = OpenOrCreateGroup(last ? last.get() : file, part.c_str());
    if (!last) break;
  }
  return last;
}

hid_t OpenGroupChain(const char* name, hid_t* file, const std::string& path) {
  if (path.empty()) return H5I_INVALID_HID;
  File opened = OpenFile(name, process().g_nReadAccess);
  process().g_hLastFile = opened.get();
  Group last = opened ? OpenChain(opened.get(), path) : Group();
  if (!last) return H5I_INVALID_HID;
  *file = opened.release();
  return last.release();
}

int CloseOnce(hid_t header, hid_t data, hid_t index) {
  bool closed = true;
  if (header > 0) closed = Group(header).Close();
  if (data > 0 && data != header) closed = Group(data).Close() && closed;
  if (index > 0 && index != header && index != data) closed = Group(index).Close() && closed;
  return closed ? kOk : kFail;
}

}  // namespace
}  // namespace orvio::h5

using namespace orvio;  // the exported functions below only forward

int OH5OpenStateGroup(const char* name, int index, hid_t* file, hid_t* singlestate, hid_t* state, bool create) {
  if (!file || !singlestate || !state) return kFail;
  *file = *singlestate = *state = H5I_INVALID_HID;
  if (!name) return kFail;
  return h5::Entry(kFail, [&] {
    h5::File opened = h5::OpenFile(name, process().g_nReadAccess);
    process().g_hLastFile = opened.get();
    if (!opened || h5::OpenStateIn(opened.get(), index, singlestate, state, create) != kOk) return kFail;
    *file = opened.release();
    return kOk;
  });
}

int OH5OpenStateGroup(hid_t file, int index, hid_t* singlestate, hid_t* state, bool create) {
  if (!singlestate || !state) return kFail;
  *singlestate = *state = H5I_INVALID_HID;
  return h5::Entry(kFail, [&] { return h5::OpenStateIn(file, index, singlestate, state, create); });
}

int OH5OpenBlockSubGroups(hid_t parent, const char* name, int what, hid_t* base, hid_t* header, hid_t* data,
                          hid_t* index) {
  if (!base || !header || !data || !index) return kFail;
  return h5::Entry(kFail, [&] { return h5::OpenBlockSubGroups(parent, name, what, base, header, data, index); });
}

int OH5CloseBlockSubGroups(hid_t header, hid_t data, hid_t index) {
  return h5::Entry(kFail, [&] { return h5::CloseOnce(header, data, index); });
}

hid_t OH5OpenGroupChain(const char* name, hid_t* file, const std::string& path) {
  if (!file) return H5I_INVALID_HID;
  *file = H5I_INVALID_HID;
  if (!name) return H5I_INVALID_HID;
  return h5::Entry<hid_t>(H5I_INVALID_HID, [&] { return h5::OpenGroupChain(name, file, path); });
}
