#pragma once

/// Stored texts: fields of 256 bytes, padded with blanks, compared without regard to case.

#include <algorithm>
#include <cctype>
#include <cstddef>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

#include "orvio/orv_result.h"

namespace orv::detail {

inline constexpr std::size_t kFieldWidth = 256;

inline std::string text_of(const char* field, std::size_t width = kFieldWidth) {
  if (!field) return {};
  const void* end = std::memchr(field, '\0', width);
  std::string text(field, end ? static_cast<std::size_t>(static_cast<const char*>(end) - field) : width);
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

inline bool same_word(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](unsigned char x, unsigned char y) { return std::tolower(x) == std::tolower(y); });
}

/// Names by their letters, whatever their case.
struct BeforeIgnoringCase {
  bool operator()(std::string_view a, std::string_view b) const {
    return std::lexicographical_compare(a.begin(), a.end(), b.begin(), b.end(), [](unsigned char x, unsigned char y) {
      return std::tolower(x) < std::tolower(y);
    });
  }
};

/// Whether a text can name a block: it becomes a group of the file, between others.
inline bool is_block_name(std::string_view name) {
  constexpr std::size_t kLongest = kFieldWidth - 1;  // a name of the full width loses its last letter when read
  if (name.empty() || name.size() > kLongest || name.back() == ' ' || name == "." || name == "..") return false;
  for (const std::string_view taken : {"orvblock", "header", "data", "index"}) {
    if (name == taken) return false;
  }
  return std::none_of(name.begin(), name.end(), [](unsigned char c) { return c == '/' || std::iscntrl(c) != 0; });
}

/// Blocks of all entities have a word in place of a zone that says nothing.
inline std::string zone_of(const ORVResult& block) {
  std::string zone = text_of(block.m_etypzone);
  if (same_word(zone, "ZONE")) zone.clear();
  return zone;
}

/// Fills a member of a block. A text that is too long is cut.
template <std::size_t N>
void assign(char (&field)[N], const std::string& text) {
  const std::size_t length = std::min(text.size(), N - 1);
  std::copy_n(text.data(), length, field);
  std::fill(field + length, field + N, '\0');
}

/// Texts of `width` bytes each, one behind the other.
inline std::vector<char> fields_of(const std::vector<std::string>& texts, std::size_t width = kFieldWidth) {
  std::vector<char> fields(texts.size() * width, ' ');
  for (std::size_t i = 0; i < texts.size(); ++i) {
    std::copy_n(texts[i].data(), std::min(texts[i].size(), width),
                fields.begin() + static_cast<std::ptrdiff_t>(i * width));
  }
  return fields;
}

/// A number that a text consists of; 0 for any other text.
inline std::size_t number_of(const std::string& text) {
  constexpr std::size_t kMostDigits = 9;
  const bool is_number = !text.empty() && text.size() <= kMostDigits &&
                         std::all_of(text.begin(), text.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
  return is_number ? static_cast<std::size_t>(std::stoul(text)) : 0;
}

}  // namespace orv::detail
