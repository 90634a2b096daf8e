// The values and ids of one block.
#pragma once

#include <orvio/orvio.h>

#include <cstddef>
#include <vector>

#include "reading/result_file.h"

namespace orvio::program {

/// Values of one stored component of a block, by the internal id of its handle: entities x layers x parts, complex values
/// having two parts; before these the states, for a multi-state block. Made for float and double. Throws Trouble.
template <class T>
std::vector<T> ReadComponent(ResultFile& file, ORVResult& block, int iid, int state);

/// The same for a block that holds at this state nothing but changes: entities x layers, put together from the last full
/// state on, with the ids of the entities.
template <class T>
std::vector<T> ReadMergedComponent(ResultFile& file, ORVResult& block, int iid, int state, std::vector<long long>& ids);

/// Ids of so many entities of a block. Other writers store some that no 32 bits hold, so they are read beside the
/// values. Entities without ids are numbered.
std::vector<long long> ReadIds(const ResultFile& file, const ORVResult& block, int state, std::size_t count);

/// Throws Trouble: the block cannot be read.
[[noreturn]] void RefuseBlock(const ResultFile& file, const ORVResult& block);

}  // namespace orvio::program
