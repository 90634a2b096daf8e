// Reads the integration-point values of a CalculiX .dat file (plain, or packed with gzip): what `*EL PRINT` asks for.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "frd/error.h"
#include "frd/source.h"

namespace orvio::frd {

/// One printed table: one quantity at the integration points of one element set at one time.
struct PointResult {
  std::string name;                     ///< as the file spells it: "stresses", "equivalent plastic strain"
  std::string set;                      ///< name of the element set
  double time = 0;                      ///< with seven digits
  std::vector<std::string> components;  ///< as the file spells them: sxx, syy, szz, sxy, sxz, syz
  std::vector<int32_t> elements;        ///< of each row
  std::vector<int32_t> points;          ///< of each row, from 1
  std::vector<float> values;            ///< rows x components, row-major
};

/// One pass over one file. Tables of nodes, of sums and of whole elements are passed over, and so is all text that is no
/// table. Whatever is wrong with a table of integration points is thrown as Error; the reader is of no further use then.
class DatReader {
 public:
  explicit DatReader(const std::filesystem::path& path) : source_(path) {}

  /// The next table of integration points; false behind the last one.
  bool NextResult(PointResult& result);

  /// How much of the file has been read, 0 to 1.
  double fraction() const { return source_.fraction(); }

 private:
  bool ReadHeading(std::string_view line, PointResult& result) const;
  void ReadRows(PointResult& result);
  void ReadRow(std::string_view line, PointResult& result) const;
  [[noreturn]] void Fail(const PointResult& result, std::string_view what) const;

  Source source_;
};

}  // namespace orvio::frd
