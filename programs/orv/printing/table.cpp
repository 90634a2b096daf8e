// Printing of tables.

#include "printing/table.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>

namespace orvio::program {
namespace {

bool LooksLikeNumber(const std::string& cell) {
  return !cell.empty() && cell.find_first_not_of("0123456789+-.einfa") == std::string::npos &&
         std::ranges::any_of(cell, [](unsigned char c) { return std::isdigit(c) != 0 || c == 'n'; });
}

/// Names of a file may hold what a terminal takes for commands.
std::string Shown(std::string text) {
  std::ranges::replace_if(
      text, [](unsigned char c) { return std::iscntrl(c) != 0; }, '?');
  return text;
}

}  // namespace

Table::Table(std::vector<std::string> heading) : heading_(std::move(heading)) {
  std::ranges::transform(heading_, heading_.begin(), Shown);
}

void Table::Add(std::vector<std::string> row) {
  std::ranges::transform(row, row.begin(), Shown);
  rows_.push_back(std::move(row));
}

void Table::Print(const std::string& title) const {
  std::vector<std::size_t> widths;
  std::vector<bool> numeric;
  for (std::size_t column = 0; column < heading_.size(); ++column) {
    std::size_t width = heading_[column].size();
    for (const auto& row : rows_) width = std::max(width, row[column].size());
    widths.push_back(width);
    numeric.push_back(!rows_.empty() &&
                      std::ranges::all_of(rows_, [&](const auto& row) { return LooksLikeNumber(row[column]); }));
  }
  const auto print_row = [&](const std::vector<std::string>& row) {
    std::string line;
    for (std::size_t column = 0; column < row.size(); ++column) {
      const std::string padding(widths[column] - row[column].size(), ' ');
      line += (numeric[column] ? padding + row[column] : row[column] + padding) + "  ";
    }
    line.erase(line.find_last_not_of(' ') + 1);
    fmt::print("{}\n", line);
  };
  if (!title.empty()) fmt::print("\n{}\n", Shown(title));
  print_row(heading_);
  for (const auto& row : rows_) print_row(row);
}

}  // namespace orvio::program
