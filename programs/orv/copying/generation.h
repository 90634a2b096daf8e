// Blocks as versions up to 1.2 have them, and as later ones do.
#pragma once

#include <string>
#include <vector>

#include "copying/block_content.h"

namespace orvio::program {

/// Changes a block of any kind but a definition to what the versions up to 1.2 have (`to_split`), or later ones.
void ConvertBlock(bool to_split, BlockContent& content, std::vector<std::string>& notes);

}  // namespace orvio::program
