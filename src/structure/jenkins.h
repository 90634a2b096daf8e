#pragma once

// The checksum of newer HDF5 structures: Bob Jenkins' lookup3.

#include <cstdint>

#include "structure/file_view.h"

namespace orvio::structure {

/// The checksum of `count` bytes at `address`, in which `zeroed` to `zeroed` + 4 count as zero when it lies among them
/// (some structures store their checksum in their middle). Zero when they cannot be read.
std::uint32_t Checksum(FileView& view, std::uint64_t address, std::uint64_t count, std::uint64_t zeroed = kUndefined);

/// Whether the last four of `count` bytes at `address` are the checksum of those before them.
bool EndsWithChecksum(FileView& view, std::uint64_t address, std::uint64_t count);

}  // namespace orvio::structure
