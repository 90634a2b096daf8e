// orv check: what it says of whole files: sound, cut, of another kind, with values that are lost.

#include <gmock/gmock.h>

#include <nlohmann/json.hpp>

#include "program/checked_file.h"
#include "program/sound_file.h"

namespace {

using namespace orv_test;
using nlohmann::json;
using testing::ElementsAre;
using testing::IsEmpty;

using CheckOneFile = CheckTest;

const std::string kStress1 = std::string(kSoundState1) + "/entityresults/NODE/STRESS/orvblock";
const std::string kStress2 = std::string(kSoundState2) + "/entityresults/NODE/STRESS/orvblock";

TEST_F(CheckOneFile, WithNothingWrongFindsNothing) {
  for (const bool with_groups : {false, true}) {
    ForgedModel model;
    FillSoundFile(model, with_groups);
    const ProgramRun run = RunCheck(model.path());
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_THAT(FindingsOf(run), IsEmpty());
    const json report = json::parse(run.out);
    EXPECT_EQ(report.at("complete"), true);
    EXPECT_EQ(report.at("looked_at").at("states"), 2);
    EXPECT_EQ(report.at("looked_at").at("blocks"), with_groups ? 24 : 19);
  }
}

TEST_F(CheckOneFile, InTheSplitLayoutWithNothingWrongFindsNothing) {
  ForgedModel model(ForgedModel::kSplit);
  FillSoundFile(model);
  const ProgramRun run = RunCheck(model.path());
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_THAT(FindingsOf(run), IsEmpty());
}

TEST_F(CheckOneFile, InTheSplitLayoutTellsOfAMissingHeaderAndNames) {
  ForgedModel model(ForgedModel::kSplit);
  FillSoundFile(model);
  model.file().at("/post/constant/text/NOTES").drop("header");
  model.file().at("/post/constant/variables/PE/data").drop("cid");
  EXPECT_THAT(FindingsOf(RunCheck(model.path())),
              testing::UnorderedElementsAre("B010 /post/constant/text/NOTES", "B008 /post/constant/variables/PE/data"));
}

TEST_F(CheckOneFile, TakesAFullStateForTheBeginningOfAChain) {
  ForgedModel model;
  FillSoundFile(model);
  model.file().at(kStress2).integer32("indexic", 1);
  const ProgramRun run = RunCheck(model.path());
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_THAT(FindingsOf(run), IsEmpty());
}

TEST_F(CheckOneFile, OfAnotherKindIsWithoutResults) {
  const std::string path = TempPath("empty.h5");
  { const Id file(H5Fcreate(path.c_str(), H5F_ACC_TRUNC, H5P_DEFAULT, H5P_DEFAULT), "make a file"); }
  const ProgramRun run = RunCheck(path);
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(FindingsOf(run), ElementsAre("F001 /"));
}

TEST_F(CheckOneFile, CutAnywhereIsRefusedAsAWhole) {
  ForgedModel model;
  FillSoundFile(model);
  const std::string bytes = BytesOf(model.path());
  for (const size_t size : {size_t{0}, size_t{7}, size_t{100}, bytes.size() / 2, bytes.size() - 1}) {
    SCOPED_TRACE(size);
    const ProgramRun run = RunCheck(WriteFile("cut.orv", bytes.substr(0, size)));
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_THAT(FindingsOf(run), ElementsAre("S001 /"));
    EXPECT_EQ(run.err, "");
  }
}

TEST_F(CheckOneFile, OfTextOrWithoutItsSignatureIsRefusedAsAWhole) {
  ForgedModel model;
  FillSoundFile(model);
  std::string patched = BytesOf(model.path());
  patched[1] = 'X';
  for (const std::string& bytes : {std::string("Dear diary,\n"), patched}) {
    const ProgramRun run = RunCheck(WriteFile("other.orv", bytes));
    EXPECT_EQ(run.exit_code, 1);
    EXPECT_THAT(FindingsOf(run), ElementsAre("S001 /"));
  }
}

/// HDF5 stores ranges whose steps do not fit 32 bits in a way that it refuses to read. Readers with a decoder of their own
/// can; HDF5 alone cannot, and it is HDF5 alone that most readers have.
TEST_F(CheckOneFile, WithValuesThatTheFilterLostTellsOfThem) {
  ForgedModel model;
  FillSoundFile(model);
  model.file().at(kStress1).drop("res").raw([](hid_t here) {
    const hsize_t shape[] = {4, 2};
    const Id list(H5Pcreate(H5P_DATASET_CREATE), "list"), space(H5Screate_simple(2, shape, nullptr), "space");
    Check(H5Pset_chunk(list.get(), 2, shape), "chunk");
    Check(H5Pset_scaleoffset(list.get(), H5Z_SO_FLOAT_DSCALE, 3), "filter");
    const Id res(H5Dcreate2(here, "res", H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "res");
    const float values[] = {-1e7F, 1e7F, 1, 2, 3, 4, 5, 6};
    Check(H5Dwrite(res.get(), H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, values), "res");
  });
  const ProgramRun run = RunCheck(model.path());
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(FindingsOf(run), ElementsAre("D002 " + kStress1 + "/res"));
}

TEST_F(CheckOneFile, WithAWrongChecksumTellsOfTheValues) {
  ForgedModel model;
  FillSoundFile(model);
  const float pattern[] = {1234.5F, 5432.25F, 1234.5F, 5432.25F, 1, 2, 3, 4};
  model.file().at(kStress1).drop("res").raw([&](hid_t here) {
    const hsize_t shape[] = {4, 2};
    const Id list(H5Pcreate(H5P_DATASET_CREATE), "list"), space(H5Screate_simple(2, shape, nullptr), "space");
    Check(H5Pset_chunk(list.get(), 2, shape), "chunk");
    Check(H5Pset_fletcher32(list.get()), "filter");
    const Id res(H5Dcreate2(here, "res", H5T_NATIVE_FLOAT, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), "res");
    Check(H5Dwrite(res.get(), H5T_NATIVE_FLOAT, H5S_ALL, H5S_ALL, H5P_DEFAULT, pattern), "res");
  });
  std::string bytes = BytesOf(model.path());
  const size_t at = bytes.find(std::string(reinterpret_cast<const char*>(pattern), 16));
  ASSERT_NE(at, std::string::npos);
  bytes[at] = static_cast<char>(bytes[at] ^ 1);
  const ProgramRun run = RunCheck(WriteFile("damaged.orv", bytes));
  EXPECT_EQ(run.exit_code, 1);
  EXPECT_THAT(FindingsOf(run), ElementsAre("D003 " + kStress1 + "/res"));
}

TEST_F(CheckOneFile, TellsOfOneRuleAHundredTimesAndThenTheNumberOfTheRest) {
  ForgedModel model;
  FillSoundFile(model);
  model.file().at("/post/constant/text");
  for (int i = 0; i < 150; ++i) model.file().soft_link(("L" + std::to_string(i)).c_str(), "/nowhere");
  const ProgramRun run = RunCheck(model.path());
  const json findings = json::parse(run.out).at("findings");
  ASSERT_EQ(findings.size(), 101U);
  EXPECT_EQ(findings.back().at("rule"), "R004");
  EXPECT_EQ(findings.back().at("text"), "50 more of this kind");
}

}  // namespace
