#include "answer.h"

#include <cmath>

namespace orvio::bench {
namespace {

/// The axes of an answer, slowest first: states, nodes, components.
struct Axes {
  Axes(const Job& job, const Asked& asked)
      : states(asked.state == Asked::kAll ? job.states : 1),
        nodes(asked.node == Asked::kAll ? job.nodes : 1),
        components(asked.component == Asked::kAll ? kQuantities[static_cast<std::size_t>(asked.quantity)].components
                                                  : 1) {}
  std::size_t Count() const {
    return static_cast<std::size_t>(states) * static_cast<std::size_t>(nodes) * static_cast<std::size_t>(components);
  }
  int states, nodes, components;
};

int Chosen(int asked, int all) { return asked == Asked::kAll ? all : asked; }

bool IsValueRight(const Job& job, const Asked& asked, const Axes& axes, const Answer& answer, std::size_t at) {
  const auto components = static_cast<std::size_t>(axes.components), nodes = static_cast<std::size_t>(axes.nodes);
  const int component = Chosen(asked.component, static_cast<int>(at % components));
  const int node = Chosen(asked.node, static_cast<int>(at / components % nodes));
  const int state = Chosen(asked.state, static_cast<int>(at / components / nodes) + 1);
  return std::fabs(answer.values[at] - ValueOf(asked.quantity, state, node, component)) <= ToleranceOf(job);
}

bool AreCountsRight(const Job& job, const Asked& asked, const Axes& axes, const Answer& answer) {
  return answer.values && answer.value_count == axes.Count() &&
         (!asked.with_ids || (answer.ids && answer.id_count == static_cast<std::size_t>(job.nodes)));
}

}  // namespace

float* Answer::TakeValues(std::size_t count) {
  if (!kept || count > room) {
    values = MakeArray<float>(count);
    room = count;
  }
  value_count = count;
  return values.get();
}

int* Answer::TakeIds(std::size_t count) {
  if (!kept || !ids || count > id_count) ids = MakeArray<int>(count);
  id_count = count;
  return ids.get();
}

std::size_t ValuesAsked(const Job& job, const Asked& asked) { return Axes(job, asked).Count(); }

bool IsRight(const Job& job, const Asked& asked, const Answer& answer) {
  const Axes axes(job, asked);
  if (!AreCountsRight(job, asked, axes, answer)) return false;
  for (std::size_t at = 0; at < answer.value_count; ++at) {
    if (!IsValueRight(job, asked, axes, answer, at)) return false;
  }
  for (int node = 0; asked.with_ids && node < job.nodes; ++node) {
    if (answer.ids[static_cast<std::size_t>(node)] != IdOf(node)) return false;
  }
  return true;
}

bool LooksRight(const Job& job, const Asked& asked, const Answer& answer) {
  const Axes axes(job, asked);
  if (!AreCountsRight(job, asked, axes, answer)) return false;
  const std::size_t last = answer.value_count - 1;
  for (const std::size_t at : {std::size_t{0}, last / 2, last}) {
    if (!IsValueRight(job, asked, axes, answer, at)) return false;
  }
  const auto last_node = static_cast<std::size_t>(job.nodes) - 1;
  return !asked.with_ids || answer.ids[last_node] == IdOf(job.nodes - 1);
}

bool AreStatesRight(const Job& job, const Listing& listing) {
  const auto states = static_cast<std::size_t>(job.states);
  if (listing.idents.size() != states || listing.times.size() != states) return false;
  for (std::size_t at = 0; at < states; ++at) {
    const int state = static_cast<int>(at) + 1;
    if (listing.idents[at] != IdentOf(state) || listing.times[at] != TimeOf(state)) return false;
  }
  return true;
}

bool IsRight(const Job& job, const Listing& listing) {
  static const std::vector<std::string> kSorted = {kQuantities[kStress].name, kQuantities[kVelocity].name};
  return listing.quantities == kSorted && AreStatesRight(job, listing);
}

}  // namespace orvio::bench
