// What is wrong with a command line, told to a person.
#pragma once

#include <string>

#include "commands/commands.h"

namespace orvio::program {

/// `values: there is no option "--vra" (did you mean "--var"?); orv values --help lists them`: the line of a Trouble, of
/// a command line that could not be taken.
std::string UsageTrouble(const CLI::App& app, const CLI::ParseError& error);

}  // namespace orvio::program
