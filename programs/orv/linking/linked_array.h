// An array of the sidecar before it is written: which values of the result file stand in which of its rows.
#pragma once

#include <hdf5.h>
#include <orvio/orvio.h>

#include <memory>
#include <string>
#include <vector>

#include "linking/row_map.h"
#include "linking/source_file.h"

namespace orvio::program {

enum class NumberKind { kFloat, kDouble, kInt, kLong };

/// Values of one dataset of the result file.
struct Piece {
  std::shared_ptr<const StoredArray> source;
  std::vector<hsize_t> start;  ///< of the selection, one per axis; 0 on those of the entities and components
  std::size_t entity_axis = 0;
  int component_axis = -1;  ///< -1: one value per entity
  SharedRuns runs;
  hsize_t first_row = 0;  ///< of the array, for run.to 0
};

/// Values that are put together from several states.
struct MergedPiece {
  ORVResult* block = nullptr;
  int state = 0;
  std::size_t layer = 0;
  std::shared_ptr<const RowMap> rows;
  hsize_t first_row = 0;  ///< of the array, for row 0
};

struct LinkedArray {
  std::string name;
  bool is_on_points = true;
  NumberKind kind = NumberKind::kFloat;
  hsize_t rows = 0;
  std::size_t components = 1;
  std::vector<hsize_t> columns;  ///< of the source for each component; fewer than components: the others keep the fill
  std::vector<hsize_t> offsets;  ///< first row of each step
  std::vector<Piece> pieces;
  std::vector<MergedPiece> merged;
  std::vector<long long> numbers;  ///< all rows, where integers are not taken from the file; then there are no pieces
  std::string variable;            ///< whose components these are
  hsize_t first_column = 0;        ///< that of the variable in its blocks
  std::string why_copied;          ///< empty: it is virtual
};

/// Columns that follow each other in the source as well as in the array.
struct ColumnGroup {
  hsize_t from = 0, to = 0, count = 0;
};

std::vector<ColumnGroup> GroupColumns(const std::vector<hsize_t>& columns);

/// What a virtual array is made of.
struct Pieces {
  std::size_t slabs = 0;  ///< selections that are mapped onto each other
  std::size_t runs = 0;   ///< of rows in these
};

Pieces CountPieces(const LinkedArray& array);

/// Names end up as links: without '/' and '.'.
std::string PlainName(std::string name);

}  // namespace orvio::program
