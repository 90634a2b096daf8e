// Fractal heaps: a table of blocks, each row of which has blocks twice as large as the row before; blocks that are too
// large to hold objects hold a smaller table instead.

#include "structure/fractal_heap.h"

#include "structure/btree_v2.h"
#include "structure/free_space.h"
#include "structure/jenkins.h"

namespace orvio::structure {
namespace {

constexpr std::uint64_t kChecksum = 4;

}  // namespace

/// Notes where large objects are, by their number.
class HugeVisitor : public RecordVisitor {
 public:
  explicit HugeVisitor(FractalHeap& heap) : heap_(heap) {}

  bool Record(std::uint64_t at, Cursor record) override {
    FractalHeap::Place place;
    place.address = record.Address();
    place.size = record.Length();
    const std::uint64_t id = record.Length();
    Walk& walk = heap_.walk_;
    if (!walk.view.Holds(place.address, place.size)) return walk.Refuse(at, "large object passes the end of the file");
    if (id == kUndefined) return walk.Refuse(at, "large object has no number");
    const auto known = heap_.huge_.Insert(id);
    known.value = place;
    return known.added || walk.Refuse(at, "large objects share a number");
  }

 private:
  FractalHeap& heap_;
};

bool FractalHeap::Read(std::uint64_t header) {
  header_ = header;
  const Widths widths = walk_.view.widths();
  const std::uint64_t size = 22U + 12U * widths.length + 3U * widths.offset + kChecksum;
  if (!ReadHeader(walk_.view.At(header, size))) return false;
  if (!walk_.Claim(header, size)) return false;
  if (!EndsWithChecksum(walk_.view, header, size)) {
    return walk_.Refuse(header, "fractal heap does not match its checksum");
  }
  if (!JudgeSizes()) return walk_.Refuse(header, "fractal heap has blocks of impossible sizes");
  if (free_space_ != kUndefined && !CheckFreeSpace(walk_, free_space_)) return false;
  return ReadBlocks() && (huge_tree_ == kUndefined || ReadHuge());
}

bool FractalHeap::ReadHeader(Cursor in) {
  const bool known = in.Is("FRHP") && in.U8() == 0;
  id_size_ = in.U16();
  const unsigned filters = in.U16();
  const unsigned flags = in.U8();
  most_managed_ = in.U32();
  in.Length();  // next number of a large object
  huge_tree_ = in.Address();
  in.Length();  // free space
  free_space_ = in.Address();
  for (int i = 0; i < 8; ++i) in.Length();  // what is stored in which way
  width_ = in.U16();
  first_size_ = in.Length();
  direct_size_ = in.Length();
  space_bits_ = in.U16();
  in.U16();  // rows to begin with
  root_ = in.Address();
  root_rows_ = in.U16();
  has_checksums_ = (flags & 2) != 0;
  if (!known || !in.ok()) return walk_.Refuse(header_, "fractal heap is not where it should be");
  if (filters > 0) return walk_.Refuse(header_, "fractal heap is filtered");
  return flags <= 3 || walk_.Refuse(header_, "fractal heap has unknown flags");
}

bool FractalHeap::JudgeSizes() {
  if (!IsPowerOf2(width_) || !IsPowerOf2(first_size_) || !IsPowerOf2(direct_size_)) return false;
  if (direct_size_ < first_size_ || direct_size_ > 0x80000000U || space_bits_ > 64) return false;
  row_bits_ = Log2(first_size_) + Log2(width_);
  if (row_bits_ > space_bits_ || Log2(direct_size_) > space_bits_) return false;
  if (first_size_ < FrameSize() + (has_checksums_ ? kChecksum : 0)) return false;
  direct_rows_ = Log2(direct_size_) - Log2(first_size_) + 2;
  return root_rows_ <= space_bits_ - row_bits_ + 1 && id_size_ > 1;
}

/// What blocks of both kinds begin with.
bool FractalHeap::ReadFrame(std::uint64_t address, bool direct, std::uint64_t start) {
  Cursor in = walk_.view.At(address, FrameSize());
  const bool known = in.Is(direct ? "FHDB" : "FHIB") && in.U8() == 0;
  const bool ours = in.Address() == header_ && in.Number(OffsetSize()) == start;
  return (known && ours && in.ok()) || walk_.Refuse(address, "fractal heap block is not where it should be");
}

bool FractalHeap::ReadDirect(std::uint64_t address, std::uint64_t start, std::uint64_t size) {
  if (!ReadFrame(address, true, start) || !walk_.Claim(address, size)) return false;
  blocks_.push_back({start, address, size});
  if (!has_checksums_) return true;
  const std::uint64_t place = address + FrameSize();
  const std::uint32_t computed = Checksum(walk_.view, address, size, place);
  return walk_.view.At(place, kChecksum).U32() == computed ||
         walk_.Refuse(address, "fractal heap does not match its checksum");
}

bool FractalHeap::ReadIndirect(const Indirect& block) {
  if (!ReadFrame(block.address, false, block.start)) return false;
  const std::uint64_t width = walk_.view.widths().offset;
  const std::uint64_t size = FrameSize() + block.rows * width_ * width + kChecksum;
  if (!walk_.Claim(block.address, size)) return false;
  if (!EndsWithChecksum(walk_.view, block.address, size)) {
    return walk_.Refuse(block.address, "fractal heap does not match its checksum");
  }
  std::uint64_t at = block.address + FrameSize();
  for (unsigned row = 0; row < block.rows; ++row) {
    for (std::uint64_t column = 0; column < width_; ++column, at += width) {
      const std::uint64_t child = walk_.view.At(at, width).Address();
      const std::uint64_t start = block.start + RowStart(row) + column * RowSize(row);
      if (child != kUndefined && !ReadChild(child, start, row)) return false;
    }
  }
  return true;
}

bool FractalHeap::ReadChild(std::uint64_t address, std::uint64_t start, unsigned row) {
  if (row < direct_rows_) return ReadDirect(address, start, RowSize(row));
  const unsigned bits = Log2(RowSize(row));
  if (bits < row_bits_) return walk_.Refuse(header_, "fractal heap has blocks of impossible sizes");
  pending_.push_back({start, address, bits - row_bits_ + 1});
  return true;
}

bool FractalHeap::ReadBlocks() {
  if (root_ == kUndefined) return true;
  if (root_rows_ == 0) return ReadDirect(root_, 0, first_size_);
  pending_.push_back({0, root_, root_rows_});
  while (!pending_.empty()) {
    const Indirect block = pending_.back();
    pending_.pop_back();
    if (!ReadIndirect(block)) return false;
  }
  std::sort(blocks_.begin(), blocks_.end(), [](const Block& a, const Block& b) { return a.start < b.start; });
  return true;
}

bool FractalHeap::ReadHuge() {
  const Widths widths = walk_.view.widths();
  const std::uint64_t direct = widths.offset + widths.length;
  if (direct <= id_size_ - 1) return walk_.Refuse(header_, "fractal heap has ids of an unknown size");
  HugeVisitor visitor(*this);
  const Tree2Shape shape{1, direct + widths.length};
  return WalkTree2(walk_, huge_tree_, shape, visitor);
}

bool FractalHeap::LocateManaged(std::uint64_t at, Cursor id, Place& place) {
  const std::uint64_t start = id.Number(OffsetSize());
  place.size = id.Number(std::min((Log2(direct_size_) + 7) / 8, BytesFor(most_managed_)));
  if (!id.ok()) return walk_.Refuse(at, "id of a fractal heap is cut short");
  auto block = std::upper_bound(blocks_.begin(), blocks_.end(), start,
                                [](std::uint64_t value, const Block& b) { return value < b.start; });
  if (block == blocks_.begin()) return walk_.Refuse(at, "object is not in its fractal heap");
  --block;
  const std::uint64_t within = start - block->start;
  const std::uint64_t frame = FrameSize() + (has_checksums_ ? kChecksum : 0);
  if (within < frame || within > block->size || place.size > block->size - within) {
    return walk_.Refuse(at, "object is not in its fractal heap");
  }
  place.address = block->address + within;
  return true;
}

bool FractalHeap::LocateHuge(std::uint64_t at, Cursor id, Place& place) {
  const auto width = static_cast<unsigned>(std::min<std::uint64_t>(id_size_ - 1, 8));
  const Place* known = huge_.Get(id.Number(width));
  if (!known) return walk_.Refuse(at, "object is not in its fractal heap");
  place = *known;
  return true;
}

bool FractalHeap::Locate(std::uint64_t at, Cursor id, Place& place) {
  enum Kind { kManaged, kHuge, kTiny };
  const unsigned first = id.U8();
  if ((first >> 6) != 0 || !id.ok()) return walk_.Refuse(at, "id of a fractal heap has an unknown version");
  const unsigned kind = (first >> 4) & 3;
  if (kind == kManaged) return LocateManaged(at, id, place);
  if (kind == kHuge) return LocateHuge(at, id, place);
  // The id itself holds the object.
  place = {at + 1, std::uint64_t{first & 0xf} + 1};
  const bool fits = kind == kTiny && place.size <= id_size_ - 1;
  return fits || walk_.Refuse(at, "id of a fractal heap is of an unknown kind");
}

}  // namespace orvio::structure
