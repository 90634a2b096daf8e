#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <new>
#include <stdexcept>
#include <type_traits>
#include <utility>
#include <vector>

namespace orv {

/// An array of numbers that comes from the library without a copy. It is moved, not copied, and then empty; `vector()`
/// makes a copy.
template <class T>
class Buffer {
  static_assert(std::is_arithmetic_v<T>, "a buffer holds numbers");

 public:
  using value_type = T;

  Buffer() = default;
  /// Zeroes. Throws std::bad_alloc.
  explicit Buffer(std::size_t size) : data_(static_cast<T*>(std::calloc(size > 0 ? size : 1, sizeof(T)))), size_(size) {
    if (!data_) throw std::bad_alloc();
  }
  /// Takes over an array of the C allocator, which is freed with the object.
  Buffer(T* data, std::size_t size) noexcept : data_(data), size_(data ? size : 0) {}
  Buffer(Buffer&& other) noexcept : data_(std::move(other.data_)), size_(std::exchange(other.size_, 0)) {}
  Buffer& operator=(Buffer&& other) noexcept {
    data_ = std::move(other.data_);
    size_ = std::exchange(other.size_, 0);
    return *this;
  }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;
  ~Buffer() = default;

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
  T& at(std::size_t i) { return const_cast<T&>(static_cast<const Buffer&>(*this).at(i)); }
  std::vector<T> vector() const { return {begin(), end()}; }

 private:
  struct Free {
    void operator()(T* data) const noexcept { std::free(data); }
  };

  std::unique_ptr<T, Free> data_;
  std::size_t size_ = 0;
};

}  // namespace orv
