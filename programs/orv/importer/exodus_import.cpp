// From the variables of an Exodus file to the blocks of a result file.
//
// Nodes of an element stand as the Exodus file has them: their order is the solver's, as everywhere in a result file.

#include "importer/exodus_import.h"

#include <fmt/format.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

#include "exodus/reader.h"
#include "importer/block_writer.h"
#include "importer/exodus_element.h"
#include "importer/exodus_quantity.h"
#include "importer/history_recorder.h"
#include "importer/progress.h"
#include "importer/quantity.h"
#include "importer/state_writer.h"
#include "output_file.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr char kNodeSet[] = "NODE_SET", kSideSet[] = "SIDE_SET", kGlobal[] = "GLOBAL";

/// What the file tells of the run: its title, and the solver, which is the first that wrote to it.
Origin OriginOf(const exodus::Header& header) {
  if (header.records.empty()) return {header.title, "", ""};
  return {header.title, header.records.front().program, header.records.front().version};
}

std::vector<int> AllIds(const exodus::IdMap& map, int first, int count) {
  std::vector<int> ids;
  ids.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) ids.push_back(map.IdAt(first + i));
  return ids;
}

std::vector<int> IdsAt(const exodus::IdMap& map, const std::vector<int>& positions) {
  std::vector<int> ids;
  ids.reserve(positions.size());
  for (const int position : positions) ids.push_back(map.IdAt(position));
  return ids;
}

std::string TitleOf(const std::string& name, const char* otherwise, int id) {
  return name.empty() ? fmt::format("{}{}", otherwise, id) : name;
}

/// Gives out names that are different to the readers of a result file, which pass over the case.
class UniqueNames {
 public:
  std::string Take(std::string name) {
    const std::string plain = name;
    for (int variant = 2; !used_.insert(Folded(name)).second; ++variant) name = fmt::format("{}_{}", plain, variant);
    return name;
  }

 private:
  std::set<std::string> used_;
};

/// A result of the output and the variables that its values come from.
struct PlannedResult {
  const Quantity* quantity = nullptr;
  std::vector<std::vector<std::size_t>> sources;  ///< layers x components
};

/// Elements, or the nodes of a set, and the results that they have.
struct Place {
  std::size_t number = 0;  ///< of the block or set in the file, from 0
  int id = 0;
  std::string name;  ///< of the element type or of the zone
  std::vector<int> ids;
  std::vector<PlannedResult> results;
};

/// The values of a result as a block takes them.
struct Table {
  /// Entities x layers x components, row-major, in the precision of the file.
  void* Data() { return type == ORV_DOUBLE ? static_cast<void*>(doubles.data()) : floats.data(); }

  std::vector<double> doubles;
  std::vector<float> floats;
  _ORVDataType type = ORV_FLOAT;
};

void NarrowUnlessDouble(bool is_double, Table& table) {
  table.type = is_double ? ORV_DOUBLE : ORV_FLOAT;
  if (is_double) return;
  table.floats.reserve(table.doubles.size());
  for (const double value : table.doubles) table.floats.push_back(static_cast<float>(value));
}

class Translation {
 public:
  explicit Translation(const ImportOptions& options)
      : options_(options),
        reader_(options.input),
        output_(options.output),
        writer_(output_.working_path(), options.output.string(), options.version),
        state_writer_(writer_, options.incremental),
        progress_("importing"),
        histories_(options.histories.nodes, options.histories.elements) {}

  ImportSummary Run() {
    RequireWhole();
    header_ = reader_.ReadHeader();
    WriteOrigin(options_, OriginOf(header_), writer_);
    WriteNodes();
    WriteBlocks();
    WriteNodeSets();
    WriteSideSets();
    RequireChosen();
    PlanResults();
    WriteStates();
    WriteHistories();
    writer_.WriteIndexTypes("TIME");
    if (options_.incremental) summary_.full_states = state_writer_.full_states();
    output_.Commit();
    return summary_;
  }

