// Results of the solver itself, compared with what an independent reader found in them (facts.json beside each).
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "frd/element_type.h"
#include "frd/reader.h"

namespace {

using namespace orvio::frd;
using nlohmann::json;

struct RealFile {
  const char* facts;
  const char* file;
};
constexpr RealFile kRealFiles[] = {
    {"own_plate_impact/facts.json", "own_plate_impact/plate_impact.frd.gz"},
    {"own_bracket_modes/facts.json", "own_bracket_modes/bracket_modes.frd.gz"},
    {"own_bracket_modes/facts_bin.json", "own_bracket_modes/bracket_modes_bin.frd.gz"},
    {"own_mini_types/facts_2d.json", "own_mini_types/mini_2d.frd.gz"},
    {"own_mini_types/facts_3d.json", "own_mini_types/mini_3d.frd.gz"},
    {"ccx_solid_shell_static/facts.json", "ccx_solid_shell_static/solidshell1.frd.gz"},
    {"ccx_beam_transient/facts.json", "ccx_beam_transient/beamnldyp.frd.gz"},
    {"ccx_beam_harmonic/facts.json", "ccx_beam_harmonic/beamfsh1.frd.gz"},
    {"ccx_furnace_thermal/facts.json", "ccx_furnace_thermal/furnace.frd.gz"},
    {"ccx_contact_large/facts.json", "ccx_contact_large/hueeber1.frd.gz"},
    {"ccx_plastic_steps/facts.json", "ccx_plastic_steps/beampkin.frd.gz"},
    {"ccx_many_components/facts.json", "ccx_many_components/sc123.frd.gz"},
};

std::filesystem::path DataFolder() {
#ifdef ORVIO_SHARED_DATA
  return ORVIO_SHARED_DATA;
#else
  return {};
#endif
}

bool SameBits(float a, float b) { return std::bit_cast<uint32_t>(a) == std::bit_cast<uint32_t>(b); }

/// Sums of float values against sums of the texts they are nearest to.
constexpr double kSumTolerance = 1e-7;

/// Everything in a file, but of the values only those that a probe or a check asks for.
class RealFrdFile : public testing::TestWithParam<RealFile> {
 protected:
  void SetUp() override {
    if (!std::filesystem::exists(DataFolder() / GetParam().file)) GTEST_SKIP() << "the shared results are not here";
    std::ifstream(DataFolder() / GetParam().facts) >> facts_;
  }

  static Reader Open() { return Reader(DataFolder() / GetParam().file); }

