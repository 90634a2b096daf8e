// The order of a copy: constants, what is stored over all states, the states, and last the definitions, when it is known
// which of them are used.

#include "copying/content_copy.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>
#include <set>
#include <utility>

#include "copying/definitions.h"
#include "copying/entity_cut.h"
#include "copying/generation.h"
#include "copying/row_selection.h"
#include "copying/state_chain.h"
#include "importer/quantity.h"
#include "trouble.h"

namespace orvio::program {
namespace {

enum Key : std::int64_t { kSystem = 10, kElements = 300, kCollector = 400, kProperties = 500 };

/// Elements tell what stays of all others, collectors of the titles of their sets.
int OrderOf(std::int64_t key) {
  if (key == kElements) return 0;
  return key == kCollector ? 1 : 2;
}

/// "SOLVER:INC" without the word that says that states hold changes.
std::string WithoutChangesWord(const std::string& solver) {
  std::string text;
  for (std::size_t begin = 0; begin <= solver.size();) {
    const std::size_t end = std::min(solver.find(':', begin), solver.size());
    const std::string part = solver.substr(begin, end - begin);
    if (part != "INC") text += (begin == 0 || text.empty() ? "" : ":") + part;
    begin = end + 1;
  }
  return text;
}

class ContentCopy {
 public:
  ContentCopy(const CopyTask& task, ResultSource& source, ContentWriter& writer, CopyReport& report)
      : task_(task),
        plan_(task.plan),
        source_(source),
        writer_(writer),
        report_(report),
        scan_(source.file(), source.states(), source.path(), task.makes_whole),
        cut_(plan_.entities),
        crosses_((source.version().m_major < 2) != writer.IsSplit()) {
    if (scan_.HasOwnMesh()) cut_.ExpectOtherMeshes();
  }

  void Run() {
    const FoundBlocks constant = FindBlocks(source_.file(), kConstantSection);
    const EntityCut::NodesByType nodes = NodesOfLaterMeshes();
    UseMesh(constant);
    cut_.AddNodes(nodes);
    WriteConstants(constant);
    WriteOverStates();
    if (!nodes.empty()) UseMesh(constant);
    int number = 0;
    for (const int state : plan_.states) WriteState(state, ++number);
    WriteDefinitions(constant);
    CopyRest(source_, writer_, report_);
    RequireSomething();
    Note();
  }

 private:
  BlockContent Read(const BlockPlace& place) { return ReadContent(source_.file(), place, source_.path()); }
  std::int64_t KeyOf(const BlockPlace& place) { return ReadHeader(source_.file(), place, source_.path()).key; }

  /// From here on entities are those of these elements.
  void UseMesh(const FoundBlocks& found) {
    cut_.BeginMesh();
    for (const BlockPlace& place : found.blocks) {
      if (!cut_.empty() && KeyOf(place) == kElements) cut_.AddElements(Read(place), source_.path());
    }
    cut_.EndMesh();
  }

  /// Coordinates may be constant while meshes are not.
  EntityCut::NodesByType NodesOfLaterMeshes() {
    std::set<int> meshes;
    for (const int state : plan_.states) meshes.insert(scan_.MeshOf(state));
    meshes.erase(0);
    EntityCut::NodesByType all;
    for (const int mesh : meshes) {
      if (cut_.empty()) break;
      UseMesh(FindBlocks(source_.file(), scan_.PathOf(mesh)));
      for (const auto& [type, nodes] : cut_.Nodes()) all[type].insert(nodes.begin(), nodes.end());
    }
    return all;
  }

  void WriteConstants(const FoundBlocks& found) {
    WriteBlocks(found.blocks, kConstantSection, [&](const BlockPlace& place) { return Read(place); });
    CopyStrays(source_, found, kConstantSection, kConstantSection, writer_, report_);
  }

  template <class ReadBlock>
  void WriteBlocks(const std::vector<BlockPlace>& places, const std::string& to, ReadBlock read) {
    std::vector<std::pair<int, const BlockPlace*>> order;
    for (const BlockPlace& place : places) {
      const std::int64_t key = KeyOf(place);
      if (to == kConstantSection && IsDefinition(key)) continue;
      order.emplace_back(OrderOf(key), &place);
    }
    std::ranges::stable_sort(order, {}, &std::pair<int, const BlockPlace*>::first);
    for (const auto& [rank, place] : order) {
      BlockContent content = read(*place);
      if (StaysInPart(content)) WriteBlock(to, content);
    }
  }

