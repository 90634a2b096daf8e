// The order of a comparison: what the files tell of themselves, the entities, then the values, quantity by quantity.

#include "comparing/file_comparison.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>

#include "comparing/index_table.h"
#include "comparing/model_comparison.h"
#include "comparing/name_check.h"
#include "comparing/quantity_list.h"
#include "comparing/record_comparison.h"
#include "comparing/state_match.h"
#include "comparing/state_values.h"
#include "comparing/value_comparison.h"
#include "reading/result_file.h"
#include "reading/state_selection.h"
#include "reading/words.h"

namespace orvio::program {
namespace {

/// Two open files and what is found.
class Comparison {
 public:
  Comparison(const std::string& path_a, const std::string& path_b, const DiffOptions& options)
      : options_(options), a_(path_a), b_(path_b), matches_(options.ids) {
    for (ResultFile* file : {&a_, &b_}) {
      (void)file->filer().KeepFileOpen();  // saves time, and works without
      file->LearnLaterResults(0);
    }
  }

  Differences Run() {
    std::vector<ComparedQuantity> quantities_a = ListQuantities(a_), quantities_b = ListQuantities(b_);
    CheckNames(a_, b_, quantities_a, quantities_b, options_);
    KeepWanted(a_, options_, quantities_a);
    KeepWanted(b_, options_, quantities_b);
    ChooseStates();
    CompareModel();
    CompareQuantities(quantities_a, quantities_b);
    if (found_.lone.empty()) CheckSeen(a_, b_, options_, matches_.seen());  // what only one file has is not looked into
    return std::move(found_);
  }

 private:
  void ChooseStates();
  void CompareModel();
  void CompareQuantities(const std::vector<ComparedQuantity>& quantities_a, std::vector<ComparedQuantity> left);
  void CompareComponents(const ComparedQuantity& a, const ComparedQuantity& b);
  void CompareInStates(const ComparedQuantity& a, const ComparedQuantity& b);
  void CompareConstant(const ComparedQuantity& a, const ComparedQuantity& b);
  void CompareOverStates(const ComparedQuantity& a, const ComparedQuantity& b);
  StateMatch MatchRows(const ComparedQuantity& a, const ComparedQuantity& b, std::size_t rows_a, std::size_t rows_b);
  void AddLone(bool in_a, const ComparedQuantity& quantity);
  void AddLone(bool in_a, const QuantityName& name, std::vector<int> states);
  void AddValues(std::vector<ValueComparison::Row>& rows);

