#include "reading/block_values.h"

#include <fmt/format.h>

#include <algorithm>
#include <climits>
#include <cstdint>
#include <numeric>
#include <set>
#include <string>
#include <utility>

#include "trouble.h"

namespace orvio::program {
namespace {

/// A request for values of all layers of one block. Its arrays are freed with it.
template <class T>
class Fetch : public ORVResultValuesBase<T, int> {
 public:
  explicit Fetch(int state) {
    this->m_state = state;
    this->m_layer = ORV_ALL_LAYERS;
  }
  Fetch(const Fetch&) = delete;
  Fetch& operator=(const Fetch&) = delete;
  ~Fetch() override { this->DeleteAllocation(true); }

  std::vector<T> Read(ResultFile& file, ORVResult& block, int iid) {
    std::vector<ORVResult*> blocks = {&block};
    if (file.filer().GetValues(*this, blocks, iid, kNoResultType, nullptr) != 0) RefuseBlock(file, block);
    return {this->m_values, this->m_values + this->m_valueCount};
  }

  /// One value per entity, with what earlier states changed.
  std::vector<T> ReadMerged(ResultFile& file, ORVResult& block, int iid) {
    std::vector<ORVResult*> blocks = {&block};
    this->m_wantIds = 1;
    if (file.filer().GetIncrValues(*this, blocks, iid, kNoResultType, nullptr) != 0) RefuseBlock(file, block);
    if (this->m_idCount != this->m_valueCount) RefuseBlock(file, block);
    return {this->m_values, this->m_values + this->m_valueCount};
  }

  std::vector<long long> Ids() const { return {this->m_ids, this->m_ids + this->m_idCount}; }

 private:
  static constexpr int kNoResultType = -1;
};

}  // namespace

void RefuseBlock(const ResultFile& file, const ORVResult& block) {
  throw Trouble(file.path(),
                fmt::format("block {} cannot be read: {}", block.GetBlkPath(), LibraryText("reading failed")),
                "the file is damaged, or from another kind of writer");
}

namespace {

/// Whether a block has a dataset of ids, damaged or not.
bool HasIds(const ResultFile& file, ORVResult& block, int state) {
  std::vector<std::string> names;
  (void)block.GetDatasetNames(ORV_READ_DATA, names);  // always 0
  std::vector<_ORVDataType> types;
  (void)block.ReadDatasetFileDataType(file.path().c_str(), state, {names.back()}, types);  // the types tell
  return !types.empty() && types.front() != ORV_UNKNOWN_TYPE;
}

}  // namespace

template <class T>
std::vector<T> ReadComponent(ResultFile& file, ORVResult& block, int iid, int state) {
  return Fetch<T>(state).Read(file, block, iid);
}

namespace {

/// Layer by layer, so that a damaged number of layers ends at the first that is not there.
template <class T>
std::vector<std::vector<T>> ReadMergedLayers(ResultFile& file, ORVResult& block, int iid, int state,
                                             std::vector<long long>& ids) {
  const std::int64_t layers = block.IsElementResult() ? std::max<std::int64_t>(block.m_numl, 1) : 1;
  std::vector<std::vector<T>> values;
  for (std::int64_t layer = 0; layer < layers; ++layer) {
    Fetch<T> fetch(state);
    if (block.IsElementResult()) fetch.m_layer = static_cast<int>(std::min<std::int64_t>(layer, INT_MAX));
    values.push_back(fetch.ReadMerged(file, block, iid));
    if (layer == 0) ids = fetch.Ids();
    if (values.back().size() != ids.size()) RefuseBlock(file, block);
  }
  return values;
}

/// The library leaves out changes that cannot be read, and tells entities apart by their ids alone.
template <class T>
void RequireReadable(ResultFile& file, ORVResult& block, int iid, int state, bool may_be_empty) {
  if (!file.IsFirstLook(block, state)) return;
  const auto count = static_cast<std::size_t>(file.CountAt(block, state));
  if (count == 0 && may_be_empty) return;
  const std::vector<T> values = ReadComponent<T>(file, block, iid, state);
  if (count == 0 || values.size() % count != 0 || !HasIds(file, block, state)) RefuseBlock(file, block);
  const std::vector<long long> ids = ReadIds(file, block, state, count);
  const bool fit = std::ranges::all_of(ids, [](long long id) { return std::in_range<int>(id); });
  if (!fit || std::set<long long>(ids.begin(), ids.end()).size() != count) RefuseBlock(file, block);
}

}  // namespace

template <class T>
std::vector<T> ReadMergedComponent(ResultFile& file, ORVResult& block, int iid, int state,
                                   std::vector<long long>& ids) {
  if (block.IsComplexBlk()) {
    throw Trouble(file.path(), fmt::format("block {} holds changes of complex values", block.GetBlkPath()),
                  "these are not put together; orv ls shows what is stored");
  }
  const StateChain chain = file.ChainOf(block, state);
  RequireReadable<T>(file, block, iid, chain.base, false);
  for (const int change : chain.changes) RequireReadable<T>(file, block, iid, change, true);
  const std::vector<std::vector<T>> layers = ReadMergedLayers<T>(file, block, iid, state, ids);
  std::vector<T> values;
  values.reserve(ids.size() * layers.size());
  for (std::size_t i = 0; i < ids.size(); ++i) {
    for (const std::vector<T>& layer : layers) values.push_back(layer[i]);
  }
  return values;
}

template std::vector<float> ReadComponent<float>(ResultFile&, ORVResult&, int, int);
template std::vector<double> ReadComponent<double>(ResultFile&, ORVResult&, int, int);
template std::vector<float> ReadMergedComponent(ResultFile&, ORVResult&, int, int, std::vector<long long>&);
template std::vector<double> ReadMergedComponent(ResultFile&, ORVResult&, int, int, std::vector<long long>&);

std::vector<long long> ReadIds(const ResultFile& file, const ORVResult& block, int state, std::size_t count) {
  std::vector<std::int64_t> ids(count);
  ORVResult reader = block;
  reader.m_nent = static_cast<std::int64_t>(count);
  reader.m_entid = ids.data();
  reader.m_entidType = ORV_LONG;
  if (reader.ReadAttribute(file.path().c_str(), state, ORV_READ_DATA, ORV_ATT_IDS) == 0)
    return {ids.begin(), ids.end()};
  if (HasIds(file, reader, state)) RefuseBlock(file, block);
  std::vector<long long> numbers(count);
  std::iota(numbers.begin(), numbers.end(), 1);
  return numbers;
}

}  // namespace orvio::program
