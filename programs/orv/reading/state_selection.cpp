// Reading of a selection of states.

#include "reading/state_selection.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <sstream>
#include <string_view>

#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr std::string_view kFirstColumn = "t";

std::vector<std::string> Split(const std::string& text, char separator) {
  std::vector<std::string> parts;
  std::istringstream in(text);
  for (std::string part; std::getline(in, part, separator);) parts.push_back(part);
  if (text.ends_with(separator)) parts.emplace_back();
  return parts;
}

template <class T>
std::optional<T> NumberOf(const std::string& text) {
  T number = {};
  const char* end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, number);
  return parsed.ec == std::errc() && parsed.ptr == end ? std::optional(number) : std::nullopt;
}

[[noreturn]] void Refuse(const ResultFile& file, const std::string& part) {
  throw Trouble(file.path(), fmt::format("\"{}\" names no states", part),
                "give for example 3, last, 1:10:2 or t=0.01:0.02");
}

/// A number of a state, or "last". 0 only where `with_constant`.
int StateOf(const ResultFile& file, const std::string& text, const std::string& part, bool with_constant = false) {
  const auto number = SameWord(text, "last") ? std::optional(file.states()) : NumberOf<int>(text);
  if (!number) Refuse(file, part);
  if (*number >= (with_constant && !SameWord(text, "last") ? 0 : 1) && *number <= file.states()) return *number;
  throw Trouble(file.path(), fmt::format("there is no state {}", text),
                file.states() > 0 ? fmt::format("states are 1 to {}, and 0 for constant values", file.states())
                                  : "the file has no states; 0 is for constant values");
}

/// "1:10", "1:10:2", "10:1:-1"; an empty end is the first or the last state.
std::vector<int> RangeOf(const ResultFile& file, const std::string& part) {
  const std::vector<std::string> ends = Split(part, ':');
  if (ends.size() < 2 || ends.size() > 3) Refuse(file, part);
  const int first = StateOf(file, ends[0].empty() ? "1" : ends[0], part);
  const int last = StateOf(file, ends[1].empty() ? "last" : ends[1], part);
  const int step = ends.size() == 3 ? NumberOf<int>(ends[2]).value_or(0) : 1;
  if (step == 0 || (last - first) / step < 0) Refuse(file, part);
  std::vector<int> states;
  for (long long state = first; step > 0 ? state <= last : state >= last; state += step) {
    states.push_back(static_cast<int>(state));
  }
  return states;
}

/// Position of the index column of that name; "t" is the first.
std::size_t ColumnOf(ResultFile& file, const std::string& name, const std::string& part) {
  const std::vector<std::string> names = file.IndexNames();
  if (names.empty()) throw Trouble(file.path(), "its states have no index values", "name states by their numbers");
  if (name == kFirstColumn) return 0;
  const auto found = std::ranges::find_if(names, [&](const std::string& n) { return SameWord(n, name); });
  if (found == names.end()) Refuse(file, part);
  return static_cast<std::size_t>(found - names.begin());
}

/// State whose value is the nearest, the first of several.
int NearestState(const std::vector<std::pair<int, double>>& values, double wanted) {
  return std::ranges::min_element(values, {}, [wanted](const auto& v) { return std::abs(v.second - wanted); })->first;
}

/// "t=0.01", "t=0.01:0.02", "FREQUENCY=100:"; an empty end is no bound.
std::vector<int> StatesByIndex(ResultFile& file, const std::string& part) {
  const std::size_t sign = part.find('=');
  const std::size_t column = ColumnOf(file, part.substr(0, sign), part);
  std::vector<std::pair<int, double>> values;
  for (int state = 1; state <= file.states(); ++state) {
    const std::vector<double> row = file.IndexOf(state);
    if (column < row.size() && !std::isnan(row[column])) values.emplace_back(state, row[column]);
  }
  const std::vector<std::string> ends = Split(part.substr(sign + 1), ':');
  if (ends.empty() || ends.size() > 2 || values.empty()) Refuse(file, part);
  const auto bound = [&](const std::string& text, double none) {
    const auto number = text.empty() && ends.size() == 2 ? std::optional(none) : NumberOf<double>(text);
    if (!number) Refuse(file, part);
    return *number;
  };
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  const double low = bound(ends[0], -kInfinity);
  if (ends.size() == 1) return {NearestState(values, low)};
  const double high = bound(ends[1], kInfinity);
  std::vector<int> states;
  for (const auto& [state, value] : values) {
    if (low <= value && value <= high) states.push_back(state);
  }
  if (states.empty()) {
    throw Trouble(file.path(), fmt::format("no state has an index value in \"{}\"", part), "orv states lists them");
  }
  return states;
}

}  // namespace

std::vector<int> StatesOf(ResultFile& file, const std::string& text) {
  std::vector<int> states;
  for (const std::string& part : Split(text, ',')) {
    std::vector<int> chosen;
    if (part.find('=') != std::string::npos) {
      chosen = StatesByIndex(file, part);
    } else if (part.find(':') != std::string::npos) {
      chosen = RangeOf(file, part);
    } else {
      chosen = {StateOf(file, part, part, true)};
    }
    for (const int state : chosen) {
      if (std::ranges::find(states, state) == states.end()) states.push_back(state);
    }
  }
  if (states.empty()) Refuse(file, text);
  return states;
}

}  // namespace orvio::program
