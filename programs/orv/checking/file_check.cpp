// The order of the checks: what opens, the frame of the file, then its sections block by block.

#include "checking/file_check.h"

#include <fmt/format.h>
#include <hdf5.h>
#include <orvio/orvio.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <vector>

#include "checking/block.h"
#include "checking/block_check.h"
#include "checking/model_check.h"
#include "checking/state_check.h"
#include "checking/variable_check.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr char kHeaderPlace[] = "/post/orvheader/orvheader";
constexpr std::size_t kHeaderWidth = 64, kMagicWidth = 8;

/// What a new file of a version has; see docs/format.md.
struct SkeletonRow {
  const char* group;
  int first, last;  ///< versions, major times ten and minor
};

constexpr int kAllVersions = 99;
constexpr SkeletonRow kSkeleton[] = {
    {"system", 0, kAllVersions},       {"connectivities", 0, kAllVersions},
    {"collector", 0, kAllVersions},    {"variables", 0, 12},
    {"variable", 20, kAllVersions},    {"variablegroup", 20, kAllVersions},
    {"identifiers", 21, kAllVersions}, {"indices", 0, kAllVersions},
    {"attributes", 0, kAllVersions},   {"text", 0, kAllVersions},
};

class FileCheck {
 public:
  FileCheck(hid_t file, Teller& teller)
      : file_(file),
        teller_(teller),
        finder_(file, teller),
        blocks_(file, teller),
        variables_(teller),
        model_(teller),
        states_(teller) {}

  void Run(const ORVFileVersion& version) {
    const std::vector<std::string> roots = finder_.ChildGroups("/");
    if (std::ranges::find(roots, "post") == roots.end()) {
      teller_.Tell("F001", "/", "there is no group post");
      return;
    }
    const bool has_version = CheckHeader(version);
    if (has_version) blocks_.SetMajorVersion(version.m_major);
    const std::vector<std::string> sections = finder_.ChildGroups("/post");
    const auto has = [&](const char* name) { return std::ranges::find(sections, name) != sections.end(); };
    for (const char* section : {"constant", "singlestate"}) {
      if (!has(section)) teller_.Tell("F005", "/post", fmt::format("there is no group {}", section));
    }
    if (has("constant")) {
      if (has_version) CheckSkeleton(version);
      (void)CheckBlocks("/post/constant", kInConstant, 0);
    }
    if (has("singlestate")) CheckStates();
    if (has("multistate")) (void)CheckBlocks("/post/multistate", kInMultistate, 0);
  }

 private:
  /// False when the version is not known.
  bool CheckHeader(const ORVFileVersion& version) {
    const OwnedId access = LinkAccess();
    const OwnedId header(H5Oopen(file_, kHeaderPlace, access.get()));
    const bool is_dataset = header && H5Iget_type(header.get()) == H5I_DATASET;
    const StoredDataset stored = is_dataset ? LookAt(header.get(), kHeaderPlace) : StoredDataset();
    const bool is_here = stored.place == StoredDataset::Place::kHere;
    if (!is_here || stored.type.stored_class != StoredClass::kText || stored.count != 1) {
      teller_.Tell("F002", kHeaderPlace, is_dataset ? "the file header is not one text" : "there is no file header");
      return false;
    }
    if (!stored.type.is_variable && stored.type.size == kHeaderWidth) return CheckHeaderBytes(header.get(), version);
    teller_.Tell("F007", kHeaderPlace,
                 stored.type.is_variable ? std::string("the file header has a variable length")
                                         : fmt::format("the file header has {} bytes", stored.type.size));
    return false;
  }

  bool CheckHeaderBytes(hid_t header, const ORVFileVersion& version) {
    std::string bytes(kHeaderWidth, '\0');
    const OwnedId type(H5Dget_type(header));
    if (H5Dread(header, type.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data()) < 0) {
      teller_.Tell("D003", kHeaderPlace, "the values cannot be read");
      return false;
    }
    const std::string behind = bytes.substr(kMagicWidth);
    if (behind.starts_with("2008") || behind.starts_with("2010")) return true;  // of the first generation
    if (!bytes.starts_with("\x89ORV\r\n\x1A\n")) {
      teller_.Tell("F003", kHeaderPlace, "the file header does not begin with the magic bytes");
      return false;
    }
    constexpr int kLatestMinor[] = {-1, 2, 5};
    const int major = version.m_major, minor = version.m_minor;
    const bool is_known = major >= 1 && major <= 2 && minor >= 0 && minor <= kLatestMinor[major];
    if (!is_known) teller_.Tell("F004", kHeaderPlace, fmt::format("the version is {}.{}", major, minor));
    return is_known;
  }

