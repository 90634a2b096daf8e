// The states one after the other: their names, their index, the blocks they have.
#pragma once

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "checking/block.h"

namespace orvio::program {

class StateCheck {
 public:
  explicit StateCheck(Teller& teller) : teller_(teller) {}

  /// Names of all states, in order, before the first of them.
  void CheckNames(const std::vector<std::string>& names);
  /// The blocks of a state after their values were read, in the order of their paths.
  void Check(const std::string& path, const std::vector<Block>& blocks);
  void Finish();

 private:
  void CheckIndex(const std::string& path, const std::vector<Block>& blocks);
  void CheckChain(const Block& block);
  void CompareWithTheStateBefore(const std::string& path, const std::vector<Block>& blocks);

  Teller& teller_;
  std::optional<std::size_t> columns_;  ///< of the first state with an index
  std::optional<double> last_value_;
  std::vector<std::string> without_index_;
  bool has_index_ = false;
  std::set<std::string> before_;         ///< relative paths of the blocks of the state before
  std::map<std::string, bool> is_full_;  ///< by the relative path: a full state came before
};

}  // namespace orvio::program
