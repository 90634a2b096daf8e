// What a file tells of the entities of a type besides results: elements, parts, attributes, identifiers, collectors.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "reading/result_file.h"

namespace orvio::program {

/// Either texts, one per row, or rows of numbers.
struct RecordColumn {
  std::span<const long long> Row(std::size_t row) const;

  std::string what;
  std::vector<std::string> texts;
  std::vector<long long> numbers;
  std::size_t width = 0;          ///< numbers of a row; 0 where they differ
  std::vector<std::size_t> ends;  ///< one per row, where the rows differ in length
};

struct RecordTable {
  std::vector<std::pair<std::string, std::string>> facts;  ///< about all rows: what, and its value
  std::vector<long long> ids;                              ///< one per row
  std::vector<RecordColumn> columns;
};

enum class RecordKind { kElement, kPart, kAttribute, kIdentifier, kCollector };
inline constexpr RecordKind kRecordKinds[] = {RecordKind::kElement, RecordKind::kPart, RecordKind::kAttribute,
                                              RecordKind::kIdentifier, RecordKind::kCollector};

/// "element", "part" and so on.
const char* WordOf(RecordKind kind);

/// The types of which a state, or the constant section (0), has such records.
std::vector<std::string> ListRecordTypes(ResultFile& file, RecordKind kind, int state);

/// Those of one type. Ids of a collector are sorted; where a collector has as many of each type, those at one place
/// belong together and stay so. Throws Trouble.
RecordTable ReadRecords(ResultFile& file, RecordKind kind, const std::string& type, int state);

}  // namespace orvio::program
