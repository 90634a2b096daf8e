#pragma once

// The blocks that list entities, as a filer reads them: header first, then arrays of the C allocator for its counts, then
// data. Serves ORVEntAttribute, ORVIdentifiers and ORVCollector; the templates are instantiated for these.

#include <vector>

#include "h5/array_maker.h"
#include "orvio/orv_collector.h"
#include "orvio/orv_ent_attribute.h"

namespace orvio {

/// Makes the arrays of a block for the counts of its header, zeroed; integers have 4 bytes, and the types say so. An
/// attribute block gets new ones in place of what it points to, a collector block has its own resized. False when one
/// cannot be had, or nothing in the file stands behind its size: the block then has none.
[[nodiscard]] bool AllocateBuffers(ORVEntAttribute& block, const h5::StoredElementsOf& stored);
[[nodiscard]] bool AllocateBuffers(ORVCollector& block, const h5::StoredElementsOf& stored);

/// Frees the arrays of a block and leaves it with none.
void FreeBuffers(ORVEntAttribute& block);
void FreeBuffers(ORVCollector& block);

/// Reads the block that carries its name already, with `mode` as for the filer. 1 for a data read without entities. A
/// block whose data cannot be read has no arrays.
template <class Block>
[[nodiscard]] int ReadEntityList(Block& block, const char* file, int state, int mode);

/// Appends a copy of each block of a section that has entities and can be read; with arrays of its own if `mode` asks
/// for data.
template <class Block>
void ReadEntityLists(const char* file, int state, int mode, std::vector<Block*>& blocks);

/// Deletes all blocks with their arrays and empties the vector.
template <class Block>
void DeleteEntityLists(std::vector<Block*>& blocks) {
  for (Block* block : blocks) {
    if (block) FreeBuffers(*block);
    delete block;
  }
  blocks.clear();
}

}  // namespace orvio
