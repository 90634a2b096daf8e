#pragma once

// Which blocks a file may be in use by.

#include <typeinfo>

#include "h5/file_in_use.h"
#include "orvio/orv_result.h"

namespace orvio {

/// A block of the library itself: a class that a host derives may ask HDF5 about the groups that it is handed.
inline bool IsOwnBlock(const ORVBlock& block) { return typeid(block) == typeid(ORVResult); }

/// A file in use for the length of a read of a block, if that is one of the library.
class FileInUseBy {
 public:
  FileInUseBy(const ORVBlock& block, const char* file) : file_(IsOwnBlock(block) ? file : nullptr) {}

 private:
  h5::FileInUse file_;
};

}  // namespace orvio
