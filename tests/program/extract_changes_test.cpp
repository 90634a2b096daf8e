// orv extract of states that hold changes alone: each is put together from those it builds upon.

#include "program/cut_file.h"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::HasSubstr;

/// Four states of T at nodes 1 to 3 in two layers of a shell, and of the nodes; the second and third hold changes. The
/// identifiers of the index are the numbers of the states.
class ExtractChanges : public CutTest {
 protected:
  ExtractChanges() {
    ForgedFile& file = model_.file();
    file.at("/post/constant");
    for (const char* group :
         {"collector", "indices", "attributes", "text", "connectivities", "variablegroup", "identifiers"})
      file.group(group);
    model_.system().variable({.name = "T", .key = "T", .labels = {"T"}}).index_types({"TIME"});
    file.at("/post/constant/system/orvblock").text("solver_name", "forge:INC:x");
    AddNodes(1, false, {1, 2, 3}, {10, 20, 30});
    AddNodes(2, true, {2}, {21});
    AddNodes(3, true, {3, 1}, {31, 11});
    AddNodes(4, false, {1, 2, 3}, {40, 50, 60});
  }

  ForgedFile& Index(int state, bool holds_changes) {
    ForgedFile& file = model_.file();
    file.dataset<double>("indexval", {1}, {0.5 * state}).dataset<std::int32_t>("indexident", {1}, {state});
    return file.integer("nindex", 1).integer32("indexic", holds_changes ? 1 : 0);
  }

  void AddNodes(int state, bool holds_changes, const std::vector<int>& ids, const std::vector<float>& values) {
    model_.in_state(state, {.variable = "T", .nent = static_cast<int>(ids.size()), .values = values, .ids = ids});
    (void)Index(state, holds_changes);
  }

  ForgedModel model_;
};

constexpr char kTemperature[] = "/entityresults/NODE/T/orvblock";

TEST_F(ExtractChanges, WritesThemWhole) {
  const ProgramRun run = Make({"extract", model_.path(), "--states", "3:4"});
  EXPECT_THAT(run.err, HasSubstr("states that hold changes are written whole\n"));
  const RawFile raw(Out());
  const std::string block = std::string("/post/singlestate/state000000000001") + kTemperature;
  EXPECT_THAT(raw.values<float>(block + "/res"), ElementsAre(11, 21, 31));
  EXPECT_THAT(raw.values<std::int32_t>(block + "/entid"), ElementsAre(1, 2, 3));
  EXPECT_EQ(raw.attribute_int(block, "nent"), 3);
  EXPECT_EQ(raw.attribute_int(block, "indexic"), 0);
  EXPECT_THAT(raw.values<double>(block + "/indexval"), ElementsAre(1.5));
  EXPECT_THAT(raw.values<std::int32_t>(block + "/indexident"), ElementsAre(3));
  EXPECT_EQ(raw.attribute_text("/post/constant/system/orvblock", "solver_name").substr(0, 8), "forge:x ");
}

TEST_F(ExtractChanges, WritesThemWholeWithAllStates) {
  (void)Make({"extract", model_.path()});
  const RawFile raw(Out());
  EXPECT_THAT(raw.values<float>(std::string("/post/singlestate/state000000000002") + kTemperature + "/res"),
              ElementsAre(10, 21, 30));
}

TEST_F(ExtractChanges, GivesAStateWithoutTheBlockWhatTheLastOneHad) {
  model_.in_state(5, {.variable = "OTHER", .nent = 1, .values = {1}, .ids = {1}});
  (void)Index(5, false);
  model_.variable({.name = "OTHER", .key = "OTHER", .labels = {"O"}});
  (void)Make({"extract", model_.path(), "--states", "5"});
  const RawFile raw(Out());
  const std::string block = std::string("/post/singlestate/state000000000001") + kTemperature;
  EXPECT_THAT(raw.values<float>(block + "/res"), ElementsAre(40, 50, 60));
  EXPECT_THAT(raw.values<double>(block + "/indexval"), ElementsAre(2.5));
}

TEST_F(ExtractChanges, PutsLayersAndComplexValuesTogether) {
  for (const int state : {1, 2}) {
    const bool holds_changes = state == 2;
    model_.in_state(state, {.kind = 1001,
                            .variable = "W",
                            .nent = holds_changes ? 1 : 2,
                            .values = holds_changes ? std::vector<float>{7, 8} : std::vector<float>{1, 2, 3, 4},
                            .ids = holds_changes ? std::vector<int>{2} : std::vector<int>{1, 2}});
    (void)Index(state, holds_changes);
    model_.in_state(state, {.kind = 1100,
                            .etyp = "SHELL",
                            .variable = "L",
                            .nent = holds_changes ? 1 : 2,
                            .numl = 2,
                            .values = holds_changes ? std::vector<float>{9, 10} : std::vector<float>{5, 6, 7, 8},
                            .ids = holds_changes ? std::vector<int>{11} : std::vector<int>{11, 12}});
    (void)Index(state, holds_changes);
  }
  ASSERT_EQ(RunOrv({"extract", model_.path(), "-o", Out(), "--states", "2"}).exit_code, 0);
  const RawFile raw(Out());
  const std::string state = "/post/singlestate/state000000000001/";
  EXPECT_THAT(raw.values<float>(state + "entityresults/NODE/W/orvblock/res"), ElementsAre(1, 2, 7, 8));
  EXPECT_THAT(raw.values<float>(state + "elementresults/SHELL/L/orvblock/res"), ElementsAre(9, 10, 7, 8));
}

TEST_F(ExtractChanges, RefusesChangesWithoutAnIndex) {
  model_.file().at(std::string("/post/singlestate/state000000000002") + kTemperature).integer("nindex", 0);
  const std::string in = model_.path();
  ExpectTrouble(RunOrv({"extract", in, "-o", Out()}), in, "there is no telling what they build upon");
  ExpectNoOutput();
}

TEST_F(ExtractChanges, StayAsTheyAreInARepack) {
  (void)Make({"repack", model_.path(), "--verify"});
  const RawFile raw(Out());
  const std::string block = std::string("/post/singlestate/state000000000002") + kTemperature;
  EXPECT_THAT(raw.values<float>(block + "/res"), ElementsAre(21));
  EXPECT_EQ(raw.attribute_int(block, "indexic"), 1);
  EXPECT_EQ(raw.attribute_text("/post/constant/system/orvblock", "solver_name").substr(0, 12), "forge:INC:x ");
}

TEST_F(ExtractChanges, AreWrittenWholeInVersionsThatCannotTell) {
  const ProgramRun run = Make({"repack", model_.path(), "--format-version", "1.2", "--verify"});
  EXPECT_THAT(run.err, HasSubstr("states that hold changes are written whole\n"));
  const RawFile raw(Out());
  const std::string block = "/post/singlestate/state000000000002/entityresults/NODE/T/";
  EXPECT_THAT(raw.values<float>(block + "data/res"), ElementsAre(10, 21, 30));
  EXPECT_FALSE(raw.has_attribute(block + "header", "indexic"));
}

}  // namespace
