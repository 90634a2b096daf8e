// orv extract as a command: states, variables, what it says, and what it leaves behind when it fails. Which entities stay
// is in extract_entities_test.cpp.

#include <sys/stat.h>

#include "program/cut_file.h"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class ExtractCommand : public CutTest {
 protected:
  ExtractCommand() {
    FillCutFile(model_);
    file_ = model_.path();
  }

  ForgedModel model_;
  std::string file_;
};

TEST_F(ExtractCommand, KeepsAllWithoutAChoice) {
  const std::string bytes = BytesOf(file_);
  const ProgramRun run = Make({"extract", file_});
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, Not(HasSubstr("left out")));
  EXPECT_EQ(BytesOf(file_), bytes);
  const RawFile before(file_), after(Out());
  for (const std::string& path : before.tree("/post/singlestate")) EXPECT_TRUE(after.exists(path)) << path;
  for (const std::string& path : before.tree("/post/multistate")) EXPECT_TRUE(after.exists(path)) << path;
  for (const std::string& path : before.tree("/post/constant")) EXPECT_TRUE(after.exists(path)) << path;
  EXPECT_THAT(after.values<float>("/post/singlestate/state000000000003/entityresults/NODE/WAVE/orvblock/res"),
              ElementsAre(302, 298, 305, 295));
  EXPECT_EQ(after.attribute_text("/post/constant/system/orvblock", "title"), "A plate" + std::string(249, ' '));
}

TEST_F(ExtractCommand, NumbersTheStatesAnewAndKeepsTheirIndex) {
  const ProgramRun run = Make({"extract", file_, "--states", "3,2"});
  EXPECT_THAT(run.err, HasSubstr("left out: 1 of 3 states\n"));
  const RawFile raw(Out());
  EXPECT_THAT(raw.children("/post/singlestate"), ElementsAre("state000000000001", "state000000000002"));
  const std::string stress = "/entityresults/NODE/STRESS/orvblock/";
  EXPECT_THAT(raw.values<float>("/post/singlestate/state000000000001" + stress + "indexval"), ElementsAre(1));
  EXPECT_THAT(raw.values<float>("/post/singlestate/state000000000002" + stress + "indexval"), ElementsAre(1.5));
  EXPECT_THAT(raw.values<float>("/post/singlestate/state000000000002" + stress + "res"),
              ElementsAre(301, -1, 302, -2, 303, -3, 304, -4, 305, -5, 306, -6));
}

TEST_F(ExtractCommand, CutsWhatHoldsAllStates) {
  (void)Make({"extract", file_, "--states", "1,3"});
  const RawFile raw(Out());
  const std::string nodes = "/post/multistate/multientityresults/NODE/PE/orvblock";
  EXPECT_THAT(raw.shape(nodes + "/res"), ElementsAre(2, 2, 1));
  EXPECT_THAT(raw.values<float>(nodes + "/res"), ElementsAre(1, 5, 100, 500));
  EXPECT_THAT(raw.values<float>(nodes + "/indexval"), ElementsAre(0.5, 1.5));
  EXPECT_EQ(raw.attribute_int(nodes, "nstate"), 2);
  EXPECT_THAT(raw.values<float>("/post/multistate/elementresults/QUAD4/PE/orvblock/res"), ElementsAre(1, 2, 5, 6));
}

TEST_F(ExtractCommand, FindsStatesOfALongerSeriesByTheirIndex) {
  model_.in_multistate({.kind = 1050,
                        .variable = "WAVE",
                        .nent = 1,
                        .nstate = 5,
                        .values = {1, 2, 3, 4, 5},
                        .ids = {1},
                        .index = {0, 0.5F, 0.75F, 1, 1.25F}});
  (void)Make({"extract", model_.path(), "--states", "1:2"});
  const RawFile raw(Out());
  EXPECT_THAT(raw.values<float>("/post/multistate/multientityresults/NODE/WAVE/orvblock/res"), ElementsAre(2, 4));
}

TEST_F(ExtractCommand, KeepsTheConstantSectionForStateZero) {
  (void)Make({"extract", file_, "--states", "0"});
  const RawFile raw(Out());
  EXPECT_THAT(raw.children("/post/singlestate"), ElementsAre());
  EXPECT_TRUE(raw.exists("/post/constant/entityresults/NODE/COORDINATE/orvblock/res"));
}

