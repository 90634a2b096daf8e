// Composing and parsing of the file header.

#include "h5/file_header.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string_view>

#include "h5/status.h"

namespace orvio::h5 {
namespace {

constexpr char kMagic[8] = {'\x89', 'O', 'R', 'V', '\r', '\n', '\x1A', '\n'};
constexpr std::string_view kYears[] = {"2008", "2010"};
constexpr size_t kVersionWidth = 32;  // bytes of the version text that count

int MagicVerdict(const FileHeader& header) {
  return std::memcmp(header.bytes, kMagic, sizeof kMagic) == 0 ? kNotApplicable : kInvalidVersionString;
}

bool HasYear(const FileHeader& header) {
  const std::string_view year(header.bytes + sizeof kMagic, 4);
  return std::ranges::find(kYears, year) != std::end(kYears);
}

/// Takes one number off the front of a text, as "%d" does but saturated. False when there is none.
bool TakeNumber(std::string_view& text, int& number) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
  const bool negative = text.starts_with('-');
  if (text.starts_with('+') && !text.starts_with("+-")) text.remove_prefix(1);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error == std::errc::invalid_argument) return false;
  if (error == std::errc::result_out_of_range) {
    number = negative ? std::numeric_limits<int>::min() : std::numeric_limits<int>::max();
  }
  text.remove_prefix(static_cast<size_t>(end - text.data()));
  return true;
}

}  // namespace

FileHeader ComposeHeader(const ORVFileVersion& version) {
  FileHeader header;
  std::fill_n(header.bytes, sizeof header.bytes, ' ');
  std::copy_n(kMagic, sizeof kMagic, header.bytes);
  char text[kVersionWidth];
  const int length = std::snprintf(text, sizeof text, "%d %d %d", version.m_major, version.m_minor, version.m_patch);
  std::copy_n(text, length + 1, header.bytes + sizeof kMagic);
  return header;
}

ORVFileVersion ParseHeader(const FileHeader& header) {
  ORVFileVersion version;
  if (HasYear(header)) {
    version.m_major = 1;
    return version;
  }
  if (MagicVerdict(header) != kNotApplicable) return version;
  std::string_view text(header.bytes + sizeof kMagic, kVersionWidth);
  text = text.substr(0, text.find('\0'));
  (void)(TakeNumber(text, version.m_major) && TakeNumber(text, version.m_minor) && TakeNumber(text, version.m_patch));
  return version;  // what does not parse stays 0
}

}  // namespace orvio::h5
