// Fields of a text line and the numbers in them.
//
// A .frd line is cut by column and never by blanks: neighbours touch (`-1.37740E-04-1.37740E-04`). Column numbers
// count from 1 and include both ends, as format tables give them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace orvio::frd {

/// Columns `first` to `last` of a line, less where the line is shorter. Blanks are kept.
inline std::string_view Columns(std::string_view line, size_t first, size_t last) {
  return first > line.size() ? std::string_view() : line.substr(first - 1, last - first + 1);
}

/// Without the blanks on both sides.
std::string_view Trim(std::string_view text);

/// Fit for a message on a terminal: without control characters, and shortened if it is long.
std::string Printable(std::string_view text);
/// The same in double quotes.
std::string Quote(std::string_view text);

/// A decimal number of any field; nothing if the field is blank, holds anything else, or does not fit the type.
std::optional<int32_t> ParseInt32(std::string_view field);
std::optional<int64_t> ParseInt64(std::string_view field);

/// The floating-point number nearest to the text, whatever the locale; nothing if the field is blank or no number.
/// Also taken: `1.0D-3`, `1.0-100` (Fortran drops the letter before three digits of exponent), `nan` and `inf` in any
/// spelling of C or Fortran. Beyond the range of the type the result is infinity or zero with the sign of the text.
/// A float is made from the text itself: a detour over double would round twice.
std::optional<float> ParseFloat(std::string_view field);
std::optional<double> ParseDouble(std::string_view field);

}  // namespace orvio::frd
