#pragma once

// The prefix that the keys of a file's variables have in common.

#include <string>
#include <vector>

class ORVResult;

namespace orvio {

/// The part before the ':' of a variable's key. The results are walked as long as they are displacements or
/// coordinates; the first whose definition has such a key gives it. 1 with `out` left alone when none does.
[[nodiscard]] int FindVariableKeyPrefix(const std::vector<ORVResult*>& results, std::string& out);

}  // namespace orvio
