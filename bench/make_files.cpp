// Files of jobs. Their names tell all that they were made from, and a file has its name only once it is complete.

#include <fcntl.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>

#include "flat.h"
#include "library.h"
#include "running.h"

namespace orvio::bench {
namespace {

constexpr int kModel = 1;  // raised with every change of the model

std::string StemOf(const Job& job) {
  static constexpr const char* kStorages[] = {"float", "double", "packed"};
  char stem[128];
  (void)std::snprintf(stem, sizeof stem, "model%d-%dx%d-%s-%s", kModel, job.nodes, job.states,
                      job.split ? "split" : "single", kStorages[static_cast<int>(job.storage)]);
  return stem;
}

/// Has the file on the disk before anything is measured: what is still to be written would be written meanwhile.
void Settle(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  if (file < 0) return;
  (void)fsync(file);  // a matter of noise alone
  (void)close(file);
}

void MakeOnce(const std::string& path, const Job& job, void (*make)(const Job&, const std::string&)) {
  if (std::filesystem::exists(path)) return;
  (void)std::fprintf(stderr, "making %s\n", std::filesystem::path(path).filename().c_str());
  const std::string part = path + ".part";
  make(job, part);
  Settle(part);
  std::filesystem::rename(part, path);
}

}  // namespace

const Files& FileStore::Of(const Job& job) {
  const std::string stem = StemOf(job);
  const auto known = files_.find(stem);
  if (known != files_.end()) return known->second;
  std::filesystem::create_directories(folder_);
  const std::string path = folder_ + "/" + stem;
  MakeOnce(path + ".orv", job, MakeOrvFile);
  MakeOnce(path + ".flat", job, MakeFlatFile);
  return files_.emplace(stem, Files{job, path + ".orv", path + ".flat"}).first->second;
}

}  // namespace orvio::bench
