// What the walk through a damaged file has found, and how it is written back.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "repairing/group_writer.h"
#include "repairing/loss.h"
#include "repairing/torn_group.h"

namespace orvio::program {

/// A group that stays.
struct Group {
  enum class Form {
    kOld,       ///< with a symbol table; its header is sound
    kHeadless,  ///< the same without a header: it gets a new one, elsewhere
    kNew,       ///< with link messages
  };

  std::uint64_t address = 0;
  std::string path;  ///< empty for the root
  std::size_t depth = 0;
  Form form = Form::kOld;
  std::uint64_t table_at = 0;  ///< of kOld: where in the file its table is
  structure::SymbolTable table;
  std::vector<TornLink> links;
  bool is_rewritten = false;   ///< gets new structures for its links
  bool has_attributes = true;  ///< false: where many of them are is damaged
  std::uint64_t new_address = structure::kUndefined;
};

/// What became of an object.
struct Fate {
  bool is_kept = false;
  std::string why;
  std::uint64_t byte = Loss::kNoByte;
  std::size_t group = 0;  ///< number of the group and 1; 0: no group
};

struct SalvagedGroups {
  std::vector<Group> groups;            ///< the first one is the root
  std::map<std::uint64_t, Fate> fates;  ///< by the address of the object
};

/// Writes groups with changed links behind the end of the file, and answers what has to change before.
std::vector<Patch> WriteGroups(const TornFile& file, SalvagedGroups& found, Addition& to);

/// Gives names to groups whose names are lost: `known` are addresses of those with a name, `name_at` tells names by their
/// position. `guess` is told of names that may be those of others.
std::vector<TornLink> Numbered(const std::map<std::string, std::uint64_t>& known,
                               const std::vector<std::uint64_t>& orphans,
                               const std::function<std::string(std::size_t position)>& name_at,
                               const std::function<void(const TornLink& link)>& guess);

}  // namespace orvio::program
