#pragma once

// The arrays of a properties block.

#include "h5/array_maker.h"
#include "orvio/orv_properties.h"

namespace orvio {

/// Makes the arrays of a block for the counts of its header, zeroed; ids and integers have 4 bytes, and the type says so.
/// The block gets new ones in place of what it points to, which may be the host's own. False when one cannot be had, or
/// nothing in the file stands behind its size: the block then has none. A block without entities is left alone.
[[nodiscard]] bool AllocateBuffers(ORVProperties& block, const h5::StoredElementsOf& stored);

/// Frees the arrays of a block and leaves it with none.
void FreeBuffers(ORVProperties& block);

/// Whether the block points to any.
bool HasBuffers(const ORVProperties& block);

}  // namespace orvio
