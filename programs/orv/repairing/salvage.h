// The structure of a damaged file put right: what is whole stays, what is not is taken out.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "repairing/loss.h"

namespace orvio::program {

/// What is known of the names in a group that has lost its own structures.
struct NameRules {
  /// Whether a group may hold something of this name. Asked where nothing but names tells which group entries are of.
  std::function<bool(const std::string& group, const std::string& name)> may_hold;
  /// The name of the child at a position, counted from 0, of a group whose children are numbered; empty: they are not.
  std::function<std::string(const std::string& group, std::size_t position)> name_at;
};

enum class Structure {
  kNotHdf5,
  kSound,
  kMended,
  kBeyondRepair,  ///< nothing of it can be reached
};

/// Changes a file, of which this is the only user, so that its structure is sound: damaged objects lose the links to them,
/// groups with damage get new structures behind the end of the file. No object is moved and no value is changed. What is
/// lost is told to `lose` before the first byte is written. Throws when the file cannot be written.
Structure MendStructure(int descriptor, const NameRules& rules, const std::function<void(const Loss&)>& lose);

}  // namespace orvio::program
