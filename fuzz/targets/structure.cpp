// The look at a file's structure, on bytes in memory.

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "structure/structure_check.h"
#include "target.h"

namespace {

/// Counts what is read of it.
class MemoryBytes : public orvio::structure::ByteSource {
 public:
  MemoryBytes(const std::uint8_t* data, std::size_t size) : data_(data), size_(size) {}

  std::uint64_t Size() const override { return size_; }
  bool Read(std::uint64_t offset, void* buffer, std::size_t count) override {
    if (offset > size_ || count > size_ - offset) return false;
    if (count > 0) std::memcpy(buffer, data_ + offset, count);
    ++reads_;
    return true;
  }
  std::uint64_t reads() const { return reads_; }

 private:
  const std::uint8_t* data_;
  std::size_t size_;
  std::uint64_t reads_ = 0;
};

[[noreturn]] void Fail(const char* what) {
  (void)std::fprintf(stderr, "structure: %s\n", what);
  std::abort();
}

}  // namespace

int LLVMFuzzerInitialize(int* /*argument_count*/, char*** /*arguments*/) { return 0; }

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  MemoryBytes bytes(data, size);
  const auto fault = orvio::structure::CheckStructure(bytes);
  // Work grows with the file: even a structure of one byte would not be read four times.
  if (bytes.reads() > 4 * size + 64) Fail("more reads than the file has structures");
  if (!fault) return 0;
  if (!fault->what || *fault->what == '\0') Fail("a fault without a text");
  return 0;
}
