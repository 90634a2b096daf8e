// Local heaps: header, bytes, and the list of free parts among the bytes.

#include "structure/local_heap.h"

namespace orvio::structure {
namespace {

constexpr std::uint64_t kNoFree = 1;
constexpr std::uint64_t kLongestText = 64 * 1024;

/// Each free part takes bytes of its own, so that a list that goes in a circle soon asks for more than there is.
bool CheckFreeList(Walk& walk, const LocalHeap& heap, std::uint64_t free) {
  const std::uint64_t head = 2U * walk.view.widths().length;
  std::uint64_t left = heap.size;
  while (free != kNoFree) {
    if (free % 8 != 0 || free > heap.size || head > heap.size - free) {
      return walk.Refuse(heap.data, "free list leaves its local heap");
    }
    Cursor in = walk.view.At(heap.data + free, head);
    const std::uint64_t next = in.Length();
    const std::uint64_t size = in.Length();
    if (!in.ok() || size < head || size > heap.size - free) {
      return walk.Refuse(heap.data + free, "free part passes its local heap");
    }
    if (size > left) return walk.Refuse(heap.data + free, "free parts of a local heap overlap");
    left -= size;
    free = next;
  }
  return true;
}

/// The last zero of some bytes; their count when there is none.
std::size_t LastZero(Cursor in) {
  const std::size_t count = in.left();
  std::size_t last = count;
  while (in.left() > 0) {
    const std::size_t at = in.taken();
    const std::size_t length = in.Text();
    if (in.ok()) last = at + length;
  }
  return last;
}

void FindLastZero(Walk& walk, LocalHeap& heap) {
  constexpr std::uint64_t kStep = 16;  // most heaps end with a zero
  for (std::uint64_t end = heap.size; end > 0 && !heap.has_zero;) {
    const std::uint64_t count = std::min(kStep, end);
    end -= count;
    const std::size_t zero = LastZero(walk.view.At(heap.data + end, count));
    heap.has_zero = zero < count;
    heap.last_zero = end + zero;
  }
}

}  // namespace

bool ReadLocalHeap(Walk& walk, std::uint64_t address, LocalHeap& heap) {
  const Widths widths = walk.view.widths();
  const std::uint64_t prefix = 8U + 2U * widths.length + widths.offset;
  Cursor in = walk.view.At(address, prefix);
  const bool known = in.Is("HEAP") && in.U8() == 0;
  in.Skip(3);
  heap.size = in.Length();
  const std::uint64_t free = in.Length();
  heap.data = in.Address();
  if (!known || !in.ok()) return walk.Refuse(address, "local heap is not where it should be");
  if (!walk.Claim(address, prefix)) return false;
  // The bytes are mostly right behind the header, where nothing else can begin that has not claimed the header's place.
  const bool adjacent = heap.data == address + prefix;
  if (!(adjacent ? walk.ClaimObject(heap.data, heap.size) : walk.Claim(heap.data, heap.size))) return false;
  FindLastZero(walk, heap);
  return CheckFreeList(walk, heap, free);
}

bool ReadText(Walk& walk, std::uint64_t from, LocalHeap& heap, std::uint64_t text, std::uint64_t& length) {
  if (!heap.Holds(text)) return walk.Refuse(from, "name does not end within its local heap");
  length = walk.view.TextLength(heap.data + text, std::min(kLongestText, heap.size - text));
  if (length >= kLongestText) return walk.Refuse(from, "name of a link is too long");
  heap.text_bytes += length + 1;
  // No two links share a name's bytes, so together they are no longer than what they are in.
  return heap.text_bytes <= heap.size || walk.Refuse(from, "names take more room than their local heap has");
}

}  // namespace orvio::structure
