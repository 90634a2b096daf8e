// orv extract: a smaller file.

#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "commands/help_text.h"
#include "commands/id_list.h"
#include "copying/extract.h"
#include "printing/json_output.h"
#include "reading/state_selection.h"

namespace orvio::program {
namespace {

/// Ids as they stand on the command line.
struct IdTexts {
  std::vector<std::string> nodes, elements, ids;
};

void ReadIds(const IdTexts& texts, ExtractOptions& options) {
  for (const std::string& text : texts.nodes) AppendIds("--node-ids", text, options.node_ids);
  for (const std::string& text : texts.elements) AppendIds("--element-ids", text, options.element_ids);
  for (const std::string& text : texts.ids) AppendIds("--ids", text, options.ids);
}

void Tell(const ExtractOptions& options, const CopyReport& report) {
  fmt::print(stderr, "{}: {} states, {} blocks, {} bytes of {}\n", options.out, report.states, report.blocks,
             report.size_after, report.size_before);
  for (const std::string& note : report.notes) fmt::print(stderr, "{}: {}\n", options.out, note);
}

void Run(const ExtractOptions& options, bool quiet, bool json) {
  const CopyReport report = ExtractFile(options);
  if (!quiet) Tell(options, report);
  if (!json) return;
  Json answer = JsonAnswer("extract", options.file);
  answer["out"] = options.out;
  answer["states"] = report.states;
  answer["blocks"] = report.blocks;
  answer["size_before"] = report.size_before;
  answer["size_after"] = report.size_after;
  answer["notes"] = report.notes;
  PrintJson(answer);
}

void AddIdOption(CLI::App& command, const char* name, std::vector<std::string>& ids, const char* help) {
  command.add_option(name, ids, help)->option_text("LIST")->delimiter(',')->allow_extra_args(false);
}

}  // namespace

void AddExtractCommand(CLI::App& app) {
  auto options = std::make_shared<ExtractOptions>();
  auto texts = std::make_shared<IdTexts>();
  auto quiet = std::make_shared<bool>(false);
  auto json = std::make_shared<bool>(false);
  CLI::App* command = app.add_subcommand("extract", "Write some of a result file into a new, smaller one");
  command->add_option("file", options->file, "Result file; it is not changed")->option_text("FILE")->required();
  command->add_option("-o,--out", options->out, "Result file to write; one that exists is replaced when all went well")
      ->option_text("OUT")
      ->required();
  command->add_option("--states", options->states, "States to keep; see States below")->option_text("LIST");
  command->add_option("--var", options->variables, "Variables to keep; coordinates stay in any case")
      ->option_text("NAME")
      ->delimiter(',')
      ->allow_extra_args(false);
  command->add_option("--parts", options->parts, "Parts to keep, by ids such as 1,5-9 or by titles")
      ->option_text("LIST")
      ->delimiter(',')
      ->allow_extra_args(false);
  AddIdOption(*command, "--node-ids", texts->nodes, "Nodes to keep, such as 1,5-9, with the elements between them");
  AddIdOption(*command, "--element-ids", texts->elements, "Elements to keep, such as 1,5-9, with their nodes");
  CLI::Option* entity = command->add_option("--entity", options->entity, "Type of elements or other entities to keep")
                            ->option_text("TYPE");
  AddIdOption(*command, "--ids", texts->ids, "Entities of the type --entity to keep, such as 1,5-9");
  command->get_option("--ids")->needs(entity);
  command->add_flag("-q,--quiet", *quiet, "No summary");
  command->add_flag("--json", *json, "Print JSON");
  command->callback([options, texts, quiet, json] {
    ReadIds(*texts, *options);
    Run(*options, *quiet, *json);
  });
  AddNotes(*command, {{"orv extract run.orv -o last.orv --states last --var Stress",
                       "orv extract run.orv -o wheel.orv --parts 3,7-9 --states 1:100:10"}});
}

}  // namespace orvio::program