  /// Cuts a block. False: nothing of it stays.
  bool StaysInPart(BlockContent& content) {
    const bool is_result = IsResult(content.key);
    if (is_result && !plan_.keeps_all_variables && !plan_.results.contains(Folded(content.Text("etypvar")))) {
      dropped_variables_.insert(content.Text("etypvar"));
      return false;
    }
    const std::int64_t before = CountOf(content) ? content.Number(CountOf(content)) : 0;
    const bool stays = cut_.Cut(content, source_.path(), [&](const std::string& dataset) {
      dropped_datasets_.insert(content.place.relative + ": " + dataset);
    });
    if (!stays) dropped_blocks_.insert(content.place.relative);
    if (content.key == kElements) {
      elements_ += before;
      kept_elements_ += stays ? content.Number("nele") : 0;
    }
    return stays;
  }

  void WriteBlock(const std::string& to, BlockContent& content) {
    if (content.key == kSystem && scan_.HasChanges()) {
      content.SetText("solver_name", WithoutChangesWord(content.Text("solver_name")));
    }
    if (IsResult(content.key)) used_.insert(Folded(content.Text("etypvar")));
    report_.has_properties = report_.has_properties || content.key == kProperties;
    if (content.key == kProperties) used_.insert(Folded(content.Text("etypprop")));
    if (crosses_) ConvertBlock(writer_.IsSplit(), content, report_.notes);
    Put(to, content);
  }

  void Put(const std::string& to, const BlockContent& content) {
    // A new file of the first generation has an empty header and an empty data in `system`.
    if (content.header.empty() && content.items.empty() && content.foreign.empty()) return;
    if (!writer_.Write(to, content, source_.file())) {
      report_.notes.push_back("left out: parts of " + content.place.path + ", which cannot be copied safely");
    }
    ++report_.blocks;
  }

  void WriteOverStates() {
    if (!IsGroupAt(source_.file(), kMultistateSection)) return;
    const FoundBlocks found = FindBlocks(source_.file(), kMultistateSection);
    WriteBlocks(found.blocks, kMultistateSection, [&](const BlockPlace& place) {
      BlockContent content = Read(place);
      if (task_.chooses_states && IsMultistateResult(content.key)) CutStates(content);
      return content;
    });
    CopyStrays(source_, found, kMultistateSection, kMultistateSection, writer_, report_);
  }

  /// Blocks with as many states as the file have those of the file. In others the states are those of the same index.
  void CutStates(BlockContent& content) {
    const std::size_t states = StatesIn(content);
    Rows rows;
    if (states == static_cast<std::size_t>(plan_.states_of_file)) {
      for (const int state : plan_.states) rows.push_back(static_cast<std::size_t>(state - 1));
    } else {
      rows = RowsByIndex(content, states);
    }
    if (rows.empty() && !plan_.states.empty()) {
      report_.notes.push_back(content.place.path + " has other states than the file and is kept whole");
    } else {
      KeepStates(content, rows, source_.path());
    }
  }

  Rows RowsByIndex(const BlockContent& content, std::size_t states) const {
    constexpr double kSame = 1e-6;
    const BlockItem* item = content.Item("indexval");
    const std::vector<double> values = item ? FloatsOf(*item) : std::vector<double>();
    const std::size_t columns = states == 0 ? 0 : values.size() / states;
    Rows rows;
    for (std::size_t row = 0; columns > 0 && row < states; ++row) {
      const double value = values[row * columns];
      const bool is_chosen = std::ranges::any_of(plan_.first_columns, [&](double chosen) {
        return std::abs(chosen - value) <= kSame * std::max(std::abs(chosen), std::abs(value));
      });
      if (is_chosen) rows.push_back(row);
    }
    return rows;
  }

  void WriteState(int state, int number) {
    const FoundBlocks found = FindBlocks(source_.file(), scan_.PathOf(state));
    const std::string to = writer_.AddState();
    const int mesh = scan_.MeshOf(state);
    if (mesh != std::exchange(mesh_, mesh)) {
      const FoundBlocks of_mesh = mesh == state ? found : FindBlocks(source_.file(), scan_.PathOf(mesh));
      UseMesh(of_mesh);
      if (mesh != state) WriteMesh(of_mesh, to);
    }
    WriteBlocks(found.blocks, to, [&](const BlockPlace& place) { return scan_.ReadWhole(place, state); });
    WriteInherited(state, found, to);
    CopyStrays(source_, found, scan_.PathOf(state), to, writer_, report_);
    report_.states = number;
  }

  /// Elements of a state that is left out hold for those behind it.
  void WriteMesh(const FoundBlocks& found, const std::string& to) {
    for (const BlockPlace& place : found.blocks) {
      if (KeyOf(place) != kElements) continue;
      BlockContent content = Read(place);
      RemoveIndex(content);  // it is that of the other state
      if (StaysInPart(content)) WriteBlock(to, content);
    }
  }

