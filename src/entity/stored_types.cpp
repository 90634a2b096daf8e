// Stored types of a block's datasets.

#include "entity/stored_types.h"

#include "h5/status.h"

namespace orvio {

int QueryTypes(IOH5Reader& reader, hid_t data, std::initializer_list<TypeQuery> queries) {
  int status = kOk;
  for (const TypeQuery& query : queries) {
    *query.type = ORV_UNKNOWN_TYPE;
    if (reader.ReadDatasetType(data, query.dataset, query.type) != kOk) status = kFail;
  }
  return status;
}

}  // namespace orvio
