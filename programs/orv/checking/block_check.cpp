// The header, the place and the datasets of a block, against the tables of the format.

#include "checking/block_check.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <charconv>
#include <optional>
#include <string_view>

namespace orvio::program {
namespace {

std::string HeaderPlace(const Block& block) { return block.path + (block.is_single ? "/orvblock" : "/header"); }
std::string DataPlace(const Block& block) { return block.path + (block.is_single ? "/orvblock" : "/data"); }

/// Counts that datasets are sized by.
bool IsCount(const char* name) {
  constexpr std::string_view kCounts[] = {
      "nent",  "nele",    "npele", "ncoo",   "numl",   "nstate",  "nindex", "npart",  "ncoll", "ntyp",     "nuid",
      "nbint", "nbfloat", "nvar",  "nlines", "length", "nenttot", "nbunit", "ndunit", "nbid",  "nbstring", "subslen"};
  return std::ranges::find(kCounts, name) != std::end(kCounts);
}

/// The extents that a table row tells; nothing where the header does not tell, too: -1 is any extent.
std::vector<std::int64_t> WantedShape(const Block& block, std::string_view shape) {
  std::vector<std::int64_t> extents;
  for (;;) {
    const std::size_t comma = shape.find(',');
    const std::string word(shape.substr(0, comma));
    std::int64_t number = -1;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    const bool is_number = error == std::errc() && end == word.data() + word.size();
    extents.push_back(is_number ? number : block.Number(word.c_str()));
    if (comma == std::string_view::npos) return extents;
    shape.remove_prefix(comma + 1);
  }
}

bool Fits(const std::vector<hsize_t>& stored, const std::vector<std::int64_t>& wanted) {
  return std::ranges::equal(stored, wanted, [](hsize_t extent, std::int64_t count) {
    return count < 0 || extent == static_cast<hsize_t>(count);
  });
}

std::string ShapeText(const std::vector<hsize_t>& shape) {
  return shape.empty() ? "one value" : fmt::format("{}", fmt::join(shape, " x "));
}

std::string ShapeText(const std::vector<std::int64_t>& shape) {
  std::vector<std::string> words;
  for (const std::int64_t extent : shape) words.push_back(extent < 0 ? "any" : fmt::format("{}", extent));
  return fmt::format("{}", fmt::join(words, " x "));
}

bool IsNeeded(const Block& block, Need need) {
  switch (need) {
    case Need::kAlways:
      return true;
    case Need::kOptional:
      return false;
    case Need::kWithBaseUnits:
      return block.Number("nbunit") > 0;
    case Need::kWithDerivedUnits:
      return block.Number("nbunit") > 0 && block.Number("ndunit") > 0;
  }
  return false;
}

const char* WordOf(Sections section) {
  switch (section) {
    case kInConstant:
      return "constant";
    case kInStates:
      return "singlestate";
    case kInMultistate:
      return "multistate";
  }
  return "";
}

}  // namespace

void BlockCheck::CheckForm(const Block& block) {
  for (const auto& [name, dataset] : block.datasets) CheckRoad(dataset);
  if (!block.has_header || block.header.empty()) {
    teller_.Tell("B010", block.path, "the block has data and no header");
    return;
  }
  if (!block.kind) {
    const bool is_stored = block.header.contains("block");
    if (is_stored && block.header.at("block").is_readable) {
      teller_.Tell("B003", block.path, fmt::format("the block has the key {}, which is none of the format", block.key));
    } else {
      CheckAttribute(block, {"block", StoredClass::kInteger, true});
    }
    return;
  }
  CheckPlace(block);
  CheckAttributes(block);
  CheckDatasets(block);
  CheckIndex(block);
  if (block.key == 30) CheckVariableNames(block);
}

void BlockCheck::CheckPlace(const Block& block) {
  if (!IsGroupOf(*block.kind, block.type_group.c_str())) {
    teller_.Tell("B004", block.path,
                 fmt::format("the key {} ({}) does not belong into the group {}", block.key, block.kind->kind,
                             block.type_group.empty() ? "of no kind" : block.type_group));
  } else if ((block.kind->sections & block.section) == 0) {
    teller_.Tell("B004", block.path,
                 fmt::format("the key {} ({}) does not belong into the section {}", block.key, block.kind->kind,
                             WordOf(block.section)));
  }
  if (major_ && block.is_single != (*major_ >= 2)) {
    teller_.Tell("B005", block.path,
                 fmt::format("the block has the {} layout in a file of version {}",
                             block.is_single ? "single" : "split", *major_));
  }
}

void BlockCheck::CheckAttributes(const Block& block) {
  for (const AttributeRow& row : block.kind->attributes) CheckAttribute(block, row);
}

void BlockCheck::CheckAttribute(const Block& block, const AttributeRow& row) {
  const std::string place = HeaderPlace(block);
  const auto stored = block.header.find(row.name);
  if (stored == block.header.end()) {
    if (row.is_required) teller_.Tell("B001", place, fmt::format("the attribute {} is missing", row.name));
    return;
  }
  const StoredAttribute& attribute = stored->second;
  if (attribute.type.stored_class != row.stored_class || !attribute.is_scalar) {
    teller_.Tell("B002", place,
                 fmt::format("the attribute {} is {}{}, not one {}", row.name, attribute.is_scalar ? "" : "a list of ",
                             WordOf(attribute.type.stored_class), WordOf(row.stored_class)));
  } else if (!attribute.is_readable) {
    teller_.Tell("D003", place, fmt::format("the attribute {} cannot be read", row.name));
  } else if (attribute.type.is_variable) {
    teller_.Tell("R005", place, fmt::format("the attribute {} is a text of variable length", row.name));
  } else if (row.stored_class == StoredClass::kInteger && IsCount(row.name) && attribute.number < 0) {
    teller_.Tell("B009", place, fmt::format("the attribute {} is {}", row.name, attribute.number));
  }
}

void BlockCheck::CheckDatasets(const Block& block) {
  for (const DatasetRow& row : block.kind->datasets) CheckDataset(block, row);
  // No row tells the other lists of units: their lengths are sums, which the checks of variables look at.
}

void BlockCheck::CheckDataset(const Block& block, const DatasetRow& row) {
  const auto stored = block.datasets.find(row.name);
  if (stored != block.datasets.end()) {
    if (stored->second.place != StoredDataset::Place::kHere) return;
    CheckDataClass(stored->second, row.stored_class);
    if (row.shape) CheckShape(block, row, stored->second);
    return;
  }
  if (!IsNeeded(block, row.need)) return;
  const auto wanted = row.shape ? WantedShape(block, row.shape) : std::vector<std::int64_t>();
  if (std::ranges::find(wanted, 0) != wanted.end()) return;  // nothing to store
  teller_.Tell("B008", DataPlace(block), fmt::format("the dataset {} is missing", row.name));
}

void BlockCheck::CheckDataClass(const StoredDataset& dataset, StoredClass wanted) {
  if (dataset.type.stored_class != wanted) {
    teller_.Tell(
        "B007", dataset.path,
        fmt::format("the values are of the class {}, not {}", WordOf(dataset.type.stored_class), WordOf(wanted)));
  } else if (dataset.type.is_variable) {
    teller_.Tell("R005", dataset.path, "the texts have a variable length");
  }
}

void BlockCheck::CheckShape(const Block& block, const DatasetRow& row, const StoredDataset& dataset) {
  const std::vector<std::int64_t> wanted = WantedShape(block, row.shape);
  const bool is_empty = std::ranges::find(wanted, 0) != wanted.end();
  const bool is_single_value = dataset.shape.empty() && std::ranges::all_of(wanted, [](auto n) { return n == 1; });
  if (is_empty || is_single_value || Fits(dataset.shape, wanted)) return;
  teller_.Tell("B006", dataset.path,
               fmt::format("the extents are {}; the header says {} ({})", ShapeText(dataset.shape), ShapeText(wanted),
                           row.shape));
}

/// The row of a block in a state, or its rows in the multi-state section.
void BlockCheck::CheckIndex(const Block& block) {
  if (block.section == kInConstant) return;
  const std::int64_t columns = block.Number("nindex");
  const bool is_multi = block.section == kInMultistate;
  for (const auto& [name, wanted_class] :
       {std::pair("indexval", StoredClass::kFloat), {"indexident", StoredClass::kInteger}}) {
    const auto stored = block.datasets.find(name);
    if (stored == block.datasets.end()) {
      if (columns > 0) {
        teller_.Tell("T004", block.path, fmt::format("the header says {} columns, and {} is missing", columns, name));
      }
      continue;
    }
    const StoredDataset& dataset = stored->second;
    if (dataset.place != StoredDataset::Place::kHere) continue;
    CheckDataClass(dataset, wanted_class);
    const std::size_t rank = is_multi ? 2 : 1;
    const bool fits =
        dataset.shape.size() == rank && (columns < 0 || dataset.shape.back() == static_cast<hsize_t>(columns));
    if (!fits) {
      teller_.Tell("T004", dataset.path,
                   fmt::format("the extents are {}; the header says {} columns", ShapeText(dataset.shape), columns));
    }
  }
}

/// Which of its names a variable must have depends on the others.
void BlockCheck::CheckVariableNames(const Block& block) {
  if (!block.header.contains("etypvar") && !block.header.contains("varnam")) {
    teller_.Tell("B001", HeaderPlace(block), "the attributes varnam and etypvar are both missing");
  }
  if (!block.Text("varkey").empty()) return;
  const bool has_names = block.datasets.contains("cname") && block.datasets.contains("cid");
  if (has_names) return;
  if (block.is_single) {
    teller_.Tell("V011", block.path, "the variable has neither a key nor names and identifiers of its components");
  } else {
    const char* name = block.datasets.contains("cname") ? "cid" : "cname";
    teller_.Tell("B008", DataPlace(block), fmt::format("the dataset {} is missing", name));
  }
}

void BlockCheck::CheckRoad(const StoredDataset& dataset) {
  switch (dataset.place) {
    case StoredDataset::Place::kElsewhere:
      teller_.Tell("R002", dataset.path, "the values lie in other files");
      break;
    case StoredDataset::Place::kBehindUnknownFilter:
      teller_.Tell("R003", dataset.path, fmt::format("the values have the filter {}", dataset.filter));
      break;
    case StoredDataset::Place::kUnknown:
      teller_.Tell("D003", dataset.path, "the dataset cannot be looked at");
      break;
    case StoredDataset::Place::kHere:
      break;
  }
}

}  // namespace orvio::program
