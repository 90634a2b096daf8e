#pragma once

// A block with what its base does with cached datasets laid open, and a file to cache from.

#include <cstdint>
#include <string>
#include <vector>

#include "block/recording_block.h"
#include "orvio/orv_buffer.h"
#include "support/orv_test.h"

namespace orv_test {

/// Found by the name "block" in a section or state.
class CachingBlock : public RecordingBlock {
 public:
  CachingBlock() : RecordingBlock(-1, "block") {}

  using ORVBlock::AppendCachedData;
  using ORVBlock::DeleteCache;
  using ORVBlock::GetCachedDataset;
  using ORVBlock::IsDatasetCached;
  using ORVBlock::OH5Copy_FromCache;
  using ORVBlock::OH5Copy_SELECTIVE;
  using ORVBlock::ReadAndCacheDataset;

  /// Contents of a cached dataset, as far as it has elements of that size.
  template <class T>
  std::vector<T> Held(const std::string& name) {
    const ORVBuffer* buffer = GetCachedDataset(name);
    if (!buffer || buffer->m_elementSize != sizeof(T)) return {};
    const T* values = static_cast<const T*>(buffer->m_data);
    return std::vector<T>(values, values + buffer->m_count);
  }

  /// Copies a dataset whole, with the extents and type that the caller takes it to have.
  template <class T>
  int CopyWhole(const std::string& name, _ORVDataType type, std::vector<std::uint64_t> dims, std::vector<T>& out) {
    return OH5Copy_FromCache(name, type, static_cast<int>(dims.size()), dims.data(), type, nullptr, nullptr,
                             out.data());
  }

  int CopyPart(const std::string& name, std::vector<std::uint64_t> dims, std::vector<std::uint64_t> start,
               std::vector<std::uint64_t> count, std::vector<float>& out) {
    return OH5Copy_FromCache(name, ORV_FLOAT, static_cast<int>(dims.size()), dims.data(), ORV_FLOAT, start.data(),
                             count.data(), out.data());
  }
};

class BlockCache : public OrvTest {
 protected:
  int Cache(std::vector<std::string> names, int state = 0, bool to_float = false) {
    return block_.ReadAndCacheDataset(manager_, file_.path().c_str(), state, names, to_float);
  }
  ForgedFile& AtBlock(const std::string& part = "") { return file_.at("/post/constant/block" + part); }

  ForgedFile file_{"cache"};
  ORVBufferManager manager_;
  CachingBlock block_;
};

}  // namespace orv_test
