// Handling of stored names.

#include "reading/words.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace orvio::program {

std::string TextOf(const char* field, std::size_t width) {
  std::string text(field, strnlen(field, width));
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

std::string ZoneOf(const ORVResult& block) {
  const std::string zone = TextOf(block.m_etypzone);
  return SameWord(zone, "ZONE") ? "" : zone;
}

bool SameWord(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

}  // namespace orvio::program
