// Elements of a file with their parts and nodes.
#pragma once

#include <orvio/orvio.h>

#include <string>
#include <vector>

namespace orvio::program {

/// Elements of one type, in the order of the file.
struct ElementTable {
  std::string type;
  std::string part_type;  ///< of what `parts` refers to
  std::string node_type;  ///< of what `nodes` refers to
  long long nodes_per_element = 0;
  long long dimension = -1;
  std::vector<long long> ids;
  std::vector<long long> parts;
  std::vector<long long> nodes;  ///< ids x nodes_per_element, row-major
};

/// One table per element type of the constant mesh, or of the mesh of a state, or only that of `type` where it is not
/// empty. Throws Trouble when there is none or one cannot be read.
std::vector<ElementTable> ReadElementTables(const std::string& file, const std::string& type, int state = 0);

/// The table of one block whose header has been read.
ElementTable ReadElementTable(const std::string& file, ORVEleConnectivity block);

}  // namespace orvio::program
