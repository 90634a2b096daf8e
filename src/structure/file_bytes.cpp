// Reads of an open file that do not end early without need: a signal or a short answer is no fault of the file.

#include "structure/file_bytes.h"

#include <unistd.h>

#include <cerrno>

namespace orvio::structure {

bool FileBytes::Read(std::uint64_t offset, void* buffer, std::size_t count) {
  if (offset > size_ || count > size_ - offset) return false;
  auto* to = static_cast<char*>(buffer);
  while (count > 0) {
    const ssize_t got = pread(descriptor_, to, count, static_cast<off_t>(offset));
    if (got < 0 && errno == EINTR) continue;
    if (got <= 0) return false;
    to += got;
    offset += static_cast<std::uint64_t>(got);
    count -= static_cast<std::size_t>(got);
  }
  return true;
}

}  // namespace orvio::structure
