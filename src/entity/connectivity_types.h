#pragma once

// What elements a state has, by the headers of its connectivities.

#include <string>
#include <vector>

namespace orvio {

/// One entry of each list for a block with elements, in the order of the names of their groups.
struct ConnectivityTypes {
  std::vector<std::string> types;  ///< entity types; empty texts where the file has none
  std::vector<std::string> element_types;
};

/// Empty when there are no connectivities or memory runs out. `state` is 0 for the constant section.
ConnectivityTypes ReadConnectivityTypes(const char* file, int state);

}  // namespace orvio
