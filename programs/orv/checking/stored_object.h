// Links, attributes and datasets as HDF5 has them. Nothing here follows a link out of the file, and nothing of a dataset is
// used before it is known where its values lie.
#pragma once

#include <hdf5.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "hdf5/owned_id.h"

namespace orvio::program {

struct StoredLink {
  std::string name;
  H5L_type_t type = H5L_TYPE_ERROR;
};

/// In the order of names; nothing when the group cannot be listed.
std::optional<std::vector<StoredLink>> LinksOf(hid_t group);

/// A link access list with which external links fail.
OwnedId LinkAccess();

enum class StoredClass { kInteger, kFloat, kText, kOther };

const char* WordOf(StoredClass stored_class);

struct StoredType {
  StoredClass stored_class = StoredClass::kOther;
  std::size_t size = 0;      ///< bytes of an element
  bool is_variable = false;  ///< text of variable length
};

struct StoredAttribute {
  StoredType type;
  bool is_scalar = false;    ///< one element
  bool is_readable = false;  ///< its value is below
  std::int64_t number = 0;   ///< of an integer
  std::string text;          ///< of a text, without its padding
};

/// All attributes of an object by name; nothing when they cannot be listed.
std::optional<std::map<std::string, StoredAttribute>> AttributesOf(hid_t object);

/// A dataset without its values.
struct StoredDataset {
  enum class Place { kHere, kElsewhere, kBehindUnknownFilter, kUnknown };

  std::string path;
  Place place = Place::kUnknown;  ///< the members below are filled where the values lie here
  StoredType type;
  std::vector<hsize_t> shape;
  std::vector<hsize_t> chunk;  ///< empty when the values lie in one piece
  bool is_scale_offset = false;
  bool is_written = true;  ///< all of its values are in the file
  std::uint64_t count = 0;
  std::string filter;  ///< the unknown one
};

StoredDataset LookAt(hid_t dataset, const std::string& path);

}  // namespace orvio::program
