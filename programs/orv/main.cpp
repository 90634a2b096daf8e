// orv: looks into result files, and makes them from the results of other programs. Data go to standard output and all
// else to standard error. Exit codes: 0 fine, 1 something was found (orv check, orv diff) or lost (orv repair),
// 2 trouble.

#include <fmt/format.h>
#include <orvio/orvio.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <new>

#include "commands/commands.h"
#include "trouble.h"

namespace {

constexpr int kFine = 0;
constexpr int kTrouble = 2;

std::string VersionText() {
  int reader[3] = {}, hdf[3] = {};
  ORVGetReaderVersion(&reader[0], &reader[1], &reader[2]);
  ORVGetHdfVersion(&hdf[0], &hdf[1], &hdf[2]);
  return fmt::format("orv, reader version {}.{}.{}, HDF5 {}.{}.{}", reader[0], reader[1], reader[2], hdf[0], hdf[1],
                     hdf[2]);
}

/// Output that did not reach its reader is trouble too: a full disk must not look like a short file.
int FinishOutput(int status) {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
  fmt::print(stderr, "orv: standard output: cannot be written: {}; check the free space\n", std::strerror(errno));
  return kTrouble;
}

int Run(int argc, char** argv) {
  CLI::App app("Looks into ORV result files, and makes them from the results of other programs.", "orv");
  app.set_version_flag("--version", VersionText());
  app.require_subcommand(1);
  orvio::program::AddImportCommand(app);
  orvio::program::AddInfoCommand(app);
  orvio::program::AddLsCommand(app);
  orvio::program::AddPartsCommand(app);
  orvio::program::AddStatesCommand(app);
  orvio::program::AddValuesCommand(app);
  orvio::program::AddHistoryCommand(app);
  orvio::program::AddElementsCommand(app);
  orvio::program::AddDiffCommand(app);
  orvio::program::AddCheckCommand(app);
  orvio::program::AddRepairCommand(app);
  try {
    app.parse(argc, argv);
    return kFine;
  } catch (const CLI::RuntimeError& told) {
    return told.get_exit_code();
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kFine : kTrouble;
  } catch (const std::bad_alloc&) {
    fmt::print(stderr, "orv: out of memory; ask for less at a time\n");
  } catch (const std::exception& error) {
    if (std::ferror(stdout) == 0) fmt::print(stderr, "orv: {}\n", error.what());  // else told below
  }
  return kTrouble;
}

}  // namespace

int main(int argc, char** argv) { return FinishOutput(Run(argc, argv)); }
