#pragma once

// Fractal heaps: where the messages of dense links and attributes are.

#include <cstdint>
#include <vector>

#include "structure/walk.h"

namespace orvio::structure {

/// Reads a whole heap, and finds objects by the ids that indexes hold.
class FractalHeap {
 public:
  explicit FractalHeap(Walk& walk) : walk_(walk) {}

  [[nodiscard]] bool Read(std::uint64_t header);
  std::uint64_t id_size() const { return id_size_; }

  struct Place {
    std::uint64_t address = 0;
    std::uint64_t size = 0;
  };
  /// Where the object is whose id is at `at`.
  [[nodiscard]] bool Locate(std::uint64_t at, Cursor id, Place& place);

 private:
  struct Block {
    std::uint64_t start;  ///< in the heap's own space
    std::uint64_t address;
    std::uint64_t size;
  };
  struct Indirect {
    std::uint64_t start;
    std::uint64_t address;
    unsigned rows;
  };

  bool ReadHeader(Cursor in);
  bool JudgeSizes();
  bool ReadBlocks();
  bool ReadFrame(std::uint64_t address, bool direct, std::uint64_t start);
  bool ReadDirect(std::uint64_t address, std::uint64_t start, std::uint64_t size);
  bool ReadIndirect(const Indirect& block);
  bool ReadChild(std::uint64_t address, std::uint64_t start, unsigned row);
  bool ReadHuge();
  bool LocateManaged(std::uint64_t at, Cursor id, Place& place);
  bool LocateHuge(std::uint64_t at, Cursor id, Place& place);

  unsigned OffsetSize() const { return (space_bits_ + 7) / 8; }
  std::uint64_t FrameSize() const { return 5U + walk_.view.widths().offset + OffsetSize(); }
  std::uint64_t RowSize(unsigned row) const { return row == 0 ? first_size_ : first_size_ << (row - 1); }
  std::uint64_t RowStart(unsigned row) const { return row == 0 ? 0 : width_ * first_size_ << (row - 1); }

  friend class HugeVisitor;

  Walk& walk_;
  std::uint64_t header_ = 0;
  std::uint64_t id_size_ = 0;
  std::uint64_t most_managed_ = 0;
  bool has_checksums_ = false;
  std::uint64_t huge_tree_ = kUndefined;
  std::uint64_t free_space_ = kUndefined;
  std::uint64_t width_ = 0;        ///< blocks of a row
  std::uint64_t first_size_ = 0;   ///< of the blocks of the first row
  std::uint64_t direct_size_ = 0;  ///< of the largest blocks that hold objects
  unsigned space_bits_ = 0;
  std::uint64_t root_ = kUndefined;
  unsigned root_rows_ = 0;    ///< 0: the root is a block with objects
  unsigned direct_rows_ = 0;  ///< rows of blocks that hold objects
  unsigned row_bits_ = 0;
  std::vector<Block> blocks_;  ///< in the order of `start`
  std::vector<Indirect> pending_;
  AddressMap<Place> huge_;
};

}  // namespace orvio::structure
