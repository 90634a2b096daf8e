// The file driver: plain reads and writes of one regular file.

#include "h5/file_driver.h"

#include <H5FDdevelop.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <memory>
#include <utility>

#include "filer/process_state.h"
#include "h5/checked_files.h"
#include "structure/file_bytes.h"
#include "structure/structure_check.h"

namespace orvio::h5 {
namespace {

/// Closes a descriptor unless it was released.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&&) = delete;
  ~Descriptor() {
    if (number_ >= 0) (void)::close(number_);  // read only, or an open that failed: nothing to lose
  }

  explicit operator bool() const { return number_ >= 0; }
  int get() const { return number_; }
  int* place() { return &number_; }
  [[nodiscard]] bool Close() { return ::close(std::exchange(number_, -1)) == 0; }

 private:
  int number_;
};

/// HDF5 hands the first member back to every callback, and knows nothing of what follows it.
struct DiskFile {
  DiskFile(Descriptor opened, const struct stat& info, bool for_writing)
      : descriptor(std::move(opened)),
        identity(info),
        writable(for_writing),
        sound(process().file_check != 0),
        end_of_file(static_cast<haddr_t>(info.st_size)) {}

  H5FD_t base = {};  ///< HDF5's own, filled by it
  Descriptor descriptor;
  FileStamp identity;
  bool writable;
  bool sound;  ///< was so when it was opened, and all that was written since has reached it
  haddr_t end_of_file;
  haddr_t end_of_allocation = 0;
};

DiskFile& Of(H5FD_t* file) { return *reinterpret_cast<DiskFile*>(file); }
const DiskFile& Of(const H5FD_t* file) { return *reinterpret_cast<const DiskFile*>(file); }

CheckedFiles& Known() {
  CheckedFiles*& known = process().checked_files;
  if (!known) known = new CheckedFiles;  // lives as long as the process, as HDF5 may close files at its very end
  return *known;
}

/// The name may be that of a pipe: without O_NONBLOCK the open itself would hang.
Descriptor OpenDescriptor(const char* name, unsigned flags) {
  int how = O_CLOEXEC | O_NONBLOCK | (flags & H5F_ACC_RDWR ? O_RDWR : O_RDONLY);
  if (flags & H5F_ACC_CREAT) how |= O_CREAT;
  if (flags & H5F_ACC_EXCL) how |= O_EXCL;
  return Descriptor(::open(name, how, 0666));
}

/// Some file systems know no locks. There, as everywhere, two writers are the user's mistake.
bool LockForWriting(int descriptor) {
  return flock(descriptor, LOCK_EX | LOCK_NB) == 0 || errno == ENOSYS || errno == EOPNOTSUPP;
}

bool IsSound(const char* name, int descriptor, const FileStamp& stamp) {
  if (process().file_check == 0 || Known().IsSound(stamp) || Known().IsBeingWritten(stamp)) return true;
  structure::FileBytes bytes(descriptor, static_cast<std::uint64_t>(stamp.size));
  if (const auto fault = structure::CheckStructure(bytes)) {
    SetLastError("File::\n\t \"%s\" is damaged: %s, at byte %llu", name, fault->what,
                 static_cast<unsigned long long>(fault->offset));
    return false;
  }
  Known().RememberSeen(stamp);
  return true;
}

/// Truncates what only this process holds.
bool Empty(int descriptor, struct stat& info) {
  return LockForWriting(descriptor) && ftruncate(descriptor, 0) == 0 && fstat(descriptor, &info) == 0;
}

std::unique_ptr<DiskFile> OpenDiskFile(const char* name, unsigned flags) {
  const bool writable = (flags & H5F_ACC_RDWR) != 0;
  Descriptor descriptor = OpenDescriptor(name, flags);
  struct stat info = {};
  if (!descriptor || fstat(descriptor.get(), &info) != 0) return nullptr;
  if (!S_ISREG(info.st_mode)) {
    SetLastError("File::\n\t \"%s\" is no regular file", name);
    return nullptr;
  }
  if (flags & H5F_ACC_TRUNC) {
    if (!Empty(descriptor.get(), info)) return nullptr;
  } else if (info.st_size > 0 && !IsSound(name, descriptor.get(), FileStamp(info))) {
    return nullptr;
  }
  const FileStamp stamp(info);
  // HDF5 opens a file once more to find out that it has it open already: then the lock is there.
  if (writable && !Known().IsBeingWritten(stamp) && !LockForWriting(descriptor.get())) return nullptr;
  auto file = std::make_unique<DiskFile>(std::move(descriptor), info, writable);
  if (writable) Known().BeginWriting(stamp);
  return file;
}

H5FD_t* Open(const char* name, unsigned flags, hid_t /*access*/, haddr_t /*most*/) {
  try {
    std::unique_ptr<DiskFile> file = OpenDiskFile(name, flags);
    return file ? &file.release()->base : nullptr;
  } catch (...) {
    return nullptr;  // out of memory
  }
}

/// What this process has written into a sound file needs no second look.
void EndWriting(const DiskFile& file) {
  Known().EndWriting(file.identity);
  struct stat info = {};
  if (!file.sound || Known().IsBeingWritten(file.identity) || fstat(file.descriptor.get(), &info) != 0) return;
  try {
    Known().RememberWritten(FileStamp(info));
  } catch (...) {  // NOLINT(bugprone-empty-catch): out of memory, so it will be looked at again
  }
}

herr_t Close(H5FD_t* base) {
  const std::unique_ptr<DiskFile> file(&Of(base));
  if (file->writable) EndWriting(*file);
  return file->descriptor.Close() ? 0 : -1;
}

int Compare(const H5FD_t* a, const H5FD_t* b) {
  const auto key = [](const H5FD_t* file) { return std::pair(Of(file).identity.device, Of(file).identity.inode); };
  return key(a) < key(b) ? -1 : static_cast<int>(key(b) < key(a));
}

herr_t Query(const H5FD_t* /*file*/, unsigned long* flags) {
  *flags = H5FD_FEAT_AGGREGATE_METADATA | H5FD_FEAT_ACCUMULATE_METADATA | H5FD_FEAT_DATA_SIEVE |
           H5FD_FEAT_AGGREGATE_SMALLDATA | H5FD_FEAT_POSIX_COMPAT_HANDLE | H5FD_FEAT_DEFAULT_VFD_COMPATIBLE;
  return 0;
}

haddr_t EndOfAllocation(const H5FD_t* file, H5FD_mem_t /*type*/) { return Of(file).end_of_allocation; }

herr_t SetEndOfAllocation(H5FD_t* file, H5FD_mem_t /*type*/, haddr_t address) {
  Of(file).end_of_allocation = address;
  return 0;
}

haddr_t EndOfFile(const H5FD_t* file, H5FD_mem_t /*type*/) { return Of(file).end_of_file; }

herr_t Handle(H5FD_t* file, hid_t /*access*/, void** handle) {
  *handle = Of(file).descriptor.place();  // hosts get the address of the descriptor from every driver of this kind
  return 0;
}

bool IsAddressable(haddr_t address, size_t size) {
  return address <= INT64_MAX && size <= static_cast<std::uint64_t>(INT64_MAX) - address;
}

/// Bytes that a writer has taken but not written yet are zeros. A reader that meets the end has a file that was cut
/// behind its back.
herr_t FillRest(const DiskFile& file, char* buffer, size_t count) {
  if (!file.writable) return -1;
  std::memset(buffer, 0, count);
  return 0;
}

herr_t Read(H5FD_t* base, H5FD_mem_t /*type*/, hid_t /*transfer*/, haddr_t address, size_t size, void* buffer) {
  const DiskFile& file = Of(base);
  if (!IsAddressable(address, size)) return -1;
  auto* target = static_cast<char*>(buffer);
  while (size > 0) {
    const ssize_t got = pread(file.descriptor.get(), target, size, static_cast<off_t>(address));
    if (got == 0) return FillRest(file, target, size);
    if (got < 0 && errno != EINTR) return -1;
    const size_t count = got < 0 ? 0 : static_cast<size_t>(got);
    target += count;
    address += count;
    size -= count;
  }
  return 0;
}

herr_t Write(H5FD_t* base, H5FD_mem_t /*type*/, hid_t /*transfer*/, haddr_t address, size_t size, const void* buffer) {
  DiskFile& file = Of(base);
  if (!IsAddressable(address, size)) return -1;
  const auto* source = static_cast<const char*>(buffer);
  while (size > 0) {
    const ssize_t put = pwrite(file.descriptor.get(), source, size, static_cast<off_t>(address));
    if (put < 0 && errno != EINTR) {
      file.sound = false;
      return -1;
    }
    const size_t count = put < 0 ? 0 : static_cast<size_t>(put);
    source += count;
    address += count;
    size -= count;
  }
  file.end_of_file = std::max(file.end_of_file, address);
  return 0;
}

herr_t Truncate(H5FD_t* base, hid_t /*transfer*/, hbool_t /*closing*/) {
  DiskFile& file = Of(base);
  if (file.end_of_allocation == file.end_of_file) return 0;
  if (!file.writable || ftruncate(file.descriptor.get(), static_cast<off_t>(file.end_of_allocation)) != 0) {
    file.sound = false;
    return -1;
  }
  file.end_of_file = file.end_of_allocation;
  return 0;
}

/// The lock was taken when the file was opened, and goes when it is closed.
herr_t Lock(H5FD_t* /*file*/, hbool_t /*for_writing*/) { return 0; }
herr_t Unlock(H5FD_t* /*file*/) { return 0; }

/// HDF5 ends, or a host has closed it: the ids that are kept are no longer ours.
herr_t Forget() {
  ProcessState& state = process();
  state.file_access = state.group_access = state.dataset_access = H5I_INVALID_HID;
  return 0;
}

H5FD_class_t MakeDriver() {
  H5FD_class_t driver = {};
  driver.version = H5FD_CLASS_VERSION;
  driver.value = static_cast<H5FD_class_value_t>(400);  // of the numbers that are free for drivers of one's own
  driver.name = "orvio";
  driver.maxaddr = INT64_MAX;
  driver.fc_degree = H5F_CLOSE_STRONG;
  driver.terminate = Forget;
  driver.open = Open;
  driver.close = Close;
  driver.cmp = Compare;
  driver.query = Query;
  driver.get_eoa = EndOfAllocation;
  driver.set_eoa = SetEndOfAllocation;
  driver.get_eof = EndOfFile;
  driver.get_handle = Handle;
  driver.read = Read;
  driver.write = Write;
  driver.truncate = Truncate;
  driver.lock = Lock;
  driver.unlock = Unlock;
  constexpr H5FD_mem_t kPools[] = H5FD_FLMAP_DICHOTOMY;
  std::ranges::copy(kPools, driver.fl_map);
  return driver;
}

}  // namespace

hid_t RegisterFileDriver() {
  const H5FD_class_t driver = MakeDriver();
  return H5FDregister(&driver);
}

}  // namespace orvio::h5
