// orv diff: whether two result files hold the same, and what is different.

#include <charconv>
#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "commands/commands.h"
#include "commands/help_text.h"
#include "commands/id_list.h"
#include "comparing/file_comparison.h"
#include "printing/diff_output.h"
#include "reading/state_selection.h"

namespace orvio::program {
namespace {

constexpr int kDifferent = 1;
constexpr std::size_t kShownLines = 20;

struct Options {
  DiffSubject subject;
  DiffOptions diff;
  std::string absolute = "0", relative = "0", match_time;
  std::vector<std::string> ids, tolerances;
  std::size_t most = kShownLines;
  bool is_quiet = false, json = false;
};

double ToleranceOf(const std::string& option, std::string_view text) {
  double value = 0;
  const char* end = text.data() + text.size();
  const auto parsed = std::from_chars(text.data(), end, value);
  if (parsed.ec == std::errc() && parsed.ptr == end && value >= 0) return value;
  throw CLI::ValidationError(option, "\"" + std::string(text) + "\" is no number from 0 on");
}

/// "STRESS=0.5" or "STRESS=0.5,1e-6". Names may have any character.
NamedTolerance NamedToleranceOf(const std::string& text) {
  const std::size_t equals = text.rfind('=');
  if (equals == std::string::npos || equals == 0) {
    throw CLI::ValidationError("--tol", "\"" + text + "\" is not like NAME=ABSOLUTE or NAME=ABSOLUTE,RELATIVE");
  }
  const std::string numbers = text.substr(equals + 1);
  const std::size_t comma = numbers.find(',');
  NamedTolerance tolerance{text.substr(0, equals), ToleranceOf("--tol", numbers.substr(0, comma)), {}};
  if (comma != std::string::npos) tolerance.relative = ToleranceOf("--tol", numbers.substr(comma + 1));
  return tolerance;
}

void Run(Options& options) {
  DiffOptions& diff = options.diff;
  std::vector<long long> ids;
  for (const std::string& id : options.ids) AppendIds("--ids", id, ids);
  diff.ids.insert(ids.begin(), ids.end());
  diff.tolerances.general = {ToleranceOf("--abs", options.absolute), ToleranceOf("--rel", options.relative)};
  for (const std::string& text : options.tolerances) diff.tolerances.named.push_back(NamedToleranceOf(text));
  if (!options.match_time.empty()) diff.match_time = ToleranceOf("--match-time", options.match_time);
  const Differences found = CompareFiles(options.subject.file, options.subject.other, diff);
  if (options.json) {
    PrintDifferencesAsJson(options.subject, found);
  } else if (!options.is_quiet) {
    PrintDifferences(options.subject, found, options.most);
  }
  if (found.IsAny(options.subject.is_strict)) throw CLI::RuntimeError(kDifferent);
}

/// One word for each time the option is given: the files may stand behind it.
void AddList(CLI::App& command, const char* name, std::vector<std::string>& list, const char* word, const char* help) {
  command.add_option(name, list, help)->option_text(word)->allow_extra_args(false);
}

void AddChoices(CLI::App& command, Options& options) {
  AddList(command, "--var", options.diff.variables, "NAME",
          "Only values of this variable or component, by the names that orv info and orv values take. Repeat for more");
  AddList(command, "--ignore", options.diff.ignored, "NAME", "Leave out this variable or component. Repeat for more");
  command
      .add_option("--states,--state", options.diff.states,
                  "Only these states of A, 0 being what holds for all states; see States below")
      ->option_text("LIST");
  command.add_option("--entity", options.diff.entity, "Only values and tables of this entity or element type")
      ->option_text("TYPE");
  command.add_option("--ids", options.ids, "Only these ids; see Ids below")
      ->option_text("LIST")
      ->delimiter(',')
      ->allow_extra_args(false);
  command
      .add_option("--match-time", options.match_time,
                  "Compare the states whose first index values differ by no more than this, instead of those of one "
                  "number")
      ->option_text("TIME");
}

void AddTolerances(CLI::App& command, Options& options) {
  command.add_option("--abs", options.absolute, "Values are the same if they differ by no more than this (default 0)")
      ->option_text("X");
  command
      .add_option("--rel", options.relative,
                  "... or by no more than this times the larger one of their amounts (default 0)")
      ->option_text("X");
  AddList(command, "--tol", options.tolerances, "TOLERANCE",
          "NAME=ABSOLUTE or NAME=ABSOLUTE,RELATIVE in place of --abs and --rel for a variable, a component or a column "
          "of the state index. Repeat for more");
}

}  // namespace

void AddDiffCommand(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("diff", "Tell whether two result files hold the same, and what is different");
  command->add_option("a", options->subject.file, "Result file A")->option_text("FILE")->required();
  command->add_option("b", options->subject.other, "Result file B")->option_text("FILE")->required();
  AddChoices(*command, *options);
  AddTolerances(*command, *options);
  command->add_flag("--strict", options->subject.is_strict, "Notes, such as another title, count as differences");
  command->add_option("--max", options->most, "Lines shown of each kind (default 20)")->option_text("N");
  CLI::Option* quiet = command->add_flag("-q,--quiet", options->is_quiet, "Print nothing: the exit code tells");
  command->add_flag("--json", options->json, "Print JSON, with all there is")->excludes(quiet);
  command->callback([options] { Run(*options); });
  AddNotes(*command, {{"orv diff before.orv after.orv", "orv diff a.orv b.orv --rel 1e-6 --tol STRESS=0.01,1e-4",
                       "orv diff a.orv b.orv --var VELO --states last --json"},
                      "the files differ"});
}

}  // namespace orvio::program
