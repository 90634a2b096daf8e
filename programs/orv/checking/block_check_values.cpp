// The values of a block: that they can be read, and what of them other checks need.

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <string_view>

#include "checking/block_check.h"

namespace orvio::program {
namespace {

constexpr std::uint64_t kMostKept = std::uint64_t{1} << 26;  // ids; what is larger is not compared with anything
constexpr std::uint64_t kMostTextsKept = std::uint64_t{1} << 16;

bool IsKept(const std::string& name) {
  constexpr std::string_view kKept[] = {"entid", "idele", "pid",    "idcoll",   "nent",      "mbunit",  "mdunit",
                                        "ubid",  "udid",  "cnt",    "ndbunit",  "udbid",     "subscnt", "subsoffs",
                                        "offs",  "etyp",  "varkey", "indexval", "indexident"};
  return std::ranges::find(kKept, name) != std::end(kKept);
}

}  // namespace

void BlockCheck::CheckValues(Block& block, const std::function<void(std::span<const std::int64_t>)>& visit_nodes) {
  teller_.Enter(block.path);
  ++teller_.looked_at.blocks;
  for (const auto& [name, dataset] : block.datasets) CheckValuesOf(block, name, dataset, visit_nodes);
}

void BlockCheck::CheckValuesOf(Block& block, const std::string& name, const StoredDataset& dataset,
                               const std::function<void(std::span<const std::int64_t>)>& visit_nodes) {
  if (dataset.place != StoredDataset::Place::kHere) return;
  if (!dataset.is_written) {
    teller_.Tell("D004", dataset.path, fmt::format("of {} values at least some were never written", dataset.count));
    return;
  }
  teller_.looked_at.datasets += 1;
  teller_.looked_at.values += dataset.count;
  const bool is_kept = IsKept(name) && dataset.count <= kMostKept;
  const bool are_texts_kept = is_kept && dataset.count <= kMostTextsKept;
  std::uint64_t not_finite = 0;
  ValueVisitor visitor;
  visitor.integers = [&](std::span<const std::int64_t> values) {
    if (is_kept) block.integers[name].insert(block.integers[name].end(), values.begin(), values.end());
    if (name == "ic" && visit_nodes) visit_nodes(values);
  };
  visitor.floats = [&](std::span<const double> values) {
    not_finite += static_cast<std::uint64_t>(std::ranges::count_if(values, [](double v) { return !std::isfinite(v); }));
    if (is_kept) block.floats[name].insert(block.floats[name].end(), values.begin(), values.end());
  };
  visitor.texts = [&](const std::string& text) {
    if (are_texts_kept) block.texts[name].push_back(text);
  };
  if (!VisitValues(file_, dataset, visitor)) {
    block.integers.erase(name);
    block.floats.erase(name);
    block.texts.erase(name);
    teller_.Tell(dataset.is_scale_offset ? "D002" : "D003", dataset.path, "the values cannot be read");
  } else if (not_finite > 0) {
    teller_.Tell("D001", dataset.path, fmt::format("{} of {} values are not finite", not_finite, dataset.count));
  }
}

}  // namespace orvio::program
