// A block in memory: its attributes, and its datasets with their values.
#pragma once

#include <hdf5.h>
#include <orvio/orvio.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "checking/block_format.h"
#include "copying/block_walk.h"

namespace orvio::program {

/// An attribute: an integer or a text.
struct HeaderField {
  bool operator==(const HeaderField&) const = default;

  std::string name;
  bool is_text = false;
  std::size_t width = 0;  ///< stored bytes
  std::int64_t number = 0;
  std::string text;  ///< without padding
};

/// A dataset of numbers or texts.
struct BlockItem {
  bool is_float() const { return type == ORV_FLOAT || type == ORV_DOUBLE; }
  bool is_text() const { return type == ORV_CHAR; }
  std::uint64_t count() const;

  std::string name;
  _ORVDataType type = ORV_UNKNOWN_TYPE;  ///< of the values below: ORV_INT, ORV_LONG, ORV_FLOAT, ORV_DOUBLE or ORV_CHAR
  std::size_t width = 0;                 ///< bytes of a value
  std::vector<hsize_t> shape;
  std::vector<char> bytes;

  // How it is stored.
  std::optional<int> digits;   ///< of the scale-offset filter
  bool has_filters = false;    ///< any others
  std::vector<hsize_t> chunk;  ///< empty: in one piece
  std::string path;            ///< in its file
  std::string link;            ///< absolute path, where it is a soft link to a dataset of another block
};

class BlockContent {
 public:
  /// -1, or empty, where the header has no such field.
  std::int64_t Number(std::string_view name) const;
  std::string Text(std::string_view name) const;
  const HeaderField* Find(std::string_view name) const;
  void SetNumber(const std::string& name, std::int64_t value, std::size_t width = sizeof(std::int64_t));
  void SetText(const std::string& name, const std::string& text);
  void Remove(std::string_view field);

  BlockItem* Item(std::string_view name);
  const BlockItem* Item(std::string_view name) const;
  void RemoveItem(std::string_view name);
  void AddIntegers(const std::string& name, std::vector<hsize_t> shape, const std::vector<std::int64_t>& values);
  void AddFloats(const std::string& name, std::vector<hsize_t> shape, const std::vector<double>& values);
  /// Blank padded.
  void AddTexts(const std::string& name, std::size_t width, const std::vector<std::string>& texts);

  /// Whether it holds changes alone.
  bool IsIncremental() const;
  /// Name of the entity or element type that the rows are of.
  std::string EntityType() const;

  BlockPlace place;
  std::int64_t key = -1;
  const KindRow* kind = nullptr;  ///< null for an unknown key
  std::vector<HeaderField> header;
  std::vector<BlockItem> items;
  std::vector<std::string> foreign;             ///< paths of objects that are neither, below the parts of the block
  std::vector<std::string> foreign_attributes;  ///< names, in the part that holds the header
};

/// Integers of a dataset; empty for texts and floats. Numbers as doubles likewise.
std::vector<std::int64_t> IntegersOf(const BlockItem& item);
std::vector<double> FloatsOf(const BlockItem& item);
std::vector<std::string> TextsOf(const BlockItem& item);

/// Reads the header alone. `shown_as` is the file in messages. Throws Trouble for a block that cannot be read.
BlockContent ReadHeader(hid_t file, const BlockPlace& place, const std::string& shown_as);
/// Reads all of it.
BlockContent ReadContent(hid_t file, const BlockPlace& place, const std::string& shown_as);
/// Reads one dataset of a block whose header was read; false where it has no such dataset.
bool ReadItem(hid_t file, const std::string& name, const std::string& shown_as, BlockContent& content);

/// Whether a dataset tells where a block stands on the axes of the analysis.
inline bool IsIndexItem(std::string_view name) { return name == "indexident" || name == "indexval"; }

}  // namespace orvio::program
