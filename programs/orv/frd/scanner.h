// The checks that every block of a .frd file needs, between the bytes of the file and the meaning of a block.
#pragma once

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "frd/source.h"

namespace orvio::frd {

/// How the items of a block are stored: the format code of its first line.
enum Format : int32_t { kShortText = 0, kLongText = 1, kBinaryFloat = 2, kBinaryDouble = 3 };

/// Where a text item (` -1` and ` -2` lines) has its fields, as far as short and long text differ.
struct TextLayout {
  size_t id_last;         ///< column where the id ends; it begins at column 4
  size_t id_width;        ///< columns of an id
  size_t nodes_per_line;  ///< node ids on a ` -2` line of an element
};
inline constexpr TextLayout kShortLayout = {8, 5, 15}, kLongLayout = {13, 10, 10};

/// A little-endian number of a binary item, whatever the byte order of this machine.
template <class T>
T LoadLittle(const char* bytes) {
  char ordered[sizeof(T)];
  std::memcpy(ordered, bytes, sizeof(T));
  if constexpr (std::endian::native == std::endian::big) std::reverse(ordered, ordered + sizeof(T));
  T value;
  std::memcpy(&value, ordered, sizeof(T));
  return value;
}

/// Hands out the lines and items of one block after the other and fails with a message that says where, in which block
/// and what. Counts of the file are promises to be compared with what comes; nothing is sized by them.
class Scanner {
 public:
  explicit Scanner(const std::filesystem::path& path) : source_(path) {}

  /// Names the block for messages from here on, and what its items are: "result STRESS", "nodes".
  void Enter(std::string_view block, const char* items = "lines");

  /// Throws `<where>: <block>: <what>`.
  [[noreturn]] void Fail(std::string_view what) const;
  /// Throws `<where>: <block>, <item> <id>: <what>`.
  [[noreturn]] void FailItem(const char* item, int64_t id, std::string_view what) const;
  /// Throws for a line that has no place where it stands.
  [[noreturn]] void FailLine(std::string_view line) const;

  /// How much of the file has been read, 0 to 1.
  double fraction() const { return source_.fraction(); }

  /// The first line of the file, whole or not: what is no .frd file at all shall not be called cut off.
  bool FirstLine(std::string_view& line) { return source_.NextLine(line); }
  /// The next line, whole: a file that ends within it fails. False at the end of the file.
  bool NextLine(std::string_view& line);
  /// The next line, which must exist.
  std::string_view Line();
  void UnreadLine() { source_.UnreadLine(); }

  /// An integer of a header line. A blank field is 0, as Fortran reads it.
  int32_t Integer(std::string_view line, size_t first, size_t last, const char* what) const;
  /// How many items a block announces; blank is 0.
  int64_t Count(std::string_view line, size_t first, size_t last) const;
  /// An id, which must not be blank.
  int32_t Id(std::string_view field, const char* what) const;

  /// Format code of a block's first line, from kShortText to `highest`.
  Format FormatCode(std::string_view line, Format highest) const;

  /// Calls `use(line)` for the ` -1` line of each item up to the ` -3` line. `use` takes the further lines of the item.
  template <class Use>
  void TextItems(int64_t count, Use use) {
    count_ = count;
    for (done_ = 0;; ++done_) {
      const std::string_view line = Line();
      if (line.starts_with(" -3")) break;
      if (!line.starts_with(" -1")) FailLine(line);
      use(line);
    }
    if (done_ != count_) FailCount();
  }

  /// Calls `use(field)` for each of the `count` values of a node, 12 columns each, six to a line. `line` is the ` -1`
  /// line; the others are fetched.
  template <class Use>
  void TextValues(std::string_view line, const TextLayout& layout, size_t count, Use use) {
    for (size_t i = 0; i < count; ++i) {
      if (i > 0 && i % kValuesPerLine == 0) line = ContinuationLine();
      const size_t first = layout.id_last + 1 + i % kValuesPerLine * kValueWidth;
      use(line.size() < first ? std::string_view() : line.substr(first - 1, kValueWidth));
    }
    const size_t on_last_line = count == 0 ? 0 : (count - 1) % kValuesPerLine + 1;
    CheckEnd(line, layout.id_last + on_last_line * kValueWidth);
  }

  /// Calls `use(bytes)` for each of `count` items of `size` bytes. Reads in pieces of several items, so that a count
  /// without data behind it costs nothing. With `alone` items come one at a time, and `use` may take further bytes.
  template <class Use>
  void BinaryItems(int64_t count, size_t size, Use use, bool alone = false) {
    const auto at_once = alone ? 1 : static_cast<int64_t>(std::max<size_t>(kPiece / size, 1));
    std::vector<char> piece(static_cast<size_t>(std::min(at_once, count)) * size);
    count_ = count;
    for (done_ = 0; done_ < count_;) {
      const size_t wanted = static_cast<size_t>(std::min(at_once, count_ - done_)) * size;
      const size_t got = source_.NextBytes(piece.data(), wanted);
      if (got < wanted) FailEnd(done_ + static_cast<int64_t>(got / size));
      for (size_t begin = 0; begin < got; begin += size, ++done_) use(piece.data() + begin);
    }
  }

  /// The next bytes of a binary block; fails at the end of the file.
  void Bytes(char* bytes, size_t size);

  /// The ` -2` line that continues an item.
  std::string_view ContinuationLine();
  /// Nothing but blanks may follow the last field of an item: more values than components means that one of the two
  /// was misunderstood.
  void CheckEnd(std::string_view line, size_t last) const;

 private:
  static constexpr size_t kValueWidth = 12, kValuesPerLine = 6;
  static constexpr size_t kPiece = 64 * 1024;

  [[noreturn]] void FailCount() const;
  [[noreturn]] void FailEnd(int64_t done) const;

  Source source_;
  std::string block_;
  const char* items_ = "";
  int64_t done_ = 0, count_ = 0;  // items of this block
};

}  // namespace orvio::frd
