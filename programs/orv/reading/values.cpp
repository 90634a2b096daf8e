#include "reading/values.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <unordered_set>

#include "reading/quantity_search.h"
#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

std::string Place(int state) { return state == 0 ? "the constant section" : fmt::format("state {}", state); }

/// The names that a state does have, for the message about one that it has not.
std::string NamesAt(ResultFile& file, int state, bool with_entity) {
  std::vector<std::string> names;
  for (const ORVResult* block : file.filer().GetResultList(1)) {
    const bool is_there = block->IsConstantBlk() ? state == 0 : state > 0 && file.CountAt(*block, state) > 0;
    if (is_there) names.push_back(TextOf(block->m_etypvar) + (with_entity ? " of " + TextOf(block->m_etyp) : ""));
  }
  std::ranges::sort(names);
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names.empty() ? "nothing" : fmt::format("{}", fmt::join(names, ", "));
}

[[noreturn]] void RefuseName(ResultFile& file, const ValueRequest& request, int state) {
  CheckDefinition(file, request.variable);
  const bool any_entity = request.entity.empty();
  const std::string of_entity = any_entity ? "" : fmt::format(" of \"{}\"", request.entity);
  const bool over_states = !FindBlocks(file, request, ResultList::kMultiState).blocks.empty();
  const std::string suggestion = over_states ? "" : SuggestionFor(file, request);
  throw Trouble(file.path(),
                fmt::format("{} has no values of \"{}\"{}{}", Place(state), request.variable, of_entity, suggestion),
                over_states ? "they are stored over all states: orv history shows them"
                            : fmt::format("stored there: {}", NamesAt(file, state, !any_entity)));
}

orv::Selection SelectionOf(const ValueRequest& request, int state) {
  orv::Selection selection;
  selection.state = state;
  selection.component = request.component;
  selection.entity = request.entity;
  selection.ids.assign(request.ids.begin(), request.ids.end());
  return selection;
}

}  // namespace

std::vector<orv::Component> ColumnsOf(const Values& values) {
  if (!values.is_complex) return values.components;
  std::vector<orv::Component> columns;
  for (const orv::Component& component : values.components) {
    columns.push_back({component.name + ".re", component.unit});
    columns.push_back({component.name + ".im", component.unit});
  }
  return columns;
}

std::string ShortText(double value, bool is_double) {
  return is_double ? fmt::format("{}", value) : fmt::format("{}", static_cast<float>(value));
}

std::vector<Values> ReadValues(ResultFile& file, const ValueRequest& request, int state) {
  orv::Selection selection = SelectionOf(request, state);
  try {
    std::vector<Values> all = file.file().find_values(request.variable, selection);
    if (!all.empty()) return all;
    selection.ids.clear();
    const bool is_there = !request.ids.empty() && !file.file().find_values(request.variable, selection).empty();
    if (is_there) return all;  // other states may have the ids
  } catch (const orv::Error&) {
    CheckComponent(file, request, ResultList::kSingleState);  // tells more
    throw;
  }
  RefuseName(file, request, state);
}

void CheckIds(const ResultFile& file, const ValueRequest& request, const std::vector<Values>& all) {
  std::unordered_set<long long> known;
  for (const Values& values : all) known.insert(values.ids.begin(), values.ids.end());
  for (const long long id : request.ids) {
    if (known.contains(id)) continue;
    throw Trouble(file.path(), fmt::format("\"{}\" has no value at id {}", request.variable, id),
                  "leave out --ids to see which there are");
  }
}

}  // namespace orvio::program
