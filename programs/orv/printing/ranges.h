// Lists of numbers for people.
#pragma once

#include <string>
#include <vector>

namespace orvio::program {

/// "1-51", "3", "11-13, 20".
std::string RangesOf(const std::vector<int>& numbers);

}  // namespace orvio::program
