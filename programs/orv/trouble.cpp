// The library's own words about a failure.

#include "trouble.h"

#include <orvio/orvio.h>

#include <algorithm>
#include <cctype>

namespace orvio::program {

std::string LibraryText(const std::string& otherwise) {
  std::string text = ORVGetLastErrorText();
  std::ranges::replace_if(
      text, [](unsigned char c) { return std::iscntrl(c) != 0; }, ' ');
  const auto is_double_blank = [](char a, char b) { return a == ' ' && b == ' '; };
  text.erase(std::ranges::unique(text, is_double_blank).begin(), text.end());
  return text.empty() ? otherwise : text;
}

}  // namespace orvio::program
