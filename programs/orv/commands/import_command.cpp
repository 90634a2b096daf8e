// orv import: other programs' results become result files.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

#include "commands/commands.h"
#include "commands/format_version.h"
#include "commands/help_text.h"
#include "commands/id_list.h"
#include "importer/exodus_import.h"
#include "importer/frd_import.h"
#include "trouble.h"

namespace orvio::program {
namespace {

/// A kind of file that can be imported, by its name.
struct Importer {
  std::vector<std::string_view> endings;
  ImportSummary (*import)(const ImportOptions& options);
};

const Importer kImporters[] = {{{".frd", ".frd.gz"}, ImportFrd}, {{".e", ".ex2", ".exo"}, ImportExodus}};

const Importer* FindImporter(const std::string& name) {
  const auto* found = std::ranges::find_if(kImporters, [&](const Importer& importer) {
    return std::ranges::any_of(importer.endings, [&](std::string_view ending) { return name.ends_with(ending); });
  });
  return found == std::end(kImporters) ? nullptr : found;
}

std::string AllUnitSystems() { return fmt::format("{}", fmt::join(UnitSystemNames(), ", ")); }

/// "node:5" or "element:7-12"; what follows without a word is of the same kind.
void AppendHistories(const std::vector<std::string>& texts, ImportOptions& options) {
  std::vector<long long>* ids = nullptr;
  for (const std::string& text : texts) {
    const std::size_t colon = text.find(':');
    const std::string kind = colon == std::string::npos ? "" : text.substr(0, colon);
    if (kind == "node") ids = &options.histories.nodes;
    if (kind == "element") ids = &options.histories.elements;
    if (!ids || !(kind.empty() || kind == "node" || kind == "element")) {
      throw CLI::ValidationError("--history", "\"" + text + "\" does not start with node: or element:");
    }
    AppendIds("--history", text.substr(colon == std::string::npos ? 0 : colon + 1), *ids);
  }
}

/// CLI11's own checks let through what is no number.
std::string IsFinite(const std::string& text) {
  return std::isfinite(std::strtod(text.c_str(), nullptr)) ? "" : "\"" + text + "\" is no finite number";
}

/// The file is written: a summary that nobody can read is no failure any more.
void Say(const std::filesystem::path& file, const std::string& text) {
  (void)std::fprintf(stderr, "%s: %s\n", file.c_str(), text.c_str());
}

void Import(const ImportOptions& options, bool quiet) {
  const Importer* importer = FindImporter(options.input.string());
  if (!importer) {
    throw Trouble(options.input.string(), "is of a kind that cannot be imported",
                  "give a .frd, .frd.gz, .e, .ex2 or .exo file");
  }
  if (!options.points.empty() && importer->import != ImportFrd) {
    throw Trouble(options.input.string(), "has no .dat file beside it", "leave --dat out");
  }
  if (!options.histories.empty() && importer->import != ImportExodus) {
    throw Trouble(options.input.string(), "has its results state by state only",
                  "leave --history out; orv history reads any result over all states");
  }
  if (options.incremental && options.version < ORV_VERSION_2_0) {
    throw Trouble(options.output.string(),
                  "cannot have incremental states: files before version 2.0 have no place to say so",
                  "leave out --incremental, or give a --format-version from 2.0 on");
  }
  // The output would take the place of its own input.
  std::error_code error;
  if (std::filesystem::equivalent(options.input, options.output, error)) {
    throw Trouble(options.output.string(), "is the file to import", "choose another name for the output");
  }
  const ImportSummary summary = importer->import(options);
  if (quiet) return;
  const std::string full = summary.full_states ? fmt::format(" ({} of them full)", *summary.full_states) : "";
  const std::string histories = summary.histories > 0 ? fmt::format(", {} histories", summary.histories) : "";
  Say(options.output, fmt::format("{} nodes, {} elements, {} states{}, {} variables{}", summary.nodes, summary.elements,
                                  summary.states, full, summary.variables, histories));
  for (const std::string& note : summary.notes) Say(options.input, note);
}

}  // namespace

void AddImportCommand(CLI::App& app) {
  auto options = std::make_shared<ImportOptions>();
  auto quiet = std::make_shared<bool>(false);
  auto units = std::make_shared<std::string>();
  auto version = std::make_shared<std::string>("2.2");
  auto histories = std::make_shared<std::vector<std::string>>();
  auto states = std::make_shared<IncrementalStates>();
  CLI::App* command =
      app.add_subcommand("import",
                         "Translate the result of a solver, CalculiX (.frd, .frd.gz) or Exodus II (.e, .ex2, .exo), "
                         "into a result file");
  command->add_option("result", options->input, "Result of the solver")->required()->option_text("RESULT");
  command->add_option("out", options->output, "Result file to write; one that exists is replaced when all went well")
      ->required()
      ->option_text("OUT");
  command
      ->add_option("--dat", options->points, "The .dat file of a CalculiX run, which has values at integration points")
      ->option_text("FILE");
  command->add_option("--format-version", *version, "Version of the format to write: 1.0 to 2.2 (default 2.2)")
      ->check(CLI::IsMember(VersionNames()))
      ->option_text("VERSION");
  command->add_option("--units", *units, "Units of the run, which the result does not tell: " + AllUnitSystems())
      ->check(CLI::IsMember(UnitSystemNames()))
      ->option_text("SYSTEM");
  command
      ->add_option("--history", *histories,
                   "Also store the results of these nodes or elements of an Exodus file over all states: "
                   "node:1,5-9 or element:12")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->option_text("LIST");
  CLI::Option* tolerance = command->add_option(
      "--incremental", states->tolerance,
      "Store between full states only the entities with a value that changed by more than this, in its unit; 0 for any "
      "change");
  tolerance->option_text("DIFFERENCE");
  tolerance->check(CLI::NonNegativeNumber & CLI::Validator(IsFinite, ""));
  command
      ->add_option("--full-every", states->full_every,
                   "Make one of so many states full (default 10); goes with --incremental")
      ->check(CLI::Range(1, 1000))
      ->option_text("NUMBER")
      ->needs(tolerance);
  command->add_flag("--partial", options->partial, "Take what is there of a run that broke off");
  command->add_flag("-q,--quiet", *quiet, "Print no summary");
  command->callback([options, quiet, units, version, histories, states, tolerance] {
    options->version = VersionNamed(*version);
    AppendHistories(*histories, *options);
    if (tolerance->count() > 0) options->incremental = *states;
    if (!units->empty()) options->units = FindUnitSystem(*units);
    Import(*options, *quiet);
  });
  AddNotes(*command, {{"orv import beam.frd out.orv --units mm-t-s",
                       "orv import beam.frd.gz out.orv --dat beam.dat --incremental 1e-6",
                       "orv import crush.ex2 out.orv --history node:1,5-9"}});
}

}  // namespace orvio::program
