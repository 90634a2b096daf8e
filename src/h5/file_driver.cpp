// The file driver: what HDF5 calls to read and write one file.

#include "h5/file_driver.h"

#include <H5FDdevelop.h>

#include <algorithm>
#include <memory>
#include <utility>

#include "filer/process_state.h"
#include "h5/disk_file.h"
#include "h5/entry.h"

namespace orvio::h5 {
namespace {

DiskFile& Of(H5FD_t* file) { return *reinterpret_cast<DiskFile*>(file); }
const DiskFile& Of(const H5FD_t* file) { return *reinterpret_cast<const DiskFile*>(file); }

/// What a callback answers HDF5, which knows no exceptions.
template <class Body>
herr_t Guarded(Body&& body) noexcept {
  try {
    return body() ? 0 : -1;
  } catch (...) {  // out of memory
    CountException();
    return -1;
  }
}

H5FD_t* Open(const char* name, unsigned flags, hid_t /*access*/, haddr_t /*most*/) {
  try {
    std::unique_ptr<DiskFile> file = OpenDiskFile(name, flags);
    return file ? &file.release()->base : nullptr;
  } catch (...) {  // out of memory
    CountException();
    return nullptr;
  }
}

/// Always succeeds: after a failure HDF5 would keep the id of a file that is half gone.
herr_t Close(H5FD_t* base) {
  const std::unique_ptr<DiskFile> file(&Of(base));
  if (Guarded([&] { return !file->writer || file->writer->Close(); }) < 0) process().close_failed = true;
  return 0;
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

haddr_t EndOfFile(const H5FD_t* file, H5FD_mem_t /*type*/) { return Of(file).EndOfFile(); }

herr_t Handle(H5FD_t* file, hid_t /*access*/, void** handle) {
  *handle = Of(file).place();  // hosts get the address of the descriptor from every driver of this kind
  return 0;
}

bool IsAddressable(haddr_t address, size_t size) {
  return address <= INT64_MAX && size <= static_cast<std::uint64_t>(INT64_MAX) - address;
}

herr_t Read(H5FD_t* file, H5FD_mem_t /*type*/, hid_t /*transfer*/, haddr_t address, size_t size, void* buffer) {
  return Guarded([&] { return IsAddressable(address, size) && Of(file).Read(address, size, buffer); });
}

/// Does something to the file that a writer has open. The change has failed with the first write that does, and whoever
/// holds it will learn that. HDF5 is told only where a host has nobody else to learn it from: for the life of the process
/// it keeps objects open that it could not flush, and with them the file.
template <class Body>
herr_t Changed(H5FD_t* base, Body&& body) noexcept {
  WrittenFile* file = Of(base).writer.get();
  if (!file) return -1;
  if (Guarded([&] { return body(file->changes()); }) == 0) return 0;
  file->changes().Fail();
  return file->IsHosts() ? -1 : 0;
}

herr_t Write(H5FD_t* base, H5FD_mem_t /*type*/, hid_t /*transfer*/, haddr_t address, size_t size, const void* buffer) {
  if (!IsAddressable(address, size)) return -1;
  return Changed(base, [&](FileChanges& changes) { return changes.Write(address, buffer, size); });
}

herr_t Truncate(H5FD_t* base, hid_t /*transfer*/, hbool_t /*closing*/) {
  const DiskFile& file = Of(base);
  if (file.end_of_allocation == file.EndOfFile()) return 0;
  return Changed(base, [&](FileChanges& changes) { return changes.Resize(file.end_of_allocation); });
}

/// A file that nobody holds is open for a host, who expects to find on disk what was flushed. On the way to a close there
/// is still something to come.
herr_t Flush(H5FD_t* base, hid_t /*transfer*/, hbool_t closing) {
  WrittenFile* file = Of(base).writer.get();
  if (!file) return 0;
  if (closing) return file->IsHosts() && file->changes().error() != 0 ? -1 : 0;
  return Guarded([&] { return !file->CommitsFlushes() || file->Commit(); });
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
  driver.flush = Flush;
  driver.truncate = Truncate;
  driver.lock = Lock;
  driver.unlock = Unlock;
  constexpr H5FD_mem_t kPools[] = H5FD_FLMAP_DICHOTOMY;
  std::ranges::copy(kPools, driver.fl_map);
  return driver;
}

WrittenFile* Find(hid_t file) {
  void* place = nullptr;
  return H5Fget_vfd_handle(file, H5P_DEFAULT, &place) < 0 ? nullptr : FindWrittenFile(place);
}

}  // namespace

void EndOpening(hid_t file) {
  if (WrittenFile* written = Find(file)) written->EndOpening();
}

void HoldChanges(hid_t file) {
  if (WrittenFile* written = Find(file)) written->Hold();
}

bool ReleaseChanges(hid_t file, Outcome outcome) {
  WrittenFile* written = Find(file);
  return written && written->Release(outcome);
}

hid_t RegisterFileDriver() {
  const H5FD_class_t driver = MakeDriver();
  return H5FDregister(&driver);
}

}  // namespace orvio::h5
