// What binds results to variables is the name alone; groups find variables by key alone.

#include "checking/variable_check.h"

#include <fmt/format.h>

#include <algorithm>
#include <limits>

#include "checking/words.h"

namespace orvio::program {
namespace {

constexpr std::int64_t kMostUnitsEach = 7;

/// Nothing when one of the numbers is negative or the sum does not fit.
std::optional<std::int64_t> SumOf(const std::vector<std::int64_t>& counts) {
  std::int64_t sum = 0;
  for (const std::int64_t count : counts) {
    if (count < 0 || __builtin_add_overflow(sum, count, &sum)) return std::nullopt;
  }
  return sum;
}

std::uint64_t LengthOf(const Block& block, const char* dataset) {
  const auto stored = block.datasets.find(dataset);
  return stored == block.datasets.end() ? 0 : stored->second.count;
}

bool CanBeCompared(const Block& block, const char* dataset) {
  const auto stored = block.datasets.find(dataset);
  return stored == block.datasets.end() || block.Integers(dataset) || stored->second.count == 0;
}

}  // namespace

void VariableCheck::Check(const Block& block) {
  switch (block.key) {
    case 10:
      return TakeSystem(block);
    case 20:
      return CheckIndexTypes(block);
    case 30:
      return TakeVariable(block);
    case 32:
      return TakeGroup(block);
    default:
      break;
  }
  if (IsResult(block.key)) CheckResult(block);
}

void VariableCheck::TakeSystem(const Block& block) {
  if (const auto* ids = block.Integers("ubid")) base_units_.insert(ids->begin(), ids->end());
  if (const auto* ids = block.Integers("udid")) derived_units_.insert(ids->begin(), ids->end());
  const auto* counts = block.Integers("ndbunit");
  if (!counts || !CanBeCompared(block, "udbid")) return;
  const auto sum = SumOf(*counts);
  const auto length = LengthOf(block, "udbid");
  if (!sum || static_cast<std::uint64_t>(*sum) != length || length != LengthOf(block, "udbexp")) {
    teller_.Tell("V006", block.datasets.at("ndbunit").path,
                 fmt::format("the counts do not add up to the length of udbid and udbexp, {} and {}", length,
                             LengthOf(block, "udbexp")));
    return;
  }
  const auto* ids = block.Integers("udbid");
  if (!ids) return;
  const auto unknown = std::ranges::find_if(*ids, [&](std::int64_t id) { return !base_units_.contains(id); });
  if (unknown == ids->end()) return;
  teller_.Tell("V005", block.datasets.at("udbid").path, fmt::format("there is no base unit {}", *unknown));
}

void VariableCheck::TakeVariable(const Block& block) {
  const std::string old_name = LowerCase(block.Text("etypvar"));
  const std::string name = old_name.empty() ? LowerCase(block.Text("varnam")) : old_name;
  const std::string key = LowerCase(block.Text("varkey"));
  const std::int64_t components = block.Number("ncoo");
  const bool is_repeated = key.empty() ? components_by_name_.contains(name) : components_by_key_.contains(key);
  if (is_repeated) {
    teller_.Tell("V008", block.path,
                 fmt::format("another variable has the {} {}", key.empty() ? "name" : "key", key.empty() ? name : key));
  }
  components_by_name_.emplace(name, components);
  if (!key.empty()) components_by_key_.emplace(key, components);
  const std::int64_t rank = block.Number("rank");
  constexpr std::int64_t kHighestRank = 2;
  if (block.header.contains("rank") && (rank < 0 || rank > kHighestRank)) {
    teller_.Tell("V009", block.path, fmt::format("the rank is {}", rank));
  }
  CheckLabels(block);
  CheckUnits(block, "mbunit", "ubid", base_units_);
  CheckUnits(block, "mdunit", "udid", derived_units_);
}

void VariableCheck::CheckLabels(const Block& block) {
  const auto *counts = block.Integers("subscnt"), *offsets = block.Integers("subsoffs");
  const std::int64_t length = block.Number("subslen");
  if (!counts || !offsets || length < 1) return;
  for (std::size_t i = 0; i < counts->size() && i < offsets->size(); ++i) {
    const std::int64_t count = (*counts)[i], offset = (*offsets)[i];
    if (count >= 0 && offset >= 0 && count <= length && offset <= length - count) continue;
    teller_.Tell(
        "V007", block.path,
        fmt::format("the label of component {} has {} bytes at {} in a text of {}", i + 1, count, offset, length));
    return;
  }
}

void VariableCheck::CheckUnits(const Block& block, const char* counts, const char* ids,
                               const std::set<std::int64_t>& known) {
  const auto* numbers = block.Integers(counts);
  if (!numbers || !CanBeCompared(block, ids)) return;
  const std::string& place = block.datasets.at(counts).path;
  const auto sum = SumOf(*numbers);
  const auto most = static_cast<std::int64_t>(numbers->size()) * kMostUnitsEach;
  if (!sum || *sum > most || static_cast<std::uint64_t>(*sum) != LengthOf(block, ids)) {
    teller_.Tell("V006", place,
                 fmt::format("the counts of units do not add up to the length of {}, {}, or to more than "
                             "7 for each component",
                             ids, LengthOf(block, ids)));
    return;
  }
  const auto* units = block.Integers(ids);
  if (!units) return;
  const auto unknown = std::ranges::find_if(*units, [&](std::int64_t id) { return !known.contains(id); });
  if (unknown == units->end()) return;
  teller_.Tell("V005", block.datasets.at(ids).path, fmt::format("there is no unit {} in the unit system", *unknown));
}

void VariableCheck::TakeGroup(const Block& block) {
  const std::int64_t components = block.Number("ncoo");
  components_by_group_.emplace(LowerCase(block.Text("etypvar")), components);
  const auto keys = block.texts.find("varkey");
  if (keys != block.texts.end()) {
    for (const std::string& key : keys->second) {
      if (components_by_key_.contains(LowerCase(key))) continue;
      teller_.Tell("V002", block.path, fmt::format("no variable has the key {}", key));
    }
  }
  const auto *counts = block.Integers("cnt"), *offsets = block.Integers("offs");
  if (!counts || !offsets || components < 0) return;
  for (std::size_t i = 0; i < counts->size() && i < offsets->size(); ++i) {
    const std::int64_t count = (*counts)[i], offset = (*offsets)[i];
    if (count >= 0 && offset >= 0 && count <= components && offset <= components - count) continue;
    teller_.Tell(
        "V003", block.path,
        fmt::format("variable {} has {} components from {} on; the group has {}", i + 1, count, offset, components));
  }
}

void VariableCheck::CheckIndexTypes(const Block& block) {
  const std::string group = block.Text("etypvar");
  if (group.empty() || components_by_group_.contains(LowerCase(group))) return;
  teller_.Tell("V010", block.path, fmt::format("there is no group of variables {}", group));
}

void VariableCheck::CheckResult(const Block& block) {
  const std::string name = block.Text("etypvar");
  const bool has_groups = !components_by_group_.empty();
  const auto& known = has_groups ? components_by_group_ : components_by_name_;
  const auto place = known.find(LowerCase(name));
  if (place == known.end()) {
    teller_.Tell("V001", block.path,
                 fmt::format("there is no {} {}", has_groups ? "group of variables" : "variable", name));
    return;
  }
  const std::int64_t components = block.Number("ncoo");
  if (components < 0 || place->second < 0 || components == place->second) return;
  teller_.Tell("V004", block.path,
               fmt::format("the result has {} components and its {} has {}", components,
                           has_groups ? "group of variables" : "variable", place->second));
}

}  // namespace orvio::program
