#include "printing/ranges.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <cstddef>

namespace orvio::program {

std::string RangesOf(const std::vector<int>& numbers) {
  std::vector<std::string> ranges;
  for (std::size_t first = 0; first < numbers.size();) {
    std::size_t last = first;
    while (last + 1 < numbers.size() && numbers[last + 1] == numbers[last] + 1) ++last;
    ranges.push_back(first == last ? fmt::format("{}", numbers[first])
                                   : fmt::format("{}-{}", numbers[first], numbers[last]));
    first = last + 1;
  }
  return fmt::format("{}", fmt::join(ranges, ", "));
}

}  // namespace orvio::program
