// The same files with HDF5 alone, as a program reads them that walks through a file and takes what it finds.

#include <hdf5.h>

#include <vector>

#include "mutants/plan.h"

namespace orvio::fuzz {
namespace {

constexpr std::size_t kMost = std::size_t{64} << 20U;  // bytes of one object

/// Bytes that an object takes in memory; 0 for none, and for too many.
std::size_t SizeInMemory(hid_t type, hid_t space) {
  const hssize_t count = H5Sget_simple_extent_npoints(space);
  const std::size_t size = H5Tget_size(type);
  if (count <= 0 || size == 0 || static_cast<std::size_t>(count) > kMost / size) return 0;
  return static_cast<std::size_t>(count) * size;
}

void Count(PlainTally& tally, herr_t status, hid_t space) {
  if (status < 0) {
    ++tally.refusals;
  } else {
    tally.values += static_cast<std::uint64_t>(H5Sget_simple_extent_npoints(space));
  }
}

herr_t ReadAttribute(hid_t object, const char* name, const H5A_info_t* /*info*/, void* data) {
  auto& tally = *static_cast<PlainTally*>(data);
  const hid_t attribute = H5Aopen(object, name, H5P_DEFAULT);
  if (attribute < 0) return 0;
  const hid_t type = H5Aget_type(attribute), space = H5Aget_space(attribute);
  const hid_t native = H5Tget_native_type(type, H5T_DIR_DEFAULT);
  std::vector<char> bytes(SizeInMemory(native < 0 ? type : native, space));
  if (!bytes.empty()) Count(tally, H5Aread(attribute, native < 0 ? type : native, bytes.data()), space);
  H5Tclose(native);
  H5Tclose(type);
  H5Sclose(space);
  H5Aclose(attribute);
  return 0;
}

void ReadDataset(hid_t dataset, PlainTally& tally) {
  const hid_t type = H5Dget_type(dataset), space = H5Dget_space(dataset);
  const hid_t native = H5Tget_native_type(type, H5T_DIR_DEFAULT);
  const hid_t as = native < 0 ? type : native;
  std::vector<char> bytes(SizeInMemory(as, space));
  if (!bytes.empty()) Count(tally, H5Dread(dataset, as, H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data()), space);
  H5Tclose(native);
  H5Tclose(type);
  H5Sclose(space);
}

herr_t ReadObject(hid_t root, const char* name, const H5O_info2_t* info, void* data) {
  auto& tally = *static_cast<PlainTally*>(data);
  const hid_t object = H5Oopen(root, name, H5P_DEFAULT);
  if (object < 0) {
    ++tally.refusals;
    return 0;
  }
  hsize_t at = 0;
  (void)H5Aiterate2(object, H5_INDEX_NAME, H5_ITER_NATIVE, &at, ReadAttribute, data);
  if (info->type == H5O_TYPE_DATASET) ReadDataset(object, tally);
  H5Oclose(object);
  return 0;
}

}  // namespace

PlainTally ReadPlain(const char* path) {
  PlainTally tally;
  const hid_t file = H5Fopen(path, H5F_ACC_RDONLY, H5P_DEFAULT);
  if (file < 0) return tally;
  tally.opened = true;
  (void)H5Ovisit3(file, H5_INDEX_NAME, H5_ITER_INC, ReadObject, &tally, H5O_INFO_BASIC);
  H5Fclose(file);
  return tally;
}

}  // namespace orvio::fuzz
