// Writing of one whole dataset, new or over an existing one, which is never deleted and made anew. Growing writes
// are in selective_write.cpp, attributes in attribute.cpp.

#include <algorithm>

#include "filer/process_state.h"
#include "h5/data_type.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "h5/file_access.h"
#include "h5/scale_offset.h"
#include "h5/status.h"
#include "h5/stored_dataset.h"
#include "orvio/oh5_io.h"

namespace orvio::h5 {
namespace {

/// A write as the caller asked for it. `who` stands in front of the texts of its failures.
struct Write {
  const char* who;
  hid_t loc;
  const char* name;
  int rank;
  const hsize_t* dims;
  const void* data;
};

bool IsSpace(int rank, const hsize_t* dims) { return rank == 0 || (dims && rank > 0 && rank <= H5S_MAX_RANK); }

Space SpaceOf(int rank, const hsize_t* dims) {
  return Space(rank == 0 ? H5Screate(H5S_SCALAR) : H5Screate_simple(rank, dims, nullptr));
}

/// One chunk of all, unless only so many entities are to be in one. HDF5 takes none of 4 GiB or more: what is larger is
/// halved along its first extent until it fits.
bool SetChunk(hid_t list, int rank, const hsize_t* dims, size_t element) {
  hsize_t chunk[H5S_MAX_RANK] = {};
  std::copy_n(dims, rank, chunk);
  const ProcessState& state = process();
  if (state.chunk_entities > 0 && state.entity_axis < rank) {
    hsize_t& entities = chunk[state.entity_axis];
    entities = std::min(entities, static_cast<hsize_t>(state.chunk_entities));
  }
  constexpr std::uint64_t kChunkLimit = std::uint64_t{1} << 32;
  for (;;) {
    const auto points = Product(rank, chunk);
    if (points && *points < kChunkLimit / element) break;
    if (chunk[0] == 1) return false;
    chunk[0] = (chunk[0] + 1) / 2;
  }
  return H5Pset_chunk(list, rank, chunk) >= 0;
}

/// The creation list of a new numeric dataset: plain, or with the scale-offset filter over its chunks. Switches
/// that are on with negative digits ask for a filter that HDF5 refuses; such data are written without one. So are
/// data that the filter would damage, and single values.
PropertyList CreationList(const Write& write, const TypeRow& row, hsize_t count) {
  PropertyList list(H5Pcreate(H5P_DATASET_CREATE));
  const Compression& switches = process().compression;
  const int digits = switches.g_nCompressionDigits;
  const bool filtered = switches.g_nCompressionOn != 0 && digits >= 0 && write.rank > 0 &&
                        ScaleOffsetKeeps(row, write.data, count, digits);
  if (!list || !filtered) return list;
  const H5Z_SO_scale_type_t scale = row.type_class == H5T_FLOAT ? H5Z_SO_FLOAT_DSCALE : H5Z_SO_INT;
  const int factor = row.type_class == H5T_FLOAT ? digits : H5Z_SO_INT_MINBITS_DEFAULT;
  if (H5Pset_layout(list.get(), H5D_CHUNKED) < 0 || !SetChunk(list.get(), write.rank, write.dims, row.size) ||
      H5Pset_scaleoffset(list.get(), scale, factor) < 0) {
    list.reset();
  }
  return list;
}

/// Small data sit in HDF5's buffers until the dataset is closed, so the close counts as part of the write.
template <class Opened>  // a new dataset, or one that was there
int WriteAndClose(Opened dataset, const Write& write, hid_t memory_type) {
  const bool written = dataset && H5Dwrite(dataset.get(), memory_type, H5S_ALL, H5S_ALL, H5P_DEFAULT, write.data) >= 0;
  const bool closed = dataset.Close();
  return written && closed ? kOk : Fail("%s::\n\t Failed to write ::\"%s\"", write.who, write.name);
}

int WriteNew(const Write& write, hid_t type, hid_t creation_list) {
  const Space space = SpaceOf(write.rank, write.dims);
  return WriteAndClose(
      Dataset(H5Dcreate2(write.loc, write.name, type, space.get(), H5P_DEFAULT, creation_list, DatasetAccess())), write,
      type);
}

/// Whether the stored elements are no more than those of the caller's buffer: HDF5 would read past it.
bool BufferCovers(const Extents& stored, const Write& write) {
  const auto count = Product(write.rank, write.dims);
  return count && stored.points <= *count;
}

/// The text of the float write has no blank behind the name.
int WrongClass(const Write& write, H5T_class_t wanted, H5T_class_t stored) {
  return Fail("%s::\n\t \"%s\"%sdatatype %s expected (H5T_class_t=%d). Got (H5T_class_t=%d) type", write.who,
              write.name, wanted == H5T_FLOAT ? "" : " ", wanted == H5T_FLOAT ? "ORV_FLOAT" : "ORV_INT", wanted,
              stored);
}

int WriteOverNumbers(const Write& write, const TypeRow& row) {
  StoredDataset dataset(write.loc, write.name);
  if (!dataset) return Fail("%s::\n\t Failed to write ::\"%s\"%s", write.who, write.name, dataset.refusal());
  const H5T_class_t stored_class = dataset.type_class();
  if (stored_class != row.type_class) return WrongClass(write, row.type_class, stored_class);
  if (dataset.extents().rank > write.rank || !BufferCovers(dataset.extents(), write)) {
    return Fail("%s::\n\t \"%s\" can not reduce original size", write.who, write.name);
  }
  if (!StoredFilterKeeps(dataset.get(), row, write.data, dataset.extents().points)) {
    return Fail("%s::\n\t Failed to write ::\"%s\"", write.who, write.name);
  }
  return WriteAndClose(std::move(dataset), write, row.native());
}

int WriteNumbers(const Write& write, H5T_class_t type_class, _ORVDataType type) {
  if (HasZero(write.rank, write.dims)) return Fail("%s::\n\t \"%s\" size cannot be zero", write.who, write.name);
  const TypeRow* row = FindNumericType(type);
  const auto count = Product(write.rank, write.dims);
  if (!row || row->type_class != type_class || !count) return kFail;
  if (LinkExists(write.loc, write.name)) return WriteOverNumbers(write, *row);
  const PropertyList list = CreationList(write, *row, *count);
  if (!list) return Fail("%s::\n\t Failed to write ::\"%s\"", write.who, write.name);
  return WriteNew(write, row->native(), list.get());
}

int WriteOverTexts(const Write& write, hid_t type) {
  StoredDataset dataset(write.loc, write.name);
  if (!dataset) return Fail("OH5Write_CHAR::\n\t Failed to write ::\"%s\"%s", write.name, dataset.refusal());
  if (dataset.type_class() != H5T_STRING || H5Tis_variable_str(dataset.type()) != 0) {
    return Fail("OH5Write_CHAR::\n\t existing \"%s\" dataset is not ORV_CHAR type", write.name);
  }
  if (dataset.extents().rank > write.rank || !BufferCovers(dataset.extents(), write)) {
    return Fail("OH5Write_CHAR::\n\t existing \"%s\" dataspace rank is not same as that of ovewrite requested",
                write.name);
  }
  return WriteAndClose(std::move(dataset), write, type);
}

int WriteTexts(const Write& write, int size) {
  if (HasZero(write.rank, write.dims)) return Fail("OH5Write_CHAR::\n\t \"%s\" size cannot be zero", write.name);
  const Type type(H5Tcopy(H5T_C_S1));
  if (size < 1 || H5Tset_size(type.get(), static_cast<size_t>(size)) < 0) {
    return Fail("OH5Write_CHAR::\n\t Failed to write ::\"%s\"", write.name);
  }
  if (LinkExists(write.loc, write.name)) return WriteOverTexts(write, type.get());
  return WriteNew(write, type.get(), H5P_DEFAULT);
}

}  // namespace
}  // namespace orvio::h5

