// The walk through a damaged file. Each object is looked at once and alone. A sound one stays as it is; a damaged group is
// read for the links that are left; anything else that is damaged is lost. In the end the groups that lost a link, or
// that are damaged themselves, are written anew.

#include "repairing/salvage.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <map>
#include <set>

#include "repairing/salvaged_groups.h"
#include "repairing/torn_file.h"
#include "repairing/torn_group.h"
#include "structure/file_bytes.h"
#include "structure/structure_check.h"

namespace orvio::program {
namespace {

using namespace structure;

constexpr std::size_t kDeepest = 128, kLongestPath = 3000;

class Salvage {
 public:
  Salvage(TornFile& file, const NameRules& rules, const std::function<void(const Loss&)>& lose)
      : file_(file), rules_(rules), lose_(lose) {}

  /// False when there is no root group.
  bool Read() {
    ReadExtension();
    const Frame& frame = file_.frame();
    if (!AddObject(frame.root, frame.root_note, "", 0).is_kept || groups_.empty()) return false;
    VisitPending();
    Adopt();
    for (const std::size_t torn : torn_) TellOfTorn(groups_[torn]);
    return true;
  }

  /// Of a file whose structure is sound, too, names may tell that something is gone.
  bool HasTornGroups() const { return !torn_.empty(); }

  SalvagedGroups& groups() { return found_; }

 private:
  static std::string Shown(const std::string& path) { return path.empty() ? "/" : path; }

  void Lose(const std::string& path, const std::string& why, std::uint64_t byte, bool is_partial = false) {
    lose_({Shown(path), why, byte, is_partial});
  }

  void ReadExtension() {
    if (file_.frame().extension == kUndefined) return;
    const auto fault = file_.LookAtExtension();
    if (!fault) return;
    Lose("", std::string("what the file says about itself: ") + fault->what, fault->offset, true);
    file_.frame().extension = kUndefined;
  }

  // Objects.

  /// Finds out what becomes of an object. A group is put on the list of those whose links are still to be followed.
  const Fate& AddObject(std::uint64_t address, const GroupNote& note, const std::string& path, std::size_t depth) {
    const auto known = fates_.find(address);
    if (known != fates_.end()) return known->second;
    fates_[address] = {false, "object needs itself", file_.ByteOf(address), 0};  // until more is known
    const Fate fate = Judge(address, note, path, depth);
    return fates_[address] = fate;
  }

  Fate Judge(std::uint64_t address, const GroupNote& note, const std::string& path, std::size_t depth) {
    if (address >= file_.End()) return {false, "link leads out of the file", Loss::kNoByte, 0};
    if (owned_.contains(address)) return {false, "structure has two owners", file_.ByteOf(address), 0};
    if (depth > kDeepest || path.size() > kLongestPath) return {false, "the path is too long", Loss::kNoByte, 0};
    const Look look = file_.LookAt(address, TornFile::Part::kWhole);
    const bool is_old = look.object.Has(MessageType::kSymbolTable), is_new = look.object.Has(MessageType::kLinkInfo);
    if (look.is_sound) {
      const Fate fate = Keep(address, look, is_old || is_new);
      return fate.is_kept && (is_old || is_new) ? AddGroup(address, look, path, depth) : fate;
    }
    return JudgeDamaged(address, look.fault, note, path, depth);
  }

  /// A damaged object that is a group may have links all the same.
  Fate JudgeDamaged(std::uint64_t address, const Fault& fault, const GroupNote& note, const std::string& path,
                    std::size_t depth) {
    const Fate lost = {false, fault.what, fault.offset, 0};
    const Look header = file_.LookAt(address, TornFile::Part::kHeader);
    const bool is_old = header.object.Has(MessageType::kSymbolTable),
               is_new = header.object.Has(MessageType::kLinkInfo);
    if (header.is_sound && (is_old || is_new)) {
      const Fate kept = Keep(address, header, true);
      if (!kept.is_kept) return lost;
      const Fate fate = AddGroup(address, header, path, depth);
      if (!fate.is_kept) return fate;
      groups_[fate.group - 1].has_attributes = file_.HasSoundAttributes(header.object);
      SetTorn(fate, fault);
      return fate;
    }
    if (note.tree == kUndefined) return lost;
    Group group;
    group.form = Group::Form::kHeadless;
    group.table = {note.tree, note.heap};
    TornLinks found = ReadOldLinks(file_, group.table);
    if (found.links.empty()) return lost;
    const Fate fate = AddGroup(address, std::move(group), std::move(found), path, depth);
    SetTorn(fate, fault);
    return fate;
  }

