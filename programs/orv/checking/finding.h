// What orv check found, and how it comes over the pipe.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "checking/guarded_run.h"
#include "checking/rules.h"

namespace orvio::program {

struct Finding {
  const Rule* rule = nullptr;
  std::string place;  ///< absolute path in the file
  std::string text;   ///< what is there, in a sentence without a full stop
};

/// What was looked at.
struct LookedAt {
  std::uint64_t states = 0, blocks = 0, datasets = 0, values = 0;
};

struct Report {
  std::vector<Finding> findings;  ///< in the order of the file; at most `kMostFindings`
  LookedAt looked_at;
  bool is_complete = false;  ///< the file was looked at to its end

  static constexpr std::size_t kMostFindings = 20000;
};

/// The end of the pipe that tells. Of one rule it tells the first ones alone, and at the end how many more there are.
class Teller {
 public:
  explicit Teller(const LineSender& sender) : sender_(sender) {}

  void Tell(const char* rule, const std::string& place, const std::string& text);
  void Enter(const std::string& place);  ///< where a crash that comes now would have happened
  void Finish();

  LookedAt looked_at;

 private:
  void Send(const char* rule, const std::string& place, const std::string& text);

  const LineSender& sender_;
  std::map<std::string, std::uint64_t> counts_;  ///< by rule
};

/// The end of the pipe that listens. Lines that no Teller sends are counted and dropped.
class Listener {
 public:
  void Take(std::string_view line);

  /// The report, with what became of the work.
  Report Finish(const Outcome& outcome, const Limits& limits);

 private:
  void TakeFinding(const std::vector<std::string>& fields);
  void TakeEnd(const std::vector<std::string>& fields);
  void Add(const char* rule, const std::string& text);

  Report report_;
  std::string place_ = "/";
  std::uint64_t unknown_lines_ = 0;
};

}  // namespace orvio::program
