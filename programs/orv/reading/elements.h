// Elements of a file with their parts and nodes.
#pragma once

#include <orvio/orv.hpp>
#include <string>
#include <vector>

namespace orvio::program {

/// Those of the constant mesh, or of the mesh of a state, of all types or of one. Throws Trouble for a type of which there
/// are none.
std::vector<orv::Elements> ReadElements(orv::File& file, const std::string& type, int state = 0);

}  // namespace orvio::program
