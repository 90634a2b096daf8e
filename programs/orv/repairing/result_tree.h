// The tree of a result file whose structure is sound, changed with HDF5: what is no whole block goes, what every result
// file has comes back.
#pragma once

#include <hdf5.h>

#include <cstdint>
#include <functional>
#include <set>
#include <string>
#include <vector>

#include "checking/stored_object.h"
#include "repairing/loss.h"

namespace orvio::program {

inline constexpr char kStatesGroup[] = "/post/singlestate";

bool IsStateName(const std::string& name);
std::string StateName(std::uint64_t number);

/// The group of the block that a place belongs to, by the names of its parts; empty: it belongs to none.
std::string BlockOf(const std::string& place);

class ResultTree {
 public:
  enum class Use { kLook, kChange };
  /// Throws when the file cannot be opened.
  ResultTree(const std::string& path, Use use);
  ~ResultTree();
  ResultTree(const ResultTree&) = delete;
  ResultTree& operator=(const ResultTree&) = delete;

  bool HasResults() const { return IsGroup("/post"); }
  /// Makes the file header and the groups that are missing. Answers what of them was lost.
  std::vector<Loss> MakeFrame();
  /// Takes out a block or whatever else stands there. False when there is nothing.
  bool Remove(const std::string& path);
  /// Whether there is a block below a group.
  bool HasBlocks(const std::string& path) const { return !BlocksBelow(path).empty(); }
  /// Puts an empty state in the place of each one that is missing before the last. Answers those that no loss told of.
  std::vector<Loss> FillStates(const std::vector<Loss>& losses);
  /// Takes out a last state that has lost something and, unless incomplete ones are kept, still holds something; and all
  /// states at the end that hold nothing. Answers those that no loss told of.
  std::vector<Loss> TrimStates(const std::vector<Loss>& losses, bool keep_incomplete);

  struct Count {
    std::uint64_t states = 0, blocks = 0;
  };
  Count CountAll() const;
  /// Brings all changes to the file. False when that failed.
  [[nodiscard]] bool Close();

 private:
  bool IsGroup(const std::string& path) const;
  bool Create(const std::string& path);
  bool HasSoundHeader() const;
  bool IsSplit() const;
  void WriteHeader(bool is_split);
  std::vector<std::string> States() const;
  std::set<std::string> BlocksBelow(const std::string& path) const;
  bool IsIncomplete(const std::vector<std::string>& states) const;

  hid_t file_;
};

}  // namespace orvio::program
