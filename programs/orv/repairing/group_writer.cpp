// Old groups in full, new groups by way of their object header: it keeps its address, so that no link to it has to change.

#include "repairing/group_writer.h"

#include <algorithm>
#include <map>
#include <span>

#include "structure/jenkins.h"
#include "structure/memory_bytes.h"

namespace orvio::program {
namespace {

using namespace structure;

constexpr std::uint64_t kUnit = 8;

std::uint64_t RoundedUp(std::uint64_t size) { return (size + kUnit - 1) / kUnit * kUnit; }

std::uint32_t ChecksumOf(const std::string& bytes) {
  MemoryBytes source(bytes.data(), bytes.size());
  FileView view(source);
  return structure::Checksum(view, 0, bytes.size());
}

/// Texts of a local heap, each where an entry finds it.
class HeapTexts {
 public:
  HeapTexts() { (void)Add(""); }
  std::uint64_t Add(const std::string& text) {
    const std::uint64_t at = bytes_.size();
    bytes_ += text;
    bytes_.resize(RoundedUp(bytes_.size() + 1), '\0');
    return at;
  }
  const std::string& bytes() const { return bytes_; }

 private:
  std::string bytes_;
};

/// A child of a tree node, and where in the heap the last name below it is.
struct Child {
  std::uint64_t address;
  std::uint64_t last_name;
};

std::uint64_t AppendHeap(Addition& to, const Frame& frame, const std::string& texts) {
  constexpr std::uint64_t kNoFree = 1;
  const std::uint64_t prefix = 8U + 2U * frame.widths.length + frame.widths.offset;
  const std::uint64_t address = to.Append(std::string(prefix, '\0'));
  const std::uint64_t data = to.Append(texts);
  Fields head(frame.widths);
  head.Bytes("HEAP").Number(0, 4).Length(texts.size()).Length(kNoFree).Address(data);
  to.Replace(address, head.bytes());
  return address;
}

class TableWriter {
 public:
  TableWriter(Addition& to, const Frame& frame) : to_(to), frame_(frame) {}

  std::vector<Child> AppendNodes(const std::vector<WrittenLink>& links, HeapTexts& texts) {
    const std::size_t most = 2U * frame_.ranks.group_leaf;
    std::vector<Child> nodes;
    for (std::size_t first = 0; first < links.size(); first += most) {
      nodes.push_back(AppendNode({links.data() + first, std::min(most, links.size() - first)}, most, texts));
    }
    return nodes;
  }

  /// Level upon level, until one node holds all. A group without links has a node without children.
  std::uint64_t AppendTree(std::vector<Child> children) {
    for (unsigned level = 0;; ++level) {
      children = AppendLevel(children, level);
      if (children.size() == 1) return children[0].address;
    }
  }

 private:
  Child AppendNode(std::span<const WrittenLink> links, std::size_t most, HeapTexts& texts) {
    constexpr std::uint32_t kNothing = 0, kSoftLink = 2;
    constexpr unsigned kScratch = 16;
    Fields node(frame_.widths);
    node.Bytes("SNOD").Number(1, 2).Number(links.size(), 2);
    std::uint64_t name = 0;
    for (const WrittenLink& link : links) {
      name = texts.Add(link.name);
      node.Number(name, frame_.widths.offset).Address(link.target);
      if (link.path.empty()) {
        node.Number(kNothing, 4).Zeros(4 + kScratch);
      } else {
        node.Number(kSoftLink, 4).Zeros(4).Number(texts.Add(link.path), 4).Zeros(kScratch - 4);
      }
    }
    node.Zeros((most - links.size()) * (2U * frame_.widths.offset + 24U));
    return {to_.Append(node.bytes()), name};
  }

