// orvio_bench [--folder FOLDER] [--quick] [options of Google Benchmark]
//
// Exit code: 0 when all that ran was right, 1 when values were wrong, 2 on trouble. scripts/bench runs it and prints
// what it found as a table.

#include <benchmark/benchmark.h>
#include <sys/vfs.h>

#include <cstdio>
#include <cstring>
#include <exception>
#include <filesystem>
#include <string>
#include <vector>

#include "running.h"

namespace orvio::bench {
namespace {

struct Options {
  std::string folder;
  bool quick = false;
  std::vector<char*> others;  ///< for Google Benchmark
};

/// Below the folder of the program.
std::string UsualFolder() {
  return std::filesystem::read_symlink("/proc/self/exe").parent_path().string() + "/bench_files";
}

Options Parse(int argc, char** argv) {
  Options options;
  for (int i = 0; i < argc; ++i) {
    if (std::strcmp(argv[i], "--quick") == 0) {
      options.quick = true;
    } else if (std::strcmp(argv[i], "--folder") == 0 && i + 1 < argc) {
      options.folder = argv[++i];
    } else {
      options.others.push_back(argv[i]);
    }
  }
  if (options.folder.empty()) options.folder = UsualFolder();
  return options;
}

/// Kind of the file system of a folder, as far as measurements care.
std::string FileSystemOf(const std::string& folder) {
  struct Kind {
    long magic;
    const char* name;
  };
  static constexpr Kind kKinds[] = {
      {0xEF53, "ext4"}, {0x01021994, "tmpfs"}, {0x58465342, "xfs"}, {0x9123683E, "btrfs"}};
  struct statfs info = {};
  if (statfs(folder.c_str(), &info) != 0) return "unknown";
  for (const Kind& kind : kKinds) {
    if (kind.magic == info.f_type) return kind.name;
  }
  return "another";
}

int Run(Options options) {
  std::filesystem::create_directories(options.folder);
  auto count = static_cast<int>(options.others.size());
  benchmark::Initialize(&count, options.others.data());
  if (benchmark::ReportUnrecognizedArguments(count, options.others.data())) return static_cast<int>(Outcome::kTrouble);
  benchmark::AddCustomContext("file_system", FileSystemOf(options.folder));
  benchmark::AddCustomContext("sizes", options.quick ? "quick" : "full");
  Suite suite(options.folder, options.quick);
  AddListingRequests(suite);
  AddValueRequests(suite);
  AddSeriesRequests(suite);
  AddWritingRequests(suite);
  const bool any = benchmark::RunSpecifiedBenchmarks() > 0;
  return static_cast<int>(any ? suite.outcome() : Outcome::kTrouble);
}

}  // namespace
}  // namespace orvio::bench

int main(int argc, char** argv) {
  try {
    return orvio::bench::Run(orvio::bench::Parse(argc, argv));
  } catch (const std::exception& error) {
    (void)std::fprintf(stderr, "orvio_bench: %s\n", error.what());
    return static_cast<int>(orvio::bench::Outcome::kTrouble);
  }
}
