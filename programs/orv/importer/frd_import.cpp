// From the blocks of a .frd file to the blocks of a result file. No more than one state is held in memory, or three where
// states shall hold changes alone.

#include "importer/frd_import.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <optional>
#include <set>
#include <span>
#include <string>
#include <vector>

#include "frd/element_type.h"
#include "frd/reader.h"
#include "importer/block_writer.h"
#include "importer/point_values.h"
#include "importer/progress.h"
#include "importer/quantity.h"
#include "importer/state_writer.h"
#include "output_file.h"
#include "trouble.h"

namespace orvio::program {
namespace {

/// Element types of a .frd file under their usual names, in the order in which they are written.
struct TypeRow {
  const char* name;
  int frd_type;
  int dimension;
};

constexpr TypeRow kTypes[] = {{"HEXA8", 1, 3},   {"PENTA6", 2, 3},  {"TETRA4", 3, 3}, {"HEXA20", 4, 3},
                              {"PENTA15", 5, 3}, {"TETRA10", 6, 3}, {"TRIA3", 7, 2},  {"TRIA6", 8, 2},
                              {"QUAD4", 9, 2},   {"QUAD8", 10, 2},  {"LINE2", 11, 1}, {"LINE3", 12, 1}};

/// Results with the same set name, state number and step are of one state. Their value does not tell: double modes
/// have equal frequencies.
bool SameState(const frd::Result& a, const frd::Result& b) {
  const auto step_of = [](const frd::Result& result) { return result.step ? result.step->step : 0; };
  return a.set_name == b.set_name && a.state_number == b.state_number && step_of(a) == step_of(b);
}

/// Whether `imaginary` belongs to `real`: DISPI to DISP, with the same components at the same nodes.
bool IsImaginaryPartOf(const frd::Result& imaginary, const frd::Result& real) {
  const auto same_name = [](const frd::Component& a, const frd::Component& b) {
    return a.name == b.name && a.stored == b.stored;
  };
  return imaginary.name == real.name + "I" && imaginary.ids == real.ids &&
         std::ranges::equal(imaginary.components, real.components, same_name);
}

/// What the value of a state is. Harmonic results are marked as those of a time analysis; their imaginary parts tell.
const char* IndexNameOf(const std::vector<frd::Result>& state) {
  constexpr int kStatic = 0, kTime = 1, kModes = 2, kComplexModes = 3;
  bool has_pair = false;
  for (const frd::Result& real : state) {
    has_pair =
        has_pair || std::ranges::any_of(state, [&](const auto& other) { return IsImaginaryPartOf(other, real); });
  }
  const int type = state.front().analysis_type;
  if (type == kModes || type == kComplexModes || has_pair) return "FREQUENCY";
  return type == kStatic || type == kTime ? "TIME" : "VALUE";
}

constexpr char kNoStates[] = "TIME";  // name of the column in a file without states

/// The text of a header line behind its word, as "Version 2.20" in "VERSION           Version 2.20".
std::string TextBehind(const frd::Header& header, std::string_view word) {
  for (const std::string& text : header.texts) {
    if (!text.starts_with(word)) continue;
    const std::size_t first = text.find_first_not_of(' ', word.size());
    if (first != std::string::npos) return text.substr(first);
  }
  return {};
}

/// What the file tells of the run: its heading, which stands before the first line with a word, and the solver.
Origin OriginOf(const frd::Header& header) {
  Origin origin{header.case_name, TextBehind(header, "PGM"), TextBehind(header, "VERSION")};
  const bool has_heading = !header.texts.empty() && !header.texts.front().starts_with("USER");
  if (origin.title.empty() && has_heading) origin.title = header.texts.front();
  return origin;
}

void AddElement(const frd::Element& element, std::span<const int> nodes, ElementGroup& group) {
  group.ids.push_back(element.id);
  group.parts.push_back(element.material);
  group.nodes.insert(group.nodes.end(), nodes.begin(), nodes.end());
  group.nodes_per_element = static_cast<std::int64_t>(nodes.size());
}

std::vector<float> Interleave(const std::vector<float>& real, const std::vector<float>& imaginary) {
  std::vector<float> pairs;
  pairs.reserve(real.size() * 2);
  for (std::size_t i = 0; i < real.size(); ++i) {
    pairs.push_back(real[i]);
    pairs.push_back(imaginary[i]);
  }
  return pairs;
}

class Translation {
 public:
  explicit Translation(const ImportOptions& options)
      : options_(options),
        reader_(options.input),
        output_(options.output),
        writer_(output_.working_path(), options.output.string(), options.version),
        states_(writer_, options.incremental),
        progress_("importing") {}

