#pragma once

// A small result file in which nothing is wrong, made with HDF5 alone, for tests that break one thing of it.

#include <string>
#include <vector>

#include "support/forged_model.h"

namespace orv_test {

inline constexpr char kSoundState1[] = "/post/singlestate/state000000000001";
inline constexpr char kSoundState2[] = "/post/singlestate/state000000000002";

/// Blocks of the mesh: four nodes, one quadrangle 11 of part 7, one set of nodes.
inline void AddSoundMesh(ForgedModel& model) {
  ForgedFile& file = model.file();
  model.in_constant({.etyp = "NODE",
                     .variable = "COORDINATE",
                     .nent = 4,
                     .ncoo = 3,
                     .values = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0},
                     .ids = {1, 2, 3, 4}});
  const std::string constant = "/post/constant/";
  file.at(model.Part(constant + "connectivities/QUAD4", "data")).dataset<std::int32_t>("idele", {1}, {11});
  file.dataset<std::int32_t>("pid", {1}, {7}).dataset<std::int32_t>("ic", {1, 4}, {1, 2, 3, 4});
  file.at(model.Part(constant + "connectivities/QUAD4", "header")).integer("block", 300).text("etypelem", "QUAD4");
  file.text("etyppart", "PART").text("etypnode", "NODE").integer("nele", 1).integer("npele", 4).integer("nindex", 0);
  file.at(model.Part(constant + "parts/PART", "data")).dataset<std::int32_t>("pid", {1}, {7});
  file.at(model.Part(constant + "parts/PART", "header")).integer("block", 100).text("etyppart", "PART");
  file.integer("npart", 1).integer("nindex", 0);
  file.at(model.Part(constant + "attributes/NODE", "data")).dataset<std::int32_t>("entid", {4}, {1, 2, 3, 4});
  file.at(model.Part(constant + "attributes/NODE", "header")).integer("block", 200).text("etyp", "NODE");
  file.integer("nent", 4).integer("nuid", 0).integer("nindex", 0);
  file.at(model.Part(constant + "collector/SET", "data")).dataset<std::int32_t>("idcoll", {2}, {1, 2});
  file.texts("etyp", 256, {1}, {"NODE"}).dataset<std::int32_t>("nent", {2, 1}, {2, 1});
  file.dataset<std::int32_t>("entid", {3}, {1, 2, 4});
  file.at(model.Part(constant + "collector/SET", "header")).integer("block", 400).text("etypcoll", "SET");
  file.integer("ncoll", 2).integer("ntyp", 1).integer("nenttot", 3).integer("nindex", 0);
  file.at(model.Part(constant + "text/NOTES", "data")).texts("line", 80, {2}, {"one", "two"});
  file.at(model.Part(constant + "text/NOTES", "header")).integer("block", 40).text("etyptext", "NOTES");
  file.integer("nlines", 2).integer("length", 80);
}

/// STRESS of the nodes, PE of the element in two layers, its status.
inline void AddSoundState(ForgedModel& model, int state) {
  const auto time = 0.5F * static_cast<float>(state);
  const std::vector<int> nodes = {1, 2, 3, 4};
  model.in_state(state, {.etyp = "NODE",
                         .variable = "STRESS",
                         .nent = 4,
                         .ncoo = 2,
                         .values = {1, 2, 3, 4, 5, 6, 7, 8},
                         .ids = nodes,
                         .index = {time}});
  model.in_state(state, {.kind = 1100,
                         .etyp = "QUAD4",
                         .variable = "PE",
                         .nent = 1,
                         .numl = 2,
                         .values = {0.25F, 0.5F},
                         .ids = {11},
                         .index = {time}});
  const std::string status = ForgedModel::StateGroup(state) + "/activflags/QUAD4";
  ForgedFile& file = model.file();
  file.at(model.Part(status, "data"))
      .dataset<std::int32_t>("entid", {1}, {11})
      .dataset<std::int32_t>("status", {1}, {1});
  file.at(model.Part(status, "header")).integer("block", 2100).text("etyp", "QUAD4").integer("nent", 1);
  file.integer("nindex", 0);
}

inline void AddSoundVariables(ForgedModel& model, bool with_groups) {
  model.system();
  model.variable({.name = "COORDINATE", .key = "COORDINATE", .ncoo = 3, .rank = 1, .tensor = 1});
  model.variable({.name = "STRESS", .key = "STRESS", .ncoo = 2, .labels = {"SXX", "SYY"}});
  model.variable({.name = "PE", .key = "PE"});
  model.units("STRESS", {{1, 1}, {1, 2}, {1, 1}, {1, 0}, {11}, {1}});
  if (!with_groups) {
    model.index_types({"TIME"});
    return;
  }
  model.variable({.name = "TIME", .key = "TIME"});
  model.group("COORDINATE", 3, {{"COORDINATE", 3, 0}}).group("STRESS", 2, {{"STRESS", 2, 0}});
  model.group("PE", 1, {{"PE", 1, 0}}).group("INDEX", 1, {{"TIME", 1, 0}});
  model.index_types_of_group("INDEX", 1);
}

/// Two states, and PE of node 1 over both of them.
inline void FillSoundFile(ForgedModel& model, bool with_groups = false) {
  const bool is_single = model.Part("", "data") == "/orvblock";
  ForgedFile& file = model.file();
  file.at("/post/constant");
  for (const char* group : {"collector", "indices", "attributes", "text", "connectivities"}) file.group(group);
  if (is_single) file.group("variablegroup").group("identifiers");
  AddSoundVariables(model, with_groups);
  AddSoundMesh(model);
  AddSoundState(model, 1);
  AddSoundState(model, 2);
  model.in_multistate({.kind = 1050,
                       .etyp = "NODE",
                       .variable = "PE",
                       .nent = 1,
                       .nstate = 2,
                       .values = {0.25F, 0.5F},
                       .ids = {1},
                       .index = {0.5F, 1}});
  model.properties("/post/constant", "NODE", "SECURED", 4);
}

}  // namespace orv_test
