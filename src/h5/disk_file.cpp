// Opening of files: what may be opened, what is looked at before, who is kept out.

#include "h5/disk_file.h"

#include <fcntl.h>

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "filer/process_state.h"
#include "h5/file_locks.h"
#include "h5/held_snapshots.h"
#include "structure/file_bytes.h"
#include "structure/structure_check.h"

namespace orvio::h5 {
namespace {

/// The name may be that of a pipe: without O_NONBLOCK the open itself would hang.
Descriptor OpenDescriptor(const char* name, unsigned flags, int more = 0) {
  int how = O_CLOEXEC | O_NONBLOCK | (flags & H5F_ACC_RDWR ? O_RDWR : O_RDONLY) | more;
  if (flags & H5F_ACC_CREAT) how |= O_CREAT;
  if (flags & H5F_ACC_EXCL) how |= O_EXCL;
  return Descriptor(::open(name, how, 0666));
}

Descriptor IfRegular(Descriptor file, const char* name, struct stat& info) {
  if (!file || fstat(file.get(), &info) != 0) return {};
  if (S_ISREG(info.st_mode)) return file;
  SetLastError("File::\n\t \"%s\" is no regular file", name);
  return {};
}

Descriptor OpenRegularFile(const char* name, unsigned flags, struct stat& info) {
  return IfRegular(OpenDescriptor(name, flags), name, info);
}

/// A regular file that is read.
struct ReadFile {
  explicit ReadFile(const char* file) : name(file), path(file) {
    Descriptor opened = OpenDescriptor(file, 0, O_NOFOLLOW);
    if (!opened && errno == ELOOP) {
      opened = OpenDescriptor(file, 0);
      path = ResolvedPath(file);
    }
    descriptor = IfRegular(std::move(opened), file, info);
  }
  explicit operator bool() const { return static_cast<bool>(descriptor); }

