// A result file that is read to be copied.
#pragma once

#include <orvio/orvio.h>

#include <string>
#include <vector>

#include "copying/block_walk.h"
#include "copying/content_writer.h"

namespace orvio::program {

inline constexpr char kConstantSection[] = "/post/constant", kStatesSection[] = "/post/singlestate",
                      kMultistateSection[] = "/post/multistate";

/// What a copy has to say.
struct CopyReport {
  std::uint64_t size_before = 0, size_after = 0;
  int states = 0;
  std::uint64_t blocks = 0;
  bool has_properties = false;
  std::vector<std::string> notes;  ///< what was left out, and what is stored in another way
};

/// Open for the life of the object, its structure looked at. Throws Trouble for a file that is no result file.
class ResultSource {
 public:
  explicit ResultSource(const std::string& path);

  const std::string& path() const { return path_; }
  hid_t file() { return reader_.GetFileId(); }
  const ORVFileVersion& version() const { return version_; }
  /// Groups of the states, in order.
  const std::vector<std::string>& states() const { return states_; }

 private:
  std::string path_;
  OH5Reader reader_;
  ORVFileVersion version_;
  std::vector<std::string> states_;
};

/// The version to write for a file of this version: of what cannot be written, the closest.
_ORVVersion ClosestVersion(const ORVFileVersion& version);
/// "2.2".
std::string WordOf(_ORVVersion version);

/// Copies what the root, the group post and the sections hold beside the blocks of the format. What cannot be copied
/// safely is noted.
void CopyRest(ResultSource& source, ContentWriter& writer, CopyReport& report);
/// The same for what lies between the blocks of a section or a state.
void CopyStrays(ResultSource& source, const FoundBlocks& found, const std::string& from, const std::string& to,
                ContentWriter& writer, CopyReport& report);

/// Throws Trouble when the output is the file itself, by whatever name, or neither a file nor a new name.
void RequireOtherFile(const std::string& file, const std::string& out);

}  // namespace orvio::program
