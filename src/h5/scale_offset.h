#pragma once

// When the scale-offset filter may be trusted with data.

#include <hdf5.h>

#include "h5/data_type.h"

namespace orvio::h5 {

/// Whether the filter gives these values back. It answers success for values that it then cannot restore: not
/// finite ones, and ranges that need the full width of the type once they are scaled by the decimal digits.
bool ScaleOffsetKeeps(const TypeRow& row, const void* data, hsize_t count, int digits);

/// The same for values that replace all of a dataset that is there, whose own filter, if any, and stored type decide.
/// Another writer may have fixed the bits of integers: no range may need more of them.
bool StoredFilterKeeps(hid_t dataset, const TypeRow& row, const void* data, hsize_t count);

/// The same for values that come beside those that stay in the dataset: a chunk has one range for all of its values.
/// False also when those that are there cannot be read. Throws std::bad_alloc.
bool StoredFilterKeepsBeside(hid_t dataset, const TypeRow& row, const void* data, hsize_t count);

}  // namespace orvio::h5
