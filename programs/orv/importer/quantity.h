// What the values of a result mean: the variables of the output file.
#pragma once

#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

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

/// Node coordinates.
Quantity CoordinateQuantity();

/// A column of the state index: "TIME", "STEP". The variables of a file have other names.
Quantity IndexQuantity(const std::string& name);

/// Names the quantities of a whole file. A result name whose components change gets a variable for each set of them,
/// `SDV`, `SDV_2` and so on, because a variable has one list of components. Complex values are variables of their own:
/// their blocks have another shape.
class QuantityTable {
 public:
  /// Starts a state: within one, every result needs a variable of its own.
  void BeginState() { used_in_state_.clear(); }

  /// The quantity of a result; `is_new` tells whether it was not answered before.
  const Quantity& Find(const frd::Result& result, bool is_complex, bool& is_new);

 private:
  std::map<std::string, Quantity> quantities_;  ///< by their names in lower case
  std::set<std::string> used_in_state_;
};

}  // namespace orvio::program
