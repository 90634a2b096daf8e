#pragma once

/// Blocks of definitions, filled for a write. They borrow the arrays of the object that fills them.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "orvio/orv/detail/text.hpp"
#include "orvio/orv/detail/units.hpp"
#include "orvio/orv/model.hpp"
#include "orvio/orv_filer.h"

namespace orv::detail {

/// The arrays of a variable: labels in the two forms that format versions store, and units.
class VariableArrays {
 public:
  VariableArrays(const Quantity& quantity, const UnitIds& unit) : fields_(fields_of(quantity.components)) {
    for (const std::string& component : quantity.components) {
      const std::string label = component.substr(0, kFieldWidth);
      offsets_.push_back(static_cast<int>(packed_.size()));
      lengths_.push_back(static_cast<int>(label.size()));
      ids_.push_back(static_cast<int>(ids_.size()) + 1);
      packed_ += label;
      base_ids_.insert(base_ids_.end(), unit.base.begin(), unit.base.end());
      derived_ids_.insert(derived_ids_.end(), unit.derived.begin(), unit.derived.end());
    }
    base_counts_.assign(ids_.size(), static_cast<int>(unit.base.size()));
    derived_counts_.assign(ids_.size(), static_cast<int>(unit.derived.size()));
    base_exponents_.assign(base_ids_.size(), 1);
    derived_exponents_.assign(derived_ids_.size(), 1);
  }

  void fill(ORVVariable& block) {
    block.m_ncoo = static_cast<std::int64_t>(ids_.size());
    block.SetOriginalCount(ids_.size());
    block.m_pMbunit = base_counts_.data();
    block.m_pMdunit = derived_counts_.data();
    block.m_pUbid = base_ids_.data();
    block.m_pUbexp = base_exponents_.data();
    block.m_pUdid = derived_ids_.data();
    block.m_pUdexp = derived_exponents_.data();
    block.m_pCname = fields_.data();
    block.m_pCid = ids_.data();
    block.m_subslen = static_cast<std::int64_t>(packed_.size());
    block.m_pSubscr = packed_.data();
    block.m_pSubscnt = lengths_.data();
    block.m_pSubsoffs = offsets_.data();
  }

 private:
  std::vector<char> fields_;
  std::string packed_;
  std::vector<int> offsets_, lengths_, ids_, base_counts_, derived_counts_, base_ids_, derived_ids_;
  std::vector<float> base_exponents_, derived_exponents_;
};

/// The version in which blocks are added to a file.
inline _ORVVersion version_of(ORVFiler& filer) {
  const ORVFileVersion* version = filer.GetFileVersion();
  const int minor = version ? std::clamp(version->m_minor, 0, 2) : 0;
  return static_cast<_ORVVersion>((version && version->m_major >= 2 ? ORV_VERSION_2_0 : ORV_VERSION_1_0) + minor);
}

/// Components that make a shape; 0 for any number of them.
inline std::size_t components_of(Shape shape) { return shape == Shape::scalar ? 0 : shape == Shape::tensor ? 6 : 3; }

inline int rank_of(Shape shape) { return shape == Shape::scalar ? 0 : shape == Shape::vector ? 1 : 2; }

inline void name_variable(const Quantity& quantity, ORVVariable& block) {
  assign(block.m_varnam, quantity.name);
  assign(block.m_varkey, quantity.name);
  assign(block.m_varclass, quantity.quantity_class);
  block.m_rank = rank_of(quantity.shape);
  block.m_ndim = quantity.shape == Shape::scalar ? 0 : quantity.shape == Shape::plane_tensor ? 2 : 3;
  block.m_tensor = quantity.shape == Shape::scalar ? 0 : 1;
}

/// The arrays of a group of variables.
class GroupArrays {
 public:
  explicit GroupArrays(const std::vector<Quantity>& quantities) {
    std::vector<std::string> names;
    for (const Quantity& quantity : quantities) {
      counts_.push_back(static_cast<int>(quantity.components.size()));
      offsets_.push_back(total_);
      names.push_back(quantity.name);
      total_ += counts_.back();
    }
    keys_ = fields_of(names);
  }

  void fill(ORVVariableGrp& block) {
    block.m_nvar = static_cast<std::int64_t>(counts_.size());
    block.m_ncoo = total_;
    block.m_pCnt = counts_.data();
    block.m_pOffs = offsets_.data();
    block.m_pKeys = keys_.data();
  }

 private:
  int total_ = 0;
  std::vector<int> counts_, offsets_;
  std::vector<char> keys_;
};

}  // namespace orv::detail
