#pragma once

// Which files this process has looked at, and which it is writing.

#include <sys/stat.h>
#include <sys/types.h>

#include <ctime>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "structure/catalogue.h"

namespace orvio::h5 {

/// What tells one content of a file from another without reading it.
struct FileStamp {
  explicit FileStamp(const struct stat& info);
  bool operator==(const FileStamp&) const = default;

  dev_t device;
  ino_t inode;
  off_t size;
  std::pair<time_t, long> modified;
  std::pair<time_t, long> changed;
};

/// Files whose structure is known to be sound as long as their stamps stay, and files that are open for writing: what
/// lies on disk of those is no whole file.
class CheckedFiles {
 public:
  bool IsSound(const FileStamp& stamp) const;
  /// A file that was changed a moment ago is not remembered: one more change may come without another time.
  void RememberSeen(const FileStamp& stamp);
  /// The same for a file that was sound and then written by ourselves.
  void RememberWritten(const FileStamp& stamp) { Remember(stamp); }

  /// Whether a catalogue of a sound file is worth making: one that is opened again and again stays as it is.
  bool WantsCatalogue(const FileStamp& stamp);
  void RememberCatalogue(const FileStamp& stamp, std::unique_ptr<const structure::Catalogue> catalogue);
  /// Null when there is none of the file as it is.
  std::shared_ptr<const structure::Catalogue> FindCatalogue(const FileStamp& stamp) const;

  /// The same for the names of its states.
  void RememberNames(const FileStamp& stamp, std::vector<std::string> names);
  std::shared_ptr<const std::vector<std::string>> FindNames(const FileStamp& stamp) const;
  /// The same, for one who is going to change them.
  std::optional<std::vector<std::string>> TakeNames(const FileStamp& stamp);

  bool IsBeingWritten(const FileStamp& stamp) const { return writing_.contains(KeyOf(stamp)); }
  void BeginWriting(const FileStamp& stamp) { ++writing_[KeyOf(stamp)]; }
  void EndWriting(const FileStamp& stamp);

 private:
  using Key = std::pair<dev_t, ino_t>;

  static Key KeyOf(const FileStamp& stamp) { return {stamp.device, stamp.inode}; }
  void Remember(const FileStamp& stamp);

  struct Sound {
    FileStamp stamp;
    int opens = 0;  ///< without a catalogue
    std::shared_ptr<const structure::Catalogue> catalogue = nullptr;
    std::shared_ptr<std::vector<std::string>> names = nullptr;
  };
  Sound* Find(const FileStamp& stamp);
  void ForgetCatalogues();

  std::map<Key, Sound> sound_;
  std::size_t catalogue_bytes_ = 0;  ///< memory that all catalogues take
  std::map<Key, int> writing_;
};

/// Whether one more change of the file would give it another time: the clock of files moves in steps.
bool IsSettled(const FileStamp& stamp);

/// Those of the process.
CheckedFiles& KnownFiles();

}  // namespace orvio::h5
