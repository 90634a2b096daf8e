#pragma once

/// Datasets that blocks hold in memory: who allocates them, what one is, and who owns them all.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "orvio/orv_types.h"

class ORVBlock;
struct ORVContainer;

// The destructor is not virtual: the two operations have the first slots.
#if defined(__GNUC__)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wnon-virtual-dtor"
#endif

/// Where the memory of cached datasets comes from. Do not delete an object of a derived class through this one.
class ORVIO_EXPORT ORVAllocator  // NOLINT(cppcoreguidelines-virtual-class-destructor): see above
    : public std::allocator<char> {
 public:
  virtual char* allocate(std::size_t size) = 0;  ///< null when there is no memory
  virtual void deallocate(char* memory, std::size_t size) = 0;
};

/// The C allocator.
class ORVIO_EXPORT ORVHostAllocate  // NOLINT(cppcoreguidelines-virtual-class-destructor): see above
    : public ORVAllocator {
 public:
  char* allocate(std::size_t size) override;
  void deallocate(char* memory, std::size_t size) override;
};

#if defined(__GNUC__)
#pragma GCC diagnostic pop
#endif

/// One dataset in memory. The first five members are what a host sees of it; the others say what it was read from, so
/// that it answers for nothing else.
struct ORVBuffer {
  bool m_ownsAllocator = false;  ///< never set: the allocator is that of the process
  void* m_data = nullptr;        ///< elements, from the allocator
  std::uint64_t m_elementSize = 0;
  std::uint64_t m_count = 0;  ///< elements
  ORVAllocator* m_allocator = nullptr;

  _ORVDataType m_type = ORV_UNKNOWN_TYPE;  ///< of the elements
  /// State that it was read in; 0 constant section, negative multi-state section, INT_MAX the group of a state that is
  /// not known: it serves none.
  int m_state = 0;
  int m_rank = 0;
  std::uint64_t m_dims[8] = {};
};

/// Makes and frees the buffers of blocks.
class ORVIO_EXPORT IORVBufferManager {
 public:
  /// A buffer for a dataset of that type and shape, owned by the manager; null for a rank outside 1 to 8, an unknown
  /// type, a product of 0 or beyond 64 bits, and without memory.
  virtual ORVBuffer* CreateBuffer(_ORVDataType type, int rank, std::uint64_t* dims, const std::string& name,
                                  ORVBlock* block) = 0;
  virtual void ReleaseBuffer(ORVBuffer* buffer) = 0;  ///< frees a buffer of this manager; others and null are ignored
  virtual ~IORVBufferManager();
};

/// The manager of a filer. Blocks keep plain pointers to its buffers.
class ORVIO_EXPORT ORVBufferManager : public IORVBufferManager {
 public:
  ORVBufferManager();
  ORVBufferManager(const ORVBufferManager&) = delete;
  ORVBufferManager& operator=(const ORVBufferManager&) = delete;
  ~ORVBufferManager() override;

  ORVBuffer* CreateBuffer(_ORVDataType type, int rank, std::uint64_t* dims, const std::string& name,
                          ORVBlock* block) override;
  void ReleaseBuffer(ORVBuffer* buffer) override;
  void Clear();  ///< frees all buffers

 private:
  [[maybe_unused]] ORVContainer* m_pOwner;
  std::vector<ORVBuffer*> m_buffers;
};
