// Soft links inside a file.

#include "h5/soft_link.h"

#include "h5/disk_names.h"
#include "h5/file_access.h"
#include "h5/status.h"

namespace orvio::h5 {

File FileOf(hid_t object) { return File(H5Iget_file_id(object)); }

std::string SoftLinkTarget(hid_t loc, const char* name) {
  H5L_info2_t info = {};
  if (!LinkExists(loc, name) || H5Lget_info2(loc, name, &info, GroupAccess()) < 0) return {};
  if (info.type != H5L_TYPE_SOFT || info.u.val_size >= disk::kPathWidth) return {};
  char target[disk::kPathWidth] = {};
  return H5Lget_val(loc, name, target, sizeof target - 1, GroupAccess()) < 0 ? std::string() : std::string(target);
}

int CreateSoftLink(hid_t loc, const char* name, const std::string& target) {
  return H5Lcreate_soft(target.c_str(), loc, name, H5P_DEFAULT, H5P_DEFAULT) < 0 ? kFail : kOk;
}

int DeleteLink(hid_t loc, const char* name) { return H5Ldelete(loc, name, H5P_DEFAULT) < 0 ? kFail : kOk; }

}  // namespace orvio::h5
