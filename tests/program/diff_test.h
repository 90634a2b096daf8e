#pragma once

// Two forged files, side by side.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "program/forged_results.h"
#include "program/run_program.h"

namespace orv_test {

/// Both hold the same until a test changes one of them: 32 values of 5 quantities in 2 states.
class DiffTest : public ProgramTest {
 protected:
  DiffTest() {
    FillForgedResults(a_);
    FillForgedResults(b_);
  }

  ProgramRun Run(std::vector<std::string> options = {}) {
    options.insert(options.begin(), {"diff", a_.path(), b_.path()});
    return RunOrv(options);
  }

  /// All lines but the last.
  std::string Differences(const std::vector<std::string>& options = {}) {
    const ProgramRun run = Run(options);
    EXPECT_EQ(run.exit_code, 1) << run.out;
    EXPECT_EQ(run.err, "");
    const size_t last = run.out.rfind("different: ");
    EXPECT_NE(last, std::string::npos) << run.out;
    return run.out.substr(0, last);
  }

  /// The last line.
  std::string Summary(const std::vector<std::string>& options = {}) {
    const std::string out = Run(options).out;
    const size_t before = out.size() > 1 ? out.rfind('\n', out.size() - 2) : std::string::npos;
    return before == std::string::npos ? out : out.substr(before + 1);
  }

  void ExpectSame(const std::vector<std::string>& options = {}) {
    const ProgramRun run = Run(options);
    EXPECT_EQ(run.exit_code, 0) << run.out;
    EXPECT_TRUE(run.out.starts_with("same: ")) << run.out;
    EXPECT_EQ(run.err, "");
  }

  static ForgedFile& At(ForgedFile& file, const std::string& block) { return file.at(block + "/orvblock"); }

  ForgedFile a_{"a"}, b_{"b"};
};

inline const std::string kShellStress = std::string(kState1) + "elementresults/SHELL/STRESS";
inline const std::string kTemp = "/post/constant/entityresults/NODE/TEMP";
inline const std::string kOdd = std::string(kState1) + "entityresults/NODE/ODD";
inline const std::string kWave = std::string(kState1) + "entityresults/NODE/WAVE";

}  // namespace orv_test
