// The index datasets that blocks of many kinds share: identifiers and values, in rows by state where there are
// several.

#include <hdf5.h>

#include "h5/disk_names.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "orvio/oh5_io.h"
#include "orvio/orv_block.h"

using namespace orvio;

namespace {

/// Counts come from headers and may be negative there.
bool IsPositive(hsize_t count) { return count > 0 && count <= INT64_MAX; }

}  // namespace

int ORVBlock::ReadIndexComm(hid_t group, hsize_t rows, hsize_t columns, int stages, _ORVDataType* identType,
                            void* ident, _ORVDataType* valueType, void* values) {
  if (group < 0 || !IsPositive(rows) || !identType || !valueType) return kFail;
  return h5::Entry(kFail, [&] {
    int status = kFail;
    const int rank = IsPositive(columns) ? 2 : 1;
    hsize_t dims[] = {rank == 2 ? columns : rows, rows};
    if (stages & ORV_READ_INDEX) {
      status = ReadDataset(group, disk::indexident, rank, dims, *identType, ident);
      if (status == kOk) status = ReadDataset(group, disk::indexval, rank, dims, *valueType, values);
    }
    if (stages & (ORV_READ_DATA_INFO | ORV_READ_INDEX_INFO)) {
      const int ident_status = OH5Read_DATATYPE(group, disk::indexident, identType);
      status = OH5Read_DATATYPE(group, disk::indexval, valueType);
      if (status == kOk) status = ident_status;
    }
    return status;
  });
}

int ORVBlock::WriteIndexComm(hid_t group, hsize_t rows, hsize_t columns, int rank, _ORVDataType identType, void* ident,
                             _ORVDataType valueType, void* values) {
  if (group < 0 || !IsPositive(rows) || rank < 1 || rank > 2) return kFail;
  const hsize_t dims[] = {rank == 1 ? rows : columns, rows};
  const int status = OH5Write_FLOAT(group, disk::indexval, rank, dims, valueType, values);
  return status == kOk ? OH5Write_INT(group, disk::indexident, rank, dims, identType, ident) : status;
}
