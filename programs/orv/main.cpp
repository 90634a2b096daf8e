// orv: looks into result files, and makes them from the results of other programs. Data go to standard output and all
// else to standard error. Exit codes: 0 fine, 1 something was found (orv check), lost (orv repair) or
// differs (orv diff, orv repack), 2 trouble. A reader of standard output that has enough ends the program by SIGPIPE, as
// any other of the system's.

#include <fcntl.h>
#include <fmt/format.h>
#include <orvio/orvio.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <new>
#include <orvio/orv/error.hpp>
#include <system_error>

#include "commands/commands.h"
#include "commands/completion.h"
#include "commands/help_text.h"
#include "commands/usage_trouble.h"
#include "output_file.h"
#include "trouble.h"

namespace {

constexpr int kFine = 0;
constexpr int kTrouble = 2;

const orvio::program::HelpNotes kNotes = {{"orv import beam.frd out.orv", "orv info out.orv",
                                           "orv values out.orv --var Stress --states last", "orv values --help"},
                                          "something was found or lost, as the command tells"};

std::string VersionText() {
  int reader[3] = {}, hdf[3] = {};
  ORVGetReaderVersion(&reader[0], &reader[1], &reader[2]);
  ORVGetHdfVersion(&hdf[0], &hdf[1], &hdf[2]);
  return fmt::format("orv, reader version {}.{}.{}, HDF5 {}.{}.{}", reader[0], reader[1], reader[2], hdf[0], hdf[1],
                     hdf[2]);
}

/// A stream that is closed leaves its number to the next file that is opened, and what is printed would go into that
/// one. What stands in for it here can be opened, and refuses to be written to or read from.
void KeepStreamNumbers() {
  for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
    const bool is_closed = fcntl(stream, F_GETFD) < 0 && errno == EBADF;
    if (is_closed) (void)open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
  }
}

/// As a write to a closed pipe ends a program that does not ignore the signal.
[[noreturn]] void EndByClosedPipe() {
  (void)std::signal(SIGPIPE, SIG_DFL);
  (void)raise(SIGPIPE);
  _exit(kTrouble);
}

/// Output that did not reach its reader is trouble too: a full disk must not look like a short file.
int FinishOutput(int status) {
  if (std::fflush(stdout) == 0 && std::ferror(stdout) == 0) return status;
  if (errno == EPIPE) EndByClosedPipe();
  orvio::program::Tell(
      fmt::format("standard output: cannot be written: {}; check the free space", std::strerror(errno)));
  return kTrouble;
}

/// The command for a message: what has no file to name, at least says who it comes from.
std::string Called(const CLI::App& app) {
  const auto selected = app.get_subcommands();
  return selected.empty() ? "command line" : selected.front()->get_name();
}

int RunCommand(CLI::App& app, int argc, char** argv) {
  using orvio::program::Tell;
  try {
    app.parse(argc, argv);
    return kFine;
  } catch (const CLI::RuntimeError& told) {
    return told.get_exit_code();
  } catch (const CLI::Success& question) {
    return app.exit(question);
  } catch (const CLI::ParseError& error) {
    Tell(orvio::program::UsageTrouble(app, error));
  } catch (const orvio::program::Trouble& trouble) {
    Tell(trouble.what());
  } catch (const orv::Error& error) {
    Tell(error.what());
  } catch (const std::bad_alloc&) {
    Tell(Called(app) + ": there is not enough memory; ask for less at a time, such as one state or some ids");
  } catch (const std::system_error& error) {
    errno = error.code().value();  // of standard output, where it has one
    if (std::ferror(stdout) == 0) Tell(Called(app) + ": " + error.what() + "; check the disk and your permissions");
  }
  return kTrouble;
}

int Run(int argc, char** argv) {
  CLI::App app("Look into ORV result files, and make them from the results of other programs", "orv");
  app.set_version_flag("--version", VersionText(), "Print the versions of the program and of HDF5");
  app.require_subcommand(1);
  orvio::program::UseHelpText(app);
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
  orvio::program::AddExtractCommand(app);
  orvio::program::AddRepackCommand(app);
  orvio::program::AddLinkCommand(app);
  orvio::program::AddCompletionCommand(app);
  orvio::program::AddNotes(app, kNotes);
  if (orvio::program::IsAskedToComplete(argc, argv)) return orvio::program::Complete(app, argc, argv);
  return RunCommand(app, argc, argv);
}

/// Nothing gets out of here but an exit code.
int RunSafely(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {
    orvio::program::Tell("failure: " + orvio::program::OneLine(error.what()) +
                         "; this is a fault of orv, please report it");
  } catch (...) {
    orvio::program::Tell("failure: of a kind that nobody knows; this is a fault of orv, please report it");
  }
  return kTrouble;
}

}  // namespace

int main(int argc, char** argv) {
  KeepStreamNumbers();
  orvio::program::RemoveOutputsOnSignals();
  return FinishOutput(RunSafely(argc, argv));
}
