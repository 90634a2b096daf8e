// The commit of a change, and what leads to it.

#include "h5/file_changes.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <vector>

#include "h5/file_locks.h"

namespace orvio::h5 {
namespace {

/// Overwritten pages that are held in memory: 16 MiB and what was there before.
constexpr std::size_t kMostPages = 4096;

/// A journal that readers keep from ending begins anew at this size. Readers of what it held then fail.
constexpr std::uint64_t kLongestJournal = std::uint64_t{64} << 20;

/// Pages that follow each other are written at once, so many at most.
constexpr std::size_t kRun = 64;

/// Part of a page that some bytes of the file cover.
struct Part {
  PageNumber number;
  std::size_t at;  ///< in the page
  std::size_t count;
};

Part PartAt(std::uint64_t offset, std::size_t count) {
  const auto at = static_cast<std::size_t>(offset % kPageSize);
  return {offset / kPageSize, at, std::min(count, kPageSize - at)};
}

}  // namespace

FileChanges::FileChanges(int file, std::string path, mode_t mode, std::uint64_t size, std::uint64_t end,
                         Durability durability)
    : file_(file),
      path_(std::move(path)),
      mode_(mode),
      durability_(durability),
      committed_(end),
      disk_size_(size),
      size_(size),
      journal_(JournalPath(path_), durability == Durability::kPowerSafe) {}

bool FileChanges::FailWith(int error) {
  failed_ = true;
  if (error_ == 0) error_ = error;
  return false;
}

FileChanges::Page* FileChanges::Find(PageNumber number) {
  const auto found = pages_.find(number);
  if (found != pages_.end()) return found->second.get();
  auto page = std::make_unique<Page>();
  page->before.fill(0);
  const std::uint64_t begin = number * kPageSize;
  const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(kPageSize, committed_ - begin));
  if (ReadAt(file_, begin, page->before.data(), count) < 0) {
    FailWith(errno);
    return nullptr;
  }
  page->after = page->before;
  return pages_.emplace(number, std::move(page)).first->second.get();
}

void FileChanges::Overlay(std::uint64_t offset, std::uint8_t* bytes, std::size_t count) const {
  for (auto next = pages_.lower_bound(offset / kPageSize); next != pages_.end(); ++next) {
    const std::uint64_t begin = next->first * kPageSize;
    const std::uint64_t end = std::min(begin + kPageSize, committed_);
    if (begin >= offset + count) break;
    const std::uint64_t from = std::max(begin, offset);
    const std::uint64_t to = std::min(end, offset + count);
    if (from < to) std::memcpy(bytes + (from - offset), next->second->after.data() + (from - begin), to - from);
  }
}

bool FileChanges::Read(std::uint64_t offset, void* buffer, std::size_t count) {
  auto* bytes = static_cast<std::uint8_t*>(buffer);
  const std::int64_t got = ReadAt(file_, offset, bytes, count);
  if (got < 0) return FailWith(errno);
  std::memset(bytes + got, 0, count - static_cast<std::size_t>(got));
  if (!pages_.empty()) Overlay(offset, bytes, count);
  return true;
}

bool FileChanges::WriteBehind(std::uint64_t offset, const std::uint8_t* bytes, std::size_t count) {
  grown_ = true;
  return WriteAt(file_, offset, bytes, count) || FailWith(errno);
}

bool FileChanges::WriteBelow(std::uint64_t offset, const std::uint8_t* bytes, std::size_t count) {
  while (count > 0) {
    const Part part = PartAt(offset, count);
    if (spilled_.contains(part.number)) {
      if (!WriteAt(file_, offset, bytes, part.count)) return FailWith(errno);
    } else {
      Page* page = Find(part.number);
      if (!page) return false;
      std::memcpy(page->after.data() + part.at, bytes, part.count);
    }
    offset += part.count;
    bytes += part.count;
    count -= part.count;
    if (pages_.size() >= kMostPages && !Spill()) return false;
  }
  return true;
}

bool FileChanges::Write(std::uint64_t offset, const void* buffer, std::size_t count) {
  if (failed_) return true;
  const auto* bytes = static_cast<const std::uint8_t*>(buffer);
  size_ = std::max(size_, offset + count);
  if (IsPlain()) return WriteBehind(offset, bytes, count);
  const std::uint64_t below = offset >= committed_ ? 0 : std::min<std::uint64_t>(count, committed_ - offset);
  const auto split = static_cast<std::size_t>(below);
  if (split > 0 && !WriteBelow(offset, bytes, split)) return false;
  return split == count || WriteBehind(offset + split, bytes + split, count - split);
}

bool FileChanges::Resize(std::uint64_t size) {
  if (failed_) return true;
  size_ = size;
  return !IsPlain() || SetSize(file_, size) || FailWith(errno);
}

