#pragma once

// The library's own way from HDF5 to a file on disk.

#include <hdf5.h>

namespace orvio::h5 {

/// Registers the driver with HDF5 and answers its id, which the caller owns; negative on failure. Whatever the
/// environment says, a file opened through it is a regular file of the disk, under the name that was asked for, and
/// opens only if its structure is sound (see ORVSetFileCheck). Readers take no lock and see the file in one state; a
/// writer keeps other writers out, and takes its lock before it truncates anything.
hid_t RegisterFileDriver();

/// To be called with each file that HDF5 has opened through the driver.
void EndOpening(hid_t file);

/// How a write has ended. One that failed for its own reasons leaves behind what it has written before, unless it is part
/// of a larger change: that is spoiled. Of one that was given up nothing stays.
enum class Outcome { kGood, kFailed, kGivenUp };

/// What is changed through a file id while somebody holds it becomes part of the file when it is closed. Files that are
/// open for reading are left alone. The second answers whether the changes can be kept so far.
void HoldChanges(hid_t file);
bool ReleaseChanges(hid_t file, Outcome outcome);

}  // namespace orvio::h5
