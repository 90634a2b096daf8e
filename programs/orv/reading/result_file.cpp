// The start-up of a filer for a person at a command line.

#include "reading/result_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "reading/file_model.h"
#include "reading/units.h"
#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

struct Listening {
  int listeners = 0;
  std::string path;  ///< of the file that was chosen last
};

Listening& Process() {
  static Listening listening;
  return listening;
}

/// One line, whatever the text has of line ends.
void PrintMessage(_ORVMesgType /*type*/, const char* text) {
  std::string line = OneLine(text);
  line.erase(0, line.find_first_not_of(' '));
  Tell(Process().path + ": " + line);
}

}  // namespace

MessageListener::MessageListener() {
  if (Process().listeners++ == 0) ORVFiler::SetVerbosCallback(PrintMessage);
}

MessageListener::~MessageListener() {
  if (--Process().listeners == 0) ORVFiler::SetVerbosCallback(nullptr);
}

void MessageListener::Choose(const std::string& path) {
  if (Process().path != path) Process().path = path;
}

ResultFile::ResultFile(std::string path)
    : path_(std::move(path)), states_(CheckResultFile(path_)), filer_(path_.c_str()) {
  filer().SetConfig(ORV_CONFIG_ASSIGN_UNITS);
  int next_id = 1;
  (void)filer().InitReader(next_id);  // a file without results still has a mesh to show
}

IndexFiler& ResultFile::Filer() {
  MessageListener::Choose(path_);
  return filer_;
}

void ResultFile::LearnLaterResults(int state) {
  if (knows_all_results_) return;
  knows_all_results_ = state == 0;
  int added = 0;
  constexpr int kNextAfterTheLargest = -1;
  (void)Filer().UpdateContainer(state, added, kNextAfterTheLargest, 0);  // what cannot be read is not there
}

std::size_t ResultFile::IndexColumns() {
  const ORVIndexBase<int, double>* index = Filer().GetStateIndexDP(false);
  const bool has_rows = index && index->GetNumState() > 0;  // the number of columns alone is a claim of the file
  return has_rows ? static_cast<std::size_t>(index->GetNumIndex()) : 0;
}

std::vector<std::string> ResultFile::IndexNames(std::size_t columns) {
  const ORVSimulationType* types = Filer().GetIndexTypes();
  std::vector<std::string> names;
  for (std::size_t i = 0; i < columns; ++i) {
    const bool is_named = types && i < static_cast<std::size_t>(types->m_nindex);
    std::string name = is_named ? TextOf(types->m_pEtypindex + i * kFieldWidth) : "";
    names.push_back(name.empty() ? fmt::format("index {}", i + 1) : name);
  }
  return names;
}

/// The columns are named by variables: those of a group, or in older files those of the same names.
std::vector<std::string> ResultFile::IndexUnits(std::size_t columns) {
  const ORVSimulationType* types = Filer().GetIndexTypes();
  const ORVVariableGrp* group = types ? Filer().GetVariableGroup(types->m_etypvar) : nullptr;
  std::vector<std::string> units;
  for (const std::string& name : IndexNames(columns)) {
    const std::size_t i = units.size();
    const bool is_member = group && i < group->m_variables.size();
    ORVVariable* variable = is_member ? group->m_variables[i] : Filer().GetVariable(name.c_str());
    units.push_back(variable ? UnitOf(filer_, *variable, 0) : "");
  }
  return units;
}

std::vector<double> ResultFile::IndexOf(int state) {
  const ORVIndexBase<int, double>* index = Filer().GetStateIndexDP(false);
  if (!index || state < 1 || state > index->GetNumState()) return {};
  const double* row = index->GetIndexVals() + (state - 1) * index->GetNumIndex();
  return {row, row + index->GetNumIndex()};
}

