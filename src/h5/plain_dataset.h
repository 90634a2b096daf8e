#pragma once

// Datasets that HDF5 has opened and whose values are read without it.

#include <memory>

#include "h5/file_snapshot.h"
#include "h5/plain_numbers.h"
#include "h5/stored_dataset.h"

namespace orvio::h5 {

/// Values that lie in one piece, in numbers as the machine has them, in a file that is only read. There are no such values
/// of most other datasets, and none of small ones: to find out takes as long as HDF5 takes to read them.
class PlainDataset {
 public:
  PlainDataset(StoredDataset& dataset, const TypeRow& row);

  explicit operator bool() const { return snapshot_ != nullptr; }
  /// All values, or a slab that lies within them. False when the file cannot be read.
  [[nodiscard]] bool Read(const TypeRow& row, const PlainSlab* slab, void* buffer);

 private:
  bool FindShape(StoredDataset& dataset);

  structure::ArrayShape shape_;
  std::uint64_t offset_ = 0;
  std::shared_ptr<FileSnapshot> snapshot_;
};

}  // namespace orvio::h5
