// What teaches shells to complete command lines of orv.
#pragma once

#include <string>

namespace orvio::program {

/// The script for "bash", "zsh" or "fish".
const char* CompletionScript(const std::string& shell);

}  // namespace orvio::program
