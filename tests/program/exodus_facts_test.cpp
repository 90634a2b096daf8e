// Whole Exodus results of a solver, imported, against what an independent reader found in them (facts.json beside each).
// Read back as a post-processor does: through a filer, its lists and its fetches. How an imported file is laid out is
// tested in exodus_import_test.

#include <gmock/gmock.h>

#include <cmath>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <numeric>
#include <tuple>

#include "program/imported_file.h"
#include "program/run_program.h"
#include "support/messages.h"

namespace {

using namespace orv_test;
using nlohmann::json;

struct ExodusResult {
  const char* file;
  const char* facts;
  std::size_t blocks_of_hexa;  ///< more than one: their types bear the ids of the blocks

  friend std::ostream& operator<<(std::ostream& out, const ExodusResult& result) { return out << result.file; }
};
constexpr ExodusResult kResults[] = {
    {"exo_block_crush/block_crush_1.ex2", "exo_block_crush/facts.json", 2},
    {"exo_five_blocks/exomerge_unit_test.e", "exo_five_blocks/facts.json", 5},
};

/// What the variables of the solver belong to. Variables that are not here keep their names and stand alone.
struct Joined {
  const char* front;
  const char* quantity;
  std::vector<std::string> ends;
};
const std::vector<std::string> kAxes = {"x", "y", "z"}, kTensor = {"xx", "yy", "zz", "xy", "yz", "zx"};
const Joined kJoined[] = {
    {"displ_", "Translational_Displacement", kAxes},
    {"disp_", "Translational_Displacement", kAxes},
    {"vel_", "vel", kAxes},
    {"cdirnor_", "cdirnor", kAxes},
    {"cdirtan_", "cdirtan", kAxes},
    {"residual_", "residual", kAxes},
    {"stress_", "stress", kTensor},
    {"unrotated_stress_", "unrotated_stress", kTensor},
};

/// Where a variable of the solver has gone.
struct Address {
  std::string quantity;
  std::size_t component = 0;
  int layer = 0;
};

Address AddressOf(std::string variable) {
  Address address;
  const std::size_t bar = variable.size() - 2;
  const bool has_point = variable.size() > 2 && variable[bar] == '_' && variable[bar + 1] >= '1' &&
                         variable[bar + 1] <= '9';  // no result here has more than nine
  if (has_point) {
    address.layer = variable[bar + 1] - '1';
    variable.resize(bar);
  }
  address.quantity = variable;
  for (const Joined& joined : kJoined) {
    for (std::size_t i = 0; i < joined.ends.size(); ++i) {
      if (variable == joined.front + joined.ends[i]) return {joined.quantity, i, address.layer};
    }
  }
  return address;
}

/// Values of a layer of a block.
struct Fetched {
  std::vector<int> ids;
  std::vector<double> values;
  std::size_t components = 0;
};

constexpr double kSumTolerance = 1e-12;  // the file holds the same doubles

class ExodusFacts : public ProgramTest, public testing::WithParamInterface<ExodusResult> {
 protected:
  void SetUp() override {
    const std::string folder = ORVIO_SHARED_DATA;
    if (!std::filesystem::exists(folder + "/" + GetParam().file)) GTEST_SKIP() << "the solver's results are not here";
    std::ifstream(folder + "/" + GetParam().facts) >> facts_;
    path_ = Import(folder + "/" + GetParam().file);
    filer_ = std::make_unique<ORVFiler>(path_.c_str());
    const Messages messages;
    int next_id = 1;
    ASSERT_EQ(filer_->InitReader(next_id), 0);
    EXPECT_TRUE(messages.all().empty());
  }

  std::string TypeOf(const json& block) const {
    if (block["elem_type"] == "sphere") return "POINT1";
    return GetParam().blocks_of_hexa == 1 ? "HEXA8" : "HEXA8_" + std::to_string(block["id"].get<int>());
  }

  std::string TypeOfId(int id) const {
    for (const json& block : facts_["element_blocks"])
      if (block["id"] == id) return TypeOf(block);
    throw std::runtime_error("no block of that id");
  }

