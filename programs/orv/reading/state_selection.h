// States as a person names them.
#pragma once

#include <string>
#include <vector>

#include "reading/result_file.h"

namespace orvio::program {

/// What the texts of StatesOf may look like, for a help text.
inline constexpr char kStatesHelp[] =
    "States: a number from 1, last, a range 1:10 or with a step 1:10:2, or those whose first index value is in a "
    "range, "
    "t=0.01:0.02; t=0.01 is the nearest one. Several with commas between";

/// States by numbers, "last", ranges and ranges of index values, separated by commas, in the order of the text and each
/// once. 0 is the constant section. Throws Trouble for a text that is none of these and for states that are not there.
std::vector<int> StatesOf(ResultFile& file, const std::string& text);

}  // namespace orvio::program
