// orv values: the values of a variable at a state, as text, CSV and JSON.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "program/forged_results.h"
#include "program/run_program.h"
#include "program/small_result.h"

namespace {

using namespace orv_test;
using nlohmann::json;

class ValuesCommand : public ProgramTest {
 protected:
  void SetUp() override { FillForgedResults(file_); }

  ProgramRun Run(std::vector<std::string> options) {
    options.insert(options.begin(), {"values", file_.path(), "--var"});
    return RunOrv(options);
  }

  std::string Values(const std::vector<std::string>& options) {
    const ProgramRun run = Run(options);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.err, "");
    return run.out;
  }

  void ExpectRefused(const std::vector<std::string>& options, const std::string& line) {
    const ProgramRun run = Run(options);
    ExpectTrouble(run, file_.path(), "");
    EXPECT_EQ(run.err, "orv: " + file_.path() + ": " + line + "\n");
  }

  ForgedFile file_;
};

TEST_F(ValuesCommand, PrintsATable) {
  EXPECT_EQ(Values({"STRESS", "--state", "2"}),
            "id  layer  SXX  S,Y\n"
            "11      1   10   20\n"
            "11      2   30   40\n"
            "12      1   50   60\n"
            "12      2   70   80\n");
}

TEST_F(ValuesCommand, PrintsATablePerElementType) {
  EXPECT_EQ(Values({"STRESS", "--state", "1"}),
            "\nSHELL\n"
            "id  layer  SXX  S,Y\n"
            "11      1    1    2\n"
            "11      2    3    4\n"
            "12      1    5    6\n"
            "12      2    7    8\n"
            "\nSOLID\n"
            "id  layer  SXX  S,Y\n"
            "21      1   -1   -2\n");
}

TEST_F(ValuesCommand, PrintsCommaSeparatedValuesUnderOneHeading) {
  EXPECT_EQ(Values({"STRESS", "--state", "1", "--csv"}),
            "entity,id,layer,SXX,\"S,Y\"\n"
            "SHELL,11,1,1,2\n"
            "SHELL,11,2,3,4\n"
            "SHELL,12,1,5,6\n"
            "SHELL,12,2,7,8\n"
            "SOLID,21,1,-1,-2\n");
  EXPECT_EQ(Values({"STRESS", "--state", "1", "--csv", "--entity", "SOLID"}), "id,layer,SXX,\"S,Y\"\n21,1,-1,-2\n");
}

TEST_F(ValuesCommand, PrintsJson) {
  const json values = json::parse(Values({"STRESS", "--state", "1", "--json"}));
  json expected = json::parse(R"({"schema_version": 1, "command": "values", "blocks": [
    {"entity": "SHELL", "variable": "STRESS", "state": 1, "columns": ["SXX", "S,Y"], "units": ["", ""], "rows": [
      {"id": 11, "layer": 1, "values": [1, 2]}, {"id": 11, "layer": 2, "values": [3, 4]},
      {"id": 12, "layer": 1, "values": [5, 6]}, {"id": 12, "layer": 2, "values": [7, 8]}]},
    {"entity": "SOLID", "variable": "STRESS", "state": 1, "columns": ["SXX", "S,Y"], "units": ["", ""], "rows": [
      {"id": 21, "layer": 1, "values": [-1, -2]}]}]})");
  expected["file"] = file_.path();
  EXPECT_EQ(values, expected);
}

TEST_F(ValuesCommand, PrintsComplexValuesAsTwoColumns) {
  EXPECT_EQ(Values({"WAVE", "--state", "1"}),
            "        id                 A.re     A.im  B.re  B.im\n"
            "         5                  0.1  -1e-300     2     3\n"
            "5000000000  0.30000000000000004        5     6     7\n");
  EXPECT_EQ(Values({"WAVE", "--state", "1", "--component", "B", "--csv"}), "id,B.re,B.im\n5,2,3\n5000000000,6,7\n");
}

