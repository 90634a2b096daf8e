#pragma once

/// Values and ids of one block, in memory that a host owns.

#include <algorithm>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <numeric>
#include <string>
#include <system_error>
#include <type_traits>
#include <utility>
#include <vector>

#include "orvio/orv/buffer.hpp"
#include "orvio/orv/detail/definitions.hpp"
#include "orvio/orv/error.hpp"
#include "orvio/orv_filer.h"

namespace orv::detail {

[[noreturn]] inline void refuse(const std::string& file, const ORVResult& block, int state) {
  throw Error(file, "values cannot be read: " + library_text("reading failed"),
              "the file is damaged, or from another kind of writer", block.GetBlkPath(), state);
}

/// A request for one block. The arrays of an answer are freed with it, but those that were taken.
template <class T>
class Fetch : public ORVResultValuesBase<T, int> {
 public:
  /// `layer` counts from 1; 0 for all.
  Fetch(int state, int layer) {
    this->m_state = state;
    this->m_layer = layer > 0 ? layer - 1 : static_cast<int>(ORV_ALL_LAYERS);
  }
  Fetch(const Fetch&) = delete;
  Fetch& operator=(const Fetch&) = delete;
  ~Fetch() override { this->DeleteAllocation(true); }

  bool run(ORVFiler& filer, ORVResult& block, const char* variable) { return run(filer, block, kByName, variable); }
  bool run(ORVFiler& filer, ORVResult& block, int iid) { return run(filer, block, iid, nullptr); }

  /// One value per entity, with what earlier states changed, and the ids.
  bool run_merged(ORVFiler& filer, ORVResult& block, int iid) {
    std::vector<ORVResult*> blocks = {&block};
    this->m_wantIds = 1;
    return filer.GetIncrValues(*this, blocks, iid, kNoType, nullptr) == 0 && this->m_idCount == this->m_valueCount;
  }

  Buffer<T> take() {
    const auto size = static_cast<std::size_t>(this->m_valueCount);
    return Buffer<T>(std::exchange(this->m_values, nullptr), size);
  }
  std::vector<std::int64_t> ids() const { return {this->m_ids, this->m_ids + this->m_idCount}; }

 private:
  static constexpr int kByName = -1;
  static constexpr int kNoType = -1;

