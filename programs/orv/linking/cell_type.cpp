// Cell types by dimension and number of nodes: no two kinds of elements in use share both.

#include "linking/cell_type.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <iterator>
#include <numeric>
#include <string_view>

namespace orvio::program {
namespace {

struct Word {
  std::string_view word;  ///< in capitals
  int dimension;
};

constexpr Word kWords[] = {
    {"HEXA", 3},   {"HEX", 3},   {"HE", 3},    {"BRICK", 3},  {"SOLID", 3}, {"TETRA", 3}, {"TET", 3}, {"TE", 3},
    {"PENTA", 3},  {"PE", 3},    {"WEDGE", 3}, {"PYRA", 3},   {"PY", 3},    {"QUAD", 2},  {"QU", 2},  {"TRIA", 2},
    {"TRI", 2},    {"TR", 2},    {"SHELL", 2}, {"LINE", 1},   {"BEAM", 1},  {"BE", 1},    {"BAR", 1}, {"TRUSS", 1},
    {"SPRING", 1}, {"POINT", 0}, {"NODE", 0},  {"SPHERE", 0}, {"MASS", 0},
};

struct Row {
  int dimension;
  long long nodes;
  std::uint8_t cell;
  const std::size_t* order;  ///< null: as they stand
};

// Result files have the middles of the vertical edges before those of the top, VTK has them last.
constexpr std::array<std::size_t, 15> kWedge15 = {0, 1, 2, 3, 4, 5, 6, 7, 8, 12, 13, 14, 9, 10, 11};
constexpr std::array<std::size_t, 20> kHexa20 = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 16, 17, 18, 19, 12, 13, 14, 15};
// Behind these the middle of the body, of bottom, top, left, right, front and back; VTK has left to back, bottom, top,
// body.
constexpr std::array<std::size_t, 27> kHexa27 = {0,  1,  2,  3,  4,  5,  6,  7,  8,  9,  10, 11, 16, 17,
                                                 18, 19, 12, 13, 14, 15, 23, 24, 25, 26, 21, 22, 20};

constexpr Row kRows[] = {
    {0, 1, 1, nullptr},
    {1, 2, 3, nullptr},
    {1, 3, 21, nullptr},
    {2, 3, kVtkTriangle, nullptr},
    {2, 4, kVtkQuadrangle, nullptr},
    {2, 6, 22, nullptr},
    {2, 7, 34, nullptr},
    {2, 8, 23, nullptr},
    {2, 9, 28, nullptr},
    {3, 4, 10, nullptr},
    {3, 5, 14, nullptr},
    {3, 6, 13, nullptr},
    {3, 8, 12, nullptr},
    {3, 10, 24, nullptr},
    {3, 13, 27, nullptr},
    {3, 15, 26, kWedge15.data()},
    {3, 20, 25, kHexa20.data()},
    {3, 27, 29, kHexa27.data()},
};

/// The letters with which a name begins, in capitals.
std::string FirstWord(const std::string& name) {
  std::string word;
  for (const char c : name) {
    if (std::isalpha(static_cast<unsigned char>(c)) == 0) break;
    word += static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
  }
  return word;
}

std::vector<std::size_t> AsTheyStand(long long nodes) {
  std::vector<std::size_t> order(static_cast<std::size_t>(nodes));
  std::iota(order.begin(), order.end(), 0);
  return order;
}

std::optional<CellType> FindRow(int dimension, long long nodes) {
  constexpr long long kLongestLine = 64;
  constexpr std::uint8_t kPolyVertex = 2, kPolyLine = 4, kVertex = 1;
  for (const Row& row : kRows) {
    if (row.dimension != dimension || row.nodes != nodes) continue;
    if (!row.order) return CellType{row.cell, AsTheyStand(nodes), ""};
    return CellType{row.cell, {row.order, row.order + nodes}, ""};
  }
  if (dimension == 1 && nodes == 1) return CellType{kVertex, {0}, "vertices"};
  if (nodes < 2 || nodes > kLongestLine) return std::nullopt;
  if (dimension == 0) return CellType{kPolyVertex, AsTheyStand(nodes), "vertices"};
  if (dimension == 1) return CellType{kPolyLine, AsTheyStand(nodes), "poly-lines"};
  return std::nullopt;
}

}  // namespace

std::optional<CellType> FindCellType(const std::string& element_type, long long dimension, long long nodes) {
  const std::string word = FirstWord(element_type);
  const auto* known = std::ranges::find(kWords, std::string_view(word), &Word::word);
  const bool has_dimension = dimension >= 0 && dimension <= 3;
  // The third node of a beam may tell its orientation alone.
  if (word == "BEAM" && nodes == 3) return CellType{3, {0, 1}, "lines between their first two nodes"};
  const bool is_thick = word == "SHELL" && dimension == 3 && nodes > 4;
  if (known != std::end(kWords) && !is_thick) {
    if (std::optional<CellType> type = FindRow(known->dimension, nodes)) return type;
  }
  return has_dimension ? FindRow(static_cast<int>(dimension), nodes) : std::nullopt;
}

}  // namespace orvio::program
