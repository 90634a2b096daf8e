// A state without a value leaves a gap in a curve: the rows of a history are the states of the file.

#include "reading/history.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <map>
#include <set>
#include <tuple>
#include <unordered_set>
#include <utility>

#include "reading/block_values.h"
#include "reading/value_table.h"
#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr std::size_t kMostEntitiesWithoutIds = 50;

/// Puts the tables of the states together.
class Collector {
 public:
  Collector(const ResultFile& file, const HistoryRequest& request) : file_(file), request_(request) {}

  /// One row of the history.
  void Add(std::size_t row, const ValueTable& table) {
    if (request_.values.ids.empty()) RequireFew(table);
    history_.variable = table.variable;
    ids_.insert(table.ids.begin(), table.ids.end());
    std::visit([&](const auto& values) { Add(row, table, values); }, table.values);
  }

  bool empty() const { return history_.curves.empty(); }

  bool HasAllIds() const {
    return std::ranges::all_of(request_.values.ids, [&](long long id) { return ids_.contains(id); });
  }

  /// Throws Trouble for an id of the request that no state has.
  void RequireAll(const char* advice) const {
    for (const long long id : request_.values.ids) {
      if (ids_.contains(id)) continue;
      throw Trouble(file_.path(),
                    fmt::format("\"{}\" has no value at id {} in any state", request_.values.variable, id), advice);
    }
  }

  History Finish(std::size_t rows) {
    for (Curve& curve : history_.curves) curve.values.resize(rows);
    for (std::size_t row = 0; row < rows; ++row) history_.states.push_back(static_cast<int>(row + 1));
    return std::move(history_);
  }

 private:
  using Key = std::tuple<std::string, std::string, long long, int, std::size_t>;  // entity, zone, id, layer, column

  void RequireFew(const ValueTable& table) const {
    const std::set<long long> entities(table.ids.begin(), table.ids.end());
    if (entities.size() <= kMostEntitiesWithoutIds) return;
    throw Trouble(file_.path(),
                  fmt::format("\"{}\" has {} values of {} in a state", table.variable, entities.size(), table.entity),
                  "choose some with --ids");
  }

  template <class T>
  void Add(std::size_t row, const ValueTable& table, const std::vector<T>& values) {
    history_.is_double = history_.is_double || std::is_same_v<T, double>;
    for (std::size_t i = 0; i < table.ids.size(); ++i) {
      const int layer = table.has_layers ? table.layers[i] : 0;
      if (request_.layer != 0 && layer != request_.layer) continue;
      for (std::size_t column = 0; column < table.columns.size(); ++column) {
        Put(row, CurveOf({table.entity, table.zone, table.ids[i], layer, column}, table),
            static_cast<double>(values[i * table.columns.size() + column]));
      }
    }
  }

  Curve& CurveOf(const Key& key, const ValueTable& table) {
    const auto [place, is_new] = places_.try_emplace(key, history_.curves.size());
    if (is_new) {
      const auto& [entity, zone, id, layer, column] = key;
      history_.curves.push_back({entity, zone, table.columns[column], table.units[column], id, layer, {}});
    }
    return history_.curves[place->second];
  }

  /// Where several blocks have a value for an entity, the first one counts.
  static void Put(std::size_t row, Curve& curve, double value) {
    if (curve.values.size() <= row) curve.values.resize(row + 1);
    if (!curve.values[row]) curve.values[row] = value;
  }

  const ResultFile& file_;
  const HistoryRequest& request_;
  History history_;
  std::map<Key, std::size_t> places_;
  std::unordered_set<long long> ids_;  ///< that have a value in any state and layer
};

/// Results of that name that the states hold one by one.
std::vector<ORVResult*> FindInStates(ResultFile& file, const ValueRequest& request) {
  file.LearnLaterResults(0);
  std::vector<ORVResult*> blocks = FindBlocks(file, request, ResultList::kSingleState).blocks;
  std::erase_if(blocks, [](const ORVResult* block) { return block->IsConstantBlk(); });
  return blocks;
}

/// Whether a block over all states is of the same entities. Elements with several points have a zone for each.
bool IsTwin(const ORVResult& in_states, const ORVResult& over_states) {
  const bool same_zone = in_states.IsElementResult() || SameWord(ZoneOf(in_states), ZoneOf(over_states));
  return same_zone && SameWord(TextOf(in_states.m_etyp), TextOf(over_states.m_etyp));
}

/// Whether a result has an entity that is asked for, in the first state that holds it.
bool HasAnyOf(ResultFile& file, const std::vector<long long>& ids, const ORVResult& block) {
  for (int state = 1; state <= file.states(); ++state) {
    const long long count = file.CountAt(block, state);
    if (count < 1) continue;
    const std::vector<long long> stored = ReadIds(file, block, state, static_cast<std::size_t>(count));
    const std::unordered_set<long long> known(stored.begin(), stored.end());
    return std::ranges::any_of(ids, [&](long long id) { return known.contains(id); });
  }
  return false;
}

