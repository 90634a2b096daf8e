// Collecting what a catalogue tells.

#include "structure/catalogue_builder.h"

#include <algorithm>

namespace orvio::structure {
namespace {

/// Bytes of memory that a catalogue may take. Files of more objects than that are read by HDF5.
constexpr std::size_t kMostBytes = std::size_t{256} << 20;

ElementKind KindOf(const Datatype& type) {
  if (!type.is_plain) return ElementKind::kOther;
  switch (type.type_class) {
    case TypeClass::kFixed:
      return type.is_signed ? ElementKind::kSigned : ElementKind::kOther;
    case TypeClass::kFloat:
      return ElementKind::kFloat;
    case TypeClass::kString:
      return ElementKind::kText;
    default:
      return ElementKind::kOther;
  }
}

}  // namespace

ArrayShape ShapeOf(const Dataspace& space, const Datatype& type) {
  ArrayShape shape;
  if (space.rank > ArrayShape::kMostRank || space.points == 0) return shape;
  shape.kind = KindOf(type);
  shape.element_size = type.size;
  shape.rank = space.rank;
  std::copy_n(space.size.begin(), space.rank, shape.extents.begin());
  shape.points = space.points;
  return shape;
}

bool CatalogueBuilder::Spend(std::size_t bytes) {
  spent_ += bytes;
  return spent_ <= kMostBytes;
}

CatalogueBuilder::Id CatalogueBuilder::IdOf(std::uint64_t header) {
  const auto place = ids_.Insert(header);
  if (!place.added) return place.value;
  constexpr std::size_t kPlaces = 2;  // of a hash map that is half full
  if (!Spend(sizeof(Catalogue::Object) + kPlaces * (sizeof header + sizeof(Id)))) return place.value = 0;
  place.value = static_cast<Id>(made_.objects_.size());
  made_.objects_.emplace_back().header = header;
  return place.value;
}

std::uint32_t CatalogueBuilder::NameId(std::string_view name) {
  const auto found = made_.name_ids_.find(name);
  if (found != made_.name_ids_.end()) return found->second;
  constexpr std::size_t kEntry = 96;  // a string and what a hash map needs besides
  if (!Spend(kEntry + name.size())) return 0;
  const auto id = static_cast<std::uint32_t>(made_.names_.size());
  made_.names_.push_back(&made_.name_ids_.emplace(name, id).first->first);
  return id;
}

void CatalogueBuilder::AddPath(Id object, Id parent, std::uint32_t name) {
  Catalogue::Object& child = made_.objects_[object];
  child.has_several_paths = object == made_.root() || child.parent != Catalogue::kNone;
  if (child.has_several_paths) return;
  child.parent = parent;
  child.name = name;
}

void CatalogueBuilder::SetLinks(std::span<const Link> links) {
  if (!Spend(links.size() * sizeof(Catalogue::Link))) return;
  const Id group = at_;
  const auto first = static_cast<std::uint32_t>(made_.links_.size());
  for (const Link& link : links) {
    const Id child = link.header == kUndefined ? Catalogue::kNone : IdOf(link.header);
    made_.links_.push_back({link.name, child});
    if (child == Catalogue::kNone) {
      made_.objects_[group].has_soft_links = true;
    } else {
      AddPath(child, group, link.name);
    }
  }
  Catalogue::Object& object = made_.objects_[group];
  object.kind = Catalogue::Kind::kGroup;
  object.first_link = first;
  object.link_count = static_cast<std::uint32_t>(links.size());
}

std::uint32_t CatalogueBuilder::ShapeId(const Dataspace& space, const Datatype& type) {
  const ArrayShape shape = ShapeOf(space, type);
  if (shape.kind == ElementKind::kOther) return Catalogue::kNone;
  if (!made_.shapes_.empty() && made_.shapes_.back() == shape)
    return static_cast<std::uint32_t>(made_.shapes_.size() - 1);
  if (!Spend(sizeof shape)) return Catalogue::kNone;
  made_.shapes_.push_back(shape);
  return static_cast<std::uint32_t>(made_.shapes_.size() - 1);
}

void CatalogueBuilder::SetValues(std::uint32_t shape, std::uint64_t offset) {
  if (shape == Catalogue::kNone || offset == kUndefined) return;
  Catalogue::Object& object = made_.objects_[at_];
  object.kind = Catalogue::Kind::kValues;
  object.shape = shape;
  object.values = offset;
}

std::uint32_t CatalogueBuilder::RowsId(std::span<const Value> values) {
  if (values.empty() && no_rows_ != Catalogue::kNone) return no_rows_;
  std::vector<Catalogue::AttributeRow> rows;
  std::vector<Part> parts;
  std::uint32_t at = 0;
  for (const Value& value : values) {
    const auto size = static_cast<std::uint32_t>(value.shape.points * value.shape.element_size);
    rows.push_back({NameId(value.name), at, value.shape});
    parts.push_back({value.at, size});
    at += size;
  }
  if (!Spend(rows.size() * (sizeof rows[0] + sizeof parts[0]))) return Catalogue::kNone;
  made_.attribute_rows_.push_back(std::move(rows));
  parts_.push_back(std::move(parts));
  const auto id = static_cast<std::uint32_t>(parts_.size() - 1);
  if (values.empty()) no_rows_ = id;
  return id;
}

void CatalogueBuilder::SetAttributes(std::uint32_t rows, std::span<const std::uint8_t> messages) {
  if (rows == Catalogue::kNone) return;
  scratch_.clear();
  for (const Part& part : parts_[rows]) {
    scratch_.append(reinterpret_cast<const char*>(messages.data()) + part.at, part.size);
  }
  const auto found = made_.value_ids_.find(std::string_view(scratch_));
  const bool is_new = found == made_.value_ids_.end();
  if (is_new && !Spend(scratch_.size() + 128)) return;
  const auto value =
      is_new ? made_.value_ids_.emplace(scratch_, static_cast<std::uint32_t>(made_.value_ids_.size())).first : found;
  const auto set = sets_.Insert(std::uint64_t{rows} << 32 | value->second);
  if (set.added) {
    set.value = static_cast<std::uint32_t>(made_.attribute_sets_.size());
    made_.attribute_sets_.push_back({rows, &value->first});
    (void)Spend(2 * sizeof(Catalogue::AttributeSet));
  }
  made_.objects_[at_].attributes = set.value;
}

std::unique_ptr<const Catalogue> CatalogueBuilder::Finish(std::uint64_t base) {
  if (spent_ > kMostBytes || made_.objects_.empty()) return nullptr;
  for (Catalogue::Object& object : made_.objects_) {
    if (object.kind == Catalogue::Kind::kValues) object.values += base;
  }
  made_.bytes_ = spent_;
  made_.objects_.shrink_to_fit();
  made_.links_.shrink_to_fit();
  return std::make_unique<const Catalogue>(std::move(made_));
}

}  // namespace orvio::structure
