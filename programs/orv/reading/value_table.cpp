// Reading of values through the filer: the blocks of a quantity, the handles of its components, and a fetch for each.

#include "reading/value_table.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cctype>
#include <unordered_map>
#include <unordered_set>

#include "reading/file_model.h"
#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

std::string Place(int state) { return state == 0 ? "the constant section" : fmt::format("state {}", state); }

/// A component of a block: what it is called, and the handle by which it is fetched.
struct Column {
  std::string label;
  int iid;
};

/// What a request means for the blocks of a file.
struct Quantity {
  std::vector<ORVResult*> blocks;
  const ORVExtVar* handle = nullptr;  ///< set when the name is that of a component
};

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

/// By key or name of a variable, by its name where it has another key, or by the name of a handle.
Quantity FindQuantity(ResultFile& file, const std::string& name) {
  constexpr int kAnyType = -1, kSingleState = 1;
  Quantity quantity;
  std::vector<const char*> names = {name.c_str()};
  file.filer().GetResultBlks(names, quantity.blocks, kAnyType, kSingleState, false);
  std::vector<ORVResult*> by_name;
  file.filer().GetResultBlks(names, by_name, kAnyType, kSingleState, true);
  for (ORVResult* block : by_name) {
    if (std::ranges::find(quantity.blocks, block) == quantity.blocks.end()) quantity.blocks.push_back(block);
  }
  if (!quantity.blocks.empty()) return quantity;
  quantity.handle = file.filer().GetExtVariable(name.c_str());
  std::vector<_ORVEntityType> any_entity;
  std::vector<int> any_base;
  std::vector<int> ids;
  if (quantity.handle) ids.push_back(quantity.handle->GetIID());
  file.filer().GetResultBlksFrmCmp(any_entity, any_base, ids, quantity.blocks, kAnyType, kSingleState);
  return quantity;
}

/// Values of which the file tells nothing but their name have no components to ask for.
void CheckDefinition(ResultFile& file, const std::string& name) {
  for (const ORVResult* block : file.filer().GetResultList(1)) {
    if (block->m_variable || block->m_variableGrp || !SameWord(TextOf(block->m_etypvar), name)) continue;
    throw Trouble(file.path(),
                  fmt::format("the values of \"{}\" are not defined: the file has no variable of that name", name),
                  "write the file again with its variables");
  }
}

