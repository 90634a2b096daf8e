// orv repair: what can be read of a damaged result file, in a new one.

#include <fmt/format.h>

#include <cmath>
#include <memory>
#include <string>

#include "commands/commands.h"
#include "commands/help_text.h"
#include "printing/json_output.h"
#include "repairing/repair.h"

namespace orvio::program {
namespace {

constexpr int kLostSomething = 1;

std::string Counted(std::uint64_t count, const char* word) {
  return fmt::format("{} {}{}", count, word, count == 1 ? "" : "s");
}

Json ToJson(const Loss& loss) {
  return {{"place", loss.place},
          {"why", loss.why},
          {"byte", loss.byte == Loss::kNoByte ? Json() : Json(loss.byte)},
          {"partial", loss.is_partial}};
}

void PrintAsJson(const RepairOptions& options, const RepairReport& report) {
  Json losses = Json::array();
  for (const Loss& loss : report.losses) losses.push_back(ToJson(loss));
  Json json = JsonAnswer("repair", options.file);
  json.update({{"out", options.out},
               {"sound", report.is_sound},
               {"rolled_back", report.was_rolled_back},
               {"salvaged", {{"states", report.states}, {"blocks", report.blocks}}},
               {"errors", report.errors},
               {"lost", losses}});
  PrintJson(json);
}

void PrintText(const RepairOptions& options, const RepairReport& report) {
  if (report.was_rolled_back) {
    fmt::print("the last change of the file was not finished: the output is as the file was before\n");
    fmt::print("this is no damage; opening the file for writing once puts it right, too\n");
  }
  if (report.is_sound) fmt::print("the file is sound: the output is a copy\n");
  if (!report.is_sound && report.losses.empty()) fmt::print("the file is damaged: the output has all of it\n");
  for (const Loss& loss : report.losses) {
    const std::string byte = loss.byte == Loss::kNoByte ? "" : fmt::format(", at byte {}", loss.byte);
    fmt::print("{} {}: {}{}\n", loss.is_partial ? "damaged" : "lost", loss.place, loss.why, byte);
  }
  fmt::print("{} and {} salvaged, {} lost or damaged\n", Counted(report.states, "state"),
             Counted(report.blocks, "block"), report.losses.size());
  if (report.errors > 0) {
    fmt::print("orv check finds {} in the output that no damage explains: orv check {}\n",
               Counted(report.errors, "error"), options.out);
  }
}

void Run(const RepairOptions& options, bool json) {
  if (std::isnan(options.limits.seconds)) throw CLI::ValidationError("--time", "nan is no number of seconds");
  const RepairReport report = RepairFile(options);
  json ? PrintAsJson(options, report) : PrintText(options, report);
  if (!report.losses.empty()) throw CLI::RuntimeError(kLostSomething);
}

}  // namespace

void AddRepairCommand(CLI::App& app) {
  auto options = std::make_shared<RepairOptions>();
  auto json = std::make_shared<bool>(false);
  CLI::App* command = app.add_subcommand(
      "repair", "Write what can be read of a damaged result file into another one, and tell what is lost");
  command->add_option("file", options->file, "Result file; it is not changed")->required();
  command->add_option("-o,--out", options->out, "Result file to write")->required()->option_text("FILE");
  command->add_flag("--force", options->replaces, "Replace an output file that exists");
  command->add_flag("--keep-incomplete", options->keeps_incomplete,
                    "Also keep what is left of a last state that is not complete");
  command->add_option("--time", options->limits.seconds, "Give up a step after so many seconds (default 3600)")
      ->check(CLI::Range(0.001, 1e6))
      ->option_text("SECONDS");
  command
      ->add_option("--memory", options->limits.memory_mib,
                   "Give up a step that takes more memory, in MiB (default 4096)")
      ->check(CLI::Range(1, 1 << 24))
      ->option_text("MIB");
  command->add_flag("--json", *json, "Print JSON");
  command->callback([options, json] { Run(*options, *json); });
  AddNotes(*command, {{"orv repair torn.orv -o whole.orv"}, "something is lost or damaged; the output has the rest"});
}

}  // namespace orvio::program
