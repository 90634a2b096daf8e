// States are found by their position: one that is lost in the middle leaves an empty group behind.

#include "repairing/result_tree.h"

#include <fmt/format.h>

#include <algorithm>
#include <cctype>
#include <stdexcept>
#include <utility>

namespace orvio::program {
namespace {

constexpr std::size_t kDigits = 12;
constexpr int kDeepest = 128;
constexpr const char* kParts[] = {"orvblock", "header", "data", "index"};
constexpr char kHeaderGroup[] = "/post/orvheader", kHeader[] = "/post/orvheader/orvheader";
constexpr std::size_t kHeaderWidth = 64;
constexpr std::string_view kMagic = "\x89ORV\r\n\x1A\n";

bool IsPart(std::string_view word) { return std::ranges::find(kParts, word) != std::end(kParts); }

std::string PathOfState(const std::string& name) { return fmt::format("{}/{}", kStatesGroup, name); }

bool IsBelow(const std::string& place, const std::string& path) {
  return place.starts_with(path) && (place.size() == path.size() || place[path.size()] == '/');
}

bool IsToldOf(const std::vector<Loss>& losses, const std::string& path) {
  return std::ranges::any_of(losses, [&](const Loss& loss) { return loss.place == path && !loss.is_partial; });
}

bool HasLost(const std::vector<Loss>& losses, const std::string& path) {
  return std::ranges::any_of(losses, [&](const Loss& loss) { return IsBelow(loss.place, path); });
}

OwnedId DiskAccess() {
  OwnedId list(H5Pcreate(H5P_FILE_ACCESS));
  const bool is_set = list && H5Pset_fapl_sec2(list.get()) >= 0 && H5Pset_vol(list.get(), H5VL_NATIVE, nullptr) >= 0 &&
                      H5Pset_fclose_degree(list.get(), H5F_CLOSE_STRONG) >= 0;
  if (!is_set) throw std::runtime_error("HDF5 cannot be used");
  return list;
}

/// Paths of blocks below a group, relative to it. A group that links lead to twice is entered once.
class BlockWalk {
 public:
  explicit BlockWalk(hid_t file) : file_(file) {}

  std::set<std::string> Run(const std::string& root) {
    Visit(root, "", 0);
    return std::move(blocks_);
  }

 private:
  void Visit(const std::string& path, const std::string& relative, int depth) {
    const OwnedId access = LinkAccess();
    const OwnedId group(H5Gopen2(file_, path.c_str(), access.get()));
    H5O_info2_t info = {};
    if (depth > kDeepest || !group || H5Oget_info3(group.get(), &info, H5O_INFO_BASIC) < 0) return;
    if (!seen_.insert(std::string(reinterpret_cast<const char*>(&info.token), sizeof info.token)).second) return;
    std::vector<std::string> children;
    for (const StoredLink& link : LinksOf(group.get()).value_or(std::vector<StoredLink>())) {
      if (link.type == H5L_TYPE_HARD) children.push_back(link.name);
    }
    if (std::ranges::any_of(children, IsPart)) {
      blocks_.insert(relative);
      return;
    }
    for (const std::string& child : children) {
      Visit(path + "/" + child, relative.empty() ? child : relative + "/" + child, depth + 1);
    }
  }

