// Comparison of a block that is written with the one that is there.

#include "entity/stored_shapes.h"

#include <algorithm>
#include <string>

#include "filer/process_state.h"
#include "filer/versions.h"
#include "h5/disk_names.h"
#include "h5/file_access.h"
#include "h5/stored_dataset.h"

namespace orvio {
namespace {

h5::Group OpenExisting(hid_t parent, const char* name) {
  return h5::LinkExists(parent, name) ? h5::OpenGroup(parent, name) : h5::Group();
}

bool HasExtents(const h5::Extents& stored, std::initializer_list<std::int64_t> extents) {
  return std::equal(stored.dims, stored.dims + stored.rank, extents.begin(), extents.end(),
                    [](hsize_t dim, std::int64_t extent) { return dim == static_cast<hsize_t>(extent); });
}

bool Fits(hid_t data, const WrittenShape& shape) {
  if (std::ranges::count(shape.extents, 0) > 0) return true;
  h5::StoredDataset dataset(data, shape.dataset);
  if (dataset.is_missing()) return true;
  if (!dataset || !HasExtents(dataset.extents(), shape.extents)) return false;
  return shape.width == 0 || H5Tget_size(dataset.type()) == shape.width;
}

}  // namespace

bool FitsStoredBlock(hid_t home, std::string_view name, std::initializer_list<WrittenShape> shapes) {
  const bool split = process().g_nWriterVersion < kFirstSingleLayoutVersion;
  const h5::Group block = OpenExisting(home, std::string(name).c_str());
  const h5::Group data = block ? OpenExisting(block.get(), split ? disk::data : disk::orvblock) : h5::Group();
  return !data || std::ranges::all_of(shapes, [&](const WrittenShape& shape) { return Fits(data.get(), shape); });
}

}  // namespace orvio
