#pragma once

// What the library's own code does with the allocation of an incremental index.

#include <cstdint>
#include <string>
#include <vector>

#include "block/reader_lease.h"
#include "h5/c_array.h"
#include "orvio/orv_incr_index.h"

/// The rows of an incremental index and what fills them.
struct ORVIncrIndexAccess {
  /// Reads a row from the block of each of the states that has it. `columns` is what a row has room for; there must be
  /// room for as many rows as there are names. Index and block need a reader.
  [[nodiscard]] static int ReadRows(ORVIncrIndex& index, ORVBlock& block, const std::vector<std::string>& states,
                                    std::int64_t columns);
  /// Reads one row from the group of a block.
  [[nodiscard]] static int ReadRow(ORVIncrIndex& index, hid_t group, _ORVBlkVersion version, std::int64_t row,
                                   std::int64_t columns);

  /// Hands over a zeroed array of SizeOf elements, divided for so many columns and rows.
  static void Give(ORVIncrIndex& index, orvio::CArray<int> elements, std::int64_t columns, std::int64_t rows);
  /// Elements of 4 bytes that this takes; 0 where no array can hold them.
  static std::uint64_t SizeOf(std::int64_t columns, std::int64_t rows);
  /// Fills the next row, which must be there.
  static void AddRow(ORVIncrIndex& index, int state, int flag, const int* ids, const float* values,
                     std::int64_t columns);
  /// Whether there are rows with identifiers, states and flags. An index of a host may lack any of them.
  static bool HasRows(const ORVIncrIndex& index);
  static void SetCounts(ORVIncrIndex& index, std::int64_t columns, std::int64_t rows);

  static const int* Flags(const ORVIncrIndex& index) { return index.m_pIncrFlags; }

  /// Frees the allocation and forgets the counts.
  static void Empty(ORVIncrIndex& index) {
    index.ClearAll();
    index.Initialize();
  }

 private:
  [[nodiscard]] static int ReadRowHeader(ORVIncrIndex& index, hid_t header, std::int64_t row, std::int64_t columns);
  [[nodiscard]] static int ReadRowData(ORVIncrIndex& index, hid_t part, std::int64_t row);
};

namespace orvio {

/// An index for the length of an operation.
class OwnIncrIndex : public ORVIncrIndex {
 public:
  OwnIncrIndex() = default;
  ~OwnIncrIndex() override { ClearAll(); }
  OwnIncrIndex(const OwnIncrIndex&) = delete;
  OwnIncrIndex& operator=(const OwnIncrIndex&) = delete;
};

/// Lends the reader of one block to another, whose own is put back at the end of the scope.
class [[nodiscard]] LentReader {
 public:
  LentReader(const ORVBlock& from, ORVBlock& to)
      : to_(to), own_(ORVBlockAccess::ExchangeReader(to, ORVBlockAccess::Reader(from))) {}
  ~LentReader() { (void)ORVBlockAccess::ExchangeReader(to_, own_); }  // the lender closes what it lent
  LentReader(const LentReader&) = delete;
  LentReader& operator=(const LentReader&) = delete;

 private:
  ORVBlock& to_;
  IOH5Reader* own_;
};

}  // namespace orvio
