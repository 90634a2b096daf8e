#pragma once

// Snapshots that live as long as an operation: however often it opens a file, it sees it in one state.

#include <memory>

#include "h5/file_snapshot.h"

namespace orvio::h5 {

/// The snapshot of a file that the running operation holds; null when it has none.
std::shared_ptr<FileSnapshot> FindHeldSnapshot(const FileStamp& file);

/// The same by the place of its descriptor, which HDF5 tells of an open file.
std::shared_ptr<FileSnapshot> FindHeldSnapshot(const void* place);

/// Keeps a snapshot until the operation ends. Outside an operation nothing is kept.
void HoldSnapshot(const FileStamp& file, std::shared_ptr<FileSnapshot> snapshot);

/// The operation has ended, or is about to change a file itself.
void ForgetHeldSnapshots();

}  // namespace orvio::h5
