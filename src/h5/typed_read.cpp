// Reading of one dataset, whole or in part, with full checks of type, rank and size. Attributes are in
// attribute_read.cpp. The texts of failures stay inside the library: only the status goes out.

#include <optional>
#include <string>

#include "filer/process_state.h"
#include "h5/data_type.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "h5/file_access.h"
#include "h5/plain_dataset.h"
#include "h5/plain_numbers.h"
#include "h5/scale_offset_read.h"
#include "h5/status.h"
#include "h5/stored_dataset.h"
#include "h5/unset_memory.h"
#include "orvio/oh5_io.h"

namespace orvio::h5 {
namespace {

/// Whether a caller's rank and extents are those of a stored dataset. A rank below 1 asks for exactly one element.
/// Rank 1 also takes a dataset of another rank flat.
///
/// QUIRK: the flat read compares the first extent all the same, so it passes only where the other extents are 1.
/// Callers rely on the refusal to find out that a file stores rows. Pinned by
/// DatasetRead.RefusesAFlatReadWhoseFirstExtentDiffers.
bool FitsWhole(const Extents& stored, int rank, const hsize_t* dims) {
  if (rank < 1) return stored.points == 1;
  if (stored.rank != rank && !(rank == 1 && dims[0] == stored.points)) return false;
  for (int i = 0; i < rank && i < stored.rank; ++i) {
    if (stored.dims[i] != dims[i]) return false;
  }
  return true;
}

/// Whether a selection is of single elements within the dataset, or there is none. What leaves the dataset is HDF5's to
/// refuse.
bool IsPlainSelection(const StoredDataset& dataset, const Slab* slab) {
  if (!slab) return true;
  if (slab->stride || slab->block) return false;
  const Extents& stored = dataset.extents();
  for (int i = 0; i < stored.rank; ++i) {
    if (slab->start[i] > stored.dims[i] || slab->count[i] > stored.dims[i] - slab->start[i]) return false;
  }
  return true;
}

/// Reads values as they lie in the file; nothing where that is not possible.
std::optional<bool> ReadWithoutHdf5(StoredDataset& dataset, const TypeRow& row, const Slab* slab, void* buffer) {
  if (!IsPlainSelection(dataset, slab)) return std::nullopt;
  const PlainSlab part = slab ? PlainSlab{slab->start, slab->count} : PlainSlab{};
  const PlainSlab* selected = slab ? &part : nullptr;
  if (const auto& indexed = dataset.indexed()) {
    if (!IsPlain(indexed->values.shape, row)) return std::nullopt;
    return ReadPlain(indexed->bytes, indexed->values, row, selected, buffer);
  }
  PlainDataset plain(dataset, row);
  return plain ? std::optional(plain.Read(row, selected, buffer)) : std::nullopt;
}

/// Reads what went through the scale-offset filter alone by the library's own decoder: HDF5 cannot read all that its filter
/// writes. All else that is not plain, `count` values, is for `by_hdf5`.
template <class ByHdf5>
bool ReadValues(StoredDataset& dataset, const TypeRow& row, const Slab* slab, hsize_t count, void* buffer,
                ByHdf5 by_hdf5) {
  if (const auto read = ReadWithoutHdf5(dataset, row, slab, buffer)) return *read;
  if (dataset.is_filtered()) {
    const Decoded decoded = ReadScaleOffset(dataset.get(), dataset.extents(), row, slab, buffer);
    if (decoded != Decoded::kNotOurs) return decoded == Decoded::kDone;
  }
  ZeroIfUnset(buffer, count * row.size);
  return by_hdf5();
}

int ReadNumbers(hid_t loc, const char* name, int rank, const hsize_t* dims, _ORVDataType type, void* buffer) {
  if (HasZero(rank, dims)) return kFail;
  const TypeRow* row = FindNumericType(type);
  if (!row) return Fail("DatasetIO::\n\t \"%s\" Unable to get HDF5 datatype for given ORV datatype", name);
  StoredDataset dataset(loc, name);
  if (dataset.is_missing()) return kFail;
  if (!dataset) return Fail("DatasetIO::\n\t Read Failed ::\"%s\"%s", name, dataset.refusal());
  const H5T_class_t stored_class = dataset.type_class();
  if (stored_class != row->type_class) {
    return Fail("DatasetIO::\n\t \"%s\" datatype expected (H5T_class_t=%d). Got (H5T_class_t=%d) type", name,
                row->type_class, stored_class);
  }
  if (!FitsWhole(dataset.extents(), rank, dims)) return Fail("DatasetIO::\n\t \"%s\" dimension mismatch", name);
  const bool read = ReadValues(dataset, *row, nullptr, dataset.extents().points, buffer, [&] {
    return H5Dread(dataset.get(), row->native(), H5S_ALL, H5S_ALL, H5P_DEFAULT, buffer) >= 0;
  });
  return read ? kOk : Fail("DatasetIO::\n\t Read Failed ::\"%s\"", name);
}

bool SameExtents(const Extents& stored, int rank, const hsize_t* dims) {
  if (rank < 1) return stored.points == 1;
  return stored.rank == rank && std::equal(dims, dims + rank, stored.dims);
}

int ReadTexts(hid_t loc, const char* name, int rank, const hsize_t* dims, int size, char* buffer) {
  if (HasZero(rank, dims)) return kFail;
  StoredDataset dataset(loc, name);
  if (dataset.is_missing()) return kFail;
  if (!dataset) return Fail("OH5Read_CHAR::\n\t Read Failed ::\"%s\" %s", name, dataset.refusal());
  const hid_t type = dataset.type();
  const H5T_class_t stored_class = dataset.type_class();
  if (stored_class != H5T_STRING) {
    return Fail("OH5Read_CHAR::\n\t \"%s\" datatype ORV_CHAR expected (H5T_class_t=%d). Got (H5T_class_t=%d) type",
                name, H5T_STRING, stored_class);
  }
  const bool fits = H5Tis_variable_str(type) == 0 && size > 0 && H5Tget_size(type) == static_cast<size_t>(size) &&
                    SameExtents(dataset.extents(), rank, dims);
  if (!fits) return Fail("OH5Read_CHAR::\n\t \"%s\" dimension mismatch", name);
  if (H5Dread(dataset.get(), type, H5S_ALL, H5S_ALL, H5P_DEFAULT, buffer) < 0) {
    return Fail("OH5Read_CHAR::\n\t Read Failed ::\"%s\" ", name);
  }
  return kOk;
}

/// Texts through the numeric interface carry their size as the last of the extents.
int ReadTextsWithSizeInDims(hid_t loc, const char* name, int rank, const hsize_t* dims, char* buffer) {
  if (rank < 1 || dims[rank - 1] > INT32_MAX) return kFail;
  return ReadTexts(loc, name, rank - 1, dims, static_cast<int>(dims[rank - 1]), buffer);
}

/// What a hyperslab read asks for, as the caller handed it in.
struct Selection {
  int rank;
  const hsize_t* start;
  const hsize_t* count;
  const hsize_t* stride;
  const hsize_t* block;
};

int CheckSelection(const char* name, const Extents& stored, const Selection& selection) {
  if (stored.rank != selection.rank) return Fail("OH5Read_SELECTINE::\n\t \"%s\" dimension mismatch", name);
  for (int i = 0; i < selection.rank; ++i) {
    if (selection.count[i] > stored.dims[i]) {
      return Fail("OH5Read_SELECTINE::\n\t \"%s\" block size more than dimension", name);
    }
  }
  if (selection.block && HasZero(selection.rank, selection.block)) {
    return Fail("OH5Read_SELECTINE::\n\t \"%s\" count cannot be less than zero", name);
  }
  return kOk;
}

/// QUIRK: a stride counts only together with a block; alone it has no effect, and callers pass it filled with
/// whatever. Pinned by SelectiveRead.IgnoresAStrideWithoutABlock.
herr_t SelectInFile(hid_t space, const Selection& selection) {
  if (selection.rank < 1) return 0;  // one element, and all of it
  const hsize_t* stride = selection.block ? selection.stride : nullptr;
  return H5Sselect_hyperslab(space, H5S_SELECT_SET, selection.start, stride, selection.count, selection.block);
}

int ReadSelected(StoredDataset& dataset, const char* name, const Selection& selection, const TypeRow& row,
                 void* buffer) {
  const Extents& stored = dataset.extents();
  if (selection.rank < 1 && stored.points != 1) return Fail("OH5Read_SELECTINE::\n\t \"%s\" dimension mismatch", name);
  if (selection.rank > 0 && CheckSelection(name, stored, selection) != kOk) return kFail;

  const auto counted = Product(selection.rank, selection.count);
  const auto blocked = selection.block ? Product(selection.rank, selection.block) : 1;
  hsize_t total = 0;
  if (!counted || !blocked || __builtin_mul_overflow(*counted, *blocked, &total)) return kFail;
  const Slab slab{selection.start, selection.count, selection.block ? selection.stride : nullptr, selection.block};
  const bool read = ReadValues(dataset, row, selection.rank > 0 ? &slab : nullptr, total, buffer, [&] {
    const Space in_memory(H5Screate_simple(1, &total, nullptr));
    return in_memory && SelectInFile(dataset.space(), selection) >= 0 &&
           H5Dread(dataset.get(), row.native(), in_memory.get(), dataset.space(), H5P_DEFAULT, buffer) >= 0;
  });
  if (!read) {
    return Fail("OH5Read_SELECTINE::\n\t Read Failed ::\"%s\"", name);
  }
  return kOk;
}

int ReadSelective(hid_t loc, const char* name, const Selection& selection, _ORVDataType type, void* buffer) {
  if (HasZero(selection.rank, selection.count)) return kFail;
  const TypeRow* row = FindNumericType(type);
  if (!row) return kFail;
  StoredDataset dataset(loc, name);
  if (dataset.is_missing()) return kFail;
  if (!dataset) return Fail("OH5Read_SELECTINE::\n\t Read Failed ::\"%s\"%s", name, dataset.refusal());
  const H5T_class_t stored_class = dataset.type_class();
  if (stored_class != row->type_class) {
    const char* expected = row->type_class == H5T_FLOAT ? "ORV_FLOAT" : "ORV_INT";
    return Fail("OH5Read_SELECTIVE::\n\t \"%s\" datatype %s expected (H5T_class_t = %d). Got H5T_class_t=%d type", name,
                expected, row->type_class, stored_class);
  }
  return ReadSelected(dataset, name, selection, *row, buffer);
}

}  // namespace
}  // namespace orvio::h5

