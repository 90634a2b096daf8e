#pragma once

/// Values and ids of one block, in memory that a host owns.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <limits>
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

[[noreturn]] inline void refuse(const std::string& file, const ORVResult& block, int state,
                                const LibraryText& text = {}) {
  throw Error(file, "values cannot be read: " + text.or_else("they are not what their header announces"),
              "the file is damaged, or from another kind of writer", block.GetBlkPath(), state);
}

/// Whether a file can hold so many values at all. Counts of a damaged header end here; what is left of them ends at the
/// extents of the dataset.
inline bool fits_into(const std::string& file, double count) {
  constexpr double kValuesPerByte = 1000;  // more than any compression of a dataset of this kind reaches
  std::error_code error;
  const auto bytes = static_cast<double>(std::filesystem::file_size(file, error));
  return !error && count <= bytes * kValuesPerByte;
}

/// Which values of a block are read. Layers count from 1; 0 for all.
struct Cut {
  static constexpr std::size_t kAll = std::numeric_limits<std::size_t>::max();

  int layer = 0;
  std::size_t first = 0, entities = kAll;
};

/// A block as it stands in a state (0 for the constant section, below 0 over all states), and where that is.
struct Source {
  const std::string& file;
  ORVFiler& filer;
  const ORVResult& block;
  int state;
};

/// Counts of what is cut out of a block.
struct Extents {
  std::size_t states = 1, entities = 0, layers = 1, parts = 1;

  std::size_t rows() const { return states * entities * layers; }
};

/// Throws Error for counts that the file cannot hold.
inline Extents extents_of(const Source& from, const std::vector<Column>& columns, const Cut& cut) {
  const ORVResult& block = from.block;
  const bool is_multistate = block.IsMultistateBlk();
  const bool has_counts = block.m_nent >= 1 && block.m_ncoo >= 1 && (!is_multistate || block.m_nstate >= 1) &&
                          (!block.IsElementResult() || block.m_numl >= 0);
  const auto is_stored = [&](const Column& column) { return column.place >= 0 && column.place < block.m_ncoo; };
  const bool has_columns = !columns.empty() && std::all_of(columns.begin(), columns.end(), is_stored);
  if (!has_counts || !has_columns || static_cast<std::size_t>(cut.layer) > layers_of(block)) {
    refuse(from.file, block, from.state);
  }
  Extents extents;
  extents.states = is_multistate ? static_cast<std::size_t>(block.m_nstate) : 1;
  extents.entities = cut.entities == Cut::kAll ? static_cast<std::size_t>(block.m_nent) : cut.entities;
  extents.layers = cut.layer > 0 ? 1 : layers_of(block);
  extents.parts = parts_of(block);
  const double count = static_cast<double>(extents.states) * static_cast<double>(extents.entities) *
                       static_cast<double>(extents.layers) * static_cast<double>(columns.size()) *
                       static_cast<double>(extents.parts);
  if (!fits_into(from.file, count)) refuse(from.file, block, from.state);
  return extents;
}

/// A request for one block whose arrays are freed with it, but those that were taken.
template <class T>
class Fetch : public ORVResultValuesBase<T, int> {
 public:
  explicit Fetch(int state) {
    this->m_state = state;
    this->m_layer = 0;
  }
  Fetch(const Fetch&) = delete;
  Fetch& operator=(const Fetch&) = delete;
  ~Fetch() override { this->DeleteAllocation(true); }

  bool run(ORVFiler& filer, ORVResult& block, const std::string& variable) {
    constexpr int kByName = -1, kNoType = -1;
    std::vector<ORVResult*> blocks = {&block};
    return filer.GetValues(*this, blocks, kByName, kNoType, variable.c_str()) == 0 && this->m_valueCount > 0;
  }
  Buffer<T> take() {
    const auto size = static_cast<std::size_t>(this->m_valueCount);
    return Buffer<T>(std::exchange(this->m_values, nullptr), size);
  }
};

