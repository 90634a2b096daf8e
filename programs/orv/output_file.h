// A file that appears under its name when it is whole, or not at all.
#pragma once

#include <filesystem>
#include <string>

namespace orvio::program {

/// Makes signals that end the program take the working files of all outputs along.
void RemoveOutputsOnSignals();

/// Stands for an output file while it is written: under another name in the same folder, which Commit changes to the
/// final one in a single step. Without a Commit nothing is left, and what stood under the final name stays.
class OutputFile {
 public:
  /// Fails when the final name is something else than a file or its folder cannot be written to.
  explicit OutputFile(std::filesystem::path path);
  ~OutputFile();
  OutputFile(const OutputFile&) = delete;
  OutputFile& operator=(const OutputFile&) = delete;

  /// Where to write.
  const std::string& working_path() const { return working_; }

  /// Brings the data to the disk and gives the file its name.
  void Commit();

 private:
  std::filesystem::path path_;
  std::string working_, journal_;  ///< the library keeps what it changes in a journal beside the file
  bool committed_ = false;
};

}  // namespace orvio::program
