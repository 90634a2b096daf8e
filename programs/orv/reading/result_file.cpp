// The start-up of a filer for a person at a command line.

#include "reading/result_file.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstdlib>
#include <iterator>
#include <utility>

#include "reading/file_model.h"
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

namespace {

/// Tells what is wrong in the words of the program.
std::string Checked(std::string path) {
  (void)CheckResultFile(path);
  MessageListener::Choose(path);
  return path;
}

}  // namespace

ResultFile::ResultFile(std::string path) : file_(Checked(std::move(path))) {}

orv::File& ResultFile::file() {
  MessageListener::Choose(path());
  return file_;
}

void ResultFile::LearnLaterResults(int state) {
  if (knows_all_results_) return;
  knows_all_results_ = state == 0;
  if (state == 0) return (void)file().results();
  int added = 0;
  constexpr int kNextAfterTheLargest = -1;
  (void)filer().UpdateContainer(state, added, kNextAfterTheLargest, 0);  // what cannot be read is not there
}

namespace {

std::vector<std::string> NamesOf(const std::vector<orv::Component>& columns) {
  std::vector<std::string> names;
  std::ranges::transform(columns, std::back_inserter(names), &orv::Component::name);
  return names;
}

std::vector<std::string> UnitsOf(const std::vector<orv::Component>& columns) {
  std::vector<std::string> units;
  std::ranges::transform(columns, std::back_inserter(units), &orv::Component::unit);
  return units;
}

}  // namespace

std::vector<std::string> ResultFile::IndexNames() { return NamesOf(file_.index_columns()); }
std::vector<std::string> ResultFile::IndexUnits() { return UnitsOf(file_.index_columns()); }
std::vector<std::string> ResultFile::IndexNames(std::size_t columns) { return NamesOf(file_.index_columns(columns)); }
std::vector<std::string> ResultFile::IndexUnits(std::size_t columns) { return UnitsOf(file_.index_columns(columns)); }

std::vector<double> ResultFile::IndexOf(int state) {
  return state >= 1 && state <= states() ? file_.state(state).index : std::vector<double>();
}

std::vector<std::vector<double>> ResultFile::IndexOver(ORVResult& result) {
  int states = 0;
  int* ids = nullptr;
  float* values = nullptr;
  const int columns = filer().ReadMultistateIndexValues(&result, states, ids, values);  // checks what the file claims
  std::free(ids);
  std::free(values);
  if (columns < 1 || states < 1) return {};
  std::vector<double> all(static_cast<std::size_t>(states) * static_cast<std::size_t>(columns));
  ORVResult block = result;
  block.m_nstate = states;
  block.m_nindex = columns;
  block.m_indexval = all.data();
  block.m_indexvalType = ORV_DOUBLE;
  if (block.ReadAttribute(path().c_str(), 0, ORV_READ_INDEX, ORV_ATT_INDEXVAL) != 0) return {};
  std::vector<std::vector<double>> rows;
  for (auto row = all.begin(); row != all.end(); row += columns) rows.emplace_back(row, row + columns);
  return rows;
}

long long ResultFile::CountAt(const ORVResult& result, int state) const {
  ORVResult block = result;
  const int status = block.ReadAttribute(path().c_str(), state, ORV_READ_HEADER, ORV_ATT_NENT);
  return status == 0 ? std::max<std::int64_t>(block.m_nent, 0) : 0;
}

bool ResultFile::IsDouble(ORVResult& result, int state) {
  std::vector<ORVResult*> list = {&result};
  return filer().IsResultValueInDoublePrecision(list, state);
}

bool ResultFile::IsIncremental(const ORVResult& result, int state) const {
  if (state < 1 || !result.IsSingleStatePath() || !result.IsSinglestateBlk()) return false;
  ORVResult block = result;
  return block.ReadBlock(path().c_str(), state, ORV_READ_HEADER) == 0 && block.IsIncremental();
}

namespace {

/// A filer that shows the index of a block.
class IndexFiler : public ORVFiler {
 public:
  using ORVFiler::ORVFiler;
  using ORVFiler::ReadIncrIndex;
};

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
  if (!is_new || !result.IsSingleStatePath() || IndexFiler(path().c_str()).ReadIncrIndex(result, index, 1) != 0) {
    return order;
  }
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
  const bool is_mapped = order == mapped_ || filer().BuildGlobalIncrMap(result, 1, kAnew) == 0;
  if (place == order.states.end() || !is_mapped) {
    throw Trouble(path(),
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