  static void RemoveIndex(BlockContent& content) {
    content.RemoveItem("indexident");
    content.RemoveItem("indexval");
    if (content.Find("nindex")) content.SetNumber("nindex", 0);
  }

  void WriteInherited(int state, const FoundBlocks& found, const std::string& to) {
    for (const BlockPlace& place : scan_.InheritedAt(state)) {
      const int from = scan_.StateOf(place);
      BlockContent content = scan_.ReadWhole(place, from);
      RemoveIndex(content);
      TakeIndexOf(found, content);
      if (StaysInPart(content)) WriteBlock(to, content);
    }
  }

  void TakeIndexOf(const FoundBlocks& found, BlockContent& content) {
    for (const BlockPlace& place : found.blocks) {
      BlockContent other = ReadHeader(source_.file(), place, source_.path());
      if (other.Number("nindex") <= 0 || !ReadItem(source_.file(), "indexval", source_.path(), other)) continue;
      (void)ReadItem(source_.file(), "indexident", source_.path(), other);
      content.SetNumber("nindex", other.Number("nindex"));
      content.items.insert(content.items.end(), other.items.begin(), other.items.end());
      return;
    }
  }

  void WriteDefinitions(const FoundBlocks& constant) {
    std::vector<BlockContent> definitions;
    for (const BlockPlace& place : constant.blocks) {
      if (IsDefinition(KeyOf(place))) definitions.push_back(Read(place));
    }
    if (task_.chooses) KeepUsed(used_, definitions);
    if (crosses_) ConvertDefinitions(writer_.IsSplit(), definitions, report_.notes);
    for (const BlockContent& definition : definitions) Put(kConstantSection, definition);
  }

  void RequireSomething() const {
    if (cut_.empty() || cut_.HasKeptAny()) return;
    throw Trouble(source_.path(), "has none of the entities asked for",
                  "orv elements and orv parts list what there is");
  }

  void NoteDroppedBlocks() {
    constexpr std::size_t kMostNamed = 5;
    if (dropped_blocks_.empty()) return;
    std::vector<std::string> names(dropped_blocks_.begin(), dropped_blocks_.end());
    const std::size_t count = names.size();
    const bool has_more = count > kMostNamed;
    if (has_more) names.resize(kMostNamed);
    for (std::string& name : names) name.erase(0, 1);
    report_.notes.push_back(fmt::format("left out: {} block{} without any of the entities: {}{}", count,
                                        count == 1 ? "" : "s", fmt::join(names, ", "), has_more ? " ..." : ""));
  }

  void Note() {
    const auto note = [&](const std::string& text) { report_.notes.push_back(text); };
    const std::size_t states_left = static_cast<std::size_t>(plan_.states_of_file) - plan_.states.size();
    if (states_left > 0) note(fmt::format("left out: {} of {} states", states_left, plan_.states_of_file));
    if (!dropped_variables_.empty()) note(fmt::format("left out: values of {}", fmt::join(dropped_variables_, ", ")));
    if (kept_elements_ < elements_) {
      note(fmt::format("left out: {} of {} elements", elements_ - kept_elements_, elements_));
    }
    NoteDroppedBlocks();
    for (const std::string& dataset : dropped_datasets_)
      note("left out: " + dataset.substr(1) + ", unknown to the format");
    if (scan_.HasChanges()) note("states that hold changes are written whole");
    constexpr int kLatestMajor = 2, kLatestMinor = 2;
    const ORVFileVersion& version = source_.version();
    if (version.m_major >= kLatestMajor && version.m_minor > kLatestMinor) {
      note(fmt::format("version {}.{} cannot be written: it is {} now", version.m_major, version.m_minor,
                       WordOf(writer_.version())));
    }
  }

  const CopyTask& task_;
  const ExtractPlan& plan_;
  ResultSource& source_;
  ContentWriter& writer_;
  CopyReport& report_;
  StateScan scan_;
  EntityCut cut_;
  bool crosses_;                ///< the new file is of the other generation of versions
  int mesh_ = 0;                ///< state of the mesh that holds; 0: the constant one
  std::set<std::string> used_;  ///< folded names of variables and groups that blocks refer to
  std::set<std::string> dropped_variables_, dropped_datasets_, dropped_blocks_;
  std::int64_t elements_ = 0, kept_elements_ = 0;
};

}  // namespace

CopyReport CopyContent(const CopyTask& task, ResultSource& source, ContentWriter& writer) {
  CopyReport report;
  ContentCopy(task, source, writer, report).Run();
  return report;
}

}  // namespace orvio::program
