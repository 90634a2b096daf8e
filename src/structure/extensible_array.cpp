// Extensible arrays, for datasets that grow along one dimension. The index block leads to data blocks, and through
// super blocks to larger ones: both sizes and counts follow from five numbers of the header.

#include "structure/chunk_arrays.h"
#include "structure/jenkins.h"

namespace orvio::structure {
namespace {

constexpr std::uint64_t kChecksum = 4;

class ArrayWalk {
 public:
  ArrayWalk(Walk& walk, const ChunkElements& elements, std::uint64_t header)
      : walk_(walk), elements_(elements), header_(header), element_(elements.Size(walk.view.widths())) {}

  bool Run() {
    std::uint64_t index = kUndefined;
    if (!ReadHeader(index)) return false;
    return index == kUndefined || CheckIndexBlock(index);
  }

 private:
  std::uint64_t Width() const { return walk_.view.widths().offset; }
  unsigned OffsetSize() const { return (bits_ + 7) / 8; }
  // Data blocks that hang on super block `number`, whether it is a block of its own or part of the index block.
  static std::uint64_t BlocksOf(unsigned number) { return std::uint64_t{1} << (number / 2); }
  std::uint64_t ElementsOf(unsigned number) const { return least_ << ((number + 1) / 2); }

  bool Mismatch(std::uint64_t address) { return walk_.Refuse(address, "extensible array does not match its checksum"); }
  bool Misplaced(std::uint64_t address) { return walk_.Refuse(address, "extensible array is not where it should be"); }

  bool ReadHeader(std::uint64_t& index) {
    const Widths widths = walk_.view.widths();
    const std::uint64_t size = 12U + 6U * widths.length + widths.offset + kChecksum;
    Cursor in = walk_.view.At(header_, size);
    const bool known = in.Is("EAHD") && in.U8() == 0;
    const bool filtered = in.U8() == 1;
    const std::uint64_t element = in.U8();
    bits_ = in.U8();
    in_index_ = in.U8();
    least_ = in.U8();
    least_pointers_ = in.U8();
    page_bits_ = in.U8();
    for (int i = 0; i < 6; ++i) in.Length();  // what there is of each kind
    index = in.Address();
    if (!known || !in.ok()) return Misplaced(header_);
    if (!walk_.Claim(header_, size)) return false;
    if (!EndsWithChecksum(walk_.view, header_, size)) return Mismatch(header_);
    const bool fits = filtered == elements_.filtered() && element == element_ && JudgeSizes();
    return fits || walk_.Refuse(header_, "extensible array does not fit its dataset");
  }

  bool JudgeSizes() {
    if (!IsPowerOf2(least_) || !IsPowerOf2(least_pointers_) || least_pointers_ < 2) return false;
    if (bits_ > 64 || bits_ < Log2(least_) || page_bits_ > 32) return false;
    blocks_ = 1 + bits_ - Log2(least_);
    in_index_blocks_ = 2 * Log2(least_pointers_);
    return blocks_ >= in_index_blocks_;
  }

  /// What blocks of all three kinds begin with.
  bool ReadFrame(std::uint64_t address, const char (&signature)[5]) {
    Cursor in = walk_.view.At(address, 6 + Width());
    const bool known = in.Is(signature) && in.U8() == 0;
    in.Skip(1);
    return (known && in.Address() == header_ && in.ok()) || Misplaced(address);
  }

  bool CheckIndexBlock(std::uint64_t address) {
    if (!ReadFrame(address, "EAIB")) return false;
    const std::uint64_t direct = 2 * (least_pointers_ - 1);
    const std::uint64_t super = blocks_ - in_index_blocks_;
    const std::uint64_t head = 6 + Width();
    const std::uint64_t size = head + in_index_ * element_ + (direct + super) * Width() + kChecksum;
    if (!walk_.Claim(address, size)) return false;
    if (!EndsWithChecksum(walk_.view, address, size)) return Mismatch(address);
    if (!elements_.Check(walk_, address + head, in_index_)) return false;
    std::uint64_t at = address + head + in_index_ * element_;
    for (unsigned number = 0; number < in_index_blocks_; ++number) {
      for (std::uint64_t i = 0; i < BlocksOf(number); ++i, at += Width()) {
        const std::uint64_t block = walk_.view.At(at, Width()).Address();
        if (block != kUndefined && !CheckDataBlock(block, number, 0)) return false;
      }
    }
    for (unsigned number = in_index_blocks_; number < blocks_; ++number, at += Width()) {
      const std::uint64_t block = walk_.view.At(at, Width()).Address();
      if (block != kUndefined && !CheckSuperBlock(block, number)) return false;
    }
    return true;
  }

