// Paths of blocks are those that the library has learnt; a block stands at the same path below each state.

#include "linking/source_file.h"

#include <string_view>
#include <utility>

#include "checking/stored_object.h"
#include "reading/stored_size.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr char kStates[] = "/post/singlestate";
constexpr std::string_view kBelowStates = "/post/singlestate/";

}  // namespace

SourceFile::SourceFile(const std::string& path) : path_(path), reader_(path.c_str()) {
  if (reader_.GetFileId() < 0) throw Trouble(path, "cannot be opened", "check your permissions");
  const hid_t group = reader_.OpenGroup(reader_.GetFileId(), kStates, H5P_DEFAULT);
  if (group < 0) return;
  for (StoredLink& link : LinksOf(group).value_or(std::vector<StoredLink>())) states_.push_back(std::move(link.name));
  (void)reader_.CloseGroup(group);  // the reader closes what is left
}

std::string SourceFile::PathIn(const ORVBlock& block, int state) const {
  const bool is_single = block.GetBlkVersion() == ORV_BLK_VERSION_SINGLE;
  std::string path = block.GetBlkPath() + (is_single ? "" : "/data");
  if (state < 1 || !path.starts_with(kBelowStates)) return path;
  const std::size_t end = path.find('/', kBelowStates.size());
  if (end == std::string::npos || static_cast<std::size_t>(state) > states_.size()) return {};
  path.replace(kBelowStates.size(), end - kBelowStates.size(), states_[static_cast<std::size_t>(state - 1)]);
  return path;
}

std::optional<StoredArray> SourceFile::Find(const ORVBlock& block, int state, const std::string& dataset) {
  constexpr int kMaxRank = 32;
  const std::string path = PathIn(block, state);
  const hid_t group = path.empty() ? -1 : reader_.OpenGroup(reader_.GetFileId(), path.c_str(), H5P_DEFAULT);
  if (group < 0) return std::nullopt;
  int rank = 0;
  hsize_t extents[kMaxRank] = {};
  hsize_t total = 0;
  StoredArray array{path + "/" + dataset, {}, ORV_UNKNOWN_TYPE};
  const int status = reader_.GetDatasetInfo(group, dataset, rank, extents, total, array.type, nullptr);
  (void)reader_.CloseGroup(group);  // the reader closes what is left
  if (status != 0 || total == 0 || !FitsIntoFile(path_, static_cast<double>(total))) return std::nullopt;
  array.extents.assign(extents, extents + rank);
  return array;
}

bool IsReal(const StoredArray& array) { return array.type == ORV_FLOAT || array.type == ORV_DOUBLE; }
bool IsInteger(const StoredArray& array) { return array.type == ORV_INT || array.type == ORV_LONG; }

}  // namespace orvio::program
