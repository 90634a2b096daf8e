// Closing of left-over objects, and reading of link values.

#include "h5/open_objects.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/file_access.h"
#include "h5/handle.h"
#include "h5/indexed_file.h"
#include "orvio/oh5_io.h"

namespace orvio::h5 {
namespace {

constexpr unsigned kAnyObject = H5F_OBJ_DATASET | H5F_OBJ_GROUP | H5F_OBJ_DATATYPE | H5F_OBJ_ATTR | H5F_OBJ_LOCAL;

/// Larger link values are no path that the library could have written.
constexpr size_t kMaxLinkValue = 64 * 1024;

void CloseAny(hid_t id) {
  // H5Oclose refuses the ids of attributes, and the file would stay open.
  if (H5Iget_type(id) == H5I_ATTR) {
    Attribute closed(id);
  } else {
    Object closed(id);
  }
}

}  // namespace

void CloseLocalObjects(hid_t file) {
  const ssize_t count = H5Fget_obj_count(file, kAnyObject);
  if (count <= 0) return;
  std::vector<hid_t> ids(static_cast<size_t>(count));
  const ssize_t found = H5Fget_obj_ids(file, kAnyObject, ids.size(), ids.data());
  ids.resize(found < 0 ? 0 : std::min(ids.size(), static_cast<size_t>(found)));
  for (const hid_t id : ids) {
    if (id != file) CloseAny(id);
  }
}

bool ReadLinkTarget(hid_t loc, const char* name, const H5L_info1_t& info, std::string& target, std::string& file) {
  const bool external = info.type == H5L_TYPE_EXTERNAL;
  if (info.type != H5L_TYPE_SOFT && !external) return false;
  if (info.u.val_size == 0 || info.u.val_size > kMaxLinkValue) return false;
  std::vector<char> value(info.u.val_size + 1, '\0');
  if (H5Lget_val(loc, name, value.data(), info.u.val_size, GroupAccess()) < 0) return false;
  if (!external) {
    target = value.data();
    return true;
  }
  unsigned flags = 0;
  const char* file_name = nullptr;
  const char* path = nullptr;
  if (H5Lunpack_elink_val(value.data(), info.u.val_size, &flags, &file_name, &path) < 0) return false;
  target = path;
  file = file_name;
  return true;
}

}  // namespace orvio::h5

void OH5CloseOpenObjects(hid_t file) {
  if (file == -1) return;
  orvio::h5::EntryVoid([&] { orvio::h5::CloseLocalObjects(file); });
}

void OH5GetLinkTarget(hid_t loc, const char* name, char* buffer, const H5L_info1_t* info) {
  using orvio::disk::kPathWidth;
  if (!buffer) return;
  buffer[0] = '\0';
  orvio::h5::EntryVoid([&] {
    H5L_info1_t fetched = {};
    const bool is_asked = !info && name;
    const orvio::h5::Hdf5Location by_hdf5(is_asked ? loc : H5I_INVALID_HID);
    if (is_asked && H5Lget_info1(by_hdf5.get(), name, &fetched, orvio::h5::GroupAccess()) < 0) return;
    const H5L_info1_t* link = info ? info : name ? &fetched : nullptr;
    std::string target;
    std::string file;
    if (!link || link->type == H5L_TYPE_HARD) {
      target = orvio::h5::NameOf(loc);  // one that is too long is refused: its beginning is another object
    } else if (!name || link->u.val_size >= kPathWidth || !orvio::h5::ReadLinkTarget(loc, name, *link, target, file)) {
      return;
    }
    if (target.size() < kPathWidth) std::memcpy(buffer, target.c_str(), target.size() + 1);
  });
}
