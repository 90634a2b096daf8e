// orv repack between the versions of the format: the two layouts of blocks, and the two kinds of definitions.

#include <regex>

#include "program/cut_file.h"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::HasSubstr;

std::string Cut(const std::string& text) { return text.substr(0, text.find_last_not_of(' ') + 1); }

std::vector<std::string> Cut(std::vector<std::string> texts) {
  for (std::string& text : texts) text = Cut(text);
  return texts;
}

class RepackVersions : public CutTest {
 protected:
  void Repack(ForgedModel& model, const std::string& version) {
    (void)Make({"repack", model.path(), "--format-version", version, "--verify"});
  }
};

TEST_F(RepackVersions, WriteTheFileHeaderAndTheGroupsOfEach) {
  ForgedModel model;
  FillCutFile(model);
  for (const std::string version : {"1.0", "1.1", "1.2", "2.0", "2.1", "2.2"}) {
    SCOPED_TRACE(version);
    Repack(model, version);
    const RawFile raw(Out());
    const std::string header = raw.texts("/post/orvheader/orvheader").at(0).substr(8, 5);
    EXPECT_EQ(header, version.substr(0, 1) + " " + version.substr(2) + " 0");
    EXPECT_EQ(raw.exists("/post/constant/variables"), version[0] == '1');
    EXPECT_EQ(raw.exists("/post/constant/variable"), version[0] == '2');
  }
}

TEST_F(RepackVersions, SplitTheBlocks) {
  ForgedModel model;
  FillCutFile(model);
  model.file().at("/post/singlestate/state000000000001/entityresults/NODE/STRESS/orvblock").integer("fidglob", 4);
  Repack(model, "1.2");
  const RawFile raw(Out());
  const std::string stress = "/post/singlestate/state000000000001/entityresults/NODE/STRESS";
  EXPECT_THAT(raw.children(stress), ElementsAre("data", "header", "index"));
  EXPECT_THAT(raw.children(stress + "/data"), ElementsAre("entid", "fidglob", "res"));
  EXPECT_THAT(raw.values<std::int32_t>(stress + "/data/fidglob"), ElementsAre(4));
  EXPECT_THAT(raw.children(stress + "/index"), ElementsAre("indexident", "indexval"));
  EXPECT_EQ(raw.attribute_int(stress + "/header", "block"), 1000);
  EXPECT_THAT(raw.values<float>(stress + "/data/res"),
              ElementsAre(101, -1, 102, -2, 103, -3, 104, -4, 105, -5, 106, -6));
  const std::string titles = "/post/constant/attributes/NODE";
  EXPECT_EQ(raw.type_size(titles + "/data/title"), 256);
  EXPECT_FALSE(raw.has_attribute(titles + "/header", "length"));
}

TEST_F(RepackVersions, NameVariablesByThemselvesUpTo12) {
  ForgedModel model;
  FillCutFile(model);
  Repack(model, "1.0");
  const RawFile raw(Out());
  const std::string variables = "/post/constant/variables";
  EXPECT_THAT(raw.children(variables), ElementsAre("COORDINATE", "PE", "STRESS", "WAVE"));
  EXPECT_EQ(Cut(raw.attribute_text(variables + "/STRESS/header", "etypvar")), "STRESS");
  EXPECT_FALSE(raw.has_attribute(variables + "/STRESS/header", "varkey"));
  EXPECT_THAT(Cut(raw.texts(variables + "/STRESS/data/cname")), ElementsAre("SXX", "SYY"));
  EXPECT_THAT(raw.values<std::int32_t>(variables + "/STRESS/data/cid"), ElementsAre(1, 2));
  EXPECT_THAT(raw.values<std::int32_t>(variables + "/STRESS/data/ubid"), ElementsAre(1, 2));
  EXPECT_THAT(Cut(raw.texts("/post/constant/indices/data/etypindex")), ElementsAre("TIME"));
}

