// A look at the groups of a file through HDF5 itself: the listing shows what is there, be it a valid block or not.

#include "reading/file_tree.h"

#include <hdf5.h>
#include <orvio/orvio.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <iterator>
#include <set>
#include <utility>

#include "reading/file_model.h"
#include "suggestion.h"
#include "trouble.h"

namespace orvio::program {
namespace {

/// Closes what it holds.
class Id {
 public:
  explicit Id(hid_t id) : id_(id) {}
  Id(Id&& other) noexcept : id_(std::exchange(other.id_, H5I_INVALID_HID)) {}
  Id& operator=(Id&&) = delete;
  ~Id() {
    if (id_ >= 0) (void)H5Idec_ref(id_);  // closes files and objects of all kinds
  }

  explicit operator bool() const { return id_ >= 0; }
  hid_t get() const { return id_; }

 private:
  hid_t id_;
};

struct BlockKind {
  std::int64_t key;
  const char* kind;
  const char* count;  ///< attribute that counts its entities
};

constexpr BlockKind kBlockKinds[] = {
    {10, "unit system", "nbunit"},
    {20, "index types", "nindex"},
    {30, "variable", "ncoo"},
    {32, "variable group", "nvar"},
    {40, "text", "nlines"},
    {100, "parts", "npart"},
    {200, "attributes", "nent"},
    {250, "identifiers", "nent"},
    {300, "elements", "nele"},
    {400, "sets", "ncoll"},
    {500, "properties", "nent"},
    {1000, "entity result", "nent"},
    {1001, "complex entity result", "nent"},
    {1050, "multi-state entity result", "nent"},
    {1051, "multi-state complex entity result", "nent"},
    {1100, "element result", "nele"},
    {1101, "complex element result", "nele"},
    {1150, "multi-state element result", "nele"},
    {1151, "multi-state complex element result", "nele"},
    {2100, "activation", "nent"},
};

std::optional<std::int64_t> Number(hid_t header, const char* name) {
  std::int64_t value = 0;
  if (OH5Read_ATTRIBUTE(header, name, 0, nullptr, ORV_LONG, &value) != 0) return std::nullopt;
  return value;
}

bool HasGroup(hid_t group, const char* name) {
  if (H5Lexists(group, name, H5P_DEFAULT) <= 0) return false;
  H5L_info2_t link;
  return H5Lget_info2(group, name, &link, H5P_DEFAULT) >= 0 && link.type == H5L_TYPE_HARD;
}

/// The group that holds the header of a block; not there for other groups.
Id OpenHeader(hid_t group) {
  for (const char* name : {"orvblock", "header"}) {
    if (HasGroup(group, name)) return Id(H5Gopen2(group, name, H5P_DEFAULT));
  }
  return Id(H5I_INVALID_HID);
}

struct Link {
  std::string name;
  H5L_type_t type;
};

herr_t NoteLink(hid_t /*group*/, const char* name, const H5L_info2_t* info, void* links) {
  static_cast<std::vector<Link>*>(links)->push_back({name, info->type});
  return 0;
}

std::vector<Link> LinksOf(hid_t group) {
  std::vector<Link> links;
  hsize_t position = 0;
  (void)H5Literate2(group, H5_INDEX_NAME, H5_ITER_INC, &position, NoteLink, &links);  // a damaged group shows less
  return links;
}

std::string TargetOf(hid_t group, const Link& link) {
  if (link.type != H5L_TYPE_SOFT) return "another file";
  H5L_info2_t info;
  if (H5Lget_info2(group, link.name.c_str(), &info, H5P_DEFAULT) < 0 || info.u.val_size == 0) return {};
  std::string target(info.u.val_size, '\0');
  if (H5Lget_val(group, link.name.c_str(), target.data(), target.size(), H5P_DEFAULT) < 0) return {};
  return target.substr(0, target.find('\0'));
}

class Lister {
 public:
  explicit Lister(const TreeOptions& options) : options_(options) {}

  void List(hid_t group, const std::string& prefix, int depth) {
    for (const Link& link : LinksOf(group)) Show(group, link, prefix + link.name, depth);
  }

  /// The datasets of a block, of its parts one after the other in the split layout.
  void ListBlock(hid_t block) {
    for (const char* part : {"orvblock", "header", "data", "index"}) {
      if (!HasGroup(block, part)) continue;
      const Id group(H5Gopen2(block, part, H5P_DEFAULT));
      if (group) List(group.get(), std::string(part) + "/", kDeepest);
    }
  }

  std::vector<TreeEntry> Take() { return std::move(entries_); }

 private:
  static constexpr int kDeepest = 128;

  void Show(hid_t group, const Link& link, const std::string& path, int depth) {
    if (link.type != H5L_TYPE_HARD) {
      entries_.push_back({path, "link", {}, {}, 0, TargetOf(group, link)});
      return;
    }
    const Id object(H5Oopen(group, link.name.c_str(), H5P_DEFAULT));
    if (!object || !IsNew(object.get())) return;
    const H5I_type_t type = H5Iget_type(object.get());
    if (type == H5I_DATASET) ShowDataset(object.get(), path);
    if (type == H5I_GROUP) ShowGroup(object.get(), link.name, path, depth);
  }

  void ShowDataset(hid_t dataset, const std::string& path) {
    const Id space(H5Dget_space(dataset));
    const hssize_t count = space ? H5Sget_simple_extent_npoints(space.get()) : -1;
    TreeEntry entry{path, "dataset", {}, {}, H5Dget_storage_size(dataset), {}};
    if (count >= 0) entry.count = count;
    entries_.push_back(std::move(entry));
  }

