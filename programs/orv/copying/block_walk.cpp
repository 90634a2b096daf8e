// The walk takes hard links alone, as readers do.

#include "copying/block_walk.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "checking/stored_object.h"

namespace orvio::program {
namespace {

constexpr std::size_t kDeepest = 128;
constexpr int kMostVisits = 16;  // of one group in one walk: links could make more ways than anybody can go

class Walker {
 public:
  Walker(hid_t file, std::string root) : file_(file), root_(std::move(root)) {}

  FoundBlocks Run() {
    Visit(root_);
    return std::move(found_);
  }

 private:
  void Visit(const std::string& path) {
    const OwnedId access = LinkAccess();
    const OwnedId group(H5Gopen2(file_, path.c_str(), access.get()));
    H5O_info2_t info = {};
    const bool is_open = group && H5Oget_info3(group.get(), &info, H5O_INFO_BASIC | H5O_INFO_NUM_ATTRS) >= 0;
    const std::string token(reinterpret_cast<const char*>(&info.token), sizeof info.token);
    const bool is_cycle = std::ranges::find(ancestors_, token) != ancestors_.end();
    const auto links = is_open ? LinksOf(group.get()) : std::nullopt;
    if (!links || is_cycle || ancestors_.size() > kDeepest || ++visits_[token] > kMostVisits) {
      found_.lost.push_back(path);
      return;
    }
    ancestors_.push_back(token);
    if (!TakeBlock(path, group.get(), *links) && info.num_attrs > 0) found_.dressed.push_back(path);
    for (const StoredLink& link : *links) Follow(path, group.get(), link);
    ancestors_.pop_back();
  }

  static H5O_type_t TypeOf(hid_t group, const StoredLink& link) {
    H5O_info2_t info = {};
    const OwnedId access = LinkAccess();
    const bool is_known = link.type == H5L_TYPE_HARD &&
                          H5Oget_info_by_name3(group, link.name.c_str(), &info, H5O_INFO_BASIC, access.get()) >= 0;
    return is_known ? info.type : H5O_TYPE_UNKNOWN;
  }

  bool TakeBlock(const std::string& path, hid_t group, const std::vector<StoredLink>& links) {
    const auto has = [&](const char* name) {
      const auto link = std::ranges::find(links, name, &StoredLink::name);
      return link != links.end() && TypeOf(group, *link) == H5O_TYPE_GROUP;
    };
    BlockPlace place{path, path.substr(root_.size()), {}};
    if (has("orvblock")) place.parts = {path + "/orvblock"};
    for (const char* part : {"header", "data", "index"}) {
      const bool begins = std::string_view(part) != "index" || !place.parts.empty();  // an index alone is no block
      if (begins && !has("orvblock") && has(part)) place.parts.push_back(path + "/" + part);
    }
    if (place.parts.empty()) return false;
    found_.blocks.push_back(std::move(place));
    return true;
  }

  void Follow(const std::string& path, hid_t group, const StoredLink& link) {
    const std::string place = path + "/" + link.name;
    const bool is_part = !found_.blocks.empty() &&
                         std::ranges::find(found_.blocks.back().parts, place) != found_.blocks.back().parts.end();
    if (is_part) return;
    switch (TypeOf(group, link)) {
      case H5O_TYPE_GROUP:
        return Visit(place);
      case H5O_TYPE_UNKNOWN:
        found_.lost.push_back(place);
        return;
      default:
        found_.strays.push_back(place);
    }
  }

  hid_t file_;
  std::string root_;
  FoundBlocks found_;
  std::vector<std::string> ancestors_;  ///< tokens of the groups on the way down
  std::map<std::string, int> visits_;   ///< by the token of a group
};

}  // namespace

FoundBlocks FindBlocks(hid_t file, const std::string& root) { return Walker(file, root).Run(); }

std::vector<std::string> NamesBelow(hid_t file, const std::string& path) {
  const OwnedId access = LinkAccess();
  const OwnedId group(H5Gopen2(file, path.c_str(), access.get()));
  std::vector<std::string> names;
  const auto links = group ? LinksOf(group.get()) : std::nullopt;
  for (const StoredLink& link : links.value_or(std::vector<StoredLink>())) names.push_back(link.name);
  return names;
}

bool IsGroupAt(hid_t file, const std::string& path) {
  const OwnedId access = LinkAccess();
  return static_cast<bool>(OwnedId(H5Gopen2(file, path.c_str(), access.get())));
}

}  // namespace orvio::program
