// orv repair: files in which one structure is damaged. What else there is comes through as it was.

#include "program/repaired_file.h"

namespace {

using namespace orv_test;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;

const std::string kStates = "/post/singlestate";
const std::string kNode1 = std::string(kSoundState1) + "/entityresults/NODE";
const std::string kStress1 = kNode1 + "/STRESS";
const std::string kStress2 = std::string(kSoundState2) + "/entityresults/NODE/STRESS";

class RepairDamage : public RepairTest {
 protected:
  RepairDamage() {
    Fill(model_, kStateCount);
    path_ = model_.path();
  }

  static std::string State(int number) { return ForgedModel::StateGroup(number); }

  static constexpr int kStateCount = 12;  // more than a symbol node holds
  static constexpr std::uint64_t kBlocks = 49;
  ForgedModel model_;
  std::string path_;
};

TEST_F(RepairDamage, OfAnObjectHeaderLosesItsBlock) {
  const Bytes bytes(path_);
  for (const char* object : {"/orvblock", "/orvblock/res"}) {
    SCOPED_TRACE(object);
    Bytes damaged(path_);
    const RepairRun run = Repair(damaged.Wipe(bytes.HeaderOf(kStress2 + object)).all(), path_);
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_THAT(run.Lost(), ElementsAre(kStress2));
    EXPECT_EQ(run.report["lost"][0]["why"], "object header has an unknown version");
    EXPECT_EQ(run.report["lost"][0]["byte"], bytes.HeaderOf(kStress2 + object));
    EXPECT_EQ(run.report["salvaged"]["blocks"], kBlocks - 1);
    EXPECT_EQ(run.report["salvaged"]["states"], kStateCount);
    EXPECT_FALSE(Has(kStress2));
    EXPECT_TRUE(Has(State(2) + "/elementresults/QUAD4/PE/orvblock/res"));
  }
}

TEST_F(RepairDamage, OfTheHeaderOfAGroupWithoutAttributesLosesNothing) {
  Bytes damaged(path_);
  const RepairRun run = Repair(damaged.Wipe(damaged.HeaderOf(kStress2)).all(), path_);
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.Lost(), ElementsAre(kStress2 + " ~"));
  EXPECT_EQ(ContentsOf(out()), ContentsOf(path_));
}

TEST_F(RepairDamage, OfTheStructuresOfABlocksGroupLosesTheBlock) {
  const Bytes bytes(path_);
  for (const size_t at : {bytes.TreeOf(kStress2), bytes.HeapOf(kStress2), bytes.NodeOf(kStress2)}) {
    SCOPED_TRACE(at);
    Bytes damaged(path_);
    const RepairRun run = Repair(damaged.Wipe(at).all(), path_);
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_THAT(run.Lost(), ElementsAre(kStress2));
    EXPECT_EQ(run.report["salvaged"]["blocks"], kBlocks - 1);
  }
}

TEST_F(RepairDamage, OfTheIndexOfChunksLosesItsBlock) {
  const std::string block = std::string("/post/constant/attributes/NODE/orvblock");
  model_.file().at(block).drop("entid").raw([](hid_t here) {
    const hsize_t size[] = {4}, chunk[] = {2};
    const Id space(H5Screate_simple(1, size, nullptr), "space"), list(H5Pcreate(H5P_DATASET_CREATE), "list");
    Check(H5Pset_chunk(list.get(), 1, chunk), "chunk");
    const Id made(H5Dcreate2(here, "entid", H5T_STD_I32LE, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "entid");
    const int ids[] = {1, 2, 3, 4};
    Check(H5Dwrite(made.get(), H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, ids), "entid");
  });
  path_ = model_.path();
  Bytes damaged(path_);
  const std::string tree("TREE\1", 5);
  const size_t at = damaged.all().find(tree);
  ASSERT_NE(at, std::string::npos);
  const RepairRun run = Repair(damaged.Wipe(at).all(), path_);
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.Lost(), ElementsAre("/post/constant/attributes/NODE"));
}

