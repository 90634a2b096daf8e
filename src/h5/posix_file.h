#pragma once

// Descriptors, and reads and writes that are whole or failed.

#include <sys/stat.h>
#include <unistd.h>

#include <cstdint>
#include <string>
#include <utility>

namespace orvio::h5 {

/// Closes a descriptor unless it was released.
class Descriptor {
 public:
  Descriptor() = default;
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor() {
    if (number_ >= 0) (void)::close(number_);  // read only, or an open that failed: nothing to lose
  }

  explicit operator bool() const { return number_ >= 0; }
  int get() const { return number_; }
  int* place() { return &number_; }
  [[nodiscard]] bool Close() { return ::close(std::exchange(number_, -1)) == 0; }

 private:
  int number_ = -1;
};

/// Reads up to `count` bytes at `offset`: fewer only where the file ends. -1 when the disk fails.
[[nodiscard]] std::int64_t ReadAt(int descriptor, std::uint64_t offset, void* buffer, std::size_t count);

/// Writes all of `count` bytes at `offset`. False when that is not possible; errno tells why.
[[nodiscard]] bool WriteAt(int descriptor, std::uint64_t offset, const void* buffer, std::size_t count);

[[nodiscard]] bool SetSize(int descriptor, std::uint64_t size);

/// Lets what a file holds reach the disk.
[[nodiscard]] bool SyncFile(int descriptor);
/// The same for the names in the folder of a file.
[[nodiscard]] bool SyncFolderOf(const std::string& path);

/// The path of a file without a symbolic link at its end: what lies beside the file lies beside that.
std::string ResolvedPath(const char* name);

}  // namespace orvio::h5
