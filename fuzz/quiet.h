#pragma once

// HDF5 itself, as far as the targets have to do with it.

namespace orvio::fuzz {

/// HDF5 prints nothing and loads no plugins.
void PrepareHdf5();

/// Aborts when an HDF5 object is open: the library leaves none behind.
void ExpectNothingOpen();

}  // namespace orvio::fuzz
