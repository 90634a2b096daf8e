#pragma once

// Blocks of states with an `indexic` in forged files, and an incremental index whose insides can be reached.

#include <cstdint>
#include <cstdlib>
#include <string>
#include <vector>

#include "entity/state_index_forge.h"
#include "orvio/orv_incr_index.h"

namespace orv_test {

inline constexpr int kNoFlag = -1;

/// Adds a block of one state and leaves at() at its header.
inline ForgedFile& AddIncr(ForgedFile& file, const std::string& block, Layout layout,
                           const std::vector<std::int32_t>& ids, int flag, int key = 1000) {
  const PartPaths parts(block, layout);
  std::vector<float> values;
  for (const std::int32_t id : ids) values.push_back(static_cast<float>(id) / 2);
  file.at(parts.data);
  file.at(parts.index).dataset<std::int32_t>("indexident", {ids.size()}, ids);
  file.dataset<float>("indexval", {ids.size()}, values);
  file.at(parts.header).integer("block", key).integer("nindex", static_cast<std::int64_t>(ids.size()));
  return flag == kNoFlag ? file : file.integer32("indexic", flag);
}

/// Chooses the index of such a block.
inline ForgedFile& IndexOf(ForgedFile& file, const std::string& block, Layout layout) {
  return file.at(PartPaths(block, layout).index);
}

/// The path under which a walk knows a block.
inline std::string KnownPath(const std::string& block, Layout layout) {
  return layout == Layout::kSplit ? block : block + "/orvblock";
}

/// An incremental index that shows its members. Allocate gives it arrays of its own, one allocation as any other.
class OpenIncrIndex : public ORVIncrIndex {
 public:
  using ORVBlock::CloseH5Reader;
  using ORVBlock::GetH5Reader;
  using ORVBlock::m_indexIdentType;
  using ORVBlock::m_indexValueType;
  using ORVBlock::OpenH5Reader;
  using ORVIncrIndex::m_nIndex;
  using ORVIncrIndex::m_nState;
  using ORVIncrIndex::m_pIncrFlags;
  using ORVIncrIndex::m_pIndexId;
  using ORVIncrIndex::m_pIndexVal;
  using ORVIncrIndex::m_pStateIds;
  using ORVIncrIndex::ReadIncrementValues;

  OpenIncrIndex() = default;
  OpenIncrIndex(const OpenIncrIndex&) = delete;
  OpenIncrIndex& operator=(const OpenIncrIndex&) = delete;
  ~OpenIncrIndex() override { ClearAll(); }

  void Allocate(std::int64_t rows, std::int64_t columns) {
    ClearAll();
    m_nIndex = 0;
    m_nState = 0;
    const std::int64_t cells = rows * columns;
    m_pIndexId = static_cast<int*>(std::calloc(static_cast<std::size_t>(2 * cells + 2 * rows), sizeof(int)));
    m_pIndexVal = reinterpret_cast<float*>(m_pIndexId + cells);
    m_pStateIds = m_pIndexId + 2 * cells;
    m_pIncrFlags = m_pStateIds + rows;
  }

  /// One column with a row per entry.
  void Fill(const std::vector<int>& states, const std::vector<int>& flags, const std::vector<int>& ids) {
    Allocate(static_cast<std::int64_t>(states.size()), 1);
    for (const int state : states) {
      const auto row = static_cast<std::size_t>(m_nState);
      m_pStateIds[row] = state;
      m_pIncrFlags[row] = flags[row];
      m_pIndexId[row] = ids[row];
      ++m_nState;
    }
    m_nIndex = 1;
  }

  std::vector<int> States() const { return Copy(m_pStateIds, m_nState); }
  std::vector<int> Flags() const { return Copy(m_pIncrFlags, m_nState); }
  std::vector<int> Ids() const { return Copy(m_pIndexId, m_nState * m_nIndex); }
  std::vector<float> Values() const { return Copy(m_pIndexVal, m_nState * m_nIndex); }

 private:
  template <class T>
  static std::vector<T> Copy(const T* array, std::int64_t count) {
    return array ? std::vector<T>(array, array + count) : std::vector<T>();
  }
};

}  // namespace orv_test
