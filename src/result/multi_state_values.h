#pragma once

// Histories: all states of a variable, from the multi-state blocks of an entity type, with the table of what the states
// stand for.

#include <cstdint>
#include <string>
#include <vector>

struct ORVContainer;

namespace orvio {

struct HistoryRequest {
  const std::string& type_name;  ///< of the entities
  const std::string& variable;   ///< name; a key is no name
  int zone;                      ///< -1 for that of the first block
};

struct Histories {
  std::vector<int> ids;              ///< of the entities, block behind block
  std::vector<std::uint64_t> shape;  ///< of the values, slowest axis first; entities are those of all blocks
  std::vector<float> values;         ///< block behind block, each in the shape of its own
  std::uint64_t state_count = 0;
  std::vector<int> index_ids;       ///< states x columns
  std::vector<float> index_values;  ///< likewise
};

/// Reads from the blocks of the multi-state list of a filer. 0 when there are values and index; else 1, with nothing
/// but the shape, and that only where the index alone is missing.
[[nodiscard]] int ReadHistories(const ORVContainer& data, const HistoryRequest& request, Histories& histories);

}  // namespace orvio
