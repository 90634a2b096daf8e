// The arrays of entity attribute, identifiers and collector blocks.

#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "entity/entity_lists.h"
#include "h5/disk_names.h"
#include "h5/extents.h"

namespace orvio {
namespace {

/// Bytes of an element in an array, the least that it takes in a file, and bytes behind the last one.
struct ElementSize {
  std::uint64_t bytes, stored, spare;
};

/// Compressed integers take less than their four bytes in a file, but hardly less than one.
constexpr ElementSize kInteger = {4, 1, 0};

/// Makes the arrays of one block. After the first that cannot be had it makes no more.
class ArrayMaker {
 public:
  explicit ArrayMaker(const StoredElementsOf& stored) : stored_(stored) {}

  void integers(void*& array, const char* dataset, std::initializer_list<std::int64_t> shape) {
    array = Make(array, dataset, shape, kInteger);
  }
  /// One byte more than the texts ends the last one where a reader takes it for the rest of the array.
  void texts(char*& array, const char* dataset, std::int64_t count, std::int64_t width) {
    const auto bytes = static_cast<std::uint64_t>(width);
    array = static_cast<char*>(Make(array, dataset, {count}, {bytes, bytes, 1}));
  }
  bool ok() const { return ok_; }

 private:
  /// The array as it is when it cannot be had.
  void* Make(void* array, const char* dataset, std::initializer_list<std::int64_t> shape, const ElementSize& size) {
    std::uint64_t elements = 1;
    std::uint64_t bytes = 0;
    for (const std::int64_t extent : shape) {
      ok_ = ok_ && extent > 0 && !__builtin_mul_overflow(elements, static_cast<std::uint64_t>(extent), &elements);
    }
    ok_ = ok_ && !__builtin_mul_overflow(elements, size.bytes, &bytes) && Admits(dataset, elements, bytes, size.stored);
    void* made = ok_ ? Resized(array, bytes + size.spare) : nullptr;
    ok_ = made != nullptr;
    return ok_ ? made : array;
  }

  static void* Resized(void* array, std::uint64_t bytes) {
    if (!array) return std::calloc(bytes, 1);
    void* made = std::realloc(array, bytes);
    return made ? std::memset(made, 0, bytes) : nullptr;
  }

  bool Admits(const char* dataset, std::uint64_t elements, std::uint64_t bytes, std::uint64_t stored_each) {
    if (bytes > unbacked_) return elements <= stored_(dataset, stored_each);
    unbacked_ -= bytes;
    return true;
  }

  const StoredElementsOf& stored_;
  std::uint64_t unbacked_ = h5::kUnbackedBytes;  ///< what may still be made on the word of the header
  bool ok_ = true;
};

void MakeArrays(ORVEntAttribute& block, ArrayMaker& make) {
  make.integers(block.m_entid, disk::entid, {block.m_nent});
  if (block.m_length > 0) make.texts(block.m_title, disk::title, block.m_nent, block.m_length);
  if (block.m_nuid > 0) make.integers(block.m_uid, disk::uid, {block.m_nuid, block.m_nent});
}

void MakeArrays(ORVCollector& block, ArrayMaker& make) {
  make.integers(block.m_idcoll, disk::idcoll, {block.m_ncoll});
  if (block.m_ntyp != 0) {
    make.texts(block.m_etyp, disk::etyp, block.m_ntyp, disk::kTextWidth);
    make.integers(block.m_nent, disk::nent, {block.m_ncoll, block.m_ntyp});
  }
  if (block.m_nenttot != 0) make.integers(block.m_entid, disk::entid, {block.m_nenttot});
}

template <class Block>
bool MakeOrFree(Block& block, const StoredElementsOf& stored) {
  ArrayMaker make(stored);
  MakeArrays(block, make);
  if (!make.ok()) FreeBuffers(block);
  return make.ok();
}

}  // namespace

bool AllocateBuffers(ORVEntAttribute& block, const StoredElementsOf& stored) {
  block.InitializeBlock(ORV_READ_DATA);
  return MakeOrFree(block, stored);
}

bool AllocateBuffers(ORVCollector& block, const StoredElementsOf& stored) {
  block.m_idcollType = block.m_nentType = block.m_entidType = ORV_INT;
  return MakeOrFree(block, stored);
}

void FreeBuffers(ORVEntAttribute& block) {
  // QUIRK: a block without entities loses its arrays unfreed. No filer has made any for it: they are the host's own, of
  // whatever allocator. Pinned by FilerAttributesCleanUp.OfABlockWithoutEntitiesFreesNothing.
  if (block.m_nent != 0) {
    std::free(block.m_entid);
    if (block.m_length != 0) std::free(block.m_title);
    if (block.m_nuid != 0) std::free(block.m_uid);
  }
  block.InitializeBlock(ORV_READ_DATA);
}

void FreeBuffers(ORVCollector& block) {
  std::free(block.m_idcoll);
  std::free(block.m_etyp);
  std::free(block.m_nent);
  std::free(block.m_entid);
  block.InitializeBlock(ORV_READ_DATA);
}

}  // namespace orvio
