// Readers count states by position and take the row of a state from the first of its blocks that has one.

#include "checking/state_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

namespace orvio::program {
namespace {

constexpr std::string_view kPrefix = "state";
constexpr std::size_t kDigits = 12;
constexpr const char* kStates = "/post/singlestate/";

bool IsStateName(const std::string& name) {
  return name.size() == kPrefix.size() + kDigits && name.starts_with(kPrefix) &&
         std::all_of(name.begin() + kPrefix.size(), name.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

const std::vector<double>* IndexOf(const Block& block) {
  const auto values = block.floats.find("indexval");
  return values == block.floats.end() || values->second.empty() ? nullptr : &values->second;
}

}  // namespace

void StateCheck::CheckNames(const std::vector<std::string>& names) {
  long long expected = 1;
  for (const std::string& name : names) {
    if (!IsStateName(name)) {
      teller_.Tell("T002", kStates + name, "the group is not named state and 12 digits");
      continue;
    }
    const long long number = std::stoll(name.substr(kPrefix.size()));
    if (number != expected) {
      teller_.Tell("T001", kStates + name, fmt::format("the state has the number {}; {} was next", number, expected));
    }
    expected = number + 1;
  }
}

void StateCheck::Check(const std::string& path, const std::vector<Block>& blocks) {
  if (blocks.empty()) {
    teller_.Tell("T007", path, "there are no blocks in the state");
    return;
  }
  CompareWithTheStateBefore(path, blocks);
  CheckIndex(path, blocks);
  for (const Block& block : blocks) CheckChain(block);
}

void StateCheck::CheckIndex(const std::string& path, const std::vector<Block>& blocks) {
  const std::vector<double>* row = nullptr;
  for (const Block& block : blocks) {
    const std::vector<double>* values = IndexOf(block);
    if (!values) continue;
    if (!columns_) columns_ = values->size();
    if (values->size() != *columns_) {
      teller_.Tell("T004", block.path,
                   fmt::format("the index has {} columns, and {} in the first state", values->size(), *columns_));
    } else if (!row) {
      row = values;
    }
  }
  has_index_ = has_index_ || row;
  if (!row) {
    without_index_.push_back(path);
    return;
  }
  if (last_value_ && !(row->front() > *last_value_)) {
    teller_.Tell("T005", path, fmt::format("the first index value is {} behind {}", row->front(), *last_value_));
  }
  last_value_ = row->front();
}

void StateCheck::CheckChain(const Block& block) {
  bool& is_full = is_full_[block.relative];
  if (!block.IsIncremental()) {
    is_full = true;
    return;
  }
  if (!is_full) {
    teller_.Tell("T008", block.path, "the block holds changes, and no state before holds it in full");
  } else if (block.Number("nindex") != 1) {
    teller_.Tell("T008", block.path,
                 fmt::format("the block holds changes and has {} index columns, not one", block.Number("nindex")));
  }
}

void StateCheck::CompareWithTheStateBefore(const std::string& path, const std::vector<Block>& blocks) {
  std::set<std::string> now;
  for (const Block& block : blocks) now.insert(block.relative);
  std::size_t lost = 0;
  std::string first;
  for (const std::string& block : before_) {
    if (now.contains(block)) continue;
    if (lost++ == 0) first = block;
  }
  if (lost > 0)
    teller_.Tell("T006", path, fmt::format("{} blocks of the state before are missing, the first is {}", lost, first));
  before_ = std::move(now);
}

void StateCheck::Finish() {
  if (!has_index_) return;
  for (const std::string& path : without_index_) teller_.Tell("T003", path, "no block of the state has an index");
}

}  // namespace orvio::program