TEST_F(RepairDamage, OfAStateInTheMiddleLeavesAnEmptyOneInItsPlace) {
  Bytes damaged(path_);
  const RepairRun run = Repair(damaged.Wipe(damaged.HeaderOf(State(5))).Wipe(damaged.HeapOf(State(5))).all(), path_);
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.Lost(), ElementsAre(State(5)));
  EXPECT_EQ(run.report["salvaged"]["states"], kStateCount - 1);
  EXPECT_EQ(RawFile(out()).children(kStates), RawFile(path_).children(kStates));
  EXPECT_THAT(RawFile(out()).children(State(5)), IsEmpty());
}

TEST_F(RepairDamage, OfOneBlockInTheMiddleKeepsTheOthersOfItsState) {
  Bytes damaged(path_);
  const RepairRun run =
      Repair(damaged.Wipe(damaged.HeaderOf(State(5) + "/entityresults/NODE/STRESS/orvblock")).all(), path_);
  EXPECT_THAT(run.Lost(), ElementsAre(State(5) + "/entityresults/NODE/STRESS"));
  EXPECT_TRUE(Has(State(5) + "/activflags/QUAD4/orvblock/status"));
}

TEST_F(RepairDamage, OfTheLastStateTakesAllOfItUnlessIncompleteOnesAreKept) {
  Bytes damaged(path_);
  const std::string stress = State(kStateCount) + "/entityresults/NODE/STRESS";
  damaged.Wipe(damaged.HeaderOf(stress + "/orvblock"));
  const RepairRun run = Repair(damaged.all(), path_);
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.Lost(), ElementsAre(State(kStateCount), stress));
  EXPECT_EQ(run.report["lost"][0]["why"], "the state is not complete; --keep-incomplete keeps what is left of it");
  EXPECT_EQ(run.report["salvaged"]["states"], kStateCount - 1);
  EXPECT_FALSE(Has(State(kStateCount)));
  const RepairRun keeping = Repair(damaged.all(), path_, {"--keep-incomplete"});
  EXPECT_EQ(keeping.exit_code, 1);
  EXPECT_THAT(keeping.Lost(), ElementsAre(stress));
  EXPECT_TRUE(Has(State(kStateCount) + "/activflags/QUAD4/orvblock/status"));
  EXPECT_FALSE(Has(stress));
}

TEST_F(RepairDamage, OfTheTreeOfTheStatesLosesNone) {
  Bytes damaged(path_);
  const RepairRun run = Repair(damaged.Wipe(damaged.TreeOf(kStates)).all(), path_);
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.Lost(), ElementsAre(kStates + " ~"));
  EXPECT_EQ(run.report["salvaged"]["blocks"], kBlocks);
  EXPECT_EQ(ContentsOf(out()), ContentsOf(path_));
}

TEST_F(RepairDamage, OfANodeOfTheStatesLosesNone) {
  for (const size_t node : {0U, 1U}) {
    SCOPED_TRACE(node);
    Bytes damaged(path_);
    const RepairRun run = Repair(damaged.Wipe(damaged.NodeOf(kStates, node), 8 + 8 * 40).all(), path_);
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_THAT(run.Lost(), ElementsAre(kStates + " ~"));
    EXPECT_EQ(ContentsOf(out()), ContentsOf(path_));
  }
}

TEST_F(RepairDamage, OfANodeAndAStateGuessesTheNumbersOfTheOthers) {
  Bytes damaged(path_);
  damaged.Wipe(damaged.HeaderOf(State(2))).Wipe(damaged.NodeOf(kStates, 0), 8 + 8 * 40);
  WriteFile("damaged.orv", damaged.all());
  const RepairRun run = RepairFileAt(TempPath("damaged.orv"));
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.Lost(), Contains(State(1)));
  EXPECT_THAT(run.Lost(), IsSupersetOf({kStates + " ~", State(2) + " ~"}));
  EXPECT_EQ(run.report["salvaged"]["states"], kStateCount - 1);
  EXPECT_EQ(RawFile(out()).children(kStates), RawFile(path_).children(kStates));
  auto before = ContentsOf(path_), after = ContentsOf(out());
  EXPECT_EQ(after[State(3) + "/entityresults/NODE/STRESS/orvblock/indexval"],
            before[State(3) + "/entityresults/NODE/STRESS/orvblock/indexval"]);
}

