// Values at integration points that an import takes from the .dat file of the run, seen by HDF5 alone.

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>

#include "orvio/orvio.h"
#include "program/run_program.h"
#include "program/small_result.h"

namespace {

using namespace orv_test;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr char kState1[] = "/post/singlestate/state000000000001";
constexpr char kState2[] = "/post/singlestate/state000000000002";

/// Three elements: 11 and 12 with eight nodes, 21 with three.
std::string Mesh() {
  using frd_forge::BlockLine;
  std::string text = std::string("    1C\n") + BlockLine("    2C", 8, 1);
  for (int node = 1; node <= 8; ++node) {
    text += " -1         " + std::to_string(node) + " 0.00000E+00 0.00000E+00 0.00000E+00\n";
  }
  text += " -3\n" + BlockLine("    3C", 3, 1);
  for (const char* id : {"11", "12"}) {
    text += std::string(" -1        ") + id + "    1    0    1\n -2";
    for (int node = 1; node <= 8; ++node) text += "         " + std::to_string(node);
    text += "\n";
  }
  return text + " -1        21    7    0    2\n -2         1         2         3\n -3\n";
}

/// States at the times 0.5 and 1 with a temperature at a node.
std::string TwoStates() {
  return Mesh() + FrdBlock({1, "5.00000E-01"}, "NDTEMP", {{"T"}}, {{1, {20}}}) +
         FrdBlock({2, "1.000000000"}, "NDTEMP", {{"T"}}, {{1, {21}}}) + frd_forge::kEnd;
}

/// A printed table; each row an element, a point and its values.
std::string Table(const std::string& name, const std::string& columns, const std::string& set, const std::string& time,
                  const std::vector<std::pair<std::pair<int, int>, std::vector<double>>>& rows) {
  std::string text =
      "\n " + name + " (elem, integ.pnt.," + columns + ") for set " + set + " and time  " + time + "\n\n";
  for (const auto& [place, values] : rows) {
    char line[40];
    std::snprintf(line, sizeof line, "%10d %3d", place.first, place.second);
    text += line;
    for (const double value : values) {
      std::snprintf(line, sizeof line, " %13.6E", value);
      text += line;
    }
    text += "\n";
  }
  return text;
}

constexpr char kSix[] = "sxx,syy,szz,sxy,sxz,syz";

class ImportPoints : public ProgramTest {
 protected:
  std::string ImportWith(const std::string& tables, const std::vector<std::string>& more = {}) const {
    std::vector<std::string> options = {"--dat", WriteFile("run.dat", tables)};
    options.insert(options.end(), more.begin(), more.end());
    return Import(WriteFile("run.frd", TwoStates()), options);
  }

