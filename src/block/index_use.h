#pragma once

// Which blocks may be read through what is known of a file.

#include <algorithm>
#include <typeinfo>
#include <vector>

#include "h5/indexed_file.h"
#include "orvio/orv_result.h"

namespace orvio {

/// A block of the library itself: a class that a host derives may ask HDF5 about the groups that it is handed.
inline bool IsOwnBlock(const ORVBlock& block) { return typeid(block) == typeid(ORVResult); }

/// The index of a file for the length of a read of a block.
class IndexForBlock {
 public:
  IndexForBlock(const ORVBlock& block, const char* file) : index_(IsOwnBlock(block) ? file : nullptr) {}

 private:
  h5::UsingIndex index_;
};

}  // namespace orvio
