#pragma once

// The datatype message: what one element looks like.

#include <cstdint>

#include "structure/cursor.h"
#include "structure/dataspace.h"

namespace orvio::structure {

enum class TypeClass : std::uint8_t {
  kFixed,
  kFloat,
  kTime,
  kString,
  kBitfield,
  kOpaque,
  kCompound,
  kReference,
  kEnum,
  kVariable,
  kArray,
};

struct Datatype {
  TypeClass type_class = TypeClass::kFixed;
  std::uint32_t size = 0;        ///< bytes of an element
  bool big_endian = false;       ///< of numbers
  bool is_signed = false;        ///< of integers
  bool is_plain = false;         ///< of numbers: as a little-endian machine has them; of texts: of fixed length
  bool variable_text = false;    ///< of variable-length types: a text, not a sequence
  bool holds_variable = false;   ///< is of variable length, or has a part that is
  bool holds_reference = false;  ///< is a reference, or has a part that is
  std::uint32_t base_size = 0;   ///< bytes of an element of a variable-length type or an array
};

/// Parses the type that `in` stands at and moves behind it.
[[nodiscard]] Verdict ParseDatatype(Cursor& in, Datatype& type);

}  // namespace orvio::structure
