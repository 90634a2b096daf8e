// Whole results of a solver, imported, against what an independent reader found in them (facts.json beside each): all
// ids, types, times and chosen values, read back through the library and through HDF5 alone. How an imported file is
// laid out is tested in import_layout_test, what becomes of unusual results in import_states_test.

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdlib>
#include <fstream>
#include <limits>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "program/filer_imported_file.h"
#include "program/imported_file.h"
#include "program/run_program.h"

namespace {

using namespace orv_test;
using nlohmann::json;

/// Who looks at a file.
enum class Eye { kLibrary, kHdf5, kFilerByName, kFilerByHandle };

std::unique_ptr<ImportedFile> OpenImported(Eye eye, const std::string& path) {
  switch (eye) {
    case Eye::kHdf5:
      return std::make_unique<RawImportedFile>(path);
    case Eye::kLibrary:
      return std::make_unique<LibraryImportedFile>(path);
    default:
      return std::make_unique<FilerImportedFile>(path, eye == Eye::kFilerByHandle);
  }
}

struct SolverResult {
  const char* file;
  const char* facts;

  friend std::ostream& operator<<(std::ostream& out, const SolverResult& result) { return out << result.file; }
};
constexpr SolverResult kResults[] = {
    {"own_plate_impact/plate_impact.frd.gz", "own_plate_impact/facts.json"},
    {"own_bracket_modes/bracket_modes.frd.gz", "own_bracket_modes/facts.json"},
    {"own_bracket_modes/bracket_modes_bin.frd.gz", "own_bracket_modes/facts_bin.json"},
    {"own_mini_types/mini_2d.frd.gz", "own_mini_types/facts_2d.json"},
    {"own_mini_types/mini_3d.frd.gz", "own_mini_types/facts_3d.json"},
    {"ccx_solid_shell_static/solidshell1.frd.gz", "ccx_solid_shell_static/facts.json"},
    {"ccx_beam_transient/beamnldyp.frd.gz", "ccx_beam_transient/facts.json"},
    {"ccx_beam_harmonic/beamfsh1.frd.gz", "ccx_beam_harmonic/facts.json"},
    {"ccx_furnace_thermal/furnace.frd.gz", "ccx_furnace_thermal/facts.json"},
    {"ccx_contact_large/hueeber1.frd.gz", "ccx_contact_large/facts.json"},
    {"ccx_plastic_steps/beampkin.frd.gz", "ccx_plastic_steps/facts.json"},
    {"ccx_many_components/sc123.frd.gz", "ccx_many_components/facts.json"},
};

/// Element types of the solver and what they are called in a result file.
struct TypeName {
  int type;
  const char* short_name;
  const char* name;
  int dimension, nodes;
};
constexpr TypeName kTypes[] = {
    {1, "HE8", "HEXA8", 3, 8},    {2, "PE6", "PENTA6", 3, 6},    {3, "TE4", "TETRA4", 3, 4},
    {4, "HE20", "HEXA20", 3, 20}, {5, "PE15", "PENTA15", 3, 15}, {6, "TE10", "TETRA10", 3, 10},
    {7, "TR3", "TRIA3", 2, 3},    {8, "TR6", "TRIA6", 2, 6},     {9, "QU4", "QUAD4", 2, 4},
    {10, "QU8", "QUAD8", 2, 8},   {11, "BE2", "LINE2", 1, 2},    {12, "BE3", "LINE3", 1, 3},
};

/// Results of the solver, what their variables are called, and what these are.
struct VariableName {
  const char* result;
  const char* imaginary;  ///< name of the imaginary part, where there is one
  const char* name;
  const char* class_word;
  int rank;
};
constexpr VariableName kVariables[] = {
    {"DISP", "DISPI", "Translational_Displacement", "CLASS_LENGTH", 1},
    {"STRESS", "STRESSI", "STRESS", "CLASS_STRESS", 2},
    {"TOSTRAIN", "", "TOSTRAIN", "CLASS_STRAIN", 2},
    {"ERROR", "ERRORI", "ERROR", "", 0},
    {"VELO", "", "VELO", "", 1},
    {"FORC", "", "FORC", "", 1},
    {"PE", "", "PE", "", 0},
    {"NDTEMP", "", "NDTEMP", "", 0},
    {"FLUX", "", "FLUX", "", 1},
    {"RFL", "", "RFL", "", 0},
    {"CONTACT", "", "CONTACT", "", 0},
    {"SDV", "", "SDV", "", 0},
    {"PDISP", "", "PDISP", "", 0},
    {"PSTRESS", "", "PSTRESS", "", 0},
};

/// Where a result of the solver at a state has gone.
struct Place {
  const VariableName* row = nullptr;
  std::string name;
  bool is_complex = false, is_imaginary = false;
};

bool Contains(const json& list, const std::string& name) {
  return std::find(list.begin(), list.end(), name) != list.end();
}

Place PlaceOf(const std::string& result, const json& results_of_state) {
  for (const VariableName& row : kVariables) {
    if (result != row.result && result != row.imaginary) continue;
    const bool is_complex = *row.imaginary && Contains(results_of_state, row.imaginary);
    return {&row, (is_complex ? "Complex_" : "") + std::string(row.name), is_complex, result == row.imaginary};
  }
  throw std::runtime_error("this test does not know the result " + result);
}

const TypeName& TypeOf(int type) {
  return *std::find_if(std::begin(kTypes), std::end(kTypes), [type](const TypeName& row) { return row.type == type; });
}

bool SameBits(double a, double b) { return std::bit_cast<std::uint64_t>(a) == std::bit_cast<std::uint64_t>(b); }

/// The float that is nearest to a fact, by its text where it has one.
double Nearest(const json& value, const json* text) {
  if (text) return static_cast<double>(std::strtof(text->get<std::string>().c_str(), nullptr));
  return static_cast<double>(static_cast<float>(value.get<double>()));
}

struct Summary {
  double sum = 0, sum_abs = 0;
  double low = std::numeric_limits<double>::infinity(), high = -low;
};

Summary SummaryOf(const std::vector<double>& values, std::size_t first, std::size_t step) {
  Summary summary;
  for (std::size_t i = first; i < values.size(); i += step) {
    summary.sum += values[i];
    summary.sum_abs += std::abs(values[i]);
    summary.low = std::min(summary.low, values[i]);
    summary.high = std::max(summary.high, values[i]);
  }
  return summary;
}

/// Sums of floats against sums of the texts they are nearest to.
constexpr double kSumTolerance = 1e-7;

class ImportFacts : public ProgramTest, public testing::WithParamInterface<std::tuple<SolverResult, Eye>> {
 protected:
  void SetUp() override {
    const std::string folder = ORVIO_SHARED_DATA;
    const auto& [result, eye] = GetParam();
    if (!std::filesystem::exists(folder + "/" + result.file)) GTEST_SKIP() << "the solver's results are not here";
    std::ifstream(folder + "/" + result.facts) >> facts_;
    imported_ = OpenImported(eye, Import(folder + "/" + result.file));
  }