TEST_F(RepackVersions, GiveKeysAndGroupsFrom20On) {
  ForgedModel model(ForgedModel::kSplit);
  FillCutFile(model);
  Repack(model, "2.2");
  const RawFile raw(Out());
  EXPECT_THAT(raw.children("/post/constant/variable"), ElementsAre("COORDINATE", "PE", "STRESS", "TIME", "WAVE"));
  EXPECT_THAT(raw.children("/post/constant/variablegroup"), ElementsAre("COORDINATE", "INDEX", "PE", "STRESS", "WAVE"));
  const std::string stress = "/post/constant/variable/STRESS/orvblock",
                    group = "/post/constant/variablegroup/STRESS/orvblock";
  EXPECT_EQ(Cut(raw.attribute_text(stress, "varnam")), "STRESS");
  EXPECT_EQ(Cut(raw.attribute_text(stress, "varkey")), "STRESS");
  EXPECT_FALSE(raw.has_attribute(stress, "etypvar"));
  EXPECT_THAT(raw.texts(stress + "/subscr"), ElementsAre("S", "X", "X", "S", "Y", "Y"));
  EXPECT_THAT(raw.values<std::int32_t>(stress + "/subscnt"), ElementsAre(3, 3));
  EXPECT_THAT(raw.values<std::int32_t>(stress + "/subsoffs"), ElementsAre(0, 3));
  EXPECT_EQ(raw.attribute_int("/post/constant/variable/COORDINATE/orvblock", "tensor"), 1);
  EXPECT_EQ(raw.attribute_int(stress, "tensor"), 0);
  EXPECT_EQ(raw.attribute_int(stress, "lenb"), 2);
  EXPECT_THAT(raw.values<std::int32_t>(group + "/cnt"), ElementsAre(2));
  EXPECT_THAT(Cut(raw.texts(group + "/varkey")), ElementsAre("STRESS"));
  EXPECT_EQ(Cut(raw.attribute_text("/post/constant/indices/orvblock", "etypvar")), "INDEX");
  EXPECT_THAT(Cut(raw.texts("/post/constant/variablegroup/INDEX/orvblock/varkey")), ElementsAre("TIME"));
}

TEST_F(RepackVersions, PutBlocksTogetherFrom20On) {
  ForgedModel model(ForgedModel::kSplit);
  FillCutFile(model);
  model.file()
      .at("/post/singlestate/state000000000001/entityresults/NODE/STRESS/data")
      .dataset<std::int32_t>("fidglob", {1}, {4});
  Repack(model, "2.0");
  const RawFile raw(Out());
  const std::string stress = "/post/singlestate/state000000000001/entityresults/NODE/STRESS";
  EXPECT_THAT(raw.children(stress), ElementsAre("orvblock"));
  EXPECT_THAT(raw.children(stress + "/orvblock"), ElementsAre("entid", "indexident", "indexval", "res"));
  EXPECT_EQ(raw.attribute_int(stress + "/orvblock", "fidglob"), 4);
  EXPECT_EQ(raw.attribute_int("/post/constant/attributes/NODE/orvblock", "length"), 256);
  EXPECT_EQ(raw.attribute_int("/post/constant/parts/PART/orvblock", "off"), 7);
  EXPECT_EQ(Cut(raw.attribute_text("/post/constant/connectivities/QUAD4/orvblock", "etyp")), "QUAD4");
}

/// Up to 1.2 there are no groups: what a group says of its results becomes a variable.
TEST_F(RepackVersions, JoinTheVariablesOfAGroup) {
  ForgedModel model;
  model.system().file().at("/post/constant");
  for (const char* group : {"collector", "indices", "attributes", "text", "connectivities", "identifiers"})
    model.file().group(group);
  model.variable({.name = "STRESS", .key = "K1", .ncoo = 2, .labels = {"SXX", "SYY"}});
  model.variable({.name = "STRAIN", .key = "K2", .ncoo = 1, .labels = {"EXX"}})
      .variable({.name = "TIME", .key = "TIME", .labels = {"T"}});
  model.units("K1", {{1, 0}, {1}, {2}, {0, 1}, {11}, {1}}).units("K2", {{1}, {2}, {-1}, {0}, {}, {}});
  model.group("BOTH", 3, {{"K1", 2, 0}, {"K2", 1, 2}}).group("INDEX", 1, {{"TIME", 1, 0}});
  model.index_types_of_group("INDEX", 1);
  model.in_state(1, {.variable = "BOTH", .nent = 1, .ncoo = 3, .values = {1, 2, 3}, .ids = {5}, .index = {0.5F}});
  const ProgramRun run = RunOrv({"repack", model.path(), "-o", Out(), "--format-version", "1.2"});
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(run.err, HasSubstr("left out: keys and classes of variables, and groups of variables"));
  const RawFile raw(Out());
  EXPECT_THAT(raw.children("/post/constant/variables"), ElementsAre("BOTH"));
  const std::string both = "/post/constant/variables/BOTH";
  EXPECT_EQ(raw.attribute_int(both + "/header", "ncoo"), 3);
  EXPECT_THAT(Cut(raw.texts(both + "/data/cname")), ElementsAre("SXX", "SYY", "EXX"));
  EXPECT_THAT(raw.values<std::int32_t>(both + "/data/mbunit"), ElementsAre(1, 0, 1));
  EXPECT_THAT(raw.values<std::int32_t>(both + "/data/ubid"), ElementsAre(1, 2));
  EXPECT_THAT(raw.values<float>(both + "/data/ubexp"), ElementsAre(2, -1));
  EXPECT_THAT(raw.values<std::int32_t>(both + "/data/udid"), ElementsAre(11));
  EXPECT_THAT(Cut(raw.texts("/post/constant/indices/data/etypindex")), ElementsAre("TIME"));
  const ProgramRun check = RunOrv({"check", Out()});
  EXPECT_EQ(check.exit_code, 0) << check.out;
}

