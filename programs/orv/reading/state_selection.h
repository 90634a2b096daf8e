// States as a person names them.
#pragma once

#include <string>
#include <vector>

#include "reading/result_file.h"

namespace orvio::program {

/// States by numbers, "last", ranges and ranges of index values, separated by commas, in the order of the text and each
/// once. 0 is the constant section. Throws Trouble for a text that is none of these and for states that are not there.
std::vector<int> StatesOf(ResultFile& file, const std::string& text);

}  // namespace orvio::program
