// The memory of cached datasets: their allocator and the manager that owns them all.

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>

#include "block/cached_dataset.h"
#include "filer/process_state.h"
#include "h5/data_type.h"
#include "h5/entry.h"
#include "h5/extents.h"
#include "orvio/orv_buffer.h"

using namespace orvio;

char* ORVHostAllocate::allocate(std::size_t size) { return static_cast<char*>(std::malloc(size)); }

void ORVHostAllocate::deallocate(char* memory, std::size_t /*size*/) { std::free(memory); }

IORVBufferManager::~IORVBufferManager() = default;

namespace orvio {

std::uint64_t ElementSize(_ORVDataType type) {
  if (type == ORV_CHAR) return sizeof(char);
  const h5::TypeRow* row = h5::FindNumericType(type);
  return row ? row->size : 0;
}

}  // namespace orvio

namespace {

/// Frees the record and what it holds.
void FreeBuffer(ORVBuffer* buffer) {
  if (buffer->m_data && buffer->m_allocator) {
    buffer->m_allocator->deallocate(static_cast<char*>(buffer->m_data), buffer->m_elementSize * buffer->m_count);
  }
  delete buffer;
}

struct BufferOwner {
  void operator()(ORVBuffer* buffer) const { FreeBuffer(buffer); }
};

/// One for all buffers of the process; it has no state.
ORVHostAllocate* SharedAllocator() {
  ORVHostAllocate*& allocator = process().buffer_memory;
  if (!allocator) allocator = new ORVHostAllocate;
  return allocator;
}

}  // namespace

ORVBufferManager::ORVBufferManager() : m_pOwner(nullptr) {}

ORVBufferManager::~ORVBufferManager() { Clear(); }

ORVBuffer* ORVBufferManager::CreateBuffer(_ORVDataType type, int rank, std::uint64_t* dims, const std::string& /*name*/,
                                          ORVBlock* /*block*/) {
  const std::uint64_t element = ElementSize(type);
  if (rank < 1 || rank > kMaxCachedRank || !dims || element == 0) return nullptr;
  const auto count = h5::Product(rank, dims);
  if (!count || *count == 0 || *count > SIZE_MAX / element) return nullptr;
  return h5::Entry<ORVBuffer*>(nullptr, [&]() -> ORVBuffer* {
    std::unique_ptr<ORVBuffer, BufferOwner> buffer(new ORVBuffer);
    buffer->m_allocator = SharedAllocator();
    buffer->m_elementSize = element;
    buffer->m_type = type;
    buffer->m_rank = rank;
    std::copy_n(dims, rank, buffer->m_dims);
    buffer->m_data = buffer->m_allocator->allocate(static_cast<std::size_t>(element * *count));
    if (!buffer->m_data) return nullptr;
    buffer->m_count = *count;
    m_buffers.push_back(buffer.get());
    return buffer.release();
  });
}

void ORVBufferManager::ReleaseBuffer(ORVBuffer* buffer) {
  const auto found = std::ranges::find(m_buffers, buffer);
  if (!buffer || found == m_buffers.end()) return;
  m_buffers.erase(found);
  FreeBuffer(buffer);
}

void ORVBufferManager::Clear() {
  for (ORVBuffer* buffer : m_buffers) FreeBuffer(buffer);
  m_buffers.clear();
}
