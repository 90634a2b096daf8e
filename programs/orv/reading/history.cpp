#include "reading/history.h"

#include <fmt/format.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <tuple>
#include <unordered_set>
#include <utility>

#include "reading/quantity_search.h"
#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr std::int64_t kMostEntitiesWithoutIds = 50;

constexpr ResultList kLists[] = {ResultList::kMultiState, ResultList::kSingleState};

/// Nobody reads that many curves, and they may not fit into memory.
void RequireFew(ResultFile& file, const ValueRequest& request) {
  file.LearnLaterResults(0);
  for (const ResultList list : kLists) {
    const FoundQuantity quantity = FindBlocks(file, request, list);
    for (const ORVResult* block : quantity.blocks) {
      if (block->IsConstantBlk() || block->m_nent <= kMostEntitiesWithoutIds) continue;
      throw Trouble(file.path(),
                    fmt::format("\"{}\" has {} values of {} in a state", quantity.NameIn(*block), block->m_nent,
                                TextOf(block->m_etyp)),
                    "choose some with --ids");
    }
  }
}

/// Whether all states have the same values of it.
bool IsConstant(ResultFile& file, const ValueRequest& request) {
  const std::vector<ORVResult*> blocks = FindBlocks(file, request, ResultList::kSingleState).blocks;
  return std::ranges::any_of(blocks, [](const ORVResult* block) { return block->IsConstantBlk(); });
}

orv::History Read(ResultFile& file, const HistoryRequest& request, const std::vector<std::int64_t>& ids, int layer) {
  const ValueRequest& values = request.values;
  return file.file().history(values.variable, ids, values.component, layer, values.entity);
}

/// Whether states have values of that name, whatever the ids.
bool AreInStates(ResultFile& file, const ValueRequest& request) {
  return std::ranges::any_of(kLists, [&](ResultList list) {
    const std::vector<ORVResult*> blocks = FindBlocks(file, request, list).blocks;
    return std::ranges::any_of(blocks, [](const ORVResult* block) { return !block->IsConstantBlk(); });
  });
}

/// Ids that have a value in any state and layer.
std::unordered_set<std::int64_t> IdsInAnyLayer(ResultFile& file, const HistoryRequest& request,
                                               const std::vector<std::int64_t>& ids) {
  std::unordered_set<std::int64_t> known;
  try {
    for (const orv::Curve& curve : Read(file, request, ids, 0).curves) known.insert(curve.id);
  } catch (const orv::Error&) {  // there are none
  }
  return known;
}

[[noreturn]] void RefuseLayer(const ResultFile& file, const HistoryRequest& request) {
  throw Trouble(file.path(), fmt::format("\"{}\" has no layer {}", request.values.variable, request.layer),
                "leave out --layer to see which there are");
}

[[noreturn]] void RefuseId(ResultFile& file, const HistoryRequest& request, long long id) {
  const bool over_states = FindBlocks(file, request.values, ResultList::kSingleState).blocks.empty();
  throw Trouble(file.path(), fmt::format("\"{}\" has no value at id {} in any state", request.values.variable, id),
                over_states ? "leave out --ids to see which there are" : "orv values shows which ids there are");
}

[[noreturn]] void RefuseName(ResultFile& file, const ValueRequest& request) {
  CheckDefinition(file, request.variable);
  const bool is_constant = IsConstant(file, request);
  const std::string of_entity = request.entity.empty() ? "" : fmt::format(" of \"{}\"", request.entity);
  throw Trouble(file.path(),
                fmt::format("no state has values of \"{}\"{}{}", request.variable, of_entity,
                            is_constant ? "" : SuggestionFor(file, request)),
                is_constant ? "they are constant: orv values shows them" : "orv info lists the results of the file");
}

/// Tells why there are no curves, which the person at the keyboard can do something about.
[[noreturn]] void Explain(ResultFile& file, const HistoryRequest& request, const std::vector<std::int64_t>& ids,
                          const orv::Error& error) {
  for (const ResultList list : kLists) CheckComponent(file, request.values, list);
  if (!error.block().empty()) throw error;
  if (request.layer > 0 && !IdsInAnyLayer(file, request, ids).empty()) RefuseLayer(file, request);
  if (!ids.empty() && AreInStates(file, request.values)) RefuseId(file, request, ids.front());
  RefuseName(file, request.values);
}

orv::History Read(ResultFile& file, const HistoryRequest& request, const std::vector<std::int64_t>& ids) {
  try {
    return Read(file, request, ids, request.layer);
  } catch (const orv::Error& error) {
    Explain(file, request, ids, error);
  }
}

/// Throws Trouble for an id that has no value; it may have some of other layers.
void CheckIds(ResultFile& file, const HistoryRequest& request, const std::vector<std::int64_t>& ids,
              const std::vector<orv::Curve>& curves) {
  std::unordered_set<std::int64_t> known;
  for (const orv::Curve& curve : curves) known.insert(curve.id);
  std::vector<std::int64_t> missing;
  std::ranges::copy_if(ids, std::back_inserter(missing), [&](std::int64_t id) { return !known.contains(id); });
  if (missing.empty()) return;
  if (request.layer > 0) known = IdsInAnyLayer(file, request, missing);
  for (const std::int64_t id : missing) {
    if (!known.contains(id)) RefuseId(file, request, id);
  }
}

std::size_t CountIndexColumns(const std::vector<orv::State>& states) {
  std::size_t columns = 0;
  for (const orv::State& state : states) columns = std::max(columns, state.index.size());
  return columns;
}

}  // namespace

History ReadHistory(ResultFile& file, const HistoryRequest& request) {
  if (request.values.ids.empty()) RequireFew(file, request.values);
  const std::vector<std::int64_t> ids(request.values.ids.begin(), request.values.ids.end());
  History history{Read(file, request, ids), {}};
  CheckIds(file, request, ids, history.curves);
  history.index_columns = file.file().index_columns(CountIndexColumns(history.states));
  return history;
}

std::vector<std::string> CurveNames(const History& history) {
  std::set<std::string> entities;
  std::set<std::tuple<std::string, std::string, std::int64_t, int>> places;
  for (const orv::Curve& curve : history.curves) {
    entities.insert(curve.entity);
    places.insert({curve.entity, curve.zone, curve.id, curve.layer});
  }
  std::vector<std::string> names;
  for (const orv::Curve& curve : history.curves) {
    std::string name = entities.size() > 1 ? curve.entity + ":" + curve.component : curve.component;
    if (places.size() > 1) {
      name += fmt::format("@{}", curve.id);
      if (curve.on_elements) name += fmt::format(".{}", curve.layer);
      if (!curve.zone.empty()) name += "/" + curve.zone;
    }
    names.push_back(std::move(name));
  }
  return names;
}

}  // namespace orvio::program
