// Lists of names beside the files that are known to be sound: they hold as long as those do.

#include "h5/remembered_names.h"

#include <algorithm>
#include <utility>

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
  std::vector<std::string> names = LinkNames(group);
  if (!snapshot->IsPresent() || snapshot->stamp() != stamp) {
    return std::make_shared<const std::vector<std::string>>(std::move(names));
  }
  known.RememberNames(stamp, std::move(names));
  return known.FindNames(stamp);
}

/// The file as the driver writes it; null when it is not open for writing.
WrittenFile* WrittenFileOf(hid_t file) {
  void* place = nullptr;
  if (IsIndexed(file) || H5Fget_vfd_handle(file, H5P_DEFAULT, &place) < 0) return nullptr;
  return FindWrittenFile(place);
}

}  // namespace

StatesOfWriter::StatesOfWriter(hid_t file, hid_t section) : section_(section) {
  WrittenFile* written = WrittenFileOf(file);
  StateNames* names = written ? written->state_names() : nullptr;
  if (!names) return;
  if (!names->has_value()) List(*names);
  if (names->has_value()) names_ = names;
}

void StatesOfWriter::List(StateNames& names) const {
  std::vector<std::string> listed = LinkNames(section_);
  if (static_cast<hssize_t>(listed.size()) == CountLinks(section_)) names = std::move(listed);
}

hssize_t StatesOfWriter::count() const {
  return names_ ? static_cast<hssize_t>((*names_)->size()) : CountLinks(section_);
}

std::string StatesOfWriter::Name(hsize_t position) const {
  if (!names_) return LinkName(section_, position);
  const std::string& name = (**names_)[position];
  return name.size() < disk::kNameWidth ? name : std::string();
}

Group StatesOfWriter::Make(const std::string& name) {
  // Until it is made, nobody knows.
  std::vector<std::string> names = names_ ? *std::exchange(*names_, std::nullopt) : std::vector<std::string>();
  Group made = OpenOrCreateGroup(section_, name.c_str());
  if (!names_ || !made) return made;
  const auto place = std::ranges::lower_bound(names, name);
  if (place == names.end() || *place != name) names.insert(place, name);
  *names_ = std::move(names);
  return made;
}

std::string LinkNameAt(hid_t file, hid_t group, hsize_t position) {
  const auto names = NamesOf(file, group);
  if (!names) return LinkName(group, position);
  const bool is_there = position < names->size() && (*names)[position].size() < disk::kNameWidth;
  return is_there ? (*names)[position] : std::string();
}

}  // namespace orvio::h5
