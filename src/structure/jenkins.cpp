// lookup3 over a part of a file of any length, without holding more than a window of it.

#include "structure/jenkins.h"

#include <bit>

namespace orvio::structure {
namespace {

constexpr std::uint64_t kBlock = 12;

/// The state of the hash: three words that each block of twelve bytes is added to.
struct Words {
  std::uint32_t a, b, c;

  void Add(Cursor& block) {
    a += block.U32();
    b += block.U32();
    c += block.U32();
  }
  void Mix() {
    Turn(a, c, b, 4);
    Turn(b, a, c, 6);
    Turn(c, b, a, 8);
    Turn(a, c, b, 16);
    Turn(b, a, c, 19);
    Turn(c, b, a, 4);
  }
  void Finish() {
    Fold(c, b, 14);
    Fold(a, c, 11);
    Fold(b, a, 25);
    Fold(c, b, 16);
    Fold(a, c, 4);
    Fold(b, a, 14);
    Fold(c, b, 24);
  }

 private:
  static void Turn(std::uint32_t& x, std::uint32_t& y, std::uint32_t z, int bits) {
    x = (x - y) ^ std::rotl(y, bits);
    y += z;
  }
  static void Fold(std::uint32_t& x, std::uint32_t y, int bits) { x = (x ^ y) - std::rotl(y, bits); }
};

/// The next block: up to twelve bytes, filled up with zeros, the bytes at `zeroed` taken as zero.
void CopyBlock(Cursor& part, std::uint64_t position, std::uint64_t zeroed, std::uint8_t (&block)[kBlock]) {
  for (std::uint64_t i = 0; i < kBlock; ++i) {
    const bool is_zero = part.left() == 0 || (position + i >= zeroed && position + i - zeroed < 4);
    block[i] = part.left() > 0 ? part.U8() : std::uint8_t{0};
    if (is_zero) block[i] = 0;
  }
}

}  // namespace

std::uint32_t Checksum(FileView& view, std::uint64_t address, std::uint64_t count, std::uint64_t zeroed) {
  constexpr std::uint64_t kPart = 170 * kBlock;
  const std::uint32_t start = 0xdeadbeefU + static_cast<std::uint32_t>(count);
  Words words{start, start, start};
  for (std::uint64_t done = 0; done < count;) {
    Cursor part = view.At(address + done, std::min(kPart, count - done));
    if (!part.ok()) return 0;
    while (part.left() > 0) {
      const bool last = count - done <= kBlock;
      const bool plain = part.left() >= kBlock &&
                         (zeroed == kUndefined || zeroed + 4 <= address + done || zeroed >= address + done + kBlock);
      std::uint8_t copy[kBlock];
      if (plain) {
        words.Add(part);
      } else {
        CopyBlock(part, address + done, zeroed, copy);
        Cursor block(copy, kBlock, {});
        words.Add(block);
      }
      done += std::min(kBlock, count - done);
      if (!last) words.Mix();
    }
  }
  if (count > 0) words.Finish();
  return words.c;
}

bool EndsWithChecksum(FileView& view, std::uint64_t address, std::uint64_t count) {
  if (count < 4 || !view.Holds(address, count)) return false;
  const std::uint32_t computed = Checksum(view, address, count - 4);
  Cursor stored = view.At(address + count - 4, 4);
  return stored.U32() == computed && stored.ok();
}

}  // namespace orvio::structure
