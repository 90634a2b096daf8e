// What ends a command, told to a person.
#pragma once

#include <stdexcept>
#include <string>

namespace orvio::program {

/// The file, what is wrong and where, and what to do about it. Printed as one line `orv: FILE: what; what to do`.
class Trouble : public std::runtime_error {
 public:
  Trouble(const std::string& file, const std::string& what, const std::string& advice);
};

/// What the library says about its last failure, as one line without control characters, or `otherwise` when it says
/// nothing.
std::string LibraryText(const std::string& otherwise);

}  // namespace orvio::program