TEST_F(RepairDamage, OfTheNamesOfTheStatesNumbersThemInTheirOrder) {
  Bytes damaged(path_);
  const RepairRun run = Repair(damaged.Wipe(damaged.HeapOf(kStates)).all(), path_);
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.Lost(), ElementsAre(kStates + " ~"));
  EXPECT_EQ(ContentsOf(out()), ContentsOf(path_));
}

TEST_F(RepairDamage, OfTheHeaderOfTheStatesGroupLosesNone) {
  Bytes damaged(path_);
  const RepairRun run = Repair(damaged.Wipe(damaged.HeaderOf(kStates)).all(), path_);
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.Lost(), ElementsAre(kStates + " ~"));
  EXPECT_EQ(ContentsOf(out()), ContentsOf(path_));
}

TEST_F(RepairDamage, OfTheRootLosesNothing) {
  Bytes damaged(path_);
  const RepairRun run = Repair(damaged.Wipe(damaged.HeaderOf("/")).all(), path_);
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.Lost(), ElementsAre("/ ~"));
  EXPECT_EQ(ContentsOf(out()), ContentsOf(path_));
}

TEST_F(RepairDamage, OfTheEndInTheSuperblockLosesNothing) {
  constexpr size_t kEndAt = 40;
  for (const std::uint64_t end : {std::uint64_t{0}, std::uint64_t{800}, std::uint64_t{1} << 40}) {
    SCOPED_TRACE(end);
    Bytes damaged(path_);
    ASSERT_EQ(damaged.NumberAt(kEndAt), damaged.all().size());
    const RepairRun run = Repair(damaged.Put(kEndAt, end).all(), path_);
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_EQ(run.report["sound"], false);
    EXPECT_EQ(ContentsOf(out()), ContentsOf(path_));
  }
}

TEST_F(RepairDamage, OfTheFileHeaderMakesANewOne) {
  const std::string header = "/post/orvheader/orvheader";
  Bytes damaged(path_);
  WriteFile("damaged.orv", damaged.Wipe(damaged.HeaderOf(header)).all());
  const RepairRun run = RepairFileAt(TempPath("damaged.orv"));
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.Lost(), Contains(header));
  ExpectSoundPartOf(path_, {header});
  auto contents = ContentsOf(out());
  EXPECT_EQ(contents[header].substr(0, 14), std::string("\x89ORV\r\n\x1A\n2 2 0\0", 14));
  EXPECT_EQ(contents[header].size(), 64U);
}

TEST_F(RepairDamage, OfASectionMakesItAnew) {
  Bytes damaged(path_);
  damaged.Wipe(damaged.HeaderOf(kStates)).Wipe(damaged.HeapOf(kStates)).Wipe(damaged.TreeOf(kStates));
  const RepairRun run = Repair(damaged.all(), path_);
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.Lost(), ElementsAre(kStates));
  EXPECT_EQ(run.report["salvaged"]["states"], 0);
  EXPECT_THAT(RawFile(out()).children(kStates), IsEmpty());
  EXPECT_TRUE(Has("/post/constant/connectivities/QUAD4/orvblock/ic"));
}

TEST_F(RepairDamage, OfTheResultsIsTrouble) {
  Bytes damaged(path_);
  damaged.Wipe(damaged.HeaderOf("/post")).Wipe(damaged.TreeOf("/post"));
  const std::string in = WriteFile("damaged.orv", damaged.all());
  ExpectTrouble(RunOrv({"repair", in, "-o", out()}), in, "has lost its group post; nothing is left of the results");
  EXPECT_FALSE(std::filesystem::exists(out()));
}

