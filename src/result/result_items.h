#pragma once

// The items of a result block that are attributes of its header, read one at a time.

#include "orvio/oh5_reader.h"
#include "result/result_kinds.h"

namespace orvio {

/// Reads an item into the member of its name; 1 for one that is not served. `key` is the block's own.
[[nodiscard]] int ReadItem(ORVResult& block, const ResultKind& kind, std::int64_t& key, IOH5Reader* reader,
                           hid_t header, _ORVBlockAtt att);

/// The same for those that a selective read serves.
[[nodiscard]] int ReadSelectiveItem(ORVResult& block, const ResultKind& kind, std::int64_t& key, IOH5Reader* reader,
                                    hid_t header, _ORVBlockAtt att);

}  // namespace orvio