  ProgramRun TryImport(const std::string& tables, const std::vector<std::string>& more = {}) const {
    std::vector<std::string> arguments = {"import", WriteFile("run.frd", TwoStates()), TempPath("out.orv"), "--dat",
                                          WriteFile("run.dat", tables)};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return RunOrv(arguments);
  }
};

TEST_F(ImportPoints, BecomeElementResultsWithALayerForEachPoint) {
  const RawFile raw(ImportWith(Table("stresses", kSix, "EALL", "0.5000000E+00",
                                     {{{12, 1}, {1, 2, 3, 4, 5, 6}},
                                      {{12, 2}, {10, 20, 30, 40, 50, 60}},
                                      {{11, 1}, {-1, -2, -3, -4, -5, -6}},
                                      {{11, 2}, {.1, .2, .3, .4, .5, .6}}})));
  const std::string block = std::string(kState1) + "/elementresults/HEXA8/STRESS/orvblock";
  EXPECT_EQ(raw.attribute_int(block, "block"), 1100);
  EXPECT_EQ(raw.attribute_int(block, "nele"), 2);
  EXPECT_EQ(raw.attribute_int(block, "numl"), 2);
  EXPECT_EQ(raw.attribute_int(block, "ncoo"), 6);
  EXPECT_THAT(raw.values<std::int32_t>(block + "/idele"), ElementsAre(12, 11));
  EXPECT_EQ(raw.shape(block + "/res"), (std::vector<hsize_t>{2, 2, 6}));
  // The tables have xz before yz; variables have the order of the results at the nodes.
  EXPECT_THAT(raw.values<float>(block + "/res"), ElementsAre(1, 2, 3, 4, 6, 5, 10, 20, 30, 40, 60, 50, -1, -2, -3, -4,
                                                             -6, -5, .1F, .2F, .3F, .4F, .6F, .5F));
  EXPECT_THAT(raw.values<double>(block + "/indexval"), ElementsAre(0.5, 1));
  EXPECT_FALSE(raw.exists(std::string(kState2) + "/elementresults"));
}

TEST_F(ImportPoints, ShareTheVariableOfTheSameQuantityAtTheNodes) {
  const std::string run =
      Mesh() + FrdBlock({1, "5.00000E-01"}, "STRESS", kTensorS, {{1, {1, 2, 3, 4, 5, 6}}}) + frd_forge::kEnd;
  const std::string tables = Table("stresses", kSix, "EALL", "0.5000000E+00", {{{11, 1}, {1, 2, 3, 4, 5, 6}}});
  const RawFile raw(Import(WriteFile("run.frd", run), {"--dat", WriteFile("run.dat", tables)}));
  EXPECT_THAT(raw.children("/post/constant/variable"), ElementsAre("COORDINATE", "STEP", "STRESS", "TIME"));
  EXPECT_TRUE(raw.exists(std::string(kState1) + "/entityresults/NODE/STRESS"));
  EXPECT_TRUE(raw.exists(std::string(kState1) + "/elementresults/HEXA8/STRESS"));
}

TEST_F(ImportPoints, AreSortedByElementType) {
  const RawFile raw(ImportWith(Table("equivalent plastic strain", "pe", "EALL", "0.5000000E+00",
                                     {{{21, 1}, {7}}, {{11, 1}, {8}}, {{11, 2}, {9}}})));
  const std::string results = std::string(kState1) + "/elementresults/";
  EXPECT_THAT(raw.values<float>(results + "TRIA3/PE/orvblock/res"), ElementsAre(7));
  EXPECT_THAT(raw.values<float>(results + "HEXA8/PE/orvblock/res"), ElementsAre(8, 9));
}

TEST_F(ImportPoints, OfOneTypeWithUnequalCountsAreZones) {
  const RawFile raw(ImportWith(Table("equivalent plastic strain", "pe", "EALL", "0.5000000E+00",
                                     {{{11, 1}, {8}}, {{12, 1}, {9}}, {{12, 2}, {10}}})));
  const std::string variable = std::string(kState1) + "/elementresults/HEXA8/PE";
  EXPECT_THAT(raw.children(variable), ElementsAre("POINTS_1", "POINTS_2"));
  EXPECT_THAT(raw.values<float>(variable + "/POINTS_1/orvblock/res"), ElementsAre(8));
  EXPECT_THAT(raw.values<float>(variable + "/POINTS_2/orvblock/res"), ElementsAre(9, 10));
  EXPECT_THAT(raw.attribute_text(variable + "/POINTS_2/orvblock", "etypzone"), testing::StartsWith("POINTS_2"));
}

TEST_F(ImportPoints, OfSeveralSetsAreJoinedAndCountOnce) {
  const RawFile raw(
      ImportWith(Table("equivalent plastic strain", "pe", "A", "0.5000000E+00", {{{11, 1}, {8}}}) +
                 Table("equivalent plastic strain", "pe", "B", "0.5000000E+00", {{{11, 1}, {8}}, {{12, 1}, {9}}})));
  const std::string block = std::string(kState1) + "/elementresults/HEXA8/PE/orvblock";
  EXPECT_THAT(raw.values<std::int32_t>(block + "/idele"), ElementsAre(11, 12));
  EXPECT_THAT(raw.values<float>(block + "/res"), ElementsAre(8, 9));
}

TEST_F(ImportPoints, GoToTheStateOfTheirTime) {
  const RawFile raw(ImportWith(Table("energy", "e", "ALL", "0.5000001E+00", {{{11, 1}, {1}}}) +
                               Table("energy", "e", "ALL", "0.1000000E+01", {{{11, 1}, {2}}})));
  EXPECT_THAT(raw.values<float>(std::string(kState1) + "/elementresults/HEXA8/ENERGY/orvblock/res"), ElementsAre(1));
  EXPECT_THAT(raw.values<float>(std::string(kState2) + "/elementresults/HEXA8/ENERGY/orvblock/res"), ElementsAre(2));
}

TEST_F(ImportPoints, OfTimesThatTheResultDoesNotHoldAreTold) {
  const ProgramRun run = TryImport(Table("energy", "e", "ALL", "0.2500000E+00", {{{11, 1}, {1}}}) +
                                   Table("energy", "e", "ALL", "0.1000000E+01", {{{11, 1}, {2}}}) +
                                   Table("energy", "e", "ALL", "0.2000000E+01", {{{11, 1}, {3}}}));
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_THAT(run.err, HasSubstr("2 tables of run.dat were printed at times that the result does not hold"));
  const RawFile raw(TempPath("out.orv"));
  EXPECT_FALSE(raw.exists(std::string(kState1) + "/elementresults"));
  EXPECT_TRUE(raw.exists(std::string(kState2) + "/elementresults/HEXA8/ENERGY"));
}

TEST_F(ImportPoints, OfUnknownElementsAreTrouble) {
  ExpectTrouble(TryImport(Table("energy", "e", "ALL", "0.5000000E+00", {{{99, 1}, {1}}})), TempPath("run.dat"),
                "the mesh has no element 99");
  EXPECT_FALSE(std::filesystem::exists(TempPath("out.orv")));
}

TEST_F(ImportPoints, ThatAreNotNumberedFromOneAreTrouble) {
  ExpectTrouble(TryImport(Table("energy", "e", "ALL", "0.5000000E+00", {{{11, 2}, {1}}})), TempPath("run.dat"),
                "points of element 11 are not numbered from 1");
}

TEST_F(ImportPoints, OfADamagedFileAreTroubleOfThatFile) {
  const std::string damaged = Table("energy", "e", "ALL", "0.5000000E+00", {{{11, 1}, {1}}}) + "        12   1  x\n";
  ExpectTrouble(TryImport(damaged), TempPath("run.dat"), "line 5: energy of set ALL: e is not a number");
}

TEST_F(ImportPoints, OfAFileThatIsCutOffAreTakenAsFarAsTheyAreWholeWithPartial) {
  const std::string cut = Table("energy", "e", "ALL", "0.5000000E+00", {{{11, 1}, {1}}}) +
                          Table("energy", "e", "ALL", "0.1000000E+01", {{{11, 1}, {2}}}) + "        12   1  1.0";
  EXPECT_EQ(TryImport(cut, {"--partial"}).exit_code, 0);
  const RawFile raw(TempPath("out.orv"));
  EXPECT_TRUE(raw.exists(std::string(kState1) + "/elementresults/HEXA8/ENERGY"));
  EXPECT_FALSE(raw.exists(std::string(kState2) + "/elementresults"));
}

TEST_F(ImportPoints, OfAFileThatIsNotThereAreTrouble) {
  const ProgramRun run =
      RunOrv({"import", WriteFile("run.frd", TwoStates()), TempPath("out.orv"), "--dat", TempPath("none.dat")});
  ExpectTrouble(run, TempPath("none.dat"), "No such file");
}

// ---- A whole run of a solver

/// Values of one component over elements and points, from a filer.
struct PointColumn {
  std::vector<int> elements;
  int points = 0;
  std::vector<float> values;  ///< elements x points
};

class PlasticSteps : public ProgramTest {
 protected:
  void SetUp() override {
    const std::string folder = std::string(ORVIO_SHARED_DATA) + "/ccx_plastic_steps";
    if (!std::filesystem::exists(folder + "/beampkin.dat.gz")) GTEST_SKIP() << "the solver's results are not here";
    std::ifstream(folder + "/facts.json") >> facts_;
    path_ = Import(folder + "/beampkin.frd.gz", {"--dat", folder + "/beampkin.dat.gz"});
    filer_ = std::make_unique<ORVFiler>(path_.c_str());
    int next = 1;
    ASSERT_EQ(filer_->InitReader(next), 0);
  }

