// Reading while others write.

#include "h5/file_snapshot.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <thread>

#include "h5/file_locks.h"
#include "structure/structure_check.h"

namespace orvio::h5 {
namespace {

/// Reads of up to so many bytes go through whole pages that are kept: HDF5 asks for metadata in many small pieces.
constexpr std::size_t kSmall = 2 * kPageSize;

}  // namespace

FileSnapshot::FileSnapshot(Descriptor file, std::string path, const struct stat& info)
    : file_(std::move(file)), path_(std::move(path)), stamp_(info), size_(static_cast<std::uint64_t>(info.st_size)) {}

bool FileSnapshot::Stat() {
  struct stat info = {};
  if (fstat(file_.get(), &info) != 0) return false;
  stamp_ = FileStamp(info);
  return true;
}

/// The stamp is older than the look at the journal, the size is younger: a change in between is seen by the first read,
/// and what it made longer can be read.
///
/// Pages that are being overwritten right now may be met in the middle of several sectors, as the writer moves on between
/// two reads: a journal does not fit such a file for a moment, and one of another file does not fit it ever.
bool FileSnapshot::Take() {
  constexpr int kTries = 10, kLooks = 4;
  announced_ = AnnounceReader(file_.get());
  for (int i = 0; i < kTries; ++i) {
    if (!Stat()) return false;
    const FileStamp before = stamp_;
    JournalReader journal(JournalPath(path_));
    const JournalState state = ReadJournal(journal);
    if (journal.IsUnreadable()) return false;
    const bool fits = state.unfinished.empty() || Fits(file_.get(), journal, state);
    if (!Stat()) return false;
    size_ = static_cast<std::uint64_t>(stamp_.size);
    if (!fits && (stamp_ != before || i + 1 < kLooks)) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
      continue;
    }
    stamp_ = before;
    if (journal) journals_.push_back(std::move(journal));
    chain_ = fits ? state.chain : 0;  // one that does not fit is of another file that had this name
    sequence_ = state.unfinished.empty() ? state.sequence : state.sequence - 1;
    for (std::size_t k = 0; fits && k < state.unfinished.size(); ++k) {
      TakeRecord(state.unfinished[k]);
      size_ = std::min(size_, state.unfinished[k].head.old_size);
    }
    return true;
  }
  return false;
}

bool FileSnapshot::Rest() {
  if (announced_) WithdrawReader(file_.get());
  announced_ = false;
  return journals_.empty() && IsPresent();
}

/// As Take() does it: the journal is looked for behind the announcement. One that is there belongs to a change that came
/// meanwhile, or that this snapshot would have to follow from its middle.
bool FileSnapshot::Resume(const char* name) {
  announced_ = AnnounceReader(file_.get());
  struct stat info = {};
  if (stat(name, &info) != 0 || FileStamp(info) != stamp_) return false;
  const JournalReader journal(JournalPath(path_));
  return !journal && !journal.IsUnreadable();
}

void FileSnapshot::TakeRecord(const JournalReader::Record& record) {
  for (std::size_t i = 0; i < record.entries.size(); ++i) {
    const JournalEntry& entry = record.entries[i];
    const OldPage page{journals_.size() - 1, record.pages_at + i * kPageSize, entry.old_hash};
    old_pages_.try_emplace(entry.number, page);
  }
}

bool FileSnapshot::HasChanged() {
  const FileStamp before = stamp_;
  return !Stat() || stamp_ != before;
}

/// A journal that came to its end before this reader was known is gone, and one that was begun since holds all changes.
bool FileSnapshot::OpenNextJournal() {
  JournalReader next(JournalPath(path_));
  lost_ = lost_ || next.IsUnreadable();
  if (!next || (!journals_.empty() && next.IsSameAs(journals_.back()))) return false;
  journals_.push_back(std::move(next));
  chain_ = 0;
  sequence_ = 0;
  return true;
}

bool FileSnapshot::FollowJournal() {
  do {
    while (const auto record = journals_.empty() ? std::nullopt : journals_.back().Next()) {
      const JournalRecord& head = record->head;
      const bool is_first = chain_ == 0;
      if (is_first) chain_ = head.chain;
      // What came between the snapshot and the first record, or belongs to another chain, is known to nobody.
      if (head.chain != chain_ || (is_first && head.sequence != 1)) return false;
      if (head.sequence > sequence_ && head.kind != JournalRecord::kEnd) TakeRecord(*record);
    }
    lost_ = lost_ || (!journals_.empty() && journals_.back().IsUnreadable());
  } while (OpenNextJournal());
  return !lost_;
}

