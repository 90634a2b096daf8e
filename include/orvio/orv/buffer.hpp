#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <stdexcept>
#include <vector>

namespace orv {

/// An array of numbers that comes from the library without a copy. It is moved, not copied; `vector()` makes a copy.
template <class T>
class Buffer {
 public:
  using value_type = T;

  Buffer() = default;
  /// Not initialised. Throws std::bad_alloc.
  explicit Buffer(std::size_t size) : data_(static_cast<T*>(std::malloc(bytes(size)))), size_(size) {
    if (!data_) throw std::bad_alloc();
  }
  /// Takes over an array of the C allocator.
  Buffer(T* data, std::size_t size) noexcept : data_(data), size_(data ? size : 0) {}

  T* data() noexcept { return data_.get(); }
  const T* data() const noexcept { return data_.get(); }
  std::size_t size() const noexcept { return size_; }
  bool empty() const noexcept { return size_ == 0; }
  T* begin() noexcept { return data(); }
  T* end() noexcept { return data() + size_; }
  const T* begin() const noexcept { return data(); }
  const T* end() const noexcept { return data() + size_; }
  T& operator[](std::size_t i) noexcept { return data_.get()[i]; }
  const T& operator[](std::size_t i) const noexcept { return data_.get()[i]; }
  /// Throws std::out_of_range.
  const T& at(std::size_t i) const {
    if (i >= size_) throw std::out_of_range("orv::Buffer::at");
    return data_.get()[i];
  }
  std::vector<T> vector() const { return {begin(), end()}; }

 private:
  struct Free {
    void operator()(T* data) const noexcept { std::free(data); }
  };

  static std::size_t bytes(std::size_t size) {
    if (size > static_cast<std::size_t>(-1) / sizeof(T)) throw std::bad_alloc();
    return size == 0 ? 1 : size * sizeof(T);
  }

  std::unique_ptr<T, Free> data_;
  std::size_t size_ = 0;
};

}  // namespace orv
