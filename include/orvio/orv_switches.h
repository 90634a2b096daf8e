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

/// Whether the structure of a file is looked at before HDF5 opens it: 1 (the default) refuses a file with damage
/// anywhere in it, 0 leaves that to HDF5, which may crash on such files. A file is looked at once, and again when it has
/// changed. What keeps a file from leading to other files holds in both. Answers the old setting; any other value than
/// 0 and 1 changes nothing.
ORVIO_EXPORT int ORVSetFileCheck(int mode);

/// Accepted and ignored.
ORVIO_EXPORT void ORVSetShallowFormatSupportFlag(int flag);

/// Prints "\n<text>" to the error stream; for a null text "\nError Code :: <code>", for an empty text nothing.
ORVIO_EXPORT void ORVErrorDefultHandler(int code, const char* text);
}
