#pragma once

// What the library's own code does with the arrays of an index.

#include "entity/state_index_blocks.h"
#include "h5/c_array.h"
#include "h5/status.h"
#include "orvio/orv_index.h"

/// The arrays of an index and what fills them.
struct ORVIndexAccess {
  /// Reads the counts from the first state.
  template <class I, class V>
  [[nodiscard]] static int ReadColumns(ORVIndexBase<I, V>& index, orvio::StateIndexBlocks& blocks, bool filter) {
    return blocks.ReadHeader(
        filter, [&](hid_t part) { return index.ReadHeader(part, ORV_READ_HEADER); },
        [&] { return index.m_nIndex > 0; });
  }

  /// Reads one state after the other until one fails. The pointers lead to the last row tried afterwards.
  template <class I, class V>
  [[nodiscard]] static int ReadRows(ORVIndexBase<I, V>& index, orvio::StateIndexBlocks& blocks, bool filter,
                                    int& count) {
    V* const values = index.m_pIndexVal;
    I* const ids = index.m_pIndexId;
    for (int state = 0; state < blocks.GetNumState(); ++state) {
      PointAtRow(index, values, ids, count);
      const auto read = [&](hid_t part) { return index.ReadData(part, ORV_READ_DATA); };
      if (blocks.ReadRow(state, filter, read) != orvio::kOk) break;
      ++count;
    }
    return count > 0 ? orvio::kOk : orvio::kFail;
  }

  /// Row of two matrices that the index reads into next.
  template <class I, class V>
  static void PointAtRow(ORVIndexBase<I, V>& index, V* values, I* ids, std::int64_t row) {
    index.m_pIndexVal = values ? values + row * index.m_nIndex : nullptr;
    index.m_pIndexId = ids ? ids + row * index.m_nIndex : nullptr;
  }

  /// Hands two matrices over.
  template <class I, class V>
  static void Give(ORVIndexBase<I, V>& index, orvio::CArray<V> values, orvio::CArray<I> ids) {
    index.m_pIndexVal = values.release();
    index.m_pIndexId = ids.release();
  }

  /// Puts the pointers of an index back at the end of the scope, be it left by lack of memory.
  template <class I, class V>
  class [[nodiscard]] Bases {
   public:
    explicit Bases(ORVIndexBase<I, V>& index) : values(index.m_pIndexVal), ids(index.m_pIndexId), index_(index) {}
    ~Bases() { PointAtRow(index_, values, ids, 0); }
    Bases(const Bases&) = delete;
    Bases& operator=(const Bases&) = delete;

    V* const values;
    I* const ids;

   private:
    ORVIndexBase<I, V>& index_;
  };

  template <class I, class V>
  static void SetNumState(ORVIndexBase<I, V>& index, std::int64_t rows) {
    index.m_nState = rows;
  }
};
