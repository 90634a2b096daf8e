// Groups and plain values by HDF5, filtered values by the library, which knows what its filter cannot give back.

#include "copying/content_writer.h"

#include <fmt/format.h>

#include <algorithm>
#include <cstring>
#include <utility>

#include "copying/plain_copy.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr const char* kAdvice = "check the free space and your permissions in its folder";

/// Kinds with as many values as the model has entities. Definitions are too small to gain by a filter.
bool MayBeFiltered(const BlockContent& content, const BlockItem& item) {
  constexpr std::int64_t kLarge[] = {200, 250, 300, 400, 2100};
  if (item.is_text() || item.shape.empty() || item.count() == 0 || IsIndexItem(item.name)) return false;
  if (!IsResult(content.key)) return std::ranges::find(kLarge, content.key) != std::end(kLarge);
  return item.name != "entid" && item.name != "idele";  // readers pick single ones
}

/// Values of all states have the entities on the second axis.
std::size_t EntityAxis(const BlockContent& content, const BlockItem& item) {
  return IsMultistateResult(content.key) && item.name == "res" ? 1 : 0;
}

int ChunkEntities(const Storage& storage, const BlockContent& content, const BlockItem& item) {
  if (storage.chunk) return *storage.chunk;
  const std::size_t axis = EntityAxis(content, item);
  const bool is_divided = axis < item.chunk.size() && axis < item.shape.size() && item.chunk[axis] < item.shape[axis];
  return is_divided ? static_cast<int>(std::min<hsize_t>(item.chunk[axis], INT32_MAX)) : 0;
}

/// A filter for the writes of its life.
class FilterScope {
 public:
  FilterScope(int digits, int chunk) : chunk_before_(ORVSetChunkEntities(chunk)) {
    OH5GetCompression(&on_before_, &digits_before_);
    OH5SetCompression(digits < 0 ? 0 : 1, digits);
  }
  ~FilterScope() {
    OH5SetCompression(on_before_, digits_before_);
    (void)ORVSetChunkEntities(chunk_before_);
  }
  FilterScope(const FilterScope&) = delete;
  FilterScope& operator=(const FilterScope&) = delete;

 private:
  int chunk_before_, on_before_ = 0, digits_before_ = 0;
};

/// The library finds the axis of the entities in results alone, so these are written as such.
int WriteAllStates(hid_t part, const BlockContent& content, BlockItem& item) {
  const bool has_layers = IsElementResult(content.key);
  ORVResult result(static_cast<int>(content.key));
  result.m_fswitch = 1;  // without a frame: it is among the items
  result.m_nstate = static_cast<std::int64_t>(item.shape[0]);
  result.m_nent = static_cast<std::int64_t>(item.shape[1]);
  if (has_layers) result.m_numl = static_cast<std::int64_t>(item.shape[2]);
  result.m_ncoo = static_cast<std::int64_t>(item.shape[has_layers ? 3 : 2]);
  result.m_res = item.bytes.data();
  result.m_resType = item.type;
  return result.WriteData(part);
}

bool CanBeWrittenAsResult(const BlockContent& content, const BlockItem& item) {
  constexpr std::int64_t kNotWritten = 1151;
  const std::size_t rank = (IsElementResult(content.key) ? 4U : 3U) + static_cast<std::size_t>(content.key % 2);
  return IsMultistateResult(content.key) && content.key != kNotWritten && item.name == "res" && item.is_float() &&
         item.shape.size() == rank && (content.key % 2 == 0 || item.shape.back() == 2);
}

int WriteNumbers(hid_t part, const BlockItem& item) {
  const int rank = static_cast<int>(item.shape.size());
  const auto write = item.is_float() ? OH5Write_FLOAT : OH5Write_INT;
  return write(part, item.name.c_str(), rank, item.shape.data(), item.type, item.bytes.data());
}

OwnedId TypeOf(const BlockItem& item) {
  if (!item.is_text()) {
    const hid_t native[] = {H5T_NATIVE_INT, H5T_NATIVE_FLOAT, H5T_NATIVE_LLONG, H5T_NATIVE_DOUBLE};
    constexpr _ORVDataType kTypes[] = {ORV_INT, ORV_FLOAT, ORV_LONG, ORV_DOUBLE};
    return OwnedId(H5Tcopy(native[std::ranges::find(kTypes, item.type) - std::begin(kTypes)]));
  }
  OwnedId type(H5Tcopy(H5T_C_S1));
  if (H5Tset_size(type.get(), item.width) < 0) return OwnedId();
  return type;
}