  /// `zone` 0: no zone.
  ORVResult* BlockOf(const std::string& type, const std::string& quantity, int zone) {
    ORVResult* found = nullptr;
    int count = 0;
    for (ORVResult* result : filer_->GetResultList(1)) {
      if (result->m_etyp != type || result->m_etypvar != quantity || result->m_zoneid != zone) continue;
      found = result;
      ++count;
    }
    EXPECT_EQ(count, 1) << quantity << " of " << type << ", zone " << zone;
    return found;
  }

  /// By state from 1; 0 for what is constant.
  const Fetched& Fetch(int state, const std::string& type, const Address& address, int zone = 0) {
    auto& fetched = fetched_[{state, type, address.quantity, zone, address.layer}];
    if (!fetched.ids.empty()) return fetched;
    ORVResult* block = BlockOf(type, address.quantity, zone);
    if (!block) return fetched;
    std::vector<ORVResult*> blocks = {block};
    EXPECT_TRUE(filer_->IsResultValueInDoublePrecision(blocks, state));
    ORVResultValuesBase<double, int> values;
    values.m_state = state;
    values.m_layer = address.layer;
    values.m_wantIds = 1;
    EXPECT_EQ(filer_->GetValues(values, blocks, -1, -1, address.quantity.c_str()), 0) << address.quantity;
    fetched.ids.assign(values.m_ids, values.m_ids + values.m_idCount);
    fetched.values.assign(values.m_values, values.m_values + values.m_valueCount);
    fetched.components = static_cast<std::size_t>(block->m_ncoo);
    EXPECT_EQ(fetched.values.size(), fetched.ids.size() * fetched.components);
    values.DeleteAllocation(true);
    return fetched;
  }

  static std::vector<double> Column(const Fetched& fetched, std::size_t component) {
    std::vector<double> column;
    for (std::size_t i = component; i < fetched.values.size(); i += fetched.components) {
      column.push_back(fetched.values[i]);
    }
    return column;
  }

  void CheckCoordinates();
  void CheckElements();
  void CheckParts();
  void CheckSets();
  void CheckStates();
  void CheckLayers();
  void CheckProbe(const json& probe);
  void CheckArray(const json& check);
  void CheckSetsOf(ORVCollector& sets, const char* kind);
  void CheckNamesOf(ORVEntAttribute& names, const char* kind);

