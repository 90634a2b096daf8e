// Reading goes on behind a fault: what else is there is still wanted. Each structure is read once, as the walk sees to.

#include "repairing/torn_group.h"

#include <algorithm>
#include <map>

#include "structure/btree_v2.h"
#include "structure/fractal_heap.h"
#include "structure/link.h"
#include "structure/local_heap.h"
#include "structure/symbol_entry.h"

namespace orvio::program {
namespace {

using namespace structure;

constexpr std::uint64_t kLongestName = 4096, kNodeHead = 8;

/// A name that a path can hold.
bool IsName(const std::string& name) {
  return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos;
}

class OldGroupReader {
 public:
  OldGroupReader(const TornFile& file, TornLinks& found) : walk_(file), found_(found) {}

  void Read(const SymbolTable& table) {
    ReadHeap(table.heap);
    ReadTree(table.tree);
    if (walk_.fault()) found_.fault = walk_.fault();
  }

  /// The heap must be sound.
  static void ReadNames(const TornFile& file, std::uint64_t address, std::vector<std::string>& names) {
    constexpr std::uint64_t kUnit = 8;
    FreshWalk walk(file);
    LocalHeap heap;
    if (!ReadLocalHeap(walk, address, heap)) return;
    const std::map<std::uint64_t, std::uint64_t> free = FreeParts(walk, address, heap);
    for (std::uint64_t at = 0; at < heap.size;) {
      if (const auto part = free.find(at); part != free.end()) {
        at += std::max(part->second, kUnit);
        continue;
      }
      const std::uint64_t most = std::min(kLongestName, heap.size - at);
      const std::uint64_t length = walk.view.TextLength(heap.data + at, most);
      const Cursor bytes = walk.view.At(heap.data + at, length);
      if (bytes.ok() && length < most) names.emplace_back(reinterpret_cast<const char*>(bytes.data()), length);
      at += length / kUnit * kUnit + kUnit;
    }
  }

  /// A node that no tree leads to must be whole, or it is taken for something else.
  void ReadNodeAlone(std::uint64_t heap, std::uint64_t node) {
    ReadHeap(heap);
    is_alone_ = true;
    if (!ReadNode(node)) found_.links.clear();
    const auto name = [](const TornLink& link) -> const std::string& { return link.name; };
    if (!std::ranges::is_sorted(found_.links, std::less_equal<>(), name)) found_.links.clear();
  }

 private:
  /// Sizes of the free parts of a sound heap by their places.
  static std::map<std::uint64_t, std::uint64_t> FreeParts(Walk& walk, std::uint64_t address, const LocalHeap& heap) {
    const unsigned width = walk.view.widths().length;
    std::map<std::uint64_t, std::uint64_t> parts;
    Cursor head = walk.view.At(address, 8U + 2U * width);
    head.Skip(8U + width);
    for (std::uint64_t free = head.Length(); free < heap.size && free != 1;) {
      Cursor in = walk.view.At(heap.data + free, 2U * width);
      const std::uint64_t next = in.Length();
      if (!parts.emplace(free, in.Length()).second) break;
      free = next;
    }
    return parts;
  }

  /// A heap that is cut short or has a wrong list of free parts has names all the same.
  void ReadHeap(std::uint64_t address) {
    LocalHeap heap;
    (void)ReadLocalHeap(walk_, address, heap);
    const std::uint64_t prefix = 8U + 2U * walk_.view.widths().length + walk_.view.widths().offset;
    const bool has_names = walk_.view.At(address, prefix).Is("HEAP") && heap.data < walk_.view.end();
    names_ = heap.data;
    names_size_ = has_names ? std::min(heap.size, walk_.view.end() - heap.data) : 0;
  }

  std::optional<std::string> NameAt(std::uint64_t text) {
    if (text >= names_size_ || (is_alone_ && !IsBegin(text))) return std::nullopt;
    const std::uint64_t most = std::min(kLongestName, names_size_ - text);
    const std::uint64_t length = walk_.view.TextLength(names_ + text, most);
    if (length >= most) return std::nullopt;
    const Cursor bytes = walk_.view.At(names_ + text, length);
    if (!bytes.ok()) return std::nullopt;
    return std::string(reinterpret_cast<const char*>(bytes.data()), static_cast<std::size_t>(length));
  }

