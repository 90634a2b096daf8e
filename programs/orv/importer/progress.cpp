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
  if (width_ > 0) (void)std::fprintf(stderr, "\r%*s\r", static_cast<int>(width_), "");
}

void Progress::Show(double fraction, const std::string& doing) {
  if (!on_terminal_ || Clock::now() < next_) return;
  const double bounded = std::clamp(fraction, 0.0, 1.0);
  const int filled = static_cast<int>(bounded * kWidth);
  const std::string line =
      fmt::format("{} [{:#>{}}{:.>{}}] {:3.0f} %  {}", title_, "", filled, "", kWidth - filled, bounded * 100, doing);
  // Blanks wipe away the rest of a longer line: not every terminal knows a command for that.
  (void)std::fprintf(stderr, "\r%-*s", static_cast<int>(width_), line.c_str());
  (void)std::fflush(stderr);
  width_ = std::max(width_, line.size());
  next_ = Clock::now() + kInterval;
}

}  // namespace orvio::program
