// The distance of two words is the number of letters to put in, take out, change or swap with a neighbour.

#include "suggestion.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <cstddef>

namespace orvio::program {
namespace {

constexpr std::size_t kLongestWord = 64;  // longer ones are no typing mistakes, and would take their time
constexpr std::size_t kShortestBeginning = 3;

std::string LowerCase(std::string_view word) {
  std::string lower(word);
  std::ranges::transform(lower, lower.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  return lower;
}

std::size_t Distance(const std::string& a, const std::string& b) {
  std::vector<std::size_t> before(b.size() + 1), above(b.size() + 1), row(b.size() + 1);  // of the last three letters
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    before.swap(above);
    above.swap(row);
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t change = above[j - 1] + (a[i - 1] == b[j - 1] ? 0 : 1);
      row[j] = std::min({change, above[j] + 1, row[j - 1] + 1});
      const bool is_swapped = i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1];
      if (is_swapped) row[j] = std::min(row[j], before[j - 2] + 1);
    }
  }
  return row.back();
}

/// A third of the letters may be wrong: one of "PE", none of "X".
bool ComesNear(std::size_t distance, const std::string& a, const std::string& b) {
  return distance * 3 <= std::max(a.size(), b.size()) + 1;
}

}  // namespace

std::string DidYouMean(std::string_view word, const std::vector<std::string>& known) {
  const std::string wanted = LowerCase(word);
  const bool has_letter = std::ranges::any_of(wanted, [](unsigned char c) { return std::isalpha(c) != 0; });
  if (!has_letter) return {};  // all numbers look alike
  const std::string *nearest = nullptr, *longer = nullptr;
  std::size_t least = kLongestWord;
  for (const std::string& name : known) {
    if (wanted.empty() || name.empty() || std::max(wanted.size(), name.size()) > kLongestWord) continue;
    const std::string lower = LowerCase(name);
    const std::size_t distance = Distance(wanted, lower);
    if (ComesNear(distance, wanted, lower) && distance < least) {
      nearest = &name;
      least = distance;
    }
    const bool is_beginning = wanted.size() >= kShortestBeginning && lower.starts_with(wanted);
    if (is_beginning && (!longer || name.size() < longer->size())) longer = &name;
  }
  if (!nearest) nearest = longer;
  return nearest && *nearest != word ? fmt::format(" (did you mean \"{}\"?)", *nearest) : std::string();
}

}  // namespace orvio::program
