#pragma once

// A result file as another writer makes it: element results with layers, complex values, doubles, values that are no
// numbers. Made with HDF5 alone.

#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "support/forged_file.h"

namespace orv_test {

inline constexpr char kState1[] = "/post/singlestate/state000000000001/";
inline constexpr char kState2[] = "/post/singlestate/state000000000002/";

inline void AddVariable(ForgedFile& file, const std::string& name, const std::string& class_word, int rank,
                        const std::vector<std::string>& labels) {
  const auto count = static_cast<hsize_t>(labels.size());
  std::vector<int> lengths, offsets;
  std::vector<std::string> letters;
  for (const std::string& label : labels) {
    offsets.push_back(static_cast<int>(letters.size()));
    lengths.push_back(static_cast<int>(label.size()));
    for (const char letter : label) letters.emplace_back(1, letter);
  }
  file.at("/post/constant/variable/" + name + "/orvblock")
      .integer("block", 30)
      .text("varnam", name)
      .text("varkey", name)
      .text("varclass", class_word)
      .integer("ncoo", static_cast<std::int64_t>(count))
      .integer("rank", rank)
      .integer("ndim", 3)
      .integer32("subslen", static_cast<int>(letters.size()))
      .integer32("tensor", rank > 0 ? 1 : 0)
      .texts("subscr", 1, {letters.size()}, letters)
      .dataset<std::int32_t>("subscnt", {count}, lengths)
      .dataset<std::int32_t>("subsoffs", {count}, offsets);
}

/// The header of a result at nodes; leaves at() at the block.
inline ForgedFile& AddNodalResult(ForgedFile& file, const std::string& section, const std::string& variable, int kind,
                                  int nodes, int components) {
  return file.at(section + "entityresults/NODE/" + variable + "/orvblock")
      .integer("block", kind)
      .text("etyp", "NODE")
      .text("etypvar", variable)
      .integer("nent", nodes)
      .integer("ncoo", components)
      .integer("nindex", 0)
      .integer("fswitch", 0);
}

inline ForgedFile& AddElementResult(ForgedFile& file, const std::string& section, const std::string& type,
                                    const std::string& variable, int elements, int layers, int components) {
  return file.at(section + "elementresults/" + type + "/" + variable + "/orvblock")
      .integer("block", 1100)
      .text("etypelem", type)
      .text("etypvar", variable)
      .integer("nele", elements)
      .integer("ncoo", components)
      .integer("numl", layers)
      .integer("ndim", 0)
      .integer("nindex", 0)
      .integer("fswitch", 0);
}

inline ForgedFile& AddIndex(ForgedFile& block, const std::vector<double>& values) {
  return block.integer("nindex", static_cast<std::int64_t>(values.size()))
      .dataset<std::int32_t>("indexident", {values.size()}, std::vector<std::int32_t>(values.size(), 1))
      .dataset<double>("indexval", {values.size()}, values);
}

inline ForgedFile& AddElements(ForgedFile& file, const std::string& type, int dimension, std::size_t nodes_each,
                               const std::vector<std::int32_t>& ids, const std::vector<std::int32_t>& nodes) {
  return file.at("/post/constant/connectivities/" + type + "/orvblock")
      .integer("block", 300)
      .text("etypelem", type)
      .text("etyppart", "PART")
      .text("etypnode", "NODE")
      .integer("nele", static_cast<std::int64_t>(ids.size()))
      .integer("npele", static_cast<std::int64_t>(nodes_each))
      .integer("ndim", dimension)
      .dataset<std::int32_t>("idele", {ids.size()}, ids)
      .dataset<std::int32_t>("pid", {ids.size()}, std::vector<std::int32_t>(ids.size(), 7))
      .dataset<std::int32_t>("ic", {ids.size(), nodes_each}, nodes);
}

/// A variable of one component that has no label.
inline void AddUnlabelledVariable(ForgedFile& file, const std::string& name) {
  file.at("/post/constant/variable/" + name + "/orvblock")
      .integer("block", 30)
      .text("varnam", name)
      .text("varkey", name);
  file.integer("ncoo", 1).integer("rank", 0).integer("ndim", 3);
}

/// What the columns of the state index are, by their names alone.
inline void AddIndexTypes(ForgedFile& file, const std::vector<std::string>& names) {
  file.at("/post/constant/indices/orvblock").integer("block", 20);
  file.integer("nindex", static_cast<std::int64_t>(names.size())).texts("etypindex", 256, {names.size()}, names);
}

/// A part without a title.
inline void AddPart(ForgedFile& file, std::int32_t id) {
  file.at("/post/constant/parts/PART/orvblock").integer("block", 100).text("etyppart", "PART").integer("npart", 1);
  file.integer("nindex", 0).dataset<std::int32_t>("pid", {1}, {id});
}

/// Two states, two element types.
///
///     constant  TEMP        2 nodes, float                      its variable has no label
///     state 1   STRESS      SHELL 2 elements x 2 layers x 2 components, SOLID 1 x 1 x 2, float
///               WAVE        2 nodes x 2 components, complex double
///               ODD         4 nodes, float: not a number, both infinities, the smallest
///     state 2   STRESS      SHELL as above
inline void FillForgedResults(ForgedFile& file) {
  AddVariable(file, "STRESS", "CLASS_STRESS", 0, {"SXX", "S,Y"});
  AddVariable(file, "WAVE", "CLASS_LENGTH", 0, {"A", "B"});
  AddVariable(file, "ODD", "", 0, {"VALUE"});
  AddUnlabelledVariable(file, "TEMP");
  AddIndexTypes(file, {"TIME", "STEP"});
  AddElements(file, "SHELL", 2, 4, {11, 12}, {1, 2, 3, 4, 2, 5, 6, 3});
  AddElements(file, "SOLID", 3, 3, {21}, {7, 8, 9});
  AddNodalResult(file, "/post/constant/", "TEMP", 1000, 2, 1)
      .dataset<std::int32_t>("entid", {2}, {3, 1})
      .dataset<float>("res", {2, 1}, {0.1F, 300});
  AddIndex(AddElementResult(file, kState1, "SHELL", "STRESS", 2, 2, 2), {0.125, 1})
      .dataset<std::int32_t>("idele", {2}, {11, 12})
      .dataset<float>("res", {2, 2, 2}, {1, 2, 3, 4, 5, 6, 7, 8});
  AddIndex(AddElementResult(file, kState1, "SOLID", "STRESS", 1, 1, 2), {0.125, 1})
      .dataset<std::int32_t>("idele", {1}, {21})
      .dataset<float>("res", {1, 1, 2}, {-1, -2});
  AddIndex(AddNodalResult(file, kState1, "WAVE", 1001, 2, 2), {0.125, 1})
      .dataset<std::int64_t>("entid", {2}, {5, 5000000000})
      .dataset<double>("res", {2, 2, 2}, {0.1, -1e-300, 2, 3, 0.30000000000000004, 5, 6, 7});
  const float infinity = std::numeric_limits<float>::infinity();
  AddIndex(AddNodalResult(file, kState1, "ODD", 1000, 4, 1), {0.125, 1})
      .dataset<std::int32_t>("entid", {4}, {1, 2, 3, 4})
      .dataset<float>("res", {4, 1}, {std::nanf(""), infinity, -infinity, std::numeric_limits<float>::denorm_min()});
  AddIndex(AddElementResult(file, kState2, "SHELL", "STRESS", 2, 2, 2), {0.25, 1})
      .dataset<std::int32_t>("idele", {2}, {11, 12})
      .dataset<float>("res", {2, 2, 2}, {10, 20, 30, 40, 50, 60, 70, 80});
}

}  // namespace orv_test
