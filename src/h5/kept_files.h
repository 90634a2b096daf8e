#pragma once

// Files that stay open between operations, because a host wants them to.

#include <memory>
#include <string>
#include <vector>

#include "h5/file_snapshot.h"
#include "h5/indexed_file.h"
#include "orvio/oh5_reader.h"

namespace orvio::h5 {

/// A file between two operations: as it is read, through what is known of it or by HDF5, and the state that it is seen in.
/// Meanwhile it keeps no writer from anything.
struct KeptFile {
  std::string path;
  std::shared_ptr<FileSnapshot> snapshot;
  std::unique_ptr<IndexedFile> indexed;  ///< one of both
  std::unique_ptr<IOH5Reader> reader;
};

class KeptFiles {
 public:
  void Want(const std::string& path) { wanted_.push_back(path); }
  void EndWant(const std::string& path);
  bool IsWanted(const std::string& path) const;

  /// The file for an operation. Without a snapshot when it was not kept, or has changed since.
  KeptFile Take(const std::string& path);
  /// Keeps the file if it will be known again: one that was changed a moment ago may change without a trace.
  void Put(KeptFile file);
  /// A file is about to be opened once more, under whatever name.
  void Close(const char* name);
  void CloseAll() { files_.clear(); }

 private:
  std::vector<std::string> wanted_;  ///< as often as somebody wants it
  std::vector<KeptFile> files_;
};

/// Those of the process.
KeptFiles& FilesKeptOpen();

/// One wish that a file stays open.
class KeepingOpen {
 public:
  explicit KeepingOpen(const char* file);
  KeepingOpen(const KeepingOpen&) = delete;
  KeepingOpen& operator=(const KeepingOpen&) = delete;
  ~KeepingOpen();

 private:
  std::string path_;
};

}  // namespace orvio::h5
