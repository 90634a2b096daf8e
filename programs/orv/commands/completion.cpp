// All shells share what is said here. What comes from a file is read in a process of its own that has little time: a
// shell waits for it, and the file may be anything.

#include "commands/completion.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

#include "checking/guarded_run.h"
#include "checking/rules.h"
#include "commands/completion_scripts.h"
#include "commands/help_text.h"
#include "reading/file_tree.h"
#include "reading/name_list.h"

namespace orvio::program {
namespace {

using Names = std::vector<ListedName>;

constexpr char kRequest[] = "__complete";
constexpr char kFiles[] = ":files";
const Limits kLimits = {2, 4096};

/// What the words before the last one say.
struct TypedLine {
  const CLI::App* command = nullptr;
  bool is_known = true;                   ///< false behind a command that there is not
  bool options_ended = false;             ///< behind "--"
  const CLI::Option* awaiting = nullptr;  ///< takes the last word as its value
  std::vector<std::string> positionals;
  std::map<std::string, std::string> given;  ///< options by their first long names, with their values
};

std::string NameOf(const CLI::Option& option) {
  return option.get_lnames().empty() ? option.get_name() : "--" + option.get_lnames().front();
}

bool TakesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

void TakeOption(const CLI::App& app, const std::string& word, TypedLine& line) {
  const std::size_t sign = word.find('=');
  const CLI::Option* option = app.get_option_no_throw(word.substr(0, sign));
  if (!option) return;
  line.given[NameOf(*option)] = sign == std::string::npos ? "" : word.substr(sign + 1);
  if (sign == std::string::npos && TakesValue(*option)) line.awaiting = option;
}

/// Null where there is none of that name.
const CLI::App* CommandOf(const CLI::App& app, const std::string& name) {
  const auto commands = app.get_subcommands([&](const CLI::App* command) { return command->get_name() == name; });
  return commands.empty() ? nullptr : commands.front();
}

void TakeWord(const CLI::App& app, const std::string& word, TypedLine& line) {
  if (line.awaiting) {
    line.given[NameOf(*line.awaiting)] = word;
    line.awaiting = nullptr;
  } else if (!line.options_ended && word == "--") {
    line.options_ended = true;
  } else if (!line.options_ended && word.size() > 1 && word.starts_with('-')) {
    TakeOption(line.command ? *line.command : app, word, line);
  } else if (!line.command) {
    line.command = CommandOf(app, word);
    line.is_known = line.is_known && line.command;
  } else {
    line.positionals.push_back(word);
  }
}

std::vector<const CLI::Option*> Positionals(const CLI::App& app) {
  return app.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

/// "{a,b}" in what an option checks.
Names ListedValues(const CLI::Option& option) {
  const std::string type = option.get_type_name();
  const std::size_t begin = type.find('{'), end = type.rfind('}');
  if (begin == std::string::npos || end == std::string::npos || end < begin) return {};
  Names names;
  std::istringstream list(type.substr(begin + 1, end - begin - 1));
  for (std::string word; std::getline(list, word, ',');) names.push_back({word, ""});
  return names;
}

std::optional<NameKind> KindOf(const std::string& option, const std::string& command) {
  if (option == "--type") return command == "parts" ? NameKind::kPartType : NameKind::kElementType;
  const std::map<std::string, NameKind> kinds = {{"--var", NameKind::kVariable},
                                                 {"--vars", NameKind::kVariable},
                                                 {"--component", NameKind::kComponent},
                                                 {"--components", NameKind::kComponent},
                                                 {"--states", NameKind::kState},
                                                 {"--state", NameKind::kState},
                                                 {"--entity", NameKind::kEntity},
                                                 {"--entities", NameKind::kEntity},
                                                 {"--parts", NameKind::kPart},
                                                 {"--part", NameKind::kPart},
                                                 {"--ids", NameKind::kId}};
  const auto kind = kinds.find(option);
  return kind == kinds.end() ? std::nullopt : std::optional(kind->second);
}

bool TakesList(const CLI::Option& option) {
  const std::string name = NameOf(option);
  return option.get_delimiter() == ',' || name == "--states" || name == "--ids" || name == "--parts";
}

bool TakesFile(const CLI::Option& option) {
  const std::string text = option.get_option_text();
  if (!text.empty()) return text.find("FILE") != std::string::npos || text.find("OUT") != std::string::npos;
  const std::string name = NameOf(option);
  return option.get_positional() || name == "--out" || name == "--output";
}

/// The first word that is a file; which words of a command are files is its own affair.
std::string FileOf(const TypedLine& line) {
  const auto is_file = [](const std::string& word) {
    std::error_code error;
    return std::filesystem::is_regular_file(word, error);
  };
  const auto file = std::ranges::find_if(line.positionals, is_file);
  return file == line.positionals.end() ? "" : *file;
}

/// A shell would take a name with control characters apart, and a terminal might do worse.
bool IsPrintable(const std::string& text) {
  return std::ranges::none_of(text, [](unsigned char c) { return std::iscntrl(c) != 0; });
}

/// What `read` answers in a process of its own; nothing where it fails.
Names ReadGuarded(const std::function<Names()>& read) {
  Names names;
  const auto work = [&](const LineSender& sender) {
    try {
      for (const ListedName& name : read()) {
        if (IsPrintable(name.word)) sender.Send(name.word + '\t' + (IsPrintable(name.note) ? name.note : ""));
      }
    } catch (const std::exception&) {  // no candidates, then
    }
  };
  (void)RunGuarded(kLimits, work, [&](std::string_view text) {
    const std::size_t tab = text.find('\t');
    names.push_back({std::string(text.substr(0, tab)), std::string(text.substr(tab + 1))});
  });
  return names;
}

std::string GivenValue(const TypedLine& line, const std::string& option) {
  const auto given = line.given.find(option);
  return given == line.given.end() ? "" : given->second;
}

Names NamesFromFile(const TypedLine& line, NameKind kind, const std::string& beginning) {
  const std::string file = FileOf(line);
  if (file.empty()) return {};
  const ValueRequest request = {GivenValue(line, "--var"), "", GivenValue(line, "--entity"), {}};
  return ReadGuarded([&] { return ListNames(file, kind, request, beginning); });
}

Names RuleNames() {
  Names names;
  for (const Rule& rule : AllRules()) names.push_back({rule.id, rule.name});
  return names;
}

/// Values of an option, of which `typed` is the beginning.
Names Values(const TypedLine& line, const CLI::Option& option, const std::string& typed) {
  const std::size_t comma = TakesList(option) ? typed.rfind(',') : std::string::npos;
  const std::string before = comma == std::string::npos ? "" : typed.substr(0, comma + 1);
  const std::string beginning = typed.substr(before.size());
  const auto kind = KindOf(NameOf(option), line.command ? line.command->get_name() : "");
  Names names = KeepBeginning(NameOf(option) == "--explain" ? RuleNames() : ListedValues(option), beginning);
  if (names.empty() && kind) names = NamesFromFile(line, *kind, beginning);
  if (names.empty() && !kind && TakesFile(option)) return {{kFiles, ""}};
  for (ListedName& name : names) name.word.insert(0, before);
  return names;
}

Names CommandNames(const CLI::App& app) {
  Names names;
  for (const CLI::App* command : ShownCommands(app)) names.push_back({command->get_name(), command->get_description()});
  return names;
}

/// Those that are not there already.
Names OptionNames(const CLI::App& app, const TypedLine& line) {
  Names names;
  for (const CLI::Option* option : app.get_options()) {
    const std::string name = NameOf(*option);
    const bool is_shown = option->nonpositional() && !option->get_group().empty();
    const std::string note = option->get_description().substr(0, option->get_description().find(';'));
    if (is_shown && !line.given.contains(name)) names.push_back({name, note});
  }
  return names;
}

/// `FILE:PATH` of orv ls; names of files as long as there is no colon behind one.
Names Places(const std::string& typed) {
  const FilePlace place = SplitFilePlace(typed);
  if (place.place.empty() && !typed.ends_with(':')) return {{kFiles, ""}};
  const std::size_t slash = place.place.rfind('/');
  const std::string above = slash == std::string::npos ? "" : place.place.substr(0, slash + 1);
  const std::string before = place.file + ":" + above;
  return ReadGuarded([&] {
    Names names;
    for (const TreeEntry& entry : ListTree(place.file, above, {})) {
      const bool is_leaf = entry.kind == "dataset" || entry.kind == "link";
      names.push_back({before + entry.path + (is_leaf ? "" : "/"), entry.kind});
    }
    return KeepBeginning(names, typed);
  });
}

Names PositionalNames(const TypedLine& line, const std::string& typed) {
  const auto positionals = Positionals(*line.command);
  if (line.positionals.size() >= positionals.size()) {
    return typed.empty() ? OptionNames(*line.command, line) : Names();
  }
  if (line.command->get_name() == "ls") return Places(typed);
  return Values(line, *positionals[line.positionals.size()], typed);
}

Names Candidates(const CLI::App& app, const TypedLine& line, const std::string& typed) {
  if (!line.is_known) return {};
  if (line.awaiting) return Values(line, *line.awaiting, typed);
  const CLI::App& command = line.command ? *line.command : app;
  const std::size_t sign = typed.find('=');
  if (!line.options_ended && typed.starts_with("--") && sign != std::string::npos) {
    const CLI::Option* option = command.get_option_no_throw(typed.substr(0, sign));
    if (!option || !TakesValue(*option)) return {};
    Names names = Values(line, *option, typed.substr(sign + 1));
    for (ListedName& name : names) {
      if (name.word != kFiles) name.word.insert(0, typed.substr(0, sign + 1));
    }
    return names;
  }
  if (!line.options_ended && typed.starts_with('-')) return KeepBeginning(OptionNames(command, line), typed);
  if (!line.command) return KeepBeginning(CommandNames(app), typed);
  return PositionalNames(line, typed);
}

}  // namespace

bool IsAskedToComplete(int argc, const char* const* argv) { return argc > 1 && std::string_view(argv[1]) == kRequest; }

int Complete(const CLI::App& app, int argc, const char* const* argv) {
  const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
  if (nowhere >= 0) (void)dup2(nowhere, STDERR_FILENO);
  std::vector<std::string> words(argv + 2, argv + argc);
  if (!words.empty() && words.front() == "--") words.erase(words.begin());
  const std::string typed = words.empty() ? "" : words.back();
  if (!words.empty()) words.pop_back();
  TypedLine line;
  for (const std::string& word : words) TakeWord(app, word, line);
  for (const ListedName& name : Candidates(app, line, typed)) {
    fmt::print("{}{}\n", name.word, name.note.empty() ? "" : "\t" + name.note);
  }
  return 0;
}

void AddCompletionCommand(CLI::App& app) {
  auto shell = std::make_shared<std::string>();
  CLI::App* command =
      app.add_subcommand("completion", "Print the script that makes a shell complete command lines of orv");
  command->add_option("shell", *shell, "bash, zsh or fish")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh", "fish"}))
      ->option_text("SHELL");
  command->callback([shell] { fmt::print("{}", CompletionScript(*shell)); });
  AddNotes(*command, {{"source <(orv completion bash)", "orv completion zsh > ~/.zfunc/_orv",
                       "orv completion fish > ~/.config/fish/completions/orv.fish"}});
}

}  // namespace orvio::program
