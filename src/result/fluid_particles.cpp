// Selection of the blocks of fluid particles from a list, and the fetch of a variable of theirs.

#include "result/fluid_particles.h"

#include <string>
#include <utility>

#include "filer/messages.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_variable.h"
#include "result/value_fetch.h"

namespace orvio {
namespace {

constexpr _ORVEntityType kFluidParticle[] = {static_cast<_ORVEntityType>(2005)};

/// The name by which the fetch knows a variable that has been found by its identity.
std::string NameOfVariable(const ORVResult& block, const char* identity) {
  return block.m_variable ? std::string(Content(block.m_variable->m_varnam)) : identity;
}

}  // namespace

void FindFluidParticles(const ResultList& list, const char* identity, ResultList& out) {
  const char* const names[] = {identity};
  FindResults(list, {.kind = ORV_RESULT_ENTITY, .entities = kFluidParticle, .names = names, .needs_components = false},
              out);
}

FluidParticles ReadFluidParticles(const char* file, const ResultList& list, int state, const char* identity) {
  ResultList blocks;
  FindFluidParticles(list, identity, blocks);
  if (blocks.empty()) return {};
  const SilencedMessages silence;
  const std::string name = NameOfVariable(*blocks.front(), identity);
  ORVResultValuesBase<float, int> fetched;
  fetched.m_state = state;
  fetched.m_wantIds = 1;
  const int status = FetchValues(file, fetched, blocks, {.variable = name.c_str()});
  FluidParticles particles = {fetched.m_idCount, CArray<int>(fetched.m_ids), CArray<float>(fetched.m_values)};
  // The blocks are the filer's, the arrays will be the host's, which frees them without telling.
  for (ORVResult* block : blocks) block->m_res = block->m_entid = nullptr;
  return status == kOk ? std::move(particles) : FluidParticles();
}

}  // namespace orvio
