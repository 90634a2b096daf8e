#pragma once

// Reading of datasets whose chunks went through the scale-offset filter and no other, without HDF5's own decoder: that
// one refuses what HDF5 itself wrote with all bits of the type, and takes chunks that are cut short.

#include <hdf5.h>

#include <functional>

#include "h5/data_type.h"
#include "h5/extents.h"
#include "h5/scale_offset_slab.h"

namespace orvio::h5 {

enum class [[nodiscard]] Decoded{
    kNotOurs,  ///< nothing was read; H5Dread is right for this dataset
    kDone,
    kFailed,  ///< the values cannot be told, and H5Dread must not be asked either; parts of the buffer may be set
};

/// Reads all of a dataset, or what `slab` selects, row by row into `buffer` as native values of `row`. `stored` are the
/// extents of the dataset. Elements of missing chunks get the fill value; where HDF5 would leave them as they are in
/// the buffer (no fill value, or one that is never written) the answer is kFailed.
///
/// kNotOurs: not chunked, without this filter, of another class than `row`, or with further filters. Those stay
/// HDF5's: it undoes them, fails where a chunk took all bits, and is right elsewhere. But a filter that was set up for
/// other values or chunks than those of the dataset is kFailed there as well.
///
/// What no reader can find: a value that is not a number among others that are, in a dataset of another writer, has
/// the code of the least value (the filter made one of it); and integers that needed more bits than a writer had fixed
/// have lost the upper ones.
///
/// Work memory is that of one stored chunk and some 64 kB; it is made after the size was compared with what such a
/// chunk can have. Throws std::bad_alloc.
Decoded ReadScaleOffset(hid_t dataset, const Extents& stored, const TypeRow& row, const Slab* slab, void* buffer);

/// Hands all values that the chunks of such a dataset hold to `take`, some thousands at a time, as native values of
/// `row`. Missing chunks are passed over.
Decoded VisitScaleOffset(hid_t dataset, const Extents& stored, const TypeRow& row,
                         const std::function<void(const void* values, hsize_t count)>& take);

}  // namespace orvio::h5
