// Words about a failure.

#include "trouble.h"

#include <orvio/orvio.h>

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace orvio::program {

std::string OneLine(std::string text) {
  const auto is_control = [](unsigned char c) { return std::iscntrl(c) != 0; };
  std::ranges::replace_if(text, is_control, ' ');
  return text;
}

void Tell(const std::string& what) noexcept { (void)std::fprintf(stderr, "orv: %s\n", what.c_str()); }

Trouble::Trouble(const std::string& file, const std::string& what, const std::string& advice)
    : std::runtime_error(OneLine(file + ": " + what + "; " + advice)) {}

std::string LibraryText(const std::string& otherwise) {
  std::string text = OneLine(ORVGetLastErrorText());
  const auto is_double_blank = [](char a, char b) { return a == ' ' && b == ' '; };
  text.erase(std::unique(text.begin(), text.end(), is_double_blank), text.end());
  return text.empty() ? otherwise : text;
}

}  // namespace orvio::program
