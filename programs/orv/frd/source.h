// The bytes of a .frd file, plain or packed with gzip, as text lines and as blocks of raw bytes.
#pragma once

#include <zlib.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace orvio::frd {

/// Reads a file once, from front to end. Lines and raw bytes may alternate: in binary files the next text line begins
/// right behind the last byte of a block. Whatever the file holds, no more than one fixed buffer is in use.
/// Trouble with the file (reading fails, a gzip stream is cut off or damaged, a line never ends) is thrown as Error.
class Source {
 public:
  /// Only regular files: a FIFO or a device could block for ever, or never end.
  explicit Source(const std::filesystem::path& path);

  /// The next line, without its end (LF or CR LF); false at the end of the file. A last line without an end is
  /// a line; ended() tells. The text is valid until the next call.
  bool NextLine(std::string_view& line);

  /// Makes the next NextLine() give the last line once more. Nothing else may be read in between.
  void UnreadLine() { unread_ = true; }

  /// Whether the last line had its line end.
  bool ended() const { return ended_; }

  /// Copies the next bytes and answers how many there were: less than `size` only at the end of the file.
  size_t NextBytes(char* bytes, size_t size);

  /// How much of the file has been read, packed or not, 0 to 1.
  double fraction() const;

  /// Where reading stands, for messages: "line 12" or, once raw bytes have been read (a text editor's line numbers are
  /// then of no use), "byte 345", the first byte of the last line or the end of the last raw bytes.
  std::string Where() const;

 private:
  struct Close {
    void operator()(gzFile file) const { gzclose_r(file); }
  };

  bool TakeLine();
  size_t LengthOfLine();
  bool Refill();
  void CheckStream(int got, size_t wanted) const;
  std::string_view Consume(size_t size);

  double size_;  // of the file as it is stored
  std::unique_ptr<gzFile_s, Close> file_;
  std::vector<char> buffer_;
  size_t begin_ = 0, end_ = 0;  // the part of the buffer not yet handed out
  uint64_t offset_ = 0;         // of begin_ in the unpacked file
  uint64_t place_ = 0;          // the byte that Where() gives
  uint64_t lines_ = 0;
  std::string_view line_;
  bool ended_ = true, unread_ = false, raw_ = false;
};

}  // namespace orvio::frd
