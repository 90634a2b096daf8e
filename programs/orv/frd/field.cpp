// Fields of a text line and the numbers in them. What is cut where stands in the reader.
#include "frd/field.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <limits>

namespace orvio::frd {

namespace {

constexpr size_t kWidestNumber = 30;  // columns; the widest of a file has 12
constexpr size_t kLongestQuote = 40;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsSign(char c) { return c == '+' || c == '-'; }
bool IsExponentLetter(char c) { return c == 'E' || c == 'e' || c == 'D' || c == 'd'; }

/// The field without blanks and without a plus in front, which from_chars refuses.
std::string_view WithoutPlus(std::string_view field) {
  field = Trim(field);
  const bool plus = field.size() > 1 && field[0] == '+' && !IsSign(field[1]);
  return plus ? field.substr(1) : field;
}

template <class Int>
std::optional<Int> ParseInteger(std::string_view field) {
  const std::string_view text = WithoutPlus(field);
  const char* end = text.data() + text.size();
  Int value = 0;
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (text.empty() || error != std::errc() || stop != end) return std::nullopt;
  return value;
}

/// Infinity or zero for a number that from_chars calls out of range. The sign of the exponent decides alone: no
/// mantissa of a field is long enough to outweigh an exponent that leaves the range of a float.
template <class Real>
Real BeyondRange(std::string_view text) {
  const size_t letter = text.find_first_of("Ee");
  const bool tiny = letter != std::string_view::npos && text.substr(letter + 1, 1) == "-";
  const Real magnitude = tiny ? Real(0) : std::numeric_limits<Real>::infinity();
  return std::copysign(magnitude, text[0] == '-' ? Real(-1) : Real(1));
}

/// A number as C prints it, the whole text.
template <class Real>
std::optional<Real> ParsePlain(std::string_view text) {
  const char* end = text.data() + text.size();
  Real value = 0;
  const auto [stop, error] = std::from_chars(text.data(), end, value);
  if (stop != end) return std::nullopt;
  if (error == std::errc::result_out_of_range) return BeyondRange<Real>(text);
  return error == std::errc() ? std::optional<Real>(value) : std::nullopt;
}

/// A number as Fortran prints it: the exponent has another letter or none.
template <class Real>
std::optional<Real> ParseFortran(std::string_view text) {
  std::array<char, kWidestNumber + 1> plain;
  size_t size = 0;
  bool has_exponent = false;
  for (size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    const bool after_mantissa = i > 0 && (IsDigit(text[i - 1]) || text[i - 1] == '.');
    const bool letter = after_mantissa && IsExponentLetter(c);
    const bool missing = after_mantissa && IsSign(c);
    if ((letter || missing) && has_exponent) return std::nullopt;
    if (letter || missing) {
      has_exponent = true;
      plain[size++] = 'E';
    }
    if (!letter) plain[size++] = c;
  }
  return ParsePlain<Real>({plain.data(), size});
}

template <class Real>
std::optional<Real> ParseReal(std::string_view field) {
  const std::string_view text = WithoutPlus(field);
  if (text.empty() || text.size() > kWidestNumber) return std::nullopt;
  const std::optional<Real> value = ParsePlain<Real>(text);
  return value ? value : ParseFortran<Real>(text);
}

}  // namespace

std::string_view Trim(std::string_view text) {
  const size_t first = text.find_first_not_of(' ');
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(' ') - first + 1);
}

std::string Printable(std::string_view text) {
  std::string printable(text.substr(0, kLongestQuote));
  const auto is_control = [](char c) { return !std::isprint(static_cast<unsigned char>(c)); };
  std::replace_if(printable.begin(), printable.end(), is_control, '?');
  return text.size() > kLongestQuote ? printable + "..." : printable;
}

std::string Quote(std::string_view text) { return '"' + Printable(text) + '"'; }

std::optional<int32_t> ParseInt32(std::string_view field) { return ParseInteger<int32_t>(field); }
std::optional<int64_t> ParseInt64(std::string_view field) { return ParseInteger<int64_t>(field); }
std::optional<float> ParseFloat(std::string_view field) { return ParseReal<float>(field); }
std::optional<double> ParseDouble(std::string_view field) { return ParseReal<double>(field); }

}  // namespace orvio::frd
