// orv info: what a file holds.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <memory>
#include <string>

#include "commands/commands.h"
#include "commands/help_text.h"
#include "printing/json_output.h"
#include "printing/ranges.h"
#include "printing/table.h"
#include "reading/file_model.h"
#include "reading/units.h"

namespace orvio::program {
namespace {

std::string VersionText(const ORVFileVersion& version) {
  return fmt::format("{}.{}.{}", version.m_major, version.m_minor, version.m_patch);
}

Json ToJson(const VariableInfo& variable) {
  return {{"name", variable.name},
          {"key", variable.key},
          {"class", variable.class_word},
          {"shape", variable.shape},
          {"components", variable.components},
          {"units", variable.units},
          {"computed", variable.computed}};
}

Json ToJson(const StateInfo& state) { return {{"state", state.state}, {"index", JsonNumbers(state.index)}}; }

Json ToJson(const ElementInfo& element) {
  return {{"type", element.type},
          {"count", element.count},
          {"nodes_per_element", element.nodes_per_element},
          {"dimension", element.dimension},
          {"part_type", element.part_type},
          {"node_type", element.node_type}};
}

/// The headers of a damaged file may add up to more than any integer holds.
long long Whole(double bytes) { return static_cast<long long>(std::min(bytes, 9e18)); }

Json ToJson(const ResultInfo& result) {
  Json json = {{"section", result.section},           {"entity", result.entity},       {"variable", result.variable},
               {"element_values", result.is_element}, {"complex", result.is_complex},  {"type", result.value_type},
               {"components", result.components},     {"count_min", result.count_min}, {"count_max", result.count_max}};
  if (result.is_element) json["layers"] = result.layers;
  if (result.section == "state") json["states"] = result.states;
  if (!result.incremental_states.empty()) {
    json["incremental_states"] = result.incremental_states;
    json["stored_bytes"] = Whole(result.stored_bytes);
    json["full_bytes"] = Whole(result.full_bytes);
  }
  return json;
}

template <class T>
Json ListToJson(const std::vector<T>& list) {
  Json json = Json::array();
  for (const T& item : list) json.push_back(ToJson(item));
  return json;
}

void PrintAsJson(const FileModel& model) {
  Json json = JsonAnswer("info", model.path);
  json.update({{"format_version", VersionText(model.version)},
               {"title", model.title},
               {"solver", model.solver},
               {"unit_system", model.unit_system},
               {"index", model.index_names},
               {"index_units", model.index_units},
               {"states", ListToJson(model.states)},
               {"variables", ListToJson(model.variables)},
               {"results", ListToJson(model.results)},
               {"elements", ListToJson(model.elements)}});
  PrintJson(json);
}

std::string Counts(const ResultInfo& result) {
  if (result.count_min == result.count_max) return fmt::format("{}", result.count_max);
  return fmt::format("{}-{}", result.count_min, result.count_max);
}

/// Long lists are cut in the middle; --json has them whole.
void PrintStates(const FileModel& model) {
  constexpr std::size_t kShown = 60, kFirst = 40, kLast = 10;
  const std::vector<StateInfo>& states = model.states;
  std::vector<std::string> heading = {"state"};
  for (std::size_t i = 0; i < model.index_names.size(); ++i) {
    heading.push_back(WithUnit(model.index_names[i], model.index_units[i]));
  }
  Table table(heading);
  for (std::size_t i = 0; i < states.size(); ++i) {
    if (states.size() > kShown && i == kFirst) {
      std::vector<std::string> gap = {"...", fmt::format("({} more)", states.size() - kFirst - kLast)};
      gap.resize(heading.size());
      table.Add(gap);
      i = states.size() - kLast;
    }
    std::vector<std::string> row = {fmt::format("{}", states[i].state)};
    for (const double value : states[i].index) row.push_back(fmt::format("{}", value));
    row.resize(heading.size());
    table.Add(row);
  }
  table.Print(fmt::format("States ({})", states.size()));
}

/// "mm", or one for each component where they differ: "mm, mm, -".
std::string Units(const VariableInfo& variable) {
  std::vector<std::string> units = variable.units;
  for (std::string& unit : units) {
    if (unit.empty()) unit = "-";
  }
  if (units.empty()) return "-";
  const bool differ = std::ranges::any_of(units, [&](const std::string& unit) { return unit != units.front(); });
  return differ ? fmt::format("{}", fmt::join(units, ", ")) : units.front();
}

void PrintVariables(const std::vector<VariableInfo>& variables) {
  constexpr std::size_t kShown = 12;
  Table table({"variable", "shape", "class", "unit", "components"});
  for (const VariableInfo& variable : variables) {
    const std::size_t shown = variable.components.size() > kShown ? kShown : variable.components.size();
    std::string components = fmt::format(
        "{}", fmt::join(variable.components.begin(), variable.components.begin() + static_cast<long>(shown), " "));
    if (shown < variable.components.size()) components += fmt::format(" ... ({})", variable.components.size());
    table.Add({variable.name, variable.shape, variable.class_word.empty() ? "-" : variable.class_word, Units(variable),
               components});
  }
  table.Print(fmt::format("Variables ({})", variables.size()));
}

/// The measures that a host computes, by the names under which orv values takes them.
void PrintComputed(const std::vector<VariableInfo>& variables) {
  std::size_t count = 0;
  Table table({"computed", "from"});
  for (const VariableInfo& variable : variables) {
    for (const std::string& name : variable.computed) table.Add({name, variable.name});
    count += variable.computed.size();
  }
  if (count > 0) table.Print(fmt::format("Computed components ({})", count));
}

void PrintResults(const std::vector<ResultInfo>& results) {
  Table table({"result", "of", "count", "components", "type", "where"});
  for (const ResultInfo& result : results) {
    const std::string layers = result.is_element ? fmt::format(" x {} layers", result.layers) : "";
    const std::string where = result.section == "state" ? "states " + RangesOf(result.states) : result.section;
    table.Add({result.variable, result.entity, Counts(result) + layers, fmt::format("{}", result.components),
               (result.is_complex ? "complex " : "") + result.value_type, where});
  }
  table.Print(fmt::format("Results ({})", results.size()));
}

/// "1.4 MiB"; small ones as they are.
std::string Bytes(double bytes) {
  constexpr const char* kUnits[] = {"KiB", "MiB", "GiB", "TiB"};
  constexpr double kStep = 1024;
  if (bytes < kStep) return fmt::format("{:.0f} B", bytes);
  double size = bytes / kStep;
  std::size_t unit = 0;
  for (; size >= kStep && unit + 1 < std::size(kUnits); ++unit) size /= kStep;
  return fmt::format("{:.1f} {}", size, kUnits[unit]);
}

std::string Share(double part, double whole) { return whole > 0 ? fmt::format("{:.1f} %", 100 * part / whole) : "-"; }

/// The results that hold in some states nothing but what changed.
void PrintIncremental(const std::vector<ResultInfo>& results) {
  Table table({"incremental", "of", "states with changes", "stored", "if all were full", "saved"});
  std::size_t count = 0;
  double stored = 0, full = 0;
  for (const ResultInfo& result : results) {
    if (result.incremental_states.empty()) continue;
    table.Add({result.variable, result.entity, RangesOf(result.incremental_states), Bytes(result.stored_bytes),
               Bytes(result.full_bytes), Share(result.full_bytes - result.stored_bytes, result.full_bytes)});
    stored += result.stored_bytes;
    full += result.full_bytes;
    ++count;
  }
  if (count == 0) return;
  table.Print(fmt::format("Incremental results ({}): {} of {} saved, {}", count, Bytes(full - stored), Bytes(full),
                          Share(full - stored, full)));
}

void PrintElements(const std::vector<ElementInfo>& elements) {
  Table table({"elements", "count", "nodes each", "dimension"});
  for (const ElementInfo& element : elements) {
    table.Add({element.type, fmt::format("{}", element.count), fmt::format("{}", element.nodes_per_element),
               element.dimension < 0 ? "-" : fmt::format("{}", element.dimension)});
  }
  table.Print(fmt::format("Elements ({} types)", elements.size()));
}

void PrintText(const FileModel& model) {
  fmt::print("{}\nformat version {}\n", model.path, VersionText(model.version));
  if (!model.title.empty()) fmt::print("title {}\n", model.title);
  if (!model.solver.empty()) fmt::print("solver {}\n", model.solver);
  if (!model.unit_system.empty()) fmt::print("units {}\n", model.unit_system);
  PrintElements(model.elements);
  PrintVariables(model.variables);
  PrintComputed(model.variables);
  PrintResults(model.results);
  PrintIncremental(model.results);
  PrintStates(model);
}

}  // namespace

void AddInfoCommand(CLI::App& app) {
  auto file = std::make_shared<std::string>();
  auto json = std::make_shared<bool>(false);
  CLI::App* command =
      app.add_subcommand("info", "Tell what a result file holds: elements, variables, results and states");
  command->add_option("file", *file, "Result file")->required();
  command->add_flag("--json", *json, "Print JSON");
  AddNotes(*command, {{"orv info out.orv"}});
  command->callback([file, json] {
    const FileModel model = ReadFileModel(*file);
    if (*json) {
      PrintAsJson(model);
    } else {
      PrintText(model);
    }
  });
}

}  // namespace orvio::program