  void TearDown() override { imported_.reset(); }

  const NodalResult& Result(int state, const std::string& name) {
    if (state != state_) results_.clear();
    state_ = state;
    if (!results_.contains(name)) results_[name] = imported_->Result(state, name);
    return results_[name];
  }

  void CheckCoordinates();
  void CheckElements();
  void CheckVariables();
  void CheckStates();
  void CheckBlock(const json& state, const std::string& result);
  void CheckProbe(const json& probe);
  void CheckArray(const json& check);

  json facts_;
  std::unique_ptr<ImportedFile> imported_;
  std::vector<std::int64_t> mesh_ids_;

 private:
  int state_ = -1;
  std::map<std::string, NodalResult> results_;  ///< of that state
};

void ImportFacts::CheckCoordinates() {
  EXPECT_EQ(imported_->ResultNames(0), std::vector<std::string>{"COORDINATE"});
  const NodalResult result = imported_->Result(0, "COORDINATE");
  const json& nodes = facts_["nodes"];
  mesh_ids_ = result.ids;
  ASSERT_EQ(result.ids.size(), nodes["count"]);
  ASSERT_EQ(result.components, 3);
  EXPECT_FALSE(result.is_complex);
  EXPECT_EQ(result.ids.front(), nodes["first_id"]);
  EXPECT_EQ(result.ids.back(), nodes["last_id"]);
  EXPECT_EQ(*std::min_element(result.ids.begin(), result.ids.end()), nodes["min_id"]);
  EXPECT_EQ(*std::max_element(result.ids.begin(), result.ids.end()), nodes["max_id"]);
  EXPECT_EQ(std::is_sorted(result.ids.begin(), result.ids.end()), nodes["ids_ascending"].get<bool>());
  // Binary files hold doubles, texts have fewer digits than a float.
  const bool is_binary = facts_["format"].get<std::string>().find("binary") != std::string::npos;
  EXPECT_EQ(result.is_double, is_binary);
  for (const json& probe : facts_["node_probes"]) {
    const auto found = std::find(result.ids.begin(), result.ids.end(), probe["id"].get<std::int64_t>());
    ASSERT_NE(found, result.ids.end()) << probe;
    const auto row = static_cast<std::size_t>(found - result.ids.begin());
    for (std::size_t axis = 0; axis < 3; ++axis) {
      const json* text = probe.contains("text") ? &probe["text"][axis] : nullptr;
      const double expected = is_binary ? probe["xyz"][axis].get<double>() : Nearest(probe["xyz"][axis], text);
      EXPECT_TRUE(SameBits(result.values[3 * row + axis], expected)) << probe;
    }
  }
  const char* axes[] = {"X", "Y", "Z"};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const json& expected = nodes["coordinates"][axes[axis]];
    const Summary summary = SummaryOf(result.values, axis, 3);
    const auto stored = [is_binary](const json& value) {
      return is_binary ? value.get<double>() : Nearest(value, nullptr);
    };
    EXPECT_EQ(summary.low, stored(expected["min"]));
    EXPECT_EQ(summary.high, stored(expected["max"]));
    EXPECT_NEAR(summary.sum, expected["sum"].get<double>(), kSumTolerance * summary.sum_abs);
  }
}

