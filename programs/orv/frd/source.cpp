// The bytes of a .frd file. zlib reads packed and plain files alike, and tells them apart by the first two bytes.
#include "frd/source.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <new>
#include <system_error>
#include <utility>

#include "frd/error.h"

namespace orvio::frd {

namespace {

constexpr size_t kBufferSize = 64 * 1024;
constexpr size_t kLongestLine = 4096;  // the format needs 133 columns; a file without line ends is none of ours

std::string SystemMessage(int code) { return std::generic_category().message(code); }

/// Opened without waiting, so that a FIFO is refused below and not waited for.
int OpenRegularFile(const std::filesystem::path& path) {
  const int descriptor = open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
  if (descriptor < 0) throw Error("cannot be opened: " + SystemMessage(errno));
  struct stat status;
  const bool known = fstat(descriptor, &status) == 0;
  if (known && S_ISREG(status.st_mode)) return descriptor;
  close(descriptor);
  throw Error(known && S_ISDIR(status.st_mode) ? "is a directory, not a file" : "is not a regular file");
}

gzFile OpenStream(const std::filesystem::path& path) {
  const int descriptor = OpenRegularFile(path);
  const gzFile file = gzdopen(descriptor, "rb");
  if (!file) close(descriptor);
  if (!file) throw std::bad_alloc();
  gzbuffer(file, kBufferSize);
  return file;
}

/// 0 for what has no size; opening it tells the reason.
double SizeOf(const std::filesystem::path& path) {
  std::error_code error;
  const auto size = std::filesystem::file_size(path, error);
  return error ? 0 : static_cast<double>(size);
}

}  // namespace

Source::Source(const std::filesystem::path& path)
    : size_(SizeOf(path)), file_(OpenStream(path)), buffer_(kBufferSize) {}

double Source::fraction() const { return size_ > 0 ? static_cast<double>(gzoffset(file_.get())) / size_ : 1; }

bool Source::NextLine(std::string_view& line) {
  if (!std::exchange(unread_, false) && !TakeLine()) return false;
  line = line_;
  return true;
}

bool Source::TakeLine() {
  const size_t length = LengthOfLine();
  if (length == 0 && !ended_) return false;
  ++lines_;
  place_ = offset_;
  line_ = Consume(length);
  if (ended_) Consume(1);
  if (ended_ && line_.ends_with('\r')) line_.remove_suffix(1);
  return true;
}

/// Bytes before the next line end, or up to the end of the file. The whole line is in the buffer afterwards.
size_t Source::LengthOfLine() {
  for (size_t length = 0;;) {
    const char* begin = buffer_.data() + begin_;
    const void* end = std::memchr(begin + length, '\n', end_ - begin_ - length);
    ended_ = end != nullptr;
    length = ended_ ? static_cast<size_t>(static_cast<const char*>(end) - begin) : end_ - begin_;
    if (length > kLongestLine) throw Error(fmt::format("byte {}: not a .frd file: a line without an end", offset_));
    if (ended_ || !Refill()) return length;
  }
}

size_t Source::NextBytes(char* bytes, size_t size) {
  raw_ = true;
  size_t done = 0;
  while (done < size && (begin_ < end_ || Refill())) {
    const std::string_view part = Consume(std::min(size - done, end_ - begin_));
    std::memcpy(bytes + done, part.data(), part.size());
    done += part.size();
  }
  place_ = offset_;
  return done;
}

std::string Source::Where() const {
  return raw_ ? fmt::format("byte {}", place_) : fmt::format("line {}", std::max<uint64_t>(lines_, 1));
}

/// Hands out bytes that are in the buffer.
std::string_view Source::Consume(size_t size) {
  const std::string_view part(buffer_.data() + begin_, size);
  begin_ += size;
  offset_ += size;
  return part;
}

/// Adds to the buffer what fits; false at the end of the file.
bool Source::Refill() {
  std::memmove(buffer_.data(), buffer_.data() + begin_, end_ - begin_);
  end_ -= begin_;
  begin_ = 0;
  const size_t space = buffer_.size() - end_;
  const int got = gzread(file_.get(), buffer_.data() + end_, static_cast<unsigned>(space));
  CheckStream(got, space);
  end_ += static_cast<size_t>(got);
  return got > 0;
}

/// A short read is the end of the file only if zlib agrees: it hands out the whole beginning of a stream that was cut
/// off, and a reader of text would take that for a short file.
void Source::CheckStream(int got, size_t wanted) const {
  if (got == static_cast<int>(wanted)) return;
  int code = Z_OK;
  const char* message = gzerror(file_.get(), &code);
  if (code == Z_OK || code == Z_STREAM_END) return;
  if (code == Z_ERRNO) throw Error("cannot be read: " + SystemMessage(errno));
  if (code == Z_BUF_ERROR) throw Error("the gzip stream is cut off");
  if (code == Z_MEM_ERROR) throw std::bad_alloc();
  throw Error(fmt::format("the gzip stream is damaged: {}", message));
}

}  // namespace orvio::frd