  std::vector<Child> AppendLevel(const std::vector<Child>& children, unsigned level) {
    const std::size_t most = 2U * frame_.ranks.group_node;
    const std::size_t size = NodeSize(most);
    const std::size_t count = children.empty() ? 1 : (children.size() + most - 1) / most;
    const std::uint64_t begin = to_.Append(std::string(count * size, '\0'));
    std::vector<Child> nodes;
    for (std::size_t i = 0; i < count; ++i) {
      const std::size_t first = i * most, used = std::min(most, children.size() - first);
      const std::uint64_t left = i == 0 ? kUndefined : begin + (i - 1) * size;
      const std::uint64_t right = i + 1 == count ? kUndefined : begin + (i + 1) * size;
      Fields node(frame_.widths);
      node.Bytes("TREE").Number(0, 1).Number(level, 1).Number(used, 2).Address(left).Address(right);
      node.Length(first == 0 ? 0 : children[first - 1].last_name);
      for (std::size_t k = first; k < first + used; ++k)
        node.Address(children[k].address).Length(children[k].last_name);
      to_.Replace(begin + i * size, node.bytes());
      nodes.push_back({begin + i * size, used == 0 ? 0 : children[first + used - 1].last_name});
    }
    return nodes;
  }

  std::size_t NodeSize(std::size_t most) const {
    const std::size_t offset = frame_.widths.offset, length = frame_.widths.length;
    return RoundedUp(8 + 2 * offset + most * (offset + length) + length);
  }

  Addition& to_;
  const Frame& frame_;
};

/// Where the first messages of a header of version 2 are, and how much room they have.
struct FirstChunk {
  std::string prefix;
  std::uint64_t room = 0;
  bool has_order = false;
};

bool ReadFirstChunk(FileView& view, std::uint64_t header, FirstChunk& chunk) {
  enum Flags { kSizeWidth = 3, kOrder = 4, kLimits = 0x10, kTimes = 0x20 };
  Cursor in = view.At(header, 6);
  const bool known = in.Is("OHDR") && in.U8() == 2;
  const unsigned flags = in.U8();
  if (!known || !in.ok()) return false;
  const unsigned width = 1U << (flags & kSizeWidth);
  const std::uint64_t size = 6U + ((flags & kTimes) != 0 ? 16U : 0U) + ((flags & kLimits) != 0 ? 4U : 0U) + width;
  Cursor prefix = view.At(header, size);
  if (!prefix.ok()) return false;
  chunk.prefix.assign(reinterpret_cast<const char*>(prefix.data()), prefix.left());
  prefix.Skip(size - width);
  chunk.room = prefix.Number(width);
  chunk.has_order = (flags & kOrder) != 0;
  return true;
}

std::string TextOfBytes(const Cursor& bytes) {
  return std::string(reinterpret_cast<const char*>(bytes.data()), bytes.left());
}

/// The message that tells where many links are, for a group that has them all in its header.
std::string WithoutDenseLinks(std::string body) {
  constexpr unsigned kTracksOrder = 1;
  constexpr std::size_t kHead = 2, kOrder = 8;
  const bool tracks = body.size() > 1 && (static_cast<unsigned char>(body[1]) & kTracksOrder) != 0;
  const std::size_t addresses = std::min(body.size(), kHead + (tracks ? kOrder : 0));
  std::fill(body.begin() + static_cast<std::ptrdiff_t>(addresses), body.end(), '\xff');
  return body;
}

class MessageWriter {
 public:
  MessageWriter(const Frame& frame, bool has_order) : fields_(frame.widths), has_order_(has_order) {}

  unsigned HeadSize() const { return has_order_ ? 6 : 4; }
  void Add(MessageType type, unsigned flags, const std::string& body) {
    fields_.Number(static_cast<unsigned>(type), 1).Number(body.size(), 2).Number(flags, 1);
    if (has_order_) fields_.Number(0, 2);
    fields_.Bytes(body);
  }
  Fields& fields() { return fields_; }

