// Parts of a file.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace orvio::program {

struct Part {
  std::string type;
  int id = 0;
  std::string title;
  std::optional<int> material, material_type;  ///< not told by every file
  std::size_t elements = 0;                    ///< of the constant mesh; 0 where they are not counted
};

/// The parts of the constant section (state 0) or of a state, of all types or of one. Throws Trouble for a file that
/// is no result file, a state that is not there and a type without parts.
std::vector<Part> ReadParts(const std::string& file, const std::string& type, int state);

/// The same without the numbers of elements, which take the longest.
std::vector<Part> FindParts(const std::string& file, const std::string& type, int state);

}  // namespace orvio::program
