// The walk down to the blocks.

#include "checking/block.h"

#include <fmt/format.h>

#include <algorithm>
#include <utility>

namespace orvio::program {
namespace {

constexpr int kDeepest = 128;
constexpr const char* kParts[] = {"orvblock", "header", "data", "index"};

bool IsPart(const std::string& name) { return std::ranges::find(kParts, name) != std::end(kParts); }

std::string TokenOf(hid_t object) {
  H5O_info2_t info;
  if (H5Oget_info3(object, &info, H5O_INFO_BASIC) < 0) return {};
  return {reinterpret_cast<const char*>(&info.token), sizeof info.token};
}

}  // namespace

std::int64_t Block::Number(const char* name) const {
  const auto place = header.find(name);
  const bool is_there =
      place != header.end() && place->second.is_readable && place->second.type.stored_class == StoredClass::kInteger;
  return is_there ? place->second.number : -1;
}

std::string Block::Text(const char* name) const {
  const auto place = header.find(name);
  return place == header.end() ? std::string() : place->second.text;
}

bool Block::IsIncremental() const { return header.contains("indexic") && header.at("indexic").number != 0; }

const std::vector<std::int64_t>* Block::Integers(const char* name) const {
  const auto place = integers.find(name);
  return place == integers.end() ? nullptr : &place->second;
}

std::vector<Block> BlockFinder::Find(const std::string& path, Sections section, int state) {
  root_ = path;
  section_ = section;
  state_ = state;
  blocks_.clear();
  ++walk_;
  Walk(path, "", 0);
  return std::move(blocks_);
}

std::vector<std::string> BlockFinder::ChildGroups(const std::string& path) {
  const OwnedId access = LinkAccess();
  const OwnedId group(H5Oopen(file_, path.c_str(), access.get()));
  const auto links = group && H5Iget_type(group.get()) == H5I_GROUP ? LinksOf(group.get()) : std::nullopt;
  std::vector<std::string> names;
  if (!links) {
    teller_.Tell("D003", path, "the group cannot be listed");
    return names;
  }
  for (const StoredLink& link : *links) {
    if (!TellOfLink(path, link) || link.type != H5L_TYPE_HARD) continue;
    H5O_info2_t info;
    if (H5Oget_info_by_name3(group.get(), link.name.c_str(), &info, H5O_INFO_BASIC, access.get()) < 0) {
      teller_.Tell("D003", path + "/" + link.name, "the object cannot be opened");
    } else if (info.type == H5O_TYPE_GROUP) {
      names.push_back(link.name);
    }
  }
  return names;
}

/// False for a link that leads out of the file or nowhere.
bool BlockFinder::TellOfLink(const std::string& path, const StoredLink& link) {
  const std::string place = (path == "/" ? "" : path) + "/" + link.name;
  if (link.type == H5L_TYPE_HARD) return true;
  if (link.type != H5L_TYPE_SOFT) {
    teller_.Tell("R001", place,
                 link.type == H5L_TYPE_EXTERNAL ? "the link leads into another file"
                                                : "the link is of a kind that is not known");
    return false;
  }
  const OwnedId access = LinkAccess();
  const OwnedId target(H5Oopen(file_, place.c_str(), access.get()));
  if (!target) teller_.Tell("R004", place, "the link leads to nothing that is in the file");
  return static_cast<bool>(target);
}

bool BlockFinder::IsNew(const std::string& path, hid_t group) {
  const std::string token = TokenOf(group);
  if (std::ranges::find(ancestors_, token) != ancestors_.end()) {
    teller_.Tell("R006", path, "the group is one of those that it lies in");
    return false;
  }
  constexpr int kMostVisits = 16;  // many states may share a group by hard links, and each walk takes time
  Visits& visits = seen_[token];
  return std::exchange(visits.last_walk, walk_) != walk_ && ++visits.count <= kMostVisits;
}

void BlockFinder::Walk(const std::string& path, const std::string& type_group, int depth) {
  const OwnedId access = LinkAccess();
  const OwnedId group(H5Gopen2(file_, path.c_str(), access.get()));
  if (!group) {
    teller_.Tell("D003", path, "the group cannot be opened");
    return;
  }
  if (!IsNew(path, group.get())) return;
  if (depth > kDeepest) {
    teller_.Tell("R006", path, fmt::format("the group lies more than {} levels deep", kDeepest));
    return;
  }
  ancestors_.push_back(TokenOf(group.get()));
  const std::vector<std::string> names = ChildGroups(path);
  const auto has = [&](const char* name) { return std::ranges::find(names, name) != names.end(); };
  const bool is_single = has("orvblock");
  if (is_single || has("header") || has("data")) {
    Block block = ReadBlock(path, names);
    block.type_group = type_group;
    // A new file of the first generation has an empty header and an empty data in `system`.
    const bool is_empty = block.header.empty() && block.datasets.empty() && !is_single;
    if (!is_empty) blocks_.push_back(std::move(block));
  }
  for (const std::string& name : names) {
    if (IsPart(name)) continue;
    const bool is_type_group = type_group.empty() && IsTypeGroup(name.c_str());
    Walk(path + "/" + name, is_type_group ? name : type_group, depth + 1);
  }
  ancestors_.pop_back();
}

Block BlockFinder::ReadBlock(const std::string& path, const std::vector<std::string>& child_groups) {
  teller_.Enter(path);
  const bool is_single = std::ranges::find(child_groups, "orvblock") != child_groups.end();
  Block block;
  block.path = path;
  block.relative = path.substr(root_.size());
  block.section = section_;
  block.state = state_;
  block.is_single = is_single;
  for (const std::string part : kParts) {
    const bool is_there = std::ranges::find(child_groups, part) != child_groups.end();
    if (!is_there || (part == "orvblock") != is_single) continue;
    if (is_single || part == "header") AddHeader(path + "/" + part, block);
    if (part != "header") AddDatasets(path + "/" + part, block);
  }
  block.key = block.Number("block");
  block.kind = FindKind(block.key);
  return block;
}

void BlockFinder::AddHeader(const std::string& path, Block& block) {
  const OwnedId access = LinkAccess();
  const OwnedId group(H5Gopen2(file_, path.c_str(), access.get()));
  auto attributes = group ? AttributesOf(group.get()) : std::nullopt;
  if (!attributes) {
    teller_.Tell("D003", path, "the attributes cannot be listed");
    return;
  }
  block.has_header = true;
  block.header = std::move(*attributes);
}

void BlockFinder::AddDatasets(const std::string& path, Block& block) {
  const OwnedId access = LinkAccess();
  const OwnedId group(H5Gopen2(file_, path.c_str(), access.get()));
  const auto links = group ? LinksOf(group.get()) : std::nullopt;
  if (!links) {
    teller_.Tell("D003", path, "the group cannot be listed");
    return;
  }
  for (const StoredLink& link : *links) {
    if (TellOfLink(path, link)) AddDataset(path, link.name, block);
  }
}

void BlockFinder::AddDataset(const std::string& path, const std::string& name, Block& block) {
  const std::string place = path + "/" + name;
  const OwnedId access = LinkAccess();
  const OwnedId object(H5Oopen(file_, place.c_str(), access.get()));
  if (!object) {
    teller_.Tell("D003", place, "the object cannot be opened");
  } else if (H5Iget_type(object.get()) == H5I_DATASET) {
    block.datasets.emplace(name, LookAt(object.get(), place));
  }
}

}  // namespace orvio::program
