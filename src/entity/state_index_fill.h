#pragma once

// The state indexes that a filer holds.

#include <string>

#include "h5/c_array.h"

class ORVBlock;
struct ORVContainer;

namespace orvio {

/// Makes the table of the states of the filer's file and reads it, if it was not read before or shall be read again
/// (`force`). Without the data of single states (`skip`) it stays empty.
void ReadStateIndex(ORVContainer& data, bool skip, bool force);
/// The same with values in double precision.
void ReadStateIndexDP(ORVContainer& data, bool skip, bool force);
/// The table of the first block of the multi-state section.
void ReadMultiStateIndex(ORVContainer& data, bool force);

/// The index of one block.
struct BlockIndexTable {
  int columns = 0;       ///< 0 where nothing could be read
  int states = 0;        ///< as the header says; rows of states without the block are missing at the end, and zero
  CArray<int> ids;       ///< states x columns
  CArray<float> values;  ///< likewise
};

/// Reads the index of a block of the multi-state section, or of one from all states that have it.
[[nodiscard]] BlockIndexTable ReadBlockIndexTable(const std::string& path, ORVBlock& block);

/// Frees the tables of a filer; the next demand makes them anew.
void ClearStateIndexes(ORVContainer& data);

}  // namespace orvio
