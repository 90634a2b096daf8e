#pragma once

// Files that are opened once for an operation, however many of its steps ask for them.

#include <memory>
#include <string>

#include "h5/indexed_file.h"

namespace orvio::h5 {

/// While it lives, all readers of a file that the library makes for itself are one: through what is known of the file, or
/// else by HDF5. But for messages, no code of a host runs meanwhile.
class FileInUse {
 public:
  /// Null: no file.
  explicit FileInUse(const char* file);
  FileInUse(const FileInUse&) = delete;
  FileInUse& operator=(const FileInUse&) = delete;
  ~FileInUse();

 private:
  bool was_among_itself_;
  std::string kept_;  ///< by the pool of readers; empty: not for this one
  std::unique_ptr<IndexedFile> file_;
};

}  // namespace orvio::h5
