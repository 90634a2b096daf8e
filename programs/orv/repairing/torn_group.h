// The links of a group that may be damaged: whatever of them can still be read.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "repairing/torn_file.h"

namespace orvio::program {

struct TornLink {
  enum class Kind { kHard, kSoft, kOther };

  std::string name;  ///< empty: it cannot be read
  Kind kind = Kind::kHard;
  std::uint64_t target = structure::kUndefined;  ///< of hard links: the object's address
  std::string path;                              ///< of soft links in old groups
  std::uint64_t at = 0;                          ///< address of the entry or message
  structure::GroupNote note;                     ///< of entries in old groups
  std::string message;                           ///< of new groups: the whole link message
};

struct TornLinks {
  std::vector<TornLink> links;
  std::optional<structure::Fault> fault;  ///< the first one; nothing: these are all links
  std::vector<std::uint64_t> nodes;       ///< of old groups: symbol nodes that were read
};

/// Of a group with a symbol table. Hard links whose names cannot be read are there too, in their places.
TornLinks ReadOldLinks(const TornFile& file, const structure::SymbolTable& table);
/// The entries of a symbol node that belongs to a group with this heap. Nothing when it is not whole.
TornLinks ReadNode(const TornFile& file, std::uint64_t heap, std::uint64_t node);
/// Of a group with link messages, whose header is sound.
TornLinks ReadNewLinks(const TornFile& file, std::uint64_t header, const structure::Object& object);

/// All texts in the heap of an old group that are in use, links or not.
std::vector<std::string> NamesInHeap(const TornFile& file, std::uint64_t heap);

/// Addresses of what looks like a structure, in the order of the file.
struct Traces {
  std::vector<std::uint64_t> nodes;   ///< symbol nodes
  std::vector<std::uint64_t> groups;  ///< object headers of old groups without attributes
};
Traces FindTraces(const TornFile& file);

}  // namespace orvio::program