  ImportSummary Run() {
    const frd::Header header = reader_.ReadHeader();
    WriteOrigin(options_, OriginOf(header), writer_);
    WriteNodes();
    WriteElements(header.materials);
    if (!options_.points.empty()) points_.emplace(options_.points, element_types_, options_.partial);
    WriteStates();
    NoteTablesLeftOver();
    writer_.WriteIndexTypes(index_name_.empty() ? kNoStates : index_name_);
    NoteStates();
    output_.Commit();
    return summary_;
  }

 private:
  void WriteNodes() {
    frd::Nodes nodes = reader_.ReadNodes();
    if (nodes.ids.empty()) throw Trouble(options_.input.string(), "has no nodes", "check that the solver ran");
    const Quantity coordinate = CoordinateQuantity();
    writer_.WriteVariable(coordinate);
    EntityValues values{kNodeType, &nodes.ids, nodes.coordinates.data(), ORV_FLOAT, false, {}, 0};
    if (nodes.binary) values = {kNodeType, &nodes.ids, nodes.precise_coordinates.data(), ORV_DOUBLE, false, {}, 0};
    writer_.WriteConstant(coordinate, values);
    writer_.WriteIdentifiers(kNodeType, nodes.ids);
    AttributeTable attributes{kNodeType, nodes.ids, {}, 0, {}};
    writer_.WriteAttributes(attributes);
    summary_.nodes = nodes.ids.size();
    summary_.variables = 1;
  }

  void WriteElements(const std::vector<frd::Material>& materials) {
    const frd::Elements elements = reader_.ReadElements();
    std::map<int, ElementGroup> groups;
    std::map<int, AttributeTable> attributes;
    for (std::size_t i = 0; i < elements.items.size(); ++i) {
      const frd::Element& element = elements.items[i];
      AddElement(element, elements.NodesOf(i), groups[element.type]);
      attributes[element.type].integers.insert(attributes[element.type].integers.end(), {element.type, element.group});
    }
    for (const TypeRow& row : kTypes) {
      const auto found = groups.find(row.frd_type);
      if (found == groups.end()) continue;
      WriteElementType(row, found->second, attributes[row.frd_type]);
    }
    WriteParts(groups, materials);
    summary_.elements = elements.items.size();
  }

  /// The elements of a type; beside them the type and group that the solver gave each of them, as numbers.
  void WriteElementType(const TypeRow& row, ElementGroup& group, AttributeTable& attributes) {
    group.type_name = row.name;
    group.dimension = row.dimension;
    writer_.WriteElements(group);
    writer_.WriteIdentifiers(row.name, group.ids);
    attributes.entity_type = row.name;
    attributes.ids = group.ids;
    attributes.columns = 2;
    writer_.WriteAttributes(attributes);
    for (const int id : group.ids) element_types_[id] = row.name;
  }

  /// Materials are the only parts that the solver tells. It lists contacts and springs among them: those are no parts.
  void WriteParts(const std::map<int, ElementGroup>& groups, const std::vector<frd::Material>& materials) {
    std::set<int> used;
    for (const auto& [type, group] : groups) used.insert(group.parts.begin(), group.parts.end());
    PartTable parts;
    for (const int number : used) {
      const auto material = std::ranges::find(materials, number, &frd::Material::number);
      parts.ids.push_back(number);
      parts.titles.push_back(material == materials.end() ? std::string() : material->name);
    }
    parts.materials = parts.ids;
    if (!parts.ids.empty()) writer_.WriteParts(parts);
  }

  void WriteStates() {
    std::vector<frd::Result> state;
    frd::Result result;
    while (NextResult(result)) {
      if (!state.empty() && !SameState(state.front(), result)) WriteState(state);
      state.push_back(std::move(result));
      result = {};
    }
    if (!state.empty()) WriteState(state);
    if (reader_.complete()) return;
    if (!options_.partial) {
      throw Trouble(options_.input.string(), "ends without its end mark: the run broke off or the file was cut",
                    "run the solver again, or use --partial to take what is there");
    }
    summary_.notes.emplace_back("the run broke off; what is complete was taken");
  }

  /// With `partial`, a block that is cut off ends the file.
  bool NextResult(frd::Result& result) {
    try {
      return reader_.NextResult(result);
    } catch (const frd::Error&) {
      if (!options_.partial) throw;
      return false;
    }
  }

