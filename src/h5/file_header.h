#pragma once

// The 64-byte header of a result file, "/post/orvheader/orvheader": magic, then the version as text.

#include "h5/disk_names.h"
#include "orvio/orv_types.h"

namespace orvio::h5 {

struct FileHeader {
  char bytes[disk::kHeaderWidth];
};

FileHeader ComposeHeader(const ORVFileVersion& version);

/// Version that a header tells. Two older forms have a year where the version stands now and are version 1.0.0,
/// whatever their magic. Any other header with a wrong magic, and a text that is no version, give zeros.
ORVFileVersion ParseHeader(const FileHeader& header);

}  // namespace orvio::h5
