// What VTK calls an element.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace orvio::program {

/// A cell type, and which node of the element stands at each place of the cell.
struct CellType {
  std::uint8_t number = 0;
  std::vector<std::size_t> order;
  std::string shown_as;  ///< told where VTK has no cell of that kind: "poly-lines"
};

/// By the word with which the element type begins (`HEXA8`, `SHELL`), else by its dimension (-1: unknown), and by the
/// nodes of an element, which stand with the corners first. Nothing where VTK has no such cell.
std::optional<CellType> FindCellType(const std::string& element_type, long long dimension, long long nodes);

/// A quadrangle whose last corner is missing or repeated: drawn as the triangle that it is.
inline constexpr std::uint8_t kVtkTriangle = 5, kVtkQuadrangle = 9;

}  // namespace orvio::program