  /// A component of the stresses of a state (0-based), point by point.
  PointColumn Column(const std::string& component, int state) {
    static const std::map<std::string, std::string> kHandles = {{"sxx", "STRESS_SXX"}, {"syy", "STRESS_SYY"},
                                                                {"szz", "STRESS_SZZ"}, {"sxy", "STRESS_SXY"},
                                                                {"sxz", "STRESS_SZX"}, {"syz", "STRESS_SYZ"}};
    ORVExtVar* handle = filer_->GetExtVariable(kHandles.at(component).c_str());
    if (!handle) throw std::runtime_error("no handle for " + component);
    std::vector<const char*> types = {"HEXA20"}, names = {"STRESS"};
    std::vector<ORVResult*> blocks;
    filer_->GetResultBlksByName(types, names, blocks, ORV_RESULT_ELEMENT, 1);
    if (blocks.size() != 1) throw std::runtime_error("not one block");
    PointColumn column;
    column.points = static_cast<int>(blocks[0]->m_numl);
    const auto elements = static_cast<std::size_t>(blocks[0]->m_nent);
    column.values.resize(elements * static_cast<std::size_t>(column.points));
    for (int point = 0; point < column.points; ++point) {
      ORVResultValuesBase<float, int> values;
      values.m_state = state + 1;
      values.m_wantIds = true;
      values.m_layer = point;
      if (filer_->GetValues(values, blocks, handle->GetIID(), -1, nullptr) != 0) throw std::runtime_error("no values");
      if (values.m_valueCount != static_cast<int>(elements)) throw std::runtime_error("another count of values");
      column.elements.assign(values.m_ids, values.m_ids + elements);
      for (std::size_t i = 0; i < elements; ++i) {
        column.values[i * static_cast<std::size_t>(column.points) + static_cast<std::size_t>(point)] =
            values.m_values[i];
      }
      values.DeleteAllocation(true);
    }
    return column;
  }

