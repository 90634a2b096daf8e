#pragma once

// The journal of a file: what its pages held before they were overwritten, in "<file>-journal".

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "h5/posix_file.h"

namespace orvio::h5 {

constexpr std::size_t kPageSize = 4096;
using PageBytes = std::array<std::uint8_t, kPageSize>;

/// Number of a page of the file: page n begins at byte n * kPageSize.
using PageNumber = std::uint64_t;

std::string JournalPath(const std::string& file);

/// A part of a record: an overwritten page.
struct JournalEntry {
  static constexpr std::size_t kSectors = 8;

  PageNumber number = 0;
  std::uint64_t old_hash = 0;
  std::array<std::uint64_t, kSectors> new_hashes = {};  ///< of what is written over it; see JournalRecord::kOverwrites
};

/// Begins each record of a journal. Entries follow, then the old pages in the same order.
struct JournalRecord {
  enum Kind : std::uint64_t {
    kOverwrites = 1,  ///< pages that are overwritten once, with what the entries tell
    kMany = 2,        ///< pages that may be overwritten several times
    kEnd = 3,         ///< no pages: the change is complete
  };
  static constexpr std::uint64_t kMagic = 0x314c4e4a2d56524fULL;  // "ORV-JNL1"

  std::uint64_t magic = kMagic;
  std::uint64_t chain = 0;     ///< journals that follow each other have the same
  std::uint64_t sequence = 0;  ///< number of the change; counts on in a chain. From 1 if nobody was reading before
  std::uint64_t kind = kOverwrites;
  std::uint64_t old_size = 0;  ///< of the file before the change
  std::uint64_t pages = 0;
  std::uint64_t entries_hash = 0;
  std::uint64_t hash = 0;  ///< of all before

  std::uint64_t Size() const { return sizeof *this + pages * (sizeof(JournalEntry) + kPageSize); }
};

/// A page that is about to be overwritten. `after` is null where it may be overwritten again.
struct ChangedPage {
  PageNumber number;
  const PageBytes* before;
  const PageBytes* after;
};

/// Removes a journal, whole or not. A file of somebody else that has its name stays. False when a journal is still there.
[[nodiscard]] bool RemoveJournal(const std::string& path);

/// Reads a journal as far as it is whole, and on from there when it has grown.
class JournalReader {
 public:
  JournalReader() = default;
  /// Opens the journal of a file. One that is no regular file is none.
  explicit JournalReader(const std::string& path);

  explicit operator bool() const { return static_cast<bool>(file_); }
  /// Whether there is one, or more of it, that cannot be read: then nobody knows in which state the file is.
  bool IsUnreadable() const { return unreadable_; }

  struct Record {
    JournalRecord head;
    std::vector<JournalEntry> entries;
    std::uint64_t pages_at = 0;  ///< where in the journal the first old page is
  };
  /// The next record. None where the journal ends, or is not whole.
  std::optional<Record> Next();
  /// The old content of the page of an entry. False when it is not what was written.
  [[nodiscard]] bool ReadPage(const Record& record, std::size_t entry, PageBytes& page) const;
  [[nodiscard]] bool ReadPageAt(std::uint64_t at, std::uint64_t hash, PageBytes& page) const;
  bool IsSameAs(const JournalReader& other) const;
  /// Bytes of the records so far.
  std::uint64_t End() const { return at_; }

 private:
  Descriptor file_;
  std::uint64_t at_ = 0;
  bool unreadable_ = false;
};

/// The state in which a journal was found.
struct JournalState {
  std::uint64_t chain = 0;
  std::uint64_t sequence = 0;                     ///< of the last change
  std::uint64_t size = 0;                         ///< bytes of whole records
  std::vector<JournalReader::Record> unfinished;  ///< records of a change that did not come to its end
};
JournalState ReadJournal(JournalReader& journal);

/// Writes the journal of one change.
class JournalWriter {
 public:
  JournalWriter(std::string path, bool synced) : path_(std::move(path)), synced_(synced) {}

  /// Begins behind what is there, for readers may still need it.
  void ContinueAfter(const JournalState& state);
  /// Begins anew. `had_readers`: what somebody may still need is lost, and whoever does must be able to tell.
  void BeginAnew(bool had_readers);

  /// Adds a record. After that its pages may be overwritten.
  [[nodiscard]] bool Add(std::uint64_t old_size, mode_t mode, const std::vector<ChangedPage>& pages);
  bool IsOpen() const { return static_cast<bool>(file_); }
  /// Whether pages may have been overwritten.
  bool HasRecords() const { return records_ > 0; }
  const std::string& path() const { return path_; }

  /// Ends the change: from here on nothing is rolled back. `keep` leaves the journal to readers; `left` is then what
  /// the next change goes on behind.
  [[nodiscard]] bool End(bool keep, JournalState& left);
  /// Ends the change that a journal was found with, after it was rolled back.
  [[nodiscard]] bool EndFound(bool keep, JournalState& found);
  /// Leaves the journal as it is, for the next writer to roll back.
  void Leave() { file_ = Descriptor(); }

 private:
  bool Open(mode_t mode);
  bool WriteEnd();

  std::string path_;
  bool synced_;
  Descriptor file_;
  std::uint64_t chain_ = 0;
  std::uint64_t sequence_ = 1;
  std::uint64_t at_ = 0;
  std::size_t records_ = 0;  ///< of this change
  bool continues_ = false;
};

/// Puts back what an unfinished change has overwritten. False when the file cannot be written; then the journal stays.
/// A journal that does not fit the file, because another file has taken its place, is left alone and counts as none.
[[nodiscard]] bool RollBack(int file, const JournalReader& journal, const JournalState& state, bool synced);

/// Whether the journal tells of this file: each part of the pages that it names holds what was there before, or what was
/// written over it.
bool Fits(int file, const JournalReader& journal, const JournalState& state);

}  // namespace orvio::h5
