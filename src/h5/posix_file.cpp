// Calls of the system that may be interrupted, or do a part only.

#include "h5/posix_file.h"

#include <fcntl.h>

#include <cerrno>
#include <climits>
#include <cstdlib>
#include <memory>

namespace orvio::h5 {

std::int64_t ReadAt(int descriptor, std::uint64_t offset, void* buffer, std::size_t count) {
  auto* target = static_cast<char*>(buffer);
  std::size_t done = 0;
  while (done < count) {
    const ssize_t got = pread(descriptor, target + done, count - done, static_cast<off_t>(offset + done));
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return -1;
    if (got == 0) break;
    done += static_cast<std::size_t>(got);
  }
  return static_cast<std::int64_t>(done);
}

bool WriteAt(int descriptor, std::uint64_t offset, const void* buffer, std::size_t count) {
  const auto* source = static_cast<const char*>(buffer);
  std::size_t done = 0;
  while (done < count) {
    const ssize_t put = pwrite(descriptor, source + done, count - done, static_cast<off_t>(offset + done));
    if (put < 0 && errno == EINTR) continue;
    if (put < 0) return false;
    done += static_cast<std::size_t>(put);
  }
  return true;
}

bool SetSize(int descriptor, std::uint64_t size) {
  int status = 0;
  do {
    status = ftruncate(descriptor, static_cast<off_t>(size));
  } while (status != 0 && errno == EINTR);
  return status == 0;
}

bool SyncFile(int descriptor) { return fsync(descriptor) == 0; }

bool SyncFolderOf(const std::string& path) {
  const std::size_t slash = path.find_last_of('/');
  const std::string folder = slash == std::string::npos ? "." : path.substr(0, slash + 1);
  const Descriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // Some file systems cannot sync a folder and keep its names safe all the same.
  return opened && (fsync(opened.get()) == 0 || errno == EINVAL);
}

std::string ResolvedPath(const char* name) {
  char target = 0;
  if (readlink(name, &target, 1) < 0) return name;  // no link, or nothing is there
  const std::unique_ptr<char, decltype(&std::free)> resolved(realpath(name, nullptr), &std::free);
  return resolved ? resolved.get() : name;
}

}  // namespace orvio::h5
