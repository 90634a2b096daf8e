#pragma once

// HDF5's structures that begin with a name of four letters.

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orvio::fuzz {

/// Where they begin.
std::vector<std::size_t> FindNamed(const std::uint8_t* bytes, std::size_t size);

}  // namespace orvio::fuzz