  json facts_;
  std::string path_;
  std::unique_ptr<ORVFiler> filer_;
};

TEST_F(PlasticSteps, GiveTheStressesAtTheirPointsThroughAFiler) {
  const json& facts = facts_["dat_integration_points"];
  for (const json& probe : facts["probes"]) {
    SCOPED_TRACE(probe);
    const PointColumn column = Column(probe["component"], probe["state"]);
    const auto found = std::ranges::find(column.elements, probe["element"].get<int>());
    ASSERT_NE(found, column.elements.end());
    const auto row =
        static_cast<std::size_t>(found - column.elements.begin()) * static_cast<std::size_t>(column.points);
    const auto point = probe["integration_point"].get<std::size_t>() - 1;
    EXPECT_EQ(column.values[row + point], std::strtof(probe["text"].get<std::string>().c_str(), nullptr));
  }
  for (const json& check : facts["checks"]) {
    SCOPED_TRACE(check);
    const PointColumn column = Column(check["component"], check["state"]);
    ASSERT_EQ(column.values.size(), check["count"]);
    double sum = 0, scale = 0;
    for (const float value : column.values) {
      sum += static_cast<double>(value);
      scale += std::abs(static_cast<double>(value));
    }
    EXPECT_EQ(*std::ranges::min_element(column.values), static_cast<float>(check["min"].get<double>()));
    EXPECT_EQ(*std::ranges::max_element(column.values), static_cast<float>(check["max"].get<double>()));
    EXPECT_NEAR(sum, check["sum"].get<double>(), 1e-7 * scale);
  }
}

TEST_F(PlasticSteps, NameTheirPart) {
  std::vector<int> ids;
  std::vector<std::string> names;
  EXPECT_EQ(filer_->GetPartIdsAndNames("PART", ids, names, 0), 1U);
  EXPECT_THAT(ids, ElementsAre(1));
  EXPECT_THAT(names, ElementsAre("HY"));
}

}  // namespace
