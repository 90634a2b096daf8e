// Completion of command lines in shells. The shells call `orv __complete -- WORD...` with the words typed so far, the
// last of which may be empty or a beginning, and get a line for each candidate: the whole word, and behind a tab what it
// stands for. The line ":files" asks the shell for names of files.
#pragma once

#include "commands/commands.h"

namespace orvio::program {

bool IsAskedToComplete(int argc, const char* const* argv);

/// Prints candidates for the last word, from the commands and options of `app` and from the file that the line names. No
/// failure is told: who types is told nothing else than candidates. Answers the exit code.
int Complete(const CLI::App& app, int argc, const char* const* argv);

/// orv completion: prints the script that makes a shell call.
void AddCompletionCommand(CLI::App& app);

}  // namespace orvio::program
