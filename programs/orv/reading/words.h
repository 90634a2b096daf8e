// Stored names.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace orvio::program {

/// A stored text field without its padding.
std::string TextOf(const char* field, std::size_t width = 256);

/// Names of variables, types and components compare without regard to case.
bool SameWord(std::string_view a, std::string_view b);

}  // namespace orvio::program
