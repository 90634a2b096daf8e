#pragma once

/// Elements and parts of a file.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <exception>
#include <limits>
#include <string>
#include <utility>
#include <vector>

#include "orvio/oh5_reader.h"
#include "orvio/orv/detail/fetch.hpp"
#include "orvio/orv/detail/text.hpp"
#include "orvio/orv/error.hpp"
#include "orvio/orv/model.hpp"
#include "orvio/orv_ele_connectivity.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_part.h"

namespace orv::detail {

/// Collects copies of the headers of all blocks of a kind.
template <class Block>
class HeaderWalk : public Block {
 public:
  std::vector<Block> run(const std::string& file, int state) {
    (void)this->IterateBlock(file.c_str(), state, ORV_READ_HEADER, take);  // a place that is not there holds none
    if (failure_) std::rethrow_exception(failure_);
    return std::move(blocks_);
  }

 private:
  /// The walk runs inside HDF5: no exception may leave.
  static _ORVAction take(int status, int stage, void* /*where*/, void* block) noexcept {
    auto& walk = *static_cast<HeaderWalk*>(static_cast<ORVBlock*>(block));
    if (status != 0 || stage != ORV_READ_HEADER || walk.failure_) return ORV_ACTION_CONTINUE;
    try {
      walk.blocks_.push_back(static_cast<const Block&>(walk));
    } catch (...) {
      walk.failure_ = std::current_exception();
    }
    return ORV_ACTION_CONTINUE;
  }

  std::vector<Block> blocks_;
  std::exception_ptr failure_;
};

/// Whether a dataset of a block holds so many values, and the file as many bytes as that takes: a dataset of any size can
/// be described in a few bytes.
inline bool holds_values(const std::string& file, const ORVBlock& block, const char* dataset, double count) {
  if (!fits_into(file, count)) return false;
  OH5Reader reader(file.c_str());
  const bool is_single = block.GetBlkVersion() == ORV_BLK_VERSION_SINGLE;
  const hid_t place =
      reader.OpenGroup(reader.GetFileId(), (block.GetBlkPath() + (is_single ? "" : "/data")).c_str(), 0);
  if (place < 0) return false;
  constexpr std::size_t kMaxRank = 32;
  std::array<hsize_t, kMaxRank> extents = {};
  int rank = 0;
  hsize_t total = 0;
  _ORVDataType type = ORV_UNKNOWN_TYPE;
  const int status = reader.GetDatasetInfo(place, dataset, rank, extents.data(), total, type, nullptr);
  (void)reader.CloseGroup(place);  // the reader closes what is left
  return status == 0 && count <= static_cast<double>(total);
}

inline Elements read_elements(const std::string& file, ORVEleConnectivity block, int state) {
  const LibraryText text;
  const double count = static_cast<double>(block.m_nele), nodes = count * static_cast<double>(block.m_npele);
  const bool is_possible = block.m_nele >= 1 && block.m_npele >= 1;
  if (!is_possible || !holds_values(file, block, "idele", count) || !holds_values(file, block, "ic", nodes)) {
    throw Error(file, "elements are not what their header announces", "the file is damaged", block.GetBlkPath(), state);
  }
  Elements elements;
  elements.type = text_of(block.m_etypelem);
  elements.family = text_of(block.m_etyp);
  elements.node_type = text_of(block.m_etypnode);
  elements.part_type = text_of(block.m_etyppart);
  elements.nodes_per_element = static_cast<std::size_t>(block.m_npele);
  const bool is_dimension = block.m_ndim >= 0 && block.m_ndim <= std::numeric_limits<int>::max();
  elements.dimension = is_dimension ? static_cast<int>(block.m_ndim) : -1;
  elements.ids.resize(static_cast<std::size_t>(block.m_nele));
  elements.parts.resize(elements.ids.size());
  elements.nodes.resize(elements.ids.size() * elements.nodes_per_element);
  block.m_idele = elements.ids.data();
  block.m_pid = elements.parts.data();
  block.m_ic = elements.nodes.data();
  block.m_ideleType = block.m_pidType = block.m_icType = ORV_LONG;
  if (block.ReadBlockByBlockPath(file.c_str(), ORV_READ_DATA) != 0) {
    throw Error(file, "elements cannot be read: " + text.or_else("reading failed"),
                "the file is damaged, or from another kind of writer", block.GetBlkPath(), state);
  }
  return elements;
}

/// Those of one type, or of all.
inline std::vector<Elements> read_all_elements(const std::string& file, int state, const std::string& type = {}) {
  std::vector<Elements> all;
  for (const ORVEleConnectivity& block : HeaderWalk<ORVEleConnectivity>().run(file, state)) {
    const bool is_asked_for = type.empty() || same_word(text_of(block.m_etypelem), type);
    if (block.m_nele != 0 && is_asked_for) all.push_back(read_elements(file, block, state));
  }
  return all;
}

inline void append_parts(ORVFiler& filer, const std::string& type, int state, std::vector<Part>& parts) {
  std::vector<int> ids, materials, material_types;
  std::vector<std::string> titles;
  (void)filer.GetPartInfo(type, ids, titles, materials, material_types, state);  // 0: the lists are empty
  for (std::size_t i = 0; i < ids.size(); ++i) {
    Part part{ids[i], i < titles.size() ? text_of(titles[i].c_str(), titles[i].size()) : "", {}, {}, type};
    if (i < materials.size()) part.material = materials[i];
    if (i < material_types.size()) part.material_type = material_types[i];
    parts.push_back(std::move(part));
  }
}

/// Ids, sorted, each once.
using IdSet = std::vector<std::int64_t>;

/// What belongs to a part: its elements by their type, and the nodes of these by theirs.
struct PartMembers {
  std::vector<std::pair<std::string, IdSet>> sets;

  /// Null for a type that the part has nothing of.
  const IdSet* find(const std::string& type) const {
    for (const auto& [name, ids] : sets) {
      if (same_word(name, type)) return &ids;
    }
    return nullptr;
  }
};

inline void sort_once(IdSet& ids) {
  std::sort(ids.begin(), ids.end());
  ids.erase(std::unique(ids.begin(), ids.end()), ids.end());
}

/// Values of elements stand under their own type or the generic one that it belongs to.
inline PartMembers members_of(const std::vector<Elements>& all, std::int64_t part) {
  PartMembers members;
  const auto set_of = [&](const std::string& type) -> IdSet& {
    for (auto& [name, ids] : members.sets) {
      if (same_word(name, type)) return ids;
    }
    return members.sets.emplace_back(type, IdSet()).second;
  };
  for (const Elements& elements : all) {
    for (std::size_t i = 0; i < elements.size(); ++i) {
      if (elements.parts[i] != part) continue;
      const auto first = elements.nodes.begin() + static_cast<std::ptrdiff_t>(i * elements.nodes_per_element);
      set_of(elements.type).push_back(elements.ids[i]);
      if (!elements.family.empty() && !same_word(elements.family, elements.type)) {
        set_of(elements.family).push_back(elements.ids[i]);
      }
      IdSet& nodes = set_of(elements.node_type);
      nodes.insert(nodes.end(), first, first + static_cast<std::ptrdiff_t>(elements.nodes_per_element));
    }
  }
  for (auto& [name, ids] : members.sets) sort_once(ids);
  return members;
}

}  // namespace orv::detail