TEST_F(ExtractCommand, KeepsVariablesWithTheirDefinitionsAndTheCoordinates) {
  const ProgramRun run = Make({"extract", file_, "--var", "pe"});
  EXPECT_THAT(run.err, HasSubstr("left out: values of STRESS, WAVE\n"));
  const RawFile raw(Out());
  EXPECT_THAT(raw.children("/post/constant/variable"), ElementsAre("COORDINATE", "PE"));
  EXPECT_THAT(raw.children("/post/constant/entityresults/NODE"), ElementsAre("COORDINATE"));
  EXPECT_THAT(raw.children("/post/singlestate/state000000000002"), ElementsAre("elementresults"));
  EXPECT_THAT(raw.values<float>("/post/multistate/multientityresults/NODE/PE/orvblock/res"),
              ElementsAre(1, 5, 10, 50, 100, 500));
}

TEST_F(ExtractCommand, KeepsTypesAndSoftLinks) {
  const std::string block = std::string(kConstant) + "entityresults/NODE/LONG/orvblock";
  model_.file().at(block).integer("block", 1000).text("etyp", "NODE").text("etypvar", "STRESS").integer("nent", 6);
  model_.file().integer("ncoo", 2).integer("nindex", 0).integer("fswitch", 0);
  model_.file().soft_link("entid", std::string(kConstant) + "entityresults/NODE/COORDINATE/orvblock/entid");
  model_.file().dataset<double>("res", {6, 2}, std::vector<double>(12, 0.1));
  (void)Make({"extract", model_.path()});
  const RawFile raw(Out());
  EXPECT_EQ(raw.type_size(block + "/res"), 8);
  EXPECT_EQ(raw.values<double>(block + "/res")[11], 0.1);
  EXPECT_EQ(raw.link_target(block + "/entid"), std::string(kConstant) + "entityresults/NODE/COORDINATE/orvblock/entid");
}

TEST_F(ExtractCommand, KeepsWhatTheFormatDoesNotKnowAndLeavesOutWhatLeadsElsewhere) {
  model_.file().at("/mmc/inner").integer("number", 5).dataset<double>("numbers", {2}, {1, 2});
  model_.file().at("/other").external_link("away", "/etc/passwd", "/");
  model_.file().at("/post/constant/entityresults/NODE/COORDINATE/orvblock").dataset<double>("extra", {2}, {7, 8});
  const ProgramRun run = RunOrv({"extract", model_.path(), "-o", Out()});
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(run.err, HasSubstr("left out: /other, which cannot be copied safely"));
  const RawFile raw(Out());
  EXPECT_THAT(raw.values<double>("/mmc/inner/numbers"), ElementsAre(1, 2));
  EXPECT_EQ(raw.attribute_int("/mmc/inner", "number"), 5);
  EXPECT_FALSE(raw.exists("/other"));
  EXPECT_THAT(raw.values<double>("/post/constant/entityresults/NODE/COORDINATE/orvblock/extra"), ElementsAre(7, 8));
}

TEST_F(ExtractCommand, TellsInJson) {
  const ProgramRun run = RunOrv({"extract", file_, "-o", Out(), "--states", "2", "--quiet", "--json"});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.err, "");
  const nlohmann::json answer = nlohmann::json::parse(run.out);
  EXPECT_EQ(answer.at("command"), "extract");
  EXPECT_EQ(answer.at("file"), file_);
  EXPECT_EQ(answer.at("out"), Out());
  EXPECT_EQ(answer.at("states"), 1);
  EXPECT_EQ(answer.at("size_before"), std::filesystem::file_size(file_));
  EXPECT_EQ(answer.at("size_after"), std::filesystem::file_size(Out()));
  EXPECT_EQ(answer.at("notes"), nlohmann::json({"left out: 2 of 3 states"}));
}

