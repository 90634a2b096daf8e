// What differs between two files, as lines for people.

#include "printing/diff_output.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cctype>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

#include "printing/ranges.h"

namespace orvio::program {
namespace {

/// Texts of a file must not reach a terminal as they are.
std::string Shown(std::string text) {
  const auto is_control = [](unsigned char c) { return std::iscntrl(c) != 0; };
  std::ranges::replace_if(text, is_control, '?');
  return text;
}

std::string Counted(std::size_t count, std::string word) {
  if (count == 1) return "1 " + word;
  if (word.ends_with('y')) word.replace(word.size() - 1, 1, "ie");
  return fmt::format("{} {}s", count, word);
}

std::string StateOf(const StatePair& states) {
  if (states.a == 0) return "";
  return states.a == states.b ? fmt::format(", state {}", states.a)
                              : fmt::format(", state {} of A and {} of B", states.a, states.b);
}

std::string NameOf(const QuantityName& quantity) {
  std::string name = (quantity.is_complex ? "complex " : "") + quantity.variable + " of " + quantity.entity;
  if (!quantity.zone.empty()) name += ", zone " + quantity.zone;
  if (quantity.zone_id != 0) name += fmt::format(" ({})", quantity.zone_id);
  if (!quantity.series.empty()) name += ", series " + quantity.series;
  if (quantity.number > 0) name += fmt::format(", block {}", quantity.number + 1);
  if (quantity.section == "constant") name += ", constant";
  if (quantity.section == "multi-state") name += ", over all states";
  return name;
}

std::string Line(const TextDifference& difference) {
  std::string subject = difference.kind;
  if (!difference.name.empty()) subject += " " + difference.name;
  subject += StateOf(difference.states) + ":";
  if (!difference.what.empty()) subject += " " + difference.what;
  return fmt::format("{}{} \"{}\" in A, \"{}\" in B", difference.is_note ? "note: " : "", subject, difference.a,
                     difference.b);
}

std::string Line(const OnlyIn& lone) {
  std::string subject = lone.kind;
  if (lone.quantity) subject += " " + NameOf(*lone.quantity);
  if (!lone.name.empty()) subject += " " + lone.name;
  const std::string states = RangesOf(lone.states);
  if (lone.kind == "state") {
    subject += " " + states;
  } else if (!lone.states.empty()) {
    subject += ", state " + states;
  }
  return fmt::format("{}only in {}: {}", lone.is_note ? "note: " : "", lone.in_a ? "A" : "B", subject);
}

/// "2 ids only in A (17, 18), 1 id only in B (19)".
std::string LoneText(const LoneIds& only_a, const LoneIds& only_b) {
  std::vector<std::string> texts;
  const auto add = [&](const LoneIds& ids, const char* file) {
    if (ids.count == 0) return;
    const char* more = ids.count > ids.first.size() ? ", ..." : "";
    texts.push_back(
        fmt::format("{} only in {} ({}{})", Counted(ids.count, "id"), file, fmt::join(ids.first, ", "), more));
  };
  add(only_a, "A");
  add(only_b, "B");
  return fmt::format("{}", fmt::join(texts, ", "));
}

std::string Line(const TableDifference& difference) {
  const bool is_index = difference.kind == "index";
  std::string line = difference.kind;
  if (!difference.name.empty()) line += " " + difference.name;
  line += StateOf(difference.states) + ": ";
  if (difference.what.empty()) return line + LoneText(difference.only_a, difference.only_b);
  const char* row = is_index ? "state" : "id";
  return line + fmt::format("{}: {} of {} differ, first {} {}: {} in A, {} in B", difference.what, difference.differing,
                            Counted(difference.compared, row), row, difference.first_id, difference.a, difference.b);
}

/// The shortest text that reads back as the same value.
std::string ValueText(double value, bool is_float) {
  const bool fits = !std::isfinite(value) || std::abs(value) <= static_cast<double>(std::numeric_limits<float>::max());
  return is_float && fits ? fmt::format("{}", static_cast<float>(value)) : fmt::format("{}", value);
}

std::string PlaceText(const ValuePlace& place) {
  const std::string layer = place.layer == 0 ? "" : fmt::format(" layer {}", place.layer);
  return fmt::format("{:.6g} at id {}{} {} ({}, {})", place.difference, place.id, layer, place.component,
                     ValueText(place.a, place.a_is_float), ValueText(place.b, place.b_is_float));
}

std::string Line(const ValueDifference& difference) {
  std::vector<std::string> texts;
  if (difference.differing > 0) {
    texts.push_back(fmt::format("{} of {} values differ", difference.differing, difference.compared));
    texts.push_back("largest absolute " + PlaceText(difference.absolute));
    texts.push_back("largest relative " + PlaceText(difference.relative));
  }
  if (difference.layers) {
    texts.push_back(fmt::format("{} layers in A, {} in B", difference.layers->first, difference.layers->second));
  }
  const std::string lone = LoneText(difference.only_a, difference.only_b);
  if (!lone.empty()) texts.push_back(lone);
  return fmt::format("{}{}: {}", NameOf(difference.quantity), StateOf(difference.states), fmt::join(texts, "; "));
}

template <class List>
void PrintLines(const List& list, bool notes, const char* kind, std::size_t most) {
  std::size_t count = 0;
  for (const auto& item : list) {
    if constexpr (requires { item.is_note; }) {
      if (item.is_note != notes) continue;
    }
    if (count++ < most) fmt::print("{}\n", Shown(Line(item)));
  }
  if (count > most) fmt::print("... and {} more {}\n", count - most, kind);
}

std::size_t CountNotes(const Differences& found) {
  const auto is_note = [](const auto& one) { return one.is_note; };
  return static_cast<std::size_t>(std::ranges::count_if(found.texts, is_note) +
                                  std::ranges::count_if(found.lone, is_note));
}

void PrintSummary(const DiffSubject& subject, const Differences& found) {
  const std::size_t notes = CountNotes(found);
  const std::size_t others = found.texts.size() + found.lone.size() - notes + found.tables.size();
  const std::string looked_at =
      fmt::format("{} in {} compared", Counted(found.quantities, "quantity"), Counted(found.states, "state"));
  const std::string noted = notes > 0 ? ", " + Counted(notes, "note") : "";
  if (!found.IsAny(subject.is_strict)) {
    fmt::print("same: {}{}; {}\n", Counted(found.compared_values, "value"), noted, looked_at);
    return;
  }
  fmt::print("different: {} of {}, {}{}; {}\n", found.differing_values, Counted(found.compared_values, "value"),
             Counted(others, "other difference"), noted, looked_at);
}

}  // namespace

void PrintDifferences(const DiffSubject& subject, const Differences& found, std::size_t most) {
  for (const bool notes : {true, false}) {
    PrintLines(found.texts, notes, notes ? "notes" : "differences", most);
    PrintLines(found.lone, notes, notes ? "notes" : "in one file only", most);
  }
  PrintLines(found.tables, false, "differences of tables", most);
  PrintLines(found.values, false, "differences of values", most);
  PrintSummary(subject, found);
}

}  // namespace orvio::program
