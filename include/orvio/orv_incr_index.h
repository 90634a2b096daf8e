#pragma once

/// Which states hold a block whole, and which only what changed since the state before.

#include <string>
#include <vector>

#include "orvio/orv_index.h"

/// The index rows of one block with a flag each: the `indexic` of the block's header in that state, 0 for a full state.
/// A state without the block has no row. Identifiers, values, state numbers and flags stand in one allocation of the C
/// allocator, which `m_pIndexId` leads to: ClearAll frees it, the destructor does not. ClearAll must not be called
/// through the base, which would free two arrays where there is one. Copies share the allocation.
class ORVIO_EXPORT ORVIncrIndex : public ORVIndexBase<int, float> {
 public:
  ORVIncrIndex();
  ORVIncrIndex(const ORVIncrIndex& other);
  ORVIncrIndex& operator=(const ORVIncrIndex& other);
  ~ORVIncrIndex() override;

  void Initialize();  ///< sets the counts and the four pointers to 0; frees nothing
  void ClearAll();    ///< frees the allocation; the counts stay

  const int* GetStateIds() const { return m_pStateIds; }  ///< nstate; may be null

  /// Reads a row of each state that holds `block`, which must have been met in a state, and sets `numStates` to the number
  /// of states of the file. The arrays must be there, with room for all states. A number of columns above 0 is kept; else
  /// the first row tells it. Rows before one that cannot be read remain.
  int ReadIncrementData(const char* path, ORVBlock& block, int& numStates);

  bool HasIncrFlag(int& state);  ///< whether any state is incremental; `state` is the first such, else 0
  /// State numbers and flags of all rows. 1 without rows, with both vectors left alone.
  int GetStateIncrFlagInfo(std::vector<int>& states, std::vector<int>& flags);
  bool IsIncrementalState(int state);  ///< false for a state without a row

 protected:
  friend struct ORVIncrIndexAccess;  // the library itself divides the allocation

  /// Reads the row of a state from the block's group, and the number of columns if it is not above 0.
  int ReadIncrementValues(hid_t group, _ORVBlkVersion version, hid_t row);

  int* m_pStateIds;   ///< state number of each row
  int* m_pIncrFlags;  ///< flag of each row
};

/// Such an index under the name by which a filer keeps it.
class ORVIO_EXPORT ORVTagIncrIndex : public ORVIncrIndex {
 public:
  ORVTagIncrIndex();
  ORVTagIncrIndex(const ORVTagIncrIndex& other);
  ORVTagIncrIndex& operator=(const ORVTagIncrIndex& other);
  ~ORVTagIncrIndex() override;

  void Initialize();  ///< empties the name too

  std::string m_tag;
};

/// What the data of one state build upon.
struct ORVIncrStateMap {
  int m_state = 0;
  int m_incrFlag = 0;  ///< not 0 for an incremental state
  /// The states that an incremental one builds upon, a full one first; empty for a full state. Owned by the list of all.
  std::vector<ORVIncrStateMap*> m_dependsOn;
};
