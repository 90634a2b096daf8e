// Extents of dataspaces.

#include "h5/extents.h"

#include <algorithm>

#include "h5/handle.h"
#include "h5/stored_dataset.h"

namespace orvio::h5 {

std::optional<Extents> ExtentsOf(hid_t space) {
  Extents extents;
  const H5S_class_t kind = H5Sget_simple_extent_type(space);
  extents.rank = H5Sget_simple_extent_ndims(space);
  if (kind == H5S_NO_CLASS || extents.rank < 0 || extents.rank > H5S_MAX_RANK) return std::nullopt;
  if (extents.rank > 0 && H5Sget_simple_extent_dims(space, extents.dims, nullptr) < 0) return std::nullopt;
  // Not asked of HDF5, whose product wraps around.
  const auto points = kind == H5S_NULL ? 0 : Product(extents.rank, extents.dims);
  if (!points) return std::nullopt;
  extents.points = *points;
  return extents;
}

std::optional<std::uint64_t> Product(int rank, const hsize_t* dims) {
  std::uint64_t product = 1;
  for (int i = 0; i < rank; ++i) {
    if (__builtin_mul_overflow(product, static_cast<std::uint64_t>(dims[i]), &product)) return std::nullopt;
  }
  return product;
}

std::uint64_t StoredElements(hid_t loc, const char* name) {
  StoredDataset dataset(loc, name);
  return dataset ? std::min<std::uint64_t>(dataset.extents().points, H5Dget_storage_size(dataset.get())) : 0;
}

namespace {

/// Elements of the chunks that a dataset has; nothing for one that is stored in another layout.
std::optional<std::uint64_t> ElementsInChunks(StoredDataset& dataset) {
  if (H5Pget_layout(dataset.creation_list()) != H5D_CHUNKED) return std::nullopt;
  hsize_t chunk[H5S_MAX_RANK] = {};
  hsize_t chunks = 0;
  const int rank = dataset.extents().rank;
  if (H5Pget_chunk(dataset.creation_list(), H5S_MAX_RANK, chunk) != rank) return 0;
  if (H5Dget_num_chunks(dataset.get(), H5S_ALL, &chunks) < 0) return 0;
  std::uint64_t elements = 0;
  const auto each = Product(rank, chunk);
  return each && !__builtin_mul_overflow(*each, chunks, &elements) ? elements : UINT64_MAX;
}

std::uint64_t AllocatedIn(StoredDataset& dataset) {
  const hsize_t points = dataset.extents().points;
  if (const auto elements = ElementsInChunks(dataset)) return std::min(points, *elements);
  return std::min<std::uint64_t>(points, H5Dget_storage_size(dataset.get()) / H5Tget_size(dataset.type()));
}

/// Deflate packs a thousand bytes into one. Scale-offset packs any number of equal values into none, but these describe
/// things with ids, of which no two are equal.
constexpr std::uint64_t kMostPerByte = 8000;

/// Bytes that the file of an object may hold packed.
std::uint64_t MostBytesPacked(hid_t object) {
  const File file(H5Iget_file_id(object));
  hsize_t size = 0;
  std::uint64_t bytes = 0;
  if (!file || H5Fget_filesize(file.get(), &size) < 0) return 0;
  return __builtin_mul_overflow(std::uint64_t{size}, kMostPerByte, &bytes) ? UINT64_MAX : bytes;
}

}  // namespace

std::uint64_t AllocatedElements(hid_t loc, const char* name) {
  StoredDataset dataset(loc, name);
  return dataset ? AllocatedIn(dataset) : 0;
}

std::uint64_t BackedElements(hid_t loc, const char* name, std::uint64_t bytes_each) {
  StoredDataset dataset(loc, name);
  if (!dataset) return 0;
  const std::uint64_t size = H5Tget_size(dataset.type());
  return size < bytes_each ? 0 : std::min(AllocatedIn(dataset), MostBytesPacked(dataset.get()) / size);
}

bool HasZero(int rank, const hsize_t* dims) {
  return rank > 0 && std::any_of(dims, dims + rank, [](hsize_t dim) { return dim == 0; });
}

}  // namespace orvio::h5
