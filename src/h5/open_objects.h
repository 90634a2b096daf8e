#pragma once

// Objects that are still open in a file, and the targets of links.

#include <hdf5.h>

#include <string>

namespace orvio::h5 {

/// Closes every dataset, group, type and attribute that was opened through this file id. Objects that a host
/// opened through an id of its own are not touched.
void CloseLocalObjects(hid_t file);

/// Value of a soft or external link: the path, and the file name of an external one. False for other links.
bool ReadLinkTarget(hid_t loc, const char* name, const H5L_info1_t& info, std::string& target, std::string& file);

}  // namespace orvio::h5
