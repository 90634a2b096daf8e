// orv elements: the mesh of a file.

#include <fmt/format.h>

#include <memory>
#include <string>

#include "commands/commands.h"
#include "commands/csv.h"
#include "commands/help_text.h"
#include "commands/json_output.h"
#include "commands/table.h"
#include "reading/element_table.h"

namespace orvio::program {
namespace {

std::size_t NodesPerElement(const ElementTable& table) { return static_cast<std::size_t>(table.nodes_per_element); }

std::vector<std::string> Heading(const ElementTable& table) {
  std::vector<std::string> heading = {"id", "part"};
  for (std::size_t i = 1; i <= NodesPerElement(table); ++i) heading.push_back(fmt::format("n{}", i));
  return heading;
}

std::vector<std::string> Row(const ElementTable& table, std::size_t row) {
  std::vector<std::string> cells = {fmt::format("{}", table.ids[row]), fmt::format("{}", table.parts[row])};
  for (std::size_t i = 0; i < NodesPerElement(table); ++i) {
    cells.push_back(fmt::format("{}", table.nodes[row * NodesPerElement(table) + i]));
  }
  return cells;
}

void PrintText(const std::vector<ElementTable>& tables) {
  for (const ElementTable& table : tables) {
    Table text(Heading(table));
    for (std::size_t row = 0; row < table.ids.size(); ++row) text.Add(Row(table, row));
    text.Print(tables.size() > 1 ? table.type : "");
  }
}

/// With several types the type is the first column.
void PrintCsv(const std::vector<ElementTable>& tables) {
  const auto line = [&](const std::string& type, std::vector<std::string> fields) {
    if (tables.size() > 1) fields.insert(fields.begin(), type);
    PrintCsvLine(fields);
  };
  std::vector<std::string> heading;
  for (const ElementTable& table : tables) {
    if (heading != Heading(table)) line("type", heading = Heading(table));
    for (std::size_t row = 0; row < table.ids.size(); ++row) line(table.type, Row(table, row));
  }
}

Json ToJson(const ElementTable& table) {
  Json rows = Json::array();
  for (std::size_t row = 0; row < table.ids.size(); ++row) {
    const auto first = table.nodes.begin() + static_cast<std::ptrdiff_t>(row * NodesPerElement(table));
    rows.push_back({{"id", table.ids[row]},
                    {"part", table.parts[row]},
                    {"nodes", std::vector<long long>(first, first + table.nodes_per_element)}});
  }
  return {{"type", table.type},
          {"nodes_per_element", table.nodes_per_element},
          {"dimension", table.dimension},
          {"rows", std::move(rows)}};
}

void PrintAsJson(const std::string& file, const std::vector<ElementTable>& tables) {
  Json json = JsonAnswer("elements", file);
  json["groups"] = Json::array();
  for (const ElementTable& table : tables) json["groups"].push_back(ToJson(table));
  PrintJson(json);
}

struct Options {
  std::string file, type;
  bool csv = false, json = false;
};

void Run(const Options& options) {
  const std::vector<ElementTable> tables = ReadElementTables(options.file, options.type);
  if (options.json) return PrintAsJson(options.file, tables);
  options.csv ? PrintCsv(tables) : PrintText(tables);
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
