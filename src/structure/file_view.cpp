// A direct-mapped cache of file pages. Neighbours in the file are neighbours in memory, so that what is looked at in one
// piece mostly is in one piece, and so that one read brings several pages where one follows the other.

#include "structure/file_view.h"

#include <algorithm>

namespace orvio::structure {

FileView::FileView(ByteSource& source)
    : source_(source), size_(source.Size()), end_(size_), pages_(new std::uint8_t[kSlots * kPage]) {
  numbers_.fill(kUndefined);
}

void FileView::SetSpace(std::uint64_t base, std::uint64_t end, Widths widths) {
  base_ = std::min(base, size_);
  end_ = std::min(end, size_ - base_);
  widths_ = widths;
}

bool FileView::ReadPages(std::uint64_t number, std::size_t count) {
  const std::size_t slot = number % kSlots;
  const std::uint64_t offset = number * kPage;
  std::fill_n(numbers_.begin() + slot, count, kUndefined);
  const auto bytes = static_cast<std::size_t>(std::min<std::uint64_t>(count * kPage, size_ - offset));
  if (!source_.Read(offset, pages_.get() + slot * kPage, bytes)) return false;
  for (std::size_t i = 0; i < count; ++i) numbers_[slot + i] = number + i;
  return true;
}

bool FileView::Load(std::uint64_t number) {
  // Twice as much each time, as long as that is what is wanted next.
  ahead_ = number == next_ ? std::min(ahead_ * 2, kMostAhead) : 1;
  const std::uint64_t pages_left = (size_ - 1) / kPage + 1 - number;
  const std::size_t count = std::min({ahead_, kSlots - number % kSlots, static_cast<std::size_t>(pages_left)});
  next_ = number + count;
  if (ReadPages(number, count) || (count > 1 && ReadPages(number, 1))) return true;
  unreadable_ = true;
  return false;
}

const std::uint8_t* FileView::LongPart(std::uint64_t offset, std::size_t count, std::uint64_t first,
                                       std::uint64_t last) {
  const std::size_t slot = first % kSlots;
  if (last - first == 1 && slot + 1 < kSlots) {
    if (numbers_[slot] != first && !Load(first)) return nullptr;
    if (numbers_[slot + 1] != last && !Load(last)) return nullptr;
    return pages_.get() + slot * kPage + offset % kPage;
  }
  if (!long_part_) long_part_.reset(new std::uint8_t[kLongestPart]);
  if (!source_.Read(offset, long_part_.get(), count)) {
    unreadable_ = true;
    return nullptr;
  }
  return long_part_.get();
}

std::uint64_t FileView::TextLength(std::uint64_t address, std::uint64_t limit) {
  constexpr std::uint64_t kStep = 256;  // names are short
  for (std::uint64_t passed = 0; passed < limit; passed += kStep) {
    const std::uint64_t count = std::min(kStep, limit - passed);
    Cursor part = At(address + passed, count);
    if (!part.ok()) return limit;
    const std::size_t length = part.Text();
    if (part.ok()) return passed + length;
  }
  return limit;
}

}  // namespace orvio::structure
