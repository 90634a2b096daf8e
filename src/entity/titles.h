#pragma once

// Titles of parts and entities: fixed slots, one behind the other, whose width the file chooses.

#include <cstdint>
#include <string>

namespace orvio {

/// Takes the trailing blanks off each of `count` titles of `slot` bytes. A full title keeps no terminator in its slot:
/// only the byte behind the last slot ends the last one.
void StripTitles(char* titles, std::int64_t count, std::int64_t slot);

/// The title in a slot, up to its first zero byte or its end.
std::string TitleAt(const char* titles, std::int64_t index, std::int64_t slot);

}  // namespace orvio
