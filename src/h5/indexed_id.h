#pragma once

// Ids of groups that are known from a catalogue; see indexed_file.h.

#include <hdf5.h>

namespace orvio::h5 {

/// HDF5 keeps the kind of an id in its upper bits, and has no kind of this number: it takes such an id for none.
inline constexpr unsigned kIndexedTagAt = 56;
inline constexpr hid_t kIndexedTag = 0x7f;
inline bool IsIndexed(hid_t id) { return id >> kIndexedTagAt == kIndexedTag; }

}  // namespace orvio::h5
