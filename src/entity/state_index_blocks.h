#pragma once

// The blocks that hold the rows of a state index: one in each state of an open file.

#include <functional>
#include <string>
#include <vector>

#include "h5/handle.h"
#include "orvio/orv_block.h"

namespace orvio {

/// Reads a header or a row from the group that holds it; 0 when it could.
using ReadIndexPart = std::function<int(hid_t part)>;

/// Finds a block of the index in each state and has it read. The index learns the path of the block, and a state that
/// has the same block is read without a search.
class StateIndexBlocks {
 public:
  /// The index needs a reader.
  explicit StateIndexBlocks(ORVBlockHelper& index);

  int GetNumState() const { return static_cast<int>(states_.size()); }

  /// Reads the header of the first block of the first state; of an index without a key, that of the first block with
  /// columns, as `has_columns` tells after each, if there is one. `filter` passes over empty result blocks.
  [[nodiscard]] int ReadHeader(bool filter, const ReadIndexPart& read, const std::function<bool()>& has_columns);
  /// Reads the row of a state, by its 0-based number. The rows must be asked for in the order of the states.
  [[nodiscard]] int ReadRow(int state, bool filter, const ReadIndexPart& read);

 private:
  [[nodiscard]] int ReadFirstBlock(int state, bool filter, const char* part, const ReadIndexPart& read);
  [[nodiscard]] int ReadAnyBlock(int state, bool filter, const char* part, const ReadIndexPart& read);
  [[nodiscard]] int ReadPart(h5::Group block, const char* part, const ReadIndexPart& read) const;

  ORVBlockHelper& index_;
  IOH5Reader& reader_;
  std::vector<std::string> states_;
  bool found_ = false;   ///< a row was read, so path and layout are known
  bool single_ = false;  ///< layout of the first block read, which holds for all others
};

/// Opens the part of a block that has a name in the split layout; in the single one it is the block itself.
h5::Group OpenIndexPart(h5::Group block, bool single, const char* part);

/// Where the index datasets in a group have a row for each state: `by_default` for a group of neither section.
bool HasRowsOfStates(hid_t group, bool by_default);

/// Whether a stored type is read into elements of a size: a wider one would run over the array's end.
bool FitsElement(_ORVDataType type, std::size_t size);

}  // namespace orvio
