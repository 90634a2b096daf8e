// An extraction is a copy with a plan.

#include "copying/extract.h"

#include <filesystem>

#include "copying/content_copy.h"
#include "copying/extract_plan.h"
#include "output_file.h"

namespace orvio::program {

CopyReport ExtractFile(const ExtractOptions& options) {
  RequireOtherFile(options.file, options.out);
  CopyTask task;
  task.plan = PlanExtract(options);
  task.chooses = options.chooses();
  task.chooses_states = !options.states.empty();
  task.makes_whole = true;
  ResultSource source(options.file);
  OutputFile output(options.out);
  ContentWriter writer(output.working_path(), options.out, ClosestVersion(source.version()), Storage());
  CopyReport report = CopyContent(task, source, writer);
  writer.Close();
  std::error_code error;
  report.size_before = std::filesystem::file_size(options.file, error);
  report.size_after = std::filesystem::file_size(output.working_path(), error);
  output.Commit();
  return report;
}

}  // namespace orvio::program