  /// Whether a name begins there; any entry finds some letters in the middle of one.
  bool IsBegin(std::uint64_t text) {
    constexpr std::uint64_t kUnit = 8;
    return text > 0 && text % kUnit == 0 && walk_.view.At(names_ + text - 1, 1).U8() == 0;
  }

  void ReadTree(std::uint64_t root) {
    constexpr int kHighest = 64;
    struct Node {
      std::uint64_t address;
      int below;  ///< its level is less
    };
    std::vector<Node> pending = {{root, kHighest}};
    while (!pending.empty()) {
      const Node node = pending.back();
      pending.pop_back();
      std::vector<std::uint64_t> children;
      const int level = ReadTreeNode(node.address, node.below, children);
      if (level > 0) std::ranges::reverse(children);  // the first one is the next
      for (const std::uint64_t child : children) {
        if (level == 0) {
          (void)ReadNode(child);
        } else {
          pending.push_back({child, level});
        }
      }
    }
  }

  /// Answers the level.
  int ReadTreeNode(std::uint64_t address, int below, std::vector<std::uint64_t>& children) {
    const unsigned offset = walk_.view.widths().offset, length = walk_.view.widths().length;
    Cursor in = walk_.view.At(address, 8U + 2U * offset);
    const bool known = in.Is("TREE") && in.U8() == 0;
    const int level = in.U8();
    const std::uint64_t used = in.U16(), most = 2U * walk_.ranks.group_node;
    if (!known || !in.ok()) return Refuse(address, "B-tree node is not where it should be");
    if (level >= below || used > most) return Refuse(address, "B-tree node is of a wrong level or holds too much");
    if (!walk_.Claim(address, 8U + 2U * offset + used * (offset + length) + length)) return 0;
    for (std::uint64_t i = 0; i < used; ++i) {
      Cursor child = walk_.view.At(address + 8U + 2U * offset + i * (offset + length) + length, offset);
      children.push_back(child.Address());
    }
    return level;
  }

  bool ReadNode(std::uint64_t node) {
    Cursor in = walk_.view.At(node, kNodeHead);
    const bool known = in.Is("SNOD") && in.U8() == 1;
    in.Skip(1);
    const std::uint64_t count = in.U16();
    const bool fits = known && in.ok() && count <= 2U * walk_.ranks.group_leaf;
    if (!fits) return walk_.Refuse(node, "symbol node is not where it should be");
    const std::uint64_t size = SymbolEntry::Size(walk_.view.widths());
    if (!walk_.Claim(node, kNodeHead + count * size)) return false;
    found_.nodes.push_back(node);
    bool is_whole = true;
    for (std::uint64_t i = 0; i < count; ++i) is_whole = ReadEntry(node + kNodeHead + i * size, size) && is_whole;
    return is_whole;
  }

  bool ReadEntry(std::uint64_t at, std::uint64_t size) {
    Cursor in = walk_.view.At(at, size);
    SymbolEntry entry;
    ParseSymbolEntry(in, entry);
    const std::string name = NameAt(entry.name).value_or("");
    const bool has_name = IsName(name);
    if (!has_name) (void)walk_.Refuse(at, "link has no name");
    if (!in.ok() || (!has_name && (is_alone_ || entry.kind == SymbolEntry::kSoftLink))) return false;
    if (entry.kind > SymbolEntry::kSoftLink) return walk_.Refuse(at, "symbol table entry is of an unknown kind");
    TornLink link;
    if (has_name) link.name = name;
    link.at = at;
    if (entry.kind == SymbolEntry::kSoftLink) {
      const auto path = NameAt(entry.target);
      if (!path || path->empty()) return walk_.Refuse(at, "soft link has no target");
      link.kind = TornLink::Kind::kSoft;
      link.path = *path;
    } else {
      link.target = entry.header;
      link.note = {entry.tree, entry.heap};
    }
    found_.links.push_back(std::move(link));
    return true;
  }

  int Refuse(std::uint64_t address, const char* what) {
    (void)walk_.Refuse(address, what);
    return 0;
  }

