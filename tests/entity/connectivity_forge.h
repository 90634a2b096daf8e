#pragma once

// A small mesh as other writers store it, in both layouts.

#include <string>

#include "support/forged_file.h"

namespace orv_test {

enum class Layout { kSplit, kSingle };

inline std::string NameOf(Layout layout) { return layout == Layout::kSplit ? "Split" : "Single"; }

/// Where the parts of a block lie.
struct PartPaths {
  PartPaths(const std::string& block, Layout layout)
      : header(block + (layout == Layout::kSplit ? "/header" : "/orvblock")),
        data(block + (layout == Layout::kSplit ? "/data" : "/orvblock")),
        index(block + (layout == Layout::kSplit ? "/index" : "/orvblock")) {}

  std::string header, data, index;
};

/// Adds two quads of element type SHELL, with the elements 11 and 12 of part 7, and leaves at() at the header. No
/// optional attribute and no parameter is stored.
inline ForgedFile& AddMesh(ForgedFile& file, const std::string& block, Layout layout) {
  const PartPaths parts(block, layout);
  file.at(parts.data)
      .dataset<std::int32_t>("idele", {2}, {11, 12})
      .dataset<std::int32_t>("pid", {2}, {7, 7})
      .dataset<std::int32_t>("ic", {2, 4}, {1, 2, 3, 4, 2, 5, 6, 3});
  return file.at(parts.header)
      .integer("block", 300)
      .text("blocktype", "connectivities")
      .text("etypelem", "SHELL")
      .integer("nele", 2)
      .integer("npele", 4)
      .text("etyppart", "PART")
      .text("etypnode", "NODE");
}

/// The optional attributes.
inline ForgedFile& AddOptionalAttributes(ForgedFile& file) {
  return file.text("etyp", "2D-ELEMENT")
      .integer("nbint", 3)
      .integer("nbfloat", 2)
      .integer("nindex", 1)
      .integer("ndim", 2)
      .integer32("indexic", 1);
}

inline constexpr char kShell[] = "/post/constant/connectivities/SHELL";

}  // namespace orv_test
