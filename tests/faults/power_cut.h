#pragma once

// What a disk can hold after a power cut: all that was synced, and of what came later any part.

#include <map>
#include <random>
#include <string>

#include "faults/recording.h"
#include "faults/snapshot.h"

namespace orvio::faults {

/// A disk with a file and its journal, to which the calls of a recording are made one after the other.
class Disk {
 public:
  explicit Disk(const Snapshot& now);

  void Make(const Call& call);
  /// One of the states in which the power can go now, by chance. Pages of 4 KiB, or sectors, of each write are there or
  /// not, and so are changes of sizes and names.
  Snapshot Cut(unsigned seed) const;

 private:
  using Changes = std::vector<const Call*>;
  struct Content {
    Bytes synced;
    Changes later;
  };
  using ContentNumber = int;
  struct Naming {
    std::string suffix;
    ContentNumber content;  ///< kNone for a removal
  };
  static constexpr ContentNumber kNone = -1;

  ContentNumber ContentOf(const std::string& suffix) const;
  void Name(const std::string& suffix, ContentNumber content);
  Bytes Remaining(const Content& content, std::mt19937& chance, double share, std::size_t unit) const;

  std::vector<Content> contents_;
  std::map<std::string, ContentNumber> names_;         ///< as programs see them
  std::map<std::string, ContentNumber> synced_names_;  ///< as the disk has them
  std::vector<Naming> later_names_;
};

}  // namespace orvio::faults
