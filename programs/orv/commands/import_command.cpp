// orv import: other programs' results become result files.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <map>
#include <memory>

#include "commands/commands.h"
#include "importer/frd_import.h"
#include "trouble.h"

namespace orvio::program {
namespace {

const std::map<std::string, _ORVVersion> kVersions = {
    {"1.0", ORV_VERSION_1_0}, {"1.1", ORV_VERSION_1_1}, {"1.2", ORV_VERSION_1_2},
    {"2.0", ORV_VERSION_2_0}, {"2.1", ORV_VERSION_2_1}, {"2.2", ORV_VERSION_2_2},
};

bool IsFrdName(const std::string& name) { return name.ends_with(".frd") || name.ends_with(".frd.gz"); }

std::string AllUnitSystems() { return fmt::format("{}", fmt::join(UnitSystemNames(), ", ")); }

void Import(const FrdImportOptions& options, bool quiet) {
  if (!IsFrdName(options.input.string())) {
    throw Trouble(options.input.string(), "is of a kind that cannot be imported", "give a .frd or .frd.gz file");
  }
  // The output would take the place of its own input.
  std::error_code error;
  if (std::filesystem::equivalent(options.input, options.output, error)) {
    throw Trouble(options.output.string(), "is the file to import", "choose another name for the output");
  }
  const FrdImportSummary summary = ImportFrd(options);
  if (quiet) return;
  fmt::print(stderr, "{}: {} nodes, {} elements, {} states, {} variables\n", options.output.string(), summary.nodes,
             summary.elements, summary.states, summary.variables);
  if (!summary.complete)
    fmt::print(stderr, "{}: the run broke off; what is complete was taken\n", options.input.string());
}

}  // namespace

void AddImportCommand(CLI::App& app) {
  auto options = std::make_shared<FrdImportOptions>();
  auto quiet = std::make_shared<bool>(false);
  auto units = std::make_shared<std::string>();
  CLI::App* command = app.add_subcommand("import", "Translate a CalculiX result (.frd, .frd.gz) into a result file");
  command->add_option("result", options->input, "Result of the solver")->required();
  command->add_option("out", options->output, "Result file to write; one that exists is replaced when all went well")
      ->required();
  command->add_option("--format-version", options->version, "Version of the format to write: 1.0 to 2.2 (default 2.2)")
      ->transform(CLI::CheckedTransformer(kVersions));
  command->add_option("--units", *units, "Units of the run, which the result does not tell: " + AllUnitSystems())
      ->check(CLI::IsMember(UnitSystemNames()));
  command->add_flag("--partial", options->partial, "Take what is there of a run that broke off");
  command->add_flag("-q,--quiet", *quiet, "No summary");
  command->callback([options, quiet, units] {
    if (!units->empty()) options->units = FindUnitSystem(*units);
    Import(*options, *quiet);
  });
}

}  // namespace orvio::program
