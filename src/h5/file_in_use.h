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
  void Begin(const char* file);
  void End();
  void PutBack();

  bool was_among_itself_;
  std::string path_;                   ///< empty: it was in use before
  std::unique_ptr<IndexedFile> file_;  ///< null: it is kept by the pool of readers
};

}  // namespace orvio::h5