TEST_F(ValuesCommand, PrintsDoublesToTheLastDigit) {
  const json values = json::parse(Values({"WAVE", "--state", "1", "--json"}));
  EXPECT_EQ(values["blocks"][0]["columns"], json({"A.re", "A.im", "B.re", "B.im"}));
  EXPECT_EQ(values["blocks"][0]["rows"], json::parse(R"([{"id": 5, "values": [0.1, -1e-300, 2, 3]},
      {"id": 5000000000, "values": [0.30000000000000004, 5, 6, 7]}])"));
  EXPECT_EQ(Values({"WAVE", "--state", "1", "--csv"}),
            "id,A.re,A.im,B.re,B.im\n5,0.1,-1e-300,2,3\n5000000000,0.30000000000000004,5,6,7\n");
}

TEST_F(ValuesCommand, PrintsFloatsWithAFloatsDigits) {
  EXPECT_EQ(Values({"TEMP", "--csv"}), "id,C1\n3,0.1\n1,300\n");
  const json values = json::parse(Values({"TEMP", "--json"}));
  EXPECT_EQ(values["blocks"][0]["rows"][0]["values"][0].get<float>(), 0.1F);
}

TEST_F(ValuesCommand, PrintsWhatIsNoFiniteNumberInWords) {
  EXPECT_EQ(Values({"ODD", "--state", "1", "--csv"}), "id,VALUE\n1,nan\n2,inf\n3,-inf\n4,1e-45\n");
  const json values = json::parse(Values({"ODD", "--state", "1", "--json"}));
  const json& rows = values["blocks"][0]["rows"];
  EXPECT_EQ(rows[0]["values"], json({"nan"}));
  EXPECT_EQ(rows[1]["values"], json({"inf"}));
  EXPECT_EQ(rows[2]["values"], json({"-inf"}));
  EXPECT_EQ(rows[3]["values"][0].get<double>(), 1.401298464324817e-45);
}

TEST_F(ValuesCommand, TakesConstantValuesWithoutAStateAndAtState0) {
  EXPECT_EQ(Values({"TEMP"}), "id   C1\n 3  0.1\n 1  300\n");
  EXPECT_EQ(Values({"TEMP", "--state", "0"}), "id   C1\n 3  0.1\n 1  300\n");
}

TEST_F(ValuesCommand, TakesNamesInAnyCase) {
  EXPECT_EQ(Values({"stress", "--state", "1", "--entity", "solid", "--component", "s,y", "--csv"}),
            "id,layer,\"S,Y\"\n21,1,-2\n");
}

TEST_F(ValuesCommand, TakesAComponentByItsNumber) {
  EXPECT_EQ(Values({"STRESS", "--state", "2", "--component", "2", "--csv"}),
            "id,layer,\"S,Y\"\n11,1,20\n11,2,40\n12,1,60\n12,2,80\n");
}

TEST_F(ValuesCommand, TakesIdsInTheOrderOfTheRequest) {
  EXPECT_EQ(Values({"ODD", "--state", "1", "--csv", "--ids", "4,1-2"}), "id,VALUE\n4,1e-45\n1,nan\n2,inf\n");
  EXPECT_EQ(Values({"WAVE", "--state", "1", "--csv", "--ids", "5000000000", "--component", "1"}),
            "id,A.re,A.im\n5000000000,0.30000000000000004,5\n");
  EXPECT_EQ(Values({"STRESS", "--state", "1", "--csv", "--ids", "21,11"}),
            "entity,id,layer,SXX,\"S,Y\"\nSHELL,11,1,1,2\nSHELL,11,2,3,4\nSOLID,21,1,-1,-2\n");
}

TEST_F(ValuesCommand, NumbersEntitiesWithoutIds) {
  file_.at("/post/constant/entityresults/NODE/TEMP/orvblock").drop("entid");
  EXPECT_EQ(Values({"TEMP", "--csv"}), "id,C1\n1,0.1\n2,300\n");
}

TEST_F(ValuesCommand, RefusesABlockWhoseIdsAreDamaged) {
  file_.at("/post/constant/entityresults/NODE/TEMP/orvblock").drop("entid").dataset<std::int32_t>("entid", {1}, {3});
  const ProgramRun run = Run({"TEMP"});
  ExpectTrouble(run, file_.path(),
                "values cannot be read: DatasetIO::   \"entid\" dimension mismatch "
                "(block /post/constant/entityresults/NODE/TEMP/orvblock");
}

