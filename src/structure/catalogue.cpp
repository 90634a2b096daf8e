// Questions to a catalogue.

#include "structure/catalogue.h"

#include <algorithm>
#include <cstring>

namespace orvio::structure {

std::size_t Catalogue::TextHash::operator()(std::string_view text) const {
  __extension__ using Product = unsigned __int128;
  constexpr std::uint64_t kFactor = 0x9E3779B97F4A7C15ULL;
  std::uint64_t hash = seed_ ^ text.size();
  while (!text.empty()) {
    std::uint64_t word = 0;
    const std::size_t count = std::min(text.size(), sizeof word);
    std::memcpy(&word, text.data(), count);
    text.remove_prefix(count);
    const Product product = Product{word ^ kFactor} * (hash ^ (seed_ << 16) ^ kFactor);
    hash = static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
  }
  return static_cast<std::size_t>(hash);
}

Catalogue::Found Catalogue::Child(Id group, std::string_view name) const {
  if (!IsGroup(group)) return {Answer::kUnknown, kNone};
  const auto first = links_.begin() + objects_[group].first_link;
  const auto end = first + objects_[group].link_count;
  const auto found = std::lower_bound(
      first, end, name, [&](const Link& link, std::string_view text) { return *names_[link.name] < text; });
  if (found == end || *names_[found->name] != name) return {Answer::kNo, kNone};
  return Told(found->object);
}

std::string Catalogue::PathOf(Id object) const {
  if (object == root()) return "/";
  std::size_t length = 0;
  for (Id at = object; at != root() && at != kNone; at = objects_[at].parent) length += 1 + NameOf(at).size();
  std::string path(length, '/');
  for (Id at = object; at != root() && at != kNone; at = objects_[at].parent) {
    const std::string& name = NameOf(at);
    length -= name.size();
    path.replace(length, name.size(), name);
    --length;  // the slash
  }
  return path;
}

Catalogue::Answer Catalogue::FindAttribute(Id object, std::string_view name, Attribute& found) const {
  const std::uint32_t set = objects_[object].attributes;
  if (set == kNone) return Answer::kUnknown;
  for (const AttributeRow& row : attribute_rows_[attribute_sets_[set].rows]) {
    if (*names_[row.name] != name) continue;
    found = {&row.shape, reinterpret_cast<const std::uint8_t*>(attribute_sets_[set].bytes->data()) + row.at};
    return Answer::kYes;
  }
  return Answer::kNo;
}

}  // namespace orvio::structure
