#pragma once

// How a benchmark runs: its name, its files, and what becomes of wrong values and failures.

#include <benchmark/benchmark.h>

#include <functional>
#include <map>
#include <string>

#include "roads.h"

namespace orvio::bench {

/// A request delivered something else than the model.
struct WrongValues : std::runtime_error {
  WrongValues() : std::runtime_error("values differ from the model") {}
};

inline void DemandRight(bool right) {
  if (!right) throw WrongValues();
}

/// Lets a file look as if it had changed: what the library remembers of it is void then, as in a process that meets it
/// for the first time. Takes the time that the clock of a file system needs to move on.
void MakeUnknown(const std::string& path);

/// Files of jobs in a folder: made at first demand, and used again by later runs.
class FileStore {
 public:
  explicit FileStore(std::string folder) : folder_(std::move(folder)) {}

  const Files& Of(const Job& job);
  /// A path for a file that one benchmark writes and removes.
  std::string Scratch() const { return folder_ + "/written"; }

 private:
  std::string folder_;
  std::map<std::string, Files> files_;
};

/// A file that goes with its scope.
class ScratchFile {
 public:
  explicit ScratchFile(std::string path) : path_(std::move(path)) { Remove(); }
  ~ScratchFile() { Remove(); }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;
  const std::string& path() const { return path_; }

 private:
  void Remove() const;

  std::string path_;
};

/// Ordered by how bad they are; the values are exit codes.
enum class Outcome { kRight = 0, kWrong = 1, kTrouble = 2 };

class Suite {
 public:
  Suite(const std::string& folder, bool quick) : files_(folder), jobs_(JobsOf(quick)) {}

  FileStore& files() { return files_; }
  const Jobs& jobs() const { return jobs_; }
  Outcome outcome() const { return outcome_; }

  using Body = std::function<void(benchmark::State&)>;
  /// Registers REQUEST/JOB:NODESxSTATES/ROAD. The body may throw.
  benchmark::internal::Benchmark* Add(const std::string& request, const Job& job, const Road& road, const Body& body);

 private:
  void Run(benchmark::State& state, const Road& road, const Body& body);
  void Fail(benchmark::State& state, Outcome outcome, const std::string& why);

  FileStore files_;
  const Jobs& jobs_;
  Outcome outcome_ = Outcome::kRight;
};

void AddListingRequests(Suite& suite);
void AddValueRequests(Suite& suite);
void AddSeriesRequests(Suite& suite);
void AddWritingRequests(Suite& suite);

}  // namespace orvio::bench
