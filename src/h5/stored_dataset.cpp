// What is looked at before a dataset may be used.

#include "h5/stored_dataset.h"

#include <algorithm>
#include <cstdint>

#include "h5/data_type.h"
#include "h5/disk_names.h"
#include "h5/file_access.h"
#include "h5/filters.h"
#include "h5/indexed_file.h"
#include "h5/plain_numbers.h"

namespace orvio::h5 {
namespace {

/// A virtual dataset opens its sources as soon as its extents are wanted, so this comes before all other questions.
const char* RoadOut(hid_t creation_list) {
  const H5D_layout_t layout = H5Pget_layout(creation_list);
  if (layout == H5D_VIRTUAL) return "\n\t it shows values of other files";
  if (layout != H5D_COMPACT && layout != H5D_CONTIGUOUS && layout != H5D_CHUNKED)
    return "\n\t it has an unknown layout";
  return H5Pget_external_count(creation_list) == 0 ? nullptr : "\n\t its values lie in other files";
}

/// Numbers of up to 16 bytes and fixed texts are stored as they are in memory. All else stays unread by the library.
bool HasPlainValues(hid_t type) {
  const H5T_class_t type_class = H5Tget_class(type);
  if (type_class == H5T_STRING) return H5Tis_variable_str(type) == 0;
  return type_class == H5T_INTEGER || type_class == H5T_FLOAT;
}

/// The work buffers of HDF5 are as large as a chunk, however little of it is stored. A chunk of more than is made on a
/// file's word alone must be one that the dataset needs.
bool HasFittingChunks(hid_t creation_list, const Extents& extents, std::uint64_t element, std::uint64_t total) {
  hsize_t chunk[H5S_MAX_RANK] = {};
  if (H5Pget_chunk(creation_list, H5S_MAX_RANK, chunk) != extents.rank) return false;
  std::uint64_t bytes = 0;
  const auto points = Product(extents.rank, chunk);
  if (!points || *points == 0 || __builtin_mul_overflow(*points, element, &bytes)) return false;
  return bytes < (std::uint64_t{1} << 32) && bytes / 2 <= std::max(kUnbackedBytes, total);
}

}  // namespace

StoredDataset::StoredDataset(hid_t loc, const char* name, DatasetUse use) : use_(use) {
  if (IsIndexed(loc) && FindIndexed(loc, name)) return;
  const Hdf5Location by_hdf5(loc);
  Open(by_hdf5.get(), name);
}

/// Whether the catalogue tells all about it, be it that it is missing.
bool StoredDataset::FindIndexed(hid_t loc, const char* name) {
  const IndexedPlace place(loc);
  if (!place) return false;
  const auto found = place.Follow(name);
  if (found.answer == structure::Catalogue::Answer::kNo) return true;
  if (found.answer == structure::Catalogue::Answer::kUnknown || !place.catalogue().HasValues(found.object))
    return false;
  indexed_.emplace(IndexedValues{loc, name, place.file->bytes(), place.catalogue().ValuesOf(found.object)});
  const structure::ArrayShape& shape = indexed_->values.shape;
  extents_.rank = static_cast<int>(shape.rank);
  std::copy_n(shape.extents.begin(), shape.rank, extents_.dims);
  extents_.points = shape.points;
  is_missing_ = false;
  return true;
}

/// The same dataset, opened by HDF5 if it is not yet.
StoredDataset& StoredDataset::ByHdf5() {
  if (!indexed_ || dataset_) return *this;
  const Hdf5Location by_hdf5(indexed_->loc);
  Open(by_hdf5.get(), indexed_->name.c_str());
  return *this;
}

H5T_class_t StoredDataset::type_class() {
  return indexed_ ? ClassOf(indexed_->values.shape.kind) : H5Tget_class(type());
}

_ORVDataType StoredDataset::exact_type() {
  const bool is_told = indexed_ && indexed_->values.shape.kind != structure::ElementKind::kOther;
  return is_told ? ExactType(type_class(), indexed_->values.shape.element_size) : ExactType(type());
}

void StoredDataset::Open(hid_t loc, const char* name) {
  H5L_info2_t link = {};
  if (H5Lget_info2(loc, name, &link, DatasetAccess()) < 0) return;
  is_missing_ = false;
  if (link.type != H5L_TYPE_HARD && link.type != H5L_TYPE_SOFT) {
    refusal_ = "\n\t it lies in another file";
    return;
  }
  dataset_ = Dataset(H5Dopen2(loc, name, DatasetAccess()));
  if (!dataset_) return;
  if (const char* refusal = Refusal()) {
    refusal_ = refusal;
    // The creation list of a virtual dataset that is left open ends the process at its exit.
    creation_list_.reset();
    dataset_.reset();
  }
}

const char* StoredDataset::Refusal() {
  constexpr const char* kUnreadable = "\n\t it is damaged";
  creation_list_ = PropertyList(H5Dget_create_plist(dataset_.get()));
  if (!creation_list_) return kUnreadable;
  if (const char* road = RoadOut(creation_list_.get())) return road;
  type_ = Type(H5Dget_type(dataset_.get()));
  space_ = Space(H5Dget_space(dataset_.get()));
  const auto extents = space_ ? ExtentsOf(space_.get()) : std::nullopt;
  if (!type_ || !extents) return kUnreadable;
  extents_ = *extents;

  std::uint64_t total = 0;
  const std::uint64_t element = H5Tget_size(type_.get());
  if (element == 0 || __builtin_mul_overflow(extents_.points, element, &total) || total > INT64_MAX) {
    return "\n\t its extents are impossible";
  }
  const bool plain = HasPlainValues(type_.get());
  if (plain && H5Tget_class(type_.get()) != H5T_STRING && element > disk::kWidestNumber)
    return "\n\t its type is impossible";
  const H5D_layout_t layout = H5Pget_layout(creation_list_.get());
  if (layout == H5D_CHUNKED) {
    if (!HasFittingChunks(creation_list_.get(), extents_, element, total)) return "\n\t its chunks are impossible";
    if (use_ == DatasetUse::kDescription || FiltersFit(creation_list_.get(), type_.get(), extents_.rank))
      return nullptr;
    return "\n\t its filters are not those of the format";
  }
  const hsize_t stored = plain ? H5Dget_storage_size(dataset_.get()) : 0;
  return stored == 0 || stored == total ? nullptr : "\n\t its storage does not fit its extents";
}

}  // namespace orvio::h5
