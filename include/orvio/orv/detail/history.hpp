#pragma once

/// Curves over all states.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
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
    variable_ = values.variable;
    is_double_ = is_double_ || values.is_double;
    Places& places = places_[{values.entity, values.zone}];
    for (std::size_t i = 0; i < values.size(); ++i) {
      for (std::size_t place = 0; place < values.row_size(); ++place) {
        const Key key{values.ids[i], place / columns, place % columns};
        const auto [known, is_new] = places.emplace(key, curves_.size());
        if (is_new) curves_.push_back(new_curve(values, key));
        std::vector<std::optional<double>>& curve = curves_[known->second].values;
        if (!curve[state]) curve[state] = values.row(i)[place];
      }
    }
  }

  bool has_all(std::vector<std::int64_t> ids) const {
    for (const Curve& curve : curves_) ids.erase(std::remove(ids.begin(), ids.end(), curve.id), ids.end());
    return ids.empty();
  }

  std::size_t states() const { return states_; }
  std::vector<Curve>& curves() { return curves_; }
  const std::string& variable() const { return variable_; }
  bool is_double() const { return is_double_; }

 private:
  struct Key {
    std::int64_t id;
    std::size_t layer, column;
    bool operator==(const Key& other) const { return id == other.id && layer == other.layer && column == other.column; }
  };
  struct Hash {
    std::size_t operator()(const Key& key) const {
      constexpr std::size_t kSpread = 1000003;  // a prime
      return (std::hash<std::int64_t>()(key.id) * kSpread + key.layer) * kSpread + key.column;
    }
  };
  using Places = std::unordered_map<Key, std::size_t, Hash>;

  Curve new_curve(const Values<double>& values, const Key& key) const {
    const std::size_t component = values.is_complex ? key.column / 2 : key.column;
    Curve curve;
    curve.entity = values.entity;
    curve.zone = values.zone;
    curve.component = values.components[component].name;
    if (values.is_complex) curve.component += key.column % 2 == 0 ? ".re" : ".im";
    curve.unit = values.components[component].unit;
    curve.on_elements = values.on_elements;
    curve.id = key.id;
    curve.layer = static_cast<int>(key.layer) + 1;
    curve.values.resize(states_);
    return curve;
  }

  std::size_t states_;
  std::string variable_;
  bool is_double_ = false;
  std::vector<Curve> curves_;
  std::map<std::pair<std::string, std::string>, Places> places_;  ///< by entity type and zone
};

/// All values of a block that holds all states, or those of a few entities: `data` is states x ids x layers x components.
struct OverStates {
  std::size_t states = 0;
  Values<double> frame;
  Buffer<double> data;

  /// The values of one state, counted from 0.
  Values<double> at(std::size_t state) const {
    Values<double> values;
    values.variable = frame.variable;
    values.entity = frame.entity;
    values.zone = frame.zone;
    values.is_complex = frame.is_complex;
    values.is_double = frame.is_double;
    values.on_elements = frame.on_elements;
    values.components = frame.components;
    values.layers = frame.layers;
    values.ids = frame.ids;
    values.data = Buffer<double>(frame.ids.size() * frame.row_size());
    std::copy_n(data.data() + state * values.data.size(), values.data.size(), values.data.data());
    return values;
  }
};

/// Single rows of all states, side by side.
inline Buffer<double> fetch_rows(const Source& from, const std::vector<Column>& columns, int layer,
                                 const std::vector<std::size_t>& rows) {
  const auto states = static_cast<std::size_t>(from.block.m_nstate);
  Buffer<double> all;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    const Buffer<double> one = fetch<double>(from, columns, {layer, rows[i], 1});
    const std::size_t width = one.size() / states;
    if (all.empty()) all = Buffer<double>(one.size() * rows.size());
    for (std::size_t state = 0; state < states; ++state) {
      std::copy_n(one.data() + state * width, width, all.data() + (state * rows.size() + i) * width);
    }
  }
  return all;
}

inline OverStates read_over_states(Reader& reader, const Found& found, const ORVResult& block,
                                   const std::string& variable, const Selection& selection) {
  const std::vector<Column> columns = reader.columns(found, block, variable, selection.component);
  const Source from{reader.path(), reader.filer(), block, Reader::kAllStates};
  OverStates read;
  read.frame = Reader::frame<double>(found, block, variable, columns, selection);
  read.frame.is_double = reader.is_double(block, Reader::kAllStates);
  read.states = static_cast<std::size_t>(std::max<std::int64_t>(block.m_nstate, 0));
  const std::vector<std::size_t> rows = reader.known_rows(from, selection.ids);
  if (!rows.empty()) {
    const std::vector<std::int64_t> ids = read_ids(from).ids;
    for (const std::size_t row : rows) read.frame.ids.push_back(ids[row]);
    read.data = fetch_rows(from, columns, selection.layer, rows);
  } else {
    read.data = fetch<double>(from, columns, {selection.layer});
    read.frame.ids = read_ids(from).ids;
  }
  return read;
}

