// Fixed text fields and their comparison.

#include "h5/text_field.h"

#include <algorithm>
#include <cctype>
#include <cstring>

#include "orvio/oh5_io.h"

namespace orvio {

std::string_view Content(const char* field, std::size_t width) { return {field, strnlen(field, width)}; }

void Assign(Text& field, std::string_view text) {
  const std::size_t length = std::min(text.size(), disk::kTextWidth);
  std::copy_n(text.data(), length, field);
  std::fill(field + length, field + sizeof field, '\0');
}

void StripTrailingBlanks(Text& field) {
  const std::string_view content = Content(field);
  field[content.find_last_not_of(' ') + 1] = '\0';  // npos + 1 is 0: all blanks
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
