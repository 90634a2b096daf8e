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

/// Counts of the tables of a variable.
StoredExtents CountsOf(const ORVVariable& variable);

/// Whether the tables of a variable are so large that the file is asked what it stores of them. Those of others are of the
/// size of their header.
bool NeedsStoredExtents(const ORVVariable& variable);

/// What the variables of a file have in all that nothing in it stands behind. Each table alone may be a small thing, but
/// the tables of all variables are kept, and each component gets a handle besides.
class TakenOnTrust {
 public:
  /// False, with nothing taken, where this would be more in all than one variable may have: 64 MiB of component names,
  /// labels or map values.
  [[nodiscard]] bool Take(const StoredExtents& wanted, const StoredExtents& stored);

 private:
  StoredExtents taken_;
};

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
