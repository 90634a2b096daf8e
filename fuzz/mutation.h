#pragma once

// Damage as files get it: by broken disks and transfers, and by people who know what an HDF5 file looks like.

#include <cstddef>
#include <cstdint>
#include <vector>

#include "random.h"

namespace orvio::fuzz {

using Bytes = std::vector<std::uint8_t>;

/// How a file is damaged.
enum class Damage : int {
  kBytes = 0,       ///< 1 to 16 bytes anywhere
  kNumbers = 1,     ///< 1 to 8 number fields get values at the limits of what numbers can mean
  kCuts = 2,        ///< the end is cut off, or pages are zeroed, swapped or doubled
  kStructures = 3,  ///< one structure in place of another, names in place of names, numbers
  kValues = 4,      ///< values of attributes that say how much of something there is: all else stays as it should be
};
inline constexpr int kDamages = 5;

/// Damages a file of at least 16 bytes in place. Only kCuts changes its size, which never grows beyond `most`.
void DamageFile(Bytes& file, Damage damage, std::size_t most, Random& random);

}  // namespace orvio::fuzz
