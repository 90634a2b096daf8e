#include "linking/array_builder.h"

#include <fmt/format.h>

#include <algorithm>
#include <tuple>
#include <utility>

#include "linking/topology.h"
#include "reading/block_values.h"
#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr int kOverStates = -1;  // state argument of blocks that hold all states
constexpr hsize_t kMostLayers = 1000;

/// The axes of `res` of a block.
struct Axes {
  explicit Axes(const ORVResult& block)
      : entity(block.IsMultistateBlk() ? 1 : 0),
        has_layers(block.IsElementResult()),
        component(entity + (has_layers ? 2 : 1)),
        rank(component + (block.IsComplexBlk() ? 2 : 1)) {}

  std::size_t entity;
  bool has_layers;
  std::size_t component, rank;
};

std::string NameOf(const ORVResult& block) { return TextOf(block.m_etypvar) + " of " + TextOf(block.m_etyp); }

std::string PlaceOf(int state) {
  return state == 0             ? "in the constant section"
         : state == kOverStates ? "over all states"
                                : fmt::format("in state {}", state);
}

/// What tells the arrays of a further group from those of the first.
std::string ZoneName(const ORVResult& block, std::size_t number) {
  const std::string zone = ZoneOf(block);
  return "_" + (zone.empty() ? fmt::format("{}", number + 1) : zone);
}

}  // namespace

/// Whether the dataset has the shape of its kind. `found` learns layers and ids.
bool ArrayBuilder::Describe(const LinkedQuantity& quantity, Found& found) {
  ORVResult& block = *found.block;
  found.holds_changes = file_.IsIncremental(block, found.state);
  const auto count = static_cast<hsize_t>(file_.CountAt(block, found.state));
  if (!found.values) {
    found.ids = std::make_shared<const std::vector<long long>>();
    found.layers = static_cast<hsize_t>(std::clamp<std::int64_t>(block.m_numl, 1, kMostLayers));
    return found.holds_changes && count == 0;
  }
  const Axes axes(block);
  const std::vector<hsize_t>& extents = found.values->extents;
  const hsize_t last = *std::ranges::max_element(quantity.columns);
  if (!IsReal(*found.values) || extents.size() != axes.rank || extents[axes.component] <= last ||
      extents[axes.entity] < count || (block.IsComplexBlk() && extents.back() != 2)) {
    return false;
  }
  if (axes.has_layers) found.layers = extents[axes.entity + 1];
  std::vector<long long> ids = ReadIds(file_, block, found.state, static_cast<std::size_t>(count));
  if (!last_ids_ || *last_ids_ != ids) last_ids_ = std::make_shared<const std::vector<long long>>(std::move(ids));
  found.ids = last_ids_;
  return count > 0 && found.layers <= kMostLayers;
}

/// The places where a block is: states, or the one of a block that holds for all or holds all.
std::vector<ArrayBuilder::Found> ArrayBuilder::LookFor(const LinkedQuantity& quantity, ORVResult& block) {
  const bool is_by_state = !block.IsConstantBlk() && !quantity.is_over_states;
  const int first = is_by_state ? 1 : 0, last = is_by_state ? file_.states() : 0;
  std::vector<Found> all;
  {
    SourceFile source(file_.path());
    for (int state = first; state <= last; ++state) {
      all.push_back({&block, quantity.is_over_states ? kOverStates : state, nullptr, nullptr, false, 1});
      std::optional<StoredArray> values = source.Find(block, state, "res");
      if (values) all.back().values = std::make_shared<const StoredArray>(std::move(*values));
    }
  }
  std::erase_if(all, [&](const Found& found) {
    return !found.values && file_.CountAt(block, found.state) < 1 && !file_.IsIncremental(block, found.state);
  });
  return all;
}

