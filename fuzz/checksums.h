#pragma once

// The checksums inside newer HDF5 files: a mutant whose checksums are wrong is refused before its damage is met.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvio::fuzz {

/// A structure with a checksum behind its last byte.
struct Summed {
  std::size_t begin;
  std::size_t end;  ///< where the checksum stands
};

/// Structures whose checksums are right, in a file before it is damaged.
std::vector<Summed> FindSummed(const std::uint8_t* bytes, std::size_t size);

/// Makes the checksums of these structures right again.
void Resum(std::uint8_t* bytes, std::size_t size, const std::vector<Summed>& structures);

}  // namespace orvio::fuzz
