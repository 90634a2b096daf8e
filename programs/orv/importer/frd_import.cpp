// From the blocks of a .frd file to the blocks of a result file. No more than one state is held in memory.

#include "importer/frd_import.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <string>
#include <vector>

#include "frd/element_type.h"
#include "frd/reader.h"
#include "importer/block_writer.h"
#include "importer/output_file.h"
#include "importer/progress.h"
#include "importer/quantity.h"
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
  explicit Translation(const FrdImportOptions& options)
      : options_(options),
        reader_(options.input),
        output_(options.output),
        writer_(output_.working_path(), options.output.string(), options.version),
        progress_("importing") {}

  FrdImportSummary Run() {
    const frd::Header header = reader_.ReadHeader();
    if (options_.units) writer_.WriteUnitSystem(*options_.units, OriginOf(header));
    WriteNodes();
    WriteElements();
    WriteStates();
    writer_.WriteIndexTypes({index_name_.empty() ? kNoStates : index_name_, "STEP"});
    output_.Commit();
    return summary_;
  }

 private:
  void WriteNodes() {
    frd::Nodes nodes = reader_.ReadNodes();
    if (nodes.ids.empty()) throw Trouble(options_.input.string(), "has no nodes", "check that the solver ran");
    const Quantity coordinate = CoordinateQuantity();
    writer_.WriteVariable(coordinate);
    NodalValues values{&nodes.ids, nodes.coordinates.data(), ORV_FLOAT, false};
    if (nodes.binary) values = {&nodes.ids, nodes.precise_coordinates.data(), ORV_DOUBLE, false};
    writer_.WriteConstant(coordinate, values);
    summary_.nodes = nodes.ids.size();
    summary_.variables = 1;
  }

  void WriteElements() {
    const frd::Elements elements = reader_.ReadElements();
    std::map<int, ElementGroup> groups;
    for (std::size_t i = 0; i < elements.items.size(); ++i) {
      const frd::Element& element = elements.items[i];
      ElementGroup& group = groups[element.type];
      const auto nodes = elements.NodesOf(i);
      group.ids.push_back(element.id);
      group.parts.push_back(element.material);
      group.nodes.insert(group.nodes.end(), nodes.begin(), nodes.end());
      group.nodes_per_element = static_cast<std::int64_t>(nodes.size());
    }
    for (const TypeRow& row : kTypes) {
      const auto found = groups.find(row.frd_type);
      if (found == groups.end()) continue;
      found->second.type_name = row.name;
      found->second.dimension = row.dimension;
      writer_.WriteElements(found->second);
    }
    summary_.elements = elements.items.size();
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
    summary_.complete = reader_.complete();
    if (!summary_.complete && !options_.partial) {
      throw Trouble(options_.input.string(), "ends without its end mark: the run broke off or the file was cut",
                    "run the solver again, or use --partial to take what is there");
    }
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
    bool is_new = false;
    const Quantity& quantity = quantities_.Find(real, imaginary != nullptr, is_new);
    if (is_new) {
      writer_.WriteVariable(quantity);
      ++summary_.variables;
    }
    std::vector<float> pairs;
    if (imaginary) pairs = Interleave(real.values, imaginary->values);
    float* values = imaginary ? pairs.data() : real.values.data();
    writer_.WriteInState(index, quantity, {&real.ids, values, ORV_FLOAT, imaginary != nullptr});
  }

  FrdImportOptions options_;
  frd::Reader reader_;
  OutputFile output_;
  BlockWriter writer_;
  Progress progress_;
  QuantityTable quantities_;
  std::string index_name_;
  FrdImportSummary summary_;
};

}  // namespace

FrdImportSummary ImportFrd(const FrdImportOptions& options) {
  try {
    return Translation(options).Run();
  } catch (const frd::Error& error) {
    throw Trouble(options.input.string(), error.what(), "check that the file is whole and a CalculiX result");
  }
}

}  // namespace orvio::program
