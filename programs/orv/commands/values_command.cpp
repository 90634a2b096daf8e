// orv values: the values of a variable at a state.

#include <fmt/format.h>

#include <algorithm>
#include <memory>
#include <string>
#include <string_view>

#include "commands/commands.h"
#include "commands/csv.h"
#include "commands/help_text.h"
#include "commands/id_list.h"
#include "commands/json_output.h"
#include "commands/table.h"
#include "reading/result_file.h"
#include "reading/state_selection.h"
#include "reading/units.h"
#include "reading/value_table.h"
#include "trouble.h"

namespace orvio::program {
namespace {

/// The shortest text that reads back as the same value.
std::string ValueText(const ValueTable& table, std::size_t row, std::size_t column) {
  return std::visit([&](const auto& values) { return fmt::format("{}", values[row * table.columns.size() + column]); },
                    table.values);
}

Json ValueJson(const ValueTable& table, std::size_t row, std::size_t column) {
  return std::visit([&](const auto& values) { return JsonNumber(values[row * table.columns.size() + column]); },
                    table.values);
}

std::vector<std::string> Heading(const ValueTable& table) {
  std::vector<std::string> heading = {"id"};
  if (table.has_layers) heading.emplace_back("layer");
  for (std::size_t i = 0; i < table.columns.size(); ++i) heading.push_back(WithUnit(table.columns[i], table.units[i]));
  return heading;
}

std::vector<std::string> Row(const ValueTable& table, std::size_t row) {
  std::vector<std::string> cells = {fmt::format("{}", table.ids[row])};
  if (table.has_layers) cells.push_back(fmt::format("{}", table.layers[row]));
  for (std::size_t column = 0; column < table.columns.size(); ++column) cells.push_back(ValueText(table, row, column));
  return cells;
}

/// Which of state, entity type and zone differ between tables, and so have to be shown.
struct Differing {
  explicit Differing(const std::vector<ValueTable>& tables) {
    for (const ValueTable& table : tables) {
      state = state || table.state != tables.front().state;
      // Two blocks of one type in a state are told apart by their headings too.
      const auto in_state = [&](const ValueTable& other) { return other.state == table.state; };
      entity = entity || std::ranges::count_if(tables, in_state) > 1 || table.entity != tables.front().entity;
      zone = zone || !table.zone.empty();
    }
  }

  bool state = false, entity = false, zone = false;
};

std::string Title(const ValueTable& table, const Differing& differing) {
  const std::string state = differing.state ? fmt::format("state {}", table.state) : "";
  std::string entity = differing.entity ? table.entity : "";
  if (!table.zone.empty()) entity += (entity.empty() ? "zone " : ", zone ") + table.zone;
  return state + (state.empty() || entity.empty() ? "" : ", ") + entity;
}

void PrintText(const std::vector<ValueTable>& tables) {
  const Differing differing(tables);
  for (const ValueTable& table : tables) {
    Table text(Heading(table));
    for (std::size_t row = 0; row < table.ids.size(); ++row) text.Add(Row(table, row));
    text.Print(Title(table, differing));
  }
}

/// With several states or blocks the state and the entity type are the first columns.
void PrintCsv(const std::vector<ValueTable>& tables) {
  const Differing differing(tables);
  const auto line = [&](const std::string& state, const std::string& entity, const std::string& zone,
                        std::vector<std::string> fields) {
    if (differing.zone) fields.insert(fields.begin(), zone);
    if (differing.entity) fields.insert(fields.begin(), entity);
    if (differing.state) fields.insert(fields.begin(), state);
    PrintCsvLine(fields);
  };
  std::vector<std::string> heading;
  for (const ValueTable& table : tables) {
    if (heading != Heading(table)) line("state", "entity", "zone", heading = Heading(table));
    for (std::size_t row = 0; row < table.ids.size(); ++row) {
      line(fmt::format("{}", table.state), table.entity, table.zone, Row(table, row));
    }
  }
}

Json ToJson(const ValueTable& table) {
  Json rows = Json::array();
  for (std::size_t row = 0; row < table.ids.size(); ++row) {
    Json values = Json::array();
    for (std::size_t column = 0; column < table.columns.size(); ++column)
      values.push_back(ValueJson(table, row, column));
    Json entry = {{"id", table.ids[row]}};
    if (table.has_layers) entry["layer"] = table.layers[row];
    entry["values"] = std::move(values);
    rows.push_back(std::move(entry));
  }
  Json json = {{"entity", table.entity},   {"variable", table.variable}, {"state", table.state},
               {"columns", table.columns}, {"units", table.units},       {"rows", std::move(rows)}};
  if (!table.zone.empty()) json["zone"] = table.zone;
  return json;
}

void PrintAsJson(const std::string& file, const std::vector<ValueTable>& tables) {
  Json json = JsonAnswer("values", file);
  json["blocks"] = Json::array();
  for (const ValueTable& table : tables) json["blocks"].push_back(ToJson(table));
  PrintJson(json);
}

struct Options {
  std::string file;
  ValueRequest request;
  std::string states = "0";
  std::vector<std::string> ids;
  bool csv = false, json = false;
};

void Run(Options& options) {
  for (const std::string& id : options.ids) AppendIds("--ids", id, options.request.ids);
  ResultFile file(options.file);
  std::vector<ValueTable> tables;
  for (const int state : StatesOf(file, options.states)) {
    for (ValueTable& table : ReadValueTables(file, options.request, state)) tables.push_back(std::move(table));
  }
  CheckIds(file, options.request, tables);
  if (options.json) return PrintAsJson(options.file, tables);
  options.csv ? PrintCsv(tables) : PrintText(tables);
}

}  // namespace

void AddValuesCommand(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("values", "Print the values of a variable at states");
  command->add_option("file", options->file, "Result file")->required();
  command
      ->add_option(
          "--var", options->request.variable,
          "What to print: a variable, or one of its components; a computed one gives those that it is computed "
          "from; see Names below")
      ->required()
      ->option_text("NAME");
  command
      ->add_option("--states,--state", options->states,
                   "States to print; see States below (default 0, the constant values)")
      ->option_text("LIST");
  command->add_option("--component", options->request.component, "Only this component: its name, or its number from 1")
      ->option_text("NAME");
  command
      ->add_option("--entity", options->request.entity,
                   "Only values of this kind of entity, such as NODE, or type of element")
      ->option_text("TYPE");
  command->add_option("--ids", options->ids, "Only these nodes or elements; see Ids below")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->option_text("LIST");
  CLI::Option* csv = command->add_flag("--csv", options->csv, "Print comma-separated values");
  command->add_flag("--json", options->json, "Print JSON")->excludes(csv);
  command->callback([options] { Run(*options); });
  AddNotes(*command, {{"orv values out.orv --var Stress --states last",
                       R"(orv values out.orv --var "STRESS_Von Mises" --states t=0.01 --ids 1,5,7-9 --csv)"}});
}

}  // namespace orvio::program
