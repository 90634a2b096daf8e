// A result file that is open to questions.
#pragma once

#include <orvio/orvio.h>

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

  /// Names of the index columns; numbered where the file names none.
  std::vector<std::string> IndexNames();
  /// Index values of a state, 1-based; empty where its index cannot be read.
  std::vector<double> IndexOf(int state);

  /// Number of entities of a result in a state (0: constant); 0 when it is not stored there.
  long long CountAt(const ORVResult& result, int state) const;
  /// Whether the values of a result are doubles in a state.
  bool IsDouble(ORVResult& result, int state);

 private:
  std::string path_;
  int states_;
  ORVFiler filer_;
};

}  // namespace orvio::program
