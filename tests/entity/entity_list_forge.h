#pragma once

// Blocks that list entities as other writers store them, in both layouts.

#include <string>
#include <vector>

#include "entity/connectivity_forge.h"
#include "support/forged_file.h"

namespace orv_test {

inline constexpr char kAttributes[] = "/post/constant/attributes";
inline constexpr char kIdentifiers[] = "/post/constant/identifiers";
inline constexpr char kCollectors[] = "/post/constant/collector";

/// Path of a group in a state.
inline std::string InState(int state, const std::string& group) {
  return "/post/singlestate/state00000000000" + std::to_string(state) + "/" + group;
}

/// Adds the entities 11, 12 and 13 with the titles "one", "two" and "three" of 256 bytes to a group of attributes, and
/// leaves at() at the header. No optional attribute is stored.
inline ForgedFile& AddEntities(ForgedFile& file, const std::string& group, const std::string& etyp, Layout layout) {
  const PartPaths parts(group + "/" + etyp, layout);
  file.at(parts.data)
      .dataset<std::int32_t>("entid", {3}, {11, 12, 13})
      .texts("title", 256, {3}, {"one", "two", "three"});
  const bool identifiers = group.find("identifiers") != std::string::npos;
  return file.at(parts.header)
      .integer("block", identifiers ? 250 : 200)
      .text("blocktype", identifiers ? "identifiers" : "attributes")
      .text("etyp", etyp)
      .integer("nent", 3);
}

/// Adds two further integers for each of these entities.
inline ForgedFile& AddUserIntegers(ForgedFile& file, const std::string& block, Layout layout) {
  const PartPaths parts(block, layout);
  file.at(parts.data).dataset<std::int32_t>("uid", {3, 2}, {1, 2, 3, 4, 5, 6});
  return file.at(parts.header).integer("nuid", 2);
}

/// Adds the collectors 1 and 2 of the types NODE and SHELL: the first has the node 101 and the shells 102 and 103, the
/// second the node 104 and the shell 105. Leaves at() at the header.
inline ForgedFile& AddCollectors(ForgedFile& file, const std::string& group, const std::string& name, Layout layout,
                                 const std::vector<std::string>& types = {"NODE", "SHELL"}) {
  const PartPaths parts(group + "/" + name, layout);
  file.at(parts.data)
      .dataset<std::int32_t>("idcoll", {2}, {1, 2})
      .texts("etyp", 256, {2}, types)
      .dataset<std::int32_t>("nent", {2, 2}, {1, 2, 1, 1})
      .dataset<std::int32_t>("entid", {5}, {101, 102, 103, 104, 105});
  return file.at(parts.header)
      .integer("block", 400)
      .text("blocktype", "collector")
      .text("etypcoll", name)
      .integer("ncoll", 2)
      .integer("ntyp", 2)
      .integer("nenttot", 5)
      .integer("nindex", 0);
}

}  // namespace orv_test
