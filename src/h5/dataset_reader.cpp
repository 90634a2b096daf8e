// The lines of a block's data.

#include "h5/dataset_reader.h"

#include "h5/file_access.h"
#include "h5/status.h"

namespace orvio::h5 {

namespace {

/// Nothing can be read as these types, which a type query leaves behind. The read itself refuses them and tells why.
bool IsNoType(_ORVDataType type) { return type == ORV_UNKNOWN_TYPE || type == ORV_NO_DATASET; }

}  // namespace

DatasetReader::DatasetReader(IOH5Reader* reader, hid_t loc)
    : reader_(reader), loc_(loc), status_(reader ? kOk : kFail) {}

void DatasetReader::integers(const char* name, _ORVDataType type, void* buffer, Shape shape) {
  Read(name, type == ORV_INT || type == ORV_LONG || IsNoType(type), type, buffer, shape);
}

void DatasetReader::floats(const char* name, _ORVDataType type, void* buffer, Shape shape) {
  Read(name, type == ORV_FLOAT || type == ORV_DOUBLE || IsNoType(type), type, buffer, shape);
}

void DatasetReader::texts(const char* name, std::int64_t width, char* buffer, std::int64_t count) {
  Read(name, true, ORV_CHAR, buffer, {count, width});  // the width stands as a last extent
}

bool DatasetReader::wants(const char* name, const void* buffer) const {
  return ok() && buffer && LinkExists(loc_, name);
}

void DatasetReader::Read(const char* name, bool right_kind, _ORVDataType type, void* buffer, Shape shape) {
  if (!ok()) return;
  hsize_t dims[8] = {};
  int rank = 0;
  bool positive = true;
  for (const std::int64_t extent : shape) {
    positive = positive && extent > 0;
    dims[rank++] = static_cast<hsize_t>(extent);
  }
  status_ = right_kind && positive && buffer ? reader_->ReadDatasetAll(loc_, name, rank, dims, type, buffer) : kFail;
}

}  // namespace orvio::h5
