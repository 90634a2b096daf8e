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

/// A text without control characters. Names come from files: a line end in one would make two lines of a message, and
/// worse could reach a terminal.
std::string OneLine(std::string text);

/// Prints the one line that tells what went wrong, on standard error. What cannot be told there is not told.
void Tell(const std::string& what) noexcept;

/// What the library says about its last failure, as one line without control characters, or `otherwise` when it says
/// nothing.
std::string LibraryText(const std::string& otherwise);

}  // namespace orvio::program
