// orv repack as a command: filters, chunks, comparison, and what it leaves behind when it fails. Versions are in
// repack_versions_test.cpp.

#include "program/cut_file.h"

namespace {

using namespace orv_test;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr char kStress[] = "/post/singlestate/state000000000002/entityresults/NODE/STRESS/orvblock";
constexpr int kScaleOffset = 6;

class RepackCommand : public CutTest {
 protected:
  RepackCommand() {
    FillCutFile(model_);
    file_ = model_.path();
  }

  ForgedModel model_;
  std::string file_;
};

TEST_F(RepackCommand, KeepsWhatIsStored) {
  const std::string bytes = BytesOf(file_);
  const ProgramRun run = Make({"repack", file_, "--verify"});
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err, HasSubstr("version 2.2, 3 states, 25 blocks, "));
  EXPECT_THAT(run.err, HasSubstr(" values compared, no difference\n"));
  EXPECT_EQ(BytesOf(file_), bytes);
  const RawFile raw(Out());
  EXPECT_EQ(raw.tree("/post/singlestate"), RawFile(file_).tree("/post/singlestate"));
  EXPECT_EQ(raw.tree("/post/multistate"), RawFile(file_).tree("/post/multistate"));
  EXPECT_EQ(raw.layout(std::string(kStress) + "/res"), H5D_CONTIGUOUS);
  EXPECT_EQ(BytesOf(Out()).find("state000000000004"), std::string::npos);
}

TEST_F(RepackCommand, CompressesWithTheDigitsAskedFor) {
  (void)Make({"repack", file_, "--digits", "2", "--verify"});
  const RawFile raw(Out());
  EXPECT_THAT(raw.filters(std::string(kStress) + "/res"), ElementsAre(kScaleOffset));
  EXPECT_EQ(raw.filter_values(std::string(kStress) + "/res").at(0), H5Z_SO_FLOAT_DSCALE);
  EXPECT_EQ(raw.filter_values(std::string(kStress) + "/res").at(1), 2);
  EXPECT_THAT(raw.chunk(std::string(kStress) + "/res"), ElementsAre(6, 2));
  EXPECT_THAT(raw.filters(std::string(kStress) + "/entid"), IsEmpty());
  EXPECT_THAT(raw.filters(std::string(kStress) + "/indexval"), IsEmpty());
  EXPECT_THAT(raw.filters(std::string(kConstant) + "connectivities/QUAD4/orvblock/ic"), ElementsAre(kScaleOffset));
  EXPECT_THAT(raw.values<std::int32_t>(std::string(kConstant) + "connectivities/QUAD4/orvblock/ic"),
              ElementsAre(1, 2, 3, 4, 2, 5, 6, 3));
  EXPECT_THAT(raw.values<float>(std::string(kStress) + "/res"),
              ElementsAre(201, -1, 202, -2, 203, -3, 204, -4, 205, -5, 206, -6));
}

TEST_F(RepackCommand, MakesChunksOfSoManyEntities) {
  (void)Make({"repack", file_, "--digits", "3", "--chunk", "4"});
  const RawFile raw(Out());
  EXPECT_THAT(raw.chunk(std::string(kStress) + "/res"), ElementsAre(4, 2));
}

/// The second axis has the entities there.
TEST_F(RepackCommand, DividesTheEntitiesOfWhatHoldsAllStates) {
  (void)Make({"repack", file_, "--digits", "3", "--chunk", "1"});
  const RawFile raw(Out());
  const std::string nodes = "/post/multistate/multientityresults/NODE/PE/orvblock/res";
  EXPECT_THAT(raw.chunk(nodes), ElementsAre(3, 1, 1));
  EXPECT_THAT(raw.chunk("/post/multistate/elementresults/QUAD4/PE/orvblock/res"), ElementsAre(3, 1, 1, 1));
  EXPECT_THAT(raw.values<float>(nodes), ElementsAre(1, 5, 10, 50, 100, 500));
}

TEST_F(RepackCommand, TakesTheFilterOffAgainOrKeepsIt) {
  (void)Make({"repack", file_, "--digits", "2", "--chunk", "3"});
  std::filesystem::rename(Out(), TempPath("small.orv"));
  (void)Make({"repack", TempPath("small.orv"), "--verify"});
  EXPECT_EQ(RawFile(Out()).filter_values(std::string(kStress) + "/res").at(1), 2);
  EXPECT_THAT(RawFile(Out()).chunk(std::string(kStress) + "/res"), ElementsAre(3, 2));
  (void)Make({"repack", TempPath("small.orv"), "--no-compress", "--verify"});
  EXPECT_THAT(RawFile(Out()).filters(std::string(kStress) + "/res"), IsEmpty());
  EXPECT_EQ(RawFile(Out()).layout(std::string(kStress) + "/res"), H5D_CONTIGUOUS);
}