std::vector<ArrayBuilder::Found> ArrayBuilder::FindBlock(const LinkedQuantity& quantity, ORVResult& block) {
  std::vector<Found> all = LookFor(quantity, block);
  std::erase_if(all, [&](Found& found) {
    std::string why = "its values are not there as its header tells";
    try {
      if (Describe(quantity, found)) return false;
    } catch (const Trouble& trouble) {
      why = trouble.what();
    }
    Note(report_.left_out, {fmt::format("{} {}", NameOf(block), PlaceOf(found.state)), why});
    return true;
  });
  const hsize_t steps = mesh_.steps.size();
  if (quantity.is_over_states && !all.empty() && all.front().values->extents[0] != steps) {
    Note(report_.left_out, {NameOf(block) + " over all states",
                            fmt::format("it has {} states, the file {}", all.front().values->extents[0], steps)});
    all.clear();
  }
  return all;
}

ArrayBuilder::Target& ArrayBuilder::TargetOf(std::size_t topology, const ORVResult& block) {
  const std::string entity = TextOf(block.m_etyp);
  const bool is_on_points = block.IsEntityResult() && SameWord(entity, mesh_.node_type);
  Target& target = targets_[{topology, is_on_points ? std::string() : entity}];
  if (target.rows) return target;
  const Topology& mesh = mesh_.topologies[topology];
  target.rows = is_on_points ? mesh.points : std::make_shared<const RowMap>(mesh.CellsOf(entity));
  target.finder = std::make_unique<RunFinder>(*target.rows);
  return target;
}

/// The steps whose states do not hold the quantity: constant values hold there.
std::vector<bool> ArrayBuilder::StatesWithout(const std::vector<std::vector<Found>>& blocks) const {
  std::vector<bool> without(mesh_.steps.size(), true);
  for (std::size_t step = 0; step < without.size(); ++step) {
    for (const std::vector<Found>& block : blocks) {
      const bool has = std::ranges::any_of(
          block, [&](const Found& found) { return found.state > 0 && found.state == mesh_.steps[step].state; });
      if (has) without[step] = false;
    }
  }
  return without;
}

std::vector<std::vector<ArrayBuilder::Placed>> ArrayBuilder::PlaceBlock(const std::vector<Found>& found,
                                                                        const std::vector<bool>& constant_holds) {
  std::vector<std::vector<Placed>> placed(mesh_.steps.size());
  std::map<int, const Found*> by_state;
  for (const Found& place : found) by_state[place.state] = &place;
  for (std::size_t step = 0; step < placed.size(); ++step) {
    const int state = mesh_.steps[step].state;
    auto place = by_state.find(kOverStates);
    if (place == by_state.end() && state > 0) place = by_state.find(state);
    if (place == by_state.end() && constant_holds[step]) place = by_state.find(0);
    if (place == by_state.end()) continue;
    const Found& block = *place->second;
    SharedRuns runs = TargetOf(mesh_.steps[step].topology, *block.block).finder->Find(block.ids);
    if (runs->strangers > 0) {
      Note(report_.left_out, {fmt::format("{} values of {}", runs->strangers, NameOf(*block.block)),
                              "their ids are no points or cells, or stand twice"});
    }
    placed[step].push_back({&block, std::move(runs)});
  }
  return placed;
}

std::vector<ArrayBuilder::Group> ArrayBuilder::MakeGroups(const std::vector<std::vector<Found>>& blocks) {
  const auto meets = [](const Group& group, const Group& block) {
    for (std::size_t step = 0; step < group.size(); ++step) {
      for (const Placed& a : group[step]) {
        for (const Placed& b : block[step]) {
          if (Overlap(*a.runs, *b.runs)) return true;
        }
      }
    }
    return false;
  };
  const std::vector<bool> constant_holds = StatesWithout(blocks);
  std::vector<Group> groups;
  for (const std::vector<Found>& block : blocks) {
    Group placed = PlaceBlock(block, constant_holds);
    const auto group = std::ranges::find_if(groups, [&](const Group& other) { return !meets(other, placed); });
    if (group == groups.end()) {
      groups.push_back(std::move(placed));
      continue;
    }
    for (std::size_t step = 0; step < placed.size(); ++step) {
      group->at(step).insert(group->at(step).end(), placed[step].begin(), placed[step].end());
    }
  }
  return groups;
}