  /// Takes the structures of a sound object, and asks the same of all that it needs, which is not what a group links to.
  Fate Keep(std::uint64_t address, const Look& look, bool is_group) {
    for (const std::uint64_t claim : look.claims) {
      if (owned_.contains(claim) || fates_.contains(claim)) {
        return {false, "structure has two owners", file_.ByteOf(claim), 0};
      }
    }
    if (!is_group) {
      for (const std::uint64_t type : look.leads) {
        if (type == address) continue;
        const Fate needed = AddObject(type, {}, "", 1);
        if (!needed.is_kept) return needed;
      }
    }
    owned_.insert(look.claims.begin(), look.claims.end());
    return {true, {}, Loss::kNoByte, 0};
  }

  // Groups.

  Fate AddGroup(std::uint64_t address, const Look& look, const std::string& path, std::size_t depth) {
    Group group;
    const bool is_old = look.object.Has(MessageType::kSymbolTable);
    group.form = is_old ? Group::Form::kOld : Group::Form::kNew;
    group.table = look.object.table;
    group.table_at = look.object.table_at;
    TornLinks found = is_old ? ReadOldLinks(file_, group.table) : ReadNewLinks(file_, address, look.object);
    if (const Fate needed = AddTypes(look, found); !needed.is_kept) return needed;
    const bool is_in_order = !is_old || IsInOrder(found);
    if (!is_in_order && !found.fault) found.fault = Fault{file_.ByteOf(address), "names of links are out of order"};
    if (!found.fault && is_old && HasLostNames(group, found, path)) {
      found.fault = Fault{file_.ByteOf(group.table.heap), "names in the local heap have lost their links"};
    }
    const std::optional<Fault> fault = found.fault;
    const Fate fate = AddGroup(address, std::move(group), std::move(found), path, depth);
    if (look.is_sound && fault) SetTorn(fate, *fault);
    return fate;
  }

  Fate AddGroup(std::uint64_t address, Group group, TornLinks found, const std::string& path, std::size_t depth) {
    group.address = address;
    group.path = path;
    group.depth = depth;
    NameTheNameless(group, found);
    nodes_.insert(found.nodes.begin(), found.nodes.end());
    AddLinks(group, std::move(found.links));
    groups_.push_back(std::move(group));
    pending_.push_back(groups_.size() - 1);
    return {true, {}, Loss::kNoByte, groups_.size()};
  }

  /// A writer takes a name from the heap together with its link.
  bool HasLostNames(const Group& group, const TornLinks& found, const std::string& path) const {
    if (rules_.name_at(Shown(path), 0).empty()) return false;
    std::set<std::string> names;
    for (const TornLink& link : found.links) names.insert(link.name);
    return std::ranges::any_of(NamesInHeap(file_, group.table.heap), [&](const std::string& name) {
      return rules_.may_hold(Shown(path), name) && !names.contains(name);
    });
  }

  /// Readers look for names in old groups by halving.
  static bool IsInOrder(const TornLinks& found) {
    const auto name = [](const TornLink& link) -> const std::string& { return link.name; };
    return std::ranges::is_sorted(found.links, std::less_equal<>(), name);
  }

  /// Types that attributes of a group share with others.
  Fate AddTypes(const Look& look, const TornLinks& found) {
    std::set<std::uint64_t> targets;
    for (const TornLink& link : found.links) targets.insert(link.target);
    for (const std::uint64_t lead : look.leads) {
      if (targets.contains(lead)) continue;
      const Fate needed = AddObject(lead, {}, "", 1);
      if (!needed.is_kept) return needed;
    }
    return {true, {}, Loss::kNoByte, 0};
  }

  /// Entries whose names cannot be read, or cannot be right, get those of their positions.
  void NameTheNameless(const Group& group, TornLinks& found) {
    std::set<std::string> names;
    const bool is_numbered = found.fault && !rules_.name_at(Shown(group.path), 0).empty();
    for (TornLink& link : found.links) {
      if (is_numbered && !rules_.may_hold(Shown(group.path), link.name)) link.name.clear();
    }
    for (const TornLink& link : found.links) names.insert(link.name);
    for (std::size_t i = 0; i < found.links.size(); ++i) {
      TornLink& link = found.links[i];
      if (!link.name.empty()) continue;
      const std::string name = rules_.name_at(Shown(group.path), i);
      if (names.insert(name).second) link.name = name;
    }
    std::erase_if(found.links, [](const TornLink& link) { return link.name.empty(); });
  }

