// A piece is a run of rows: the trailing extents as a whole as far as they fit, a range of the one before them, and one of
// each of those in front.

#include "checking/value_reader.h"

#include <algorithm>
#include <cstdlib>
#include <new>

namespace orvio::program {
namespace {

constexpr std::uint64_t kPieceBytes = 1024 * 1024;

/// Walks over the pieces of a space.
class Pieces {
 public:
  Pieces(std::vector<hsize_t> shape, std::uint64_t most) : shape_(std::move(shape)) {
    start_.assign(shape_.size(), 0);
    count_.assign(shape_.size(), 1);
    split_ = shape_.size();
    std::uint64_t below = 1;
    while (split_ > 0 && shape_[split_ - 1] <= most / below) {
      --split_;
      below *= shape_[split_];
      count_[split_] = shape_[split_];
    }
    if (split_ > 0) step_ = std::max<std::uint64_t>(most / below, 1);
  }

  const hsize_t* start() const { return start_.data(); }
  const hsize_t* count() const { return count_.data(); }

  std::uint64_t size() const {
    std::uint64_t size = 1;
    for (const hsize_t count : count_) size *= count;
    return size;
  }

  void Begin() {
    if (split_ > 0) count_[split_ - 1] = std::min<hsize_t>(step_, shape_[split_ - 1]);
  }

  /// False behind the last one.
  bool Next() {
    if (split_ == 0) return false;
    std::size_t axis = split_ - 1;
    start_[axis] += count_[axis];
    while (start_[axis] >= shape_[axis]) {
      start_[axis] = 0;
      if (axis == 0) return false;
      ++start_[--axis];
    }
    const std::size_t last = split_ - 1;
    count_[last] = std::min<hsize_t>(step_, shape_[last] - start_[last]);
    return true;
  }

 private:
  std::vector<hsize_t> shape_, start_, count_;
  std::size_t split_ = 0;  ///< axes from here on are whole in each piece
  std::uint64_t step_ = 1;
};

std::uint64_t ChunkBytes(const StoredDataset& dataset) {
  std::uint64_t bytes = dataset.chunk.empty() ? 0 : dataset.type.size;
  for (const hsize_t extent : dataset.chunk) {
    if (__builtin_mul_overflow(bytes, extent, &bytes)) return UINT64_MAX;
  }
  return bytes;
}

/// A chunk that does not fit into the cache would be taken apart anew for each piece of it.
OwnedId DatasetAccess(const StoredDataset& dataset) {
  OwnedId access(H5Pcreate(H5P_DATASET_ACCESS));
  (void)H5Pset_elink_cb(
      access.get(),
      [](const char*, const char*, const char*, const char*, unsigned*, hid_t, void*) -> herr_t { return -1; },
      nullptr);
  constexpr std::size_t kSlots = 521, kSmallest = 16 * kPieceBytes;
  constexpr double kDropReadOnes = 1;
  const std::uint64_t bytes = std::max<std::uint64_t>(ChunkBytes(dataset), kSmallest);
  if (!dataset.chunk.empty()) (void)H5Pset_chunk_cache(access.get(), kSlots, bytes, kDropReadOnes);
  return access;
}

/// Tells a file that cannot be read from one that needs more memory than there is.
void ThrowIfOutOfMemory(const StoredDataset& dataset) {
  constexpr std::uint64_t kLargestChunk = std::uint64_t{4} << 30;  // HDF5's own limit
  const std::uint64_t needed = std::clamp(ChunkBytes(dataset), kPieceBytes, kLargestChunk);
  void* probe = std::malloc(needed);
  if (!probe) throw std::bad_alloc();
  std::free(probe);
}

template <class T>
bool VisitPieces(hid_t dataset, hid_t type, std::size_t width, const StoredDataset& stored, T&& visit) {
  const OwnedId space(H5Dget_space(dataset));
  Pieces pieces(stored.shape, std::max<std::uint64_t>(kPieceBytes / width, 1));
  pieces.Begin();
  std::vector<char> bytes;
  do {
    const hsize_t size = pieces.size();
    bytes.resize(size * width);
    const OwnedId memory(H5Screate_simple(1, &size, nullptr));
    const bool is_scalar = stored.shape.empty();
    if (!is_scalar &&
        H5Sselect_hyperslab(space.get(), H5S_SELECT_SET, pieces.start(), nullptr, pieces.count(), nullptr) < 0) {
      return false;
    }
    if (H5Dread(dataset, type, memory.get(), space.get(), H5P_DEFAULT, bytes.data()) < 0) return false;
    visit(bytes.data(), size);
  } while (pieces.Next());
  return true;
}

template <class T>
bool VisitNumbers(hid_t dataset, hid_t type, const StoredDataset& stored,
                  const std::function<void(std::span<const T>)>& visitor) {
  return VisitPieces(dataset, type, sizeof(T), stored, [&](const char* bytes, hsize_t size) {
    if (visitor) visitor({reinterpret_cast<const T*>(bytes), size});
  });
}

bool VisitTexts(hid_t dataset, const StoredDataset& stored, const std::function<void(const std::string&)>& visitor) {
  const OwnedId type(H5Dget_type(dataset));
  const std::size_t width = stored.type.size;
  return VisitPieces(dataset, type.get(), width, stored, [&](const char* bytes, hsize_t size) {
    for (hsize_t i = 0; visitor && i < size; ++i) {
      std::string text(bytes + i * width, width);
      text.erase(std::min(text.find('\0'), text.size()));
      text.erase(text.find_last_not_of(' ') + 1);
      visitor(text);
    }
  });
}

}  // namespace

bool VisitValues(hid_t file, const StoredDataset& dataset, const ValueVisitor& visitor) {
  if (dataset.count == 0) return true;
  const OwnedId access = DatasetAccess(dataset);
  const OwnedId opened(H5Dopen2(file, dataset.path.c_str(), access.get()));
  bool is_read = false;
  if (opened) {
    switch (dataset.type.stored_class) {
      case StoredClass::kInteger:
        is_read = VisitNumbers<std::int64_t>(opened.get(), H5T_NATIVE_INT64, dataset, visitor.integers);
        break;
      case StoredClass::kFloat:
        is_read = VisitNumbers<double>(opened.get(), H5T_NATIVE_DOUBLE, dataset, visitor.floats);
        break;
      case StoredClass::kText:
        is_read = dataset.type.is_variable || VisitTexts(opened.get(), dataset, visitor.texts);
        break;
      default:
        is_read = true;
    }
  }
  if (!is_read) ThrowIfOutOfMemory(dataset);
  return is_read;
}

}  // namespace orvio::program
