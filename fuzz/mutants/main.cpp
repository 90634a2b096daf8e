// Reads damaged copies of files in full and tells what came of it: docs/fuzzing.md.

#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <filesystem>
#include <optional>

#include "mutants/watcher.h"

namespace orvio::fuzz {
namespace {

constexpr char kUsage[] =
    "usage: mutants [--count N] [--seed N] [--kind KIND] [--jobs N] [--plain]\n"
    "               [--no-check] [--write N] [--findings FOLDER] FILE...\n"
    "kinds: bytes, numbers, cuts, structures, values, mixed\n";

/// One word of the command line that takes a number.
struct Number {
  const char* name;
  std::uint64_t* value;
};

struct Command {
  Plan plan;
  Shift shift;
  bool is_worker = false;
  std::uint64_t write = ~std::uint64_t{0};  ///< mutant that is only written to standard output
};

bool TakeKind(const char* word, Plan& plan) {
  if (std::strcmp(word, "mixed") == 0) return true;
  for (int i = 0; i < kDamages; ++i) {
    if (std::strcmp(word, NameOf(static_cast<Damage>(i))) != 0) continue;
    plan.kind = i;
    return true;
  }
  return false;
}

bool TakeFlag(const char* word, Command& command) {
  if (std::strcmp(word, "--plain") == 0) return command.plan.plain = true;
  if (std::strcmp(word, "--worker") == 0) return command.is_worker = true;
  if (std::strcmp(word, "--shift-each") == 0) return command.shift.look_at_each = true;
  if (std::strcmp(word, "--no-check") != 0) return false;
  command.plan.check = false;
  return true;
}

std::optional<Command> Parse(const std::vector<const char*>& words) {
  Command command;
  Plan& plan = command.plan;
  auto jobs = static_cast<std::uint64_t>(sysconf(_SC_NPROCESSORS_ONLN)), board = std::uint64_t{0};
  const Number numbers[] = {{"--count", &plan.count},
                            {"--seed", &plan.seed},
                            {"--jobs", &jobs},
                            {"--write", &command.write},
                            {"--board", &board},
                            {"--shift-from", &command.shift.from},
                            {"--shift-until", &command.shift.until}};
  for (std::size_t i = 0; i < words.size(); ++i) {
    if (words[i][0] != '-') {
      plan.seeds.emplace_back(words[i]);
      continue;
    }
    if (TakeFlag(words[i], command)) continue;
    if (i + 1 == words.size()) return std::nullopt;
    const char* value = words[++i];
    bool known = false;
    for (const Number& number : numbers) {
      if (std::strcmp(words[i - 1], number.name) != 0) continue;
      *number.value = std::strtoull(value, nullptr, 10);
      known = true;
    }
    if (std::strcmp(words[i - 1], "--kind") == 0) known = TakeKind(value, plan);
    if (std::strcmp(words[i - 1], "--findings") == 0) {
      plan.findings = value;
      known = true;
    }
    if (!known) return std::nullopt;
  }
  plan.jobs = jobs > 0 ? static_cast<int>(jobs) : 1;
  command.shift.board = static_cast<int>(board);
  if (plan.seeds.empty()) return std::nullopt;
  return command;
}

void PrintRow(const char* who, const Outcome& outcome) {
  const Counts& counts = outcome.counts;
  (void)std::printf(
      "%-10s %8llu %8llu %8llu %12llu %10llu %8llu %6llu %14llu %10llu %10llu %9.0f\n", who,
      static_cast<unsigned long long>(counts.mutants), static_cast<unsigned long long>(counts.opened),
      static_cast<unsigned long long>(counts.mutants - counts.opened), static_cast<unsigned long long>(counts.values),
      static_cast<unsigned long long>(counts.refused_reads), static_cast<unsigned long long>(outcome.crashes),
      static_cast<unsigned long long>(outcome.hangs), static_cast<unsigned long long>(outcome.memory_errors),
      static_cast<unsigned long long>(counts.oversized), static_cast<unsigned long long>(counts.differing),
      static_cast<double>(counts.mutants) / outcome.seconds);
  (void)std::fflush(stdout);
}

int WriteMutant(const Command& command) {
  const Bytes bytes = MakeMutant(command.plan, LoadSeeds(command.plan), command.write);
  return std::fwrite(bytes.data(), 1, bytes.size(), stdout) == bytes.size() ? 0 : 1;
}

int Run(Command command) {
  if (command.is_worker) return Work(command.plan, command.shift);
  if (command.write != ~std::uint64_t{0}) return WriteMutant(command);
  if (command.plan.findings.empty()) command.plan.findings = "findings";
  std::filesystem::create_directories(command.plan.findings);
  (void)std::printf("%-10s %8s %8s %8s %12s %10s %8s %6s %14s %10s %10s %9s\n", "reader", "mutants", "opened",
                    "refused", "values", "failed", "crashes", "hangs", "memory errors", "oversized", "differing",
                    "a second");
  const bool plain = command.plan.plain;
  const Outcome outcome = Watch(command.plan);
  PrintRow(plain ? "HDF5" : "orvio", outcome);
  return !plain && outcome.Findings() > 0 ? 1 : 0;
}

}  // namespace

std::vector<std::string> ArgumentsOf(const Plan& plan, const Shift& shift) {
  std::vector<std::string> words = {"mutants",       "--worker",
                                    "--count",       std::to_string(plan.count),
                                    "--seed",        std::to_string(plan.seed),
                                    "--jobs",        std::to_string(plan.jobs),
                                    "--findings",    plan.findings,
                                    "--board",       std::to_string(shift.board),
                                    "--shift-from",  std::to_string(shift.from),
                                    "--shift-until", std::to_string(shift.until),
                                    "--kind",        plan.kind < 0 ? "mixed" : NameOf(static_cast<Damage>(plan.kind))};
  if (!plan.check) words.emplace_back("--no-check");
  if (plan.plain) words.emplace_back("--plain");
  if (shift.look_at_each) words.emplace_back("--shift-each");
  words.insert(words.end(), plan.seeds.begin(), plan.seeds.end());
  return words;
}

}  // namespace orvio::fuzz

int main(int argument_count, char** arguments) {
  const std::vector<const char*> words(arguments + 1, arguments + argument_count);
  try {
    const auto command = orvio::fuzz::Parse(words);
    if (command) {
      const int status = orvio::fuzz::Run(*command);
      (void)std::fflush(stdout);
      if (command->is_worker) _exit(status);  // leaks have been looked for
      return status;
    }
  } catch (const std::exception& error) {
    (void)std::fprintf(stderr, "mutants: %s\n", error.what());
    return 2;
  }
  (void)std::fputs(orvio::fuzz::kUsage, stderr);
  return 2;
}
