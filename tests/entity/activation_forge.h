#pragma once

// A small activation block as other writers store it, in both layouts.

#include <string>

#include "entity/connectivity_forge.h"
#include "support/forged_file.h"

namespace orv_test {

/// Adds the statuses 1, 0 and -5 of the shells 11, 12 and 13, and leaves at() at the header.
inline ForgedFile& AddActivation(ForgedFile& file, const std::string& block, Layout layout) {
  const PartPaths parts(block, layout);
  file.at(parts.data)
      .dataset<std::int32_t>("entid", {3}, {11, 12, 13})
      .dataset<std::int32_t>("status", {3}, {1, 0, -5});
  return file.at(parts.header)
      .integer("block", 2100)
      .text("blocktype", "activflags")
      .text("etyp", "SHELL")
      .integer("nent", 3)
      .integer("nindex", 0);
}

inline constexpr char kActiveShells[] = "/post/singlestate/state000000000001/activflags/SHELL";

}  // namespace orv_test
