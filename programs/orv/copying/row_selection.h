// Blocks with some of their rows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "copying/block_content.h"

namespace orvio::program {

/// Positions along an axis, rising.
using Rows = std::vector<std::size_t>;

/// Keeps these positions along one axis of a dataset.
void KeepRows(BlockItem& item, std::size_t axis, const Rows& rows);

/// The attribute that counts the entities of a block; null for kinds that have none.
const char* CountOf(const BlockContent& content);
/// The dataset with their ids.
const char* IdsOf(const BlockContent& content);

/// How many entities a block has: as its header says, which must be what its datasets have. Throws Trouble in the name of
/// `shown_as` when they do not agree.
std::size_t EntitiesIn(const BlockContent& content, const std::string& shown_as);
/// Ids of the entities; numbers from 1 where a block has none.
std::vector<std::int64_t> EntityIds(const BlockContent& content, const std::string& shown_as);

/// Keeps these entities of a block. Where it has no ids it gets some: their numbers change. Datasets that the format does
/// not know go. Answers the names of those.
std::vector<std::string> KeepEntities(BlockContent& content, const Rows& rows, const std::string& shown_as);

/// Keeps these states of a block that holds all of them.
void KeepStates(BlockContent& content, const Rows& rows, const std::string& shown_as);
/// How many states such a block has; 0 when there is no telling.
std::size_t StatesIn(const BlockContent& content);

/// Puts the rows of `changes` in the places of those of the same entities; entities that only `changes` has are added
/// where `appends`.
void ApplyChanges(const BlockContent& changes, bool appends, const std::string& shown_as, BlockContent& content);

}  // namespace orvio::program
