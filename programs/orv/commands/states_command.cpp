// orv states: the states of a file and what they stand for.

#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "commands/help_text.h"
#include "printing/csv.h"
#include "printing/json_output.h"
#include "printing/table.h"
#include "reading/result_file.h"
#include "reading/state_selection.h"
#include "reading/units.h"

namespace orvio::program {
namespace {

struct Options {
  std::string file, states;
  bool csv = false, json = false;
};

struct Row {
  int state;
  std::vector<double> index;
};

struct Columns {
  std::vector<std::string> names, units;
};

std::vector<std::string> Heading(const Columns& columns) {
  std::vector<std::string> heading = {"state"};
  for (std::size_t i = 0; i < columns.names.size(); ++i) {
    heading.push_back(WithUnit(columns.names[i], columns.units[i]));
  }
  return heading;
}

/// A state whose index cannot be read has empty cells.
std::vector<std::string> Cells(const Row& row, std::size_t columns) {
  std::vector<std::string> cells = {fmt::format("{}", row.state)};
  for (const double value : row.index) cells.push_back(fmt::format("{}", value));
  cells.resize(columns + 1);
  return cells;
}

void Print(const Options& options, const Columns& columns, const std::vector<Row>& rows) {
  if (options.json) {
    Json json = JsonAnswer("states", options.file);
    json.update({{"index", columns.names}, {"index_units", columns.units}, {"states", Json::array()}});
    for (const Row& row : rows) json["states"].push_back({{"state", row.state}, {"index", JsonNumbers(row.index)}});
    PrintJson(json);
    return;
  }
  if (options.csv) {
    PrintCsvLine(Heading(columns));
    for (const Row& row : rows) PrintCsvLine(Cells(row, columns.names.size()));
    return;
  }
  Table table(Heading(columns));
  for (const Row& row : rows) table.Add(Cells(row, columns.names.size()));
  table.Print("");
}

void Run(const Options& options) {
  ResultFile file(options.file);
  std::vector<Row> rows;
  if (!options.states.empty()) {
    for (const int state : StatesOf(file, options.states)) rows.push_back({state, file.IndexOf(state)});
  } else {
    for (int state = 1; state <= file.states(); ++state) rows.push_back({state, file.IndexOf(state)});
  }
  Print(options, {file.IndexNames(), file.IndexUnits()}, rows);
}

}  // namespace

void AddStatesCommand(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command =
      app.add_subcommand("states", "List the states of a result file with their index values, such as times");
  command->add_option("file", options->file, "Result file")->required();
  command->add_option("--states", options->states, "Only these states; see States below")->option_text("LIST");
  CLI::Option* csv = command->add_flag("--csv", options->csv, "Print comma-separated values");
  command->add_flag("--json", options->json, "Print JSON")->excludes(csv);
  command->callback([options] { Run(*options); });
  AddNotes(*command, {{"orv states out.orv", "orv states out.orv --states t=0.01:0.02 --csv"}});
}

}  // namespace orvio::program
