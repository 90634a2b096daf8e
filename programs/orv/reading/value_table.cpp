// Reading of values through result blocks.

#include "reading/value_table.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cctype>
#include <unordered_map>
#include <unordered_set>

#include "reading/stored_size.h"
#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

std::string Place(int state) { return state == 0 ? "the constant section" : fmt::format("state {}", state); }

/// The names that a state does have, for the message about one that it has not.
std::string NamesOf(const std::vector<ORVResult>& blocks, bool with_entity) {
  std::vector<std::string> names;
  for (const ORVResult& block : blocks) {
    if (block.m_nent == 0) continue;
    names.push_back(TextOf(block.m_etypvar) + (with_entity ? " of " + TextOf(block.m_etyp) : ""));
  }
  std::ranges::sort(names);
  names.erase(std::unique(names.begin(), names.end()), names.end());
  return names.empty() ? "nothing" : fmt::format("{}", fmt::join(names, ", "));
}

std::vector<ORVResult> FindBlocks(const ValueRequest& request, int state) {
  const std::vector<ORVResult> all = ReadResultHeaders(request.file, state);
  std::vector<ORVResult> found;
  for (const ORVResult& block : all) {
    const bool named = SameWord(TextOf(block.m_etypvar), request.variable);
    const bool is_empty = block.m_nent == 0;
    if (named && !is_empty && (request.entity.empty() || SameWord(TextOf(block.m_etyp), request.entity)))
      found.push_back(block);
  }
  if (found.empty()) {
    const bool any_entity = request.entity.empty();
    const std::string of_entity = any_entity ? "" : fmt::format(" of \"{}\"", request.entity);
    throw Trouble(request.file, fmt::format("{} has no values of \"{}\"{}", Place(state), request.variable, of_entity),
                  fmt::format("stored there: {}", NamesOf(all, !any_entity)));
  }
  return found;
}

int ChooseState(const ValueRequest& request) {
  const int count = CheckResultFile(request.file);
  const int state = request.state.value_or(0);
  if (state < 0 || state > count) {
    throw Trouble(request.file, fmt::format("there is no state {}", state),
                  fmt::format("states are 1 to {}, and 0 for constant values", count));
  }
  return state;
}

std::vector<std::string> Labels(const std::vector<VariableInfo>& variables, const ORVResult& block) {
  const auto components = static_cast<std::size_t>(block.m_ncoo);
  const auto known = std::ranges::find_if(
      variables, [&](const VariableInfo& variable) { return SameWord(variable.name, TextOf(block.m_etypvar)); });
  const bool fits = known != variables.end() && known->components.size() == components;
  std::vector<std::string> labels = fits ? known->components : std::vector<std::string>(components);
  for (std::size_t i = 0; i < components; ++i) {
    if (labels[i].empty()) labels[i] = fmt::format("C{}", i + 1);
  }
  return labels;
}

/// 0-based component of a label or a 1-based number; -100 for all.
int ChooseComponent(const ValueRequest& request, const std::vector<std::string>& labels) {
  if (request.component.empty()) return ORV_ALL_COMPONENTS;
  const auto label = std::ranges::find_if(labels, [&](const auto& l) { return SameWord(l, request.component); });
  if (label != labels.end()) return static_cast<int>(label - labels.begin());
  const bool is_number = std::ranges::all_of(request.component, [](unsigned char c) { return std::isdigit(c) != 0; });
  const long number = is_number && request.component.size() < 10 ? std::stol(request.component) : 0;
  if (number >= 1 && static_cast<std::size_t>(number) <= labels.size()) return static_cast<int>(number - 1);
  throw Trouble(request.file, fmt::format("\"{}\" has no component \"{}\"", request.variable, request.component),
                fmt::format("its components are {}", fmt::join(labels, ", ")));
}

void CheckSize(const std::string& file, const ORVResult& block) {
  const double layers = block.IsElementResult() ? static_cast<double>(block.m_numl) : 1;
  const double parts = block.IsComplexBlk() ? 2 : 1;
  const double values = static_cast<double>(block.m_nent) * static_cast<double>(block.m_ncoo) * layers * parts;
  const bool is_possible = block.m_nent >= 1 && block.m_ncoo >= 1 && layers >= 1;
  if (is_possible && HoldsValues(file, block, "res", values)) return;
  throw Trouble(file, fmt::format("block {} does not hold what its header announces", block.GetBlkPath()),
                "the file is damaged");
}

struct RawBlock {
  std::vector<std::int64_t> ids;
  Values values;
};