TEST_F(RepackCommand, KeepsFiltersOfOtherWriters) {
  constexpr int kShuffle = 2, kFletcher32 = 3;
  const std::vector<float> values(12, 0.5F);
  model_.file().at(kStress).drop("res").raw([&](hid_t block) {
    const hsize_t shape[] = {6, 2}, chunk[] = {2, 2};
    const hid_t list = H5Pcreate(H5P_DATASET_CREATE), space = H5Screate_simple(2, shape, nullptr);
    H5Pset_chunk(list, 2, chunk);
    H5Pset_shuffle(list);
    H5Pset_fletcher32(list);
    const hid_t made = H5Dcreate2(block, "res", H5T_IEEE_F32LE, space, H5P_DEFAULT, list, H5P_DEFAULT);
    H5Dwrite(made, H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values.data());
    H5Dclose(made);
    H5Sclose(space);
    H5Pclose(list);
  });
  (void)Make({"repack", model_.path(), "--verify"});
  EXPECT_THAT(RawFile(Out()).filters(std::string(kStress) + "/res"), ElementsAre(kShuffle, kFletcher32));
  EXPECT_THAT(RawFile(Out()).chunk(std::string(kStress) + "/res"), ElementsAre(2, 2));
  EXPECT_EQ(RawFile(Out()).values<float>(std::string(kStress) + "/res"), values);
}

/// Beside a hundred thousand a float has no third digit, and what goes through the filter has no more.
TEST_F(RepackCommand, WritesNothingWhenValuesLoseMoreThanTheDigits) {
  model_.file().at(kStress).dataset<float>("res", {6, 2}, {-1e5F, 0.123F, 0.456F, 1, 2, 3, 4, 5, 6, 7, 8, 9});
  const std::string in = model_.path();
  const ProgramRun run = RunOrv({"repack", in, "-o", Out(), "--digits", "3", "--verify"});
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_EQ(run.out, "");
  EXPECT_THAT(run.err,
              HasSubstr("/post/singlestate/state000000000002/entityresults/NODE/STRESS: 2 of 12 values of res lose "
                        "more than 3 digits leave"));
  EXPECT_THAT(run.err, HasSubstr(Out() + ": differs from the file and was not written\n"));
  ExpectNoOutput();
  const ProgramRun told = RunOrv({"repack", in, "-o", Out(), "--digits", "3", "--verify", "--json", "--quiet"});
  EXPECT_EQ(told.exit_code, 1);
  EXPECT_EQ(nlohmann::json::parse(told.out).at("verified"), false);
  EXPECT_EQ(nlohmann::json::parse(told.out).at("differences").size(), 1);
  (void)Make({"repack", in, "--digits", "3"});
}

