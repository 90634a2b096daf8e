#pragma once

// Results that the first state does not have.

#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "filer/container.h"
#include "result/result_discovery.h"

namespace orvio {

/// States to look through, first and last; the first is above the last for none.
struct StateRange {
  int first, last;
};

/// Brings results of later states into the list of a filer. Its file is open as long as this is there.
class LaterResults {
 public:
  explicit LaterResults(ORVContainer& data);

  /// `state` below 1 means all from the second on; with `to_the_end` all from `state` on.
  StateRange States(int state, bool to_the_end) const;

  /// Appends the results of a state that the list lacks, or has under another path only, to the list; `taken` holds them
  /// afterwards. `added` is raised by the number of those that it lacked altogether. 1 when memory runs out.
  [[nodiscard]] int Take(int state, std::vector<ORVResult*>& taken, int& added);

 private:
  StateResults::Blocks Lacking(StateResults::Blocks found, int& added) const;
  void Learn(ORVResult& block);

  ORVContainer& data_;
  StateResults results_;
  /// The paths below the result group that each identity is listed under.
  std::unordered_map<std::string, std::unordered_set<std::string>> known_;
};

}  // namespace orvio
