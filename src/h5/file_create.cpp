// Files for writing: opening, making and the group skeleton of a new one.

#include <algorithm>
#include <cstring>
#include <string>

#include "filer/process_state.h"
#include "filer/versions.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/file_header.h"
#include "h5/group_paths.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"

namespace orvio::h5 {
namespace {

/// Append never truncates: what cannot be opened may be a file that another process holds, or one that is damaged.
File OpenForWriting(const char* name, int mode) {
  if (mode == ORV_FILE_APPEND && FileExists(name)) return OpenFile(name, H5F_ACC_RDWR);
  return CreateFile(name);
}

int WriteOpenFile(const char* name, int mode, hid_t* file) {
  *file = H5I_INVALID_HID;
  if (mode != ORV_FILE_CREATE && mode != ORV_FILE_APPEND) return kFail;
  *file = OpenForWriting(name, mode).release();
  return *file < 0 ? kFileOpenError : kOk;
}

/// The groups of the constant section in the order in which every writer makes them.
bool CreateConstantGroups(hid_t constant, int version) {
  const bool single = version < ORV_VERSION_1_0 || version >= kFirstSingleLayoutVersion;
  const char* variable_group = single ? disk::variable : disk::variables;
  for (const char* name :
       {disk::connectivities, disk::collector, variable_group, disk::indices, disk::attributes, disk::text}) {
    if (!CreateGroup(constant, name)) return false;
  }
  return true;
}

bool CreateVersionGroups(hid_t constant, hid_t system, int version) {
  if (version >= ORV_VERSION_1_0 && version < kFirstSingleLayoutVersion) {
    return CreateGroup(system, disk::data) && CreateGroup(system, disk::header);
  }
  if (!CreateGroup(constant, disk::variablegroup)) return false;
  return version <= ORV_VERSION_2_0 || CreateGroup(constant, disk::identifiers);
}

bool WriteHeader(hid_t post, int version) {
  const Group group = CreateGroup(post, disk::orvheader);
  const FileHeader header = ComposeHeader(VersionOfNumber(version));
  return group && OH5Write_CHAR(group.get(), disk::orvheader, 0, nullptr, sizeof header.bytes, header.bytes) == kOk;
}

int CreateSkeleton(hid_t file) {
  if (LinkExists(file, disk::post)) return kFail;
  const int version = process().g_nWriterVersion;
  const Group post = CreateGroup(file, disk::post);
  const Group constant = post ? CreateGroup(post.get(), disk::constant) : Group();
  const Group system = constant ? CreateGroup(constant.get(), disk::system_) : Group();
  const bool made = system && CreateVersionGroups(constant.get(), system.get(), version) &&
                    CreateConstantGroups(constant.get(), version) && WriteHeader(post.get(), version) &&
                    CreateGroup(post.get(), disk::singlestate);
  return made ? kOk : kFail;
}

}  // namespace
}  // namespace orvio::h5

using namespace orvio;  // the exported functions below only forward

int OH5WriteOpenFile(const char* name, int mode, hid_t* file) {
  if (!name || !file) return kFail;
  return h5::Entry(kFail, [&] { return h5::WriteOpenFile(name, mode, file); });
}

int OH5WriteCloseFile(hid_t file) {
  if (file < 0) return kFail;
  return h5::Entry(kFail, [&] {
    h5::File owned(file);
    return h5::CloseFile(owned) ? kOk : kFail;
  });
}

int OH5CreateSkeleton(hid_t file) {
  return h5::Entry(kFail, [&] { return h5::CreateSkeleton(file); });
}
