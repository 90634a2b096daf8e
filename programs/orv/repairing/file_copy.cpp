// Copies share their blocks with the original where the file system can do that.

#include "repairing/file_copy.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>
#include <vector>

#include "trouble.h"

namespace orvio::program {
namespace {

constexpr std::size_t kPiece = 1 << 20;

/// Closes a descriptor.
class OpenFile {
 public:
  OpenFile(const std::string& path, int flags) : descriptor_(open(path.c_str(), flags | O_CLOEXEC | O_NONBLOCK)) {}
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;
  ~OpenFile() {
    if (descriptor_ >= 0) (void)close(descriptor_);
  }

  explicit operator bool() const { return descriptor_ >= 0; }
  int get() const { return descriptor_; }
  bool Close() { return close(std::exchange(descriptor_, -1)) == 0; }

 private:
  int descriptor_;
};

[[noreturn]] void CannotBeRead(const std::string& path) {
  throw Trouble(path, std::string("cannot be read: ") + std::strerror(errno), "check the disk and your permissions");
}

[[noreturn]] void CannotBeWritten(const std::string& path) {
  throw Trouble(path, std::string("cannot be written: ") + std::strerror(errno),
                "check the free space and your permissions in its folder");
}

/// As much as the kernel copies by itself; the rest is for others.
void CopyInKernel(int from, int to) {
  while (copy_file_range(from, nullptr, to, nullptr, std::size_t{1} << 30, 0) > 0) {
  }
}

ssize_t ReadSome(int from, std::vector<char>& buffer) {
  for (;;) {
    const ssize_t got = read(from, buffer.data(), buffer.size());
    if (got >= 0 || errno != EINTR) return got;
  }
}

bool WriteAll(int to, const char* bytes, std::size_t count) {
  while (count > 0) {
    const ssize_t put = write(to, bytes, count);
    if (put < 0 && errno != EINTR) return false;
    if (put > 0) bytes += put;
    if (put > 0) count -= static_cast<std::size_t>(put);
  }
  return true;
}

}  // namespace

void CopyFile(const std::string& from, const std::string& to, const std::string& told_as) {
  OpenFile source(from, O_RDONLY);
  if (!source) CannotBeRead(from);
  if (flock(source.get(), LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK) {
    throw Trouble(from, "is being written to", "wait until the program that writes it has finished");
  }
  OpenFile target(to, O_WRONLY | O_CREAT | O_TRUNC);
  if (!target) CannotBeWritten(told_as);
  CopyInKernel(source.get(), target.get());
  std::vector<char> buffer(kPiece);
  for (;;) {
    const ssize_t got = ReadSome(source.get(), buffer);
    if (got < 0) CannotBeRead(from);
    if (got == 0) break;
    if (!WriteAll(target.get(), buffer.data(), static_cast<std::size_t>(got))) CannotBeWritten(told_as);
  }
  if (!target.Close()) CannotBeWritten(told_as);
}

bool HaveSameBytes(const std::string& a, const std::string& b) {
  const OpenFile first(a, O_RDONLY), second(b, O_RDONLY);
  std::vector<char> left(kPiece), right(kPiece);
  off_t at = 0;
  for (;;) {
    const ssize_t got = pread(first.get(), left.data(), left.size(), at);
    if (got < 0 || got != pread(second.get(), right.data(), right.size(), at)) return false;
    if (got == 0) return true;
    if (std::memcmp(left.data(), right.data(), static_cast<std::size_t>(got)) != 0) return false;
    at += got;
  }
}

}  // namespace orvio::program
