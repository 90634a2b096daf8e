// A result file that is open to questions.
#pragma once

#include <orvio/orvio.h>

#include <cstddef>
#include <string>
#include <vector>

namespace orvio::program {

/// A filer after its start-up. What the library tells goes to standard error. One object at a time.
class ResultFile {
 public:
  /// Throws Trouble for a file that is no result file.
  explicit ResultFile(std::string path);
  ~ResultFile();
  ResultFile(const ResultFile&) = delete;
  ResultFile& operator=(const ResultFile&) = delete;

  const std::string& path() const { return path_; }
  ORVFiler& filer() { return filer_; }
  int states() const { return states_; }

  /// Makes the results known that only later states have: those of one state, or of all (0).
  void LearnLaterResults(int state);

  /// Names of the columns of the state index; numbered where the file names none.
  std::vector<std::string> IndexNames() { return IndexNames(IndexColumns()); }
  /// One per name; empty where the file tells none.
  std::vector<std::string> IndexUnits() { return IndexUnits(IndexColumns()); }
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

 private:
  std::size_t IndexColumns();

  std::string path_;
  int states_;
  bool knows_all_results_ = false;
  ORVFiler filer_;
};

}  // namespace orvio::program