void ImportFacts::CheckElements() {
  std::map<std::string, std::size_t> per_type, per_type_and_part;
  std::set<std::int64_t> ids;
  std::map<std::pair<std::string, std::int64_t>, std::pair<std::int64_t, std::vector<std::int64_t>>> rows;
  std::int64_t checksum = 0;
  for (const ElementsOfType& elements : imported_->Elements()) {
    const auto* type = std::find_if(std::begin(kTypes), std::end(kTypes),
                                    [&](const TypeName& row) { return row.name == elements.type; });
    ASSERT_NE(type, std::end(kTypes)) << elements.type;
    EXPECT_EQ(elements.dimension, type->dimension) << elements.type;
    ASSERT_EQ(elements.nodes_per_element, type->nodes) << elements.type;
    EXPECT_EQ(elements.part_type, "PART");
    EXPECT_EQ(elements.node_type, "NODE");
    ASSERT_EQ(elements.parts.size(), elements.ids.size());
    ASSERT_EQ(elements.nodes.size(), elements.ids.size() * static_cast<std::size_t>(type->nodes));
    const std::string number = "type " + std::to_string(type->type);
    per_type[type->short_name + std::string(" (") + number + ")"] = elements.ids.size();
    ids.insert(elements.ids.begin(), elements.ids.end());
    for (std::size_t i = 0; i < elements.ids.size(); ++i) {
      ++per_type_and_part[number + ", material " + std::to_string(elements.parts[i])];
      const auto first = elements.nodes.begin() + static_cast<std::ptrdiff_t>(i) * type->nodes;
      rows[{elements.type, elements.ids[i]}] = {elements.parts[i], {first, first + type->nodes}};
    }
    for (const std::int64_t node : elements.nodes) checksum += node;
  }
  const json& expected = facts_["elements"];
  EXPECT_EQ(json(per_type), expected["per_type"]);
  EXPECT_EQ(json(per_type_and_part), expected["per_type_and_material"]);
  ASSERT_EQ(ids.size(), expected["count"]);
  EXPECT_EQ(*ids.begin(), expected["min_id"]);
  EXPECT_EQ(*ids.rbegin(), expected["max_id"]);
  EXPECT_EQ(checksum, expected["connectivity_checksum_sum_of_all_node_ids"].get<std::int64_t>());
  for (const json& probe : facts_["element_probes"]) {
    const auto row = rows.find({TypeOf(probe["type"]).name, probe["id"].get<std::int64_t>()});
    ASSERT_NE(row, rows.end()) << probe;
    EXPECT_EQ(row->second.first, probe["material"]) << probe;
    EXPECT_EQ(json(row->second.second), probe["nodes_in_frd_order"]) << probe;
  }
}

