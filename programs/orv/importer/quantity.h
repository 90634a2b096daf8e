// What the values of a result mean: the variables of the output file.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "frd/dat_reader.h"
#include "frd/model.h"
#include "importer/unit_system.h"

namespace orvio::program {

/// A variable of the output file.
struct Quantity {
  std::string name;
  std::string class_word;  ///< "CLASS_STRESS" and so on, or empty
  int tensor_rank = 0;     ///< 0 for independent scalars, 1 for a vector, 2 for a symmetric tensor
  std::vector<std::string> components;
  std::vector<Measure> measures;  ///< of the components; none beyond its end
};

/// The name as it can stand in the path of a block.
std::string GroupName(std::string name);

/// The name in lower case: names that differ in case only are one name to the readers of a result file.
std::string Folded(std::string name);

/// Node coordinates.
Quantity CoordinateQuantity();

/// A column of the state index: "TIME", "STEP". The variables of a file have other names.
Quantity IndexQuantity(const std::string& name);

/// The quantity of a result at the nodes. Complex values are variables of their own: their blocks have another shape.
Quantity DescribeResult(const frd::Result& result, bool is_complex);

/// The quantity of values at integration points, under the name that the same quantity has at the nodes. `order` tells
/// where each of its components stands in the file: the file has the shear components of a tensor in another order.
Quantity DescribePoints(const frd::PointResult& result, std::vector<std::size_t>& order);

/// Names the quantities of a whole file. A result name whose components change gets a variable for each set of them,
/// `SDV`, `SDV_2` and so on, because a variable has one list of components.
class QuantityTable {
 public:
  /// Starts a state: within one, every result of a place needs a variable of its own.
  void BeginState() { used_in_state_.clear(); }

  /// The quantity under the name that it has in this file; `is_new` tells whether it was not answered before. `place`
  /// is what the values belong to, such as "NODE".
  const Quantity& Find(Quantity wanted, const std::string& place, bool& is_new);

 private:
  std::map<std::string, Quantity> quantities_;  ///< by their names in lower case
  std::set<std::pair<std::string, std::string>> used_in_state_;
};

}  // namespace orvio::program
