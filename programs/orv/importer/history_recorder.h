// Results of a few entities, collected state by state.
#pragma once

#include <cstddef>
#include <map>
#include <string>
#include <vector>

#include "importer/block_writer.h"
#include "importer/quantity.h"

namespace orvio::program {

/// A result of a place at one state: entities x layers x components, row-major.
struct RecordedResult {
  std::string entity_type;
  const Quantity* quantity = nullptr;
  const std::vector<int>* ids = nullptr;
  std::size_t layers = 1;
  bool is_element = false;
  _ORVDataType type = ORV_FLOAT;
  const void* values = nullptr;
};

/// Takes the rows of chosen entities out of the results of each state, and writes them as blocks over all states.
class HistoryRecorder {
 public:
  HistoryRecorder(std::vector<long long> nodes, std::vector<long long> elements);

  /// The chosen ones that are not among `ids`.
  std::vector<long long> Missing(const std::vector<int>& ids, bool elements) const;

  /// States are taken one by one, and each has the same results.
  void Take(const RecordedResult& result);
  /// Answers the number of blocks.
  std::size_t Write(BlockWriter& writer, const std::vector<StateIndex>& states);

 private:
  struct Curves {
    const Quantity* quantity = nullptr;
    std::string entity_type;
    bool is_element = false;
    std::size_t layers = 1;
    std::vector<std::size_t> rows;  ///< places of the entities in a result
    std::vector<int> ids;
    _ORVDataType type = ORV_FLOAT;
    std::vector<double> doubles;  ///< states x ids x layers x components, in one of the two
    std::vector<float> floats;
  };

  Curves Start(const RecordedResult& result) const;
  template <class T>
  static void Append(const Curves& curves, const void* values, std::vector<T>& kept);
  template <class T>
  static std::vector<T> LayerOf(const Curves& curves, const std::vector<T>& values, std::size_t layer);

  std::vector<long long> nodes_, elements_;
  std::map<std::pair<std::string, std::string>, Curves> curves_;  ///< by entity type and quantity
};

}  // namespace orvio::program
