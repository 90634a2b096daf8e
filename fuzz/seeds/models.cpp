#include "seeds/models.h"

#include "entity/activation_forge.h"
#include "entity/connectivity_forge.h"
#include "entity/entity_list_forge.h"
#include "entity/part_forge.h"

namespace orvio::fuzz {
namespace {

using orv_test::ForgedModel;
using orv_test::ForgedValues;
using orv_test::InState;
using orv_test::PartPaths;

orv_test::Layout Of(ForgedModel::Layout layout) {
  return layout == ForgedModel::kSplit ? orv_test::Layout::kSplit : orv_test::Layout::kSingle;
}

void Define(ForgedModel& model, ForgedModel::Layout layout, const orv_test::ForgedVariable& variable) {
  model.variable(variable);
  if (layout == ForgedModel::kSingle) model.group(variable.name, variable.ncoo, {{variable.key, variable.ncoo, 0}});
}

/// Units, index types, coordinates, and a vector at nodes in two states.
void FillNodes(ForgedModel& model, ForgedModel::Layout layout) {
  Define(model, layout, {.name = "COORDINATE", .key = "XYZ", .ncoo = 3, .rank = 1, .tensor = 1});
  Define(model, layout, {.name = "Speed", .key = "V", .ncoo = 2, .labels = {"U", "W"}});
  model.units(layout == ForgedModel::kSingle ? "V" : "Speed", {.mdunit = {1, 1}, .udid = {11, 11}, .udexp = {1, 1}});
  model.system();
  if (layout == ForgedModel::kSplit) {
    model.index_types({"TIME"});
  } else {
    model.variable({.name = "TIME", .key = "TIME"}).group("INDEX", 1, {{"TIME", 1, 0}});
    model.index_types_of_group("INDEX", 1);
  }
  model.in_constant({.variable = "COORDINATE", .nent = 2, .ncoo = 3, .values = {1, 2, 3, 4, 5, 6}, .ids = {7, 8}});
  for (const int state : {1, 2}) {
    const auto base = static_cast<float>(state);
    model.in_state(state, {.variable = "Speed",
                           .nent = 3,
                           .ncoo = 2,
                           .zoneid = 1,
                           .values = {base, 2, 3, 4, 5, 6},
                           .ids = {7, 8, 9},
                           .index = {base}});
  }
}

/// Values in layers of elements, complex values.
void FillElements(ForgedModel& model, ForgedModel::Layout layout) {
  Define(model, layout,
         {.name = "Stress", .key = "S", .class_word = "CLASS_STRESS", .ncoo = 3, .rank = 2, .tensor = 1});
  Define(model, layout, {.name = "Wave", .key = "C", .labels = {"A"}});
  ForgedValues stress{.kind = 1100, .etyp = "SHELL", .variable = "Stress", .nent = 2, .ncoo = 3, .numl = 2};
  stress.values = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12};
  stress.ids = {61, 62};
  stress.index = {0.5F};
  model.in_state(1, stress);
  model.in_state(1,
                 {.kind = 1001, .variable = "Wave", .nent = 2, .values = {1, -1, 2, -2}, .ids = {9, 10}, .index = {1}});
  orv_test::AddMesh(model.file(), orv_test::kShell, Of(layout));
}

void FillHistories(ForgedModel& model, ForgedModel::Layout layout) {
  Define(model, layout, {.name = "Energy", .key = "E", .labels = {"K"}});
  Define(model, layout, {.name = "Force", .key = "F", .ncoo = 2});
  model.in_multistate({.kind = 1050,
                       .etyp = "PART",
                       .variable = "Energy",
                       .nent = 2,
                       .nstate = 3,
                       .series = "TIMESERIES1",
                       .values = {1, 2, 3, 4, 5, 6},
                       .ids = {1, 2},
                       .index = {0, 0.5F, 1}});
  ForgedValues force{.kind = 1150, .etyp = "BEAM", .variable = "Force", .nent = 1, .ncoo = 2, .numl = 1, .nstate = 2};
  force.values = {1, 2, 3, 4};
  force.ids = {5};
  force.index = {0, 1};
  model.in_multistate(force);
}

void FillModel(ForgedModel& model, ForgedModel::Layout layout) {
  orv_test::ForgedFile& file = model.file();
  orv_test::AddParts(file, orv_test::kParts, Of(layout));
  orv_test::AddPartLists(file, orv_test::kParts, Of(layout));
  orv_test::AddOptionalAttributes(orv_test::AddMesh(file, orv_test::kShell, Of(layout)));
  orv_test::AddEntities(file, orv_test::kAttributes, "NODE", Of(layout));
  orv_test::AddUserIntegers(file, std::string(orv_test::kAttributes) + "/NODE", Of(layout));
  orv_test::AddEntities(file, orv_test::kIdentifiers, "SHELL", Of(layout));
  orv_test::AddActivation(file, orv_test::kActiveShells, Of(layout));
}

void FillLists(ForgedModel& model, ForgedModel::Layout layout) {
  orv_test::ForgedFile& file = model.file();
  orv_test::AddCollectors(file, orv_test::kCollectors, "GROUPS", Of(layout));
  orv_test::AddCollectors(file, InState(1, "collector"), "NODE_FATHERS", Of(layout), {"NODE", "NODE"});
  model.properties("/post/constant", "SECURED_NODE", "COORDINATE", 2);
  const std::string block = "/post/constant/properties/SECURED_NODE/COORDINATE";
  file.at(model.Part(block, "data"))
      .dataset<std::int32_t>("entid", {2}, {101, 102})
      .dataset<std::int32_t>("iparam", {2, 2}, {1, 2, 3, 4})
      .dataset<float>("fparam", {2, 1}, {0.5F, 1.5F})
      .texts("cparam", 3, {4}, {"abc", "de", "f", "ghi"});
  file.at(model.Part(block, "header")).integer32("length", 3).integer32("nbstring", 2);
  file.integer32("nbint", 2).integer32("nbfloat", 1).integer32("nbid", 1);
}

/// Attributes and a result whose later states hold changes only.
void FillChanges(ForgedModel& model, ForgedModel::Layout layout) {
  Define(model, layout, {.name = "MASS", .key = "MASS"});
  model.system();
  model.file().at(PartPaths("/post/constant/system", Of(layout)).header).text("solver_name", "forge:INC:FPM");
  for (const int state : {1, 2, 3}) {
    const int count = state == 1 ? 3 : 1;
    const auto base = static_cast<float>(state);
    const std::vector<int> ids = state == 1 ? std::vector<int>{11, 12, 13} : std::vector<int>{12};
    model.in_state(state, {.variable = "MASS",
                           .nent = count,
                           .values = std::vector<float>(ids.size(), base),
                           .ids = ids,
                           .index = {base}});
    const std::string result = ForgedModel::StateGroup(state) + "/entityresults/NODE/MASS";
    model.file().at(model.Part(result, "index")).dataset<std::int32_t>("indexident", {1}, {state});
    model.file().at(model.Part(result, "header")).integer32("indexic", state == 1 ? 0 : 1);
    const PartPaths parts(InState(state, "attributes/NODE"), Of(layout));
    model.file().at(parts.data).dataset<std::int32_t>("entid", {ids.size()}, ids);
    model.file().at(parts.index).dataset<std::int32_t>("indexident", {1}, {state});
    model.file().at(parts.index).dataset<float>("indexval", {1}, {base});
    model.file().at(parts.header).integer("block", 200).text("etyp", "NODE").integer("nent", count);
    model.file().integer("nindex", 1).integer("nuid", 0).integer32("indexic", state == 1 ? 0 : 1);
  }
}

}  // namespace

std::vector<Model> SmallModels() {
  return {{"nodes", FillNodes}, {"elements", FillElements}, {"histories", FillHistories},
          {"model", FillModel}, {"lists", FillLists},       {"changes", FillChanges}};
}

}  // namespace orvio::fuzz
