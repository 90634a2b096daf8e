#pragma once

// Object headers: a run of messages in one chunk of bytes or more.

#include <cstdint>
#include <vector>

#include "structure/small_messages.h"
#include "structure/walk.h"

namespace orvio::structure {

enum class MessageType : std::uint16_t {
  kNone = 0x00,
  kDataspace,
  kLinkInfo,
  kDatatype,
  kOldFillValue,
  kFillValue,
  kLink,
  kExternalFiles,
  kLayout,
  kBogus,
  kGroupInfo,
  kFilters,
  kAttribute,
  kComment,
  kOldTime,
  kSharedTable,
  kContinuation,
  kSymbolTable,
  kTime,
  kTreeRanks,
  kDriver,
  kAttributeInfo,
  kReferenceCount,
  kFileSpace,
  kCacheImage,
  kCount,
};

struct Message {
  MessageType type = MessageType::kNone;
  bool shared = false;        ///< stored with another object; here is only where
  std::uint64_t address = 0;  ///< of the message's own header
  std::uint64_t body = 0;
  std::uint32_t size = 0;  ///< of the body
};

/// Goes through the messages of an object header. Continuations are followed, checksums compared, and messages that
/// HDF5 shall not open if it does not know them are refused; what the messages say is for others.
class HeaderMessages {
 public:
  enum class Use { kOwn, kLook };

  explicit HeaderMessages(Walk& walk) : walk_(walk) {}

  /// Begins with the header at `address`. kLook leaves its bytes to whoever visits the object itself.
  [[nodiscard]] bool Start(std::uint64_t address, Use use);
  /// The next message. False at the end, and once there is a fault.
  bool Next(Message& message);
  /// Whether the header is of version 1 and was in one piece, as far as Next() has come.
  bool IsSimple() const { return version_ == 1 && followed_ == 0; }
  /// Whether it is of version 1 and went on in one other place.
  bool GoesOnOnce() const { return version_ == 1 && followed_ == 1; }

 private:
  struct Chunk {
    std::uint64_t address;
    std::uint64_t size;
  };

  bool TakeFirst(std::uint64_t address, std::uint64_t size);
  bool TakeFurther(std::uint64_t address, std::uint64_t size);
  bool StartVersion1(std::uint64_t address);
  bool StartVersion2(std::uint64_t address);
  bool StartContinuation();
  bool EndsHere() const { return at_ >= end_ || end_ - at_ < (version_ == 1 ? 1U : head_size_); }
  bool ReadHead(Message& message, unsigned& type, unsigned& flags);
  bool Count(const Message& message);
  bool JudgeFlags(const Message& message, unsigned type, unsigned flags);
  bool Continue(const Message& message);

  Walk& walk_;
  Use use_ = Use::kOwn;
  unsigned version_ = 1;
  std::size_t followed_ = 0;  ///< continuations so far
  unsigned head_size_ = 8;    ///< bytes before the body of a message
  unsigned left_ = 0;         ///< messages that the chunk may still hold
  std::uint64_t at_ = 0;
  std::uint64_t end_ = 0;
  std::vector<Chunk> continuations_;
};

}  // namespace orvio::structure
