// orv ls: what lies where in a file.

#include <fmt/format.h>

#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "commands/help_text.h"
#include "printing/json_output.h"
#include "printing/table.h"
#include "reading/file_tree.h"

namespace orvio::program {
namespace {

struct Options {
  std::string argument;
  bool is_long = false, recursive = false, json = false;
};

std::string Cell(const std::optional<std::int64_t>& number) { return number ? fmt::format("{}", *number) : ""; }

std::string NameOf(const TreeEntry& entry) {
  return entry.kind == "link" ? fmt::format("{} -> {}", entry.path, entry.target) : entry.path;
}

void PrintLong(const std::vector<TreeEntry>& entries) {
  Table table({"kind", "key", "count", "bytes", "name"});
  for (const TreeEntry& entry : entries) {
    table.Add({entry.kind, Cell(entry.key), Cell(entry.count), fmt::format("{}", entry.bytes), NameOf(entry)});
  }
  table.Print("");
}

Json ToJson(const TreeEntry& entry) {
  Json json = {{"name", entry.path}, {"kind", entry.kind}};
  if (entry.key) json["key"] = *entry.key;
  if (entry.count) json["count"] = *entry.count;
  if (entry.kind == "link") {
    json["target"] = entry.target;
  } else {
    json["bytes"] = entry.bytes;
  }
  return json;
}

void PrintAsJson(const FilePlace& place, const std::vector<TreeEntry>& entries) {
  Json json = JsonAnswer("ls", place.file);
  json.update({{"place", place.place}, {"entries", Json::array()}});
  for (const TreeEntry& entry : entries) json["entries"].push_back(ToJson(entry));
  PrintJson(json);
}

void Run(const Options& options) {
  const FilePlace place = SplitFilePlace(options.argument);
  const auto entries = ListTree(place.file, place.place, {options.recursive, options.is_long || options.json});
  if (options.json) return PrintAsJson(place, entries);
  if (options.is_long) return PrintLong(entries);
  for (const TreeEntry& entry : entries) fmt::print("{}\n", NameOf(entry));
}

}  // namespace

void AddLsCommand(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand("ls", "List the sections, groups and blocks of a result file");
  command
      ->add_option("file", options->argument,
                   "Result file, or a place in it, such as out.orv:singlestate; of a block the datasets are listed")
      ->required()
      ->option_text("FILE[:PATH]");
  command->add_flag("-l,--long", options->is_long, "Also print kinds, keys of blocks, counts and stored bytes");
  command->add_flag("-r,--recursive", options->recursive, "Also list what lies below, down to the blocks");
  command->add_flag("--json", options->json, "Print JSON");
  command->callback([options] { Run(*options); });
  AddNotes(*command, {{"orv ls out.orv", "orv ls -lr out.orv:constant"}});
}

}  // namespace orvio::program