  void ShowGroup(hid_t group, const std::string& name, const std::string& path, int depth) {
    TreeEntry entry{path, KindOfGroup(name, depth), {}, {}, 0, {}};
    const Id header = OpenHeader(group);
    if (header) DescribeBlock(header.get(), entry);
    const std::size_t children = header ? 0 : LinksOf(group).size();
    if (!header) entry.count = static_cast<std::int64_t>(children);
    // A recursive listing tells the groups on the way by the paths of what they hold.
    const bool descends = children > 0 && options_.recursive && depth < kDeepest;
    if (descends) return List(group, path + "/", depth + 1);
    if (options_.sizes) entry.bytes = BytesBelow(group, depth);
    entries_.push_back(std::move(entry));
  }

  static std::string KindOfGroup(const std::string& name, int depth) {
    constexpr const char* kSections[] = {"constant", "singlestate", "multistate"};
    if (depth == 0 && std::ranges::find(kSections, name) != std::end(kSections)) return "section";
    return "group";
  }

  static void DescribeBlock(hid_t header, TreeEntry& entry) {
    entry.kind = "block";
    entry.key = Number(header, "block");
    if (!entry.key) return;
    const auto* known = std::ranges::find(kBlockKinds, *entry.key, &BlockKind::key);
    if (known == std::end(kBlockKinds)) return;
    entry.kind = known->kind;
    entry.count = Number(header, known->count);
  }

  /// What is met twice on the way counts once.
  std::uint64_t BytesBelow(hid_t group, int depth) {
    std::uint64_t bytes = 0;
    std::set<Token> counted;
    AddBytes(group, depth, counted, bytes);
    return bytes;
  }

  using Token = std::array<std::uint8_t, sizeof(H5O_token_t)>;

  static std::optional<Token> TokenOf(hid_t object) {
    H5O_info2_t info;
    if (H5Oget_info3(object, &info, H5O_INFO_BASIC) < 0) return std::nullopt;
    Token token;
    std::memcpy(token.data(), &info.token, token.size());
    return token;
  }

  static void AddBytes(hid_t group, int depth, std::set<Token>& counted, std::uint64_t& bytes) {
    if (depth >= kDeepest) return;
    for (const Link& link : LinksOf(group)) {
      if (link.type != H5L_TYPE_HARD) continue;
      const Id object(H5Oopen(group, link.name.c_str(), H5P_DEFAULT));
      const auto token = object ? TokenOf(object.get()) : std::nullopt;
      if (!token || !counted.insert(*token).second) continue;
      if (H5Iget_type(object.get()) == H5I_DATASET) bytes += H5Dget_storage_size(object.get());
      if (H5Iget_type(object.get()) == H5I_GROUP) AddBytes(object.get(), depth + 1, counted, bytes);
    }
  }

  bool IsNew(hid_t object) {
    const auto token = TokenOf(object);
    return token && seen_.insert(*token).second;
  }

  TreeOptions options_;
  std::set<Token> seen_;
  std::vector<TreeEntry> entries_;
};

std::string AbsolutePath(const std::string& place) {
  std::string path = place.starts_with('/') ? place : "/post/" + place;
  while (path.size() > 1 && path.back() == '/') path.pop_back();
  return path;
}

/// What DidYouMean() says of the first name of a path that is not there.
std::string NeighbourOf(hid_t file, const std::string& path) {
  for (std::size_t begin = 1; begin < path.size();) {
    const std::size_t end = std::min(path.find('/', begin), path.size());
    const std::string part = path.substr(0, end);
    if (!HasGroup(file, part.c_str())) {
      const Id parent(H5Gopen2(file, path.substr(0, begin).c_str(), H5P_DEFAULT));
      std::vector<std::string> names;
      for (const Link& link : LinksOf(parent.get())) names.push_back(link.name);
      return DidYouMean(path.substr(begin, end - begin), names);
    }
    begin = end + 1;
  }
  return {};
}

/// Opens a group without following links, which could lead out of the file.
Id OpenPlace(hid_t file, const std::string& path) {
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const std::string part = path.substr(0, end);
    if (part != "/" && !HasGroup(file, part.c_str())) return Id(H5I_INVALID_HID);
    if (end == std::string::npos) break;
  }
  return Id(H5Gopen2(file, path.c_str(), H5P_DEFAULT));
}

}  // namespace

std::vector<TreeEntry> ListTree(const std::string& file, const std::string& place, const TreeOptions& options) {
  (void)CheckResultFile(file);
  (void)H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);  // what cannot be read is told in our own words
  OH5Reader opened(file.c_str(), H5F_ACC_RDONLY);     // the library's door: whatever is open in the file goes before it
  if (opened.GetFileId() < 0) throw Trouble(file, "cannot be opened", "check your permissions");
  const std::string path = AbsolutePath(place);
  const Id group = OpenPlace(opened.GetFileId(), path);
  if (!group) {
    throw Trouble(file, "has no group " + path + NeighbourOf(opened.GetFileId(), path),
                  "orv ls " + file + " shows what there is");
  }
  Lister lister(options);
  const bool is_block = static_cast<bool>(OpenHeader(group.get()));
  if (is_block) {
    lister.ListBlock(group.get());
  } else {
    lister.List(group.get(), "", path == "/post" ? 0 : 1);
  }
  return lister.Take();
}

FilePlace SplitFilePlace(const std::string& argument) {
  namespace fs = std::filesystem;
  std::error_code error;
  if (fs::exists(argument, error)) return {argument, ""};
  for (std::size_t colon = argument.rfind(':'); colon != std::string::npos && colon > 0;
       colon = argument.rfind(':', colon - 1)) {
    if (fs::exists(argument.substr(0, colon), error)) return {argument.substr(0, colon), argument.substr(colon + 1)};
  }
  return {argument, ""};
}

}  // namespace orvio::program
