// Sorting of printed rows into blocks.

#include "importer/point_values.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include "trouble.h"

namespace orvio::program {
namespace {

constexpr const char* kAdvice = "check that it is of the same run as the result";

bool SameTime(double printed, double state) {
  constexpr double kSixDigits = 1e-5;
  return std::abs(printed - state) <= kSixDigits * std::max(std::abs(printed), std::abs(state));
}

/// Rows of one element: those that follow one another with points from 1 on.
std::size_t CountPoints(const frd::PointResult& table, std::size_t first) {
  std::size_t count = 0;
  while (first + count < table.elements.size() && table.elements[first + count] == table.elements[first] &&
         table.points[first + count] == static_cast<int>(count) + 1) {
    ++count;
  }
  return count;
}

bool SameQuantity(const Quantity& a, const Quantity& b) { return a.name == b.name && a.components == b.components; }

PointQuantity& QuantityIn(std::vector<PointQuantity>& quantities, const Quantity& wanted) {
  const auto known = std::ranges::find_if(
      quantities, [&](const PointQuantity& entry) { return SameQuantity(entry.quantity, wanted); });
  return known == quantities.end() ? quantities.emplace_back(PointQuantity{wanted, {}}) : *known;
}

PointBlock& BlockIn(PointQuantity& entry, const std::string& type, int layers) {
  const auto known = std::ranges::find_if(
      entry.blocks, [&](const PointBlock& block) { return block.element_type == type && block.layers == layers; });
  return known == entry.blocks.end() ? entry.blocks.emplace_back(PointBlock{type, layers, {}, {}, false}) : *known;
}

std::set<int> ElementsOf(const PointQuantity& entry) {
  std::set<int> elements;
  for (const PointBlock& block : entry.blocks) elements.insert(block.ids.begin(), block.ids.end());
  return elements;
}

/// Appends the rows of one element, with their components in the order of the quantity.
void AddElement(const frd::PointResult& table, std::size_t first, std::size_t points,
                const std::vector<std::size_t>& order, PointBlock& block) {
  block.ids.push_back(table.elements[first]);
  for (std::size_t row = first; row < first + points; ++row) {
    for (const std::size_t column : order) block.values.push_back(table.values[row * order.size() + column]);
  }
}

frd::DatReader Open(const std::filesystem::path& path) {
  try {
    return frd::DatReader(path);
  } catch (const frd::Error& error) {
    throw Trouble(path.string(), error.what(), "check the name");
  }
}

void MarkSiblings(std::vector<PointBlock>& blocks) {
  for (PointBlock& block : blocks) {
    block.has_siblings = std::ranges::count(blocks, block.element_type, &PointBlock::element_type) > 1;
  }
}

}  // namespace

PointValues::PointValues(std::filesystem::path path, const std::map<int, std::string>& types, bool partial)
    : path_(std::move(path)), reader_(Open(path_)), types_(types), partial_(partial) {}

bool PointValues::Peek() {
  if (has_next_) return true;
  try {
    has_next_ = reader_.NextResult(next_);
  } catch (const frd::Error& error) {
    if (!partial_) throw Trouble(path_.string(), error.what(), "check that the file is whole and a CalculiX .dat file");
  }
  return has_next_;
}

std::vector<frd::PointResult> PointValues::TakeTables(double time) {
  while (Peek() && next_.time < time && !SameTime(next_.time, time)) {
    ++left_over_;  // printed more often than stored
    has_next_ = false;
  }
  std::vector<frd::PointResult> tables;
  const auto is_known = [&](const frd::PointResult& table) {
    return table.name == next_.name && table.set == next_.set && table.components == next_.components;
  };
  // A table that comes again belongs to the next state, be its time the same.
  while (Peek() && SameTime(next_.time, time) && std::ranges::none_of(tables, is_known)) {
    tables.push_back(std::move(next_));
    has_next_ = false;
  }
  return tables;
}

const std::string& PointValues::TypeOf(int element) const {
  const auto type = types_.find(element);
  if (type != types_.end()) return type->second;
  throw Trouble(path_.string(), fmt::format("the mesh has no element {}", element), kAdvice);
}

void PointValues::Add(const frd::PointResult& table, std::vector<PointQuantity>& quantities) const {
  std::vector<std::size_t> order;
  PointQuantity& entry = QuantityIn(quantities, DescribePoints(table, order));
  std::set<int> known = ElementsOf(entry);
  for (std::size_t row = 0; row < table.elements.size();) {
    const int element = table.elements[row];
    const std::size_t points = CountPoints(table, row);
    if (points == 0) {
      throw Trouble(path_.string(), fmt::format("points of element {} are not numbered from 1", element), kAdvice);
    }
    if (known.insert(element).second) {
      AddElement(table, row, points, order, BlockIn(entry, TypeOf(element), static_cast<int>(points)));
    }
    row += points;
  }
  MarkSiblings(entry.blocks);
}

std::vector<PointQuantity> PointValues::At(double time) {
  std::vector<PointQuantity> quantities;
  for (const frd::PointResult& table : TakeTables(time)) Add(table, quantities);
  return quantities;
}

std::size_t PointValues::CountLeftOver() {
  while (Peek()) {
    ++left_over_;
    has_next_ = false;
  }
  return left_over_;
}

}  // namespace orvio::program
