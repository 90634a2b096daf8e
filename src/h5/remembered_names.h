#pragma once

// The names of a file's states, between operations.

#include <hdf5.h>

#include <string>

#include "h5/disk_file.h"
#include "h5/file_access.h"

namespace orvio::h5 {

/// Name of the link at a 0-based position of "/post/singlestate", the one group of a file that has very many, in the order
/// of names; empty when there is none, or when it is too long. HDF5 counts from the first link to find one by its position: the names are
/// listed once, and again when the file has changed. `group` is open in `file`.
std::string LinkNameAt(hid_t file, hid_t group, hsize_t position);

/// The same group for a writer: HDF5 reads all of its links to count them. As long as nobody but the library can change
/// them, they are listed once and then kept up to date from one change of the file to the next.
class StatesOfWriter {
 public:
  /// `section` is the group of the states, open in `file`.
  StatesOfWriter(hid_t file, hid_t section);

  hssize_t count() const;                    ///< -1 on failure
  std::string Name(hsize_t position) const;  ///< in the order of names, below count(); empty when it is too long
  Group Make(const std::string& name);       ///< or opens it, if it is there

 private:
  void List(StateNames& names) const;

  hid_t section_;
  StateNames* names_ = nullptr;  ///< null: HDF5 is asked
};

}  // namespace orvio::h5