  bool IsPaged(unsigned number) const { return ElementsOf(number) > std::uint64_t{1} << page_bits_; }
  /// Bytes that tell which pages of a data block were written.
  std::uint64_t BitmapOf(unsigned number) const {
    return IsPaged(number) ? ((ElementsOf(number) >> page_bits_) + 7) / 8 : 0;
  }

  bool CheckSuperBlock(std::uint64_t address, unsigned number) {
    if (!ReadFrame(address, "EASB")) return false;
    std::uint64_t bitmaps = 0;
    if (number > 64 || !Multiply(BlocksOf(number), BitmapOf(number), bitmaps) || bitmaps > walk_.view.end()) {
      return walk_.Refuse(address, "structure passes the end of the file");
    }
    const std::uint64_t head = 6 + Width() + OffsetSize();
    const std::uint64_t size = head + bitmaps + BlocksOf(number) * Width() + kChecksum;
    if (!walk_.Claim(address, size)) return false;
    if (!EndsWithChecksum(walk_.view, address, size)) return Mismatch(address);
    for (std::uint64_t i = 0; i < BlocksOf(number); ++i) {
      const std::uint64_t block = walk_.view.At(address + head + bitmaps + i * Width(), Width()).Address();
      const std::uint64_t bitmap = address + head + i * BitmapOf(number);
      if (block != kUndefined && !CheckDataBlock(block, number, bitmap)) return false;
    }
    return true;
  }

  /// `bitmap` is where the bits of a paged block are; the index block has none.
  bool CheckDataBlock(std::uint64_t address, unsigned number, std::uint64_t bitmap) {
    if (!ReadFrame(address, "EADB")) return false;
    const std::uint64_t count = ElementsOf(number);
    const std::uint64_t head = 6 + Width() + OffsetSize();
    std::uint64_t bytes = 0;
    if (!Multiply(count, element_, bytes) || bytes > walk_.view.end()) {
      return walk_.Refuse(address, "structure passes the end of the file");
    }
    if (IsPaged(number)) return bitmap != 0 ? CheckPages(address, number, bitmap) : Misplaced(address);
    const std::uint64_t size = head + bytes + kChecksum;
    if (!walk_.Claim(address, size)) return false;
    if (!EndsWithChecksum(walk_.view, address, size)) return Mismatch(address);
    return elements_.Check(walk_, address + head, count);
  }

  bool CheckPages(std::uint64_t address, unsigned number, std::uint64_t bitmap) {
    const std::uint64_t head = 6 + Width() + OffsetSize() + kChecksum;
    const std::uint64_t pages = ElementsOf(number) >> page_bits_;
    const std::uint64_t page = std::uint64_t{1} << page_bits_;
    const std::uint64_t page_size = page * element_ + kChecksum;
    if (!walk_.Claim(address, head + pages * page_size)) return false;
    if (!EndsWithChecksum(walk_.view, address, head)) return Mismatch(address);
    for (std::uint64_t i = 0; i < pages; ++i) {
      const std::uint64_t at = address + head + i * page_size;
      const unsigned byte = walk_.view.At(bitmap + i / 8, 1).U8();
      if ((byte & (0x80U >> (i % 8))) == 0) continue;
      if (!EndsWithChecksum(walk_.view, at, page_size)) return Mismatch(at);
      if (!elements_.Check(walk_, at, page)) return false;
    }
    return true;
  }

  Walk& walk_;
  const ChunkElements& elements_;
  std::uint64_t header_;
  std::uint64_t element_;             ///< bytes of an element
  unsigned bits_ = 0;                 ///< of the number of an element
  std::uint64_t in_index_ = 0;        ///< elements in the index block itself
  std::uint64_t least_ = 0;           ///< elements of the smallest data blocks
  std::uint64_t least_pointers_ = 0;  ///< data blocks of the smallest super block
  unsigned page_bits_ = 0;
  unsigned blocks_ = 0;           ///< super blocks, with those that are part of the index block
  unsigned in_index_blocks_ = 0;  ///< super blocks that are part of the index block
};

}  // namespace

bool WalkExtensibleArray(Walk& walk, const ChunkElements& elements, std::uint64_t header) {
  return ArrayWalk(walk, elements, header).Run();
}

}  // namespace orvio::structure