void ImportFacts::CheckVariables() {
  std::map<std::string, const VariableName*> expected;
  for (const json& state : facts_["states"]) {
    for (const std::string result : state["results"]) {
      const Place place = PlaceOf(result, state["results"]);
      expected[place.name] = place.row;
    }
  }
  const std::vector<VariableDefinition> variables = imported_->Variables();
  ASSERT_EQ(variables.size(), expected.size() + 1);
  for (const VariableDefinition& variable : variables) {
    SCOPED_TRACE(variable.name);
    if (variable.name == "COORDINATE") {
      EXPECT_EQ(variable.components, (std::vector<std::string>{"X", "Y", "Z"}));
      EXPECT_EQ(variable.class_word, "CLASS_LENGTH");
      EXPECT_EQ(variable.rank, 1);
      continue;
    }
    ASSERT_TRUE(expected.contains(variable.name));
    const VariableName& row = *expected[variable.name];
    EXPECT_EQ(json(variable.components), facts_["results_all_nodal"][row.result]["components"]);
    EXPECT_EQ(variable.class_word, row.class_word);
    EXPECT_EQ(variable.rank, row.rank);
    EXPECT_EQ(variable.tensor, row.rank > 0 ? 1 : 0);
  }
}

/// The block of one result at one state: its nodes, its kind and where it stands in the analysis.
void ImportFacts::CheckBlock(const json& state, const std::string& result) {
  const int number = state["index"].get<int>() + 1;
  const Place place = PlaceOf(result, state["results"]);
  SCOPED_TRACE(place.name + " of state " + std::to_string(number));
  const NodalResult& block = Result(number, place.name);
  const json& expected = facts_["results_all_nodal"][result];
  EXPECT_EQ(block.is_complex, place.is_complex);
  EXPECT_FALSE(block.is_double);
  EXPECT_EQ(block.components, expected["components"].size());
  const json& counts = expected["nodes_per_block"];
  EXPECT_NE(std::find(counts.begin(), counts.end(), block.ids.size()), counts.end()) << block.ids.size();
  EXPECT_EQ(block.ids.front(), expected["first_node"]);
  EXPECT_EQ(block.ids.back(), expected["last_node"]);
  const bool like_mesh = expected["node_order_same_as_mesh"] && expected["mesh_nodes_without_value"] == 0;
  if (like_mesh) {
    EXPECT_EQ(block.ids, mesh_ids_);
  }
  ASSERT_EQ(block.index.size(), 2U);
  EXPECT_TRUE(SameBits(block.index[0], std::strtod(state["value_text"].get<std::string>().c_str(), nullptr)));
  EXPECT_EQ(block.index[1], state["pstep_step"]);
  EXPECT_EQ(block.index_identifiers, (std::vector<std::int64_t>{number, number}));
}

