#pragma once

// The tables of a variable that the library reads for somebody: made from the counts of its header, copied, freed.

#include <cstdlib>
#include <memory>

#include "orvio/orv_variable.h"

namespace orvio {

/// Counts that a file vouches for with the extents of its datasets.
struct StoredExtents {
  std::uint64_t components = 0;
  std::uint64_t label_bytes = 0;
  std::uint64_t map_values = 0;
};

/// The allocator: calloc, or what a test puts in its place.
using AllocateZeroed = void* (*)(std::size_t count, std::size_t size);

/// Whether a table of this variable would take more than 64 MiB: then AllocateBuffers wants to know what is stored.
bool NeedsStoredExtents(const ORVVariable& variable);

/// Gives the variable zeroed tables for the counts of its header and sets the pointers and the element type of the
/// component ids to them. False when one of them cannot be had, or would take more than 64 MiB that nothing in the
/// file stands behind: the variable then has no tables at all.
[[nodiscard]] bool AllocateBuffers(ORVVariable& variable, const StoredExtents& stored = {},
                                   AllocateZeroed allocate = std::calloc);

/// Frees what AllocateBuffers has given, and forgets it.
void FreeBuffers(ORVVariable& variable);

/// A variable of the same definition with tables of its own and without handles. Its component names and ids are
/// zero. Null when memory runs out. FreeBuffers frees the tables.
std::unique_ptr<ORVVariable> CloneVariable(const ORVVariable& source);

}  // namespace orvio