/// One id on all nodes and in a zone.
void AddZone(ForgedFile& file) {
  AddIndex(AddNodalResult(file, kState1, "ODD/INLET", 1000, 1, 1), {0.125, 1})
      .text("etypvar", "ODD")
      .text("etypzone", "INLET")
      .dataset<std::int32_t>("entid", {1}, {2})
      .dataset<float>("res", {1, 1}, {77});
}

TEST_F(ValuesCommand, TellsTheZoneOfABlock) {
  AddZone(file_);
  EXPECT_EQ(Values({"ODD", "--state", "1", "--ids", "2"}),
            "\nNODE, zone INLET\nid  VALUE\n 2     77\n\nNODE\nid  VALUE\n 2    inf\n");
  EXPECT_EQ(Values({"ODD", "--state", "1", "--ids", "2", "--csv"}),
            "entity,zone,id,VALUE\nNODE,INLET,2,77\nNODE,,2,inf\n");
  const json values = json::parse(Values({"ODD", "--state", "1", "--ids", "2", "--json"}));
  EXPECT_EQ(values["blocks"][0]["zone"], "INLET");
  EXPECT_FALSE(values["blocks"][1].contains("zone"));
}

TEST_F(ValuesCommand, TakesTheFileBehindItsIds) {
  const ProgramRun run = RunOrv({"values", "--var", "TEMP", "--ids", "1", file_.path(), "--csv"});
  EXPECT_EQ(run.out, "id,C1\n1,300\n");
}

TEST_F(ValuesCommand, ShowsControlCharactersOfNamesAsQuestionMarks) {
  AddVariable(file_, "X", "", 0, {"A\033[31mB"});
  AddNodalResult(file_, "/post/constant/", "X", 1000, 1, 1)
      .dataset<std::int32_t>("entid", {1}, {1})
      .dataset<float>("res", {1, 1}, {5});
  EXPECT_EQ(Values({"X"}), "id  A?[31mB\n 1        5\n");
}

TEST_F(ValuesCommand, NumbersComponentsWithoutALabel) {
  file_.at("/post/constant/variable/STRESS/orvblock").integer("subslen", 0);
  EXPECT_EQ(Values({"STRESS", "--state", "1", "--entity", "SOLID", "--csv"}), "id,layer,C1,C2\n21,1,-1,-2\n");
}

TEST_F(ValuesCommand, ReadsBlocksInThreeParts) {
  const std::string block = std::string(kState1) + "entityresults/NODE/SPLIT/";
  file_.at(block + "header")
      .integer("block", 1000)
      .text("etyp", "NODE")
      .text("etypvar", "SPLIT")
      .integer("nent", 2)
      .integer("ncoo", 1)
      .integer("nindex", 0)
      .integer("fswitch", 0);
  AddUnlabelledVariable(file_, "SPLIT");
  file_.at(block + "data").dataset<std::int32_t>("entid", {2}, {8, 9}).dataset<double>("res", {2, 1}, {0.5, 1.5});
  EXPECT_EQ(Values({"SPLIT", "--state", "1", "--csv"}), "id,C1\n8,0.5\n9,1.5\n");
}

TEST_F(ValuesCommand, TellsTheSameOfEveryVersion) {
  const std::string in = WriteFile("small.frd", SmallRun()), path = TempPath("small.orv");
  for (const char* version : {"1.0", "1.1", "1.2", "2.0", "2.1", "2.2"}) {
    SCOPED_TRACE(version);
    ASSERT_EQ(RunOrv({"import", "-q", in, path, "--format-version", version}).exit_code, 0);
    EXPECT_EQ(RunOrv({"values", path, "--var", "STRESS", "--state", "1", "--csv"}).out,
              "id,SXX,SYY,SZZ,SXY,SYZ,SZX\n1,1,2,3,4,5,6\n2,-1,-2,-3,-4,-5,-6\n5,0.1,0.2,0.3,0.4,0.5,0.6\n");
    EXPECT_EQ(RunOrv({"values", path, "--var", "Complex_Translational_Displacement", "--state", "2", "--csv"}).out,
              "id,D1.re,D1.im,D2.re,D2.im,D3.re,D3.im\n1,1,-1,2,-2,3,-3\n2,4,-4,5,-5,6,-6\n5,7,-7,8,-8,9,-9\n");
    EXPECT_EQ(RunOrv({"values", path, "--var", "COORDINATE", "--ids", "5", "--csv"}).out,
              "id,X,Y,Z\n5,0,1,-7.45058e-09\n");
  }
}

