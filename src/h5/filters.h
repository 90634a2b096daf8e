#pragma once

// The filters that stored values may have gone through.

#include <hdf5.h>

namespace orvio::h5 {

/// Whether all filters of a chunked dataset are ones that result files use, with the parameters that HDF5 itself gives
/// them for the type and the chunks. HDF5 takes the parameters in the file for true when it reads: a filter that thinks
/// a chunk larger than it is writes past its end.
bool FiltersFit(hid_t creation_list, hid_t type, int rank);

}  // namespace orvio::h5
