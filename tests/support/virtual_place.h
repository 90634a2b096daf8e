#pragma once

// The places of virtual operations, by which hosts that are built already call them.

#include <cstddef>
#include <cstring>

namespace orv_test {

/// Place of an operation in the table of its class, where the two of the destructor count, too: the Itanium C++ ABI, which
/// GCC and Clang follow, keeps it in the first word of a pointer to the operation, as an offset in bytes that may have its
/// lowest bit set.
template <class Operation>
std::ptrdiff_t PlaceOf(Operation operation) {
  std::ptrdiff_t words[2] = {};
  static_assert(sizeof operation == sizeof words);
  std::memcpy(words, &operation, sizeof words);
  return words[0] / static_cast<std::ptrdiff_t>(sizeof(void*));
}

}  // namespace orv_test