 private:
  Fields fields_;
  bool has_order_;
};

}  // namespace

Fields& Fields::Number(std::uint64_t value, unsigned width) {
  for (unsigned i = 0; i < width; ++i) bytes_ += static_cast<char>(i < 8 ? value >> (8 * i) & 0xff : 0);
  return *this;
}

Fields& Fields::Bytes(const std::string& bytes) {
  bytes_ += bytes;
  return *this;
}

Fields& Fields::Zeros(std::size_t count) {
  bytes_.append(count, '\0');
  return *this;
}

Fields& Fields::Checksum() { return Number(ChecksumOf(bytes_), 4); }

std::uint64_t Addition::Append(const std::string& bytes) {
  const std::uint64_t address = begin_ + bytes_.size();
  bytes_ += bytes;
  bytes_.resize(RoundedUp(bytes_.size()), '\0');
  return address;
}

void Addition::Replace(std::uint64_t address, const std::string& bytes) {
  bytes_.replace(static_cast<std::size_t>(address - begin_), bytes.size(), bytes);
}

SymbolTable AppendTable(Addition& to, const Frame& frame, std::vector<WrittenLink> links) {
  std::ranges::sort(links, {}, &WrittenLink::name);
  HeapTexts texts;
  TableWriter writer(to, frame);
  SymbolTable table;
  table.tree = writer.AppendTree(writer.AppendNodes(links, texts));
  table.heap = AppendHeap(to, frame, texts.bytes());
  return table;
}

std::string TableMessage(const Frame& frame, const SymbolTable& table) {
  return Fields(frame.widths).Address(table.tree).Address(table.heap).bytes();
}

std::string GroupHeader(const Frame& frame, const SymbolTable& table) {
  constexpr std::uint64_t kHead = 8;
  const std::string message = TableMessage(frame, table);
  const std::uint64_t room = RoundedUp(message.size());
  Fields header(frame.widths);
  header.Number(1, 2).Number(1, 2).Number(1, 4).Number(kHead + room, 4).Zeros(4);
  header.Number(static_cast<unsigned>(MessageType::kSymbolTable), 2).Number(room, 2).Zeros(4).Bytes(message);
  return header.Zeros(room - message.size()).bytes();
}

Patch AppendLinkMessages(Addition& to, const TornFile& file, std::uint64_t header,
                         const std::vector<std::string>& links, bool has_attributes) {
  constexpr std::size_t kLongestBody = 0xffff;
  constexpr std::uint64_t kMostRoom = 1 << 24;
  FreshWalk walk(file);
  FirstChunk chunk;
  if (!ReadFirstChunk(walk.view, header, chunk) || chunk.room > kMostRoom) return {};
  const Frame& frame = file.frame();
  MessageWriter rest(frame, chunk.has_order);
  rest.fields().Bytes("OCHK");
  HeaderMessages messages(walk);
  Message message;
  if (!messages.Start(header, HeaderMessages::Use::kOwn)) return {};
  while (messages.Next(message)) {
    if (message.type == MessageType::kLink) continue;
    if (message.type == MessageType::kAttributeInfo && !has_attributes) continue;
    std::string body = TextOfBytes(walk.view.At(message.body, message.size));
    if (message.type == MessageType::kLinkInfo) body = WithoutDenseLinks(std::move(body));
    rest.Add(message.type, message.shared ? 2 : 0, body);
  }
  if (walk.fault()) return {};
  for (const std::string& link : links) rest.Add(MessageType::kLink, 0, link);
  rest.fields().Checksum();
  const std::uint64_t address = to.Append(rest.fields().bytes());

  MessageWriter first(frame, chunk.has_order);
  first.fields().Bytes(chunk.prefix);
  first.Add(MessageType::kContinuation, 0, Fields(frame.widths).Address(address).Length(rest.fields().size()).bytes());
  const std::uint64_t whole = chunk.prefix.size() + chunk.room;
  if (first.fields().size() > whole) return {};
  while (whole - first.fields().size() >= first.HeadSize()) {
    const std::uint64_t left = whole - first.fields().size() - first.HeadSize();
    first.Add(MessageType::kNone, 0,
              std::string(static_cast<std::size_t>(std::min<std::uint64_t>(left, kLongestBody)), '\0'));
  }
  first.fields().Zeros(static_cast<std::size_t>(whole - first.fields().size())).Checksum();
  return {header, first.fields().bytes()};
}

}  // namespace orvio::program
