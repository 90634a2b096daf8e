// orv check: whether a result file is sound, and what is not.

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <memory>
#include <string>

#include "checking/file_check.h"
#include "checking/rules.h"
#include "commands/commands.h"
#include "commands/help_text.h"
#include "printing/json_output.h"
#include "printing/table.h"
#include "suggestion.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr int kFoundSomething = 1;

struct Options {
  std::string file, rule, level = "note";
  bool lists_rules = false, json = false;
  Limits limits;
};

std::array<std::size_t, 3> CountByLevel(const Report& report) {
  std::array<std::size_t, 3> counts = {};
  for (const Finding& finding : report.findings) ++counts[static_cast<std::size_t>(finding.rule->level)];
  return counts;
}

std::string Counted(std::size_t count, const char* word) {
  return fmt::format("{} {}{}", count, word, count == 1 ? "" : "s");
}

Json ToJson(const Rule& rule) {
  return {{"id", rule.id},   {"level", WordOf(rule.level)}, {"name", rule.name}, {"wants", rule.wants},
          {"why", rule.why}, {"advice", rule.advice}};
}

Json ToJson(const Finding& finding) {
  return {{"rule", finding.rule->id},
          {"level", WordOf(finding.rule->level)},
          {"name", finding.rule->name},
          {"place", finding.place},
          {"text", finding.text}};
}

/// An answer about the rules themselves has the member `file`, too, and in it nothing.
void PrintAsJson(const Json& rules) {
  Json json = JsonAnswer("check", "");
  json["rules"] = rules;
  PrintJson(json);
}

void PrintRules(bool json) {
  if (json) {
    Json rules = Json::array();
    for (const Rule& rule : AllRules()) rules.push_back(ToJson(rule));
    return PrintAsJson(rules);
  }
  Table table({"rule", "level", "name", "what holds in a sound file"});
  for (const Rule& rule : AllRules()) table.Add({rule.id, WordOf(rule.level), rule.name, rule.wants});
  table.Print("");
}

std::vector<std::string> RuleIds() {
  std::vector<std::string> ids;
  for (const Rule& rule : AllRules()) ids.emplace_back(rule.id);
  return ids;
}

void Explain(const std::string& id, bool json) {
  const Rule* rule = FindRule(id);
  if (!rule)
    throw Trouble(id, "there is no such rule" + DidYouMean(id, RuleIds()), "orv check --list-rules shows them");
  if (json) return PrintAsJson(Json::array({ToJson(*rule)}));
  fmt::print("{} {} ({})\n\n{}\n\nWhy: {}\nWhat to do: {}\n", rule->id, rule->name, WordOf(rule->level), rule->wants,
             rule->why, rule->advice);
}

void PrintAsJson(const Options& options, const Report& report, Level least) {
  const auto counts = CountByLevel(report);
  Json findings = Json::array();
  for (const Finding& finding : report.findings) {
    if (finding.rule->level >= least) findings.push_back(ToJson(finding));
  }
  Json json = JsonAnswer("check", options.file);
  json.update({{"complete", report.is_complete},
               {"errors", counts[2]},
               {"warnings", counts[1]},
               {"notes", counts[0]},
               {"looked_at",
                {{"states", report.looked_at.states},
                 {"blocks", report.looked_at.blocks},
                 {"datasets", report.looked_at.datasets},
                 {"values", report.looked_at.values}}},
               {"findings", findings}});
  PrintJson(json);
}

void PrintText(const Report& report, Level least) {
  for (const Finding& finding : report.findings) {
    if (finding.rule->level < least) continue;
    fmt::print("{} {} {}: {}\n", WordOf(finding.rule->level), finding.rule->id, finding.place, finding.text);
  }
  const auto counts = CountByLevel(report);
  const std::string looked_at = report.is_complete
                                    ? fmt::format("{} in {} looked at", Counted(report.looked_at.blocks, "block"),
                                                  Counted(report.looked_at.states, "state"))
                                    : std::string("not looked at to the end");
  fmt::print("{}, {}, {}; {}\n", Counted(counts[2], "error"), Counted(counts[1], "warning"), Counted(counts[0], "note"),
             looked_at);
}

void Run(const Options& options) {
  if (options.lists_rules) return PrintRules(options.json);
  if (!options.rule.empty()) return Explain(options.rule, options.json);
  if (options.file.empty()) throw CLI::RequiredError("file");
  if (std::isnan(options.limits.seconds)) throw CLI::ValidationError("--time", "nan is no number of seconds");
  const Level least = *LevelOf(options.level);
  const Report report = CheckFile(options.file, options.limits);
  options.json ? PrintAsJson(options, report, least) : PrintText(report, least);
  const auto counts = CountByLevel(report);
  if (counts[1] + counts[2] > 0) throw CLI::RuntimeError(kFoundSomething);
}

}  // namespace

void AddCheckCommand(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("check", "Tell whether a result file is sound, and what is not");
  command->add_option("file", options->file, "Result file; may be left out with --explain and --list-rules");
  command->add_option("--level", options->level, "Least level shown: error, warning or note (default note)")
      ->option_text("LEVEL")
      ->check(CLI::IsMember({"error", "warning", "note"}));
  command->add_option("--time", options->limits.seconds, "Give up reading after so many seconds (default 300)")
      ->check(CLI::Range(0.001, 1e6))
      ->option_text("SECONDS");
  command
      ->add_option("--memory", options->limits.memory_mib,
                   "Give up reading that takes more memory, in MiB (default 4096)")
      ->check(CLI::Range(1, 1 << 24))
      ->option_text("MIB");
  CLI::Option* explain = command->add_option("--explain", options->rule, "Tell what a rule wants, why, and what to do");
  explain->option_text("RULE");
  command->add_flag("--list-rules", options->lists_rules, "List all rules")->excludes(explain);
  command->add_flag("--json", options->json, "Print JSON");
  command->callback([options] { Run(*options); });
  AddNotes(*command, {{"orv check out.orv", "orv check --explain B006"}, "there are errors or warnings"});
}

}  // namespace orvio::program
