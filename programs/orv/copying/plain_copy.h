// Copies of what the format knows nothing of, made by HDF5 as it stands.
#pragma once

#include <hdf5.h>

#include <string>

namespace orvio::program {

/// Copies an object, with all that lies below it, to a name in a group of another file. Nothing is copied, and the answer
/// is false, when any of it leads out of the file, is stored elsewhere, or needs code or heaps to be read: links of other
/// kinds than hard and soft ones, external and virtual values, unknown filters, types of variable length, references.
bool CopyPlain(hid_t from, const std::string& path, hid_t to, const std::string& name);

/// Copies the attributes of a group that are plain in this sense, or of these the one of that name. False when there is
/// one that is not.
bool CopyAttributes(hid_t from, const std::string& path, hid_t to, const std::string& name = {});

}  // namespace orvio::program