/// From the blocks that hold all states; nothing when these lack something that the states may have.
std::optional<History> ReadOverStates(ResultFile& file, const HistoryRequest& request) {
  const FoundQuantity quantity = FindBlocks(file, request.values, ResultList::kMultiState);
  if (quantity.blocks.empty()) return std::nullopt;
  const std::vector<ORVResult*> in_states = FindInStates(file, request.values);
  bool names_entities = false;
  for (const ORVResult* block : in_states) {
    const auto is_twin = [&](const ORVResult* other) { return IsTwin(*block, *other); };
    if (std::ranges::any_of(quantity.blocks, is_twin)) continue;
    names_entities = true;
    if (HasAnyOf(file, request.values.ids, *block)) return std::nullopt;
  }
  Collector collector(file, request);
  std::vector<std::vector<double>> index;
  std::size_t rows = 0;
  for (ORVResult* block : quantity.blocks) {
    const std::vector<ValueTable> tables = ReadMultiStateTables(file, request.values, quantity, *block);
    for (std::size_t row = 0; row < tables.size(); ++row) collector.Add(row, tables[row]);
    if (tables.size() <= rows) continue;
    rows = tables.size();
    index = file.IndexOver(*block);
  }
  if (in_states.empty()) {
    collector.RequireAll("leave out --ids to see which there are");
  } else if (collector.empty() || !collector.HasAllIds() || rows < static_cast<std::size_t>(file.states())) {
    return std::nullopt;
  }
  History history = collector.Finish(rows);
  history.names_entities = names_entities;
  for (std::size_t row = index.size(); row < rows; ++row) index.push_back(file.IndexOf(static_cast<int>(row + 1)));
  index.resize(rows);
  history.index = std::move(index);
  return history;
}

History ReadStateByState(ResultFile& file, const HistoryRequest& request) {
  file.LearnLaterResults(0);
  Collector collector(file, request);
  bool in_states = false, is_constant = false;
  for (int state = 1; state <= file.states(); ++state) {
    for (const ValueTable& table : FindValueTables(file, request.values, state)) {
      (table.state == 0 ? is_constant : in_states) = true;
      if (table.state != 0) collector.Add(static_cast<std::size_t>(state - 1), table);
    }
  }
  if (!in_states) {
    const std::string of_entity = request.values.entity.empty() ? "" : fmt::format(" of \"{}\"", request.values.entity);
    throw Trouble(file.path(),
                  fmt::format("no state has values of \"{}\"{}{}", request.values.variable, of_entity,
                              is_constant ? "" : SuggestionFor(file, request.values)),
                  is_constant ? "they are constant: orv values shows them" : "orv info lists the results of the file");
  }
  collector.RequireAll("orv values shows which ids there are");
  History history = collector.Finish(static_cast<std::size_t>(file.states()));
  for (const int state : history.states) history.index.push_back(file.IndexOf(state));
  return history;
}

/// A file may hold nothing but blocks over all states: then the states have no index of their own to be named by.
void NameIndex(ResultFile& file, History& history) {
  std::size_t columns = 0;
  for (const auto& row : history.index) columns = std::max(columns, row.size());
  history.index_names = file.IndexNames(columns);
  history.index_units = file.IndexUnits(columns);
}

}  // namespace

History ReadHistory(ResultFile& file, const HistoryRequest& request) {
  std::optional<History> history;
  try {
    history = ReadOverStates(file, request);
  } catch (const Trouble&) {
    if (FindInStates(file, request.values).empty()) throw;  // else a damaged block takes nothing away from the states
  }
  if (!history) history = ReadStateByState(file, request);
  if (history->curves.empty()) {
    throw Trouble(file.path(), fmt::format("\"{}\" has no layer {}", request.values.variable, request.layer),
                  "leave out --layer to see which there are");
  }
  NameIndex(file, *history);
  return *std::move(history);
}

std::vector<std::string> CurveNames(const History& history) {
  std::set<std::string> entities;
  std::set<std::tuple<std::string, std::string, long long, int>> places;
  for (const Curve& curve : history.curves) {
    entities.insert(curve.entity);
    places.insert({curve.entity, curve.zone, curve.id, curve.layer});
  }
  std::vector<std::string> names;
  for (const Curve& curve : history.curves) {
    std::string name =
        entities.size() > 1 || history.names_entities ? curve.entity + ":" + curve.component : curve.component;
    if (places.size() > 1) name += fmt::format("@{}", curve.id);
    if (places.size() > 1 && curve.layer != 0) name += fmt::format(".{}", curve.layer);
    if (places.size() > 1 && !curve.zone.empty()) name += "/" + curve.zone;
    names.push_back(std::move(name));
  }
  return names;
}

}  // namespace orvio::program
