// Opening and making of files, groups and datasets under one set of rules.

#include "h5/file_access.h"

#include <sys/stat.h>

#include "filer/process_state.h"
#include "h5/status.h"

namespace orvio::h5 {
namespace {

/// A result file must not make its reader open another file.
herr_t RefuseExternalLink(const char*, const char*, const char*, const char*, unsigned*, hid_t, void*) { return -1; }

/// Whether a cached id still is the list that was made. A host may have closed HDF5 in between: its ids begin anew
/// then, and the same number may be any other list.
bool IsOurs(hid_t cached, hid_t list_class) {
  H5L_elink_traverse_t callback = nullptr;
  void* data = nullptr;
  return cached > 0 && H5Iget_type(cached) == H5I_GENPROP_LST && H5Pisa_class(cached, list_class) > 0 &&
         H5Pget_elink_cb(cached, &callback, &data) >= 0 && callback == RefuseExternalLink;
}

hid_t AccessList(hid_t& cached, hid_t list_class) {
  if (IsOurs(cached, list_class)) return cached;
  cached = H5Pcreate(list_class);
  if (cached > 0 && H5Pset_elink_cb(cached, RefuseExternalLink, nullptr) < 0) {
    PropertyList dropped(std::exchange(cached, H5I_INVALID_HID));
  }
  return cached;
}

hid_t GroupAccess() { return AccessList(process().group_access, H5P_GROUP_ACCESS); }

hid_t DatasetAccess() { return AccessList(process().dataset_access, H5P_DATASET_ACCESS); }

bool IsRegularFile(const char* name) {
  struct stat info = {};
  return stat(name, &info) == 0 && S_ISREG(info.st_mode);
}

/// Looks at the creation list before anything else is asked of the dataset: a virtual one opens its sources as
/// soon as its extents are wanted.
bool HoldsItsOwnData(hid_t dataset) {
  const PropertyList list(H5Dget_create_plist(dataset));
  if (!list || H5Pget_external_count(list.get()) != 0) return false;
  const H5D_layout_t layout = H5Pget_layout(list.get());
  return layout == H5D_COMPACT || layout == H5D_CONTIGUOUS || layout == H5D_CHUNKED;
}

}  // namespace

File OpenFile(const char* name, unsigned flags) {
  if (!IsRegularFile(name)) return File();
  return File(H5Fopen(name, flags, H5P_DEFAULT));
}

File CreateFile(const char* name) {
  if (FileExists(name) && !IsRegularFile(name)) return File();
  return File(H5Fcreate(name, H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT));
}

bool IsHdf5File(const char* name) { return IsRegularFile(name) && H5Fis_accessible(name, H5P_DEFAULT) > 0; }

bool FileExists(const char* name) {
  struct stat info = {};
  return lstat(name, &info) == 0;
}

Group OpenGroup(hid_t loc, const char* name, hid_t access) {
  return Group(H5Gopen2(loc, name, access > 0 ? access : GroupAccess()));
}

Object OpenObject(hid_t loc, const char* name, hid_t access) {
  return Object(H5Oopen(loc, name, access > 0 ? access : GroupAccess()));
}

Dataset OpenDataset(hid_t loc, const char* name) {
  Dataset dataset(H5Dopen2(loc, name, DatasetAccess()));
  if (dataset && !HoldsItsOwnData(dataset.get())) dataset.reset();
  return dataset;
}

Group CreateGroup(hid_t loc, const char* name) {
  return Group(H5Gcreate2(loc, name, H5P_DEFAULT, H5P_DEFAULT, GroupAccess()));
}

Group OpenOrCreateGroup(hid_t loc, const char* name) {
  return LinkExists(loc, name) ? OpenGroup(loc, name) : CreateGroup(loc, name);
}

bool LinkExists(hid_t loc, const char* name) { return H5Lexists(loc, name, GroupAccess()) > 0; }

std::string NameOf(hid_t object) {
  char name[disk::kPathWidth] = {};
  const ssize_t length = H5Iget_name(object, name, sizeof name);
  if (length < 0 || static_cast<size_t>(length) >= sizeof name) return {};
  return name;
}

hssize_t CountLinks(hid_t group) {
  H5G_info_t info = {};
  return H5Gget_info(group, &info) < 0 ? -1 : static_cast<hssize_t>(info.nlinks);
}

std::string LinkName(hid_t group, hsize_t index, size_t width) {
  std::string name(width, '\0');
  const ssize_t length =
      H5Lget_name_by_idx(group, ".", H5_INDEX_NAME, H5_ITER_INC, index, name.data(), width, GroupAccess());
  if (length < 0 || static_cast<size_t>(length) >= width) return {};
  name.resize(static_cast<size_t>(length));
  return name;
}

size_t LinkNameLength(hid_t group, hsize_t index) {
  const ssize_t length = H5Lget_name_by_idx(group, ".", H5_INDEX_NAME, H5_ITER_INC, index, nullptr, 0, GroupAccess());
  return length < 0 ? 0 : static_cast<size_t>(length);
}

int WriteFile::Finish(int status) {
  const bool flushed = file_ && H5Fflush(file_.get(), H5F_SCOPE_GLOBAL) >= 0;
  const bool closed = file_.Close();
  if (status != kOk) return status;
  return flushed && closed ? kOk : Fail("File::\n\t changes could not be written to the disk");
}

}  // namespace orvio::h5
