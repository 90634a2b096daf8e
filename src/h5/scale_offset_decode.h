#pragma once

// What the scale-offset filter stores, and how values come out of it. No HDF5 in here: only bytes.
//
// A chunk is a header of 21 bytes and the values. The header: number of bits (4 bytes, least first), size of the next
// field (1 byte, 8), least value (8 bytes, least first; a float in the first 4 of them), 8 bytes without meaning. With
// fewer bits than the type has, the values follow as offsets from the least one, the most significant bit first,
// without gaps; floats were scaled by a power of ten and rounded. All bits set stand for the fill value, where there is
// one. With as many bits as the type has, the values follow as they are. The last byte may be one more than needed.

#include <cstddef>
#include <cstdint>
#include <optional>

namespace orvio::h5 {

/// How the filter of a dataset was set up.
struct ScaleOffset {
  bool floats = false;
  bool is_signed = false;        ///< of integers
  bool big_endian = false;       ///< of the stored type, which is that of chunks without the filter
  bool applies = false;          ///< the form of the filter is that for the class; else it never packs a chunk
  size_t width = 0;              ///< bytes of a stored value
  int factor = 0;                ///< decimal digits of floats; bits of integers, 0 are as many as it takes
  std::optional<uint64_t> fill;  ///< bits of the fill value, in the least significant ones
};

inline constexpr size_t kScaleOffsetParameters = 20;
inline constexpr size_t kScaleOffsetHeader = 21;

/// From what a file keeps for the filter: form, factor, elements of a chunk, class, size, sign, order, whether there is
/// a fill value, and that. Nothing when HDF5 could not have written it for chunks of so many elements.
std::optional<ScaleOffset> ScaleOffsetFrom(const unsigned (&parameters)[kScaleOffsetParameters], uint64_t elements);

/// The bytes of one stored chunk, found to hold the values of all its elements. Borrows the bytes.
class ScaleOffsetChunk {
 public:
  /// `filtered` is false for a chunk that the file says to be stored as it is. Nothing when bytes are missing, or when
  /// they cannot be told: HDF5 loses floats that are scaled beyond all numbers, and writes twice their bits.
  static std::optional<ScaleOffsetChunk> Open(const ScaleOffset& filter, const unsigned char* bytes, uint64_t size,
                                              uint64_t elements, bool filtered);

  /// Most bytes that a chunk of so many elements can have.
  static uint64_t MostBytes(const ScaleOffset& filter, uint64_t elements);

  /// Puts `count` values from element `first` on into `values`, in the stored type and the byte order of this machine.
  /// Both must lie in the chunk.
  void Decode(uint64_t first, uint64_t count, void* values) const;

 private:
  enum class Form { kPacked, kAsTheyWere, kSwapped };

  const unsigned char* data_ = nullptr;
  uint64_t size_ = 0;
  ScaleOffset filter_;
  Form form_ = Form::kPacked;
  unsigned bits_ = 0;
  uint64_t least_ = 0;
};

}  // namespace orvio::h5