  hid_t file_;
  std::set<std::string> seen_, blocks_;
};

}  // namespace

bool IsStateName(const std::string& name) {
  constexpr std::string_view kPrefix = "state";
  return name.size() == kPrefix.size() + kDigits && name.starts_with(kPrefix) &&
         std::all_of(name.begin() + kPrefix.size(), name.end(), [](unsigned char c) { return std::isdigit(c) != 0; });
}

std::string StateName(std::uint64_t number) { return fmt::format("state{:012}", number); }

std::string BlockOf(const std::string& place) {
  constexpr int kSectionDepth = 3;
  int depth = 0;
  for (std::size_t begin = 1; begin <= place.size();) {
    const std::size_t end = std::min(place.find('/', begin), place.size());
    if (++depth > kSectionDepth && IsPart(std::string_view(place).substr(begin, end - begin))) {
      return place.substr(0, begin - 1);
    }
    begin = end + 1;
  }
  return {};
}

ResultTree::ResultTree(const std::string& path, Use use)
    : file_(H5Fopen(path.c_str(), use == Use::kLook ? H5F_ACC_RDONLY : H5F_ACC_RDWR, DiskAccess().get())) {
  if (file_ < 0) throw BeyondRepair("cannot be opened by HDF5 although its structure is sound");
}

ResultTree::~ResultTree() {
  if (file_ >= 0) (void)H5Fclose(file_);  // nobody wants the changes
}

bool ResultTree::IsGroup(const std::string& path) const {
  const OwnedId access = LinkAccess();
  return static_cast<bool>(OwnedId(H5Gopen2(file_, path.c_str(), access.get())));
}

bool ResultTree::Create(const std::string& path) {
  if (IsGroup(path)) return false;
  (void)Remove(path);  // something that is no group is in the way
  const OwnedId made(H5Gcreate2(file_, path.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
  if (!made) throw std::runtime_error("the group " + path + " cannot be made");
  return true;
}

bool ResultTree::HasSoundHeader() const {
  const OwnedId access = LinkAccess();
  const OwnedId header(H5Oopen(file_, kHeader, access.get()));
  if (!header || H5Iget_type(header.get()) != H5I_DATASET) return false;
  const StoredDataset stored = LookAt(header.get(), kHeader);
  const bool is_text = stored.place == StoredDataset::Place::kHere && stored.type.stored_class == StoredClass::kText &&
                       !stored.type.is_variable && stored.count == 1 && stored.type.size == kHeaderWidth;
  if (!is_text) return false;
  std::string bytes(kHeaderWidth, '\0');
  const OwnedId type(H5Dget_type(header.get()));
  if (H5Dread(header.get(), type.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data()) < 0) return false;
  const std::string_view behind = std::string_view(bytes).substr(kMagic.size());
  return bytes.starts_with(kMagic) || behind.starts_with("2008") || behind.starts_with("2010");
}

/// Files up to version 1.2 have their variables there, and nobody else does.
bool ResultTree::IsSplit() const { return IsGroup("/post/constant/variables"); }

void ResultTree::WriteHeader(bool is_split) {
  (void)Create(kHeaderGroup);
  (void)Remove(kHeader);
  std::string bytes(kMagic);
  bytes += is_split ? "1 2 0" : "2 2 0";
  bytes += '\0';
  bytes.resize(kHeaderWidth, ' ');
  const OwnedId type(H5Tcopy(H5T_C_S1));
  const OwnedId space(H5Screate(H5S_SCALAR));
  if (H5Tset_size(type.get(), kHeaderWidth) < 0) throw std::runtime_error("HDF5 cannot be used");
  const OwnedId made(H5Dcreate2(file_, kHeader, type.get(), space.get(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
  if (!made || H5Dwrite(made.get(), type.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data()) < 0) {
    throw std::runtime_error("the file header cannot be written");
  }
}

std::vector<Loss> ResultTree::MakeFrame() {
  std::vector<Loss> lost;
  const bool is_split = IsSplit();
  if (!HasSoundHeader()) {
    WriteHeader(is_split);
    lost.push_back({kHeader, fmt::format("the file header is damaged; it says {} now", is_split ? "1.2" : "2.2"),
                    Loss::kNoByte, true});
  }
  for (const char* section : {"/post/constant", kStatesGroup}) {
    if (Create(section)) lost.push_back({section, "there is nothing left of it", Loss::kNoByte, false});
  }
  const std::vector<std::string> old_groups = {"variables"};
  const std::vector<std::string> new_groups = {"variable", "variablegroup"};
  for (const char* name : {"system", "connectivities", "collector", "indices", "attributes", "text"}) {
    (void)Create(fmt::format("/post/constant/{}", name));
  }
  for (const std::string& name : is_split ? old_groups : new_groups) (void)Create("/post/constant/" + name);
  return lost;
}

bool ResultTree::Remove(const std::string& path) {
  const OwnedId access = LinkAccess();
  if (path.size() < 2 || H5Lexists(file_, path.c_str(), access.get()) <= 0) return false;
  return H5Ldelete(file_, path.c_str(), access.get()) >= 0;
}

std::vector<std::string> ResultTree::States() const {
  const OwnedId access = LinkAccess();
  const OwnedId group(H5Gopen2(file_, kStatesGroup, access.get()));
  std::vector<std::string> names;
  if (!group) return names;
  for (const StoredLink& link : LinksOf(group.get()).value_or(std::vector<StoredLink>())) {
    if (IsGroup(PathOfState(link.name))) names.push_back(link.name);
  }
  return names;
}

std::set<std::string> ResultTree::BlocksBelow(const std::string& path) const { return BlockWalk(file_).Run(path); }

std::vector<Loss> ResultTree::FillStates(const std::vector<Loss>& losses) {
  constexpr std::uint64_t kMostFilled = 1000;
  std::set<std::uint64_t> there;
  for (const std::string& name : States()) {
    if (IsStateName(name)) there.insert(std::stoull(name.substr(name.size() - kDigits)));
  }
  std::vector<Loss> filled;
  if (there.empty() || !HasLost(losses, kStatesGroup)) return filled;
  // Where nothing was lost of the states themselves, a gap is of their writer's making.
  const bool fills_gaps = IsToldOf(losses, kStatesGroup) || std::ranges::any_of(losses, [](const Loss& loss) {
                            return loss.is_partial && loss.place == kStatesGroup;
                          });
  const std::uint64_t last = *there.rbegin();
  const bool is_possible = last - there.size() <= kMostFilled;
  for (std::uint64_t number = 1; number < last && is_possible; ++number) {
    const std::string path = PathOfState(StateName(number));
    if (there.contains(number) || (!fills_gaps && !IsToldOf(losses, path))) continue;
    (void)Create(path);
    if (!IsToldOf(losses, path)) filled.push_back({path, "there is nothing left of it", Loss::kNoByte, false});
  }
  return filled;
}

/// A state of the same kind as others lacks none of the blocks that all of them have.
bool ResultTree::IsIncomplete(const std::vector<std::string>& states) const {
  std::set<std::string> of_all;
  bool is_first = true;
  for (std::size_t i = 0; i + 1 < states.size(); ++i) {
    const std::set<std::string> blocks = BlocksBelow(PathOfState(states[i]));
    if (blocks.empty()) continue;
    if (is_first) of_all = blocks;
    std::erase_if(of_all, [&](const std::string& block) { return !blocks.contains(block); });
    is_first = false;
  }
  const std::set<std::string> last = BlocksBelow(PathOfState(states.back()));
  return !std::ranges::includes(last, of_all);
}

std::vector<Loss> ResultTree::TrimStates(const std::vector<Loss>& losses, bool keep_incomplete) {
  std::vector<Loss> trimmed;
  std::vector<std::string> states = States();
  const auto remove_last = [&](const char* why) {
    const std::string path = PathOfState(states.back());
    if (!Remove(path)) return false;
    if (why && !IsToldOf(losses, path)) trimmed.push_back({path, why, Loss::kNoByte, false});
    states.pop_back();
    return true;
  };
  const auto is_empty = [&] { return BlocksBelow(PathOfState(states.back())).empty(); };
  const auto has_lost = [&] { return HasLost(losses, PathOfState(states.back())); };
  if (!keep_incomplete && !states.empty() && !is_empty() && (has_lost() || IsIncomplete(states))) {
    (void)remove_last("the state is not complete; --keep-incomplete keeps what is left of it");
  }
  while (!states.empty() && is_empty() && has_lost() && remove_last("all of its blocks are lost")) {
  }
  return trimmed;
}

ResultTree::Count ResultTree::CountAll() const {
  Count count;
  for (const std::string& state : States()) {
    const std::size_t blocks = BlocksBelow(PathOfState(state)).size();
    count.blocks += blocks;
    if (blocks > 0) ++count.states;
  }
  for (const char* section : {"/post/constant", "/post/multistate"}) count.blocks += BlocksBelow(section).size();
  return count;
}

bool ResultTree::Close() {
  const bool is_flushed = H5Fflush(file_, H5F_SCOPE_GLOBAL) >= 0;
  return H5Fclose(std::exchange(file_, H5I_INVALID_HID)) >= 0 && is_flushed;
}

}  // namespace orvio::program
