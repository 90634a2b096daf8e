#include "checksums.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstring>

#include "signatures.h"

namespace orvio::fuzz {
namespace {

constexpr std::size_t kSumSize = 4;
constexpr std::size_t kLongest = 1024;  // of a structure whose length only other structures tell

/// Bob Jenkins' lookup3 (public domain), over bytes taken as little-endian words, from 0 on.
class Lookup3 {
 public:
  explicit Lookup3(std::size_t size) { a_ = b_ = c_ = 0xDEADBEEFU + static_cast<std::uint32_t>(size); }

  std::uint32_t Of(const std::uint8_t* bytes, std::size_t size) {
    for (; size > 12; bytes += 12, size -= 12) {
      Add(bytes, 12);
      Mix();
    }
    if (size == 0) return c_;
    Add(bytes, size);
    Finish();
    return c_;
  }

 private:
  void Add(const std::uint8_t* bytes, std::size_t count) {
    std::array<std::uint8_t, 12> padded{};
    std::memcpy(padded.data(), bytes, count);
    std::array<std::uint32_t, 3> words{};
    std::memcpy(words.data(), padded.data(), padded.size());
    a_ += words[0];
    b_ += words[1];
    c_ += words[2];
  }
  static void Step(std::uint32_t& x, std::uint32_t& y, std::uint32_t& z, int bits) {
    x -= z;
    x ^= std::rotl(z, bits);
    z += y;
  }
  void Mix() {
    Step(a_, b_, c_, 4);
    Step(b_, c_, a_, 6);
    Step(c_, a_, b_, 8);
    Step(a_, b_, c_, 16);
    Step(b_, c_, a_, 19);
    Step(c_, a_, b_, 4);
  }
  static void Fold(std::uint32_t& x, std::uint32_t y, int bits) {
    x ^= y;
    x -= std::rotl(y, bits);
  }
  void Finish() {
    Fold(c_, b_, 14);
    Fold(a_, c_, 11);
    Fold(b_, a_, 25);
    Fold(c_, b_, 16);
    Fold(a_, c_, 4);
    Fold(b_, a_, 14);
    Fold(c_, b_, 24);
  }

  std::uint32_t a_, b_, c_;
};

std::uint32_t SumOf(const std::uint8_t* bytes, std::size_t size) { return Lookup3(size).Of(bytes, size); }

bool HasRightSum(const std::uint8_t* bytes, std::size_t size, std::size_t begin, std::size_t end) {
  if (end <= begin || end + kSumSize > size) return false;
  std::uint32_t stored = 0;
  std::memcpy(&stored, bytes + end, kSumSize);
  return stored == SumOf(bytes + begin, end - begin);
}

/// Length of a version 2 object header's first chunk without its checksum; 0 where there is no room for one.
std::size_t HeaderLength(const std::uint8_t* bytes, std::size_t room) {
  if (room < 32) return 0;
  const unsigned flags = bytes[5];
  const std::size_t width = std::size_t{1} << (flags & 3U);
  std::size_t at = 6;
  if ((flags & 0x20U) != 0) at += 16;
  if ((flags & 0x10U) != 0) at += 4;
  std::uint64_t length = 0;
  std::memcpy(&length, bytes + at, width);
  return length < room ? at + width + static_cast<std::size_t>(length) : 0;
}

/// Where the checksum of the structure at `begin` stands; 0 where there is none that is right.
std::size_t EndOf(const std::uint8_t* bytes, std::size_t size, std::size_t begin) {
  if (std::memcmp(bytes + begin, "OHDR", 4) == 0) {
    const std::size_t length = HeaderLength(bytes + begin, size - begin);
    return length > 0 && HasRightSum(bytes, size, begin, begin + length) ? begin + length : 0;
  }
  const std::size_t last = std::min(size - kSumSize, begin + kLongest);
  for (std::size_t end = begin + 8; end <= last; ++end) {
    if (HasRightSum(bytes, size, begin, end)) return end;
  }
  return 0;
}

}  // namespace

std::vector<Summed> FindSummed(const std::uint8_t* bytes, std::size_t size) {
  constexpr std::size_t kSuperblockEnd = 44;  // with offsets of eight bytes
  if (!HasRightSum(bytes, size, 0, kSuperblockEnd)) return {};
  std::vector<Summed> found = {{0, kSuperblockEnd}};
  for (const std::size_t begin : FindNamed(bytes, size)) {
    const std::size_t end = begin + 16 < size ? EndOf(bytes, size, begin) : 0;
    if (end > 0) found.push_back({begin, end});
  }
  return found;
}

void Resum(std::uint8_t* bytes, std::size_t size, const std::vector<Summed>& structures) {
  for (const Summed& structure : structures) {
    if (structure.end + kSumSize > size) continue;
    const std::uint32_t sum = SumOf(bytes + structure.begin, structure.end - structure.begin);
    std::memcpy(bytes + structure.end, &sum, kSumSize);
  }
}

}  // namespace orvio::fuzz
