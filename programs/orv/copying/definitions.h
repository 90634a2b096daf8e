// Variables, groups of variables and index types: which are used, and what they are in the other generation of versions.
#pragma once

#include <set>
#include <string>
#include <vector>

#include "copying/block_content.h"

namespace orvio::program {

/// Of the kinds 20, 30 and 32.
bool IsDefinition(std::int64_t key);

/// Drops variables and groups that nothing refers to. `names` are the folded names that results and others go by.
void KeepUsed(const std::set<std::string>& names, std::vector<BlockContent>& definitions);

/// All definitions of a file as those of versions up to 1.2 (`to_split`), or of later ones. What gets lost on the way is
/// noted.
void ConvertDefinitions(bool to_split, std::vector<BlockContent>& definitions, std::vector<std::string>& notes);

}  // namespace orvio::program
