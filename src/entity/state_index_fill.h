#pragma once

// The state indexes that a filer holds.

struct ORVContainer;

namespace orvio {

/// Makes the table of the states of the filer's file and reads it, if it was not read before or shall be read again
/// (`force`). Without the data of single states (`skip`) it stays empty.
void ReadStateIndex(ORVContainer& data, bool skip, bool force);
/// The same with values in double precision.
void ReadStateIndexDP(ORVContainer& data, bool skip, bool force);
/// The table of the first block of the multi-state section.
void ReadMultiStateIndex(ORVContainer& data, bool force);

/// Frees the tables of a filer; the next demand makes them anew.
void ClearStateIndexes(ORVContainer& data);

}  // namespace orvio
