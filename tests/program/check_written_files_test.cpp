// orv check finds no error and no warning in what this program writes, of whatever version and from whatever run.

#include <gmock/gmock.h>

#include <filesystem>
#include <nlohmann/json.hpp>

#include "program/run_program.h"
#include "program/small_result.h"

namespace {

using namespace orv_test;
using nlohmann::json;

class CheckWrittenFiles : public ProgramTest {
 protected:
  static void ExpectSound(const std::string& path, int states) {
    const ProgramRun run = RunOrv({"check", "--json", path});
    EXPECT_EQ(run.exit_code, 0) << run.out << run.err;
    const json report = json::parse(run.out);
    EXPECT_EQ(report.at("errors"), 0) << run.out;
    EXPECT_EQ(report.at("warnings"), 0) << run.out;
    EXPECT_EQ(report.at("complete"), true);
    if (states > 0) {
      EXPECT_EQ(report.at("looked_at").at("states"), states);
    }
    EXPECT_GT(report.at("looked_at").at("blocks"), 5);
  }
};

TEST_F(CheckWrittenFiles, OfAllVersionsAreSound) {
  const std::string run = WriteFile("run.frd", SmallRun());
  for (const char* version : {"1.0", "1.1", "1.2", "2.0", "2.1", "2.2"}) {
    SCOPED_TRACE(version);
    ExpectSound(Import(run, {"--format-version", version}), 2);
    ExpectSound(Import(run, {"--format-version", version, "--units", "mm-t-s"}), 2);
  }
}

TEST_F(CheckWrittenFiles, ThatHoldChangesAreSound) {
  const std::string run = std::string(ORVIO_SHARED_DATA) + "/own_plate_impact/plate_impact.frd.gz";
  if (!std::filesystem::exists(run)) GTEST_SKIP() << "no " << run;
  ExpectSound(Import(run, {"--incremental", "1e-3"}), 51);
}

TEST_F(CheckWrittenFiles, WithHistoriesAreSound) {
  const std::string run = std::string(ORVIO_SHARED_DATA) + "/exo_block_crush/block_crush_1.ex2";
  if (!std::filesystem::exists(run)) GTEST_SKIP() << "no " << run;
  ExpectSound(Import(run, {"--history", "node:1,2"}), 11);
}

TEST_F(CheckWrittenFiles, WithIntegrationPointsAreSound) {
  const std::string folder = std::string(ORVIO_SHARED_DATA) + "/ccx_plastic_steps/";
  if (!std::filesystem::exists(folder)) GTEST_SKIP() << "no " << folder;
  ExpectSound(Import(folder + "beampkin.frd.gz", {"--dat", folder + "beampkin.dat.gz"}), 20);
}

class CheckRealRuns : public CheckWrittenFiles, public testing::WithParamInterface<const char*> {};

TEST_P(CheckRealRuns, AreSound) {
  const std::string run = std::string(ORVIO_SHARED_DATA) + "/" + GetParam();
  if (!std::filesystem::exists(run)) GTEST_SKIP() << "no " << run;
  ExpectSound(Import(run), 0);
}

INSTANTIATE_TEST_SUITE_P(All, CheckRealRuns,
                         testing::Values("ccx_beam_harmonic/beamfsh1.frd.gz", "ccx_beam_transient/beamnldyp.frd.gz",
                                         "ccx_contact_large/hueeber1.frd.gz", "ccx_furnace_thermal/furnace.frd.gz",
                                         "ccx_many_components/sc123.frd.gz",
                                         "ccx_solid_shell_static/solidshell1.frd.gz",
                                         "exo_five_blocks/exomerge_unit_test.e",
                                         "own_bracket_modes/bracket_modes_bin.frd.gz", "own_mini_types/mini_2d.frd.gz",
                                         "own_mini_types/mini_3d.frd.gz"),
                         [](const auto& test) {
                           const std::string path = test.param;
                           return path.substr(0, path.find('/')) + (path.ends_with("mini_3d.frd.gz") ? "_3d" : "");
                         });

}  // namespace
