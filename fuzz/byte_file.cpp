#include "byte_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace orvio::fuzz {
namespace {

/// A folder in memory where the machine has one. HDF5 looks up the real path of a link, so a descriptor's own path,
/// "/proc/self/fd/N", does not do.
std::string PlaceForFiles() {
  const char* const shared_memory = "/dev/shm";
  const bool usable = access(shared_memory, W_OK) == 0;
  return usable ? shared_memory : std::filesystem::temp_directory_path().string();
}

}  // namespace

ByteFile::ByteFile(const std::uint8_t* bytes, std::size_t size)
    : path_(PlaceForFiles() + "/orvio-fuzz-" + std::to_string(getpid())) {
  unlink(path_.c_str());
  const int descriptor = open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
  if (descriptor < 0) std::abort();
  for (std::size_t done = 0; done < size;) {
    const ssize_t count = write(descriptor, bytes + done, size - done);
    if (count <= 0) std::abort();
    done += static_cast<std::size_t>(count);
  }
  close(descriptor);
}

ByteFile::~ByteFile() { unlink(path_.c_str()); }

}  // namespace orvio::fuzz
