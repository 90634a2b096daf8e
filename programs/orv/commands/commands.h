// The commands of the program. Each adds itself to the command line; its callback throws Trouble when it fails, and
// CLI::RuntimeError with its exit code when it went well and has something to tell by one.
#pragma once

#include <CLI/CLI.hpp>

namespace orvio::program {

void AddCheckCommand(CLI::App& app);
void AddDiffCommand(CLI::App& app);
void AddImportCommand(CLI::App& app);
void AddElementsCommand(CLI::App& app);
void AddExtractCommand(CLI::App& app);
void AddHistoryCommand(CLI::App& app);
void AddInfoCommand(CLI::App& app);
void AddLinkCommand(CLI::App& app);
void AddLsCommand(CLI::App& app);
void AddPartsCommand(CLI::App& app);
void AddRepairCommand(CLI::App& app);
void AddRepackCommand(CLI::App& app);
void AddStatesCommand(CLI::App& app);
void AddValuesCommand(CLI::App& app);

}  // namespace orvio::program
