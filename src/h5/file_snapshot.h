#pragma once

// A file as a reader sees it: in one state, whatever writers do meanwhile.

#include <array>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "h5/checked_files.h"
#include "h5/journal.h"
#include "structure/byte_source.h"

namespace orvio::h5 {

/// Shows the file as it was when the snapshot was taken. Before a writer overwrites anything, what was there is in the
/// journal: whoever reads first and then finds the file unchanged has read the old bytes, and whoever finds it changed
/// takes the pages that the journal holds from there. A journal that a crash left is looked through in the same way.
class FileSnapshot : public structure::ByteSource {
 public:
  FileSnapshot(Descriptor file, std::string path, const struct stat& info);

  /// Takes the snapshot: from here on others may change the file. False when the disk fails.
  [[nodiscard]] bool Take();

  /// Lets writers forget it until Resume. False when it has followed a change, and is of no more use then.
  [[nodiscard]] bool Rest();
  /// Goes on when the file of that name is still the same, in the same state.
  [[nodiscard]] bool Resume(const char* name);

  int* place() { return file_.place(); }
  /// As the file was found when somebody looked last.
  const FileStamp& stamp() const { return stamp_; }
  /// Whether what it shows is what the file holds, as far as anybody has looked.
  bool IsPresent() const { return old_pages_.empty() && !lost_; }

  std::uint64_t Size() const override { return size_; }
  bool Read(std::uint64_t offset, void* buffer, std::size_t count) override;
  /// The same for bytes that nobody will ask for again: none of their neighbours are kept.
  bool ReadOnce(std::uint64_t offset, void* buffer, std::size_t count);

 private:
  /// Where an old page is.
  struct OldPage {
    std::size_t journal;
    std::uint64_t at;
    std::uint64_t hash;
  };
  struct KeptPage {
    PageNumber number = ~PageNumber{0};
    PageBytes bytes;
  };
  static constexpr std::size_t kKept = 32;
  using KeptPages = std::array<KeptPage, kKept>;

  bool ReadSmall(std::uint64_t offset, std::uint8_t* bytes, std::size_t count);
  bool ReadAsWas(std::uint64_t offset, std::uint8_t* bytes, std::size_t count);
  void FindContentsEnd();
  const KeptPage* Load(PageNumber number);
  bool HasChanged();
  bool Stat();
  bool FollowChange();
  bool FollowJournal();
  bool OpenNextJournal();
  void TakeRecord(const JournalReader::Record& record);
  std::int64_t Overlay(std::uint64_t offset, std::uint8_t* bytes, std::size_t count, std::int64_t got);

  Descriptor file_;
  std::string path_;
  FileStamp stamp_;
  std::uint64_t size_;                         ///< of what it shows, and of what a writer may have been appending
  std::optional<std::uint64_t> contents_end_;  ///< of what belongs to it, once somebody had to know
  std::vector<JournalReader> journals_;        ///< the last one is followed
  std::uint64_t chain_ = 0;                    ///< of that one; 0: nothing was read from it yet
  std::uint64_t sequence_ = 0;                 ///< of the last change that it shows
  bool announced_ = false;                     ///< writers know of it
  bool lost_ = false;                          ///< what it shows can no longer be put together
  std::unordered_map<PageNumber, OldPage> old_pages_;
  std::unique_ptr<KeptPages> kept_;
};

}  // namespace orvio::h5
