#pragma once

/// Tables of what states stand for: time, frequency, load factor.

#include "orvio/orv_block.h"

/// Index of the states of a file: `nstate` rows by `nindex` columns, held as identifiers (I) and as values (V), both
/// row-major. Column j has the meaning of the j-th index type, and row r is the r-th state that could be read.
///
/// The reading operations fill arrays that the owner of the object has allocated with the C allocator; ClearAll frees
/// them, the destructor does not. Copies share them. Made for <int, float> and <int, double>.
template <class I, class V>
class ORVIndexBase : public ORVBlockHelper {
 public:
  /// Empty, of no particular key.
  ORVIndexBase();
  ORVIndexBase(const ORVIndexBase& other);
  ORVIndexBase& operator=(const ORVIndexBase& other);
  ~ORVIndexBase() override;

  void Initialize();  ///< sets the counts and pointers to 0; frees nothing
  void ClearAll();    ///< frees both arrays; the counts stay

  std::int64_t GetNumState() const { return m_nState; }
  std::int64_t GetNumIndex() const { return m_nIndex; }
  const I* GetIndexIds() const { return m_pIndexId; }    ///< nstate x nindex; may be null
  const V* GetIndexVals() const { return m_pIndexVal; }  ///< nstate x nindex; may be null
  void SetKey(std::int64_t key) { m_BlkKey = key; }

  int ReadHeader(hid_t group, int mode) override;
  int ReadData(hid_t group, int mode) override;

  /// Reads from the first block of each state: with mode 1 the number of columns, with mode 2 the rows, `count` of
  /// them. It stops at the first state whose block cannot be reached. With mode 2 the array pointers lead to the last
  /// row afterwards: the caller puts them back. The arrays must have room for all states. `flag` passes over empty
  /// result blocks.
  int ReadStateIndex(const char* path, int mode, int& count, bool flag);
  /// Reads the index of the first block of the multi-state section: with mode 1 its counts, with mode 2 its rows.
  int ReadMultiStateIndex(const char* path, int mode, int& count);
  /// Reads the rows of one block, from the states that hold it, or all at once for a multi-state block. The arrays must
  /// have room for GetNumState() rows, and no more are read. A path of the index itself goes before that of `block`.
  int ReadBlockIndexValues(const char* path, ORVBlock* block, int mode, int& count);
  /// The 0-based row that holds these values, or identifiers, or both, in all columns; `location` is -1 without one.
  bool FindIndexValLocation(int nIndex, const V* vals, const I* ids, hid_t& location);

 protected:
  friend struct ORVIndexAccess;  // the library itself allocates and divides the arrays

  std::int64_t m_nIndex;  ///< columns
  std::int64_t m_nState;  ///< rows
  V* m_pIndexVal;
  I* m_pIndexId;
};

extern template class ORVIO_EXPORT ORVIndexBase<int, float>;
extern template class ORVIO_EXPORT ORVIndexBase<int, double>;

/// A value of a host about a state; the library does nothing with it.
class ORVIO_EXPORT ORVStateInfo {
 public:
  ORVStateInfo();
  ORVStateInfo(const ORVStateInfo&) = default;
  ORVStateInfo& operator=(const ORVStateInfo& other);
  ~ORVStateInfo();  // NOLINT(performance-trivially-destructible): exported

  std::int64_t m_info;
};