  void CheckSkeleton(const ORVFileVersion& version) {
    constexpr int kMajor = 10;
    const int number = version.m_major * kMajor + std::clamp(version.m_minor, 0, kMajor - 1);
    const std::vector<std::string> groups = NamesIn("/post/constant");
    std::string missing;
    for (const SkeletonRow& row : kSkeleton) {
      if (number < row.first || number > row.last) continue;
      if (std::ranges::find(groups, row.group) == groups.end())
        missing += std::string(missing.empty() ? "" : ", ") + row.group;
    }
    if (!missing.empty()) teller_.Tell("F006", "/post/constant", "missing: " + missing);
  }

  std::vector<std::string> NamesIn(const char* path) {
    const OwnedId access = LinkAccess();
    const OwnedId group(H5Gopen2(file_, path, access.get()));
    std::vector<std::string> names;
    const auto links = group ? LinksOf(group.get()) : std::nullopt;
    if (!links) return names;
    for (const StoredLink& link : *links) names.push_back(link.name);
    return names;
  }

  /// What a block holds is dropped behind its checks, but for the index.
  std::vector<Block> CheckBlocks(const std::string& path, Sections section, int state) {
    std::vector<Block> found = finder_.Find(path, section, state);
    std::vector<std::size_t> order(found.size());
    for (std::size_t i = 0; i < order.size(); ++i) order[i] = i;
    std::ranges::stable_sort(order, {}, [&](std::size_t i) { return ModelCheck::OrderOf(found[i]); });
    for (const std::size_t i : order) {
      Block& block = found[i];
      blocks_.CheckForm(block);
      blocks_.CheckValues(block, [&](std::span<const std::int64_t> nodes) { model_.VisitNodes(block, nodes); });
      variables_.Check(block);
      model_.Check(block);
      block.integers.clear();
      block.texts.clear();
    }
    return found;
  }

  void CheckStates() {
    const std::string section = "/post/singlestate";
    const std::vector<std::string> names = finder_.ChildGroups(section);
    states_.CheckNames(names);
    int state = 0;
    for (const std::string& name : names) {
      const std::string path = section + "/" + name;
      ++teller_.looked_at.states;
      states_.Check(path, CheckBlocks(path, kInStates, ++state));
    }
    states_.Finish();
  }

  hid_t file_;
  Teller& teller_;
  BlockFinder finder_;
  BlockCheck blocks_;
  VariableCheck variables_;
  ModelCheck model_;
  StateCheck states_;
};

}  // namespace

void TellAll(const std::string& path, Teller& teller) {
  (void)ORVSetFileCheck(1);
  (void)H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);  // what cannot be read is told in our own words
  (void)H5PLset_loading_state(0);                     // no code is loaded for a file
  OH5Reader reader(path.c_str());
  if (reader.GetFileId() < 0) {
    teller.Tell("S001", "/", LibraryText("the file is not an HDF5 file, or a damaged one"));
    teller.Finish();
    return;
  }
  ORVFileVersion version;
  (void)reader.ReadFileVersion(version.m_major, version.m_minor, version.m_patch);  // zeros: the checks tell why
  FileCheck(reader.GetFileId(), teller).Run(version);
  teller.Finish();
}

Report CheckFile(const std::string& path, const Limits& limits) {
  namespace fs = std::filesystem;
  std::error_code error;
  if (!fs::exists(path, error)) throw Trouble(path, "does not exist", "check the name");
  if (!fs::is_regular_file(path, error)) throw Trouble(path, "is not a file", "give the name of a result file");
  if (access(path.c_str(), R_OK) != 0) throw Trouble(path, "may not be read", "check your permissions");
  Listener listener;
  const Outcome outcome = RunGuarded(
      limits,
      [&](const LineSender& sender) {
        Teller teller(sender);
        TellAll(path, teller);
      },
      [&](std::string_view line) { listener.Take(line); });
  return listener.Finish(outcome, limits);
}

}  // namespace orvio::program