TEST_F(RepairDamage, OfADatasetThatOthersLinkToLosesTheirBlocksToo) {
  model_.file().at(kStress2 + "/orvblock").drop("entid").soft_link("entid", kStress1 + "/orvblock/entid");
  path_ = model_.path();
  Bytes damaged(path_);
  const RepairRun run = Repair(damaged.Wipe(damaged.HeaderOf(kStress1 + "/orvblock/entid")).all(), path_);
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.Lost(), ElementsAre(kStress1, kStress2));
}

TEST_F(RepairDamage, OfABlockWithTwoNamesLosesBoth) {
  model_.file().at("/post/constant/text").hard_link("AGAIN", "/post/constant/text/NOTES");
  path_ = model_.path();
  Bytes damaged(path_);
  const std::string notes = "/post/constant/text/NOTES";
  const RepairRun run = Repair(damaged.Wipe(damaged.HeaderOf(notes)).Wipe(damaged.TreeOf(notes)).all(), path_);
  EXPECT_THAT(run.Lost(), ElementsAre("/post/constant/text/AGAIN", "/post/constant/text/NOTES"));
}

TEST_F(RepairDamage, LeavesCirclesAndSecondNamesAsTheyWere) {
  model_.file().at("/post/constant/text").hard_link("AGAIN", "/post/constant/text/NOTES");
  model_.file().at("/post/constant/elements").hard_link("UP", "/post/constant");
  path_ = model_.path();
  Bytes damaged(path_);
  const RepairRun run =
      RepairFileAt(WriteFile("damaged.orv", damaged.Wipe(damaged.HeaderOf(kStress2 + "/orvblock")).all()));
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.Lost(), ElementsAre(kStress2));
  EXPECT_EQ(Bytes(out()).HeaderOf("/post/constant/text/AGAIN"), Bytes(out()).HeaderOf("/post/constant/text/NOTES"));
  EXPECT_EQ(Bytes(out()).HeaderOf("/post/constant/elements/UP"), Bytes(out()).HeaderOf("/post/constant"));
}

TEST_F(RepairDamage, TakesOutLinksToOtherFiles) {
  model_.file().at("/post/constant/text").external_link("AWAY", "/etc/passwd", "/");
  path_ = model_.path();
  Bytes damaged(path_);
  const RepairRun run = Repair(damaged.Wipe(damaged.HeaderOf(kStress2 + "/orvblock")).all(), path_);
  EXPECT_THAT(run.Lost(), ElementsAre("/post/constant/text/AWAY", kStress2));
}

TEST_F(RepairDamage, InTheSplitLayoutLosesTheWholeBlock) {
  ForgedModel model(ForgedModel::kSplit);
  Fill(model, 3);
  path_ = model.path();
  for (const char* part : {"/header", "/data", "/data/res", "/index"}) {
    SCOPED_TRACE(part);
    Bytes damaged(path_);
    const RepairRun run = Repair(damaged.Wipe(damaged.HeaderOf(kStress1 + part)).all(), path_);
    EXPECT_THAT(run.Lost(), ElementsAre(kStress1));
  }
}

class RepairNewGroups : public RepairTest {
 protected:
  /// A file whose groups have link messages, with so many states that they are in a heap.
  RepairNewGroups() : path_(TempPath("new.orv")) {
    const Id access(H5Pcreate(H5P_FILE_ACCESS), "access");
    Check(H5Pset_libver_bounds(access.get(), H5F_LIBVER_V110, H5F_LIBVER_LATEST), "bounds");
    const Id file(H5Fcreate(path_.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, access.get()), "file");
    const auto group = [&](const std::string& path) {
      return Id(H5Gcreate2(file.get(), path.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT), path);
    };
    for (const char* path : {"/post", "/post/constant", "/post/orvheader", "/post/singlestate"}) (void)group(path);
    const Id scalar(H5Screate(H5S_SCALAR), "space"), text(H5Tcopy(H5T_C_S1), "text");
    Check(H5Tset_size(text.get(), 64), "size");
    const std::string bytes = std::string("\x89ORV\r\n\x1A\n2 2 0\0", 14) + std::string(50, ' ');
    const Id header(H5Dcreate2(file.get(), "/post/orvheader/orvheader", text.get(), scalar.get(), H5P_DEFAULT,
                               H5P_DEFAULT, H5P_DEFAULT),
                    "header");
    Check(H5Dwrite(header.get(), text.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data()), "header");
    for (int state = 1; state <= kStateCount; ++state) AddState(file.get(), group, ForgedModel::StateGroup(state));
  }