using namespace orvio;  // the exported functions below only forward

int OH5Read_DATASET(hid_t loc, const char* name, int rank, const hsize_t* dims, _ORVDataType type, void* buffer) {
  if (!name || !buffer || (rank > 0 && !dims)) return kFail;
  return h5::Entry(kFail, [&] {
    return type == ORV_CHAR ? h5::ReadTextsWithSizeInDims(loc, name, rank, dims, static_cast<char*>(buffer))
                            : h5::ReadNumbers(loc, name, rank, dims, type, buffer);
  });
}

int OH5Read_CHAR(hid_t loc, const char* name, int rank, const hsize_t* dims, int size, char* buffer) {
  if (!name || !buffer || (rank > 0 && !dims)) return kFail;
  return h5::Entry(kFail, [&] { return h5::ReadTexts(loc, name, rank, dims, size, buffer); });
}

int OH5Read_SELECTIVE(hid_t loc, const char* name, int rank, const hsize_t* start, const hsize_t* count,
                      const hsize_t* stride, const hsize_t* block, _ORVDataType type, void* buffer) {
  if (!name || !buffer || (rank > 0 && (!start || !count))) return kFail;
  return h5::Entry(kFail, [&] {
    return h5::ReadSelective(loc, name, {rank, start, count, stride, block}, type, buffer);
  });
}

int OH5DatasetType(hid_t dataset, _ORVDataType* type) {
  if (!type) return kFail;
  *type = ORV_UNKNOWN_TYPE;
  return h5::Entry(kFail, [&] {
    const h5::Type stored(H5Dget_type(dataset));
    if (stored) *type = h5::ExactType(stored.get());
    return *type == ORV_UNKNOWN_TYPE ? kFail : kOk;
  });
}

int OH5Read_DATATYPE(hid_t loc, const char* name, _ORVDataType* type) {
  if (!type) return kFail;
  *type = ORV_UNKNOWN_TYPE;
  if (!name) return kFail;
  return h5::Entry(kFail, [&] {
    h5::StoredDataset dataset(loc, name, h5::DatasetUse::kDescription);
    if (dataset.is_missing()) {
      *type = ORV_NO_DATASET;
      return kOk;
    }
    return dataset ? OH5DatasetType(dataset.get(), type) : kFail;
  });
}
