// Values out of the bytes of a chunk that went through the scale-offset filter. The arithmetic of floats is that of
// HDF5, operation by operation, so that the values are the same to the last bit.

#include "h5/scale_offset_decode.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>
#include <type_traits>

namespace orvio::h5 {
namespace {

static_assert(std::endian::native == std::endian::little, "chunks of full width hold values of little-endian writers");

/// A chunk's nominal size is below 4 GiB, so that no product of elements and bits can wrap.
constexpr uint64_t kMostBytes = UINT32_MAX;

uint64_t LittleEndian(const unsigned char* bytes, size_t count) {
  uint64_t value = 0;
  std::memcpy(&value, bytes, count);
  return value;
}

/// Reads values of a fixed number of bits, below 64, from packed bytes.
class BitReader {
 public:
  BitReader(const unsigned char* data, uint64_t size, unsigned bits) : data_(data), size_(size), bits_(bits) {}

  /// First element that may not be read by Fast().
  uint64_t FastEnd() const { return size_ < kReach ? 0 : (size_ - kReach) * 8 / bits_; }

  /// Eight bytes at once hold what has up to 56 bits, wherever in a byte it begins; a ninth ends what has more.
  template <bool kWide>
  uint64_t Fast(uint64_t element) const {
    const uint64_t bit = element * bits_;
    uint64_t word = 0;
    std::memcpy(&word, data_ + bit / 8, sizeof word);
    word = __builtin_bswap64(word) << (bit % 8);
    if constexpr (kWide) word |= data_[bit / 8 + 8] >> (8 - bit % 8);
    return word >> (64 - bits_);
  }

  /// The same near the end of the bytes, where not so many follow.
  uint64_t Careful(uint64_t element) const {
    const uint64_t bit = element * bits_;
    unsigned char padded[kReach] = {};
    std::memcpy(padded, data_ + bit / 8, std::min<uint64_t>(kReach, size_ - bit / 8));
    return BitReader(padded, kReach, bits_).FastAt(bit % 8);
  }

 private:
  static constexpr uint64_t kReach = 9;

  uint64_t FastAt(uint64_t bit) const {
    uint64_t word = 0;
    std::memcpy(&word, data_, sizeof word);
    word = __builtin_bswap64(word) << bit | data_[8] >> (8 - bit);
    return word >> (64 - bits_);
  }