TEST_F(ValuesCommand, PrintsValuesOfAWholeResultOfASolver) {
  const std::string result = std::string(ORVIO_SHARED_DATA) + "/own_plate_impact/plate_impact.frd.gz";
  if (!std::filesystem::exists(result)) GTEST_SKIP() << "the solver's results are not here";
  const std::string path = Import(result);
  const ProgramRun run =
      RunOrv({"values", path, "--var", "VELO", "--state", "51", "--component", "V3", "--ids", "20319"});
  EXPECT_EQ(run.out, "   id        V3\n20319  -7774.37\n");
  EXPECT_EQ(RunOrv({"values", path, "--var", "Translational_Displacement", "--state", "51", "--ids", "637",
                    "--component", "D3", "--csv"})
                .out,
            "id,D3\n637,-5.53891\n");
}

TEST_F(ValuesCommand, RefusesWhatTheFileDoesNotHold) {
  ExpectRefused({"STRESS", "--state", "3"}, "there is no state 3; states are 1 to 2, and 0 for constant values");
  ExpectRefused({"STRESS", "--state", "-1"}, "there is no state -1; states are 1 to 2, and 0 for constant values");
  ExpectRefused({"STRESS"}, "the constant section has no values of \"STRESS\"; stored there: TEMP");
  ExpectRefused({"NOPE", "--state", "1"}, "state 1 has no values of \"NOPE\"; stored there: ODD, STRESS, WAVE");
  ExpectRefused({"STRESS", "--state", "1", "--entity", "BEAM"},
                "state 1 has no values of \"STRESS\" of \"BEAM\"; "
                "stored there: ODD of NODE, STRESS of SHELL, STRESS of SOLID, WAVE of NODE");
  for (const char* component : {"SZZ", "3", "0", "-1", "99999999999999999999"}) {
    ExpectRefused({"STRESS", "--state", "1", "--component", component},
                  "\"STRESS\" has no component \"" + std::string(component) + "\"; its components are SXX, S,Y");
  }
  for (const char* ids : {"99", "11,99", "11-12,99", "99-100000"}) {
    ExpectRefused({"STRESS", "--state", "1", "--ids", ids},
                  "\"STRESS\" has no value at id 99; leave out --ids to see which there are");
  }
}

TEST_F(ValuesCommand, RefusesIdsThatAreNone) {
  for (const char* ids : {"x", "5-", "9-7", "1-2-3", "1 2", "99999999999999999999", "-1"}) {
    SCOPED_TRACE(ids);
    const ProgramRun run = Run({"STRESS", "--state", "1", "--ids=" + std::string(ids)});
    EXPECT_EQ(run.exit_code, 2);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, testing::HasSubstr("\"" + std::string(ids) + "\" is no id and no range of ids such as 7-12"));
  }
}

TEST_F(ValuesCommand, RefusesMoreThanAMillionIds) {
  for (const char* ids : {"1-1000001", "0-9223372036854775807", "1-600000,1-600000", "1-99999999999"}) {
    SCOPED_TRACE(ids);
    const ProgramRun run = Run({"STRESS", "--state", "1", "--ids=" + std::string(ids)});
    EXPECT_EQ(run.exit_code, 2);
    EXPECT_THAT(run.err, testing::HasSubstr("makes more than a million ids; ask for fewer at a time"));
  }
}

TEST_F(ValuesCommand, TakesTheLargestId) {
  ExpectRefused({"STRESS", "--state", "1", "--ids", "9223372036854775807"},
                "\"STRESS\" has no value at id 9223372036854775807; leave out --ids to see which there are");
}

TEST_F(ValuesCommand, RefusesTwoKindsOfOutput) {
  const ProgramRun run = Run({"STRESS", "--state", "1", "--csv", "--json"});
  EXPECT_EQ(run.exit_code, 2);
  EXPECT_EQ(run.out, "");
  EXPECT_NE(run.err, "");
}

