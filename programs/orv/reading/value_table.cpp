// Reading of values through the filer: the blocks of a quantity, and a fetch for each of its components.

#include "reading/value_table.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

#include "reading/block_values.h"
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

void KeepEntity(const ValueRequest& request, std::vector<ORVResult*>& blocks) {
  std::erase_if(blocks, [&](const ORVResult* block) {
    return !request.entity.empty() && !SameWord(TextOf(block->m_etyp), request.entity);
  });
}

/// Keeps the blocks that are stored in a state. Constant values hold in every state that has no others.
void KeepStored(ResultFile& file, const ValueRequest& request, int state, std::vector<ORVResult*>& blocks) {
  KeepEntity(request, blocks);
  std::vector<ORVResult*> constant, in_state;
  for (ORVResult* block : blocks) {
    if (block->IsConstantBlk()) {
      constant.push_back(block);
    } else if (state > 0 && file.CountAt(*block, state) > 0) {
      in_state.push_back(block);
    }
  }
  blocks = in_state.empty() ? constant : in_state;
}

/// Rows that are asked for, in the order in which they are stored, or in that of the request.
std::vector<std::size_t> ChooseEntities(const ValueRequest& request, const std::vector<long long>& ids) {
  std::vector<std::size_t> chosen;
  if (request.ids.empty()) {
    for (std::size_t i = 0; i < ids.size(); ++i) chosen.push_back(i);
    return chosen;
  }
  std::unordered_map<long long, std::size_t> places;
  for (std::size_t i = 0; i < ids.size(); ++i) places.emplace(ids[i], i);
  for (const long long id : request.ids) {
    const auto place = places.find(id);
    if (place != places.end()) chosen.push_back(place->second);
  }
  return chosen;
}

/// All that is stored of the components that a request asks for.
template <class T>
struct BlockColumns {
  std::size_t Step() const { return ids.size() * layers * parts; }

  std::vector<std::vector<T>> values;  ///< of each component: states x entities x layers x parts
  std::vector<long long> ids;
  std::size_t layers, parts;
};

/// `state` is where counts and ids stand; `states` how many the block holds.
template <class T>
BlockColumns<T> ReadColumns(ResultFile& file, ORVResult& block, const std::vector<ComponentColumn>& columns, int state,
                            std::size_t states) {
  BlockColumns<T> read;
  read.parts = block.IsComplexBlk() ? 2 : 1;
  read.layers = block.IsElementResult() ? static_cast<std::size_t>(std::max<std::int64_t>(block.m_numl, 1)) : 1;
  if (file.IsIncremental(block, state)) {
    for (const ComponentColumn& column : columns) {
      read.values.push_back(ReadMergedComponent<T>(file, block, column.iid, state, read.ids));
    }
    return read;
  }
  const auto count = static_cast<std::size_t>(file.CountAt(block, state));
  for (const ComponentColumn& column : columns) {
    read.values.push_back(ReadComponent<T>(file, block, column.iid, state));
    if (read.values.back().size() != states * count * read.layers * read.parts) RefuseBlock(file, block);
  }
  read.ids = ReadIds(file, block, state, count);
  return read;
}

/// Fills rows, ids and layers of one of the states that a block holds, counted from 0.
template <class T>
void FillRows(const BlockColumns<T>& read, const std::vector<std::size_t>& entities, std::size_t state,
              ValueTable& table) {
  std::vector<T> rows;
  for (const std::size_t entity : entities) {
    for (std::size_t layer = 0; layer < read.layers; ++layer) {
      table.ids.push_back(read.ids[entity]);
      if (table.has_layers) table.layers.push_back(static_cast<int>(layer + 1));
      for (const std::vector<T>& column : read.values) {
        const std::size_t place = state * read.Step() + (entity * read.layers + layer) * read.parts;
        const auto first = column.begin() + static_cast<std::ptrdiff_t>(place);
        rows.insert(rows.end(), first, first + static_cast<std::ptrdiff_t>(read.parts));
      }
    }
  }
  table.values = std::move(rows);
}

/// A table without rows.
ValueTable Describe(const ORVResult& block, const FoundQuantity& quantity,
                    const std::vector<ComponentColumn>& columns) {
  ValueTable table;
  table.entity = TextOf(block.m_etyp);
  table.variable = quantity.NameIn(block);
  table.zone = ZoneOf(block);
  table.has_layers = block.IsElementResult();
  for (const ComponentColumn& column : columns) {
    if (!block.IsComplexBlk()) {
      table.columns.push_back(column.label);
    } else {
      table.columns.insert(table.columns.end(), {column.label + ".re", column.label + ".im"});
    }
    table.units.resize(table.columns.size(), column.unit);
  }
  return table;
}

