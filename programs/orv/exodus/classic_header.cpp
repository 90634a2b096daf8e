// The walk through a classic header: its dimensions, attributes and variables. Numbers are big-endian. A list is a tag
// and a count, or two zeros.
#include "exodus/classic_header.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <fstream>
#include <limits>
#include <vector>

#include "exodus/error.h"

namespace orvio::exodus {
namespace {

using Size = std::uint64_t;

constexpr Size kTooLarge = std::numeric_limits<Size>::max();

Size Times(Size a, Size b) { return b != 0 && a > kTooLarge / b ? kTooLarge : a * b; }
Size Plus(Size a, Size b) { return a > kTooLarge - b ? kTooLarge : a + b; }
/// Up to a multiple of four bytes, as names and values take them.
Size Padded(Size size) { return size > kTooLarge - 3 ? kTooLarge : (size + 3) / 4 * 4; }

/// Widths of the numbers in the header of one of the forms.
struct Form {
  char mark;    ///< behind "CDF"
  Size count;   ///< bytes of a count
  Size offset;  ///< bytes of a place in the file
  Size types;   ///< highest type
};
constexpr Form kForms[] = {{1, 4, 4, 6}, {2, 4, 8, 6}, {5, 8, 8, 11}};

constexpr Size kTypeSizes[] = {0, 1, 1, 2, 4, 4, 8, 1, 2, 4, 8, 8};
constexpr Size kNumber = 4;         // bytes of tags and types
constexpr Size kLongestName = 256;  // the netCDF library's own limit
constexpr Size kMostAxes = 1024;    // likewise
constexpr Size kDimensionTag = 10, kVariableTag = 11, kAttributeTag = 12;

void Require(bool right) {
  if (!right) throw Error("is not a whole file: its header is damaged or cut off");
}

/// Where a variable lies.
struct Extent {
  Size begin, bytes;  ///< of one record, for a variable with records
};

class Walk {
 public:
  Walk(std::ifstream& in, Size file_size, const Form& form) : in_(in), size_(file_size), form_(form) {}

  ClassicHeader Run() {
    (void)Number(form_.count);  // of records; the variables tell how many are there
    WalkDimensions();
    WalkAttributes();
    for (Size count = List(kVariableTag); count > 0; --count) WalkVariable();
    ClassicHeader header;
    header.end_of_fixed = place_;
    for (const Extent& extent : fixed_) header.end_of_fixed = std::max(header.end_of_fixed, EndOf(extent));
    header.whole_records = CountRecords();
    return header;
  }

 private:
  static constexpr Size kMark = 4;

  Size Number(Size width) {
    std::array<char, 8> bytes = {};
    Skip(width);
    in_.read(bytes.data(), static_cast<std::streamsize>(width));
    Require(static_cast<bool>(in_));
    Size number = 0;
    for (Size i = 0; i < width; ++i) number = number << 8U | static_cast<unsigned char>(bytes[i]);
    return number;
  }

  /// Counts bytes that the file must have; the stream is moved by whoever reads or passes over them.
  void Skip(Size bytes) {
    Require(bytes <= size_ - place_);
    place_ += bytes;
  }

  void PassOver(Size bytes) {
    Skip(bytes);
    in_.seekg(static_cast<std::streamoff>(place_));
  }

  /// Entries of a list. Whatever their number, the walk through them ends with the file.
  Size List(Size tag) {
    const Size found = Number(kNumber), count = Number(form_.count);
    Require(count == 0 ? found == 0 || found == tag : found == tag);
    return count;
  }

  void PassName() {
    const Size length = Number(form_.count);
    Require(length > 0 && length <= kLongestName);
    PassOver(Padded(length));
  }

  Size Type() {
    const Size type = Number(kNumber);
    Require(type > 0 && type <= form_.types);
    return kTypeSizes[type];
  }

  void WalkDimensions() {
    for (Size count = List(kDimensionTag); count > 0; --count) {
      PassName();
      lengths_.push_back(Number(form_.count));
    }
    Require(std::ranges::count(lengths_, Size{0}) <= 1);  // the one of the records
  }

  void WalkAttributes() {
    for (Size count = List(kAttributeTag); count > 0; --count) {
      PassName();
      const Size width = Type();
      PassOver(Padded(Times(width, Number(form_.count))));
    }
  }

  void WalkVariable() {
    PassName();
    const Size rank = Number(form_.count);
    Require(rank <= kMostAxes);
    Size elements = 1;
    bool has_records = false;
    for (Size axis = 0; axis < rank; ++axis) {
      const Size dimension = Number(form_.count);
      Require(dimension < lengths_.size());
      const bool is_record = lengths_[dimension] == 0;
      Require(!is_record || axis == 0);
      has_records = has_records || is_record;
      if (!is_record) elements = Times(elements, lengths_[dimension]);
    }
    WalkAttributes();
    const Size width = Type();
    (void)Number(form_.count);  // its size, which large variables do not have
    const Extent extent = {Number(form_.offset), Times(elements, width)};
    (has_records ? recorded_ : fixed_).push_back(extent);
  }

  static Size EndOf(const Extent& extent) { return Plus(extent.begin, extent.bytes); }

  /// The padding of a lone variable with records is left out.
  Size CountRecords() const {
    Size record = 0, whole = kTooLarge;
    for (const Extent& extent : recorded_) {
      record = Plus(record, recorded_.size() == 1 ? extent.bytes : Padded(extent.bytes));
    }
    for (const Extent& extent : recorded_) {
      Require(extent.begin >= place_);
      const Size end = EndOf(extent);
      whole = std::min(whole, end > size_ ? 0 : (size_ - end) / std::max(record, Size{1}) + 1);
    }
    return whole;
  }

  std::ifstream& in_;
  Size size_;
  const Form& form_;
  Size place_ = kMark;
  std::vector<Size> lengths_;             ///< of the dimensions; 0 for the one of the records
  std::vector<Extent> fixed_, recorded_;  ///< variables without and with records
};

}  // namespace

std::optional<ClassicHeader> CheckClassicHeader(const std::filesystem::path& path, std::uint64_t file_size) {
  std::ifstream in(path, std::ios::binary);
  std::array<char, 4> mark = {};
  if (!in.read(mark.data(), mark.size())) return std::nullopt;
  if (mark[0] != 'C' || mark[1] != 'D' || mark[2] != 'F') return std::nullopt;
  const auto* form = std::ranges::find(kForms, mark[3], &Form::mark);
  if (form == std::end(kForms)) return std::nullopt;
  return Walk(in, file_size, *form).Run();
}

}  // namespace orvio::exodus
