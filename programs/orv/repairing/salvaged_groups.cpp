// Writing of what was salvaged: new structures for groups, and the few fields that lead to them.

#include "repairing/salvaged_groups.h"

#include <algorithm>

namespace orvio::program {
namespace {

using namespace structure;

class GroupsWriter {
 public:
  GroupsWriter(const TornFile& file, SalvagedGroups& found) : file_(file), groups_(found.groups), fates_(found.fates) {}

  std::vector<Patch> Write(Addition& to) {
    MarkRewritten();
    for (Group& group : groups_) {
      if (group.form == Group::Form::kHeadless) {
        group.new_address = to.Append(GroupHeader(file_.frame(), SymbolTable()));
      }
    }
    for (Group& group : groups_) {
      if (group.is_rewritten) Rewrite(group, to);
    }
    PatchNotes();
    PatchSuperblock(to);
    return std::move(patches_);
  }

 private:
  std::uint64_t AddressNow(std::uint64_t target) const {
    const Group* group = GroupAt(target);
    return group && group->new_address != kUndefined ? group->new_address : target;
  }
  const Group* GroupAt(std::uint64_t target) const {
    const auto fate = fates_.find(target);
    return fate == fates_.end() || fate->second.group == 0 ? nullptr : &groups_[fate->second.group - 1];
  }

  /// Who links to a group without a header links to another address from here on.
  void MarkRewritten() {
    for (Group& group : groups_) {
      const auto moves = [&](const TornLink& link) {
        const Group* to = link.kind == TornLink::Kind::kHard ? GroupAt(link.target) : nullptr;
        return to && to->form == Group::Form::kHeadless;
      };
      group.is_rewritten =
          group.is_rewritten || group.form == Group::Form::kHeadless || std::ranges::any_of(group.links, moves);
    }
  }

  void Rewrite(Group& group, Addition& to) {
    if (group.form == Group::Form::kNew) return RewriteMessages(group, to);
    std::vector<WrittenLink> links;
    for (const TornLink& link : group.links) links.push_back({link.name, AddressNow(link.target), link.path});
    group.table = AppendTable(to, file_.frame(), std::move(links));
    if (group.form == Group::Form::kHeadless) {
      to.Replace(group.new_address, GroupHeader(file_.frame(), group.table));
    } else {
      patches_.push_back({group.table_at, TableMessage(file_.frame(), group.table)});
    }
  }

  void RewriteMessages(const Group& group, Addition& to) {
    std::vector<std::string> messages;
    for (const TornLink& link : group.links) {
      std::string message = link.message;
      if (link.kind == TornLink::Kind::kHard) {
        // The address ends the message.
        const std::string address = Fields(file_.frame().widths).Address(AddressNow(link.target)).bytes();
        message.replace(message.size() - address.size(), address.size(), address);
      }
      messages.push_back(std::move(message));
    }
    const Patch patch = AppendLinkMessages(to, file_, group.address, messages, group.has_attributes);
    if (patch.bytes.empty()) throw BeyondRepair("a group has no room for a note of where it goes on");
    patches_.push_back(patch);
  }

  /// Entries that remember the table of the group they lead to must not remember another one.
  void PatchNotes() {
    for (const Group& group : groups_) {
      if (group.is_rewritten || group.form != Group::Form::kOld) continue;
      for (const TornLink& link : group.links) {
        const Group* to = GroupAt(link.target);
        if (link.note.tree == kUndefined || !to || to->form == Group::Form::kNew) continue;
        if (link.note.tree == to->table.tree && link.note.heap == to->table.heap) continue;
        constexpr unsigned kKindAndScratch = 24;
        const std::uint64_t kind_at = link.at + 2U * file_.frame().widths.offset;
        patches_.push_back({kind_at, std::string(kKindAndScratch, '\0')});
      }
    }
  }

