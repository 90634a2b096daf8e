// The results of the states, whole or as changes.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <variant>
#include <vector>

#include "importer/block_writer.h"
#include "importer/import_options.h"
#include "importer/quantity.h"

namespace orvio::program {

/// Values as a block of a state takes them.
using StateValues = std::variant<EntityValues, ElementValues>;

/// Writes the results of one state after the other.
///
/// With incremental states a state is held until it is finished, beside the values that were written last. It is full for
/// all results or for none, so that one map of states serves a whole file. A state that holds changes has in each of its
/// blocks one entity at least, and no result that the last full state lacks. A state is full, too, where a result has
/// other entities or another layout than there, or ids that stand twice, and where it would not become smaller.
class StateWriter {
 public:
  StateWriter(BlockWriter& writer, std::optional<IncrementalStates> incremental)
      : writer_(writer), incremental_(incremental) {}

  void Write(const StateIndex& index, const Quantity& quantity, const StateValues& values);
  /// Goes behind the last result of a state.
  void FinishState();

  int full_states() const { return full_states_; }

 private:
  /// The values of a block, kept; row-major, one row per entity.
  struct Result {
    const Quantity* quantity;
    StateValues values;  ///< its pointers lead into the members below
    std::vector<int> ids;
    std::vector<std::byte> bytes;
    std::size_t row_bytes;
    bool has_twins = false;  ///< whether an id stands twice
  };
  using Key = std::vector<std::string>;  // what tells a block from the others of its state

  static Result Keep(const Quantity& quantity, const StateValues& values);
  static Key KeyOf(const Result& result);
  void WriteHeldState();
  void WriteFull();
  void WriteChanges(Result& result, const std::vector<std::size_t>& rows);
  bool MustBeFull() const;
  static bool IsAlike(const Result& result, const Result& last);
  std::vector<std::size_t> ChangedRows(const Result& result, const Result& last) const;

  BlockWriter& writer_;
  std::optional<IncrementalStates> incremental_;
  StateIndex index_;
  std::vector<Result> state_;
  std::map<Key, Result> last_;  ///< what a reader sees of the results of the last full state, by now
  int since_full_ = 0;          ///< states that hold changes
  int full_states_ = 0;
};

/// The first block of a file. One with incremental states says so in the name of its solver, behind a colon, and has one
/// index column.
void WriteOrigin(const ImportOptions& options, Origin origin, BlockWriter& writer);

}  // namespace orvio::program