  FreshWalk walk_;
  TornLinks& found_;
  bool is_alone_ = false;
  std::uint64_t names_ = 0, names_size_ = 0;
};

/// Adds the link of a message. False when it is not sound.
bool AddLink(Walk& walk, std::uint64_t at, const Cursor& body, TornLinks& found) {
  Link parsed;
  if (!walk.Accept(at, ParseLink(body, parsed))) return false;
  TornLink link;
  link.message.assign(reinterpret_cast<const char*>(body.data()), body.left());
  link.name = link.message.substr(parsed.name_at, parsed.name_size);
  if (!IsName(link.name)) return walk.Refuse(at, "link has no name");
  link.at = at;
  link.kind = TornLink::Kind::kOther;
  if (parsed.kind == static_cast<unsigned>(Link::Kind::kSoft)) link.kind = TornLink::Kind::kSoft;
  if (parsed.kind == static_cast<unsigned>(Link::Kind::kHard)) {
    link.kind = TornLink::Kind::kHard;
    link.target = parsed.address;
  }
  found.links.push_back(std::move(link));
  return true;
}

class DenseLinks : public RecordVisitor {
 public:
  DenseLinks(Walk& walk, FractalHeap& heap, TornLinks& found) : walk_(walk), heap_(heap), found_(found) {}

  bool Record(std::uint64_t at, Cursor record) override {
    constexpr std::uint64_t kHash = 4, kId = 7;
    record.Skip(kHash);
    FractalHeap::Place place;
    if (!heap_.Locate(at + kHash, record.Take(kId), place)) return false;
    return walk_.Spend(place.address, place.size) &&
           AddLink(walk_, place.address, walk_.view.At(place.address, place.size), found_);
  }

 private:
  Walk& walk_;
  FractalHeap& heap_;
  TornLinks& found_;
};

}  // namespace

TornLinks ReadOldLinks(const TornFile& file, const SymbolTable& table) {
  TornLinks found;
  OldGroupReader(file, found).Read(table);
  return found;
}

TornLinks ReadNode(const TornFile& file, std::uint64_t heap, std::uint64_t node) {
  TornLinks found;
  OldGroupReader(file, found).ReadNodeAlone(heap, node);
  return found;
}

std::vector<std::string> NamesInHeap(const TornFile& file, std::uint64_t heap) {
  std::vector<std::string> names;
  OldGroupReader::ReadNames(file, heap, names);
  return names;
}

TornLinks ReadNewLinks(const TornFile& file, std::uint64_t header, const Object& object) {
  TornLinks found;
  FreshWalk walk(file);
  HeaderMessages messages(walk);
  Message message;
  if (messages.Start(header, HeaderMessages::Use::kOwn)) {
    while (messages.Next(message)) {
      if (message.type != MessageType::kLink) continue;
      (void)AddLink(walk, message.address, walk.view.At(message.body, message.size), found);
    }
  }
  if (object.links.heap != kUndefined) {
    constexpr std::uint64_t kHash = 4, kId = 7;
    FractalHeap heap(walk);
    DenseLinks visitor(walk, heap, found);
    if (heap.Read(object.links.heap)) (void)WalkTree2(walk, object.links.by_name, {5, kHash + kId}, visitor);
  }
  if (walk.fault()) found.fault = walk.fault();
  return found;
}

Traces FindTraces(const TornFile& file) {
  constexpr std::uint64_t kUnit = 8, kPiece = 64 * 1024, kHeader = 40;
  constexpr std::uint64_t kTableMessage = 0x100011;  // its type and, behind that, its size
  Traces found;
  FileView view(file.source());
  view.SetSpace(file.frame().place, file.End(), file.frame().widths);
  for (std::uint64_t at = 0; at < file.End(); at += kPiece) {
    Cursor in = view.At(at, std::min(kPiece + kHeader, file.End() - at));
    while (in.left() >= kUnit && in.taken() < kPiece) {
      Cursor here = in;
      const std::uint64_t address = at + in.taken();
      in.Skip(kUnit);
      const std::uint64_t first = here.U64();
      const bool is_node = (first & 0xffffffffffffU) == 0x0001444f4e53U;  // "SNOD", version 1
      const std::uint64_t count = first >> 48;
      if (is_node && count > 0 && count <= 2U * file.frame().ranks.group_leaf) found.nodes.push_back(address);
      if ((first & 0xffffffffU) != 0x10001) continue;  // a header of version 1 with one message
      const bool is_group = here.U32() == 24 && here.U32() == 0 && here.U32() == kTableMessage && here.ok();
      if (is_group) found.groups.push_back(address);
    }
  }
  return found;
}

}  // namespace orvio::program
