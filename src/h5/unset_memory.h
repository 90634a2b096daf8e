#pragma once

// Arrays that are made for values, and that nobody sets before the values come.

#include <cstddef>

namespace orvio::h5 {

/// Tells of such an array while the operation that made it reads into it. HDF5 leaves elements that were never written as
/// it finds them: a read by HDF5 zeroes its part of the array first, so that nothing of the process's memory gets out.
class UnsetMemory {
 public:
  UnsetMemory(const void* memory, std::size_t bytes);
  ~UnsetMemory();
  UnsetMemory(const UnsetMemory&) = delete;
  UnsetMemory& operator=(const UnsetMemory&) = delete;
};

/// Zeroes a buffer if it lies in such an array.
void ZeroIfUnset(void* buffer, std::size_t bytes);

}  // namespace orvio::h5
