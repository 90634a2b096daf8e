// Drawing of the progress bar.

#include "importer/progress.h"

#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

namespace orvio::program {
namespace {

constexpr int kWidth = 32;
constexpr auto kPatience = std::chrono::milliseconds(500);  // work that is done by then needs no bar
constexpr auto kInterval = std::chrono::milliseconds(100);

}  // namespace

Progress::Progress(std::string title)
    : title_(std::move(title)), on_terminal_(isatty(STDERR_FILENO) == 1), next_(Clock::now() + kPatience) {}

Progress::~Progress() {
  if (drawn_) fmt::print(stderr, "\r\033[K");
}

void Progress::Show(double fraction, const std::string& doing) {
  if (!on_terminal_ || Clock::now() < next_) return;
  const double bounded = std::clamp(fraction, 0.0, 1.0);
  const int filled = static_cast<int>(bounded * kWidth);
  fmt::print(stderr, "\r\033[K{} [{:#>{}}{:.>{}}] {:3.0f} %  {}", title_, "", filled, "", kWidth - filled,
             bounded * 100, doing);
  (void)std::fflush(stderr);
  drawn_ = true;
  next_ = Clock::now() + kInterval;
}

}  // namespace orvio::program
