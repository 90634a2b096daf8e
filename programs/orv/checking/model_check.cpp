// Ids against ids. Where a file tells nothing of a type, as many do of parts, nothing is compared.

#include "checking/model_check.h"

#include <fmt/format.h>

#include <algorithm>

#include "checking/words.h"

namespace orvio::program {
namespace {

bool IsEntityTable(const Block& block) { return block.key == 200 || block.key == 250; }

/// Results that tell where entities are. A result that holds changes tells only of some of them, which does no harm.
bool IsCoordinates(const Block& block) {
  return (block.key == 1000 || block.key == 1050) && LowerCase(block.Text("etypvar")) == "coordinate";
}

/// Saturates: differences of hostile ids do not fit.
std::uint64_t Distance(std::int64_t from, std::int64_t to) {
  return static_cast<std::uint64_t>(to) - static_cast<std::uint64_t>(from);
}

}  // namespace

void IdSet::Add(const std::vector<std::int64_t>& ids) {
  std::vector<std::int64_t> added;
  std::ranges::copy_if(ids, std::back_inserter(added), [&](std::int64_t id) { return !Contains(id); });
  if (added.empty()) return;
  ids_.insert(ids_.end(), added.begin(), added.end());
  std::ranges::sort(ids_);
  ids_.erase(std::unique(ids_.begin(), ids_.end()), ids_.end());
  constexpr std::uint64_t kBitsPerId = 64;
  const std::uint64_t range = Distance(ids_.front(), ids_.back());
  dense_.clear();
  if (range / kBitsPerId > ids_.size()) return;
  dense_.resize(range + 1);
  for (const std::int64_t id : ids_) dense_[Distance(ids_.front(), id)] = true;
}

bool IdSet::Contains(std::int64_t id) const {
  if (ids_.empty() || id < ids_.front() || id > ids_.back()) return false;
  if (!dense_.empty()) return dense_[Distance(ids_.front(), id)];
  return std::ranges::binary_search(ids_, id);
}

int ModelCheck::OrderOf(const Block& block) {
  constexpr std::int64_t kFirst[] = {10, 30, 32, 20, 100, 200, 250};
  const auto* place = std::ranges::find(kFirst, block.key);
  const int known = static_cast<int>(std::size(kFirst));
  if (place != std::end(kFirst)) return static_cast<int>(place - kFirst);
  if (IsCoordinates(block)) return known;
  return block.key == 300 ? known + 1 : known + 2;
}

void ModelCheck::Check(const Block& block) {
  if (block.key == 100) CheckIds(block, "pid");
  if (block.key == 300) CheckIds(block, "idele");
  if (IsEntityTable(block) || block.key == 2100 || block.key == 500) CheckIds(block, "entid");
  if (IsResult(block.key)) CheckIds(block, IsElementResult(block.key) ? "idele" : "entid");
  const auto* ids = block.Integers("entid");
  if (ids && (IsEntityTable(block) || IsCoordinates(block))) entities_[LowerCase(block.Text("etyp"))].Add(*ids);
  if (block.key == 100) {
    if (const auto* parts = block.Integers("pid")) parts_[LowerCase(block.Text("etyppart"))].Add(*parts);
  }
  if (block.key == 300) TakeConnectivity(block);
  if (block.key == 400) CheckCollector(block);
  if (IsElementResult(block.key)) CheckElementResult(block);
}

void ModelCheck::CheckIds(const Block& block, const char* dataset) {
  const auto* stored = block.Integers(dataset);
  if (!stored || stored->empty()) return;
  std::vector<std::int64_t> ids = *stored;
  std::ranges::sort(ids);
  const std::string& place = block.datasets.at(dataset).path;
  const auto repeated = std::ranges::adjacent_find(ids);
  if (repeated != ids.end()) {
    teller_.Tell(IsResult(block.key) ? "E002" : "E001", place,
                 fmt::format("the id {} is there more than once", *repeated));
  }
  if (ids.front() < 1) teller_.Tell("E003", place, fmt::format("the smallest id is {}", ids.front()));
}

void ModelCheck::VisitNodes(const Block& block, std::span<const std::int64_t> nodes) {
  const auto known = entities_.find(LowerCase(block.Text("etypnode")));
  if (known == entities_.end()) return;
  for (const std::int64_t node : nodes) {
    if (known->second.Contains(node)) continue;
    if (unknown_nodes_++ == 0) first_unknown_ = node;
  }
}

void ModelCheck::TakeConnectivity(const Block& block) {
  const std::string node_type = block.Text("etypnode");
  if (!entities_.contains(LowerCase(node_type))) {
    teller_.Tell("E005", block.path, fmt::format("nothing tells of the nodes of the type {}", node_type));
  } else if (unknown_nodes_ > 0) {
    teller_.Tell(
        "E004", block.path,
        fmt::format("{} nodes of elements are not known, the first one is {}", unknown_nodes_, first_unknown_));
  }
  unknown_nodes_ = 0;
  CheckParts(block);
  if (const auto* ids = block.Integers("idele")) {
    elements_[LowerCase(block.Text("etypelem"))].Add(*ids);
    if (!block.Text("etyp").empty()) elements_[LowerCase(block.Text("etyp"))].Add(*ids);
  }
}

void ModelCheck::CheckParts(const Block& block) {
  const std::string type = block.Text("etyppart");
  const auto known = parts_.find(LowerCase(type));
  const auto* ids = block.Integers("pid");
  if (known == parts_.end() || !ids) return;
  const auto unknown = std::ranges::find_if(*ids, [&](std::int64_t id) { return !known->second.Contains(id); });
  if (unknown == ids->end()) return;
  teller_.Tell("E006", block.path, fmt::format("there is no part {} of the type {}", *unknown, type));
}

void ModelCheck::CheckElementResult(const Block& block) {
  const std::string type = block.Text("etypelem");
  const auto known = elements_.find(LowerCase(type));
  if (known == elements_.end()) {
    teller_.Tell("E007", block.path, fmt::format("there is no connectivity of the element type {}", type));
    return;
  }
  const auto* ids = block.Integers("idele");
  if (!ids) return;
  const auto is_unknown = [&](std::int64_t id) { return !known->second.Contains(id); };
  const auto count = std::ranges::count_if(*ids, is_unknown);
  if (count > 0) {
    teller_.Tell(
        "E008", block.path,
        fmt::format("{} elements are not known, the first one is {}", count, *std::ranges::find_if(*ids, is_unknown)));
  }
}

void ModelCheck::CheckCollector(const Block& block) {
  const auto* counts = block.Integers("nent");
  const auto ids = block.datasets.find("entid");
  if (!counts) return;
  std::int64_t sum = 0;
  bool is_sound = true;
  for (const std::int64_t count : *counts)
    is_sound = is_sound && count >= 0 && !__builtin_add_overflow(sum, count, &sum);
  const std::uint64_t length = ids == block.datasets.end() ? 0 : ids->second.count;
  if (is_sound && static_cast<std::uint64_t>(sum) == length) return;
  teller_.Tell("E009", block.datasets.at("nent").path,
               fmt::format("the counts do not add up to the number of ids, {}", length));
}

}  // namespace orvio::program
