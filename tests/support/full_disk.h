#pragma once

#include <sys/resource.h>

#include <csignal>
#include <cstdint>
#include <filesystem>
#include <stdexcept>
#include <string>

namespace orv_test {

/// While it lives, no file of this process grows beyond so many bytes: as on a full disk, the write fails.
class FullDisk {
 public:
  explicit FullDisk(std::uintmax_t bytes) : handler_(std::signal(SIGXFSZ, SIG_IGN)) {
    if (getrlimit(RLIMIT_FSIZE, &before_) != 0) throw std::runtime_error("no limit to go back to");
    Limit({bytes, before_.rlim_max});
  }
  /// The file at `path` may grow by so many bytes.
  FullDisk(const std::string& path, std::uintmax_t room) : FullDisk(std::filesystem::file_size(path) + room) {}
  FullDisk(const FullDisk&) = delete;
  FullDisk& operator=(const FullDisk&) = delete;
  ~FullDisk() {
    (void)setrlimit(RLIMIT_FSIZE, &before_);
    (void)std::signal(SIGXFSZ, handler_);
  }

 private:
  static void Limit(const rlimit& limit) {
    if (setrlimit(RLIMIT_FSIZE, &limit) != 0) throw std::runtime_error("no limit");
  }

  rlimit before_ = {};
  void (*handler_)(int);
};

}  // namespace orv_test
