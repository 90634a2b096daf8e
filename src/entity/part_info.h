#pragma once

// The parts of a file in vectors, as a filer tells them.

#include <optional>
#include <string>
#include <vector>

namespace orvio {

/// Parts of one type. `names` is as long as `ids`; the others too, or empty where the file lacks them.
struct PartInfo {
  std::vector<int> ids;
  std::vector<std::string> names;  ///< empty texts where the file lacks titles
  std::vector<int> material_ids;
  std::vector<int> material_types;
};

/// Nothing when there is no such block or its header has no parts; empty when its data cannot be read. `state` is 0 for
/// the constant section.
std::optional<PartInfo> ReadPartInfo(const char* file, const std::string& type, int state);

}  // namespace orvio
