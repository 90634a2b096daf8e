// Extents of dataspaces.

#include "h5/extents.h"

#include <algorithm>

#include "h5/file_access.h"
#include "h5/handle.h"

namespace orvio::h5 {

std::optional<Extents> ExtentsOf(hid_t space) {
  Extents extents;
  const hssize_t points = H5Sget_simple_extent_npoints(space);
  extents.rank = H5Sget_simple_extent_ndims(space);
  if (points < 0 || extents.rank < 0 || extents.rank > H5S_MAX_RANK) return std::nullopt;
  extents.points = static_cast<hsize_t>(points);
  if (extents.rank > 0 && H5Sget_simple_extent_dims(space, extents.dims, nullptr) < 0) return std::nullopt;
  return extents;
}

std::optional<Extents> ExtentsOfDataset(hid_t dataset) {
  const Space space(H5Dget_space(dataset));
  return space ? ExtentsOf(space.get()) : std::nullopt;
}

std::optional<std::uint64_t> Product(int rank, const hsize_t* dims) {
  std::uint64_t product = 1;
  for (int i = 0; i < rank; ++i) {
    if (__builtin_mul_overflow(product, static_cast<std::uint64_t>(dims[i]), &product)) return std::nullopt;
  }
  return product;
}

std::uint64_t StoredElements(hid_t loc, const char* name, std::uint64_t bytes_each) {
  const Dataset dataset = LinkExists(loc, name) ? OpenDataset(loc, name) : Dataset();
  const auto extents = dataset ? ExtentsOfDataset(dataset.get()) : std::nullopt;
  if (!extents) return 0;
  return std::min<std::uint64_t>(extents->points, H5Dget_storage_size(dataset.get()) / bytes_each);
}

namespace {

/// Elements of the chunks that a dataset has; nothing for one that is stored in another layout.
std::optional<std::uint64_t> ElementsInChunks(hid_t dataset, int rank) {
  const PropertyList list(H5Dget_create_plist(dataset));
  if (!list || H5Pget_layout(list.get()) != H5D_CHUNKED) return std::nullopt;
  hsize_t chunk[H5S_MAX_RANK] = {};
  hsize_t chunks = 0;
  if (H5Pget_chunk(list.get(), H5S_MAX_RANK, chunk) != rank) return 0;
  if (H5Dget_num_chunks(dataset, H5S_ALL, &chunks) < 0) return 0;
  std::uint64_t elements = 0;
  const auto each = Product(rank, chunk);
  return each && !__builtin_mul_overflow(*each, chunks, &elements) ? elements : UINT64_MAX;
}

}  // namespace

std::uint64_t AllocatedElements(hid_t loc, const char* name) {
  const Dataset dataset = LinkExists(loc, name) ? OpenDataset(loc, name) : Dataset();
  const auto extents = dataset ? ExtentsOfDataset(dataset.get()) : std::nullopt;
  if (!extents) return 0;
  if (const auto elements = ElementsInChunks(dataset.get(), extents->rank)) return std::min(extents->points, *elements);
  const Type type(H5Dget_type(dataset.get()));
  const std::uint64_t size = type ? H5Tget_size(type.get()) : 0;
  return size > 0 ? std::min<std::uint64_t>(extents->points, H5Dget_storage_size(dataset.get()) / size) : 0;
}

bool HasZero(int rank, const hsize_t* dims) {
  return rank > 0 && std::any_of(dims, dims + rank, [](hsize_t dim) { return dim == 0; });
}

}  // namespace orvio::h5
