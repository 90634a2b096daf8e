#include "comparing/model_comparison.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <string>

#include "comparing/index_table.h"
#include "reading/file_model.h"
#include "reading/words.h"

namespace orvio::program {
namespace {

std::string TextOrNothing(const char* text) { return text ? TextOf(text) : ""; }

void CompareText(const std::string& kind, const std::string& name, const std::string& what, const std::string& a,
                 const std::string& b, bool is_note, Differences& found) {
  if (a != b) found.texts.push_back({kind, name, what, a, b, {}, is_note});
}

/// "mm 0.001, s 1": with the factors to SI or of the derived ones, in whatever order they are stored.
std::string UnitsOf(ORVFiler& filer) {
  std::vector<ORVUnit*> base, derived;
  filer.GetUnitList(base, derived);
  std::vector<std::string> texts;
  for (const auto& units : {base, derived}) {
    for (const ORVUnit* unit : units) {
      float shift = 0;
      const float scale = unit->GetConversionFactors(shift);
      texts.push_back(fmt::format("{} {}", unit->GetUnitCStr(), scale) +
                      (shift == 0 ? "" : fmt::format(" shifted by {}", shift)));
    }
  }
  std::ranges::sort(texts);
  return fmt::format("{}", fmt::join(texts, ", "));
}

std::string SystemOf(ORVFiler& filer) { return filer.GetSystem() ? TextOf(filer.GetSystem()->m_sys) : ""; }

/// Labels, or numbers where there are none.
std::vector<std::string> LabelsOf(const VariableInfo& variable) {
  std::vector<std::string> labels = variable.components;
  for (std::size_t i = 0; i < labels.size(); ++i) {
    if (labels[i].empty()) labels[i] = fmt::format("C{}", i + 1);
  }
  return labels;
}

void CompareVariable(const VariableInfo& a, const VariableInfo& b, Differences& found) {
  const std::vector<std::string> labels_a = LabelsOf(a), labels_b = LabelsOf(b);
  const auto compare = [&](const std::string& what, const std::string& text_a, const std::string& text_b) {
    CompareText("variable", a.name, what, text_a, text_b, false, found);
  };
  compare("components", fmt::format("{}", fmt::join(labels_a, " ")), fmt::format("{}", fmt::join(labels_b, " ")));
  compare("shape", a.shape, b.shape);
  if (!a.class_word.empty() && !b.class_word.empty()) compare("class", a.class_word, b.class_word);
  for (std::size_t i = 0; i < std::min(labels_a.size(), labels_b.size()); ++i) {
    const bool is_same = SameWord(labels_a[i], labels_b[i]) && i < a.units.size() && i < b.units.size();
    if (is_same) compare("unit of " + labels_a[i], a.units[i], b.units[i]);
  }
}

bool HasResults(ResultFile& file, const std::string& variable) {
  const auto is_of_variable = [&](const ORVResult* block) { return SameWord(TextOf(block->m_etypvar), variable); };
  return std::ranges::any_of(file.filer().GetResultList(1), is_of_variable) ||
         std::ranges::any_of(file.filer().GetResultList(0), is_of_variable);
}

/// Older files have the columns of the index among their variables.
std::vector<VariableInfo> ComparedVariables(ResultFile& file, ResultFile& other, const DiffOptions& options) {
  std::vector<VariableInfo> variables = ListVariables(file);
  std::vector<std::string> columns = file.IndexNames();
  for (const std::string& name : other.IndexNames()) columns.push_back(name);
  std::erase_if(variables, [&](const VariableInfo& variable) {
    const auto is_column = [&](const std::string& name) { return SameWord(name, variable.name); };
    if (std::ranges::any_of(columns, is_column) && !HasResults(file, variable.name)) return true;
    return !options.WantsNames({variable.name, variable.key});
  });
  return variables;
}

}  // namespace

void CompareSystems(ResultFile& a, ResultFile& b, Differences& found) {
  ORVFiler &filer_a = a.filer(), &filer_b = b.filer();
  const auto compare = [&](const char* kind, const char* what, const std::string& text_a, const std::string& text_b,
                           bool is_note) { CompareText(kind, "", what, text_a, text_b, is_note, found); };
  compare("title", "", TextOrNothing(filer_a.GetTitle()), TextOrNothing(filer_b.GetTitle()), true);
  compare("solver", "", TextOrNothing(filer_a.GetSolverName()), TextOrNothing(filer_b.GetSolverName()), true);
  compare("solver", "version", TextOrNothing(filer_a.GetSolverVersion()), TextOrNothing(filer_b.GetSolverVersion()),
          true);
  compare("unit system", "", SystemOf(filer_a), SystemOf(filer_b), false);
  compare("unit system", "units", UnitsOf(filer_a), UnitsOf(filer_b), false);
}

void CompareVariables(ResultFile& a, ResultFile& b, const DiffOptions& options, Differences& found) {
  std::vector<VariableInfo> left = ComparedVariables(b, a, options);
  for (const VariableInfo& variable : ComparedVariables(a, b, options)) {
    const auto twin =
        std::ranges::find_if(left, [&](const VariableInfo& other) { return SameWord(other.name, variable.name); });
    if (twin == left.end()) {
      found.lone.push_back({true, "variable", variable.name, {}, {}, false});
      continue;
    }
    CompareVariable(variable, *twin, found);
    left.erase(twin);
  }
  for (const VariableInfo& variable : left) found.lone.push_back({false, "variable", variable.name, {}, {}, false});
}

namespace {

/// What the tables of the states of two files, or of two blocks, are called in an answer.
void CompareColumns(const IndexTable& a, const IndexTable& b, const std::string& name, const DiffOptions& options,
                    const std::vector<StatePair>& pairs, Differences& found) {
  const IndexColumns columns = MatchColumns(a, b);
  for (const auto& [column_a, column_b] : columns.pairs) {
    const std::string& label = a.names[column_a];
    if (options.IsIgnored({label})) continue;
    Tolerance tolerance = options.tolerances.Of({label});
    if (column_a == 0 && options.match_time) tolerance.absolute = std::max(tolerance.absolute, *options.match_time);
    CompareText("index", name, "unit of " + label, a.units[column_a], b.units[column_b], false, found);
    TableDifference difference = CompareIndexColumn(a, column_a, b, column_b, pairs, tolerance);
    difference.name = name;
    if (difference.differing > 0) found.tables.push_back(std::move(difference));
  }
}

}  // namespace

void CompareIndex(ResultFile& a, ResultFile& b, const DiffOptions& options, const std::vector<StatePair>& pairs,
                  Differences& found) {
  const IndexTable table_a = StateIndex(a), table_b = StateIndex(b);
  // A file with changes has one column, whatever it was made of.
  const bool is_note = a.filer().HasIncremetalData() != b.filer().HasIncremetalData();
  const IndexColumns columns = MatchColumns(table_a, table_b);
  const auto add_lone = [&](bool in_a, const std::string& column) {
    if (!options.IsIgnored({column})) found.lone.push_back({in_a, "index", column, {}, {}, is_note});
  };
  for (const std::size_t column : columns.only_a) add_lone(true, table_a.names[column]);
  for (const std::size_t column : columns.only_b) add_lone(false, table_b.names[column]);
  CompareColumns(table_a, table_b, "", options, pairs, found);
}

void CompareRows(ResultFile& a, ResultFile& b, const DiffOptions& options, const ComparedQuantity& quantity_a,
                 const ComparedQuantity& quantity_b, const std::vector<StatePair>& pairs, Differences& found) {
  const QuantityName& name = quantity_a.name;
  CompareColumns(RowIndex(a, *quantity_a.blocks.front()), RowIndex(b, *quantity_b.blocks.front()),
                 name.variable + " of " + name.entity, options, pairs, found);
}

}  // namespace orvio::program
