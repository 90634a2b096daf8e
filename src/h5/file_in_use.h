#pragma once

// Files that are opened once for an operation, however many of its steps ask for them.

#include <memory>
#include <string>
#include <string_view>

#include "h5/handle.h"
#include "h5/indexed_file.h"

namespace orvio::h5 {

/// While it lives, all readers of a file that the library makes for itself are one: through what is known of the file, or
/// else by HDF5. Code of a host that is called meanwhile, in a HostCode, gets readers of its own: the groups of the one
/// may be none that HDF5 knows, and it ends with the operation.
class FileInUse {
 public:
  /// Null: no file, and nothing is changed.
  explicit FileInUse(const char* file);
  FileInUse(const FileInUse&) = delete;
  FileInUse& operator=(const FileInUse&) = delete;
  ~FileInUse();

  /// The group that answered a question, if it was the last one that was asked of the file in use: steps of an operation
  /// ask for the same group one after the other. An id of the caller's own; negative for none.
  static hid_t FindGroup(hid_t file, std::string_view question);
  static void RememberGroup(hid_t file, std::string question, hid_t group);

 private:
  struct Answered {
    hid_t file = H5I_INVALID_HID;
    std::string question;
    Group group;
  };

  void Begin(const char* file);
  void End();
  void PutBack();

  bool was_among_itself_;
  FileInUse* outer_ = nullptr;
  Answered answered_;
  bool is_begun_ = false;  ///< false: it was in use before
  std::string path_;
  std::unique_ptr<IndexedFile> file_;  ///< null: it is kept by the pool of readers
};

}  // namespace orvio::h5