  json facts_;
};

TEST_P(RealFrdFile, HasItsHeader) {
  const Header header = Open().ReadHeader();
  EXPECT_EQ(json(header.texts), facts_["header_lines_1U"]);
  json materials = json::object();
  for (const Material& material : header.materials) materials[std::to_string(material.number)] = material.name;
  EXPECT_EQ(materials, facts_["materials_1UMAT"]);
}

void CheckNodeProbe(const Nodes& nodes, const json& probe) {
  const auto found = std::find(nodes.ids.begin(), nodes.ids.end(), probe["id"].get<int32_t>());
  ASSERT_NE(found, nodes.ids.end()) << probe;
  const auto row = static_cast<size_t>(found - nodes.ids.begin());
  for (size_t axis = 0; axis < 3; ++axis) {
    const double expected = probe["xyz"][axis];
    EXPECT_EQ(nodes.precise_coordinates[3 * row + axis], expected) << probe;
    const std::string text = probe.contains("text") ? probe["text"][axis].get<std::string>() : "";
    const float nearest = text.empty() ? static_cast<float>(expected) : std::strtof(text.c_str(), nullptr);
    EXPECT_TRUE(SameBits(nodes.coordinates[3 * row + axis], nearest)) << probe;
  }
}

TEST_P(RealFrdFile, HasItsNodes) {
  Reader reader = Open();
  reader.ReadHeader();
  const Nodes nodes = reader.ReadNodes();
  const json& expected = facts_["nodes"];
  ASSERT_EQ(nodes.ids.size(), expected["count"]);
  ASSERT_EQ(nodes.coordinates.size(), 3 * nodes.ids.size());
  ASSERT_EQ(nodes.precise_coordinates.size(), 3 * nodes.ids.size());
  EXPECT_EQ(nodes.ids.front(), expected["first_id"]);
  EXPECT_EQ(nodes.ids.back(), expected["last_id"]);
  EXPECT_EQ(std::is_sorted(nodes.ids.begin(), nodes.ids.end()), expected["ids_ascending"].get<bool>());
  for (const json& probe : facts_["node_probes"]) CheckNodeProbe(nodes, probe);
  const char* axes[] = {"X", "Y", "Z"};
  for (size_t axis = 0; axis < 3; ++axis) {
    double sum = 0, low = std::numeric_limits<double>::infinity(), high = -low, sum_abs = 0;
    for (size_t i = axis; i < nodes.precise_coordinates.size(); i += 3) {
      const double value = nodes.precise_coordinates[i];
      sum += value;
      sum_abs += std::abs(value);
      low = std::min(low, value);
      high = std::max(high, value);
    }
    EXPECT_EQ(low, expected["coordinates"][axes[axis]]["min"]);
    EXPECT_EQ(high, expected["coordinates"][axes[axis]]["max"]);
    EXPECT_NEAR(sum, expected["coordinates"][axes[axis]]["sum"].get<double>(), 1e-12 * sum_abs);
  }
}

void CheckElementProbe(const Elements& elements, const json& probe) {
  const auto same_id = [&](const Element& element) { return element.id == probe["id"]; };
  const auto found = std::find_if(elements.items.begin(), elements.items.end(), same_id);
  ASSERT_NE(found, elements.items.end()) << probe;
  EXPECT_EQ(found->type, probe["type"]);
  EXPECT_EQ(found->group, probe["group"]);
  EXPECT_EQ(found->material, probe["material"]);
  const auto nodes = elements.NodesOf(static_cast<size_t>(found - elements.items.begin()));
  EXPECT_EQ(std::vector<int32_t>(nodes.begin(), nodes.end()), probe["nodes_in_frd_order"].get<std::vector<int32_t>>());
}

TEST_P(RealFrdFile, HasItsElements) {
  Reader reader = Open();
  reader.ReadHeader();
  reader.ReadNodes();
  const Elements elements = reader.ReadElements();
  const json& expected = facts_["elements"];
  ASSERT_EQ(elements.items.size(), expected["count"]);
  EXPECT_EQ(elements.items.front().id, expected["first_id"]);
  EXPECT_EQ(elements.items.back().id, expected["last_id"]);
  std::map<std::string, int> per_type, per_type_and_material;
  std::set<int32_t> groups;
  for (const Element& element : elements.items) {
    const std::string type = std::to_string(element.type);
    ++per_type[std::string(FindElementType(element.type)->name) + " (type " + type + ")"];
    ++per_type_and_material["type " + type + ", material " + std::to_string(element.material)];
    groups.insert(element.group);
  }
  EXPECT_EQ(json(per_type), expected["per_type"]);
  EXPECT_EQ(json(per_type_and_material), expected["per_type_and_material"]);
  EXPECT_EQ(json(groups), expected["groups"]);
  int64_t sum = 0;
  for (const int32_t node : elements.nodes) sum += node;
  EXPECT_EQ(sum, expected["connectivity_checksum_sum_of_all_node_ids"].get<int64_t>());
  for (const json& probe : facts_["element_probes"]) CheckElementProbe(elements, probe);
}

/// What the file says of a state, in the words of the facts.
json StateOf(const Result& result, size_t index) {
  json state = {{"index", index},
                {"setname", result.set_name},
                {"numstp", result.state_number},
                {"value", result.value},
                {"value_text", result.value_text},
                {"ictype", result.analysis_type},
                {"analys", result.analysis_name},
                {"pstep_increment", result.step.value().increment},
                {"pstep_step", result.step.value().step},
                {"results", json::array()}};
  for (const Parameter& parameter : result.parameters) state["P" + parameter.name] = parameter.text;
  return state;
}

/// Column of a stored component in the values; the number of stored components if there is none of that name.
size_t ColumnOf(const Result& result, const std::string& name) {
  size_t column = 0;
  for (const Component& component : result.components) {
    if (component.stored && component.name == name) return column;
    column += component.stored ? 1 : 0;
  }
  return column;
}

void CheckProbe(const Result& result, const json& probe) {
  const size_t width = result.StoredComponents(), column = ColumnOf(result, probe["component"]);
  ASSERT_LT(column, width) << probe;
  const auto found = std::find(result.ids.begin(), result.ids.end(), probe["node"].get<int32_t>());
  ASSERT_NE(found, result.ids.end()) << probe;
  const float value = result.values[static_cast<size_t>(found - result.ids.begin()) * width + column];
  const float expected = probe.contains("text") ? std::strtof(probe["text"].get<std::string>().c_str(), nullptr)
                                                : static_cast<float>(probe["value"].get<double>());
  EXPECT_TRUE(SameBits(value, expected)) << probe << " is " << value;
}

void CheckArray(const Result& result, const json& check) {
  const size_t width = result.StoredComponents(), column = ColumnOf(result, check["component"]);
  ASSERT_LT(column, width) << check;
  ASSERT_EQ(result.values.size(), width * result.ids.size());
  EXPECT_EQ(result.ids.size(), check["count"]) << check;
  double sum = 0, sum_abs = 0;
  float low = std::numeric_limits<float>::infinity(), high = -low;
  for (size_t i = column; i < result.values.size(); i += width) {
    sum += static_cast<double>(result.values[i]);
    sum_abs += std::abs(static_cast<double>(result.values[i]));
    low = std::min(low, result.values[i]);
    high = std::max(high, result.values[i]);
  }
  EXPECT_EQ(low, static_cast<float>(check["min"].get<double>())) << check;
  EXPECT_EQ(high, static_cast<float>(check["max"].get<double>())) << check;
  const double scale = check["sum_abs"];
  EXPECT_NEAR(sum, check["sum"].get<double>(), kSumTolerance * scale) << check;
  EXPECT_NEAR(sum_abs, scale, kSumTolerance * scale) << check;
}

TEST_P(RealFrdFile, HasItsStatesAndValues) {
  Reader reader = Open();
  reader.ReadHeader();
  reader.ReadNodes();
  reader.ReadElements();
  json states = json::array();
  size_t blocks = 0, looked_at = 0;
  for (Result result; reader.NextResult(result); ++blocks) {
    EXPECT_EQ(result.step.value().block, static_cast<int32_t>(blocks + 1));
    if (states.empty() || states.back()["setname"] != result.set_name) states.push_back(StateOf(result, states.size()));
    states.back()["results"].push_back(result.name);
    const auto asks_for_this = [&](const json& row) {
      return row["result"] == result.name && row["state"] == states.size() - 1;
    };
    for (const json& probe : facts_["probes"])
      if (asks_for_this(probe)) CheckProbe(result, probe), ++looked_at;
    for (const json& check : facts_["checks"])
      if (asks_for_this(check)) CheckArray(result, check), ++looked_at;
  }
  EXPECT_TRUE(reader.complete());
  EXPECT_EQ(states, facts_["states"]);
  EXPECT_EQ(blocks, facts_["n_result_blocks"]);
  EXPECT_EQ(looked_at, facts_["probes"].size() + facts_["checks"].size());
}

TEST_P(RealFrdFile, HasItsComponentsAndNodesPerBlock) {
  Reader reader = Open();
  reader.ReadHeader();
  reader.ReadNodes();
  reader.ReadElements();
  std::set<std::string> seen;
  for (Result result; reader.NextResult(result);) {
    const json& expected = facts_["results_all_nodal"][result.name];
    json stored = json::array(), derived = json::array(), types = json::array();
    for (const Component& component : result.components) {
      (component.stored ? stored : derived).push_back(component.name);
      types.push_back(component.type);
    }
    EXPECT_EQ(stored, expected["components"]);
    EXPECT_EQ(derived, expected["derived_not_stored"]);
    EXPECT_EQ(types, expected["component_ictype"]);
    EXPECT_EQ(result.components.size(), expected["header_ncomps"]);
    EXPECT_NE(std::find(expected["nodes_per_block"].begin(), expected["nodes_per_block"].end(), result.ids.size()),
              expected["nodes_per_block"].end());
    EXPECT_EQ(result.ids.front(), expected["first_node"]);
    EXPECT_EQ(result.ids.back(), expected["last_node"]);
    seen.insert(result.name);
  }
  EXPECT_EQ(seen.size(), facts_["results_all_nodal"].size());
}

std::string TestName(const testing::TestParamInfo<RealFile>& info) {
  return std::filesystem::path(info.param.file).stem().stem().string();
}

INSTANTIATE_TEST_SUITE_P(Solver, RealFrdFile, testing::ValuesIn(kRealFiles), TestName);

}  // namespace