/// Index values of the states of a block that holds all of them; none where they cannot be read.
inline std::vector<State> index_over_states(ORVFiler& filer, const std::string& file, const ORVResult& listed) {
  ORVResult block = listed;
  int states = 0;
  int* ids = nullptr;
  float* values = nullptr;
  const int columns = filer.ReadMultistateIndexValues(&block, states, ids, values);  // checks what the file claims
  const std::unique_ptr<int, decltype(&std::free)> own_ids(ids, &std::free);
  const std::unique_ptr<float, decltype(&std::free)> own_values(values, &std::free);
  if (columns < 1 || states < 1) return {};
  const auto width = static_cast<std::size_t>(columns);
  std::vector<double> all(static_cast<std::size_t>(states) * width);
  block.m_nstate = states;
  block.m_nindex = columns;
  block.m_indexval = all.data();
  block.m_indexvalType = ORV_DOUBLE;
  if (block.ReadAttribute(file.c_str(), Reader::kAllStates, ORV_READ_INDEX, ORV_ATT_INDEXVAL) != 0) return {};
  std::vector<State> rows;
  for (std::size_t i = 0; i < static_cast<std::size_t>(states); ++i) {
    const double* row = all.data() + i * width;
    rows.push_back({static_cast<int>(i + 1), {row, row + width}});
  }
  return rows;
}

/// Whether each block of the states has a twin over all states: one of the same entities. Elements with several points have
/// a zone for each there, so a layer alone is looked for in the states.
inline bool has_twins(const std::vector<ORVResult*>& in_states, const std::vector<ORVResult*>& over_states, int layer) {
  return std::all_of(in_states.begin(), in_states.end(), [&](const ORVResult* block) {
    return std::any_of(over_states.begin(), over_states.end(), [&](const ORVResult* other) {
      const bool is_any_zone = block->IsElementResult() && layer == 0;
      return same_word(text_of(block->m_etyp), text_of(other->m_etyp)) &&
             (is_any_zone || same_word(zone_of(*block), zone_of(*other)));
    });
  });
}

/// Results of a name that the states hold one by one.
inline std::vector<ORVResult*> find_in_states(Reader& reader, const std::string& variable, const Selection& selection) {
  reader.learn(0);
  std::vector<ORVResult*> blocks = reader.find(variable, ResultList::single_state).blocks;
  Reader::keep_entity(selection, blocks);
  const auto is_constant = [](const ORVResult* block) { return block->IsConstantBlk(); };
  blocks.erase(std::remove_if(blocks.begin(), blocks.end(), is_constant), blocks.end());
  return blocks;
}

/// Curves and the states that they have a value for each.
struct Curves {
  std::string variable;
  std::vector<Curve> curves;
  bool is_double = false;
  std::vector<State> states;  ///< of a block over all states; empty: those of the file
};

/// From the blocks over all states; nothing where these lack something that the states have.
inline std::optional<Curves> collect_over_states(Reader& reader, const std::string& variable,
                                                 const Selection& selection, const std::vector<ORVResult*>& in_states) {
  Found over = reader.find(variable, ResultList::over_states);
  Reader::keep_entity(selection, over.blocks);
  const auto lacks_layer = [&](const ORVResult* block) { return !Reader::has_layer(*block, selection.layer); };
  over.blocks.erase(std::remove_if(over.blocks.begin(), over.blocks.end(), lacks_layer), over.blocks.end());
  if (over.blocks.empty() || !has_twins(in_states, over.blocks, selection.layer)) return std::nullopt;
  const auto has_fewer = [](const ORVResult* a, const ORVResult* b) { return a->m_nstate < b->m_nstate; };
  const ORVResult& longest = **std::max_element(over.blocks.begin(), over.blocks.end(), has_fewer);
  const std::int64_t states = std::max<std::int64_t>(longest.m_nstate, 0);
  if (!fits_into(reader.path(), static_cast<double>(states))) refuse(reader.path(), longest, Reader::kAllStates);
  CurveCollector collector(static_cast<std::size_t>(states));
  for (const ORVResult* block : over.blocks) {
    const OverStates read = read_over_states(reader, over, *block, variable, selection);
    for (std::size_t state = 0; state < read.states; ++state) {
      Values<double> values = read.at(state);
      if (!selection.ids.empty()) keep_rows(find_rows(values.ids, selection.ids), values);
      collector.add(state, values);
    }
  }
  const bool has_all = collector.has_all(selection.ids) && states >= reader.states();
  if (collector.curves().empty() || (!in_states.empty() && !has_all)) return std::nullopt;
  Curves curves{collector.variable(), std::move(collector.curves()), collector.is_double(),
                index_over_states(reader.filer(), reader.path(), longest)};
  if (curves.states.size() != static_cast<std::size_t>(states)) {
    curves.states.clear();
    for (int state = 1; state <= states; ++state) curves.states.push_back(reader.state(state));
  }
  return curves;
}

/// A block over all states that cannot be read takes nothing away from what the states hold.
inline std::optional<Curves> try_over_states(Reader& reader, const std::string& variable, const Selection& selection) {
  if (reader.find(variable, ResultList::over_states).blocks.empty()) return std::nullopt;
  const std::vector<ORVResult*> in_states = find_in_states(reader, variable, selection);
  try {
    return collect_over_states(reader, variable, selection, in_states);
  } catch (const Error&) {
    if (in_states.empty()) throw;
    return std::nullopt;
  }
}

inline Curves read_curves(Reader& reader, const std::string& variable, const Selection& selection) {
  const OpenFile open = reader.open();
  if (std::optional<Curves> curves = try_over_states(reader, variable, selection)) return *std::move(curves);
  CurveCollector collector(static_cast<std::size_t>(reader.states()));
  for (int state = 1; state <= reader.states(); ++state) {
    for (const Values<double>& values : reader.values<double>(variable, selection, state)) {
      if (values.state != 0) collector.add(static_cast<std::size_t>(state - 1), values);
    }
  }
  if (collector.curves().empty()) reader.fail_to_find(variable, selection, Error::kNoState);
  return {collector.variable(), std::move(collector.curves()), collector.is_double(), {}};
}

}  // namespace orv::detail
