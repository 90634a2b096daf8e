// The memory of files that were looked at.

#include "h5/checked_files.h"

namespace orvio::h5 {
namespace {

/// Files that are remembered. A process that opens more begins anew.
constexpr size_t kMostFiles = 1024;

/// The clock that file systems take their times from moves in steps of some milliseconds.
constexpr double kClockStep = 0.05;

}  // namespace

FileStamp::FileStamp(const struct stat& info)
    : device(info.st_dev),
      inode(info.st_ino),
      size(info.st_size),
      modified(info.st_mtim.tv_sec, info.st_mtim.tv_nsec),
      changed(info.st_ctim.tv_sec, info.st_ctim.tv_nsec) {}

bool CheckedFiles::IsSound(const FileStamp& stamp) const {
  const auto found = sound_.find(KeyOf(stamp));
  return found != sound_.end() && found->second == stamp;
}

void CheckedFiles::RememberSeen(const FileStamp& stamp) {
  timespec now = {};
  if (clock_gettime(CLOCK_REALTIME, &now) != 0) return;
  const auto seconds = static_cast<double>(now.tv_sec - stamp.changed.first);
  const double age = seconds + 1e-9 * static_cast<double>(now.tv_nsec - stamp.changed.second);
  if (age > kClockStep) Remember(stamp);
}

void CheckedFiles::Remember(const FileStamp& stamp) {
  if (sound_.size() >= kMostFiles) sound_.clear();
  sound_.insert_or_assign(KeyOf(stamp), stamp);
}

void CheckedFiles::EndWriting(const FileStamp& stamp) {
  const auto found = writing_.find(KeyOf(stamp));
  if (found != writing_.end() && --found->second <= 0) writing_.erase(found);
}

}  // namespace orvio::h5
