// Groups written anew: the structures of their links, behind the end of a file.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "repairing/torn_file.h"

namespace orvio::program {

/// Little-endian fields one behind the other.
class Fields {
 public:
  explicit Fields(structure::Widths widths) : widths_(widths) {}

  Fields& Number(std::uint64_t value, unsigned width);
  Fields& Address(std::uint64_t value) { return Number(value, widths_.offset); }
  Fields& Length(std::uint64_t value) { return Number(value, widths_.length); }
  Fields& Bytes(const std::string& bytes);
  Fields& Zeros(std::size_t count);
  /// Puts the checksum of all fields behind them.
  Fields& Checksum();
  std::size_t size() const { return bytes_.size(); }
  const std::string& bytes() const { return bytes_; }

 private:
  structure::Widths widths_;
  std::string bytes_;
};

/// What is put behind the end of a file.
class Addition {
 public:
  /// `begin`: the first address behind the end, a multiple of 8.
  explicit Addition(std::uint64_t begin) : begin_(begin) {}

  std::uint64_t Append(const std::string& bytes);
  void Replace(std::uint64_t address, const std::string& bytes);
  std::uint64_t begin() const { return begin_; }
  const std::string& bytes() const { return bytes_; }

 private:
  std::uint64_t begin_;
  std::string bytes_;
};

struct WrittenLink {
  std::string name;
  std::uint64_t target = structure::kUndefined;  ///< of hard links
  std::string path;                              ///< of soft links
};

/// Writes heap, symbol nodes and B-tree of an old group. Names must differ.
structure::SymbolTable AppendTable(Addition& to, const Frame& frame, std::vector<WrittenLink> links);

/// The object header of an old group without attributes.
std::string GroupHeader(const Frame& frame, const structure::SymbolTable& table);
/// The body of its message.
std::string TableMessage(const Frame& frame, const structure::SymbolTable& table);

/// A change within the file.
struct Patch {
  std::uint64_t address = 0;
  std::string bytes;
};

/// Writes the messages of a new group behind the end, with these link messages in place of those it had, and answers how
/// its header has to begin to go on there. `has_attributes`: those that are not in the header stay. The header must be sound, of version 2 and have room for that; an empty patch
/// when it is not so.
Patch AppendLinkMessages(Addition& to, const TornFile& file, std::uint64_t header,
                         const std::vector<std::string>& links, bool has_attributes);

}  // namespace orvio::program
