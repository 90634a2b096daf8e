#pragma once

// One change of a file that is open for writing, from its first write to its commit.

#include <map>
#include <memory>
#include <string>
#include <unordered_set>

#include "h5/journal.h"

namespace orvio::h5 {

/// How safe a change is; see ORVSetDurability.
enum class Durability { kPlain, kKillSafe, kPowerSafe };

/// What is written behind the end of the file as it was goes to the disk at once: nobody looks there yet. What is
/// overwritten is held in memory until Commit(), so that up to then, and whenever the process ends, the file is as it was.
/// In between, the journal can bring it back. With Durability::kPlain every write goes to the disk at once.
class FileChanges {
 public:
  /// `size` is that of the file, `end` where what it holds ends; what lies behind was left over by a writer that ended.
  FileChanges(int file, std::string path, mode_t mode, std::uint64_t size, std::uint64_t end, Durability durability);

  /// Goes on behind a journal that readers may still need.
  void ContinueAfter(const JournalState& journal) { journal_state_ = journal; }

  /// Like pread and pwrite in whole. What was never written is zeros. After a write has failed, all further ones are
  /// swallowed: HDF5 must come to its end, and the commit will fail.
  [[nodiscard]] bool Read(std::uint64_t offset, void* buffer, std::size_t count);
  [[nodiscard]] bool Write(std::uint64_t offset, const void* buffer, std::size_t count);
  /// Cuts or extends what was written so far.
  [[nodiscard]] bool Resize(std::uint64_t size);

  bool HasFailed() const { return failed_; }
  /// Nothing of the change will be kept.
  void Fail() { failed_ = true; }
  /// errno of the first call that failed; 0 when none did.
  int error() const { return error_; }
  std::uint64_t size() const { return size_; }

  /// Makes the change part of the file, all or nothing. A new change begins.
  [[nodiscard]] bool Commit();
  /// Brings back the file as it was.
  void Abandon();

 private:
  struct Page {
    PageBytes before;
    PageBytes after;
  };
  using Pages = std::map<PageNumber, std::unique_ptr<Page>>;

  bool IsPlain() const { return durability_ == Durability::kPlain; }
  bool IsSynced() const { return durability_ == Durability::kPowerSafe; }
  bool FailWith(int error);
  Page* Find(PageNumber number);
  bool WriteBelow(std::uint64_t offset, const std::uint8_t* bytes, std::size_t count);
  bool WriteBehind(std::uint64_t offset, const std::uint8_t* bytes, std::size_t count);
  void Overlay(std::uint64_t offset, std::uint8_t* bytes, std::size_t count) const;
  bool Spill();
  bool AddToJournal(bool once);
  bool OverwritePages();
  bool CutsLongTail() const;
  bool KeepTail();
  bool Apply();
  bool PutBack();
  void Restart();

  int file_;
  std::string path_;
  mode_t mode_;
  Durability durability_;
  std::uint64_t committed_;                 ///< nothing below is touched before the commit
  std::uint64_t disk_size_;                 ///< of the file as it was
  std::uint64_t size_;                      ///< with what was written since
  Pages pages_;                             ///< overwritten, and not on disk yet
  std::unordered_set<PageNumber> spilled_;  ///< in the journal and overwritten already
  JournalWriter journal_;
  JournalState journal_state_;
  bool failed_ = false;
  bool grown_ = false;
  int error_ = 0;
};

}  // namespace orvio::h5
