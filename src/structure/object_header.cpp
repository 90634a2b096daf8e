// Versions 1 and 2 of object headers.

#include "structure/object_header.h"

#include "structure/jenkins.h"

namespace orvio::structure {
namespace {

constexpr std::uint64_t kChecksum = 4;
constexpr unsigned kAnyNumber = 0xffff'ffff;  // of messages

/// Whether messages of a type that is known may be shared with other objects. Of a bogus one HDF5 does not ask.
bool IsSharable(unsigned type) {
  switch (static_cast<MessageType>(type)) {
    case MessageType::kDataspace:
    case MessageType::kDatatype:
    case MessageType::kOldFillValue:
    case MessageType::kFillValue:
    case MessageType::kFilters:
    case MessageType::kAttribute:
    case MessageType::kBogus:
      return true;
    default:
      return false;
  }
}

}  // namespace

bool HeaderMessages::TakeFirst(std::uint64_t address, std::uint64_t size) { return walk_.ClaimObject(address, size); }

bool HeaderMessages::TakeFurther(std::uint64_t address, std::uint64_t size) {
  return use_ == Use::kOwn ? walk_.Claim(address, size) : walk_.ClaimObject(address, size);
}

bool HeaderMessages::Start(std::uint64_t address, Use use) {
  use_ = use;
  continuations_.clear();
  at_ = end_ = 0;
  left_ = kAnyNumber;
  followed_ = 0;
  Cursor first = walk_.view.At(address, 4);
  if (first.Is("OHDR")) return StartVersion2(address);
  return StartVersion1(address);
}

bool HeaderMessages::StartVersion1(std::uint64_t address) {
  constexpr std::uint64_t kPrefix = 16;
  Cursor in = walk_.view.At(address, kPrefix);
  version_ = 1;
  head_size_ = 8;
  const unsigned version = in.U8();
  in.Skip(1);  // reserved
  left_ = in.U16();
  in.Skip(4);  // number of links
  const std::uint64_t size = in.U32();
  if (!in.ok()) return walk_.Refuse(address, "object header passes the end of the file");
  if (version != 1) return walk_.Refuse(address, "object header has an unknown version");
  at_ = address + kPrefix;
  end_ = at_ + size;
  return TakeFirst(address, kPrefix + size);
}

bool HeaderMessages::StartVersion2(std::uint64_t address) {
  enum Flags { kSizeWidth = 3, kOrder = 4, kLimits = 0x10, kTimes = 0x20, kAll = 0x3f };
  Cursor in = walk_.view.At(address, 6);
  in.Skip(4);
  version_ = in.U8();
  const unsigned flags = in.U8();
  if (!in.ok()) return walk_.Refuse(address, "object header passes the end of the file");
  if (version_ != 2 || flags > kAll) return walk_.Refuse(address, "object header has an unknown version");
  head_size_ = (flags & kOrder) != 0 ? 6 : 4;
  const unsigned width = 1U << (flags & kSizeWidth);
  const std::uint64_t before = 6U + ((flags & kTimes) != 0 ? 16U : 0U) + ((flags & kLimits) != 0 ? 4U : 0U);
  std::uint64_t size = 0;
  Cursor rest = walk_.view.At(address, before + width);
  rest.Skip(before);
  size = rest.Number(width);
  at_ = address + before + width;
  if (!rest.ok() || !walk_.view.Holds(at_, size))
    return walk_.Refuse(address, "object header passes the end of the file");
  end_ = at_ + size;
  const std::uint64_t whole = before + width + size + kChecksum;
  if (!TakeFirst(address, whole)) return false;
  return EndsWithChecksum(walk_.view, address, whole) ||
         walk_.Refuse(address, "object header does not match its checksum");
}

bool HeaderMessages::StartContinuation() {
  const Chunk chunk = continuations_.back();
  continuations_.pop_back();
  if (!TakeFurther(chunk.address, chunk.size)) return false;
  at_ = chunk.address;
  end_ = chunk.address + chunk.size;
  left_ = kAnyNumber;  // HDF5 relies on the number for the first chunk alone
  if (version_ == 1) return true;
  if (!walk_.view.At(chunk.address, 4).Is("OCHK") || chunk.size < 4 + kChecksum) {
    return walk_.Refuse(chunk.address, "object header does not go on where it says");
  }
  at_ += 4;
  end_ -= kChecksum;
  return EndsWithChecksum(walk_.view, chunk.address, chunk.size) ||
         walk_.Refuse(chunk.address, "object header does not match its checksum");
}

bool HeaderMessages::ReadHead(Message& message, unsigned& type, unsigned& flags) {
  Cursor in = walk_.view.At(at_, std::min<std::uint64_t>(head_size_, end_ - at_));
  type = version_ == 1 ? in.U16() : in.U8();
  message.size = in.U16();
  flags = in.U8();
  message.address = at_;
  message.body = at_ + head_size_;
  if (!in.ok() || end_ - at_ < head_size_ || message.size > end_ - message.body) {
    return walk_.Refuse(at_, "object header message passes its chunk");
  }
  at_ = message.body + message.size;
  return true;
}

bool HeaderMessages::Count(const Message& message) {
  if (left_ == kAnyNumber) return true;
  if (left_ == 0) return walk_.Refuse(message.address, "object header counts fewer messages than it holds");
  --left_;
  return true;
}

bool HeaderMessages::JudgeFlags(const Message& message, unsigned type, unsigned flags) {
  enum Flags {
    kShared = 2,
    kNeverShared = 4,
    kFailWriting = 8,
    kMark = 16,
    kWasUnknown = 32,
    kSharable = 64,
    kFail = 128
  };
  const bool known = type < static_cast<unsigned>(MessageType::kCount);
  if (!known && (flags & (kFail | kFailWriting)) != 0) {
    return walk_.Refuse(message.address, "object holds an unknown message that must be known");
  }
  if (known && (flags & kSharable) != 0 && !IsSharable(type)) {
    return walk_.Refuse(message.address, "object header message says that it can be shared");
  }
  const bool both = (flags & kShared) != 0 && (flags & kNeverShared) != 0;
  const bool marked = (flags & kWasUnknown) == 0 || ((flags & kMark) != 0 && (flags & kFailWriting) == 0);
  return (!both && marked) || walk_.Refuse(message.address, "object header message has contradicting flags");
}

bool HeaderMessages::Continue(const Message& message) {
  Continuation continuation;
  if (!walk_.Accept(message.address, ParseContinuation(walk_.view.At(message.body, message.size), continuation))) {
    return false;
  }
  if (continuation.size == 0) return walk_.Refuse(message.address, "object header goes on with nothing");
  ++followed_;
  continuations_.push_back({continuation.address, continuation.size});
  return true;
}

bool HeaderMessages::Next(Message& message) {
  for (;;) {
    while (EndsHere()) {
      if (continuations_.empty() || !StartContinuation()) return false;
    }
    unsigned type = 0;
    unsigned flags = 0;
    if (!ReadHead(message, type, flags) || !Count(message) || !JudgeFlags(message, type, flags)) return false;
    message.shared = (flags & 2U) != 0;
    message.type =
        type < static_cast<unsigned>(MessageType::kCount) ? static_cast<MessageType>(type) : MessageType::kNone;
    if (message.type == MessageType::kNone) continue;  // empty, or unknown and harmless
    if (message.type != MessageType::kContinuation) return true;
    if (!Continue(message)) return false;
  }
}

}  // namespace orvio::structure
