#pragma once

// Format versions: the numbers by which hosts name them and the triples that files carry.

#include "orvio/orv_types.h"

namespace orvio {

/// Triple of a writer version number; 1, 1, 0 for a number outside _ORVVersion.
ORVFileVersion VersionOfNumber(int number);

/// Number of a file's version. Knows versions above those that the library writes; -1 for an unknown major.
int NumberOfVersion(const ORVFileVersion& version);

/// From this writer version on a block is one "orvblock" group, and variables have keys.
inline constexpr int kFirstSingleLayoutVersion = ORV_VERSION_2_0;

/// From this version of a file on properties blocks are looked for without being asked for.
inline constexpr int kFirstVersionWithProperties = ORV_VERSION_2_2;

}  // namespace orvio
