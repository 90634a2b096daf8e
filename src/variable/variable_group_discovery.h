#pragma once

// The variable groups of a file.

#include <vector>

class ORVVariableGrp;

namespace orvio {

/// Gives the group zeroed arrays for the keys of its header. False when there are none, too many, or no memory.
[[nodiscard]] bool AllocateBuffers(ORVVariableGrp& group);

/// Frees what AllocateBuffers has given, and forgets it.
void FreeBuffers(ORVVariableGrp& group);

/// Reads all variable groups of a file, with their arrays and without their variables, and appends them. The caller
/// owns them: FreeBuffers, then delete. A group that cannot be read, or lists nothing, is left out. 1 when the file or
/// its place of groups cannot be opened, or memory runs out; what was read until then has been appended.
[[nodiscard]] int ReadVariableGroups(const char* file, std::vector<ORVVariableGrp*>& groups);

}  // namespace orvio
