#pragma once

// Arrays of the C allocator, which hosts release with free.

#include <sys/mman.h>

#include <cstdint>
#include <cstdlib>
#include <memory>

namespace orvio {

struct FreeArray {
  void operator()(void* array) const noexcept { std::free(array); }
};

/// Owns a C array inside an operation; release() hands it to the caller.
template <class T>
using CArray = std::unique_ptr<T[], FreeArray>;

/// Zeroed; null when memory runs out.
template <class T>
[[nodiscard]] CArray<T> ZeroedArray(std::size_t count) {
  return CArray<T>(static_cast<T*>(std::calloc(count, sizeof(T))));
}

/// With whatever the memory held; null when it runs out. Large ones are made of large pages where the system has them: a
/// first touch of small ones takes longer than to read the values.
template <class T>
[[nodiscard]] CArray<T> UnsetArray(std::size_t count) {
  constexpr std::size_t kLargePage = std::size_t{2} << 20, kWorthIt = std::size_t{8} << 20;
  std::size_t bytes = 0;
  if (__builtin_mul_overflow(count, sizeof(T), &bytes) || bytes > PTRDIFF_MAX) return nullptr;
  if (bytes < kWorthIt) return CArray<T>(static_cast<T*>(std::malloc(bytes)));
  void* memory = nullptr;
  if (posix_memalign(&memory, kLargePage, bytes) != 0) return nullptr;
  (void)madvise(memory, bytes, MADV_HUGEPAGE);  // a wish
  return CArray<T>(static_cast<T*>(memory));
}

}  // namespace orvio
