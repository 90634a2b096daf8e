#pragma once

// Which mutants a run reads and how, and what came of them.

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "mutation.h"

namespace orvio::fuzz {

struct Plan {
  std::vector<std::string> seeds;  ///< files
  std::uint64_t count = 1000;
  std::uint64_t seed = 1;
  int kind = -1;  ///< a Damage, or below 0 for all of them in turn
  int jobs = 2;
  bool check = true;          ///< the library looks at the structure before HDF5 does
  bool plain = false;         ///< HDF5 alone reads the mutants; what becomes of it is no finding
  std::string findings = "";  ///< folder for mutants that broke something
};

/// What came of some mutants. Written by a worker, read by who watches it, also after its death.
struct Counts {
  std::uint64_t mutants = 0;
  std::uint64_t opened = 0;
  std::uint64_t values = 0;
  std::uint64_t refused_reads = 0;
  std::uint64_t oversized = 0;
  std::uint64_t differing = 0;  ///< read otherwise with what is remembered of files than without
};

/// The board that a worker and its watcher share.
struct Board {
  std::atomic<std::uint64_t> current;      ///< mutant that is being read
  std::atomic<std::uint64_t> batch_begin;  ///< first one since the last look for leaks
  Counts counts;
  Counts at_batch;  ///< as they were then
};

/// How a worker ends, besides by a signal or a sanitizer's report.
enum Exit : int {
  kExitDone = 0,
  kExitReported = 77,  ///< a sanitizer's
  kExitLeakInBatch = 78,
  kExitLeak = 79,
};

/// Loads the seeds that a plan names.
std::vector<Bytes> LoadSeeds(const Plan& plan);

/// Mutant number `index`: the same for the same plan on every machine.
Bytes MakeMutant(const Plan& plan, const std::vector<Bytes>& seeds, std::uint64_t index);

const char* NameOf(Damage damage);

/// What a worker is told beside the plan.
struct Shift {
  std::uint64_t from = 0;     ///< first mutant; the next one is `jobs` further
  bool look_at_each = false;  ///< for leaks, up to `until`
  std::uint64_t until = 0;
  int board = -1;  ///< descriptor of the memory
};

/// Reads mutants to the end of the plan; the answer is for exit().
int Work(const Plan& plan, const Shift& shift);

/// Reads everything in a file with HDF5 alone.
struct PlainTally {
  bool opened = false;
  std::uint64_t values = 0;
  std::uint64_t refusals = 0;
};
PlainTally ReadPlain(const char* path);

}  // namespace orvio::fuzz
