// Records of a journal: written with the head last, read with distrust.

#include "h5/journal.h"

#include <fcntl.h>

#include <cerrno>
#include <chrono>
#include <cstring>

#include "h5/page_hash.h"

namespace orvio::h5 {
namespace {

constexpr std::size_t kSector = kPageSize / JournalEntry::kSectors;

static_assert(sizeof(JournalRecord) == 64 && sizeof(JournalEntry) == 80);

std::uint64_t HashOfHead(const JournalRecord& head) { return HashOf(&head, offsetof(JournalRecord, hash)); }

std::uint64_t NewChain() {
  const auto now = std::chrono::system_clock::now().time_since_epoch().count();
  return (static_cast<std::uint64_t>(now) << 8 ^ static_cast<std::uint64_t>(getpid())) | 1;
}

JournalEntry EntryOf(const ChangedPage& page) {
  JournalEntry entry;
  entry.number = page.number;
  entry.old_hash = HashOf(page.before->data(), kPageSize);
  if (!page.after) return entry;
  for (std::size_t i = 0; i < JournalEntry::kSectors; ++i) {
    entry.new_hashes[i] = HashOf(page.after->data() + i * kSector, kSector);
  }
  return entry;
}

template <class T>
void Put(std::vector<std::uint8_t>& bytes, std::size_t at, const T& value) {
  std::memcpy(bytes.data() + at, &value, sizeof value);
}

/// Entries and pages of a record, with room for the head in front.
std::vector<std::uint8_t> Compose(JournalRecord& head, const std::vector<ChangedPage>& pages) {
  std::vector<std::uint8_t> bytes(head.Size());
  const std::size_t pages_at = sizeof head + pages.size() * sizeof(JournalEntry);
  for (std::size_t i = 0; i < pages.size(); ++i) {
    Put(bytes, sizeof head + i * sizeof(JournalEntry), EntryOf(pages[i]));
    Put(bytes, pages_at + i * kPageSize, *pages[i].before);
  }
  head.entries_hash = HashOf(bytes.data() + sizeof head, pages_at - sizeof head);
  head.hash = HashOfHead(head);
  return bytes;
}

/// Sectors of a page on disk that hold neither what was there before nor what was written over it.
int CountStrange(const PageBytes& found, const PageBytes& before, const JournalEntry& entry) {
  int strange = 0;
  for (std::size_t i = 0; i < JournalEntry::kSectors; ++i) {
    const std::uint8_t* sector = found.data() + i * kSector;
    const bool is_old = std::memcmp(sector, before.data() + i * kSector, kSector) == 0;
    if (!is_old && HashOf(sector, kSector) != entry.new_hashes[i]) ++strange;
  }
  return strange;
}

constexpr int kForReading = O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW;

/// Whether an open that failed so says that there is no journal. A symbolic link is none.
bool IsNone(int error) { return error == ENOENT || error == ELOOP || error == ENAMETOOLONG; }

std::uint64_t PagesOf(std::uint64_t size) { return (size + kPageSize - 1) / kPageSize; }

/// Bytes of a page that the file had before the change.
std::size_t BytesBelow(std::uint64_t size, PageNumber number) {
  const std::uint64_t begin = number * kPageSize;
  return begin >= size ? 0 : static_cast<std::size_t>(std::min<std::uint64_t>(kPageSize, size - begin));
}

bool PutBack(int file, const JournalReader& journal, const JournalReader::Record& record) {
  PageBytes page;
  for (std::size_t i = 0; i < record.entries.size(); ++i) {
    const std::uint64_t number = record.entries[i].number;
    const std::size_t count = BytesBelow(record.head.old_size, number);
    if (!journal.ReadPage(record, i, page) || !WriteAt(file, number * kPageSize, page.data(), count)) return false;
  }
  return true;
}

}  // namespace

std::string JournalPath(const std::string& file) { return file + "-journal"; }

bool RemoveJournal(const std::string& path) {
  const Descriptor file(::open(path.c_str(), kForReading));
  if (!file) return IsNone(errno);
  std::uint64_t magic = 0;  // the head is written last
  if (ReadAt(file.get(), 0, &magic, sizeof magic) < 0) return false;
  const bool is_ours = magic == 0 || magic == JournalRecord::kMagic;
  return !is_ours || ::unlink(path.c_str()) == 0;
}

JournalReader::JournalReader(const std::string& path)
    : file_(::open(path.c_str(), kForReading)), unreadable_(!file_ && !IsNone(errno)) {
  struct stat info = {};
  if (file_ && (fstat(file_.get(), &info) != 0 || !S_ISREG(info.st_mode))) file_ = Descriptor();
}

std::optional<JournalReader::Record> JournalReader::Next() {
  Record record;
  JournalRecord& head = record.head;
  struct stat info = {};
  if (!file_ || fstat(file_.get(), &info) != 0) return std::nullopt;
  const auto size = static_cast<std::uint64_t>(info.st_size);
  const std::int64_t got_head = ReadAt(file_.get(), at_, &head, sizeof head);
  if (got_head < 0) unreadable_ = true;
  if (got_head != sizeof head || at_ > size) return std::nullopt;
  const bool is_numbered = head.chain != 0 && head.sequence != 0 && head.sequence < UINT64_MAX;
  const bool is_whole = head.magic == JournalRecord::kMagic && head.hash == HashOfHead(head) && is_numbered &&
                        head.old_size <= INT64_MAX - kPageSize && head.pages <= size / kPageSize &&
                        head.Size() <= size - at_;
  if (!is_whole) return std::nullopt;
  record.entries.resize(head.pages);
  const std::size_t bytes = record.entries.size() * sizeof(JournalEntry);
  const std::int64_t got = ReadAt(file_.get(), at_ + sizeof head, record.entries.data(), bytes);
  if (got < 0) unreadable_ = true;
  if (got != static_cast<std::int64_t>(bytes) || HashOf(record.entries.data(), bytes) != head.entries_hash) {
    return std::nullopt;
  }
  for (const JournalEntry& entry : record.entries) {
    if (entry.number >= PagesOf(head.old_size)) return std::nullopt;
  }
  record.pages_at = at_ + sizeof head + bytes;
  at_ += head.Size();
  return record;
}

bool JournalReader::ReadPage(const Record& record, std::size_t entry, PageBytes& page) const {
  return ReadPageAt(record.pages_at + entry * kPageSize, record.entries[entry].old_hash, page);
}

bool JournalReader::ReadPageAt(std::uint64_t at, std::uint64_t hash, PageBytes& page) const {
  return ReadAt(file_.get(), at, page.data(), kPageSize) == static_cast<std::int64_t>(kPageSize) &&
         HashOf(page.data(), kPageSize) == hash;
}

bool JournalReader::IsSameAs(const JournalReader& other) const {
  struct stat a = {};
  struct stat b = {};
  return fstat(file_.get(), &a) == 0 && fstat(other.file_.get(), &b) == 0 && a.st_dev == b.st_dev &&
         a.st_ino == b.st_ino;
}

JournalState ReadJournal(JournalReader& journal) {
  JournalState state;
  while (auto record = journal.Next()) {
    if (state.chain != 0 && (record->head.chain != state.chain || record->head.sequence < state.sequence)) break;
    if (record->head.sequence != state.sequence) state.unfinished.clear();
    state.chain = record->head.chain;
    state.sequence = record->head.sequence;
    state.size = journal.End();
    if (record->head.kind == JournalRecord::kEnd) {
      state.unfinished.clear();
    } else {
      state.unfinished.push_back(std::move(*record));
    }
  }
  return state;
}

void JournalWriter::ContinueAfter(const JournalState& state) {
  chain_ = state.chain;
  sequence_ = state.sequence + 1;
  at_ = state.size;
  continues_ = true;
}

void JournalWriter::BeginAnew(bool had_readers) {
  chain_ = NewChain();
  sequence_ = had_readers ? 2 : 1;
  at_ = 0;
  continues_ = false;
}

bool JournalWriter::Open(mode_t mode) {
  constexpr int kHow = O_WRONLY | O_CLOEXEC | O_NOFOLLOW | O_NONBLOCK;
  if (continues_) {
    file_ = Descriptor(::open(path_.c_str(), kHow));
    return file_ && SetSize(file_.get(), at_);
  }
  constexpr int kAnew = kHow | O_CREAT | O_EXCL;
  file_ = Descriptor(::open(path_.c_str(), kAnew, mode & 0666));
  if (!file_ && errno == EEXIST && RemoveJournal(path_)) file_ = Descriptor(::open(path_.c_str(), kAnew, mode & 0666));
  return static_cast<bool>(file_);
}

bool JournalWriter::Add(std::uint64_t old_size, mode_t mode, const std::vector<ChangedPage>& pages) {
  const bool is_first = !file_;
  if (is_first && !Open(mode)) return false;
  JournalRecord head;
  head.chain = chain_;
  head.sequence = sequence_;
  head.kind = !pages.empty() && pages.front().after ? JournalRecord::kOverwrites : JournalRecord::kMany;
  head.old_size = old_size;
  head.pages = pages.size();
  const std::vector<std::uint8_t> bytes = Compose(head, pages);
  if (!WriteAt(file_.get(), at_ + sizeof head, bytes.data() + sizeof head, bytes.size() - sizeof head)) return false;
  if (synced_ && !SyncFile(file_.get())) return false;
  if (!WriteAt(file_.get(), at_, &head, sizeof head)) return false;
  if (synced_ && !(SyncFile(file_.get()) && (!is_first || SyncFolderOf(path_)))) return false;
  at_ += bytes.size();
  ++records_;
  return true;
}

bool JournalWriter::WriteEnd() {
  JournalRecord head;
  head.chain = chain_;
  head.sequence = sequence_;
  head.kind = JournalRecord::kEnd;
  head.entries_hash = HashOf(&head, 0);
  head.hash = HashOfHead(head);
  const bool written = WriteAt(file_.get(), at_, &head, sizeof head) && (!synced_ || SyncFile(file_.get()));
  if (written) at_ += sizeof head;
  return written;
}

bool JournalWriter::End(bool keep, JournalState& left) {
  const std::uint64_t before = at_;
  bool ended = false;
  if (synced_ || keep)
    ended = WriteEnd();  // a name that comes back after a power cut must lead to a journal that ended
  const bool may_remove = synced_ ? ended && !keep : !(keep && ended);
  const bool removed = may_remove && ::unlink(path_.c_str()) == 0;
  if (!ended && !removed && !synced_) ended = WriteEnd();
  if (!ended && !removed) {
    at_ = before;
    (void)SetSize(file_.get(), at_);  // the change is to be rolled back: an end that may have been written is none
    return false;
  }
  records_ = 0;
  file_ = Descriptor();  // all that matters was written and looked at
  left = removed ? JournalState() : JournalState{chain_, sequence_, at_, {}};
  return true;
}

bool JournalWriter::EndFound(bool keep, JournalState& found) {
  ContinueAfter(found);
  sequence_ = found.sequence;
  return Open(0) && End(keep, found);
}

bool Fits(int file, const JournalReader& journal, const JournalState& state) {
  int strange = 0;
  PageBytes before;
  for (const JournalReader::Record& record : state.unfinished) {
    for (std::size_t i = 0; i < record.entries.size(); ++i) {
      PageBytes found = {};
      const JournalEntry& entry = record.entries[i];
      const std::size_t count = BytesBelow(record.head.old_size, entry.number);
      if (count == 0 || !journal.ReadPage(record, i, before)) return false;
      if (ReadAt(file, entry.number * kPageSize, found.data(), count) != static_cast<std::int64_t>(count)) return false;
      if (record.head.kind == JournalRecord::kOverwrites) strange += CountStrange(found, before, entry);
    }
  }
  return strange <= 1;  // a write that stopped in the middle may have stopped in the middle of a sector
}

bool RollBack(int file, const JournalReader& journal, const JournalState& state, bool synced) {
  for (const JournalReader::Record& record : state.unfinished) {
    if (!PutBack(file, journal, record)) return false;
  }
  return SetSize(file, state.unfinished.front().head.old_size) && (!synced || SyncFile(file));
}

}  // namespace orvio::h5