void ImportFacts::CheckStates() {
  ASSERT_EQ(imported_->States(), facts_["n_states"]);
  for (const json& state : facts_["states"]) {
    std::set<std::string> expected;
    for (const std::string result : state["results"]) expected.insert(PlaceOf(result, state["results"]).name);
    const std::vector<std::string> names = imported_->ResultNames(state["index"].get<int>() + 1);
    EXPECT_EQ(std::set<std::string>(names.begin(), names.end()), expected);
    EXPECT_EQ(names.size(), expected.size());
    for (const std::string result : state["results"]) CheckBlock(state, result);
  }
}

/// Where the values of a component of a result stand in a row.
std::size_t ColumnOf(const json& components, const std::string& component, const Place& place) {
  const auto found = std::find(components.begin(), components.end(), component);
  const auto column = static_cast<std::size_t>(found - components.begin());
  return place.is_complex ? 2 * column + (place.is_imaginary ? 1 : 0) : column;
}

std::size_t WidthOf(const NodalResult& block) {
  return static_cast<std::size_t>(block.components) * (block.is_complex ? 2 : 1);
}

void ImportFacts::CheckProbe(const json& probe) {
  SCOPED_TRACE(probe);
  const int state = probe["state"].get<int>();
  const Place place = PlaceOf(probe["result"], facts_["states"][static_cast<std::size_t>(state)]["results"]);
  const NodalResult& block = Result(state + 1, place.name);
  const json& components = facts_["results_all_nodal"][probe["result"].get<std::string>()]["components"];
  ASSERT_TRUE(Contains(components, probe["component"]));
  const auto found = std::find(block.ids.begin(), block.ids.end(), probe["node"].get<std::int64_t>());
  ASSERT_NE(found, block.ids.end());
  const auto row = static_cast<std::size_t>(found - block.ids.begin());
  const double value = block.values[row * WidthOf(block) + ColumnOf(components, probe["component"], place)];
  EXPECT_TRUE(SameBits(value, Nearest(probe["value"], probe.contains("text") ? &probe["text"] : nullptr))) << value;
}

void ImportFacts::CheckArray(const json& check) {
  SCOPED_TRACE(check);
  const int state = check["state"].get<int>();
  const Place place = PlaceOf(check["result"], facts_["states"][static_cast<std::size_t>(state)]["results"]);
  const NodalResult& block = Result(state + 1, place.name);
  const json& components = facts_["results_all_nodal"][check["result"].get<std::string>()]["components"];
  ASSERT_TRUE(Contains(components, check["component"]));
  EXPECT_EQ(block.ids.size(), check["count"]);
  const Summary summary = SummaryOf(block.values, ColumnOf(components, check["component"], place), WidthOf(block));
  EXPECT_EQ(summary.low, Nearest(check["min"], nullptr));
  EXPECT_EQ(summary.high, Nearest(check["max"], nullptr));
  const double scale = check["sum_abs"];
  EXPECT_NEAR(summary.sum, check["sum"].get<double>(), kSumTolerance * scale);
  EXPECT_NEAR(summary.sum_abs, scale, kSumTolerance * scale);
}

TEST_P(ImportFacts, ComeBackFromTheImportedFile) {
  CheckCoordinates();
  CheckElements();
  CheckVariables();
  CheckStates();
  ASSERT_FALSE(facts_["probes"].empty());
  ASSERT_FALSE(facts_["checks"].empty());
  for (const json& probe : facts_["probes"]) CheckProbe(probe);
  for (const json& check : facts_["checks"]) CheckArray(check);
}

std::string TestName(const testing::TestParamInfo<ImportFacts::ParamType>& info) {
  const auto& [result, eye] = info.param;
  const std::string name = std::filesystem::path(result.file).stem().stem();
  const char* const eyes[] = {"_by_the_library", "_by_hdf5", "_by_a_filer_and_names", "_by_a_filer_and_handles"};
  return name + eyes[static_cast<int>(eye)];
}

INSTANTIATE_TEST_SUITE_P(Solver, ImportFacts,
                         testing::Combine(testing::ValuesIn(kResults),
                                          testing::Values(Eye::kLibrary, Eye::kHdf5, Eye::kFilerByName,
                                                          Eye::kFilerByHandle)),
                         TestName);

}  // namespace
