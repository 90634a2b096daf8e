// Words of a person as states, names and ids of the file.

#include "copying/extract_plan.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <optional>
#include <utility>

#include "importer/quantity.h"
#include "reading/elements.h"
#include "reading/file_model.h"
#include "reading/parts.h"
#include "reading/quantity_search.h"
#include "reading/state_selection.h"
#include "reading/words.h"
#include "suggestion.h"
#include "trouble.h"

namespace orvio::program {
namespace {

/// Coordinates, and the axes of elements beside them.
constexpr const char* kGeometry[] = {"COORDINATE", "Structural Coordinates", "BASIS3X3"};

void PlanStates(const ExtractOptions& options, ResultFile& file, ExtractPlan& plan) {
  plan.states_of_file = file.states();
  if (options.states.empty()) {
    for (int state = 1; state <= file.states(); ++state) plan.states.push_back(state);
  } else {
    plan.states = StatesOf(file, options.states);
    std::ranges::sort(plan.states);
    std::erase(plan.states, 0);  // the constant section stays in any case
  }
  for (const int state : plan.states) {
    const std::vector<double> row = file.IndexOf(state);
    plan.first_columns.push_back(row.empty() ? std::nan("") : row.front());
  }
}

void PlanVariables(const ExtractOptions& options, ResultFile& file, ExtractPlan& plan) {
  plan.keeps_all_variables = options.variables.empty();
  if (plan.keeps_all_variables) return;
  file.LearnLaterResults(0);
  for (const char* name : kGeometry) plan.results.insert(Folded(name));
  for (const std::string& name : options.variables) {
    std::size_t found = 0;
    for (const ResultList list : {ResultList::kSingleState, ResultList::kMultiState}) {
      for (const ORVResult* block : FindQuantity(file, name, list).blocks) {
        plan.results.insert(Folded(TextOf(block->m_etypvar)));
        ++found;
      }
      for (const ORVResult* block : file.filer().GetResultList(list == ResultList::kSingleState ? 1 : 0)) {
        if (!SameWord(TextOf(block->m_etypvar), name)) continue;  // one without a definition, too
        plan.results.insert(Folded(name));
        ++found;
      }
    }
    if (found == 0) {
      throw Trouble(file.path(), fmt::format("has no values of \"{}\"{}", name, DidYouMean(name, QuantityNames(file))),
                    "orv info lists its variables");
    }
  }
}

std::optional<std::pair<long long, long long>> RangeOf(const std::string& text) {
  long long first = 0, last = 0;
  const char* end = text.data() + text.size();
  auto parsed = std::from_chars(text.data(), end, first);
  last = first;
  if (parsed.ec == std::errc() && parsed.ptr != end && *parsed.ptr == '-') {
    parsed = std::from_chars(parsed.ptr + 1, end, last);
  }
  const bool is_range = parsed.ec == std::errc() && parsed.ptr == end && first <= last;
  return is_range ? std::optional(std::pair(first, last)) : std::nullopt;
}

/// Ids of all parts, with their titles, of blocks of parts and of elements.
std::map<long long, std::string> PartsOf(ResultFile& file) {
  std::map<long long, std::string> parts;
  for (const orv::Elements& elements : ReadElements(file.file(), "")) {
    for (const long long part : elements.parts) parts.try_emplace(part);
  }
  for (const orv::Part& part : ReadParts(file.file(), "", 0)) parts.insert_or_assign(part.id, part.title);
  return parts;
}

EntityChoice::Ids PlanParts(const ExtractOptions& options, ResultFile& file) {
  EntityChoice::Ids ids;
  const std::map<long long, std::string> parts = PartsOf(file);
  for (const std::string& text : options.parts) {
    const auto range = RangeOf(text);
    std::size_t found = 0;
    for (const auto& [id, title] : parts) {
      const bool is_meant = SameWord(title, text) || (range && range->first <= id && id <= range->second);
      if (!is_meant) continue;
      ids.insert(id);
      ++found;
    }
    if (found > 0) continue;
    std::vector<std::string> titles;
    std::ranges::transform(parts, std::back_inserter(titles), [](const auto& part) { return part.second; });
    throw Trouble(file.path(), fmt::format("has no part \"{}\"{}", text, DidYouMean(text, titles)),
                  "orv parts lists them");
  }
  return ids;
}

EntityChoice::Ids SetOf(const std::vector<long long>& ids) { return {ids.begin(), ids.end()}; }

/// Whether results have this type of entities.
bool HasResultsOf(ResultFile& file, const std::string& type) {
  file.LearnLaterResults(0);
  for (const int list : {1, 0}) {
    for (const ORVResult* block : file.filer().GetResultList(list)) {
      if (SameWord(TextOf(block->m_etyp), type)) return true;
    }
  }
  return false;
}

/// A type of elements, of nodes or of anything else that has values.
void PlanType(const ExtractOptions& options, ResultFile& file, EntityChoice& choice) {
  const std::string& type = options.entity;
  bool is_element = false, is_node = SameWord(type, "NODE");
  for (const ORVEleConnectivity& header : ReadElementHeaders(file.path())) {
    is_element = is_element || SameWord(TextOf(header.m_etypelem), type) || SameWord(TextOf(header.m_etyp), type);
    is_node = is_node || SameWord(TextOf(header.m_etypnode), type);
  }
  if (is_element) {
    choice.element_type = type;
    if (!options.ids.empty()) choice.elements = SetOf(options.ids);
    return;
  }
  if (!is_node && !HasResultsOf(file, type)) {
    throw Trouble(file.path(),
                  fmt::format("has no entities of the type \"{}\"{}", type, DidYouMean(type, EntityNames(file))),
                  "orv info lists the types");
  }
  if (options.ids.empty()) {
    throw Trouble(file.path(), fmt::format("\"{}\" is not a type of elements", type), "give --ids with it");
  }
  if (is_node) {
    choice.nodes = SetOf(options.ids);
  } else {
    choice.others.emplace(Folded(type), SetOf(options.ids));
  }
}

}  // namespace

ExtractPlan PlanExtract(const ExtractOptions& options) {
  ResultFile file(options.file);
  ExtractPlan plan;
  PlanStates(options, file, plan);
  PlanVariables(options, file, plan);
  if (!options.parts.empty()) plan.entities.parts = PlanParts(options, file);
  if (!options.entity.empty()) PlanType(options, file, plan.entities);
  const auto add = [](const std::vector<long long>& ids, std::optional<EntityChoice::Ids>& to) {
    if (ids.empty()) return;
    if (!to) to.emplace();
    to->insert(ids.begin(), ids.end());
  };
  add(options.node_ids, plan.entities.nodes);
  add(options.element_ids, plan.entities.elements);
  return plan;
}

}  // namespace orvio::program
