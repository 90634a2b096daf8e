#pragma once

// Where the datasets of a block lie below its group, in whatever layout.

#include "h5/disk_names.h"
#include "h5/file_access.h"

namespace orvio {

/// Asks `holds` of a block's group and then of each of its parts, until one answers true. Whether one did.
template <class Holds>
bool AnyPart(hid_t group, Holds holds) {
  if (holds(group)) return true;
  for (const char* word : {disk::orvblock, disk::data, disk::index}) {
    const h5::Group part = h5::LinkExists(group, word) ? h5::OpenGroup(group, word) : h5::Group();
    if (part && holds(part.get())) return true;
  }
  return false;
}

}  // namespace orvio