  const char* name;
  std::string path;  ///< what lies beside the file lies beside that
  struct stat info = {};
  Descriptor descriptor;
};

bool TellFault(const char* name, const std::optional<structure::Fault>& fault) {
  if (!fault) return true;
  SetLastError("File::\n\t \"%s\" is damaged: %s, at byte %llu", name, fault->what,
               static_cast<unsigned long long>(fault->offset));
  return false;
}

bool IsSound(const char* name, FileSnapshot& snapshot) {
  const FileStamp stamp = snapshot.stamp();
  if (process().file_check == 0 || snapshot.Size() == 0) return true;  // HDF5 refuses an empty file itself
  const bool is_present = snapshot.IsPresent();
  const bool is_known = is_present && KnownFiles().IsSound(stamp);
  const bool makes_catalogue = process().file_index != 0 && is_present;
  if (is_known && !(makes_catalogue && KnownFiles().WantsCatalogue(stamp))) return true;
  std::unique_ptr<const structure::Catalogue> catalogue;
  const auto fault =
      makes_catalogue ? structure::CheckStructure(snapshot, catalogue) : structure::CheckStructure(snapshot);
  if (!TellFault(name, fault)) return false;
  if (!snapshot.IsPresent() || snapshot.stamp() != stamp) return true;
  KnownFiles().RememberSeen(stamp);
  if (catalogue) KnownFiles().RememberCatalogue(stamp, std::move(catalogue));
  return true;
}

bool IsSound(const char* name, int file, const FileStamp& stamp) {
  if (process().file_check == 0 || stamp.size == 0 || KnownFiles().IsSound(stamp)) return true;
  structure::FileBytes bytes(file, static_cast<std::uint64_t>(stamp.size));
  return TellFault(name, structure::CheckStructure(bytes));
}

/// Takes the lock of writers. What has that name may be another file by the time it is free.
Descriptor OpenLocked(const char* name, unsigned flags, struct stat& info) {
  for (;;) {
    Descriptor file = OpenRegularFile(name, flags, info);
    if (!file || KnownFiles().IsBeingWritten(FileStamp(info))) return file;
    if (!LockForWriting(file.get())) {
      SetLastError("File::\n\t \"%s\" is open for writing elsewhere", name);
      return {};
    }
    struct stat now = {};
    if (fstat(file.get(), &info) != 0) return {};
    if (stat(name, &now) == 0 && now.st_ino == info.st_ino && now.st_dev == info.st_dev) return file;
  }
}

/// Ends what a writer has left in the middle. False when the disk fails.
bool Recover(int file, const std::string& path, JournalState& state) {
  JournalReader journal(JournalPath(path));
  state = ReadJournal(journal);
  if (journal.IsUnreadable()) return false;
  if (state.unfinished.empty()) return true;
  if (!Fits(file, journal, state)) {
    state = JournalState();  // of another file that had this name
    return true;
  }
  const bool back = RollBack(file, journal, state, true);
  StampChange(file);
  return back && JournalWriter(JournalPath(path), true).EndFound(HasReaders(file), state);
}

/// Bytes that the file uses. What lies behind was left by a writer that ended, and is in nobody's way.
std::uint64_t EndOfContents(int file, std::uint64_t size) {
  structure::FileBytes bytes(file, size);
  return std::min(size, structure::StoredEnd(bytes).value_or(size));
}

/// Truncates what only this process holds.
bool Empty(int file, const std::string& path, struct stat& info) {
  return RemoveJournal(JournalPath(path)) && SetSize(file, 0) && fstat(file, &info) == 0;
}

/// HDF5 opens a file once more to find out that it has it open already.
std::unique_ptr<DiskFile> SecondLook(Descriptor file, const struct stat& info) {
  if (!process().is_among_itself) {
    for (WrittenFile* written : process().written_files) {
      if (written->IsSame(FileStamp(info))) written->Share();
    }
  }
  auto disk_file = std::make_unique<DiskFile>(info);
  disk_file->snapshot = std::make_shared<FileSnapshot>(std::move(file), std::string(), info);
  return disk_file;
}

/// The state of a sound file that the running operation sees; null for a file that is not sound.
std::shared_ptr<FileSnapshot> SnapshotOf(ReadFile file) {
  const FileStamp identity(file.info);
  if (auto held = FindHeldSnapshot(identity)) return held;
  auto snapshot = std::make_shared<FileSnapshot>(std::move(file.descriptor), std::move(file.path), file.info);
  if (!snapshot->Take() || !IsSound(file.name, *snapshot)) return nullptr;
  HoldSnapshot(identity, snapshot);
  return snapshot;
}

std::unique_ptr<DiskFile> OpenForReading(const char* name) {
  ReadFile file(name);
  if (!file) return nullptr;
  if (KnownFiles().IsBeingWritten(FileStamp(file.info))) return SecondLook(std::move(file.descriptor), file.info);
  auto disk_file = std::make_unique<DiskFile>(file.info);
  disk_file->snapshot = SnapshotOf(std::move(file));
  return disk_file->snapshot ? std::move(disk_file) : nullptr;
}

std::unique_ptr<DiskFile> OpenForWriting(const char* name, unsigned flags) {
  struct stat info = {};
  Descriptor file = OpenLocked(name, flags, info);
  if (!file) return nullptr;
  if (KnownFiles().IsBeingWritten(FileStamp(info))) return SecondLook(std::move(file), info);
  const std::string path = ResolvedPath(name);
  JournalState journal;
  if (flags & H5F_ACC_TRUNC) {
    if (!Empty(file.get(), path, info)) return nullptr;
  } else {
    if (!Recover(file.get(), path, journal) || fstat(file.get(), &info) != 0) return nullptr;
    if (!IsSound(name, file.get(), FileStamp(info))) return nullptr;
  }
  const std::uint64_t end = EndOfContents(file.get(), static_cast<std::uint64_t>(info.st_size));
  auto disk_file = std::make_unique<DiskFile>(info);
  disk_file->writer = std::make_unique<WrittenFile>(std::move(file), path, info, end);
  disk_file->writer->changes().ContinueAfter(journal);
  ForgetHeldSnapshots();
  return disk_file;
}

}  // namespace

WrittenFile::WrittenFile(Descriptor file, std::string path, const struct stat& info, std::uint64_t end)
    : file_(std::move(file)),
      path_(std::move(path)),
      identity_(info),
      changes_(file_.get(), path_, info.st_mode, static_cast<std::uint64_t>(info.st_size), end,
               static_cast<Durability>(process().durability)),
      sound_(process().file_check != 0),
      is_ours_alone_(process().is_among_itself) {
  if (is_ours_alone_) state_names_ = KnownFiles().TakeNames(identity_);
  std::vector<WrittenFile*>& open = process().written_files;
  open.reserve(open.size() + 1);
  KnownFiles().BeginWriting(identity_);
  open.push_back(this);
}

WrittenFile::~WrittenFile() {
  KnownFiles().EndWriting(identity_);
  std::erase(process().written_files, this);
}

bool WrittenFile::IsHosts() const { return !is_ours_alone_ && !IsHeld() && !process().is_closing; }

bool WrittenFile::Release(Outcome outcome) {
  --holders_;
  const bool spoils_more = outcome == Outcome::kFailed && IsHeld();
  if (outcome == Outcome::kGivenUp || spoils_more) changes_.Fail();
  if (outcome == Outcome::kGood) TellFailure();
  return !changes_.HasFailed();
}

void WrittenFile::TellFailure() const {
  const int error = changes_.error();
  if (error != 0) SetLastError("File::\n\t \"%s\" cannot be written: %s", path_.c_str(), std::strerror(error));
}

bool WrittenFile::Commit() {
  try {
    if (changes_.Commit()) return true;
  } catch (...) {  // out of memory
    changes_.Fail();
  }
  TellFailure();
  return false;
}

/// What this process has written into a sound file needs no second look.
void WrittenFile::RememberSound() {
  struct stat info = {};
  if (!sound_ || fstat(file_.get(), &info) != 0) return;
  try {
    KnownFiles().RememberWritten(FileStamp(info));
    if (state_names_) KnownFiles().RememberNames(FileStamp(info), *std::move(state_names_));
  } catch (...) {  // NOLINT(bugprone-empty-catch): out of memory, so it will be looked at again
  }
}

bool WrittenFile::Close() {
  const bool was_good = !changes_.HasFailed() || changes_.error() != 0;
  if (IsHeld()) changes_.Fail();
  const bool kept = Commit();
  if (!kept) changes_.Abandon();
  if (kept) RememberSound();
  const bool closed = file_.Close();
  // Whoever gave the change up knows that it is gone.
  return closed && (kept || !was_good);
}

bool DiskFile::Read(haddr_t address, size_t count, void* buffer) {
  return writer ? writer->changes().Read(address, buffer, count) : snapshot->Read(address, buffer, count);
}

CataloguedFile OpenCatalogued(const char* name) {
  ReadFile file(name);
  if (!file || process().file_check == 0 || KnownFiles().IsBeingWritten(FileStamp(file.info))) return {};
  CataloguedFile found;
  found.snapshot = SnapshotOf(std::move(file));
  const bool is_present = found.snapshot && found.snapshot->IsPresent();
  if (is_present) found.catalogue = KnownFiles().FindCatalogue(found.snapshot->stamp());
  return found;
}

std::unique_ptr<DiskFile> OpenDiskFile(const char* name, unsigned flags) {
  return flags & H5F_ACC_RDWR ? OpenForWriting(name, flags) : OpenForReading(name);
}

WrittenFile* FindWrittenFile(const void* place) {
  for (WrittenFile* file : process().written_files) {
    if (file->place() == place) return file;
  }
  return nullptr;
}

}  // namespace orvio::h5
