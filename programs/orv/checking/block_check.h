// Each block by itself: header, place, datasets, values.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <span>

#include "checking/block.h"
#include "checking/value_reader.h"

namespace orvio::program {

class BlockCheck {
 public:
  BlockCheck(hid_t file, Teller& teller) : file_(file), teller_(teller) {}

  /// Major version of the file, which tells the layout of its blocks. Without it any layout is right.
  void SetMajorVersion(int major) { major_ = major; }

  /// Looks at all but the values.
  void CheckForm(const Block& block);

  /// Reads all values. Ids, counts and the index stay with the block; `visit_nodes` gets the nodes of elements.
  void CheckValues(Block& block, const std::function<void(std::span<const std::int64_t>)>& visit_nodes);

 private:
  void CheckPlace(const Block& block);
  void CheckAttributes(const Block& block);
  void CheckAttribute(const Block& block, const AttributeRow& row);
  void CheckDatasets(const Block& block);
  void CheckDataset(const Block& block, const DatasetRow& row);
  void CheckShape(const Block& block, const DatasetRow& row, const StoredDataset& dataset);
  void CheckIndex(const Block& block);
  void CheckDataClass(const StoredDataset& dataset, StoredClass wanted);
  void CheckVariableNames(const Block& block);
  void CheckRoad(const StoredDataset& dataset);
  void CheckValuesOf(Block& block, const std::string& name, const StoredDataset& dataset,
                     const std::function<void(std::span<const std::int64_t>)>& visit_nodes);

  hid_t file_;
  Teller& teller_;
  std::optional<int> major_;
};

}  // namespace orvio::program
