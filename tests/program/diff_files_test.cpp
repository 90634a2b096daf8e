// orv diff: imports of one result in all the ways that there are of storing it.

#include <gmock/gmock.h>

#include <filesystem>

#include "program/run_program.h"
#include "program/small_result.h"

namespace {

using namespace orv_test;
using testing::HasSubstr;

class DiffFiles : public ProgramTest {
 protected:
  std::string ImportAs(const char* name, const std::string& result, const std::vector<std::string>& options) const {
    std::filesystem::rename(Import(result, options), TempPath(name));
    return TempPath(name);
  }

  static void ExpectSame(const std::string& a, const std::string& b, const std::string& values) {
    const ProgramRun run = RunOrv({"diff", a, b});
    EXPECT_EQ(run.exit_code, 0) << run.out;
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(run.out, HasSubstr("same: " + values));
  }
};

TEST_F(DiffFiles, OfEveryVersionAreTheSame) {
  const std::string run = WriteFile("run.frd", SmallRun());
  const std::string current = ImportAs("current.orv", run, {"--units", "mm-t-s"});
  for (const char* version : {"1.0", "1.1", "1.2", "2.0", "2.1", "2.2"}) {
    SCOPED_TRACE(version);
    ExpectSame(current, ImportAs("other.orv", run, {"--units", "mm-t-s", "--format-version", version}), "47 values");
  }
}

TEST_F(DiffFiles, OfOtherUnitsDiffer) {
  const std::string run = WriteFile("run.frd", SmallRun());
  const std::string a = ImportAs("a.orv", run, {"--units", "mm-t-s"}),
                    b = ImportAs("b.orv", run, {"--units", "m-kg-s"});
  const ProgramRun diff = RunOrv({"diff", a, b});
  EXPECT_EQ(diff.exit_code, 1);
  EXPECT_THAT(diff.out, HasSubstr("unit system: \"mm-t-s\" in A, \"m-kg-s\" in B\n"));
  EXPECT_THAT(diff.out, HasSubstr("variable STRESS: unit of SXX \"MPa\" in A, \"Pa\" in B\n"));
  EXPECT_THAT(diff.out, HasSubstr("different: 0 of 47 values, "));
}

/// A copy with each dataset of floats in a filter of HDF5's own.
constexpr char kCompress[] = R"(
import sys, h5py
with h5py.File(sys.argv[1], 'r+') as file:
    names = []
    file.visititems(lambda name, item: names.append(name) if name.endswith('/res') else None)
    for name in names:
        values = file[name][...]
        del file[name]
        file.create_dataset(name, data=values, chunks=True, compression='gzip', shuffle=True)
    print(len(names))
)";

TEST_F(DiffFiles, WithCompressedValuesAreTheSame) {
  const std::string run = WriteFile("run.frd", SmallRun());
  const std::string plain = ImportAs("plain.orv", run, {}), packed = ImportAs("packed.orv", run, {});
  const ProgramRun python = RunCommand(ORVIO_PYTHON, {"-c", kCompress, packed});
  if (python.err.find("No module named") != std::string::npos) GTEST_SKIP() << "no h5py";
  ASSERT_EQ(python.out, "4\n") << python.err;
  ExpectSame(plain, packed, "47 values");
}

TEST_F(DiffFiles, OfChangesAreTheSameAsWholeOnes) {
  const std::string run = std::string(ORVIO_SOURCE_DIR) + "/examples/data/plate_impact.frd.gz";
  const std::string whole = ImportAs("whole.orv", run, {});
  const std::string changes = ImportAs("changes.orv", run, {"--incremental", "0"});
  ExpectSame(whole, changes, "1291374 values, 4 notes; 5 quantities in 51 states");
  const std::string rough = ImportAs("rough.orv", run, {"--incremental", "1e-3"});
  EXPECT_EQ(RunOrv({"diff", "-q", whole, rough, "--var", "PE"}).exit_code, 1);
  EXPECT_EQ(RunOrv({"diff", "-q", whole, rough, "--var", "PE", "--abs", "1e-3"}).exit_code, 0);
}

TEST_F(DiffFiles, FromATextAndFromABinaryResultAgreeInSixDigits) {
  const std::string folder = std::string(ORVIO_SHARED_DATA) + "/own_bracket_modes/";
  if (!std::filesystem::exists(folder)) GTEST_SKIP() << "no " << folder;
  const std::string text = ImportAs("text.orv", folder + "bracket_modes.frd.gz", {});
  const std::string binary = ImportAs("binary.orv", folder + "bracket_modes_bin.frd.gz", {});
  EXPECT_EQ(RunOrv({"diff", "-q", text, binary}).exit_code, 1);
  EXPECT_EQ(RunOrv({"diff", "-q", text, binary, "--rel", "5.1e-6", "--abs", "1e-9"}).exit_code, 0);
}

// ---- Real runs, each with another import of the same

struct RealRun {
  const char* name;
  std::vector<const char*> options;
  const char* values;

  friend std::ostream& operator<<(std::ostream& out, const RealRun& run) { return out << run.name; }
};

class DiffRealRuns : public DiffFiles, public testing::WithParamInterface<RealRun> {};

TEST_P(DiffRealRuns, AreTheSameInBothLayouts) {
  const RealRun& real = GetParam();
  const std::string data = std::string(ORVIO_SHARED_DATA) + "/", run = data + real.name;
  if (!std::filesystem::exists(run)) GTEST_SKIP() << "no " << run;
  std::vector<std::string> options(real.options.begin(), real.options.end());
  if (!options.empty() && options.front() == "--dat") options.back().insert(0, data);
  const std::string first = ImportAs("first.orv", run, options), again = ImportAs("again.orv", run, options);
  ExpectSame(first, again, real.values);
  options.insert(options.end(), {"--format-version", "1.2"});
  ExpectSame(first, ImportAs("split.orv", run, options), real.values);
}

INSTANTIATE_TEST_SUITE_P(
    All, DiffRealRuns,
    testing::Values(RealRun{"ccx_beam_harmonic/beamfsh1.frd.gz", {}, "47759 values"},
                    RealRun{"ccx_beam_transient/beamnldyp.frd.gz", {}, "230463 values"},
                    RealRun{"ccx_contact_large/hueeber1.frd.gz", {}, "332956 values"},
                    RealRun{"ccx_furnace_thermal/furnace.frd.gz", {}, "157896 values"},
                    RealRun{"ccx_many_components/sc123.frd.gz", {}, "19660 values"},
                    RealRun{"ccx_plastic_steps/beampkin.frd.gz", {"--dat", "ccx_plastic_steps/beampkin.dat.gz"}, ""},
                    RealRun{"ccx_solid_shell_static/solidshell1.frd.gz", {}, "2772 values"},
                    RealRun{"exo_block_crush/block_crush_1.ex2", {"--history", "node:1,2"}, ""},
                    RealRun{"exo_five_blocks/exomerge_unit_test.e", {}, "476065 values"},
                    RealRun{"own_bracket_modes/bracket_modes.frd.gz", {}, "337053 values"},
                    RealRun{"own_bracket_modes/bracket_modes_bin.frd.gz", {}, "337053 values"},
                    RealRun{"own_mini_types/mini_2d.frd.gz", {}, "372 values"},
                    RealRun{"own_mini_types/mini_3d.frd.gz", {}, "684 values"},
                    RealRun{"own_plate_impact/plate_impact.frd.gz", {}, "1291374 values"}),
    [](const auto& test) {
      std::string name = test.param.name;
      name = name.substr(name.find('/') + 1);
      return name.substr(0, name.find('.'));
    });

}  // namespace
