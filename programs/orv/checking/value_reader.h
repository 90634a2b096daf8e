// The values of datasets, piece by piece.
#pragma once

#include <hdf5.h>

#include <cstdint>
#include <functional>
#include <span>
#include <string>
#include <vector>

#include "checking/stored_object.h"

namespace orvio::program {

/// Whoever looks at values gets them in the order of the dataset, a piece at a time. Null where nobody looks.
struct ValueVisitor {
  std::function<void(std::span<const std::int64_t>)> integers;
  std::function<void(std::span<const double>)> floats;
  std::function<void(const std::string&)> texts;
};

/// Reads the whole of a dataset that lies in the file, about a megabyte at a time; a compressed one needs room for one of
/// its chunks besides. False when HDF5 cannot read some of it. Throws std::bad_alloc where memory is to blame for that.
bool VisitValues(hid_t file, const StoredDataset& dataset, const ValueVisitor& visitor);

}  // namespace orvio::program
