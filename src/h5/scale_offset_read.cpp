// Chunks of the scale-offset filter: found, looked at, decoded piece by piece and put where the caller wants them.

#include "h5/scale_offset_read.h"

#include <algorithm>
#include <cstring>
#include <memory>

#include "h5/handle.h"
#include "h5/scale_offset_decode.h"

namespace orvio::h5 {
namespace {

/// All that does not change from chunk to chunk.
struct Source {
  hid_t dataset = H5I_INVALID_HID;
  ScaleOffset filter;
  hsize_t elements = 0;        ///< of a chunk
  bool cut_are_plain = false;  ///< chunks over the end of the dataset are not filtered
  Type decoded;                ///< of values as they leave the decoder
  hid_t native = H5I_INVALID_HID;
  size_t size = 0;    ///< bytes of a native value
  bool same = false;  ///< both are the same type
};

/// Parameters of the filter in a pipeline: the number of filters, or 0 without this one; -1 on failure.
int FindFilter(hid_t list, unsigned (&parameters)[kScaleOffsetParameters]) {
  const int filters = H5Pget_nfilters(list);
  for (int i = 0; i < filters; ++i) {
    unsigned flags = 0;
    size_t count = kScaleOffsetParameters;
    const H5Z_filter_t id =
        H5Pget_filter2(list, static_cast<unsigned>(i), &flags, &count, parameters, 0, nullptr, nullptr);
    if (id < 0) return -1;
    if (id == H5Z_FILTER_SCALEOFFSET) return count == kScaleOffsetParameters ? filters : -1;
  }
  return std::min(filters, 0);
}

/// Whether the filter was set up for the stored type.
bool IsFor(const ScaleOffset& filter, hid_t type) {
  const H5T_order_t order = H5Tget_order(type);
  const bool floats = H5Tget_class(type) == H5T_FLOAT;
  if (filter.floats != floats || filter.width != H5Tget_size(type)) return false;
  if (!floats && filter.is_signed != (H5Tget_sign(type) == H5T_SGN_2)) return false;
  return filter.width == 1 || order == (filter.big_endian ? H5T_ORDER_BE : H5T_ORDER_LE);
}

/// The stored type in the byte order of this machine.
Type DecodedType(hid_t stored) {
  Type type(H5Tcopy(stored));
  if (type && H5Tset_order(type.get(), H5Tget_order(H5T_NATIVE_INT)) < 0) type.reset();
  return type;
}

/// Keeps a chunk's bytes and hands out its values, converted. What is asked for bit by bit is decoded in larger parts.
class ChunkValues {
 public:
  explicit ChunkValues(const Source& source)
      : source_(source),
        width_(std::max(source.size, source.filter.width)),
        window_(new unsigned char[kWindow * width_]) {}

  /// False when the chunk cannot be read or makes no sense.
  bool Load(const SlabPiece& piece, hsize_t size, bool cut);
  /// Copies values from an element of the chunk on.
  bool Copy(hsize_t element, hsize_t count, unsigned char* to);
  /// Hands values from an element of the chunk on to `take(values, count)`, in parts.
  template <class Take>
  bool Visit(hsize_t element, hsize_t count, const Take& take) {
    while (count > 0) {
      if ((element < begin_ || element >= end_) && !MoveWindow(element, count)) return false;
      const hsize_t now = std::min(count, end_ - element);
      take(window_.get() + (element - begin_) * source_.size, now);
      element += now;
      count -= now;
    }
    return true;
  }
  /// `last` is one past the last element that will be asked for.
  void SetLast(hsize_t last) { last_ = last; }

 private:
  static constexpr hsize_t kWindow = 8192;

  bool Convert(hsize_t count, void* values) const;
  bool MoveWindow(hsize_t element, hsize_t count);

