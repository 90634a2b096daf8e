#pragma once

// Soft links inside a file, by which blocks share datasets.

#include <string>

#include "h5/handle.h"

namespace orvio::h5 {

/// The file that an object lies in.
File FileOf(hid_t object);

/// Path that a soft link leads to; empty when the name is none of a soft link.
std::string SoftLinkTarget(hid_t loc, const char* name);

[[nodiscard]] int CreateSoftLink(hid_t loc, const char* name, const std::string& target);
[[nodiscard]] int DeleteLink(hid_t loc, const char* name);

}  // namespace orvio::h5
