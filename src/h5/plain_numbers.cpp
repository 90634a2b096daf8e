// Reading of arrays as they lie in a file: runs of elements are found, read in large pieces and turned into the numbers
// that are asked for.

#include "h5/plain_numbers.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

namespace orvio::h5 {
namespace {

using structure::ArrayShape;
using structure::ElementKind;

constexpr std::size_t kPiece = 256 * 1024;  ///< bytes: stays in the cache between the read and the conversion

/// HDF5 makes the nearest number that there is, and infinity of what is beyond the largest one, by however little.
template <class To, class From>
To Converted(From number) {
  if constexpr (std::is_same_v<From, double> && std::is_same_v<To, float>) {
    constexpr double kMost = std::numeric_limits<float>::max();
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    const auto nearest = static_cast<float>(number);
    return number > kMost ? kInfinity : number < -kMost ? -kInfinity : nearest;
  } else if constexpr (std::is_integral_v<To> && sizeof(To) < sizeof(From)) {
    constexpr From kLeast = std::numeric_limits<To>::min(), kMost = std::numeric_limits<To>::max();
    return static_cast<To>(std::clamp(number, kLeast, kMost));
  } else {
    return static_cast<To>(number);
  }
}

template <class T>
T NumberAt(const std::uint8_t* numbers, std::size_t index) {
  T number;
  std::memcpy(&number, numbers + index * sizeof number, sizeof number);
  return number;
}

template <class To, class From>
void ConvertOneByOne(const std::uint8_t* from, To* to, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) to[i] = Converted<To>(NumberAt<From>(from, i));
}

/// Whether no number is beyond the largest float. In bits, as compilers compare those many at once: the numbers without
/// their signs are in the order of their bits, infinity and what is no number come last.
bool AreFloats(const std::uint8_t* doubles, std::size_t count) {
  constexpr auto kMost = std::bit_cast<std::uint64_t>(static_cast<double>(std::numeric_limits<float>::max()));
  std::uint64_t beyond = 0;
  for (std::size_t i = 0; i < count; ++i) beyond |= kMost - (NumberAt<std::uint64_t>(doubles, i) << 1 >> 1);
  return beyond >> 63 == 0;
}

template <class To, class From>
void ConvertEach(const std::uint8_t* from, void* to, std::size_t count) {
  auto* numbers = static_cast<To*>(to);
  if constexpr (std::is_same_v<To, From>) {
    std::memcpy(to, from, count * sizeof(To));
  } else if constexpr (std::is_same_v<From, double> && std::is_same_v<To, float>) {
    constexpr std::size_t kAtOnce = 1024;
    for (std::size_t done = 0; done < count; done += kAtOnce) {
      const std::size_t part = std::min(kAtOnce, count - done);
      const std::uint8_t* some = from + done * sizeof(From);
      if (AreFloats(some, part)) {
        for (std::size_t i = 0; i < part; ++i) numbers[done + i] = static_cast<float>(NumberAt<double>(some, i));
      } else {
        ConvertOneByOne<To, From>(some, numbers + done, part);
      }
    }
  } else {
    ConvertOneByOne<To, From>(from, numbers, count);
  }
}

using Conversion = void (*)(const std::uint8_t*, void*, std::size_t);

struct ConversionRow {
  ElementKind kind;
  std::uint32_t stored;  ///< bytes
  std::size_t wanted;    ///< bytes
  Conversion convert;
};
constexpr ConversionRow kConversions[] = {
    {ElementKind::kFloat, 4, 4, ConvertEach<float, float>},
    {ElementKind::kFloat, 4, 8, ConvertEach<double, float>},
    {ElementKind::kFloat, 8, 4, ConvertEach<float, double>},
    {ElementKind::kFloat, 8, 8, ConvertEach<double, double>},
    {ElementKind::kSigned, 4, 4, ConvertEach<std::int32_t, std::int32_t>},
    {ElementKind::kSigned, 4, 8, ConvertEach<std::int64_t, std::int32_t>},
    {ElementKind::kSigned, 8, 4, ConvertEach<std::int32_t, std::int64_t>},
    {ElementKind::kSigned, 8, 8, ConvertEach<std::int64_t, std::int64_t>},
};

Conversion FindConversion(const ArrayShape& shape, const TypeRow& row) {
  if (std::endian::native != std::endian::little) return nullptr;
  const ElementKind kind = row.type_class == H5T_FLOAT ? ElementKind::kFloat : ElementKind::kSigned;
  const auto* found = std::ranges::find_if(kConversions, [&](const ConversionRow& each) {
    return each.kind == kind && shape.kind == kind && each.stored == shape.element_size && each.wanted == row.size;
  });
  return found == std::end(kConversions) ? nullptr : found->convert;
}

/// One read of an array.
class PlainRead {
 public:
  PlainRead(structure::ByteSource& bytes, const structure::Catalogue::Values& values, const TypeRow& row, void* buffer)
      : bytes_(bytes),
        shape_(values.shape),
        offset_(values.offset),
        wanted_(row.size),
        convert_(FindConversion(values.shape, row)),
        buffer_(static_cast<std::uint8_t*>(buffer)) {}

  bool ReadAll() { return ReadRun(0, shape_.points); }
  bool ReadSlab(const PlainSlab& slab);

 private:
  std::uint32_t Size() const { return shape_.element_size; }
  bool ReadRun(std::uint64_t first, std::uint64_t count);
  bool ReadRuns(std::uint64_t first, std::uint64_t runs, std::uint64_t pitch, std::uint64_t length);
  void Pick(const std::uint8_t* from, std::uint64_t runs, std::uint64_t pitch, std::uint64_t length);
  void Deliver(const std::uint8_t* from, std::uint64_t count) {
    convert_(from, buffer_, count);
    buffer_ += count * wanted_;
  }

