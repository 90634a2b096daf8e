// The growing write: a hyperslab into a chunked dataset without limit.

#include <algorithm>

#include "filer/process_state.h"
#include "h5/data_type.h"
#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "h5/file_access.h"
#include "h5/scale_offset.h"
#include "h5/status.h"
#include "h5/stored_dataset.h"
#include "orvio/oh5_io.h"

namespace orvio::h5 {
namespace {

/// A growing write as the caller asked for it. `row` is null for texts.
struct Growth {
  hid_t loc;
  const char* name;
  int rank;
  const hsize_t* start;
  const hsize_t* count;
  const hsize_t* stride;
  const hsize_t* block;
  const hsize_t* extent;
  const TypeRow* row;
  const void* data;
};

int WriteFailed(const Growth& growth, const char* why = "") {
  return Fail("OH5Write_SELECTIVE::\n\t Failed to write ::\"%s\"%s", growth.name, why);
}

/// Numbers have their native type, texts are blank padded and as long as the first entry of `extent`, else 256.
Type MemoryType(const Growth& growth) {
  if (growth.row) return Type(H5Tcopy(growth.row->native()));
  Type type(H5Tcopy(H5T_C_S1));
  const size_t size = growth.extent ? static_cast<size_t>(growth.extent[0]) : disk::kTextWidth;
  if (H5Tset_size(type.get(), size) < 0 || H5Tset_strpad(type.get(), H5T_STR_SPACEPAD) < 0) type.reset();
  return type;
}

/// QUIRK: integers get the float form of the scale-offset filter here, unlike in a whole write. HDF5 cannot apply
/// it to them and stores such chunks as they are; the creation list in the file stays the one that other writers
/// leave. Pinned by SelectiveWrite.GivesIntegersTheFloatFormOfTheFilter.
bool AddFilter(hid_t list, const Growth& growth) {
  const Compression& switches = process().compression;
  const int digits = switches.g_nCompressionDigits;
  const auto points = Product(growth.rank, growth.count);
  const bool filtered = growth.row && switches.g_nCompressionOn != 0 && digits >= 0 && points &&
                        ScaleOffsetKeeps(*growth.row, growth.data, *points, digits);
  return !filtered || H5Pset_scaleoffset(list, H5Z_SO_FLOAT_DSCALE, digits) >= 0;
}

Dataset CreateGrowing(const Growth& growth, hid_t type) {
  hsize_t unlimited[H5S_MAX_RANK];
  std::fill_n(unlimited, growth.rank, H5S_UNLIMITED);
  const Space space(H5Screate_simple(growth.rank, growth.count, unlimited));
  const PropertyList list(H5Pcreate(H5P_DATASET_CREATE));
  if (!space || !list || H5Pset_layout(list.get(), H5D_CHUNKED) < 0 ||
      H5Pset_chunk(list.get(), growth.rank, growth.count) < 0 || !AddFilter(list.get(), growth)) {
    return Dataset();
  }
  return Dataset(H5Dcreate2(growth.loc, growth.name, type, space.get(), H5P_DEFAULT, list.get(), DatasetAccess()));
}

/// How an existing dataset grows. Without `extent` numbers grow by one along the second axis, of which rank 1 has
/// none; texts always grow by what is written. False when an extent would wrap around.
bool Enlarge(const Growth& growth, hsize_t* dims) {
  if (growth.row && !growth.extent) {
    if (growth.rank > 1) dims[1] += 1;
    return true;
  }
  const hsize_t* by = growth.row ? growth.extent : growth.count;
  for (int i = 0; i < growth.rank; ++i) {
    if (__builtin_add_overflow(dims[i], by[i], &dims[i])) return false;
  }
  return true;
}

Dataset OpenGrowing(const Growth& growth, hsize_t* dims) {
  StoredDataset dataset(growth.loc, growth.name);
  if (!dataset) {
    (void)WriteFailed(growth, dataset.refusal());
    return Dataset();
  }
  const Extents& stored = dataset.extents();
  const H5T_class_t stored_class = dataset.type_class();
  const H5T_class_t wanted = growth.row ? growth.row->type_class : H5T_STRING;
  if (stored_class > H5T_STRING || stored_class == H5T_TIME) {
    SetLastError("OH5Write_SELECTIVE::\n\t \"%s\" datatype ORV_FLOAT or ORV_INT expected", growth.name);
    return Dataset();
  }
  if (stored.rank > growth.rank) {
    SetLastError("OH5Write_SELECTIVE::\n\t \"%s\" can not reduce original size", growth.name);
    return Dataset();
  }
  const bool text_mixed = (stored_class == H5T_STRING) != (wanted == H5T_STRING);
  if (stored.rank != growth.rank || text_mixed || H5Tis_variable_str(dataset.type()) > 0) {
    (void)WriteFailed(growth);
    return Dataset();
  }
  std::copy_n(stored.dims, stored.rank, dims);
  if (Enlarge(growth, dims)) return dataset.Take();
  (void)WriteFailed(growth);
  return Dataset();
}

/// The selected element count must be that of the memory space, which is `count`.
bool SelectInFile(hid_t space, const Growth& growth, hsize_t memory_points) {
  if (H5Sselect_hyperslab(space, H5S_SELECT_SET, growth.start, growth.stride, growth.count, growth.block) < 0) {
    return false;
  }
  return H5Sget_select_npoints(space) == static_cast<hssize_t>(memory_points) && H5Sselect_valid(space) > 0;
}

/// Tests the selection against the extents to come before anything in the file changes.
bool SelectionFits(const Growth& growth, const hsize_t* dims, hsize_t memory_points) {
  const Space target(H5Screate_simple(growth.rank, dims, nullptr));
  return target && SelectInFile(target.get(), growth, memory_points);
}

int WriteSelected(Dataset dataset, const Growth& growth, const hsize_t* dims, hid_t type) {
  // H5Dextend never shrinks; the current name of the call does, and `dims` is never below what is there.
  const bool extended = H5Dset_extent(dataset.get(), dims) >= 0;
  const Space in_file(extended ? H5Dget_space(dataset.get()) : H5I_INVALID_HID);
  const Space in_memory(H5Screate_simple(growth.rank, growth.count, nullptr));
  const auto points = Product(growth.rank, growth.count);
  const bool written = in_file && in_memory && points && SelectInFile(in_file.get(), growth, *points) &&
                       H5Dwrite(dataset.get(), type, in_memory.get(), in_file.get(), H5P_DEFAULT, growth.data) >= 0;
  const bool closed = dataset.Close();
  return written && closed ? kOk : WriteFailed(growth);
}

bool IsExtendable(hid_t dataset) {
  const PropertyList list(H5Dget_create_plist(dataset));
  return list && H5Pget_layout(list.get()) == H5D_CHUNKED;
}

int WriteGrowing(const Growth& growth) {
  if (growth.rank < 1) return Fail("OH5Write_SELECTIVE::\n\t \"%s\" dimension cannot be zero", growth.name);
  if (HasZero(growth.rank, growth.count)) {
    return Fail("OH5Write_SELECTIVE::\n\t \"%s\" location or size cannot be zero", growth.name);
  }
  const Type type = MemoryType(growth);
  const auto points = Product(growth.rank, growth.count);
  if (!type || !points) return kFail;
  hsize_t dims[H5S_MAX_RANK] = {};
  std::copy_n(growth.count, growth.rank, dims);
  const bool exists = LinkExists(growth.loc, growth.name);
  Dataset dataset = exists ? OpenGrowing(growth, dims) : Dataset();
  if (exists && !dataset) return kFail;
  if (!SelectionFits(growth, dims, *points)) return WriteFailed(growth);
  if (!exists) dataset = CreateGrowing(growth, type.get());
  if (!dataset) return WriteFailed(growth);
  if (exists && !IsExtendable(dataset.get())) return WriteFailed(growth);
  if (exists && growth.row && !StoredFilterKeepsBeside(dataset.get(), *growth.row, growth.data, *points)) {
    return WriteFailed(growth);
  }
  return WriteSelected(std::move(dataset), growth, dims, type.get());
}

}  // namespace
}  // namespace orvio::h5

using namespace orvio;  // the exported function below only forwards

int OH5Write_SELECTIVE(hid_t loc, const char* name, int rank, const hsize_t* start, const hsize_t* count,
                       const hsize_t* stride, const hsize_t* block, _ORVDataType type, const hsize_t* extent,
                       const void* data) {
  if (!name || !data || rank > H5S_MAX_RANK || (rank > 0 && (!start || !count))) return kFail;
  return h5::Entry(kFail, [&] {
    const h5::TypeRow* row = h5::FindNumericType(type);
    const bool known = row || type == ORV_CHAR || type == ORV_CHAR_FIXED;
    if (!known && rank > 0 && !h5::HasZero(rank, count)) return kFail;  // a count of zero is told first
    return h5::WriteGrowing({loc, name, rank, start, count, stride, block, extent, row, data});
  });
}
