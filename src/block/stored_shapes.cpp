// Comparison of a block that is written with the one that is there.

#include "block/stored_shapes.h"

#include <algorithm>
#include <string>

#include "filer/process_state.h"
#include "filer/versions.h"
#include "h5/disk_names.h"
#include "h5/extents.h"
#include "h5/file_access.h"
#include "h5/stored_dataset.h"

namespace orvio {
namespace {

h5::Group OpenExisting(hid_t parent, const char* name) {
  return h5::LinkExists(parent, name) ? h5::OpenGroup(parent, name) : h5::Group();
}

bool HasExtents(const h5::Extents& stored, const std::vector<std::int64_t>& extents) {
  return std::equal(stored.dims, stored.dims + stored.rank, extents.begin(), extents.end(),
                    [](hsize_t dim, std::int64_t extent) { return dim == static_cast<hsize_t>(extent); });
}

bool Fits(hid_t data, const WrittenShape& shape) {
  if (std::ranges::count(shape.extents, 0) > 0) return true;
  h5::StoredDataset dataset(data, shape.dataset);
  if (dataset.is_missing()) return true;
  const bool same = dataset && HasExtents(dataset.extents(), shape.extents) &&
                    (shape.width == 0 || H5Tget_size(dataset.type()) == shape.width);
  if (!same) SetLastError("ORVBlock::WriteBlock::\n\t \"%s\" is stored with other extents", shape.dataset);
  return same;
}

}  // namespace

bool FitsStoredData(hid_t block, const WrittenShapes& shapes) {
  const bool split = process().g_nWriterVersion < kFirstSingleLayoutVersion;
  const h5::Group data = OpenExisting(block, split ? disk::data : disk::orvblock);
  return !data || std::ranges::all_of(shapes, [&](const WrittenShape& shape) { return Fits(data.get(), shape); });
}

bool FitsStoredBlock(hid_t home, std::string_view name, const WrittenShapes& shapes) {
  const h5::Group block = OpenExisting(home, std::string(name).c_str());
  return !block || FitsStoredData(block.get(), shapes);
}

}  // namespace orvio
