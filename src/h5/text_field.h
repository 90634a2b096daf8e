#pragma once

// Fixed text fields: 256 stored bytes, blank padded, read into members of 257.

#include <cstddef>
#include <string_view>

#include "h5/disk_names.h"

namespace orvio {

/// A text member of a block. Always terminated.
using Text = char[disk::kTextWidth + 1];

/// The content of a field: up to the first zero byte or the width.
std::string_view Content(const char* field, std::size_t width = disk::kTextWidth);

/// Copies a text, cut at 256 bytes and terminated.
void Assign(Text& field, std::string_view text);

/// Takes the trailing blanks off.
void StripTrailingBlanks(Text& field);

/// Compares fixed fields and words without regard to case.
bool EqualIgnoringCase(std::string_view left, std::string_view right);

}  // namespace orvio
