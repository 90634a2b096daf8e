#pragma once

// The variables of a file.

#include <vector>

class ORVVariable;

namespace orvio {

/// Reads all variables of a file, with their tables, and appends them. The caller owns them: FreeBuffers, then delete.
/// A variable that cannot be read, or has no components, is left out. 1 when the file or its group of variables
/// cannot be opened, or memory runs out; what was read until then has been appended.
[[nodiscard]] int ReadVariables(const char* file, std::vector<ORVVariable*>& variables);

}  // namespace orvio