std::vector<std::vector<double>> ResultFile::IndexOver(ORVResult& result) {
  int states = 0;
  int* ids = nullptr;
  float* values = nullptr;
  const int columns = Filer().ReadMultistateIndexValues(&result, states, ids, values);  // checks what the file claims
  std::free(ids);
  std::free(values);
  if (columns < 1 || states < 1) return {};
  std::vector<double> all(static_cast<std::size_t>(states) * static_cast<std::size_t>(columns));
  ORVResult block = result;
  block.m_nstate = states;
  block.m_nindex = columns;
  block.m_indexval = all.data();
  block.m_indexvalType = ORV_DOUBLE;
  if (block.ReadAttribute(path_.c_str(), 0, ORV_READ_INDEX, ORV_ATT_INDEXVAL) != 0) return {};
  std::vector<std::vector<double>> rows;
  for (auto row = all.begin(); row != all.end(); row += columns) rows.emplace_back(row, row + columns);
  return rows;
}

long long ResultFile::CountAt(const ORVResult& result, int state) const {
  ORVResult block = result;
  const int status = block.ReadAttribute(path_.c_str(), state, ORV_READ_HEADER, ORV_ATT_NENT);
  return status == 0 ? std::max<std::int64_t>(block.m_nent, 0) : 0;
}

bool ResultFile::IsDouble(ORVResult& result, int state) {
  std::vector<ORVResult*> list = {&result};
  return Filer().IsResultValueInDoublePrecision(list, state);
}

bool ResultFile::IsIncremental(const ORVResult& result, int state) const {
  if (state < 1 || !result.IsSingleStatePath() || !result.IsSinglestateBlk()) return false;
  ORVResult block = result;
  return block.ReadBlock(path_.c_str(), state, ORV_READ_HEADER) == 0 && block.IsIncremental();
}

namespace {

/// The rows of a block's index. Their array is freed with it.
class OwnIndex : public ORVIncrIndex {
 public:
  OwnIndex() = default;
  OwnIndex(const OwnIndex&) = delete;
  OwnIndex& operator=(const OwnIndex&) = delete;
  ~OwnIndex() override { ClearAll(); }
};

}  // namespace

/// States stand in the order of their identifiers. Of several with the same one the first counts.
const StateOrder& ResultFile::OrderOf(ORVResult& result) {
  const auto [place, is_new] = orders_.try_emplace(result.GetBlkPath());
  StateOrder& order = place->second;
  OwnIndex index;
  std::vector<int> states, flags;
  if (!is_new || !result.IsSingleStatePath() || Filer().ReadIncrIndex(result, index, 1) != 0) return order;
  if (index.GetNumIndex() != 1 || index.GetStateIncrFlagInfo(states, flags) != 0) return order;
  std::map<int, std::size_t> rows;
  for (std::size_t row = 0; row < states.size(); ++row) rows.emplace(index.GetIndexIds()[row], row);
  for (const auto& [identifier, row] : rows) {
    order.states.push_back(states[row]);
    order.holds_changes.push_back(flags[row] != 0);
  }
  return order;
}

/// A filer has one map, made from one block. It serves all blocks whose states are in the same order.
StateChain ResultFile::ChainOf(ORVResult& result, int state) {
  constexpr bool kAnew = true;
  const StateOrder& order = OrderOf(result);
  const auto place = std::ranges::find(order.states, state);
  const bool is_mapped = order == mapped_ || Filer().BuildGlobalIncrMap(result, 1, kAnew) == 0;
  if (place == order.states.end() || !is_mapped) {
    throw Trouble(path_,
                  fmt::format("block {} holds changes in state {}, and there is no telling what they build upon",
                              result.GetBlkPath(), state),
                  "its states must have one index column, with an identifier of their own each");
  }
  mapped_ = order;
  auto first = static_cast<std::size_t>(place - order.states.begin());
  const std::size_t last = first;
  while (first > 0 && order.holds_changes[first]) --first;
  StateChain chain;
  chain.base = order.states[first];
  for (std::size_t i = first + 1; i <= last; ++i) {
    if (order.states[i] <= state) chain.changes.push_back(order.states[i]);
  }
  return chain;
}

}  // namespace orvio::program