  void PatchSuperblock(const Addition& to) {
    const Frame& frame = file_.frame();
    const Group& root = groups_.front();
    const std::uint64_t end = frame.stored_base + to.begin() + to.bytes().size();
    const auto set = [&](std::uint64_t at, std::uint64_t value) {
      patches_.push_back({at, Fields(frame.widths).Address(value).bytes()});
    };
    set(frame.end_at, end);
    if (frame.version < 2) {
      set(frame.free_space_at, kUndefined);
      set(frame.driver_at, kUndefined);
      constexpr std::uint32_t kGroupEntry = 1;
      Fields entry(frame.widths);
      entry.Number(0, frame.widths.offset).Address(AddressNow(root.address));
      const bool has_table = root.form != Group::Form::kNew;
      entry.Number(has_table ? kGroupEntry : 0, 4).Zeros(4);
      if (has_table) entry.Bytes(TableMessage(frame, root.table));
      patches_.push_back({frame.root_at, entry.bytes()});
      return;
    }
    set(frame.extension_at, frame.extension);
    set(frame.root_at, AddressNow(root.address));
    SealSuperblock();
  }

  /// Flags of a writer that never closed the file are taken away, and the checksum follows.
  void SealSuperblock() {
    constexpr std::uint64_t kFlagsAt = 11;
    constexpr std::size_t kChecksum = 4;
    const Frame& frame = file_.frame();
    std::string bytes(static_cast<std::size_t>(frame.size), '\0');
    (void)file_.source().Read(frame.place, bytes.data(), bytes.size());
    bytes[kFlagsAt] = '\0';
    const auto is_of_superblock = [&](const Patch& patch) { return patch.address < frame.size; };
    for (const Patch& patch : patches_) {
      if (is_of_superblock(patch))
        bytes.replace(static_cast<std::size_t>(patch.address), patch.bytes.size(), patch.bytes);
    }
    std::erase_if(patches_, is_of_superblock);
    bytes.resize(bytes.size() - kChecksum);
    patches_.push_back({0, Fields(frame.widths).Bytes(bytes).Checksum().bytes()});
  }

  const TornFile& file_;
  std::vector<Group>& groups_;
  const std::map<std::uint64_t, Fate>& fates_;
  std::vector<Patch> patches_;
};

}  // namespace

std::vector<Patch> WriteGroups(const TornFile& file, SalvagedGroups& found, Addition& to) {
  return GroupsWriter(file, found).Write(to);
}

std::vector<TornLink> Numbered(const std::map<std::string, std::uint64_t>& known,
                               const std::vector<std::uint64_t>& orphans,
                               const std::function<std::string(std::size_t position)>& name_at,
                               const std::function<void(const TornLink& link)>& guess) {
  std::vector<TornLink> numbered;
  std::uint64_t below = 0;           // the address of the one before
  std::vector<std::string> missing;  // names since then
  const auto take = [&](std::uint64_t above, bool is_last) {
    std::vector<std::uint64_t> between;
    for (const std::uint64_t orphan : orphans) {
      if (orphan > below && orphan < above) between.push_back(orphan);
    }
    if (between.size() > missing.size()) return;
    // Where some are gone for good, nobody knows which.
    const std::size_t gone = is_last ? 0 : missing.size() - between.size();
    for (std::size_t i = 0; i < between.size(); ++i) {
      TornLink link;
      link.target = between[i];
      link.name = missing[gone + i];
      if (gone > 0) guess(link);
      numbered.push_back(std::move(link));
    }
  };
  std::size_t position = 0, found = 0;
  for (; found < known.size() && position <= known.size() + orphans.size(); ++position) {
    const std::string name = name_at(position);
    const auto here = known.find(name);
    if (here == known.end()) {
      missing.push_back(name);
      continue;
    }
    ++found;
    take(here->second, false);
    below = here->second;
    missing.clear();
  }
  if (found < known.size()) return numbered;
  for (std::size_t i = 0; i < orphans.size(); ++i) missing.push_back(name_at(position + i));
  take(kUndefined, true);
  return numbered;
}

}  // namespace orvio::program
