#pragma once

// The properties blocks of a file.

#include <vector>

class ORVProperties;

namespace orvio {

/// Reads the headers of all properties blocks of a state (0: the constant section, -1: the multi-state section) and
/// appends them; the caller owns them.
void ReadProperties(const char* file, int state, std::vector<ORVProperties*>& properties);

}  // namespace orvio