  const unsigned char* data_;
  uint64_t size_;
  unsigned bits_;
};

template <class T>
struct OffsetInteger {
  T least;
  T operator()(uint64_t code) const { return static_cast<T>(code + least); }
};

template <class T>
struct OffsetFloat {
  using Code = std::conditional_t<sizeof(T) == 4, int32_t, int64_t>;
  T least;
  T scale;
  T operator()(uint64_t code) const { return static_cast<T>(static_cast<Code>(code)) / scale + least; }
};

/// Values without a fill value, or with: `all_set` is its code then.
template <class T, class Restore>
struct WithFill {
  Restore restore;
  uint64_t all_set;
  T fill;
  T operator()(uint64_t code) const { return code == all_set ? fill : restore(code); }
};

template <bool kWide, class T, class Restore>
void Unpack(const BitReader& reader, uint64_t first, uint64_t count, T* values, Restore restore) {
  const uint64_t fast = std::clamp(reader.FastEnd(), first, first + count) - first;
  for (uint64_t i = 0; i < fast; ++i) values[i] = restore(reader.Fast<kWide>(first + i));
  for (uint64_t i = fast; i < count; ++i) values[i] = restore(reader.Careful(first + i));
}

/// What a chunk's packed values are, besides their type.
struct Packed {
  const unsigned char* data;
  uint64_t size;
  unsigned bits;
  std::optional<uint64_t> fill;
};

template <class T>
T FromBits(uint64_t bits) {
  T value;
  std::memcpy(&value, &bits, sizeof value);
  return value;
}

template <class T, class Restore>
void UnpackAll(const Packed& packed, uint64_t first, uint64_t count, T* values, Restore restore) {
  if (packed.bits == 0) {  // where there is a fill value, no bits at all are "all bits set"
    std::fill_n(values, count, packed.fill ? FromBits<T>(*packed.fill) : restore(0));
    return;
  }
  const BitReader reader(packed.data, packed.size, packed.bits);
  if (!packed.fill) {
    return packed.bits > 56 ? Unpack<true>(reader, first, count, values, restore)
                            : Unpack<false>(reader, first, count, values, restore);
  }
  const uint64_t all_set = (uint64_t{1} << packed.bits) - 1;
  const WithFill<T, Restore> filled{restore, all_set, FromBits<T>(*packed.fill)};
  return packed.bits > 56 ? Unpack<true>(reader, first, count, values, filled)
                          : Unpack<false>(reader, first, count, values, filled);
}

template <class T>
void UnpackIntegers(const Packed& packed, uint64_t least, uint64_t first, uint64_t count, void* values) {
  UnpackAll(packed, first, count, static_cast<T*>(values), OffsetInteger<T>{static_cast<T>(least)});
}

template <class T>
void UnpackFloats(const Packed& packed, uint64_t least, int digits, uint64_t first, uint64_t count, void* values) {
  const auto scale = static_cast<T>(std::pow(10.0, digits));
  UnpackAll(packed, first, count, static_cast<T*>(values), OffsetFloat<T>{FromBits<T>(least), scale});
}

void SwapBytes(unsigned char* values, uint64_t count, size_t width) {
  for (uint64_t i = 0; i < count; ++i) std::reverse(values + i * width, values + (i + 1) * width);
}

/// Division by the scale of floats must give numbers; integers have as many bits as it takes or fewer than the type.
bool IsFactor(const ScaleOffset& filter) {
  if (!filter.floats) return filter.factor >= 0 && filter.factor < static_cast<int>(filter.width * 8);
  const double scale = std::pow(10.0, filter.factor);
  const double stored = filter.width == 4 ? static_cast<double>(static_cast<float>(scale)) : scale;
  return std::isfinite(stored) && stored > 0;
}

/// 0 for a size that is none of the filter.
size_t WidthOf(unsigned size, bool floats) {
  const bool integer = size == 1 || size == 2;
  return size == 4 || size == 8 || (integer && !floats) ? size : 0;
}

}  // namespace

std::optional<ScaleOffset> ScaleOffsetFrom(const unsigned (&parameters)[kScaleOffsetParameters], uint64_t elements) {
  enum { kForm, kFactor, kElements, kClass, kSize, kSign, kOrder, kHasFill, kFill };
  const bool told = parameters[kForm] <= 2 && parameters[kClass] <= 1 && parameters[kSign] <= 1 &&
                    parameters[kOrder] <= 1 && parameters[kHasFill] <= 1;
  if (!told || parameters[kElements] != elements || elements == 0) return std::nullopt;
  ScaleOffset filter;
  filter.floats = parameters[kClass] == 1;
  filter.is_signed = parameters[kSign] == 1;
  filter.big_endian = parameters[kOrder] == 1;
  filter.applies = parameters[kForm] == (filter.floats ? 0U : 2U);
  filter.width = WidthOf(parameters[kSize], filter.floats);
  filter.factor = static_cast<int>(parameters[kFactor]);
  if (filter.width == 0 || elements > kMostBytes / filter.width) return std::nullopt;
  if (parameters[kHasFill] == 1) {
    filter.fill = parameters[kFill] | static_cast<uint64_t>(parameters[kFill + 1]) << 32;
  }
  return filter;
}

uint64_t ScaleOffsetChunk::MostBytes(const ScaleOffset& filter, uint64_t elements) {
  return kScaleOffsetHeader + elements * filter.width + 1;
}

std::optional<ScaleOffsetChunk> ScaleOffsetChunk::Open(const ScaleOffset& filter, const unsigned char* bytes,
                                                       uint64_t size, uint64_t elements, bool filtered) {
  ScaleOffsetChunk chunk;
  chunk.filter_ = filter;
  const uint64_t plain = elements * filter.width;
  // Integers that are to have all of their bits stay as they are, and the file does not say so.
  const bool all_bits = !filter.floats && filter.applies && filter.factor == static_cast<int>(filter.width * 8);
  if (!filtered || all_bits) {
    chunk.form_ = filter.big_endian ? Form::kSwapped : Form::kAsTheyWere;
    chunk.data_ = bytes;
    chunk.size_ = size;
    return size == plain ? std::optional(chunk) : std::nullopt;
  }
  const bool has_header = size >= kScaleOffsetHeader && size <= MostBytes(filter, elements) && bytes[4] == 8;
  if (!filter.applies || !has_header) return std::nullopt;
  chunk.bits_ = static_cast<unsigned>(LittleEndian(bytes, 4));
  chunk.least_ = LittleEndian(bytes + 5, 8);
  chunk.data_ = bytes + kScaleOffsetHeader;
  chunk.size_ = size - kScaleOffsetHeader;
  if (chunk.bits_ > filter.width * 8 || chunk.size_ < (elements * chunk.bits_ + 7) / 8) return std::nullopt;
  if (chunk.bits_ == filter.width * 8) {
    chunk.form_ = Form::kAsTheyWere;
    return chunk;
  }
  return IsFactor(filter) ? std::optional(chunk) : std::nullopt;
}

void ScaleOffsetChunk::Decode(uint64_t first, uint64_t count, void* values) const {
  const size_t width = filter_.width;
  if (form_ != Form::kPacked) {
    std::memcpy(values, data_ + first * width, count * width);
    if (form_ == Form::kSwapped) SwapBytes(static_cast<unsigned char*>(values), count, width);
    return;
  }
  const Packed packed{data_, size_, bits_, filter_.fill};
  if (filter_.floats) {
    return width == 4 ? UnpackFloats<float>(packed, least_, filter_.factor, first, count, values)
                      : UnpackFloats<double>(packed, least_, filter_.factor, first, count, values);
  }
  if (width == 1) return UnpackIntegers<uint8_t>(packed, least_, first, count, values);
  if (width == 2) return UnpackIntegers<uint16_t>(packed, least_, first, count, values);
  if (width == 4) return UnpackIntegers<uint32_t>(packed, least_, first, count, values);
  UnpackIntegers<uint64_t>(packed, least_, first, count, values);
}

}  // namespace orvio::h5
