#include "commands/id_list.h"

#include <CLI/CLI.hpp>
#include <charconv>

namespace orvio::program {
namespace {

constexpr long long kMaxIdRange = 100'000'000;

}  // namespace

void AppendIds(const std::string& option, const std::string& text, std::vector<long long>& ids) {
  long long first = 0, last = 0;
  const char* end = text.data() + text.size();
  auto parsed = std::from_chars(text.data(), end, first);
  last = first;
  if (parsed.ec == std::errc() && parsed.ptr != end && *parsed.ptr == '-') {
    parsed = std::from_chars(parsed.ptr + 1, end, last);
  }
  if (parsed.ec != std::errc() || parsed.ptr != end || last < first || last - first > kMaxIdRange) {
    throw CLI::ValidationError(option, "\"" + text + "\" is no id and no range of ids such as 7-12");
  }
  for (long long id = first; id <= last; ++id) ids.push_back(id);
}

}  // namespace orvio::program