/// Keeps the blocks that are stored in a state. Constant values hold in every state that has no others.
void KeepStored(ResultFile& file, const ValueRequest& request, int state, std::vector<ORVResult*>& blocks) {
  std::erase_if(blocks, [&](const ORVResult* block) {
    return !request.entity.empty() && !SameWord(TextOf(block->m_etyp), request.entity);
  });
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

// ---- Columns

/// The stored components that a handle stands for, in order.
void AppendStored(ORVFiler& filer, const ORVExtVar& handle, std::vector<const ORVExtVar*>& stored) {
  if (handle.GeIndex() != -1) return stored.push_back(&handle);
  for (const ORVDependentVar* dependent : handle.GetDependent()) {
    for (const int iid : dependent->m_iids) {
      const ORVExtVar* input = filer.GetExtVariable(iid, true);
      if (input && input->GeIndex() != -1) stored.push_back(input);
    }
  }
}

/// Labels of a variable's components; numbers where it has none.
std::vector<Column> ColumnsOf(ORVVariable& variable, std::size_t first_number) {
  const VariableInfo info = DescribeVariable(variable);
  std::vector<Column> columns;
  for (const ORVExtVar* handle : variable.m_extVars) {
    if (handle->GeIndex() == -1) continue;
    const std::size_t place = columns.size();
    std::string label = place < info.components.size() ? info.components[place] : "";
    if (label.empty()) label = fmt::format("C{}", first_number + place);
    columns.push_back({std::move(label), handle->GetIID()});
  }
  return columns;
}

std::vector<Column> AllColumnsOf(const ORVResult& block, const std::string& name) {
  if (block.m_variable) return ColumnsOf(*block.m_variable, 1);
  std::vector<Column> columns;
  if (!block.m_variableGrp) return columns;
  const bool is_group = SameWord(TextOf(block.m_variableGrp->m_grpName, sizeof block.m_variableGrp->m_grpName), name);
  for (ORVVariable* variable : block.m_variableGrp->m_variables) {
    const bool is_named = SameWord(TextOf(variable->m_varkey), name) || SameWord(TextOf(variable->m_varnam), name);
    if (!is_group && !is_named) continue;
    const std::vector<Column> more = ColumnsOf(*variable, columns.size() + 1);
    columns.insert(columns.end(), more.begin(), more.end());
  }
  return columns;
}

/// A column by its label or its 1-based number.
Column ChooseColumn(const ResultFile& file, const ValueRequest& request, const std::vector<Column>& columns) {
  const auto found =
      std::ranges::find_if(columns, [&](const Column& c) { return SameWord(c.label, request.component); });
  if (found != columns.end()) return *found;
  const bool is_number = std::ranges::all_of(request.component, [](unsigned char c) { return std::isdigit(c) != 0; });
  const long number = is_number && request.component.size() < 10 ? std::stol(request.component) : 0;
  if (number >= 1 && static_cast<std::size_t>(number) <= columns.size()) {
    return columns[static_cast<std::size_t>(number - 1)];
  }
  std::vector<std::string> labels;
  std::ranges::transform(columns, std::back_inserter(labels), &Column::label);
  throw Trouble(file.path(), fmt::format("\"{}\" has no component \"{}\"", request.variable, request.component),
                fmt::format("its components are {}", fmt::join(labels, ", ")));
}

std::vector<Column> Columns(ResultFile& file, const ValueRequest& request, const Quantity& quantity,
                            const ORVResult& block) {
  if (quantity.handle) {
    std::vector<const ORVExtVar*> stored;
    AppendStored(file.filer(), *quantity.handle, stored);
    std::vector<Column> columns;
    columns.reserve(stored.size());
    for (const ORVExtVar* handle : stored) columns.push_back({handle->GetName(), handle->GetIID()});
    return request.component.empty() ? columns : std::vector{ChooseColumn(file, request, columns)};
  }
  const std::vector<Column> columns = AllColumnsOf(block, request.variable);
  return request.component.empty() ? columns : std::vector{ChooseColumn(file, request, columns)};
}

// ---- Values

[[noreturn]] void RefuseBlock(const ResultFile& file, const ORVResult& block) {
  throw Trouble(file.path(),
                fmt::format("block {} cannot be read: {}", block.GetBlkPath(), LibraryText("reading failed")),
                "the file is damaged, or from another kind of writer");
}

/// A request for values of all layers of one block. Its arrays are freed with it.
template <class T>
class Fetch : public ORVResultValuesBase<T, int> {
 public:
  explicit Fetch(int state) {
    this->m_state = state;
    this->m_layer = ORV_ALL_LAYERS;
  }
  Fetch(const Fetch&) = delete;
  Fetch& operator=(const Fetch&) = delete;
  ~Fetch() override { this->DeleteAllocation(true); }

  /// Values of a stored component, each with its parts: entities x layers x parts.
  std::vector<T> Read(ResultFile& file, ORVResult& block, int iid) {
    std::vector<ORVResult*> blocks = {&block};
    constexpr int kNoResultType = -1;
    this->DeleteAllocation(true);
    if (file.filer().GetValues(*this, blocks, iid, kNoResultType, nullptr) != 0) RefuseBlock(file, block);
    return {this->m_values, this->m_values + this->m_valueCount};
  }
};

/// Ids of a block's entities. Other writers store some that no 32 bits hold, so they are read beside the values.
std::vector<long long> IdsOf(const ResultFile& file, const ORVResult& block, int state, std::size_t count) {
  std::vector<std::int64_t> ids(count);
  ORVResult reader = block;
  reader.m_nent = static_cast<std::int64_t>(count);
  reader.m_entid = ids.data();
  reader.m_entidType = ORV_LONG;
  const bool read = reader.ReadAttribute(file.path().c_str(), state, ORV_READ_DATA, ORV_ATT_IDS) == 0;
  std::vector<long long> answer(ids.begin(), ids.end());
  for (std::size_t i = 0; !read && i < count; ++i) answer[i] = static_cast<long long>(i) + 1;  // numbered without ids
  return answer;
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

/// Fills rows, ids and layers from the components of a block.
template <class T>
void FillRows(ResultFile& file, const ValueRequest& request, ORVResult& block, const std::vector<Column>& columns,
              ValueTable& table) {
  const int state = block.IsConstantBlk() ? 0 : table.state;
  const auto count = static_cast<std::size_t>(file.CountAt(block, state));
  const std::size_t parts = block.IsComplexBlk() ? 2 : 1;
  const std::size_t layers = table.has_layers ? static_cast<std::size_t>(std::max<std::int64_t>(block.m_numl, 1)) : 1;
  Fetch<T> fetch(table.state);
  std::vector<std::vector<T>> values;
  for (const Column& column : columns) {
    values.push_back(fetch.Read(file, block, column.iid));
    if (values.back().size() != count * layers * parts) RefuseBlock(file, block);
  }
  const std::vector<long long> ids = IdsOf(file, block, state, count);
  std::vector<T> rows;
  for (const std::size_t entity : ChooseEntities(request, ids)) {
    for (std::size_t layer = 0; layer < layers; ++layer) {
      table.ids.push_back(ids[entity]);
      if (table.has_layers) table.layers.push_back(static_cast<int>(layer + 1));
      for (const std::vector<T>& column : values) {
        const auto first = column.begin() + static_cast<std::ptrdiff_t>((entity * layers + layer) * parts);
        rows.insert(rows.end(), first, first + static_cast<std::ptrdiff_t>(parts));
      }
    }
  }
  table.values = std::move(rows);
}

ValueTable ReadTable(ResultFile& file, const ValueRequest& request, const Quantity& quantity, ORVResult& block,
                     int state) {
  const std::vector<Column> columns = Columns(file, request, quantity, block);
  ValueTable table;
  table.entity = TextOf(block.m_etyp);
  table.variable = quantity.handle ? quantity.handle->GetName() : TextOf(block.m_etypvar);
  table.state = block.IsConstantBlk() ? 0 : state;
  table.has_layers = block.IsElementResult();
  for (const Column& column : columns) {
    if (!block.IsComplexBlk()) {
      table.columns.push_back(column.label);
    } else {
      table.columns.insert(table.columns.end(), {column.label + ".re", column.label + ".im"});
    }
  }
  if (file.IsDouble(block, state)) {
    FillRows<double>(file, request, block, columns, table);
  } else {
    FillRows<float>(file, request, block, columns, table);
  }
  return table;
}

}  // namespace

std::vector<ValueTable> ReadValueTables(ResultFile& file, const ValueRequest& request, int state) {
  if (state > 1) file.LearnLaterResults(state);
  Quantity quantity = FindQuantity(file, request.variable);
  if (quantity.blocks.empty()) CheckDefinition(file, request.variable);
  KeepStored(file, request, state, quantity.blocks);
  if (quantity.blocks.empty()) {
    const bool any_entity = request.entity.empty();
    const std::string of_entity = any_entity ? "" : fmt::format(" of \"{}\"", request.entity);
    throw Trouble(file.path(), fmt::format("{} has no values of \"{}\"{}", Place(state), request.variable, of_entity),
                  fmt::format("stored there: {}", NamesAt(file, state, !any_entity)));
  }
  std::vector<ValueTable> tables;
  for (ORVResult* block : quantity.blocks) tables.push_back(ReadTable(file, request, quantity, *block, state));
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
