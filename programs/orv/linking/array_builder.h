// From quantities to arrays: for each step the rows of the blocks that hold it.
#pragma once

#include <vector>

#include "linking/linked_array.h"
#include "linking/mesh.h"
#include "linking/quantity.h"

namespace orvio::program {

/// The arrays of a quantity: one for each layer and, of complex values, each part. Steps without it share rows without
/// values. Blocks that have the same entities in some state get arrays of their own.
class ArrayBuilder {
 public:
  ArrayBuilder(ResultFile& file, const Mesh& mesh, LinkReport& report) : file_(file), mesh_(mesh), report_(report) {}

  std::vector<LinkedArray> Build(const LinkedQuantity& quantity);

 private:
  /// A block in a state, or the constant one.
  struct Found {
    ORVResult* block = nullptr;
    int state = 0;
    std::shared_ptr<const StoredArray> values;  ///< null for changes of nothing
    SharedIds ids;
    bool holds_changes = false;
    hsize_t layers = 1;
  };
  /// A block at a step.
  struct Placed {
    const Found* found = nullptr;
    SharedRuns runs;
  };
  /// The blocks of a group of which no two have the same entity, at each step.
  using Group = std::vector<std::vector<Placed>>;

  struct Target {
    std::shared_ptr<const RowMap> rows;
    std::unique_ptr<RunFinder> finder;
  };

  std::vector<Found> LookFor(const LinkedQuantity& quantity, ORVResult& block);
  std::vector<Found> FindBlock(const LinkedQuantity& quantity, ORVResult& block);
  bool Describe(const LinkedQuantity& quantity, Found& found);
  std::vector<std::vector<Placed>> PlaceBlock(const std::vector<Found>& found, const std::vector<bool>& constant_holds);
  std::vector<bool> StatesWithout(const std::vector<std::vector<Found>>& blocks) const;
  std::vector<Group> MakeGroups(const std::vector<std::vector<Found>>& blocks);
  Target& TargetOf(std::size_t topology, const ORVResult& block);
  LinkedArray BuildOne(const LinkedQuantity& quantity, const Group& group, hsize_t layer, hsize_t part);
  void Append(const LinkedQuantity& quantity, const Placed& placed, std::size_t step, hsize_t layer, hsize_t part,
              LinkedArray& array);
  hsize_t RowsOf(const LinkedQuantity& quantity, std::size_t step) const;

  ResultFile& file_;
  const Mesh& mesh_;
  LinkReport& report_;
  std::map<std::pair<std::size_t, std::string>, Target> targets_;
  SharedIds last_ids_;  ///< most blocks have the same
};

}  // namespace orvio::program
