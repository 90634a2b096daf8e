// orv parts: the parts of a model.

#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "commands/help_text.h"
#include "printing/csv.h"
#include "printing/json_output.h"
#include "printing/table.h"
#include "reading/file_model.h"
#include "reading/parts.h"

namespace orvio::program {
namespace {

struct Options {
  std::string file, type;
  int state = 0;
  bool csv = false, json = false;
};

const std::vector<std::string> kHeading = {"type", "id", "title", "material", "material type", "elements"};

std::string Cell(const std::optional<int>& number) { return number ? fmt::format("{}", *number) : ""; }

/// A part and how many elements it has.
struct Row {
  std::vector<std::string> Cells() const {
    return {part.type,           fmt::format("{}", part.id), part.title,
            Cell(part.material), Cell(part.material_type),   fmt::format("{}", elements)};
  }

  orv::Part part;
  std::size_t elements;
};

Json ToJson(const Row& row) {
  const orv::Part& part = row.part;
  Json json = {{"type", part.type}, {"id", part.id}, {"title", part.title}, {"elements", row.elements}};
  if (part.material) json["material"] = *part.material;
  if (part.material_type) json["material_type"] = *part.material_type;
  return json;
}

void PrintAsJson(const Options& options, const std::vector<Row>& rows) {
  Json json = JsonAnswer("parts", options.file);
  json.update({{"state", options.state}, {"parts", Json::array()}});
  for (const Row& row : rows) json["parts"].push_back(ToJson(row));
  PrintJson(json);
}

std::vector<Row> ReadRows(const Options& options) {
  (void)CheckResultFile(options.file);
  orv::File file(options.file);
  const std::vector<orv::Part> parts = ReadParts(file, options.type, options.state);
  const std::vector<std::size_t> counts = CountElements(file, parts);
  std::vector<Row> rows;
  for (std::size_t i = 0; i < parts.size(); ++i) rows.push_back({parts[i], counts[i]});
  return rows;
}

void Run(const Options& options) {
  const std::vector<Row> rows = ReadRows(options);
  if (options.json) return PrintAsJson(options, rows);
  if (options.csv) {
    PrintCsvLine(kHeading);
    for (const Row& row : rows) PrintCsvLine(row.Cells());
    return;
  }
  Table table(kHeading);
  for (const Row& row : rows) table.Add(row.Cells());
  table.Print("");
}

}  // namespace

void AddPartsCommand(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command =
      app.add_subcommand("parts", "List the parts of a model with their titles, materials and numbers of elements");
  command->add_option("file", options->file, "Result file")->required();
  command->add_option("--type", options->type, "Only parts of this type")->option_text("TYPE");
  command->add_option("--state", options->state, "Parts of a state, from 1; 0 for those of the whole run (default 0)")
      ->option_text("NUMBER");
  CLI::Option* csv = command->add_flag("--csv", options->csv, "Print comma-separated values");
  command->add_flag("--json", options->json, "Print JSON")->excludes(csv);
  command->callback([options] { Run(*options); });
  AddNotes(*command, {{"orv parts out.orv"}});
}

}  // namespace orvio::program
