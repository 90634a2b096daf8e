// A loss as a line: fields between tabs. Paths come from a damaged file and may hold anything.

#include "repairing/loss.h"

#include <algorithm>
#include <cctype>
#include <charconv>

namespace orvio::program {
namespace {

constexpr char kBetween = '\t';
constexpr std::size_t kLongestField = 8192;

std::string Printable(std::string text) {
  text.resize(std::min(text.size(), kLongestField));
  std::ranges::replace_if(
      text, [](unsigned char c) { return std::iscntrl(c) != 0; }, '?');
  return text;
}

}  // namespace

std::string ToLine(const Loss& loss) {
  return std::string(loss.is_partial ? "P" : "L") + kBetween + std::to_string(loss.byte) + kBetween +
         Printable(loss.place) + kBetween + Printable(loss.why);
}

std::optional<Loss> LossFrom(std::string_view line) {
  Loss loss;
  if (line.size() < 2 || (line[0] != 'P' && line[0] != 'L') || line[1] != kBetween) return std::nullopt;
  loss.is_partial = line[0] == 'P';
  line.remove_prefix(2);
  const auto [end, error] = std::from_chars(line.data(), line.data() + line.size(), loss.byte);
  line.remove_prefix(static_cast<std::size_t>(end - line.data()));
  if (error != std::errc() || line.empty() || line[0] != kBetween) return std::nullopt;
  line.remove_prefix(1);
  const std::size_t between = line.find(kBetween);
  if (between == std::string_view::npos) return std::nullopt;
  loss.place = Printable(std::string(line.substr(0, between)));
  loss.why = Printable(std::string(line.substr(between + 1)));
  return loss;
}

}  // namespace orvio::program
