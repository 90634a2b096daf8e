// A result file that is open to questions.
#pragma once

#include <orvio/orvio.h>

#include <cstddef>
#include <map>
#include <orvio/orv.hpp>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace orvio::program {

/// The states of a result in the order in which they build upon each other, with what each holds.
struct StateOrder {
  bool operator==(const StateOrder&) const = default;

  std::vector<int> states;  ///< 1-based; empty where their index cannot be read or has several columns
  std::vector<bool> holds_changes;
};

/// What the values of a state are made of.
struct StateChain {
  int base = 0;              ///< the state that is read as it stands
  std::vector<int> changes;  ///< those whose changes follow, in order
};

/// Receives what the library tells while any of these lives, and prints it on standard error. A message does not say of
/// which file it is: the one that was chosen last is named.
class MessageListener {
 public:
  MessageListener();
  ~MessageListener();
  MessageListener(const MessageListener&) = delete;
  MessageListener& operator=(const MessageListener&) = delete;

  static void Choose(const std::string& path);
};

/// A filer after its start-up. What the library tells goes to standard error, under the name of the file whose filer was
/// asked for last: with several files, ask for it anew for each operation.
class ResultFile {
 public:
  /// Throws Trouble for a file that is no result file.
  explicit ResultFile(std::string path);
  ResultFile(const ResultFile&) = delete;
  ResultFile& operator=(const ResultFile&) = delete;

  const std::string& path() const { return file_.path(); }
  orv::File& file();
  ORVFiler& filer() { return file().filer(); }
  int states() const { return file_.state_count(); }

  /// Makes the results known that only later states have: those of one state, or of all (0).
  void LearnLaterResults(int state);

  /// Names of the columns of the state index; numbered where the file names none.
  std::vector<std::string> IndexNames();
  /// One per name; empty where the file tells none.
  std::vector<std::string> IndexUnits();
  /// The same for so many columns of another index.
  std::vector<std::string> IndexNames(std::size_t columns);
  std::vector<std::string> IndexUnits(std::size_t columns);
  /// Index values of a state, 1-based; empty where its index cannot be read.
  std::vector<double> IndexOf(int state);

  /// Index values of the states of a block that holds all of them; none where they cannot be read.
  std::vector<std::vector<double>> IndexOver(ORVResult& result);

  /// Number of entities of a result in a state (0: constant, -1: over all states); 0 when it is not stored there.
  long long CountAt(const ORVResult& result, int state) const;
  /// Whether the values of a result are doubles in a state.
  bool IsDouble(ORVResult& result, int state);

  /// Whether a result holds in a state nothing but what changed.
  bool IsIncremental(const ORVResult& result, int state) const;
  const StateOrder& OrderOf(ORVResult& result);
  /// Also makes the filer's map of states one that is right for this result. Throws Trouble.
  StateChain ChainOf(ORVResult& result, int state);
  /// True the first time that it is asked for a result and a state: what was found in order need not be looked at again.
  bool IsFirstLook(const ORVResult& result, int state) { return seen_.emplace(result.GetBlkPath(), state).second; }

 private:
  MessageListener listener_;
  orv::File file_;
  bool knows_all_results_ = false;
  std::map<std::string, StateOrder> orders_;  ///< by the path of the block
  std::set<std::pair<std::string, int>> seen_;
  StateOrder mapped_;  ///< that of the filer's map
};

}  // namespace orvio::program
