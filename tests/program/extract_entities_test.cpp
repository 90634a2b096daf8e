// orv extract with parts, nodes and elements: which rows of which blocks stay.

#include "program/cut_file.h"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::HasSubstr;

class ExtractEntities : public CutTest, public testing::WithParamInterface<ForgedModel::Layout> {
 protected:
  ExtractEntities() : model_(GetParam()) {
    FillCutFile(model_);
    file_ = model_.path();
  }

  std::string Data(const std::string& block) const { return model_.Part(block, "data"); }
  std::string Header(const std::string& block) const { return model_.Part(block, "header"); }

  ForgedModel model_;
  std::string file_;
};

TEST_P(ExtractEntities, KeepsThePartsChosenWithTheirElementsAndNodes) {
  const ProgramRun run = Make({"extract", file_, "--parts", "left"});
  EXPECT_THAT(run.err, HasSubstr("left out: 2 of 3 elements\n"));
  EXPECT_THAT(run.err, HasSubstr("left out: 1 block without any of the entities: connectivities/LINE2\n"));
  const RawFile raw(Out());
  const std::string constant = kConstant;
  EXPECT_THAT(raw.children(constant + "connectivities"), ElementsAre("QUAD4"));
  EXPECT_THAT(raw.values<std::int32_t>(Data(constant + "connectivities/QUAD4") + "/idele"), ElementsAre(11));
  EXPECT_THAT(raw.values<std::int32_t>(Data(constant + "connectivities/QUAD4") + "/ic"), ElementsAre(1, 2, 3, 4));
  EXPECT_EQ(raw.attribute_int(Header(constant + "connectivities/QUAD4"), "nele"), 1);
  EXPECT_THAT(raw.values<std::int32_t>(Data(constant + "parts/PART") + "/pid"), ElementsAre(1));
  EXPECT_EQ(raw.texts(Data(constant + "parts/PART") + "/title")[0].substr(0, 6), "LEFT  ");
  EXPECT_EQ(raw.attribute_int(Header(constant + "parts/PART"), "npart"), 1);
  EXPECT_THAT(raw.values<float>(Data(constant + "entityresults/NODE/COORDINATE") + "/res"),
              ElementsAre(0, 0, 0, 1, 0, 0, 1, 1, 0, 0, 1, 0));
  EXPECT_THAT(raw.values<std::int32_t>(Data(constant + "attributes/NODE") + "/uid"), ElementsAre(10, 20, 30, 40));
}

TEST_P(ExtractEntities, CutsTheResultsOfAllKinds) {
  (void)Make({"extract", file_, "--parts", "2", "--states", "2"});
  const RawFile raw(Out());
  const std::string state = "/post/singlestate/state000000000001/";
  const std::string stress = state + "entityresults/NODE/STRESS", pe = state + "elementresults/QUAD4/PE";
  EXPECT_THAT(raw.values<std::int32_t>(Data(stress) + "/entid"), ElementsAre(2, 3, 5, 6));
  EXPECT_THAT(raw.values<float>(Data(stress) + "/res"), ElementsAre(202, -2, 203, -3, 205, -5, 206, -6));
  EXPECT_EQ(raw.attribute_int(Header(stress), "nent"), 4);
  EXPECT_THAT(raw.shape(Data(pe) + "/res"), ElementsAre(1, 2, 1));
  EXPECT_THAT(raw.values<float>(Data(pe) + "/res"), ElementsAre(200.21F, 200.22F));
  EXPECT_THAT(raw.values<std::int32_t>(Data(pe) + "/idele"), ElementsAre(12));
  EXPECT_THAT(raw.values<float>(Data(state + "entityresults/NODE/WAVE") + "/res"), ElementsAre(202, 198, 205, 195));
  const std::string over = kOver;
  EXPECT_THAT(raw.values<float>(Data(over + "multientityresults/NODE/PE") + "/res"), ElementsAre(50));
  EXPECT_THAT(raw.values<std::int32_t>(Data(over + "multientityresults/NODE/PE") + "/entid"), ElementsAre(5));
  EXPECT_THAT(raw.values<float>(Data(over + "elementresults/QUAD4/PE") + "/res"), ElementsAre(4));
}

TEST_P(ExtractEntities, CutsSetsAndTheirTitles) {
  (void)Make({"extract", file_, "--parts", "1"});
  const RawFile raw(Out());
  const std::string nodes = std::string(kConstant) + "collector/NODE_SET",
                    sides = std::string(kConstant) + "collector/SIDE_SET";
  EXPECT_THAT(raw.values<std::int32_t>(Data(nodes) + "/idcoll"), ElementsAre(7));
  EXPECT_THAT(raw.values<std::int32_t>(Data(nodes) + "/nent"), ElementsAre(2));
  EXPECT_THAT(raw.values<std::int32_t>(Data(nodes) + "/entid"), ElementsAre(1, 2));
  EXPECT_EQ(raw.attribute_int(Header(nodes), "nenttot"), 2);
  EXPECT_THAT(raw.values<std::int32_t>(Data(sides) + "/nent"), ElementsAre(1, 1));
  EXPECT_THAT(raw.values<std::int32_t>(Data(sides) + "/entid"), ElementsAre(11, 1));
  const std::string titles = std::string(kConstant) + "attributes/NODE_SET";
  EXPECT_THAT(raw.values<std::int32_t>(Data(titles) + "/entid"), ElementsAre(7));
  EXPECT_EQ(raw.texts(Data(titles) + "/title")[0].substr(0, 5), "both ");
}

