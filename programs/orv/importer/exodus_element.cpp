// The words that Exodus files use for element types.

#include "importer/exodus_element.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <string_view>

namespace orvio::program {
namespace {

struct Family {
  std::string_view word;  ///< in capitals
  std::string_view name;
  int dimension;
};

constexpr Family kFamilies[] = {
    {"HEX", "HEXA", 3},     {"HEXA", "HEXA", 3},         {"HEXAHEDRON", "HEXA", 3}, {"TET", "TETRA", 3},
    {"TETRA", "TETRA", 3},  {"TETRAHEDRON", "TETRA", 3}, {"WEDGE", "PENTA", 3},     {"PENTA", "PENTA", 3},
    {"PYRAMID", "PYRA", 3}, {"PYRA", "PYRA", 3},         {"QUAD", "QUAD", 2},       {"QUADRILATERAL", "QUAD", 2},
    {"TRI", "TRIA", 2},     {"TRIA", "TRIA", 2},         {"TRIANGLE", "TRIA", 2},   {"TRISHELL", "TRIA", 2},
    {"TRUSS", "LINE", 1},   {"BEAM", "LINE", 1},         {"BAR", "LINE", 1},        {"ROD", "LINE", 1},
    {"EDGE", "LINE", 1},    {"LINE", "LINE", 1},         {"SPHERE", "POINT", 0},    {"SPHERE-MASS", "POINT", 0},
    {"CIRCLE", "POINT", 0}, {"POINT", "POINT", 0},       {"NODE", "POINT", 0},
};

constexpr Family kTriangularShell = {"SHELL", "TRIA", 2}, kShell = {"SHELL", "QUAD", 2};

constexpr std::size_t kLongestWord = 64;

std::string InCapitals(std::string word) {
  std::ranges::transform(word, word.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return word;
}

std::string WithoutDigits(const std::string& word) {
  const std::size_t last = word.find_last_not_of("0123456789");
  return last == std::string::npos ? std::string() : word.substr(0, last + 1);
}

/// Null: unknown. Shells have three corners or four.
const Family* FindFamily(const std::string& word, int nodes) {
  if (word == "SHELL") return nodes == 3 || nodes == 6 || nodes == 7 ? &kTriangularShell : &kShell;
  const auto* found = std::ranges::find(kFamilies, std::string_view(word), &Family::word);
  return found == std::end(kFamilies) ? nullptr : found;
}

/// Fit for a name in a path.
std::string Plain(std::string word) {
  const auto is_odd = [](unsigned char c) { return std::isalnum(c) == 0 && c != '-'; };
  std::ranges::replace_if(word, is_odd, '_');
  return word.empty() ? "ELEMENT" : word.substr(0, kLongestWord);
}

}  // namespace

ElementKind ElementKindOf(const std::string& word, int nodes) {
  const std::string number = std::to_string(nodes), plain = WithoutDigits(InCapitals(word));
  if (const Family* family = FindFamily(plain, nodes)) return {std::string(family->name) + number, family->dimension};
  return {Plain(plain) + number, -1};
}

}  // namespace orvio::program
