// The states and variables of an Exodus II file.
//
// The values of a variable of the elements stand apart for each block, as `vals_elem_var3eb1`: variable 3, block 1. Which
// of these there are tells a table of zeros and ones, `elem_var_tab`, or else the file itself.
#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

#include "exodus/reader.h"

namespace orvio::exodus {
namespace {

std::size_t Size(int count) { return static_cast<std::size_t>(count); }

std::string NameOf(const std::string& kind, std::size_t variable, const std::string& place, std::size_t number) {
  return fmt::format("vals_{}_var{}{}{}", kind, variable + 1, place, number + 1);
}

/// Takes a number from 1 to `most` off the front of a text and answers it counted from 0.
std::optional<std::size_t> TakeNumber(std::string_view& text, std::size_t most) {
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || number < 1 || number > most) return std::nullopt;
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return number - 1;
}

bool TakeWord(std::string_view& text, std::string_view word) {
  if (!text.starts_with(word)) return false;
  text.remove_prefix(word.size());
  return true;
}

}  // namespace

double Reader::ReadTime(int state) const {
  const Variable variable = file_.Get("time_whole", {Size(announced_states_)});
  return ReadAtState(variable, state, {0}, {1}).numbers.front();
}

/// A part of a variable whose first axis is the states.
Values Reader::ReadAtState(const Variable& variable, int state, const Shape& start, const Shape& count) const {
  Shape first = start;
  first[0] = Size(state);
  return {file_.Reals(variable, first, count), variable.IsDouble()};
}

/// Of a place that has all of them.
Variables Reader::ReadVariablesOfAll(const std::string& kind) const {
  Variables variables = ReadVariables(kind, "", {});
  variables.present.resize(1);
  for (std::size_t i = 0; i < variables.names.size(); ++i) variables.present[0].push_back(i);
  return variables;
}

// ---- The model as a whole

Variables Reader::ReadGlobalVariables() const { return ReadVariablesOfAll("glo"); }

Values Reader::ReadGlobal(std::size_t variable) const {
  const Variable all = file_.Get("vals_glo_var", {Size(announced_states_), Size(file_.Count("num_glo_var"))});
  return {file_.Reals(all, {0, variable}, {Size(states_), 1}), all.IsDouble()};
}

// ---- Nodes

Variables Reader::ReadNodalVariables() const { return ReadVariablesOfAll("nod"); }

/// Older files have all variables in one.
Values Reader::ReadNodal(std::size_t variable, int state) const {
  const std::size_t states = Size(announced_states_), nodes = Size(nodes_);
  if (!file_.Find("vals_nod_var")) return ReadOfPlace(fmt::format("vals_nod_var{}", variable + 1), nodes_, state);
  const Variable all = file_.Get("vals_nod_var", {states, Size(file_.Count("num_nod_var")), nodes});
  return ReadAtState(all, state, {0, variable, 0}, {1, 1, nodes});
}

Values Reader::ReadOfPlace(const std::string& variable, int count, int state) const {
  const Variable found = file_.Get(variable, {Size(announced_states_), Size(count)});
  return ReadAtState(found, state, {0, 0}, {1, Size(count)});
}

// ---- Blocks and node sets

namespace {

/// The elements of each block, or the nodes of each set.
std::vector<int> SizesOf(const NetcdfFile& file, const std::string& count, const std::string& ids,
                         const std::string& size) {
  const int places = file.Count(count);
  if (places == 0) return {};
  (void)file.Get(ids, {Size(places)});  // so that the number of them is to be believed
  std::vector<int> sizes;
  for (int place = 1; place <= places; ++place) sizes.push_back(file.Count(size + std::to_string(place)));
  return sizes;
}

}  // namespace

Variables Reader::ReadElementVariables() const {
  return ReadVariables("elem", "eb", SizesOf(file_, "num_el_blk", "eb_prop1", "num_el_in_blk"));
}

Variables Reader::ReadNodeSetVariables() const {
  return ReadVariables("nset", "ns", SizesOf(file_, "num_node_sets", "ns_prop1", "num_nod_ns"));
}

Values Reader::ReadElements(std::size_t variable, std::size_t block, int state) const {
  const int elements = file_.Count("num_el_in_blk" + std::to_string(block + 1));
  return ReadOfPlace(NameOf("elem", variable, "eb", block), elements, state);
}

Values Reader::ReadNodeSet(std::size_t variable, std::size_t set, int state) const {
  const int nodes = file_.Count("num_nod_ns" + std::to_string(set + 1));
  return ReadOfPlace(NameOf("nset", variable, "ns", set), nodes, state);
}

namespace {

/// By the table, row by row.
void MarkPresent(const std::vector<int>& table, const std::vector<int>& sizes, Variables& variables) {
  const std::size_t count = variables.names.size();
  for (std::size_t place = 0; place < sizes.size(); ++place) {
    for (std::size_t i = 0; sizes[place] > 0 && i < count; ++i) {
      if (table[place * count + i] != 0) variables.present[place].push_back(i);
    }
  }
}

}  // namespace

/// `place` is the word that stands before the number of a block or set.
Variables Reader::ReadVariables(const std::string& kind, const std::string& place,
                                const std::vector<int>& sizes) const {
  Variables variables;
  const int count = file_.Count(fmt::format("num_{}_var", kind));
  variables.present.resize(sizes.size());
  if (count == 0) return variables;
  variables.names = file_.Texts(file_.GetTexts(fmt::format("name_{}_var", kind), Size(count)));
  const std::string table = kind + "_var_tab";
  if (sizes.empty()) return variables;
  if (file_.Find(table)) {
    MarkPresent(file_.Integers(file_.Get(table, {sizes.size(), Size(count)})), sizes, variables);
    return variables;
  }
  // Not place by place and variable by variable: a file of a few megabytes may announce millions of both.
  for (const std::string& name : file_.VariableNames()) {
    std::string_view rest = name;
    if (!TakeWord(rest, fmt::format("vals_{}_var", kind))) continue;
    const auto variable = TakeNumber(rest, variables.names.size());
    if (!variable || !TakeWord(rest, place)) continue;
    const auto number = TakeNumber(rest, sizes.size());
    if (number && rest.empty() && sizes[*number] > 0) variables.present[*number].push_back(*variable);
  }
  for (auto& present : variables.present) std::ranges::sort(present);
  return variables;
}

}  // namespace orvio::exodus