/// A copy of a block that is read into memory of this side.
inline ORVResult reader_of(const ORVResult& block) {
  ORVResult reader = block;
  reader.ResetSection(ORV_READ_DATA);  // a host may have memory of its own behind the block, and settings
  reader.m_complexOutput = 0;
  reader.m_readIds = 0;
  return reader;
}

/// All values of a block with one variable and no layers. They come without being touched on the way; empty where the
/// block is another one.
template <class T>
Buffer<T> fetch_at_once(const Source& from, const std::vector<Column>& columns, const Cut& cut) {
  const std::string variable = only_variable(from.block);
  const bool may_have_layers = from.block.IsElementResult() && from.block.m_numl != 1;
  const bool is_whole = columns.size() == static_cast<std::size_t>(from.block.m_ncoo) && cut.entities == Cut::kAll;
  if (variable.empty() || !is_whole || may_have_layers || from.block.IsMultistateBlk()) return {};
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i].place != static_cast<int>(i)) return {};
  }
  ORVResult reader = reader_of(from.block);
  Fetch<T> request(from.state);
  return request.run(from.filer, reader, variable) ? request.take() : Buffer<T>();
}

/// Components that stand side by side in a block.
struct ComponentRun {
  std::size_t first = 0, count = 0;
};

inline std::vector<ComponentRun> runs_of(const std::vector<Column>& columns) {
  std::vector<ComponentRun> runs;
  for (const Column& column : columns) {
    const auto place = static_cast<std::size_t>(column.place);
    if (!runs.empty() && runs.back().first + runs.back().count == place) {
      ++runs.back().count;
    } else {
      runs.push_back({place, 1});
    }
  }
  return runs;
}

enum class LayerAxis { stored, not_stored };

/// Reads a run of components: states x entities x layers x components x parts. False when it cannot be read.
template <class T>
bool read_run(const Source& from, const Extents& extents, const ComponentRun& run, const Cut& cut, LayerAxis layer_axis,
              T* values) {
  ORVResult reader = reader_of(from.block);
  reader.m_res = values;
  reader.m_resType = std::is_same_v<T, float> ? ORV_FLOAT : ORV_DOUBLE;
  std::array<int, 8> axes = {};
  const int rank = reader.GetResDataSetDimension(axes.data());
  std::array<std::uint64_t, 8> start = {}, count = {};
  std::size_t used = 0;
  for (int i = 0; i < rank; ++i) {
    const int axis = axes[static_cast<std::size_t>(i)];
    if (axis == ORV_DIM_LAYER && layer_axis == LayerAxis::not_stored) continue;
    if (axis == ORV_DIM_LAYER && cut.layer > 0) start[used] = static_cast<std::uint64_t>(cut.layer - 1);
    if (axis == ORV_DIM_ENTITY) start[used] = cut.first;
    if (axis == ORV_DIM_COMPONENT) start[used] = run.first;
    count[used++] = axis == ORV_DIM_LAYER       ? extents.layers
                    : axis == ORV_DIM_ENTITY    ? extents.entities
                    : axis == ORV_DIM_COMPONENT ? run.count
                    : axis == ORV_DIM_STATE     ? extents.states
                                                : extents.parts;
  }
  return reader.ReadSelectiveAttribute(from.file.c_str(), from.state, ORV_READ_DATA, ORV_ATT_RES,
                                       static_cast<int>(used), start.data(), count.data(), nullptr, nullptr,
                                       false) == 0;
}

/// Whether elements that announce no layers have several.
inline bool has_more_layers(const Source& from) {
  constexpr int kSecond = 2;
  double value[2] = {};  // a complex one is a pair
  const Extents one{1, 1, 1, parts_of(from.block)};
  return read_run(from, one, {0, 1}, {kSecond, 0, 1}, LayerAxis::stored, value);
}

