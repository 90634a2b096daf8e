// The drawing program gets its commands as a file on standard input and answers the picture on standard output: no
// name of a file and no text of a result is ever a command.

#include "plot/line_plot.h"

#include <fmt/format.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>

#include "output_file.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr const char* kDrawer = "gnuplot";

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, CloseFile>;

/// A text as gnuplot takes it literally: in single quotes nothing but the quote itself has a meaning, and that gives way
/// to its typographic form.
std::string Quoted(const std::string& text) {
  std::string quoted = "'";
  for (const char c : text) {
    if (std::iscntrl(static_cast<unsigned char>(c)) != 0) continue;
    quoted += c == '\'' ? "\u2019" : std::string(1, c);
  }
  return quoted + "'";
}

std::string TerminalOf(const std::filesystem::path& output) {
  if (output.extension() == ".svg") return "svg size 900,540 dynamic background '#ffffff' font 'sans,13'";
  if (output.extension() == ".png") return "pngcairo size 1350,810 font 'sans,16'";
  throw Trouble(output.string(), "is of a kind that cannot be drawn", "give a name that ends in .svg or .png");
}

std::string Number(const std::optional<double>& value) { return value ? fmt::format("{}", *value) : "NaN"; }

std::string Commands(const LinePlot& plot, const std::string& terminal) {
  std::string text = fmt::format("set terminal {} noenhanced\nset encoding utf8\n", terminal);
  text += fmt::format("set title {}\nset xlabel {}\nset ylabel {}\n", Quoted(plot.title), Quoted(plot.x_label),
                      Quoted(plot.y_label));
  text += "set grid linecolor '#d0d0d0'\nset border linecolor '#606060'\nset key outside right\n";
  text += "set datafile missing NaN\n$curves << END_OF_CURVES\n";
  for (std::size_t row = 0; row < plot.x.size(); ++row) {
    text += fmt::format("{}", plot.x[row]);
    for (const PlotLine& line : plot.lines) text += ' ' + Number(line.values[row]);
    text += '\n';
  }
  text += "END_OF_CURVES\nplot ";
  for (std::size_t i = 0; i < plot.lines.size(); ++i) {
    text += fmt::format("{}$curves using 1:{} with linespoints pointtype 7 pointsize 0.4 linewidth 1.5 title {}",
                        i == 0 ? "" : ", ", i + 2, Quoted(plot.lines[i].name));
  }
  return text + '\n';
}

[[noreturn]] void RefuseWithoutDrawer() {
  throw Trouble(kDrawer, "is not installed", "install the package gnuplot-nox, or take the numbers with --csv");
}

[[noreturn]] void Refuse(const std::string& what) { throw Trouble(kDrawer, what, "take the numbers with --csv"); }

File ScratchFile() {
  File file(std::tmpfile());
  if (!file) Refuse(fmt::format("no scratch file: {}", std::strerror(errno)));
  return file;
}

/// Last line of what the drawing program complained about.
std::string ComplaintIn(std::FILE* file) {
  std::rewind(file);
  std::string complaint = "failed";
  char line[256] = {};
  while (std::fgets(line, sizeof line, file)) {
    std::string text(line);
    std::erase_if(text, [](unsigned char c) { return std::iscntrl(c) != 0; });
    if (text.find_first_not_of(" ^") != std::string::npos) complaint = text;
  }
  return complaint;
}

/// Runs it with these files as its standard input, output and error.
void RunDrawer(std::FILE* commands, std::FILE* picture, std::FILE* complaints) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, fileno(commands), STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, fileno(picture), STDOUT_FILENO);
  posix_spawn_file_actions_adddup2(&actions, fileno(complaints), STDERR_FILENO);
  // -d: the settings of the user play no part.
  std::string words[] = {kDrawer, "-d", "-"};
  char* arguments[] = {words[0].data(), words[1].data(), words[2].data(), nullptr};
  pid_t child = 0;
  const int error = posix_spawnp(&child, kDrawer, &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error == ENOENT) RefuseWithoutDrawer();
  if (error != 0) Refuse(fmt::format("cannot be started: {}", std::strerror(error)));
  int status = 0;
  while (waitpid(child, &status, 0) < 0 && errno == EINTR) continue;
  constexpr int kNotStarted = 127;
  if (!WIFEXITED(status)) Refuse("was ended early");
  if (WEXITSTATUS(status) == kNotStarted) RefuseWithoutDrawer();
  if (WEXITSTATUS(status) != 0) Refuse(ComplaintIn(complaints));
}

/// Moves the picture to its place in one step.
void Keep(std::FILE* picture, const std::filesystem::path& output) {
  OutputFile target(output);
  const File file(std::fopen(target.working_path().c_str(), "wb"));
  bool written = static_cast<bool>(file);
  std::rewind(picture);
  char bytes[1 << 14];
  std::size_t total = 0;
  for (std::size_t count = 0; written && (count = std::fread(bytes, 1, sizeof bytes, picture)) > 0;) {
    written = std::fwrite(bytes, 1, count, file.get()) == count;
    total += count;
  }
  if (total == 0 && written) Refuse("drew nothing");
  if (!written || std::fflush(file.get()) != 0) {
    throw Trouble(output.string(), fmt::format("cannot be written: {}", std::strerror(errno)),
                  "check the free space and your permissions in its folder");
  }
  target.Commit();
}

}  // namespace

void DrawLines(const LinePlot& plot, const std::filesystem::path& output) {
  const std::string text = Commands(plot, TerminalOf(output));
  const File commands = ScratchFile(), picture = ScratchFile(), complaints = ScratchFile();
  if (std::fwrite(text.data(), 1, text.size(), commands.get()) != text.size() || std::fflush(commands.get()) != 0) {
    Refuse(fmt::format("no scratch file: {}", std::strerror(errno)));
  }
  std::rewind(commands.get());
  RunDrawer(commands.get(), picture.get(), complaints.get());
  Keep(picture.get(), output);
}

}  // namespace orvio::program
