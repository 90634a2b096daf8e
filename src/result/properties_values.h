#pragma once

// The records of a properties block, as a filer reads them: header first, then arrays of the C allocator for its counts,
// then data.

#include "h5/c_array.h"
#include "orvio/orv_properties.h"

namespace orvio {

/// Reads the block that carries its names or path already: its header (1), the data of one whose header was read (2),
/// or both (3). 1 for a data read without entities. A block whose data cannot be read has no arrays, but one without
/// entities or of another kind keeps what it had.
[[nodiscard]] int ReadProperty(ORVProperties& block, const char* file, int state, int sections);

/// What a host asks of a block: the ids of its entities and their numbers, entity by entity. No array where the count
/// is 0.
struct PropertyValues {
  int id_count = 0, int_count = 0, float_count = 0;
  CArray<int> ids, ints;
  CArray<float> floats;
};

/// Reads the values of a block of a filer's list at a state; none for a block without entities. The block gets the header
/// of that state, but not while it has arrays of its own, which are sized by the header that it has. It is left alone
/// where the header cannot be read.
[[nodiscard]] int ReadPropertyValues(ORVProperties& listed, const char* file, int state, PropertyValues& values);

}  // namespace orvio
