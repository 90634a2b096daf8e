// The checks that every block of a .frd file needs. What the blocks mean is the matter of the reader.
#include "frd/scanner.h"

#include <fmt/format.h>

#include <optional>

#include "frd/error.h"
#include "frd/field.h"

namespace orvio::frd {

void Scanner::Enter(std::string_view block, const char* items) {
  block_ = Printable(block);
  items_ = items;
  done_ = count_ = 0;
}

void Scanner::Fail(std::string_view what) const {
  throw Error(fmt::format("{}: {}: {}", source_.Where(), block_, what));
}

void Scanner::FailItem(const char* item, int64_t id, std::string_view what) const {
  throw Error(fmt::format("{}: {}, {} {}: {}", source_.Where(), block_, item, id, what));
}

void Scanner::FailLine(std::string_view line) const { Fail("unexpected line: " + Quote(line)); }

void Scanner::FailCount() const { Fail(fmt::format("holds {} {}, its first line says {}", done_, items_, count_)); }

void Scanner::FailEnd(int64_t done) const {
  if (count_ == 0) Fail("the file ends in the middle of it");
  Fail(fmt::format("the file ends after {} of {} {}", done, count_, items_));
}

bool Scanner::NextLine(std::string_view& line) {
  if (!source_.NextLine(line)) return false;
  // The end marks are whole without a line end; any other line could have lost digits.
  const bool whole = source_.ended() || line == " -3" || line == " 9999";
  if (!whole) Fail("the file ends in the middle of a line");
  return true;
}

std::string_view Scanner::Line() {
  std::string_view line;
  if (!NextLine(line)) FailEnd(done_);
  return line;
}

std::string_view Scanner::ContinuationLine() {
  const std::string_view line = Line();
  if (!line.starts_with(" -2")) FailLine(line);
  return line;
}

void Scanner::CheckEnd(std::string_view line, size_t last) const {
  if (line.size() <= last) return;
  const std::string_view rest = Trim(line.substr(last));
  if (!rest.empty()) Fail("text behind the last field: " + Quote(rest));
}

int32_t Scanner::Integer(std::string_view line, size_t first, size_t last, const char* what) const {
  const std::string_view field = Trim(Columns(line, first, last));
  return field.empty() ? 0 : Id(field, what);
}

int64_t Scanner::Count(std::string_view line, size_t first, size_t last) const {
  const std::string_view field = Trim(Columns(line, first, last));
  if (field.empty()) return 0;
  const std::optional<int64_t> count = ParseInt64(field);
  if (!count || *count < 0) Fail(fmt::format("number of {} is not a count: {}", items_, Quote(field)));
  return *count;
}

int32_t Scanner::Id(std::string_view field, const char* what) const {
  const std::optional<int32_t> id = ParseInt32(field);
  if (!id) Fail(fmt::format("{} is not a number: {}", what, Quote(Trim(field))));
  return *id;
}

Format Scanner::FormatCode(std::string_view line, Format highest) const {
  const int32_t code = Integer(line, 74, 75, "format code");
  if (code < kShortText || code > highest) Fail(fmt::format("format code {} is not known", code));
  return static_cast<Format>(code);
}

void Scanner::Bytes(char* bytes, size_t size) {
  if (source_.NextBytes(bytes, size) < size) FailEnd(done_);
}

}  // namespace orvio::frd