 private:
  void RequireWhole() {
    if (reader_.complete()) return;
    if (!options_.partial) {
      throw Trouble(options_.input.string(),
                    fmt::format("was cut off: {} of {} states are whole", reader_.states(), reader_.announced_states()),
                    "run the solver again, or use --partial to take what is there");
    }
    summary_.notes.emplace_back("the run broke off; what is complete was taken");
  }

  // ---- Mesh

  void WriteNodes() {
    exodus::Nodes nodes = reader_.ReadNodes();
    if (header_.nodes == 0) throw Trouble(options_.input.string(), "has no nodes", "check that the solver ran");
    node_map_ = std::move(nodes.ids);
    node_ids_ = AllIds(node_map_, 1, header_.nodes);
    Table table;
    table.doubles = std::move(nodes.coordinates);
    NarrowUnlessDouble(nodes.is_double, table);
    const Quantity coordinate = CoordinateQuantity();
    writer_.WriteVariable(coordinate);
    writer_.WriteConstant(coordinate, EntityValues{kNodeType, &node_ids_, table.Data(), table.type, false, {}, 0});
    writer_.WriteIdentifiers(kNodeType, node_ids_);
    summary_.nodes = node_ids_.size();
    summary_.variables = 1;
  }

  void WriteBlocks() {
    element_map_ = reader_.ReadElementIds();
    std::vector<exodus::ElementBlock> blocks = reader_.ReadBlocks();
    std::multiset<std::string> kinds;
    for (const exodus::ElementBlock& block : blocks) {
      if (IsTaken(block)) kinds.insert(ElementKindOf(block.type, block.nodes_per_element).name);
    }
    PartTable parts;
    UniqueNames names;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
      if (!IsTaken(blocks[i])) {
        NotePassedOver(blocks[i]);
        continue;
      }
      const ElementKind kind = ElementKindOf(blocks[i].type, blocks[i].nodes_per_element);
      const bool is_only = kinds.count(kind.name) == 1;
      const std::string type_name = is_only ? kind.name : fmt::format("{}_{}", kind.name, blocks[i].id);
      WriteBlock(i, blocks[i], kind, names.Take(type_name));
      parts.ids.push_back(blocks[i].id);
      parts.titles.push_back(TitleOf(blocks[i].name, "block_", blocks[i].id));
    }
    if (!parts.ids.empty()) writer_.WriteParts(parts);
  }

  static bool IsTaken(const exodus::ElementBlock& block) { return block.elements > 0 && block.nodes_per_element > 0; }

  void NotePassedOver(const exodus::ElementBlock& block) {
    const std::string title = TitleOf(block.name, "block_", block.id);
    summary_.notes.push_back(block.elements == 0 ? fmt::format("{} has no elements and was left out", title)
                                                 : fmt::format("{} has polygons or polyhedra and was left out", title));
  }

  void WriteBlock(std::size_t number, exodus::ElementBlock& block, const ElementKind& kind,
                  const std::string& type_name) {
    ElementGroup group;
    group.type_name = type_name;
    group.generic_name = kind.name;
    group.dimension = kind.dimension;
    group.nodes_per_element = block.nodes_per_element;
    group.ids = AllIds(element_map_, block.first, block.elements);
    group.parts.assign(group.ids.size(), block.id);
    group.nodes = IdsAt(node_map_, block.positions);
    writer_.WriteElements(group);
    writer_.WriteIdentifiers(type_name, group.ids);
    summary_.elements += group.ids.size();
    blocks_.push_back({number, block.id, type_name, std::move(group.ids), {}});
  }

  // ---- Sets

  void WriteNodeSets() {
    SetTable table{kNodeSet, {kNodeType}, {}, {}, {}};
    AttributeTable names{kNodeSet, {}, {}, 0, {}};
    UniqueNames zones;
    const std::vector<exodus::NodeSet> sets = reader_.ReadNodeSets();
    for (std::size_t i = 0; i < sets.size(); ++i) {
      const exodus::NodeSet& set = sets[i];
      std::vector<int> ids = IdsAt(node_map_, set.positions);
      table.ids.push_back(set.id);
      table.counts.push_back(static_cast<int>(ids.size()));
      table.members.insert(table.members.end(), ids.begin(), ids.end());
      names.titles.push_back(TitleOf(set.name, "NODE_SET_", set.id));
      node_sets_.push_back({i, set.id, zones.Take(GroupName(names.titles.back())), std::move(ids), {}});
    }
    WriteSets(table, names);
  }

  /// The members of a set are its elements and then, for each of these, the number of its side, as Exodus counts them.
  void WriteSideSets() {
    SetTable table{kSideSet, {"ELEMENT", "SIDE"}, {}, {}, {}};
    AttributeTable names{kSideSet, {}, {}, 0, {}};
    for (const exodus::SideSet& set : reader_.ReadSideSets()) {
      const std::vector<int> ids = IdsAt(element_map_, set.positions);
      table.ids.push_back(set.id);
      table.counts.insert(table.counts.end(), 2, static_cast<int>(ids.size()));
      table.members.insert(table.members.end(), ids.begin(), ids.end());
      table.members.insert(table.members.end(), set.sides.begin(), set.sides.end());
      names.titles.push_back(TitleOf(set.name, "SIDE_SET_", set.id));
    }
    WriteSets(table, names);
  }

  void WriteSets(SetTable& table, AttributeTable& names) {
    if (table.ids.empty()) return;
    names.ids = table.ids;
    if (!table.members.empty()) writer_.WriteSets(table);  // a block of sets cannot be without any member
    writer_.WriteAttributes(names);
  }

  // ---- Results

  /// All states have the same results: which ones is settled, and their variables are written, before the first.
  void PlanResults() {
    const exodus::Variables nodal = reader_.ReadNodalVariables();
    nodes_.ids = node_ids_;
    nodes_.results = Plan(kNodeType, nodal.names, nodal.present.front(), false);
    const exodus::Variables of_elements = reader_.ReadElementVariables();
    for (Place& block : blocks_) {
      block.results = Plan(block.name, of_elements.names, of_elements.present[block.number], true);
    }
    const exodus::Variables of_sets = reader_.ReadNodeSetVariables();
    for (Place& set : node_sets_) {
      set.results = Plan(fmt::format("{}/{}", kNodeSet, set.name), of_sets.names, of_sets.present[set.number], false);
    }
  }

  /// Nodes and elements that the user named.
  void RequireChosen() const {
    std::vector<int> elements;
    for (const Place& block : blocks_) elements.insert(elements.end(), block.ids.begin(), block.ids.end());
    for (const bool is_element : {false, true}) {
      const std::vector<long long> missing = histories_.Missing(is_element ? elements : node_ids_, is_element);
      if (missing.empty()) continue;
      throw Trouble(options_.input.string(),
                    fmt::format("has no {} {}", is_element ? "element" : "node", missing.front()),
                    "give ids of the file to --history");
    }
  }

  std::vector<PlannedResult> Plan(const std::string& place, const std::vector<std::string>& names,
                                  const std::vector<std::size_t>& present, bool has_points) {
    std::vector<PlannedResult> results;
    for (JoinedVariables& joined : JoinVariables(names, present, {header_.dimension, has_points})) {
      bool is_new = false;
      const Quantity& quantity = quantities_.Find(std::move(joined.quantity), place, is_new);
      if (is_new) writer_.WriteVariable(quantity);
      if (is_new) ++summary_.variables;
      results.push_back({&quantity, std::move(joined.sources)});
    }
    return results;
  }

  void WriteStates() {
    for (int state = 0; state < reader_.states(); ++state) {
      progress_.Show(static_cast<double>(state) / reader_.states(), fmt::format("state {}", state + 1));
      const StateIndex index{state + 1, reader_.ReadTime(state), state + 1};
      states_.push_back(index);
      WriteNodalResults(index, nodes_, [&](std::size_t variable) { return reader_.ReadNodal(variable, state); });
      for (Place& block : blocks_) WriteElementResults(index, block);
      for (Place& set : node_sets_) {
        WriteNodalResults(index, set,
                          [&](std::size_t variable) { return reader_.ReadNodeSet(variable, set.number, state); });
      }
      state_writer_.FinishState();
    }
    if (written_) summary_.states = reader_.states();
  }

  /// `read` answers the values of a variable. The nodes of the mesh are no zone.
  template <class Read>
  void WriteNodalResults(const StateIndex& index, Place& place, Read read) {
    for (const PlannedResult& result : place.results) {
      Table table = Gather(result, place.ids.size(), read);
      state_writer_.Write(index, *result.quantity,
                          EntityValues{kNodeType, &place.ids, table.Data(), table.type, false, place.name, place.id});
      written_ = true;
      if (&place == &nodes_) {
        histories_.Take({kNodeType, result.quantity, &place.ids, 1, false, table.type, table.Data()});
      }
    }
  }

  void WriteElementResults(const StateIndex& index, Place& block) {
    const int state = index.state - 1;
    for (const PlannedResult& result : block.results) {
      Table table = Gather(result, block.ids.size(),
                           [&](std::size_t variable) { return reader_.ReadElements(variable, block.number, state); });
      ElementValues values;
      values.element_type = block.name;
      values.ids = &block.ids;
      values.layers = static_cast<int>(result.sources.size());
      values.values = table.Data();
      values.type = table.type;
      state_writer_.Write(index, *result.quantity, values);
      written_ = true;
      histories_.Take({block.name, result.quantity, &block.ids, result.sources.size(), true, table.type, table.Data()});
    }
  }

  /// The model as a whole is one entity, number 1, whose variables are stored over all states.
  void WriteHistories() {
    if (states_.empty()) return;
    const exodus::Variables variables = reader_.ReadGlobalVariables();
    std::vector<int> id = {1};
    for (const PlannedResult& result : Plan(kGlobal, variables.names, variables.present.front(), false)) {
      Table table = Gather(result, states_.size(), [&](std::size_t variable) { return reader_.ReadGlobal(variable); });
      writer_.WriteOverStates(states_, *result.quantity,
                              EntityValues{kGlobal, &id, table.Data(), table.type, false, {}, 0});
      ++summary_.histories;
    }
    summary_.histories += histories_.Write(writer_, states_);
  }

  /// The variables of a result side by side. One of them in double precision makes all of them so.
  template <class Read>
  static Table Gather(const PlannedResult& result, std::size_t entities, Read read) {
    const std::size_t components = result.sources.front().size(), width = result.sources.size() * components;
    Table table;
    table.doubles.resize(entities * width);
    bool is_double = false;
    std::size_t column = 0;
    for (const auto& layer : result.sources) {
      for (const std::size_t variable : layer) {
        const exodus::Values values = read(variable);
        is_double = is_double || values.is_double;
        for (std::size_t i = 0; i < entities; ++i) table.doubles[i * width + column] = values.numbers[i];
        ++column;
      }
    }
    NarrowUnlessDouble(is_double, table);
    return table;
  }

  ImportOptions options_;
  exodus::Reader reader_;
  OutputFile output_;
  BlockWriter writer_;
  StateWriter state_writer_;
  Progress progress_;
  QuantityTable quantities_;
  exodus::Header header_;
  exodus::IdMap node_map_, element_map_;
  std::vector<int> node_ids_;
  Place nodes_;
  std::vector<Place> blocks_, node_sets_;
  std::vector<StateIndex> states_;
  HistoryRecorder histories_;
  bool written_ = false;  ///< whether any state has a result
  ImportSummary summary_;
};

}  // namespace

ImportSummary ImportExodus(const ImportOptions& options) {
  try {
    return Translation(options).Run();
  } catch (const exodus::Error& error) {
    throw Trouble(options.input.string(), error.what(), "check that the file is whole and an Exodus II file");
  }
}

}  // namespace orvio::program
