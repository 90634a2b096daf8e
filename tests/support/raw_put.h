#pragma once

// Groups and header fields put into a file with HDF5 alone, as result files have them.

#include "support/raw_hdf5.h"

namespace orv_test {

Id MakeGroup(hid_t parent, const std::string& name);
Id OpenOrMakeGroup(hid_t parent, const std::string& name);

/// A scalar attribute.
void PutAttribute(hid_t group, const char* name, hid_t type, const void* value);
void PutNumber(hid_t group, const char* name, std::int64_t value);
void PutText(hid_t group, const char* name, const char* text);  ///< 256 bytes, blank padded

}  // namespace orv_test
