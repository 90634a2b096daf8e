// Words of the format as the checks compare them.
#pragma once

#include <algorithm>
#include <cctype>
#include <string>

namespace orvio::program {

/// Names of types and variables compare without regard to case.
inline std::string LowerCase(std::string word) {
  std::ranges::transform(word, word.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return word;
}

}  // namespace orvio::program
