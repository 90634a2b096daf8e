#pragma once

// How processes that share a file know of each other.

#include <sys/stat.h>

namespace orvio::h5 {

/// Keeps other writers out for as long as the descriptor is open. Waits for them as ORVSetLockTimeout says.
[[nodiscard]] bool LockForWriting(int descriptor);

/// Tells writers that somebody reads the file, for as long as the descriptor is open. No writer waits for that: it keeps
/// what it overwrites a little longer. False where the file system knows no such locks.
[[nodiscard]] bool AnnounceReader(int descriptor);

/// Takes that back.
void WithdrawReader(int descriptor);

/// Whether a reader has announced itself. Where the file system cannot tell, nobody has.
bool HasReaders(int descriptor);

/// Gives the file a time of change that it never had before. The system's own come in steps, and two changes within one
/// step would look like one.
void StampChange(int descriptor);

}  // namespace orvio::h5
