// orv elements: the mesh of a file.

#include <fmt/format.h>

#include <memory>
#include <string>

#include "commands/commands.h"
#include "commands/help_text.h"
#include "printing/csv.h"
#include "printing/json_output.h"
#include "printing/table.h"
#include "reading/elements.h"
#include "reading/file_model.h"

namespace orvio::program {
namespace {

std::vector<std::string> Heading(const orv::Elements& elements) {
  std::vector<std::string> heading = {"id", "part"};
  for (std::size_t i = 1; i <= elements.nodes_per_element; ++i) heading.push_back(fmt::format("n{}", i));
  return heading;
}

std::vector<std::string> Row(const orv::Elements& elements, std::size_t row) {
  std::vector<std::string> cells = {fmt::format("{}", elements.ids[row]), fmt::format("{}", elements.parts[row])};
  for (std::size_t i = 0; i < elements.nodes_per_element; ++i) {
    cells.push_back(fmt::format("{}", elements.nodes[row * elements.nodes_per_element + i]));
  }
  return cells;
}

void PrintText(const std::vector<orv::Elements>& all) {
  for (const orv::Elements& elements : all) {
    Table table(Heading(elements));
    for (std::size_t row = 0; row < elements.size(); ++row) table.Add(Row(elements, row));
    table.Print(all.size() > 1 ? elements.type : "");
  }
}

/// With several types the type is the first column.
void PrintCsv(const std::vector<orv::Elements>& all) {
  const auto line = [&](const std::string& type, std::vector<std::string> fields) {
    if (all.size() > 1) fields.insert(fields.begin(), type);
    PrintCsvLine(fields);
  };
  std::vector<std::string> heading;
  for (const orv::Elements& elements : all) {
    if (heading != Heading(elements)) line("type", heading = Heading(elements));
    for (std::size_t row = 0; row < elements.size(); ++row) line(elements.type, Row(elements, row));
  }
}

Json ToJson(const orv::Elements& elements) {
  Json rows = Json::array();
  for (std::size_t row = 0; row < elements.size(); ++row) {
    const auto first = elements.nodes.begin() + static_cast<std::ptrdiff_t>(row * elements.nodes_per_element);
    rows.push_back(
        {{"id", elements.ids[row]},
         {"part", elements.parts[row]},
         {"nodes", std::vector<std::int64_t>(first, first + static_cast<std::ptrdiff_t>(elements.nodes_per_element))}});
  }
  return {{"type", elements.type},
          {"nodes_per_element", elements.nodes_per_element},
          {"dimension", elements.dimension},
          {"rows", std::move(rows)}};
}

void PrintAsJson(const std::string& file, const std::vector<orv::Elements>& all) {
  Json json = JsonAnswer("elements", file);
  json["groups"] = Json::array();
  for (const orv::Elements& elements : all) json["groups"].push_back(ToJson(elements));
  PrintJson(json);
}

struct Options {
  std::string file, type;
  bool csv = false, json = false;
};

void Run(const Options& options) {
  (void)CheckResultFile(options.file);
  orv::File file(options.file);
  const std::vector<orv::Elements> all = ReadElements(file, options.type);
  if (options.json) return PrintAsJson(options.file, all);
  options.csv ? PrintCsv(all) : PrintText(all);
}

}  // namespace

void AddElementsCommand(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("elements", "Print the elements of a mesh with their parts and nodes");
  command->add_option("file", options->file, "Result file")->required();
  command->add_option("--type", options->type, "Only elements of this type, such as HEXA8")->option_text("TYPE");
  CLI::Option* csv = command->add_flag("--csv", options->csv, "Print comma-separated values");
  command->add_flag("--json", options->json, "Print JSON")->excludes(csv);
  command->callback([options] { Run(*options); });
  AddNotes(*command, {{"orv elements out.orv", "orv elements out.orv --type SHELL --csv"}});
}

}  // namespace orvio::program
