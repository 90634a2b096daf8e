// Reading of whole blocks. Numbers come through the library's typed reads, which check what is stored.

#include "copying/block_content.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <iterator>

#include "checking/stored_object.h"
#include "trouble.h"

namespace orvio::program {
namespace {

constexpr const char* kAdvice = "orv check tells more; orv repair salvages what can be read";
constexpr std::size_t kTextWidth = 256;

std::size_t WidthOf(_ORVDataType type) {
  return type == ORV_INT || type == ORV_FLOAT ? sizeof(std::int32_t) : sizeof(std::int64_t);
}

[[noreturn]] void RefuseItem(const std::string& shown_as, const std::string& path, const std::string& what) {
  throw Trouble(shown_as, fmt::format("{}: {}", path, what), kAdvice);
}

/// Types that the format does not know are read as the widest that it has.
_ORVDataType TypeToRead(hid_t part, const std::string& name, const StoredType& stored) {
  if (stored.stored_class == StoredClass::kText) return ORV_CHAR;
  _ORVDataType type = ORV_UNKNOWN_TYPE;
  const bool is_known = OH5Read_DATATYPE(part, name.c_str(), &type) == 0;
  const bool is_float = stored.stored_class == StoredClass::kFloat;
  if (is_known && (is_float ? type == ORV_FLOAT || type == ORV_DOUBLE : type == ORV_INT || type == ORV_LONG)) {
    return type;
  }
  return is_float ? ORV_DOUBLE : ORV_LONG;
}

/// The digits of the scale-offset filter, and whether there are others.
void LookAtFilters(hid_t dataset, BlockItem& item) {
  const OwnedId creation(H5Dget_create_plist(dataset));
  for (int i = 0; creation && i < H5Pget_nfilters(creation.get()); ++i) {
    std::array<unsigned, 32> values = {};
    std::size_t count = values.size();
    unsigned flags = 0;
    const H5Z_filter_t filter =
        H5Pget_filter2(creation.get(), static_cast<unsigned>(i), &flags, &count, values.data(), 0, nullptr, nullptr);
    if (filter == H5Z_FILTER_SCALEOFFSET) {
      item.digits = item.is_float() ? static_cast<int>(values[1]) : 0;
    } else {
      item.has_filters = true;
    }
  }
}

/// Extents and widths are a claim: memory is taken for values that are there, as far as the file can hold them packed, and
/// for a few that are not.
void CheckSize(hid_t part, const StoredDataset& stored, const BlockItem& item, const std::string& shown_as) {
  constexpr std::uint64_t kUnwritten = 1 << 20;
  constexpr double kUnbackedBytes = 64 << 20, kMostPerByte = 8000;
  if (stored.count > kUnwritten && !stored.is_written) RefuseItem(shown_as, stored.path, "values are missing");
  const double bytes = static_cast<double>(stored.count) * static_cast<double>(item.width);
  if (bytes <= kUnbackedBytes) return;
  const OwnedId file(H5Iget_file_id(part));
  hsize_t size = 0;
  if (file && H5Fget_filesize(file.get(), &size) >= 0 && bytes <= kMostPerByte * static_cast<double>(size)) return;
  RefuseItem(shown_as, stored.path, "is larger than its file can hold");
}

void ReadValues(hid_t part, const StoredDataset& stored, BlockItem& item, const std::string& shown_as) {
  CheckSize(part, stored, item, shown_as);
  item.bytes.resize(stored.count * item.width);
  if (stored.count == 0) return;
  std::vector<hsize_t> shape = item.shape;
  const int rank = static_cast<int>(shape.size());
  int status = 1;
  if (!item.is_text()) {
    status = OH5Read_DATASET(part, item.name.c_str(), rank, shape.data(), item.type, item.bytes.data());
  } else if (item.width <= INT32_MAX) {
    status = OH5Read_CHAR(part, item.name.c_str(), rank, shape.data(), static_cast<int>(item.width), item.bytes.data());
  }
  if (status != 0) RefuseItem(shown_as, stored.path, "cannot be read: " + LibraryText("reading failed"));
}

/// The absolute path that a soft link leads to; empty for any other link.
std::string TargetOf(hid_t part, const std::string& part_path, const std::string& name) {
  H5L_info2_t info;
  if (H5Lget_info2(part, name.c_str(), &info, H5P_DEFAULT) < 0 || info.type != H5L_TYPE_SOFT) return {};
  std::string target(info.u.val_size, '\0');
  if (target.empty() || H5Lget_val(part, name.c_str(), target.data(), target.size(), H5P_DEFAULT) < 0) return {};
  target.erase(std::min(target.find('\0'), target.size()));
  return target.starts_with('/') ? target : part_path + "/" + target;
}

bool IsOfFormat(const StoredDataset& stored) {
  return stored.place == StoredDataset::Place::kHere && stored.type.stored_class != StoredClass::kOther &&
         !stored.type.is_variable;
}

/// Puts a dataset into the content, with its values. What is neither numbers nor texts is noted as foreign.
void TakeDataset(hid_t part, const std::string& part_path, const std::string& name, const std::string& shown_as,
                 BlockContent& content) {
  if (content.Item(name)) return;
  const std::string path = part_path + "/" + name;
  const OwnedId access = LinkAccess();
  const OwnedId object(H5Oopen(part, name.c_str(), access.get()));
  if (!object || H5Iget_type(object.get()) != H5I_DATASET) {
    content.foreign.push_back(path);
    return;
  }
  const StoredDataset stored = LookAt(object.get(), path);
  if (!IsOfFormat(stored)) {
    content.foreign.push_back(path);
    return;
  }
  BlockItem item;
  item.name = name;
  item.path = path;
  item.shape = stored.shape;
  item.chunk = stored.chunk;
  item.type = TypeToRead(part, name, stored.type);
  item.width = item.is_text() ? stored.type.size : WidthOf(item.type);
  item.link = TargetOf(part, part_path, name);
  LookAtFilters(object.get(), item);
  ReadValues(part, stored, item, shown_as);
  content.items.push_back(std::move(item));
}

OwnedId OpenPart(hid_t file, const std::string& path, const std::string& shown_as) {
  const OwnedId access = LinkAccess();
  OwnedId part(H5Gopen2(file, path.c_str(), access.get()));
  if (!part) RefuseItem(shown_as, path, "cannot be opened");
  return part;
}

void TakeAttributes(hid_t part, const std::string& path, const std::string& shown_as, BlockContent& content) {
  const auto attributes = AttributesOf(part);
  if (!attributes) RefuseItem(shown_as, path, "the attributes cannot be read");
  for (const auto& [name, stored] : *attributes) {
    if (content.Find(name)) continue;
    if (!stored.is_readable) {
      content.foreign_attributes.push_back(path + "/" + name);
      continue;
    }
    const bool is_text = stored.type.stored_class == StoredClass::kText;
    const std::size_t width = stored.type.is_variable ? kTextWidth : stored.type.size;
    content.header.push_back({name, is_text, width, stored.number, stored.text});
  }
}

/// The order of the format's table, with `blocktype` behind the key; what is not in it comes last.
void SortHeader(BlockContent& content) {
  const auto rank = [&](const HeaderField& field) -> std::size_t {
    if (field.name == "block") return 0;
    if (field.name == "blocktype") return 1;
    const auto rows = content.kind ? content.kind->attributes : std::span<const AttributeRow>();
    const auto row = std::ranges::find_if(rows, [&](const AttributeRow& r) { return field.name == r.name; });
    return 2 + static_cast<std::size_t>(row - rows.begin());
  };
  std::ranges::stable_sort(content.header, {}, rank);
}

template <class T>
void AppendAs(const BlockItem& item, auto& values) {
  for (std::size_t at = 0; at + sizeof(T) <= item.bytes.size(); at += sizeof(T)) {
    T value;
    std::memcpy(&value, item.bytes.data() + at, sizeof(T));
    values.push_back(value);
  }
}

template <class T>
std::vector<char> BytesOf(const auto& values) {
  std::vector<char> bytes(values.size() * sizeof(T));
  for (std::size_t i = 0; i < values.size(); ++i) {
    const T value = static_cast<T>(values[i]);
    std::memcpy(&bytes[i * sizeof(T)], &value, sizeof(T));
  }
  return bytes;
}

BlockItem MakeItem(const std::string& name, _ORVDataType type, std::size_t width, std::vector<hsize_t> shape,
                   std::vector<char> bytes) {
  BlockItem item;
  item.name = name;
  item.type = type;
  item.width = width;
  item.shape = std::move(shape);
  item.bytes = std::move(bytes);
  return item;
}

}  // namespace

std::uint64_t BlockItem::count() const {
  std::uint64_t count = 1;
  for (const hsize_t extent : shape) count *= extent;
  return count;
}

bool BlockContent::IsIncremental() const {
  const HeaderField* field = Find("indexic");
  return field && !field->is_text && field->number != 0;
}

const HeaderField* BlockContent::Find(std::string_view name) const {
  const auto field = std::ranges::find(header, name, &HeaderField::name);
  return field == header.end() ? nullptr : &*field;
}

std::int64_t BlockContent::Number(std::string_view name) const {
  const HeaderField* field = Find(name);
  return field && !field->is_text ? field->number : -1;
}

std::string BlockContent::Text(std::string_view name) const {
  const HeaderField* field = Find(name);
  return field ? field->text : std::string();
}

void BlockContent::SetNumber(const std::string& name, std::int64_t value, std::size_t width) {
  const auto field = std::ranges::find(header, name, &HeaderField::name);
  if (field == header.end()) {
    header.push_back({name, false, width, value, {}});
  } else {
    field->number = value;
  }
}

void BlockContent::SetText(const std::string& name, const std::string& text) {
  const auto field = std::ranges::find(header, name, &HeaderField::name);
  if (field == header.end()) {
    header.push_back({name, true, kTextWidth, 0, text});
  } else {
    field->text = text;
  }
}

void BlockContent::Remove(std::string_view field) {
  std::erase_if(header, [&](const HeaderField& f) { return f.name == field; });
}

BlockItem* BlockContent::Item(std::string_view name) {
  const auto item = std::ranges::find(items, name, &BlockItem::name);
  return item == items.end() ? nullptr : &*item;
}

const BlockItem* BlockContent::Item(std::string_view name) const {
  const auto item = std::ranges::find(items, name, &BlockItem::name);
  return item == items.end() ? nullptr : &*item;
}

void BlockContent::RemoveItem(std::string_view name) {
  std::erase_if(items, [&](const BlockItem& item) { return item.name == name; });
}

void BlockContent::AddIntegers(const std::string& name, std::vector<hsize_t> shape,
                               const std::vector<std::int64_t>& values) {
  const bool fit = std::ranges::all_of(values, [](std::int64_t v) { return v == static_cast<std::int32_t>(v); });
  items.push_back(MakeItem(name, fit ? ORV_INT : ORV_LONG, WidthOf(fit ? ORV_INT : ORV_LONG), std::move(shape),
                           fit ? BytesOf<std::int32_t>(values) : BytesOf<std::int64_t>(values)));
}

void BlockContent::AddFloats(const std::string& name, std::vector<hsize_t> shape, const std::vector<double>& values) {
  items.push_back(MakeItem(name, ORV_FLOAT, sizeof(float), std::move(shape), BytesOf<float>(values)));
}

void BlockContent::AddTexts(const std::string& name, std::size_t width, const std::vector<std::string>& texts) {
  std::vector<char> bytes(texts.size() * width, ' ');
  for (std::size_t i = 0; i < texts.size(); ++i) {
    std::ranges::copy(texts[i].substr(0, width), bytes.begin() + static_cast<std::ptrdiff_t>(i * width));
  }
  items.push_back(MakeItem(name, ORV_CHAR, width, {texts.size()}, std::move(bytes)));
}

std::string BlockContent::EntityType() const {
  if (key == 300 || IsElementResult(key)) return Text("etypelem");
  if (key == 100) return Text("etyppart");
  return key == 400 ? Text("etypcoll") : Text("etyp");
}

std::vector<std::int64_t> IntegersOf(const BlockItem& item) {
  std::vector<std::int64_t> values;
  if (item.type == ORV_INT) AppendAs<std::int32_t>(item, values);
  if (item.type == ORV_LONG) AppendAs<std::int64_t>(item, values);
  return values;
}

std::vector<double> FloatsOf(const BlockItem& item) {
  std::vector<double> values;
  if (item.type == ORV_FLOAT) AppendAs<float>(item, values);
  if (item.type == ORV_DOUBLE) AppendAs<double>(item, values);
  return values;
}

std::vector<std::string> TextsOf(const BlockItem& item) {
  std::vector<std::string> texts;
  for (std::size_t at = 0; item.is_text() && item.width > 0 && at + item.width <= item.bytes.size(); at += item.width) {
    std::string text(item.bytes.data() + at, strnlen(item.bytes.data() + at, item.width));
    text.erase(text.find_last_not_of(' ') + 1);
    texts.push_back(std::move(text));
  }
  return texts;
}

BlockContent ReadHeader(hid_t file, const BlockPlace& place, const std::string& shown_as) {
  BlockContent content;
  content.place = place;
  for (const std::string& path : place.parts) {
    const OwnedId part = OpenPart(file, path, shown_as);
    if (!path.ends_with("/index")) TakeAttributes(part.get(), path, shown_as, content);
  }
  content.key = content.Number("block");
  content.kind = FindKind(content.key);
  SortHeader(content);
  return content;
}

BlockContent ReadContent(hid_t file, const BlockPlace& place, const std::string& shown_as) {
  BlockContent content = ReadHeader(file, place, shown_as);
  for (const std::string& path : place.parts) {
    const OwnedId part = OpenPart(file, path, shown_as);
    const auto links = LinksOf(part.get());
    if (!links) RefuseItem(shown_as, path, "cannot be listed");
    for (const StoredLink& link : *links) TakeDataset(part.get(), path, link.name, shown_as, content);
  }
  return content;
}

bool ReadItem(hid_t file, const std::string& name, const std::string& shown_as, BlockContent& content) {
  for (const std::string& path : content.place.parts) {
    const OwnedId part = OpenPart(file, path, shown_as);
    if (H5Lexists(part.get(), name.c_str(), H5P_DEFAULT) <= 0) continue;
    TakeDataset(part.get(), path, name, shown_as, content);
    return content.Item(name) != nullptr;
  }
  return false;
}

}  // namespace orvio::program
