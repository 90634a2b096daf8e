// Where in a result file the datasets of blocks are, for others who read it with HDF5 alone.
#pragma once

#include <hdf5.h>
#include <orvio/orvio.h>

#include <optional>
#include <string>
#include <vector>

namespace orvio::program {

/// A dataset that lies in the file whole, as the library has found it.
struct StoredArray {
  std::string path;
  std::vector<hsize_t> extents;
  _ORVDataType type = ORV_UNKNOWN_TYPE;
};

/// A result file, open for a look at its datasets through the library's door. Nothing else may read the file meanwhile.
class SourceFile {
 public:
  /// Throws Trouble when it cannot be opened.
  explicit SourceFile(const std::string& path);

  /// A dataset of a block in a state (1-based), or where the block is (0). Nothing when it is not there, has no extent,
  /// or has more values than the file can hold.
  std::optional<StoredArray> Find(const ORVBlock& block, int state, const std::string& dataset);

 private:
  std::string PathIn(const ORVBlock& block, int state) const;

  std::string path_;
  OH5Reader reader_;
  std::vector<std::string> states_;  ///< names of the groups, in order
};

/// Whether the values are floats or doubles of a known kind.
bool IsReal(const StoredArray& array);
bool IsInteger(const StoredArray& array);

}  // namespace orvio::program
