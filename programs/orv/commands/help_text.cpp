// The layout is one that help2man understands: a line "Usage: ", headings with a colon, options with at least two blanks
// before what they do.

#include "commands/help_text.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstddef>
#include <sstream>

namespace orvio::program {
namespace {

constexpr std::size_t kWidth = 80;
constexpr std::size_t kColumn = 24;  // where descriptions begin

/// Words of a text in lines up to the width; lines after the first one begin with blanks.
std::string Wrapped(const std::string& text, std::size_t used, std::size_t indent) {
  std::string lines;
  std::istringstream words(text);
  std::size_t column = used;
  for (std::string word; words >> word;) {
    const bool is_first = lines.empty();
    if (!is_first && column + 1 + word.size() > kWidth) {
      lines += "\n" + std::string(indent, ' ');
      column = indent;
    } else if (!is_first) {
      lines += ' ';
      ++column;
    }
    lines += word;
    column += word.size();
  }
  return lines + "\n";
}

/// "  --var NAME   what it is"; a long beginning has a line of its own.
std::string Entry(const std::string& beginning, const std::string& text) {
  std::string line = "  " + beginning;
  const bool is_long = line.size() + 2 > kColumn;
  line += is_long ? "\n" + std::string(kColumn, ' ') : std::string(kColumn - line.size(), ' ');
  return line + Wrapped(text, kColumn, kColumn);
}

/// The word for what an option takes, as in "--ids LIST"; empty for a flag.
std::string ValueName(const CLI::Option& option) {
  if (option.get_items_expected_max() == 0) return "";
  const std::string text = option.get_option_text();
  return text.empty() ? "VALUE" : text;
}

/// "-o, --out FILE".
std::string OptionNames(const CLI::Option& option) {
  std::string names;
  for (const std::string& name : option.get_snames()) names += (names.empty() ? "-" : ", -") + name;
  for (const std::string& name : option.get_lnames()) names += (names.empty() ? "--" : ", --") + name;
  const std::string value = ValueName(option);
  return value.empty() ? names : names + " " + value;
}

std::string PositionalName(const CLI::Option& option) {
  if (!option.get_option_text().empty()) return option.get_option_text();
  std::string name = option.get_name(true);
  std::ranges::transform(name, name.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return name;
}

std::vector<const CLI::Option*> Positionals(const CLI::App& app) {
  return app.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

std::vector<const CLI::Option*> Options(const CLI::App& app) {
  return app.get_options([](const CLI::Option* o) { return o->nonpositional() && !o->get_group().empty(); });
}

std::string Usage(const CLI::App& app, const std::string& name) {
  std::string line = "Usage: " + name;
  if (!ShownCommands(app).empty()) line += " COMMAND";
  for (const CLI::Option* option : Positionals(app)) {
    const std::string word = PositionalName(*option);
    line += option->get_required() ? " " + word : " [" + word + "]";
  }
  for (const CLI::Option* option : Options(app)) {
    if (option->get_required())
      line +=
          " " + (option->get_lnames().empty() ? "-" : "--" + option->get_lnames().front()) + " " + ValueName(*option);
  }
  return line + " [OPTION]...\n";
}

std::string Commands(const CLI::App& app) {
  std::string text;
  for (const CLI::App* command : ShownCommands(app)) text += Entry(command->get_name(), command->get_description());
  return text.empty() ? text : "\nCommands:\n" + text;
}

std::string Arguments(const CLI::App& app) {
  std::string text;
  for (const CLI::Option* option : Positionals(app)) text += Entry(PositionalName(*option), option->get_description());
  return text.empty() ? text : "\nArguments:\n" + text;
}

/// The help itself comes last.
std::string OptionList(const CLI::App& app) {
  std::string text;
  for (const CLI::Option* option : Options(app)) {
    if (option != app.get_help_ptr()) text += Entry(OptionNames(*option), option->get_description());
  }
  return "\nOptions:\n" + text + Entry(OptionNames(*app.get_help_ptr()), app.get_help_ptr()->get_description());
}

bool HasOption(const CLI::App& app, const char* name) { return app.get_option_no_throw(name) != nullptr; }

/// How to choose, where there is something to choose.
std::string Selections(const CLI::App& app) {
  std::string text;
  if (HasOption(app, "--var")) {
    text += "\nNames:\n";
    text += Entry("Stress", "a variable by its name or key, whatever the case of its letters");
    text += Entry("STRESS_SXX", "a component by the name of its handle; orv info lists them");
  }
  if (HasOption(app, "--states")) {
    text += "\nStates:\n";
    text += Entry("3", "a state by its number, from 1; 0 stands for constant values");
    text += Entry("last", "the last one");
    text += Entry("1:10, 1:10:2, 5:", "a range, with a step, to the last one");
    text += Entry("t=0.01", "the one whose first index value, such as its time, comes nearest");
    text += Entry("t=0.01:0.02", "those with a first index value in a range, in the unit of the file");
    text += Entry("FREQUENCY=100:", "the same by the name of an index column; orv states shows them");
    text += Entry("1,5,last", "several, with commas between");
  }
  if (HasOption(app, "--ids")) {
    text += "\nIds:\n";
    text += Entry("1,5,7-9", "ids and ranges of ids of nodes or elements, as the file has them");
  }
  return text;
}

std::string ExitCodes(const std::string& found) {
  std::string text = "\nExit status:\n" + Entry("0", "all went well");
  if (!found.empty()) text += Entry("1", found);
  return text + Entry("2", "trouble; the last line on standard error tells what, where, and what to do");
}

std::string HelpText(const CLI::App* app, const std::string& name, CLI::AppFormatMode /*mode*/) {
  const std::string footer = app->get_footer();
  return Usage(*app, name) + "\n" + Wrapped(app->get_description() + ".", 0, 0) + Commands(*app) + Arguments(*app) +
         OptionList(*app) + Selections(*app) + (footer.empty() ? ExitCodes("") : footer);
}

}  // namespace

void AddNotes(CLI::App& command, const HelpNotes& notes) {
  std::string text = ExitCodes(notes.found);
  if (!notes.examples.empty()) text += "\nExamples:\n";
  for (const std::string& example : notes.examples) text += "  $ " + example + "\n";
  command.footer(text);
}

void UseHelpText(CLI::App& app) {
  app.formatter_fn(HelpText);
  app.set_help_flag("-h,--help", "Print this help");
}

std::vector<const CLI::App*> ShownCommands(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App* command) { return !command->get_group().empty(); });
}

}  // namespace orvio::program