  structure::ByteSource& bytes_;
  const ArrayShape& shape_;
  std::uint64_t offset_;
  std::size_t wanted_;
  Conversion convert_;
  std::uint8_t* buffer_;
  std::vector<std::uint8_t> piece_;
  std::vector<std::uint8_t> picked_;
};

/// Elements that lie one behind the other.
bool PlainRead::ReadRun(std::uint64_t first, std::uint64_t count) {
  const std::uint64_t at = offset_ + first * Size();
  if (Size() == wanted_) {
    const bool read = bytes_.Read(at, buffer_, count * Size());
    buffer_ += count * wanted_;
    return read;
  }
  const std::uint64_t most = kPiece / Size();
  piece_.resize(std::min(count, most) * Size());
  for (std::uint64_t done = 0; done < count; done += most) {
    const std::uint64_t part = std::min(most, count - done);
    if (!bytes_.Read(at + done * Size(), piece_.data(), part * Size())) return false;
    Deliver(piece_.data(), part);
  }
  return true;
}

template <class Element>
void PickOne(const std::uint8_t* from, std::uint8_t* to, std::uint64_t runs, std::uint64_t pitch) {
  for (std::uint64_t i = 0; i < runs; ++i) std::memcpy(to + i * sizeof(Element), from + i * pitch, sizeof(Element));
}

void PlainRead::Pick(const std::uint8_t* from, std::uint64_t runs, std::uint64_t pitch, std::uint64_t length) {
  const std::uint64_t run = length * Size(), step = pitch * Size();
  if (Size() != wanted_) picked_.resize(runs * run);
  std::uint8_t* to = Size() == wanted_ ? buffer_ : picked_.data();
  if (run == 4) {
    PickOne<std::uint32_t>(from, to, runs, step);
  } else if (run == 8) {
    PickOne<std::uint64_t>(from, to, runs, step);
  } else {
    for (std::uint64_t i = 0; i < runs; ++i) std::memcpy(to + i * run, from + i * step, run);
  }
  if (Size() == wanted_) {
    buffer_ += runs * run;
  } else {
    Deliver(picked_.data(), runs * length);
  }
}

/// Runs of elements, each `pitch` elements behind the one before it. Those that lie close together are read with what is
/// between them.
bool PlainRead::ReadRuns(std::uint64_t first, std::uint64_t runs, std::uint64_t pitch, std::uint64_t length) {
  constexpr std::uint64_t kClose = 4096;  // bytes that are sooner read than passed over
  if ((pitch - length) * Size() > kClose || length * Size() > kPiece / 2) {
    for (std::uint64_t i = 0; i < runs; ++i) {
      if (!ReadRun(first + i * pitch, length)) return false;
    }
    return true;
  }
  const std::uint64_t most = std::max<std::uint64_t>(kPiece / (pitch * Size()), 1);
  piece_.resize(std::min(runs, most) * pitch * Size());
  for (std::uint64_t done = 0; done < runs; done += most) {
    const std::uint64_t part = std::min(most, runs - done);
    const std::uint64_t elements = (part - 1) * pitch + length;
    if (!bytes_.Read(offset_ + (first + done * pitch) * Size(), piece_.data(), elements * Size())) return false;
    Pick(piece_.data(), part, pitch, length);
  }
  return true;
}

bool PlainRead::ReadSlab(const PlainSlab& slab) {
  // Axes that are read whole lie within a run, and so does the one before them.
  unsigned inner = shape_.rank;
  std::uint64_t length = 1;
  while (inner > 0 && slab.count[inner - 1] == shape_.extents[inner - 1]) length *= shape_.extents[--inner];
  if (inner > 0) length *= slab.count[--inner];
  // Runs step along the axis before; the axes before that count like the digits of a number.
  std::array<std::uint64_t, ArrayShape::kMostRank> steps{};
  std::uint64_t step = 1, first = 0;
  for (unsigned axis = shape_.rank; axis-- > 0; step *= shape_.extents[axis]) {
    steps[axis] = step;
    first += slab.start[axis] * step;
  }
  if (inner == 0) return ReadRun(first, length);
  const unsigned along = inner - 1;
  std::array<std::uint64_t, ArrayShape::kMostRank> at{};
  for (;;) {
    std::uint64_t from = first;
    for (unsigned axis = 0; axis < along; ++axis) from += at[axis] * steps[axis];
    if (!ReadRuns(from, slab.count[along], steps[along], length)) return false;
    unsigned axis = along;
    while (axis > 0 && ++at[axis - 1] == slab.count[axis - 1]) at[--axis] = 0;
    if (axis == 0) return true;
  }
}

}  // namespace

H5T_class_t ClassOf(ElementKind kind) {
  switch (kind) {
    case ElementKind::kSigned:
      return H5T_INTEGER;
    case ElementKind::kFloat:
      return H5T_FLOAT;
    case ElementKind::kText:
      return H5T_STRING;
    default:
      return H5T_NO_CLASS;
  }
}

bool IsPlain(const ArrayShape& shape, const TypeRow& row) { return FindConversion(shape, row) != nullptr; }

void ConvertPlain(const ArrayShape& shape, const TypeRow& row, const std::uint8_t* from, void* to, std::size_t count) {
  FindConversion(shape, row)(from, to, count);
}

bool ReadPlain(structure::ByteSource& bytes, const structure::Catalogue::Values& values, const TypeRow& row,
               const PlainSlab* slab, void* buffer) {
  PlainRead read(bytes, values, row, buffer);
  return slab ? read.ReadSlab(*slab) : read.ReadAll();
}

}  // namespace orvio::h5
