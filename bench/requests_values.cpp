// Values at one state, and over all states. States are visited in an order that looks like chance.

#include <chrono>

#include "running.h"

namespace orvio::bench {
namespace {

constexpr int kComponent = 4;  // of six

/// Whether arrays are made anew for each request, or filled again.
enum class Arrays { kFresh, kKept };

/// The same request again and again, each at the next state where it is about one.
class Requests {
 public:
  Requests(Reader& reader, const Job& job, const Asked& asked, Arrays arrays)
      : reader_(reader), job_(job), asked_(asked), at_a_state_(asked.state != Asked::kAll), order_(job.states) {
    answer_.kept = arrays == Arrays::kKept;
  }

  void Next() {
    if (at_a_state_) asked_.state = order_.Next();
    if (!answer_.kept) answer_ = Answer();
    reader_.Read(asked_, answer_);
  }
  void DemandAllRight() const { DemandRight(IsRight(job_, asked_, answer_)); }
  void DemandSomeRight() const { DemandRight(LooksRight(job_, asked_, answer_)); }

 private:
  Reader& reader_;
  const Job& job_;
  Asked asked_;
  bool at_a_state_;
  StateOrder order_;
  Answer answer_;
};

/// What a file needs before it is known is paid by its first few opens, which are not measured. Requests that take long
/// open it more often than that.
void WarmUp(Requests& requests) {
  constexpr int kOpens = 8;
  constexpr std::chrono::milliseconds kLong(100);
  const auto begin = std::chrono::steady_clock::now();
  for (int i = 0; i < kOpens; ++i) {
    requests.Next();
    if (std::chrono::steady_clock::now() - begin > kLong) return;
  }
}

void MeasureValues(benchmark::State& state, Reader& reader, const Job& job, const Asked& asked, Arrays arrays) {
  Requests requests(reader, job, asked, arrays);
  requests.Next();
  requests.DemandAllRight();
  WarmUp(requests);
  for (auto _ : state) {
    requests.Next();
    requests.DemandSomeRight();
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
