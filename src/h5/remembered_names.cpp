// Lists of names beside the files that are known to be sound: they hold as long as those do.

#include "h5/remembered_names.h"

#include <vector>

#include "h5/checked_files.h"
#include "h5/disk_file.h"
#include "h5/file_access.h"
#include "h5/held_snapshots.h"

namespace orvio::h5 {
namespace {

/// Null when nothing may be remembered of the file: it was changed a moment ago, or is not looked at.
std::shared_ptr<const std::vector<std::string>> NamesOf(hid_t file, hid_t group) {
  void* place = nullptr;
  if (IsIndexed(file) || H5Fget_vfd_handle(file, H5P_DEFAULT, &place) < 0) return nullptr;
  const auto snapshot = FindHeldSnapshot(place);
  if (!snapshot || !snapshot->IsPresent()) return nullptr;
  const FileStamp stamp = snapshot->stamp();
  CheckedFiles& known = KnownFiles();
  if (!known.IsSound(stamp)) return nullptr;
  if (auto names = known.FindNames(stamp)) return names;
  auto names = std::make_shared<const std::vector<std::string>>(LinkNames(group));
  if (snapshot->IsPresent() && snapshot->stamp() == stamp) known.RememberNames(stamp, names);
  return names;
}

}  // namespace

std::string LinkNameAt(hid_t file, hid_t group, hsize_t position) {
  const auto names = NamesOf(file, group);
  if (!names) return LinkName(group, position);
  const bool is_there = position < names->size() && (*names)[position].size() < disk::kNameWidth;
  return is_there ? (*names)[position] : std::string();
}

}  // namespace orvio::h5
