// Names of Exodus variables: which of them are the components and points of one result.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "importer/quantity.h"

namespace orvio::program {

/// A result, and the variables that its values come from.
struct JoinedVariables {
  Quantity quantity;
  std::vector<std::vector<std::size_t>> sources;  ///< layers x components: places in the list of names
};

/// How variables are joined.
struct JoinRules {
  int dimension = 3;        ///< of the mesh: in two dimensions a vector may have two components
  bool has_points = false;  ///< whether `_1`, `_2`, ... count the integration points of an element
};

/// Joins the variables of a place, given by their places in `names`, in the order of those that come first:
///
///     displ_x displ_y displ_z                      a vector; also DISPX, disp-x, Displ.X
///     stress_xx, _yy, _zz, _xy, _yz, _zx           a symmetric tensor, in this order whatever that of the file
///     eqps_1 eqps_2 eqps_3                         one result with three layers
///     stress_xx_1 stress_yy_1 ... stress_zx_8      a tensor with eight layers
///
/// A variable whose partners are not all there stands alone, under its own name.
std::vector<JoinedVariables> JoinVariables(const std::vector<std::string>& names,
                                           const std::vector<std::size_t>& present, const JoinRules& rules);

}  // namespace orvio::program