  json facts_;
  std::string path_;
  std::unique_ptr<ORVFiler> filer_;
  std::map<std::tuple<int, std::string, std::string, int, int>, Fetched> fetched_;
};

void CheckColumn(const std::vector<double>& column, const json& expected) {
  EXPECT_EQ(*std::min_element(column.begin(), column.end()), expected["min"]);
  EXPECT_EQ(*std::max_element(column.begin(), column.end()), expected["max"]);
  const double scale =
      std::accumulate(column.begin(), column.end(), 0.0, [](double sum, double v) { return sum + std::abs(v); });
  const double sum = std::accumulate(column.begin(), column.end(), 0.0);
  EXPECT_NEAR(sum, expected["sum"].get<double>(), kSumTolerance * scale);
  if (expected.contains("sum_abs")) {
    EXPECT_NEAR(scale, expected["sum_abs"].get<double>(), kSumTolerance * scale);
  }
}

void ExodusFacts::CheckCoordinates() {
  const Fetched& nodes = Fetch(0, "NODE", {"COORDINATE", 0, 0});
  ASSERT_EQ(nodes.ids.size(), facts_["nodes"]["count"]);
  EXPECT_EQ(nodes.ids.front(), facts_["nodes"]["id_map_min"]);
  EXPECT_EQ(nodes.ids.back(), facts_["nodes"]["id_map_max"]);
  const char* axes[] = {"X", "Y", "Z"};
  for (std::size_t axis = 0; axis < 3; ++axis) {
    CheckColumn(Column(nodes, axis), facts_["nodes"]["coordinates"][axes[axis]]);
  }
  for (const json& probe : facts_["node_probes"]) {
    const std::size_t row = probe["index0"];
    EXPECT_EQ(nodes.ids.at(row), probe["id"]);
    for (std::size_t axis = 0; axis < 3; ++axis) EXPECT_EQ(nodes.values.at(3 * row + axis), probe["xyz"][axis]);
  }
}

void ExodusFacts::CheckElements() {
  std::map<std::string, ElementsOfType> by_type;
  for (ElementsOfType& elements : LibraryImportedFile(path_).Elements()) by_type[elements.type] = elements;
  ASSERT_EQ(by_type.size(), facts_["element_blocks"].size());
  for (const json& block : facts_["element_blocks"]) {
    const ElementsOfType& elements = by_type[TypeOf(block)];
    SCOPED_TRACE(block["name"]);
    EXPECT_EQ(elements.ids.size(), block["elements"]);
    EXPECT_EQ(elements.nodes_per_element, block["nodes_per_element"]);
    EXPECT_EQ(elements.ids.front(), block["first_element_id"]);
    EXPECT_EQ(elements.ids.back(), block["last_element_id"]);
    EXPECT_EQ(elements.dimension, block["elem_type"] == "sphere" ? 0 : 3);
    const json& first = block["connect_first (1-based node indices)"];
    const auto end = elements.nodes.begin() + static_cast<std::ptrdiff_t>(first.size());
    EXPECT_EQ(json(std::vector<std::int64_t>(elements.nodes.begin(), end)), first);
    EXPECT_EQ(std::accumulate(elements.nodes.begin(), elements.nodes.end(), std::int64_t{0}), block["connect_sum"]);
    EXPECT_THAT(elements.parts, testing::Each(block["id"].get<std::int64_t>()));
  }
}

void ExodusFacts::CheckParts() {
  std::vector<int> ids, expected_ids;
  std::vector<std::string> names, expected_names;
  EXPECT_EQ(filer_->GetPartIdsAndNames("PART", ids, names, 0), facts_["element_blocks"].size());
  for (const json& block : facts_["element_blocks"]) {
    expected_ids.push_back(block["id"]);
    expected_names.push_back(block["name"]);
  }
  EXPECT_EQ(ids, expected_ids);
  EXPECT_EQ(names, expected_names);
}

/// The counts of the facts are of one list of members; sets of sides have two.
void ExodusFacts::CheckSetsOf(ORVCollector& sets, const char* kind) {
  const auto* const ids = static_cast<const int*>(sets.m_idcoll);
  const auto* const counts = static_cast<const int*>(sets.m_nent);
  const int* members = static_cast<const int*>(sets.m_entid);
  const bool has_sides = sets.m_ntyp == 2;
  std::int64_t place = 0;
  for (const json& fact : facts_["sets"]) {
    if (fact["kind"] != kind) continue;
    SCOPED_TRACE(fact["name"]);
    ASSERT_LT(place, sets.m_ncoll);
    EXPECT_EQ(ids[place], fact["id"]);
    const int count = counts[place * sets.m_ntyp];
    EXPECT_EQ(count, fact["count"]);
    EXPECT_EQ(members[0], fact["first"]);
    EXPECT_EQ(std::accumulate(members, members + count, std::int64_t{0}), fact["sum"]);
    members += count;
    if (has_sides) {
      EXPECT_EQ(counts[place * 2 + 1], count);
      EXPECT_EQ(std::accumulate(members, members + count, std::int64_t{0}), fact["side_sum"]);
      members += count;
    }
    ++place;
  }
  EXPECT_EQ(place, sets.m_ncoll);
  EXPECT_EQ(members - static_cast<const int*>(sets.m_entid), sets.m_nenttot);
}

void ExodusFacts::CheckNamesOf(ORVEntAttribute& names, const char* kind) {
  std::int64_t place = 0;
  for (const json& fact : facts_["sets"]) {
    if (fact["kind"] != kind) continue;
    ASSERT_LT(place, names.m_nent);
    EXPECT_EQ(static_cast<const int*>(names.m_entid)[place], fact["id"]);
    const char* slot = names.m_title + place * names.m_length;
    EXPECT_EQ(WithoutBlanks(std::string(slot, strnlen(slot, static_cast<std::size_t>(names.m_length)))), fact["name"]);
    ++place;
  }
  EXPECT_EQ(place, names.m_nent);
}

void ExodusFacts::CheckSets() {
  const std::map<std::string, const char*> kinds = {{"NODE_SET", "node set"}, {"SIDE_SET", "side set"}};
  std::vector<ORVCollector*> sets;
  filer_->GetCollector(0, 3, sets);
  EXPECT_EQ(sets.size(), 2U);
  for (ORVCollector* block : sets) CheckSetsOf(*block, kinds.at(block->m_etypcoll));
  filer_->DeleteCollector(sets);
  std::vector<ORVEntAttribute*> names;
  filer_->GetEntityAttributes(0, 3, names);
  EXPECT_EQ(names.size(), 2U);
  for (ORVEntAttribute* block : names) {
    CheckNamesOf(*block, kinds.at(block->m_etyp));
    filer_->CleanUpEntAttribute(block);
    delete block;
  }
}

void ExodusFacts::CheckStates() {
  const auto* index = filer_->GetStateIndexDP(false);
  ASSERT_NE(index, nullptr);
  ASSERT_EQ(index->GetNumState(), facts_["n_states"]);
  ASSERT_EQ(index->GetNumIndex(), 2);
  for (std::size_t state = 0; state < facts_["times"].size(); ++state) {
    EXPECT_EQ(index->GetIndexVals()[2 * state], facts_["times"][state]);
    EXPECT_EQ(index->GetIndexVals()[2 * state + 1], static_cast<double>(state + 1));
  }
}

/// Each block has as many layers of a quantity as its variables have points, and no quantity that it has no variable of.
void ExodusFacts::CheckLayers() {
  const json& all = facts_["results"]["element_variables"];
  std::size_t count = 0;
  for (const json& block : facts_["element_blocks"]) {
    std::map<std::string, int> layers;
    for (const std::string variable : block["elem_vars"] == "all" ? all : block["elem_vars"]) {
      const Address address = AddressOf(variable);
      layers[address.quantity] = std::max(layers[address.quantity], address.layer + 1);
    }
    for (const auto& [quantity, expected] : layers) {
      const ORVResult* result = BlockOf(TypeOf(block), quantity, 0);
      ASSERT_NE(result, nullptr);
      EXPECT_EQ(result->m_numl, expected) << quantity << " of " << result->m_etyp;
      EXPECT_TRUE(result->IsElementResult());
    }
    count += layers.size();
  }
  const auto& list = filer_->GetResultList(1);
  EXPECT_EQ(std::count_if(list.begin(), list.end(), [](const ORVResult* r) { return r->IsElementResult(); }),
            static_cast<std::ptrdiff_t>(count));
}

void ExodusFacts::CheckProbe(const json& probe) {
  SCOPED_TRACE(probe);
  if (probe["where"] == "global") return;
  const bool is_node = probe["where"] == "node";
  const Address address = AddressOf(probe["result"]);
  const Fetched& fetched =
      Fetch(probe["state"].get<int>() + 1, is_node ? "NODE" : TypeOfId(probe["block_id"]), address);
  const std::size_t row = probe[is_node ? "node_index0" : "index_in_block0"];
  ASSERT_LT(row, fetched.ids.size());
  EXPECT_EQ(fetched.ids[row], probe[is_node ? "node_id" : "element_id"]);
  EXPECT_EQ(fetched.values[row * fetched.components + address.component], probe["value"]);
}

void ExodusFacts::CheckArray(const json& check) {
  SCOPED_TRACE(check);
  const std::string where = check["where"];
  const std::string block = "element block ", set = "node set ";
  std::string type = "NODE";
  int zone = 0;
  if (where.starts_with(block)) type = TypeOfId(std::stoi(where.substr(block.size())));
  if (where.starts_with(set)) zone = std::stoi(where.substr(set.size()));
  ASSERT_TRUE(where == "node" || where.starts_with(block) || where.starts_with(set));
  const Address address = AddressOf(check["result"]);
  const Fetched& fetched = Fetch(check["state"].get<int>() + 1, type, address, zone);
  EXPECT_EQ(fetched.ids.size(), check["count"]);
  CheckColumn(Column(fetched, address.component), check);
}

TEST_P(ExodusFacts, ComeBackFromTheImportedFile) {
  CheckCoordinates();
  CheckElements();
  CheckParts();
  CheckSets();
  CheckStates();
  CheckLayers();
  ASSERT_FALSE(facts_["probes"].empty());
  ASSERT_FALSE(facts_["checks"].empty());
  for (const json& probe : facts_["probes"]) CheckProbe(probe);
  for (const json& check : facts_["checks"]) CheckArray(check);
}

std::string TestName(const testing::TestParamInfo<ExodusResult>& info) {
  return std::filesystem::path(info.param.file).stem();
}

INSTANTIATE_TEST_SUITE_P(Solver, ExodusFacts, testing::ValuesIn(kResults), TestName);

}  // namespace
