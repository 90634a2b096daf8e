#pragma once

// A file of the disk as the driver holds it: a snapshot for a reader, a change for a writer.

#include <H5FDdevelop.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "h5/file_changes.h"
#include "h5/file_driver.h"
#include "h5/file_snapshot.h"
#include "structure/catalogue.h"

namespace orvio::h5 {

/// Names of the states of a file, in order; nothing while they are not known.
using StateNames = std::optional<std::vector<std::string>>;

/// A file that is open for writing. What is changed becomes part of the file when HDF5 closes it, unless one who held it
/// did not let it. A file that nobody holds is committed whenever HDF5 flushes it, too.
class WrittenFile {
 public:
  WrittenFile(Descriptor file, std::string path, const struct stat& info, std::uint64_t end);
  WrittenFile(const WrittenFile&) = delete;
  WrittenFile& operator=(const WrittenFile&) = delete;
  ~WrittenFile();

  FileChanges& changes() { return changes_; }
  int* place() { return file_.place(); }
  bool IsSame(const FileStamp& file) const { return file.device == identity_.device && file.inode == identity_.inode; }

  void Hold() { ++holders_; }
  /// Answers whether the changes can be kept so far.
  bool Release(Outcome outcome);
  bool IsHeld() const { return holders_ > 0; }
  /// A host works with it by itself, and learns of failures from HDF5 alone.
  bool IsHosts() const;

  /// HDF5 has come to the end of its open, in which it flushes what it is not done with.
  void EndOpening() { opening_ = false; }
  bool CommitsFlushes() const { return !opening_ && !IsHeld(); }

  /// Null once code of a host may have changed the file by itself.
  StateNames* state_names() { return is_ours_alone_ ? &state_names_ : nullptr; }
  void Share() {
    is_ours_alone_ = false;
    state_names_.reset();
  }

  /// Commits what was changed so far. False when that fails: the last error text tells.
  [[nodiscard]] bool Commit();
  /// Commits, or brings back the file as it was when a holder did not release it as good. Closes it.
  [[nodiscard]] bool Close();

 private:
  void TellFailure() const;
  void RememberSound();

  Descriptor file_;
  std::string path_;
  FileStamp identity_;
  FileChanges changes_;
  int holders_ = 0;
  bool opening_ = true;
  bool sound_;          ///< was so when it was opened
  bool is_ours_alone_;  ///< HDF5 has handed no id of it to a host
  StateNames state_names_;
};

/// HDF5 hands the first member back to every callback, and knows nothing of what follows it.
struct DiskFile {
  explicit DiskFile(const struct stat& info) : identity(info) {}

  bool Read(haddr_t address, size_t count, void* buffer);
  haddr_t EndOfFile() const { return writer ? writer->changes().size() : snapshot->Size(); }
  int* place() { return writer ? writer->place() : snapshot->place(); }

  H5FD_t base = {};  ///< HDF5's own, filled by it
  FileStamp identity;
  haddr_t end_of_allocation = 0;
  std::shared_ptr<FileSnapshot> snapshot;  ///< one of both
  std::unique_ptr<WrittenFile> writer;
};

/// Opens a file as H5FDopen asks for it. Null when that is not possible; the last error text may tell why.
std::unique_ptr<DiskFile> OpenDiskFile(const char* name, unsigned flags);

/// A file for reading, and what is known of it.
struct CataloguedFile {
  std::shared_ptr<FileSnapshot> snapshot;
  std::shared_ptr<const structure::Catalogue> catalogue;  ///< null: nothing
};

/// Opens a file of which something is known, in the state in which the running operation sees it.
CataloguedFile OpenCatalogued(const char* name);

/// The file that is open for writing and has its descriptor at that place; null when there is none.
WrittenFile* FindWrittenFile(const void* place);

}  // namespace orvio::h5
