#pragma once

// Fixed text fields: 256 stored bytes, blank padded, read into members of 257.

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "h5/disk_names.h"

namespace orvio {

/// A text member of a block. Always terminated.
using Text = char[disk::kTextWidth + 1];

/// The members of a few older blocks: a byte narrower than what is stored, so a text of full width loses its last one.
using ShortText = char[disk::kTextWidth];

/// The content of a field: up to the first zero byte or the width.
std::string_view Content(const char* field, std::size_t width = disk::kTextWidth);

/// Fills a field of `size` bytes with a text, cut so that a terminator fits, and zeros behind it.
void AssignField(char* field, std::size_t size, std::string_view text);

/// The same for a member.
template <std::size_t N>
void Assign(char (&field)[N], std::string_view text) {
  AssignField(field, N, text);
}

/// Takes the trailing blanks off a terminated field.
void StripTrailingBlanks(char* field, std::size_t size = disk::kTextWidth + 1);

/// Takes the trailing blanks off each of `count` stored texts of 256 bytes, one behind the other. A text without a
/// blank or zero byte loses its last one to the terminator.
void StripEach(char* texts, std::uint64_t count);

/// Compares fixed fields and words without regard to case.
bool EqualIgnoringCase(std::string_view left, std::string_view right);

}  // namespace orvio
