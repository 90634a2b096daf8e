// The memory of files that were looked at.

#include "h5/checked_files.h"

#include "filer/process_state.h"

namespace orvio::h5 {
namespace {

/// Files that are remembered. A process that opens more begins anew.
constexpr size_t kMostFiles = 1024;

/// Memory that catalogues take together. Behind that they are made anew, those first that are asked for.
constexpr size_t kMostCatalogueBytes = size_t{512} << 20;

}  // namespace

FileStamp::FileStamp(const struct stat& info)
    : device(info.st_dev),
      inode(info.st_ino),
      size(info.st_size),
      modified(info.st_mtim.tv_sec, info.st_mtim.tv_nsec),
      changed(info.st_ctim.tv_sec, info.st_ctim.tv_nsec) {}

bool CheckedFiles::IsSound(const FileStamp& stamp) const {
  const auto found = sound_.find(KeyOf(stamp));
  return found != sound_.end() && found->second.stamp == stamp;
}

bool IsSettled(const FileStamp& stamp) {
  timespec now = {};
  if (clock_gettime(CLOCK_REALTIME, &now) != 0) return false;
  const auto seconds = static_cast<double>(now.tv_sec - stamp.changed.first);
  const double age = seconds + 1e-9 * static_cast<double>(now.tv_nsec - stamp.changed.second);
  return age > process().clock_step;
}

void CheckedFiles::RememberSeen(const FileStamp& stamp) {
  if (IsSettled(stamp)) Remember(stamp);
}

void CheckedFiles::Remember(const FileStamp& stamp) {
  if (sound_.size() >= kMostFiles) {
    sound_.clear();
    catalogue_bytes_ = 0;
  }
  Sound& sound = sound_.try_emplace(KeyOf(stamp), Sound{stamp}).first->second;
  if (sound.stamp == stamp) return;
  if (sound.catalogue) catalogue_bytes_ -= sound.catalogue->MemoryBytes();
  sound = Sound{stamp};
}

CheckedFiles::Sound* CheckedFiles::Find(const FileStamp& stamp) {
  const auto found = sound_.find(KeyOf(stamp));
  return found != sound_.end() && found->second.stamp == stamp ? &found->second : nullptr;
}

bool CheckedFiles::WantsCatalogue(const FileStamp& stamp) {
  constexpr int kOpens = 3;
  Sound* sound = Find(stamp);
  return sound && !sound->catalogue && ++sound->opens == kOpens;
}

void CheckedFiles::ForgetCatalogues() {
  for (auto& [key, sound] : sound_) sound.catalogue.reset();
  catalogue_bytes_ = 0;
}

void CheckedFiles::RememberCatalogue(const FileStamp& stamp, std::unique_ptr<const structure::Catalogue> catalogue) {
  Sound* sound = Find(stamp);
  if (!sound) return;
  const std::size_t bytes = catalogue->MemoryBytes();
  if (catalogue_bytes_ + bytes > kMostCatalogueBytes) ForgetCatalogues();
  sound->catalogue = std::move(catalogue);
  catalogue_bytes_ += bytes;
}

std::shared_ptr<const structure::Catalogue> CheckedFiles::FindCatalogue(const FileStamp& stamp) const {
  const auto found = sound_.find(KeyOf(stamp));
  return found != sound_.end() && found->second.stamp == stamp ? found->second.catalogue : nullptr;
}

void CheckedFiles::RememberNames(const FileStamp& stamp, std::vector<std::string> names) {
  if (Sound* sound = Find(stamp)) sound->names = std::make_shared<std::vector<std::string>>(std::move(names));
}

std::shared_ptr<const std::vector<std::string>> CheckedFiles::FindNames(const FileStamp& stamp) const {
  const auto found = sound_.find(KeyOf(stamp));
  return found != sound_.end() && found->second.stamp == stamp ? found->second.names : nullptr;
}

std::optional<std::vector<std::string>> CheckedFiles::TakeNames(const FileStamp& stamp) {
  Sound* sound = Find(stamp);
  const auto names = sound ? std::move(sound->names) : nullptr;
  if (!names) return std::nullopt;
  return names.use_count() == 1 ? std::move(*names) : *names;
}

CheckedFiles& KnownFiles() {
  CheckedFiles*& known = process().checked_files;
  if (!known) known = new CheckedFiles;  // lives as long as the process, as HDF5 may close files at its very end
  return *known;
}

void CheckedFiles::EndWriting(const FileStamp& stamp) {
  const auto found = writing_.find(KeyOf(stamp));
  if (found != writing_.end() && --found->second <= 0) writing_.erase(found);
}

}  // namespace orvio::h5
