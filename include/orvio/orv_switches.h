#pragma once

/// Switches that act on the whole process. None of them is guarded by a lock: the library is for one thread at
/// a time.

#include "orvio/orv_types.h"

extern "C" {

/// Sets the format version (`_ORVVersion`) that block writes use, without a range check. Answers the old one.
/// A number outside the table writes files that no reader has a use for.
ORVIO_EXPORT int ORVSetCurrentWriterVersion(int version);
ORVIO_EXPORT int ORVGetCurrentWriterVersion();

/// 0 (the default) protects result blocks that exist already; any other value lets ORVResult::WriteBlock write
/// into them.
ORVIO_EXPORT void ORVSetResultBlockOverWriteMode(int mode);
ORVIO_EXPORT int ORVGetResultBlockOverWriteMode();

/// Scale-offset compression of the numeric writes: `on`, and the decimal digits kept of floats. Both are stored
/// without a check; the data of block writes use the block's own factor instead.
ORVIO_EXPORT void OH5SetCompression(int on, int digits);
ORVIO_EXPORT void OH5GetCompression(int* on, int* digits);

/// Entities in one chunk of a compressed dataset at most: 0 (the default) makes one chunk of all. With a few thousand, the
/// values of one entity are found without unpacking those of all others. It counts along the axis of the entities of
/// result values and along the first one of all else, in datasets that are made from here on. Every reader reads both.
/// Answers the old setting; a negative value changes nothing.
ORVIO_EXPORT int ORVSetChunkEntities(int entities);

/// Whether the structure of a file is looked at before HDF5 opens it: 1 (the default) refuses a file with damage
/// anywhere in it, 0 leaves that to HDF5, which may crash on such files. A file is looked at once, and again when it has
/// changed. What keeps a file from leading to other files holds in both. Answers the old setting; any other value than
/// 0 and 1 changes nothing.
ORVIO_EXPORT int ORVSetFileCheck(int mode);

/// What is remembered of files between operations: 1 (the default) keeps where everything is, as the look at the file's
/// structure has found it, so that values are read without HDF5; 0 keeps nothing of the kind. It holds as long as a file
/// does not change, whoever changes it, and files that the library cannot tell about are read by HDF5 in both. Answers and
/// statuses are the same. It needs ORVSetFileCheck(1). Answers the old setting; any other value than 0 and 1 changes
/// nothing.
ORVIO_EXPORT int ORVSetFileIndex(int mode);

/// What a write survives, for files that are opened for writing from here on:
///  0  plain: changes go to the file as HDF5 makes them. A writer that ends in the middle may leave a file that does not
///     open, earlier states and all.
///  1  kill-safe (the default): what ends the writer, a signal or a full disk, leaves the file as it was before or with
///     the whole change. What was there is kept in "<file>-journal" for the moment in which it is overwritten.
///  2  power-safe: the same for a power cut, and what a write has answered 0 for has reached the disk. Several times slower
///     for small blocks.
/// A file that was left in the middle of a change is put right by the next open for writing; readers see the state before
/// and write nothing. Answers the old setting; any other value changes nothing.
ORVIO_EXPORT int ORVSetDurability(int mode);

/// How long an open for writing waits for another writer of the file to finish, in milliseconds; 10000 at first, 0 does
/// not wait. Answers the old setting; a negative value changes nothing.
ORVIO_EXPORT int ORVSetLockTimeout(int milliseconds);

/// Accepted and ignored.
ORVIO_EXPORT void ORVSetShallowFormatSupportFlag(int flag);

/// Prints "\n<text>" to the error stream; for a null text "\nError Code :: <code>", for an empty text nothing.
ORVIO_EXPORT void ORVErrorDefultHandler(int code, const char* text);
}