/// The filters of the dataset that values come from, over chunks that fit into their extents.
OwnedId CreationListOf(const BlockItem& item, hid_t source) {
  OwnedId list(H5Pcreate(H5P_DATASET_CREATE));
  if (!item.has_filters || item.digits || item.chunk.size() != item.shape.size() || item.count() == 0) return list;
  const OwnedId access = LinkAccess();
  const OwnedId dataset(H5Oopen(source, item.path.c_str(), access.get()));
  OwnedId stored(dataset ? H5Dget_create_plist(dataset.get()) : H5I_INVALID_HID);
  std::vector<hsize_t> chunk = item.chunk;
  for (std::size_t i = 0; i < chunk.size(); ++i) chunk[i] = std::clamp<hsize_t>(chunk[i], 1, item.shape[i]);
  const bool is_set = stored && H5Pset_chunk(stored.get(), static_cast<int>(chunk.size()), chunk.data()) >= 0;
  if (!is_set) return list;
  return stored;
}

bool IsSameDataset(hid_t file, const std::string& path, const BlockItem& item) {
  const OwnedId dataset(H5Dopen2(file, path.c_str(), H5P_DEFAULT));
  const OwnedId space(dataset ? H5Dget_space(dataset.get()) : H5I_INVALID_HID);
  const OwnedId stored(dataset ? H5Dget_type(dataset.get()) : H5I_INVALID_HID), type = TypeOf(item);
  hsize_t shape[H5S_MAX_RANK] = {};
  const int rank = space ? H5Sget_simple_extent_dims(space.get(), shape, nullptr) : -1;
  const bool has_shape = stored && rank >= 0 && H5Tequal(stored.get(), type.get()) > 0 &&
                         std::equal(shape, shape + rank, item.shape.begin(), item.shape.end());
  if (!has_shape) return false;
  std::vector<char> bytes(item.bytes.size());
  return H5Dread(dataset.get(), type.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT, bytes.data()) >= 0 && bytes == item.bytes;
}

}  // namespace

ContentWriter::ContentWriter(const std::string& path, std::string shown_as, _ORVVersion version, const Storage& storage)
    : shown_as_(std::move(shown_as)), version_(version), storage_(storage) {
  (void)ORVSetDurability(0);
  ORVFiler filer(path.c_str());
  const int status = filer.InitForWriting(path.c_str(), version, ORV_FILE_CREATE, false);
  if (status != 0) throw Trouble(shown_as_, fmt::format("cannot be created: {}", ORVGetStatusText(status)), kAdvice);
  if (OH5WriteOpenFile(path.c_str(), ORV_FILE_APPEND, &file_) != 0) Fail("the file");
  (void)ORVSetCurrentWriterVersion(version);
}

ContentWriter::~ContentWriter() {
  if (file_ >= 0) (void)OH5WriteCloseFile(file_);  // nobody wants what is not finished
}

void ContentWriter::Fail(const std::string& what) const {
  throw Trouble(shown_as_, fmt::format("{} could not be written: {}", what, LibraryText("writing failed")), kAdvice);
}

OwnedId ContentWriter::OpenGroup(const std::string& path) {
  for (std::size_t end = path.find('/', 1);; end = path.find('/', end + 1)) {
    const std::string part = path.substr(0, end);
    const bool is_there = H5Lexists(file_, part.c_str(), H5P_DEFAULT) > 0;
    OwnedId group(is_there ? H5Gopen2(file_, part.c_str(), H5P_DEFAULT)
                           : H5Gcreate2(file_, part.c_str(), H5P_DEFAULT, H5P_DEFAULT, H5P_DEFAULT));
    if (!group) Fail("group " + path);
    if (end == std::string::npos) return group;
  }
}

std::string ContentWriter::AddState() {
  hid_t section = H5I_INVALID_HID, state = H5I_INVALID_HID;
  const int status = OH5OpenStateGroup(file_, states_, &section, &state, true);
  const OwnedId owned_section(section), owned_state(state);
  ++states_;
  if (status != 0) Fail(fmt::format("state {}", states_));
  return fmt::format("/post/singlestate/state{:012}", states_);
}

bool ContentWriter::Write(const std::string& section, const BlockContent& content, hid_t source) {
  source_ = source;
  const std::string path = section + content.place.relative;
  const OwnedId parent = OpenGroup(path);
  const bool has_index = std::ranges::any_of(content.items, [](const BlockItem& i) { return IsIndexItem(i.name); });
  const int what = ORV_WRITE_HEADER | ORV_WRITE_DATA | (has_index ? ORV_WRITE_INDEX : 0);
  hid_t base = -1, header = -1, data = -1, index = -1;
  if (OH5OpenBlockSubGroups(parent.get(), nullptr, what, &base, &header, &data, &index) != 0) Fail("block " + path);
  WriteHeader(header, content);
  for (const BlockItem& item : content.items) {
    const bool is_index = IsIndexItem(item.name);
    WriteItem(is_index ? index : data, content, item);
    if (!item.path.empty() && !is_index && !item.is_text() && !item.is_float()) {
      places_[item.path] = path + (IsSplit() ? "/data/" : "/orvblock/") + item.name;
    }
  }
  const bool is_whole = CopyForeign(header, data, content, source);
  if (OH5CloseBlockSubGroups(header, data, index) != 0) Fail("block " + path);
  return is_whole;
}

