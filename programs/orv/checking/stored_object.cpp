// Order matters here: the creation list of a dataset tells where its values lie, and asking for its space first may open
// the files of a virtual one.

#include "checking/stored_object.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <limits>

namespace orvio::program {
namespace {

constexpr std::size_t kLongestText = 65536;

herr_t NoteLink(hid_t /*group*/, const char* name, const H5L_info2_t* info, void* links) {
  static_cast<std::vector<StoredLink>*>(links)->push_back({name, info->type});
  return 0;
}

herr_t NoteName(hid_t /*object*/, const char* name, const H5A_info_t* /*info*/, void* names) {
  static_cast<std::vector<std::string>*>(names)->emplace_back(name);
  return 0;
}

herr_t RefuseExternalLink(const char* /*parent_file*/, const char* /*parent_group*/, const char* /*file*/,
                          const char* /*object*/, unsigned* /*flags*/, hid_t /*access*/, void* /*data*/) {
  return -1;
}

StoredType TypeOf(hid_t type) {
  StoredType stored;
  stored.size = H5Tget_size(type);
  switch (H5Tget_class(type)) {
    case H5T_INTEGER:
      stored.stored_class = StoredClass::kInteger;
      break;
    case H5T_FLOAT:
      stored.stored_class = StoredClass::kFloat;
      break;
    case H5T_STRING:
      stored.stored_class = StoredClass::kText;
      stored.is_variable = H5Tis_variable_str(type) > 0;
      break;
    default:
      break;
  }
  return stored;
}

std::string WithoutPadding(std::string text) {
  text.erase(std::min(text.find('\0'), text.size()));
  text.erase(text.find_last_not_of(' ') + 1);
  return text;
}

void ReadText(hid_t attribute, hid_t type, StoredAttribute& stored) {
  if (stored.type.is_variable) {
    char* text = nullptr;
    stored.is_readable = H5Aread(attribute, type, static_cast<void*>(&text)) >= 0;
    if (text) stored.text = WithoutPadding(text);
    (void)H5free_memory(text);
    return;
  }
  if (stored.type.size > kLongestText) return;
  std::string bytes(stored.type.size, '\0');
  stored.is_readable = H5Aread(attribute, type, bytes.data()) >= 0;
  if (stored.is_readable) stored.text = WithoutPadding(bytes);
}

StoredAttribute ReadAttribute(hid_t object, const std::string& name) {
  StoredAttribute stored;
  const OwnedId attribute(H5Aopen(object, name.c_str(), H5P_DEFAULT));
  if (!attribute) return stored;
  const OwnedId type(H5Aget_type(attribute.get())), space(H5Aget_space(attribute.get()));
  if (!type || !space) return stored;
  stored.type = TypeOf(type.get());
  stored.is_scalar = H5Sget_simple_extent_npoints(space.get()) == 1;
  if (!stored.is_scalar) return stored;
  if (stored.type.stored_class == StoredClass::kInteger) {
    stored.is_readable = H5Aread(attribute.get(), H5T_NATIVE_INT64, &stored.number) >= 0;
  } else if (stored.type.stored_class == StoredClass::kText) {
    ReadText(attribute.get(), type.get(), stored);
  }
  return stored;
}

bool IsKnownFilter(H5Z_filter_t filter) {
  constexpr H5Z_filter_t kKnown[] = {H5Z_FILTER_SCALEOFFSET, H5Z_FILTER_DEFLATE, H5Z_FILTER_SHUFFLE,
                                     H5Z_FILTER_FLETCHER32};
  return std::ranges::find(kKnown, filter) != std::end(kKnown);
}

/// False for a filter that is not known.
bool LookAtFilters(hid_t creation, StoredDataset& stored) {
  for (int i = 0; i < H5Pget_nfilters(creation); ++i) {
    constexpr std::size_t kNameWidth = 64;
    std::array<char, kNameWidth> name = {};
    std::size_t values = 0;
    unsigned flags = 0, config = 0;
    const H5Z_filter_t filter = H5Pget_filter2(creation, static_cast<unsigned>(i), &flags, &values, nullptr,
                                               name.size() - 1, name.data(), &config);
    if (filter == H5Z_FILTER_SCALEOFFSET) stored.is_scale_offset = true;
    if (IsKnownFilter(filter)) continue;
    stored.filter = std::to_string(filter) + " (" + name.data() + ")";
    return false;
  }
  return true;
}

StoredDataset::Place PlaceOf(hid_t creation, StoredDataset& stored) {
  using Place = StoredDataset::Place;
  if (H5Pget_external_count(creation) != 0) return Place::kElsewhere;
  const H5D_layout_t layout = H5Pget_layout(creation);
  if (layout == H5D_VIRTUAL) return Place::kElsewhere;
  if (layout != H5D_COMPACT && layout != H5D_CONTIGUOUS && layout != H5D_CHUNKED) return Place::kUnknown;
  if (!LookAtFilters(creation, stored)) return Place::kBehindUnknownFilter;
  if (layout != H5D_CHUNKED) return Place::kHere;
  std::array<hsize_t, H5S_MAX_RANK> chunk = {};
  const int rank = H5Pget_chunk(creation, static_cast<int>(chunk.size()), chunk.data());
  if (rank < 1) return Place::kUnknown;
  stored.chunk.assign(chunk.begin(), chunk.begin() + rank);
  return Place::kHere;
}

/// Saturates.
std::uint64_t Times(std::uint64_t a, std::uint64_t b) {
  std::uint64_t product = 0;
  return __builtin_mul_overflow(a, b, &product) ? std::numeric_limits<std::uint64_t>::max() : product;
}

std::uint64_t ProductOf(const std::vector<hsize_t>& extents) {
  std::uint64_t product = 1;
  for (const hsize_t extent : extents) product = Times(product, extent);
  return product;
}

/// Extents are a claim: what they claim may never have been written.
bool IsWritten(hid_t dataset, const StoredDataset& stored) {
  if (stored.count == 0) return true;
  if (stored.chunk.empty()) return H5Dget_storage_size(dataset) >= Times(stored.count, stored.type.size);
  hsize_t chunks = 0;
  if (H5Dget_num_chunks(dataset, H5S_ALL, &chunks) < 0) return true;  // reading will tell
  std::uint64_t needed = 1;
  for (std::size_t i = 0; i < stored.chunk.size() && i < stored.shape.size(); ++i) {
    const hsize_t each = std::max<hsize_t>(stored.chunk[i], 1);
    needed = Times(needed, stored.shape[i] / each + (stored.shape[i] % each != 0 ? 1 : 0));
  }
  return chunks >= needed;
}

}  // namespace

const char* WordOf(StoredClass stored_class) {
  constexpr const char* kWords[] = {"integer", "float", "text", "something else"};
  return kWords[static_cast<int>(stored_class)];
}

std::optional<std::vector<StoredLink>> LinksOf(hid_t group) {
  std::vector<StoredLink> links;
  hsize_t position = 0;
  if (H5Literate2(group, H5_INDEX_NAME, H5_ITER_INC, &position, NoteLink, &links) < 0) return std::nullopt;
  return links;
}

OwnedId LinkAccess() {
  OwnedId access(H5Pcreate(H5P_LINK_ACCESS));
  if (access) (void)H5Pset_elink_cb(access.get(), RefuseExternalLink, nullptr);
  return access;
}

std::optional<std::map<std::string, StoredAttribute>> AttributesOf(hid_t object) {
  std::vector<std::string> names;
  hsize_t position = 0;
  if (H5Aiterate2(object, H5_INDEX_NAME, H5_ITER_INC, &position, NoteName, &names) < 0) return std::nullopt;
  std::map<std::string, StoredAttribute> attributes;
  for (const std::string& name : names) attributes.emplace(name, ReadAttribute(object, name));
  return attributes;
}

StoredDataset LookAt(hid_t dataset, const std::string& path) {
  StoredDataset stored;
  stored.path = path;
  const OwnedId creation(H5Dget_create_plist(dataset));
  if (creation) stored.place = PlaceOf(creation.get(), stored);
  if (stored.place != StoredDataset::Place::kHere) return stored;
  const OwnedId type(H5Dget_type(dataset)), space(H5Dget_space(dataset));
  std::array<hsize_t, H5S_MAX_RANK> extents = {};
  const int rank = space ? H5Sget_simple_extent_dims(space.get(), extents.data(), nullptr) : -1;
  if (!type || rank < 0) {
    stored.place = StoredDataset::Place::kUnknown;
    return stored;
  }
  stored.type = TypeOf(type.get());
  stored.shape.assign(extents.begin(), extents.begin() + rank);
  stored.count = H5Sget_simple_extent_type(space.get()) == H5S_NULL ? 0 : ProductOf(stored.shape);
  stored.is_written = IsWritten(dataset, stored);
  return stored;
}

}  // namespace orvio::program