hsize_t ArrayBuilder::RowsOf(const LinkedQuantity& quantity, std::size_t step) const {
  const Topology& topology = mesh_.topologies[mesh_.steps[step].topology];
  return quantity.is_on_points ? topology.points->rows() : topology.cells();
}

void ArrayBuilder::Append(const LinkedQuantity& quantity, const Placed& placed, std::size_t step, hsize_t layer,
                          hsize_t part, LinkedArray& array) {
  const Found& found = *placed.found;
  if (layer >= found.layers) return;
  ORVResult& block = *found.block;
  if (found.holds_changes) {
    if (file_.IsDouble(block, file_.ChainOf(block, found.state).base)) array.kind = NumberKind::kDouble;
    array.merged.push_back({&block, found.state, static_cast<std::size_t>(layer),
                            TargetOf(mesh_.steps[step].topology, block).rows, array.rows});
    array.why_copied = "states hold changes alone";
    return;
  }
  const Axes axes(block);
  std::vector<hsize_t> start(axes.rank, 0);
  if (quantity.is_over_states) start[0] = step;
  if (axes.has_layers) start[axes.entity + 1] = layer;
  if (quantity.is_complex) start.back() = part;
  if (found.values->type == ORV_DOUBLE) array.kind = NumberKind::kDouble;
  array.pieces.push_back(
      {found.values, std::move(start), axes.entity, static_cast<int>(axes.component), placed.runs, array.rows});
}

/// Steps with the same blocks in the same mesh share their rows.
LinkedArray ArrayBuilder::BuildOne(const LinkedQuantity& quantity, const Group& group, hsize_t layer, hsize_t part) {
  using Key = std::pair<std::size_t, std::vector<std::tuple<const ORVResult*, int, std::size_t>>>;
  LinkedArray array;
  array.is_on_points = quantity.is_on_points;
  array.variable = quantity.name;
  array.components = quantity.columns.size();
  array.columns = quantity.columns;
  array.first_column = quantity.first_column;
  std::map<Key, hsize_t> known;
  for (std::size_t step = 0; step < group.size(); ++step) {
    Key key = {mesh_.steps[step].topology, {}};
    for (const Placed& placed : group[step]) {
      const std::size_t row = quantity.is_over_states ? step : 0;
      key.second.emplace_back(placed.found->block, placed.found->state, row);
    }
    const auto [place, is_new] = known.try_emplace(std::move(key), array.rows);
    array.offsets.push_back(place->second);
    if (!is_new) continue;
    for (const Placed& placed : group[step]) Append(quantity, placed, step, layer, part, array);
    array.rows += RowsOf(quantity, step);
  }
  return array;
}

std::vector<LinkedArray> ArrayBuilder::Build(const LinkedQuantity& quantity) {
  std::vector<std::vector<Found>> blocks;
  for (ORVResult* block : quantity.blocks) blocks.push_back(FindBlock(quantity, *block));
  std::erase_if(blocks, [](const std::vector<Found>& found) { return found.empty(); });
  std::vector<LinkedArray> arrays;
  const std::vector<Group> groups = MakeGroups(blocks);
  for (std::size_t number = 0; number < groups.size(); ++number) {
    const Group& group = groups[number];
    hsize_t layers = 0;
    const ORVResult* block = nullptr;
    for (const std::vector<Placed>& step : group) {
      for (const Placed& placed : step) {
        layers = std::max(layers, placed.found->layers);
        block = placed.found->block;
      }
    }
    const std::string base = quantity.name + (number == 0 || !block ? "" : ZoneName(*block, number));
    for (hsize_t layer = 0; layer < layers; ++layer) {
      for (hsize_t part = 0; part < (quantity.is_complex ? 2U : 1U); ++part) {
        arrays.push_back(BuildOne(quantity, group, layer, part));
        const std::string layer_name = layers > 1 ? fmt::format("_layer{}", layer + 1) : "";
        const char* part_name = !quantity.is_complex ? "" : part == 0 ? "_real" : "_imag";
        arrays.back().name = PlainName(base + layer_name + part_name);
      }
    }
  }
  return arrays;
}

}  // namespace orvio::program
