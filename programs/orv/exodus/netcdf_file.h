// The checks that everything in a netCDF file needs, between the netCDF library and the meaning of a variable.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace orvio::exodus {

/// The extents of a variable, slowest axis first.
using Shape = std::vector<std::size_t>;

struct Variable {
  int id = -1;
  std::string name;
  int type = 0;  ///< of the netCDF library
  Shape shape;

  bool IsDouble() const;
};

/// "3 x 8"; "1 number" for no axis.
std::string Describe(const Shape& shape);

/// An open file. Everything that is wrong with it is thrown as Error. Nothing is allocated that the file is too small
/// to hold, whatever counts it announces.
class NetcdfFile {
 public:
  /// Local files only: the netCDF library would also fetch from a network what looks like an address.
  explicit NetcdfFile(const std::filesystem::path& path);
  ~NetcdfFile();
  NetcdfFile(const NetcdfFile&) = delete;
  NetcdfFile& operator=(const NetcdfFile&) = delete;

  /// Length of a dimension as an int; 0 when there is none.
  int Count(const std::string& dimension) const;

  /// Records that are there in full, or more than those: a file that was cut off announces records that it has not.
  std::uint64_t WholeRecords() const { return whole_records_; }

  std::optional<Variable> Find(const std::string& name) const;
  /// Fails unless the variable exists and has this shape.
  Variable Get(const std::string& name, const Shape& shape) const;
  /// Fails unless the variable exists and has this many rows of texts.
  Variable GetTexts(const std::string& name, std::size_t rows) const;
  /// Names of all variables.
  std::vector<std::string> VariableNames() const;

  /// All numbers of a variable. Fails for numbers beyond int.
  std::vector<int> Integers(const Variable& variable) const;
  /// The numbers of a part of a variable.
  std::vector<double> Reals(const Variable& variable, const Shape& start, const Shape& count) const;
  std::vector<double> Reals(const Variable& variable) const;
  /// All texts of a variable, whose last axis is the characters, without padding.
  std::vector<std::string> Texts(const Variable& variable) const;
  /// A text attribute of a variable, or of the file for no variable; empty when there is none.
  std::string TextAttribute(const Variable* variable, const std::string& name) const;

 private:
  void CheckSize(const std::filesystem::path& path);
  /// Product of the extents; fails for what the file is too small to hold.
  std::size_t Elements(const Variable& variable, const Shape& count) const;

  int id_ = -1;
  std::uint64_t most_bytes_ = 0;  ///< that a variable can be read as
  std::uint64_t whole_records_ = 0;
};

}  // namespace orvio::exodus
