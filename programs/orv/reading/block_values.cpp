#include "reading/block_values.h"

#include <fmt/format.h>

#include <cstdint>
#include <numeric>
#include <string>

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
    constexpr int kNoResultType = -1;
    if (file.filer().GetValues(*this, blocks, iid, kNoResultType, nullptr) != 0) RefuseBlock(file, block);
    return {this->m_values, this->m_values + this->m_valueCount};
  }
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

template std::vector<float> ReadComponent<float>(ResultFile&, ORVResult&, int, int);
template std::vector<double> ReadComponent<double>(ResultFile&, ORVResult&, int, int);

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