  const Source& source_;
  size_t width_;
  std::unique_ptr<unsigned char[]> window_;
  hsize_t begin_ = 0;
  hsize_t end_ = 0;
  hsize_t last_ = 0;
  std::unique_ptr<unsigned char[]> bytes_;
  hsize_t room_ = 0;
  std::optional<ScaleOffsetChunk> chunk_;
};

/// Whether a file can hold so many bytes. Small claims are not worth the question.
bool CanBeInFile(hid_t dataset, hsize_t bytes) {
  if (bytes <= kUnbackedBytes) return true;
  const File file(H5Iget_file_id(dataset));
  hsize_t size = 0;
  return file && H5Fget_filesize(file.get(), &size) >= 0 && bytes <= size;
}

bool ChunkValues::Load(const SlabPiece& piece, hsize_t size, bool cut) {
  begin_ = end_ = 0;
  if (size > ScaleOffsetChunk::MostBytes(source_.filter, source_.elements)) return false;
  if (size > room_) {
    if (!CanBeInFile(source_.dataset, size)) return false;
    bytes_.reset();
    bytes_.reset(new unsigned char[size]);
    room_ = size;
  }
  uint32_t left_out = 0;  // a bit for every filter that the chunk did not go through
  if (H5Dread_chunk(source_.dataset, H5P_DEFAULT, piece.chunk, &left_out, bytes_.get()) < 0) return false;
  const bool filtered = (left_out & 1) == 0 && !(cut && source_.cut_are_plain);
  chunk_ = ScaleOffsetChunk::Open(source_.filter, bytes_.get(), size, source_.elements, filtered);
  return chunk_.has_value();
}

bool ChunkValues::Convert(hsize_t count, void* values) const {
  return source_.same || H5Tconvert(source_.decoded.get(), source_.native, count, values, nullptr, H5P_DEFAULT) >= 0;
}

/// Decodes ahead where reading goes on close to where it was; a jump gets only what is asked for.
bool ChunkValues::MoveWindow(hsize_t element, hsize_t count) {
  const bool near = end_ > begin_ && element < end_ + kWindow / 64;
  const hsize_t wanted = near ? std::max<hsize_t>(last_ - element, 1) : count;
  begin_ = element;
  end_ = element + std::min(wanted, kWindow);
  chunk_->Decode(begin_, end_ - begin_, window_.get());
  return Convert(end_ - begin_, window_.get());
}

bool ChunkValues::Copy(hsize_t element, hsize_t count, unsigned char* to) {
  if (source_.same && count >= kWindow / 32) {  // long enough to do without the window
    chunk_->Decode(element, count, to);
    return true;
  }
  return Visit(element, count, [&](const unsigned char* values, hsize_t now) {
    std::memcpy(to, values, now * source_.size);
    to += now * source_.size;
  });
}

/// The value of elements whose chunk is missing.
class FillValue {
 public:
  FillValue(hid_t list, const Source& source) {
    H5D_fill_value_t defined = H5D_FILL_VALUE_UNDEFINED;
    H5D_fill_time_t time = H5D_FILL_TIME_NEVER;
    known_ = H5Pfill_value_defined(list, &defined) >= 0 && defined != H5D_FILL_VALUE_UNDEFINED &&
             H5Pget_fill_time(list, &time) >= 0 && time != H5D_FILL_TIME_NEVER &&
             H5Pget_fill_value(list, source.native, value_) >= 0;
  }
  bool known() const { return known_; }
  void Put(hsize_t count, size_t size, unsigned char* to) const {
    for (hsize_t i = 0; i < count; ++i) std::memcpy(to + i * size, value_, size);
  }

