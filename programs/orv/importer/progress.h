// A progress bar for people.
#pragma once

#include <chrono>
#include <cstddef>
#include <string>

namespace orvio::program {

/// Draws on standard error while it is a terminal, and nothing anywhere else. Short work shows no bar.
class Progress {
 public:
  explicit Progress(std::string title);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// `fraction` of the work done, 0 to 1.
  void Show(double fraction, const std::string& doing);

 private:
  using Clock = std::chrono::steady_clock;

  std::string title_;
  bool on_terminal_;
  std::size_t width_ = 0;  ///< of the longest line drawn
  Clock::time_point next_;
};

}  // namespace orvio::program
