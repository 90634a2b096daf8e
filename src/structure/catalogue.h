#pragma once

// What a file holds and where, as the look at its structure has found it: groups, their links and attributes, and the
// datasets whose values lie in one piece.

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "structure/cursor.h"

namespace orvio::structure {

/// Elements that are stored as a little-endian machine has them. All others are kOther.
enum class ElementKind : std::uint8_t { kOther, kSigned, kFloat, kText };

/// Type and extents of some values.
struct ArrayShape {
  static constexpr unsigned kMostRank = 8;

  ElementKind kind = ElementKind::kOther;
  std::uint32_t element_size = 0;  ///< bytes
  std::uint32_t rank = 0;
  std::array<std::uint64_t, kMostRank> extents{};
  std::uint64_t points = 0;

  bool operator==(const ArrayShape&) const = default;
};

/// Answers what it knows, and says so where it does not know: of groups in the new format, soft links, values in chunks.
/// What it knows is what HDF5 would answer.
class Catalogue {
 public:
  using Id = std::uint32_t;
  static constexpr Id kNone = UINT32_MAX;

  enum class Answer : std::uint8_t { kNo, kYes, kUnknown };
  struct Found {
    Answer answer;
    Id object;  ///< kNone unless the answer is kYes
  };
  struct Values {
    const ArrayShape& shape;
    std::uint64_t offset;  ///< in the file
  };
  struct Attribute {
    const ArrayShape* shape;
    const std::uint8_t* bytes;
  };

  std::size_t MemoryBytes() const { return bytes_; }
  Id root() const { return 0; }
  bool IsGroup(Id object) const { return objects_[object].kind == Kind::kGroup; }
  /// The object behind a link of a group.
  Found Child(Id group, std::string_view name) const;
  /// Links of a group, and the name of each of them in the order of names.
  std::uint32_t CountLinks(Id group) const { return objects_[group].link_count; }
  const std::string& LinkName(Id group, std::uint32_t index) const {
    return *names_[links_[objects_[group].first_link + index].name];
  }
  /// What such a link leads to.
  Found LinkObject(Id group, std::uint32_t index) const {
    return Told(links_[objects_[group].first_link + index].object);
  }
  /// Where its object header is, as links have it.
  std::uint64_t AddressOf(Id object) const { return objects_[object].header; }
  bool HasHardLinksOnly(Id group) const { return !objects_[group].has_soft_links; }
  /// The path of the object. Groups that are reached in several ways are not told about.
  std::string PathOf(Id object) const;
  /// Nothing (no shape) is known of datasets whose values are not in one piece.
  bool HasValues(Id object) const { return objects_[object].kind == Kind::kValues; }
  Values ValuesOf(Id object) const { return {shapes_[objects_[object].shape], objects_[object].values}; }

  Answer FindAttribute(Id object, std::string_view name, Attribute& found) const;

 private:
  friend class CatalogueBuilder;

  enum class Kind : std::uint8_t { kUnknown, kGroup, kValues };
  struct Object {
    Kind kind = Kind::kUnknown;
    bool has_soft_links = false;
    bool has_several_paths = false;  ///< several links lead to it
    Id parent = kNone;
    std::uint32_t name = 0;
    std::uint32_t first_link = 0;
    std::uint32_t link_count = 0;
    std::uint32_t attributes = kNone;  ///< position in attribute_sets_
    std::uint32_t shape = kNone;
    std::uint64_t values = kUndefined;
    std::uint64_t header = kUndefined;
  };
  Found Told(Id object) const {
    const bool is_told = object != kNone && !(IsGroup(object) && objects_[object].has_several_paths);
    return is_told ? Found{Answer::kYes, object} : Found{Answer::kUnknown, kNone};
  }
  const std::string& NameOf(Id object) const { return *names_[objects_[object].name]; }

  struct Link {
    std::uint32_t name;
    Id object;  ///< kNone: a soft link
  };
  struct AttributeRow {
    std::uint32_t name;
    std::uint32_t at;  ///< of the value in the set's bytes
    ArrayShape shape;
  };
  /// Groups of the same kind have the same attributes, mostly with the same values.
  struct AttributeSet {
    std::uint32_t rows;  ///< position in attribute_rows_
    const std::string* bytes;
  };
  /// Depends on where things lie in memory, so that no file can be made whose texts all have one hash.
  class TextHash {
   public:
    using is_transparent = void;
    explicit TextHash(const void* seed) : seed_(reinterpret_cast<std::uintptr_t>(seed)) {}
    std::size_t operator()(std::string_view text) const;

   private:
    std::uint64_t seed_;
  };
  using Texts = std::unordered_map<std::string, std::uint32_t, TextHash, std::equal_to<>>;

  std::size_t bytes_ = 0;
  std::vector<Object> objects_;
  std::vector<Link> links_;  ///< those of a group one behind the other, by name
  std::vector<ArrayShape> shapes_;
  std::vector<AttributeSet> attribute_sets_;
  std::vector<std::vector<AttributeRow>> attribute_rows_;
  Texts name_ids_{0, TextHash(this)};  ///< owns the names
  std::vector<const std::string*> names_;
  Texts value_ids_{0, TextHash(this)};  ///< owns the bytes of attribute sets
};

}  // namespace orvio::structure
