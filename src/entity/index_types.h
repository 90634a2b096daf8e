#pragma once

// The names of the index columns of a file.

#include <vector>

class ORVSimulationType;
class ORVVariableGrp;

namespace orvio {

/// Frees the names and forgets them.
void FreeBuffers(ORVSimulationType& types);

/// Reads the index types of a file: their names as they are stored, or from the variables of the group that the block
/// names, or the defaults "TIME", "UNKNOWN_1" and so on. Tells the host what it finds wrong. After a failure the block
/// has no names.
[[nodiscard]] int ReadIndexTypes(const char* file, const std::vector<ORVVariableGrp*>& groups,
                                 ORVSimulationType& types);

}  // namespace orvio
