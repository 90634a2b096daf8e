#pragma once

// A small part block as other writers store it, in both layouts.

#include <string>

#include "entity/connectivity_forge.h"
#include "support/forged_file.h"

namespace orv_test {

/// Adds the parts 7 and 9 of the type PART without any title or list, and leaves at() at the header. No optional
/// attribute is stored.
inline ForgedFile& AddParts(ForgedFile& file, const std::string& block, Layout layout) {
  const PartPaths parts(block, layout);
  file.at(parts.data).dataset<std::int32_t>("pid", {2}, {7, 9});
  return file.at(parts.header)
      .integer("block", 100)
      .text("blocktype", "parts")
      .text("etyppart", "PART")
      .integer("npart", 2)
      .integer("nindex", 0);
}

/// Adds the optional lists, and titles in slots of six bytes that the header tells of. Leaves at() at the header.
inline ForgedFile& AddPartLists(ForgedFile& file, const std::string& block, Layout layout) {
  const PartPaths parts(block, layout);
  file.at(parts.data)
      .dataset<std::int32_t>("mid", {2}, {71, 91})
      .dataset<std::int32_t>("mtyp", {2}, {24, 1})
      .dataset<std::int32_t>("pcol", {2}, {3, 4})
      .dataset<std::int32_t>("pvtyp", {2}, {5, 6})
      .texts("title", 6, {2}, {"hood", "fender"});
  return file.at(parts.header).integer32("length", 6);
}

inline constexpr char kParts[] = "/post/constant/parts/PART";

}  // namespace orv_test
