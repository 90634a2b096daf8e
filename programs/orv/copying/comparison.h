// Whether a copy holds what the file holds, read back from both.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace orvio::program {

struct Comparison {
  std::uint64_t values = 0;              ///< that were compared
  std::uint64_t different = 0;           ///< blocks, datasets, attributes and definitions that differ
  std::vector<std::string> differences;  ///< the first of them
};

/// Compares all blocks value for value: within the digits of the filter where the copy has one, else bit for bit. Where the
/// copy has its states put together, the file's are, too. `makes_whole` says so. Of definitions in another generation of
/// versions, names, labels and units are compared, as the library tells them. Throws Trouble for what cannot be read.
Comparison CompareCopy(const std::string& file, const std::string& copy, bool makes_whole);

}  // namespace orvio::program