template <class T>
RawBlock ReadRaw(const std::string& file, ORVResult block, int state, int component) {
  int rank = 0;
  std::uint64_t start[8] = {};
  std::uint64_t count[8] = {};
  (void)block.GetComponentSelection(component, &rank, start, count, ORV_ALL_LAYERS, ORV_ALL_ENTITIES);  // rank tells
  std::vector<T> values(static_cast<std::size_t>(block.GetTotalCount(rank, count)));
  RawBlock raw{std::vector<std::int64_t>(static_cast<std::size_t>(block.m_nent)), {}};
  block.m_res = values.data();
  block.m_resType = sizeof(T) == sizeof(float) ? ORV_FLOAT : ORV_DOUBLE;
  block.m_entid = raw.ids.data();
  block.m_entidType = ORV_LONG;
  block.m_readIds = 1;
  const bool read = !values.empty() && block.ReadSelectiveAttribute(file.c_str(), state, ORV_READ_DATA, ORV_ATT_RES,
                                                                    rank, start, count, nullptr, nullptr, false) == 0;
  if (!read) {
    throw Trouble(file, fmt::format("block {} cannot be read: {}", block.GetBlkPath(), LibraryText("reading failed")),
                  "the file is damaged, or from another kind of writer");
  }
  // Without an id dataset entities are numbered.
  for (std::size_t i = 0; block.m_readIds == 0 && i < raw.ids.size(); ++i)
    raw.ids[i] = static_cast<std::int64_t>(i + 1);
  raw.values = std::move(values);
  return raw;
}

/// Rows that are asked for, in the order in which they are stored, or in that of the request.
std::vector<std::size_t> ChooseEntities(const ValueRequest& request, const std::vector<std::int64_t>& ids) {
  std::vector<std::size_t> chosen;
  if (request.ids.empty()) {
    for (std::size_t i = 0; i < ids.size(); ++i) chosen.push_back(i);
    return chosen;
  }
  std::unordered_map<std::int64_t, std::size_t> places;
  for (std::size_t i = 0; i < ids.size(); ++i) places.emplace(ids[i], i);
  for (const long long id : request.ids) {
    const auto place = places.find(id);
    if (place != places.end()) chosen.push_back(place->second);
  }
  return chosen;
}

void FillRows(ValueTable& table, const RawBlock& raw, const std::vector<std::size_t>& entities, std::size_t layers) {
  const std::size_t columns = table.columns.size();
  std::visit(
      [&](const auto& all) {
        std::decay_t<decltype(all)> rows;
        rows.reserve(entities.size() * layers * columns);
        for (const std::size_t entity : entities) {
          for (std::size_t layer = 0; layer < layers; ++layer) {
            table.ids.push_back(raw.ids[entity]);
            if (table.has_layers) table.layers.push_back(static_cast<int>(layer + 1));
            const auto first = all.begin() + static_cast<std::ptrdiff_t>((entity * layers + layer) * columns);
            rows.insert(rows.end(), first, first + static_cast<std::ptrdiff_t>(columns));
          }
        }
        table.values = std::move(rows);
      },
      raw.values);
}

ValueTable ReadTable(const ValueRequest& request, const std::vector<VariableInfo>& variables, const ORVResult& block,
                     int state) {
  CheckSize(request.file, block);
  const std::vector<std::string> labels = Labels(variables, block);
  const int component = ChooseComponent(request, labels);
  ValueTable table;
  table.entity = TextOf(block.m_etyp);
  table.variable = TextOf(block.m_etypvar);
  table.state = state;
  table.has_layers = block.IsElementResult();
  for (std::size_t i = 0; i < labels.size(); ++i) {
    if (component != ORV_ALL_COMPONENTS && i != static_cast<std::size_t>(component)) continue;
    if (!block.IsComplexBlk()) {
      table.columns.push_back(labels[i]);
    } else {
      table.columns.insert(table.columns.end(), {labels[i] + ".re", labels[i] + ".im"});
    }
  }
  const bool is_double = ValueType(request.file, block) == ORV_DOUBLE;
  const RawBlock raw = is_double ? ReadRaw<double>(request.file, block, state, component)
                                 : ReadRaw<float>(request.file, block, state, component);
  const std::size_t layers = table.has_layers ? static_cast<std::size_t>(std::max<std::int64_t>(block.m_numl, 1)) : 1;
  FillRows(table, raw, ChooseEntities(request, raw.ids), layers);
  return table;
}

void CheckIds(const ValueRequest& request, const std::vector<ValueTable>& tables) {
  std::unordered_set<long long> known;
  for (const ValueTable& table : tables) known.insert(table.ids.begin(), table.ids.end());
  for (const long long id : request.ids) {
    if (known.contains(id)) continue;
    throw Trouble(request.file, fmt::format("\"{}\" has no value at id {}", request.variable, id),
                  "leave out --ids to see which there are");
  }
}

}  // namespace

std::vector<ValueTable> ReadValueTables(const ValueRequest& request) {
  const int state = ChooseState(request);
  const std::vector<VariableInfo> variables = ReadVariables(request.file);
  std::vector<ValueTable> tables;
  for (const ORVResult& block : FindBlocks(request, state)) {
    tables.push_back(ReadTable(request, variables, block, state));
  }
  CheckIds(request, tables);
  return tables;
}

}  // namespace orvio::program
