// Comparison of the values of one quantity.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "comparing/diff_options.h"
#include "comparing/differences.h"
#include "comparing/quantity_list.h"
#include "comparing/state_values.h"

namespace orvio::program {

/// Compares a quantity that both files have. Where one side stores floats and the other one doubles, the doubles are
/// rounded to floats first.
class ValueComparison {
 public:
  ValueComparison(const DiffOptions& options, const ComparedQuantity& a, const ComparedQuantity& b, LastMatch& matches);

  /// Rows of each side, and what was found there.
  struct Row {
    std::size_t a = 0, b = 0;
    ValueDifference difference;
  };

  /// Compares the values of one state, or of the rows of a block that holds several.
  void Compare(StateValues& a, StateValues& b, std::vector<Row>& rows);

 private:
  struct Pair {
    const Component *a, *b;
    Tolerance tolerance;
  };

  void CompareEntity(const Pair& pair, const ComparedValues& a, const ComparedValues& b, long long id,
                     ValueDifference& difference) const;
  void Count(const Pair& pair, const ValuePlace& place, std::size_t part, ValueDifference& difference) const;

  bool is_element_, is_complex_;
  std::vector<Pair> pairs_;
  LastMatch& matches_;
};

}  // namespace orvio::program
