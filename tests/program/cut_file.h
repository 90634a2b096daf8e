#pragma once

// A file of which parts are cut out, made with HDF5 alone.
//
//     4---3---6     QUAD4  11 (part 1, LEFT), 12 (part 2, RIGHT)
//     | 11| 12|     LINE2  21 (part 2): 5 6
//     1---2---5
//
// Three states at 0.5, 1 and 1.5: STRESS of the nodes, PE of the quadrangles in two layers, WAVE, complex, of nodes 2 and
// 5. Over all states: PE of nodes 1 and 5, and of the quadrangles.

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "program/run_program.h"
#include "support/forged_model.h"

namespace orv_test {

inline constexpr char kConstant[] = "/post/constant/", kOver[] = "/post/multistate/";

inline void AddCutElements(ForgedModel& model, const std::string& type, const std::vector<int>& ids,
                           const std::vector<int>& parts, const std::vector<int>& nodes) {
  ForgedFile& file = model.file();
  const std::string block = kConstant + std::string("connectivities/") + type;
  const hsize_t count = ids.size(), each = nodes.size() / ids.size();
  file.at(model.Part(block, "data")).dataset<std::int32_t>("idele", {count}, ids);
  file.dataset<std::int32_t>("pid", {count}, parts).dataset<std::int32_t>("ic", {count, each}, nodes);
  file.at(model.Part(block, "header")).integer("block", 300).text("etypelem", type).text("etyppart", "PART");
  file.text("etypnode", "NODE").integer("nele", static_cast<std::int64_t>(count));
  file.integer("npele", static_cast<std::int64_t>(each)).integer("ndim", 2).integer("nindex", 0);
}

inline void AddCutTables(ForgedModel& model) {
  ForgedFile& file = model.file();
  const std::string constant = kConstant;
  file.at(model.Part(constant + "parts/PART", "data")).dataset<std::int32_t>("pid", {2}, {1, 2});
  file.texts("title", 256, {2}, {"LEFT", "RIGHT"});
  file.at(model.Part(constant + "parts/PART", "header")).integer("block", 100).text("etyppart", "PART");
  file.integer("npart", 2).integer("nindex", 0);
  file.at(model.Part(constant + "attributes/NODE", "data"));
  file.dataset<std::int32_t>("entid", {6}, {1, 2, 3, 4, 5, 6})
      .dataset<std::int32_t>("uid", {6, 1}, {10, 20, 30, 40, 50, 60});
  file.texts("title", 256, {6}, {"a", "b", "c", "d", "e", "f"});
  file.at(model.Part(constant + "attributes/NODE", "header")).integer("block", 200).text("etyp", "NODE");
  file.integer("nent", 6).integer("nuid", 1).integer("nindex", 0);
  file.at(model.Part(constant + "attributes/NODE_SET", "data")).dataset<std::int32_t>("entid", {2}, {7, 8});
  file.texts("title", 256, {2}, {"both", "right"});
  file.at(model.Part(constant + "attributes/NODE_SET", "header")).integer("block", 200).text("etyp", "NODE_SET");
  file.integer("nent", 2).integer("nuid", 0).integer("nindex", 0);
}

inline void AddCutSets(ForgedModel& model) {
  ForgedFile& file = model.file();
  const auto add = [&](const std::string& name, const std::vector<std::string>& types, const std::vector<int>& ids,
                       const std::vector<int>& counts, const std::vector<int>& members) {
    const std::string block = kConstant + ("collector/" + name);
    file.at(model.Part(block, "data")).dataset<std::int32_t>("idcoll", {ids.size()}, ids);
    file.texts("etyp", 256, {types.size()}, types).dataset<std::int32_t>("nent", {ids.size(), types.size()}, counts);
    file.dataset<std::int32_t>("entid", {members.size()}, members);
    file.at(model.Part(block, "header")).integer("block", 400).text("etypcoll", name);
    file.integer("ncoll", static_cast<std::int64_t>(ids.size()))
        .integer("ntyp", static_cast<std::int64_t>(types.size()));
    file.integer("nenttot", static_cast<std::int64_t>(members.size())).integer("nindex", 0);
  };
  add("NODE_SET", {"NODE"}, {7, 8}, {3, 1}, {1, 2, 6, 5});
  add("SIDE_SET", {"ELEMENT", "SIDE"}, {9}, {3, 3}, {11, 12, 21, 1, 2, 3});
}

inline void AddCutState(ForgedModel& model, int state) {
  const auto time = 0.5F * static_cast<float>(state), s = static_cast<float>(100 * state);
  model.in_state(state, {.etyp = "NODE",
                         .variable = "STRESS",
                         .nent = 6,
                         .ncoo = 2,
                         .values = {s + 1, -1, s + 2, -2, s + 3, -3, s + 4, -4, s + 5, -5, s + 6, -6},
                         .ids = {1, 2, 3, 4, 5, 6},
                         .index = {time}});
  model.in_state(state, {.kind = 1100,
                         .etyp = "QUAD4",
                         .variable = "PE",
                         .nent = 2,
                         .numl = 2,
                         .values = {s + 0.11F, s + 0.12F, s + 0.21F, s + 0.22F},
                         .ids = {11, 12},
                         .index = {time}});
  model.in_state(state, {.kind = 1001,
                         .etyp = "NODE",
                         .variable = "WAVE",
                         .nent = 2,
                         .values = {s + 2, s - 2, s + 5, s - 5},
                         .ids = {2, 5},
                         .index = {time}});
}

inline void FillCutFile(ForgedModel& model) {
  ForgedFile& file = model.file();
  file.at("/post/constant");
  for (const char* group : {"collector", "indices", "attributes", "text", "connectivities"}) file.group(group);
  if (model.Part("", "data") == "/orvblock") file.group("variablegroup").group("identifiers");
  model.system();
  model.variable(
      {.name = "COORDINATE", .key = "COORDINATE", .ncoo = 3, .rank = 1, .tensor = 1, .labels = {"X", "Y", "Z"}});
  model.variable({.name = "STRESS", .key = "STRESS", .ncoo = 2, .labels = {"SXX", "SYY"}});
  model.units("STRESS", {{1, 1}, {1, 2}, {1, 1}, {1, 0}, {11}, {1}});
  model.variable({.name = "PE", .key = "PE", .labels = {"PE"}})
      .variable({.name = "WAVE", .key = "WAVE", .labels = {"W"}});
  model.index_types({"TIME"});
  model.in_constant({.variable = "COORDINATE",
                     .nent = 6,
                     .ncoo = 3,
                     .values = {0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0, 2, 0, 0, 2, 1, 0},
                     .ids = {1, 2, 3, 4, 5, 6}});
  AddCutElements(model, "QUAD4", {11, 12}, {1, 2}, {1, 2, 3, 4, 2, 5, 6, 3});
  AddCutElements(model, "LINE2", {21}, {2}, {5, 6});
  AddCutTables(model);
  AddCutSets(model);
  for (const int state : {1, 2, 3}) AddCutState(model, state);
  model.in_multistate({.kind = 1050,
                       .variable = "PE",
                       .nent = 2,
                       .nstate = 3,
                       .values = {1, 5, 10, 50, 100, 500},
                       .ids = {1, 5},
                       .index = {0.5F, 1, 1.5F}});
  model.in_multistate({.kind = 1150,
                       .etyp = "QUAD4",
                       .variable = "PE",
                       .nent = 2,
                       .numl = 1,
                       .nstate = 3,
                       .values = {1, 2, 3, 4, 5, 6},
                       .ids = {11, 12},
                       .index = {0.5F, 1, 1.5F}});
}

/// A test with such a file, and a folder for what comes out of it.
class CutTest : public ProgramTest {
 protected:
  CutTest() { std::filesystem::create_directory(TempPath("out")); }

  std::string Out() const { return TempPath("out/new.orv"); }
  void ExpectNoOutput() const { EXPECT_THAT(NamesIn(TempPath("out")), testing::IsEmpty()); }

  /// Runs a command that has to go well. orv check finds nothing in what it writes.
  ProgramRun Make(std::vector<std::string> arguments) const {
    arguments.insert(arguments.end(), {"-o", Out()});
    ProgramRun run = RunOrv(arguments);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    const ProgramRun check = RunOrv({"check", Out()});
    EXPECT_EQ(check.exit_code, 0) << check.out;
    EXPECT_THAT(check.out, testing::HasSubstr("0 errors, 0 warnings"));
    EXPECT_THAT(NamesIn(TempPath("out")), testing::ElementsAre("new.orv"));
    return run;
  }
};

}  // namespace orv_test
