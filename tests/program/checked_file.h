#pragma once

// What orv check says of a file, for tests.

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "program/run_program.h"

namespace orv_test {

/// "B001 /post/constant/..." of each finding of a run with --json.
inline std::vector<std::string> FindingsOf(const ProgramRun& run) {
  std::vector<std::string> findings;
  const nlohmann::json report = nlohmann::json::parse(run.out);
  for (const nlohmann::json& finding : report.at("findings")) {
    findings.push_back(finding.at("rule").get<std::string>() + " " + finding.at("place").get<std::string>());
  }
  return findings;
}

class CheckTest : public ProgramTest {
 protected:
  static ProgramRun RunCheck(const std::string& path) { return RunOrv({"check", "--json", path}); }
};

}  // namespace orv_test