TEST_F(RepackCommand, StoresPlainWhatTheFilterWouldDamage) {
  const float none = std::numeric_limits<float>::quiet_NaN();
  model_.file().at(kStress).dataset<float>("res", {6, 2}, {none, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
  const ProgramRun run = RunOrv({"repack", model_.path(), "-o", Out(), "--digits", "3", "--verify"});
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_THAT(RawFile(Out()).filters(std::string(kStress) + "/res"), IsEmpty());
}

TEST_F(RepackCommand, TellsInJson) {
  const ProgramRun run = RunOrv({"repack", file_, "-o", Out(), "--digits", "2", "--verify", "--json", "-q"});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_EQ(run.err, "");
  const nlohmann::json answer = nlohmann::json::parse(run.out);
  EXPECT_EQ(answer.at("command"), "repack");
  EXPECT_EQ(answer.at("format_version"), "2.2");
  EXPECT_EQ(answer.at("filter"), "scale-offset");
  EXPECT_EQ(answer.at("digits"), 2);
  EXPECT_EQ(answer.at("chunk"), 4096);
  EXPECT_EQ(answer.at("states"), 3);
  EXPECT_EQ(answer.at("blocks"), 25);
  EXPECT_EQ(answer.at("size_before"), std::filesystem::file_size(file_));
  EXPECT_EQ(answer.at("size_after"), std::filesystem::file_size(Out()));
  EXPECT_EQ(answer.at("verified"), true);
}

TEST_F(RepackCommand, KeepsPropertiesUnknownBlocksAndGroups) {
  model_.properties("/post/constant", "NODE", "SECURED", 6);
  model_.file().at("/mmc").dataset<double>("numbers", {2}, {1, 2});
  model_.file().at("/post/constant/connectivities/QUAD4/orvblock").dataset<std::int32_t>("mbunit", {1}, {0});
  (void)Make({"repack", model_.path(), "--verify"});
  const RawFile raw(Out());
  EXPECT_EQ(raw.attribute_int("/post/constant/properties/NODE/SECURED/orvblock", "nent"), 6);
  EXPECT_THAT(raw.values<double>("/mmc/numbers"), ElementsAre(1, 2));
  EXPECT_TRUE(raw.exists("/post/constant/connectivities/QUAD4/orvblock/mbunit"));
}

TEST_F(RepackCommand, RefusesOptionsThatDoNotGoTogether) {
  for (const std::vector<std::string>& options : {std::vector<std::string>{"--digits", "2", "--no-compress"},
                                                  {"--digits", "-1"},
                                                  {"--format-version", "2.3"},
                                                  {"--no-compress", "--chunk", "5"}}) {
    std::vector<std::string> arguments = {"repack", file_, "-o", Out()};
    arguments.insert(arguments.end(), options.begin(), options.end());
    EXPECT_EQ(RunOrv(arguments).exit_code, 2);
    ExpectNoOutput();
  }
}

TEST_F(RepackCommand, RefusesWhatIsNoResultFileAndTheFileItself) {
  const std::string text = WriteFile("notes.orv", "Dear diary,\n");
  const std::string torn = WriteFile("torn.orv", BytesOf(file_).substr(0, 5000));
  for (const std::string& in : {text, torn, TempPath("none.orv"), TempPath("out")}) {
    ExpectTrouble(RunOrv({"repack", in, "-o", Out()}), in, "; ");
    ExpectNoOutput();
  }
  std::filesystem::create_symlink(file_, TempPath("link.orv"));
  ExpectTrouble(RunOrv({"repack", file_, "-o", TempPath("link.orv")}), TempPath("link.orv"), "is the file itself");
}

TEST_F(RepackCommand, RefusesValuesThatAreMissing) {
  model_.file().at(kStress).integer("nent", 50'000'000).drop("res").raw([](hid_t block) {
    const hsize_t shape[] = {50'000'000, 2};
    const hid_t space = H5Screate_simple(2, shape, nullptr);
    H5Dclose(H5Dcreate2(block, "res", H5T_IEEE_F32LE, space, H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
    H5Sclose(space);
  });
  const std::string in = model_.path();
  ExpectTrouble(RunOrv({"repack", in, "-o", Out()}), in, "values are missing");
  ExpectNoOutput();
}

/// A few packed bytes may claim to be any number of values.
TEST_F(RepackCommand, RefusesMoreValuesThanItsFileCanHold) {
  model_.file().at(kStress).integer("nent", 250'000'000).drop("res").raw([](hid_t block) {
    const hsize_t shape[] = {250'000'000, 2};
    const hid_t space = H5Screate_simple(2, shape, nullptr), creation = H5Pcreate(H5P_DATASET_CREATE);
    H5Pset_chunk(creation, 2, shape);
    H5Pset_deflate(creation, 6);
    const hid_t dataset = H5Dcreate2(block, "res", H5T_IEEE_F32LE, space, H5P_DEFAULT, creation, H5P_DEFAULT);
    const hsize_t first[] = {0, 0};
    H5Dwrite_chunk(dataset, H5P_DEFAULT, 0, first, 8, "12345678");
    H5Dclose(dataset);
    H5Pclose(creation);
    H5Sclose(space);
  });
  const std::string in = model_.path();
  ExpectTrouble(RunOrv({"repack", in, "-o", Out()}), in, "is larger than its file can hold");
  ExpectNoOutput();
}

/// The first versions have a title for each entity; how many entities there are a damaged header does not tell.
TEST_F(RepackCommand, GivesTitlesToTheEntitiesThatAreThereAlone) {
  const std::string block = kConstant + std::string("attributes/NODE_SET");
  model_.file().at(model_.Part(block, "data")).drop("title");
  model_.file().at(model_.Part(block, "header")).integer("nent", std::int64_t{1} << 40);
  const std::string in = model_.path();
  const ProgramRun run = RunOrv({"repack", in, "-o", Out(), "--format-version", "1.0", "-q"});
  EXPECT_EQ(run.exit_code, 0) << run.err;
  EXPECT_EQ(RawFile(Out()).shape("/post/constant/attributes/NODE_SET/data/title"), std::vector<hsize_t>{2});
}

TEST_F(RepackCommand, LeavesNothingBehindForWantOfSpace) {
  Surroundings surroundings;
  for (const long largest : {0L, 3000L, 20000L}) {
    SCOPED_TRACE(largest);
    surroundings.largest_file = largest;
    ExpectTrouble(RunOrv({"repack", file_, "-o", Out()}, surroundings), Out(), "free space");
    ExpectNoOutput();
  }
}

}  // namespace