/// Elements that announce no layers may be stored with one, or without that axis.
template <class T>
bool read_stored_run(const Source& from, const Extents& extents, const ComponentRun& run, const Cut& cut, T* values) {
  if (from.block.IsElementResult() && from.block.m_numl == 0) {
    if (read_run(from, extents, run, cut, LayerAxis::not_stored, values)) return true;
    if (has_more_layers(from)) return false;
  }
  return read_run(from, extents, run, cut, LayerAxis::stored, values);
}

/// Values of the columns of a block: states x entities x layers x columns x parts. The counts of the block must be those
/// of its header there. Throws Error.
template <class T>
Buffer<T> fetch(const Source& from, const std::vector<Column>& columns, const Cut& cut) {
  const LibraryText text;
  const Extents extents = extents_of(from, columns, cut);
  const std::size_t width = columns.size() * extents.parts;
  Buffer<T> whole = fetch_at_once<T>(from, columns, cut);
  if (whole.size() == extents.rows() * width) return whole;
  const std::vector<ComponentRun> runs = runs_of(columns);
  Buffer<T> values(extents.rows() * width);
  std::size_t column = 0;
  for (const ComponentRun& run : runs) {
    const std::size_t run_width = run.count * extents.parts;
    Buffer<T> own(runs.size() > 1 ? extents.rows() * run_width : 0);
    T* const read = runs.size() > 1 ? own.data() : values.data();
    if (!read_stored_run(from, extents, run, cut, read)) refuse(from.file, from.block, from.state, text);
    for (std::size_t row = 0; row < extents.rows() && runs.size() > 1; ++row) {
      std::copy_n(read + row * run_width, run_width, values.data() + row * width + column);
    }
    column += run_width;
  }
  return values;
}

/// Ids of the entities of a block, and whether they are stored: else they are numbers from 1 on.
struct Ids {
  std::vector<std::int64_t> ids;
  bool are_stored = true;
};

/// They may be such that no 32 bits hold them. Throws Error for those that cannot be read.
inline Ids read_ids(const Source& from) {
  if (from.block.m_nent < 1 || !fits_into(from.file, static_cast<double>(from.block.m_nent))) {
    refuse(from.file, from.block, from.state);
  }
  const LibraryText text;
  Ids read;
  read.ids.resize(static_cast<std::size_t>(from.block.m_nent));
  ORVResult reader = reader_of(from.block);
  reader.m_entid = read.ids.data();
  reader.m_entidType = ORV_LONG;
  if (reader.ReadAttribute(from.file.c_str(), from.state, ORV_READ_DATA, ORV_ATT_IDS) == 0) return read;
  std::vector<std::string> names;
  (void)reader.GetDatasetNames(ORV_READ_DATA, names);  // always 0; the ids come last
  std::vector<_ORVDataType> types;
  (void)reader.ReadDatasetFileDataType(from.file.c_str(), from.state, {names.back()}, types);  // the types tell
  if (!types.empty() && types.front() != ORV_UNKNOWN_TYPE) refuse(from.file, from.block, from.state, text);
  std::iota(read.ids.begin(), read.ids.end(), 1);
  read.are_stored = false;
  return read;
}

/// Whether the entity in a row has an id. False as well where that cannot be told.
inline bool has_id_in_row(const Source& from, std::size_t row, std::int64_t id) {
  if (row >= static_cast<std::uint64_t>(from.block.m_nent)) return false;
  std::int64_t stored = 0;
  std::uint64_t start = row, count = 1;
  ORVResult reader = reader_of(from.block);
  reader.m_entid = &stored;
  reader.m_entidType = ORV_LONG;
  const int status = reader.ReadSelectiveAttribute(from.file.c_str(), from.state, ORV_READ_DATA, ORV_ATT_IDS, 1, &start,
                                                   &count, nullptr, nullptr, false);
  return status == 0 && stored == id;
}

/// Whether the values of a block are packed: single rows of them take as long to read as all.
inline bool is_packed(const Source& from) {
  ORVResult reader = from.block;
  std::vector<int> filters;
  return reader.ReadDatasetFilterIds(from.file.c_str(), from.state, "res", filters) != 0 || !filters.empty();
}

}  // namespace orv::detail
