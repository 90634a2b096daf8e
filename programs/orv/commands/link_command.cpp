// orv link: a file that lets ParaView read a result file.

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "commands/commands.h"
#include "commands/help_text.h"
#include "linking/link.h"
#include "linking/sidecar.h"
#include "printing/json_output.h"
#include "trouble.h"

namespace orvio::program {
namespace {

struct Options {
  std::string file, out;
  bool json = false, quiet = false;
};

std::size_t CountVirtual(const LinkReport& report) {
  return static_cast<std::size_t>(
      std::ranges::count_if(report.arrays, [](const ArrayReport& array) { return array.why_copied.empty(); }));
}

Json ToJson(const ArrayReport& array) {
  Json json = {{"name", array.name},  {"on", array.on},       {"components", array.components},
               {"rows", array.rows},  {"bytes", array.bytes}, {"virtual", array.why_copied.empty()},
               {"slabs", array.slabs}};
  if (!array.why_copied.empty()) json["why_copied"] = array.why_copied;
  return json;
}

void PrintReport(const Options& options, const LinkReport& report) {
  Json arrays = Json::array(), left_out = Json::array();
  for (const ArrayReport& array : report.arrays) arrays.push_back(ToJson(array));
  for (const LeftOut& entry : report.left_out) left_out.push_back({{"what", entry.what}, {"why", entry.why}});
  Json answer = JsonAnswer("link", options.file);
  answer["out"] = options.out;
  answer["source"] = report.source;
  answer["points"] = report.points;
  answer["cells"] = report.cells;
  answer["steps"] = report.steps;
  answer["meshes"] = report.meshes;
  answer["time"] = report.steps > 0 ? Json(report.time) : Json();
  answer["arrays"] = std::move(arrays);
  answer["virtual"] = CountVirtual(report);
  answer["copied"] = report.arrays.size() - CountVirtual(report);
  answer["left_out"] = std::move(left_out);
  answer["notes"] = report.notes;
  answer["bytes"] = {{"file", report.source_bytes}, {"out", report.sidecar_bytes}, {"copied", report.copied_bytes}};
  PrintJson(answer);
}

/// One line for all that is left out for the same reason.
void TellLeftOut(const Options& options, const std::vector<LeftOut>& left_out) {
  constexpr std::size_t kShown = 5;
  std::map<std::string, std::vector<std::string>> by_reason;
  for (const LeftOut& entry : left_out) by_reason[entry.why].push_back(entry.what);
  for (auto& [why, what] : by_reason) {
    const std::size_t count = what.size();
    if (count > kShown) what.resize(kShown);
    const std::string more = count > kShown ? fmt::format(" and {} more", count - kShown) : "";
    fmt::print(stderr, "{}: left out {}{}: {}\n", options.file, fmt::join(what, ", "), more, why);
  }
}

void TellReport(const Options& options, const LinkReport& report) {
  for (const ArrayReport& array : report.arrays) {
    if (array.why_copied.empty()) continue;
    fmt::print(stderr, "{}: copied {} of {}: {}\n", options.file, array.name, array.on, array.why_copied);
  }
  TellLeftOut(options, report.left_out);
  for (const std::string& note : report.notes) fmt::print(stderr, "{}: {}\n", options.file, note);
  fmt::print(stderr, "{}: {} points, {} cells, {} steps, {} arrays, {} of them virtual, {} bytes beside {}\n",
             options.out, report.points, report.cells, report.steps, report.arrays.size(), CountVirtual(report),
             report.sidecar_bytes, report.source_bytes);
}

LinkReport LinkOrLeave(const Options& options) {
  constexpr int kTrouble = 2;
  try {
    return LinkFile(options.file, options.out);
  } catch (const UnfinishedSidecar& trouble) {
    Tell(trouble.what());
    std::_Exit(kTrouble);
  }
}

void RunLink(Options options) {
  if (options.out.empty()) options.out = std::filesystem::path(options.file).replace_extension(".vtkhdf").string();
  const LinkReport report = LinkOrLeave(options);
  if (!options.quiet) TellReport(options, report);
  if (options.json) PrintReport(options, report);
}

}  // namespace

void AddLinkCommand(CLI::App& app) {
  auto options = std::make_shared<Options>();
  CLI::App* command = app.add_subcommand(
      "link", "Write a small VTKHDF file with which ParaView reads the values of a result file where they are");
  command->add_option("file", options->file, "Result file")->option_text("FILE")->required();
  command
      ->add_option(
          "-o,--out", options->out,
          "File to write (default: the name of the result file with .vtkhdf as its extension); one that exists "
          "is replaced when all went well")
      ->option_text("OUT");
  command->add_flag("-q,--quiet", options->quiet, "Do not tell what was made, copied and left out");
  command->add_flag("--json", options->json, "Print a report in JSON");
  command->callback([options] { RunLink(*options); });
  AddNotes(*command, {{"orv link crash.orv", "orv link crash.orv -o views/crash.vtkhdf --json"}});
}

}  // namespace orvio::program