  const DiffOptions& options_;
  ResultFile a_, b_;
  StateMatch states_;
  std::vector<int> chosen_;  ///< states of A that are asked for
  bool with_constant_ = true;
  Differences found_;
  LastMatch matches_;
};

void Comparison::ChooseStates() {
  states_ = options_.match_time
                ? MatchByTime(StateIndex(a_).FirstColumn(), StateIndex(b_).FirstColumn(), *options_.match_time)
                : MatchByNumber(a_.states(), b_.states());
  if (!options_.states.empty()) {
    chosen_ = StatesOf(a_, options_.states);
    with_constant_ = std::ranges::find(chosen_, 0) != chosen_.end();
    KeepStates(chosen_, states_);
  }
  found_.states = states_.pairs.size();
  if (!states_.only_a.empty()) found_.lone.push_back({true, "state", "", {}, states_.only_a, false});
  if (!states_.only_b.empty()) found_.lone.push_back({false, "state", "", {}, states_.only_b, false});
}

void Comparison::CompareModel() {
  if (!options_.IsRestricted()) CompareSystems(a_, b_, found_);
  if (options_.entity.empty() && options_.ids.empty()) CompareVariables(a_, b_, options_, found_);
  if (!options_.IsRestricted()) CompareIndex(a_, b_, options_, states_.pairs, found_);
  if (with_constant_) CompareRecords(a_, b_, options_, {0, 0}, found_, matches_);
  for (const StatePair& pair : states_.pairs) CompareRecords(a_, b_, options_, pair, found_, matches_);
}

void Comparison::CompareQuantities(const std::vector<ComparedQuantity>& quantities_a,
                                   std::vector<ComparedQuantity> left) {
  for (const ComparedQuantity& quantity : quantities_a) {
    if (quantity.IsConstant() && !with_constant_) continue;
    const auto twin = std::ranges::find_if(
        left, [&](const ComparedQuantity& other) { return IsSameQuantity(other.name, quantity.name); });
    if (twin == left.end()) {
      AddLone(true, quantity);
      continue;
    }
    ++found_.quantities;
    CompareComponents(quantity, *twin);
    if (quantity.IsConstant()) {
      CompareConstant(quantity, *twin);
    } else if (quantity.IsOverStates()) {
      CompareOverStates(quantity, *twin);
    } else {
      CompareInStates(quantity, *twin);
    }
    left.erase(twin);
  }
  for (const ComparedQuantity& quantity : left) {
    if (!quantity.IsConstant() || with_constant_) AddLone(false, quantity);
  }
}

std::string LabelsOf(const ComparedQuantity& quantity) {
  std::vector<std::string> labels;
  for (const Component& component : quantity.components) labels.push_back(component.label);
  return fmt::format("{}", fmt::join(labels, " "));
}

void Comparison::CompareComponents(const ComparedQuantity& a, const ComparedQuantity& b) {
  const std::string labels_a = LabelsOf(a), labels_b = LabelsOf(b);
  if (SameWord(labels_a, labels_b)) return;
  found_.texts.push_back(
      {"result", a.name.variable + " of " + a.name.entity, "components", labels_a, labels_b, {}, false});
}

void Comparison::CompareInStates(const ComparedQuantity& a, const ComparedQuantity& b) {
  ValueComparison comparison(options_, a, b, matches_);
  std::vector<int> only_a, only_b;
  for (const StatePair& pair : states_.pairs) {
    StateValues values_a(a_, a, pair.a), values_b(b_, b, pair.b);
    if (values_a.IsStored() && values_b.IsStored()) {
      std::vector<ValueComparison::Row> rows(1);
      rows.front().difference.quantity = a.name;
      rows.front().difference.states = pair;
      comparison.Compare(values_a, values_b, rows);
      AddValues(rows);
    } else if (values_a.IsStored()) {
      only_a.push_back(pair.a);
    } else if (values_b.IsStored()) {
      only_b.push_back(pair.b);
    }
  }
  AddLone(true, a.name, std::move(only_a));
  AddLone(false, b.name, std::move(only_b));
}

void Comparison::CompareConstant(const ComparedQuantity& a, const ComparedQuantity& b) {
  StateValues values_a(a_, a, 0), values_b(b_, b, 0);
  if (values_a.IsStored() != values_b.IsStored()) return AddLone(values_a.IsStored(), values_a.IsStored() ? a : b);
  if (!values_a.IsStored()) return;
  std::vector<ValueComparison::Row> rows(1);
  rows.front().difference.quantity = a.name;
  ValueComparison(options_, a, b, matches_).Compare(values_a, values_b, rows);
  AddValues(rows);
}

StateMatch Comparison::MatchRows(const ComparedQuantity& a, const ComparedQuantity& b, std::size_t rows_a,
                                 std::size_t rows_b) {
  StateMatch match = MatchByNumber(static_cast<int>(rows_a), static_cast<int>(rows_b));
  if (options_.match_time) {
    std::vector<double> times_a = RowIndex(a_, *a.blocks.front()).FirstColumn();
    std::vector<double> times_b = RowIndex(b_, *b.blocks.front()).FirstColumn();
    const bool have_times = times_a.size() == rows_a && times_b.size() == rows_b;
    if (have_times) match = MatchByTime(times_a, times_b, *options_.match_time);
  }
  if (!options_.states.empty()) KeepStates(chosen_, match);
  return match;
}

void Comparison::CompareOverStates(const ComparedQuantity& a, const ComparedQuantity& b) {
  constexpr int kOverStates = -1;
  StateValues values_a(a_, a, kOverStates), values_b(b_, b, kOverStates);
  if (values_a.IsStored() != values_b.IsStored()) return AddLone(values_a.IsStored(), values_a.IsStored() ? a : b);
  if (!values_a.IsStored()) return;
  StateMatch match = MatchRows(a, b, values_a.Rows(), values_b.Rows());
  std::vector<ValueComparison::Row> rows;
  for (const StatePair& pair : match.pairs) {
    rows.push_back({static_cast<std::size_t>(pair.a - 1), static_cast<std::size_t>(pair.b - 1), {}});
    rows.back().difference.quantity = a.name;
    rows.back().difference.states = pair;
  }
  ValueComparison(options_, a, b, matches_).Compare(values_a, values_b, rows);
  AddValues(rows);
  if (!options_.IsRestricted()) CompareRows(a_, b_, options_, a, b, match.pairs, found_);
  AddLone(true, a.name, std::move(match.only_a));
  AddLone(false, b.name, std::move(match.only_b));
}

/// A quantity that the other file lacks, in the states that are compared.
void Comparison::AddLone(bool in_a, const ComparedQuantity& quantity) {
  if (quantity.name.section != "state") return found_.lone.push_back({in_a, "result", "", quantity.name, {}, false});
  std::vector<int> states;
  for (const StatePair& pair : states_.pairs) {
    const int state = in_a ? pair.a : pair.b;
    if (StateValues(in_a ? a_ : b_, quantity, state).IsStored()) states.push_back(state);
  }
  AddLone(in_a, quantity.name, std::move(states));
}

void Comparison::AddLone(bool in_a, const QuantityName& name, std::vector<int> states) {
  if (!states.empty()) found_.lone.push_back({in_a, "result", "", name, std::move(states), false});
}

void Comparison::AddValues(std::vector<ValueComparison::Row>& rows) {
  for (ValueComparison::Row& row : rows) {
    found_.compared_values += row.difference.compared;
    found_.differing_values += row.difference.differing;
    if (row.difference.IsAny()) found_.values.push_back(std::move(row.difference));
  }
}

}  // namespace

bool Differences::IsAny(bool counts_notes) const {
  const auto counts = [&](const auto& one) { return counts_notes || !one.is_note; };
  return std::ranges::any_of(texts, counts) || std::ranges::any_of(lone, counts) || !tables.empty() || !values.empty();
}

Differences CompareFiles(const std::string& path_a, const std::string& path_b, const DiffOptions& options) {
  return Comparison(path_a, path_b, options).Run();
}

}  // namespace orvio::program
