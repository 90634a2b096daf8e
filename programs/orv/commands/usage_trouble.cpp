// The command line library words its complaints for programmers, some of them in several lines. Those that people meet
// are worded here.

#include "commands/usage_trouble.h"

#include <fmt/format.h>

#include <algorithm>
#include <sstream>
#include <string_view>
#include <vector>

#include "commands/help_text.h"
#include "suggestion.h"
#include "trouble.h"

namespace orvio::program {
namespace {

const CLI::App* SelectedCommand(const CLI::App& app) {
  const auto selected = app.get_subcommands();
  return selected.empty() ? nullptr : selected.front();
}

std::vector<std::string> OptionWords(const CLI::App& app) {
  std::vector<std::string> words;
  for (const CLI::Option* option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) words.push_back("--" + name);
  }
  return words;
}

std::vector<std::string> CommandWords(const CLI::App& app) {
  std::vector<std::string> words;
  for (const CLI::App* command : ShownCommands(app)) words.push_back(command->get_name());
  return words;
}

std::string UnknownOption(const CLI::App& app, const std::string& word) {
  const std::string name = word.substr(0, word.find('='));
  return fmt::format("there is no option \"{}\"{}", name, DidYouMean(name, OptionWords(app)));
}

std::string UnknownCommand(const CLI::App& app, const std::string& word) {
  return fmt::format("there is no command \"{}\"{}", word, DidYouMean(word, CommandWords(app)));
}

bool IsFlag(const CLI::App& app, const std::string& name) {
  const CLI::Option* option = app.get_option_no_throw(name);
  return option && option->get_items_expected_max() == 0;
}

std::string Missing(const std::string& text) {
  const std::string name = text.substr(0, text.find(' '));
  if (name.starts_with('-')) return name + " is missing";
  std::string word = name;
  std::ranges::transform(word, word.begin(), [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
  return word + " is missing";
}

std::string WrongCount(const CLI::App& app, const std::string& text) {
  const std::string option = text.substr(0, text.find(':'));
  return option + (IsFlag(app, option) ? " takes no value" : " needs one value");
}

/// "Could not convert: --state = abc".
std::string NoNumber(const CLI::App& app, const std::string& text) {
  const std::size_t name = text.find(": "), sign = text.find(" = ");
  if (name == std::string::npos || sign == std::string::npos || sign < name) return text;
  const std::string option = text.substr(name + 2, sign - name - 2);
  if (IsFlag(app, option)) return option + " takes no value";
  return fmt::format("{}: \"{}\" is no number", option, text.substr(sign + 3));
}

/// "--level: loud not in {error,warning}".
std::string NoneOf(const std::string& text) {
  constexpr std::string_view kMiddle = " not in {";
  const std::size_t name = text.find(": "), middle = text.rfind(kMiddle);
  if (name == std::string::npos || middle == std::string::npos || middle < name || !text.ends_with('}')) return text;
  std::vector<std::string> known;
  std::istringstream list(text.substr(middle + kMiddle.size(), text.size() - middle - kMiddle.size() - 1));
  for (std::string word; std::getline(list, word, ',');) known.push_back(word);
  std::string all;
  for (const std::string& word : known) all += (all.empty() ? "" : ", ") + word;
  const std::string given = text.substr(name + 2, middle - name - 2);
  return fmt::format("{}: \"{}\" is none of {}{}", text.substr(0, name), given, all, DidYouMean(given, known));
}

std::string Complaint(const CLI::App& app, const CLI::App& command, const CLI::ParseError& error) {
  const std::vector<std::string> unknown = app.remaining(true);
  for (const std::string& word : unknown) {
    if (word.size() > 1 && word.starts_with('-') && word != "--") return UnknownOption(command, word);
  }
  const std::string text = error.what();
  if (!SelectedCommand(app)) return unknown.empty() ? "a command is missing" : UnknownCommand(app, unknown.front());
  if (dynamic_cast<const CLI::RequiredError*>(&error)) return Missing(text);
  if (dynamic_cast<const CLI::ArgumentMismatch*>(&error)) return WrongCount(command, text);
  if (dynamic_cast<const CLI::ConversionError*>(&error)) return NoNumber(command, text);
  if (dynamic_cast<const CLI::ValidationError*>(&error)) return NoneOf(text);
  if (!unknown.empty()) return fmt::format("\"{}\" is a word too many", unknown.front());
  return text;
}

}  // namespace

std::string UsageTrouble(const CLI::App& app, const CLI::ParseError& error) {
  const CLI::App* selected = SelectedCommand(app);
  const CLI::App& command = selected ? *selected : app;
  const std::string called = selected ? "orv " + command.get_name() : "orv";
  std::string text = OneLine(Complaint(app, command, error));
  const bool has_advice = text.find("; ") != std::string::npos;
  if (!has_advice) text += "; " + called + " --help shows what there is";
  return (selected ? command.get_name() : "command line") + ": " + text;
}

}  // namespace orvio::program
