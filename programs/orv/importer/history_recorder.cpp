// A history costs the memory of the chosen entities only.

#include "importer/history_recorder.h"

#include <fmt/format.h>

#include <algorithm>
#include <unordered_set>
#include <utility>

namespace orvio::program {

HistoryRecorder::HistoryRecorder(std::vector<long long> nodes, std::vector<long long> elements)
    : nodes_(std::move(nodes)), elements_(std::move(elements)) {}

std::vector<long long> HistoryRecorder::Missing(const std::vector<int>& ids, bool elements) const {
  const std::unordered_set<long long> known(ids.begin(), ids.end());
  std::vector<long long> missing = elements ? elements_ : nodes_;
  std::erase_if(missing, [&](long long id) { return known.contains(id); });
  return missing;
}

/// The entities stand in the order of the result, and each once.
HistoryRecorder::Curves HistoryRecorder::Start(const RecordedResult& result) const {
  Curves curves;
  curves.quantity = result.quantity;
  curves.entity_type = result.entity_type;
  curves.is_element = result.is_element;
  curves.layers = result.layers;
  curves.type = result.type;
  const std::vector<long long>& list = result.is_element ? elements_ : nodes_;
  const std::unordered_set<long long> chosen(list.begin(), list.end());
  for (std::size_t row = 0; row < result.ids->size(); ++row) {
    const int id = (*result.ids)[row];
    if (!chosen.contains(id)) continue;
    curves.rows.push_back(row);
    curves.ids.push_back(id);
  }
  return curves;
}

template <class T>
void HistoryRecorder::Append(const Curves& curves, const void* values, std::vector<T>& kept) {
  const std::size_t width = curves.layers * curves.quantity->components.size();
  const T* all = static_cast<const T*>(values);
  for (const std::size_t row : curves.rows) kept.insert(kept.end(), all + row * width, all + (row + 1) * width);
}

void HistoryRecorder::Take(const RecordedResult& result) {
  if ((result.is_element ? elements_ : nodes_).empty()) return;
  const auto key = std::pair(result.entity_type, result.quantity->name);
  auto found = curves_.find(key);
  if (found == curves_.end()) found = curves_.emplace(key, Start(result)).first;
  Curves& curves = found->second;
  if (curves.type == ORV_DOUBLE) {
    Append(curves, result.values, curves.doubles);
  } else {
    Append(curves, result.values, curves.floats);
  }
}

/// One layer of all states and entities.
template <class T>
std::vector<T> HistoryRecorder::LayerOf(const Curves& curves, const std::vector<T>& values, std::size_t layer) {
  const std::size_t width = curves.quantity->components.size();
  std::vector<T> kept;
  for (std::size_t place = layer * width; place < values.size(); place += curves.layers * width) {
    const auto first = values.begin() + static_cast<std::ptrdiff_t>(place);
    kept.insert(kept.end(), first, first + static_cast<std::ptrdiff_t>(width));
  }
  return kept;
}

/// Readers look among the entity results when they look for histories, so that elements are stored as entities, too,
/// with a zone for each of their points.
std::size_t HistoryRecorder::Write(BlockWriter& writer, const std::vector<StateIndex>& states) {
  std::size_t blocks = 0;
  for (auto& [key, curves] : curves_) {
    if (curves.ids.empty()) continue;
    for (std::size_t layer = 0; layer < curves.layers; ++layer) {
      std::vector<double> doubles = LayerOf(curves, curves.doubles, layer);
      std::vector<float> floats = LayerOf(curves, curves.floats, layer);
      EntityValues values;
      values.entity_type = curves.entity_type;
      values.ids = &curves.ids;
      values.type = curves.type;
      values.values = curves.type == ORV_DOUBLE ? static_cast<void*>(doubles.data()) : floats.data();
      if (curves.layers > 1) values.zone = fmt::format("POINT_{}", layer + 1);
      values.zone_id = curves.layers > 1 ? static_cast<int>(layer + 1) : 0;
      writer.WriteOverStates(states, *curves.quantity, values);
      ++blocks;
    }
  }
  return blocks;
}

}  // namespace orvio::program
