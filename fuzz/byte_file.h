#pragma once

// Bytes in memory under a path, for code that opens files itself.

#include <cstddef>
#include <cstdint>
#include <string>

namespace orvio::fuzz {

/// A file in memory that goes with the object; one at a time in a process. Each one is a file of its own, so that nobody
/// who knows a file again takes these bytes for earlier ones. A process that dies leaves the last one behind, as
/// "orvio-fuzz-<process>" in the folder for shared memory.
class ByteFile {
 public:
  ByteFile(const std::uint8_t* bytes, std::size_t size);
  ByteFile(const ByteFile&) = delete;
  ByteFile& operator=(const ByteFile&) = delete;
  ~ByteFile();

  const char* path() const { return path_.c_str(); }

 private:
  std::string path_;
};

}  // namespace orvio::fuzz