TEST_F(ValuesCommand, PassesOverABlockWithoutEntities) {
  file_.at(std::string(kState1) + "elementresults/SHELL/STRESS/orvblock").integer("nele", 0);
  EXPECT_EQ(Values({"STRESS", "--state", "1", "--csv"}), "id,layer,SXX,\"S,Y\"\n21,1,-1,-2\n");
  file_.at(std::string(kState1) + "entityresults/NODE/ODD/orvblock").integer("nent", 0);
  ExpectRefused({"ODD", "--state", "1"}, "state 1 has no values of \"ODD\"; stored there: STRESS, WAVE");
}

struct HostileCount {
  const char* block;
  const char* attribute;

  friend std::ostream& operator<<(std::ostream& out, const HostileCount& count) {
    return out << count.block << " " << count.attribute;
  }
};

class ValuesOfADamagedFile : public ValuesCommand, public testing::WithParamInterface<HostileCount> {};

/// No memory is taken for what the file does not hold: this must be quick. Too many components announced are no harm:
/// those that are there are still found.
TEST_P(ValuesOfADamagedFile, AreRefusedOrReadAtOnce) {
  const auto& [block, attribute] = GetParam();
  const bool of_nodes = std::string(block).find("ODD") != std::string::npos;
  const bool may_be_read = std::string(attribute) == "ncoo";
  const std::vector<std::int64_t> counts = {-1,        5,         100'000,         100'000'000, 1LL << 31, 1LL << 32,
                                            1LL << 40, 1LL << 61, (1LL << 61) + 1, 1LL << 62,   INT64_MAX, INT64_MIN};
  for (const std::int64_t count : counts) {
    SCOPED_TRACE(count);
    file_.at(std::string(kState1) + block + "/orvblock").integer(attribute, count);
    const ProgramRun run = Run({of_nodes ? "ODD" : "STRESS", "--state", "1", "--entity", of_nodes ? "NODE" : "SHELL"});
    if (!may_be_read || run.exit_code != 0) ExpectTrouble(run, file_.path(), "");
    EXPECT_LT(run.seconds, 5);
  }
}

INSTANTIATE_TEST_SUITE_P(Counts, ValuesOfADamagedFile,
                         testing::Values(HostileCount{"entityresults/NODE/ODD", "nent"},
                                         HostileCount{"entityresults/NODE/ODD", "ncoo"},
                                         HostileCount{"elementresults/SHELL/STRESS", "nele"},
                                         HostileCount{"elementresults/SHELL/STRESS", "ncoo"},
                                         HostileCount{"elementresults/SHELL/STRESS", "numl"}),
                         [](const auto& test) {
                           return (std::string(test.param.block).starts_with("entity") ? "entity_" : "element_") +
                                  std::string(test.param.attribute);
                         });

TEST_F(ValuesCommand, RefusesABlockWithoutComponentsOrLayers) {
  const std::string block = "elementresults/SHELL/STRESS/orvblock";
  for (const char* attribute : {"ncoo", "numl"}) {
    file_.at(kState1 + block).integer(attribute, 0);
    ExpectTrouble(Run({"STRESS", "--state", "1", "--entity", "SHELL"}), file_.path(),
                  std::string(attribute) == "ncoo" ? "state 1 has no values of \"STRESS\"" : "values cannot be read");
    file_.at(kState1 + block).integer(attribute, 2);
  }
}

TEST_F(ValuesCommand, HasTheLayersOfEachState) {
  const std::string block = std::string(kState2) + "elementresults/SHELL/STRESS/orvblock";
  file_.at(block).integer("numl", 1).drop("res").dataset<float>("res", {2, 1, 2}, {1, 2, 3, 4});
  EXPECT_EQ(Values({"STRESS", "--entity", "SHELL", "--states", "1,2", "--csv"}),
            "state,id,layer,SXX,\"S,Y\"\n1,11,1,1,2\n1,11,2,3,4\n1,12,1,5,6\n1,12,2,7,8\n2,11,1,1,2\n2,12,1,3,4\n");
}

TEST_F(ValuesCommand, RefusesABlockWithoutItsValues) {
  file_.at(std::string(kState1) + "entityresults/NODE/ODD/orvblock").drop("res");
  ExpectTrouble(Run({"ODD", "--state", "1"}), file_.path(), "cannot be read");
}

TEST_F(ValuesCommand, RefusesABlockWhoseValuesAreTexts) {
  file_.at(std::string(kState1) + "entityresults/NODE/ODD/orvblock").retype("res");
  ExpectTrouble(Run({"ODD", "--state", "1"}), file_.path(), "cannot be read");
}

