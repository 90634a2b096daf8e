// Trimming of titles.

#include "entity/titles.h"

#include <string_view>

namespace orvio {
namespace {

void Strip(char* title, std::int64_t slot) {
  const std::size_t last = std::string_view(title, static_cast<std::size_t>(slot)).find_last_not_of(' ');
  if (last == std::string_view::npos) {
    title[0] = '\0';
    return;
  }
  // QUIRK: a title one byte short of its slot keeps the blank behind it. Hosts compare titles with the padded texts of
  // the solvers' input, which are one byte shorter than the slot. Pinned by
  // Titles.OneByteShortOfTheSlotKeepsItsTrailingBlank.
  const auto next = static_cast<std::int64_t>(last) + 1;
  if (next < slot - 1) title[next] = '\0';
}

}  // namespace

void StripTitles(char* titles, std::int64_t count, std::int64_t slot) {
  if (!titles || slot < 1) return;
  for (std::int64_t i = 0; i < count; ++i) Strip(titles + i * slot, slot);
}

std::string TitleAt(const char* titles, std::int64_t index, std::int64_t slot) {
  const std::string_view title(titles + index * slot, static_cast<std::size_t>(slot));
  return std::string(title.substr(0, title.find('\0')));
}

}  // namespace orvio
