#pragma once

/// Blocks of values, parts and elements, filled for a write. They borrow the arrays of the object that fills them.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "orvio/orv/detail/text.hpp"
#include "orvio/orv/error.hpp"
#include "orvio/orv/model.hpp"
#include "orvio/orv_ele_connectivity.h"
#include "orvio/orv_part.h"
#include "orvio/orv_result.h"
#include "orvio/orv_switches.h"

namespace orv::detail {

/// Ids as the classes store them. Throws Error for one that does not fit.
template <class Ids>
std::vector<int> narrow(const std::string& file, const Ids& ids) {
  std::vector<int> narrowed;
  narrowed.reserve(ids.size());
  for (const auto id : ids) {
    using Id = std::remove_const_t<decltype(id)>;
    static_assert(std::is_integral_v<Id>, "ids are integers");
    bool fits = true;
    if constexpr (std::is_unsigned_v<Id>) {
      fits = id <= static_cast<std::make_unsigned_t<int>>(std::numeric_limits<int>::max());
    } else {
      fits = id >= std::numeric_limits<int>::min() && id <= std::numeric_limits<int>::max();
    }
    if (!fits) throw Error(file, "id " + std::to_string(id) + " does not fit into 32 bits", "number the entities anew");
    narrowed.push_back(static_cast<int>(id));
  }
  return narrowed;
}

/// The arrays of a block of elements.
class ElementArrays {
 public:
  /// Throws Error for lists that do not go together.
  ElementArrays(const std::string& file, const Elements& elements)
      : elements_(elements),
        ids_(narrow(file, elements.ids)),
        nodes_(narrow(file, elements.nodes)),
        parts_(narrow(file, elements.parts)) {
    if (parts_.empty()) parts_.assign(ids_.size(), 1);
    const std::size_t width = elements.nodes_per_element;
    const bool has_nodes = width > 0 && nodes_.size() / width == ids_.size() && nodes_.size() % width == 0;
    if (has_nodes && parts_.size() == ids_.size()) return;
    throw Error(file, "elements of type \"" + elements.type + "\" have lists of unequal lengths",
                "give nodes_per_element nodes and a part for each");
  }

  void fill(ORVEleConnectivity& block) {
    assign(block.m_etyp, elements_.family);
    assign(block.m_etypelem, elements_.type);
    assign(block.m_etyppart, elements_.part_type);
    assign(block.m_etypnode, elements_.node_type);
    block.m_nele = static_cast<std::int64_t>(ids_.size());
    block.m_npele = static_cast<std::int64_t>(elements_.nodes_per_element);
    block.m_ndim = elements_.dimension;
    block.m_idele = ids_.data();
    block.m_pid = parts_.data();
    block.m_ic = nodes_.data();
  }

 private:
  const Elements& elements_;
  std::vector<int> ids_, nodes_, parts_;
};

/// The arrays of a block of parts, all of one type.
class PartArrays {
 public:
  PartArrays(const std::string& file, const std::vector<Part>& parts, bool has_fixed_slots)
      : type_(parts.front().type) {
    std::vector<std::int64_t> ids;
    std::vector<std::string> titles;
    std::size_t longest = 0;
    for (const Part& part : parts) {
      ids.push_back(part.id);
      titles.push_back(part.title);
      longest = std::max(longest, part.title.size());
      materials_.push_back(part.material.value_or(0));
      material_types_.push_back(part.material_type.value_or(0));
      has_materials_ = has_materials_ || part.material;
      has_material_types_ = has_material_types_ || part.material_type;
    }
    ids_ = narrow(file, ids);
    constexpr std::size_t kSpare = 2;  // readers keep the blank behind a title that is one byte short of its slot
    width_ = has_fixed_slots ? kFieldWidth : longest + kSpare;
    slots_ = fields_of(titles, width_);
    slots_.push_back('\0');
  }

  void fill(ORVPart& block) {
    assign(block.m_etyppart, type_);
    block.m_npart = static_cast<std::int64_t>(ids_.size());
    block.m_length = static_cast<int>(width_);
    block.m_pid = ids_.data();
    block.m_title = slots_.data();
    if (has_materials_) block.m_mid = materials_.data();
    if (has_material_types_) block.m_mtyp = material_types_.data();
  }

 private:
  std::string type_;
  std::vector<int> ids_, materials_, material_types_;
  bool has_materials_ = false, has_material_types_ = false;
  std::size_t width_ = 0;
  std::vector<char> slots_;
};

inline int kind_of(const Target& target) {
  if (target.layers > 0) return target.is_complex ? ORV_RESULT_ELEMENT_COMPLEX : ORV_RESULT_ELEMENT;
  return target.is_complex ? ORV_RESULT_ENTITY_COMPLEX : ORV_RESULT_ENTITY;
}

/// Chunks for packed values, for the life of the scope: the values of one entity are found without unpacking all others.
class ChunkScope {
 public:
  ChunkScope() : before_(ORVSetChunkEntities(kEntities)) {}
  ChunkScope(const ChunkScope&) = delete;
  ChunkScope& operator=(const ChunkScope&) = delete;
  ~ChunkScope() { (void)ORVSetChunkEntities(before_); }

 private:
  static constexpr int kEntities = 4096;

  int before_;
};

/// A result block without index. `ids` are borrowed, and so are the values.
template <class Number>
ORVResult result_of(const std::string& variable, const Target& target, std::size_t components, std::vector<int>& ids,
                    const Number* values) {
  ORVResult result(kind_of(target));
  result.SetEntityAndVarName(target.entity, variable);
  assign(result.m_etypzone, target.zone);
  assign(result.m_subBlockName, target.zone);
  result.m_nent = static_cast<std::int64_t>(ids.size());
  result.m_numl = std::max(target.layers, 1);
  result.m_ncoo = static_cast<std::int64_t>(components);
  result.m_readIds = 1;  // writes the ids beside the values
  result.m_entid = ids.data();
  result.m_res = const_cast<Number*>(values);  // only read
  result.m_resType = std::is_same_v<Number, float> ? ORV_FLOAT : ORV_DOUBLE;
  result.m_nCompressionFactor = target.digits.value_or(-1);
  return result;
}

}  // namespace orv::detail
