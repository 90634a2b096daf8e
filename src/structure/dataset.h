#pragma once

// Whether the messages of a dataset agree, and the walk into its storage.

#include "structure/object.h"

namespace orvio::structure {

[[nodiscard]] bool CheckDataset(Walk& walk, const Object& object);

}  // namespace orvio::structure