TEST_F(ValuesCommand, RefusesADatasetThatIsLargeInWordsOnly) {
  file_.at(std::string(kState1) + "entityresults/NODE/ODD/orvblock").integer("nent", 1LL << 40).drop("res");
  file_.raw([](hid_t block) {
    const hsize_t extents[] = {1ULL << 40, 1}, chunk[] = {1024, 1};
    const Id space(H5Screate_simple(2, extents, nullptr), "space"), list(H5Pcreate(H5P_DATASET_CREATE), "list");
    Check(H5Pset_chunk(list.get(), 2, chunk), "chunk");
    const Id made(H5Dcreate2(block, "res", H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "res");
  });
  const ProgramRun run = Run({"ODD", "--state", "1"});
  ExpectTrouble(run, file_.path(), "cannot be read");
  EXPECT_LT(run.seconds, 5);
}

TEST_F(ValuesCommand, TellsNamesWithControlCharactersInOneLine) {
  const std::string name = "B\x1B[31mAD\nNAME";
  AddNodalResult(file_, "/post/constant/", name, 1000, 1, 1).dataset<float>("res", {1, 1}, {1});
  const ProgramRun run = Run({"NOPE"});
  ExpectTrouble(run, file_.path(), "stored there: B [31mAD NAME, TEMP");
  EXPECT_THAT(run.err, testing::HasSubstr("Missing Variable definition \"B [31mAD NAME\" for \"NODE\" type\n"));
  ExpectTrouble(Run({name}), file_.path(), "are not defined: the file has no variable of that name");
}

TEST_F(ValuesCommand, TakesKeysAndNamesOfComponents) {
  file_.at("/post/constant/variable/STRESS/orvblock").text("varkey", "ZPS:S");
  const std::string expected = "id,layer,SXX,\"S,Y\"\n21,1,-1,-2\n";
  EXPECT_EQ(Values({"zps:s", "--state", "1", "--entity", "SOLID", "--csv"}), expected);
  EXPECT_EQ(Values({"stress", "--state", "1", "--entity", "SOLID", "--csv"}), expected);
  EXPECT_EQ(Values({"STRESS_SXX", "--state", "1", "--entity", "SOLID", "--csv"}), "id,layer,STRESS_SXX\n21,1,-1\n");
}

TEST_F(ValuesCommand, OfAComputedComponentGivesWhatItIsComputedFrom) {
  const std::string path = Import(WriteFile("small.frd", SmallRun()));
  EXPECT_EQ(RunOrv({"values", path, "--var", "STRESS_Von Mises", "--states", "1", "--ids", "2", "--csv"}).out,
            "id,STRESS_SXX,STRESS_SYY,STRESS_SZZ,STRESS_SXY,STRESS_SYZ,STRESS_SZX\n2,-1,-2,-3,-4,-5,-6\n");
  EXPECT_EQ(RunOrv({"values", path, "--var", "coordinate_magnitude", "--ids", "5", "--csv"}).out,
            "id,COORDINATE_X,COORDINATE_Y,COORDINATE_Z\n5,0,1,-7.45058e-09\n");
}

TEST_F(ValuesCommand, TakesConstantValuesInAStateThatHasNoOthers) {
  EXPECT_EQ(Values({"TEMP", "--state", "2"}), "id   C1\n 3  0.1\n 1  300\n");
}

TEST_F(ValuesCommand, PrintsSeveralStatesOneBelowTheOther) {
  EXPECT_EQ(Values({"STRESS", "--states", "1:2", "--component", "SXX", "--entity", "SHELL", "--ids", "12"}),
            "\nstate 1\nid  layer  SXX\n12      1    5\n12      2    7\n"
            "\nstate 2\nid  layer  SXX\n12      1   50\n12      2   70\n");
  EXPECT_EQ(Values({"STRESS", "--states", "1,2", "--component", "SXX", "--csv", "--ids", "11,21"}),
            "state,entity,id,layer,SXX\n1,SHELL,11,1,1\n1,SHELL,11,2,3\n1,SOLID,21,1,-1\n"
            "2,SHELL,11,1,10\n2,SHELL,11,2,30\n");
}

}  // namespace
