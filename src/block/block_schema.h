#pragma once

// A block in another state.

#include "h5/handle.h"
#include "orvio/orv_block.h"

namespace orvio {

/// Opens a block as it stands in a state, by its stored path. The block needs a reader. Unlike the exported form
/// this one tells failure apart.
h5::Group OpenBySchemaPath(ORVBlock& block, hid_t file, int state);

}  // namespace orvio
