#pragma once

// Ranks and extents of dataspaces, and products of them that cannot wrap.

#include <hdf5.h>

#include <cstdint>
#include <optional>

namespace orvio::h5 {

/// Extents of a stored dataset or attribute. A space without elements has 0 points.
struct Extents {
  int rank = 0;
  hsize_t dims[H5S_MAX_RANK] = {};
  hsize_t points = 0;
};

/// Nothing when HDF5 cannot tell.
std::optional<Extents> ExtentsOf(hid_t space);

/// Product of the first `rank` entries, 1 for a rank below 1; nothing when it does not fit 64 bits.
std::optional<std::uint64_t> Product(int rank, const hsize_t* dims);

bool HasZero(int rank, const hsize_t* dims);

/// Largest array that is made on the word of a file's counts alone.
inline constexpr std::uint64_t kUnbackedBytes = std::uint64_t{64} << 20;

/// Elements of a dataset that are there, and not only claimed by its extents: a dataset of any extents may have no
/// bytes at all, and would be read as zeros. One element takes a byte in the file at least. 0 for a dataset that is
/// missing.
std::uint64_t StoredElements(hid_t loc, const char* name);

/// The same for a dataset that may be compressed: what its chunks hold counts, however few bytes they take.
std::uint64_t AllocatedElements(hid_t loc, const char* name);

/// The same, but no more than a file of its size can hold packed: a chunk of 4 GiB may take some twenty bytes. 0 for
/// elements of less than `bytes_each` bytes before filters.
std::uint64_t BackedElements(hid_t loc, const char* name, std::uint64_t bytes_each);

}  // namespace orvio::h5
