// Fixed text fields and their comparison.

#include "h5/text_field.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "orvio/oh5_io.h"

namespace orvio {

std::string_view Content(const char* field, std::size_t width) { return {field, strnlen(field, width)}; }

void AssignField(char* field, std::size_t size, std::string_view text) {
  const std::size_t length = std::min(text.size(), size - 1);
  std::copy_n(text.data(), length, field);
  std::fill(field + length, field + size, '\0');
}

void StripTrailingBlanks(char* field, std::size_t size) {
  const std::string_view content = Content(field, size - 1);
  field[content.find_last_not_of(' ') + 1] = '\0';  // npos + 1 is 0: all blanks
}

void StripEach(char* texts, std::uint64_t count) {
  for (std::uint64_t i = 0; texts && i < count; ++i)
    StripTrailingBlanks(texts + i * disk::kTextWidth, disk::kTextWidth);
}

bool EqualIgnoringCase(std::string_view left, std::string_view right) {
  return std::ranges::equal(left, right,
                            [](unsigned char a, unsigned char b) { return std::tolower(a) == std::tolower(b); });
}

}  // namespace orvio

void OH5TrimTrailingSpaces(char* field) {
  if (!field) return;
  const std::size_t length = orvio::Content(field).find_last_not_of(' ') + 1;
  if (length < orvio::disk::kTextWidth) field[length] = '\0';
}