 private:
  bool known_ = false;
  unsigned char value_[8] = {};
};

/// What the walk over the chunks of a file counts.
struct Presence {
  const ChunkedSlab* slab;
  hsize_t chunks;
};

int CountTouched(const hsize_t* offset, unsigned, haddr_t, hsize_t, void* data) {
  auto* presence = static_cast<Presence*>(data);
  if (presence->slab->Touches(offset)) ++presence->chunks;
  return 0;
}

/// HDF5 answers a missing chunk as it answers one that it cannot find in a damaged index: by a failure. So what was
/// missing is missing only if the whole index can be read and has no more chunks than were found.
bool AreAllTheChunks(hid_t dataset, const ChunkedSlab& slab, hsize_t found) {
  Presence presence{&slab, 0};
  return H5Dchunk_iter(dataset, H5P_DEFAULT, CountTouched, &presence) >= 0 && presence.chunks == found;
}

/// Reads one piece of the selection.
bool ReadPiece(const Source& source, const ChunkedSlab& slab, const SlabPiece& piece, ChunkValues& values,
               unsigned char* buffer) {
  values.SetLast(slab.EndOf(piece));
  return slab.ForEachRun(piece, [&](hsize_t element, hsize_t place, hsize_t length) {
    return values.Copy(element, length, buffer + place * source.size);
  });
}

bool ReadPieces(const Source& source, const ChunkedSlab& slab, const FillValue& fill, unsigned char* buffer) {
  ChunkValues values(source);
  hsize_t found = 0;
  bool missing = false;
  SlabPiece piece = slab.FirstPiece();
  do {
    hsize_t size = 0;
    if (H5Dget_chunk_storage_size(source.dataset, piece.chunk, &size) >= 0 && size > 0) {
      ++found;
      if (!values.Load(piece, size, slab.IsCut(piece)) || !ReadPiece(source, slab, piece, values, buffer)) return false;
      continue;
    }
    missing = true;
    if (!fill.known()) return false;
    (void)slab.ForEachRun(piece, [&](hsize_t, hsize_t place, hsize_t length) {
      fill.Put(length, source.size, buffer + place * source.size);
      return true;
    });
  } while (slab.NextPiece(piece));
  return !missing || AreAllTheChunks(source.dataset, slab, found);
}

/// Chunks over the end of the dataset may have been left out of filtering.
bool AreCutChunksPlain(hid_t list) {
  unsigned options = 0;
  return H5Pget_chunk_opts(list, &options) >= 0 && (options & H5D_CHUNK_DONT_FILTER_PARTIAL_CHUNKS) != 0;
}

/// A dataset of the filter, with what its creation list says.
struct Opened {
  PropertyList list;
  Source source;
  hsize_t chunk[H5S_MAX_RANK] = {};
};

Decoded Open(hid_t dataset, const Extents& stored, const TypeRow& row, Opened& opened) {
  opened.list.reset(H5Dget_create_plist(dataset));
  const hid_t list = opened.list.get();
  const Type type(H5Dget_type(dataset));
  if (!opened.list || !type) return Decoded::kFailed;
  if (H5Pget_layout(list) != H5D_CHUNKED || H5Tget_class(type.get()) != row.type_class) return Decoded::kNotOurs;
  unsigned parameters[kScaleOffsetParameters] = {};
  const int filters = FindFilter(list, parameters);
  if (filters == 0) return Decoded::kNotOurs;

  if (filters < 0 || H5Pget_chunk(list, H5S_MAX_RANK, opened.chunk) != stored.rank) return Decoded::kFailed;
  const auto elements = Product(stored.rank, opened.chunk);
  const auto filter = elements ? ScaleOffsetFrom(parameters, *elements) : std::nullopt;
  if (!filter || !IsFor(*filter, type.get())) return Decoded::kFailed;
  if (filters > 1) return Decoded::kNotOurs;

  opened.source = {dataset,      *filter, *elements, AreCutChunksPlain(list), DecodedType(type.get()),
                   row.native(), row.size};
  if (!opened.source.decoded) return Decoded::kFailed;
  opened.source.same = H5Tequal(opened.source.decoded.get(), opened.source.native) > 0;
  return Decoded::kDone;
}

}  // namespace

Decoded ReadScaleOffset(hid_t dataset, const Extents& stored, const TypeRow& row, const Slab* slab, void* buffer) {
  Opened opened;
  const Decoded answer = Open(dataset, stored, row, opened);
  if (answer != Decoded::kDone) return answer;
  const auto selected = ChunkedSlab::Make(stored, opened.chunk, slab);
  if (!selected) return Decoded::kFailed;
  const FillValue fill(opened.list.get(), opened.source);
  const bool read = ReadPieces(opened.source, *selected, fill, static_cast<unsigned char*>(buffer));
  return read ? Decoded::kDone : Decoded::kFailed;
}

Decoded VisitScaleOffset(hid_t dataset, const Extents& stored, const TypeRow& row,
                         const std::function<void(const void* values, hsize_t count)>& take) {
  Opened opened;
  const Decoded answer = Open(dataset, stored, row, opened);
  if (answer != Decoded::kDone || stored.points == 0) return answer;
  const auto all = ChunkedSlab::Make(stored, opened.chunk, nullptr);
  if (!all) return Decoded::kFailed;
  ChunkValues values(opened.source);
  SlabPiece piece = all->FirstPiece();
  do {
    hsize_t size = 0;
    if (H5Dget_chunk_storage_size(dataset, piece.chunk, &size) < 0 || size == 0) continue;
    if (!values.Load(piece, size, all->IsCut(piece))) return Decoded::kFailed;
    values.SetLast(all->EndOf(piece));
    const bool seen = all->ForEachRun(
        piece, [&](hsize_t element, hsize_t, hsize_t count) { return values.Visit(element, count, take); });
    if (!seen) return Decoded::kFailed;
  } while (all->NextPiece(piece));
  return Decoded::kDone;
}

}  // namespace orvio::h5
