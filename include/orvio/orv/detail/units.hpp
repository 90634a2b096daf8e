#pragma once

/// The unit system of a file that is written: names become the ids that variables refer to.

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "orvio/orv/detail/text.hpp"
#include "orvio/orv/error.hpp"
#include "orvio/orv/model.hpp"
#include "orvio/orv_filer.h"

namespace orv::detail {

/// Unit ids of one component of a variable.
struct UnitIds {
  std::vector<int> base, derived;
};

/// The tables of a unit system as its block holds them. Base units have the ids 1, 2 and so on, derived ones those behind.
class UnitTables {
 public:
  UnitTables() = default;
  /// Throws Error for a derived unit of something else than base units.
  UnitTables(const std::string& file, const Origin& origin) {
    for (const BaseUnit& unit : origin.base_units) {
      base_.push_back(unit.name);
      dimensions_.push_back(unit.dimension);
      base_ids_.push_back(static_cast<int>(base_ids_.size()) + 1);
      factors_.push_back(static_cast<float>(unit.to_si));
    }
    for (const DerivedUnit& unit : origin.derived_units) {
      derived_.push_back(unit.name);
      derived_ids_.push_back(static_cast<int>(base_.size() + derived_.size()));
      counts_.push_back(static_cast<int>(unit.of.size()));
      for (const auto& [name, exponent] : unit.of) {
        of_ids_.push_back(find(base_, base_ids_, name));
        of_exponents_.push_back(static_cast<float>(exponent));
        if (of_ids_.back() == 0) fail(file, name);
      }
    }
    shifts_.assign(base_.size(), 0);
    scales_.assign(derived_.size(), 1);  // the names are those of the products themselves
    base_fields_ = fields_of(base_);
    dimension_fields_ = fields_of(dimensions_);
    derived_fields_ = fields_of(derived_);
  }

  /// The names of a system that a file has.
  explicit UnitTables(const ORVSystem& system) {
    append(system.m_nbunit, system.m_pUbnam, system.m_pUbid, base_, base_ids_);
    append(system.m_ndunit, system.m_pUdnam, system.m_pUdid, derived_, derived_ids_);
  }

  /// Throws Error for a unit that was not told.
  UnitIds ids(const std::string& file, const std::string& name) const {
    if (name.empty()) return {};
    if (const int id = find(base_, base_ids_, name)) return {{id}, {}};
    if (const int id = find(derived_, derived_ids_, name)) return {{}, {id}};
    fail(file, name);
  }

  void fill(ORVSystem& block) {
    block.m_nbunit = static_cast<std::int64_t>(base_.size());
    block.m_pUbid = base_ids_.data();
    block.m_pUbtyp = dimension_fields_.data();
    block.m_pUbnam = base_fields_.data();
    block.m_pUbcon = factors_.data();
    block.m_pUbshift = shifts_.data();
    block.m_ndunit = static_cast<std::int64_t>(derived_.size());
    block.m_pUdid = derived_ids_.data();
    block.m_pUdnam = derived_fields_.data();
    block.m_pUdscal = scales_.data();
    block.m_pNdbunit = counts_.data();
    block.m_pUdbid = of_ids_.data();
    block.m_pUdbexp = of_exponents_.data();
  }

  bool empty() const { return base_.empty(); }

 private:
  static void append(std::int64_t count, const char* fields, const int* stored, std::vector<std::string>& names,
                     std::vector<int>& ids) {
    for (std::int64_t i = 0; i < count && fields && stored; ++i) {
      names.push_back(text_of(fields + static_cast<std::size_t>(i) * kFieldWidth));
      ids.push_back(stored[i]);
    }
  }

  /// 0 for none.
  static int find(const std::vector<std::string>& names, const std::vector<int>& ids, const std::string& name) {
    const auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? 0 : ids[static_cast<std::size_t>(found - names.begin())];
  }
  [[noreturn]] static void fail(const std::string& file, const std::string& name) {
    throw Error(file, "the unit \"" + name + "\" is none of its unit system",
                "name it among the base or derived units of the origin");
  }

  std::vector<std::string> base_, dimensions_, derived_;
  std::vector<int> base_ids_, derived_ids_, counts_, of_ids_;
  std::vector<float> factors_, shifts_, scales_, of_exponents_;
  std::vector<char> base_fields_, dimension_fields_, derived_fields_;
};

}  // namespace orv::detail
