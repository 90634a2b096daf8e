// Parts of a file.
#pragma once

#include <cstddef>
#include <orvio/orv.hpp>
#include <string>
#include <vector>

namespace orvio::program {

/// The parts of the constant section (state 0) or of a state, of all types or of one. Throws Trouble for a type without
/// parts.
std::vector<orv::Part> ReadParts(orv::File& file, const std::string& type, int state);

/// How many elements of the constant mesh belong to each of these parts.
std::vector<std::size_t> CountElements(orv::File& file, const std::vector<orv::Part>& parts);

}  // namespace orvio::program
