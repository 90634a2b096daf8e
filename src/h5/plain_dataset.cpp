// Where HDF5 says that values are.

#include "h5/plain_dataset.h"

#include <algorithm>

#include "h5/held_snapshots.h"
#include "h5/indexed_file.h"
#include "h5/soft_link.h"

namespace orvio::h5 {
namespace {

using structure::ArrayShape;
using structure::ElementKind;

constexpr std::uint64_t kSmall = 4096;  ///< bytes

/// The state of the file that the running operation reads; null for one that is being written, or is in a host's hands.
std::shared_ptr<FileSnapshot> SnapshotOf(hid_t dataset) {
  const File file = FileOf(dataset);
  void* place = nullptr;
  return file && H5Fget_vfd_handle(file.get(), H5P_DEFAULT, &place) >= 0 ? FindHeldSnapshot(place) : nullptr;
}

}  // namespace

bool PlainDataset::FindShape(StoredDataset& dataset) {
  const Extents& stored = dataset.extents();
  const TypeRow* exact = FindNumericType(ExactType(dataset.type()));
  if (!exact || H5Tequal(dataset.type(), exact->native()) <= 0) return false;
  if (stored.rank < 1 || stored.rank > static_cast<int>(ArrayShape::kMostRank)) return false;
  shape_.kind = exact->type_class == H5T_FLOAT ? ElementKind::kFloat : ElementKind::kSigned;
  shape_.element_size = static_cast<std::uint32_t>(exact->size);
  shape_.rank = static_cast<std::uint32_t>(stored.rank);
  std::copy_n(stored.dims, stored.rank, shape_.extents.begin());
  shape_.points = stored.points;
  return stored.points > kSmall / exact->size;
}

PlainDataset::PlainDataset(StoredDataset& dataset, const TypeRow& row) {
  if (dataset.indexed() || H5Pget_layout(dataset.creation_list()) != H5D_CONTIGUOUS) return;
  if (!FindShape(dataset) || !IsPlain(shape_, row)) return;
  const haddr_t offset = H5Dget_offset(dataset.get());
  if (offset == HADDR_UNDEF) return;  // nothing was written yet
  offset_ = offset;
  snapshot_ = SnapshotOf(dataset.get());
}

bool PlainDataset::Read(const TypeRow& row, const PlainSlab* slab, void* buffer) {
  IndexedBytes bytes(*snapshot_);
  return ReadPlain(bytes, {shape_, offset_}, row, slab, buffer);
}

}  // namespace orvio::h5