TEST_P(ExtractEntities, KeepsTheElementsBetweenTheNodesChosen) {
  (void)Make({"extract", file_, "--node-ids", "2,3,5-6"});
  const RawFile raw(Out());
  const std::string constant = kConstant;
  EXPECT_THAT(raw.values<std::int32_t>(Data(constant + "connectivities/QUAD4") + "/idele"), ElementsAre(12));
  EXPECT_THAT(raw.values<std::int32_t>(Data(constant + "connectivities/LINE2") + "/idele"), ElementsAre(21));
  EXPECT_THAT(raw.values<std::int32_t>(Data(constant + "entityresults/NODE/COORDINATE") + "/entid"),
              ElementsAre(2, 3, 5, 6));
}

TEST_P(ExtractEntities, KeepsTheElementsChosenAndFurtherNodes) {
  (void)Make({"extract", file_, "--element-ids", "21", "--node-ids", "1"});
  const RawFile raw(Out());
  const std::string constant = kConstant;
  EXPECT_THAT(raw.children(constant + "connectivities"), ElementsAre("LINE2"));
  EXPECT_THAT(raw.values<std::int32_t>(Data(constant + "entityresults/NODE/COORDINATE") + "/entid"),
              ElementsAre(1, 5, 6));
}

TEST_P(ExtractEntities, KeepsOneTypeOfElements) {
  (void)Make({"extract", file_, "--entity", "quad4"});
  const RawFile raw(Out());
  EXPECT_THAT(raw.children(std::string(kConstant) + "connectivities"), ElementsAre("QUAD4"));
  EXPECT_THAT(raw.values<std::int32_t>(Data(std::string(kConstant) + "parts/PART") + "/pid"), ElementsAre(1, 2));
}

TEST_P(ExtractEntities, KeepsTheIdsChosenOfAType) {
  (void)Make({"extract", file_, "--entity", "QUAD4", "--ids", "12"});
  const RawFile raw(Out());
  EXPECT_THAT(raw.values<std::int32_t>(Data(std::string(kConstant) + "connectivities/QUAD4") + "/ic"),
              ElementsAre(2, 5, 6, 3));
}

TEST_P(ExtractEntities, GivesIdsToRowsThatHadNone) {
  const std::string stress = "/post/singlestate/state000000000001/entityresults/NODE/STRESS";
  model_.file().at(Data(stress)).drop("entid");
  (void)Make({"extract", model_.path(), "--node-ids", "5-6"});
  const RawFile raw(Out());
  EXPECT_THAT(raw.values<std::int32_t>(Data(stress) + "/entid"), ElementsAre(5, 6));
  EXPECT_THAT(raw.values<float>(Data(stress) + "/res"), ElementsAre(105, -5, 106, -6));
}

TEST_P(ExtractEntities, LeavesOutDatasetsOfRowsThatNobodyKnows) {
  const std::string stress = "/post/singlestate/state000000000001/entityresults/NODE/STRESS";
  model_.file().at(Data(stress)).dataset<double>("extra", {6}, {1, 2, 3, 4, 5, 6});
  const ProgramRun run = Make({"extract", model_.path(), "--parts", "1"});
  EXPECT_THAT(run.err, HasSubstr("left out: entityresults/NODE/STRESS: extra, unknown to the format\n"));
  EXPECT_FALSE(RawFile(Out()).exists(Data(stress) + "/extra"));
}

/// State 2 has a mesh of its own, which state 3 has, too.
TEST_P(ExtractEntities, TakesTheMeshOfAnEarlierStateAlong) {
  const std::string mesh = "/post/singlestate/state000000000002/connectivities/QUAD4";
  ForgedFile& file = model_.file();
  file.at(Data(mesh)).dataset<std::int32_t>("idele", {1}, {31}).dataset<std::int32_t>("pid", {1}, {2});
  file.dataset<std::int32_t>("ic", {1, 4}, {1, 5, 6, 4});
  file.at(Header(mesh))
      .integer("block", 300)
      .text("etypelem", "QUAD4")
      .text("etyppart", "PART")
      .text("etypnode", "NODE");
  file.integer("nele", 1).integer("npele", 4).integer("ndim", 2).integer("nindex", 0);
  (void)Make({"extract", model_.path(), "--states", "1,3", "--parts", "2", "--var", "STRESS"});
  const RawFile raw(Out());
  const std::string first = "/post/singlestate/state000000000001/", second = "/post/singlestate/state000000000002/";
  EXPECT_FALSE(raw.exists(first + "connectivities"));
  EXPECT_THAT(raw.values<std::int32_t>(Data(first + "entityresults/NODE/STRESS") + "/entid"), ElementsAre(2, 3, 5, 6));
  EXPECT_THAT(raw.values<std::int32_t>(Data(second + "connectivities/QUAD4") + "/idele"), ElementsAre(31));
  EXPECT_THAT(raw.values<std::int32_t>(Data(second + "entityresults/NODE/STRESS") + "/entid"), ElementsAre(1, 4, 5, 6));
}

INSTANTIATE_TEST_SUITE_P(InBothLayouts, ExtractEntities, testing::Values(ForgedModel::kSingle, ForgedModel::kSplit),
                         [](const auto& test) { return test.param == ForgedModel::kSingle ? "Single" : "Split"; });

}  // namespace
