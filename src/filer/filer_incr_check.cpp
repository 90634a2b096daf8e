// TestIncrRead: reads what is incremental in a file once with the changes of earlier states and once as it stands in the
// last state, and tells the host how long each took and whether what the last state stores came through.

#include <algorithm>
#include <chrono>
#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "entity/entity_lists.h"
#include "entity/incr_index_access.h"
#include "filer/container.h"
#include "filer/messages.h"
#include "filer/process_state.h"
#include "h5/entry.h"
#include "h5/status.h"
#include "h5/text_field.h"
#include "orvio/orv_filer.h"
#include "orvio/orv_variable.h"

using namespace orvio;

namespace {

/// States of a block with their flags.
struct States {
  std::vector<int> numbers;
  std::vector<int> flags;
};

/// False for a block that is whole in all states.
bool ReadStates(const std::string& path, ORVBlock& block, States& states) {
  OwnIncrIndex index;
  int first = 0;
  if (FillIncrIndex(path.c_str(), block, index, 1) != kOk || !index.HasIncrFlag(first)) return false;
  return index.GetStateIncrFlagInfo(states.numbers, states.flags) == kOk;
}

std::string Joined(const std::vector<int>& numbers) {
  std::string text;
  for (const int number : numbers) text.append(" ").append(std::to_string(number));
  return text;
}

void TellStates(const std::string& name, const States& states) {
  SendMessage(ORV_MESG_WARNING, "%.256s: states%.800s", name.c_str(), Joined(states.numbers).c_str());
  SendMessage(ORV_MESG_WARNING, "%.256s: flags%.800s", name.c_str(), Joined(states.flags).c_str());
}

/// Runs a read and answers the milliseconds that it took.
template <class Read>
double Timed(Read read, int& status) {
  const auto start = std::chrono::steady_clock::now();
  status = read();
  return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
}

/// A read with changes against the one of a single state: entities and time of each.
struct Comparison {
  int merged_count = 0;
  int plain_count = 0;
  double merged_time = 0;
  double plain_time = 0;
  int differences = 0;  ///< entities of the last state that came through with another value or not at all

  void Tell(const std::string& name, int state) const {
    SendMessage(ORV_MESG_WARNING, "%.256s: state %d, %d entities in %.3f ms, %d stored in %.3f ms, %d differences",
                name.c_str(), state, merged_count, merged_time, plain_count, plain_time, differences);
  }
};

// ---- Results

struct Values : ORVResultValuesBase<float, int> {
  explicit Values(int state) {
    m_state = state;
    m_wantIds = 1;
  }
  ~Values() override { DeleteAllocation(true); }
  Values(const Values&) = delete;
  Values& operator=(const Values&) = delete;

  /// Entities with an id and a value.
  int Count() const { return m_ids && m_values ? std::min(m_idCount, m_valueCount) : 0; }
};

/// Takes a copy: a fetch sets the pointers and counts of its blocks.
void CompareResult(ORVFiler& filer, ORVResult result, int state) {
  const char* variable = result.m_variable ? result.m_variable->m_varnam : result.m_etypvar;
  std::vector<ORVResult*> blocks = {&result};
  Values merged(state), plain(state);
  Comparison outcome;
  int status = kOk;
  outcome.merged_time = Timed([&] { return filer.GetIncrValues(merged, blocks, -1, -1, variable); }, status);
  outcome.plain_time = Timed([&] { return filer.GetValues(plain, blocks, -1, -1, variable); }, status);
  outcome.merged_count = merged.Count();
  outcome.plain_count = plain.Count();
  std::unordered_map<int, float> value_of;
  for (int i = 0; i < merged.Count(); ++i) value_of[merged.m_ids[i]] = merged.m_values[i];
  for (int i = 0; i < plain.Count(); ++i) {
    const auto found = value_of.find(plain.m_ids[i]);
    if (found == value_of.end() || found->second != plain.m_values[i]) ++outcome.differences;
  }
  outcome.Tell(result.GetBlkPath(), state);
}

// ---- Attributes

struct Attribute {
  Attribute(ORVFiler& owner, const ORVEntAttribute& header) : filer(owner), block(header) {}
  ~Attribute() { filer.CleanUpEntAttribute(&block); }
  Attribute(const Attribute&) = delete;
  Attribute& operator=(const Attribute&) = delete;

  /// Entities with an id.
  int Count() const { return block.m_entid ? static_cast<int>(block.m_nent) : 0; }
  int Id(int entity) const { return static_cast<const int*>(block.m_entid)[entity]; }

  ORVFiler& filer;
  ORVEntAttribute block;
};

void CompareAttribute(ORVFiler& filer, const ORVEntAttribute& header, int state) {
  Attribute merged(filer, header), plain(filer, header);
  Comparison outcome;
  int status = kOk;
  outcome.merged_time = Timed([&] { return filer.ReadIncrDataValues(&merged.block, state, true, false); }, status);
  outcome.plain_time =
      Timed([&] { return filer.ReadEntAttribute(&plain.block, ORV_READ_HEADER | ORV_READ_DATA, state); }, status);
  outcome.merged_count = merged.Count();
  outcome.plain_count = plain.Count();
  std::unordered_set<int> merged_ids;
  for (int i = 0; i < merged.Count(); ++i) merged_ids.insert(merged.Id(i));
  for (int i = 0; i < plain.Count(); ++i) outcome.differences += merged_ids.contains(plain.Id(i)) ? 0 : 1;
  outcome.Tell(header.GetBlkPath(), state);
}

/// Headers of a section's attributes, for the length of a scope.
struct Attributes {
  ~Attributes() { DeleteEntityLists(blocks); }
  std::vector<ORVEntAttribute*> blocks = {};
};

}  // namespace

void ORVFiler::TestIncrRead() {
  if (!m_pData) return;
  h5::EntryVoid([&] {
    // The map that the reads make is none that the host has asked for.
    const Swapped<std::unique_ptr<IncrStateMap>> map(m_pData->m_globalIncrMap, nullptr);
    SendMessage(ORV_MESG_WARNING, "!--------------------INCREMENTAL TEST---------------!");
    for (ORVResult* result : m_pData->single_results) {
      States states;
      if (result->IsConstantBlk() || !ReadStates(m_pData->path, *result, states)) continue;
      TellStates(result->GetBlkPath(), states);
      if (result->m_ncoo == 1) CompareResult(*this, *result, states.numbers.back());
    }
    SendMessage(ORV_MESG_WARNING, "!---------------INCREMENTAL ATTRIBUTE CHECK-------------------!");
    Attributes attributes;
    GetEntityAttributes(1, ORV_READ_HEADER, attributes.blocks);
    for (ORVEntAttribute* attribute : attributes.blocks) {
      States states;
      if (!ReadStates(m_pData->path, *attribute, states)) continue;
      TellStates(attribute->GetBlkPath(), states);
      CompareAttribute(*this, *attribute, states.numbers.back());
    }
  });
}
