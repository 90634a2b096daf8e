// What a host asks when it meets a file: what is in it, and the states.

#include "running.h"

namespace orvio::bench {
namespace {

/// What is measured in a file that the process knows, or in one that it meets for the first time.
enum class File { kKnown, kUnknown };

void MeasureListing(benchmark::State& state, const Road& road, const Files& files, File file) {
  const auto reader = road.make_reader(files);
  for (auto _ : state) {
    state.PauseTiming();
    if (file == File::kUnknown && road.remembers) MakeUnknown(files.orv);
    Listing listing;
    state.ResumeTiming();
    reader->List(listing);
    state.PauseTiming();
    DemandRight(IsRight(files.job, listing));
    state.ResumeTiming();
  }
}

void MeasureStates(benchmark::State& state, const Road& road, const Files& files) {
  const auto reader = road.make_reader(files);
  for (auto _ : state) {
    state.PauseTiming();
    if (road.remembers) MakeUnknown(files.orv);
    reader->PrepareStates();
    Listing listing;
    state.ResumeTiming();
    reader->ReadStates(listing);
    state.PauseTiming();
    DemandRight(AreStatesRight(files.job, listing));
    state.ResumeTiming();
  }
}

constexpr int kFewTimes = 3;  // each takes a wait that is not measured

void AddListing(Suite& suite, const char* request, const Job& job, File file) {
  for (const Road& road : Roads()) {
    auto* added = suite.Add(request, job, road, [&suite, &road, job, file](benchmark::State& state) {
      MeasureListing(state, road, suite.files().Of(job), file);
    });
    if (file == File::kUnknown) added->Iterations(kFewTimes);
  }
}

void AddStates(Suite& suite, const Job& job) {
  for (const Road& road : Roads()) {
    const auto body = [&suite, &road, job](benchmark::State& state) {
      MeasureStates(state, road, suite.files().Of(job));
    };
    suite.Add("state_index_first_time", job, road, body)->Iterations(kFewTimes);
  }
}

}  // namespace

void AddListingRequests(Suite& suite) {
  const Jobs& jobs = suite.jobs();
  for (const Job& job : {jobs.small, jobs.small_split, jobs.medium}) {
    AddListing(suite, "open_and_list_first_time", job, File::kUnknown);
    AddListing(suite, "open_and_list", job, File::kKnown);
  }
  AddStates(suite, jobs.small);
  AddStates(suite, jobs.series.back());
}

}  // namespace orvio::bench
