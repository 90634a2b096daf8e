#pragma once

// The names of a file's states, between operations.

#include <hdf5.h>

#include <string>

namespace orvio::h5 {

/// Name of the link at a 0-based position of the one group of a file that has very many, in the order of names; empty when
/// there is none, or when it is too long. HDF5 counts from the first link to find one by its position: the names are
/// listed once, and again when the file has changed. `group` is open in `file`.
std::string LinkNameAt(hid_t file, hid_t group, hsize_t position);

}  // namespace orvio::h5
