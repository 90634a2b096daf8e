#pragma once

// How the values of results are stored: in double precision, and through which filters of HDF5.

#include <vector>

class ORVResult;

namespace orvio {

/// Whether a block of the list stores its values as 64-bit floats. Constant blocks are looked at in the constant
/// section, others in `state`; see the note on multi-state blocks there.
bool HasDoublePrecision(const char* file, const std::vector<ORVResult*>& blocks, int state);

/// Whether the values of a block of the list are stored through a filter, by its HDF5 id.
bool IsDatasetHasFilterId(const char* file, const std::vector<ORVResult*>& blocks, int state, int filter);

}  // namespace orvio
