// Writing states: into a fresh file, and into one that has many.

#include <filesystem>

#include "flat.h"
#include "library.h"
#include "running.h"

namespace orvio::bench {
namespace {

/// What is written, how, and for how long.
struct Writing {
  Job job;  ///< nodes as they are written; states as many as are measured
  Commit commit;
  int before = 0;  ///< states that the file has at first
};

/// Reads back what was written last, by HDF5 or as bytes and not by the library.
void DemandWritten(const std::string& path, const Road& road, const Job& job, int before, const StateValues& values) {
  if (road.plain_bytes) return DemandRight(IsFlatWritten(path, values, job.states - before));
  Asked asked = {.quantity = kStress, .state = job.states, .with_ids = true};
  Answer answer;
  const Files files = {job, path, path};
  MakeRawReader(files)->Read(asked, answer);
  asked.state = 1;  // every state got the values of the first
  DemandRight(IsRight(job, asked, answer));
}

/// The file that states are added to. The first states come from a file of a job, if there is one with so many.
void MakeBase(Suite& suite, const Writing& writing, const std::string& path) {
  const Job& small = suite.jobs().small;
  if (writing.before == small.states) {
    (void)std::filesystem::copy_file(suite.files().Of(small).orv, path);
    return;
  }
  MakeEmptyFile(writing.job, path);
  StateValues values(writing.job);
  const auto writer = MakeLibraryWriter(path, {.whole_state = true, .durability = 0});
  for (int state = 1; state <= writing.before; ++state) writer->WriteState(state, values);
}

void MeasureWriting(benchmark::State& state, Suite& suite, const Road& road, const Writing& writing) {
  const ScratchFile file(suite.files().Scratch());
  if (!road.plain_bytes) MakeBase(suite, writing, file.path());
  StateValues values(writing.job);
  int written = writing.before;
  {
    const auto writer = road.make_writer(file.path(), writing.commit);
    for (auto _ : state) writer->WriteState(++written, values);
  }
  Job as_written = writing.job;
  as_written.states = written;
  DemandWritten(file.path(), road, as_written, writing.before, values);
}

void AddRequest(Suite& suite, const std::string& request, const Writing& writing) {
  for (const Road& road : Roads()) {
    if (!road.make_writer) continue;
    const auto body = [&suite, &road, writing](benchmark::State& state) {
      MeasureWriting(state, suite, road, writing);
    };
    suite.Add(request, writing.job, road, body)->Iterations(writing.job.states);
  }
}

}  // namespace

void AddWritingRequests(Suite& suite) {
  const Jobs& jobs = suite.jobs();
  for (const Job& job : {Job{"small", jobs.small.nodes, 200}, Job{"medium", jobs.medium.nodes, 10}}) {
    AddRequest(suite, "write_blocks_plain", {job, {.whole_state = false, .durability = 0}});
    AddRequest(suite, "write_blocks_kill_safe", {job, {.whole_state = false, .durability = 1}});
    AddRequest(suite, "write_state_plain", {job, {.whole_state = true, .durability = 0}});
    AddRequest(suite, "write_state_kill_safe", {job, {.whole_state = true, .durability = 1}});
  }
  const Job some = {"small", jobs.small.nodes, 40};
  for (const int before : {10, jobs.small.states}) {
    const std::string request = "write_behind_" + std::to_string(before) + "_states";
    AddRequest(suite, request, {some, {.whole_state = true, .durability = 1}, before});
  }
}

}  // namespace orvio::bench
