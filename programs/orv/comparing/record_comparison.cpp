#include "comparing/record_comparison.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <string>
#include <vector>

#include "comparing/record_table.h"
#include "reading/words.h"

namespace orvio::program {
namespace {

/// Of one type of records in both files.
struct Place {
  RecordKind kind;
  std::string type;
  StatePair states;
};

/// What a person sees of a row.
std::string ShownRow(const RecordColumn& column, std::size_t row) {
  constexpr std::size_t kShown = 30;
  if (!column.texts.empty()) return '"' + column.texts[row] + '"';
  const std::span<const long long> numbers = column.Row(row);
  const std::string shown = fmt::format("{}", fmt::join(numbers.first(std::min(numbers.size(), kShown)), " "));
  return numbers.size() > kShown ? fmt::format("{} ... ({})", shown, numbers.size()) : shown;
}

bool IsSameRow(const RecordColumn& a, std::size_t row_a, const RecordColumn& b, std::size_t row_b) {
  if (a.texts.empty() != b.texts.empty()) return false;
  if (!a.texts.empty()) return a.texts[row_a] == b.texts[row_b];
  return std::ranges::equal(a.Row(row_a), b.Row(row_b));
}

TableDifference CompareColumn(const Place& place, const IdMatch& match, const RecordTable& table_a,
                              const RecordColumn& a, const RecordColumn& b) {
  TableDifference difference;
  difference.kind = WordOf(place.kind);
  difference.name = place.type;
  difference.what = a.what;
  difference.states = place.states;
  difference.compared = match.count;
  for (std::size_t i = 0; i < match.count; ++i) {
    const auto [row_a, row_b] = match.Pair(i);
    if (IsSameRow(a, row_a, b, row_b) || difference.differing++ > 0) continue;
    difference.first_id = table_a.ids[row_a];
    difference.a = ShownRow(a, row_a);
    difference.b = ShownRow(b, row_b);
  }
  return difference;
}

void CompareFacts(const Place& place, const RecordTable& a, const RecordTable& b, Differences& found) {
  for (std::size_t i = 0; i < std::min(a.facts.size(), b.facts.size()); ++i) {
    if (a.facts[i].second == b.facts[i].second) continue;
    found.texts.push_back(
        {WordOf(place.kind), place.type, a.facts[i].first, a.facts[i].second, b.facts[i].second, place.states, false});
  }
}

/// Columns belong together by what they are of; the first of one side to the first of the other.
void CompareColumns(const Place& place, const IdMatch& match, const RecordTable& a, const RecordTable& b,
                    Differences& found) {
  std::vector<const RecordColumn*> left;
  for (const RecordColumn& column : b.columns) left.push_back(&column);
  const auto add_lone = [&](bool in_a, const RecordColumn& column) {
    found.texts.push_back({WordOf(place.kind), place.type, column.what, in_a ? "there" : "missing",
                           in_a ? "missing" : "there", place.states, false});
  };
  for (const RecordColumn& column : a.columns) {
    const auto twin = std::ranges::find(left, column.what, &RecordColumn::what);
    if (twin == left.end()) {
      add_lone(true, column);
      continue;
    }
    TableDifference difference = CompareColumn(place, match, a, column, **twin);
    if (difference.differing > 0) found.tables.push_back(std::move(difference));
    left.erase(twin);
  }
  for (const RecordColumn* column : left) add_lone(false, *column);
}

void CompareTables(const Place& place, const RecordTable& a, const RecordTable& b, const DiffOptions& options,
                   Differences& found, LastMatch& matches) {
  const IdMatch match = MatchIds(a.ids, b.ids, options.ids);
  matches.See(a.ids);
  matches.See(b.ids);
  if (match.only_a.count + match.only_b.count > 0) {
    TableDifference lone;
    lone.kind = WordOf(place.kind);
    lone.name = place.type;
    lone.states = place.states;
    lone.only_a = match.only_a;
    lone.only_b = match.only_b;
    found.tables.push_back(std::move(lone));
  }
  CompareFacts(place, a, b, found);
  CompareColumns(place, match, a, b, found);
}

/// Files of the other version cannot have identifiers.
bool IsForWantOfVersion(ResultFile& other, RecordKind kind) {
  const ORVFileVersion* version = other.filer().GetFileVersion();
  if (kind != RecordKind::kIdentifier || !version) return false;
  return version->m_major < 2 || (version->m_major == 2 && version->m_minor < 1);
}

/// States in which one type of records is missing make one entry.
void AddLone(bool in_a, ResultFile& other, RecordKind kind, const std::string& type, int state, Differences& found) {
  const auto known = std::ranges::find_if(found.lone, [&](const OnlyIn& lone) {
    return lone.in_a == in_a && lone.kind == WordOf(kind) && lone.name == type && !lone.states.empty() && state > 0;
  });
  if (known != found.lone.end()) return known->states.push_back(state);
  found.lone.push_back({in_a, WordOf(kind), type, {}, {}, IsForWantOfVersion(other, kind)});
  if (state > 0) found.lone.back().states.push_back(state);
}

void CompareKind(ResultFile& a, ResultFile& b, RecordKind kind, const DiffOptions& options, const StatePair& states,
                 Differences& found, LastMatch& matches) {
  const auto is_other = [&](const std::string& type) { return !options.WantsEntity(type); };
  std::vector<std::string> types_a = ListRecordTypes(a, kind, states.a), types_b = ListRecordTypes(b, kind, states.b);
  std::erase_if(types_a, is_other);
  std::erase_if(types_b, is_other);
  for (const std::string& type : types_a) {
    const auto twin = std::ranges::find_if(types_b, [&](const std::string& other) { return SameWord(type, other); });
    if (twin == types_b.end()) {
      AddLone(true, b, kind, type, states.a, found);
      continue;
    }
    CompareTables({kind, type, states}, ReadRecords(a, kind, type, states.a), ReadRecords(b, kind, *twin, states.b),
                  options, found, matches);
    types_b.erase(twin);
  }
  for (const std::string& type : types_b) AddLone(false, a, kind, type, states.b, found);
}

}  // namespace

void CompareRecords(ResultFile& a, ResultFile& b, const DiffOptions& options, const StatePair& states,
                    Differences& found, LastMatch& matches) {
  if (!options.variables.empty()) return;
  for (const RecordKind kind : kRecordKinds) {
    const bool is_of_sets = kind == RecordKind::kCollector;  // the ids are those of the sets
    if (is_of_sets && options.IsRestricted()) continue;
    CompareKind(a, b, kind, options, states, found, matches);
  }
}

}  // namespace orvio::program
