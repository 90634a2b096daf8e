// Variables, groups of variables and units against each other and against results.
#pragma once

#include <cstdint>
#include <map>
#include <set>
#include <string>

#include "checking/block.h"

namespace orvio::program {

/// Gets the blocks of the constant section first: unit system, then variables, then groups, then all others.
class VariableCheck {
 public:
  explicit VariableCheck(Teller& teller) : teller_(teller) {}

  void Check(const Block& block);

 private:
  void TakeSystem(const Block& block);
  void TakeVariable(const Block& block);
  void TakeGroup(const Block& block);
  void CheckLabels(const Block& block);
  void CheckUnits(const Block& block, const char* counts, const char* ids, const std::set<std::int64_t>& known);
  void CheckIndexTypes(const Block& block);
  void CheckResult(const Block& block);

  Teller& teller_;
  std::set<std::int64_t> base_units_, derived_units_;
  std::map<std::string, std::int64_t> components_by_name_, components_by_key_;  ///< in lower case
  std::map<std::string, std::int64_t> components_by_group_;                     ///< likewise
};

}  // namespace orvio::program
