// The commands of the program. Each adds itself to the command line; its callback throws Trouble when it fails.
#pragma once

#include <CLI/CLI.hpp>

namespace orvio::program {

void AddImportCommand(CLI::App& app);
void AddElementsCommand(CLI::App& app);
void AddHistoryCommand(CLI::App& app);
void AddInfoCommand(CLI::App& app);
void AddLsCommand(CLI::App& app);
void AddPartsCommand(CLI::App& app);
void AddStatesCommand(CLI::App& app);
void AddValuesCommand(CLI::App& app);

}  // namespace orvio::program
