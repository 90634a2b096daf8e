#pragma once

// What the writes of all blocks share: the parts of a block, the order of the steps, and the switches around them.

#include <string>
#include <utility>

#include "block/stored_shapes.h"
#include "filer/process_state.h"
#include "h5/file_access.h"
#include "h5/group_paths.h"
#include "orvio/orv_block.h"

namespace orvio {

/// Lets the write helpers open files for reading and writing for the life of the scope.
class [[nodiscard]] WriteAccess {
 public:
  WriteAccess() : access_(process().g_nReadAccess, H5F_ACC_RDWR) {}

 private:
  Swapped<unsigned> access_;
};

/// Compression of the numeric writes as a block asks for it, for the life of the scope.
class [[nodiscard]] BlockCompression {
 public:
  /// Negative digits switch it off.
  explicit BlockCompression(int digits);
  ~BlockCompression();
  BlockCompression(const BlockCompression&) = delete;
  BlockCompression& operator=(const BlockCompression&) = delete;

 private:
  Compression before_;
};

/// The groups that the parts of a block are written to: one in the single layout, up to three in the split one. A block
/// that is not there yet is built where nobody sees it, and gets its name when it is whole.
class BlockParts {
 public:
  /// Opens or makes the parts that `what` names below the child `name` of `parent`, which is made when missing; a
  /// null name takes `parent` itself.
  BlockParts(hid_t parent, const char* name, int what);
  ~BlockParts();
  BlockParts(const BlockParts&) = delete;
  BlockParts& operator=(const BlockParts&) = delete;

  explicit operator bool() const { return status_ == 0; }
  hid_t header() const { return header_; }
  hid_t data() const { return data_; }
  hid_t index() const { return index_; }

  /// Closes every group once. `status` if that was a failure already, else 1 when a close fails.
  [[nodiscard]] int Close(int status);

 private:
  bool GiveName();

  hid_t parent_;
  std::string new_name_;  ///< of a block that has none yet
  int status_ = 1;
  h5::Group base_;  // empty when the parts lie in the parent itself
  hid_t header_ = -1;
  hid_t data_ = -1;
  hid_t index_ = -1;
};

/// Calls WriteHeader, WriteData and WriteIndex as `what` selects, each only if the step before succeeded: data
/// under the block's own compression, the index without any. 0 when nothing was selected.
[[nodiscard]] int WriteStages(ORVBlock& block, const BlockParts& parts, int what);

/// Writes a block without a name of its own into a group that the file has from the start, such as "./post/constant/
/// indices". 1 when file or group cannot be opened, or when other data than those of `shapes` are stored there.
[[nodiscard]] int WriteIntoFixedGroup(ORVBlock& block, const char* file, h5::OH5GroupId group, int what,
                                      const WrittenShapes& shapes);

}  // namespace orvio
