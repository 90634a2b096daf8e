// The values of a quantity at one state.
#pragma once

#include <cstddef>
#include <vector>

#include "comparing/quantity_list.h"
#include "reading/result_file.h"

namespace orvio::program {

/// The values of one entity: its layers, of one part each, or two for complex values.
struct ComparedValues {
  const double* values = nullptr;
  std::size_t layers = 0;
  bool is_float = false;  ///< stored as such
};

/// One component of all entities, block behind block.
class ComponentValues {
 public:
  /// By their number among the ids, and by a row from 0 among the states of a block that has several.
  ComparedValues Of(std::size_t entity, std::size_t row) const;

 private:
  friend class StateValues;

  struct Piece {
    std::size_t first_entity = 0, entities = 0, layers = 0;
    std::vector<double> values;
    bool is_float = false;
  };

  std::size_t parts_ = 1;
  std::vector<Piece> pieces_;
};

/// Reads component by component, so that no more than one of them is in memory.
class StateValues {
 public:
  /// `state` is 0 for the constant section and -1 for blocks that hold all states.
  StateValues(ResultFile& file, const ComparedQuantity& quantity, int state);

  bool IsStored() const { return !sources_.empty(); }
  /// States of a block that holds several; 1 for all others.
  std::size_t Rows() const { return rows_; }
  /// Throws Trouble.
  ComponentValues Read(const Component& component);
  /// Of all blocks, once a component has been read.
  const std::vector<long long>& ids() const { return ids_; }

 private:
  struct Source {
    ORVResult* block = nullptr;
    std::size_t count = 0;
    bool is_incremental = false, is_double = false;
  };

  Source Look(ORVResult& block);
  void TakeLayersOf(ORVResult& block) const;
  template <class T>
  ComponentValues::Piece ReadPiece(const Source& source, int iid, std::vector<long long>& ids);

  ResultFile& file_;
  int state_;
  bool is_element_, is_complex_;
  std::size_t rows_ = 1;
  std::vector<Source> sources_;
  std::vector<long long> ids_;
  bool has_ids_ = false;
};

}  // namespace orvio::program