TEST_F(ExtractCommand, RefusesWhatTheFileDoesNotHave) {
  const auto refused = [&](const std::vector<std::string>& options, const std::string& what) {
    std::vector<std::string> arguments = {"extract", file_, "-o", Out()};
    arguments.insert(arguments.end(), options.begin(), options.end());
    ExpectTrouble(RunOrv(arguments), file_, what);
    ExpectNoOutput();
  };
  refused({"--states", "4"}, "there is no state 4");
  refused({"--states", "soon"}, "names no states");
  refused({"--var", "PRESSURE"}, "has no values of \"PRESSURE\"");
  refused({"--parts", "3"}, "has no part \"3\"");
  refused({"--parts", "MIDDLE"}, "has no part \"MIDDLE\"");
  refused({"--entity", "HEXA8"}, "has no entities of the type \"HEXA8\"");
  refused({"--entity", "NODE"}, "is not a type of elements");
  refused({"--element-ids", "99"}, "has none of the entities asked for");
  refused({"--node-ids", "99"}, "has none of the entities asked for");
}

TEST_F(ExtractCommand, RefusesWhatIsNoResultFile) {
  const std::string text = WriteFile("notes.orv", "Dear diary,\n");
  const std::string torn = WriteFile("torn.orv", BytesOf(file_).substr(0, 5000));
  for (const std::string& in : {text, torn, TempPath("none.orv"), TempPath("out")}) {
    ExpectTrouble(RunOrv({"extract", in, "-o", Out()}), in, "; ");
    ExpectNoOutput();
  }
}

TEST_F(ExtractCommand, RefusesABlockWhoseCountsAreNotThoseOfItsData) {
  model_.file().at("/post/constant/attributes/NODE/orvblock").integer("nent", 5'000'000'000);
  const std::string in = model_.path();
  ExpectTrouble(RunOrv({"extract", in, "-o", Out(), "--parts", "1"}), in, "is not of 5000000000 entities");
  ExpectNoOutput();
}

TEST_F(ExtractCommand, NeverReplacesTheFileItself) {
  std::filesystem::create_symlink(file_, TempPath("out/link.orv"));
  std::filesystem::create_hard_link(file_, TempPath("hard.orv"));
  const std::string bytes = BytesOf(file_);
  for (const std::string& name : {file_, TempPath("out/link.orv"), TempPath("hard.orv")}) {
    ExpectTrouble(RunOrv({"extract", file_, "-o", name}), name, "is the file itself");
  }
  EXPECT_EQ(BytesOf(file_), bytes);
}

TEST_F(ExtractCommand, RefusesFoldersThatItCannotWriteTo) {
  ExpectTrouble(RunOrv({"extract", file_, "-o", TempPath("nowhere/new.orv")}), TempPath("nowhere/new.orv"),
                "cannot be created");
  ExpectTrouble(RunOrv({"extract", file_, "-o", TempPath("out")}), TempPath("out"), "is not a file");
  chmod(TempPath("out").c_str(), 0500);
  Surroundings surroundings;
  surroundings.keeps_permissions = true;
  const bool is_held_back = RunOrv({"--version"}, surroundings).exit_code == 0;
  if (is_held_back) ExpectTrouble(RunOrv({"extract", file_, "-o", Out()}, surroundings), Out(), "cannot be created");
  chmod(TempPath("out").c_str(), 0700);
  if (!is_held_back) GTEST_SKIP() << "the super-user cannot be held back here";
  ExpectNoOutput();
}

/// Many writes have their turn to fail. What was there under the name stays.
TEST_F(ExtractCommand, LeavesTheOutputAsItWasForWantOfSpace) {
  (void)Make({"extract", file_});
  const auto size = static_cast<long>(std::filesystem::file_size(Out()));
  WriteFile("out/new.orv", "what was here before");
  Surroundings surroundings;
  for (surroundings.largest_file = 0; surroundings.largest_file < size; surroundings.largest_file += size / 12) {
    SCOPED_TRACE(surroundings.largest_file);
    ExpectTrouble(RunOrv({"extract", file_, "-o", Out()}, surroundings), Out(), "free space");
    EXPECT_EQ(BytesOf(Out()), "what was here before");
    EXPECT_THAT(NamesIn(TempPath("out")), ElementsAre("new.orv"));
    if (HasFailure()) return;
  }
}

}  // namespace