  template <class Group>
  static void AddState(hid_t file, const Group& group, const std::string& state) {
    (void)group(state);
    (void)group(state + "/activflags");
    (void)group(state + "/activflags/QUAD4");
    const Id block = group(state + "/activflags/QUAD4/orvblock");
    const Id scalar(H5Screate(H5S_SCALAR), "space"), text(H5Tcopy(H5T_C_S1), "text");
    Check(H5Tset_size(text.get(), 256), "size");
    const auto integer = [&](const char* name, std::int64_t value) {
      const Id made(H5Acreate2(block.get(), name, H5T_STD_I64LE, scalar.get(), H5P_DEFAULT, H5P_DEFAULT), name);
      Check(H5Awrite(made.get(), H5T_NATIVE_INT64, &value), name);
    };
    integer("block", 2100);
    integer("nent", 1);
    integer("nindex", 0);
    const std::string type = "QUAD4" + std::string(251, ' ');
    const Id made(H5Acreate2(block.get(), "etyp", text.get(), scalar.get(), H5P_DEFAULT, H5P_DEFAULT), "etyp");
    Check(H5Awrite(made.get(), text.get(), type.data()), "etyp");
    const hsize_t one = 1;
    const Id space(H5Screate_simple(1, &one, nullptr), "space");
    const int id = 11;
    for (const char* name : {"entid", "status"}) {
      const Id data(H5Dcreate2(block.get(), name, H5T_STD_I32LE, space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT),
                    name);
      Check(H5Dwrite(data.get(), H5T_NATIVE_INT, H5S_ALL, H5S_ALL, H5P_DEFAULT, &id), name);
    }
    (void)file;
  }

  static constexpr int kStateCount = 40;
  std::string path_;
};

TEST_F(RepairNewGroups, LosesWhatIsDamagedAlone) {
  const std::string fifth = ForgedModel::StateGroup(5);
  for (const std::string& place : {fifth, fifth + "/activflags/QUAD4/orvblock/entid"}) {
    SCOPED_TRACE(place);
    Bytes damaged(path_);
    const RepairRun run = Repair(damaged.Wipe(damaged.HeaderOf(place)).all(), path_);
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_THAT(run.Lost(), ElementsAre(place == fifth ? fifth : fifth + "/activflags/QUAD4"));
    EXPECT_EQ(run.report["salvaged"]["states"], kStateCount - 1);
    EXPECT_EQ(RawFile(out()).children(kStates), RawFile(path_).children(kStates));
  }
}

TEST_F(RepairNewGroups, WithAWrongChecksumInTheSuperblockLoseNothing) {
  constexpr size_t kChecksumAt = 44;
  Bytes damaged(path_);
  const RepairRun run = Repair(damaged.Wipe(kChecksumAt, 4).all(), path_);
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.report["salvaged"]["blocks"], kStateCount);
}

TEST_F(RepairNewGroups, LoseTheStatesWithTheHeapOfTheirLinks) {
  Bytes damaged(path_);
  const size_t heap = damaged.all().find("FRHP");
  ASSERT_NE(heap, std::string::npos);
  const RepairRun run = Repair(damaged.Wipe(heap).all(), path_);
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(run.Lost(), ElementsAre(kStates + " ~"));
}

}  // namespace
