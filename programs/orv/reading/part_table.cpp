// Reading of part blocks.

#include "reading/part_table.h"

#include <fmt/format.h>
#include <orvio/orvio.h>

#include <algorithm>
#include <map>
#include <utility>

#include "reading/element_table.h"
#include "reading/file_model.h"
#include "reading/words.h"
#include "suggestion.h"
#include "trouble.h"

namespace orvio::program {
namespace {

/// Collects the names of the part types that a walk meets.
class TypeScan : public ORVPart {
 public:
  std::vector<std::string> Run(const std::string& file, int state) {
    (void)IterateBlock(file.c_str(), state, ORV_READ_HEADER, Take);  // a place that is not there holds none
    return std::move(types_);
  }

 private:
  static _ORVAction Take(int status, int /*stage*/, void* /*where*/, void* block) {
    auto& scan = *static_cast<TypeScan*>(static_cast<ORVBlock*>(block));
    if (status == 0) scan.types_.push_back(TextOf(scan.m_etyppart));
    return ORV_ACTION_CONTINUE;
  }

  std::vector<std::string> types_;
};

/// Elements of each part, by part type and id.
using ElementCounts = std::map<std::pair<std::string, long long>, std::size_t>;

ElementCounts CountElements(const std::string& file) {
  ElementCounts counts;
  for (const ElementTable& table : ReadElementTables(file, "")) {
    for (const long long part : table.parts) ++counts[{table.part_type, part}];
  }
  return counts;
}

void Append(ORVFiler& filer, const std::string& type, int state, std::vector<Part>& parts) {
  std::vector<int> ids, materials, material_types;
  std::vector<std::string> titles;
  (void)filer.GetPartInfo(type, ids, titles, materials, material_types, state);  // 0: the lists are empty
  for (std::size_t i = 0; i < ids.size(); ++i) {
    Part part{type, ids[i], i < titles.size() ? titles[i] : "", {}, {}, 0};
    if (i < materials.size()) part.material = materials[i];
    if (i < material_types.size()) part.material_type = material_types[i];
    parts.push_back(std::move(part));
  }
}

}  // namespace

std::vector<Part> FindParts(const std::string& file, const std::string& type, int state) {
  const int states = CheckResultFile(file);
  if (state < 0 || state > states) {
    throw Trouble(file, fmt::format("has no state {}", state), fmt::format("it has {}", states));
  }
  ORVFiler filer(file.c_str());
  std::vector<Part> parts;
  const std::vector<std::string> types = TypeScan().Run(file, state);
  for (const std::string& name : types) {
    if (type.empty() || SameWord(name, type)) Append(filer, name, state, parts);
  }
  if (parts.empty() && !type.empty()) {
    throw Trouble(file, fmt::format("has no parts of type \"{}\"{}", type, DidYouMean(type, types)),
                  "orv parts without --type lists all");
  }
  return parts;
}

std::vector<Part> ReadParts(const std::string& file, const std::string& type, int state) {
  std::vector<Part> parts = FindParts(file, type, state);
  const ElementCounts counts = CountElements(file);
  for (Part& part : parts) {
    const auto count = counts.find({part.type, part.id});
    if (count != counts.end()) part.elements = count->second;
  }
  return parts;
}

}  // namespace orvio::program
