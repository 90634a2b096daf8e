// orv repack: the same content, stored in another way.

#include <fmt/format.h>

#include <memory>
#include <string>

#include "commands/commands.h"
#include "commands/format_version.h"
#include "commands/help_text.h"
#include "copying/repack.h"
#include "printing/json_output.h"

namespace orvio::program {
namespace {

constexpr int kDiffers = 1;
constexpr int kUsualChunk = 4096, kMostDigits = 20;

void Tell(const RepackOptions& options, const RepackReport& report) {
  const CopyReport& copy = report.copy;
  const double share =
      copy.size_before > 0 ? 100.0 * static_cast<double>(copy.size_after) / static_cast<double>(copy.size_before) : 0;
  fmt::print(stderr, "{}: version {}, {} states, {} blocks, {} bytes of {} ({:.1f} %)\n", options.out,
             WordOf(report.version), copy.states, copy.blocks, copy.size_after, copy.size_before, share);
  for (const std::string& note : copy.notes) fmt::print(stderr, "{}: {}\n", options.out, note);
  if (!report.was_compared) return;
  for (const std::string& difference : report.differences) fmt::print(stderr, "{}: {}\n", options.file, difference);
  fmt::print(stderr, "{}: {}\n", options.out,
             report.differences.empty() ? fmt::format("{} values compared, no difference", report.compared_values)
                                        : std::string("differs from the file and was not written"));
}

Json ToJson(const RepackOptions& options, const RepackReport& report) {
  using Filter = Storage::Filter;
  Json answer = JsonAnswer("repack", options.file);
  answer["out"] = options.out;
  answer["format_version"] = WordOf(report.version);
  answer["filter"] = options.storage.filter == Filter::kAsRead ? "as stored"
                     : options.storage.filter == Filter::kNone ? "none"
                                                               : "scale-offset";
  answer["digits"] = options.storage.filter == Filter::kDigits ? Json(options.storage.digits) : Json();
  answer["chunk"] = options.storage.chunk ? Json(*options.storage.chunk) : Json();
  answer["states"] = report.copy.states;
  answer["blocks"] = report.copy.blocks;
  answer["size_before"] = report.copy.size_before;
  answer["size_after"] = report.copy.size_after;
  answer["notes"] = report.copy.notes;
  answer["verified"] = report.was_compared ? Json(report.differences.empty()) : Json();
  answer["differences"] = report.differences;
  return answer;
}

void Run(const RepackOptions& options, bool quiet, bool json) {
  const RepackReport report = RepackFile(options);
  if (!quiet) Tell(options, report);
  if (json) PrintJson(ToJson(options, report));
  if (!report.differences.empty()) throw CLI::RuntimeError(kDiffers);
}

}  // namespace

void AddRepackCommand(CLI::App& app) {
  auto options = std::make_shared<RepackOptions>();
  auto version = std::make_shared<std::string>();
  auto chunk = std::make_shared<int>(kUsualChunk);
  auto plain = std::make_shared<bool>(false);
  auto quiet = std::make_shared<bool>(false);
  auto json = std::make_shared<bool>(false);
  CLI::App* command = app.add_subcommand(
      "repack", "Write a result file anew with the same content, in another version or with another compression");
  command->add_option("file", options->file, "Result file; it is not changed")->option_text("FILE")->required();
  command->add_option("-o,--out", options->out, "Result file to write; one that exists is replaced when all went well")
      ->option_text("OUT")
      ->required();
  CLI::Option* of_version =
      command->add_option("--format-version", *version, "Version to write: 1.0 to 2.2 (default: that of the file)")
          ->check(CLI::IsMember(VersionNames()))
          ->option_text("VERSION");
  CLI::Option* digits =
      command->add_option("--digits", options->storage.digits, "Compress, with so many decimal digits of values kept")
          ->check(CLI::Range(0, kMostDigits))
          ->option_text("N");
  CLI::Option* none = command->add_flag("--no-compress", *plain, "Store without compression")->excludes(digits);
  CLI::Option* of_chunk =
      command->add_option("--chunk", *chunk, "Entities in one chunk at most, 0 for all (default 4096 with --digits)")
          ->check(CLI::Range(0, 1 << 30))
          ->excludes(none)
          ->option_text("N");
  command->add_flag("--verify", options->verifies, "Compare with the file; exit code 1 and no output when they differ");
  command->add_flag("-q,--quiet", *quiet, "No summary");
  command->add_flag("--json", *json, "Print JSON");
  command->callback([=] {
    Storage& storage = options->storage;
    if (of_version->count() > 0) options->version = VersionNamed(*version);
    if (*plain) storage.filter = Storage::Filter::kNone;
    if (digits->count() > 0) storage.filter = Storage::Filter::kDigits;
    if (digits->count() > 0 || of_chunk->count() > 0) storage.chunk = *chunk;
    Run(*options, *quiet, *json);
  });
  AddNotes(*command, {{"orv repack run.orv -o small.orv --digits 4 --verify",
                       "orv repack run.orv -o old.orv --format-version 1.2 --no-compress"},
                      "the output would differ from the file; none is left"});
}

}  // namespace orvio::program
