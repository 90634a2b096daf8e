// Chains of changes, in the order of the identifiers of the index.

#include "copying/state_chain.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>
#include <utility>

#include "checking/stored_object.h"
#include "copying/row_selection.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr char kMeshGroup[] = "/connectivities/";

bool HoldsChanges(hid_t file, const BlockPlace& place) {
  const OwnedId access = LinkAccess();
  const OwnedId part(H5Gopen2(file, place.parts.front().c_str(), access.get()));
  std::int64_t flag = 0;
  const bool is_told = part && H5Aexists(part.get(), "indexic") > 0 &&
                       OH5Read_ATTRIBUTE(part.get(), "indexic", 0, nullptr, ORV_LONG, &flag) == 0;
  return is_told && flag != 0;
}

/// Kinds whose changes are rows of entities.
bool CanBeMerged(const BlockContent& content) {
  return (IsResult(content.key) && !IsMultistateResult(content.key)) || content.key == 200 || content.key == 2100;
}

/// Where a block stands is told by the last of its changes.
void TakeIndex(const BlockContent& from, BlockContent& content) {
  for (const char* name : {"indexident", "indexval"}) {
    content.RemoveItem(name);
    if (const BlockItem* item = from.Item(name)) content.items.push_back(*item);
  }
}

}  // namespace

StateScan::StateScan(hid_t file, std::vector<std::string> state_paths, std::string shown_as, bool looks)
    : file_(file), paths_(std::move(state_paths)), shown_as_(std::move(shown_as)) {
  if (looks) Look();
}

void StateScan::Look() {
  std::map<std::string, std::vector<Stage>> all;
  std::set<std::string> with_changes;
  for (int state = 1; state <= states(); ++state) {
    for (BlockPlace& place : FindBlocks(file_, PathOf(state)).blocks) {
      const std::string relative = place.relative;
      if (relative.starts_with(kMeshGroup) && (meshes_.empty() || meshes_.back() != state)) meshes_.push_back(state);
      Stage stage{state, HoldsChanges(file_, place), state, std::move(place)};
      if (stage.holds_changes) with_changes.insert(relative);
      all[relative].push_back(std::move(stage));
    }
  }
  for (const std::string& relative : with_changes) {
    std::vector<Stage>& stages = all[relative];
    for (Stage& stage : stages) FindIdentifier(stage);
    Chain& chain = incremental_[relative];
    for (const Stage& stage : stages) chain.stored_in.insert(stage.state);
    std::ranges::stable_sort(stages, {}, &Stage::identifier);
    const auto is_twin = [](const Stage& a, const Stage& b) { return a.identifier == b.identifier; };
    stages.erase(std::unique(stages.begin(), stages.end(), is_twin), stages.end());  // of these the first counts
    chain.stages = std::move(stages);
  }
}

void StateScan::FindIdentifier(Stage& stage) const {
  BlockContent header = ReadHeader(file_, stage.place, shown_as_);
  const bool has_index = header.Number("nindex") == 1 && ReadItem(file_, "indexident", shown_as_, header);
  const auto identifiers = has_index ? IntegersOf(header.items.front()) : std::vector<std::int64_t>();
  if (!identifiers.empty()) stage.identifier = identifiers.front();
  if (!identifiers.empty() || !IsResult(header.key)) return;
  throw Trouble(shown_as_,
                fmt::format("block {} has changes, and there is no telling what they build upon", stage.place.path),
                "its states must have one index column");
}

int StateScan::MeshOf(int state) const {
  const auto next = std::ranges::upper_bound(meshes_, state);
  return next == meshes_.begin() ? 0 : *(next - 1);
}

BlockContent StateScan::ReadStage(const Stage& stage) const {
  BlockContent content = ReadContent(file_, stage.place, shown_as_);
  if (CanBeMerged(content)) return content;
  throw Trouble(shown_as_, fmt::format("block {} holds changes of a kind that are not put together", stage.place.path),
                "orv repack copies it as it is");
}

BlockContent StateScan::ReadWhole(const BlockPlace& place, int state) const {
  const auto found = incremental_.find(place.relative);
  if (found == incremental_.end() || !HoldsChanges(file_, place)) return ReadContent(file_, place, shown_as_);
  const std::vector<Stage>& stages = found->second.stages;
  const auto here = std::ranges::find(stages, state, &Stage::state);
  if (here == stages.end()) {
    throw Trouble(shown_as_, fmt::format("block {} has the index of another state", place.path),
                  "orv check tells more");
  }
  auto base = here;
  while (base != stages.begin() && base->holds_changes) --base;
  BlockContent content = ReadStage(*base);
  for (auto stage = base; stage != here;) {
    if ((++stage)->state > state) continue;
    const BlockContent changes = ReadStage(*stage);
    ApplyChanges(changes, content.key == 200, shown_as_, content);
    if (stage == here) TakeIndex(changes, content);
  }
  content.place = here->place;
  content.SetNumber("indexic", 0);
  return content;
}

int StateScan::StateOf(const BlockPlace& place) const {
  const std::string state = place.path.substr(0, place.path.size() - place.relative.size());
  return static_cast<int>(std::ranges::find(paths_, state) - paths_.begin()) + 1;
}

std::vector<BlockPlace> StateScan::InheritedAt(int state) const {
  std::vector<BlockPlace> places;
  for (const auto& [relative, chain] : incremental_) {
    if (chain.stored_in.contains(state)) continue;
    const Stage* closest = nullptr;
    for (const Stage& stage : chain.stages) {
      if (stage.state < state && (!closest || stage.state > closest->state)) closest = &stage;
    }
    if (closest) places.push_back(closest->place);
  }
  return places;
}

}  // namespace orvio::program