bool FileChanges::AddToJournal(bool once) {
  if (!journal_.IsOpen()) {
    const bool has_readers = HasReaders(file_);
    if (has_readers && journal_state_.chain != 0 && journal_state_.size < kLongestJournal) {
      journal_.ContinueAfter(journal_state_);
    } else {
      journal_.BeginAnew(has_readers && journal_state_.chain != 0);
    }
  }
  std::vector<ChangedPage> changed;
  changed.reserve(pages_.size());
  for (const auto& [number, page] : pages_) changed.push_back({number, &page->before, once ? &page->after : nullptr});
  return journal_.Add(committed_, mode_, changed) || FailWith(errno);
}

bool FileChanges::OverwritePages() {
  std::vector<std::uint8_t> run;
  std::uint64_t begin = 0;
  for (auto next = pages_.begin(); next != pages_.end();) {
    if (run.empty()) begin = next->first * kPageSize;
    const std::uint64_t end = std::min((next->first + 1) * kPageSize, committed_);
    run.insert(run.end(), next->second->after.begin(),
               next->second->after.begin() + static_cast<std::ptrdiff_t>(end - next->first * kPageSize));
    const PageNumber number = next->first;
    ++next;
    const bool goes_on = next != pages_.end() && next->first == number + 1 && run.size() < kRun * kPageSize;
    if (goes_on) continue;
    if (!WriteAt(file_, begin, run.data(), run.size())) return FailWith(errno);
    run.clear();
  }
  return true;
}

/// A change that does not fit into memory: what it has overwritten so far goes to the journal and to the file.
bool FileChanges::Spill() {
  if (!AddToJournal(false) || !SetSize(file_, std::max(size_, disk_size_) + 1) || !OverwritePages()) {
    return FailWith(errno);
  }
  for (const auto& page : pages_) spilled_.insert(page.first);
  pages_.clear();
  return true;
}

/// A tail that is too long for the journal is cut off when the change is complete.
bool FileChanges::CutsLongTail() const { return size_ < committed_ && committed_ - size_ > kMostPages * kPageSize; }

/// What a change cuts off was part of the file as it was.
bool FileChanges::KeepTail() {
  for (std::uint64_t at = size_; at < committed_; at += kPageSize - at % kPageSize) {
    if (!spilled_.contains(at / kPageSize) && !Find(at / kPageSize)) return false;
  }
  return true;
}

/// Readers compare what fstat tells: from the first overwritten byte to the last the file is a byte longer than it ever
/// was, and then it has a time of its own.
bool FileChanges::Apply() {
  if (!pages_.empty()) {
    if (!AddToJournal(true) || !SetSize(file_, std::max(size_, disk_size_) + 1)) return FailWith(errno);
    if (!OverwritePages()) return false;
  }
  const bool cuts_late = CutsLongTail();
  if (!SetSize(file_, cuts_late ? committed_ : size_)) return FailWith(errno);
  if (IsSynced() && !(SyncFile(file_) && (committed_ > 0 || SyncFolderOf(path_)))) return FailWith(errno);
  if (journal_.IsOpen()) {
    StampChange(file_);
    if (!journal_.End(HasReaders(file_), journal_state_)) return FailWith(errno);
  }
  if (cuts_late) (void)SetSize(file_, size_);  // what stays behind the end is in nobody's way
  return true;
}

bool FileChanges::Commit() {
  if (failed_) return false;
  if (IsPlain()) return true;
  std::erase_if(pages_, [](const auto& page) { return page.second->before == page.second->after; });
  if (!CutsLongTail() && !KeepTail()) return false;
  const bool is_changed = grown_ || !pages_.empty() || !spilled_.empty() || size_ != disk_size_;
  if (is_changed && !Apply()) return false;
  Restart();
  return true;
}

void FileChanges::Restart() {
  pages_.clear();
  spilled_.clear();
  committed_ = disk_size_ = size_;
  grown_ = false;
}

bool FileChanges::PutBack() {
  if (!journal_.HasRecords()) return true;  // nothing was overwritten
  JournalReader journal(journal_.path());
  const JournalState state = ReadJournal(journal);
  return !state.unfinished.empty() && RollBack(file_, journal, state, IsSynced());
}

void FileChanges::Abandon() {
  failed_ = true;
  if (IsPlain()) return;
  const bool had_journal = journal_.IsOpen();
  const bool back = PutBack();
  // What cannot be cut off now is in nobody's way, and what cannot be put back the next writer will try again.
  if (back && (grown_ || had_journal)) (void)SetSize(file_, committed_);
  if (had_journal) StampChange(file_);
  if (had_journal && !(back && journal_.End(HasReaders(file_), journal_state_))) journal_.Leave();
  pages_.clear();
  spilled_.clear();
}

}  // namespace orvio::h5