  /// Of two links with one name the first stays.
  static void AddLinks(Group& group, std::vector<TornLink> links) {
    std::set<std::string> names;
    for (const TornLink& link : group.links) names.insert(link.name);
    for (TornLink& link : links) {
      if (names.insert(link.name).second) group.links.push_back(std::move(link));
    }
  }

  void SetTorn(const Fate& fate, const Fault& fault) {
    if (fate.group == 0) return;
    groups_[fate.group - 1].is_rewritten = true;
    torn_.push_back(fate.group - 1);
    faults_.push_back(fault);
  }

  void TellOfTorn(const Group& group) {
    const std::size_t i = told_++;
    Lose(group.path, faults_[i].what, faults_[i].offset, true);
  }

  void VisitPending() {
    while (!pending_.empty()) {
      const std::size_t number = pending_.back();
      pending_.pop_back();
      VisitLinks(number);
    }
  }

  /// `groups_` may grow meanwhile. Links that lead nowhere are taken out.
  void VisitLinks(std::size_t number) {
    std::vector<TornLink> links = std::move(groups_[number].links);
    const std::string path = groups_[number].path;
    const std::size_t depth = groups_[number].depth;
    const auto is_lost = [&](const TornLink& link) {
      if (link.kind != TornLink::Kind::kHard) return false;
      const std::string place = path + "/" + link.name;
      const Fate& fate = AddObject(link.target, link.note, place, depth + 1);
      if (!fate.is_kept) Lose(place, fate.why, fate.byte == Loss::kNoByte ? file_.ByteOf(link.at) : fate.byte);
      return !fate.is_kept;
    };
    const bool has_lost = std::erase_if(links, is_lost) > 0;
    groups_[number].links = std::move(links);
    groups_[number].is_rewritten = groups_[number].is_rewritten || has_lost;
  }

  // What no tree leads to any more.

  /// Symbol nodes first: they have names. What is left after that are groups that only their own header tells of.
  void Adopt() {
    constexpr std::size_t kMostTries = 1 << 20;  // nobody has damage in so many groups
    const auto may_adopt = [&](std::size_t torn) {
      return groups_[torn].form != Group::Form::kNew && !rules_.name_at(Shown(groups_[torn].path), 0).empty();
    };
    if (std::ranges::none_of(torn_, may_adopt)) return;
    const Traces traces = FindTraces(file_);
    const std::vector<std::size_t> torn = torn_;
    std::size_t tries = 0;
    for (const std::size_t number : torn) {
      tries += traces.nodes.size() + traces.groups.size();
      if (!may_adopt(number) || tries > kMostTries) continue;
      for (const std::uint64_t node : traces.nodes) AdoptNode(number, node);
      VisitPending();
      AdoptGroups(number, traces.groups);
      VisitPending();
    }
  }

  void AdoptNode(std::size_t number, std::uint64_t node) {
    if (owned_.contains(node) || nodes_.contains(node)) return;
    Group& group = groups_[number];
    TornLinks found = ReadNode(file_, group.table.heap, node);
    const auto fits = [&](const TornLink& link) {
      return rules_.may_hold(Shown(group.path), link.name) && (IsLinked(group, link) || IsFree(group, link));
    };
    if (found.links.empty() || !std::ranges::all_of(found.links, fits)) return;
    nodes_.insert(node);
    const std::size_t before = group.links.size();
    AddLinks(group, std::move(found.links));
    if (group.links.size() > before) pending_.push_back(number);
  }

  /// Whether an object belongs to nobody, and may be one of this name by what it holds. One that is damaged may be any.
  bool IsFree(const Group& group, const TornLink& link) const {
    if (fates_.contains(link.target)) return false;
    const Look look = file_.LookAt(link.target, TornFile::Part::kHeader);
    if (!look.is_sound || !look.object.Has(MessageType::kSymbolTable)) return !look.is_sound;
    return HoldsWhatFits(look.object.table, group.path + "/" + link.name);
  }

  bool HoldsWhatFits(const SymbolTable& table, const std::string& path) const {
    const TornLinks held = ReadOldLinks(file_, table);
    return !held.links.empty() &&
           std::ranges::all_of(held.links, [&](const TornLink& link) { return rules_.may_hold(path, link.name); });
  }

