// Columns of text for people.
#pragma once

#include <string>
#include <vector>

namespace orvio::program {

/// Rows under a heading, each column as wide as its widest cell. Columns of numbers stand to the right. Control characters
/// are shown as question marks.
class Table {
 public:
  explicit Table(std::vector<std::string> heading);

  void Add(std::vector<std::string> row);

  /// Prints to standard output below a title, or without one when it is empty.
  void Print(const std::string& title) const;

 private:
  std::vector<std::string> heading_;
  std::vector<std::vector<std::string>> rows_;
};

}  // namespace orvio::program
