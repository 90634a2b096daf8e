#pragma once

// Small files for tests of the modern face, forged with HDF5 alone.

#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include "orvio/orv/error.hpp"
#include "support/forged_model.h"
#include "support/orv_test.h"

namespace orv_test {

/// What the Error of an act says; empty where there is none.
template <class Act>
std::string ErrorOf(Act&& act) {
  try {
    act();
  } catch (const orv::Error& error) {
    return error.what();
  }
  return {};
}

/// A file with the variable "Speed" of the components U and W, without results.
inline ForgedModel SpeedModel(ForgedModel::Layout layout = ForgedModel::kSingle) {
  ForgedModel model(layout);
  model.variable({.name = "Speed", .key = "Speed", .ncoo = 2, .labels = {"U", "W"}});
  return model;
}

/// Values of "Speed" at nodes, two for each, with the index value 1.
inline ForgedValues SpeedOf(std::vector<int> ids, std::vector<float> values) {
  ForgedValues speed{.variable = "Speed", .nent = static_cast<int>(values.size() / 2), .ncoo = 2};
  speed.values = std::move(values);
  speed.ids = std::move(ids);
  speed.index = {1};
  return speed;
}

/// Where they lie in the single layout.
inline std::string SpeedBlock(int state) {
  return ForgedModel::StateGroup(state) + "/entityresults/NODE/Speed/orvblock";
}

/// Elements in the single layout, below a section or a state.
inline void PutElements(ForgedFile& file, const std::string& section, const std::string& type,
                        const std::vector<std::int32_t>& ids, const std::vector<std::int32_t>& nodes,
                        const std::vector<std::int32_t>& parts, const std::string& family = {}) {
  const hsize_t count = ids.size(), width = nodes.size() / ids.size();
  file.at(section + "/connectivities/" + type + "/orvblock").integer("block", 300).text("etypelem", type);
  file.text("etyppart", "PART").text("etypnode", "NODE").integer("nele", static_cast<std::int64_t>(count));
  file.integer("npele", static_cast<std::int64_t>(width)).integer("ndim", 2).integer("nindex", 0);
  file.text("etyp", family.empty() ? type : family);
  file.dataset<std::int32_t>("idele", {count}, ids).dataset<std::int32_t>("pid", {count}, parts);
  file.dataset<std::int32_t>("ic", {count, width}, nodes);
}

/// Parts in the single layout, without materials.
inline void PutParts(ForgedFile& file, const std::string& section, const std::vector<std::int32_t>& ids,
                     const std::vector<std::string>& titles) {
  const hsize_t count = ids.size();
  file.at(section + "/parts/PART/orvblock").integer("block", 100).text("etyppart", "PART").integer("nindex", 0);
  file.integer("npart", static_cast<std::int64_t>(count)).integer32("length", 8);
  file.dataset<std::int32_t>("pid", {count}, ids).texts("title", 8, {count}, titles);
}

inline std::string LayoutName(const ::testing::TestParamInfo<ForgedModel::Layout>& layout) {
  return layout.param == ForgedModel::kSplit ? "Split" : "Single";
}

}  // namespace orv_test