  /// Groups that fit between those that are there. They were made in the order of their numbers, so that their order in
  /// the file tells which is which.
  void AdoptGroups(std::size_t number, const std::vector<std::uint64_t>& candidates) {
    const std::string path = groups_[number].path;
    std::map<std::string, std::uint64_t> known;
    for (const TornLink& link : groups_[number].links) known[link.name] = link.target;
    std::vector<std::uint64_t> orphans;
    for (const std::uint64_t address : candidates) {
      TornLink link;
      link.target = address;
      link.name = rules_.name_at(Shown(path), 0);
      const Look look = file_.LookAt(address, TornFile::Part::kWhole);
      if (look.is_sound && IsFree(groups_[number], link)) orphans.push_back(address);
    }
    const auto name_at = [&](std::size_t position) { return rules_.name_at(Shown(path), position); };
    const auto guess = [&](const TornLink& link) {
      Lose(path + "/" + link.name, "its number is a guess", file_.ByteOf(link.target), true);
    };
    std::vector<TornLink> adopted = Numbered(known, orphans, name_at, guess);
    if (adopted.empty()) return;
    AddLinks(groups_[number], std::move(adopted));
    pending_.push_back(number);
  }

  static bool IsLinked(const Group& group, const TornLink& link) {
    return std::ranges::any_of(
        group.links, [&](const TornLink& other) { return other.name == link.name && other.target == link.target; });
  }

  TornFile& file_;
  const NameRules& rules_;
  const std::function<void(const Loss&)>& lose_;
  SalvagedGroups found_;
  std::vector<Group>& groups_ = found_.groups;
  std::vector<std::size_t> pending_;
  std::vector<std::size_t> torn_;  ///< groups, and why each of them is on the list
  std::vector<Fault> faults_;
  std::size_t told_ = 0;
  std::map<std::uint64_t, Fate>& fates_ = found_.fates;
  std::set<std::uint64_t> owned_;  ///< structures of objects that stay
  std::set<std::uint64_t> nodes_;  ///< symbol nodes that were read for some group
};

void WriteAll(int descriptor, std::uint64_t offset, const std::string& bytes) {
  for (std::size_t done = 0; done < bytes.size();) {
    const ssize_t put = pwrite(descriptor, bytes.data() + done, bytes.size() - done, static_cast<off_t>(offset + done));
    if (put < 0 && errno != EINTR) throw std::runtime_error(std::string("cannot be written: ") + std::strerror(errno));
    if (put > 0) done += static_cast<std::size_t>(put);
  }
}

std::uint64_t SizeOf(int descriptor) {
  struct stat info = {};
  if (fstat(descriptor, &info) != 0) throw std::runtime_error(std::string("cannot be read: ") + std::strerror(errno));
  return static_cast<std::uint64_t>(info.st_size);
}

bool IsSound(int descriptor, Fault* fault) {
  FileBytes bytes(descriptor, SizeOf(descriptor));
  const auto found = CheckStructure(bytes);
  if (found && fault) *fault = *found;
  return !found;
}

}  // namespace

Structure MendStructure(int descriptor, const NameRules& rules, const std::function<void(const Loss&)>& lose) {
  constexpr std::uint64_t kUnit = 8;
  FileBytes bytes(descriptor, SizeOf(descriptor));
  TornFile file(bytes);
  if (!file.ReadFrame()) return Structure::kNotHdf5;
  const bool is_sound = IsSound(descriptor, nullptr);
  std::vector<Loss> losses;
  const std::function<void(const Loss&)> keep = [&](const Loss& loss) { losses.push_back(loss); };
  Salvage salvage(file, rules, keep);
  const bool has_root = salvage.Read();
  if (is_sound && !salvage.HasTornGroups()) return Structure::kSound;
  if (!has_root) return Structure::kBeyondRepair;
  std::ranges::for_each(losses, lose);
  Addition addition((file.End() + kUnit - 1) / kUnit * kUnit);
  const std::vector<Patch> patches = WriteGroups(file, salvage.groups(), addition);
  for (const Patch& patch : patches) WriteAll(descriptor, file.ByteOf(patch.address), patch.bytes);
  WriteAll(descriptor, file.ByteOf(addition.begin()), addition.bytes());
  if (ftruncate(descriptor, static_cast<off_t>(file.ByteOf(addition.begin() + addition.bytes().size()))) != 0) {
    throw std::runtime_error(std::string("cannot be written: ") + std::strerror(errno));
  }
  Fault fault;
  if (IsSound(descriptor, &fault)) return Structure::kMended;
  throw BeyondRepair(fmt::format("cannot be put right: {}, at byte {}", fault.what, fault.offset));
}

}  // namespace orvio::program