template <class T>
ValueTable ReadTable(ResultFile& file, const ValueRequest& request, ORVResult& block,
                     const std::vector<ComponentColumn>& columns, ValueTable table) {
  const BlockColumns<T> read = ReadColumns<T>(file, block, columns, table.state, 1);
  FillRows(read, ChooseEntities(request, read.ids), 0, table);
  return table;
}

ValueTable ReadTable(ResultFile& file, const ValueRequest& request, const FoundQuantity& quantity, ORVResult& block,
                     int state) {
  const std::vector<ComponentColumn> columns = ColumnsOf(file, request, quantity, block);
  ValueTable table = Describe(block, quantity, columns);
  table.state = block.IsConstantBlk() ? 0 : state;
  const bool is_double = file.IsDouble(block, state) ||
                         (file.IsIncremental(block, state) && file.IsDouble(block, file.ChainOf(block, state).base));
  return is_double ? ReadTable<double>(file, request, block, columns, std::move(table))
                   : ReadTable<float>(file, request, block, columns, std::move(table));
}

constexpr int kOverStates = -1;  // state argument of blocks that hold all states

template <class T>
void AppendStates(ResultFile& file, const ValueRequest& request, ORVResult& block,
                  const std::vector<ComponentColumn>& columns, const ValueTable& frame,
                  std::vector<ValueTable>& tables) {
  const auto states = static_cast<std::size_t>(std::max<std::int64_t>(block.m_nstate, 0));
  const BlockColumns<T> read = ReadColumns<T>(file, block, columns, kOverStates, states);
  const std::vector<std::size_t> entities = ChooseEntities(request, read.ids);
  for (std::size_t state = 0; state < states && read.Step() > 0; ++state) {
    tables.push_back(frame);
    tables.back().state = static_cast<int>(state + 1);
    FillRows(read, entities, state, tables.back());
  }
}

}  // namespace

std::vector<ValueTable> FindValueTables(ResultFile& file, const ValueRequest& request, int state) {
  FoundQuantity quantity = FindQuantity(file, request.variable, ResultList::kSingleState);
  if (quantity.blocks.empty()) CheckDefinition(file, request.variable);
  KeepStored(file, request, state, quantity.blocks);
  std::vector<ValueTable> tables;
  for (ORVResult* block : quantity.blocks) tables.push_back(ReadTable(file, request, quantity, *block, state));
  return tables;
}

std::vector<ValueTable> ReadValueTables(ResultFile& file, const ValueRequest& request, int state) {
  if (state > 1) file.LearnLaterResults(state);
  std::vector<ValueTable> tables = FindValueTables(file, request, state);
  if (!tables.empty()) return tables;
  const bool any_entity = request.entity.empty();
  const std::string of_entity = any_entity ? "" : fmt::format(" of \"{}\"", request.entity);
  const bool over_states = !FindBlocks(file, request, ResultList::kMultiState).blocks.empty();
  const std::string suggestion = over_states ? "" : SuggestionFor(file, request);
  throw Trouble(file.path(),
                fmt::format("{} has no values of \"{}\"{}{}", Place(state), request.variable, of_entity, suggestion),
                over_states ? "they are stored over all states: orv history shows them"
                            : fmt::format("stored there: {}", NamesAt(file, state, !any_entity)));
}

FoundQuantity FindBlocks(ResultFile& file, const ValueRequest& request, ResultList list) {
  FoundQuantity quantity = FindQuantity(file, request.variable, list);
  KeepEntity(request, quantity.blocks);
  return quantity;
}

std::vector<ValueTable> ReadMultiStateTables(ResultFile& file, const ValueRequest& request,
                                             const FoundQuantity& quantity, ORVResult& block) {
  const std::vector<ComponentColumn> columns = ColumnsOf(file, request, quantity, block);
  const ValueTable frame = Describe(block, quantity, columns);
  std::vector<ValueTable> tables;
  if (file.IsDouble(block, kOverStates)) {
    AppendStates<double>(file, request, block, columns, frame, tables);
  } else {
    AppendStates<float>(file, request, block, columns, frame, tables);
  }
  return tables;
}

void CheckIds(const ResultFile& file, const ValueRequest& request, const std::vector<ValueTable>& tables) {
  std::unordered_set<long long> known;
  for (const ValueTable& table : tables) known.insert(table.ids.begin(), table.ids.end());
  for (const long long id : request.ids) {
    if (known.contains(id)) continue;
    throw Trouble(file.path(), fmt::format("\"{}\" has no value at id {}", request.variable, id),
                  "leave out --ids to see which there are");
  }
}

}  // namespace orvio::program