  /// Writes what was collected of one state and empties it. A state without any value leaves nothing to write, and
  /// does not count: the next one takes its number.
  void WriteState(std::vector<frd::Result>& state) {
    std::erase_if(state, [](const frd::Result& result) { return result.ids.empty() || result.values.empty(); });
    if (state.empty()) return;
    const frd::Result& first = state.front();
    NoteIndexName(state);
    const StateIndex index{++summary_.states, first.value, first.step ? first.step->step : 0};
    progress_.Show(reader_.fraction(), fmt::format("state {}", index.state));
    quantities_.BeginState();
    std::vector<bool> joined(state.size(), false);
    for (std::size_t i = 0; i < state.size(); ++i) {
      if (joined[i]) continue;
      frd::Result* imaginary = FindImaginaryPart(state, i, joined);
      WriteResult(index, state[i], imaginary);
    }
    if (points_) WritePoints(index);
    states_.FinishState();
    steps_.insert(index.step);
    state.clear();
  }

  /// The first index column has one name for all states.
  void NoteIndexName(const std::vector<frd::Result>& state) {
    const char* name = IndexNameOf(state);
    if (index_name_.empty()) index_name_ = name;
    if (index_name_ != name) index_name_ = "VALUE";
  }

  static frd::Result* FindImaginaryPart(std::vector<frd::Result>& state, std::size_t real, std::vector<bool>& joined) {
    for (std::size_t i = real + 1; i < state.size(); ++i) {
      if (joined[i] || !IsImaginaryPartOf(state[i], state[real])) continue;
      joined[i] = true;
      return &state[i];
    }
    return nullptr;
  }

  void WriteResult(const StateIndex& index, frd::Result& real, const frd::Result* imaginary) {
    const Quantity& quantity = Define(DescribeResult(real, imaginary != nullptr), "NODE");
    std::vector<float> pairs;
    if (imaginary) pairs = Interleave(real.values, imaginary->values);
    float* values = imaginary ? pairs.data() : real.values.data();
    states_.Write(index, quantity, EntityValues{kNodeType, &real.ids, values, ORV_FLOAT, imaginary != nullptr, {}, 0});
  }

  /// The quantity as the output has it, defined there at its first use.
  const Quantity& Define(Quantity wanted, const std::string& place) {
    bool is_new = false;
    const Quantity& quantity = quantities_.Find(std::move(wanted), place, is_new);
    if (!is_new) return quantity;
    writer_.WriteVariable(quantity);
    ++summary_.variables;
    return quantity;
  }

  /// Elements of one type with unequal numbers of points, such as full and reduced integration, are zones of it.
  void WritePoints(const StateIndex& index) {
    for (PointQuantity& entry : points_->At(index.value)) {
      const Quantity& quantity = Define(std::move(entry.quantity), "POINT");
      for (PointBlock& block : entry.blocks) {
        ElementValues values{block.element_type, &block.ids, block.layers, block.values.data(), ORV_FLOAT, "", 0};
        if (block.has_siblings) {
          values.zone = fmt::format("POINTS_{}", block.layers);
          values.zone_id = block.layers;
        }
        states_.Write(index, quantity, values);
      }
    }
  }

  void NoteTablesLeftOver() {
    const std::size_t count = points_ ? points_->CountLeftOver() : 0;
    if (count == 0) return;
    summary_.notes.push_back(fmt::format("{} tables of {} were printed at times that the result does not hold", count,
                                         options_.points.filename().string()));
  }

  void NoteStates() {
    if (!options_.incremental) return;
    summary_.full_states = states_.full_states();
    if (steps_.size() < 2) return;
    summary_.notes.push_back(
        fmt::format("the steps of the states, {} in all, were left out: states that hold changes have one index column",
                    steps_.size()));
  }

  ImportOptions options_;
  frd::Reader reader_;
  OutputFile output_;
  BlockWriter writer_;
  StateWriter states_;
  Progress progress_;
  QuantityTable quantities_;
  std::map<int, std::string> element_types_;  ///< by element id
  std::optional<PointValues> points_;
  std::string index_name_;
  std::set<int> steps_;
  ImportSummary summary_;
};

}  // namespace

ImportSummary ImportFrd(const ImportOptions& options) {
  try {
    return Translation(options).Run();
  } catch (const frd::Error& error) {
    throw Trouble(options.input.string(), error.what(), "check that the file is whole and a CalculiX result");
  }
}

}  // namespace orvio::program
