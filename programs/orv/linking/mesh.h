// Points and cells of a result file, at each of its states.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "linking/linked_array.h"
#include "linking/report.h"
#include "linking/row_map.h"
#include "linking/source_file.h"
#include "reading/result_file.h"

namespace orvio::program {

/// The cells of one block of elements.
struct CellBlock {
  std::string type, generic_type;  ///< results are stored for either
  std::vector<long long> ids;
  std::vector<long long> parts;
  std::vector<hsize_t> cells;                                   ///< of each element; RowMap::kNone: left out
  std::shared_ptr<const StoredArray> stored_ids, stored_parts;  ///< null where they are no plain integers
};

/// What is the same as long as the mesh does not change: the nodes and how the elements join them.
struct Topology {
  std::vector<long long> node_ids;
  std::shared_ptr<const StoredArray> stored_node_ids;  ///< null where they are no plain integers
  std::shared_ptr<const RowMap> points;
  std::vector<CellBlock> blocks;
  std::vector<std::uint8_t> cell_types;
  std::vector<long long> connectivity, offsets;  ///< offsets: one more than cells

  hsize_t cells() const { return cell_types.size(); }

  /// The cells of an element type, or of a generic one.
  RowMap CellsOf(const std::string& type) const;
};

/// A step of the sidecar.
struct Step {
  int state = 0;  ///< 1-based; 0: the constant section
  std::size_t topology = 0;
};

struct Mesh {
  std::string node_type;
  std::vector<Topology> topologies;
  std::vector<Step> steps;
  LinkedArray points;
  std::shared_ptr<ORVResult> assumed_coordinates;  ///< a block that the library does not list
  std::vector<LeftOut> left_out;
  std::vector<std::string> notes;
};

/// The mesh at each state from 1 to `states`; that of the constant section alone for 0. Throws Trouble for a file
/// without coordinates.
Mesh ReadMesh(ResultFile& file, int states);

/// Whether a result holds the coordinates of the nodes.
bool IsCoordinates(const ORVResult& block, const std::string& node_type);

/// The ids and parts of the cells, the ids of the points.
std::vector<LinkedArray> IdArrays(const Mesh& mesh);

}  // namespace orvio::program
