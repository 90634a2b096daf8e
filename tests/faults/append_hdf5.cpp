// A block written with HDF5 alone, the way a program does that minds every status: it opens the file, writes the block,
// flushes and closes.

#include <hdf5.h>

#include "faults/append.h"
#include "support/raw_put.h"

namespace orvio::faults {
namespace {

using orv_test::Check;
using orv_test::Id;
using orv_test::OpenOrMakeGroup;
using orv_test::PutNumber;
using orv_test::PutText;

/// Opens or makes the groups of a path, one in the other.
Id OpenChain(hid_t file, const std::string& path) {
  Id group = OpenOrMakeGroup(file, "post");
  std::size_t begin = path.find('/', 1);
  while (begin != std::string::npos) {
    const std::size_t end = path.find('/', begin + 1);
    group = OpenOrMakeGroup(group.get(), path.substr(begin + 1, end == std::string::npos ? end : end - begin - 1));
    begin = end;
  }
  return group;
}

/// What a dataset is made with: packed in one chunk, or as it is.
Id MakingList(hid_t type, const std::vector<hsize_t>& shape, bool packed) {
  Id list(H5Pcreate(H5P_DATASET_CREATE), "list");
  if (!packed) return list;
  Check(H5Pset_chunk(list.get(), static_cast<int>(shape.size()), shape.data()), "chunk");
  const bool real = H5Tget_class(type) == H5T_FLOAT;
  Check(H5Pset_scaleoffset(list.get(), real ? H5Z_SO_FLOAT_DSCALE : H5Z_SO_INT, real ? kDigits : 0), "filter");
  return list;
}

void PutData(hid_t group, const char* name, hid_t type, const std::vector<hsize_t>& shape, const void* values,
             bool packed) {
  const Id space(H5Screate_simple(static_cast<int>(shape.size()), shape.data(), nullptr), name);
  const Id list = MakingList(type, shape, packed);
  const Id data(H5Dcreate2(group, name, type, space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT), name);
  Check(H5Dwrite(data.get(), type, H5S_ALL, H5S_ALL, H5P_DEFAULT, values), name);
  // Small values reach the file now, or not at all.
  Check(H5Dflush(data.get()), name);
}

void PutHeader(hid_t group, int block, Form form) {
  const BlockRow& row = kBlocks[static_cast<std::size_t>(block)];
  PutNumber(group, "block", 1000);
  PutText(group, "blocktype", "entityresults");
  PutText(group, "etypvar", row.variable);
  PutNumber(group, "ncoo", row.components);
  PutText(group, "etypzone", "ZONE");
  PutText(group, "etypframe", "FRAME");
  PutNumber(group, "zoneid", 0);
  PutText(group, "etyp", kNodeType);
  PutNumber(group, "nent", kNodes);
  PutNumber(group, "nindex", 1);
  PutNumber(group, "fswitch", 0);
  if (!form.split) PutNumber(group, "fidglob", 0);
  PutNumber(group, "dmpswitch", 0);
}

void WriteBlock(hid_t file, Form form, int block, int state, Generation generation) {
  const BlockRow& row = kBlocks[static_cast<std::size_t>(block)];
  const std::string path = "/post/singlestate/" + StateGroup(state) + "/" + BlockGroup(block);
  const Id header = OpenChain(file, PartOf(path, "header", form));
  PutHeader(header.get(), block, form);
  const Id data = OpenChain(file, PartOf(path, "data", form));
  const std::vector<float> values = ValuesOf(block, generation, state);
  const std::vector<int> ids = NodeIds();
  PutData(data.get(), "res", H5T_NATIVE_FLOAT, {kNodes, static_cast<hsize_t>(row.components)}, values.data(),
          form.packed);
  PutData(data.get(), "entid", H5T_NATIVE_INT, {kNodes}, ids.data(), false);
  const int frame = 0, ident = IdentOf(state);
  if (form.split) PutData(data.get(), "fidglob", H5T_NATIVE_INT, {1}, &frame, false);
  const Id index = OpenChain(file, PartOf(path, "index", form));
  const float time = TimeOf(state);
  PutData(index.get(), "indexident", H5T_NATIVE_INT, {1}, &ident, false);
  PutData(index.get(), "indexval", H5T_NATIVE_FLOAT, {1}, &time, false);
}

}  // namespace

int WriteWithHdf5(const std::string& path, Form form, int block, int state, Generation generation) {
  (void)H5Eset_auto2(H5E_DEFAULT, nullptr, nullptr);
  const hid_t file = H5Fopen(path.c_str(), H5F_ACC_RDWR, H5P_DEFAULT);
  if (file < 0) return 1;
  int status = 0;
  try {
    WriteBlock(file, form, block, state, generation);
  } catch (const std::exception&) {
    status = 1;
  }
  if (H5Fflush(file, H5F_SCOPE_GLOBAL) < 0) status = 1;
  if (H5Fclose(file) < 0) status = 1;
  return status;
}

}  // namespace orvio::faults
