#pragma once

// The library's own way from HDF5 to a file on disk.

#include <hdf5.h>

namespace orvio::h5 {

/// Registers the driver with HDF5 and answers its id, which the caller owns; negative on failure. Whatever the
/// environment says, a file opened through it is a regular file of the disk, under the name that was asked for, and
/// opens only if its structure is sound (see ORVSetFileCheck). Readers take no lock; a writer keeps other writers out,
/// and takes its lock before it truncates anything.
hid_t RegisterFileDriver();

}  // namespace orvio::h5
