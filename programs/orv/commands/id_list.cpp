#include "commands/id_list.h"

#include <CLI/CLI.hpp>
#include <charconv>
#include <cstddef>

namespace orvio::program {
namespace {

constexpr std::size_t kMostIds = 1'000'000;

}  // namespace

void AppendIds(const std::string& option, const std::string& text, std::vector<long long>& ids) {
  long long first = 0, last = 0;
  const char* end = text.data() + text.size();
  auto parsed = std::from_chars(text.data(), end, first);
  last = first;
  if (parsed.ec == std::errc() && parsed.ptr != end && *parsed.ptr == '-') {
    parsed = std::from_chars(parsed.ptr + 1, end, last);
  }
  if (parsed.ec != std::errc() || parsed.ptr != end || first < 0 || last < first) {
    throw CLI::ValidationError(option, "\"" + text + "\" is no id and no range of ids such as 7-12");
  }
  const auto width = static_cast<std::size_t>(last - first);  // one less than there are
  if (width >= kMostIds || ids.size() + width >= kMostIds) {
    throw CLI::ValidationError(option, "\"" + text + "\" makes more than a million ids; ask for fewer at a time");
  }
  for (std::size_t i = 0; i <= width; ++i) ids.push_back(first + static_cast<long long>(i));
}

}  // namespace orvio::program
