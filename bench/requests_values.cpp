// Values at one state, and over all states. States are visited in an order that looks like chance.

#include "running.h"

namespace orvio::bench {
namespace {

constexpr int kComponent = 4;  // of six

/// Whether arrays are made anew for each request, or filled again.
enum class Arrays { kFresh, kKept };

void MeasureValues(benchmark::State& state, Reader& reader, const Job& job, Asked asked, Arrays arrays) {
  const bool at_a_state = asked.state != Asked::kAll;
  StateOrder order(job.states);
  Answer answer;
  answer.kept = arrays == Arrays::kKept;
  if (at_a_state) asked.state = order.Next();
  reader.Read(asked, answer);
  DemandRight(IsRight(job, asked, answer));
  for (auto _ : state) {
    if (at_a_state) asked.state = order.Next();
    if (!answer.kept) answer = Answer();
    reader.Read(asked, answer);
    DemandRight(LooksRight(job, asked, answer));
  }
}

void AddRequest(Suite& suite, const char* request, const Job& job, const Asked& asked, Arrays arrays = Arrays::kFresh) {
  for (const Road& road : Roads()) {
    suite.Add(request, job, road, [&suite, &road, job, asked, arrays](benchmark::State& state) {
      MeasureValues(state, *road.make_reader(suite.files().Of(job)), job, asked, arrays);
    });
  }
}

constexpr int kAnyState = 1;  // a state of the order takes its place

}  // namespace

void AddValueRequests(Suite& suite) {
  const Jobs& jobs = suite.jobs();
  const Asked velocity = {.quantity = kVelocity, .state = kAnyState};
  const Asked stress = {.quantity = kStress, .state = kAnyState};
  for (const Job& job : {jobs.small, jobs.small_split, jobs.medium, jobs.large}) {
    AddRequest(suite, "velocity", job, velocity);
    AddRequest(suite, "stress", job, stress);
  }
  for (const Job& job : {jobs.small, jobs.medium, jobs.large}) {
    AddRequest(suite, "velocity_kept_array", job, velocity, Arrays::kKept);
  }
  const Asked with_ids = {.quantity = kVelocity, .state = kAnyState, .with_ids = true};
  for (const Job& job : {jobs.small, jobs.medium}) AddRequest(suite, "velocity_and_ids", job, with_ids);
  const Asked component = {.quantity = kStress, .state = kAnyState, .component = kComponent};
  for (const Job& job : {jobs.small, jobs.medium}) AddRequest(suite, "one_component_of_six", job, component);
  AddRequest(suite, "float64_into_float", jobs.medium_double, stress);
  AddRequest(suite, "scale_offset", jobs.medium_packed, stress);
}

void AddSeriesRequests(Suite& suite) {
  const Jobs& jobs = suite.jobs();
  for (const Job& job : jobs.series) {
    AddRequest(suite, "velocity", job, {.quantity = kVelocity, .state = kAnyState});
  }
  for (const Job& job : {jobs.small, jobs.medium}) {
    const int middle = job.nodes / 2;
    AddRequest(suite, "node_component_over_states", job,
               {.quantity = kStress, .component = kComponent, .node = middle});
    AddRequest(suite, "node_over_states", job, {.quantity = kStress, .node = middle});
    AddRequest(suite, "velocity_over_states", job, {.quantity = kVelocity}, Arrays::kKept);
  }
}

}  // namespace orvio::bench