bool FileSnapshot::FollowChange() {
  if (!lost_ && !(announced_ && FollowJournal())) lost_ = true;
  return !lost_;
}

/// Puts the old pages over what was read, of which there are `got` bytes. Answers how many there are then.
std::int64_t FileSnapshot::Overlay(std::uint64_t offset, std::uint8_t* bytes, std::size_t count, std::int64_t got) {
  if (old_pages_.empty() || count == 0) return got;
  PageBytes page;
  for (PageNumber number = offset / kPageSize; number <= (offset + count - 1) / kPageSize; ++number) {
    const auto old = old_pages_.find(number);
    if (old == old_pages_.end()) continue;
    if (!journals_[old->second.journal].ReadPageAt(old->second.at, old->second.hash, page)) return -1;
    const std::uint64_t begin = number * kPageSize;
    const std::uint64_t from = std::max(begin, offset);
    const std::uint64_t to = std::min(begin + kPageSize, offset + count);
    std::memcpy(bytes + (from - offset), page.data() + (from - begin), to - from);
    const bool goes_on = from - offset <= static_cast<std::uint64_t>(got);  // where the file was cut since
    if (goes_on) got = std::max(got, static_cast<std::int64_t>(to - offset));
  }
  return got;
}

/// The file may end with what a writer was appending before its change was complete. Nobody refers to that, but whoever
/// reads ahead asks for it, when it may be cut off already.
void FileSnapshot::FindContentsEnd() {
  contents_end_ = 0;  // what is read meanwhile lies at the beginning
  contents_end_ = structure::StoredEnd(*this).value_or(size_);
}

bool FileSnapshot::ReadAsWas(std::uint64_t offset, std::uint8_t* bytes, std::size_t count) {
  std::int64_t got = ReadAt(file_.get(), offset, bytes, count);
  if (got < 0 || (HasChanged() && !FollowChange())) return false;
  got = Overlay(offset, bytes, count, got);
  if (got < 0) return false;
  const auto there = static_cast<std::size_t>(got);
  if (there < count && !contents_end_) {
    FindContentsEnd();
    return ReadAsWas(offset, bytes, count);  // the buffer may have been used
  }
  if (there < count && offset + there < *contents_end_) return false;
  std::memset(bytes + there, 0, count - there);
  return true;
}

const FileSnapshot::KeptPage* FileSnapshot::Load(PageNumber number) {
  if (!kept_) kept_ = std::make_unique_for_overwrite<KeptPages>();  // not initialised but for the numbers
  KeptPage& kept = (*kept_)[number % kKept];
  if (kept.number == number) return &kept;
  const std::uint64_t begin = number * kPageSize;
  const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(kPageSize, size_ - begin));
  kept.number = ~PageNumber{0};
  if (!ReadAsWas(begin, kept.bytes.data(), count)) return nullptr;
  kept.number = number;
  return &kept;
}

bool FileSnapshot::ReadSmall(std::uint64_t offset, std::uint8_t* bytes, std::size_t count) {
  while (count > 0) {
    const auto at = static_cast<std::size_t>(offset % kPageSize);
    const std::size_t part = std::min(count, kPageSize - at);
    const KeptPage* page = Load(offset / kPageSize);
    if (!page) return false;
    std::memcpy(bytes, page->bytes.data() + at, part);
    offset += part;
    bytes += part;
    count -= part;
  }
  return true;
}

bool FileSnapshot::ReadOnce(std::uint64_t offset, void* buffer, std::size_t count) {
  const bool is_inside = !lost_ && offset <= size_ && count <= size_ - offset;
  return is_inside && ReadAsWas(offset, static_cast<std::uint8_t*>(buffer), count);
}

bool FileSnapshot::Read(std::uint64_t offset, void* buffer, std::size_t count) {
  if (lost_ || offset > size_ || count > size_ - offset) return false;
  auto* bytes = static_cast<std::uint8_t*>(buffer);
  return count <= kSmall ? ReadSmall(offset, bytes, count) : ReadAsWas(offset, bytes, count);
}

}  // namespace orvio::h5
