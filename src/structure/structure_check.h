#pragma once

// The look at a file's HDF5 structure before HDF5 itself gets to see it.

#include <cstdint>
#include <memory>
#include <optional>

#include "structure/byte_source.h"
#include "structure/catalogue.h"

namespace orvio::structure {

/// What is wrong with a file, and where.
struct Fault {
  std::uint64_t offset = 0;  ///< byte in the file where the thing at fault begins
  const char* what = "";     ///< a constant text without a full stop, e.g. "object header message passes its chunk"
};

/// Walks everything that can be reached from the superblock. Nothing: all of it is in bounds and is of the part of HDF5
/// that result files use. Memory and time grow with what the file holds, never with what it claims.
[[nodiscard]] std::optional<Fault> CheckStructure(ByteSource& source);

/// The same walk. What it meets becomes a catalogue, unless there is a fault or more than a catalogue takes: then it is
/// null.
[[nodiscard]] std::optional<Fault> CheckStructure(ByteSource& source, std::unique_ptr<const Catalogue>& catalogue);

/// Bytes from the beginning of the file that belong to it, as its superblock says. Nothing when it has no sound one.
[[nodiscard]] std::optional<std::uint64_t> StoredEnd(ByteSource& source);

}  // namespace orvio::structure
