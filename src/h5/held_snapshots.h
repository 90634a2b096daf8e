#pragma once

// Snapshots that live as long as an operation: however often it opens a file, it sees it in one state.

#include <memory>

#include "h5/file_snapshot.h"

namespace orvio::h5 {

/// The snapshot of a file that the running operation holds; null when it has none.
std::shared_ptr<FileSnapshot> FindHeldSnapshot(const FileStamp& file);

/// Keeps a snapshot until the operation ends. Outside an operation nothing is kept.
void HoldSnapshot(const FileStamp& file, std::shared_ptr<FileSnapshot> snapshot);

/// The operation has ended, or is about to change a file itself.
void ForgetHeldSnapshots();

}  // namespace orvio::h5
