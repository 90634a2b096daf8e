#pragma once

// By what a variable is known.

#include <hdf5.h>

#include <string_view>

#include "h5/text_field.h"
#include "orvio/oh5_reader.h"
#include "orvio/orv_variable.h"

namespace orvio {

/// The key of a variable that has one, else its name.
inline std::string_view IdentityOf(const ORVVariable& variable) {
  const std::string_view key = Content(variable.m_varkey);
  return key.empty() ? Content(variable.m_varnam) : key;
}

/// The name of a variable's group: the identity, where a key of blanks counts as none. An object that was written
/// has such a key, and the next write or read of it must not look for a group of that name.
inline std::string_view GroupNameOf(const ORVVariable& variable) {
  const std::string_view identity = IdentityOf(variable);
  return identity.find_first_not_of(' ') == std::string_view::npos ? Content(variable.m_varnam) : identity;
}

/// Whether a variable without a name, or the one of this identity, is stored in a group. In variable_header.cpp.
bool MayBeStoredIn(const ORVVariable& variable, IOH5Reader& reader, hid_t group);

inline bool HasKey(const ORVVariable& variable) { return variable.m_varkey[0] != '\0'; }

}  // namespace orvio
