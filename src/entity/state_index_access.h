#pragma once

// What the library's own code does with the arrays of an index.

#include <type_traits>

#include "entity/state_index_blocks.h"
#include "h5/c_array.h"
#include "h5/dataset_reader.h"
#include "h5/disk_names.h"
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

  /// Reads ids and values, each of the shape, to where the pointers of the index lead.
  template <class I, class V>
  [[nodiscard]] static int Read(ORVIndexBase<I, V>& index, hid_t group, orvio::h5::DatasetReader::Shape shape) {
    const _ORVDataType value_type = std::is_same_v<V, double> ? ORV_DOUBLE : index.m_indexValueType;
    const bool ids_fit = !index.m_pIndexId || orvio::FitsElement(index.m_indexIdentType, sizeof(I));
    if (!ids_fit || !orvio::FitsElement(value_type, sizeof(V))) return orvio::kFail;
    orvio::h5::DatasetReader in(index.GetH5Reader(), group);
    if (index.m_pIndexId) in.integers(orvio::disk::indexident, index.m_indexIdentType, index.m_pIndexId, shape);
    in.floats(orvio::disk::indexval, value_type, index.m_pIndexVal, shape);
    return in.status();
  }

  /// Reads the one row of a state. A group with the rows of many is not one of a state, whatever led to it.
  template <class I, class V>
  [[nodiscard]] static int ReadRow(ORVIndexBase<I, V>& index, hid_t group) {
    return orvio::HasRowsOfStates(group, false) ? orvio::kFail : Read(index, group, {index.m_nIndex});
  }

  /// Reads one state after the other until one fails. The pointers lead to the last row read afterwards.
  template <class I, class V>
  [[nodiscard]] static int ReadRows(ORVIndexBase<I, V>& index, orvio::StateIndexBlocks& blocks, bool filter,
                                    int& count) {
    V* const values = index.m_pIndexVal;
    I* const ids = index.m_pIndexId;
    for (int state = 0; state < blocks.GetNumState(); ++state) {
      const auto read = [&](hid_t part) {
        PointAtRow(index, values, ids, count);
        return ReadRow(index, part);
      };
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
