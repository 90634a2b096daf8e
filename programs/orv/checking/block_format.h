// What the format asks of each kind of block, as tables: the order of docs/format.md.
#pragma once

#include <cstdint>
#include <span>

#include "checking/stored_object.h"

namespace orvio::program {

struct AttributeRow {
  const char* name;
  StoredClass stored_class;
  bool is_required;
};

/// When a dataset has to be there.
enum class Need { kAlways, kOptional, kWithBaseUnits, kWithDerivedUnits };

struct DatasetRow {
  const char* name;
  StoredClass stored_class;
  const char* shape;  ///< header counts, numbers and `*` for any, "nent,ncoo,2"; null: told by no header
  Need need;
};

/// Sections where a block may stand.
enum Sections : unsigned { kInConstant = 1, kInStates = 2, kInMultistate = 4 };

struct KindRow {
  std::int64_t key;
  const char* kind;   ///< for people
  const char* group;  ///< "a" or "a|b"; null: any
  unsigned sections;
  std::span<const AttributeRow> attributes;
  std::span<const DatasetRow> datasets;
};

/// Null for an unknown key.
const KindRow* FindKind(std::int64_t key);

/// Whether a word is the group of some kind of block.
bool IsTypeGroup(const char* word);
bool IsGroupOf(const KindRow& kind, const char* word);

inline bool IsResult(std::int64_t key) { return key >= 1000 && key < 2000; }
inline bool IsMultistateResult(std::int64_t key) { return IsResult(key) && key % 100 >= 50; }
inline bool IsElementResult(std::int64_t key) { return key >= 1100 && key < 1200; }

}  // namespace orvio::program
