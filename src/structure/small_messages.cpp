// Messages of a few fields.

#include "structure/small_messages.h"

namespace orvio::structure {
namespace {

constexpr Verdict kFillCutShort = "fill value message is cut short";

/// A signed size, of which only one above 0 is followed by a value.
Verdict ParseFillBytes(Cursor& in, FillValue& fill) {
  const std::uint32_t size = in.U32();
  fill.size = size > 0x7fffffffU ? 0 : size;
  fill.at = static_cast<std::uint32_t>(in.taken());
  in.Skip(fill.size);
  return in.ok() ? nullptr : kFillCutShort;
}

Verdict JudgeFillTimes(unsigned allocation, unsigned write) {
  return allocation <= 3 && write <= 2 ? nullptr : "fill value message has unknown times";
}

Verdict ParseFillValue3(Cursor& in, FillValue& fill) {
  constexpr unsigned kUndefinedFlag = 0x10;
  constexpr unsigned kHasValue = 0x20;
  const unsigned flags = in.U8();
  if (!in.ok()) return kFillCutShort;
  const bool both = (flags & kUndefinedFlag) != 0 && (flags & kHasValue) != 0;
  if (flags > 0x3f || both) return "fill value message has contradicting flags";
  if (const Verdict bad = JudgeFillTimes(flags & 3, (flags >> 2) & 3)) return bad;
  return (flags & kHasValue) != 0 ? ParseFillBytes(in, fill) : nullptr;
}

}  // namespace

Verdict ParseFillValue(Cursor in, FillValue& fill) {
  fill = FillValue();
  const unsigned version = in.U8();
  if (version == 3) return ParseFillValue3(in, fill);
  if (version != 1 && version != 2) return "fill value message has an unknown version";
  const unsigned allocation = in.U8();
  const unsigned write = in.U8();
  const bool defined = in.U8() != 0;
  if (!in.ok()) return kFillCutShort;
  if (const Verdict bad = JudgeFillTimes(allocation, write)) return bad;
  return version == 1 || defined ? ParseFillBytes(in, fill) : nullptr;
}

Verdict ParseOldFillValue(Cursor in, FillValue& fill) { return ParseFillBytes(in, fill); }

Verdict ParseSymbolTable(Cursor in, SymbolTable& table) {
  table.tree = in.Address();
  table.heap = in.Address();
  return in.ok() ? nullptr : "symbol table message is cut short";
}

Verdict ParseContinuation(Cursor in, Continuation& continuation) {
  continuation.address = in.Address();
  continuation.size = in.Length();
  return in.ok() ? nullptr : "continuation message is cut short";
}

Verdict ParseTreeRanks(Cursor in, std::uint16_t& chunk, std::uint16_t& node, std::uint16_t& leaf) {
  const unsigned version = in.U8();
  chunk = in.U16();
  node = in.U16();
  leaf = in.U16();
  const bool sound = in.ok() && version == 0 && chunk > 0 && node > 0 && leaf > 0;
  return sound ? nullptr : "message about B-trees is not sound";
}

Verdict ParseFileSpace(Cursor in) {
  constexpr unsigned kPaged = 1;
  constexpr unsigned kStrategies = 4;
  const unsigned version = in.U8();
  const unsigned strategy = in.U8();
  const unsigned persistent = in.U8();
  in.Length();  // threshold
  in.Length();  // page size
  in.U16();     // page end
  in.Address();
  if (!in.ok() || version != 1 || strategy >= kStrategies) return "message about file space is not sound";
  if (strategy == kPaged) return "file is organised in pages";
  return persistent != 0 ? "file keeps its free space" : nullptr;
}

Verdict ParseComment(Cursor in) {
  in.Text();
  return in.ok() ? nullptr : "comment does not end";
}

Verdict ParseTime(Cursor in) {
  const unsigned version = in.U8();
  in.Skip(3 + 4);
  return in.ok() && version == 1 ? nullptr : "modification time is not sound";
}

Verdict ParseOldTime(Cursor in) {
  in.Skip(16);
  return in.ok() ? nullptr : "modification time is not sound";
}

Verdict ParseReferenceCount(Cursor in) {
  const unsigned version = in.U8();
  in.Skip(4);
  return in.ok() && version == 0 ? nullptr : "reference count is not sound";
}

}  // namespace orvio::structure
