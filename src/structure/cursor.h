#pragma once

// Reading little-endian fields from bytes whose end is known.

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace orvio::structure {

/// An address that leads nowhere: all bits set, in whatever width a file stores addresses.
inline constexpr std::uint64_t kUndefined = ~std::uint64_t{0};

/// How many bytes a file uses for addresses and for lengths.
struct Widths {
  std::uint8_t offset = 8;
  std::uint8_t length = 8;
};

/// Moves through some bytes. A read beyond their end yields zero and is remembered: all later ones do the same, so a
/// parser reads its fields in a row and asks ok() once. The bytes are borrowed; see FileView for how long they last.
class Cursor {
 public:
  Cursor() = default;  ///< has failed already
  Cursor(const std::uint8_t* begin, std::size_t size, Widths widths)
      : begin_(begin), at_(begin), end_(begin + size), widths_(widths), ok_(true) {}

  bool ok() const { return ok_; }
  std::size_t left() const { return static_cast<std::size_t>(end_ - at_); }
  std::size_t taken() const { return static_cast<std::size_t>(at_ - begin_); }
  Widths widths() const { return widths_; }
  const std::uint8_t* data() const { return at_; }

  std::uint8_t U8() { return static_cast<std::uint8_t>(Fixed<1>()); }
  std::uint16_t U16() { return static_cast<std::uint16_t>(Fixed<2>()); }
  std::uint32_t U32() { return static_cast<std::uint32_t>(Fixed<4>()); }
  std::uint64_t U64() { return Fixed<8>(); }
  /// A number of `width` bytes, 0 to 8.
  std::uint64_t Number(unsigned width) {
    if (width == 8) return U64();
    if (!Need(width)) return 0;
    std::uint64_t value = 0;
    for (unsigned i = 0; i < width; ++i) value |= std::uint64_t{at_[i]} << (8 * i);
    at_ += width;
    return value;
  }
  std::uint64_t Length() { return Number(widths_.length); }
  std::uint64_t Address() {
    const std::uint64_t value = Number(widths_.offset);
    const bool all_ones = widths_.offset < 8 && value == (std::uint64_t{1} << (8 * widths_.offset)) - 1;
    return all_ones ? kUndefined : value;
  }

  void Skip(std::uint64_t count) {
    if (Need(count)) at_ += count;
  }
  /// Moves on to the next multiple of 8 bytes counted from `start`, which is a former taken().
  void AlignFrom(std::size_t start) { Skip((8 - (taken() - start) % 8) % 8); }
  /// The next `count` bytes on their own.
  Cursor Take(std::uint64_t count) {
    if (!Need(count)) return {};
    const Cursor part(at_, static_cast<std::size_t>(count), widths_);
    at_ += count;
    return part;
  }
  bool Is(const char (&signature)[5]) {
    if (!Need(4)) return false;
    at_ += 4;
    return std::memcmp(at_ - 4, signature, 4) == 0;
  }
  /// Passes a text and the zero byte behind it. Answers the text's length.
  std::size_t Text() {
    const void* zero = left() > 0 ? std::memchr(at_, 0, left()) : nullptr;
    const std::size_t length = zero ? static_cast<std::size_t>(static_cast<const std::uint8_t*>(zero) - at_) : left();
    Skip(std::uint64_t{length} + 1);
    return length;
  }
  void Fail() {
    ok_ = false;
    at_ = end_;
  }

 private:
  bool Need(std::uint64_t count) {
    if (ok_ && count <= left()) return true;
    Fail();
    return false;
  }
  template <unsigned N>
  std::uint64_t Fixed() {
    if (!Need(N)) return 0;
    std::uint64_t value = 0;
    if constexpr (std::endian::native == std::endian::little) {
      std::memcpy(&value, at_, N);
    } else {
      for (unsigned i = 0; i < N; ++i) value |= std::uint64_t{at_[i]} << (8 * i);
    }
    at_ += N;
    return value;
  }

  const std::uint8_t* begin_ = nullptr;
  const std::uint8_t* at_ = nullptr;
  const std::uint8_t* end_ = nullptr;
  Widths widths_;
  bool ok_ = false;
};

/// The product, or false when it takes more than 64 bits.
[[nodiscard]] inline bool Multiply(std::uint64_t a, std::uint64_t b, std::uint64_t& product) {
  return !__builtin_mul_overflow(a, b, &product);
}

/// Position of the highest bit that is set; 0 for 0.
constexpr unsigned Log2(std::uint64_t value) {
  return value == 0 ? 0 : 63U - static_cast<unsigned>(__builtin_clzll(value));
}
constexpr bool IsPowerOf2(std::uint64_t value) { return value != 0 && (value & (value - 1)) == 0; }
/// Bytes that the format gives a number that can be as large as `limit`.
constexpr unsigned BytesFor(std::uint64_t limit) { return Log2(limit) / 8 + 1; }

}  // namespace orvio::structure
