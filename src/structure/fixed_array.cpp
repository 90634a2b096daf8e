// Fixed arrays, for datasets whose extents are limited.

#include "structure/chunk_arrays.h"

#include "structure/jenkins.h"

namespace orvio::structure {
namespace {

constexpr std::uint64_t kChecksum = 4;
constexpr unsigned kMostPageBits = 32;

struct FixedArray {
  std::uint64_t header = 0;
  std::uint64_t count = 0;  ///< elements
  std::uint64_t page = 0;   ///< elements of a page
  std::uint64_t data = kUndefined;
};

bool ReadHeader(Walk& walk, const ChunkElements& elements, FixedArray& array) {
  const Widths widths = walk.view.widths();
  const std::uint64_t size = 8U + widths.length + widths.offset + kChecksum;
  Cursor in = walk.view.At(array.header, size);
  const bool known = in.Is("FAHD") && in.U8() == 0;
  const bool filtered = in.U8() == 1;
  const std::uint64_t element = in.U8();
  const unsigned page_bits = in.U8();
  array.count = in.Length();
  array.data = in.Address();
  if (!known || !in.ok()) return walk.Refuse(array.header, "fixed array is not where it should be");
  if (!walk.Claim(array.header, size)) return false;
  if (!EndsWithChecksum(walk.view, array.header, size)) {
    return walk.Refuse(array.header, "fixed array does not match its checksum");
  }
  std::uint64_t chunks = 0;
  const bool fits = filtered == elements.filtered() && element == elements.Size(widths) && page_bits <= kMostPageBits &&
                    CountChunks(elements.rules(), chunks) && chunks == array.count;
  array.page = std::uint64_t{1} << (page_bits & 63U);
  return fits || walk.Refuse(array.header, "fixed array does not fit its dataset");
}

/// The pages that were written, each with a checksum of its own.
bool CheckPages(Walk& walk, const ChunkElements& elements, const FixedArray& array, std::uint64_t first) {
  const std::uint64_t element = elements.Size(walk.view.widths());
  const std::uint64_t bits = array.data + 6U + walk.view.widths().offset;
  std::uint64_t at = first;
  for (std::uint64_t done = 0, number = 0; done < array.count; done += array.page, ++number) {
    const std::uint64_t count = std::min(array.page, array.count - done);
    const std::uint64_t size = count * element + kChecksum;
    const unsigned byte = walk.view.At(bits + number / 8, 1).U8();
    const bool written = (byte & (0x80U >> (number % 8))) != 0;
    if (written && !EndsWithChecksum(walk.view, at, size)) {
      return walk.Refuse(at, "fixed array does not match its checksum");
    }
    if (written && !elements.Check(walk, at, count)) return false;
    at += size;
  }
  return true;
}

bool CheckData(Walk& walk, const ChunkElements& elements, const FixedArray& array) {
  const Widths widths = walk.view.widths();
  const std::uint64_t head = 6U + widths.offset;
  Cursor in = walk.view.At(array.data, head);
  const bool known = in.Is("FADB") && in.U8() == 0;
  in.Skip(1);
  if (!known || in.Address() != array.header || !in.ok()) {
    return walk.Refuse(array.data, "fixed array is not where it should be");
  }
  const bool paged = array.count > array.page;
  const std::uint64_t pages = paged ? array.count / array.page + (array.count % array.page != 0 ? 1 : 0) : 0;
  std::uint64_t bytes = 0;
  if (!Multiply(array.count, elements.Size(widths), bytes) || bytes > walk.view.end()) {
    return walk.Refuse(array.data, "structure passes the end of the file");
  }
  const std::uint64_t bitmap = pages / 8 + (pages % 8 != 0 ? 1 : 0);
  const std::uint64_t start = head + bitmap + (paged ? kChecksum : 0);
  if (!walk.Claim(array.data, start + bytes + (paged ? pages : 1) * kChecksum)) return false;
  const std::uint64_t checked = paged ? start : start + bytes + kChecksum;
  if (!EndsWithChecksum(walk.view, array.data, checked)) {
    return walk.Refuse(array.data, "fixed array does not match its checksum");
  }
  return paged ? CheckPages(walk, elements, array, array.data + start)
               : elements.Check(walk, array.data + start, array.count);
}

}  // namespace

bool WalkFixedArray(Walk& walk, const ChunkElements& elements, std::uint64_t header) {
  FixedArray array;
  array.header = header;
  if (!ReadHeader(walk, elements, array)) return false;
  return array.data == kUndefined || CheckData(walk, elements, array);
}

}  // namespace orvio::structure