TEST_F(RepackVersions, ReadTheSameThereAndBack) {
  ForgedModel model;
  FillCutFile(model);
  const std::vector<std::string> question = {"values", "", "--var", "STRESS", "--states", "1,3", "--csv"};
  std::vector<std::string> ask = question;
  ask[1] = model.path();
  const std::string expected = RunOrv(ask).out;
  EXPECT_THAT(expected, HasSubstr("306"));
  Repack(model, "1.1");
  std::filesystem::rename(Out(), TempPath("split.orv"));
  ask[1] = TempPath("split.orv");
  EXPECT_EQ(RunOrv(ask).out, expected);
  (void)Make({"repack", TempPath("split.orv"), "--format-version", "2.1", "--verify"});
  ask[1] = Out();
  EXPECT_EQ(RunOrv(ask).out, expected);
}

/// Real runs, imported, repacked and extracted: nothing of what orv values shows changes.
class CopiesOfRealRuns : public CutTest, public testing::WithParamInterface<const char*> {
 protected:
  /// Some of the variables of a file.
  static std::vector<std::string> NamesOf(const std::string& file) {
    constexpr std::size_t kEachSoMany = 9;
    const ProgramRun run = RunOrv({"info", file, "--json"});
    EXPECT_EQ(run.exit_code, 0) << run.err;
    const nlohmann::json variables = nlohmann::json::parse(run.out).at("variables");
    std::vector<std::string> names;
    for (std::size_t i = 0; i < variables.size(); i += variables.size() / kEachSoMany + 1) {
      names.push_back(variables[i].at("name"));
    }
    return names;
  }

  static std::string Shown(const std::string& file, const std::vector<std::string>& names) {
    std::string shown;
    for (const std::string& name : names) {
      shown += name + RunOrv({"values", file, "--var", name, "--states", "last", "--csv"}).out;
    }
    return shown + RunOrv({"elements", file, "--csv"}).out + RunOrv({"parts", file, "--csv"}).out +
           RunOrv({"states", file, "--csv"}).out;
  }
};

TEST_P(CopiesOfRealRuns, HoldTheSame) {
  const std::string run = std::string(ORVIO_SHARED_DATA) + "/" + GetParam();
  if (!std::filesystem::exists(run)) GTEST_SKIP() << "no " << run;
  const std::string file = Import(run, {"--units", "mm-t-s"});
  const std::vector<std::string> names = NamesOf(file);
  ASSERT_GT(names.size(), 1);
  const std::string expected = Shown(file, names);
  (void)Make({"extract", file});
  EXPECT_TRUE(Shown(Out(), names) == expected);
  for (const char* version : {"1.2", "2.0", "2.2"}) {
    SCOPED_TRACE(version);
    (void)Make({"repack", file, "--format-version", version, "--verify"});
    EXPECT_TRUE(Shown(Out(), names) == expected);
  }
}

INSTANTIATE_TEST_SUITE_P(All, CopiesOfRealRuns,
                         testing::Values("own_mini_types/mini_2d.frd.gz", "own_bracket_modes/bracket_modes.frd.gz",
                                         "exo_block_crush/block_crush_1.ex2"),
                         [](const auto& test) {
                           return std::regex_replace(std::string(test.param), std::regex("/.*"), "");
                         });

}  // namespace
