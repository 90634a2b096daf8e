// orv elements: the mesh of a file, as text, CSV and JSON.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "program/forged_results.h"
#include "program/run_program.h"
#include "program/small_result.h"

namespace {

using namespace orv_test;
using nlohmann::json;

constexpr char kShellBlock[] = "/post/constant/connectivities/SHELL/orvblock";

class ElementsCommand : public ProgramTest {
 protected:
  void SetUp() override { FillForgedResults(file_); }

  ProgramRun Run(std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"elements", file_.path()});
    return RunOrv(options);
  }

  std::string Elements(const std::vector<std::string>& options = {}) {
    const ProgramRun run = Run(options);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.err, "");
    return run.out;
  }

  ForgedFile file_;
};

TEST_F(ElementsCommand, PrintsATablePerType) {
  EXPECT_EQ(Elements(),
            "\nSHELL\n"
            "id  part  n1  n2  n3  n4\n"
            "11     7   1   2   3   4\n"
            "12     7   2   5   6   3\n"
            "\nSOLID\n"
            "id  part  n1  n2  n3\n"
            "21     7   7   8   9\n");
}

TEST_F(ElementsCommand, PrintsOneTypeInAnyCase) {
  EXPECT_EQ(Elements({"--type", "solid"}), "id  part  n1  n2  n3\n21     7   7   8   9\n");
}

TEST_F(ElementsCommand, PrintsCommaSeparatedValues) {
  EXPECT_EQ(Elements({"--csv", "--type", "SHELL"}), "id,part,n1,n2,n3,n4\n11,7,1,2,3,4\n12,7,2,5,6,3\n");
  EXPECT_EQ(Elements({"--csv"}),
            "type,id,part,n1,n2,n3,n4\nSHELL,11,7,1,2,3,4\nSHELL,12,7,2,5,6,3\n"
            "type,id,part,n1,n2,n3\nSOLID,21,7,7,8,9\n");
}

TEST_F(ElementsCommand, PrintsTypesWithAsManyNodesUnderOneHeading) {
  AddElements(file_, "BRICK", 3, 4, {31}, {4, 3, 2, 1});
  EXPECT_EQ(Elements({"--csv"}),
            "type,id,part,n1,n2,n3,n4\nBRICK,31,7,4,3,2,1\nSHELL,11,7,1,2,3,4\nSHELL,12,7,2,5,6,3\n"
            "type,id,part,n1,n2,n3\nSOLID,21,7,7,8,9\n");
}

TEST_F(ElementsCommand, PrintsJson) {
  json expected = json::parse(R"({"schema_version": 1, "command": "elements", "groups": [
    {"type": "SHELL", "nodes_per_element": 4, "dimension": 2, "rows": [
      {"id": 11, "part": 7, "nodes": [1, 2, 3, 4]}, {"id": 12, "part": 7, "nodes": [2, 5, 6, 3]}]},
    {"type": "SOLID", "nodes_per_element": 3, "dimension": 3, "rows": [{"id": 21, "part": 7, "nodes": [7, 8, 9]}]}]})");
  expected["file"] = file_.path();
  EXPECT_EQ(json::parse(Elements({"--json"})), expected);
}

TEST_F(ElementsCommand, PrintsTheMeshOfEveryVersion) {
  const std::string in = WriteFile("small.frd", SmallRun()), path = TempPath("small.orv");
  for (const char* version : {"1.0", "1.1", "1.2", "2.0", "2.1", "2.2"}) {
    SCOPED_TRACE(version);
    ASSERT_EQ(RunOrv({"import", "-q", in, path, "--format-version", version}).exit_code, 0);
    EXPECT_EQ(RunOrv({"elements", path, "--csv"}).out, "id,part,n1,n2,n3\n11,1,1,2,5\n");
  }
}

TEST_F(ElementsCommand, PrintsTheMeshOfAWholeResultOfASolver) {
  const std::string result = std::string(ORVIO_SHARED_DATA) + "/own_plate_impact/plate_impact.frd.gz";
  if (!std::filesystem::exists(result)) GTEST_SKIP() << "the solver's results are not here";
  const std::string text = RunOrv({"elements", Import(result), "--type", "LINE3", "--csv"}).out;
  EXPECT_THAT(text, testing::StartsWith("id,part,n1,n2,n3\n3001,2,25001,25003,25002\n"));
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 17);
}

TEST_F(ElementsCommand, PrintsNothingOfAFileWithoutElements) {
  ForgedFile empty;
  const ProgramRun run = RunOrv({"elements", empty.path()});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.out, "");
  EXPECT_EQ(run.err, "");
}

TEST_F(ElementsCommand, RefusesATypeThatTheFileDoesNotHold) {
  const ProgramRun run = Run({"--type", "BEAM"});
  ExpectTrouble(run, file_.path(), "has no elements of type \"BEAM\"; it has SHELL, SOLID\n");
  ForgedFile empty;
  ExpectTrouble(RunOrv({"elements", empty.path(), "--type", "BEAM"}), empty.path(),
                "has no elements of type \"BEAM\"; it has no elements at all\n");
}

TEST_F(ElementsCommand, PassesOverATypeWithoutElements) {
  file_.at(kShellBlock).integer("nele", 0).integer("npele", 1LL << 62);
  EXPECT_EQ(Elements({"--csv"}), "id,part,n1,n2,n3\n21,7,7,8,9\n");
  ExpectTrouble(Run({"--type", "SHELL"}), file_.path(), "has no elements of type \"SHELL\"; it has SOLID\n");
}

TEST_F(ElementsCommand, RefusesCountsThatTheFileDoesNotHoldAtOnce) {
  const std::string text =
      "elements are not what their header announces (block /post/constant/connectivities/SHELL/orvblock)";
  const std::vector<std::int64_t> counts = {-1,        5,         100'000,         100'000'000, 1LL << 32,
                                            1LL << 40, 1LL << 61, (1LL << 61) + 1, INT64_MAX,   INT64_MIN};
  for (const auto& [attribute, right] : {std::pair{"nele", 2}, std::pair{"npele", 4}}) {
    for (const std::int64_t count : counts) {
      SCOPED_TRACE(attribute + std::string(" ") + std::to_string(count));
      file_.at(kShellBlock).integer(attribute, count);
      const ProgramRun run = Run();
      ExpectTrouble(run, file_.path(), text);
      EXPECT_LT(run.seconds, 5);
    }
    file_.at(kShellBlock).integer(attribute, right);
  }
}

TEST_F(ElementsCommand, RefusesRowsOfAnotherLength) {
  file_.at(kShellBlock).integer("npele", 3);
  ExpectTrouble(Run(), file_.path(), "elements cannot be read: ");
}

TEST_F(ElementsCommand, RefusesABlockWithoutItsNodes) {
  file_.at(kShellBlock).drop("ic");
  ExpectTrouble(Run(), file_.path(), "elements are not what their header announces");
}

TEST_F(ElementsCommand, RefusesABlockWithoutItsParts) {
  file_.at(kShellBlock).drop("pid");
  ExpectTrouble(Run(), file_.path(), "elements cannot be read: ");
}

}  // namespace
