// A block of the file as it is, sound or not.
#pragma once

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "checking/block_format.h"
#include "checking/finding.h"
#include "checking/stored_object.h"

namespace orvio::program {

struct Block {
  std::string path;        ///< of the group that holds its parts
  std::string relative;    ///< the same below the section or state
  std::string type_group;  ///< the group of a kind that it lies in; empty: in none
  Sections section = kInConstant;
  int state = 0;  ///< 1-based position; 0 outside of the states
  bool is_single = false;
  bool has_header = false;
  std::map<std::string, StoredAttribute> header;
  std::map<std::string, StoredDataset> datasets;

  std::int64_t key = -1;
  const KindRow* kind = nullptr;  ///< null for an unknown key

  // What the checks of one block find in its datasets, for those that look at several blocks. Of small ones and of ids.
  std::map<std::string, std::vector<std::int64_t>> integers;
  std::map<std::string, std::vector<double>> floats;
  std::map<std::string, std::vector<std::string>> texts;

  /// -1 where the header has no such integer.
  std::int64_t Number(const char* name) const;
  /// Empty where the header has no such text.
  std::string Text(const char* name) const;
  /// Null where the values were not kept.
  const std::vector<std::int64_t>* Integers(const char* name) const;
  /// Whether the block holds changes only.
  bool IsIncremental() const;
};

/// Finds the blocks below a section or a state. What leads elsewhere on the way is told.
class BlockFinder {
 public:
  BlockFinder(hid_t file, Teller& teller) : file_(file), teller_(teller) {}

  /// All blocks below a group, in the order of their paths.
  std::vector<Block> Find(const std::string& path, Sections section, int state);

  /// Tells of the links of one group, and answers the names of its child groups.
  std::vector<std::string> ChildGroups(const std::string& path);

 private:
  void Walk(const std::string& path, const std::string& type_group, int depth);
  bool IsNew(const std::string& path, hid_t group);
  bool TellOfLink(const std::string& path, const StoredLink& link);
  Block ReadBlock(const std::string& path, const std::vector<std::string>& child_groups);
  void AddHeader(const std::string& path, Block& block);
  void AddDatasets(const std::string& path, Block& block);
  void AddDataset(const std::string& path, const std::string& name, Block& block);

  hid_t file_;
  Teller& teller_;
  std::vector<Block> blocks_;
  std::string root_;
  Sections section_ = kInConstant;
  int state_ = 0;
  std::vector<std::string> ancestors_;  ///< tokens of the groups on the way down
  struct Visits {
    int last_walk = 0, count = 0;
  };
  std::map<std::string, Visits> seen_;  ///< by the token of a group
  int walk_ = 0;
};

}  // namespace orvio::program
