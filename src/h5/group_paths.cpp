// The table of fixed group paths, and state group names.

#include "h5/group_paths.h"

#include <algorithm>
#include <cstring>
#include <iterator>

#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"

namespace orvio::h5 {
namespace {

/// Up to three levels below the root; null ends them.
struct PathRow {
  OH5GroupId id;
  const char* levels[3];
};

constexpr PathRow kPaths[] = {
    {kPost, {disk::post}},
    {kSinglestate, {disk::post, disk::singlestate}},
    {kMultistate, {disk::post, disk::multistate}},
    {kConstant, {disk::post, disk::constant}},
    {kConnectivities, {disk::post, disk::constant, disk::connectivities}},
    {kAttributes, {disk::post, disk::constant, disk::attributes}},
    {kOrvHeader, {disk::post, disk::orvheader}},
    {kVariables, {disk::post, disk::constant, disk::variables}},
    {kVariable, {disk::post, disk::constant, disk::variable}},
    {kVariableGroup, {disk::post, disk::constant, disk::variablegroup}},
    {kElements, {disk::post, disk::constant, disk::elements}},
    {kSystem, {disk::post, disk::constant, disk::system_}},
    {kCollector, {disk::post, disk::constant, disk::collector}},
    {kParts, {disk::post, disk::constant, disk::parts}},
    {kIndices, {disk::post, disk::constant, disk::indices}},
    {kText, {disk::post, disk::constant, disk::text}},
    {kMmc, {disk::mmc}},
    {kIdentifiers, {disk::post, disk::constant, disk::identifiers}},
};

}  // namespace

std::string GroupPath(int id) {
  const auto* row = std::ranges::find_if(kPaths, [id](const PathRow& candidate) { return candidate.id == id; });
  if (row == std::end(kPaths)) return {};
  std::string path = ".";
  for (const char* level : row->levels) {
    if (level) path.append("/").append(level);
  }
  return path;
}

std::string StateName(int state) {
  const std::string number = std::to_string(state);
  const size_t padding = number.size() < disk::kStateDigits ? disk::kStateDigits - number.size() : 0;
  return disk::state_ + std::string(padding, '0') + number;
}

}  // namespace orvio::h5

int OH5GetGroupPath(int id, char* buffer) {
  if (!buffer) return orvio::kFail;
  return orvio::h5::Entry(orvio::kFail, [&] {
    const std::string path = orvio::h5::GroupPath(id);
    if (path.empty()) return orvio::kFail;
    std::memcpy(buffer, path.c_str(), path.size() + 1);
    return orvio::kOk;
  });
}

void OH5BuildStateName(int state, char* name) {
  if (!name) return;
  orvio::h5::EntryVoid([&] {
    const std::string built = orvio::h5::StateName(state);
    std::memcpy(name, built.c_str(), built.size() + 1);
  });
}
