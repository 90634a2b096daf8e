// What `--help` answers. The manual pages are made of it.
#pragma once

#include <string>
#include <vector>

#include "commands/commands.h"

namespace orvio::program {

/// What the help of a command tells besides its options.
struct HelpNotes {
  std::vector<std::string> examples = {};  ///< command lines
  std::string found = {};                  ///< what exit code 1 stands for; empty where there is no such code
};
void AddNotes(CLI::App& command, const HelpNotes& notes);

/// Makes a command line and all commands that are added to it later answer in this way.
void UseHelpText(CLI::App& app);

/// Commands that are shown to people, in the order of the help.
std::vector<const CLI::App*> ShownCommands(const CLI::App& app);

}  // namespace orvio::program
