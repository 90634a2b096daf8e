// Texts as blocks take them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace orvio::program {

inline constexpr std::size_t kNameWidth = 256;

/// Fills a member of a block; a text that is too long is cut.
template <std::size_t N>
void Assign(char (&field)[N], const std::string& text) {
  const std::size_t length = std::min(text.size(), N - 1);
  std::copy_n(text.data(), length, field);
  std::fill(field + length, field + N, '\0');
}

/// Texts of 256 bytes each, blank padded, one behind the other.
inline std::vector<char> Fields(const std::vector<std::string>& texts) {
  std::vector<char> fields(texts.size() * kNameWidth, ' ');
  for (std::size_t i = 0; i < texts.size(); ++i) {
    std::ranges::copy(texts[i].substr(0, kNameWidth), fields.begin() + static_cast<std::ptrdiff_t>(i * kNameWidth));
  }
  return fields;
}

}  // namespace orvio::program
