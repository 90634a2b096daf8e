// orv values: the values of a variable at a state.

#include <fmt/format.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include "commands/commands.h"
#include "commands/help_text.h"
#include "commands/id_list.h"
#include "printing/csv.h"
#include "printing/json_output.h"
#include "printing/table.h"
#include "reading/result_file.h"
#include "reading/state_selection.h"
#include "reading/units.h"
#include "reading/values.h"
#include "trouble.h"

namespace orvio::program {
namespace {

/// Rows of values as they are printed: one of each entity, or of each layer of an element.
class ValueRows {
 public:
  explicit ValueRows(const Values& values) : values_(values), columns_(ColumnsOf(values)) {}

  std::size_t size() const { return values_.size() * values_.layers; }
  const std::vector<orv::Component>& columns() const { return columns_; }
  std::int64_t id(std::size_t row) const { return values_.ids[row / values_.layers]; }
  std::size_t layer(std::size_t row) const { return row % values_.layers + 1; }
  double value(std::size_t row, std::size_t column) const { return values_.data[row * columns_.size() + column]; }

 private:
  const Values& values_;
  std::vector<orv::Component> columns_;
};

std::vector<std::string> Heading(const Values& values) {
  std::vector<std::string> heading = {"id"};
  if (values.on_elements) heading.emplace_back("layer");
  for (const orv::Component& column : ColumnsOf(values)) heading.push_back(WithUnit(column.name, column.unit));
  return heading;
}

/// Calls `take` with the cells of each row.
template <class Take>
void ForEachRow(const Values& values, Take take) {
  const ValueRows rows(values);
  for (std::size_t row = 0; row < rows.size(); ++row) {
    std::vector<std::string> cells = {fmt::format("{}", rows.id(row))};
    if (values.on_elements) cells.push_back(fmt::format("{}", rows.layer(row)));
    for (std::size_t column = 0; column < rows.columns().size(); ++column) {
      cells.push_back(ShortText(rows.value(row, column), values.is_double));
    }
    take(std::move(cells));
  }
}

/// Which of state, entity type and zone differ between blocks, and so have to be shown.
struct Differing {
  explicit Differing(const std::vector<Values>& all) {
    for (const Values& values : all) {
      state = state || values.state != all.front().state;
      // Two blocks of one type in a state are told apart by their headings too.
      const auto in_state = [&](const Values& other) { return other.state == values.state; };
      entity = entity || std::ranges::count_if(all, in_state) > 1 || values.entity != all.front().entity;
      zone = zone || !values.zone.empty();
    }
  }

  bool state = false, entity = false, zone = false;
};

std::string Title(const Values& values, const Differing& differing) {
  const std::string state = differing.state ? fmt::format("state {}", values.state) : "";
  std::string entity = differing.entity ? values.entity : "";
  if (!values.zone.empty()) entity += (entity.empty() ? "zone " : ", zone ") + values.zone;
  return state + (state.empty() || entity.empty() ? "" : ", ") + entity;
}

void PrintText(const std::vector<Values>& all) {
  const Differing differing(all);
  for (const Values& values : all) {
    Table table(Heading(values));
    ForEachRow(values, [&](std::vector<std::string> cells) { table.Add(std::move(cells)); });
    table.Print(Title(values, differing));
  }
}

/// With several states or blocks the state and the entity type are the first columns.
void PrintCsv(const std::vector<Values>& all) {
  const Differing differing(all);
  const auto line = [&](const std::string& state, const std::string& entity, const std::string& zone,
                        std::vector<std::string> fields) {
    if (differing.zone) fields.insert(fields.begin(), zone);
    if (differing.entity) fields.insert(fields.begin(), entity);
    if (differing.state) fields.insert(fields.begin(), state);
    PrintCsvLine(fields);
  };
  std::vector<std::string> heading;
  for (const Values& values : all) {
    if (heading != Heading(values)) line("state", "entity", "zone", heading = Heading(values));
    const std::string state = fmt::format("{}", values.state);
    ForEachRow(values,
               [&](std::vector<std::string> cells) { line(state, values.entity, values.zone, std::move(cells)); });
  }
}

Json ToJson(const Values& values) {
  const ValueRows all(values);
  Json columns = Json::array(), units = Json::array(), rows = Json::array();
  for (const orv::Component& column : all.columns()) {
    columns.push_back(column.name);
    units.push_back(column.unit);
  }
  for (std::size_t row = 0; row < all.size(); ++row) {
    Json numbers = Json::array();
    for (std::size_t column = 0; column < all.columns().size(); ++column) {
      numbers.push_back(JsonNumber(all.value(row, column), values.is_double));
    }
    Json entry = {{"id", all.id(row)}};
    if (values.on_elements) entry["layer"] = all.layer(row);
    entry["values"] = std::move(numbers);
    rows.push_back(std::move(entry));
  }
  Json json = {{"entity", values.entity},       {"variable", values.variable}, {"state", values.state},
               {"columns", std::move(columns)}, {"units", std::move(units)},   {"rows", std::move(rows)}};
  if (!values.zone.empty()) json["zone"] = values.zone;
  return json;
}

void PrintAsJson(const std::string& file, const std::vector<Values>& all) {
  Json json = JsonAnswer("values", file);
  json["blocks"] = Json::array();
  for (const Values& values : all) json["blocks"].push_back(ToJson(values));
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
  std::vector<Values> all;
  for (const int state : StatesOf(file, options.states)) {
    for (Values& values : ReadValues(file, options.request, state)) all.push_back(std::move(values));
  }
  CheckIds(file, options.request, all);
  if (options.json) return PrintAsJson(options.file, all);
  options.csv ? PrintCsv(all) : PrintText(all);
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
