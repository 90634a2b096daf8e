#pragma once

// Makes a catalogue while the structure of a file is walked.

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "structure/address_map.h"
#include "structure/catalogue.h"
#include "structure/dataspace.h"
#include "structure/datatype.h"

namespace orvio::structure {

/// Told by the walk what it meets, object by object. Its memory follows what the file holds, up to a limit: behind that
/// there is no catalogue.
class CatalogueBuilder {
 public:
  using Id = Catalogue::Id;

  /// A link as it was met: where the name is is known already.
  struct Link {
    std::uint32_t name;
    std::uint64_t header;  ///< kUndefined: a soft link
  };
  /// Where in some bytes an attribute's value is, and what it is.
  struct Value {
    std::string_view name;
    std::uint64_t at;
    ArrayShape shape;
  };

  /// The object that the walk is at. The first one is the root.
  void Visit(std::uint64_t header) { at_ = IdOf(header); }

  std::uint32_t NameId(std::string_view name);
  const std::string& NameOf(std::uint32_t name) const { return *made_.names_[name]; }
  /// The links of the object that is visited, in the order of names.
  void SetLinks(std::span<const Link> links);

  /// Shapes are numbered, for those that are met again; kNone for one that no catalogue can tell.
  std::uint32_t ShapeId(const Dataspace& space, const Datatype& type);
  /// Values of the object that is visited.
  void SetValues(std::uint32_t shape, std::uint64_t offset);

  /// Sets of attributes are numbered by what and where their values are, for headers that are met again.
  std::uint32_t RowsId(std::span<const Value> values);
  /// The attributes of the object that is visited: `messages` holds the values where the rows say.
  void SetAttributes(std::uint32_t rows, std::span<const std::uint8_t> messages);

  /// The catalogue, once the walk has come to its end. Addresses count from `base`. Null when there is none.
  std::unique_ptr<const Catalogue> Finish(std::uint64_t base);

 private:
  struct Part {
    std::uint64_t at;
    std::size_t size;
  };

  Id IdOf(std::uint64_t header);
  void AddPath(Id object, Id parent, std::uint32_t name);
  bool Spend(std::size_t bytes);

  Catalogue made_;
  AddressMap<Id> ids_;  ///< by object header
  Id at_ = Catalogue::kNone;
  std::vector<std::vector<Part>> parts_;      ///< of the values of each set of rows
  AddressMap<std::uint32_t, 0> sets_;         ///< by rows and bytes
  std::uint32_t no_rows_ = Catalogue::kNone;  ///< of objects without attributes
  std::string scratch_;
  std::size_t spent_ = 0;
};

/// What a catalogue tells of a shape.
ArrayShape ShapeOf(const Dataspace& space, const Datatype& type);

}  // namespace orvio::structure
