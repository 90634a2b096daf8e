// orv ls: sections, groups and blocks of forged files.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>
#include <sstream>

#include "program/forged_results.h"
#include "program/run_program.h"

namespace {

using namespace orv_test;
using nlohmann::json;
using testing::ElementsAre;
using testing::HasSubstr;

class LsCommand : public ProgramTest {
 protected:
  void SetUp() override {
    FillForgedResults(file_);
    path_ = file_.path();
  }

  static std::vector<std::string> Ls(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), "ls");
    const ProgramRun run = RunOrv(arguments);
    EXPECT_EQ(run.exit_code, 0) << run.err;
    EXPECT_EQ(run.err, "");
    std::istringstream text(run.out);
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
  }

  ForgedFile file_;
  std::string path_;
};

TEST_F(LsCommand, ListsTheSectionsOfAFile) {
  EXPECT_THAT(Ls({path_}), ElementsAre("constant", "orvheader", "singlestate"));
}

TEST_F(LsCommand, ListsThePlaceBehindAColon) {
  EXPECT_THAT(Ls({path_ + ":singlestate"}), ElementsAre("state000000000001", "state000000000002"));
  EXPECT_THAT(Ls({path_ + ":/post/constant/"}), ElementsAre("connectivities", "entityresults", "indices", "variable"));
}

TEST_F(LsCommand, ListsTheDatasetsOfABlock) {
  EXPECT_THAT(Ls({path_ + ":constant/connectivities/SHELL"}),
              ElementsAre("orvblock/ic", "orvblock/idele", "orvblock/pid"));
}

TEST_F(LsCommand, ListsTheDatasetsOfABlockOfThePartsItHas) {
  ForgedFile file;
  file.at("/post/constant/entityresults/NODE/T/header").integer("block", 1000).integer("nent", 2);
  file.at("/post/constant/entityresults/NODE/T/data").dataset<float>("res", {2}, {1, 2});
  EXPECT_THAT(Ls({file.path() + ":constant/entityresults/NODE/T"}), ElementsAre("data/res"));
}

TEST_F(LsCommand, ListsDownToTheBlocks) {
  EXPECT_THAT(
      Ls({"-r", path_ + ":singlestate"}),
      ElementsAre("state000000000001/elementresults/SHELL/STRESS", "state000000000001/elementresults/SOLID/STRESS",
                  "state000000000001/entityresults/NODE/ODD", "state000000000001/entityresults/NODE/WAVE",
                  "state000000000002/elementresults/SHELL/STRESS"));
}

TEST_F(LsCommand, TellsKindsCountsAndBytes) {
  const auto lines = Ls({"-l", path_ + ":constant/connectivities"});
  ASSERT_EQ(lines.size(), 3U);
  EXPECT_EQ(lines[0], "kind      key  count  bytes  name");
  EXPECT_EQ(lines[1], "elements  300      2     48  SHELL");
  EXPECT_EQ(lines[2], "elements  300      1     20  SOLID");
}

TEST_F(LsCommand, TellsSectionsAndGroups) {
  const auto lines = Ls({"--long", path_});
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[1], "section           4    649  constant");
  EXPECT_EQ(Ls({"-l", path_ + ":constant"})[1], "group                 2     68  connectivities");
}

TEST_F(LsCommand, TellsTheSameAsJson) {
  const ProgramRun run = RunOrv({"ls", "--json", "-r", path_ + ":constant"});
  ASSERT_EQ(run.exit_code, 0) << run.err;
  const json answer = json::parse(run.out);
  EXPECT_EQ(answer["file"], path_);
  EXPECT_EQ(answer["place"], "constant");
  EXPECT_EQ(
      answer["entries"][0],
      json::parse(R"({"name": "connectivities/SHELL", "kind": "elements", "key": 300, "count": 2, "bytes": 48})"));
}

TEST_F(LsCommand, ShowsBlocksOfUnknownKindsAsSuch) {
  file_.at("/post/constant/other/X/orvblock").integer("block", 4711);
  file_.path();
  EXPECT_THAT(Ls({"-l", path_ + ":constant/other"})[1], testing::StartsWith("block  4711"));
}

TEST_F(LsCommand, ShowsLinksAndDoesNotFollowThem) {
  file_.at("/post/constant").soft_link("up", "/post").external_link("out", "/etc/passwd", "/");
  file_.path();
  const auto lines = Ls({"-r", path_ + ":constant"});
  EXPECT_THAT(lines, testing::Contains("up -> /post"));
  EXPECT_THAT(lines, testing::Contains("out -> another file"));
  ExpectTrouble(RunOrv({"ls", path_ + ":constant/up"}), path_, "has no group /post/constant/up");
}

TEST_F(LsCommand, EndsWhereGroupsFormACycle) {
  file_.at("/post/constant").hard_link("again", "/post");
  file_.path();
  EXPECT_THAT(Ls({"-r", "-l", path_}), testing::Contains(HasSubstr("constant/connectivities/SHELL")));
}

TEST_F(LsCommand, OfAPlaceThatIsNotThereIsTrouble) {
  ExpectTrouble(RunOrv({"ls", path_ + ":constant/none"}), path_, "has no group /post/constant/none");
}

TEST_F(LsCommand, OfAFileThatIsNotThereIsTrouble) {
  ExpectTrouble(RunOrv({"ls", TempPath("none.orv")}), TempPath("none.orv"), "does not exist");
}

TEST_F(LsCommand, TakesFilesWithAColonInTheirName) {
  const std::string name = TempPath("a:b.orv");
  std::filesystem::copy_file(path_, name);
  EXPECT_THAT(Ls({name}), ElementsAre("constant", "orvheader", "singlestate"));
  EXPECT_THAT(Ls({name + ":singlestate"}), ElementsAre("state000000000001", "state000000000002"));
}

}  // namespace
