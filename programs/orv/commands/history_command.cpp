// orv history: values over all states.

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <limits>
#include <memory>
#include <string>

#include "commands/commands.h"
#include "commands/help_text.h"
#include "commands/id_list.h"
#include "plot/line_plot.h"
#include "printing/csv.h"
#include "printing/json_output.h"
#include "printing/table.h"
#include "reading/history.h"
#include "reading/units.h"
#include "reading/values.h"
#include "trouble.h"

namespace orvio::program {
namespace {

/// The shortest text that reads back as the same value; nothing for a state without one.
std::string Text(const History& history, const std::optional<double>& value) {
  if (!value) return "";
  return ShortText(*value, history.is_double);
}

std::vector<std::string> Heading(const History& history) {
  std::vector<std::string> heading = {"state"};
  for (const orv::Component& column : history.index_columns) heading.push_back(WithUnit(column.name, column.unit));
  const std::vector<std::string> names = CurveNames(history);
  for (std::size_t i = 0; i < names.size(); ++i) heading.push_back(WithUnit(names[i], history.curves[i].unit));
  return heading;
}

std::vector<std::string> Row(const History& history, std::size_t row) {
  std::vector<std::string> cells = {fmt::format("{}", history.states[row].number)};
  for (const double value : history.states[row].index) cells.push_back(fmt::format("{}", value));
  cells.resize(1 + history.index_columns.size());
  for (const orv::Curve& curve : history.curves) cells.push_back(Text(history, curve.values[row]));
  return cells;
}

void PrintText(const History& history) {
  Table table(Heading(history));
  for (std::size_t row = 0; row < history.states.size(); ++row) table.Add(Row(history, row));
  table.Print("");
}

void PrintCsv(const History& history) {
  PrintCsvLine(Heading(history));
  for (std::size_t row = 0; row < history.states.size(); ++row) PrintCsvLine(Row(history, row));
}

Json ToJson(const orv::Curve& curve, bool is_double) {
  Json json = {{"entity", curve.entity}, {"component", curve.component}, {"unit", curve.unit}, {"id", curve.id}};
  if (!curve.zone.empty()) json["zone"] = curve.zone;
  if (curve.on_elements) json["layer"] = curve.layer;
  Json values = Json::array();
  for (const auto& value : curve.values) values.push_back(value ? JsonNumber(*value, is_double) : Json());
  json["values"] = std::move(values);
  return json;
}

void PrintAsJson(const std::string& file, const History& history) {
  Json json = JsonAnswer("history", file);
  json.update({{"variable", history.variable},
               {"index", Json::array()},
               {"index_units", Json::array()},
               {"states", Json::array()},
               {"curves", Json::array()}});
  for (const orv::Component& column : history.index_columns) {
    json["index"].push_back(column.name);
    json["index_units"].push_back(column.unit);
  }
  for (const orv::State& state : history.states) {
    json["states"].push_back({{"state", state.number}, {"index", JsonNumbers(state.index)}});
  }
  for (const orv::Curve& curve : history.curves) json["curves"].push_back(ToJson(curve, history.is_double));
  PrintJson(json);
}

/// What all curves have in common of a member, else `otherwise`.
std::string Common(const History& history, std::string orv::Curve::*member, const std::string& otherwise) {
  const std::string& first = history.curves.front().*member;
  const bool is_common =
      std::ranges::all_of(history.curves, [&](const orv::Curve& curve) { return curve.*member == first; });
  return is_common ? first : otherwise;
}

/// Over the first index value, or over the states where they have none.
LinePlot PlotOf(const History& history) {
  LinePlot plot;
  const std::string unit = Common(history, &orv::Curve::unit, "");
  plot.title = history.variable;
  plot.y_label = WithUnit(Common(history, &orv::Curve::component, history.variable), unit);
  const std::vector<orv::Component>& columns = history.index_columns;
  const bool has_index =
      !columns.empty() && std::ranges::none_of(history.states, &std::vector<double>::empty, &orv::State::index);
  plot.x_label = has_index ? WithUnit(columns.front().name, columns.front().unit) : "state";
  for (const orv::State& state : history.states) plot.x.push_back(has_index ? state.time() : state.number);
  const std::vector<std::string> names = CurveNames(history);
  for (std::size_t i = 0; i < names.size(); ++i) {
    plot.lines.push_back(
        {unit.empty() ? WithUnit(names[i], history.curves[i].unit) : names[i], history.curves[i].values});
  }
  if (names.size() == 1) plot.title += ", " + names.front();
  return plot;
}

struct Options {
  std::string file;
  HistoryRequest request;
  std::vector<std::string> ids;
  std::string plot;
  bool csv = false, json = false;
};

/// The picture would take the place of its own data.
void RequireAnotherFile(const Options& options) {
  std::error_code error;
  if (!options.plot.empty() && std::filesystem::equivalent(options.file, options.plot, error)) {
    throw Trouble(options.plot, "is the file to read", "choose another name for the picture");
  }
}

void Run(Options& options) {
  RequireAnotherFile(options);
  for (const std::string& id : options.ids) AppendIds("--ids", id, options.request.values.ids);
  ResultFile file(options.file);
  const History history = ReadHistory(file, options.request);
  if (!options.plot.empty()) DrawLines(PlotOf(history), options.plot);
  if (options.json) return PrintAsJson(options.file, history);
  if (options.csv) return PrintCsv(history);
  if (options.plot.empty()) PrintText(history);
}

}  // namespace

void AddHistoryCommand(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("history", "Print or draw values over all states");
  command->add_option("file", options->file, "Result file")->required();
  command
      ->add_option("--var", options->request.values.variable,
                   "What to print: a variable, or one of its components; see Names below")
      ->required()
      ->option_text("NAME");
  command
      ->add_option("--component", options->request.values.component,
                   "Only this component: its name, or its number from 1")
      ->option_text("NAME");
  command
      ->add_option("--entity", options->request.values.entity,
                   "Only values of this kind of entity, such as NODE, or type of element")
      ->option_text("TYPE");
  command->add_option("--ids", options->ids, "Only these nodes or elements; see Ids below")
      ->delimiter(',')
      ->allow_extra_args(false)
      ->option_text("LIST");
  command->add_option("--layer", options->request.layer, "Only this layer of elements, from 1")
      ->option_text("NUMBER")
      ->check(CLI::Range(1, std::numeric_limits<int>::max()));
  command->add_option("--plot", options->plot, "Draw into this file, which ends in .svg or .png; needs gnuplot")
      ->option_text("FILE");
  CLI::Option* csv = command->add_flag("--csv", options->csv, "Print comma-separated values");
  command->add_flag("--json", options->json, "Print JSON")->excludes(csv);
  command->callback([options] { Run(*options); });
  AddNotes(*command, {{"orv history out.orv --var Stress --component SXX --ids 5,7",
                       "orv history out.orv --var STRESS_SXX --ids 5 --plot sxx.svg"}});
}

}  // namespace orvio::program
