#pragma once

// The unit system block with arrays of the library.

#include <cstdint>
#include <optional>

class ORVSystem;

namespace orvio {

/// Gives the block zeroed arrays for the counts of its header. False when the counts are impossible or memory runs out;
/// the block then has none.
[[nodiscard]] bool AllocateBuffers(ORVSystem& system);

/// Frees what AllocateBuffers has given, and forgets it.
void FreeBuffers(ORVSystem& system);

/// Reads header and data of the unit system of a file. After a failure the block has no arrays.
[[nodiscard]] int ReadSystem(const char* file, ORVSystem& system);

/// Entries of `m_pUdbid` and `m_pUdbexp`: the sum of the counts of the derived units. Nothing for a missing table of
/// counts or a negative one among them.
std::optional<std::int64_t> EntriesOfDerivedUnits(const ORVSystem& system);

}  // namespace orvio
