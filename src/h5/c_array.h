#pragma once

// Arrays of the C allocator, which hosts release with free.

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

}  // namespace orvio
