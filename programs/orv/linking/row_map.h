// Where the entities of a block stand among the points or cells.
#pragma once

#include <hdf5.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <unordered_map>
#include <vector>

namespace orvio::program {

/// Points or cells by the ids of nodes or elements. Of several with the same id the first counts.
class RowMap {
 public:
  static constexpr hsize_t kNone = ~static_cast<hsize_t>(0);

  RowMap() = default;
  /// The position in the list is the row.
  explicit RowMap(const std::vector<long long>& ids);
  void Add(long long id, hsize_t row) { rows_.emplace(id, row); }

  hsize_t At(long long id) const {
    const auto found = rows_.find(id);
    return found == rows_.end() ? kNone : found->second;
  }
  hsize_t rows() const { return rows_.size(); }

 private:
  std::unordered_map<long long, hsize_t> rows_;
};

/// Entities that follow each other in a block as well as among the points or cells.
struct Run {
  bool operator==(const Run&) const = default;

  hsize_t from = 0;  ///< first row in the block
  hsize_t to = 0;    ///< first point or cell
  hsize_t count = 0;
};

struct Runs {
  bool operator==(const Runs&) const = default;

  std::vector<Run> list;      ///< no two of them meet among the points or cells
  std::size_t strangers = 0;  ///< ids that are no point or cell, or stand twice
};

using SharedRuns = std::shared_ptr<const Runs>;

Runs FindRuns(const std::vector<long long>& ids, const RowMap& rows);

/// The runs in pieces that each go upwards on both sides: their values have the same order here and there.
std::vector<std::span<const Run>> InOrder(const Runs& runs);

/// Whether some point or cell is in both.
bool Overlap(const Runs& a, const Runs& b);

using SharedIds = std::shared_ptr<const std::vector<long long>>;

/// Finds runs, and remembers those of the last lists: the blocks of a file mostly share a few.
class RunFinder {
 public:
  explicit RunFinder(const RowMap& rows) : rows_(rows) {}

  SharedRuns Find(const SharedIds& ids);

 private:
  static constexpr std::size_t kRemembered = 4;

  struct Known {
    SharedIds ids;
    SharedRuns runs;
  };

  const RowMap& rows_;
  std::vector<Known> known_;
};

}  // namespace orvio::program
