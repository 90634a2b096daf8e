#include "running.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <thread>

namespace orvio::bench {
namespace {

std::string SizeOf(const Job& job) {
  return std::string(job.name) + ":" + std::to_string(job.nodes) + "x" + std::to_string(job.states);
}

}  // namespace

void MakeUnknown(const std::string& path) {
  Demand(utimensat(AT_FDCWD, path.c_str(), nullptr, 0) == 0, "cannot touch " + path);
  std::this_thread::sleep_for(std::chrono::milliseconds(60));
}

void ScratchFile::Remove() const {
  std::error_code ignored;  // there is none at first
  (void)std::filesystem::remove(path_, ignored);
}

benchmark::internal::Benchmark* Suite::Add(const std::string& request, const Job& job, const Road& road,
                                           const Body& body) {
  const std::string name = request + "/" + SizeOf(job) + "/" + road.name;
  return benchmark::RegisterBenchmark(name.c_str(),
                                      [this, &road, body](benchmark::State& state) { Run(state, road, body); })
      ->Unit(benchmark::kMicrosecond);
}

void Suite::Run(benchmark::State& state, const Road& road, const Body& body) {
  try {
    if (road.enter) road.enter();
    body(state);
  } catch (const WrongValues& wrong) {
    Fail(state, Outcome::kWrong, std::string("wrong: ") + wrong.what());
  } catch (const std::exception& error) {
    Fail(state, Outcome::kTrouble, std::string("trouble: ") + error.what());
  }
}

void Suite::Fail(benchmark::State& state, Outcome outcome, const std::string& why) {
  outcome_ = std::max(outcome_, outcome);
  state.SkipWithError(why.c_str());
}

}  // namespace orvio::bench
