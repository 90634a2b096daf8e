// Doubles hold a float's bits without loss, so that they serve both.

#include "linking/copied_rows.h"

#include <algorithm>
#include <map>

#include "reading/block_values.h"
#include "reading/quantity_search.h"
#include "reading/words.h"
#include "trouble.h"

namespace orvio::program {
namespace {

/// The rows of one step.
struct Slab {
  hsize_t first = 0, rows = 0;
  std::vector<const Piece*> pieces;
  std::vector<const MergedPiece*> merged;
};

std::vector<Slab> SlabsOf(const LinkedArray& array) {
  std::map<hsize_t, Slab> slabs;
  for (const hsize_t offset : array.offsets) slabs[offset].first = offset;
  for (const Piece& piece : array.pieces) slabs[piece.first_row].pieces.push_back(&piece);
  for (const MergedPiece& piece : array.merged) slabs[piece.first_row].merged.push_back(&piece);
  std::vector<Slab> list;
  for (auto slab = slabs.begin(); slab != slabs.end(); ++slab) {
    const hsize_t end = std::next(slab) == slabs.end() ? array.rows : std::next(slab)->first;
    slab->second.rows = end - slab->first;
    list.push_back(std::move(slab->second));
  }
  return list;
}

class SlabReader {
 public:
  SlabReader(ResultFile& file, const LinkedArray& array) : file_(file), array_(array) {}

  std::vector<double> Read(const Slab& slab, double fill) {
    std::vector<double> values(static_cast<std::size_t>(slab.rows) * array_.components, fill);
    for (const Piece* piece : slab.pieces) Put(*piece, values);
    for (const MergedPiece* piece : slab.merged) Put(*piece, values);
    return values;
  }

 private:
  /// Reads the dataset whole: what it has in reading that is not needed, it saves in asking.
  void Put(const Piece& piece, std::vector<double>& values) {
    const StoredArray& source = *piece.source;
    std::size_t total = 1;
    for (const hsize_t extent : source.extents) total *= static_cast<std::size_t>(extent);
    std::vector<double> stored(total);
    std::vector<hsize_t> extents = source.extents;
    OH5Reader reader(file_.path().c_str());
    const std::size_t slash = source.path.rfind('/');
    const hid_t group = reader.OpenGroup(reader.GetFileId(), source.path.substr(0, slash).c_str(), H5P_DEFAULT);
    const int status = reader.ReadDatasetAll(group, source.path.c_str() + slash + 1, static_cast<int>(extents.size()),
                                             extents.data(), ORV_DOUBLE, stored.data());
    (void)reader.CloseGroup(group);  // the reader closes what is left
    if (group < 0 || status != 0) {
      throw Trouble(file_.path(), source.path + " cannot be read: " + LibraryText("reading failed"),
                    "the file is damaged");
    }
    for (const Run& run : piece.runs->list) {
      for (hsize_t i = 0; i < run.count; ++i) PutRow(piece, stored, run.from + i, run.to + i, values);
    }
  }

  void PutRow(const Piece& piece, const std::vector<double>& stored, hsize_t from, hsize_t to,
              std::vector<double>& values) const {
    for (std::size_t i = 0; i < array_.columns.size(); ++i) {
      std::size_t place = 0;
      for (std::size_t axis = 0; axis < piece.start.size(); ++axis) {
        hsize_t at = piece.start[axis];
        if (axis == piece.entity_axis) at += from;
        if (static_cast<int>(axis) == piece.component_axis) at += array_.columns[i];
        place = place * static_cast<std::size_t>(piece.source->extents[axis]) + static_cast<std::size_t>(at);
      }
      values[static_cast<std::size_t>(to) * array_.components + i] = stored[place];
    }
  }

  void Put(const MergedPiece& piece, std::vector<double>& values) {
    const bool is_double = file_.IsDouble(*piece.block, file_.ChainOf(*piece.block, piece.state).base);
    is_double ? PutMerged<double>(piece, values) : PutMerged<float>(piece, values);
  }

  template <class T>
  void PutMerged(const MergedPiece& piece, std::vector<double>& values) {
    const std::vector<int> handles = HandlesOf(*piece.block);
    for (std::size_t i = 0; i < handles.size(); ++i) {
      std::vector<long long> ids;
      const std::vector<T> merged = ReadMergedComponent<T>(file_, *piece.block, handles[i], piece.state, ids);
      if (ids.empty()) continue;
      const std::size_t layers = merged.size() / ids.size();
      for (std::size_t row = 0; row < ids.size() && piece.layer < layers; ++row) {
        const hsize_t to = piece.rows->At(ids[row]);
        if (to == RowMap::kNone) continue;
        values[static_cast<std::size_t>(to) * array_.components + i] = merged[row * layers + piece.layer];
      }
    }
  }

  /// Internal ids of the handles of the components, in the order of the array.
  std::vector<int> HandlesOf(ORVResult& block) {
    FoundQuantity quantity;
    quantity.blocks = {&block};
    const ValueRequest request{array_.variable, "", "", {}};
    const std::vector<ComponentColumn> columns = ColumnsOf(file_, request, quantity, block);
    std::vector<int> handles;
    for (const hsize_t column : array_.columns) {
      const hsize_t place = column - array_.first_column;
      if (place >= columns.size()) RefuseBlock(file_, block);
      handles.push_back(columns[static_cast<std::size_t>(place)].iid);
    }
    return handles;
  }

  ResultFile& file_;
  const LinkedArray& array_;
};

}  // namespace

void CopyRows(ResultFile& file, const LinkedArray& array, double fill, const RowWriter& write) {
  SlabReader reader(file, array);
  for (const Slab& slab : SlabsOf(array)) write(slab.first, reader.Read(slab, fill));
}

}  // namespace orvio::program
