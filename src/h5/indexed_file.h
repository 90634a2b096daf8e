#pragma once

// Files that are read through what is known of them: their catalogue tells where everything is, and HDF5 opens them only
// for what it does not tell.

#include <hdf5.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "h5/file_snapshot.h"
#include "h5/handle.h"
#include "h5/indexed_id.h"
#include "structure/catalogue.h"

namespace orvio::h5 {

/// The values of a file that is read so. Each is read once.
class IndexedBytes : public structure::ByteSource {
 public:
  explicit IndexedBytes(FileSnapshot& snapshot) : snapshot_(snapshot) {}
  std::uint64_t Size() const override { return snapshot_.Size(); }
  bool Read(std::uint64_t offset, void* buffer, std::size_t count) override {
    return snapshot_.ReadOnce(offset, buffer, count);
  }

 private:
  FileSnapshot& snapshot_;
};

/// A file that is read so. Its groups have ids of indexed_id.h: the tag, the place of the file, the object.
class IndexedFile {
 public:
  using Id = structure::Catalogue::Id;

  /// Null when nothing is known of the file as it is now.
  static std::unique_ptr<IndexedFile> Open(const char* name);
  IndexedFile(const IndexedFile&) = delete;
  IndexedFile& operator=(const IndexedFile&) = delete;
  ~IndexedFile();

  /// Its ids are nobody's until Wake(), which answers whether all that it had open still is.
  void Rest();
  bool Wake();

  const std::shared_ptr<FileSnapshot>& snapshot() const { return snapshot_; }
  const structure::Catalogue& catalogue() const { return *catalogue_; }
  structure::ByteSource& bytes() { return bytes_; }
  const std::string& name() const { return name_; }
  hid_t IdOf(Id object) const;
  /// The same object by HDF5, in the same state of the file. Fails when it is no group.
  Group OpenByHdf5(Id group);

 private:
  IndexedFile(std::string name, std::shared_ptr<FileSnapshot> snapshot,
              std::shared_ptr<const structure::Catalogue> catalogue);

  std::string name_;
  std::shared_ptr<FileSnapshot> snapshot_;
  std::shared_ptr<const structure::Catalogue> catalogue_;
  IndexedBytes bytes_;
  std::size_t slot_;
  File by_hdf5_;
};

/// An object of such a file, by its id. Without a file for an id that is none or whose file is closed.
struct IndexedPlace {
  explicit IndexedPlace(hid_t id);
  explicit operator bool() const { return file != nullptr; }
  /// The object behind a path, which may be absolute.
  structure::Catalogue::Found Follow(std::string_view path) const;
  const structure::Catalogue& catalogue() const { return file->catalogue(); }

  IndexedFile* file = nullptr;
  structure::Catalogue::Id object = structure::Catalogue::kNone;
};

/// A location as HDF5 takes it: of an indexed group, the same group by HDF5.
class Hdf5Location {
 public:
  explicit Hdf5Location(hid_t loc);
  hid_t get() const { return loc_; }

 private:
  Group group_;
  hid_t loc_;
};

/// The file of that name that is in use; null when there is none. Backslashes stand for slashes.
IndexedFile* FindIndexedFile(std::string_view name);

}  // namespace orvio::h5
