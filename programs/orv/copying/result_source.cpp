// What both commands begin with, and what they copy without knowing it.

#include "copying/result_source.h"

#include <fmt/format.h>

#include <algorithm>
#include <filesystem>
#include <iterator>

#include "copying/plain_copy.h"
#include "reading/file_model.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr const char* kSections[] = {"constant", "singlestate", "multistate", "orvheader"};

void NoteLeftOut(CopyReport& report, const std::string& path) {
  report.notes.push_back("left out: " + path + ", which cannot be copied safely");
}

/// A group that the new file has already gets the attributes alone.
void CopyGroup(ResultSource& source, const std::string& path, ContentWriter& writer, CopyReport& report) {
  const std::size_t slash = path.rfind('/');
  const OwnedId parent = writer.OpenGroup(slash == 0 ? "/" : path.substr(0, slash));
  if (!CopyPlain(source.file(), path, parent.get(), path.substr(slash + 1))) NoteLeftOut(report, path);
}

}  // namespace

ResultSource::ResultSource(const std::string& path) : path_(path) {
  (void)CheckResultFile(path);
  (void)H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);  // what cannot be read is told in our own words
  (void)H5PLset_loading_state(0);                     // no code is loaded for a file
  if (reader_.OpenFile(path.c_str(), H5F_ACC_RDONLY) != 0) {
    throw Trouble(path, "cannot be opened: " + LibraryText("reading failed"), "check your permissions");
  }
  (void)reader_.ReadFileVersion(version_.m_major, version_.m_minor, version_.m_patch);  // zeros: of the first ones
  for (const std::string& name : NamesBelow(file(), kStatesSection)) {
    states_.push_back(fmt::format("{}/{}", kStatesSection, name));
  }
}

_ORVVersion ClosestVersion(const ORVFileVersion& version) {
  constexpr int kLatestMinor = 2, kLatestRead = 5;
  const bool is_first = version.m_major < 2;
  const int most = is_first ? kLatestMinor : kLatestRead;
  const int minor = version.m_minor < 0 || version.m_minor > most ? 0 : std::min(version.m_minor, kLatestMinor);
  return static_cast<_ORVVersion>((is_first ? ORV_VERSION_1_0 : ORV_VERSION_2_0) + minor);
}

std::string WordOf(_ORVVersion version) {
  constexpr const char* kWords[] = {"1.0", "1.1", "1.2", "2.0", "2.1", "2.2"};
  return kWords[static_cast<int>(version)];
}

void CopyRest(ResultSource& source, ContentWriter& writer, CopyReport& report) {
  for (const std::string& name : NamesBelow(source.file(), "/")) {
    if (name != "post") CopyGroup(source, "/" + name, writer, report);
  }
  for (const std::string& name : NamesBelow(source.file(), "/post")) {
    const bool is_section = std::ranges::find(kSections, name) != std::end(kSections);
    if (!is_section) CopyGroup(source, "/post/" + name, writer, report);
  }
  for (const char* path : {"/", "/post", kStatesSection}) {
    if (IsGroupAt(source.file(), path) && !CopyAttributes(source.file(), path, writer.OpenGroup(path).get())) {
      report.notes.push_back(fmt::format("left out: attributes of {}, which cannot be copied safely", path));
    }
  }
}

void CopyStrays(ResultSource& source, const FoundBlocks& found, const std::string& from, const std::string& to,
                ContentWriter& writer, CopyReport& report) {
  for (const std::string& path : found.lost) NoteLeftOut(report, path);
  for (const std::string& path : found.dressed) {
    const OwnedId group = writer.OpenGroup(to + path.substr(from.size()));
    if (!CopyAttributes(source.file(), path, group.get())) NoteLeftOut(report, "attributes of " + path);
  }
  for (const std::string& path : found.strays) {
    const std::string place = to + path.substr(from.size());
    const OwnedId parent = writer.OpenGroup(place.substr(0, place.rfind('/')));
    if (!CopyPlain(source.file(), path, parent.get(), place.substr(place.rfind('/') + 1))) NoteLeftOut(report, path);
  }
}

void RequireOtherFile(const std::string& file, const std::string& out) {
  std::error_code error;
  if (std::filesystem::equivalent(file, out, error)) {
    throw Trouble(out, "is the file itself", "choose another name for the output");
  }
}

}  // namespace orvio::program