void ContentWriter::WriteHeader(hid_t part, const BlockContent& content) {
  for (const HeaderField& field : content.header) {
    int status = 1;
    if (field.is_text) {
      std::string text = field.text.substr(0, field.width);
      text.resize(field.width, ' ');
      status = OH5write_ATTRIBUTE(part, field.name.c_str(), nullptr, ORV_CHAR, field.width, text.data());
    } else if (field.width <= sizeof(std::int32_t) && std::in_range<std::int32_t>(field.number)) {
      const auto number = static_cast<std::int32_t>(field.number);
      status = OH5write_ATTRIBUTE(part, field.name.c_str(), nullptr, ORV_INT, 0, &number);
    } else {
      status = OH5write_ATTRIBUTE(part, field.name.c_str(), nullptr, ORV_LONG, 0, &field.number);
    }
    if (status != 0) Fail(fmt::format("{} of block {}", field.name, content.place.relative));
  }
}

void ContentWriter::WriteItem(hid_t part, const BlockContent& content, const BlockItem& item) {
  if (!item.link.empty() && WriteLink(part, item)) return;
  const bool may_be_filtered = MayBeFiltered(content, item);
  if (may_be_filtered && storage_.filter == Storage::Filter::kDigits) {
    WriteFiltered(part, content, item, storage_.digits);
  } else if (item.count() > 0 && storage_.filter == Storage::Filter::kAsRead && item.digits && *item.digits >= 0) {
    WriteFiltered(part, content, item, *item.digits);
  } else {
    WriteByHdf5(part, item, storage_.filter == Storage::Filter::kAsRead ? source_ : H5I_INVALID_HID);
  }
}

void ContentWriter::WriteFiltered(hid_t part, const BlockContent& content, const BlockItem& item, int digits) {
  const FilterScope filter(digits, ChunkEntities(storage_, content, item));
  BlockItem values = item;
  const bool as_result = CanBeWrittenAsResult(content, item);
  const int status = as_result ? WriteAllStates(part, content, values) : WriteNumbers(part, values);
  if (status != 0) Fail(fmt::format("{} of block {}", item.name, content.place.relative));
}

void ContentWriter::WriteByHdf5(hid_t part, const BlockItem& item, hid_t source) {
  const OwnedId type = TypeOf(item),
                list = source < 0 ? OwnedId(H5Pcreate(H5P_DATASET_CREATE)) : CreationListOf(item, source);
  const int rank = static_cast<int>(item.shape.size());
  const OwnedId space(rank == 0 ? H5Screate(H5S_SCALAR) : H5Screate_simple(rank, item.shape.data(), nullptr));
  hid_t made = H5I_INVALID_HID;
  if (type && list && space) {
    made = H5Dcreate2(part, item.name.c_str(), type.get(), space.get(), H5P_DEFAULT, list.get(), H5P_DEFAULT);
  }
  const bool is_written = made >= 0 && (item.count() == 0 || H5Dwrite(made, type.get(), H5S_ALL, H5S_ALL, H5P_DEFAULT,
                                                                      item.bytes.data()) >= 0);
  const bool is_closed = made >= 0 && H5Dclose(made) >= 0;  // small values reach the file only then
  if (!is_written || !is_closed) Fail(item.name);
}

/// False: the dataset that the link led to is not in this file, or holds something else there.
bool ContentWriter::WriteLink(hid_t part, const BlockItem& item) {
  const auto place = places_.find(item.link);
  if (place == places_.end() || !IsSameDataset(file_, place->second, item)) return false;
  return H5Lcreate_soft(place->second.c_str(), part, item.name.c_str(), H5P_DEFAULT, H5P_DEFAULT) >= 0;
}

bool ContentWriter::CopyForeign(hid_t header, hid_t data, const BlockContent& content, hid_t source) {
  bool is_whole = true;
  for (const std::string& path : content.foreign) {
    is_whole = CopyPlain(source, path, data, path.substr(path.rfind('/') + 1)) && is_whole;
  }
  for (const std::string& path : content.foreign_attributes) {
    const std::size_t slash = path.rfind('/');
    is_whole = CopyAttributes(source, path.substr(0, slash), header, path.substr(slash + 1)) && is_whole;
  }
  return is_whole;
}

void ContentWriter::Close() {
  if (OH5WriteCloseFile(std::exchange(file_, H5I_INVALID_HID)) != 0) Fail("the file");
}

}  // namespace orvio::program
