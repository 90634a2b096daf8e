// What a result file holds for points and cells, each with the blocks that hold it.
#pragma once

#include <orvio/orvio.h>

#include <string>
#include <vector>

#include "linking/mesh.h"
#include "linking/report.h"
#include "reading/result_file.h"

namespace orvio::program {

/// One variable for the points or the cells.
struct LinkedQuantity {
  std::string name;
  bool is_on_points = true, is_complex = false;
  bool is_over_states = false;   ///< in blocks that hold all states
  hsize_t first_column = 0;      ///< in the blocks: a group of variables shares one
  std::vector<hsize_t> columns;  ///< of the blocks, in VTK's order of components
  std::vector<ORVResult*> blocks;
};

/// Results of other entities than the nodes and the shown elements are noted as left out, coordinates are passed over.
std::vector<LinkedQuantity> FindQuantities(ResultFile& file, const Mesh& mesh, LinkReport& report);

/// The stored component for each component of a symmetric tensor in VTK's order, XX YY ZZ XY YZ XZ, by the ends of six
/// labels such as `SXX` or `E12`. Empty where they do not tell.
std::vector<hsize_t> TensorOrder(const std::vector<std::string>& labels);

}  // namespace orvio::program
