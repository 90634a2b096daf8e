#pragma once

/// Curves over all states.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <vector>

#include "orvio/orv/detail/reader.hpp"
#include "orvio/orv/model.hpp"

namespace orv::detail {

/// Puts the values of the states together.
class CurveCollector {
 public:
  explicit CurveCollector(std::size_t states) : states_(states) {}

  /// The values of a state, from 0. Where several blocks have a value for an entity, the first one counts.
  void add(std::size_t state, const Values<double>& values) {
    const std::size_t parts = values.is_complex ? 2 : 1, columns = values.components.size() * parts;
    for (std::size_t i = 0; i < values.size(); ++i) {
      for (std::size_t place = 0; place < values.row_size(); ++place) {
        Curve& curve = curve_of(values, i, place / columns, place % columns);
        if (!curve.values[state]) curve.values[state] = values.row(i)[place];
      }
    }
  }

  bool has_all(const std::vector<std::int64_t>& ids) const {
    std::set<std::int64_t> known;
    for (const Curve& curve : curves_) known.insert(curve.id);
    return std::all_of(ids.begin(), ids.end(), [&](std::int64_t id) { return known.count(id) > 0; });
  }

  std::size_t states() const { return states_; }
  std::vector<Curve>& curves() { return curves_; }

 private:
  using Key = std::tuple<std::string, std::string, std::int64_t, std::size_t, std::size_t>;

  Curve& curve_of(const Values<double>& values, std::size_t entity, std::size_t layer, std::size_t column) {
    const auto [place, is_new] =
        places_.emplace(Key(values.entity, values.zone, values.ids[entity], layer, column), curves_.size());
    if (!is_new) return curves_[place->second];
    const std::size_t component = values.is_complex ? column / 2 : column;
    Curve curve{values.entity,
                values.zone,
                values.components[component].name,
                values.ids[entity],
                static_cast<int>(layer) + 1,
                {}};
    if (values.is_complex) curve.component += column % 2 == 0 ? ".re" : ".im";
    curve.values.resize(states_);
    return curves_.emplace_back(std::move(curve));
  }

  std::size_t states_;
  std::vector<Curve> curves_;
  std::map<Key, std::size_t> places_;
};

/// The values of one state of a block that holds all of them, out of all of its values.
inline Values<double> state_of(const Values<double>& whole, const Buffer<double>& all, std::size_t state) {
  Values<double> values;
  values.entity = whole.entity;
  values.zone = whole.zone;
  values.is_complex = whole.is_complex;
  values.components = whole.components;
  values.layers = whole.layers;
  values.ids = whole.ids;
  values.data = Buffer<double>(whole.ids.size() * whole.row_size());
  std::copy_n(all.data() + state * values.data.size(), values.data.size(), values.data.data());
  return values;
}

/// Adds the curves of a block that holds all states; answers how many states it has.
inline std::size_t add_over_states(Reader& reader, const Found& found, ORVResult& block, const std::string& variable,
                                   const Selection& selection, CurveCollector& curves) {
  const std::vector<Column> columns = reader.columns(found, block, variable, selection.component);
  Values<double> whole = Reader::frame<double>(found, block, columns, selection);
  const Buffer<double> data = fetch<double>(reader.path(), reader.filer(), block, columns, Reader::kAllStates,
                                            whole.on_elements ? selection.layer : 0);
  const auto states = static_cast<std::size_t>(std::max<std::int64_t>(block.m_nstate, 0));
  const std::size_t step = states * whole.row_size();
  if (step == 0 || data.size() % step != 0) refuse(reader.path(), block, Reader::kAllStates);
  whole.ids = read_ids(reader.path(), block, Reader::kAllStates, data.size() / step);
  for (std::size_t state = 0; state < std::min(states, curves.states()); ++state) {
    Values<double> values = state_of(whole, data, state);
    keep_rows(find_rows(values, selection.ids, nullptr), values);
    curves.add(state, values);
  }
  return states;
}

/// Whether each block of the states has a twin over all states: one of the same entities. Elements with several points have
/// a zone for each there.
inline bool has_twins(const std::vector<ORVResult*>& in_states, const std::vector<ORVResult*>& over_states) {
  return std::all_of(in_states.begin(), in_states.end(), [&](const ORVResult* block) {
    return std::any_of(over_states.begin(), over_states.end(), [&](const ORVResult* other) {
      return same_word(text_of(block->m_etyp), text_of(other->m_etyp)) &&
             (block->IsElementResult() || same_word(zone_of(*block), zone_of(*other)));
    });
  });
}

/// From the blocks over all states, where these have all that the states have. False where they have not.
inline bool collect_over_states(Reader& reader, const std::string& variable, const Selection& selection,
                                CurveCollector& curves) {
  Found over = reader.find(variable, ResultList::over_states);
  Reader::keep_entity(selection, over.blocks);
  if (over.blocks.empty()) return false;
  reader.learn(0);
  Found in_states = reader.find(variable, ResultList::single_state);
  Reader::keep_entity(selection, in_states.blocks);
  if (!has_twins(in_states.blocks, over.blocks)) return false;
  std::size_t states = 0;
  for (ORVResult* block : over.blocks) {
    states = std::max(states, add_over_states(reader, over, *block, variable, selection, curves));
  }
  return in_states.blocks.empty() || (curves.has_all(selection.ids) && states >= curves.states());
}

/// State by state.
inline void collect_states(Reader& reader, const std::string& variable, const Selection& selection,
                           CurveCollector& curves) {
  for (int state = 1; state <= reader.states(); ++state) {
    for (const Values<double>& values : reader.values<double>(variable, selection, state)) {
      if (values.state != 0) curves.add(static_cast<std::size_t>(state - 1), values);
    }
  }
}

inline std::vector<Curve> read_curves(Reader& reader, const std::string& variable, const Selection& selection) {
  CurveCollector over_states(static_cast<std::size_t>(reader.states()));
  if (collect_over_states(reader, variable, selection, over_states)) return std::move(over_states.curves());
  CurveCollector curves(static_cast<std::size_t>(reader.states()));
  collect_states(reader, variable, selection, curves);
  if (curves.curves().empty()) reader.fail_to_find(variable, selection, Error::kNoState);
  return std::move(curves.curves());
}

}  // namespace orv::detail