using namespace orvio;  // the exported functions below only forward

int OH5Write_INT(hid_t loc, const char* name, int rank, const hsize_t* dims, _ORVDataType type, const void* data) {
  if (!name || !data || !h5::IsSpace(rank, dims)) return kFail;
  return h5::Entry(kFail, [&] {
    return h5::WriteNumbers({"OH5Write_INT", loc, name, rank, dims, data}, H5T_INTEGER, type);
  });
}

int OH5Write_FLOAT(hid_t loc, const char* name, int rank, const hsize_t* dims, _ORVDataType type, const void* data) {
  if (!name || !data || !h5::IsSpace(rank, dims)) return kFail;
  return h5::Entry(kFail, [&] {
    return h5::WriteNumbers({"OH5Write_FLOAT", loc, name, rank, dims, data}, H5T_FLOAT, type);
  });
}

int OH5Write_CHAR(hid_t loc, const char* name, int rank, const hsize_t* dims, int size, const char* data) {
  if (!name || !data || !h5::IsSpace(rank, dims)) return kFail;
  return h5::Entry(kFail, [&] { return h5::WriteTexts({"OH5Write_CHAR", loc, name, rank, dims, data}, size); });
}

int OH5CheckDataSet(hid_t loc, const char* name, const hsize_t* dims, _ORVDataType type) {
  if (((static_cast<int>(type) - 2) & ~4) != 0) return kOk;
  if (!name || !dims || dims[0] == 0) return kFail;
  return h5::Entry(kFail, [&] {
    h5::StoredDataset dataset(loc, name);
    if (!dataset) return Fail("OH5CheckDataSet::\n\t \"%s\"  dataset open failed%s", name, dataset.refusal());
    const H5T_class_t stored_class = dataset.type_class();
    if (stored_class != H5T_INTEGER && stored_class != H5T_FLOAT) {
      return Fail("OH5CheckDataSet::\n\t \"%s\"  datatype ORV_INT/ORV_FLOAT expected", name);
    }
    const h5::Extents& stored = dataset.extents();
    const bool fits = stored.rank == 1 && stored.dims[0] == dims[0];
    return fits ? kOk : Fail("OH5CheckDataSet::\n\t \"%s\" dimension mismatch", name);
  });
}
