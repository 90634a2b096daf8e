#pragma once

// Arrays for the datasets of a block, sized by the counts of its header, which a damaged file may claim at will.

#include <cstdint>
#include <functional>
#include <initializer_list>

#include "h5/extents.h"

namespace orvio::h5 {

/// Elements of a dataset that are really in the file, where one has so many bytes at least before filters.
using StoredElementsOf = std::function<std::uint64_t(const char* dataset, std::uint64_t bytes_each)>;

/// Makes the arrays of one block, zeroed and of the C allocator. 64 MiB are made on the word of the header; a larger
/// array needs as many elements in the file. After the first array that cannot be had it makes no more. An array that is
/// there already is resized; one that cannot be had stays as it was.
class ArrayMaker {
 public:
  using Shape = std::initializer_list<std::int64_t>;

  explicit ArrayMaker(const StoredElementsOf& stored) : stored_(stored) {}

  /// Integers or floats of four bytes.
  template <class T>
  void numbers(T*& array, const char* dataset, Shape shape) {
    array = static_cast<T*>(Make(array, dataset, shape, {4, 1, 0}));  // a file may have them in a smaller type
  }
  /// Texts of `width` bytes. One byte more ends the last one where a reader takes it for the rest of the array.
  void texts(char*& array, const char* dataset, Shape shape, std::int64_t width);

  [[nodiscard]] bool ok() const { return ok_; }

 private:
  /// Bytes of an element in an array, the least that it has in a dataset, and bytes behind the last one.
  struct ElementSize {
    std::uint64_t bytes, stored, spare;
  };

  void* Make(void* array, const char* dataset, Shape shape, const ElementSize& size);
  bool Admits(const char* dataset, std::uint64_t elements, std::uint64_t bytes, std::uint64_t stored_each);

  const StoredElementsOf& stored_;
  std::uint64_t unbacked_ = kUnbackedBytes;  ///< what may still be made on the word of the header
  bool ok_ = true;
};

}  // namespace orvio::h5
