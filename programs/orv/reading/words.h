// Stored names.
#pragma once

#include <orvio/orvio.h>

#include <cstddef>
#include <string>
#include <string_view>

namespace orvio::program {

/// Bytes of a stored text field.
inline constexpr std::size_t kFieldWidth = 256;

/// A stored text field without its padding.
std::string TextOf(const char* field, std::size_t width = kFieldWidth);

/// The zone of a block; blocks of all entities have a word there that says nothing, and an empty answer.
std::string ZoneOf(const ORVResult& block);

/// Names of variables, types and components compare without regard to case.
bool SameWord(std::string_view a, std::string_view b);

}  // namespace orvio::program
