#pragma once

// Reading and writing of a block's header, one attribute per line.

#include <cstdint>

#include "h5/text_field.h"
#include "orvio/oh5_reader.h"

namespace orvio::h5 {

/// A member of a block that a header line fills: a 64-bit or 32-bit integer or a fixed text of any width.
class Field {
 public:
  Field(std::int64_t& member) : type_(ORV_LONG), member_(&member), size_(0) {}  // NOLINT(google-explicit-constructor)
  Field(int& member) : type_(ORV_INT), member_(&member), size_(0) {}            // NOLINT(google-explicit-constructor)
  template <std::size_t N>
  Field(char (&member)[N]) : type_(ORV_CHAR), member_(member), size_(N) {}  // NOLINT(google-explicit-constructor)

  /// Reads the attribute into the member; a failed read leaves the member alone.
  [[nodiscard]] int Read(IOH5Reader& reader, hid_t header, const char* name) const;
  /// Gives the member the value of an absent attribute: the number, or the empty text.
  void SetAbsent(std::int64_t number) const;

 private:
  _ORVDataType type_;
  void* member_;
  std::size_t size_;  ///< bytes of a text member, its terminator included
};

/// Whether an object has an attribute of that name.
bool HasAttribute(hid_t object, const char* name);

/// Reads a block header, one attribute per line, in the order of the lines. Once a line has failed the later ones
/// do nothing and their members keep what they held; status() is then 1.
///                   absent                 present but unreadable
///   required        ends the header        ends the header
///   if_present      member is left alone   ends the header
///   defaulted       `absent`, or ""        ends the header
///   tolerated       `absent`, or ""        member is left alone
///   attempted       member is left alone   member is left alone; the answer tells
class HeaderReader {
 public:
  HeaderReader(IOH5Reader* reader, hid_t header);  // without a reader every line fails

  void required(const char* name, Field member);
  void if_present(const char* name, Field member);
  void defaulted(const char* name, Field member, std::int64_t absent = 0);
  void tolerated(const char* name, Field member, std::int64_t absent = 0);
  bool attempted(const char* name, Field member);
  /// Takes the trailing blanks off; does nothing after a failure.
  template <std::size_t N>
  void strip(char (&text)[N]) {
    if (ok()) StripTrailingBlanks(text, N);
  }
  bool ok() const { return status_ == 0; }
  [[nodiscard]] int status() const { return status_; }

 private:
  bool Has(const char* name) const { return HasAttribute(header_, name); }

  IOH5Reader* reader_;
  hid_t header_;
  int status_;
};

/// Writes a block header, one attribute per line. Once a line has failed the later ones do nothing.
class HeaderWriter {
 public:
  explicit HeaderWriter(hid_t header) : header_(header) {}

  void integer(const char* name, std::int64_t value);  ///< stored with 64 bits
  void integer32(const char* name, int value);         ///< stored with 32 bits
  /// Blank padded, 256 bytes or another width.
  void text(const char* name, const char* value, std::size_t width = disk::kTextWidth);
  void attempted(const char* name, std::int64_t value);  ///< as integer; a failure does not count
  bool ok() const { return status_ == 0; }
  [[nodiscard]] int status() const { return status_; }

 private:
  hid_t header_;
  int status_ = 0;
};

}  // namespace orvio::h5
