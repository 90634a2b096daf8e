// A repack is a copy without a plan, in another version or with another filter.

#include "copying/repack.h"

#include <filesystem>
#include <optional>

#include "copying/comparison.h"
#include "copying/content_copy.h"
#include "copying/state_chain.h"
#include "output_file.h"

namespace orvio::program {
namespace {

/// All states, and all that they hold.
CopyTask TaskFor(const ResultSource& source, _ORVVersion version) {
  CopyTask task;
  task.plan.states_of_file = static_cast<int>(source.states().size());
  for (int state = 1; state <= task.plan.states_of_file; ++state) task.plan.states.push_back(state);
  task.makes_whole = version < ORV_VERSION_2_0;  // these have no place to say that a state holds changes
  return task;
}

void NoteVersion(_ORVVersion version, const ORVFileVersion& before, CopyReport& report) {
  const bool goes_below = before.m_major >= 2 && before.m_minor >= 2 && version < ORV_VERSION_2_2;
  if (goes_below) report.notes.emplace_back("readers look for properties in files of version 2.2 and later only");
}

}  // namespace

RepackReport RepackFile(const RepackOptions& options) {
  RequireOtherFile(options.file, options.out);
  RepackReport report;
  auto source = std::make_optional<ResultSource>(options.file);
  report.version = options.version.value_or(ClosestVersion(source->version()));
  const CopyTask task = TaskFor(*source, report.version);
  OutputFile output(options.out);
  {
    ContentWriter writer(output.working_path(), options.out, report.version, options.storage);
    report.copy = CopyContent(task, *source, writer);
    writer.Close();
  }
  if (report.copy.has_properties) NoteVersion(report.version, source->version(), report.copy);
  source.reset();
  std::error_code error;
  report.copy.size_before = std::filesystem::file_size(options.file, error);
  report.copy.size_after = std::filesystem::file_size(output.working_path(), error);
  if (options.verifies) {
    const Comparison comparison = CompareCopy(options.file, output.working_path(), task.makes_whole);
    report.was_compared = true;
    report.compared_values = comparison.values;
    report.differences = comparison.differences;
  }
  if (report.differences.empty()) output.Commit();
  return report;
}

}  // namespace orvio::program
