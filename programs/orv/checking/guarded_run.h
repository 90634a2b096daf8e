// Work on files that may be hostile, in a process of its own.
#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace orvio::program {

/// What the work may use up. Under AddressSanitizer, which reserves terabytes, memory has no limit.
struct Limits {
  double seconds = 300;        ///< by the clock; of the processor's time as much, rounded up
  unsigned memory_mib = 4096;  ///< of address space
};

/// Sends lines from the work to whoever waits for it. A line arrives even when the work crashes right behind it.
class LineSender {
 public:
  explicit LineSender(int pipe) : pipe_(pipe) {}
  void Send(std::string line) const;  ///< without line ends; longer ones than kLongestLine do not arrive

  static constexpr std::size_t kLongestLine = 65536;

 private:
  int pipe_;
};

enum class Ending { kFinished, kOutOfTime, kOutOfMemory, kDied };

struct Outcome {
  Ending ending = Ending::kDied;
  std::string how;  ///< of kDied: "signal 11 (Segmentation fault)"
};

/// Runs `work` in a child process and hands each line that it sends to `take`, as it comes. The child leaves no core
/// dump, prints nothing to standard output and does not outlive this process. Throws when there is no process to be had.
Outcome RunGuarded(const Limits& limits, const std::function<void(const LineSender&)>& work,
                   const std::function<void(std::string_view line)>& take);

}  // namespace orvio::program
