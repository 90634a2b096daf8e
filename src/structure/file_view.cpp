// A direct-mapped cache of file windows. Each window reaches into its successor, so that what is looked at in one piece
// is in one piece in memory.

#include "structure/file_view.h"

namespace orvio::structure {

FileView::FileView(ByteSource& source)
    : source_(source), size_(source.Size()), end_(size_), windows_(new std::uint8_t[kWindows * kWindow]) {
  numbers_.fill(kUndefined);
}

void FileView::SetSpace(std::uint64_t base, std::uint64_t end, Widths widths) {
  base_ = std::min(base, size_);
  end_ = std::min(end, size_ - base_);
  widths_ = widths;
}

bool FileView::Load(std::uint64_t number, std::size_t slot) {
  const std::uint64_t offset = number * kStride;
  const auto count = static_cast<std::size_t>(std::min<std::uint64_t>(kWindow, size_ - offset));
  numbers_[slot] = kUndefined;
  if (!source_.Read(offset, windows_.get() + slot * kWindow, count)) {
    unreadable_ = true;
    return false;
  }
  numbers_[slot] = number;
  return true;
}

const std::uint8_t* FileView::LongPart(std::uint64_t offset, std::size_t count) {
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
