// What an imported file tells of its units and of its state index, seen by HDF5 alone.

#include <gmock/gmock.h>

#include "program/run_program.h"
#include "program/small_result.h"

namespace {

using namespace orv_test;
using testing::ElementsAre;

class ImportUnits : public ProgramTest {
 protected:
  RawFile ImportRun(const std::vector<std::string>& options, const std::string& run = SmallRun()) const {
    return RawFile(Import(WriteFile("run.frd", run), options));
  }
};

constexpr char kSystem[] = "/post/constant/system/orvblock";

std::string Trimmed(std::string text) {
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

std::vector<std::string> TextsOf(const RawFile& raw, const std::string& path) {
  std::vector<std::string> texts;
  for (const std::string& text : raw.texts(path)) texts.push_back(Trimmed(text));
  return texts;
}

TEST_F(ImportUnits, AreNotWrittenUnlessAskedFor) {
  const RawFile raw = ImportRun({});
  EXPECT_FALSE(raw.exists(kSystem));
  EXPECT_THAT(raw.values<std::int32_t>("/post/constant/variable/STRESS/orvblock/mbunit"),
              ElementsAre(0, 0, 0, 0, 0, 0));
  EXPECT_THAT(raw.values<std::int32_t>("/post/constant/variable/STRESS/orvblock/mdunit"),
              ElementsAre(0, 0, 0, 0, 0, 0));
}

TEST_F(ImportUnits, OfASystemAreItsBaseAndDerivedUnits) {
  const RawFile raw = ImportRun({"--units", "mm-t-s"});
  EXPECT_EQ(Trimmed(raw.attribute_text(kSystem, "sys")), "mm-t-s");
  EXPECT_EQ(raw.attribute_int(kSystem, "nbunit"), 4);
  EXPECT_EQ(raw.attribute_int(kSystem, "ndunit"), 4);
  const std::string at = std::string(kSystem) + "/";
  EXPECT_THAT(raw.values<std::int32_t>(at + "ubid"), ElementsAre(1, 2, 3, 4));
  EXPECT_THAT(TextsOf(raw, at + "ubtyp"), ElementsAre("Length", "Mass", "Time", "Thermodynamic temperature"));
  EXPECT_THAT(TextsOf(raw, at + "ubnam"), ElementsAre("mm", "t", "s", "K"));
  EXPECT_THAT(raw.values<float>(at + "ubcon"), ElementsAre(0.001F, 1000, 1, 1));
  EXPECT_THAT(raw.values<float>(at + "ubshift"), ElementsAre(0, 0, 0, 0));
  EXPECT_THAT(raw.values<std::int32_t>(at + "udid"), ElementsAre(11, 12, 13, 14));
  EXPECT_THAT(TextsOf(raw, at + "udnam"), ElementsAre("N", "MPa", "mJ", "mW"));
  EXPECT_THAT(raw.values<float>(at + "udscal"), ElementsAre(1, 1, 1, 1));
  EXPECT_THAT(raw.values<std::int32_t>(at + "ndbunit"), ElementsAre(3, 3, 3, 3));
  EXPECT_THAT(raw.values<std::int32_t>(at + "udbid"), ElementsAre(1, 2, 3, 1, 2, 3, 1, 2, 3, 1, 2, 3));
  EXPECT_THAT(raw.values<float>(at + "udbexp"), ElementsAre(1, 1, -2, -1, 1, -2, 2, 1, -2, 2, 1, -3));
}

struct SystemCase {
  const char* name;
  std::vector<std::string> base, derived;
  std::vector<float> factors;

  friend std::ostream& operator<<(std::ostream& out, const SystemCase& system) { return out << system.name; }
};
class ImportUnitSystem : public ImportUnits, public testing::WithParamInterface<SystemCase> {};

TEST_P(ImportUnitSystem, NamesItsUnits) {
  const RawFile raw = ImportRun({"--units", GetParam().name});
  const std::string at = std::string(kSystem) + "/";
  EXPECT_EQ(TextsOf(raw, at + "ubnam"), GetParam().base);
  EXPECT_EQ(TextsOf(raw, at + "udnam"), GetParam().derived);
  EXPECT_EQ(raw.values<float>(at + "ubcon"), GetParam().factors);
}

INSTANTIATE_TEST_SUITE_P(
    Usual, ImportUnitSystem,
    testing::Values(SystemCase{"m-kg-s", {"m", "kg", "s", "K"}, {"N", "Pa", "J", "W"}, {1, 1, 1, 1}},
                    SystemCase{"mm-kg-ms", {"mm", "kg", "ms", "K"}, {"kN", "GPa", "J", "kW"}, {0.001F, 1, 0.001F, 1}},
                    SystemCase{"mm-g-ms", {"mm", "g", "ms", "K"}, {"N", "MPa", "mJ", "W"}, {0.001F, 0.001F, 0.001F, 1}},
                    SystemCase{"mm-kg-s", {"mm", "kg", "s", "K"}, {"mN", "kPa", "uJ", "uW"}, {0.001F, 1, 1, 1}},
                    SystemCase{"in-lbf-s",
                               {"in", "lbf s^2/in", "s", "K"},
                               {"lbf", "psi", "in lbf", "in lbf/s"},
                               {0.0254F, 175.126835F, 1, 1}},
                    SystemCase{"ft-slug-s",
                               {"ft", "slug", "s", "K"},
                               {"lbf", "psf", "ft lbf", "ft lbf/s"},
                               {0.3048F, 14.5939029F, 1, 1}}));

TEST_F(ImportUnits, OfASystemThatNobodyKnowsAreRefused) {
  const ProgramRun run = RunOrv({"import", WriteFile("run.frd", SmallRun()), TempPath("o.orv"), "--units", "furlong"});
  EXPECT_EQ(run.exit_code, 2);
  EXPECT_THAT(run.err, testing::HasSubstr("mm-t-s"));
}

TEST_F(ImportUnits, OfComponentsReferToTheUnitsOfTheSystem) {
  const RawFile raw = ImportRun({"--units", "m-kg-s"});
  const std::string stress = "/post/constant/variable/STRESS/orvblock/";
  EXPECT_THAT(raw.values<std::int32_t>(stress + "mdunit"), ElementsAre(1, 1, 1, 1, 1, 1));
  EXPECT_THAT(raw.values<std::int32_t>(stress + "udid"), ElementsAre(12, 12, 12, 12, 12, 12));
  EXPECT_THAT(raw.values<float>(stress + "udexp"), ElementsAre(1, 1, 1, 1, 1, 1));
  EXPECT_FALSE(raw.exists(stress + "ubid"));
  const std::string displacement = "/post/constant/variable/Complex_Translational_Displacement/orvblock/";
  EXPECT_THAT(raw.values<std::int32_t>(displacement + "mbunit"), ElementsAre(1, 1, 1));
  EXPECT_THAT(raw.values<std::int32_t>(displacement + "ubid"), ElementsAre(1, 1, 1));
  EXPECT_THAT(raw.values<float>(displacement + "ubexp"), ElementsAre(1, 1, 1));
  EXPECT_THAT(raw.values<std::int32_t>("/post/constant/variable/PE/orvblock/mbunit"), ElementsAre(0));
}

struct MeasureCase {
  const char* result;
  const char* component;
  std::vector<int> base, derived;  ///< ids
  std::vector<float> base_exponents, derived_exponents;

  friend std::ostream& operator<<(std::ostream& out, const MeasureCase& measure) { return out << measure.component; }
};
class ImportMeasure : public ImportUnits, public testing::WithParamInterface<MeasureCase> {};

TEST_P(ImportMeasure, HasItsUnit) {
  const MeasureCase& measure = GetParam();
  const RawFile raw =
      ImportRun({"--units", "m-kg-s"}, FrdRun(FrdBlock({1}, measure.result, {{measure.component}}, {{1, {1}}})));
  const std::string at = std::string("/post/constant/variable/") + measure.result + "/orvblock/";
  const auto expect = [&](const char* ids, const char* exponents, const std::vector<int>& wanted,
                          const std::vector<float>& wanted_exponents) {
    ASSERT_EQ(raw.exists(at + ids), !wanted.empty());
    if (wanted.empty()) return;
    EXPECT_EQ(raw.values<std::int32_t>(at + ids), wanted);
    EXPECT_EQ(raw.values<float>(at + exponents), wanted_exponents);
  };
  expect("ubid", "ubexp", measure.base, measure.base_exponents);
  expect("udid", "udexp", measure.derived, measure.derived_exponents);
}

INSTANTIATE_TEST_SUITE_P(
    Known, ImportMeasure,
    testing::Values(MeasureCase{"VELO", "V1", {1, 3}, {}, {1, -1}, {}}, MeasureCase{"FORC", "F1", {}, {11}, {}, {1}},
                    MeasureCase{"NDTEMP", "T", {4}, {}, {1}, {}}, MeasureCase{"FLUX", "F1", {1}, {14}, {-2}, {1}},
                    MeasureCase{"RFL", "RFL", {}, {14}, {}, {1}}, MeasureCase{"ENER", "ENER", {1}, {13}, {-3}, {1}},
                    MeasureCase{"CONTACT", "COPEN", {1}, {}, {1}, {}},
                    MeasureCase{"CONTACT", "CSLIP1", {1}, {}, {1}, {}},
                    MeasureCase{"CONTACT", "CPRESS", {}, {12}, {}, {1}},
                    MeasureCase{"CONTACT", "CSHEAR2", {}, {12}, {}, {1}},
                    MeasureCase{"PDISP", "MAG1", {1}, {}, {1}, {}}, MeasureCase{"PDISP", "PHA1", {}, {}, {}, {}},
                    MeasureCase{"PSTRESS", "MAGXX", {}, {12}, {}, {1}}, MeasureCase{"TOSTRAIN", "EXX", {}, {}, {}, {}},
                    MeasureCase{"SDV", "SDV1", {}, {}, {}, {}}));

TEST_F(ImportUnits, ComeWithTheTitleAndTheSolver) {
  const std::string result = std::string(ORVIO_SHARED_DATA) + "/own_bracket_modes/bracket_modes.frd.gz";
  if (!std::filesystem::exists(result)) GTEST_SKIP() << "the solver's results are not here";
  const RawFile raw(Import(result, {"--units", "mm-t-s"}));
  EXPECT_EQ(Trimmed(raw.attribute_text(kSystem, "title")), "Angle bracket: modes and harmonic response");
  EXPECT_EQ(Trimmed(raw.attribute_text(kSystem, "solver_name")), "CalculiX");
  EXPECT_EQ(Trimmed(raw.attribute_text(kSystem, "solver_vers")), "Version 2.20");
  for (const char* name : {"cdate", "ctime", "mdate", "mtime"})
    EXPECT_EQ(raw.attribute_size(kSystem, name), 8U) << name;
}

// ---- The state index

TEST_F(ImportUnits, LeaveTheIndexTypesToVariablesOfAGroup) {
  const RawFile raw = ImportRun({});
  const std::string types = "/post/constant/indices/orvblock", group = "/post/constant/variablegroup/INDEX/orvblock";
  EXPECT_EQ(raw.attribute_int(types, "nindex"), 2);
  EXPECT_EQ(Trimmed(raw.attribute_text(types, "etypvar")), "INDEX");
  EXPECT_THAT(TextsOf(raw, group + "/varkey"), ElementsAre("VALUE", "STEP"));  // a static step, then a harmonic one
  EXPECT_THAT(raw.values<std::int32_t>(group + "/cnt"), ElementsAre(1, 1));
  EXPECT_THAT(raw.values<std::int32_t>(group + "/offs"), ElementsAre(0, 1));
  EXPECT_EQ(Trimmed(raw.attribute_text("/post/constant/variable/STEP/orvblock", "varnam")), "STEP");
}

TEST_F(ImportUnits, GiveEveryVariableAGroupOfItsName) {
  const RawFile raw = ImportRun({});
  EXPECT_THAT(raw.children("/post/constant/variablegroup"),
              ElementsAre("COORDINATE", "Complex_Translational_Displacement", "INDEX", "PE", "STRESS"));
  const std::string stress = "/post/constant/variablegroup/STRESS/orvblock";
  EXPECT_EQ(raw.attribute_int(stress, "ncoo"), 6);
  EXPECT_THAT(TextsOf(raw, stress + "/varkey"), ElementsAre("STRESS"));
  EXPECT_THAT(raw.values<std::int32_t>(stress + "/cnt"), ElementsAre(6));
}

TEST_F(ImportUnits, InTheFirstVersionsLeaveTheIndexTypesToTheirNames) {
  const RawFile raw = ImportRun({"--format-version", "1.2"});
  EXPECT_THAT(TextsOf(raw, "/post/constant/indices/data/etypindex"), ElementsAre("VALUE", "STEP"));
  EXPECT_EQ(raw.attribute_int("/post/constant/indices/header", "nindex"), 2);
  EXPECT_FALSE(raw.exists("/post/constant/variablegroup"));
  EXPECT_FALSE(raw.exists("/post/constant/variables/STEP"));
}

TEST_F(ImportUnits, NameTheIndexByTheKindOfTheSteps) {
  const auto name_of = [&](const std::string& run) {
    return TextsOf(ImportRun({}, run), "/post/constant/variablegroup/INDEX/orvblock/varkey").at(0);
  };
  EXPECT_EQ(name_of(FrdRun(FrdBlock({1}, "PE", {{"PE"}}, {{1, {1}}}))), "TIME");
  EXPECT_EQ(name_of(FrdRun(FrdBlock({1}, "DISP", kVectorD, {{1, {1, 2, 3}}}) +
                           FrdBlock({1}, "DISPI", kVectorD, {{1, {1, 2, 3}}}))),
            "FREQUENCY");
  EXPECT_EQ(name_of(FrdRun("")), "TIME");
}

TEST_F(ImportUnits, KeepResultsApartFromTheNamesOfTheIndex) {
  const RawFile raw =
      ImportRun({}, FrdRun(FrdBlock({1}, "TIME", {{"T"}}, {{1, {1}}}) + FrdBlock({1}, "STEP", {{"S"}}, {{1, {1}}})));
  EXPECT_THAT(raw.children("/post/singlestate/state000000000001/entityresults/NODE"), ElementsAre("STEP_2", "TIME_2"));
}

}  // namespace
