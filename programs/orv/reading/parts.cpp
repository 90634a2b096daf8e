#include "reading/parts.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <map>
#include <utility>

#include "reading/words.h"
#include "suggestion.h"
#include "trouble.h"

namespace orvio::program {

std::vector<orv::Part> ReadParts(orv::File& file, const std::string& type, int state) {
  std::vector<orv::Part> parts = file.parts(state);
  if (type.empty()) return parts;
  std::vector<std::string> types;
  std::ranges::transform(parts, std::back_inserter(types), &orv::Part::type);
  std::erase_if(parts, [&](const orv::Part& part) { return !SameWord(part.type, type); });
  if (!parts.empty()) return parts;
  throw Trouble(file.path(), fmt::format("has no parts of type \"{}\"{}", type, DidYouMean(type, types)),
                "orv parts without --type lists all");
}

std::vector<std::size_t> CountElements(orv::File& file, const std::vector<orv::Part>& parts) {
  std::map<std::pair<std::string, std::int64_t>, std::size_t> counts;
  for (const orv::Elements& elements : file.elements()) {
    for (const std::int64_t part : elements.parts) ++counts[{elements.part_type, part}];
  }
  std::vector<std::size_t> of_parts;
  std::ranges::transform(parts, std::back_inserter(of_parts), [&](const orv::Part& part) {
    return counts[{part.type, part.id}];
  });
  return of_parts;
}

}  // namespace orvio::program
