// Which message is which, what may stand how often, and what an object must have.

#include "structure/object.h"

#include <cstring>

#include "structure/attribute.h"
#include "structure/attribute_check.h"
#include "structure/dataset.h"
#include "structure/dense.h"
#include "structure/group_old.h"

namespace orvio::structure {
namespace {

bool MayRepeat(MessageType type) {
  return type == MessageType::kAttribute || type == MessageType::kLink || type == MessageType::kBogus ||
         type == MessageType::kComment || type == MessageType::kTime || type == MessageType::kOldTime;
}

}  // namespace

void ObjectVisitor::Clear(std::uint64_t address) {
  object_.address = address;
  object_.seen = 0;
  object_.pipeline.count = 0;
  object_.fill = FillValue();
  object_.table = SymbolTable();
  object_.links = Dense();
  object_.attributes = Dense();
  object_.shares_type = false;
  object_.time_at = 0;
  plain_values_.clear();
  other_messages_ = 0;
  attributes_.clear();
  has_more_attributes_ = false;
}

bool ObjectVisitor::TakeMessages() {
  if (!messages_.Start(object_.address, HeaderMessages::Use::kOwn)) return false;
  Message message;
  while (messages_.Next(message)) {
    if (!TakeOnce(message)) return false;
  }
  return !walk_.fault();
}

bool ObjectVisitor::TakeOnce(const Message& message) {
  if (object_.Has(message.type) && !MayRepeat(message.type)) {
    return walk_.Refuse(message.address, "object holds a message twice");
  }
  object_.seen |= 1U << static_cast<unsigned>(message.type);
  return Take(message);
}

bool ObjectVisitor::Take(const Message& message) {
  if (message.shared) {
    ++other_messages_;
    return TakeShared(message);
  }
  if (message.type == MessageType::kAttribute) return TakeAttribute(message);
  if (message.type != MessageType::kSymbolTable) ++other_messages_;
  if (message.type == MessageType::kLink) return TakeLink(message);
  const Cursor body = walk_.view.At(message.body, message.size);
  return walk_.Accept(message.address, TakeDescription(message, body));
}

Verdict ObjectVisitor::TakeDescription(const Message& message, const Cursor& body) {
  Cursor in = body;
  Verdict bad = nullptr;
  switch (message.type) {
    case MessageType::kDataspace:
      return ParseDataspace(in, object_.space);
    case MessageType::kDatatype:
      return ParseDatatype(in, object_.type);
    case MessageType::kOldFillValue: {
      FillValue old;  // only for readers that do not know the newer message
      return ParseOldFillValue(in, old);
    }
    case MessageType::kFillValue:
      bad = ParseFillValue(in, object_.fill);
      object_.fill_at = message.body + object_.fill.at;
      return bad;
    case MessageType::kLayout:
      object_.layout = Layout();
      bad = ParseLayout(in, object_.layout);
      object_.layout_at = message.body;
      object_.values = message.body + object_.layout.compact_at;
      return bad;
    case MessageType::kFilters:
      return ParsePipeline(in, object_.pipeline);
    case MessageType::kSymbolTable:
      object_.table_at = message.body;
      return ParseSymbolTable(in, object_.table);
    case MessageType::kLinkInfo:
      return ParseLinkInfo(in, object_.links);
    case MessageType::kAttributeInfo:
      return ParseAttributeInfo(in, object_.attributes);
    default:
      return TakeRest(message, body);
  }
}

Verdict ObjectVisitor::TakeRest(const Message& message, const Cursor& body) {
  std::uint16_t ranks[3];
  switch (message.type) {
    case MessageType::kExternalFiles:
      return "dataset keeps its values in other files";
    case MessageType::kGroupInfo:
      return ParseGroupInfo(body);
    case MessageType::kComment:
      return ParseComment(body);
    case MessageType::kTime:
      object_.time_at = message.body;
      return ParseTime(body);
    case MessageType::kOldTime:
      return ParseOldTime(body);
    case MessageType::kSharedTable:
      return "file keeps messages in a table of its own";
    case MessageType::kTreeRanks:
      return ParseTreeRanks(body, ranks[0], ranks[1], ranks[2]);
    case MessageType::kDriver:
      return "file was written by a driver of its own";
    case MessageType::kReferenceCount:
      return ParseReferenceCount(body);
    case MessageType::kFileSpace:
      return ParseFileSpace(body);
    case MessageType::kCacheImage:
      return "file holds an image of a metadata cache";
    default:
      return nullptr;
  }
}

bool ObjectVisitor::TakeShared(const Message& message) {
  std::uint64_t address = kUndefined;
  if (!walk_.Accept(message.address, ParseShared(walk_.view.At(message.body, message.size), address))) return false;
  has_more_attributes_ = true;
  if (message.type != MessageType::kDatatype) return walk_.Refuse(message.address, "message of this kind is shared");
  object_.shares_type = true;
  return ReadCommittedType(walk_, message.address, address, object_.type);
}

bool ObjectVisitor::TakeLink(const Message& message) {
  return CheckLink(walk_, message.address, walk_.view.At(message.body, message.size));
}

bool ObjectVisitor::TakeAttribute(const Message& message) {
  if (!CheckAttribute(walk_, message.body, message.size)) return false;
  const std::uint32_t value_at = walk_.known_attributes.ValueAt(walk_.view.At(message.body, message.size));
  if (value_at == 0) {
    ++other_messages_;
  } else {
    plain_values_.push_back({message.body + value_at, message.size - value_at});
  }
  if (walk_.catalogue) RecordAttribute(message);
  return true;
}

/// One that stands twice is found where HDF5 finds it first.
void ObjectVisitor::RecordAttribute(const Message& message) {
  Attribute attribute;
  const Cursor in = walk_.view.At(message.body, std::min<std::uint64_t>(message.size, FileView::kLongestPart));
  const bool is_told = ParseAttribute(in, attribute) == nullptr;
  if (!is_told) has_more_attributes_ = true;
  if (!is_told) return;
  const auto* name = reinterpret_cast<const char*>(in.data()) + attribute.name_at;
  const std::uint32_t id = walk_.catalogue->NameId({name, std::strlen(name)});
  ArrayShape shape = attribute.type_is_committed ? ArrayShape() : ShapeOf(attribute.space, attribute.type);
  if (shape.kind == ElementKind::kOther) shape = ArrayShape();  // without a value
  attributes_.push_back({walk_.catalogue->NameOf(id), message.body + attribute.value_at, shape});
}

void ObjectVisitor::RecordAttributes() {
  if (!walk_.catalogue || has_more_attributes_ || object_.Has(MessageType::kAttributeInfo)) return;
  std::vector<std::uint8_t> bytes;
  std::vector<CatalogueBuilder::Value> values = attributes_;
  for (CatalogueBuilder::Value& value : values) {
    const Cursor in = walk_.view.At(value.at, value.shape.points * value.shape.element_size);
    value.at = bytes.size();
    if (!in.ok()) return;
    bytes.insert(bytes.end(), in.data(), in.data() + in.left());
  }
  walk_.catalogue->SetAttributes(walk_.catalogue->RowsId(values), bytes);
}

void ObjectVisitor::RecordValues() {
  const bool in_one_piece = object_.layout.kind == Layout::Kind::kContiguous && !object_.shares_type;
  if (!walk_.catalogue || !in_one_piece) return;
  walk_.catalogue->SetValues(walk_.catalogue->ShapeId(object_.space, object_.type), object_.layout.address);
}

bool ObjectVisitor::VisitGroup(const GroupNote& note) {
  if (!object_.Has(MessageType::kSymbolTable)) return true;  // a note may be older than the group's present form
  const SymbolTable& table = object_.table;
  if (note.tree != kUndefined && (note.tree != table.tree || note.heap != table.heap)) {
    return walk_.Refuse(object_.address, "symbol table entry disagrees with its group");
  }
  return WalkOldGroup(walk_, table);
}

bool ObjectVisitor::VisitDense() {
  return WalkDenseLinks(walk_, object_.links) && WalkDenseAttributes(walk_, object_.attributes);
}

/// The whole header of an object if it is small, of version 1 and in one piece; a failed cursor if not.
Cursor ObjectVisitor::SmallHeader(std::uint64_t address) {
  constexpr std::uint64_t kPrefix = 16, kSmallest = 100;  // no dataset has a smaller one
  if (walk_.view.widths().offset != KnownDatasets::kAddress) return {};
  Cursor prefix = walk_.view.At(address, kPrefix);
  const bool is_old = prefix.U8() == 1;
  prefix.Skip(1 + 2 + 4);  // reserved, number of messages, number of links
  const std::uint64_t size = prefix.U32();
  if (!is_old || size < kSmallest || size > KnownDatasets::kLargest - kPrefix) return {};
  return walk_.view.At(address, kPrefix + size);
}

bool ObjectVisitor::VisitKnown(const KnownDatasets::Known& known, std::uint64_t address, const Cursor& header) {
  if (!walk_.ClaimObject(address, known.size)) return false;
  Cursor in = header;
  in.Skip(known.address_at);
  const std::uint64_t values = in.Address();
  if (walk_.catalogue) walk_.catalogue->SetValues(known.shape, values);
  if (values == kUndefined || known.value_bytes == 0) return true;
  return walk_.view.Holds(values, known.value_bytes) || walk_.Refuse(address, "values pass the end of the file");
}

void ObjectVisitor::KeepDataset() {
  constexpr std::uint64_t kBeforeAddress = 2, kBeforeTime = 4;  // versions and what goes with them
  const Object& found = object_;
  const bool is_plain = messages_.IsSimple() && found.layout.kind == Layout::Kind::kContiguous &&
                        found.layout.version == 3 && !found.shares_type &&
                        found.type.type_class != TypeClass::kVariable && !found.Has(MessageType::kAttribute) &&
                        !found.Has(MessageType::kLink);
  const Cursor header = is_plain ? SmallHeader(found.address) : Cursor();
  if (!header.ok()) return;
  const std::size_t address_at = found.layout_at - found.address + kBeforeAddress;
  const std::size_t time_at = found.time_at == 0 ? header.left() : found.time_at - found.address + kBeforeTime;
  if (time_at < address_at + KnownDatasets::kAddress) return;
  KnownDatasets::Known& known = datasets_.Find(header);
  KnownDatasets::Keep(known, header);
  known.address_at = address_at;
  known.time_at = time_at;
  known.value_bytes = found.space.points * found.type.size;  // which was seen to fit
  if (walk_.catalogue) known.shape = walk_.catalogue->ShapeId(found.space, found.type);
}

/// Where all messages of an object are, if its header is of version 1 and leads there with the first message.
Continuation ObjectVisitor::OnlyContinuation(std::uint64_t address) {
  constexpr std::uint64_t kHead = 8, kBody = 16;
  if (walk_.view.widths().offset != 8 || walk_.view.widths().length != 8) return {};
  Cursor in = walk_.view.At(address, KnownGroups::kFirst);
  const bool is_old = in.U8() == 1;
  in.Skip(1);  // reserved
  const bool is_counted = in.U16() != 0;
  in.Skip(4);  // number of links
  const bool is_one = in.U32() == kHead + kBody && is_counted;
  in.Skip(4);
  const bool goes_on = in.U64() == (kBody << 16 | static_cast<std::uint64_t>(MessageType::kContinuation));
  Continuation rest;
  rest.address = in.Address();
  rest.size = in.Length();
  const bool fits = rest.size >= KnownGroups::kSmallest && rest.size <= KnownGroups::kLargest;
  return in.ok() && is_old && is_one && goes_on && fits ? rest : Continuation();
}

bool ObjectVisitor::VisitKnown(const KnownGroups::Known& known, std::uint64_t address, const Continuation& rest,
                               const GroupNote& note) {
  if (walk_.catalogue) {
    const Cursor messages = walk_.view.At(rest.address, rest.size);
    if (messages.ok()) walk_.catalogue->SetAttributes(known.rows, {messages.data(), messages.left()});
  }
  Cursor table = walk_.view.At(rest.address + known.table_at(), KnownGroups::kTable);
  object_.address = address;
  object_.seen = 1U << static_cast<unsigned>(MessageType::kSymbolTable);
  return walk_.ClaimObject(address, KnownGroups::kFirst) && walk_.Claim(rest.address, rest.size) &&
         walk_.Accept(address, ParseSymbolTable(table, object_.table)) && VisitGroup(note);
}

void ObjectVisitor::KeepGroup() {
  const bool is_plain = messages_.GoesOnOnce() && object_.Has(MessageType::kSymbolTable) && other_messages_ == 0;
  const Continuation rest = is_plain ? OnlyContinuation(object_.address) : Continuation();
  const Cursor messages = walk_.view.At(rest.address, rest.size);
  if (rest.size == 0 || !messages.ok()) return;
  KnownGroups::Known& known = groups_.Find(messages);
  known.Keep(messages, object_.table_at - rest.address);
  for (const Values& values : plain_values_) known.MayDiffer(values.address - rest.address, values.size);
  if (!walk_.catalogue) return;
  for (CatalogueBuilder::Value& value : attributes_) value.at -= rest.address;
  known.rows = has_more_attributes_ ? Catalogue::kNone : walk_.catalogue->RowsId(attributes_);
}

bool ObjectVisitor::Visit(std::uint64_t address, const GroupNote& note) {
  if (walk_.catalogue) walk_.catalogue->Visit(address);
  if (const Cursor header = SmallHeader(address); header.ok()) {
    const KnownDatasets::Known& known = datasets_.Find(header);
    if (KnownDatasets::Is(known, header)) return VisitKnown(known, address, header);
  } else if (const Continuation rest = OnlyContinuation(address); rest.size > 0) {
    const Cursor messages = walk_.view.At(rest.address, rest.size);
    if (messages.ok() && groups_.Find(messages).Is(messages)) {
      return VisitKnown(groups_.Find(messages), address, rest, note);
    }
  }
  Clear(address);
  if (!TakeMessages()) return false;
  if (!VisitDense()) return false;
  if (object_.Has(MessageType::kSymbolTable) || object_.Has(MessageType::kLinkInfo)) {
    RecordAttributes();
    if (!VisitGroup(note)) return false;
    KeepGroup();
    return true;
  }
  if (object_.Has(MessageType::kLayout)) {
    if (!CheckDataset(walk_, object_)) return false;
    RecordValues();
    KeepDataset();
    return true;
  }
  const bool is_type = object_.Has(MessageType::kDatatype) && !object_.Has(MessageType::kDataspace);
  return is_type || walk_.Refuse(address, "object is no group, dataset or type");
}

bool ObjectVisitor::VisitHeader(std::uint64_t address) {
  Clear(address);
  return TakeMessages();
}

bool ObjectVisitor::VisitExtension(std::uint64_t address) {
  Clear(address);
  if (!walk_.Claim(address, 0) || !messages_.Start(address, HeaderMessages::Use::kOwn)) return false;
  Message message;
  while (messages_.Next(message)) {
    if (!TakeOnce(message)) return false;
    if (message.type != MessageType::kTreeRanks) continue;
    TreeRanks& ranks = walk_.ranks;
    const Cursor body = walk_.view.At(message.body, message.size);
    if (!walk_.Accept(message.address, ParseTreeRanks(body, ranks.chunk_node, ranks.group_node, ranks.group_leaf))) {
      return false;
    }
  }
  return !walk_.fault();
}

}  // namespace orvio::structure