  bool run(ORVFiler& filer, ORVResult& block, int iid, const char* variable) {
    std::vector<ORVResult*> blocks = {&block};
    return filer.GetValues(*this, blocks, iid, kNoType, variable) == 0 && this->m_valueCount > 0;
  }
};

/// Puts the values of single components side by side. All have the same size.
template <class T>
Buffer<T> interleave(const std::vector<Buffer<T>>& columns, std::size_t parts) {
  Buffer<T> rows(columns.front().size() * columns.size());
  T* out = rows.data();
  for (std::size_t place = 0; place < columns.front().size(); place += parts) {
    for (const Buffer<T>& column : columns) {
      for (std::size_t part = 0; part < parts; ++part) *out++ = column[place + part];
    }
  }
  return rows;
}

/// Whether a file can hold so many values at all. Counts of a damaged header end here; what is left of them ends at the
/// extents of the dataset.
inline bool fits_into(const std::string& file, double count) {
  constexpr double kValuesPerByte = 1000;  // more than any compression of a dataset of this kind reaches
  std::error_code error;
  const auto bytes = static_cast<double>(std::filesystem::file_size(file, error));
  return !error && count <= bytes * kValuesPerByte;
}

/// All layers of all components of elements in one read: a fetch by name takes one layer, and one by handle a component.
template <class T>
Buffer<T> read_elements_whole(const std::string& file, const ORVResult& block, int state) {
  ORVResult reader = block;
  if (state > 0 && reader.ReadBlock(file.c_str(), state, ORV_READ_HEADER) != 0) refuse(file, block, state);
  const double count = static_cast<double>(reader.m_nent) * static_cast<double>(layers_of(reader)) *
                       static_cast<double>(reader.m_ncoo) * static_cast<double>(parts_of(reader));
  if (reader.m_nent < 1 || reader.m_ncoo < 1 || layers_of(reader) != layers_of(block) || !fits_into(file, count)) {
    refuse(file, block, state);
  }
  Buffer<T> values(static_cast<std::size_t>(count));
  reader.m_res = values.data();
  reader.m_resType = std::is_same_v<T, float> ? ORV_FLOAT : ORV_DOUBLE;
  if (reader.ReadAttribute(file.c_str(), state, ORV_READ_DATA, ORV_ATT_RES) != 0) refuse(file, block, state);
  return values;
}

/// Values of the columns of a block: entities x layers x columns x parts, before these the states of a block that holds
/// all of them. Throws Error.
template <class T>
Buffer<T> fetch(const std::string& file, ORVFiler& filer, ORVResult& block, const std::vector<Column>& columns,
                int state, int layer) {
  const ORVVariable* whole = only_variable(block);
  if (whole && static_cast<std::size_t>(whole->m_ncoo) == columns.size()) {
    if (layers_of(block) > 1 && layer == 0 && !block.IsMultistateBlk()) {
      return read_elements_whole<T>(file, block, state);
    }
    Fetch<T> all(state, layer);
    const bool has_all_layers = layers_of(block) == 1 || layer > 0;
    if (has_all_layers && all.run(filer, block, text_of(whole->m_varnam).c_str())) return all.take();
  }
  std::vector<Buffer<T>> read;
  for (const Column& column : columns) {
    Fetch<T> one(state, layer);
    if (!one.run(filer, block, column.iid)) refuse(file, block, state);
    read.push_back(one.take());
    if (read.back().size() != read.front().size() || read.back().size() % parts_of(block) != 0) {
      refuse(file, block, state);
    }
  }
  if (read.empty()) refuse(file, block, state);
  return read.size() == 1 ? std::move(read.front()) : interleave(read, parts_of(block));
}

/// The same for a block that holds at this state nothing but changes: put together from the last full state on. The map of
/// states must have been made. Layer by layer, so that a damaged number of layers ends at the first that is not there.
template <class T>
Buffer<T> fetch_merged(const std::string& file, ORVFiler& filer, ORVResult& block, const std::vector<Column>& columns,
                       int state, int layer, std::vector<std::int64_t>& ids) {
  const int first = layer > 0 ? layer : 1;
  const int last = layer > 0 ? layer : static_cast<int>(std::min<std::size_t>(layers_of(block), INT_MAX));
  std::vector<Buffer<T>> read;  // layer by layer, column by column
  for (int i = first; i <= last; ++i) {
    for (const Column& column : columns) {
      Fetch<T> one(state, block.IsElementResult() ? i : 0);
      if (!one.run_merged(filer, block, column.iid)) refuse(file, block, state);
      if (read.empty()) ids = one.ids();
      read.push_back(one.take());
      if (read.back().size() != ids.size()) refuse(file, block, state);
    }
  }
  if (read.empty()) refuse(file, block, state);
  return interleave(read, 1);
}

/// Ids of so many entities. Other writers store some that no 32 bits hold, so they are read beside the values. Entities
/// without ids are numbered.
inline std::vector<std::int64_t> read_ids(const std::string& file, const ORVResult& block, int state,
                                          std::size_t count) {
  std::vector<std::int64_t> ids(count);
  ORVResult reader = block;
  reader.m_nent = static_cast<std::int64_t>(count);
  reader.m_entid = ids.data();
  reader.m_entidType = ORV_LONG;
  if (reader.ReadAttribute(file.c_str(), state, ORV_READ_DATA, ORV_ATT_IDS) == 0) return ids;
  std::vector<std::string> names;
  (void)reader.GetDatasetNames(ORV_READ_DATA, names);  // always 0; the ids come last
  std::vector<_ORVDataType> types;
  (void)reader.ReadDatasetFileDataType(file.c_str(), state, {names.back()}, types);  // the types tell
  if (!types.empty() && types.front() != ORV_UNKNOWN_TYPE) refuse(file, block, state);
  std::iota(ids.begin(), ids.end(), 1);
  return ids;
}

}  // namespace orv::detail
